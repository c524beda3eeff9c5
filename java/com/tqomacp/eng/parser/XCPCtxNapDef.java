package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * Network access points (NAPDEF) with their DNS-ADDR and BEARER values and their NAPAUTHINFO
 * (with AUTH-ENTITY) and VALIDITY records.
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
public final class XCPCtxNapDef {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxNapDef() {}

  /** {@return the number of NAPDEF records} */
  public static native int tqomacp_GetPxNapDefCount();

  /**
   * {@return the number of DNS-ADDR values of NAPDEF n}
   *
   * @param n NAPDEF number
   */
  public static native int tqomacp_GetPxDnsAddrCount(int n);

  /**
   * {@return DNS-ADDR k of NAPDEF n, or null}
   *
   * @param n NAPDEF number
   * @param k DNS-ADDR number
   */
  public static native @Nullable String tqomacp_GetPxDnsAddrData(int n, int k);

  /**
   * Makes NAPDEF n the first NAPDEF for every native of this class until the next parse or release.
   *
   * <p>The NAPDEF records before it become unreachable and are never released: a leak for every
   * parse that moves the start.
   *
   * @param n the NAPDEF to start from; 1 changes nothing; 0, a negative number or one beyond the
   *     count empties the list
   */
  public static native void tqomacp_SetPxNapDefIndex(int n);

  /**
   * {@return the number of BEARER values of NAPDEF n; an n of 0 or less counts the first NAPDEF's}
   *
   * @param n NAPDEF number
   */
  public static native int tqomacp_GetPxBearerCount(int n);

  /**
   * {@return the bearer name of BEARER k of NAPDEF n, or null}
   *
   * <p>A bearer given as a code gives its name ("GSM-GPRS"; "Unkown Bearer", so spelled, for a code
   * the library does not know). A bearer given as text gives the NAPDEF's NAP-ADDRESS instead.
   *
   * @param n NAPDEF number
   * @param k BEARER number
   */
  public static native @Nullable String tqomacp_GetPxBearerData(int n, int k);

  /**
   * {@return the number of NAPAUTHINFO records of NAPDEF n}
   *
   * @param n NAPDEF number
   */
  public static native int tqomacp_GetPxNapAuthInfoCount(int n);

  /**
   * {@return NAPAUTHINFO k of NAPDEF n as {AUTHTYPE named, AUTHNAME, AUTHSECRET, reserved (null),
   * null}, or null}
   *
   * <p>AUTHTYPE is named "PAP", "CHAP", "HTTP-BASIC", "HTTP-DIGEST", "WTLS-SS" or "MD5" for that
   * exact text or its code, "NONE" for anything else, null without one.
   *
   * @param n NAPDEF number
   * @param k NAPAUTHINFO number
   */
  public static native @Nullable String[] tqomacp_GetPxNapAuthInfoData(int n, int k);

  /**
   * {@return the number of AUTH-ENTITY values of NAPAUTHINFO k of NAPDEF n}
   *
   * @param n NAPDEF number
   * @param k NAPAUTHINFO number
   */
  public static native int tqomacp_GetPxNapAuthEntityCount(int n, int k);

  /**
   * {@return AUTH-ENTITY e of NAPAUTHINFO k of NAPDEF n, or null}
   *
   * @param n NAPDEF number
   * @param k NAPAUTHINFO number
   * @param e AUTH-ENTITY number
   */
  public static native @Nullable String tqomacp_GetPxAuthInfopAuthEntityData(int n, int k, int e);

  /**
   * {@return the number of VALIDITY records of NAPDEF n}
   *
   * @param n NAPDEF number
   */
  public static native int tqomacp_GetPxNapValidityCount(int n);

  /**
   * {@return VALIDITY n (not k) of NAPDEF n as {COUNTRY, NETWORK, SID, SOC, VALIDUNTIL, null}, or
   * null}
   *
   * @param n NAPDEF number, and the VALIDITY number as well
   * @param k ignored
   */
  public static native @Nullable String[] tqomacp_GetPxValidityData(int n, int k);

  /**
   * {@return NAPDEF n as 29 elements, or null}
   *
   * <p>The elements: NAPID, NAME, INTERNET, NAP-ADDRESS, NAP-ADDRTYPE, CALLTYPE, LOCAL-ADDR,
   * LOCAL-ADDRTYPE, LINKSPEED, DNLINKSPEED, LINGER, DELIVERY-ERR-SDU, DELIVERY-ORDER,
   * TRAFFIC-CLASS, MAX-SDU-SIZE, MAX-BITRATE-UPLINK, MAX-BITRATE-DNLINK, six reserved elements that
   * read null, MAX-NUM-RETRY, FIRST-RETRY-TIMEOUT, REREG-THRESHOLD, T-BIT, INIT ("empty" for the
   * parm without a value), null.
   *
   * <p>NAP-ADDRTYPE, element 4, reads "0x85" to "0x8c" for a type stored as its code and null
   * without one. For a type stored as text, which is how the decoder stores every address-type
   * token, nothing is written for it: CALLTYPE lands in element 4, every later element one place
   * lower, the closing null in 27, and element 28 is an empty string.
   *
   * @param n NAPDEF number
   */
  public static native @Nullable String[] tqomacp_GetPxNapDefData(int n);
}
