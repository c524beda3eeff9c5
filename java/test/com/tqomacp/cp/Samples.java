package com.tqomacp.cp;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.Map;
import java.util.TreeMap;
import java.util.stream.Stream;

/** The corpus's push PDUs by relative path, read once (the tqomacp.corpus property names it). */
public final class Samples {
  static final Path DIR = Paths.get(System.getProperty("tqomacp.corpus", "tests/corpus"));
  public static final Map<String, byte[]> PDUS = new TreeMap<>();

  static {
    try (Stream<Path> files = Files.walk(DIR)) {
      for (Path p : (Iterable<Path>) files.filter(f -> f.toString().endsWith(".pdu"))::iterator) {
        PDUS.put(DIR.relativize(p).toString(), Files.readAllBytes(p));
      }
    } catch (IOException e) {
      throw new UncheckedIOException(e);
    }
  }

  /**
   * A built push (SEC USERPIN, no MAC) of what the corpus lacks: a PXLOGICAL whose NAME is a lone
   * code byte then x and whose STARTPAGE has two-, three- and four-byte UTF-8; two NAPDEFs with two
   * VALIDITY each, the first with NAP-ADDRTYPE as the raw code 0x89 and a text BEARER before
   * GSM-GPRS, the second with the token E164 and GSM-GPRS; ROAMING in two APPLICATIONs (w5, w2),
   * w5 with an APPADDR whose PORT has the SERVICE CO-WSP; a WI-FI whose twelve parms are "a" to "l".
   */
  public static final byte[] BUILT = hex(
      "010603b69181030b6a0045c651018707060385780001871c0603c3a9e282acf09f9880000101c60000550187"
      + "1106034e41503100018708060361706e2e6f6e65000187090603890001870a06034953444e00018710060374"
      + "657874206265617265720001871006ab01c60000540187120603563131000101c60000540187120603563132"
      + "00010101c600005501871106034e41503200018709068701870a06034953444e0001871006ab01c600005401"
      + "87120603563231000101c6000054018712060356323200010101c6000155018736060377350001c65003524f"
      + "414d494e47000187050353594e432d414c4c4f57454400060331000187050353594e432d44454641554c5400"
      + "060330000101c6560187340603686f73740001c600005301872406cb01010101c60001550187360603773200"
      + "01c65003524f414d494e47000187050353594e432d414c4c4f5745440006033200010101c6500357492d4649"
      + "00018705034e4554535349440006036100018705035345434d4f44450006036200018705034541504d455448"
      + "4f4400060363000187050345415054595045000603640001870503555345524e414d45000603650001870503"
      + "414e4f4e555345524e414d4500060366000187050350415353574f5244000603670001870503434143455254"
      + "00060368000187050355534552434552540006036900018705035048415345310006036a0001870503415554"
      + "48414c474f524954484d0006036b00018705035052494f524954590006036c00010101");

  private Samples() {}

  private static byte[] hex(String text) {
    byte[] bytes = new byte[text.length() / 2];
    for (int i = 0; i < bytes.length; i++) {
      bytes[i] = (byte) Integer.parseInt(text.substring(2 * i, 2 * i + 2), 16);
    }
    return bytes;
  }

  static byte[] pdu(String name) {
    byte[] pdu = PDUS.get(name);
    if (pdu == null) {
      throw new IllegalArgumentException("no sample " + name + " under " + DIR);
    }
    return pdu.clone();
  }

  static byte[] body(String name) {
    try {
      return Files.readAllBytes(DIR.resolve(name));
    } catch (IOException e) {
      throw new UncheckedIOException(e);
    }
  }
}
