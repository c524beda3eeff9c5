package com.tqomacp.cp;

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

import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;
import java.util.Map;
import java.util.function.BiConsumer;
import java.util.function.IntFunction;
import org.junit.Test;

/**
 * Every corpus sample read through the facade against the same sample read through the natives,
 * element by element in the natives' own layouts, so that each accessor is checked against the
 * array position the natives give it; then the repairs on known values.
 */
public class ProvisioningMessageTest {
  private static final List<String> ADDRESS_TYPES =
      Arrays.asList("IPV4", "IPV6", "E164", "ALPHA", "APN", "SCODE", "TETRA-ITSI", "MAN");

  @Test
  public void everySampleEqualsTheNatives() {
    int parsed = 0;
    for (Map.Entry<String, byte[]> sample : Samples.PDUS.entrySet()) {
      parsed += sameAsNatives(sample.getKey(), sample.getValue()) ? 1 : 0;
    }
    assertTrue("samples parsed: " + parsed, parsed >= 50);
  }

  @Test
  public void builtDocumentEqualsTheNatives() throws ProvisioningException {
    assertTrue(sameAsNatives("built", Samples.BUILT));
    ProvisioningDocument d = ProvisioningMessage.parse(Samples.BUILT).document();
    NapDef first = d.napDefs().get(0);
    NapDef second = d.napDefs().get(1);
    assertEquals(Arrays.asList("APN", false, "ISDN", Arrays.asList(null, "GSM-GPRS"), null, true, "ISDN"),
        Arrays.asList(first.napAddressType(), first.napAddressTypeWithheld(), first.callType(),
            first.bearers(), second.napAddressType(), second.napAddressTypeWithheld(), second.callType()));
    Roaming roaming = d.applications().get(0).roaming();
    assertEquals(Arrays.asList("1", "0", null), Arrays.asList(roaming.syncAllowed(),
        roaming.syncDefault(), d.applications().get(1).roaming()));
    assertEquals(Arrays.asList("a", "l"), Arrays.asList(d.wifis().get(0).ssid(), d.wifis().get(0).priority()));
  }

  /** Whether the push parses; either way the facade must agree with the natives. */
  private static boolean sameAsNatives(String at, byte[] pdu) {
    ProvisioningException.Reason refused = null;
    ProvisioningMessage message = null;
    try {
      message = ProvisioningMessage.parse(pdu);
    } catch (ProvisioningException e) {
      refused = e.reason();
    }
    boolean header = tqomacp_parser(pdu, pdu.length, MODE_HEADER_ONLY);
    tqomacp_parser_del();
    boolean full = tqomacp_parser(pdu, pdu.length, MODE_FULL);
    try {
      assertEquals(at, header ? full ? null : ProvisioningException.Reason.DOCUMENT
          : ProvisioningException.Reason.HEADER, refused);
      if (full) {
        sameHeader(at, message.header());
        sameDocument(at, message.document());
      }
      return full;
    } finally {
      tqomacp_parser_del();
    }
  }

  @Test
  public void headerBodyIsACopy() throws ProvisioningException {
    PushHeader header = ProvisioningMessage.parseHeader(Samples.pdu("ws-bank-userpin.pdu"));
    byte[] body = header.body();
    body[0] ^= 1;
    assertNotEquals(body[0], header.body()[0]);
  }

  private static void sameHeader(String at, PushHeader h) {
    assertEquals(at, Arrays.asList(tqomacp_GetParserContentType(), tqomacp_GetParserHeaderLen(),
            tqomacp_GetParserSEC(), tqomacp_GetParserMACLen(), tqomacp_GetParserBodyLen()),
        Arrays.asList(h.contentType(), h.headerLength(), h.securityCode(),
            h.mac() == null ? 0 : h.mac().length(), h.body().length));
    byte[] mac = h.mac() == null ? new byte[0] : h.mac().getBytes(StandardCharsets.ISO_8859_1);
    assertArrayEquals(at, tqomacp_GetParserMAC(), mac);
    assertArrayEquals(at, tqomacp_GetParserBody(), h.body());
  }

