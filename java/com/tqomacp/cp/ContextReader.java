package com.tqomacp.cp;

import static com.tqomacp.eng.parser.XCPCtxAccess.*;
import static com.tqomacp.eng.parser.XCPCtxApplication.*;
import static com.tqomacp.eng.parser.XCPCtxBootstrap.*;
import static com.tqomacp.eng.parser.XCPCtxClientIdentity.*;
import static com.tqomacp.eng.parser.XCPCtxNapDef.*;
import static com.tqomacp.eng.parser.XCPCtxPxLogical.*;
import static com.tqomacp.eng.parser.XCPCtxVendorConfig.*;
import static com.tqomacp.eng.parser.XCPCtxWifi.*;

import java.util.ArrayList;
import java.util.Arrays;
import java.util.Collections;
import java.util.HashSet;
import java.util.List;
import java.util.Set;
import java.util.function.Function;
import org.jetbrains.annotations.Nullable;

/**
 * Reads the published context back into records, as one table: which native counts each list,
 * which native gives each item or record array, and which array elements become the record's
 * fields. Every native here is called with the 1-based numbers of the path from the root, so a
 * path is just the list of numbers so far. The caller holds the session lock.
 */
final class ContextReader {
  /** Reads something at a path: a string, a record or a list. */
  interface Part {
    @Nullable Object read(int[] path);
  }

  /** How many items a list under the path has. */
  interface Count {
    int of(int[] path);
  }

  /** The array a record native gives for the record at the path, or null for none. */
  interface Row {
    String @Nullable [] of(int[] path);
  }

  private static final String[] NO_VALUES = {};
  /** An item the library counts but never returns. */
  private static final Part WITHHELD = path -> null;

  private ContextReader() {}

  /** Items 1..count under the path, in order. */
  static Part list(Count count, Part item) {
    return path -> {
      int n = count.of(path);
      if (n <= 0) {
        return Collections.emptyList();
      }
      List<Object> items = new ArrayList<>(n);
      for (int k = 1; k <= n; k++) {
        int[] child = Arrays.copyOf(path, path.length + 1);
        child[path.length] = k;
        items.add(item.read(child));
      }
      return Collections.unmodifiableList(items);
    };
  }

  /** A record: the row's elements at {@code columns}, then each child read at the same path. */
  static Part record(Row row, int[] columns, Function<Object[], Record> make, Part... children) {
    return path -> {
      String[] values = row.of(path);
      if (values == null) {
        return null;
      }
      Object[] parts = new Object[columns.length + children.length];
      for (int i = 0; i < columns.length; i++) {
        parts[i] = values[columns[i]];
      }
      for (int c = 0; c < children.length; c++) {
        parts[columns.length + c] = children[c].read(path);
      }
      return make.apply(parts);
    };
  }

  /** Elements 0..n-1. */
  private static int[] first(int n) {
    int[] columns = new int[n];
    Arrays.setAll(columns, i -> i);
    return columns;
  }

  /** A PORT: its number, then its SERVICE list. */
  private static Part port(Part number, Count services, Part service) {
    return record(path -> new String[] {(String) number.read(path)}, first(1), Port::new,
        list(services, service));
  }

  // NAPDEF: elements 0-16, the six reserved 17-22 (never filled) skipped, 23-27, then the
  // text-address-type mark that napDefRow leaves in 29.
  private static final int[] NAPDEF_COLUMNS =
      {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 23, 24, 25, 26, 27, 29};
  private static final String[] ADDRESS_TYPES =
      {"IPV4", "IPV6", "E164", "ALPHA", "APN", "SCODE", "TETRA-ITSI", "MAN"};

  /**
   * The NAPDEF array in its written layout. The native writes a coded address type as "0x85" to
   * "0x8c"; for one stored as text it writes nothing and every later element lands one lower, so
   * the closing null is in 27 and 28 keeps the array's initial empty string. Element 4 becomes
   * the type's name, or null for a text type, and 29 is non-null exactly for a text type.
   */
  static String[] napDefRow(String @Nullable [] row) {
    if (row == null) {
      return null;
    }
    String[] out = new String[30];
    boolean shifted = row[28] != null;
    if (shifted) {
      System.arraycopy(row, 0, out, 0, 4);
      System.arraycopy(row, 4, out, 5, 24);
      out[29] = "";
    } else {
      System.arraycopy(row, 0, out, 0, 29);
      out[4] = row[4] == null ? null : ADDRESS_TYPES[Integer.parseInt(row[4].substring(2), 16) - 0x85];
    }
    return out;
  }

