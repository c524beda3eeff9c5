// Growable byte buffer with a movable head: append at the tail, consume or
// insert at the head. Can wrap caller-owned storage, which it never grows or frees.
#ifndef SMLBUFFER_H
#define SMLBUFFER_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct SmlBuffer {
    unsigned char *pHead;  // read position
    unsigned char *pBase;  // start of storage
    unsigned char *pTail;  // write position
    unsigned char *pEnd;   // pBase + nBufSize; own storage keeps a zero byte here
    uint32_t nDataSize;
    uint32_t nBufSize;
    uint32_t bOutside;  // 1: storage belongs to the caller
} SmlBuffer;

TqsResult smlBufferCreate(SmlBuffer **out, uint32_t capacity);
// Zero-fills the caller's storage.
TqsResult smlBufferCreateOutsideBuf(SmlBuffer **out, unsigned char *storage, uint32_t size);
TqsResult smlBufferDuplicate(SmlBuffer **out, const SmlBuffer *source);
TqsResult smlBufferInit(SmlBuffer *buffer);
TqsResult smlBufferDelete(SmlBuffer *buffer);
// Growth below 512 is raised to 512; data move to the front of the new storage.
TqsResult smlBufferRealloc(SmlBuffer *buffer, uint32_t growth);
TqsResult smlBufferAppendTail(SmlBuffer *buffer, const void *data, uint32_t length);
TqsResult smlBufferAppendStr(SmlBuffer *buffer, const char *text);
TqsResult smlBufferInsertHead(SmlBuffer *buffer, const void *data, uint32_t length);
TqsResult smlBufferGetData(SmlBuffer *buffer, void *destination, uint32_t length);
// No check: pulling past the data wraps nDataSize; the head stops at pEnd.
TqsResult smlBufferPull(SmlBuffer *buffer, uint32_t length);
TqsResult smlBufferShifthead(SmlBuffer *buffer);
TqsResult smlBufferCut(SmlBuffer *buffer, uint32_t offset, uint32_t length);
unsigned char *smlBufferGetDataBuffer(const SmlBuffer *buffer, uint32_t offset);
uint32_t smlBufferGetDataSize(const SmlBuffer *buffer);
uint32_t smlBufferGetRemainSize(const SmlBuffer *buffer);

#ifdef __cplusplus
}
#endif

#endif  // SMLBUFFER_H
