package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * Wi-Fi networks (WI-FI).
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
public final class XCPCtxWifi {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxWifi() {}

  /** {@return the number of WI-FI records} */
  public static native int tqomacp_GetPxWifiCount();

  /**
   * {@return WI-FI record w as {NETSSID, SECMODE, EAPMETHOD, EAPTYPE, USERNAME, ANONUSERNAME,
   * PASSWORD, CACERT, USERCERT, PHASE1, AUTHALGORITHM, PRIORITY, null}, or null}
   *
   * @param w WI-FI number
   */
  public static native @Nullable String[] tqomacp_GetPxWifiData(int w);
}
