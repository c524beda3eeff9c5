package com.tqomacp.eng.parser;

/**
 * WI-FI records.
 *
 * <p>Record numbers are 1-based. Natives are bound by the library's JNI_OnLoad,
 * not by name lookup.
 */
public final class XCPCtxWifi {
  static {
    TqomacpLibrary.load();
  }

  private XCPCtxWifi() {}

  public static native int tqomacp_GetPxWifiCount();

  public static native String[] tqomacp_GetPxWifiData(int w);
}