  private static final Set<String> BEARER_NAMES = new HashSet<>(Arrays.asList(
      "GSM-USSD", "GSM-SMS", "ANSI-136-GUTS", "IS-95-CDMA-SMS", "IS-95-CDMA-CSD",
      "IS-95-CDMA-PACKET", "ANSI-136-CSD", "ANSI-136-GPRS", "GSM-CSD", "GSM-GPRS", "AMPS-CDPD",
      "PDC-CSD", "PDC-PACKET", "IDEN-SMS", "IDEN-CSD", "IDEN-PACKET", "FLEX/REFLEX", "PHS-SMS",
      "PHS-CSD", "TETRA-SDS", "TETRA-PACKET", "ANSI-136-GHOST", "MOBITEX-MPAK",
      "CDMA2000-1X-SIMPLE-IP", "CDMA2000-1X-MOBILE-IP", "3G-GSM", "WLAN", "Unkown Bearer"));

  /** A bearer's name; null where the native gave the NAP-ADDRESS in place of a text bearer. */
  static @Nullable String bearerName(@Nullable String value) {
    return value != null && BEARER_NAMES.contains(value) ? value : null;
  }

  private static final Part PXLOGICAL = list(p -> tqomacp_GetPxLogicalCount(),
      record(p -> tqomacp_GetProxyData(p[0]), first(8), PxLogical::new,
          list(p -> tqomacp_GetPxDomainCount(p[0]), p -> tqomacp_GetPxDomainData(p[0], p[1])),
          list(p -> tqomacp_GetPxAuthInfoCount(p[0]),
              record(p -> tqomacp_GetPxAuthInfoData(p[0], p[1]), first(3), PxAuthInfo::new)),
          list(p -> tqomacp_GetPxPortCount(p[0]),
              port(p -> tqomacp_GetPxPortData(p[0], p[1]),
                  p -> tqomacp_GetPxPortServiceCount(p[0], p[1]), WITHHELD)),
          list(p -> tqomacp_GetPxPhysicalCount(p[0]),
              record(p -> tqomacp_GetPxPhysicalData(p[0], p[1]), first(7), PxPhysical::new,
                  list(p -> tqomacp_GetPxPhysicalDomainCount(p[0], p[1]),
                      p -> tqomacp_GetPxPhsicalDomainData(p[0], p[1], p[2])),
                  list(p -> tqomacp_GetPxPhsicalNapIdCount(p[0], p[1]),
                      p -> tqomacp_GetPxPhysicalNapIdData(p[0], p[1], p[2])),
                  list(p -> tqomacp_GetPxPhysicalPortCount(p[0], p[1]),
                      port(p -> tqomacp_GetPxPhysicalPortData(p[0], p[1], p[2]),
                          p -> tqomacp_GetPxPhysicalPortServiceCount(p[0], p[1], p[2]),
                          WITHHELD))))));

  private static final Part NAPDEF = list(p -> tqomacp_GetPxNapDefCount(),
      record(p -> napDefRow(tqomacp_GetPxNapDefData(p[0])), NAPDEF_COLUMNS, NapDef::new,
          list(p -> tqomacp_GetPxDnsAddrCount(p[0]), p -> tqomacp_GetPxDnsAddrData(p[0], p[1])),
          list(p -> tqomacp_GetPxBearerCount(p[0]),
              p -> bearerName(tqomacp_GetPxBearerData(p[0], p[1]))),
          list(p -> tqomacp_GetPxNapAuthInfoCount(p[0]),
              record(p -> tqomacp_GetPxNapAuthInfoData(p[0], p[1]), first(3), NapAuthInfo::new,
                  list(p -> tqomacp_GetPxNapAuthEntityCount(p[0], p[1]),
                      p -> tqomacp_GetPxAuthInfopAuthEntityData(p[0], p[1], p[2])))),
          // The validity native selects VALIDITY n of NAPDEF n, whatever k says.
          list(p -> tqomacp_GetPxNapValidityCount(p[0]),
              record(p -> p[1] == p[0] ? tqomacp_GetPxValidityData(p[0], p[1]) : null, first(5),
                  Validity::new))));

