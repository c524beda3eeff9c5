package com.tqomacp.eng.parser;

/**
 * The CLIENTIDENTITY record.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxClientIdentity {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxClientIdentity() {}

  public static native String tqomacp_GetPxClientIdentityData();
}
