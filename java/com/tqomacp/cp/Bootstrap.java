package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** Bootstrap data (BOOTSTRAP) with its PROXY-ID and NETWORK values. */
public final class Bootstrap extends Record {
  Bootstrap(Object[] parts) {
    super(parts);
  }

  /** {@return NAME} */
  public @Nullable String name() {
    return text(0);
  }

  /** {@return COUNTRY} */
  public @Nullable String country() {
    return text(1);
  }

  /** {@return PROVURL, the provisioning URL this document belongs to} */
  public @Nullable String provUrl() {
    return text(2);
  }

  /** {@return CONTEXT-ALLOW} */
  public @Nullable String contextAllow() {
    return text(3);
  }

  /** {@return the PROXY-ID values} */
  public @NotNull List<String> proxyIds() {
    return list(4);
  }

  /** {@return the NETWORK values} */
  public @NotNull List<String> networks() {
    return list(5);
  }
}
