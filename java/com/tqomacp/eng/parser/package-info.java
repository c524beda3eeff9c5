/**
 * The library's 85 natives on nine classes, as it registers them: the parse entry, release and
 * push header queries on {@link com.tqomacp.eng.parser.XCPCtxParser}, and count, value and record
 * queries on the eight classes of the provisioning context.
 *
 * <p>Applications use {@link com.tqomacp.cp} instead, which calls these safely and reads every
 * value into immutable records. Code that calls them directly must keep the rules of {@link
 * com.tqomacp.eng.parser.XCPCtxParser}: one parse at a time, read back, released with {@code
 * tqomacp_parser_del}, all under the lock of that class.
 *
 * <p>Every class loads the library ({@link com.tqomacp.eng.parser.TqomacpLibrary}) when it is
 * first used; the library binds all 85 natives while it loads, so none may be renamed or removed
 * by a shrinker (the jar carries keep rules for R8 and ProGuard).
 */
package com.tqomacp.eng.parser;
