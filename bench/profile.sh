#!/usr/bin/env bash
# Instruction profile of whole parses under callgrind (exact counts, unaffected
# by the other core's load): instructions per parse, split into the library's
# own code and the C library (malloc, free, memcpy, ...), then the top functions.
#
# Usage: bench/profile.sh [small|typical|large|typical-xN] [count]   (after the bench build)
set -euo pipefail
cd "$(dirname "$0")/.."
doc=${1:-typical}
count=${2:-1000}
bin=build/bench/bench/tqomacp_profile_loop
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT

# Per-object totals of one callgrind run: "<own> <other>" instructions.
split() {
    callgrind_annotate --auto=no --inclusive=no --threshold=100 "$1" 2>/dev/null | awk -v bin="$(basename "$bin")" '
        /^ *[0-9,]+ \(/ && /\[/ { n = $1; gsub(",", "", n); if (index($0, bin)) own += n; else other += n }
        END { printf "%d %d\n", own, other }'
}

# A run with a single parse measures the fixed cost (start-up, fixtures) to subtract.
valgrind --tool=callgrind --callgrind-out-file="$out/one" "$bin" "$doc" 1 >/dev/null 2>&1
valgrind --tool=callgrind --callgrind-out-file="$out/many" "$bin" "$doc" "$count" >/dev/null 2>&1
read -r own1 other1 < <(split "$out/one")
read -r own other < <(split "$out/many")
per() { echo $(( ($1 - $2) / (count - 1) )); }
echo "$doc: $(per $((own + other)) $((own1 + other1))) instructions per parse:" \
     "library $(per "$own" "$own1"), C library $(per "$other" "$other1")"
callgrind_annotate --auto=no "$out/many" 2>/dev/null | sed -n '/file:function/,$p' | head -30
