import static com.tqomacp.eng.parser.XCPCtxAccess.*;
import static com.tqomacp.eng.parser.XCPCtxApplication.*;
import static com.tqomacp.eng.parser.XCPCtxBootstrap.*;
import static com.tqomacp.eng.parser.XCPCtxClientIdentity.*;
import static com.tqomacp.eng.parser.XCPCtxNapDef.*;
import static com.tqomacp.eng.parser.XCPCtxParser.*;
import static com.tqomacp.eng.parser.XCPCtxPxLogical.*;
import static com.tqomacp.eng.parser.XCPCtxVendorConfig.*;
import static com.tqomacp.eng.parser.XCPCtxWifi.*;

import com.tqomacp.cp.ProvisioningException;
import com.tqomacp.cp.ProvisioningMessage;
import java.io.ByteArrayOutputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Paths;
import java.util.Arrays;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * The facade's parse of the typical document against the natives' parse plus a read-back of every
 * value an application can get, in one JVM. Rounds alternate between the two so that both see the
 * same machine; the medians and their ratio are printed.
 *
 * <p>Usage: java FacadeBench DOCUMENTS_INC [SECONDS_PER_ROUND] [ROUNDS]
 */
public final class FacadeBench {
  private static long sink;

  /** The typical document's body from documents.inc, in a push with SEC USERPIN and a MAC. */
  static byte[] typicalPdu(String inc) throws Exception {
    String text = new String(Files.readAllBytes(Paths.get(inc)), StandardCharsets.US_ASCII);
    Matcher array = Pattern.compile("k_typical\\[\\] = \\{([^}]*)\\}").matcher(text);
    if (!array.find()) {
      throw new IllegalArgumentException("no k_typical in " + inc);
    }
    ByteArrayOutputStream pdu = new ByteArrayOutputStream();
    pdu.write(new byte[] {1, 6, 0x2F, 0x1F, 0x2D, (byte) 0xB6, (byte) 0x91, (byte) 0x81, (byte) 0x92});
    pdu.write("0123456789ABCDEF0123456789ABCDEF01234567".getBytes(StandardCharsets.US_ASCII));
    pdu.write(0);
    Matcher hex = Pattern.compile("0x([0-9a-f]{2})").matcher(array.group(1));
    while (hex.find()) {
      pdu.write(Integer.parseInt(hex.group(1), 16));
    }
    return pdu.toByteArray();
  }

  static long facade(byte[] pdu) throws ProvisioningException {
    // hashCode visits every value of the header and of every record.
    return ProvisioningMessage.parse(pdu).hashCode();
  }

  private static long s(String value) {
    return value == null ? 0 : value.length();
  }

  private static long a(Object[] values) {
    return values == null ? 0 : Arrays.hashCode(values);
  }

