#include "leak_accounting.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#include "tqsmemory.h"

namespace fuzz {
namespace {

struct Spilled {
    void *block;
    uint32_t size;
    Site site;
};

bool g_enabled = false;
std::vector<const void *> g_kept;
struct Copy {
    std::string text;
    const char *unit;
};
std::vector<Copy> g_copies;  // unreachable copies the library leaves behind
// Tracked by us because the table was full; by address, so that a free finds
// its entry at once however many there are.
std::unordered_map<const void *, Spilled> g_spill;
std::size_t g_lastKept = 0;

// Failure injection: off until InjectFailure, then every allocation is logged.
bool g_injecting = false;
long g_failAt = -1;
std::vector<Site> g_log;

// Logs one allocation; true when it is the one to fail.
bool FailsNow(const char *file, uint32_t line) {
    if (!g_injecting) return false;
    g_log.push_back({file, line});
    return static_cast<long>(g_log.size()) - 1 == g_failAt;
}

// Entries of the tracker's table in use, followed through the wrappers below
// (every table change happens inside a wrapped call), so that a full table is
// known without scanning it. Resynchronised after every input.
std::size_t g_used = 0;

bool TableFull() {
    return bMemCheck != 0 && g_used >= TQS_MEMCHECK_ENTRIES;
}

// A new block: in the table unless it was full, then ours.
void NoteNew(bool full, void *block, uint32_t size, const char *file, uint32_t line) {
    if (bMemCheck == 0 || block == nullptr) return;
    if (full) {
        g_spill[block] = Spilled{block, size, {file, line}};
    } else {
        ++g_used;
    }
}

// A block about to be freed: ours, or else an entry of the table.
void NoteGone(const void *block) {
    if (bMemCheck == 0 || block == nullptr) return;
    if (g_spill.erase(block) == 0 && g_used > 0) --g_used;
}

bool SiteAllowed(const char *file, uint32_t line, const Site *sites, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if ((sites[i].line == 0 || sites[i].line == line) && file != nullptr &&
            std::strcmp(sites[i].file, file) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace
}  // namespace fuzz

// Link-time wrappers of the allocator entry points (-Wl,--wrap=...): calls
// between the library's units land here first.
extern "C" {
void *__real_tqsMemAlloc_debug(uint32_t size, const char *file, uint32_t line);
void *__real_tqsMemAllocSetZero_debug(uint32_t size, const char *file, uint32_t line);
TqsWChar *__real_tqsMemAllocW_debug(uint32_t count, const char *file, uint32_t line);
void *__real_tqsMemDup_debug(const void *src, uint32_t size, const char *file, uint32_t line);
char *__real_tqsStrdup_debug(const char *text, const char *file, uint32_t line);
void *__real_tqsMemReAlloc_debug(void *old, uint32_t size, const char *file, uint32_t line);
void __real_tqsMemFree_debug(void *block);
void __wrap_tqsMemFree_debug(void *block);

void *__wrap_tqsMemAlloc_debug(uint32_t size, const char *file, uint32_t line) {
    if (fuzz::FailsNow(file, line)) return nullptr;
    const bool full = fuzz::TableFull();
    void *block = __real_tqsMemAlloc_debug(size, file, line);
    fuzz::NoteNew(full, block, size, file, line);
    return block;
}

void *__wrap_tqsMemAllocSetZero_debug(uint32_t size, const char *file, uint32_t line) {
    if (fuzz::FailsNow(file, line)) return nullptr;
    const bool full = fuzz::TableFull();
    void *block = __real_tqsMemAllocSetZero_debug(size, file, line);
    fuzz::NoteNew(full, block, size, file, line);
    return block;
}

TqsWChar *__wrap_tqsMemAllocW_debug(uint32_t count, const char *file, uint32_t line) {
    if (fuzz::FailsNow(file, line)) return nullptr;
    const bool full = fuzz::TableFull();
    TqsWChar *block = __real_tqsMemAllocW_debug(count, file, line);
    fuzz::NoteNew(full, block, count, file, line);
    return block;
}

void *__wrap_tqsMemDup_debug(const void *src, uint32_t size, const char *file, uint32_t line) {
    if (fuzz::FailsNow(file, line)) return nullptr;
    const bool full = fuzz::TableFull();
    void *block = __real_tqsMemDup_debug(src, size, file, line);
    fuzz::NoteNew(full, block, size, file, line);
    return block;
}

char *__wrap_tqsStrdup_debug(const char *text, const char *file, uint32_t line) {
    if (fuzz::FailsNow(file, line)) return nullptr;
    const bool full = fuzz::TableFull();
    char *block = __real_tqsStrdup_debug(text, file, line);
    fuzz::NoteNew(full, block, text != nullptr ? static_cast<uint32_t>(std::strlen(text)) : 0, file, line);
    return block;
}

void *__wrap_tqsMemReAlloc_debug(void *old, uint32_t size, const char *file, uint32_t line) {
    if (size == 0 || old == nullptr) return __real_tqsMemReAlloc_debug(old, size, file, line);
    if (fuzz::FailsNow(file, line)) {
        __wrap_tqsMemFree_debug(old);
        return nullptr;
    }
    // The real one enters the new block, then frees the old one.
    const bool full = fuzz::TableFull();
    void *block = __real_tqsMemReAlloc_debug(old, size, file, line);
    fuzz::NoteNew(full, block, size, file, line);
    fuzz::NoteGone(old);
    return block;
}

void __wrap_tqsMemFree_debug(void *block) {
    fuzz::NoteGone(block);
    __real_tqsMemFree_debug(block);
}
}  // extern "C"

namespace fuzz {

void StartLeakAccounting() {
    if (g_enabled || std::getenv("TQOMACP_FUZZ_NO_LEAKCHECK") != nullptr) return;
    g_kept.reserve(1 << 16);
    g_spill.reserve(1 << 14);
    tqsMemStartMemCheck();
    g_enabled = true;
}

void Kept(const void *block) {
    if (g_enabled && block != nullptr) g_kept.push_back(block);
}

void KeptCopyOf(const char *text, const char *unit) {
    if (g_enabled && text != nullptr) g_copies.push_back({text, unit});
}

namespace {

// Takes one registered copy whose unit and text match the block.
bool TakeCopy(const void *block, const char *file, uint32_t size) {
    for (std::size_t i = 0; i < g_copies.size(); ++i) {
        const Copy &c = g_copies[i];
        if (file == nullptr || std::strcmp(c.unit, file) != 0 || c.text.size() != size) continue;
        if (std::memcmp(block, c.text.c_str(), c.text.size() + 1) != 0) continue;
        g_copies[i] = g_copies.back();
        g_copies.pop_back();
        return true;
    }
    return false;
}

}  // namespace

void CheckAndReleaseKept(const Site *sites, std::size_t count) {
    g_lastKept = 0;
    if (!g_enabled) return;
    std::sort(g_kept.begin(), g_kept.end());
    auto allowed = [&](const void *block, const char *file, uint32_t line, uint32_t size) {
        return std::binary_search(g_kept.begin(), g_kept.end(), block) ||
               SiteAllowed(file, line, sites, count) || TakeCopy(block, file, size);
    };

    std::size_t stray = 0;
    auto report = [&](const char *file, uint32_t line, uint32_t size) {
        std::fprintf(stderr,
                     "LEAK: a block (size %u) allocated at %s:%u is still allocated after the "
                     "input and is not one the library keeps on purpose\n",
                     size, file != nullptr ? file : "?", line);
        ++stray;
    };
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        const MemCheckEntry &e = ptMemCheckTable[i];
        if (e.pAddress != nullptr && !allowed(e.pAddress, e.pszFileName, e.nLine, e.nSize)) {
            report(e.pszFileName, e.nLine, e.nSize);
        }
    }
    for (const auto &[address, s] : g_spill) {
        if (!allowed(s.block, s.site.file, s.site.line, s.size)) {
            report(s.site.file, s.site.line, s.size);
        }
    }
    if (stray != 0) {
        std::fprintf(stderr, "LEAK: %zu stray block(s)\n", stray);
        std::fflush(stderr);
        std::abort();
    }

    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        void *block = ptMemCheckTable[i].pAddress;
        if (block != nullptr) {
            __real_tqsMemFree_debug(block);  // clears the entry too
            ++g_lastKept;
        }
    }
    for (const auto &[address, s] : g_spill) {
        std::free(s.block);  // not in the table: freed past the tracker
        ++g_lastKept;
    }
    g_spill.clear();
    g_used = 0;  // the table is empty again
    g_kept.clear();
    g_copies.clear();
}

std::size_t LastKeptCount() {
    return g_lastKept;
}

void InjectFailure(long n) {
    g_injecting = true;
    g_failAt = n;
    g_log.clear();
}

const std::vector<Site> &AllocationLog() {
    return g_log;
}

bool FailureInjected() {
    return g_injecting && g_failAt >= 0 && static_cast<long>(g_log.size()) > g_failAt;
}

}  // namespace fuzz
