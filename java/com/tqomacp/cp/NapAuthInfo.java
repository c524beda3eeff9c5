package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** Access point authentication (NAPAUTHINFO) of a {@link NapDef}, with its AUTH-ENTITY values. */
public final class NapAuthInfo extends Record {
  NapAuthInfo(Object[] parts) {
    super(parts);
  }

  /**
   * {@return AUTHTYPE as the library names it: "PAP", "CHAP", "HTTP-BASIC", "HTTP-DIGEST",
   * "WTLS-SS" or "MD5", "NONE" for anything else (a joined "PAP,CHAP" included), null without one}
   */
  public @Nullable String authType() {
    return text(0);
  }

  /** {@return AUTHNAME, the user name} */
  public @Nullable String authName() {
    return text(1);
  }

  /** {@return AUTHSECRET, the password} */
  public @Nullable String authSecret() {
    return text(2);
  }

  /** {@return the AUTH-ENTITY values} */
  public @NotNull List<String> authEntities() {
    return list(3);
  }
}
