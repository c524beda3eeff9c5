#include "tqslist.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "mem_check.h"
#include "tqsmemory.h"

namespace {

const char kUnit[] = "jni/src/ClientProv/tqslist";
const TqsListReleaseFn kKeep = TQS_LIST_KEEP_ITEMS;

int g_items[10];
void *Item(int i) {
    return &g_items[i];
}

// Digit of an item, '-' for null.
char Name(const void *item) {
    return item == nullptr ? '-' : static_cast<char>('0' + (static_cast<const int *>(item) - g_items));
}

// Runs list operations, each expected to succeed, and returns the items that
// the reading and taking ones handed out. c: cursor to the head, n: next item,
// N: take the cursor's node, F: take the head, f: delete the head, a: delete
// all, dK: delete item K, iK: take index K, +K: append item K, <K: prepend it.
std::string Ops(TqsList *list, const std::string &script) {
    std::string out;
    for (size_t i = 0; i < script.size(); ++i) {
        const char op = script[i];
        const int k = i + 1 < script.size() ? script[i + 1] - '0' : 0;
        void *item = nullptr;
        TqsResult result = TQS_OK;
        if (op == 'c') result = tqsListSetCurNodeFirst(list);
        if (op == 'n') result = tqsListGetItemNext(list, &item);
        if (op == 'N') result = tqsListGetItemNextAndDeleteNode(list, &item);
        if (op == 'F') result = tqsListGetItemFirstAndDeleteNode(list, &item);
        if (op == 'f') result = tqsListDeleteNodeFirst(list, kKeep);
        if (op == 'a') result = tqsListDeleteNodeAll(list, kKeep);
        if (op == 'd') result = tqsListDeleteNodeFindItem(list, Item(k), kKeep);
        if (op == 'i') result = tqsListGetItemIndexAndDeleteNode(list, &item, k);
        if (op == '+') result = tqsListAddNodeLast(list, Item(k));
        if (op == '<') result = tqsListAddNodeFirst(list, Item(k));
        EXPECT_EQ(result, TQS_OK) << script << " at " << i;
        if (std::strchr("nNFi", op) != nullptr) out += Name(item);
        if (std::strchr("di+<", op) != nullptr) ++i;
    }
    return out;
}

// The items from the head on, by the cursor.
std::string Walk(TqsList *list) {
    std::string items = Ops(list, "c");
    for (std::string next = Ops(list, "n"); next != "-"; next = Ops(list, "n")) items += next;
    return items;
}

TqsList *ListOf(const std::string &digits) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, nullptr), TQS_OK);
    for (char digit : digits) Ops(list, std::string("+") + digit);
    return list;
}

