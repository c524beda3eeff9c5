package com.tqomacp.eng.parser;

import java.io.IOException;
import java.io.UncheckedIOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.Paths;
import java.util.List;
import java.util.stream.Collectors;
import java.util.stream.Stream;

/** The message corpus, found through the system property tqomacp.corpus. */
final class Corpus {
  private Corpus() {}

  static Path dir() {
    String dir = System.getProperty("tqomacp.corpus");
    if (dir == null || !Files.isDirectory(Paths.get(dir))) {
      throw new IllegalStateException("corpus directory not found: tqomacp.corpus=" + dir);
    }
    return Paths.get(dir);
  }

  static byte[] read(String relative) {
    try {
      return Files.readAllBytes(dir().resolve(relative));
    } catch (IOException e) {
      throw new UncheckedIOException(e);
    }
  }

  /** Every push PDU of the corpus, as paths relative to it, sorted. */
  static List<String> pdus() {
    Path root = dir();
    try (Stream<Path> files = Files.walk(root)) {
      return files
          .filter(p -> p.toString().endsWith(".pdu"))
          .map(p -> root.relativize(p).toString())
          .sorted()
          .collect(Collectors.toList());
    } catch (IOException e) {
      throw new UncheckedIOException(e);
    }
  }
}
