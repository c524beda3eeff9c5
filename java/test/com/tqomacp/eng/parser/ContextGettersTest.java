package com.tqomacp.eng.parser;

import static com.tqomacp.eng.parser.ContextWalk.NO_PROXY;
import static com.tqomacp.eng.parser.ContextWalk.items;
import static com.tqomacp.eng.parser.Wbxml.*;
import static com.tqomacp.eng.parser.XCPCtxAccess.*;
import static com.tqomacp.eng.parser.XCPCtxApplication.*;
import static com.tqomacp.eng.parser.XCPCtxBootstrap.*;
import static com.tqomacp.eng.parser.XCPCtxClientIdentity.*;
import static com.tqomacp.eng.parser.XCPCtxNapDef.*;
import static com.tqomacp.eng.parser.XCPCtxParser.*;
import static com.tqomacp.eng.parser.XCPCtxPxLogical.*;
import static com.tqomacp.eng.parser.XCPCtxVendorConfig.*;
import static com.tqomacp.eng.parser.XCPCtxWifi.*;
import static org.junit.Assert.*;

import org.junit.After;
import org.junit.Before;
import org.junit.Test;

/**
 * The count, data and String[] getters of the eight context classes, on documents built here so
 * that each quirk is pinned to one value. items(count, getter) checks the count against the
 * items and that 0 and count + 1 give null.
 */
public class ContextGettersTest {
  @Before
  @After
  public void release() {
    tqomacp_parser_del();
  }

  private static void parse(byte[] body) {
    byte[] pdu = pdu(body, "MAC");
    assertTrue("parse", tqomacp_parser(pdu, pdu.length, MODE_FULL));
  }

  // PXLOGICAL with every parm and child kind, a second PXPHYSICAL, a second PXLOGICAL.
  private static byte[] proxies() {
    return doc(
        characteristic(PXLOGICAL,
            parm(PROXY_ID, "PROXY1"), parm(PROXY_PW, "ppw"), parm(PPGAUTH_TYPE, "ppg"),
            parm(PROXY_PROVIDER_ID, "provider"), parm(NAME, "Proxy One"), parm(TRUST, "1"),
            parm(MASTER, "0"), parm(STARTPAGE, "http://start/"),
            parm(DOMAIN, "a.example"), parm(DOMAIN, "b.example"),
            characteristic(PXAUTHINFO,
                parmToken(PXAUTH_TYPE, 0x9C), parm(PXAUTH_ID, "id"), parm(PXAUTH_PW, "pw")),
            characteristic(PORT,
                parm(PORTNBR, "9201"), parmToken(SERVICE, 0xCB), parm(SERVICE, "custom")),
            characteristic(PXPHYSICAL,
                parm(PHYSICAL_PROXY_ID, "PHY1"), parm(PXADDR, "10.0.0.1"),
                parmToken(PXADDRTYPE, 0x86), parm(PXADDR_FQDN, "proxy.example"),
                parm(WSP_VERSION, "1.2"), parm(PUSHENABLED, "1"), parm(PULLENABLED, "0"),
                parm(DOMAIN, "phys.example"), parm(TO_NAPID, "NAP1"), parm(TO_NAPID, "NAP2"),
                characteristic(PORT, parm(PORTNBR, "8080"), parmToken(SERVICE, 0xCA))),
            characteristic(PXPHYSICAL, parm(PXADDR, "+358"), parm(PXADDRTYPE, "E164")),
            characteristic(PXPHYSICAL, parmRaw(PXADDRTYPE, 0x86))),
        characteristic(PXLOGICAL,
            parm(PROXY_ID, "PROXY2"), parmRaw(NAME, 0x85, 'x'),
            parm(STARTPAGE, "\u00e9\u20ac\ud83d\ude00")));
  }

