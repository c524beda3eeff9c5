package com.tqomacp.eng.parser;

import org.jetbrains.annotations.Nullable;

/**
 * Parse entry, release and the push header queries: where every use of the library starts.
 *
 * <p>Lifecycle: {@link #tqomacp_parser} keeps one parse, its push header and its document, in
 * process-wide state that the natives of all nine classes read, and {@link #tqomacp_parser_del}
 * releases it. Call {@code tqomacp_parser_del} after reading each parse and before the next one: a
 * parse without it leaks the one before.
 *
 * <p>Threading: that state is unprotected, and two calls at once into any of the nine classes can
 * crash the process. Hold this class's lock ({@code synchronized (XCPCtxParser.class)}) around
 * each parse, its read-back and its release. {@link com.tqomacp.cp.ProvisioningMessage} does so
 * and is the API to use.
 *
 * <p>Natives are bound by the library's JNI_OnLoad, not by name lookup.
 */
public final class XCPCtxParser {
  static {
    TqomacpLibrary.load();
  }

  /** Mode that stops after the push header: only the header queries are meaningful. */
  public static final int MODE_HEADER_ONLY = 1;
  /** Any mode other than 1 also decodes the body and builds the context. */
  public static final int MODE_FULL = 0;

  private XCPCtxParser() {}

  /**
   * Parses a push PDU and keeps the result for the other natives.
   *
   * @param pdu the WSP push PDU as received, transaction id first
   * @param len how many bytes of {@code pdu} to parse
   * @param mode {@link #MODE_HEADER_ONLY} to stop after the push header; any other value also
   *     decodes the document
   * @return whether the push header (with mode 1) or the whole push was accepted; after a refused
   *     document call {@link #tqomacp_parser_del} before anything else
   */
  public static native boolean tqomacp_parser(byte[] pdu, long len, int mode);

  /** Releases the kept document and push header; harmless when there is none. */
  public static native void tqomacp_parser_del();

  /**
   * {@return the push header's content type code (0x36 for application/vnd.wap.connectivity-wbxml,
   * 0x35, 0x44, 0x4E or 0x42), -1 without a parsed header}
   */
  public static native int tqomacp_GetParserContentType();

  /** {@return the push header's length byte, -1 without a parsed header} */
  public static native int tqomacp_GetParserHeaderLen();

  /** {@return the body's length, -1 without a parsed header} */
  public static native int tqomacp_GetParserBodyLen();

  /** {@return the MAC text's length, 0 without MAC, -1 without a parsed header} */
  public static native int tqomacp_GetParserMACLen();

  /**
   * {@return the byte after SEC (0x80 NETWPIN, 0x81 USERPIN, 0x82 USERNETWPIN, 0x83 USERPINMAC), 0
   * without SEC, -1 without a parsed header}
   */
  public static native int tqomacp_GetParserSEC();

  /**
   * {@return the MAC text's bytes without the closing zero (empty without MAC), null without a
   * parsed header}
   */
  public static native @Nullable byte[] tqomacp_GetParserMAC();

  /** {@return a copy of the body, the WBXML document, null without a parsed header} */
  public static native @Nullable byte[] tqomacp_GetParserBody();
}
