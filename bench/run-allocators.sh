#!/usr/bin/env bash
# The benchmark twice, once on glibc's allocator and once on scudo (the
# allocator of the Android handsets the library ships for, from Debian's
# libclang-rt-14-dev, LD_PRELOADed), then both summaries one after the other.
#
# Usage: bench/run-allocators.sh [filter] [repetitions] [more benchmark options ...]
#   defaults: the README's results run, '/(small|typical|large)(/|$)' and 5 repetitions;
#   an empty filter runs everything. Full outputs are kept in build/bench/allocators/.
# SCUDO_LIB in the environment names another scudo build to preload.
set -euo pipefail
cd "$(dirname "$0")/.."
filter=${1-'/(small|typical|large)(/|$)'}
reps=${2:-5}
shift $(($# < 2 ? $# : 2))
bin=build/bench/bench/tqomacp_bench
[[ -x $bin ]] || { echo "$bin missing: cmake --preset bench && cmake --build --preset bench -j2 --target tqomacp_bench" >&2; exit 2; }

scudo_lib() {
    local name lib
    name=libclang_rt.scudo_standalone-$(uname -m).so
    if [[ -n ${SCUDO_LIB:-} ]]; then echo "$SCUDO_LIB"; return; fi
    # clang prints the bare name back when it does not have the file.
    lib=$(clang-14 -print-file-name="$name" 2>/dev/null || true)
    if [[ $lib != /* ]]; then lib=$(compgen -G "/usr/lib/llvm-*/lib/clang/*/lib/linux/$name" | sort -V | tail -1 || true); fi
    [[ -n $lib && -f $lib ]] || { echo "$name not found (Debian package libclang-rt-14-dev)" >&2; return 1; }
    echo "$lib"
}
scudo=$(scudo_lib)

out=build/bench/allocators
mkdir -p "$out"
args=(--benchmark_color=false)
[[ -n $filter ]] && args+=("--benchmark_filter=$filter")
((reps > 1)) && args+=("--benchmark_repetitions=$reps" --benchmark_report_aggregates_only=true)
args+=("$@")

for allocator in glibc scudo; do
    preload=
    [[ $allocator == scudo ]] && preload=$scudo
    echo "== $allocator: $bin ${args[*]}" >&2
    LD_PRELOAD=$preload "$bin" "${args[@]}" >"$out/$allocator.txt" 2>&1 ||
        { echo "$allocator run failed, see $out/$allocator.txt" >&2; tail -5 "$out/$allocator.txt" >&2; exit 1; }
done
for allocator in glibc scudo; do
    echo
    echo "==================== $allocator ($out/$allocator.txt)"
    sed -n '/^Summary:/,$p' "$out/$allocator.txt"
done
