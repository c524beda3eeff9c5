// Tests of the fuzz harness itself: the leak accounting must flag a stray
// block and accept exactly the kept ones, also past the tracker's 2000
// entries; the tree walker must find the kept fields; the work must really
// run on a 256 KB stack.
#include <gtest/gtest.h>
#include <pthread.h>

#include <vector>

#include "kept_blocks.h"
#include "leak_accounting.h"
#include "small_stack.h"
#include "tqsClientProvWbxml.h"
#include "tqslist.h"
#include "tqsmemory.h"

namespace {

const char kHere[] = "fuzz/harness/harness_test";
const fuzz::Site kNoSites[] = {{"none", 0}};

class LeakAccounting : public ::testing::Test {
   protected:
    void SetUp() override { fuzz::StartLeakAccounting(); }
    void TearDown() override { fuzz::CheckAndReleaseKept(kAllSites); }
    // Every site this test allocates from, so TearDown cleans up whatever a
    // failing expectation left.
    static constexpr fuzz::Site kAllSites[] = {{kHere, 1}, {kHere, 3}};
};

char *NewText(const char *text) {
    return tqsStrdup_debug(text, kHere, 1);
}

TEST_F(LeakAccounting, BlocksBeyondTheTrackerTableAreStillAccounted) {
    // 2100 live blocks: the last hundred do not fit the tracker's table.
    std::vector<void *> blocks;
    for (int i = 0; i < 2100; ++i) blocks.push_back(tqsMemAlloc_debug(1, kHere, 3));
    // Free some inside and outside the table through the library.
    tqsMemFree_debug(blocks[5]);
    tqsMemFree_debug(blocks[2050]);
    const fuzz::Site sites[] = {{kHere, 3}};
    fuzz::CheckAndReleaseKept(sites);
    EXPECT_EQ(fuzz::LastKeptCount(), 2098u);

    // A stray block in the table and one beyond it are both reported.
    EXPECT_DEATH(
        {
            tqsMemAllocSetZero_debug(12, kHere, 42);
            for (int i = 0; i < 2000; ++i) tqsMemAlloc_debug(1, kHere, 3);
            tqsMemAlloc_debug(1, kHere, 77);  // 2002nd: beyond the table
            fuzz::CheckAndReleaseKept(sites);
        },
        "size 12\\) allocated at fuzz/harness/harness_test:42.*harness_test:77");
}

template <typename T>
T *NewRecord() {
    return static_cast<T *>(tqsMemAllocSetZero_debug(sizeof(T) + 1, kHere, 1));
}

TqsList *ListOf(std::initializer_list<void *> items) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, nullptr), 0u);
    for (void *item : items) EXPECT_EQ(tqsListAddNodeLast(list, item), 0u);
    return list;
}

template <typename T>
tqsWapCharacter *CharOf(T *tqsWapCharacter::*slot, T *record) {
    auto *c = NewRecord<tqsWapCharacter>();
    c->*slot = record;
    return c;
}

TEST_F(LeakAccounting, TreeReleaseKeepsExactlyTheNotedFields) {
    // APPLICATION (FROM, one XCAP, NAME) with a nested ROAMING; a NAPDEF with
    // INIT; a VENDORCONFIG with a parm. Everything not listed as kept is
    // released by the library, and the check must accept what remains.
    auto *roaming = NewRecord<tqsWapRoaming>();
    roaming->pszSyncAllowed = NewText("1");
    auto *app = NewRecord<tqsWapApplication>();
    app->pszFrom = NewText("me");
    app->pszXcapAuidPms = NewText("pms");
    app->pszName = NewText("name");
    app->ptAddrList = ListOf({NewText("a")});
    app->ptCharacterList = ListOf({CharOf(&tqsWapCharacter::ptRoaming, roaming)});
    auto *nap = NewRecord<tqsWapNapDef>();
    nap->pszInit = NewText("empty");
    nap->pszNapId = NewText("NAP1");
    auto *vendor = NewRecord<tqsWapVendorConfig>();
    vendor->pszParmName = NewText("P");
    vendor->pszParmValue = NewText("V");
    vendor->pszName = NewText("N");
    auto *doc = NewRecord<tqsWapDoc>();
    doc->ptCharacterList =
        ListOf({CharOf(&tqsWapCharacter::ptApplication, app), CharOf(&tqsWapCharacter::ptNapDef, nap),
                CharOf(&tqsWapCharacter::ptVendorConfig, vendor)});

    // Wrapped at link time: the walker notes the kept fields first.
    EXPECT_EQ(tqsClientProvWbxmlDeleteWapDoc(doc), 1u);
    fuzz::CheckAndReleaseKept(kNoSites);
    // ROAMING record + its string, FROM, XCAP, INIT, parm name and value.
    EXPECT_EQ(fuzz::LastKeptCount(), 7u);
}

TEST(SmallStack, WorkRunsOnA256KStack) {
    size_t stackSize = 0;
    fuzz::RunOnSmallStack(
        [](void *out) {
            pthread_attr_t attr;
            ASSERT_EQ(pthread_getattr_np(pthread_self(), &attr), 0);
            pthread_attr_getstacksize(&attr, static_cast<size_t *>(out));
            pthread_attr_destroy(&attr);
        },
        &stackSize);
    EXPECT_EQ(stackSize, fuzz::kWorkStackBytes);
}

}  // namespace
