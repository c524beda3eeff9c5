package com.tqomacp.eng.parser;

import static com.tqomacp.eng.parser.XCPCtxAccess.*;
import static com.tqomacp.eng.parser.XCPCtxApplication.*;
import static com.tqomacp.eng.parser.XCPCtxClientIdentity.*;
import static com.tqomacp.eng.parser.XCPCtxNapDef.*;
import static com.tqomacp.eng.parser.XCPCtxParser.*;
import static com.tqomacp.eng.parser.XCPCtxPxLogical.*;
import static com.tqomacp.eng.parser.XCPCtxVendorConfig.*;
import static org.junit.Assert.*;

import java.nio.file.Files;
import java.util.Arrays;
import java.util.List;
import java.util.Set;
import java.util.TreeSet;
import org.junit.After;
import org.junit.Before;
import org.junit.Test;

/**
 * Every push PDU of the corpus through the parse entry, every getter and the release; then values
 * of a few samples checked against their XML.
 */
public class CorpusTest {
  // Samples whose full parse fails, and why. Every sample's header parses except the first.
  private static final Set<String> REFUSED = new TreeSet<>(Arrays.asList(
      // Content type given as an unknown text.
      "negative/vn-mobifone-nokia-ota.pdu",
      // A parm after a nested characteristic (TO-PROXY after APPADDR).
      "mihini-dm-bootstrap.pdu",
      // An empty inline string after a value token ("85 03 00").
      "vn-viettel-8x85.pdu", "vn-vinaphone-8x85.pdu",
      // SWITCH_PAGE between two ENDs, where only a characteristic may follow.
      "pdus/apnprov-ref-myapn.mac.pdu", "pdus/apnprov-ref-myapn.pdu",
      // RESOURCE takes no parm written with a name attribute (SYNCTYPE).
      "pdus/cpc-data-sync.mac.pdu", "pdus/cpc-data-sync.pdu",
      // NAPAUTHINFO refuses SPI.
      "pdus/moz-provcont-appendix-c.mac.pdu", "pdus/moz-provcont-appendix-c.pdu",
      // A value token between two strings of one value (AACCEPT "...,...") in RESOURCE.
      "pdus/ws-sync-server.mac.pdu", "pdus/ws-sync-server.pdu",
      // No characteristic at all: no context is built.
      "pdus/moz-empty-doc-netwpin.mac.pdu", "pdus/moz-empty-doc-netwpin.pdu",
      // The document element is never closed.
      "pdus/negative/moz-vendorconfig-truncated.mac.pdu",
      "pdus/negative/moz-vendorconfig-truncated.pdu",
      // A LITERAL tag inside a characteristic.
      "pdus/negative/gaia-cht-parm-typo.mac.pdu", "pdus/negative/gaia-cht-parm-typo.pdu",
      // The encoder split the parm names PHASE1 and AUTHALGORITHM around a value
      // token; WI-FI accepts only its listed names.
      "pdus/own/wifi-roaming.mac.pdu", "pdus/own/wifi-roaming.pdu"));

  @Before
  @After
  public void release() {
    tqomacp_parser_del();
  }

  private static boolean parse(String sample, int mode) {
    byte[] pdu = Corpus.read(sample);
    return tqomacp_parser(pdu, pdu.length, mode);
  }

  @Test
  public void everySampleThroughParseGettersAndRelease() throws Exception {
    List<String> samples = Corpus.pdus();
    assertTrue("corpus has samples", samples.size() >= 70);
    Set<String> refused = new TreeSet<>();
    for (String sample : samples) {
      byte[] pdu = Corpus.read(sample);
      boolean header = parse(sample, MODE_HEADER_ONLY);
      if (header) {
        int headerLen = tqomacp_GetParserHeaderLen();
        assertEquals(sample, 0x36, tqomacp_GetParserContentType());
        assertEquals(sample, pdu.length - headerLen - 3, tqomacp_GetParserBodyLen());
        byte[] body = tqomacp_GetParserBody();
        assertArrayEquals(sample, Arrays.copyOfRange(pdu, headerLen + 3, pdu.length), body);
        byte[] mac = tqomacp_GetParserMAC();
        assertEquals(sample, tqomacp_GetParserMACLen(), mac.length);
        if (sample.startsWith("pdus/")) {
          // The generated PDUs wrap the body-only samples unchanged.
          String wbxml = sample.substring(5).replace(".mac.pdu", ".wbxml").replace(".pdu", ".wbxml");
          assertArrayEquals(sample, Files.readAllBytes(Corpus.dir().resolve(wbxml)), body);
          assertEquals(sample, sample.endsWith(".mac.pdu") ? 40 : 0, mac.length);
        }
      }
      tqomacp_parser_del();

      boolean full = parse(sample, MODE_FULL);
      assertFalse(sample + " parsed without its header", full && !header);
      if (full) {
        ContextWalk.walk(sample);
      } else {
        refused.add(sample);
        assertEquals(sample, 0, tqomacp_GetPxLogicalCount());
        assertEquals(sample, -1, tqomacp_GetParserHeaderLen());
      }
      tqomacp_parser_del();
      assertEquals(sample, -1, tqomacp_GetParserBodyLen());
    }
    assertEquals(REFUSED, refused);
  }