  private static final Part BOOTSTRAP = list(p -> tqomacp_GetPxBootstrapCount(),
      record(p -> tqomacp_GetBootstrapData(p[0]), first(4), Bootstrap::new,
          list(p -> tqomacp_GetPxProxyIdCount(p[0]), p -> tqomacp_GetPxProxyIdData(p[0], p[1])),
          list(p -> tqomacp_GetPxNetworkCount(p[0]), p -> tqomacp_GetPxNetworkData(p[0], p[1]))));

  private static final Part VENDORCONFIG = list(p -> tqomacp_GetPxVenderConfigCount(),
      record(p -> tqomacp_GetPxVenderConfigData(p[0]), first(3), VendorConfig::new));

  // The roaming native reads the first ROAMING of the first APPLICATION only.
  private static final Part ROAMING =
      record(p -> p[0] == 1 ? tqomacp_GetPxRoamingData() : null, first(2), Roaming::new);

  private static final Part APPLICATION = list(p -> tqomacp_GetPxApplicationCount(),
      record(p -> tqomacp_GetApplicationData(p[0]), first(12), Application::new,
          list(p -> tqomacp_GetPxToProxyCount(p[0]), p -> tqomacp_GetPxToProxyData(p[0], p[1])),
          list(p -> tqomacp_GetPxNapIdCount(p[0]), p -> tqomacp_GetPxNapIdData(p[0], p[1])),
          list(p -> tqomacp_GetPxToAddrCount(p[0]), p -> tqomacp_GetPxToAddrData(p[0], p[1])),
          list(p -> tqomacp_GetPxAppAddrCount(p[0]),
              record(p -> tqomacp_GetPxAppAddrData(p[0], p[1]), first(2), AppAddr::new,
                  list(p -> tqomacp_GetPxAppPortCount(p[0], p[1]),
                      port(p -> tqomacp_GetPxAppPortData(p[0], p[1], p[2]),
                          p -> tqomacp_GetPxServiceCount(p[0], p[1], p[2]),
                          p -> tqomacp_GetPxServiceData(p[0], p[1], p[2], p[3]))))),
          list(p -> tqomacp_GetPxAppAuthCount(p[0]),
              record(p -> tqomacp_GetPxAppAuthData(p[0], p[1]), first(5), AppAuth::new)),
          list(p -> tqomacp_GetPxResourceCount(p[0]),
              record(p -> tqomacp_GetPxResourceData(p[0], p[1]), first(8), Resource::new)),
          ROAMING));

  private static final Part ACCESS = list(p -> tqomacp_GetPxCtxAccessCount(),
      record(p -> NO_VALUES, first(0), Access::new,
          list(p -> tqomacp_GetPxRuleCount(p[0]), p -> tqomacp_GetPxRuleData(p[0], p[1])),
          list(p -> tqomacp_GetPxAppIdCount(p[0]), p -> tqomacp_GetPxAppIdData(p[0], p[1])),
          list(p -> tqomacp_GetPxPortNbrCount(p[0]), p -> tqomacp_GetPxPortNbrData(p[0], p[1])),
          list(p -> tqomacp_GetPxAccessDomainCount(p[0]),
              p -> tqomacp_GetPxAccessDomainData(p[0], p[1])),
          list(p -> tqomacp_GetPxAccessToNapIdCount(p[0]),
              p -> tqomacp_GetPxAccessToNapIdData(p[0], p[1])),
          list(p -> tqomacp_GetPxAccessToProxyCount(p[0]),
              p -> tqomacp_GetPxAccessToProxyData(p[0], p[1]))));

  private static final Part WIFI = list(p -> tqomacp_GetPxWifiCount(),
      record(p -> tqomacp_GetPxWifiData(p[0]), first(12), Wifi::new));

  private static final Part DOCUMENT = record(p -> NO_VALUES, first(0), ProvisioningDocument::new,
      PXLOGICAL, NAPDEF, BOOTSTRAP, p -> tqomacp_GetPxClientIdentityData(), VENDORCONFIG,
      APPLICATION, ACCESS, WIFI);

  /** The whole published context. */
  static ProvisioningDocument document() {
    return (ProvisioningDocument) DOCUMENT.read(new int[0]);
  }
}
