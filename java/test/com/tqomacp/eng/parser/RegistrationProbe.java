package com.tqomacp.eng.parser;

/**
 * Run in a child JVM by RegistrationTest: loads the library and prints how the load ended on one
 * line starting with "LOAD ", then what the loader reports on a line starting with "LOADED ".
 */
public final class RegistrationProbe {
  private RegistrationProbe() {}

  public static void main(String[] args) {
    try {
      TqomacpLibrary.load();
      System.out.println("LOAD OK");
    } catch (Throwable t) {
      System.out.println("LOAD FAILED " + t.getClass().getName() + ": " + t.getMessage());
    }
    System.out.println("LOADED " + TqomacpLibrary.isLoaded());
    System.out.flush();
  }
}
