package com.tqomacp.eng.parser;

/**
 * APPLICATION records and their children.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxApplication {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxApplication() {}

  public static native int tqomacp_GetPxApplicationCount();

  public static native int tqomacp_GetPxToProxyCount(int a);

  public static native String tqomacp_GetPxToProxyData(int a, int k);

  public static native int tqomacp_GetPxNapIdCount(int a);

  public static native String tqomacp_GetPxNapIdData(int a, int k);

  public static native int tqomacp_GetPxToAddrCount(int a);

  public static native String tqomacp_GetPxToAddrData(int a, int k);

  public static native int tqomacp_GetPxAppAddrCount(int a);

  public static native String[] tqomacp_GetPxAppAddrData(int a, int k);

  public static native int tqomacp_GetPxAppPortCount(int a, int k);

  public static native String tqomacp_GetPxAppPortData(int a, int k, int t);

  public static native int tqomacp_GetPxServiceCount(int a, int k, int t);

  public static native String tqomacp_GetPxServiceData(int a, int k, int t, int s);

  public static native int tqomacp_GetPxAppAuthCount(int a);

  public static native String[] tqomacp_GetPxAppAuthData(int a, int k);

  public static native int tqomacp_GetPxResourceCount(int a);

  public static native String[] tqomacp_GetPxResourceData(int a, int k);

  public static native String[] tqomacp_GetApplicationData(int a);

  public static native String[] tqomacp_GetPxRoamingData();
}
