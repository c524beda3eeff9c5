package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** Proxy authentication (PXAUTHINFO) of a {@link PxLogical}. */
public final class PxAuthInfo extends Record {
  PxAuthInfo(Object[] parts) {
    super(parts);
  }

  /** {@return PXAUTH-TYPE as stored, for example "HTTP-BASIC"} */
  public @Nullable String authType() {
    return text(0);
  }

  /** {@return PXAUTH-ID} */
  public @Nullable String authId() {
    return text(1);
  }

  /** {@return PXAUTH-PW} */
  public @Nullable String authPw() {
    return text(2);
  }
}