  @Test
  public void pxLogical() {
    parse(proxies());
    assertEquals(2, tqomacp_GetPxLogicalCount());
    assertArrayEquals(new String[] {"a.example", "b.example"},
        items(tqomacp_GetPxDomainCount(1), k -> tqomacp_GetPxDomainData(1, k)));
    assertEquals(0, tqomacp_GetPxDomainCount(2));
    assertEquals(0, tqomacp_GetPxDomainCount(0));
    assertEquals(0, tqomacp_GetPxDomainCount(-1));
    assertNull(tqomacp_GetPxDomainData(3, 1));

    assertEquals(1, tqomacp_GetPxAuthInfoCount(1));
    // The token became its text in the decoder; the element is the stored value.
    assertArrayEquals(new String[] {"HTTP-BASIC", "id", "pw", null}, tqomacp_GetPxAuthInfoData(1, 1));
    assertNull(tqomacp_GetPxAuthInfoData(2, 1));

    assertArrayEquals(new String[] {"9201"},
        items(tqomacp_GetPxPortCount(1), k -> tqomacp_GetPxPortData(1, k)));
    // Service names by position, whatever the values (CO-WSP token, "custom").
    assertArrayEquals(new String[] {"CO-WSP", "CL-SEC-WSP"},
        items(tqomacp_GetPxPortServiceCount(1, 1), s -> tqomacp_GetPxPortServiceData(1, 1, s)));

    assertEquals(3, tqomacp_GetPxPhysicalCount(1));
    assertArrayEquals(new String[] {"PHY1", "10.0.0.1", "NET_ADDR_IPV6", "proxy.example", "1.2", "1",
        "0", null}, tqomacp_GetPxPhysicalData(1, 1));
    assertArrayEquals(new String[] {null, "+358", "NET_ADDR_IPV4", null, null, null, null, null},
        tqomacp_GetPxPhysicalData(1, 2));
    assertEquals("NET_ADDR_IPV6", tqomacp_GetPxPhysicalData(1, 3)[2]);
    assertNull(tqomacp_GetPxPhysicalData(1, 4));
    assertArrayEquals(new String[] {"phys.example"},
        items(tqomacp_GetPxPhysicalDomainCount(1, 1), d -> tqomacp_GetPxPhsicalDomainData(1, 1, d)));
    assertArrayEquals(new String[] {"NAP1", "NAP2"},
        items(tqomacp_GetPxPhsicalNapIdCount(1, 1), n -> tqomacp_GetPxPhysicalNapIdData(1, 1, n)));
    assertEquals(0, tqomacp_GetPxPhsicalNapIdCount(1, 2));
    assertArrayEquals(new String[] {"8080"},
        items(tqomacp_GetPxPhysicalPortCount(1, 1), t -> tqomacp_GetPxPhysicalPortData(1, 1, t)));
    // The stored value is CL-WSP; position 1 names CO-WSP.
    assertArrayEquals(new String[] {"CO-WSP"}, items(tqomacp_GetPxPhysicalPortServiceCount(1, 1, 1),
        s -> tqomacp_GetPxPhysicalPortServiceData(1, 1, 1, s)));

    assertArrayEquals(new String[] {"PROXY1", "ppw", "ppg", "provider", "Proxy One", "1", "0",
        "http://start/", null, null, null, null, null, null}, tqomacp_GetProxyData(1));
    assertArrayEquals(NO_PROXY, tqomacp_GetProxyData(0));
    assertArrayEquals(NO_PROXY, tqomacp_GetProxyData(3));
    String[] second = tqomacp_GetProxyData(2);
    assertEquals("PROXY2", second[0]);
    // A lone code byte becomes the char of the same value; UTF-8 text, a supplementary
    // character included, arrives unchanged.
    assertEquals("\u0085x", second[4]);
    assertEquals("\u00e9\u20ac\ud83d\ude00", second[7]);
  }

