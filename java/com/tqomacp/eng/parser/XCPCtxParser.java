package com.tqomacp.eng.parser;

/**
 * Parse entry, release and the push header queries.
 *
 * <p>{@link #tqomacp_parser} keeps its result in process-wide state that the other eight classes
 * read; call {@link #tqomacp_parser_del} after reading each parse and before the next one. The
 * library is single-threaded: serialise every call into it. Natives are bound by the library's
 * JNI_OnLoad, not by name lookup.
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

  public static native boolean tqomacp_parser(byte[] pdu, long len, int mode);

  public static native void tqomacp_parser_del();

  public static native int tqomacp_GetParserContentType();

  public static native int tqomacp_GetParserHeaderLen();

  public static native int tqomacp_GetParserBodyLen();

  public static native int tqomacp_GetParserMACLen();

  public static native int tqomacp_GetParserSEC();

  public static native byte[] tqomacp_GetParserMAC();

  public static native byte[] tqomacp_GetParserBody();
}
