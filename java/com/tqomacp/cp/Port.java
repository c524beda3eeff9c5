package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** A PORT of a {@link PxLogical}, a {@link PxPhysical} or an {@link AppAddr}. */
public final class Port extends Record {
  Port(Object[] parts) {
    super(parts);
  }

  /** {@return PORTNBR} */
  public @Nullable String portNumber() {
    return text(0);
  }

  /**
   * {@return one entry per SERVICE value, in document order}
   *
   * <p>Under an {@link AppAddr} the entries are the stored values. Under a proxy the library
   * answers with service names chosen by the value's position ("CO-WSP" for the first, whatever
   * it holds), not by the value, so there only the number of entries is known and every entry is
   * null.
   */
  public @NotNull List<@Nullable String> services() {
    return list(1);
  }
}
