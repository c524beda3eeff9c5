package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** A logical proxy (PXLOGICAL) with its DOMAIN values, PXAUTHINFO, PORT and PXPHYSICAL children. */
public final class PxLogical extends Record {
  PxLogical(Object[] parts) {
    super(parts);
  }

  /** {@return PROXY-ID, the name other characteristics refer to the proxy by} */
  public @Nullable String proxyId() {
    return text(0);
  }

  /** {@return PROXY-PW} */
  public @Nullable String proxyPw() {
    return text(1);
  }

  /** {@return PPGAUTH-TYPE} */
  public @Nullable String ppgAuthType() {
    return text(2);
  }

  /** {@return PROXY-PROVIDER-ID} */
  public @Nullable String proxyProviderId() {
    return text(3);
  }

  /** {@return NAME} */
  public @Nullable String name() {
    return text(4);
  }

  /** {@return TRUST} */
  public @Nullable String trust() {
    return text(5);
  }

  /** {@return MASTER} */
  public @Nullable String master() {
    return text(6);
  }

  /** {@return STARTPAGE} */
  public @Nullable String startPage() {
    return text(7);
  }

  /** {@return the DOMAIN values, in document order} */
  public @NotNull List<String> domains() {
    return list(8);
  }

  /** {@return the PXAUTHINFO children} */
  public @NotNull List<PxAuthInfo> authInfos() {
    return list(9);
  }

  /** {@return the PORT children; see {@link Port#services()} for what their SERVICE lists hold} */
  public @NotNull List<Port> ports() {
    return list(10);
  }

  /** {@return the PXPHYSICAL children} */
  public @NotNull List<PxPhysical> physicals() {
    return list(11);
  }
}
