package com.tqomacp.eng.parser;

/**
 * ACCESS records.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxAccess {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxAccess() {}

  public static native int tqomacp_GetPxCtxAccessCount();

  public static native int tqomacp_GetPxRuleCount(int r);

  public static native String tqomacp_GetPxRuleData(int r, int k);

  public static native int tqomacp_GetPxAppIdCount(int r);

  public static native String tqomacp_GetPxAppIdData(int r, int k);

  public static native int tqomacp_GetPxPortNbrCount(int r);

  public static native String tqomacp_GetPxPortNbrData(int r, int k);

  public static native int tqomacp_GetPxAccessDomainCount(int r);

  public static native String tqomacp_GetPxAccessDomainData(int r, int k);

  public static native int tqomacp_GetPxAccessToNapIdCount(int r);

  public static native String tqomacp_GetPxAccessToNapIdData(int r, int k);

  public static native int tqomacp_GetPxAccessToProxyCount(int r);

  public static native String tqomacp_GetPxAccessToProxyData(int r, int k);
}