  private static byte[] napDefs() {
    return doc(
        characteristic(NAPDEF,
            parm(NAPID, "NAP1"), parm(NAME, "Internet"), parm(NAP_ADDRESS, "apn.one"),
            parmToken(NAP_ADDRTYPE, 0x89), parmToken(CALLTYPE, 0x90), parm(LOCAL_ADDR, "10.1.1.1"),
            parmToken(LOCAL_ADDRTYPE, 0x85), parm(LINKSPEED, "64"), parm(DNLINKSPEED, "128"),
            parm(LINGER, "30"), parm(DELIVERY_ERR_SDU, "err"), parm(DELIVERY_ORDER, "order"),
            parm(TRAFFIC_CLASS, "class"), parm(MAX_SDU_SIZE, "1500"),
            parm(MAX_BITRATE_UPLINK, "up"), parm(MAX_BITRATE_DNLINK, "down"),
            parm(MAX_NUM_RETRY, "3"), parm(FIRST_RETRY_TIMEOUT, "5"), parm(REREG_THRESHOLD, "7"),
            parm(T_BIT, "1"), parmToken(BEARER, 0xAB), parm(BEARER, "GSM-UMTS"),
            parmToken(BEARER, 0xBD), parm(DNS_ADDR, "8.8.8.8"), parm(DNS_ADDR, "8.8.4.4"),
            characteristic(NAPAUTHINFO,
                parmToken(AUTHTYPE, 0x9A), parm(AUTHNAME, "user"), parm(AUTHSECRET, "secret"),
                parm(AUTH_ENTITY, "AAA"), parm(AUTH_ENTITY, "HA")),
            characteristic(NAPAUTHINFO, parm(AUTHTYPE, "chap")),
            characteristic(NAPAUTHINFO, parmRaw(AUTHTYPE, 0x9C)),
            characteristic(VALIDITY,
                parm(COUNTRY, "228"), parm(NETWORK, "01"), parm(SID, "sid"), parm(SOC, "soc"),
                parm(VALIDUNTIL, "2030")),
            characteristic(VALIDITY, parm(COUNTRY, "V12"))),
        characteristic(NAPDEF,
            parm(NAPID, "NAP2"), parmRaw(NAP_ADDRTYPE, 0x89), parm(CALLTYPE, "ISDN"),
            parm(BEARER, "text bearer"),
            characteristic(VALIDITY, parm(COUNTRY, "V21")),
            characteristic(VALIDITY, parm(COUNTRY, "V22"))),
        characteristic(NAPDEF, parm(NAPID, "NAP3")));
  }

  @Test
  public void napDefAndItsIndex() {
    parse(napDefs());
    assertEquals(3, tqomacp_GetPxNapDefCount());
    assertArrayEquals(new String[] {"8.8.8.8", "8.8.4.4"},
        items(tqomacp_GetPxDnsAddrCount(1), k -> tqomacp_GetPxDnsAddrData(1, k)));
    assertNull(tqomacp_GetPxDnsAddrData(2, 1));

    // The BEARER count walks "while below n": 0 and negatives select the first NAPDEF.
    assertEquals(3, tqomacp_GetPxBearerCount(0));
    assertEquals(3, tqomacp_GetPxBearerCount(-4));
    assertEquals(1, tqomacp_GetPxBearerCount(2));
    assertEquals(0, tqomacp_GetPxBearerCount(4));
    // A bearer given as text answers with the NAP-ADDRESS.
    assertArrayEquals(new String[] {"GSM-GPRS", "apn.one", "Unkown Bearer"},
        items(tqomacp_GetPxBearerCount(1), k -> tqomacp_GetPxBearerData(1, k)));
    assertNull("text bearer, no NAP-ADDRESS", tqomacp_GetPxBearerData(2, 1));
    assertNull(tqomacp_GetPxBearerData(0, 1));

    assertEquals(3, tqomacp_GetPxNapAuthInfoCount(1));
    assertArrayEquals(new String[] {"PAP", "user", "secret", null, null}, tqomacp_GetPxNapAuthInfoData(1, 1));
    assertEquals("NONE", tqomacp_GetPxNapAuthInfoData(1, 2)[0]);
    assertEquals("HTTP-BASIC", tqomacp_GetPxNapAuthInfoData(1, 3)[0]);
    assertNull(tqomacp_GetPxNapAuthInfoData(2, 1));
    assertArrayEquals(new String[] {"AAA", "HA"},
        items(tqomacp_GetPxNapAuthEntityCount(1, 1), e -> tqomacp_GetPxAuthInfopAuthEntityData(1, 1, e)));
    assertEquals(0, tqomacp_GetPxNapAuthEntityCount(1, 2));

    assertEquals(2, tqomacp_GetPxNapValidityCount(1));
    assertArrayEquals(new String[] {"228", "01", "sid", "soc", "2030", null},
        tqomacp_GetPxValidityData(1, 1));
    // n selects the NAPDEF and then its VALIDITY; k is never used.
    assertEquals("V22", tqomacp_GetPxValidityData(2, 1)[0]);
    assertEquals("228", tqomacp_GetPxValidityData(1, 5)[0]);
    assertNull(tqomacp_GetPxValidityData(3, 1));

    // NAP-ADDRTYPE APN arrives as the text "APN": no element for it, the rest moves up.
    assertArrayEquals(new String[] {"NAP1", "Internet", null, "apn.one", "ANALOG-MODEM", "10.1.1.1",
        "IPV4", "64", "128", "30", "err", "order", "class", "1500", "up", "down", null, null, null,
        null, null, null, "3", "5", "7", "1", null, null, ""}, tqomacp_GetPxNapDefData(1));
    // The raw code byte 0x89 is named by its code.
    String[] second = tqomacp_GetPxNapDefData(2);
    assertEquals(29, second.length);
    assertEquals("0x89", second[4]);
    assertEquals("ISDN", second[5]);
    assertNull(second[28]);
    // No NAP-ADDRTYPE: a null element, no shift.
    String[] third = tqomacp_GetPxNapDefData(3);
    assertNull(third[4]);
    assertNull(third[28]);
    assertNull(tqomacp_GetPxNapDefData(4));

    // tqomacp_SetPxNapDefIndex moves the start of the list.
    tqomacp_SetPxNapDefIndex(1);
    assertEquals(3, tqomacp_GetPxNapDefCount());
    tqomacp_SetPxNapDefIndex(2);
    assertEquals(2, tqomacp_GetPxNapDefCount());
    assertEquals("NAP2", tqomacp_GetPxNapDefData(1)[0]);
    assertEquals("V21", tqomacp_GetPxValidityData(1, 1)[0]);
    tqomacp_SetPxNapDefIndex(0);
    assertEquals(0, tqomacp_GetPxNapDefCount());
    assertEquals(0, tqomacp_GetPxBearerCount(1));
    // The release after a moved head is still clean (the skipped records are left alone).
    tqomacp_parser_del();
    parse(napDefs());
    tqomacp_SetPxNapDefIndex(4);
    assertEquals(0, tqomacp_GetPxNapDefCount());
  }

