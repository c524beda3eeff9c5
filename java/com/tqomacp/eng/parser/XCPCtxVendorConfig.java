package com.tqomacp.eng.parser;

/**
 * VENDORCONFIG records.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxVendorConfig {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxVendorConfig() {}

  public static native int tqomacp_GetPxVenderConfigCount();

  public static native String[] tqomacp_GetPxVenderConfigData(int v);
}
