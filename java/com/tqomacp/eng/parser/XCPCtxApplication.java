package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * Application accounts (APPLICATION) with their TO-PROXY, TO-NAPID and ADDR values and their
 * APPADDR (with PORT and SERVICE), APPAUTH, RESOURCE and ROAMING records.
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
public final class XCPCtxApplication {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxApplication() {}

  /** {@return the number of APPLICATION records} */
  public static native int tqomacp_GetPxApplicationCount();

  /**
   * {@return the number of TO-PROXY values of APPLICATION a}
   *
   * @param a APPLICATION number
   */
  public static native int tqomacp_GetPxToProxyCount(int a);

  /**
   * {@return TO-PROXY k of APPLICATION a, or null}
   *
   * @param a APPLICATION number
   * @param k TO-PROXY number
   */
  public static native @Nullable String tqomacp_GetPxToProxyData(int a, int k);

  /**
   * {@return the number of TO-NAPID values of APPLICATION a}
   *
   * @param a APPLICATION number
   */
  public static native int tqomacp_GetPxNapIdCount(int a);

  /**
   * {@return TO-NAPID k of APPLICATION a, or null}
   *
   * @param a APPLICATION number
   * @param k TO-NAPID number
   */
  public static native @Nullable String tqomacp_GetPxNapIdData(int a, int k);

  /**
   * {@return the number of ADDR values of APPLICATION a}
   *
   * @param a APPLICATION number
   */
  public static native int tqomacp_GetPxToAddrCount(int a);

  /**
   * {@return ADDR k of APPLICATION a, or null}
   *
   * @param a APPLICATION number
   * @param k ADDR number
   */
  public static native @Nullable String tqomacp_GetPxToAddrData(int a, int k);

  /**
   * {@return the number of APPADDR records of APPLICATION a}
   *
   * @param a APPLICATION number
   */
  public static native int tqomacp_GetPxAppAddrCount(int a);

  /**
   * {@return APPADDR k of APPLICATION a as {ADDR, ADDRTYPE as stored, null}, or null}
   *
   * @param a APPLICATION number
   * @param k APPADDR number
   */
  public static native @Nullable String[] tqomacp_GetPxAppAddrData(int a, int k);

  /**
   * {@return the number of PORT records of APPADDR k of APPLICATION a}
   *
   * @param a APPLICATION number
   * @param k APPADDR number
   */
  public static native int tqomacp_GetPxAppPortCount(int a, int k);

  /**
   * {@return PORTNBR of PORT t of APPADDR k of APPLICATION a, or null}
   *
   * @param a APPLICATION number
   * @param k APPADDR number
   * @param t PORT number
   */
  public static native @Nullable String tqomacp_GetPxAppPortData(int a, int k, int t);

  /**
   * {@return the number of SERVICE values of PORT t of APPADDR k of APPLICATION a}
   *
   * @param a APPLICATION number
   * @param k APPADDR number
   * @param t PORT number
   */
  public static native int tqomacp_GetPxServiceCount(int a, int k, int t);

  /**
   * {@return SERVICE s of PORT t of APPADDR k of APPLICATION a as stored, or null}
   *
   * @param a APPLICATION number
   * @param k APPADDR number
   * @param t PORT number
   * @param s SERVICE number
   */
  public static native @Nullable String tqomacp_GetPxServiceData(int a, int k, int t, int s);

  /**
   * {@return the number of APPAUTH records of APPLICATION a}
   *
   * @param a APPLICATION number
   */
  public static native int tqomacp_GetPxAppAuthCount(int a);

  /**
   * {@return APPAUTH k of APPLICATION a as {AAUTHLEVEL named, AAUTHTYPE, AAUTHNAME, AAUTHSECRET,
   * AAUTHDATA, null}, or null}
   *
   * <p>AAUTHLEVEL reads "APPSRV" for its code or that exact text, "CLIENT" for that text in any
   * letter case, and null for anything else or none.
   *
   * @param a APPLICATION number
   * @param k APPAUTH number
   */
  public static native @Nullable String[] tqomacp_GetPxAppAuthData(int a, int k);

  /**
   * {@return the number of RESOURCE records of APPLICATION a}
   *
   * @param a APPLICATION number
   */
  public static native int tqomacp_GetPxResourceCount(int a);

  /**
   * {@return RESOURCE k of APPLICATION a as {URI, NAME, AACCEPT, AAUTHTYPE, AAUTHNAME, AAUTHSECRET,
   * AAUTHDATA, STARTPAGE, null}, or null}
   *
   * @param a APPLICATION number
   * @param k RESOURCE number
   */
  public static native @Nullable String[] tqomacp_GetPxResourceData(int a, int k);

  /**
   * {@return APPLICATION a as {APPID, PROVIDER-ID, FROM, NAME, AACCEPT, APROTOCOL, INTERNET, XCAP
   * AUID for DCS, for PMS, for CDMS, XCAP IMEI header, XCAP TID header, null}, or null}
   *
   * @param a APPLICATION number
   */
  public static native @Nullable String[] tqomacp_GetApplicationData(int a);

  /**
   * {@return the first ROAMING of the first APPLICATION as {SYNC-ALLOWED, SYNC-DEFAULT, null}, or
   * null}
   *
   * <p>No other ROAMING record can be read.
   */
  public static native @Nullable String[] tqomacp_GetPxRoamingData();
}
