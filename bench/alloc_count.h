// Counts heap blocks taken by anything in this process (the library, the
// peer, the C++ runtime) through an interposed malloc family that forwards to
// whichever allocator comes next: glibc's, or one that is LD_PRELOADed.
#ifndef TQOMACP_BENCH_ALLOC_COUNT_H
#define TQOMACP_BENCH_ALLOC_COUNT_H

#include <cstddef>
#include <string>

namespace bench {

struct AllocStats {
    size_t nAllocs;  // malloc, calloc and realloc calls that returned a block
    size_t nFrees;   // free calls with a non-null block
    size_t nBytes;   // bytes asked for
};

// A snapshot of the running totals; subtract two to count a region.
AllocStats AllocSnapshot();

// The allocator that serves the blocks: "glibc", or e.g.
// "scudo (LD_PRELOAD libclang_rt.scudo_standalone-x86_64.so)".
std::string AllocatorName();

inline AllocStats operator-(const AllocStats &a, const AllocStats &b) {
    return {a.nAllocs - b.nAllocs, a.nFrees - b.nFrees, a.nBytes - b.nBytes};
}

}  // namespace bench

#endif
