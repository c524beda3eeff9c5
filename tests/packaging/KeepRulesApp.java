import com.tqomacp.eng.parser.XCPCtxNapDef;
import com.tqomacp.eng.parser.XCPCtxParser;
import java.nio.file.Files;
import java.nio.file.Paths;

/** An app that calls three of the 85 natives: prints the first bearer of a push's first NAPDEF. */
public final class KeepRulesApp {
  public static void main(String[] args) throws Exception {
    byte[] pdu = Files.readAllBytes(Paths.get(args[0]));
    if (!XCPCtxParser.tqomacp_parser(pdu, pdu.length, 0)) {
      throw new IllegalStateException("not parsed: " + args[0]);
    }
    System.out.println(XCPCtxNapDef.tqomacp_GetPxBearerData(1, 1));
    XCPCtxParser.tqomacp_parser_del();
  }
}
