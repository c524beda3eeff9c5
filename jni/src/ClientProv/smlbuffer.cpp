#include "smlbuffer.h"

#include "tqsmemory.h"
#include "tqsstring.h"

static const char kUnitPath[] = "jni/src/ClientProv/smlbuffer";

// Allocation lines that the leak report shows.
static const uint32_t kLineRecord = 130;
static const uint32_t kLineOutsideRecord = 231;
static const uint32_t kLineStorage = 138;
static const uint32_t kLineGrownStorage = 188;
static const uint32_t kLineInsertScratch = 300;
static const uint32_t kLineShiftScratch = 493;

// Smallest growth of smlBufferRealloc, and the extra room an append asks for.
static const uint32_t kMinGrowth = 512;
static const uint32_t kAppendSlack = 256;

static_assert(sizeof(SmlBuffer) == 4 * sizeof(void *) + 3 * sizeof(uint32_t) + 4, "SmlBuffer: 7 fields");

namespace {

SmlBuffer *NewRecord(uint32_t line) {
    return static_cast<SmlBuffer *>(tqsMemAllocSetZero_debug(sizeof(SmlBuffer) + 1, kUnitPath, line));
}

// Storage sizes are computed in 64 bits: capacity + 1 must not wrap into a short block.
unsigned char *NewStorage(uint64_t size, uint32_t line) {
    if (size > UINT32_MAX) return nullptr;
    return static_cast<unsigned char *>(
        tqsMemAllocSetZero_debug(static_cast<uint32_t>(size), kUnitPath, line));
}

uint64_t Least(uint64_t a, uint64_t b) {
    return a < b ? a : b;
}

// Bytes of storage from the head to its end.
uint64_t Room(const SmlBuffer *buffer) {
    return static_cast<uint64_t>(buffer->pEnd - buffer->pHead);
}

// Data bytes that lie in the storage from the head: nDataSize, unless a pull
// past the data wrapped it, when that many bytes would run out of the storage.
uint32_t Stored(const SmlBuffer *buffer) {
    return static_cast<uint32_t>(Least(buffer->nDataSize, Room(buffer)));
}

// pTail = pHead + nDataSize, as far as the storage goes.
void PlaceTail(SmlBuffer *buffer) {
    buffer->pTail = buffer->pHead + Stored(buffer);
}

}  // namespace

extern "C" {

TqsResult smlBufferInit(SmlBuffer *buffer) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    if (buffer->pBase != nullptr) tqsMemSetZero(buffer->pBase, buffer->nBufSize);
    buffer->pHead = buffer->pTail = buffer->pBase;
    buffer->nDataSize = 0;
    buffer->pEnd = buffer->pBase + buffer->nBufSize;
    return TQS_OK;
}

TqsResult smlBufferCreate(SmlBuffer **out, uint32_t capacity) {
    *out = nullptr;  // out-parameters read null on every failure
    SmlBuffer *buffer = NewRecord(kLineRecord);
    if (buffer == nullptr) return TQS_ERROR_MEMORY;
    unsigned char *storage = NewStorage(uint64_t{capacity} + 1, kLineStorage);
    if (storage == nullptr) {
        tqsMemFree_debug(buffer);
        return TQS_ERROR_MEMORY;
    }
    buffer->nBufSize = capacity;
    buffer->pBase = storage;
    (void)smlBufferInit(buffer);  // cannot fail: the record is not null
    *out = buffer;
    return TQS_OK;
}

TqsResult smlBufferCreateOutsideBuf(SmlBuffer **out, unsigned char *storage, uint32_t size) {
    *out = nullptr;
    SmlBuffer *buffer = NewRecord(kLineOutsideRecord);
    if (buffer == nullptr) return TQS_ERROR_MEMORY;
    buffer->bOutside = 1;
    buffer->nBufSize = size;
    buffer->pBase = storage;
    (void)smlBufferInit(buffer);  // cannot fail: the record is not null
    *out = buffer;
    return TQS_OK;
}

