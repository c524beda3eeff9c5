package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** Application authentication (APPAUTH) of an {@link Application}. */
public final class AppAuth extends Record {
  AppAuth(Object[] parts) {
    super(parts);
  }

  /**
   * {@return AAUTHLEVEL as the library names it: "APPSRV" (its code or the exact text), "CLIENT"
   * (the text in any letter case), null for anything else or none}
   */
  public @Nullable String authLevel() {
    return text(0);
  }

  /** {@return AAUTHTYPE; several types read comma-joined, for example "HTTP,BASIC"} */
  public @Nullable String authType() {
    return text(1);
  }

  /** {@return AAUTHNAME} */
  public @Nullable String authName() {
    return text(2);
  }

  /** {@return AAUTHSECRET} */
  public @Nullable String authSecret() {
    return text(3);
  }

  /** {@return AAUTHDATA} */
  public @Nullable String authData() {
    return text(4);
  }
}
