package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** A resource of an {@link Application} (RESOURCE): a bookmark, a mailbox folder and so on. */
public final class Resource extends Record {
  Resource(Object[] parts) {
    super(parts);
  }

  /** {@return URI} */
  public @Nullable String uri() {
    return text(0);
  }

  /** {@return NAME} */
  public @Nullable String name() {
    return text(1);
  }

  /** {@return AACCEPT} */
  public @Nullable String aAccept() {
    return text(2);
  }

  /** {@return AAUTHTYPE} */
  public @Nullable String authType() {
    return text(3);
  }

  /** {@return AAUTHNAME} */
  public @Nullable String authName() {
    return text(4);
  }

  /** {@return AAUTHSECRET} */
  public @Nullable String authSecret() {
    return text(5);
  }

  /** {@return AAUTHDATA} */
  public @Nullable String authData() {
    return text(6);
  }

  /** {@return STARTPAGE} */
  public @Nullable String startPage() {
    return text(7);
  }
}
