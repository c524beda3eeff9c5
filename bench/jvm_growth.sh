#!/usr/bin/env bash
# How much a real JVM grows per parse: JvmGrowth.java parses one PDU in a loop
# (tqomacp_parser, then tqomacp_parser_del) against the built jar and
# libtqomacp.so and prints the resident-set growth per parse. The body copy
# each parse keeps by design is part of the figure; its size is printed.
#
# Usage: bench/jvm_growth.sh [build dir] [pdu] [count] [mode]   (after a build with Java)
#   JVM_FLAGS="-Xcheck:jni" bench/jvm_growth.sh ...   runs under the checked JNI
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/default}
pdu=${2:-tests/corpus/ws-bank-userpin.pdu}
count=${3:-300000}
mode=${4:-0}
jar=$build/java/tqomacp.jar
lib=$(dirname "$(find "$build/jni" -maxdepth 1 -name libtqomacp.so | head -1)")
[[ -f $jar && -n $lib ]] || { echo "jvm_growth: no tqomacp.jar or libtqomacp.so under $build" >&2; exit 1; }
classes=$(mktemp -d)
trap 'rm -rf "$classes"' EXIT
javac -cp "$jar" -d "$classes" bench/JvmGrowth.java
# A fixed small heap keeps the Java heap's own growth out of the figure.
# shellcheck disable=SC2086
java -Xms32m -Xmx32m ${JVM_FLAGS:-} -Djava.library.path="$lib" -cp "$jar:$classes" JvmGrowth "$pdu" "$count" "$mode"
