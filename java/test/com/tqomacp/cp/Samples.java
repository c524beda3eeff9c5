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

  private Samples() {}

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
