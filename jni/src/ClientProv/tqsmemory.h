// Tracking allocator and memory primitives. Every heap block of the library is
// taken and returned here; each allocating call names its unit path and line so
// that a leak report (tracking on) can point at the call site.
#ifndef TQSMEMORY_H
#define TQSMEMORY_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

// One tracked block. pAddress null marks a free entry.
typedef struct MemCheckEntry {
    void *pAddress;
    uint32_t nSize;
    const char *pszFileName;
    uint32_t nLine;
} MemCheckEntry;

#define TQS_MEMCHECK_ENTRIES 2000u

// Process-wide tracking state: the table (null while off) and the on flag.
extern MemCheckEntry *ptMemCheckTable;
extern unsigned char bMemCheck;

void *tqsMemAlloc_debug(uint32_t size, const char *file, uint32_t line);
void *tqsMemAllocSetZero_debug(uint32_t size, const char *file, uint32_t line);
// count 16-bit units; the table records count, not bytes.
TqsWChar *tqsMemAllocW_debug(uint32_t count, const char *file, uint32_t line);
void *tqsMemDup_debug(const void *src, uint32_t size, const char *file, uint32_t line);
// The table records the text length without its zero.
char *tqsStrdup_debug(const char *text, const char *file, uint32_t line);
// Null for size 0 or null old (old stays alive); otherwise copies size bytes
// from old, frees old (even when the new allocation failed).
void *tqsMemReAlloc_debug(void *old, uint32_t size, const char *file, uint32_t line);
void tqsMemFree_debug(void *block);

TQS_EXPORT void tqsMemStartMemCheck(void);
// Prints one "[syncml] MEMCHECK ..." line per live tracked block, then stops tracking.
TQS_EXPORT void tqsMemEndMemCheck(void);
MemCheckEntry *tqsMemGetIndex(void);
MemCheckEntry *tqsMemGetEmptyIndex(void);
MemCheckEntry *tqsMemFindByAddress(const void *block);

void *tqsMemSet(void *dest, int value, uint32_t count);
void *tqsMemSetZero(void *dest, uint32_t count);
uint32_t tqsMemSetW(TqsWChar *dest, TqsWChar unit, uint32_t count);
void *tqsMemCpy(void *dest, const void *src, uint32_t count);
TqsWChar *tqsMemCpyW(TqsWChar *dest, const TqsWChar *src, uint32_t count);
int32_t tqsMemCmp(const void *a, const void *b, uint32_t count);
void *tqsMemMove(void *dest, const void *src, uint32_t count);

#ifdef __cplusplus
}
#endif

#endif  // TQSMEMORY_H
