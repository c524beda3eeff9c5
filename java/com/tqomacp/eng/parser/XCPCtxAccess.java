package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * Access rules (ACCESS), each with six lists of values.
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
public final class XCPCtxAccess {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxAccess() {}

  /** {@return the number of ACCESS records} */
  public static native int tqomacp_GetPxCtxAccessCount();

  /**
   * {@return the number of RULE values of ACCESS r}
   *
   * @param r ACCESS number
   */
  public static native int tqomacp_GetPxRuleCount(int r);

  /**
   * {@return RULE k of ACCESS r, or null}
   *
   * @param r ACCESS number
   * @param k RULE number
   */
  public static native @Nullable String tqomacp_GetPxRuleData(int r, int k);

  /**
   * {@return the number of APPID values of ACCESS r}
   *
   * @param r ACCESS number
   */
  public static native int tqomacp_GetPxAppIdCount(int r);

  /**
   * {@return APPID k of ACCESS r, or null}
   *
   * @param r ACCESS number
   * @param k APPID number, which must lie between 1 and the APPID count
   */
  public static native @Nullable String tqomacp_GetPxAppIdData(int r, int k);

  /**
   * {@return the number of PORTNBR values of ACCESS r}
   *
   * @param r ACCESS number
   */
  public static native int tqomacp_GetPxPortNbrCount(int r);

  /**
   * {@return PORTNBR k of ACCESS r, or null}
   *
   * @param r ACCESS number
   * @param k PORTNBR number
   */
  public static native @Nullable String tqomacp_GetPxPortNbrData(int r, int k);

  /**
   * {@return the number of DOMAIN values of ACCESS r}
   *
   * @param r ACCESS number
   */
  public static native int tqomacp_GetPxAccessDomainCount(int r);

  /**
   * {@return DOMAIN k of ACCESS r, or null}
   *
   * @param r ACCESS number
   * @param k DOMAIN number
   */
  public static native @Nullable String tqomacp_GetPxAccessDomainData(int r, int k);

  /**
   * {@return the number of TO-NAPID values of ACCESS r}
   *
   * @param r ACCESS number
   */
  public static native int tqomacp_GetPxAccessToNapIdCount(int r);

  /**
   * {@return TO-NAPID k of ACCESS r, or null}
   *
   * @param r ACCESS number
   * @param k TO-NAPID number
   */
  public static native @Nullable String tqomacp_GetPxAccessToNapIdData(int r, int k);

  /**
   * {@return the number of TO-PROXY values of ACCESS r}
   *
   * @param r ACCESS number
   */
  public static native int tqomacp_GetPxAccessToProxyCount(int r);

  /**
   * {@return TO-PROXY k of ACCESS r, or null}
   *
   * @param r ACCESS number
   * @param k TO-PROXY number
   */
  public static native @Nullable String tqomacp_GetPxAccessToProxyData(int r, int k);
}
