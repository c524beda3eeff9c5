package com.tqomacp.cp;

import org.jetbrains.annotations.Nullable;

/** A Wi-Fi network (WI-FI). */
public final class Wifi extends Record {
  Wifi(Object[] parts) {
    super(parts);
  }

  /** {@return NETSSID} */
  public @Nullable String ssid() {
    return text(0);
  }

  /** {@return SECMODE} */
  public @Nullable String securityMode() {
    return text(1);
  }

  /** {@return EAPMETHOD} */
  public @Nullable String eapMethod() {
    return text(2);
  }

  /** {@return EAPTYPE} */
  public @Nullable String eapType() {
    return text(3);
  }

  /** {@return USERNAME} */
  public @Nullable String userName() {
    return text(4);
  }

  /** {@return ANONUSERNAME} */
  public @Nullable String anonymousUserName() {
    return text(5);
  }

  /** {@return PASSWORD} */
  public @Nullable String password() {
    return text(6);
  }

  /** {@return CACERT} */
  public @Nullable String caCertificate() {
    return text(7);
  }

  /** {@return USERCERT} */
  public @Nullable String userCertificate() {
    return text(8);
  }

  /** {@return PHASE1} */
  public @Nullable String phase1() {
    return text(9);
  }

  /** {@return AUTHALGORITHM} */
  public @Nullable String authAlgorithm() {
    return text(10);
  }

  /** {@return PRIORITY} */
  public @Nullable String priority() {
    return text(11);
  }
}
