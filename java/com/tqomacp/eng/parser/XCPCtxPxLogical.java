package com.tqomacp.eng.parser;

import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * Logical proxies (PXLOGICAL) with their DOMAIN values and their PXAUTHINFO, PORT and PXPHYSICAL
 * records, and each PXPHYSICAL's DOMAIN, TO-NAPID and PORT.
 *
 * <p>Record numbers are 1-based, outermost first in the order of the method's name; a number that
 * selects nothing gives 0 or null. Call these only after a {@link XCPCtxParser#tqomacp_parser}
 * that returned true with a mode other than 1 and before the next {@link
 * XCPCtxParser#tqomacp_parser_del}, and never while another thread calls any native (see {@link
 * XCPCtxParser}). Array results end with a null element after the last field. Strings are the
 * stored bytes: text as written, and a value token the decoder does not spell out as one character
 * U+0080 to U+00FF holding its code.
 *
 * <p>Natives are bound by the library's JNI_OnLoad, not by name lookup.
 */
public final class XCPCtxPxLogical {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxPxLogical() {}

  /** {@return the number of PXLOGICAL records} */
  public static native int tqomacp_GetPxLogicalCount();

  /**
   * {@return the number of DOMAIN values of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   */
  public static native int tqomacp_GetPxDomainCount(int p);

  /**
   * {@return DOMAIN k of PXLOGICAL p, or null}
   *
   * @param p PXLOGICAL number, which must lie between 1 and the PXLOGICAL count
   * @param k DOMAIN number
   */
  public static native @Nullable String tqomacp_GetPxDomainData(int p, int k);

  /**
   * {@return the number of PXAUTHINFO records of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   */
  public static native int tqomacp_GetPxAuthInfoCount(int p);

  /**
   * {@return PXAUTHINFO k of PXLOGICAL p as {PXAUTH-TYPE as stored, PXAUTH-ID, PXAUTH-PW, null}, or
   * null}
   *
   * @param p PXLOGICAL number
   * @param k PXAUTHINFO number
   */
  public static native @Nullable String[] tqomacp_GetPxAuthInfoData(int p, int k);

  /**
   * {@return the number of PORT records of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   */
  public static native int tqomacp_GetPxPortCount(int p);

  /**
   * {@return PORTNBR of PORT k of PXLOGICAL p, or null}
   *
   * @param p PXLOGICAL number
   * @param k PORT number
   */
  public static native @Nullable String tqomacp_GetPxPortData(int p, int k);

  /**
   * {@return the number of SERVICE values of PORT k of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   * @param k PORT number
   */
  public static native int tqomacp_GetPxPortServiceCount(int p, int k);

  /**
   * {@return a service name chosen by s alone, null when PORT k of PXLOGICAL p has no SERVICE s}
   *
   * <p>The stored value is not read: entry s of the list CL-WSP, CO-WSP, CL-SEC-WSP, CO-SEC-WSP,
   * CL-SEC-WTA, CO-SEC-WTA, OTA-HTTP-TO, OTA-HTTP-TLS-TO, OTA-HTTP-PO, OTA-HTTP-TLS-PO, "Unkown
   * Service", counted from 0, so s = 1 gives "CO-WSP" whatever the first SERVICE holds.
   *
   * @param p PXLOGICAL number
   * @param k PORT number
   * @param s SERVICE number
   */
  public static native @Nullable String tqomacp_GetPxPortServiceData(int p, int k, int s);

  /**
   * {@return the number of PXPHYSICAL records of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   */
  public static native int tqomacp_GetPxPhysicalCount(int p);

  /**
   * {@return PXPHYSICAL k of PXLOGICAL p as {PHYSICAL-PROXY-ID, PXADDR, address type, PXADDR-FQDN,
   * WSP-VERSION, PUSHENABLED, PULLENABLED, null}, or null}
   *
   * <p>The address type reads "NET_ADDR_IPV6" for IPV6, "NET_ADDR_IPV4" for every other type (E164,
   * ALPHA and the rest included) and null without one.
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   */
  public static native @Nullable String[] tqomacp_GetPxPhysicalData(int p, int k);

  /**
   * {@return the number of DOMAIN values of PXPHYSICAL k of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   */
  public static native int tqomacp_GetPxPhysicalDomainCount(int p, int k);

  /**
   * {@return DOMAIN d of PXPHYSICAL k of PXLOGICAL p, or null}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   * @param d DOMAIN number
   */
  public static native @Nullable String tqomacp_GetPxPhsicalDomainData(int p, int k, int d);

  /**
   * {@return the number of TO-NAPID values of PXPHYSICAL k of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   */
  public static native int tqomacp_GetPxPhsicalNapIdCount(int p, int k);

  /**
   * {@return TO-NAPID n of PXPHYSICAL k of PXLOGICAL p, or null}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   * @param n TO-NAPID number
   */
  public static native @Nullable String tqomacp_GetPxPhysicalNapIdData(int p, int k, int n);

  /**
   * {@return the number of PORT records of PXPHYSICAL k of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   */
  public static native int tqomacp_GetPxPhysicalPortCount(int p, int k);

  /**
   * {@return PORTNBR of PORT t of PXPHYSICAL k of PXLOGICAL p, or null}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   * @param t PORT number
   */
  public static native @Nullable String tqomacp_GetPxPhysicalPortData(int p, int k, int t);

  /**
   * {@return the number of SERVICE values of PORT t of PXPHYSICAL k of PXLOGICAL p}
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   * @param t PORT number
   */
  public static native int tqomacp_GetPxPhysicalPortServiceCount(int p, int k, int t);

  /**
   * {@return a service name chosen by s alone, null when PORT t of PXPHYSICAL k of PXLOGICAL p has
   * no SERVICE s}
   *
   * <p>The stored value is not read: entry s of the list CL-WSP, CO-WSP, CL-SEC-WSP, CO-SEC-WSP,
   * CL-SEC-WTA, CO-SEC-WTA, OTA-HTTP-TO, OTA-HTTP-TLS-TO, OTA-HTTP-PO, OTA-HTTP-TLS-PO, "Unkown
   * Service", counted from 0, so s = 1 gives "CO-WSP" whatever the first SERVICE holds.
   *
   * @param p PXLOGICAL number
   * @param k PXPHYSICAL number
   * @param t PORT number
   * @param s SERVICE number
   */
  public static native @Nullable String tqomacp_GetPxPhysicalPortServiceData(int p, int k, int t, int s);

  /**
   * {@return PXLOGICAL p as fourteen elements: {PROXY-ID, PROXY-PW, PPGAUTH-TYPE,
   * PROXY-PROVIDER-ID, NAME, TRUST, MASTER, STARTPAGE}, five reserved elements that read null, then
   * null}
   *
   * <p>Never null: for a p that selects nothing the fourteen elements are empty strings.
   *
   * @param p PXLOGICAL number
   */
  public static native @NotNull String[] tqomacp_GetProxyData(int p);
}
