package com.tqomacp.eng.parser;

import static org.junit.Assert.*;

import java.io.File;
import java.io.IOException;
import java.io.InputStream;
import java.lang.reflect.Method;
import java.lang.reflect.Modifier;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.Comparator;
import java.util.List;
import java.util.Map;
import java.util.TreeMap;
import java.util.TreeSet;
import java.util.concurrent.TimeUnit;
import java.util.regex.Matcher;
import java.util.regex.Pattern;
import java.util.stream.Stream;
import org.junit.Test;

/**
 * Registration at load time, watched from child JVMs that log every RegisterNatives entry
 * (-Xlog:jni+resolve=debug) and run RegistrationProbe.
 */
public class RegistrationTest {
  private static final String PACKAGE = "com.tqomacp.eng.parser.";
  private static final List<String> ORDER = Arrays.asList("XCPCtxParser", "XCPCtxPxLogical",
      "XCPCtxNapDef", "XCPCtxBootstrap", "XCPCtxClientIdentity", "XCPCtxVendorConfig",
      "XCPCtxApplication", "XCPCtxAccess", "XCPCtxWifi");
  private static final Pattern REGISTERING =
      Pattern.compile("\\[Registering JNI native method com\\.tqomacp\\.eng\\.parser\\.(\\w+)\\.(\\w+)\\]");

  /** What a child JVM printed: the probe's LOAD line and the natives registered per class. */
  private static final class Run {
    String load = "";
    String loaded = "";
    final Map<String, List<String>> registered = new TreeMap<>();
    final List<String> classOrder = new ArrayList<>();
  }

  private static Run runProbe(String classPath) throws IOException, InterruptedException {
    String java = Paths.get(System.getProperty("java.home"), "bin", "java").toString();
    ProcessBuilder builder = new ProcessBuilder(java, "-Xlog:jni+resolve=debug",
        "-Djava.library.path=" + System.getProperty("java.library.path"), "-cp", classPath,
        RegistrationProbe.class.getName());
    builder.redirectErrorStream(true);
    Process process = builder.start();
    String output;
    try (InputStream in = process.getInputStream()) {
      output = new String(in.readAllBytes(), StandardCharsets.UTF_8);
    }
    assertTrue("child JVM finished", process.waitFor(60, TimeUnit.SECONDS));
    Run run = new Run();
    for (String line : output.split("\n")) {
      run.load = line.startsWith("LOAD ") ? line : run.load;
      run.loaded = line.startsWith("LOADED ") ? line : run.loaded;
      Matcher m = REGISTERING.matcher(line);
      if (m.find()) {
        if (!run.registered.containsKey(m.group(1))) {
          run.classOrder.add(m.group(1));
        }
        run.registered.computeIfAbsent(m.group(1), k -> new ArrayList<>()).add(m.group(2));
      }
    }
    assertEquals("probe exit status", 0, process.exitValue());
    return run;
  }

  /** The native methods a class declares, by name. */
  private static List<String> declaredNatives(String simpleName) throws ClassNotFoundException {
    List<String> names = new ArrayList<>();
    for (Method m : Class.forName(PACKAGE + simpleName).getDeclaredMethods()) {
      if (Modifier.isNative(m.getModifiers())) {
        names.add(m.getName());
      }
    }
    return names;
  }

  private static Path testClasses() {
    return Paths.get(System.getProperty("tqomacp.testClasses"));
  }

  @Test
  public void loadRegistersAll85NativesInClassOrder() throws Exception {
    Run run = runProbe(System.getProperty("tqomacp.classes") + File.pathSeparator + testClasses());
    assertEquals("LOAD OK", run.load);
    assertEquals("LOADED true", run.loaded);
    assertEquals(ORDER, run.classOrder);
    int total = 0;
    for (String c : ORDER) {
      List<String> registered = run.registered.get(c);
      assertEquals(c, new TreeSet<>(declaredNatives(c)), new TreeSet<>(registered));
      assertEquals(c + " registered once each", declaredNatives(c).size(), registered.size());
      total += registered.size();
    }
    assertEquals(85, total);
  }

  @Test
  public void missingAccessClassFailsTheLoadAfterSevenClasses() throws Exception {
    // The library classes without XCPCtxAccess.
    Path classes = Paths.get(System.getProperty("tqomacp.classes"));
    Path partial = Files.createTempDirectory("tqomacp-noaccess");
    try {
      try (Stream<Path> files = Files.walk(classes)) {
        for (Path p : (Iterable<Path>) files::iterator) {
          Path target = partial.resolve(classes.relativize(p).toString());
          if (Files.isDirectory(p)) {
            Files.createDirectories(target);
          } else if (!p.getFileName().toString().equals("XCPCtxAccess.class")) {
            Files.copy(p, target);
          }
        }
      }
      assertFalse(Files.exists(partial.resolve("com/tqomacp/eng/parser/XCPCtxAccess.class")));
      assertTrue(Files.exists(partial.resolve("com/tqomacp/eng/parser/XCPCtxWifi.class")));

      Run run = runProbe(partial + File.pathSeparator + testClasses());
      // FindClass's NoClassDefFoundError stays pending and fails the load.
      assertEquals(
          "LOAD FAILED java.lang.NoClassDefFoundError: com/tqomacp/eng/parser/XCPCtxAccess", run.load);
      // The classes initialised during the failed load do not make it count as loaded.
      assertEquals("LOADED false", run.loaded);
      assertEquals(ORDER.subList(0, 7), run.classOrder);
      for (String c : ORDER.subList(0, 7)) {
        assertEquals(c, new TreeSet<>(declaredNatives(c)), new TreeSet<>(run.registered.get(c)));
      }
      assertFalse(run.registered.containsKey("XCPCtxWifi"));
      assertFalse(run.registered.containsKey("XCPCtxAccess"));
    } finally {
      try (Stream<Path> files = Files.walk(partial)) {
        files.sorted(Comparator.reverseOrder()).forEach(p -> p.toFile().delete());
      }
    }
  }
}
