package com.tqomacp.eng.parser;

import static org.junit.Assert.*;

import java.io.File;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.nio.file.StandardCopyOption;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.concurrent.TimeUnit;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Collectors;
import java.util.stream.Stream;
import org.junit.Test;

/**
 * Registration at load time, watched from child JVMs that log every RegisterNatives entry
 * (-Xlog:jni+resolve=debug) and run RegistrationProbe.
 */
public class RegistrationTest {
  private static final List<String> ORDER = Arrays.asList("XCPCtxParser", "XCPCtxPxLogical",
      "XCPCtxNapDef", "XCPCtxBootstrap", "XCPCtxClientIdentity", "XCPCtxVendorConfig",
      "XCPCtxApplication", "XCPCtxAccess", "XCPCtxWifi");
  private static final Pattern REGISTERING =
      Pattern.compile("\\[Registering JNI native method com\\.tqomacp\\.eng\\.parser\\.(\\w+)\\.(\\w+)\\]");
  private static final String TEST_CLASSES = System.getProperty("tqomacp.testClasses");

  /**
   * Runs the probe on the class path; checks how the load ended and what the loader then reports,
   * and returns the natives registered per class, classes in registration order.
   */
  private static Map<String, List<String>> probe(String classPath, String load, boolean loaded)
      throws Exception {
    // The VM command, '|'-separated: in a cross build it runs under an emulator.
    List<String> command = new ArrayList<>(Arrays.asList(System.getProperty("tqomacp.vm",
        Paths.get(System.getProperty("java.home"), "bin", "java").toString()).split("\\|")));
    command.addAll(Arrays.asList("-Xlog:jni+resolve=debug",
        "-Djava.library.path=" + System.getProperty("java.library.path"),
        "-cp", classPath + File.pathSeparator + TEST_CLASSES, RegistrationProbe.class.getName()));
    Process process = new ProcessBuilder(command).redirectErrorStream(true).start();
    String output = new String(process.getInputStream().readAllBytes(), StandardCharsets.UTF_8);
    assertTrue("child JVM finished", process.waitFor(60, TimeUnit.SECONDS));
    assertEquals(output, 0, process.exitValue());
    List<String> lines = Arrays.asList(output.split("\n"));
    assertTrue(output, lines.contains(load));
    assertTrue(output, lines.contains("LOADED " + loaded));
    Map<String, List<String>> registered = new LinkedHashMap<>();
    for (String line : lines) {
      Matcher m = REGISTERING.matcher(line);
      if (m.find()) {
        registered.computeIfAbsent(m.group(1), k -> new ArrayList<>()).add(m.group(2));
      }
    }
    return registered;
  }

  /** The classes registered in this order, each exactly its declared natives, once each. */
  private static void assertRegistered(List<String> classes, Map<String, List<String>> registered)
      throws Exception {
    assertEquals(classes, new ArrayList<>(registered.keySet()));
    for (String c : classes) {
      Method[] methods = Class.forName("com.tqomacp.eng.parser." + c).getDeclaredMethods();
      List<String> declared = Arrays.stream(methods).filter(m -> Modifier.isNative(m.getModifiers()))
          .map(Method::getName).sorted().collect(Collectors.toList());
      assertEquals(c, declared, registered.get(c).stream().sorted().collect(Collectors.toList()));
    }
  }

  @Test
  public void loadRegistersAll85NativesInClassOrder() throws Exception {
    // 85 in all: the library's native table pins its count.
    assertRegistered(ORDER, probe(System.getProperty("tqomacp.classes"), "LOAD OK", true));
  }

  @Test
  public void missingAccessClassFailsTheLoadAfterSevenClasses() throws Exception {
    // The library classes without XCPCtxAccess.
    Path classes = Paths.get(System.getProperty("tqomacp.classes"));
    Path partial = Files.createTempDirectory("tqomacp-noaccess");
    try {
      try (Stream<Path> files = Files.walk(classes).filter(p -> !p.endsWith("XCPCtxAccess.class"))) {
        for (Path p : (Iterable<Path>) files::iterator) {
          Files.copy(p, partial.resolve(classes.relativize(p).toString()),
              StandardCopyOption.REPLACE_EXISTING);
        }
      }
      // FindClass's NoClassDefFoundError stays pending and fails the load; the classes
      // initialised during the failed load do not make it count as loaded.
      String load = "LOAD FAILED java.lang.NoClassDefFoundError: com/tqomacp/eng/parser/XCPCtxAccess";
      assertRegistered(ORDER.subList(0, 7), probe(partial.toString(), load, false));
    } finally {
      try (Stream<Path> files = Files.walk(partial)) {
        files.sorted(Comparator.reverseOrder()).forEach(p -> p.toFile().delete());
      }
    }
  }
}
