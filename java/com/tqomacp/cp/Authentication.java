package com.tqomacp.cp;

/** The outcome of {@link PushHeader#authenticate(String, String)}. */
public enum Authentication {
  /** The MAC matches: the push comes from whoever holds the key. */
  AUTHENTIC,
  /** The MAC does not match: a forged or damaged push, or the wrong PIN or IMSI. */
  NOT_AUTHENTIC,
  /** The push has no security method or no MAC. */
  NOT_SIGNED,
  /** The method needs an IMSI or a PIN that was not given. */
  CREDENTIAL_MISSING,
  /** USERPINMAC, or a security method of unknown form. */
  UNSUPPORTED
}
