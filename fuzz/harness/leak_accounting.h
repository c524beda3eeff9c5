// Leak accounting for the fuzz targets, on top of the library's own leak
// tracker (tqsMemStartMemCheck and its MemCheckEntry table).
//
// After each input every block the tracker still lists must be one the
// library keeps on purpose:
//   - a block registered with Kept() by the walkers of kept_blocks.h, which
//     note the exact addresses of the fields the release routines leave
//     alone (ROAMING records, NAPDEF INIT, APPLICATION FROM/XCAP, the Wi-Fi
//     chain of a context, NAPDEF records cut off by the cursor, ...) right
//     before those routines run;
//   - or a block from one of the allocation sites given to the check: the
//     push header record on a refused content type and the body copy (fixed
//     lines), and the decoder's own allocations, which its failure paths and
//     repeated parms leave behind by design wherever they happen (the
//     characteristic and record being decoded, lists of the failing run,
//     overwritten values, the APPLICATION scratch block): any line of that
//     unit and of the list unit.
// Anything else is a leak: the target prints the sites and aborts, so that
// libFuzzer keeps the input. Afterwards the target frees the kept blocks
// itself, which keeps LeakSanitizer meaningful for everything else.
//
// The tracker's table has 2000 entries; a document can hold more blocks at
// once. The allocator entry points are wrapped at link time (-Wl,--wrap) so
// that a block the full table could not take is remembered with its site
// here instead, and the accounting stays complete.
#ifndef TQOMACP_FUZZ_LEAK_ACCOUNTING_H
#define TQOMACP_FUZZ_LEAK_ACCOUNTING_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

struct Site {
    const char *file;  // unit path as the library passes it
    uint32_t line;
};

// Turns the library's tracker on (once per process). With the environment
// variable TQOMACP_FUZZ_NO_LEAKCHECK set, tracking stays off and Check()
// only frees nothing; used to time the library alone.
void StartLeakAccounting();

// Notes a block the library deliberately keeps (null is ignored).
void Kept(const void *block);

// Notes that the library left behind one unreachable copy of `text` (the
// first copy of a context string that a second copy replaced): one still
// allocated block of that unit holding the same bytes is accepted for it.
void KeptCopyOf(const char *text, const char *unit);

// Checks the blocks still allocated against Kept() and `sites`, aborts on a
// stray block, then frees every remaining block and forgets the kept set.
void CheckAndReleaseKept(const Site *sites, std::size_t count);

template <std::size_t N>
void CheckAndReleaseKept(const Site (&sites)[N]) {
    CheckAndReleaseKept(sites, N);
}

// Blocks the last CheckAndReleaseKept released (for the replay statistics).
std::size_t LastKeptCount();

// Failure injection through the same wrappers. From InjectFailure(n) on,
// allocations are counted and their sites logged, and allocation number n
// (from 0) fails as a failed malloc does: null, and a reallocation still
// frees the old block. A negative n fails none: a counting run.
void InjectFailure(long n);
const std::vector<Site> &AllocationLog();
// Whether the allocation chosen by the last InjectFailure has failed.
bool FailureInjected();

}  // namespace fuzz

#endif  // TQOMACP_FUZZ_LEAK_ACCOUNTING_H
