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
  private static final String BANK = "ws-bank-userpin.pdu";
  private static final String BANK_MAC = "0BB3BB551F0A93359EC29E6CEAC1440E4A617489";

  @Before
  @After
  public void release() {
    tqomacp_parser_del();
  }

  private static void assertEmptyState() {
    assertEquals(-1, tqomacp_GetParserContentType());
    assertEquals(-1, tqomacp_GetParserHeaderLen());
    assertEquals(-1, tqomacp_GetParserBodyLen());
    assertEquals(-1, tqomacp_GetParserMACLen());
    assertEquals(-1, tqomacp_GetParserSEC());
    assertNull(tqomacp_GetParserMAC());
    assertNull(tqomacp_GetParserBody());
  }

  @Test
  public void emptyStateBeforeAnyParseAndAfterRelease() {
    assertEmptyState();
    assertTrue(tqomacp_parser(Corpus.read(BANK), Corpus.read(BANK).length, MODE_HEADER_ONLY));
    tqomacp_parser_del();
    assertEmptyState();
    tqomacp_parser_del(); // twice in a row is harmless
    assertEmptyState();
  }

  @Test
  public void headerOnlyModeFillsTheHeaderQueries() {
    byte[] pdu = Corpus.read(BANK);
    assertTrue(tqomacp_parser(pdu, pdu.length, MODE_HEADER_ONLY));
    assertEquals(0x36, tqomacp_GetParserContentType());
    assertEquals(47, tqomacp_GetParserHeaderLen());
    assertEquals(pdu.length - 50, tqomacp_GetParserBodyLen());
    assertEquals(40, tqomacp_GetParserMACLen());
    assertEquals(0x81, tqomacp_GetParserSEC());
    assertArrayEquals(BANK_MAC.getBytes(StandardCharsets.US_ASCII), tqomacp_GetParserMAC());
    assertArrayEquals(Arrays.copyOfRange(pdu, 50, pdu.length), tqomacp_GetParserBody());
    // No body decoding: no context.
    assertEquals(0, XCPCtxPxLogical.tqomacp_GetPxLogicalCount());
    assertEquals(0, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
  }

  @Test
  public void headerOnlyModeLeavesAnEarlierContextInPlace() {
    byte[] bank = Corpus.read(BANK);
    assertTrue(tqomacp_parser(bank, bank.length, MODE_FULL));
    assertEquals(1, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
    byte[] other = Wbxml.pdu(Wbxml.doc(), "MAC1");
    assertTrue(tqomacp_parser(other, other.length, MODE_HEADER_ONLY));
    assertEquals(4, tqomacp_GetParserMACLen());
    assertEquals(1, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
  }

  @Test
  public void fullParsePublishesTheContext() {
    byte[] pdu = Corpus.read(BANK);
    assertTrue(tqomacp_parser(pdu, pdu.length, MODE_FULL));
    assertEquals(47, tqomacp_GetParserHeaderLen());
    assertEquals(1, XCPCtxPxLogical.tqomacp_GetPxLogicalCount());
    assertEquals(1, XCPCtxNapDef.tqomacp_GetPxNapDefCount());
    // Any mode other than 1 decodes the body.
    tqomacp_parser_del();
    assertTrue(tqomacp_parser(pdu, pdu.length, 7));
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

  @Test
  public void pushWithoutMac() {
    byte[] body = Wbxml.doc();
    byte[] pdu = Wbxml.cat(Wbxml.bytes(0x01, 0x06, 0x03, 0xB6, 0x91, 0x80), body);
    assertTrue(tqomacp_parser(pdu, pdu.length, MODE_HEADER_ONLY));
    assertEquals(0x36, tqomacp_GetParserContentType());
    assertEquals(3, tqomacp_GetParserHeaderLen());
    assertEquals(0x80, tqomacp_GetParserSEC());
    assertEquals(0, tqomacp_GetParserMACLen());
    assertArrayEquals(new byte[0], tqomacp_GetParserMAC());
    assertArrayEquals(body, tqomacp_GetParserBody());
  }

  @Test
  public void refusedPdusAnswerAsEmpty() {
    byte[] pdu = Corpus.read(BANK);
    byte[] notPush = pdu.clone();
    notPush[1] = 0x07;
    assertFalse(tqomacp_parser(notPush, notPush.length, MODE_FULL));
    assertEmptyState();
    assertFalse(tqomacp_parser(null, 10, MODE_FULL));
    assertEmptyState();
    byte[] unknownType = Wbxml.bytes(0x01, 0x06, 0x01, 0xB7, 0x03);
    assertFalse(tqomacp_parser(unknownType, unknownType.length, MODE_HEADER_ONLY));
    assertEmptyState();
  }

  @Test
  public void lenIsHonouredWhenSmallerAndCutWhenLarger() {
    byte[] pdu = Corpus.read(BANK);
    assertTrue(tqomacp_parser(pdu, pdu.length - 10, MODE_HEADER_ONLY));
    assertEquals(pdu.length - 60, tqomacp_GetParserBodyLen());
    assertArrayEquals(Arrays.copyOfRange(pdu, 50, pdu.length - 10), tqomacp_GetParserBody());
    for (long len : new long[] {pdu.length + 1L, 1L << 40, -1L, Long.MIN_VALUE}) {
      tqomacp_parser_del();
      assertTrue("len " + len, tqomacp_parser(pdu, len, MODE_HEADER_ONLY));
      assertEquals("len " + len, pdu.length - 50, tqomacp_GetParserBodyLen());
      assertArrayEquals(Arrays.copyOfRange(pdu, 50, pdu.length), tqomacp_GetParserBody());
    }
  }
}
