package com.tqomacp.cp;

import org.jetbrains.annotations.NotNull;

/** The security method (SEC) of a push: which key its MAC is made with. */
public enum Security {
  /** The push names no method. */
  NONE,
  /** Key from the SIM's IMSI. */
  NETWPIN,
  /** Key from a PIN the user types. */
  USERPIN,
  /** Key from the IMSI and a PIN the user types. */
  USERNETWPIN,
  /** A PIN the user types, itself carrying a MAC; not checked by this library. */
  USERPINMAC,
  /** A SEC value of no known form. */
  UNKNOWN;

  private static final Security[] METHODS = {NETWPIN, USERPIN, USERNETWPIN, USERPINMAC};

  /**
   * The method for the byte stored after SEC: 0 when there is none; the WSP short integers 0x80
   * to 0x83; or the digits "0" to "3" where the value is written as text. Anything else, such as
   * the length byte of a long integer, is unknown.
   */
  static @NotNull Security of(int code) {
    if (code == 0) {
      return NONE;
    }
    if (code >= 0x80 && code <= 0x83) {
      return METHODS[code - 0x80];
    }
    if (code >= '0' && code <= '3') {
      return METHODS[code - '0'];
    }
    return UNKNOWN;
  }
}
