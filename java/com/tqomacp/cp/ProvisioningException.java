package com.tqomacp.cp;

import org.jetbrains.annotations.NotNull;

/** A push the library refused; {@link #reason()} tells which part. */
public final class ProvisioningException extends Exception {
  private static final long serialVersionUID = 1L;

  /** Which part of the push was refused. */
  public enum Reason {
    /**
     * The push header: not a WSP push, an unknown content type, or shorter than its header length
     * says.
     */
    HEADER,
    /** The header was accepted but the provisioning document in the body was not. */
    DOCUMENT
  }

  /** Which part was refused. */
  private final Reason reason;

  ProvisioningException(Reason reason) {
    super(reason == Reason.HEADER ? "push header refused" : "provisioning document refused");
    this.reason = reason;
  }

  /** {@return which part of the push was refused} */
  public @NotNull Reason reason() {
    return reason;
  }
}