  private static void sameDocument(String at, ProvisioningDocument d) {
    assertEquals(at, tqomacp_GetPxClientIdentityData(), d.clientIdentity());
    each(at, tqomacp_GetPxLogicalCount(), d.proxies(), (p, x) -> {
      row(at, tqomacp_GetProxyData(p), x.proxyId(), x.proxyPw(), x.ppgAuthType(),
          x.proxyProviderId(), x.name(), x.trust(), x.master(), x.startPage(),
          null, null, null, null, null);
      strings(at, tqomacp_GetPxDomainCount(p), k -> tqomacp_GetPxDomainData(p, k), x.domains());
      each(at, tqomacp_GetPxAuthInfoCount(p), x.authInfos(), (k, a) ->
          row(at, tqomacp_GetPxAuthInfoData(p, k), a.authType(), a.authId(), a.authPw()));
      each(at, tqomacp_GetPxPortCount(p), x.ports(), (k, port) -> port(at, port,
          tqomacp_GetPxPortData(p, k), Arrays.asList(new String[tqomacp_GetPxPortServiceCount(p, k)])));
      each(at, tqomacp_GetPxPhysicalCount(p), x.physicals(), (k, y) -> {
        row(at, tqomacp_GetPxPhysicalData(p, k), y.physicalProxyId(), y.address(),
            y.addressType(), y.addressFqdn(), y.wspVersion(), y.pushEnabled(), y.pullEnabled());
        strings(at, tqomacp_GetPxPhysicalDomainCount(p, k),
            n -> tqomacp_GetPxPhsicalDomainData(p, k, n), y.domains());
        strings(at, tqomacp_GetPxPhsicalNapIdCount(p, k),
            n -> tqomacp_GetPxPhysicalNapIdData(p, k, n), y.toNapIds());
        each(at, tqomacp_GetPxPhysicalPortCount(p, k), y.ports(), (t, port) -> port(at, port,
            tqomacp_GetPxPhysicalPortData(p, k, t),
            Arrays.asList(new String[tqomacp_GetPxPhysicalPortServiceCount(p, k, t)])));
      });
    });

    each(at, tqomacp_GetPxNapDefCount(), d.napDefs(), (n, x) -> {
      List<String> expected = new ArrayList<>(Arrays.asList(x.napId(), x.name(), x.internet(),
          x.napAddress(), x.napAddressType() == null ? null
              : "0x" + Integer.toHexString(0x85 + ADDRESS_TYPES.indexOf(x.napAddressType())),
          x.callType(), x.localAddress(), x.localAddressType(), x.linkSpeed(), x.downlinkSpeed(),
          x.linger(), x.deliveryErrSdu(), x.deliveryOrder(), x.trafficClass(), x.maxSduSize(),
          x.maxBitrateUplink(), x.maxBitrateDownlink(), null, null, null, null, null, null,
          x.maxNumRetry(), x.firstRetryTimeout(), x.reregThreshold(), x.tBit(), x.init(), null));
      if (x.napAddressTypeWithheld()) {
        // The natives' layout for a text type: nothing in its place, the rest one lower.
        expected.remove(4);
        expected.add("");
      }
      assertEquals(at, expected, Arrays.asList(tqomacp_GetPxNapDefData(n)));
      strings(at, tqomacp_GetPxDnsAddrCount(n), k -> tqomacp_GetPxDnsAddrData(n, k), x.dnsAddresses());
      each(at, tqomacp_GetPxBearerCount(n), x.bearers(), (k, bearer) -> {
        String given = tqomacp_GetPxBearerData(n, k);
        // Null only where the native gave the NAP-ADDRESS for a text bearer.
        assertTrue(at + " " + given, bearer == null
            ? given == null || given.equals(x.napAddress()) : bearer.equals(given));
      });
      each(at, tqomacp_GetPxNapAuthInfoCount(n), x.authInfos(), (k, a) -> {
        row(at, tqomacp_GetPxNapAuthInfoData(n, k), a.authType(), a.authName(), a.authSecret(), null);
        strings(at, tqomacp_GetPxNapAuthEntityCount(n, k),
            e -> tqomacp_GetPxAuthInfopAuthEntityData(n, k, e), a.authEntities());
      });
      each(at, tqomacp_GetPxNapValidityCount(n), x.validities(), (k, v) -> {
        if (k.intValue() != n) {
          assertNull(at, v);
        } else {
          row(at, tqomacp_GetPxValidityData(n, k), v.country(), v.network(), v.sid(), v.soc(),
              v.validUntil());
        }
      });
    });

    each(at, tqomacp_GetPxBootstrapCount(), d.bootstraps(), (b, x) -> {
      row(at, tqomacp_GetBootstrapData(b), x.name(), x.country(), x.provUrl(), x.contextAllow());
      strings(at, tqomacp_GetPxProxyIdCount(b), k -> tqomacp_GetPxProxyIdData(b, k), x.proxyIds());
      strings(at, tqomacp_GetPxNetworkCount(b), k -> tqomacp_GetPxNetworkData(b, k), x.networks());
    });

    each(at, tqomacp_GetPxVenderConfigCount(), d.vendorConfigs(), (v, x) ->
        row(at, tqomacp_GetPxVenderConfigData(v), x.name(), x.parmName(), x.parmValue()));

    each(at, tqomacp_GetPxApplicationCount(), d.applications(), (a, x) -> {
      row(at, tqomacp_GetApplicationData(a), x.appId(), x.providerId(), x.from(), x.name(),
          x.aAccept(), x.aProtocol(), x.internet(), x.xcapAuidDcs(), x.xcapAuidPms(),
          x.xcapAuidCdms(), x.xcapImeiHeader(), x.xcapTidHeader());
      strings(at, tqomacp_GetPxToProxyCount(a), k -> tqomacp_GetPxToProxyData(a, k), x.toProxies());
      strings(at, tqomacp_GetPxNapIdCount(a), k -> tqomacp_GetPxNapIdData(a, k), x.toNapIds());
      strings(at, tqomacp_GetPxToAddrCount(a), k -> tqomacp_GetPxToAddrData(a, k), x.addresses());
      each(at, tqomacp_GetPxAppAddrCount(a), x.appAddresses(), (k, y) -> {
        row(at, tqomacp_GetPxAppAddrData(a, k), y.address(), y.addressType());
        each(at, tqomacp_GetPxAppPortCount(a, k), y.ports(), (t, port) -> port(at, port,
            tqomacp_GetPxAppPortData(a, k, t), items(tqomacp_GetPxServiceCount(a, k, t),
                s -> tqomacp_GetPxServiceData(a, k, t, s))));
      });
      each(at, tqomacp_GetPxAppAuthCount(a), x.appAuths(), (k, y) ->
          row(at, tqomacp_GetPxAppAuthData(a, k), y.authLevel(), y.authType(), y.authName(),
              y.authSecret(), y.authData()));
      each(at, tqomacp_GetPxResourceCount(a), x.resources(), (k, y) ->
          row(at, tqomacp_GetPxResourceData(a, k), y.uri(), y.name(), y.aAccept(), y.authType(),
              y.authName(), y.authSecret(), y.authData(), y.startPage()));
      Roaming r = x.roaming();
      String[] roaming = a == 1 ? tqomacp_GetPxRoamingData() : null;
      assertEquals(at, roaming == null, r == null);
      if (r != null) {
        row(at, roaming, r.syncAllowed(), r.syncDefault());
      }
    });

    each(at, tqomacp_GetPxCtxAccessCount(), d.accessRules(), (r, x) -> {
      strings(at, tqomacp_GetPxRuleCount(r), k -> tqomacp_GetPxRuleData(r, k), x.rules());
      strings(at, tqomacp_GetPxAppIdCount(r), k -> tqomacp_GetPxAppIdData(r, k), x.appIds());
      strings(at, tqomacp_GetPxPortNbrCount(r), k -> tqomacp_GetPxPortNbrData(r, k), x.portNumbers());
      strings(at, tqomacp_GetPxAccessDomainCount(r), k -> tqomacp_GetPxAccessDomainData(r, k),
          x.domains());
      strings(at, tqomacp_GetPxAccessToNapIdCount(r), k -> tqomacp_GetPxAccessToNapIdData(r, k),
          x.toNapIds());
      strings(at, tqomacp_GetPxAccessToProxyCount(r), k -> tqomacp_GetPxAccessToProxyData(r, k),
          x.toProxies());
    });

    each(at, tqomacp_GetPxWifiCount(), d.wifis(), (w, x) ->
        row(at, tqomacp_GetPxWifiData(w), x.ssid(), x.securityMode(), x.eapMethod(), x.eapType(),
            x.userName(), x.anonymousUserName(), x.password(), x.caCertificate(),
            x.userCertificate(), x.phase1(), x.authAlgorithm(), x.priority()));
  }

  /** The natives' count against the list, then each item with its number k (from 1). */
  private static <T> void each(String at, int count, List<T> items, BiConsumer<Integer, T> check) {
    assertEquals(at, count, items.size());
    for (int k = 1; k <= count; k++) {
      check.accept(k, items.get(k - 1));
    }
  }

  /** A PORT: its number and its services (proxy ones are counted but withheld: nulls). */
  private static void port(String at, Port port, String number, List<String> services) {
    assertEquals(at, Arrays.asList(number, services), Arrays.asList(port.portNumber(), port.services()));
  }

  /** A record array: the fields in order, then the closing null. */
  private static void row(String at, String[] natives, String... fields) {
    String[] expected = Arrays.copyOf(fields, fields.length + 1);
    assertArrayEquals(at, expected, natives);
  }

  private static List<String> items(int count, IntFunction<String> item) {
    String[] items = new String[count];
    Arrays.setAll(items, k -> item.apply(k + 1));
    return Arrays.asList(items);
  }

  private static void strings(String at, int count, IntFunction<String> item, List<String> read) {
    assertEquals(at, items(count, item), read);
  }
}
