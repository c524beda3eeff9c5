#include "tqsmemory.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "mem_check.h"

namespace {

const char kFile[] = "jni/src/ClientProv/test";

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The tracked blocks as "line:size ..." in table order.
std::string Table(const MemCheck &check) {
    std::string table;
    for (const LiveBlock &b : check.Live())
        table += std::to_string(b.line) + ":" + std::to_string(b.size) + " ";
    return table;
}

TEST(TqsMemory, SizesEnteredInTheTable) {
    MemCheck check;
    tqsMemAlloc_debug(7, kFile, 10);
    tqsStrdup_debug("abc", kFile, 11);
    TqsWChar *wide = tqsMemAllocW_debug(10, kFile, 12);
    void *dup = tqsMemDup_debug("xyzw", 4, kFile, 13);
    // Null sources copy nothing: an empty text, an unfilled block.
    char *empty = tqsStrdup_debug(nullptr, kFile, 14);
    EXPECT_NE(tqsMemDup_debug(nullptr, 4, kFile, 15), nullptr);
    // The text without its zero, wide blocks in units.
    EXPECT_EQ(Table(check), "10:7 11:3 12:10 13:4 14:0 15:4 ");
    EXPECT_EQ(tqsMemCmp(dup, "xyzw", 4), 0);
    EXPECT_STREQ(empty, "");
    wide[9] = 0xFFFF;  // 20 bytes really allocated (ASan checks)
    check.FreeAll();
}

TEST(TqsMemory, EndMemCheckReportsLiveBlocksInTableOrder) {
    tqsMemStartMemCheck();
    void *a = tqsMemAllocSetZero_debug(24, "jni/src/ClientProv/tqslist", 38);
    void *gone = tqsMemAlloc_debug(5, kFile, 2);
    void *b = tqsMemAllocSetZero_debug(9, "jni/src/ClientProv/smlbuffer", 130);
    tqsMemFree_debug(gone);
    void *c = tqsMemAlloc_debug(3, kFile, 77);  // reuses the freed entry 1
    CaptureStdout();
    tqsMemEndMemCheck();
    EXPECT_EQ(GetCapturedStdout(),
              "[syncml] MEMCHECK Filename:jni/src/ClientProv/tqslist Line:38 Size:24 \n"
              "[syncml] MEMCHECK Filename:jni/src/ClientProv/test Line:77 Size:3 \n"
              "[syncml] MEMCHECK Filename:jni/src/ClientProv/smlbuffer Line:130 Size:9 \n");
    EXPECT_EQ(bMemCheck, 0);
    EXPECT_EQ(ptMemCheckTable, nullptr);
    // Tracking off again: nothing recorded or printed, no second report.
    CaptureStdout();
    for (void *block : {a, b, c, tqsMemAllocSetZero_debug(16, kFile, 1), static_cast<void *>(nullptr)}) {
        tqsMemFree_debug(block);
    }
    tqsMemEndMemCheck();
    EXPECT_EQ(GetCapturedStdout(), "");
}

TEST(TqsMemory, TrackingWithoutATableLeavesBlocksUntracked) {
    // The state a failed table allocation of tqsMemStartMemCheck leaves behind.
    bMemCheck = 1;
    ASSERT_EQ(ptMemCheckTable, nullptr);
    CaptureStdout();
    tqsMemFree_debug(tqsMemAlloc_debug(4, kFile, 1));
    tqsMemEndMemCheck();
    EXPECT_EQ(GetCapturedStdout(),
              "[syncml] MEMCHECK Not Found Empty Index\n[syncml] MEMCHECK Not Found Address \n");
    EXPECT_EQ(bMemCheck, 0);
}

TEST(TqsMemory, ReAlloc) {
    MemCheck check;
    void *old = tqsMemDup_debug("\1\2\3\4\5\6\7\10", 8, kFile, 1);
    // Size 0 or null old: null, old untouched and still tracked.
    EXPECT_EQ(tqsMemReAlloc_debug(old, 0, kFile, 2), nullptr);
    EXPECT_EQ(tqsMemReAlloc_debug(nullptr, 8, kFile, 2), nullptr);
    EXPECT_EQ(Table(check), "1:8 ");
    // Shrinking copies size bytes and frees old; growing reads only what the
    // old block holds (ASan checks), the end comes zeroed.
    void *smaller = tqsMemReAlloc_debug(old, 4, kFile, 3);
    EXPECT_EQ(Table(check), "3:4 ");
    auto *larger = static_cast<unsigned char *>(tqsMemReAlloc_debug(smaller, 64, kFile, 4));
    ASSERT_NE(larger, nullptr);
    EXPECT_EQ(std::vector<unsigned char>(larger, larger + 4), (std::vector<unsigned char>{1, 2, 3, 4}));
    EXPECT_EQ(larger[63], 0);
    tqsMemFree_debug(larger);
}

TEST(TqsMemory, Primitives) {
    unsigned char bytes[8];
    EXPECT_EQ(tqsMemSet(bytes, 0xAB, 8), bytes);
    EXPECT_EQ(tqsMemSetZero(bytes, 4), bytes);
    EXPECT_EQ(std::vector<unsigned char>(bytes + 3, bytes + 5), (std::vector<unsigned char>{0, 0xAB}));

    TqsWChar wide[4] = {1, 2, 3, 4};
    EXPECT_EQ(tqsMemSetW(wide, 0x1234, 3), 3u);
    const TqsWChar src[3] = {7, 8, 9};
    EXPECT_EQ(tqsMemCpyW(nullptr, src, 3), nullptr);
    EXPECT_EQ(tqsMemCpyW(wide, nullptr, 3), nullptr);  // nothing copied
    EXPECT_EQ(std::vector<TqsWChar>(wide, wide + 4), (std::vector<TqsWChar>{0x1234, 0x1234, 0x1234, 4}));
    EXPECT_EQ(tqsMemCpyW(wide, src, 3), wide);
    EXPECT_EQ(wide[2], 9);

    // Unsigned byte order, whatever char's signedness.
    EXPECT_LT(tqsMemCmp("\x01", "\x80", 1), 0);
    EXPECT_GT(tqsMemCmp("\xFF", "\x7F", 1), 0);
    EXPECT_EQ(tqsMemCmp("abcX", "abcY", 3), 0);

    char text[] = "abcdef";
    EXPECT_EQ(tqsMemMove(text + 1, text, 4), text + 1);
    EXPECT_STREQ(text, "aabcdf");
    EXPECT_EQ(tqsMemCpy(text, "xyz", 3), text);
    EXPECT_STREQ(text, "xyzcdf");
}

}  // namespace
