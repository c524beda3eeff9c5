// Leak-tracker scope for tests: switches the library's tracking allocator on
// for its lifetime and lets a test look at the blocks still allocated.
// The destructor stops tracking without printing the report (the entries are
// dropped first); the blocks themselves are not freed.
#ifndef TQOMACP_TESTS_SUPPORT_MEM_CHECK_H
#define TQOMACP_TESTS_SUPPORT_MEM_CHECK_H

#include <cstdint>
#include <string>
#include <vector>

struct LiveBlock {
    void *address;
    uint32_t size;
    std::string file;
    uint32_t line;
};

class MemCheck {
   public:
    MemCheck();
    ~MemCheck();
    MemCheck(const MemCheck &) = delete;
    MemCheck &operator=(const MemCheck &) = delete;

    // Tracked blocks still allocated, in table order.
    std::vector<LiveBlock> Live() const;
    size_t CountAt(const std::string &file, uint32_t line) const;
    // Frees every tracked block still allocated (for blocks that the library
    // leaves behind by design), so that the sanitizer's leak check stays quiet.
    void FreeAll();
};

#endif  // TQOMACP_TESTS_SUPPORT_MEM_CHECK_H
