package com.tqomacp.eng.parser;

/**
 * NAPDEF records.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxNapDef {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxNapDef() {}

  public static native int tqomacp_GetPxNapDefCount();

  public static native int tqomacp_GetPxDnsAddrCount(int n);

  public static native String tqomacp_GetPxDnsAddrData(int n, int k);

  public static native void tqomacp_SetPxNapDefIndex(int n);

  public static native int tqomacp_GetPxBearerCount(int n);

  public static native String tqomacp_GetPxBearerData(int n, int k);

  public static native int tqomacp_GetPxNapAuthInfoCount(int n);

  public static native String[] tqomacp_GetPxNapAuthInfoData(int n, int k);

  public static native int tqomacp_GetPxNapAuthEntityCount(int n, int k);

  public static native String tqomacp_GetPxAuthInfopAuthEntityData(int n, int k, int e);

  public static native int tqomacp_GetPxNapValidityCount(int n);

  public static native String[] tqomacp_GetPxValidityData(int n, int k);

  public static native String[] tqomacp_GetPxNapDefData(int n);
}
