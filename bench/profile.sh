#!/usr/bin/env bash
# Instruction profile of whole parses under callgrind (exact counts, unaffected
# by the other core's load). Prints the per-parse total and the top functions.
#
# Usage: bench/profile.sh [small|typical|large] [count]   (after the bench build)
set -euo pipefail
cd "$(dirname "$0")/.."
doc=${1:-typical}
count=${2:-2000}
bin=build/bench/bench/tqomacp_profile_loop
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
# One run with a single parse measures the fixed cost (start-up, fixtures) to subtract.
valgrind --tool=callgrind --callgrind-out-file="$out/one" "$bin" "$doc" 1 >/dev/null 2>"$out/one.log"
valgrind --tool=callgrind --callgrind-out-file="$out/many" "$bin" "$doc" "$count" >/dev/null 2>"$out/many.log"
one=$(grep -o 'Collected : [0-9]*' "$out/one.log" | grep -o '[0-9]*')
many=$(grep -o 'Collected : [0-9]*' "$out/many.log" | grep -o '[0-9]*')
echo "$doc: $(( (many - one) / (count - 1) )) instructions per parse"
callgrind_annotate --inclusive=no "$out/many" 2>/dev/null | sed -n '/^Ir/,$p' | head -40
