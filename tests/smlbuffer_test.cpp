#include "smlbuffer.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "mem_check.h"
#include "tqsmemory.h"

namespace {

const char kUnit[] = "jni/src/ClientProv/smlbuffer";

using Bytes = std::vector<unsigned char>;

// The buffer's data, after checking that its pointers agree with each other.
Bytes Data(const SmlBuffer *b) {
    EXPECT_LE(b->pBase, b->pHead);
    EXPECT_EQ(b->pTail, b->pHead + b->nDataSize);
    EXPECT_LE(b->pTail, b->pEnd);
    EXPECT_EQ(b->pEnd, b->pBase + b->nBufSize);
    const unsigned char *p = smlBufferGetDataBuffer(b, 0);
    return Bytes(p, p + smlBufferGetDataSize(b));
}

Bytes Iota(unsigned char first, size_t count) {
    Bytes v(count);
    std::iota(v.begin(), v.end(), first);
    return v;
}

// A buffer of capacity `capacity` that received the bytes 0..count-1 and
// then had the first `consumed` of them read.
SmlBuffer *Filled(uint32_t capacity, uint32_t count, uint32_t consumed = 0) {
    SmlBuffer *buffer = nullptr;
    EXPECT_EQ(smlBufferCreate(&buffer, capacity), TQS_OK);
    EXPECT_EQ(smlBufferAppendTail(buffer, Iota(0, count).data(), count), TQS_OK);
    EXPECT_EQ(smlBufferPull(buffer, consumed), TQS_OK);
    return buffer;
}

TEST(SmlBuffer, GrowthSizes) {
    MemCheck check;
    struct Case {
        uint32_t capacity, before, consumed, append, grown;
    } cases[] = {
        {10, 0, 0, 10, 522},       // exact fit still grows: at least 512
        {10, 0, 0, 9, 10},         // one byte stays free: no growth
        {100, 99, 0, 1000, 1356},  // full (one byte always stays free): grows by 1000 + 256
        {100, 40, 0, 59, 100},    {100, 40, 0, 60, 612}, {16, 10, 4, 6, 528},  // the data move to the front
    };
    for (const Case &c : cases) {
        SmlBuffer *buffer = Filled(c.capacity, c.before, c.consumed);
        ASSERT_EQ(smlBufferAppendTail(buffer, Iota(c.before, c.append).data(), c.append), TQS_OK);
        EXPECT_EQ(buffer->nBufSize, c.grown) << c.capacity << "+" << c.before << "+" << c.append;
        EXPECT_EQ(buffer->pHead, buffer->pBase);
        EXPECT_EQ(Data(buffer), Iota(c.consumed, c.before - c.consumed + c.append));
        EXPECT_EQ(check.CountAt(kUnit, 188), c.grown != c.capacity ? 1u : 0u);
        smlBufferDelete(buffer);
    }
}

TEST(SmlBuffer, AppendGetDataAndPull) {
    SmlBuffer *buffer = Filled(16, 10);
    EXPECT_EQ(smlBufferAppendTail(buffer, "xyz", 0), TQS_OK);  // nothing to append
    EXPECT_EQ(smlBufferAppendTail(buffer, nullptr, 5), TQS_OK);
    unsigned char out[16] = {};
    EXPECT_EQ(smlBufferGetData(buffer, out, 4), TQS_OK);
    EXPECT_EQ(Bytes(out, out + 4), Iota(0, 4));
    EXPECT_EQ(Data(buffer), Iota(4, 6));  // the tail does not move
    EXPECT_EQ(smlBufferGetDataBuffer(buffer, 6), buffer->pTail);
    EXPECT_EQ(smlBufferGetDataBuffer(buffer, 7), nullptr);
    EXPECT_EQ(smlBufferGetData(buffer, out, 7), TQS_ERROR_BUFFER_NO_DATA);
    EXPECT_EQ(smlBufferPull(buffer, 6), TQS_OK);
    EXPECT_EQ(smlBufferGetData(buffer, out, 0), TQS_ERROR_BUFFER_NO_DATA);
    EXPECT_EQ(smlBufferAppendStr(buffer, "ab"), TQS_OK);
    EXPECT_EQ(Data(buffer), (Bytes{'a', 'b'}));
    smlBufferDelete(buffer);

    for (TqsResult r :
         {smlBufferAppendTail(nullptr, "x", 1), smlBufferGetData(nullptr, out, 1), smlBufferPull(nullptr, 1),
          smlBufferInsertHead(nullptr, "x", 1), smlBufferCut(nullptr, 0, 1), smlBufferShifthead(nullptr),
          smlBufferInit(nullptr), smlBufferDelete(nullptr)}) {
        EXPECT_EQ(r, TQS_ERROR_BUFFER_NULL);
    }
    EXPECT_EQ(smlBufferGetDataSize(nullptr), 0u);
    EXPECT_EQ(smlBufferGetRemainSize(nullptr), 0u);
    EXPECT_EQ(smlBufferGetDataBuffer(nullptr, 0), nullptr);
}

// Pulling checks nothing: past the data the size wraps; only the head stops
// at the end of the storage.
TEST(SmlBuffer, PullPastTheDataWrapsTheSize) {
    struct Case {
        uint32_t pull;
        long head;
        uint32_t size;
    } cases[] = {{12, 12, 0xFFFFFFFEu}, {17, 16, 0xFFFFFFF9u}, {0xFFFFFFFFu, 16, 11}};
    static unsigned char out[16];
    void (*const next[])(SmlBuffer *) = {
        [](SmlBuffer *b) { smlBufferGetData(b, out, 5); },
        [](SmlBuffer *b) { smlBufferGetDataBuffer(b, 5); },
        [](SmlBuffer *b) { smlBufferAppendTail(b, "x", 1); },
        [](SmlBuffer *b) { smlBufferInsertHead(b, "xy", 2); },
        [](SmlBuffer *b) { smlBufferCut(b, 1, 5); },
        [](SmlBuffer *b) { smlBufferCut(b, 0, 20); },
        [](SmlBuffer *b) { smlBufferShifthead(b); },
        [](SmlBuffer *b) { smlBufferRealloc(b, 1); },
    };
    for (const Case &c : cases) {
        for (const auto &op : next) {
            SmlBuffer *buffer = Filled(16, 10, c.pull);
            EXPECT_EQ(buffer->pHead - buffer->pBase, c.head) << c.pull;
            EXPECT_EQ(buffer->nDataSize, c.size) << c.pull;
            // What follows touches only bytes inside the storage (ASan watches).
            op(buffer);
            EXPECT_LE(buffer->pTail, buffer->pEnd);
            EXPECT_LE(buffer->pBase, buffer->pTail);
            smlBufferDelete(buffer);
        }
    }
    // An append that brings the size back round is written as given.
    SmlBuffer *buffer = Filled(16, 10, 12);
    ASSERT_EQ(smlBufferAppendTail(buffer, "abcde", 5), TQS_OK);
    EXPECT_EQ(Data(buffer), (Bytes{'c', 'd', 'e'}));
    smlBufferDelete(buffer);
}

TEST(SmlBuffer, InsertHead) {
    struct Case {
        const char *name;
        uint32_t capacity, count, consumed;
        uint32_t bufSize;  // after the insertion
        Bytes data;
    } cases[] = {
        {"room before the head: the head moves back", 16, 10, 4, 16, {'x', 'y', 4, 5, 6, 7, 8, 9}},
        {"room only behind: the data move up", 16, 5, 0, 16, {'x', 'y', 0, 1, 2, 3, 4}},
        {"no room: grows by at least 512", 8, 7, 0, 8 + 512, {'x', 'y', 0, 1, 2, 3, 4, 5, 6}},
    };
    for (const Case &c : cases) {
        MemCheck check;
        SmlBuffer *buffer = Filled(c.capacity, c.count, c.consumed);
        unsigned char *tail = buffer->pTail;
        ASSERT_EQ(smlBufferInsertHead(buffer, "xy", 2), TQS_OK) << c.name;
        EXPECT_EQ(buffer->nBufSize, c.bufSize) << c.name;
        EXPECT_EQ(Data(buffer), c.data) << c.name;
        EXPECT_EQ(buffer->pTail == tail, c.consumed != 0) << c.name;  // moved unless the head moved back
        EXPECT_EQ(check.Live().size(), 2u) << c.name;  // the scratch copy (line 300) is freed again
        smlBufferDelete(buffer);
    }
}

TEST(SmlBuffer, Cut) {
    struct Case {
        uint32_t consumed, offset, length;
        Bytes data;
        TqsResult result = TQS_OK;
    } cases[] = {
        {0, 2, 3, {0, 1, 5, 6, 7, 8, 9}},
        {0, 7, 5, {0, 0, 0, 3, 4, 5, 6}},  // reaches the end: the head is zeroed, not the cut
        {0, 0, 10, {}},
        {0, 10, 3, Iota(0, 10)},
        {0, 0, 1, Iota(1, 9)},
        {0, 3, 0xFFFFFFFFu, {0, 0, 0}},  // length clipped without wrapping offset + length
        {0, 11, 1, Iota(0, 10), TQS_ERROR_BUFFER_NO_DATA},
        {10, 0, 1, {}, TQS_ERROR_BUFFER_NO_DATA},
    };
    for (const Case &c : cases) {
        SmlBuffer *buffer = Filled(16, 10, c.consumed);
        EXPECT_EQ(smlBufferCut(buffer, c.offset, c.length), c.result);
        EXPECT_EQ(Data(buffer), c.data) << c.offset << "," << c.length;
        smlBufferDelete(buffer);
    }
}

TEST(SmlBuffer, ShiftheadAndInit) {
    MemCheck check;
    SmlBuffer *buffer = Filled(16, 10, 4);
    ASSERT_EQ(smlBufferShifthead(buffer), TQS_OK);
    EXPECT_EQ(buffer->pHead, buffer->pBase);
    EXPECT_EQ(Data(buffer), Iota(4, 6));
    EXPECT_EQ(Bytes(buffer->pTail, buffer->pEnd), Bytes(10, 0));
    EXPECT_EQ(check.Live().size(), 2u);  // scratch (line 493) freed

    smlBufferPull(buffer, 6);  // empty, head moved
    ASSERT_EQ(smlBufferShifthead(buffer), TQS_OK);
    EXPECT_EQ(buffer->pHead, buffer->pBase);
    EXPECT_EQ(buffer->pTail, buffer->pBase);
    EXPECT_EQ(buffer->pBase[0], 0);  // cleared by init
    smlBufferDelete(buffer);
}

// The zero behind own storage is the decoder record test's (its body buffer).
TEST(SmlBuffer, OwnAndOutsideStorage) {
    MemCheck check;
    SmlBuffer *buffer = nullptr;
    ASSERT_EQ(smlBufferCreate(&buffer, 10), TQS_OK);
    EXPECT_EQ(check.CountAt(kUnit, 130), 1u);
    EXPECT_EQ(check.CountAt(kUnit, 138), 1u);
    EXPECT_EQ(smlBufferGetRemainSize(buffer), 10u);
    EXPECT_EQ(smlBufferDelete(buffer), TQS_OK);
    EXPECT_TRUE(check.Live().empty());

    unsigned char storage[32];
    std::fill(std::begin(storage), std::end(storage), 0xEE);
    ASSERT_EQ(smlBufferCreateOutsideBuf(&buffer, storage, 16), TQS_OK);
    EXPECT_EQ(check.CountAt(kUnit, 231), 1u);
    EXPECT_EQ(Bytes(storage, storage + 17), Bytes({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xEE}));
    EXPECT_EQ(smlBufferRealloc(buffer, 10), TQS_ERROR_BUFFER_OUTSIDE);
    const unsigned char more[15] = {};
    EXPECT_EQ(smlBufferAppendTail(buffer, more, 15), TQS_OK);
    EXPECT_EQ(smlBufferAppendTail(buffer, "x", 1), TQS_ERROR_BUFFER_OUTSIDE);  // would need growth
    EXPECT_EQ(smlBufferGetDataSize(buffer), 15u);
    EXPECT_EQ(smlBufferDelete(buffer), TQS_OK);  // the storage is not freed
    EXPECT_TRUE(check.Live().empty());
}

TEST(SmlBuffer, Duplicate) {
    SmlBuffer *source = Filled(16, 10, 3);
    SmlBuffer *copy = nullptr;
    ASSERT_EQ(smlBufferDuplicate(&copy, source), TQS_OK);  // own storage: both are deleted below
    EXPECT_EQ(copy->nBufSize, 16u);
    EXPECT_EQ(copy->pHead - copy->pBase, 3);
    EXPECT_EQ(Data(copy), Iota(3, 7));
    SmlBuffer *none = copy;
    EXPECT_EQ(smlBufferDuplicate(&none, nullptr), TQS_ERROR_BUFFER_NULL);
    EXPECT_EQ(none, nullptr);  // out-parameters read null after a failure
    smlBufferDelete(copy);
    smlBufferDelete(source);
}

}  // namespace