  private static byte[] applications() {
    return doc(
        characteristic(BOOTSTRAP,
            parm(NAME, "boot"), parm(COUNTRY, "fi"), parm(PROVURL, "http://prov"),
            parm(CONTEXT_ALLOW, "1"), parm(PROXY_ID, "P1"), parm(PROXY_ID, "P2"),
            parm(NETWORK, "net1")),
        characteristic(CLIENTIDENTITY, parm(CLIENT_ID, "client-1")),
        characteristic(VENDORCONFIG, parm(NAME, "vendor"), parmNamed("KEY", "VALUE")),
        characteristic(VENDORCONFIG, parm(NAME, "v2")),
        page1(APPLICATION,
            parm(APPID, "w4"), parm(PROVIDER_ID, "prov"), parm(NAME, "MMS"),
            parm(AACCEPT, "text/plain"), parm(APROTOCOL, "proto"), parm(INTERNET, "1"),
            parm(TO_PROXY, "PROXY1"), parm(TO_NAPID, "NAP1"), parm(TO_NAPID, "NAP2"),
            parm(ADDR, "http://mms"), parmNamed("FROM", "me@example"),
            parmNamed("XCAP_AUID_DCS", "dcs"), parmNamed("XCAP_AUID_PMS", "pms"),
            parmNamed("XCAP_AUID_CDMS", "cdms"), parmNamed("XCAP_IMEI_HEADER", "imei"),
            parmNamed("XCAP_TID_HEADER", "tid"),
            page1(APPADDR,
                parm(ADDR, "host"), parm(ADDRTYPE, "IPV4"),
                characteristic(PORT,
                    parm(PORTNBR, "110"), parmToken(SERVICE, 0xCB), parm(SERVICE, "995"))),
            page1(APPAUTH,
                parmToken(AAUTHLEVEL, 0x8D), parmToken(AAUTHTYPE, 0x92), parm(AAUTHNAME, "name"),
                parm(AAUTHSECRET, "secret"), parm(AAUTHDATA, "data")),
            page1(APPAUTH, parm(AAUTHLEVEL, "client")),
            page1(APPAUTH, parm(AAUTHLEVEL, "appsrv")),
            page1(RESOURCE,
                parm(URI, "http://r"), parm(NAME, "res"), parm(AACCEPT, "a"), parm(AAUTHTYPE, "t"),
                parm(AAUTHNAME, "n"), parm(AAUTHSECRET, "s"), parm(AAUTHDATA, "d"),
                bytes(0x87, STARTPAGE, 0x01)),
            named("ROAMING", parmNamed("SYNC-ALLOWED", "1"), parmNamed("SYNC-DEFAULT", "0"))),
        page1(APPLICATION,
            parm(APPID, "w2"), named("ROAMING", parmNamed("SYNC-ALLOWED", "second"))),
        characteristic(ACCESS,
            parm(RULE, "rule"), parm(APPID, "w4"), parm(PORTNBR, "80"), parm(DOMAIN, "d.example"),
            parm(TO_NAPID, "NAP1"), parm(TO_PROXY, "PROXY1"), parm(TO_PROXY, "PROXY2")),
        named("WI-FI",
            parmNamed("NETSSID", "ssid"), parmNamed("SECMODE", "WPA2"),
            parmNamed("EAPMETHOD", "PEAP"), parmNamed("EAPTYPE", "MSCHAPV2"),
            parmNamed("USERNAME", "u"), parmNamed("ANONUSERNAME", "anon"),
            parmNamed("PASSWORD", "p"), parmNamed("CACERT", "ca"), parmNamed("USERCERT", "uc"),
            parmNamed("PHASE1", "ph"), parmNamed("AUTHALGORITHM", "alg"),
            parmNamed("PRIORITY", "5")));
  }

