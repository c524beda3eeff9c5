package com.tqomacp.eng.parser;

/**
 * BOOTSTRAP records.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxBootstrap {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxBootstrap() {}

  public static native int tqomacp_GetPxBootstrapCount();

  public static native int tqomacp_GetPxProxyIdCount(int b);

  public static native String tqomacp_GetPxProxyIdData(int b, int k);

  public static native int tqomacp_GetPxNetworkCount(int b);

  public static native String tqomacp_GetPxNetworkData(int b, int k);

  public static native String[] tqomacp_GetBootstrapData(int b);
}
