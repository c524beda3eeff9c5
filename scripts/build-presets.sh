#!/usr/bin/env bash
# Every build preset builds whole, as `cmake --build --preset P` with no target.
# default, asan and arm64 are built that way by their own steps of
# scripts/test.sh; fuzz/ci.sh and bench/smoke.sh build only part of theirs, so
# this finishes them, and builds release. The android presets need an NDK:
# without ANDROID_NDK_HOME or ANDROID_NDK_ROOT they are skipped by name; with
# one they are built. A preset added later is built here unless listed below.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)

presets=$(cmake --list-presets=build | sed -n 's/^ *"\([^"]*\)".*/\1/p')
if [ -z "$presets" ]; then
  echo "build-presets: cmake --list-presets=build listed none" >&2
  exit 1
fi
for preset in $presets; do
  case $preset in
    default | asan | arm64)
      echo "== preset $preset: built whole by its own step"
      continue ;;
    android-*)
      if [ -z "${ANDROID_NDK_HOME:-}${ANDROID_NDK_ROOT:-}" ]; then
        echo "== preset $preset: SKIPPED, no Android NDK (set ANDROID_NDK_HOME)"
        continue
      fi ;;
  esac
  echo "== preset $preset"
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset" -j"$jobs"
done
