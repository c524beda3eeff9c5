package com.tqomacp.cp;

import java.nio.charset.StandardCharsets;
import java.security.GeneralSecurityException;
import java.security.MessageDigest;
import java.util.Arrays;
import java.util.Objects;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * The WSP push header of a provisioning message: content type, security method, MAC, and the
 * body the MAC is made over. Immutable; the body is copied in and out.
 *
 * <p>A handset checks the MAC with {@link #authenticate(String, String)} before it applies any
 * setting: a push with forged proxies, access points or home pages is the known attack on this
 * protocol.
 */
public final class PushHeader {
  private final int contentType;
  private final int headerLength;
  private final int securityCode;
  private final @Nullable String mac;
  private final byte[] body;

  PushHeader(int contentType, int headerLength, int securityCode, byte[] mac, byte[] body) {
    this.contentType = contentType;
    this.headerLength = headerLength;
    this.securityCode = securityCode;
    this.mac = mac.length == 0 ? null : new String(mac, StandardCharsets.ISO_8859_1);
    this.body = body;
  }

  /**
   * {@return the WSP content type code: 0x36 application/vnd.wap.connectivity-wbxml, 0x35
   * application/vnd.wap.connectivity-xml, 0x44 application/vnd.syncml.notification, 0x4E
   * application/vnd.syncml.ds.notification or 0x42 application/vnd.syncml.dm+wbxml}
   */
  public int contentType() {
    return contentType;
  }

  /** {@return the header length byte: the body starts this many bytes after the PDU's third} */
  public int headerLength() {
    return headerLength;
  }

  /** {@return the security method the push names} */
  public @NotNull Security security() {
    return Security.of(securityCode);
  }

  /** {@return the byte that follows SEC in the header, 0 without SEC} */
  public int securityCode() {
    return securityCode;
  }

  /** {@return the MAC text (40 hexadecimal digits in a well-formed push), null without one} */
  public @Nullable String mac() {
    return mac;
  }

  /** {@return a copy of the body: the WBXML provisioning document the MAC is made over} */
  public @NotNull byte[] body() {
    return body.clone();
  }

  /**
   * Checks the MAC: HMAC-SHA1 over the body with the key the security method names, compared
   * with the MAC text without regard to letter case and in constant time.
   *
   * <p>Keys: USERPIN, the PIN's ASCII characters; NETWPIN, the IMSI in semi-octet form (9 before
   * an odd number of digits, or 1 before and F after an even number, then the two digits of
   * every byte swapped: IMSI 466923103145252 gives 49 66 29 13 30 41 25 25); USERNETWPIN, the
   * NETWPIN key followed by the PIN's characters.
   *
   * @param imsi the SIM's IMSI, digits only; null or empty when not known
   * @param userPin the PIN the user typed, ASCII; null or empty when not asked for
   * @return the outcome; only {@link Authentication#AUTHENTIC} means the settings may be applied
   * @throws IllegalArgumentException if the IMSI holds a non-digit or the PIN a non-ASCII
   *     character
   */
  public @NotNull Authentication authenticate(@Nullable String imsi, @Nullable String userPin) {
    Security method = security();
    if (method == Security.NONE || mac == null) {
      return Authentication.NOT_SIGNED;
    }
    boolean needsImsi = method == Security.NETWPIN || method == Security.USERNETWPIN;
    boolean needsPin = method == Security.USERPIN || method == Security.USERNETWPIN;
    if (!needsImsi && !needsPin) {
      return Authentication.UNSUPPORTED;
    }
    if (needsImsi && isEmpty(imsi) || needsPin && isEmpty(userPin)) {
      return Authentication.CREDENTIAL_MISSING;
    }
    byte[] network = needsImsi ? netwpinKey(Objects.requireNonNull(imsi)) : new byte[0];
    byte[] pin = needsPin ? ascii(Objects.requireNonNull(userPin)) : new byte[0];
    byte[] key = Arrays.copyOf(network, network.length + pin.length);
    System.arraycopy(pin, 0, key, network.length, pin.length);
    return MessageDigest.isEqual(hmacSha1(key, body), hexBytes(mac))
        ? Authentication.AUTHENTIC
        : Authentication.NOT_AUTHENTIC;
  }

  private static boolean isEmpty(@Nullable String s) {
    return s == null || s.isEmpty();
  }

  /** The IMSI in semi-octet form, as the NETWPIN key. */
  static byte[] netwpinKey(String imsi) {
    for (int i = 0; i < imsi.length(); i++) {
      if (imsi.charAt(i) < '0' || imsi.charAt(i) > '9') {
        throw new IllegalArgumentException("IMSI must be digits only");
      }
    }
    boolean odd = imsi.length() % 2 == 1;
    String nibbles = (odd ? "9" : "1") + imsi + (odd ? "" : "F");
    byte[] key = new byte[nibbles.length() / 2];
    for (int i = 0; i < key.length; i++) {
      key[i] = (byte) (Character.digit(nibbles.charAt(2 * i + 1), 16) << 4
          | Character.digit(nibbles.charAt(2 * i), 16));
    }
    return key;
  }

  private static byte[] ascii(String pin) {
    for (int i = 0; i < pin.length(); i++) {
      if (pin.charAt(i) > 0x7F) {
        throw new IllegalArgumentException("PIN must be ASCII");
      }
    }
    return pin.getBytes(StandardCharsets.US_ASCII);
  }

  /** HMAC-SHA1 (RFC 2104) on the digest alone, so no key object or JCE provider is involved. */
  private static byte[] hmacSha1(byte[] key, byte[] data) {
    MessageDigest sha1;
    try {
      sha1 = MessageDigest.getInstance("SHA-1");
    } catch (GeneralSecurityException e) {
      throw new IllegalStateException("SHA-1 unavailable", e);
    }
    byte[] block = Arrays.copyOf(key.length > 64 ? sha1.digest(key) : key, 64);
    byte[] inner = new byte[64];
    byte[] outer = new byte[64];
    for (int i = 0; i < 64; i++) {
      inner[i] = (byte) (block[i] ^ 0x36);
      outer[i] = (byte) (block[i] ^ 0x5C);
    }
    sha1.update(inner);
    byte[] innerHash = sha1.digest(data);
    sha1.update(outer);
    return sha1.digest(innerHash);
  }

  /** The 20 bytes that 40 hexadecimal digits of either case spell; empty for anything else. */
  private static byte[] hexBytes(String hex) {
    byte[] out = new byte[20];
    if (hex.length() != 2 * out.length) {
      return new byte[0];
    }
    for (int i = 0; i < out.length; i++) {
      int hi = Character.digit(hex.charAt(2 * i), 16);
      int lo = Character.digit(hex.charAt(2 * i + 1), 16);
      if (hi < 0 || lo < 0) {
        return new byte[0];
      }
      out[i] = (byte) (hi << 4 | lo);
    }
    return out;
  }

  /** Whether {@code other} is a header with the same fields and body. */
  @Override
  public boolean equals(@Nullable Object other) {
    if (!(other instanceof PushHeader)) {
      return false;
    }
    PushHeader h = (PushHeader) other;
    return contentType == h.contentType
        && headerLength == h.headerLength
        && securityCode == h.securityCode
        && Objects.equals(mac, h.mac)
        && Arrays.equals(body, h.body);
  }

  /** A hash of the fields and body. */
  @Override
  public int hashCode() {
    return Objects.hash(contentType, headerLength, securityCode, mac) * 31 + Arrays.hashCode(body);
  }

  /** The fields, and the body's length. */
  @Override
  public @NotNull String toString() {
    return String.format("PushHeader[type=0x%X, header=%d, sec=0x%X, mac=%s, body=%d bytes]",
        contentType, headerLength, securityCode, mac, body.length);
  }
}