  @Test
  public void bankUserpin() {
    assertTrue(parse("ws-bank-userpin.pdu", MODE_FULL));
    assertArrayEquals(new String[] {"170.187.51.4", null, null, null, "BankMainProxy", null, null,
        "http://www.bank.com/startpage.wml", null, null, null, null, null, null}, tqomacp_GetProxyData(1));
    assertArrayEquals(new String[] {"HTTP-BASIC", "pxusername", "pxuserpasswd", null},
        tqomacp_GetPxAuthInfoData(1, 1));
    assertArrayEquals(new String[] {"PROXY 1", "170.187.51.3", "NET_ADDR_IPV4", null, null, null, null,
        null}, tqomacp_GetPxPhysicalData(1, 1));
    assertEquals("www.bank.com/", tqomacp_GetPxPhsicalDomainData(1, 1, 1));
    assertEquals("NAP1", tqomacp_GetPxPhysicalNapIdData(1, 1, 2));
    assertEquals("9203", tqomacp_GetPxPhysicalPortData(1, 1, 1));

    assertEquals("GSM-CSD", tqomacp_GetPxBearerData(1, 1));
    String[] nap = tqomacp_GetPxNapDefData(1);
    assertEquals("NAP1", nap[0]);
    assertEquals("MY ISP CSD", nap[1]);
    assertEquals("+35808124002", nap[3]);
    // NAP-ADDRTYPE E164 reached the context as text: CALLTYPE moves up into element 4.
    assertEquals("ANALOG-MODEM", nap[4]);
    assertNull(nap[27]);
    assertEquals("", nap[28]);
    assertArrayEquals(new String[] {"PAP", "wwwmmmuser", "wwwmmmsecret", null, null},
        tqomacp_GetPxNapAuthInfoData(1, 1));
    assertArrayEquals(new String[] {"228", "001", null, null, null, null}, tqomacp_GetPxValidityData(1, 1));
  }

  @Test
  public void identityVendorAccess() {
    assertTrue(parse("pdus/own/identity-vendor-access.pdu", MODE_FULL));
    assertEquals("client-0001", tqomacp_GetPxClientIdentityData());
    assertArrayEquals(new String[] {"VendorA", "VENDOR-PARAM", "42", null}, tqomacp_GetPxVenderConfigData(1));
    String[] nap = tqomacp_GetPxNapDefData(1);
    assertEquals("Example APN", nap[1]);
    assertEquals("GSM-GPRS", tqomacp_GetPxBearerData(1, 1));
    // The value-less INIT parm: "empty", one element early because of the text NAP-ADDRTYPE.
    assertEquals("empty", nap[26]);
    assertEquals("rule1", tqomacp_GetPxRuleData(1, 1));
    assertEquals("w2", tqomacp_GetPxAppIdData(1, 1));
    assertEquals("8080", tqomacp_GetPxPortNbrData(1, 1));
    assertEquals("example.invalid", tqomacp_GetPxAccessDomainData(1, 1));
    assertEquals("NAP1", tqomacp_GetPxAccessToNapIdData(1, 1));
    assertEquals("PROXY1", tqomacp_GetPxAccessToProxyData(1, 1));
  }

  @Test
  public void omaDmAuthLevels() {
    assertTrue(parse("pdus/cpc-omadm.pdu", MODE_FULL));
    assertEquals(2, tqomacp_GetPxAppAuthCount(1));
    assertArrayEquals(new String[] {"APPSRV", "DIGEST", "username", "password", null, null},
        tqomacp_GetPxAppAuthData(1, 1));
    assertEquals("CLIENT", tqomacp_GetPxAppAuthData(1, 2)[0]);
    assertArrayEquals(new String[] {"http://127.0.0.1/dm", null, null}, tqomacp_GetPxAppAddrData(1, 1));
    assertEquals("8080", tqomacp_GetPxAppPortData(1, 1, 1));
  }

  @Test
  public void serviceNamesFollowPositionNotValue() {
    assertTrue(parse("pdus/gaia-cmcc-two-proxies.pdu", MODE_FULL));
    assertEquals(2, tqomacp_GetPxLogicalCount());
    assertEquals("9201", tqomacp_GetPxPhysicalPortData(1, 1, 1));
    assertEquals("9203", tqomacp_GetPxPhysicalPortData(2, 1, 1));
    // CO-WSP and CO-SEC-WSP: both first in their PORT, both named by position 1.
    assertEquals("CO-WSP", tqomacp_GetPxPhysicalPortServiceData(1, 1, 1, 1));
    assertEquals("CO-WSP", tqomacp_GetPxPhysicalPortServiceData(2, 1, 1, 1));
    assertEquals(2, tqomacp_GetPxApplicationCount());
    assertEquals("460002", tqomacp_GetApplicationData(2)[1]);
    assertEquals("cmccwap_Proxy_2", tqomacp_GetPxToProxyData(2, 1));
  }
}
