package com.tqomacp.eng.parser;

import static com.tqomacp.eng.parser.XCPCtxParser.*;
import static org.junit.Assert.*;

import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import org.junit.After;
import org.junit.Before;
import org.junit.Test;

/** The parse entry, the release and the seven push header queries. */
public class ParserSessionTest {
  // Wireshark's sample push: header length 47, content type 0xB6, SEC USERPIN, 40-char MAC.
  private static final byte[] BANK = Corpus.read("ws-bank-userpin.pdu");
  private static final String BANK_MAC = "0BB3BB551F0A93359EC29E6CEAC1440E4A617489";

  @Before
  @After
  public void release() {
    tqomacp_parser_del();
  }

  /** Content type, header length, body length, MAC length, SEC. */
  private static int[] header() {
    return new int[] {tqomacp_GetParserContentType(), tqomacp_GetParserHeaderLen(),
      tqomacp_GetParserBodyLen(), tqomacp_GetParserMACLen(), tqomacp_GetParserSEC()};
  }

  private static void assertEmptyState() {
    assertArrayEquals(new int[] {-1, -1, -1, -1, -1}, header());
    assertNull(tqomacp_GetParserMAC());
    assertNull(tqomacp_GetParserBody());
  }

  // Refused pushes and the header of a push without MAC are checked on the fake VM
  // (tqomacp_jni_test); here the real VM's arrays and the empty state around a release.
  @Test
  public void emptyStateBeforeAnyParseAndAfterRelease() {
    assertEmptyState();
    assertTrue(tqomacp_parser(BANK, BANK.length, MODE_HEADER_ONLY));
    tqomacp_parser_del();
    assertEmptyState();
    tqomacp_parser_del(); // twice in a row is harmless
    assertEmptyState();
    assertFalse(tqomacp_parser(null, 10, MODE_FULL));
    assertEmptyState();
  }

  @Test
  public void headerOnlyModeFillsTheHeaderQueriesAndHonoursLen() {
    assertTrue(tqomacp_parser(BANK, BANK.length, MODE_HEADER_ONLY));
    assertArrayEquals(new int[] {0x36, 47, BANK.length - 50, 40, 0x81}, header());
    assertArrayEquals(BANK_MAC.getBytes(StandardCharsets.US_ASCII), tqomacp_GetParserMAC());
    assertArrayEquals(Arrays.copyOfRange(BANK, 50, BANK.length), tqomacp_GetParserBody());
    // No body decoding: no context.
    assertEquals(0, XCPCtxPxLogical.tqomacp_GetPxLogicalCount());
    assertEquals(0, XCPCtxNapDef.tqomacp_GetPxNapDefCount());

    // A smaller len is honoured; a body copy past the array refuses the push,
    // a body length whose low 32 bits stay inside it is read.
    tqomacp_parser_del();
    assertTrue(tqomacp_parser(BANK, BANK.length - 10, MODE_HEADER_ONLY));
    assertEquals(BANK.length - 60, tqomacp_GetParserBodyLen());
    assertArrayEquals(Arrays.copyOfRange(BANK, 50, BANK.length - 10), tqomacp_GetParserBody());
    for (long len : new long[] {BANK.length + 1L, 1L << 40, -1L, Long.MIN_VALUE}) {
      tqomacp_parser_del();
      assertFalse("len " + len, tqomacp_parser(BANK, len, MODE_HEADER_ONLY));
    }
    assertTrue(tqomacp_parser(BANK, (1L << 32) + BANK.length, MODE_HEADER_ONLY));
    assertEquals(BANK.length - 50, tqomacp_GetParserBodyLen());
    assertArrayEquals(Arrays.copyOfRange(BANK, 50, BANK.length), tqomacp_GetParserBody());
  }

  @Test
  public void fullParsePublishesTheContextAndHeaderOnlyLeavesItInPlace() {
    assertTrue(tqomacp_parser(BANK, BANK.length, MODE_FULL));
    assertEquals(47, tqomacp_GetParserHeaderLen());
    assertEquals(1, XCPCtxPxLogical.tqomacp_GetPxLogicalCount());
    assertEquals(1, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
    byte[] other = Wbxml.pdu(Wbxml.doc(), "MAC1");
    assertTrue(tqomacp_parser(other, other.length, MODE_HEADER_ONLY));
    assertEquals(4, tqomacp_GetParserMACLen());
    assertEquals(1, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
    // Any mode other than 1 decodes the body.
    tqomacp_parser_del();
    assertTrue(tqomacp_parser(BANK, BANK.length, 7));
    assertEquals(1, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
  }

  @Test
  public void rejectedBodyReleasesTheHeaderRecord() {
    byte[] garbage = Wbxml.pdu(Wbxml.bytes(0x03, 0x0B, 0x6A, 0x00, 0x45, 0xC6, 0x51));
    assertFalse(tqomacp_parser(garbage, garbage.length, MODE_FULL));
    assertEmptyState();
    assertEquals(0, XCPCtxPxLogical.tqomacp_GetPxLogicalCount());
    tqomacp_parser_del();
    assertEmptyState();
    // The same PDU's header alone is fine.
    assertTrue(tqomacp_parser(garbage, garbage.length, MODE_HEADER_ONLY));
    assertEquals(garbage.length - 6, tqomacp_GetParserBodyLen());
  }
}
