package com.tqomacp.eng.parser;

import static com.tqomacp.eng.parser.XCPCtxAccess.*;
import static com.tqomacp.eng.parser.XCPCtxApplication.*;
import static com.tqomacp.eng.parser.XCPCtxBootstrap.*;
import static com.tqomacp.eng.parser.XCPCtxClientIdentity.*;
import static com.tqomacp.eng.parser.XCPCtxNapDef.*;
import static com.tqomacp.eng.parser.XCPCtxPxLogical.*;
import static com.tqomacp.eng.parser.XCPCtxVendorConfig.*;
import static com.tqomacp.eng.parser.XCPCtxWifi.*;
import static org.junit.Assert.*;

import java.util.Arrays;
import java.util.function.IntFunction;

/**
 * Visits every record and list of the published context through the getters and checks what holds
 * for any context: items 1..count exist, 0 and count + 1 do not, arrays have their fixed lengths.
 */
final class ContextWalk {
  /** What the PXLOGICAL getter answers for a record that does not exist: fourteen empty strings. */
  static final String[] NO_PROXY = new String[14];

  static {
    Arrays.fill(NO_PROXY, "");
  }

  private ContextWalk() {}

  /** Items 1..count of a list; item 0 and item count + 1 must be null. */
  static String[] items(int count, IntFunction<String> item) {
    return items("", count, item);
  }

  private static String[] items(String where, int count, IntFunction<String> item) {
    assertTrue(where + " count", count >= 0);
    String[] out = new String[count];
    for (int k = 1; k <= count; k++) {
      out[k - 1] = item.apply(k);
    }
    assertNull(where + " item 0", item.apply(0));
    assertNull(where + " item past the end", item.apply(count + 1));
    return out;
  }

  private static void list(String where, int count, IntFunction<String> item) {
    for (String value : items(where, count, item)) {
      assertNotNull(where, value);
    }
  }

  private static void records(String where, int count, IntFunction<String[]> record, int length) {
    for (int k = 1; k <= count; k++) {
      String[] r = record.apply(k);
      assertNotNull(where + " record " + k, r);
      assertEquals(where + " length", length, r.length);
    }
    assertNull(where + " record past the end", record.apply(count + 1));
  }

