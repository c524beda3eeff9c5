package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** Where a {@link NapDef} may be used (VALIDITY). */
public final class Validity extends Record {
  Validity(Object[] parts) {
    super(parts);
  }

  /** {@return COUNTRY, the mobile country code} */
  public @Nullable String country() {
    return text(0);
  }

  /** {@return NETWORK, the mobile network code} */
  public @Nullable String network() {
    return text(1);
  }

  /** {@return SID} */
  public @Nullable String sid() {
    return text(2);
  }

  /** {@return SOC} */
  public @Nullable String soc() {
    return text(3);
  }

  /** {@return VALIDUNTIL} */
  public @Nullable String validUntil() {
    return text(4);
  }
}