  @Test
  public void bootstrapIdentityVendorConfigAccessWifiApplication() {
    parse(applications());
    assertEquals(1, tqomacp_GetPxBootstrapCount());
    assertArrayEquals(new String[] {"P1", "P2"},
        items(tqomacp_GetPxProxyIdCount(1), k -> tqomacp_GetPxProxyIdData(1, k)));
    assertArrayEquals(new String[] {"net1"},
        items(tqomacp_GetPxNetworkCount(1), k -> tqomacp_GetPxNetworkData(1, k)));
    assertArrayEquals(new String[] {"boot", "fi", "http://prov", "1", null}, tqomacp_GetBootstrapData(1));
    assertNull(tqomacp_GetBootstrapData(0));

    assertEquals("client-1", tqomacp_GetPxClientIdentityData());

    assertEquals(2, tqomacp_GetPxVenderConfigCount());
    assertArrayEquals(new String[] {"vendor", "KEY", "VALUE", null}, tqomacp_GetPxVenderConfigData(1));
    assertArrayEquals(new String[] {"v2", null, null, null}, tqomacp_GetPxVenderConfigData(2));
    assertNull(tqomacp_GetPxVenderConfigData(3));

    assertEquals(1, tqomacp_GetPxCtxAccessCount());
    assertArrayEquals(new String[] {"rule"},
        items(tqomacp_GetPxRuleCount(1), k -> tqomacp_GetPxRuleData(1, k)));
    assertArrayEquals(new String[] {"w4"},
        items(tqomacp_GetPxAppIdCount(1), k -> tqomacp_GetPxAppIdData(1, k)));
    assertArrayEquals(new String[] {"80"},
        items(tqomacp_GetPxPortNbrCount(1), k -> tqomacp_GetPxPortNbrData(1, k)));
    assertArrayEquals(new String[] {"d.example"},
        items(tqomacp_GetPxAccessDomainCount(1), k -> tqomacp_GetPxAccessDomainData(1, k)));
    assertArrayEquals(new String[] {"NAP1"},
        items(tqomacp_GetPxAccessToNapIdCount(1), k -> tqomacp_GetPxAccessToNapIdData(1, k)));
    assertArrayEquals(new String[] {"PROXY1", "PROXY2"},
        items(tqomacp_GetPxAccessToProxyCount(1), k -> tqomacp_GetPxAccessToProxyData(1, k)));
    assertEquals(0, tqomacp_GetPxRuleCount(2));

    assertEquals(1, tqomacp_GetPxWifiCount());
    assertArrayEquals(new String[] {"ssid", "WPA2", "PEAP", "MSCHAPV2", "u", "anon", "p", "ca", "uc", "ph",
        "alg", "5", null}, tqomacp_GetPxWifiData(1));
    assertNull(tqomacp_GetPxWifiData(2));

    assertEquals(2, tqomacp_GetPxApplicationCount());
    assertArrayEquals(new String[] {"PROXY1"},
        items(tqomacp_GetPxToProxyCount(1), k -> tqomacp_GetPxToProxyData(1, k)));
    assertArrayEquals(new String[] {"NAP1", "NAP2"},
        items(tqomacp_GetPxNapIdCount(1), k -> tqomacp_GetPxNapIdData(1, k)));
    assertArrayEquals(new String[] {"http://mms"},
        items(tqomacp_GetPxToAddrCount(1), k -> tqomacp_GetPxToAddrData(1, k)));
    assertEquals(0, tqomacp_GetPxToAddrCount(2));

    assertEquals(1, tqomacp_GetPxAppAddrCount(1));
    assertArrayEquals(new String[] {"host", "IPV4", null}, tqomacp_GetPxAppAddrData(1, 1));
    assertArrayEquals(new String[] {"110"},
        items(tqomacp_GetPxAppPortCount(1, 1), t -> tqomacp_GetPxAppPortData(1, 1, t)));
    // As stored: the raw CO-WSP code byte, not its name.
    assertArrayEquals(new String[] {"\u00cb", "995"},
        items(tqomacp_GetPxServiceCount(1, 1, 1), s -> tqomacp_GetPxServiceData(1, 1, 1, s)));

    assertEquals(3, tqomacp_GetPxAppAuthCount(1));
    assertArrayEquals(new String[] {"APPSRV", "BASIC", "name", "secret", "data", null},
        tqomacp_GetPxAppAuthData(1, 1));
    assertEquals("CLIENT", tqomacp_GetPxAppAuthData(1, 2)[0]);
    assertNull("appsrv in lower case", tqomacp_GetPxAppAuthData(1, 3)[0]);

    assertEquals(1, tqomacp_GetPxResourceCount(1));
    assertArrayEquals(new String[] {"http://r", "res", "a", "t", "n", "s", "d", "startpage", null},
        tqomacp_GetPxResourceData(1, 1));
    assertNull(tqomacp_GetPxResourceData(2, 1));

    assertArrayEquals(new String[] {"w4", "prov", "me@example", "MMS", "text/plain", "proto", "1", "dcs",
        "pms", "cdms", "imei", "tid", null}, tqomacp_GetApplicationData(1));
    assertEquals("w2", tqomacp_GetApplicationData(2)[0]);
    // Only the first APPLICATION's ROAMING is visible.
    assertArrayEquals(new String[] {"1", "0", null}, tqomacp_GetPxRoamingData());
  }

  @Test
  public void emptyContextAnswersZeroAndNull() {
    // A document without characteristics builds no context at all.
    byte[] empty = pdu(doc());
    assertFalse(tqomacp_parser(empty, empty.length, MODE_FULL));
    // A top-level PORT is dropped: a context with eight empty lists.
    parse(doc(characteristic(PORT, parm(PORTNBR, "1"))));
    assertEquals(0, tqomacp_GetPxLogicalCount());
    assertEquals(0, tqomacp_GetPxNapDefCount());
    assertEquals(0, tqomacp_GetPxBearerCount(0));
    assertEquals(0, tqomacp_GetPxBootstrapCount());
    assertNull(tqomacp_GetPxClientIdentityData());
    assertEquals(0, tqomacp_GetPxVenderConfigCount());
    assertEquals(0, tqomacp_GetPxApplicationCount());
    assertNull(tqomacp_GetPxRoamingData());
    assertEquals(0, tqomacp_GetPxCtxAccessCount());
    assertEquals(0, tqomacp_GetPxWifiCount());
    assertArrayEquals(NO_PROXY, tqomacp_GetProxyData(1));
  }
}
