package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;

/** An access rule (ACCESS): six lists of values. */
public final class Access extends Record {
  Access(Object[] parts) {
    super(parts);
  }

  /** {@return the RULE values} */
  public @NotNull List<String> rules() {
    return list(0);
  }

  /** {@return the APPID values} */
  public @NotNull List<String> appIds() {
    return list(1);
  }

  /** {@return the PORTNBR values} */
  public @NotNull List<String> portNumbers() {
    return list(2);
  }

  /** {@return the DOMAIN values} */
  public @NotNull List<String> domains() {
    return list(3);
  }

  /** {@return the TO-NAPID values} */
  public @NotNull List<String> toNapIds() {
    return list(4);
  }

  /** {@return the TO-PROXY values} */
  public @NotNull List<String> toProxies() {
    return list(5);
  }
}
