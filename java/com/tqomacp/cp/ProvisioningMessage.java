package com.tqomacp.cp;

import com.tqomacp.eng.parser.XCPCtxParser;
import java.util.Objects;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * One parsed provisioning push: its {@link PushHeader} and its {@link ProvisioningDocument}.
 *
 * <p>Immutable and independent of the library: everything is read back and the library's state
 * released before {@link #parse(byte[])} returns. Safe to call from any thread; calls are
 * serialised on the class lock of {@link XCPCtxParser}, which code that calls the natives
 * directly must hold as well.
 */
public final class ProvisioningMessage {
  private final PushHeader header;
  private final ProvisioningDocument document;

  private ProvisioningMessage(PushHeader header, ProvisioningDocument document) {
    this.header = header;
    this.document = document;
  }

  /**
   * Parses a whole push: header and document.
   *
   * @param pdu the WSP push PDU as received, transaction id first
   * @return the header and the document
   * @throws ProvisioningException if the header or the document is refused
   */
  public static @NotNull ProvisioningMessage parse(@NotNull byte[] pdu)
      throws ProvisioningException {
    Objects.requireNonNull(pdu, "pdu");
    synchronized (XCPCtxParser.class) {
      try {
        if (!XCPCtxParser.tqomacp_parser(pdu, pdu.length, XCPCtxParser.MODE_FULL)) {
          // Tell the two refusals apart by the header alone.
          XCPCtxParser.tqomacp_parser_del();
          boolean header = XCPCtxParser.tqomacp_parser(pdu, pdu.length, XCPCtxParser.MODE_HEADER_ONLY);
          throw new ProvisioningException(
              header ? ProvisioningException.Reason.DOCUMENT : ProvisioningException.Reason.HEADER);
        }
        return new ProvisioningMessage(readHeader(), ContextReader.document());
      } finally {
        XCPCtxParser.tqomacp_parser_del();
      }
    }
  }

  /**
   * Parses the push header only, without decoding the document: what an application reads
   * before it asks the user for a PIN.
   *
   * @param pdu the WSP push PDU as received, transaction id first
   * @return the header
   * @throws ProvisioningException with reason {@link ProvisioningException.Reason#HEADER} if the
   *     header is refused
   */
  public static @NotNull PushHeader parseHeader(@NotNull byte[] pdu) throws ProvisioningException {
    Objects.requireNonNull(pdu, "pdu");
    synchronized (XCPCtxParser.class) {
      try {
        if (!XCPCtxParser.tqomacp_parser(pdu, pdu.length, XCPCtxParser.MODE_HEADER_ONLY)) {
          throw new ProvisioningException(ProvisioningException.Reason.HEADER);
        }
        return readHeader();
      } finally {
        XCPCtxParser.tqomacp_parser_del();
      }
    }
  }

  private static PushHeader readHeader() {
    return new PushHeader(XCPCtxParser.tqomacp_GetParserContentType(),
        XCPCtxParser.tqomacp_GetParserHeaderLen(), XCPCtxParser.tqomacp_GetParserSEC(),
        Objects.requireNonNull(XCPCtxParser.tqomacp_GetParserMAC()),
        Objects.requireNonNull(XCPCtxParser.tqomacp_GetParserBody()));
  }

  /** {@return the push header} */
  public @NotNull PushHeader header() {
    return header;
  }

  /** {@return the provisioning document} */
  public @NotNull ProvisioningDocument document() {
    return document;
  }

  /** Whether {@code other} is a message with an equal header and document. */
  @Override
  public boolean equals(@Nullable Object other) {
    return other instanceof ProvisioningMessage
        && header.equals(((ProvisioningMessage) other).header)
        && document.equals(((ProvisioningMessage) other).document);
  }

  /** A hash of the header and the document. */
  @Override
  public int hashCode() {
    return header.hashCode() * 31 + document.hashCode();
  }

  /** The header and the document. */
  @Override
  public @NotNull String toString() {
    return header + " " + document;
  }
}
