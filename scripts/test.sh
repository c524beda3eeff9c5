#!/usr/bin/env bash
# The whole test run: sanitizer build, the stages that other parts of the tree
# provide (arm64 under qemu, fuzzing, a benchmark smoke run, every other preset
# built whole), then the default build whose ctest summary ends the output.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)

cmake --preset asan >/dev/null
cmake --build --preset asan -j"$jobs"
ctest --preset asan -j"$jobs" --output-on-failure

for stage in scripts/test-arm64.sh fuzz/ci.sh bench/smoke.sh scripts/build-presets.sh; do
  # Every stage is part of the run: a lost file or exec bit is a failure.
  if [ ! -x "$stage" ]; then
    echo "$stage: missing or not executable" >&2
    exit 1
  fi
  echo "== $stage"
  "$stage"
done

cmake --preset default >/dev/null
cmake --build --preset default -j"$jobs"
ctest --preset default -j"$jobs"