  static void walk(String s) {
    int logical = tqomacp_GetPxLogicalCount();
    assertArrayEquals(NO_PROXY, tqomacp_GetProxyData(logical + 1));
    for (int p = 1; p <= logical; p++) {
      final int pp = p;
      String at = s + " PXLOGICAL " + p;
      String[] proxy = tqomacp_GetProxyData(p);
      assertEquals(at, 14, proxy.length);
      assertNull(at, proxy[13]);
      list(at + " DOMAIN", tqomacp_GetPxDomainCount(p), k -> tqomacp_GetPxDomainData(pp, k));
      records(at + " PXAUTHINFO", tqomacp_GetPxAuthInfoCount(p), k -> tqomacp_GetPxAuthInfoData(pp, k), 4);
      int ports = tqomacp_GetPxPortCount(p);
      for (int k = 1; k <= ports; k++) {
        final int kk = k;
        list(at + " PORT SERVICE", tqomacp_GetPxPortServiceCount(p, k),
            n -> tqomacp_GetPxPortServiceData(pp, kk, n));
      }
      assertNull(tqomacp_GetPxPortData(p, ports + 1));
      int physical = tqomacp_GetPxPhysicalCount(p);
      records(at + " PXPHYSICAL", physical, k -> tqomacp_GetPxPhysicalData(pp, k), 8);
      for (int k = 1; k <= physical; k++) {
        final int kk = k;
        String ph = at + " PXPHYSICAL " + k;
        String type = tqomacp_GetPxPhysicalData(p, k)[2];
        assertTrue(ph + " " + type,
            type == null || type.equals("NET_ADDR_IPV4") || type.equals("NET_ADDR_IPV6"));
        list(ph + " DOMAIN", tqomacp_GetPxPhysicalDomainCount(p, k),
            d -> tqomacp_GetPxPhsicalDomainData(pp, kk, d));
        list(ph + " TO-NAPID", tqomacp_GetPxPhsicalNapIdCount(p, k),
            n -> tqomacp_GetPxPhysicalNapIdData(pp, kk, n));
        int physPorts = tqomacp_GetPxPhysicalPortCount(p, k);
        for (int t = 1; t <= physPorts; t++) {
          final int tt = t;
          list(ph + " PORT SERVICE", tqomacp_GetPxPhysicalPortServiceCount(p, k, t),
              n -> tqomacp_GetPxPhysicalPortServiceData(pp, kk, tt, n));
        }
        assertNull(tqomacp_GetPxPhysicalPortData(p, k, physPorts + 1));
      }
    }

    int naps = tqomacp_GetPxNapDefCount();
    records(s + " NAPDEF", naps, XCPCtxNapDef::tqomacp_GetPxNapDefData, 29);
    for (int n = 1; n <= naps; n++) {
      final int nn = n;
      String at = s + " NAPDEF " + n;
      list(at + " DNS-ADDR", tqomacp_GetPxDnsAddrCount(n), k -> tqomacp_GetPxDnsAddrData(nn, k));
      int bearers = tqomacp_GetPxBearerCount(n);
      for (int k = 1; k <= bearers; k++) {
        tqomacp_GetPxBearerData(n, k); // a text bearer without NAP-ADDRESS is null
      }
      assertNull(tqomacp_GetPxBearerData(n, bearers + 1));
      int auth = tqomacp_GetPxNapAuthInfoCount(n);
      records(at + " NAPAUTHINFO", auth, k -> tqomacp_GetPxNapAuthInfoData(nn, k), 5);
      for (int k = 1; k <= auth; k++) {
        final int kk = k;
        list(at + " AUTH-ENTITY", tqomacp_GetPxNapAuthEntityCount(n, k),
            e -> tqomacp_GetPxAuthInfopAuthEntityData(nn, kk, e));
      }
      if (tqomacp_GetPxNapValidityCount(n) >= n) {
        assertEquals(6, tqomacp_GetPxValidityData(n, 1).length);
      } else {
        assertNull(tqomacp_GetPxValidityData(n, 1));
      }
    }
    assertEquals(naps == 0 ? 0 : tqomacp_GetPxBearerCount(1), tqomacp_GetPxBearerCount(0));

    int boots = tqomacp_GetPxBootstrapCount();
    records(s + " BOOTSTRAP", boots, XCPCtxBootstrap::tqomacp_GetBootstrapData, 5);
    for (int b = 1; b <= boots; b++) {
      final int bb = b;
      list(s + " PROXY-ID", tqomacp_GetPxProxyIdCount(b), k -> tqomacp_GetPxProxyIdData(bb, k));
      list(s + " NETWORK", tqomacp_GetPxNetworkCount(b), k -> tqomacp_GetPxNetworkData(bb, k));
    }

    tqomacp_GetPxClientIdentityData();
    records(s + " VENDORCONFIG", tqomacp_GetPxVenderConfigCount(),
        XCPCtxVendorConfig::tqomacp_GetPxVenderConfigData, 4);

    int apps = tqomacp_GetPxApplicationCount();
    records(s + " APPLICATION", apps, XCPCtxApplication::tqomacp_GetApplicationData, 13);
    String[] roaming = tqomacp_GetPxRoamingData();
    assertTrue(roaming == null || roaming.length == 3);
    for (int a = 1; a <= apps; a++) {
      final int aa = a;
      String at = s + " APPLICATION " + a;
      list(at + " TO-PROXY", tqomacp_GetPxToProxyCount(a), k -> tqomacp_GetPxToProxyData(aa, k));
      list(at + " TO-NAPID", tqomacp_GetPxNapIdCount(a), k -> tqomacp_GetPxNapIdData(aa, k));
      list(at + " ADDR", tqomacp_GetPxToAddrCount(a), k -> tqomacp_GetPxToAddrData(aa, k));
      int addrs = tqomacp_GetPxAppAddrCount(a);
      records(at + " APPADDR", addrs, k -> tqomacp_GetPxAppAddrData(aa, k), 3);
      for (int k = 1; k <= addrs; k++) {
        final int kk = k;
        int ports = tqomacp_GetPxAppPortCount(a, k);
        for (int t = 1; t <= ports; t++) {
          final int tt = t;
          list(at + " PORT SERVICE", tqomacp_GetPxServiceCount(a, k, t),
              n -> tqomacp_GetPxServiceData(aa, kk, tt, n));
        }
        assertNull(tqomacp_GetPxAppPortData(a, k, ports + 1));
      }
      records(at + " APPAUTH", tqomacp_GetPxAppAuthCount(a), k -> tqomacp_GetPxAppAuthData(aa, k), 6);
      records(at + " RESOURCE", tqomacp_GetPxResourceCount(a), k -> tqomacp_GetPxResourceData(aa, k), 9);
    }

    int access = tqomacp_GetPxCtxAccessCount();
    for (int r = 1; r <= access; r++) {
      final int rr = r;
      list(s + " RULE", tqomacp_GetPxRuleCount(r), k -> tqomacp_GetPxRuleData(rr, k));
      list(s + " APPID", tqomacp_GetPxAppIdCount(r), k -> tqomacp_GetPxAppIdData(rr, k));
      list(s + " PORTNBR", tqomacp_GetPxPortNbrCount(r), k -> tqomacp_GetPxPortNbrData(rr, k));
      list(s + " DOMAIN", tqomacp_GetPxAccessDomainCount(r), k -> tqomacp_GetPxAccessDomainData(rr, k));
      list(s + " TO-NAPID", tqomacp_GetPxAccessToNapIdCount(r), k -> tqomacp_GetPxAccessToNapIdData(rr, k));
      list(s + " TO-PROXY", tqomacp_GetPxAccessToProxyCount(r), k -> tqomacp_GetPxAccessToProxyData(rr, k));
    }
    records(s + " WI-FI", tqomacp_GetPxWifiCount(), XCPCtxWifi::tqomacp_GetPxWifiData, 13);
  }
}
