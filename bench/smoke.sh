#!/usr/bin/env bash
# Keeps the benchmark from rotting: builds it, runs a few benchmarks briefly under
# glibc's allocator and under scudo, and checks that both runs count the same
# blocks for every benchmark. Times are not looked at.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --preset bench >/dev/null
cmake --build --preset bench -j"$(nproc)" --target tqomacp_bench
bench/run-allocators.sh '^(e2e|e2e_traced|peer_libwbxml|stage_decode|getters)/(small|typical)(/|$)' 1 \
    --benchmark_min_time=0.01 >/dev/null

# "<benchmark> <allocs>" for every row of one run's table (colour codes dropped).
allocs() {
    sed 's/\x1b\[[0-9;]*m//g' "build/bench/allocators/$1.txt" |
        awk '$1 ~ /^[a-z0-9_]+\/(small|typical)(\/|$)/ { print $1, $7 }'
}
glibc=$(allocs glibc)
scudo=$(allocs scudo)
rows=$(wc -l <<<"$glibc")
if [[ -z $glibc || $rows -lt 10 || $glibc != "$scudo" ]]; then
    echo "bench smoke: allocation counts differ or rows are missing" >&2
    diff <(echo "$glibc") <(echo "$scudo") >&2 || true
    exit 1
fi
grep -q '^Targets' build/bench/allocators/glibc.txt || { echo "bench smoke: no summary" >&2; exit 1; }
echo "bench smoke: $rows benchmarks ran under glibc and scudo with the same block counts"
