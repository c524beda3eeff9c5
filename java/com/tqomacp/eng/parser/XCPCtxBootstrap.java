package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * BOOTSTRAP records with their PROXY-ID and NETWORK values.
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
public final class XCPCtxBootstrap {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxBootstrap() {}

  /** {@return the number of BOOTSTRAP records} */
  public static native int tqomacp_GetPxBootstrapCount();

  /**
   * {@return the number of PROXY-ID values of BOOTSTRAP b}
   *
   * @param b BOOTSTRAP number
   */
  public static native int tqomacp_GetPxProxyIdCount(int b);

  /**
   * {@return PROXY-ID k of BOOTSTRAP b, or null}
   *
   * @param b BOOTSTRAP number
   * @param k PROXY-ID number
   */
  public static native @Nullable String tqomacp_GetPxProxyIdData(int b, int k);

  /**
   * {@return the number of NETWORK values of BOOTSTRAP b}
   *
   * @param b BOOTSTRAP number
   */
  public static native int tqomacp_GetPxNetworkCount(int b);

  /**
   * {@return NETWORK k of BOOTSTRAP b, or null}
   *
   * @param b BOOTSTRAP number
   * @param k NETWORK number
   */
  public static native @Nullable String tqomacp_GetPxNetworkData(int b, int k);

  /**
   * {@return BOOTSTRAP b as {NAME, COUNTRY, PROVURL, CONTEXT-ALLOW, null}, or null}
   *
   * @param b BOOTSTRAP number
   */
  public static native @Nullable String[] tqomacp_GetBootstrapData(int b);
}
