package com.tqomacp.eng.parser;

import static com.tqomacp.eng.parser.XCPCtxApplication.*;
import static com.tqomacp.eng.parser.XCPCtxNapDef.*;
import static com.tqomacp.eng.parser.XCPCtxParser.*;
import static com.tqomacp.eng.parser.XCPCtxPxLogical.*;
import static org.junit.Assert.*;

import com.tqomacp.cp.Samples;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Map;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.After;
import org.junit.Before;
import org.junit.Test;

/**
 * The natives in a real VM under -Xcheck:jni: every corpus push through the parse entry, every
 * getter and the release; then what only a VM shows of the strings, and the quirks of the counts,
 * the VALIDITY walk and the NAPDEF cursor that the in-process tests leave open. The getters' other
 * rules are pinned on the fake VM (tests/tqomacp_jni_test.cpp, fuzz/harness/session.cpp).
 */
public class NativesTest {
  @Before
  @After
  public void release() {
    tqomacp_parser_del();
  }

  /** The natives of the eight context classes, without the cursor. */
  private static final List<Method> GETTERS =
      Stream.of(XCPCtxPxLogical.class, XCPCtxNapDef.class, XCPCtxBootstrap.class,
              XCPCtxClientIdentity.class, XCPCtxVendorConfig.class, XCPCtxApplication.class,
              XCPCtxAccess.class, XCPCtxWifi.class)
          .flatMap(c -> Arrays.stream(c.getDeclaredMethods()))
          .filter(m -> Modifier.isNative(m.getModifiers()))
          .filter(m -> !m.getName().equals("tqomacp_SetPxNapDefIndex"))
          .collect(Collectors.toList());

  /**
   * Calls each getter with every record number from -1 to 3 in every position. A number of 0 or
   * below, or no context, selects nothing (0 or null), except for the BEARER count (the first
   * NAPDEF), the unused second number of the VALIDITY getter and the PXLOGICAL array (fourteen
   * empty strings). Arrays must be of their declared class.
   */
  private static void sweep(String sample, boolean context) throws Exception {
    for (Method m : GETTERS) {
      String name = m.getName();
      int arity = m.getParameterCount();
      for (int combination = 0; combination < (int) Math.pow(5, arity); combination++) {
        Object[] args = new Object[arity];
        boolean nothing = !context;
        for (int i = 0, rest = combination; i < arity; i++, rest /= 5) {
          args[i] = rest % 5 - 1;
          boolean unused = name.equals("tqomacp_GetPxValidityData") && i == 1;
          nothing |= rest % 5 - 1 <= 0 && !unused && !name.equals("tqomacp_GetPxBearerCount");
        }
        String at = sample + " " + name + Arrays.toString(args);
        Object result = m.invoke(null, args);
        if (name.equals("tqomacp_GetProxyData")) {
          assertEquals(at, 14, ((String[]) result).length);
          if (nothing) {
            assertEquals(at, Collections.nCopies(14, ""), Arrays.asList((String[]) result));
          }
        } else if (result instanceof Integer) {
          assertTrue(at, (Integer) result >= 0);
          if (nothing) {
            assertEquals(at, 0, result);
          }
        } else if (nothing) {
          assertNull(at, result);
        } else if (result != null) {
          assertEquals(at, m.getReturnType(), result.getClass());
        }
      }
    }
  }

  @Test
  public void everyCorpusPushThroughEveryNative() throws Exception {
    int parsed = 0;
    for (Map.Entry<String, byte[]> entry : Samples.PDUS.entrySet()) {
      String sample = entry.getKey();
      byte[] pdu = entry.getValue();
      boolean full = tqomacp_parser(pdu, pdu.length, MODE_FULL);
      parsed += full ? 1 : 0;
      sweep(sample, full);
      tqomacp_parser_del();
    }
    // Which ones are refused, and why: tools/cpdump/tests/golden/refused.txt.
    assertEquals(65, parsed);
  }

  @Test
  public void stringsCountsAndTheCursorOnABuiltPush() {
    // Any mode other than 1 decodes the body.
    assertTrue(tqomacp_parser(Samples.BUILT, Samples.BUILT.length, 7));
    // A supplementary character arrives as its surrogate pair.
    assertEquals("\u00e9\u20ac\ud83d\ude00", tqomacp_GetProxyData(1)[7]);

    // The BEARER count walks "while below n": 0 and negatives select the first NAPDEF.
    assertArrayEquals(new int[] {2, 2, 2, 1}, new int[] {tqomacp_GetPxBearerCount(0),
      tqomacp_GetPxBearerCount(-4), tqomacp_GetPxBearerCount(1), tqomacp_GetPxBearerCount(2)});
    // n selects the NAPDEF and then its n-th VALIDITY; k is never used.
    assertEquals("V11", tqomacp_GetPxValidityData(1, 5)[0]);
    assertEquals("V22", tqomacp_GetPxValidityData(2, 1)[0]);
    // APPADDR services are given as stored (the raw CO-WSP code), proxy ones by position.
    assertEquals("\u00cb", tqomacp_GetPxServiceData(1, 1, 1, 1));

    // A header-only parse replaces the header and leaves the context in place.
    assertTrue(tqomacp_parser(Arrays.copyOf(Samples.BUILT, 6), 6, MODE_HEADER_ONLY));
    assertEquals(0, tqomacp_GetParserBodyLen());
    assertEquals(2, tqomacp_GetPxNapDefCount());

    // The cursor moves the head: the getters count from there.
    tqomacp_SetPxNapDefIndex(2);
    assertEquals(1, tqomacp_GetPxNapDefCount());
    assertEquals("V21", tqomacp_GetPxValidityData(1, 1)[0]);
    tqomacp_SetPxNapDefIndex(0);
    assertEquals(0, tqomacp_GetPxNapDefCount());
    assertEquals(0, tqomacp_GetPxBearerCount(1));
  }
}
