// Runs the fuzz targets' work on a thread whose stack is as small as the
// smallest thread stack the library must live with (256 KB), so that deep
// recursion shows up as a crash here rather than on a handset.
#ifndef TQOMACP_FUZZ_SMALL_STACK_H
#define TQOMACP_FUZZ_SMALL_STACK_H

#include <cstddef>
#include <cstdint>

namespace fuzz {

inline constexpr std::size_t kWorkStackBytes = 256 * 1024;

// One fuzz input. libFuzzer hands the empty input as a null pointer; RunInput
// replaces it by a real one, so the library's own null checks are not what
// the targets exercise.
struct Input {
    const uint8_t *data;
    size_t size;
};

// Runs a target's work for one input on the small stack.
void RunInput(void (*work)(const Input &), const uint8_t *data, size_t size);

// Calls fn(arg) on a long-lived worker thread with a kWorkStackBytes stack and
// waits for it. The worker is started on first use.
void RunOnSmallStack(void (*fn)(void *), void *arg);

}  // namespace fuzz

#endif  // TQOMACP_FUZZ_SMALL_STACK_H
