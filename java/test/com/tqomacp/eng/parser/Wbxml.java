package com.tqomacp.eng.parser;

import java.io.ByteArrayOutputStream;
import java.nio.charset.StandardCharsets;

/**
 * Builds provisioning documents (WBXML 1.3, public id PROV 1.0, UTF-8, no string table) and push
 * PDUs around them, from named tokens.
 */
final class Wbxml {
  // Characteristic types on code page 0, and those read on page 1.
  static final int PXLOGICAL = 0x51, PXPHYSICAL = 0x52, PORT = 0x53, VALIDITY = 0x54, NAPDEF = 0x55,
      BOOTSTRAP = 0x56, VENDORCONFIG = 0x57, CLIENTIDENTITY = 0x58, PXAUTHINFO = 0x59,
      NAPAUTHINFO = 0x5A, ACCESS = 0x5B;
  static final int APPLICATION = 0x55, APPADDR = 0x56, APPAUTH = 0x57, RESOURCE = 0x59;

  // Parm names (the handlers ignore the page).
  static final int NAME = 0x07, NAP_ADDRESS = 0x08, NAP_ADDRTYPE = 0x09, CALLTYPE = 0x0A, VALIDUNTIL = 0x0B,
      AUTHTYPE = 0x0C, AUTHNAME = 0x0D, AUTHSECRET = 0x0E, LINGER = 0x0F, BEARER = 0x10,
      NAPID = 0x11, COUNTRY = 0x12, NETWORK = 0x13, INTERNET = 0x14, PROXY_ID = 0x15,
      PROXY_PROVIDER_ID = 0x16, DOMAIN = 0x17, PROVURL = 0x18, PXAUTH_TYPE = 0x19, PXAUTH_ID = 0x1A,
      PXAUTH_PW = 0x1B, STARTPAGE = 0x1C, PUSHENABLED = 0x1F, PXADDR = 0x20, PXADDRTYPE = 0x21,
      TO_NAPID = 0x22, PORTNBR = 0x23, SERVICE = 0x24, LINKSPEED = 0x25, DNLINKSPEED = 0x26,
      LOCAL_ADDR = 0x27, LOCAL_ADDRTYPE = 0x28, CONTEXT_ALLOW = 0x29, TRUST = 0x2A, MASTER = 0x2B,
      SID = 0x2C, SOC = 0x2D, WSP_VERSION = 0x2E, AACCEPT = 0x2E, PHYSICAL_PROXY_ID = 0x2F,
      AAUTHDATA = 0x2F, AAUTHLEVEL = 0x30, CLIENT_ID = 0x30, DELIVERY_ERR_SDU = 0x31,
      AAUTHNAME = 0x31, DELIVERY_ORDER = 0x32, AAUTHSECRET = 0x32, TRAFFIC_CLASS = 0x33,
      AAUTHTYPE = 0x33, MAX_SDU_SIZE = 0x34, ADDR = 0x34, MAX_BITRATE_UPLINK = 0x35,
      ADDRTYPE = 0x35, MAX_BITRATE_DNLINK = 0x36, APPID = 0x36, APROTOCOL = 0x37,
      PROVIDER_ID = 0x38, TO_PROXY = 0x39, URI = 0x3A, RULE = 0x3B, PXADDR_FQDN = 0x3D,
      PROXY_PW = 0x3E, PPGAUTH_TYPE = 0x3F, PULLENABLED = 0x47, DNS_ADDR = 0x48,
      MAX_NUM_RETRY = 0x49, FIRST_RETRY_TIMEOUT = 0x4A, REREG_THRESHOLD = 0x4B, T_BIT = 0x4C,
      AUTH_ENTITY = 0x4E;

  private Wbxml() {}

  /** A whole document: header, wap-provisioningdoc with the given content. */
  static byte[] doc(byte[]... content) {
    return cat(bytes(0x03, 0x0B, 0x6A, 0x00, 0x45), cat(content), bytes(0x01));
  }

  /** A characteristic whose type token is read on code page 0. */
  static byte[] characteristic(int type, byte[]... content) {
    return characteristicOnPage(0, type, content);
  }

  /** A characteristic whose type token is read on code page 1 (APPLICATION, APPADDR, ...). */
  static byte[] page1(int type, byte[]... content) {
    return characteristicOnPage(1, type, content);
  }

  private static byte[] characteristicOnPage(int page, int type, byte[]... content) {
    return cat(bytes(0xC6, 0x00, page, type, 0x01), cat(content), bytes(0x01));
  }

  /** A characteristic typed by an inline name (ROAMING, WI-FI). */
  static byte[] named(String type, byte[]... content) {
    return cat(bytes(0xC6, 0x50), inline(type), bytes(0x01), cat(content), bytes(0x01));
  }

  /** A parm with a text value. */
  static byte[] parm(int name, String value) {
    return cat(bytes(0x87, name, 0x06), inline(value), bytes(0x01));
  }

  /** A parm whose value is an inline string of raw bytes. */
  static byte[] parmRaw(int name, int... value) {
    byte[] text = bytes(value);
    return cat(bytes(0x87, name, 0x06, 0x03), text, bytes(0x00, 0x01));
  }

  /** A parm whose value is one value token. */
  static byte[] parmToken(int name, int token) {
    return bytes(0x87, name, 0x06, token, 0x01);
  }

  /** A parm named by a string (name attribute) with a text value. */
  static byte[] parmNamed(String name, String value) {
    return cat(bytes(0x87, 0x05), inline(name), bytes(0x06), inline(value), bytes(0x01));
  }

  /** A push PDU: TID, Push, header length, content type 0xB6, SEC 0x81 and an optional MAC. */
  static byte[] pdu(byte[] body, String mac) {
    byte[] headers = bytes(0xB6, 0x91, 0x81);
    if (mac != null) {
      headers = cat(headers, bytes(0x92), mac.getBytes(StandardCharsets.US_ASCII), bytes(0x00));
    }
    return cat(bytes(0x01, 0x06, headers.length), headers, body);
  }

  static byte[] pdu(byte[] body) {
    return pdu(body, null);
  }

  static byte[] inline(String text) {
    return cat(bytes(0x03), text.getBytes(StandardCharsets.UTF_8), bytes(0x00));
  }

  static byte[] bytes(int... values) {
    byte[] out = new byte[values.length];
    for (int i = 0; i < values.length; i++) {
      out[i] = (byte) values[i];
    }
    return out;
  }

  static byte[] cat(byte[]... parts) {
    ByteArrayOutputStream out = new ByteArrayOutputStream();
    for (byte[] part : parts) {
      out.write(part, 0, part.length);
    }
    return out.toByteArray();
  }
}
