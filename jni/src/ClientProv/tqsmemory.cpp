#include "tqsmemory.h"

#include <malloc.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tqsstring.h"

MemCheckEntry *ptMemCheckTable = nullptr;
unsigned char bMemCheck = 0;

static_assert(sizeof(MemCheckEntry) == 4 * sizeof(void *), "MemCheckEntry: 4 fields, 32 bytes on 64-bit");
static_assert(offsetof(MemCheckEntry, nLine) == 3 * sizeof(void *), "MemCheckEntry field order");

namespace {

// Common tail of every allocating routine. A null block is entered too and
// leaves the entry looking free.
void *Record(void *block, uint32_t size, const char *file, uint32_t line) {
    if (bMemCheck == 0) return block;
    MemCheckEntry *entry = tqsMemGetEmptyIndex();
    if (entry == nullptr) return block;
    entry->pAddress = block;
    entry->nSize = size;
    entry->pszFileName = file;
    entry->nLine = line;
    return block;
}

// First entry whose address equals `address`, or null.
MemCheckEntry *Find(const void *address) {
    if (ptMemCheckTable == nullptr) return nullptr;
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        if (ptMemCheckTable[i].pAddress == address) return &ptMemCheckTable[i];
    }
    return nullptr;
}

}  // namespace

extern "C" {

void *tqsMemAlloc_debug(uint32_t size, const char *file, uint32_t line) {
    return Record(malloc(size), size, file, line);
}

void *tqsMemAllocSetZero_debug(uint32_t size, const char *file, uint32_t line) {
    void *block = malloc(size);
    // Hides the block's origin so that the compiler does not fold the pair into
    // calloc(), which in glibc bypasses the per-thread cache malloc() serves from.
    __asm__("" : "+r"(block));
    if (block != nullptr) memset(block, 0, size);
    return Record(block, size, file, line);
}

TqsWChar *tqsMemAllocW_debug(uint32_t count, const char *file, uint32_t line) {
    // 64-bit product: a count near 2^31 must not wrap into a short block.
    return static_cast<TqsWChar *>(Record(malloc(uint64_t{count} * sizeof(TqsWChar)), count, file, line));
}

void *tqsMemDup_debug(const void *src, uint32_t size, const char *file, uint32_t line) {
    void *block = malloc(size);
    // Nothing to copy into after a failed allocation, nothing to copy from a null source.
    if (block != nullptr && src != nullptr) memcpy(block, src, size);
    return Record(block, size, file, line);
}

char *tqsStrdup_debug(const char *text, const char *file, uint32_t line) {
    uint32_t length = tqsStrlen(text);
    char *block = static_cast<char *>(malloc(uint64_t{length} + 1));
    // Nothing to copy into after a failed allocation; a null text copies as the empty text.
    if (block != nullptr) {
        if (text != nullptr) memcpy(block, text, length);
        block[length] = '\0';
    }
    return static_cast<char *>(Record(block, length, file, line));
}

void *tqsMemReAlloc_debug(void *old, uint32_t size, const char *file, uint32_t line) {
    if (size == 0 || old == nullptr) return nullptr;
    void *block = malloc(size);
    if (block != nullptr) {
        // Copying size bytes would read past a smaller old block: copy what it
        // holds and zero the rest.
        size_t held = malloc_usable_size(old);
        size_t copied = held < size ? held : size;
        memcpy(block, old, copied);
        memset(static_cast<unsigned char *>(block) + copied, 0, size - copied);
    }
    Record(block, size, file, line);
    tqsMemFree_debug(old);
    return block;
}

void tqsMemFree_debug(void *block) {
    if (block == nullptr) return;
    if (bMemCheck != 0) {
        MemCheckEntry *entry = tqsMemFindByAddress(block);
        if (entry != nullptr) *entry = MemCheckEntry{};
    }
    free(block);
}

void tqsMemStartMemCheck(void) {
    ptMemCheckTable = static_cast<MemCheckEntry *>(malloc(TQS_MEMCHECK_ENTRIES * sizeof(MemCheckEntry)));
    // A failed table allocation is not reported: tracking goes on without a
    // table (every block untracked), as zeroing through null would be undefined.
    if (ptMemCheckTable != nullptr) memset(ptMemCheckTable, 0, TQS_MEMCHECK_ENTRIES * sizeof(MemCheckEntry));
    bMemCheck = 1;
}

void tqsMemEndMemCheck(void) {
    if (bMemCheck != 1) return;
    for (MemCheckEntry *entry = tqsMemGetIndex(); entry != nullptr; entry = tqsMemGetIndex()) {
        printf("[syncml] MEMCHECK Filename:%s Line:%d Size:%d \n", entry->pszFileName,
               static_cast<int>(entry->nLine), static_cast<int>(entry->nSize));
        *entry = MemCheckEntry{};
    }
    free(ptMemCheckTable);
    ptMemCheckTable = nullptr;
    bMemCheck = 0;
}

MemCheckEntry *tqsMemGetIndex(void) {
    if (ptMemCheckTable == nullptr) return nullptr;
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        if (ptMemCheckTable[i].pAddress != nullptr) return &ptMemCheckTable[i];
    }
    return nullptr;
}

MemCheckEntry *tqsMemGetEmptyIndex(void) {
    MemCheckEntry *entry = Find(nullptr);
    if (entry == nullptr) puts("[syncml] MEMCHECK Not Found Empty Index");
    return entry;
}

MemCheckEntry *tqsMemFindByAddress(const void *block) {
    MemCheckEntry *entry = Find(block);
    if (entry == nullptr) puts("[syncml] MEMCHECK Not Found Address ");
    return entry;
}

void *tqsMemSet(void *dest, int value, uint32_t count) {
    return memset(dest, value, count);
}

void *tqsMemSetZero(void *dest, uint32_t count) {
    return tqsMemSet(dest, 0, count);
}

uint32_t tqsMemSetW(TqsWChar *dest, TqsWChar unit, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) dest[i] = unit;
    return count;
}

void *tqsMemCpy(void *dest, const void *src, uint32_t count) {
    return memcpy(dest, src, count);
}

TqsWChar *tqsMemCpyW(TqsWChar *dest, const TqsWChar *src, uint32_t count) {
    if (dest == nullptr || src == nullptr) return nullptr;
    memcpy(dest, src, uint64_t{count} * sizeof(TqsWChar));
    return dest;
}

int32_t tqsMemCmp(const void *a, const void *b, uint32_t count) {
    return memcmp(a, b, count);
}

void *tqsMemMove(void *dest, const void *src, uint32_t count) {
    return memmove(dest, src, count);
}

}  // extern "C"
