// Counts heap blocks taken by anything in this process (the library, the
// peer, the C++ runtime) through an interposed malloc family.
#ifndef TQOMACP_BENCH_ALLOC_COUNT_H
#define TQOMACP_BENCH_ALLOC_COUNT_H

#include <cstddef>

namespace bench {

struct AllocStats {
    size_t nAllocs;  // malloc, calloc and realloc calls that returned a block
    size_t nFrees;   // free calls with a non-null block
    size_t nBytes;   // bytes asked for
};

// A snapshot of the running totals; subtract two to count a region.
AllocStats AllocSnapshot();

inline AllocStats operator-(const AllocStats &a, const AllocStats &b) {
    return {a.nAllocs - b.nAllocs, a.nFrees - b.nFrees, a.nBytes - b.nBytes};
}

}  // namespace bench

#endif
