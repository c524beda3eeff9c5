package com.tqomacp.cp;

import static com.tqomacp.cp.Authentication.*;
import static org.junit.Assert.*;

import java.io.ByteArrayOutputStream;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.Map;
import org.junit.Test;

/**
 * Known MAC answers: corpus USERPIN and NETWPIN rows (every verified one is checked by cpdump's CLI
 * test; these share one header form), the generated PDUs' MACs (PIN 1234), and one USERNETWPIN
 * MAC computed with openssl.
 */
public class AuthenticationTest {
  private static final String BANK = "ws-bank-userpin.pdu";
  private static final String IMSI = "466923103145252";
  private static final String HIWEB_IMSI = "432129951539038";
  private static final String EMPTY = "moz-empty-doc-netwpin.wbxml";
  private static final String USERPIN_MAC = "6CD48BFD7FFC33183154734DF4434DA694E25E6A";

  /** A push: content type 0xB6, the SEC parameter's bytes (none: no SEC), the MAC, the body. */
  private static byte[] push(String bodyFile, String mac, int... sec) {
    byte[] macParameter = ("\u0092" + mac + "\0").getBytes(StandardCharsets.ISO_8859_1);
    ByteArrayOutputStream pdu = new ByteArrayOutputStream();
    pdu.writeBytes(new byte[] {1, 6, (byte) (1 + sec.length + macParameter.length), (byte) 0xB6});
    Arrays.stream(sec).forEach(pdu::write);
    pdu.writeBytes(macParameter);
    pdu.writeBytes(Samples.body(bodyFile));
    return pdu.toByteArray();
  }

  private static Authentication check(byte[] pdu, String imsi, String pin) throws ProvisioningException {
    return ProvisioningMessage.parseHeader(pdu).authenticate(imsi, pin);
  }

  @Test
  public void knownAnswers() throws ProvisioningException {
    Object[][] cases = {
      {Samples.pdu(BANK), null, "1234", AUTHENTIC},
      {Samples.pdu(BANK), IMSI, "1235", NOT_AUTHENTIC},
      {Samples.pdu(BANK), IMSI, "", CREDENTIAL_MISSING},
      // A Charset parameter after the MAC.
      {Samples.pdu("br-claro-portal-charset.pdu"), null, "1234", AUTHENTIC},
      {Samples.pdu("vn-viettel-gprs-wbxml12.pdu"), null, "1111", AUTHENTIC},
      {Samples.pdu("vn-viettel-gprs-wbxml12.pdu"), null, "1234", NOT_AUTHENTIC},
      // NETWPIN with an IMSI nobody published.
      {Samples.pdu("ph-smart-mms-netwpin.pdu"), null, "1234", CREDENTIAL_MISSING},
      {Samples.pdu("ph-smart-mms-netwpin.pdu"), IMSI, null, NOT_AUTHENTIC},
      // SEC NETWPIN without a MAC.
      {Samples.pdu("pdus/cpc-email.pdu"), IMSI, "1234", NOT_SIGNED},
      {push(EMPTY, "1af545fe2823dc9347064450f90ff1bbf957e146", 0x91, 0x80), IMSI, null, AUTHENTIC},
      {push(EMPTY, "1AF545FE2823DC9347064450F90FF1BBF957E146", 0x91, 0x80),
          "466923103145253", null, NOT_AUTHENTIC},
      {push("apnprov-ref-myapn.wbxml", "BB9603D3D43CF472656B5ECD157BC66801DA695F", 0x91, 0x80),
          "001010123456789", null, AUTHENTIC},
      {push("apnprov-hiweb.wbxml", "346A77ECD1ED230CC996F553551E0E8B63F0E9EB", 0x91, 0x80),
          HIWEB_IMSI, "1234", AUTHENTIC},
      {push("apnprov-hiweb.wbxml", "B450536F898493EE37D7F3848B5C9D5C59B022A0", 0x91, 0x82),
          HIWEB_IMSI, "1234", AUTHENTIC},
      {push("apnprov-hiweb.wbxml", "B450536F898493EE37D7F3848B5C9D5C59B022A0", 0x91, 0x82),
          HIWEB_IMSI, null, CREDENTIAL_MISSING},
      // SEC as the text "SEC" and the value as the digit "1" (USERPIN).
      {push(EMPTY, USERPIN_MAC, 'S', 'E', 'C', 0, '1'), null, "1234", AUTHENTIC},
      {push(EMPTY, USERPIN_MAC.substring(0, 39), 0x91, 0x81), null, "1234", NOT_AUTHENTIC},
      // A PIN longer than SHA-1's 64-byte block is hashed into the key first.
      {push(EMPTY, "8ABA32953E3F40FDA50192B01AFDEFA47C72C5A1", 0x91, 0x81), null,
          "1234567890".repeat(7), AUTHENTIC},
      {push(EMPTY, USERPIN_MAC, 0x91, 0x83), IMSI, "1234", UNSUPPORTED},
      {push(EMPTY, USERPIN_MAC, 0x91, 0x01), IMSI, "1234", UNSUPPORTED},
      {push(EMPTY, USERPIN_MAC), IMSI, "1234", NOT_SIGNED},
    };
    for (int i = 0; i < cases.length; i++) {
      Object[] c = cases[i];
      assertEquals("case " + i, c[3], check((byte[]) c[0], (String) c[1], (String) c[2]));
    }
    for (Map.Entry<String, byte[]> sample : Samples.PDUS.entrySet()) {
      if (sample.getKey().endsWith(".mac.pdu")) {
        assertEquals(sample.getKey(), AUTHENTIC, check(sample.getValue(), null, "1234"));
      }
    }
  }

  @Test
  public void securityForms() {
    int[] codes = {0, 0x80, 0x81, 0x82, 0x83, '0', '3', 0x01, 0x84, 'U'};
    Security[] expected = {Security.NONE, Security.NETWPIN, Security.USERPIN, Security.USERNETWPIN,
        Security.USERPINMAC, Security.NETWPIN, Security.USERPINMAC, Security.UNKNOWN,
        Security.UNKNOWN, Security.UNKNOWN};
    for (int i = 0; i < codes.length; i++) {
      assertEquals("code " + codes[i], expected[i], Security.of(codes[i]));
    }
  }

  @Test
  public void netwpinKeys() {
    assertArrayEquals(new byte[] {0x49, 0x66, 0x29, 0x13, 0x30, 0x41, 0x25, 0x25},
        PushHeader.netwpinKey(IMSI));
    assertArrayEquals(new byte[] {0x11, 0x32, 0x54, 0x76, (byte) 0x98, 0x10, 0x32, (byte) 0xF4},
        PushHeader.netwpinKey("12345678901234"));
    for (String bad : new String[] {"12F", "4669231031452a", "\u0663\u0663"}) {
      assertThrows(bad, IllegalArgumentException.class, () -> PushHeader.netwpinKey(bad));
    }
  }
}
