package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** Vendor settings (VENDORCONFIG): a name and one vendor parm. */
public final class VendorConfig extends Record {
  VendorConfig(Object[] parts) {
    super(parts);
  }

  /** {@return NAME} */
  public @Nullable String name() {
    return text(0);
  }

  /** {@return the vendor parm's name} */
  public @Nullable String parmName() {
    return text(1);
  }

  /** {@return the vendor parm's value} */
  public @Nullable String parmValue() {
    return text(2);
  }
}
