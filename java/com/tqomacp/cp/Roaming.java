package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** Synchronisation while roaming (ROAMING) of an {@link Application}. */
public final class Roaming extends Record {
  Roaming(Object[] parts) {
    super(parts);
  }

  /** {@return SYNC-ALLOWED} */
  public @Nullable String syncAllowed() {
    return text(0);
  }

  /** {@return SYNC-DEFAULT} */
  public @Nullable String syncDefault() {
    return text(1);
  }
}
