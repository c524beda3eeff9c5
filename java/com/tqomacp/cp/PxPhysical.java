package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** A physical proxy (PXPHYSICAL) of a {@link PxLogical}, with its DOMAIN, TO-NAPID and PORTs. */
public final class PxPhysical extends Record {
  PxPhysical(Object[] parts) {
    super(parts);
  }

  /** {@return PHYSICAL-PROXY-ID} */
  public @Nullable String physicalProxyId() {
    return text(0);
  }

  /** {@return PXADDR, the proxy's address} */
  public @Nullable String address() {
    return text(1);
  }

  /**
   * {@return PXADDRTYPE as the library reports it: "NET_ADDR_IPV6" for IPV6, "NET_ADDR_IPV4" for
   * every other type (E164, ALPHA and the rest included), null without one}
   */
  public @Nullable String addressType() {
    return text(2);
  }

  /** {@return PXADDR-FQDN} */
  public @Nullable String addressFqdn() {
    return text(3);
  }

  /** {@return WSP-VERSION} */
  public @Nullable String wspVersion() {
    return text(4);
  }

  /** {@return PUSHENABLED} */
  public @Nullable String pushEnabled() {
    return text(5);
  }

  /** {@return PULLENABLED} */
  public @Nullable String pullEnabled() {
    return text(6);
  }

  /** {@return the DOMAIN values} */
  public @NotNull List<String> domains() {
    return list(7);
  }

  /** {@return the TO-NAPID values, the NAPIDs of the access points this proxy is reached through} */
  public @NotNull List<String> toNapIds() {
    return list(8);
  }

  /** {@return the PORT children} */
  public @NotNull List<Port> ports() {
    return list(9);
  }
}
