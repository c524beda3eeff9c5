package com.tqomacp.cp;

import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * A network access point (NAPDEF) with its DNS-ADDR and BEARER values and its NAPAUTHINFO and
 * VALIDITY children.
 *
 * <p>The library's NAPDEF array moves every element after NAP-ADDRTYPE one place down when the
 * address type is stored as text, which is how the decoder stores every address-type token; the
 * fields here are read from where each one really is.
 */
public final class NapDef extends Record {
  NapDef(Object[] parts) {
    super(parts);
  }

  /** {@return NAPID, the name proxies and applications refer to this access point by} */
  public @Nullable String napId() {
    return text(0);
  }

  /** {@return NAME, the name shown to the user} */
  public @Nullable String name() {
    return text(1);
  }

  /** {@return INTERNET} */
  public @Nullable String internet() {
    return text(2);
  }

  /** {@return NAP-ADDRESS: the APN, telephone number or other address, as NAP-ADDRTYPE says} */
  public @Nullable String napAddress() {
    return text(3);
  }

  /**
   * {@return NAP-ADDRTYPE where the library reports it}
   *
   * <p>A type kept as its one-byte code reads as its name: "IPV4", "IPV6", "E164", "ALPHA",
   * "APN", "SCODE", "TETRA-ITSI" or "MAN". The library does not return a type stored as text
   * (the decoder's form for every address-type token): this then reads null and {@link
   * #napAddressTypeWithheld()} is true. Null without either means the NAPDEF has none.
   */
  public @Nullable String napAddressType() {
    return text(4);
  }

  /** {@return whether the NAPDEF has a NAP-ADDRTYPE stored as text, which the library withholds} */
  public boolean napAddressTypeWithheld() {
    return text(22) != null;
  }

  /** {@return CALLTYPE, for example "ANALOG-MODEM"} */
  public @Nullable String callType() {
    return text(5);
  }

  /** {@return LOCAL-ADDR} */
  public @Nullable String localAddress() {
    return text(6);
  }

  /** {@return LOCAL-ADDRTYPE} */
  public @Nullable String localAddressType() {
    return text(7);
  }

  /** {@return LINKSPEED} */
  public @Nullable String linkSpeed() {
    return text(8);
  }

  /** {@return DNLINKSPEED} */
  public @Nullable String downlinkSpeed() {
    return text(9);
  }

  /** {@return LINGER, the idle time in seconds before the connection is closed} */
  public @Nullable String linger() {
    return text(10);
  }

  /** {@return DELIVERY-ERR-SDU} */
  public @Nullable String deliveryErrSdu() {
    return text(11);
  }

  /** {@return DELIVERY-ORDER} */
  public @Nullable String deliveryOrder() {
    return text(12);
  }

  /** {@return TRAFFIC-CLASS} */
  public @Nullable String trafficClass() {
    return text(13);
  }

  /** {@return MAX-SDU-SIZE} */
  public @Nullable String maxSduSize() {
    return text(14);
  }

  /** {@return MAX-BITRATE-UPLINK} */
  public @Nullable String maxBitrateUplink() {
    return text(15);
  }

  /** {@return MAX-BITRATE-DNLINK} */
  public @Nullable String maxBitrateDownlink() {
    return text(16);
  }

  /** {@return MAX-NUM-RETRY} */
  public @Nullable String maxNumRetry() {
    return text(17);
  }

  /** {@return FIRST-RETRY-TIMEOUT} */
  public @Nullable String firstRetryTimeout() {
    return text(18);
  }

  /** {@return REREG-THRESHOLD} */
  public @Nullable String reregThreshold() {
    return text(19);
  }

  /** {@return T-BIT} */
  public @Nullable String tBit() {
    return text(20);
  }

  /** {@return INIT: "empty" when the document has the parm without a value} */
  public @Nullable String init() {
    return text(21);
  }

  /** {@return the DNS-ADDR values} */
  public @NotNull List<String> dnsAddresses() {
    return list(23);
  }

  /**
   * {@return one entry per BEARER value}
   *
   * <p>A bearer given as a code reads as its name ("GSM-GPRS"; "Unkown Bearer", so spelled, for a
   * code the library does not know). For a bearer given as text the library answers with the
   * NAP-ADDRESS instead, so that entry is null.
   */
  public @NotNull List<@Nullable String> bearers() {
    return list(24);
  }

  /** {@return the NAPAUTHINFO children} */
  public @NotNull List<NapAuthInfo> authInfos() {
    return list(25);
  }

  /**
   * {@return one entry per VALIDITY child}
   *
   * <p>The library returns only the VALIDITY whose position equals the NAPDEF's own position in
   * the document (the second VALIDITY of the second NAPDEF); every other entry is null.
   */
  public @NotNull List<@Nullable Validity> validities() {
    return list(26);
  }
}
