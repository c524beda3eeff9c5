package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** An address of an {@link Application} (APPADDR) with its PORTs. */
public final class AppAddr extends Record {
  AppAddr(Object[] parts) {
    super(parts);
  }

  /** {@return ADDR} */
  public @Nullable String address() {
    return text(0);
  }

  /** {@return ADDRTYPE as stored} */
  public @Nullable String addressType() {
    return text(1);
  }

  /** {@return the PORT children, whose SERVICE lists hold the stored values} */
  public @NotNull List<Port> ports() {
    return list(2);
  }
}