  /** What an application does without the facade: parse, read every value, release. */
  static long raw(byte[] pdu) {
    if (!tqomacp_parser(pdu, pdu.length, MODE_FULL)) {
      throw new IllegalStateException("typical document refused");
    }
    long h = tqomacp_GetParserContentType() + tqomacp_GetParserHeaderLen() + tqomacp_GetParserBodyLen()
        + tqomacp_GetParserMACLen() + tqomacp_GetParserSEC() + tqomacp_GetParserMAC().length
        + tqomacp_GetParserBody().length + s(tqomacp_GetPxClientIdentityData());
    for (int p = 1, np = tqomacp_GetPxLogicalCount(); p <= np; p++) {
      h += a(tqomacp_GetProxyData(p));
      for (int k = 1, n = tqomacp_GetPxDomainCount(p); k <= n; k++) h += s(tqomacp_GetPxDomainData(p, k));
      for (int k = 1, n = tqomacp_GetPxAuthInfoCount(p); k <= n; k++) h += a(tqomacp_GetPxAuthInfoData(p, k));
      for (int k = 1, n = tqomacp_GetPxPortCount(p); k <= n; k++) {
        h += s(tqomacp_GetPxPortData(p, k));
        for (int v = 1, m = tqomacp_GetPxPortServiceCount(p, k); v <= m; v++) h += s(tqomacp_GetPxPortServiceData(p, k, v));
      }
      for (int k = 1, n = tqomacp_GetPxPhysicalCount(p); k <= n; k++) {
        h += a(tqomacp_GetPxPhysicalData(p, k));
        for (int d = 1, m = tqomacp_GetPxPhysicalDomainCount(p, k); d <= m; d++) h += s(tqomacp_GetPxPhsicalDomainData(p, k, d));
        for (int d = 1, m = tqomacp_GetPxPhsicalNapIdCount(p, k); d <= m; d++) h += s(tqomacp_GetPxPhysicalNapIdData(p, k, d));
        for (int t = 1, m = tqomacp_GetPxPhysicalPortCount(p, k); t <= m; t++) {
          h += s(tqomacp_GetPxPhysicalPortData(p, k, t));
          for (int v = 1, w = tqomacp_GetPxPhysicalPortServiceCount(p, k, t); v <= w; v++) h += s(tqomacp_GetPxPhysicalPortServiceData(p, k, t, v));
        }
      }
    }
    for (int n = 1, nn = tqomacp_GetPxNapDefCount(); n <= nn; n++) {
      h += a(tqomacp_GetPxNapDefData(n));
      for (int k = 1, m = tqomacp_GetPxDnsAddrCount(n); k <= m; k++) h += s(tqomacp_GetPxDnsAddrData(n, k));
      for (int k = 1, m = tqomacp_GetPxBearerCount(n); k <= m; k++) h += s(tqomacp_GetPxBearerData(n, k));
      for (int k = 1, m = tqomacp_GetPxNapAuthInfoCount(n); k <= m; k++) {
        h += a(tqomacp_GetPxNapAuthInfoData(n, k));
        for (int e = 1, w = tqomacp_GetPxNapAuthEntityCount(n, k); e <= w; e++) h += s(tqomacp_GetPxAuthInfopAuthEntityData(n, k, e));
      }
      if (tqomacp_GetPxNapValidityCount(n) >= n) h += a(tqomacp_GetPxValidityData(n, n));
    }
    for (int b = 1, nb = tqomacp_GetPxBootstrapCount(); b <= nb; b++) {
      h += a(tqomacp_GetBootstrapData(b));
      for (int k = 1, m = tqomacp_GetPxProxyIdCount(b); k <= m; k++) h += s(tqomacp_GetPxProxyIdData(b, k));
      for (int k = 1, m = tqomacp_GetPxNetworkCount(b); k <= m; k++) h += s(tqomacp_GetPxNetworkData(b, k));
    }
    for (int v = 1, nv = tqomacp_GetPxVenderConfigCount(); v <= nv; v++) h += a(tqomacp_GetPxVenderConfigData(v));
    h += a(tqomacp_GetPxRoamingData());
    for (int x = 1, na = tqomacp_GetPxApplicationCount(); x <= na; x++) {
      h += a(tqomacp_GetApplicationData(x));
      for (int k = 1, m = tqomacp_GetPxToProxyCount(x); k <= m; k++) h += s(tqomacp_GetPxToProxyData(x, k));
      for (int k = 1, m = tqomacp_GetPxNapIdCount(x); k <= m; k++) h += s(tqomacp_GetPxNapIdData(x, k));
      for (int k = 1, m = tqomacp_GetPxToAddrCount(x); k <= m; k++) h += s(tqomacp_GetPxToAddrData(x, k));
      for (int k = 1, m = tqomacp_GetPxAppAddrCount(x); k <= m; k++) {
        h += a(tqomacp_GetPxAppAddrData(x, k));
        for (int t = 1, w = tqomacp_GetPxAppPortCount(x, k); t <= w; t++) {
          h += s(tqomacp_GetPxAppPortData(x, k, t));
          for (int v = 1, z = tqomacp_GetPxServiceCount(x, k, t); v <= z; v++) h += s(tqomacp_GetPxServiceData(x, k, t, v));
        }
      }
      for (int k = 1, m = tqomacp_GetPxAppAuthCount(x); k <= m; k++) h += a(tqomacp_GetPxAppAuthData(x, k));
      for (int k = 1, m = tqomacp_GetPxResourceCount(x); k <= m; k++) h += a(tqomacp_GetPxResourceData(x, k));
    }
    for (int r = 1, nr = tqomacp_GetPxCtxAccessCount(); r <= nr; r++) {
      for (int k = 1, m = tqomacp_GetPxRuleCount(r); k <= m; k++) h += s(tqomacp_GetPxRuleData(r, k));
      for (int k = 1, m = tqomacp_GetPxAppIdCount(r); k <= m; k++) h += s(tqomacp_GetPxAppIdData(r, k));
      for (int k = 1, m = tqomacp_GetPxPortNbrCount(r); k <= m; k++) h += s(tqomacp_GetPxPortNbrData(r, k));
      for (int k = 1, m = tqomacp_GetPxAccessDomainCount(r); k <= m; k++) h += s(tqomacp_GetPxAccessDomainData(r, k));
      for (int k = 1, m = tqomacp_GetPxAccessToNapIdCount(r); k <= m; k++) h += s(tqomacp_GetPxAccessToNapIdData(r, k));
      for (int k = 1, m = tqomacp_GetPxAccessToProxyCount(r); k <= m; k++) h += s(tqomacp_GetPxAccessToProxyData(r, k));
    }
    for (int w = 1, nw = tqomacp_GetPxWifiCount(); w <= nw; w++) h += a(tqomacp_GetPxWifiData(w));
    tqomacp_parser_del();
    return h;
  }

  interface Op {
    long run() throws Exception;
  }

  /** Nanoseconds per operation over one round of about {@code millis}. */
  static double round(Op op, long millis) throws Exception {
    long ops = 0;
    long start = System.nanoTime();
    long end = start + millis * 1_000_000L;
    long now;
    do {
      for (int i = 0; i < 100; i++) {
        sink += op.run();
      }
      ops += 100;
      now = System.nanoTime();
    } while (now < end);
    return (double) (now - start) / ops;
  }

  private static double median(double[] values) {
    double[] sorted = values.clone();
    Arrays.sort(sorted);
    return sorted[sorted.length / 2];
  }

  public static void main(String[] args) throws Exception {
    byte[] pdu = typicalPdu(args[0]);
    long millis = (long) (1000 * (args.length > 1 ? Double.parseDouble(args[1]) : 1.0));
    int rounds = args.length > 2 ? Integer.parseInt(args[2]) : 9;
    Op facade = () -> facade(pdu);
    Op raw = () -> raw(pdu);
    round(facade, 2 * millis); // warm-up: both paths compiled before anything counts
    round(raw, 2 * millis);
    double[] f = new double[rounds];
    double[] r = new double[rounds];
    for (int i = 0; i < rounds; i++) {
      f[i] = round(facade, millis);
      r[i] = round(raw, millis);
    }
    System.out.printf("typical document, PDU %d bytes, %d rounds of %d ms each%n", pdu.length, rounds, millis);
    System.out.printf("natives: parse + read every value + release  %8.1f us/op (median)%n", median(r) / 1000);
    System.out.printf("facade:  ProvisioningMessage.parse + hashCode %8.1f us/op (median)%n", median(f) / 1000);
    double ratio = median(f) / median(r);
    System.out.printf("facade / natives: %.2fx (target: within 3x); checksum %x%n", ratio, sink);
  }
}
