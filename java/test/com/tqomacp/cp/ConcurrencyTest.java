package com.tqomacp.cp;

import static org.junit.Assert.*;

import java.util.ArrayList;
import java.util.List;
import java.util.Map;
import java.util.concurrent.ExecutorService;
import java.util.concurrent.Executors;
import java.util.concurrent.Future;
import java.util.stream.Collectors;
import org.junit.Test;

/**
 * Eight threads parse the corpus at once, each from its own place in the samples, over and over;
 * every result must equal the one a single thread got. Without the facade's lock the natives' globals
 * are shared and the process crashes or results mix.
 */
public class ConcurrencyTest {
  private static final int THREADS = 8;
  private static final int PARSES_PER_THREAD = 2000;

  /** The message, or the reason of the refusal. */
  private static Object outcome(byte[] pdu) {
    try {
      return ProvisioningMessage.parse(pdu);
    } catch (ProvisioningException e) {
      return e.reason();
    }
  }

  @Test
  public void eightThreadsGetTheSingleThreadedResults() throws Exception {
    List<String> names = new ArrayList<>(Samples.PDUS.keySet());
    Map<String, Object> expected = names.stream().collect(Collectors.toMap(n -> n, n -> outcome(Samples.pdu(n))));
    ExecutorService pool = Executors.newFixedThreadPool(THREADS);
    try {
      List<Future<?>> runs = new ArrayList<>();
      for (int t = 0; t < THREADS; t++) {
        int first = t;
        runs.add(pool.submit(() -> {
          for (int i = 0; i < PARSES_PER_THREAD; i++) {
            String name = names.get((first + i * THREADS) % names.size());
            assertEquals(name, expected.get(name), outcome(Samples.PDUS.get(name)));
          }
        }));
      }
      for (Future<?> run : runs) {
        run.get();
      }
    } finally {
      pool.shutdownNow();
    }
  }
}
