#!/usr/bin/env bash
# CI stage for the fuzz targets: builds them (preset "fuzz": clang-14,
# libFuzzer, ASan + UBSan), replays each seed corpus, then fuzzes each target
# for a short while (FUZZ_SECONDS, default 60) from its seeds. Any crash,
# sanitizer report, stray block (leak accounting) or input slower than the
# timeout fails the stage; the input is left under build/fuzz/artifacts/.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${FUZZ_SECONDS:-60}

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j"$(nproc)" --target fuzz_all

bin=build/fuzz/fuzz
artifacts=build/fuzz/artifacts
mkdir -p "$artifacts"
ran=0
for seeds in fuzz/seeds/*/; do
  name=$(basename "$seeds")
  exe=$bin/fuzz_$name
  if [ ! -x "$exe" ]; then
    echo "== fuzz $name: not built yet (library unit missing), skipped"
    continue
  fi
  ran=$((ran + 1))
  common=(-max_len=65536 -timeout=2 -rss_limit_mb=2048 -dict=fuzz/dict/provisioning.dict
          -close_fd_mask=1 -artifact_prefix="$artifacts/$name-")

  echo "== fuzz $name: replay of $(ls "$seeds" | wc -l) seeds"
  log=build/fuzz/ci-$name-replay.log
  if ! "$exe" "${common[@]}" -runs=0 "$seeds" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz $name: seed replay FAILED"
    exit 1
  fi
  grep -E '^#[0-9]+.*DONE' "$log" || true

  corpus=build/fuzz/ci-corpus/$name
  rm -rf "$corpus" && mkdir -p "$corpus"
  echo "== fuzz $name: ${seconds}s of fuzzing"
  log=build/fuzz/ci-$name.log
  if ! "$exe" "${common[@]}" -seed=1 -max_total_time="$seconds" -print_final_stats=1 \
      "$corpus" "$seeds" >"$log" 2>&1; then
    tail -n 60 "$log"
    echo "fuzz $name: FAILED (input saved under $artifacts/)"
    exit 1
  fi
  grep -E '^#[0-9]+.*DONE|stat::number_of_executed_units|stat::peak_rss_mb' "$log" || true
done
echo "== fuzz: $ran target(s) replayed and fuzzed"
