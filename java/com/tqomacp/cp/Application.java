package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * An application account (APPLICATION): browser, MMS, e-mail, device management and so on, told
 * apart by {@link #appId()}, with its TO-PROXY, TO-NAPID and ADDR values and its APPADDR,
 * APPAUTH, RESOURCE and ROAMING children.
 */
public final class Application extends Record {
  Application(Object[] parts) {
    super(parts);
  }

  /** {@return APPID, for example "w2" (browser), "w4" (MMS), "w7" (device management)} */
  public @Nullable String appId() {
    return text(0);
  }

  /** {@return PROVIDER-ID} */
  public @Nullable String providerId() {
    return text(1);
  }

  /** {@return FROM} */
  public @Nullable String from() {
    return text(2);
  }

  /** {@return NAME} */
  public @Nullable String name() {
    return text(3);
  }

  /** {@return AACCEPT} */
  public @Nullable String aAccept() {
    return text(4);
  }

  /** {@return APROTOCOL} */
  public @Nullable String aProtocol() {
    return text(5);
  }

  /** {@return INTERNET} */
  public @Nullable String internet() {
    return text(6);
  }

  /** {@return the XCAP AUID for DCS} */
  public @Nullable String xcapAuidDcs() {
    return text(7);
  }

  /** {@return the XCAP AUID for PMS} */
  public @Nullable String xcapAuidPms() {
    return text(8);
  }

  /** {@return the XCAP AUID for CDMS} */
  public @Nullable String xcapAuidCdms() {
    return text(9);
  }

  /** {@return the XCAP IMEI header} */
  public @Nullable String xcapImeiHeader() {
    return text(10);
  }

  /** {@return the XCAP TID header} */
  public @Nullable String xcapTidHeader() {
    return text(11);
  }

  /** {@return the TO-PROXY values: PROXY-IDs of the proxies the application uses} */
  public @NotNull List<String> toProxies() {
    return list(12);
  }

  /** {@return the TO-NAPID values: NAPIDs of the access points the application uses} */
  public @NotNull List<String> toNapIds() {
    return list(13);
  }

  /** {@return the ADDR values, for example the MMS centre's URL} */
  public @NotNull List<String> addresses() {
    return list(14);
  }

  /** {@return the APPADDR children} */
  public @NotNull List<AppAddr> appAddresses() {
    return list(15);
  }

  /** {@return the APPAUTH children} */
  public @NotNull List<AppAuth> appAuths() {
    return list(16);
  }

  /** {@return the RESOURCE children} */
  public @NotNull List<Resource> resources() {
    return list(17);
  }

  /**
   * {@return the first ROAMING child of the document's first APPLICATION}
   *
   * <p>The library returns no other ROAMING: this is null on every later application.
   */
  public @Nullable Roaming roaming() {
    return (Roaming) part(18);
  }
}
