#!/usr/bin/env bash
# Shrinks KeepRulesApp with tqomacp.jar as an Android release build does (the
# default rule for natives, obfuscation on) and runs it with -Xcheck:jni. With
# the rules the jar carries it must load the library and print the bearer of
# the push; without them the library's registration must fail.
# Usage: keep_rules.sh PROGUARD JDK_BIN TQOMACP_JAR LIBRARY_DIR PDU WORK_DIR [JAVA...]
# JAVA is the VM that loads LIBRARY_DIR's library (default: JDK_BIN's).
set -euo pipefail
proguard=$1 jdk=$2 lib_jar=$3 lib_dir=$4 pdu=$5 work=$6
shift 6
java=("$@")
[ ${#java[@]} -gt 0 ] || java=("$jdk/java")
here=$(cd "$(dirname "$0")" && pwd)
fail() { echo "FAIL: $*" >&2; exit 1; }
[ -x "$proguard" ] || fail "no proguard ($proguard): install proguard-cli (scripts/setup.sh)"
rm -rf "$work" && mkdir -p "$work/app" && cd "$work"
"$jdk/javac" --release 8 -cp "$lib_jar" -d app "$here/KeepRulesApp.java"
"$jdk/jar" xf "$lib_jar" META-INF/proguard/tqomacp.pro

# ProGuard 6.2 reads class files up to Java 13, so not the JDK 17 runtime:
# java.* and javax.* stay unresolved, which changes nothing that is kept.
cat >app.pro <<PRO
-injars app
-injars $lib_jar(!META-INF/**)
-dontwarn java.**
-dontwarn javax.**
-dontwarn org.jetbrains.annotations.**
-keep public class KeepRulesApp { public static void main(java.lang.String[]); }
-keepclasseswithmembernames class * { native <methods>; }
PRO
run() { # SHRUNK_JAR [RULES...]
  "$proguard" @app.pro -outjars "$@" >proguard.log || { cat proguard.log; fail "proguard failed"; }
  "${java[@]}" -Xcheck:jni -Djava.library.path="$lib_dir" -cp "$1" KeepRulesApp "$pdu" 2>&1
}

out=$(run with-rules.jar -include META-INF/proguard/tqomacp.pro) || fail "with the shipped rules: $out"
[ "$out" = GSM-GPRS ] || fail "with the shipped rules, printed: $out"
out=$(run default-rules.jar) && fail "loaded without the shipped rules: $out"
grep -q 'NoSuchMethodError' <<<"$out" || fail "without the shipped rules, not a registration failure: $out"
echo "keep rules: the shrunk app loads and prints $pdu's bearer; without them the load fails"
