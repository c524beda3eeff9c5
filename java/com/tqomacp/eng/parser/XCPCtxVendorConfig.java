package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * VENDORCONFIG records.
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
public final class XCPCtxVendorConfig {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxVendorConfig() {}

  /** {@return the number of VENDORCONFIG records} */
  public static native int tqomacp_GetPxVenderConfigCount();

  /**
   * {@return VENDORCONFIG v as {NAME, vendor parm name, vendor parm value, null}, or null}
   *
   * @param v VENDORCONFIG number
   */
  public static native @Nullable String[] tqomacp_GetPxVenderConfigData(int v);
}