TqsResult smlBufferDuplicate(SmlBuffer **out, const SmlBuffer *source) {
    *out = nullptr;
    if (source == nullptr) return TQS_ERROR_BUFFER_NULL;
    SmlBuffer *copy = nullptr;
    // A failed creation would be written through null: report it instead.
    TqsResult result = smlBufferCreate(&copy, source->nBufSize);
    if (result != TQS_OK) return result;
    tqsMemCpy(copy->pBase, source->pBase, source->nBufSize);
    copy->pHead = copy->pBase + (source->pHead - source->pBase);
    copy->pTail = copy->pBase + (source->pTail - source->pBase);
    copy->nDataSize = source->nDataSize;
    *out = copy;
    return TQS_OK;
}

TqsResult smlBufferDelete(SmlBuffer *buffer) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    if (buffer->bOutside == 0) tqsMemFree_debug(buffer->pBase);
    tqsMemFree_debug(buffer);
    return TQS_OK;
}

TqsResult smlBufferRealloc(SmlBuffer *buffer, uint32_t growth) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    if (growth < kMinGrowth) growth = kMinGrowth;
    if (buffer->bOutside != 0) return TQS_ERROR_BUFFER_OUTSIDE;
    // A capacity past 32 bits cannot be described by nBufSize: refuse it as a failed allocation.
    uint64_t capacity = uint64_t{buffer->nBufSize} + growth;
    if (capacity >= UINT32_MAX) return TQS_ERROR_MEMORY;
    unsigned char *storage = NewStorage(capacity + 1, kLineGrownStorage);
    if (storage == nullptr) return TQS_ERROR_MEMORY;
    uint32_t stored = Stored(buffer);
    if (stored != 0) tqsMemCpy(storage, buffer->pHead, stored);
    tqsMemFree_debug(buffer->pBase);
    buffer->nBufSize = static_cast<uint32_t>(capacity);
    buffer->pBase = buffer->pHead = storage;
    buffer->pEnd = buffer->pBase + buffer->nBufSize;
    PlaceTail(buffer);
    return TQS_OK;
}

TqsResult smlBufferAppendTail(SmlBuffer *buffer, const void *data, uint32_t length) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    if (length == 0 || data == nullptr) return TQS_OK;
    // Grows already when the data would fit exactly: one free byte stays behind the data.
    if (static_cast<uint32_t>(buffer->pEnd - buffer->pTail) <= length) {
        // length + 256 in 64 bits: near 2^32 the sum must not wrap into a small growth.
        uint64_t growth = uint64_t{length} + kAppendSlack;
        if (growth > UINT32_MAX) return TQS_ERROR_MEMORY;
        TqsResult result = smlBufferRealloc(buffer, static_cast<uint32_t>(growth));
        if (result != TQS_OK) return result;
    }
    tqsMemCpy(buffer->pTail, data, length);
    buffer->nDataSize += length;
    PlaceTail(buffer);
    return TQS_OK;
}

TqsResult smlBufferAppendStr(SmlBuffer *buffer, const char *text) {
    return smlBufferAppendTail(buffer, text, tqsStrlen(text));
}

TqsResult smlBufferInsertHead(SmlBuffer *buffer, const void *data, uint32_t length) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    uint32_t dataSize = Stored(buffer);
    // The scratch copy is taken whether or not it turns out to be needed.
    unsigned char *scratch = NewStorage(uint64_t{dataSize} + 2, kLineInsertScratch);
    if (scratch != nullptr && dataSize != 0) tqsMemCpy(scratch, buffer->pHead, dataSize);
    if (static_cast<uint64_t>(buffer->pHead - buffer->pBase) < length) {
        // No room before the head: the data move up by length behind a (maybe grown) storage start.
        if (static_cast<uint64_t>(buffer->pEnd - (buffer->pHead + dataSize)) < length) {
            TqsResult result = smlBufferRealloc(buffer, length);
            if (result != TQS_OK) {
                tqsMemFree_debug(scratch);
                return result;
            }
        }
        // Without the (untested) scratch block an overlapping move does the same job.
        if (scratch != nullptr) {
            tqsMemCpy(buffer->pHead + length, scratch, dataSize);
        } else {
            tqsMemMove(buffer->pHead + length, buffer->pHead, dataSize);
        }
        buffer->pTail = buffer->pHead + length + dataSize;
    } else {
        buffer->pHead -= length;
    }
    buffer->nDataSize += length;
    tqsMemFree_debug(scratch);
    if (length != 0) tqsMemCpy(buffer->pHead, data, length);
    return TQS_OK;
}

