#include "mem_check.h"

#include "tqsmemory.h"

MemCheck::MemCheck() {
    tqsMemStartMemCheck();
}

MemCheck::~MemCheck() {
    if (bMemCheck == 1 && ptMemCheckTable != nullptr) {
        for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) ptMemCheckTable[i] = MemCheckEntry{};
    }
    tqsMemEndMemCheck();
}

std::vector<LiveBlock> MemCheck::Live() const {
    std::vector<LiveBlock> live;
    if (ptMemCheckTable == nullptr) return live;
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        const MemCheckEntry &e = ptMemCheckTable[i];
        if (e.pAddress != nullptr) {
            live.push_back({e.pAddress, e.nSize, e.pszFileName != nullptr ? e.pszFileName : "", e.nLine});
        }
    }
    return live;
}

size_t MemCheck::CountAt(const std::string &file, uint32_t line) const {
    size_t n = 0;
    for (const LiveBlock &block : Live()) {
        if (block.file == file && block.line == line) ++n;
    }
    return n;
}

void MemCheck::FreeAll() {
    for (const LiveBlock &block : Live()) tqsMemFree_debug(block.address);
}
