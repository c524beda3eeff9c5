#!/usr/bin/env bash
# Long fuzzing campaigns, all targets at once, each in its own background
# libFuzzer run that keeps going past crashes (fork mode) at low priority.
#
#   fuzz/run-long.sh [-t SECONDS] [TARGET...]      (default: 3600 s, every target)
#
# Everything lands in fuzz/work/campaign-<UTC time>/<target>/ (git-ignored):
# corpus/, artifacts/ (one file per finding), fuzz.log. At the end a summary
# per target (executions, time, edges covered by the final corpus, findings,
# slowest corpus input without sanitizers) is written to summary.md there and
# printed; fuzz/README.md records the campaigns that were run.
set -euo pipefail
cd "$(dirname "$0")/.."

seconds=3600
if [ "${1:-}" = "-t" ]; then
  seconds=$2
  shift 2
fi
targets=("$@")
if [ ${#targets[@]} -eq 0 ]; then
  for seeds in fuzz/seeds/*/; do targets+=("$(basename "$seeds")"); done
fi

cmake --preset fuzz >/dev/null
cmake --build --preset fuzz -j2 --target fuzz_all >/dev/null
# The replay drivers of the default build time the corpus without sanitizers.
cmake --preset default >/dev/null
replays=()
for t in "${targets[@]}"; do replays+=(--target "fuzz_${t}_replay"); done
cmake --build --preset default -j2 "${replays[@]}" >/dev/null

campaign=fuzz/work/campaign-$(date -u +%Y%m%dT%H%MZ)
mkdir -p "$campaign/bin"
echo "campaign $campaign: ${targets[*]} for ${seconds}s each"
# Fork mode starts the executable again for every job: run copies, so that
# rebuilding the tree meanwhile does not change what is being fuzzed.
for t in "${targets[@]}"; do
  [ -x "build/fuzz/fuzz/fuzz_$t" ] || { echo "fuzz_$t is not built" >&2; exit 1; }
  cp "build/fuzz/fuzz/fuzz_$t" "build/default/fuzz/fuzz_${t}_replay" "$campaign/bin/"
done
git rev-parse HEAD >"$campaign/commit"

pids=()
for t in "${targets[@]}"; do
  exe=$campaign/bin/fuzz_$t
  dir=$campaign/$t
  mkdir -p "$dir/corpus" "$dir/artifacts"
  nice -n 10 "$exe" -fork=1 -ignore_crashes=1 -ignore_timeouts=1 -ignore_ooms=1 \
    -max_total_time="$seconds" -max_len=65536 -timeout=2 -rss_limit_mb=2048 \
    -dict=fuzz/dict/provisioning.dict -close_fd_mask=1 \
    -artifact_prefix="$dir/artifacts/" "$dir/corpus" "fuzz/seeds/$t" "fuzz/stress/$t" >"$dir/fuzz.log" 2>&1 &
  pids+=($!)
done
status=0
for pid in "${pids[@]}"; do wait "$pid" || status=1; done

summary=$campaign/summary.md
{
  echo "| target | executions | time | edges (final corpus) | corpus | findings | slowest input (no sanitizers) |"
  echo "|---|---|---|---|---|---|---|"
  for t in "${targets[@]}"; do
    dir=$campaign/$t
    execs=$(grep -oE '^#[0-9]+' "$dir/fuzz.log" | tail -n 1 | tr -d '#')
    took=$(grep -oE 'exiting: [0-9]+ time: [0-9]+s' "$dir/fuzz.log" | grep -oE '[0-9]+s$' || true)
    edges=$("$campaign/bin/fuzz_$t" -runs=0 -max_len=65536 -close_fd_mask=1 "$dir/corpus" 2>&1 |
            grep -oE 'INITED cov: [0-9]+' | grep -oE '[0-9]+$' || true)
    files=$(find "$dir/corpus" -type f | wc -l)
    findings=$(find "$dir/artifacts" -type f | wc -l)
    slowest=$(TQOMACP_FUZZ_NO_LEAKCHECK=1 "$campaign/bin/fuzz_${t}_replay" --repeat 3 \
              "$dir/corpus" "fuzz/seeds/$t" "fuzz/stress/$t" | sed -E 's/.*slowest ([0-9.]+ ms).*/\1/')
    echo "| $t | ${execs:-?} | ${took:-?} | ${edges:-?} | $files | $findings | $slowest |"
  done
} >"$summary"
cat "$summary"
find "$campaign" -path '*/artifacts/*' -type f -print
exit $status