TqsResult smlBufferGetData(SmlBuffer *buffer, void *destination, uint32_t length) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    // Fewer stored bytes than nDataSize claims (a pull wrapped it) count as fewer data.
    if (buffer->pHead == nullptr || buffer->nDataSize == 0 || Stored(buffer) < length) {
        return TQS_ERROR_BUFFER_NO_DATA;
    }
    tqsMemCpy(destination, buffer->pHead, length);
    buffer->pHead += length;
    buffer->nDataSize -= length;
    return TQS_OK;
}

TqsResult smlBufferPull(SmlBuffer *buffer, uint32_t length) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    // No check: past the data nDataSize wraps. Past the storage the head stops at its end.
    buffer->pHead += Least(length, Room(buffer));
    buffer->nDataSize -= length;
    return TQS_OK;
}

TqsResult smlBufferShifthead(SmlBuffer *buffer) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    if (buffer->pHead == buffer->pBase) return TQS_OK;
    if (buffer->nDataSize == 0) return smlBufferInit(buffer);
    uint32_t dataSize = Stored(buffer);
    unsigned char *scratch = NewStorage(uint64_t{dataSize} + 2, kLineShiftScratch);
    // Without the scratch block an overlapping move does the same job.
    if (scratch != nullptr) {
        tqsMemCpy(scratch, buffer->pHead, dataSize);
        tqsMemCpy(buffer->pBase, scratch, dataSize);
        tqsMemFree_debug(scratch);
    } else {
        tqsMemMove(buffer->pBase, buffer->pHead, dataSize);
    }
    buffer->pHead = buffer->pBase;
    buffer->pTail = buffer->pBase + dataSize;
    tqsMemSetZero(buffer->pTail, static_cast<uint32_t>(buffer->pEnd - buffer->pTail));
    return TQS_OK;
}

TqsResult smlBufferCut(SmlBuffer *buffer, uint32_t offset, uint32_t length) {
    if (buffer == nullptr) return TQS_ERROR_BUFFER_NULL;
    uint32_t dataSize = buffer->nDataSize;
    if (dataSize == 0 || dataSize < offset) return TQS_ERROR_BUFFER_NO_DATA;
    // Compared as offset > dataSize - length: offset + length must not wrap.
    if (length > dataSize - offset) length = dataSize - offset;
    // Past a wrapped nDataSize only the stored bytes are touched, and the tail stops at the base.
    uint32_t stored = Stored(buffer);
    buffer->pTail -= Least(length, static_cast<uint64_t>(buffer->pTail - buffer->pBase));
    if (offset + length == dataSize) {
        // The cut reaches the end: the zeroing lands at the head, not at the cut.
        tqsMemSetZero(buffer->pHead, static_cast<uint32_t>(Least(length, stored)));
    } else if (uint64_t{offset} + length < stored) {
        tqsMemMove(buffer->pHead + offset, buffer->pHead + offset + length, stored - (offset + length));
    }
    buffer->nDataSize -= length;
    return TQS_OK;
}

unsigned char *smlBufferGetDataBuffer(const SmlBuffer *buffer, uint32_t offset) {
    if (buffer == nullptr || offset > Stored(buffer)) return nullptr;
    return buffer->pHead + offset;
}

uint32_t smlBufferGetDataSize(const SmlBuffer *buffer) {
    return buffer == nullptr ? 0 : buffer->nDataSize;
}

uint32_t smlBufferGetRemainSize(const SmlBuffer *buffer) {
    return buffer == nullptr ? 0 : static_cast<uint32_t>(buffer->pEnd - buffer->pTail);
}

}  // extern "C"