TEST(TqsList, AllocationLinesSizesAndOrder) {
    MemCheck check;
    TqsList *list = nullptr;
    ASSERT_EQ(tqsListCreate(&list, Item(0)), TQS_OK);
    EXPECT_EQ(tqsListGetCount(list), 1u);
    EXPECT_EQ(Ops(list, "n"), "-");  // the cursor starts null
    ASSERT_EQ(tqsListAddNodeLast(list, Item(1)), TQS_OK);
    ASSERT_EQ(tqsListAddNodeFirst(list, Item(2)), TQS_OK);
    for (uint32_t line : {38, 47, 78, 120}) EXPECT_EQ(check.CountAt(kUnit, line), 1u) << line;
    for (const LiveBlock &block : check.Live()) {
        EXPECT_EQ(block.size, block.line == 38 ? 25u : 17u);  // the fields and one byte
    }
    EXPECT_EQ(Walk(list), "201");
    void *item = nullptr;
    EXPECT_EQ(tqsListGetItemFirst(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(2));
    EXPECT_EQ(tqsListDeleteNodeAllAndList(list, kKeep), TQS_OK);
    EXPECT_TRUE(check.Live().empty());
}

TEST(TqsList, RefusalsAndNullLists) {
    TqsList *list = ListOf("01");
    EXPECT_EQ(tqsListAddNodeLast(list, nullptr), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListAddNodeFirst(list, nullptr), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListGetCount(list), 2u);
    EXPECT_EQ(tqsListDeleteNodeFindItem(list, Item(5), nullptr), TQS_ERROR_NOT_FOUND);
    void *item = Item(7);
    EXPECT_EQ(tqsListGetItemIndex(list, &item, 2), TQS_ERROR_NOT_FOUND);
    EXPECT_EQ(item, nullptr);
    item = Item(7);
    EXPECT_EQ(tqsListGetItemIndexAndDeleteNode(list, &item, 2), TQS_ERROR_NOT_FOUND);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(tqsListGetItemIndex(list, &item, 1), TQS_OK);
    EXPECT_EQ(item, Item(1));
    tqsListDeleteNodeAllAndList(list, kKeep);

    EXPECT_EQ(tqsListAddNodeLast(nullptr, Item(0)), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListAddNodeFirst(nullptr, Item(0)), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListDeleteNodeFindItem(nullptr, Item(0), nullptr), TQS_ERROR_INVALID_PARAM);
    for (auto drop : {tqsListDeleteNodeFirst, tqsListDeleteNodeAll, tqsListDeleteNodeAllAndList}) {
        EXPECT_EQ(drop(nullptr, nullptr), TQS_ERROR_INVALID_PARAM);
    }
    EXPECT_EQ(tqsListSetCurNodeFirst(nullptr), TQS_ERROR_INVALID_PARAM);
    item = Item(7);
    EXPECT_EQ(tqsListGetItemFirst(nullptr, &item), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(item, Item(7));  // left untouched, unlike the others
    for (auto get : {tqsListGetItemNext, tqsListGetItemFirstAndDeleteNode, tqsListGetItemNextAndDeleteNode}) {
        item = Item(7);
        EXPECT_EQ(get(nullptr, &item), TQS_ERROR_INVALID_PARAM);
        EXPECT_EQ(item, nullptr);
    }
    EXPECT_EQ(tqsListGetItemIndex(nullptr, &item, 0), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListGetItemIndexAndDeleteNode(nullptr, &item, 0), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListGetCount(nullptr), 0u);
}

std::vector<void *> g_released;
uint32_t Record(void *item) {
    g_released.push_back(item);
    return 99;
}

TEST(TqsList, ReleaseRule) {
    MemCheck check;
    TqsList *list = nullptr;
    void *a = tqsMemAllocSetZero_debug(4, "test", 1);
    void *b = tqsMemAllocSetZero_debug(4, "test", 2);
    ASSERT_EQ(tqsListCreate(&list, a), TQS_OK);
    tqsListAddNodeLast(list, b);
    // The marker leaves the items allocated.
    EXPECT_EQ(tqsListDeleteNodeAll(list, kKeep), TQS_OK);
    EXPECT_EQ(check.CountAt("test", 1) + check.CountAt("test", 2), 2u);
    void *item = Item(7);
    EXPECT_EQ(tqsListGetItemFirst(list, &item), TQS_OK);
    EXPECT_EQ(item, nullptr);
    // A routine is called per item; null frees them.
    g_released.clear();
    tqsListAddNodeLast(list, a);
    tqsListAddNodeLast(list, b);
    EXPECT_EQ(tqsListDeleteNodeFirst(list, Record), TQS_OK);
    EXPECT_EQ(g_released, std::vector<void *>{a});
    EXPECT_EQ(tqsListDeleteNodeFindItem(list, b, nullptr), TQS_OK);
    EXPECT_EQ(check.CountAt("test", 2), 0u);
    tqsListAddNodeLast(list, a);
    EXPECT_EQ(tqsListDeleteNodeAllAndList(list, nullptr), TQS_OK);
}

// What a release routine sees of the list it is called from: the item, the
// chain, the count and the cursor's item.
TqsList *g_inspected;
std::string g_seen;
uint32_t Inspect(void *item) {
    g_seen += std::string(1, Name(item)) + ":";
    for (const TqsListNode *n = g_inspected->ptHead; n != nullptr; n = n->ptNext) g_seen += Name(n->pItem);
    g_seen += " " + std::to_string(g_inspected->nCount) +
              Name(g_inspected->ptCur ? g_inspected->ptCur->pItem : nullptr);
    g_seen += ";";
    return 0;
}

TEST(TqsList, DeletionUnlinksTheNodeBeforeReleasingItsItem) {
    g_inspected = ListOf("0123");
    g_seen.clear();
    Ops(g_inspected, "cn");  // cursor on 1: moved on before the unlink
    EXPECT_EQ(tqsListDeleteNodeFindItem(g_inspected, Item(1), Inspect), TQS_OK);
    Ops(g_inspected, "c");  // cursor on the head: left there until the node is freed
    EXPECT_EQ(tqsListDeleteNodeFirst(g_inspected, Inspect), TQS_OK);
    EXPECT_EQ(g_seen, "1:023 42;0:23 30;");
    EXPECT_EQ(Ops(g_inspected, "n"), "2");
    tqsListDeleteNodeAllAndList(g_inspected, kKeep);
}

TEST(TqsList, IndexAndDeleteNodeDropsTheNodesBeforeTheIndex) {
    MemCheck check;
    TqsList *list = ListOf("0123");
    EXPECT_EQ(Ops(list, "i2"), "2");
    // The chain is shorter than the count now: index walks stop instead of
    // following the null link.
    void *item = Item(7);
    EXPECT_EQ(tqsListGetItemIndex(list, &item, 2), TQS_ERROR_NOT_FOUND);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(tqsListGetItemIndexAndDeleteNode(list, &item, 1), TQS_ERROR_NOT_FOUND);
    EXPECT_EQ(Ops(list, "i0"), "3");  // index 0: ordinary head removal
    EXPECT_EQ(tqsListGetCount(list), 2u);
    EXPECT_EQ(list->ptHead, nullptr);
    tqsListDeleteNodeAllAndList(list, kKeep);
    EXPECT_EQ(check.Live().size(), 2u);  // the two dropped nodes were never freed
    check.FreeAll();
}

// Appending after each kind of removal (and a prepend): the new node lands
// behind the last node of the chain as it stands, wherever that is now. A
// cursor on a node that goes moves on (left there it would be read after free).
TEST(TqsList, AppendAfterRemovalsLandsAtTheEndOfTheChain) {
    struct Case {
        const char *name, *removal, *taken;
        uint32_t count;     // after the removal, dropped nodes included
        size_t dropped;     // nodes out of the chain, never freed
        std::string chain;  // after appending 7
    } cases[] = {
        {"find the tail", "d3", "", 3, 0, "0127"},
        {"find the head", "d0", "", 3, 0, "1237"},
        {"find the cursor's node", "cnd1n", "02", 3, 0, "0237"},
        {"first under the cursor", "cfn", "1", 3, 0, "1237"},
        {"first until empty, and once more: nothing done", "fffff", "", 0, 0, "7"},
        {"all", "a", "", 0, 0, "7"},
        {"prepend to the emptied list", "a<4", "", 1, 0, "47"},
        {"take the first", "F", "0", 3, 0, "1237"},
        {"take the first past the end: null", "FFFFF", "0123-", 0, 0, "7"},
        {"take the cursor's node at the head", "cN", "0", 3, 0, "1237"},
        // The cursor follows the taken head; taking at the cursor's end gives null.
        {"take the head, then the cursor's nodes", "cFnNnN", "0123-", 2, 0, "137"},
        {"take the cursor on the tail", "cnnnN", "0123", 3, 0, "0127"},
        {"take the tail by index (the head jumps to null)", "i3", "3", 3, 3, "7"},
        {"take an inner node by index", "i1", "1", 3, 1, "237"},
        // Taken and freed; the cursor moves on to the other dropped node.
        {"take the cursor on a dropped node", "ci2Nnn", "2013", 2, 1, "37"},
        {"prepend", "<4", "", 5, 0, "401237"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        MemCheck check;
        TqsList *list = ListOf("0123");
        EXPECT_EQ(Ops(list, c.removal), c.taken);
        EXPECT_EQ(tqsListGetCount(list), c.count);
        Ops(list, "+7");
        EXPECT_EQ(Walk(list), c.chain);
        Ops(list, "+6");  // and again behind it
        EXPECT_EQ(Walk(list), c.chain + "6");
        // An append to an empty chain counts from 1, dropped nodes or not.
        EXPECT_EQ(tqsListGetCount(list), (c.chain == "7" ? 0 : c.count) + 2);
        tqsListDeleteNodeAllAndList(list, kKeep);
        EXPECT_EQ(check.Live().size(), c.dropped);
        check.FreeAll();
    }
}

// Appends in turn to more lists than the tails kept of the latest ones.
TEST(TqsList, AppendsToManyListsInTurnStayInTheirOwnList) {
    std::vector<TqsList *> lists(10);
    std::vector<std::string> items(10);
    for (TqsList *&list : lists) list = ListOf("");
    for (int i = 0; i < 40; ++i) {
        const std::string digit = std::to_string((i + i / 10) % 10);
        Ops(lists[i % 10], "+" + digit);
        items[i % 10] += digit;
    }
    for (int k = 0; k < 10; ++k) {
        EXPECT_EQ(Walk(lists[k]), items[k]) << k;
        tqsListDeleteNodeAllAndList(lists[k], kKeep);
    }
}

TEST(TqsList, LongChainsNeedNoRecursion) {
    TqsList *list = ListOf("");
    const uint32_t n = 200000;
    for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(tqsListAddNodeFirst(list, Item(i % 8)), TQS_OK);
    void *item = nullptr;
    EXPECT_EQ(tqsListGetItemIndex(list, &item, n - 1), TQS_OK);
    EXPECT_EQ(tqsListDeleteNodeAllAndList(list, kKeep), TQS_OK);
}

}  // namespace
