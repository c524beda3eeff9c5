package com.tqomacp.eng.parser;

import static org.junit.Assert.*;

import java.util.function.IntFunction;

/**
 * Visits every record and list of the published context through the getters and checks what holds
 * for any context: items 1..count exist, 0 and count + 1 do not, arrays have their fixed lengths.
 */
final class ContextWalk {
  private static final String[] NO_PROXY = new String[14];

  static {
    java.util.Arrays.fill(NO_PROXY, "");
  }

  private ContextWalk() {}

  private static void list(String where, int count, IntFunction<String> item) {
    assertTrue(where + " count", count >= 0);
    for (int k = 1; k <= count; k++) {
      assertNotNull(where + " item " + k, item.apply(k));
    }
    assertNull(where + " item 0", item.apply(0));
    assertNull(where + " item past the end", item.apply(count + 1));
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
    int logical = XCPCtxPxLogical.tqomacp_GetPxLogicalCount();
    // The PXLOGICAL array exists even past the end: fourteen empty strings.
    assertArrayEquals(NO_PROXY, XCPCtxPxLogical.tqomacp_GetProxyData(logical + 1));
    for (int p = 1; p <= logical; p++) {
      final int pp = p;
      String at = s + " PXLOGICAL " + p;
      String[] proxy = XCPCtxPxLogical.tqomacp_GetProxyData(p);
      assertEquals(at, 14, proxy.length);
      assertNull(at, proxy[13]);
      list(at + " DOMAIN", XCPCtxPxLogical.tqomacp_GetPxDomainCount(p),
          k -> XCPCtxPxLogical.tqomacp_GetPxDomainData(pp, k));
      records(at + " PXAUTHINFO", XCPCtxPxLogical.tqomacp_GetPxAuthInfoCount(p),
          k -> XCPCtxPxLogical.tqomacp_GetPxAuthInfoData(pp, k), 4);
      int ports = XCPCtxPxLogical.tqomacp_GetPxPortCount(p);
      for (int k = 1; k <= ports; k++) {
        final int kk = k;
        int services = XCPCtxPxLogical.tqomacp_GetPxPortServiceCount(p, k);
        list(at + " PORT SERVICE", services,
            n -> XCPCtxPxLogical.tqomacp_GetPxPortServiceData(pp, kk, n));
      }
      assertNull(XCPCtxPxLogical.tqomacp_GetPxPortData(p, ports + 1));
      int physical = XCPCtxPxLogical.tqomacp_GetPxPhysicalCount(p);
      records(at + " PXPHYSICAL", physical, k -> XCPCtxPxLogical.tqomacp_GetPxPhysicalData(pp, k), 8);
      for (int k = 1; k <= physical; k++) {
        final int kk = k;
        String ph = at + " PXPHYSICAL " + k;
        String type = XCPCtxPxLogical.tqomacp_GetPxPhysicalData(p, k)[2];
        assertTrue(ph + " " + type,
            type == null || type.equals("NET_ADDR_IPV4") || type.equals("NET_ADDR_IPV6"));
        list(ph + " DOMAIN", XCPCtxPxLogical.tqomacp_GetPxPhysicalDomainCount(p, k),
            d -> XCPCtxPxLogical.tqomacp_GetPxPhsicalDomainData(pp, kk, d));
        list(ph + " TO-NAPID", XCPCtxPxLogical.tqomacp_GetPxPhsicalNapIdCount(p, k),
            n -> XCPCtxPxLogical.tqomacp_GetPxPhysicalNapIdData(pp, kk, n));
        int physPorts = XCPCtxPxLogical.tqomacp_GetPxPhysicalPortCount(p, k);
        for (int t = 1; t <= physPorts; t++) {
          final int tt = t;
          list(ph + " PORT SERVICE", XCPCtxPxLogical.tqomacp_GetPxPhysicalPortServiceCount(p, k, t),
              n -> XCPCtxPxLogical.tqomacp_GetPxPhysicalPortServiceData(pp, kk, tt, n));
        }
        assertNull(XCPCtxPxLogical.tqomacp_GetPxPhysicalPortData(p, k, physPorts + 1));
      }
    }

    int naps = XCPCtxNapDef.tqomacp_GetPxNapDefCount();
    records(s + " NAPDEF", naps, XCPCtxNapDef::tqomacp_GetPxNapDefData, 29);
    for (int n = 1; n <= naps; n++) {
      final int nn = n;
      String at = s + " NAPDEF " + n;
      list(at + " DNS-ADDR", XCPCtxNapDef.tqomacp_GetPxDnsAddrCount(n),
          k -> XCPCtxNapDef.tqomacp_GetPxDnsAddrData(nn, k));
      int bearers = XCPCtxNapDef.tqomacp_GetPxBearerCount(n);
      for (int k = 1; k <= bearers; k++) {
        XCPCtxNapDef.tqomacp_GetPxBearerData(n, k); // a text bearer without NAP-ADDRESS is null
      }
      assertNull(XCPCtxNapDef.tqomacp_GetPxBearerData(n, bearers + 1));
      int auth = XCPCtxNapDef.tqomacp_GetPxNapAuthInfoCount(n);
      records(at + " NAPAUTHINFO", auth, k -> XCPCtxNapDef.tqomacp_GetPxNapAuthInfoData(nn, k), 5);
      for (int k = 1; k <= auth; k++) {
        final int kk = k;
        list(at + " AUTH-ENTITY", XCPCtxNapDef.tqomacp_GetPxNapAuthEntityCount(n, k),
            e -> XCPCtxNapDef.tqomacp_GetPxAuthInfopAuthEntityData(nn, kk, e));
      }
      int validity = XCPCtxNapDef.tqomacp_GetPxNapValidityCount(n);
      if (validity >= n) {
        assertEquals(6, XCPCtxNapDef.tqomacp_GetPxValidityData(n, 1).length);
      } else {
        assertNull(XCPCtxNapDef.tqomacp_GetPxValidityData(n, 1));
      }
    }
    assertEquals(naps == 0 ? 0 : XCPCtxNapDef.tqomacp_GetPxBearerCount(1),
        XCPCtxNapDef.tqomacp_GetPxBearerCount(0));

    int boots = XCPCtxBootstrap.tqomacp_GetPxBootstrapCount();
    records(s + " BOOTSTRAP", boots, XCPCtxBootstrap::tqomacp_GetBootstrapData, 5);
    for (int b = 1; b <= boots; b++) {
      final int bb = b;
      list(s + " PROXY-ID", XCPCtxBootstrap.tqomacp_GetPxProxyIdCount(b),
          k -> XCPCtxBootstrap.tqomacp_GetPxProxyIdData(bb, k));
      list(s + " NETWORK", XCPCtxBootstrap.tqomacp_GetPxNetworkCount(b),
          k -> XCPCtxBootstrap.tqomacp_GetPxNetworkData(bb, k));
    }

    XCPCtxClientIdentity.tqomacp_GetPxClientIdentityData();
    records(s + " VENDORCONFIG", XCPCtxVendorConfig.tqomacp_GetPxVenderConfigCount(),
        XCPCtxVendorConfig::tqomacp_GetPxVenderConfigData, 4);

    int apps = XCPCtxApplication.tqomacp_GetPxApplicationCount();
    records(s + " APPLICATION", apps, XCPCtxApplication::tqomacp_GetApplicationData, 13);
    String[] roaming = XCPCtxApplication.tqomacp_GetPxRoamingData();
    assertTrue(roaming == null || roaming.length == 3);
    for (int a = 1; a <= apps; a++) {
      final int aa = a;
      String at = s + " APPLICATION " + a;
      list(at + " TO-PROXY", XCPCtxApplication.tqomacp_GetPxToProxyCount(a),
          k -> XCPCtxApplication.tqomacp_GetPxToProxyData(aa, k));
      list(at + " TO-NAPID", XCPCtxApplication.tqomacp_GetPxNapIdCount(a),
          k -> XCPCtxApplication.tqomacp_GetPxNapIdData(aa, k));
      list(at + " ADDR", XCPCtxApplication.tqomacp_GetPxToAddrCount(a),
          k -> XCPCtxApplication.tqomacp_GetPxToAddrData(aa, k));
      int addrs = XCPCtxApplication.tqomacp_GetPxAppAddrCount(a);
      records(at + " APPADDR", addrs, k -> XCPCtxApplication.tqomacp_GetPxAppAddrData(aa, k), 3);
      for (int k = 1; k <= addrs; k++) {
        final int kk = k;
        int ports = XCPCtxApplication.tqomacp_GetPxAppPortCount(a, k);
        for (int t = 1; t <= ports; t++) {
          final int tt = t;
          list(at + " PORT SERVICE", XCPCtxApplication.tqomacp_GetPxServiceCount(a, k, t),
              n -> XCPCtxApplication.tqomacp_GetPxServiceData(aa, kk, tt, n));
        }
        assertNull(XCPCtxApplication.tqomacp_GetPxAppPortData(a, k, ports + 1));
      }
      records(at + " APPAUTH", XCPCtxApplication.tqomacp_GetPxAppAuthCount(a),
          k -> XCPCtxApplication.tqomacp_GetPxAppAuthData(aa, k), 6);
      records(at + " RESOURCE", XCPCtxApplication.tqomacp_GetPxResourceCount(a),
          k -> XCPCtxApplication.tqomacp_GetPxResourceData(aa, k), 9);
    }

    int access = XCPCtxAccess.tqomacp_GetPxCtxAccessCount();
    for (int r = 1; r <= access; r++) {
      final int rr = r;
      list(s + " RULE", XCPCtxAccess.tqomacp_GetPxRuleCount(r), k -> XCPCtxAccess.tqomacp_GetPxRuleData(rr, k));
      list(s + " APPID", XCPCtxAccess.tqomacp_GetPxAppIdCount(r), k -> XCPCtxAccess.tqomacp_GetPxAppIdData(rr, k));
      list(s + " PORTNBR", XCPCtxAccess.tqomacp_GetPxPortNbrCount(r),
          k -> XCPCtxAccess.tqomacp_GetPxPortNbrData(rr, k));
      list(s + " DOMAIN", XCPCtxAccess.tqomacp_GetPxAccessDomainCount(r),
          k -> XCPCtxAccess.tqomacp_GetPxAccessDomainData(rr, k));
      list(s + " TO-NAPID", XCPCtxAccess.tqomacp_GetPxAccessToNapIdCount(r),
          k -> XCPCtxAccess.tqomacp_GetPxAccessToNapIdData(rr, k));
      list(s + " TO-PROXY", XCPCtxAccess.tqomacp_GetPxAccessToProxyCount(r),
          k -> XCPCtxAccess.tqomacp_GetPxAccessToProxyData(rr, k));
    }
    records(s + " WI-FI", XCPCtxWifi.tqomacp_GetPxWifiCount(), XCPCtxWifi::tqomacp_GetPxWifiData, 13);
  }
}
