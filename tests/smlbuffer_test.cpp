#include "smlbuffer.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "mem_check.h"
#include "tqsmemory.h"

namespace {

const char kUnit[] = "jni/src/ClientProv/smlbuffer";

std::vector<unsigned char> Data(const SmlBuffer *buffer) {
    const unsigned char *p = smlBufferGetDataBuffer(buffer, 0);
    return std::vector<unsigned char>(p, p + smlBufferGetDataSize(buffer));
}

std::vector<unsigned char> Bytes(unsigned char first, size_t count) {
    std::vector<unsigned char> v(count);
    std::iota(v.begin(), v.end(), first);
    return v;
}

// A buffer of capacity `capacity` holding the bytes 0..count-1.
SmlBuffer *Filled(uint32_t capacity, uint32_t count) {
    SmlBuffer *buffer = nullptr;
    EXPECT_EQ(smlBufferCreate(&buffer, capacity), TQS_OK);
    std::vector<unsigned char> bytes = Bytes(0, count);
    EXPECT_EQ(smlBufferAppendTail(buffer, bytes.data(), count), TQS_OK);
    return buffer;
}

void ExpectInvariants(const SmlBuffer *b) {
    EXPECT_LE(b->pBase, b->pHead);
    EXPECT_EQ(b->pTail, b->pHead + b->nDataSize);
    EXPECT_LE(b->pTail, b->pEnd);
    EXPECT_EQ(b->pEnd, b->pBase + b->nBufSize);
}

TEST(SmlBuffer, CreateAllocationLinesAndZeroAtEnd) {
    MemCheck check;
    SmlBuffer *buffer = nullptr;
    ASSERT_EQ(smlBufferCreate(&buffer, 10), TQS_OK);
    EXPECT_EQ(check.CountAt(kUnit, 130), 1u);
    EXPECT_EQ(check.CountAt(kUnit, 138), 1u);
    EXPECT_EQ(buffer->nBufSize, 10u);
    EXPECT_EQ(buffer->bOutside, 0u);
    EXPECT_EQ(*buffer->pEnd, 0);  // own storage is one byte longer
    EXPECT_EQ(smlBufferGetRemainSize(buffer), 10u);
    ExpectInvariants(buffer);
    EXPECT_EQ(smlBufferDelete(buffer), TQS_OK);
    EXPECT_TRUE(check.Live().empty());
    EXPECT_EQ(smlBufferDelete(nullptr), TQS_ERROR_BUFFER_NULL);
}

TEST(SmlBuffer, GrowthSizes) {
    MemCheck check;
    struct Case {
        uint32_t capacity, before, append, grown;
    } cases[] = {
        {10, 0, 10, 522},       // exact fit still grows: at least 512
        {10, 0, 9, 10},         // one byte stays free: no growth
        {100, 99, 1000, 1356},  // full (one byte always stays free): grows by 1000 + 256
        {100, 40, 59, 100},    {100, 40, 60, 612},
    };
    for (const Case &c : cases) {
        SmlBuffer *buffer = Filled(c.capacity, c.before);
        std::vector<unsigned char> more = Bytes(c.before, c.append);
        ASSERT_EQ(smlBufferAppendTail(buffer, more.data(), c.append), TQS_OK);
        EXPECT_EQ(buffer->nBufSize, c.grown) << c.capacity << "+" << c.before << "+" << c.append;
        EXPECT_EQ(Data(buffer), Bytes(0, c.before + c.append));
        EXPECT_EQ(check.CountAt(kUnit, 188), c.grown != c.capacity ? 1u : 0u);
        ExpectInvariants(buffer);
        smlBufferDelete(buffer);
    }
}

TEST(SmlBuffer, ReallocMovesDataToTheFront) {
    SmlBuffer *buffer = Filled(16, 10);
    ASSERT_EQ(smlBufferPull(buffer, 4), TQS_OK);
    ASSERT_EQ(smlBufferRealloc(buffer, 1), TQS_OK);  // raised to 512
    EXPECT_EQ(buffer->nBufSize, 16u + 512u);
    EXPECT_EQ(buffer->pHead, buffer->pBase);
    EXPECT_EQ(Data(buffer), Bytes(4, 6));
    ExpectInvariants(buffer);
    smlBufferDelete(buffer);
}

TEST(SmlBuffer, AppendNothing) {
    SmlBuffer *buffer = Filled(8, 3);
    SmlBuffer before = *buffer;
    EXPECT_EQ(smlBufferAppendTail(buffer, "xyz", 0), TQS_OK);
    EXPECT_EQ(smlBufferAppendTail(buffer, nullptr, 5), TQS_OK);
    EXPECT_EQ(buffer->pTail, before.pTail);
    EXPECT_EQ(buffer->nDataSize, 3u);
    EXPECT_EQ(smlBufferAppendTail(nullptr, "x", 1), TQS_ERROR_BUFFER_NULL);
    EXPECT_EQ(smlBufferAppendStr(buffer, "ab"), TQS_OK);
    EXPECT_EQ(Data(buffer), (std::vector<unsigned char>{0, 1, 2, 'a', 'b'}));
    smlBufferDelete(buffer);
}

TEST(SmlBuffer, GetDataAndPull) {
    SmlBuffer *buffer = Filled(16, 10);
    unsigned char out[16] = {};
    EXPECT_EQ(smlBufferGetData(buffer, out, 4), TQS_OK);
    EXPECT_EQ(out[3], 3);
    EXPECT_EQ(smlBufferGetDataSize(buffer), 6u);
    EXPECT_EQ(*smlBufferGetDataBuffer(buffer, 0), 4);  // the fifth byte appended
    EXPECT_EQ(buffer->pTail, buffer->pBase + 10);      // the tail does not move
    EXPECT_EQ(smlBufferGetDataBuffer(buffer, 6), buffer->pTail);
    EXPECT_EQ(smlBufferGetDataBuffer(buffer, 7), nullptr);
    EXPECT_EQ(smlBufferGetData(buffer, out, 7), TQS_ERROR_BUFFER_NO_DATA);
    EXPECT_EQ(smlBufferGetData(nullptr, out, 1), TQS_ERROR_BUFFER_NULL);
    EXPECT_EQ(smlBufferPull(buffer, 2), TQS_OK);
    EXPECT_EQ(*smlBufferGetDataBuffer(buffer, 0), 6);
    // Pulling past the data would move the head out of the storage: it stops at the end.
    EXPECT_EQ(smlBufferPull(buffer, 100), TQS_OK);
    EXPECT_EQ(smlBufferGetDataSize(buffer), 0u);
    EXPECT_EQ(buffer->pHead, buffer->pTail);
    EXPECT_EQ(smlBufferGetData(buffer, out, 0), TQS_ERROR_BUFFER_NO_DATA);
    EXPECT_EQ(smlBufferPull(nullptr, 1), TQS_ERROR_BUFFER_NULL);
    EXPECT_EQ(smlBufferGetDataSize(nullptr), 0u);
    EXPECT_EQ(smlBufferGetRemainSize(nullptr), 0u);
    EXPECT_EQ(smlBufferGetDataBuffer(nullptr, 0), nullptr);
    smlBufferDelete(buffer);
}

TEST(SmlBuffer, InsertHead) {
    MemCheck check;
    // Room before the head: the head moves back, the data stay.
    SmlBuffer *buffer = Filled(16, 10);
    unsigned char out[4];
    smlBufferGetData(buffer, out, 4);
    unsigned char *tail = buffer->pTail;
    ASSERT_EQ(smlBufferInsertHead(buffer, "abc", 3), TQS_OK);
    EXPECT_EQ(buffer->pHead, buffer->pBase + 1);
    EXPECT_EQ(buffer->pTail, tail);
    EXPECT_EQ(Data(buffer), (std::vector<unsigned char>{'a', 'b', 'c', 4, 5, 6, 7, 8, 9}));
    EXPECT_EQ(check.Live().size(), 2u);  // the scratch copy (line 300) is freed again
    ExpectInvariants(buffer);
    smlBufferDelete(buffer);

    // No room before the head, room behind: the data move up.
    buffer = Filled(16, 5);
    ASSERT_EQ(smlBufferInsertHead(buffer, "xy", 2), TQS_OK);
    EXPECT_EQ(buffer->nBufSize, 16u);
    EXPECT_EQ(Data(buffer), (std::vector<unsigned char>{'x', 'y', 0, 1, 2, 3, 4}));
    ExpectInvariants(buffer);
    smlBufferDelete(buffer);

    // No room anywhere: grows by at least 512.
    buffer = Filled(8, 7);
    ASSERT_EQ(smlBufferInsertHead(buffer, "xy", 2), TQS_OK);
    EXPECT_EQ(buffer->nBufSize, 8u + 512u);
    EXPECT_EQ(Data(buffer), (std::vector<unsigned char>{'x', 'y', 0, 1, 2, 3, 4, 5, 6}));
    ExpectInvariants(buffer);
    smlBufferDelete(buffer);
    EXPECT_TRUE(check.Live().empty());
    EXPECT_EQ(smlBufferInsertHead(nullptr, "x", 1), TQS_ERROR_BUFFER_NULL);
}

TEST(SmlBuffer, Cut) {
    struct Case {
        uint32_t offset, length;
        std::vector<unsigned char> data;
    } cases[] = {
        {2, 3, {0, 1, 5, 6, 7, 8, 9}},
        {7, 5, {0, 0, 0, 3, 4, 5, 6}},  // reaches the end: the head is zeroed, not the cut
        {0, 10, {}},
        {10, 3, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {0, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9}},
        {3, 0xFFFFFFFFu, {0, 0, 0}},  // length clipped without wrapping offset + length
    };
    for (const Case &c : cases) {
        SmlBuffer *buffer = Filled(16, 10);
        EXPECT_EQ(smlBufferCut(buffer, c.offset, c.length), TQS_OK);
        EXPECT_EQ(Data(buffer), c.data) << c.offset << "," << c.length;
        ExpectInvariants(buffer);
        smlBufferDelete(buffer);
    }
    SmlBuffer *buffer = Filled(16, 10);
    EXPECT_EQ(smlBufferCut(buffer, 11, 1), TQS_ERROR_BUFFER_NO_DATA);
    EXPECT_EQ(smlBufferCut(nullptr, 0, 1), TQS_ERROR_BUFFER_NULL);
    smlBufferInit(buffer);
    EXPECT_EQ(smlBufferCut(buffer, 0, 1), TQS_ERROR_BUFFER_NO_DATA);
    smlBufferDelete(buffer);
}

TEST(SmlBuffer, ShiftheadAndInit) {
    MemCheck check;
    SmlBuffer *buffer = Filled(16, 10);
    unsigned char out[4];
    smlBufferGetData(buffer, out, 4);
    ASSERT_EQ(smlBufferShifthead(buffer), TQS_OK);
    EXPECT_EQ(buffer->pHead, buffer->pBase);
    EXPECT_EQ(Data(buffer), Bytes(4, 6));
    for (unsigned char *p = buffer->pTail; p < buffer->pEnd; ++p) EXPECT_EQ(*p, 0);
    ExpectInvariants(buffer);
    EXPECT_EQ(check.Live().size(), 2u);  // scratch (line 493) freed

    smlBufferGetData(buffer, out, 4);
    smlBufferPull(buffer, 2);  // empty, head moved
    ASSERT_EQ(smlBufferShifthead(buffer), TQS_OK);
    EXPECT_EQ(buffer->pHead, buffer->pBase);
    EXPECT_EQ(buffer->pTail, buffer->pBase);
    EXPECT_EQ(buffer->pBase[0], 0);  // cleared by init
    EXPECT_EQ(smlBufferShifthead(nullptr), TQS_ERROR_BUFFER_NULL);
    EXPECT_EQ(smlBufferInit(nullptr), TQS_ERROR_BUFFER_NULL);
    smlBufferDelete(buffer);
}

TEST(SmlBuffer, OutsideStorage) {
    MemCheck check;
    unsigned char storage[32];
    std::fill(std::begin(storage), std::end(storage), 0xEE);
    SmlBuffer *buffer = nullptr;
    ASSERT_EQ(smlBufferCreateOutsideBuf(&buffer, storage, 16), TQS_OK);
    EXPECT_EQ(check.CountAt(kUnit, 231), 1u);
    EXPECT_EQ(buffer->bOutside, 1u);
    EXPECT_EQ(storage[0], 0);  // the caller's bytes are wiped
    EXPECT_EQ(storage[15], 0);
    EXPECT_EQ(storage[16], 0xEE);
    EXPECT_EQ(smlBufferRealloc(buffer, 10), TQS_ERROR_BUFFER_OUTSIDE);
    const unsigned char more[15] = {};
    EXPECT_EQ(smlBufferAppendTail(buffer, more, 15), TQS_OK);
    EXPECT_EQ(smlBufferAppendTail(buffer, "x", 1), TQS_ERROR_BUFFER_OUTSIDE);  // would need growth
    EXPECT_EQ(smlBufferGetDataSize(buffer), 15u);
    EXPECT_EQ(smlBufferDelete(buffer), TQS_OK);  // the storage is not freed
    EXPECT_TRUE(check.Live().empty());
}

TEST(SmlBuffer, Duplicate) {
    SmlBuffer *source = Filled(16, 10);
    unsigned char out[3];
    smlBufferGetData(source, out, 3);
    SmlBuffer *copy = nullptr;
    ASSERT_EQ(smlBufferDuplicate(&copy, source), TQS_OK);
    EXPECT_NE(copy->pBase, source->pBase);
    EXPECT_EQ(copy->nBufSize, 16u);
    EXPECT_EQ(copy->pHead - copy->pBase, 3);
    EXPECT_EQ(copy->pTail - copy->pBase, 10);
    EXPECT_EQ(Data(copy), Data(source));
    SmlBuffer *none = copy;
    EXPECT_EQ(smlBufferDuplicate(&none, nullptr), TQS_ERROR_BUFFER_NULL);
    EXPECT_EQ(none, nullptr);  // out-parameters read null after a failure
    smlBufferDelete(copy);
    smlBufferDelete(source);
}

}  // namespace
