package com.tqomacp.eng.parser;

import java.io.ByteArrayOutputStream;
import java.nio.charset.StandardCharsets;

/**
 * Builds provisioning documents (WBXML 1.3, public id PROV 1.0, UTF-8, no string table) and push
 * PDUs around them, from named tokens.
 */
final class Wbxml {
  // Characteristic types: page 0, and page 1 where noted.
  static final int PXLOGICAL = 0x51;
  static final int PXPHYSICAL = 0x52;
  static final int PORT = 0x53;
  static final int VALIDITY = 0x54;
  static final int NAPDEF = 0x55;
  static final int APPLICATION = 0x55; // page 1
  static final int BOOTSTRAP = 0x56;
  static final int APPADDR = 0x56; // page 1
  static final int VENDORCONFIG = 0x57;
  static final int APPAUTH = 0x57; // page 1
  static final int CLIENTIDENTITY = 0x58;
  static final int PXAUTHINFO = 0x59;
  static final int RESOURCE = 0x59; // page 1
  static final int NAPAUTHINFO = 0x5A;
  static final int ACCESS = 0x5B;

  // Parm names (the handlers ignore the page).
  static final int NAME = 0x07;
  static final int NAP_ADDRESS = 0x08;
  static final int NAP_ADDRTYPE = 0x09;
  static final int CALLTYPE = 0x0A;
  static final int VALIDUNTIL = 0x0B;
  static final int AUTHTYPE = 0x0C;
  static final int AUTHNAME = 0x0D;
  static final int AUTHSECRET = 0x0E;
  static final int LINGER = 0x0F;
  static final int BEARER = 0x10;
  static final int NAPID = 0x11;
  static final int COUNTRY = 0x12;
  static final int NETWORK = 0x13;
  static final int INTERNET = 0x14;
  static final int PROXY_ID = 0x15;
  static final int PROXY_PROVIDER_ID = 0x16;
  static final int DOMAIN = 0x17;
  static final int PROVURL = 0x18;
  static final int PXAUTH_TYPE = 0x19;
  static final int PXAUTH_ID = 0x1A;
  static final int PXAUTH_PW = 0x1B;
  static final int STARTPAGE = 0x1C;
  static final int PUSHENABLED = 0x1F;
  static final int PXADDR = 0x20;
  static final int PXADDRTYPE = 0x21;
  static final int TO_NAPID = 0x22;
  static final int PORTNBR = 0x23;
  static final int SERVICE = 0x24;
  static final int LINKSPEED = 0x25;
  static final int DNLINKSPEED = 0x26;
  static final int LOCAL_ADDR = 0x27;
  static final int LOCAL_ADDRTYPE = 0x28;
  static final int CONTEXT_ALLOW = 0x29;
  static final int TRUST = 0x2A;
  static final int MASTER = 0x2B;
  static final int SID = 0x2C;
  static final int SOC = 0x2D;
  static final int WSP_VERSION = 0x2E;
  static final int AACCEPT = 0x2E;
  static final int PHYSICAL_PROXY_ID = 0x2F;
  static final int AAUTHDATA = 0x2F;
  static final int AAUTHLEVEL = 0x30;
  static final int CLIENT_ID = 0x30;
  static final int DELIVERY_ERR_SDU = 0x31;
  static final int AAUTHNAME = 0x31;
  static final int DELIVERY_ORDER = 0x32;
  static final int AAUTHSECRET = 0x32;
  static final int TRAFFIC_CLASS = 0x33;
  static final int AAUTHTYPE = 0x33;
  static final int MAX_SDU_SIZE = 0x34;
  static final int ADDR = 0x34;
  static final int MAX_BITRATE_UPLINK = 0x35;
  static final int ADDRTYPE = 0x35;
  static final int MAX_BITRATE_DNLINK = 0x36;
  static final int APPID = 0x36;
  static final int APROTOCOL = 0x37;
  static final int PROVIDER_ID = 0x38;
  static final int TO_PROXY = 0x39;
  static final int URI = 0x3A;
  static final int RULE = 0x3B;
  static final int PXADDR_FQDN = 0x3D;
  static final int PROXY_PW = 0x3E;
  static final int PPGAUTH_TYPE = 0x3F;
  static final int PULLENABLED = 0x47;
  static final int DNS_ADDR = 0x48;
  static final int MAX_NUM_RETRY = 0x49;
  static final int FIRST_RETRY_TIMEOUT = 0x4A;
  static final int REREG_THRESHOLD = 0x4B;
  static final int T_BIT = 0x4C;
  static final int AUTH_ENTITY = 0x4E;

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
