#!/usr/bin/env bash
# CI stage for the fuzz targets: builds them (preset "fuzz": clang-14,
# libFuzzer, ASan + UBSan), replays each target's seeds and stress inputs,
# then fuzzes each target briefly: FUZZ_SECONDS (default 45) with inputs of
# up to 4 KB, which real messages fit, then FUZZ_LARGE_SECONDS (default 10)
# with inputs of up to 64 KB, from the stress inputs too. Any crash, sanitizer
# report, stray block (leak accounting) or input slower than the timeout fails
# the stage; the input is left under <build>/artifacts/. So does a target that
# was not built, or seed folders that do not match the targets.
# FUZZ_BUILD_DIR (default build/fuzz) moves the build.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-45}
large=${FUZZ_LARGE_SECONDS:-10}
build=${FUZZ_BUILD_DIR:-build/fuzz}

cmake --preset fuzz -B "$build" >/dev/null
cmake --build "$build" -j"$(nproc)" --target fuzz_all

targets=$(sort "$build/fuzz/targets.txt")
folders=$(for d in fuzz/seeds/*/; do basename "$d"; done | sort)
if [ "$targets" != "$folders" ]; then
  echo "fuzz: the seed folders ($(echo $folders)) are not the targets ($(echo $targets))" >&2
  exit 1
fi

artifacts=$build/artifacts
mkdir -p "$artifacts"
# run <name> <log> <libFuzzer arguments...>: fails the stage on any finding.
run() {
  local name=$1 log=$2
  shift 2
  if ! "$build/fuzz/fuzz_$name" -timeout=2 -rss_limit_mb=2048 -dict=fuzz/dict/provisioning.dict \
      -close_fd_mask=1 -artifact_prefix="$artifacts/$name-" "$@" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz $name: FAILED (input saved under $artifacts/)"
    exit 1
  fi
  grep -E '^#[0-9]+.*DONE|stat::number_of_executed_units|stat::peak_rss_mb' "$log" || true
}

for name in $targets; do
  if [ ! -x "$build/fuzz/fuzz_$name" ]; then
    echo "fuzz $name: listed but not built" >&2
    exit 1
  fi
  seeds=fuzz/seeds/$name
  stress=fuzz/stress/$name
  echo "== fuzz $name: replay of $(ls "$seeds" | wc -l) seeds and $(ls "$stress" | wc -l) stress inputs"
  run "$name" "$build/ci-$name-replay.log" -max_len=65536 -runs=0 "$seeds" "$stress"

  corpus=$build/ci-corpus/$name
  rm -rf "$corpus" && mkdir -p "$corpus"
  echo "== fuzz $name: ${seconds}s of fuzzing, inputs up to 4 KB"
  run "$name" "$build/ci-$name.log" -seed=1 -max_len=4096 -max_total_time="$seconds" \
    -print_final_stats=1 "$corpus" "$seeds"
  echo "== fuzz $name: ${large}s of fuzzing, inputs up to 64 KB"
  run "$name" "$build/ci-$name-large.log" -seed=2 -max_len=65536 -len_control=0 \
    -max_total_time="$large" -print_final_stats=1 "$corpus" "$stress"
done
echo "== fuzz: $(echo $targets | wc -w) target(s) replayed and fuzzed"
