package com.tqomacp.eng.parser;

/**
 * Loads the native parser once per class loader.
 *
 * <p>The library binds the natives of all nine XCPCtx classes while it loads, so it must be
 * loaded by the class loader that sees them. By default it is found on java.library.path as
 * "tqomacp"; the system property {@code tqomacp.library} may name the file directly.
 */
public final class TqomacpLibrary {
  /** The library's name for {@link System#loadLibrary}: the file is libtqomacp.so. */
  public static final String NAME = "tqomacp";
  /** System property that names the library file by its path, overriding the name. */
  public static final String PATH_PROPERTY = "tqomacp.library";

  private static boolean loaded;
  // True while the library's JNI_OnLoad runs: its registration initialises the XCPCtx classes,
  // whose static blocks call load() again on this thread.
  private static boolean loading;

  private TqomacpLibrary() {}

  /** Loads the library; a failed load is retried on the next call. */
  public static synchronized void load() {
    if (loaded || loading) {
      return;
    }
    loading = true;
    try {
      String path = System.getProperty(PATH_PROPERTY);
      if (path != null && !path.isEmpty()) {
        System.load(path);
      } else {
        System.loadLibrary(NAME);
      }
      loaded = true;
    } finally {
      loading = false;
    }
  }

  /** {@return whether the library has been loaded by this class loader} */
  public static synchronized boolean isLoaded() {
    return loaded;
  }
}
