import com.tqomacp.eng.parser.XCPCtxParser;
import java.nio.file.Files;
import java.nio.file.Paths;
import java.util.List;

/** Parses one PDU over and over in this JVM and prints how much the process grew per parse. */
public final class JvmGrowth {
  private JvmGrowth() {}

  // Resident set size of this process in KiB, from /proc/self/status.
  private static long rssKib() throws Exception {
    List<String> lines = Files.readAllLines(Paths.get("/proc/self/status"));
    for (String line : lines) {
      if (line.startsWith("VmRSS:")) {
        return Long.parseLong(line.replaceAll("[^0-9]", ""));
      }
    }
    throw new IllegalStateException("no VmRSS");
  }

  private static void parse(byte[] pdu, int count, int mode) {
    for (int i = 0; i < count; ++i) {
      if (!XCPCtxParser.tqomacp_parser(pdu, pdu.length, mode)) {
        throw new IllegalStateException("parse refused");
      }
      XCPCtxParser.tqomacp_parser_del();
    }
  }

  public static void main(String[] args) throws Exception {
    byte[] pdu = Files.readAllBytes(Paths.get(args[0]));
    int count = Integer.parseInt(args[1]);
    int mode = Integer.parseInt(args[2]);
    XCPCtxParser.tqomacp_parser(pdu, pdu.length, XCPCtxParser.MODE_HEADER_ONLY);
    int body = XCPCtxParser.tqomacp_GetParserBodyLen();
    XCPCtxParser.tqomacp_parser_del();
    parse(pdu, count / 10, mode);  // warm-up: JIT, heap and malloc arenas settle
    System.gc();
    long before = rssKib();
    parse(pdu, count, mode);
    System.gc();
    long after = rssKib();
    System.out.printf(
        "%d parses of a %d-byte PDU (body %d bytes), mode %d: RSS %d -> %d KiB, %.0f bytes per parse%n",
        count, pdu.length, body, mode, before, after, (after - before) * 1024.0 / count);
  }
}
