package com.tqomacp.eng.parser;

/**
 * PXLOGICAL records and their PXPHYSICAL children.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxPxLogical {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxPxLogical() {}

  public static native int tqomacp_GetPxLogicalCount();

  public static native int tqomacp_GetPxDomainCount(int p);

  public static native String tqomacp_GetPxDomainData(int p, int k);

  public static native int tqomacp_GetPxAuthInfoCount(int p);

  public static native String[] tqomacp_GetPxAuthInfoData(int p, int k);

  public static native int tqomacp_GetPxPortCount(int p);

  public static native String tqomacp_GetPxPortData(int p, int k);

  public static native int tqomacp_GetPxPortServiceCount(int p, int k);

  public static native String tqomacp_GetPxPortServiceData(int p, int k, int s);

  public static native int tqomacp_GetPxPhysicalCount(int p);

  public static native String[] tqomacp_GetPxPhysicalData(int p, int k);

  public static native int tqomacp_GetPxPhysicalDomainCount(int p, int k);

  public static native String tqomacp_GetPxPhsicalDomainData(int p, int k, int d);

  public static native int tqomacp_GetPxPhsicalNapIdCount(int p, int k);

  public static native String tqomacp_GetPxPhysicalNapIdData(int p, int k, int n);

  public static native int tqomacp_GetPxPhysicalPortCount(int p, int k);

  public static native String tqomacp_GetPxPhysicalPortData(int p, int k, int t);

  public static native int tqomacp_GetPxPhysicalPortServiceCount(int p, int k, int t);

  public static native String tqomacp_GetPxPhysicalPortServiceData(int p, int k, int t, int s);

  public static native String[] tqomacp_GetProxyData(int p);
}
