#include "leak_accounting.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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
std::vector<Spilled> g_spill;  // tracked by us because the table was full
std::size_t g_lastKept = 0;

// The table fills from its first free entry, so its last entry is in use only
// after it has been full once; only then can a new block go untracked.
bool TableMaybeFull() {
    return bMemCheck != 0 && ptMemCheckTable != nullptr &&
           ptMemCheckTable[TQS_MEMCHECK_ENTRIES - 1].pAddress != nullptr;
}

bool InTable(const void *block) {
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        if (ptMemCheckTable[i].pAddress == block) return true;
    }
    return false;
}

void NoteIfUntracked(bool maybeFull, void *block, uint32_t size, const char *file, uint32_t line) {
    if (!maybeFull || block == nullptr || InTable(block)) return;
    g_spill.push_back({block, size, {file, line}});
}

void ForgetSpilled(const void *block) {
    if (g_spill.empty() || block == nullptr) return;
    for (std::size_t i = 0; i < g_spill.size(); ++i) {
        if (g_spill[i].block == block) {
            g_spill[i] = g_spill.back();
            g_spill.pop_back();
            return;
        }
    }
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

void *__wrap_tqsMemAlloc_debug(uint32_t size, const char *file, uint32_t line) {
    const bool full = fuzz::TableMaybeFull();
    void *block = __real_tqsMemAlloc_debug(size, file, line);
    fuzz::NoteIfUntracked(full, block, size, file, line);
    return block;
}

void *__wrap_tqsMemAllocSetZero_debug(uint32_t size, const char *file, uint32_t line) {
    const bool full = fuzz::TableMaybeFull();
    void *block = __real_tqsMemAllocSetZero_debug(size, file, line);
    fuzz::NoteIfUntracked(full, block, size, file, line);
    return block;
}

TqsWChar *__wrap_tqsMemAllocW_debug(uint32_t count, const char *file, uint32_t line) {
    const bool full = fuzz::TableMaybeFull();
    TqsWChar *block = __real_tqsMemAllocW_debug(count, file, line);
    fuzz::NoteIfUntracked(full, block, count, file, line);
    return block;
}

void *__wrap_tqsMemDup_debug(const void *src, uint32_t size, const char *file, uint32_t line) {
    const bool full = fuzz::TableMaybeFull();
    void *block = __real_tqsMemDup_debug(src, size, file, line);
    fuzz::NoteIfUntracked(full, block, size, file, line);
    return block;
}

char *__wrap_tqsStrdup_debug(const char *text, const char *file, uint32_t line) {
    const bool full = fuzz::TableMaybeFull();
    char *block = __real_tqsStrdup_debug(text, file, line);
    fuzz::NoteIfUntracked(full, block, 0, file, line);
    return block;
}

void *__wrap_tqsMemReAlloc_debug(void *old, uint32_t size, const char *file, uint32_t line) {
    if (size != 0 && old != nullptr) fuzz::ForgetSpilled(old);  // the real one frees it
    const bool full = fuzz::TableMaybeFull();
    void *block = __real_tqsMemReAlloc_debug(old, size, file, line);
    fuzz::NoteIfUntracked(full, block, size, file, line);
    return block;
}

void __wrap_tqsMemFree_debug(void *block) {
    fuzz::ForgetSpilled(block);
    __real_tqsMemFree_debug(block);
}
}  // extern "C"

namespace fuzz {

void StartLeakAccounting() {
    if (g_enabled || std::getenv("TQOMACP_FUZZ_NO_LEAKCHECK") != nullptr) return;
    g_kept.reserve(1 << 16);
    g_spill.reserve(1 << 12);
    tqsMemStartMemCheck();
    g_enabled = true;
}

void Kept(const void *block) {
    if (g_enabled && block != nullptr) g_kept.push_back(block);
}

void CheckAndReleaseKept(const Site *sites, std::size_t count) {
    g_lastKept = 0;
    if (!g_enabled) return;
    std::sort(g_kept.begin(), g_kept.end());
    auto allowed = [&](const void *block, const char *file, uint32_t line) {
        return std::binary_search(g_kept.begin(), g_kept.end(), block) ||
               SiteAllowed(file, line, sites, count);
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
        if (e.pAddress != nullptr && !allowed(e.pAddress, e.pszFileName, e.nLine)) {
            report(e.pszFileName, e.nLine, e.nSize);
        }
    }
    for (const Spilled &s : g_spill) {
        if (!allowed(s.block, s.site.file, s.site.line)) report(s.site.file, s.site.line, s.size);
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
    for (const Spilled &s : g_spill) {
        std::free(s.block);  // not in the table: freed past the tracker
        ++g_lastKept;
    }
    g_spill.clear();
    g_kept.clear();
}

std::size_t LastKeptCount() {
    return g_lastKept;
}

}  // namespace fuzz
