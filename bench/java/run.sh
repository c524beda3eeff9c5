#!/usr/bin/env bash
# Runs the JVM benchmark of the Java facade against the raw natives (see
# FacadeBench.java) on a build that has tqomacp.jar and libtqomacp.so.
# Usage: bench/java/run.sh [BUILD_DIR] [SECONDS_PER_ROUND] [ROUNDS]
#   BUILD_DIR defaults to build/default (cmake --preset default; the targets
#   tqomacp and tqomacp_jar are enough).
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build/default}" && pwd)
jar=$build/java/tqomacp.jar
lib=$(dirname "$(find "$build" -name libtqomacp.so -print -quit)")
[ -f "$jar" ] && [ -f "$lib/libtqomacp.so" ] || {
  echo "no tqomacp.jar or libtqomacp.so under $build: build the targets tqomacp and tqomacp_jar" >&2
  exit 1
}
classes=$(mktemp -d)
trap 'rm -rf "$classes"' EXIT
javac --release 11 -encoding UTF-8 -cp "$jar" -d "$classes" "$root/bench/java/FacadeBench.java"
java -Djava.library.path="$lib" -cp "$jar:$classes" FacadeBench \
  "$root/bench/documents.inc" "${2:-1}" "${3:-9}"
