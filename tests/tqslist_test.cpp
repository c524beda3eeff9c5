#include "tqslist.h"

#include <gtest/gtest.h>

#include <vector>

#include "mem_check.h"
#include "tqsmemory.h"

namespace {

const char kUnit[] = "jni/src/ClientProv/tqslist";

int g_items[8];
void *Item(int i) {
    return &g_items[i];
}

std::vector<void *> Walk(TqsList *list) {
    std::vector<void *> items;
    EXPECT_EQ(tqsListSetCurNodeFirst(list), TQS_OK);
    void *item = nullptr;
    while (tqsListGetItemNext(list, &item) == TQS_OK && item != nullptr) items.push_back(item);
    return items;
}

TqsList *ListOf(std::initializer_list<int> indexes) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, nullptr), TQS_OK);
    for (int i : indexes) EXPECT_EQ(tqsListAddNodeLast(list, Item(i)), TQS_OK);
    return list;
}

std::vector<void *> released;
uint32_t Record(void *item) {
    released.push_back(item);
    return 99;
}

TEST(TqsList, AllocationLinesAndSizes) {
    MemCheck check;
    TqsList *list = nullptr;
    ASSERT_EQ(tqsListCreate(&list, Item(0)), TQS_OK);
    ASSERT_EQ(tqsListAddNodeLast(list, Item(1)), TQS_OK);
    ASSERT_EQ(tqsListAddNodeFirst(list, Item(2)), TQS_OK);
    EXPECT_EQ(check.CountAt(kUnit, 38), 1u);
    EXPECT_EQ(check.CountAt(kUnit, 47), 1u);
    EXPECT_EQ(check.CountAt(kUnit, 78), 1u);
    EXPECT_EQ(check.CountAt(kUnit, 120), 1u);
    for (const LiveBlock &block : check.Live()) {
        EXPECT_EQ(block.size, block.line == 38 ? sizeof(TqsList) + 1 : sizeof(TqsListNode) + 1);
    }
    EXPECT_EQ(tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS), TQS_OK);
    EXPECT_TRUE(check.Live().empty());
}

TEST(TqsList, CursorAndOrder) {
    TqsList *list = nullptr;
    ASSERT_EQ(tqsListCreate(&list, Item(0)), TQS_OK);
    EXPECT_EQ(tqsListGetCount(list), 1u);
    void *item = Item(7);
    EXPECT_EQ(tqsListGetItemNext(list, &item), TQS_OK);
    EXPECT_EQ(item, nullptr);  // cursor starts null
    tqsListAddNodeLast(list, Item(1));
    tqsListAddNodeLast(list, Item(2));
    EXPECT_EQ(Walk(list), (std::vector<void *>{Item(0), Item(1), Item(2)}));
    tqsListAddNodeFirst(list, Item(3));
    tqsListAddNodeFirst(list, Item(4));
    EXPECT_EQ(Walk(list), (std::vector<void *>{Item(4), Item(3), Item(0), Item(1), Item(2)}));
    EXPECT_EQ(tqsListGetCount(list), 5u);
    EXPECT_EQ(tqsListGetItemFirst(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(4));
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
}

TEST(TqsList, RefusalsAndNullLists) {
    TqsList *list = ListOf({0, 1});
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
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);

    EXPECT_EQ(tqsListAddNodeLast(nullptr, Item(0)), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListAddNodeFirst(nullptr, Item(0)), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListDeleteNodeFindItem(nullptr, Item(0), nullptr), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListDeleteNodeFirst(nullptr, nullptr), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListDeleteNodeAll(nullptr, nullptr), TQS_ERROR_INVALID_PARAM);
    EXPECT_EQ(tqsListDeleteNodeAllAndList(nullptr, nullptr), TQS_ERROR_INVALID_PARAM);
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

TEST(TqsList, ReleaseRule) {
    MemCheck check;
    TqsList *list = nullptr;
    void *a = tqsMemAllocSetZero_debug(4, "test", 1);
    void *b = tqsMemAllocSetZero_debug(4, "test", 2);
    ASSERT_EQ(tqsListCreate(&list, a), TQS_OK);
    tqsListAddNodeLast(list, b);
    // The marker leaves the items allocated.
    EXPECT_EQ(tqsListDeleteNodeAll(list, TQS_LIST_KEEP_ITEMS), TQS_OK);
    EXPECT_EQ(tqsListGetCount(list), 0u);
    EXPECT_EQ(check.CountAt("test", 1) + check.CountAt("test", 2), 2u);
    void *item = Item(7);
    EXPECT_EQ(tqsListGetItemFirst(list, &item), TQS_OK);
    EXPECT_EQ(item, nullptr);
    // A routine is called per item; null frees them.
    released.clear();
    tqsListAddNodeLast(list, a);
    tqsListAddNodeLast(list, b);
    EXPECT_EQ(tqsListDeleteNodeFirst(list, Record), TQS_OK);
    EXPECT_EQ(released, std::vector<void *>{a});
    EXPECT_EQ(tqsListDeleteNodeFindItem(list, b, nullptr), TQS_OK);
    EXPECT_EQ(check.CountAt("test", 2), 0u);
    tqsListAddNodeLast(list, a);
    EXPECT_EQ(tqsListDeleteNodeAllAndList(list, nullptr), TQS_OK);
    EXPECT_TRUE(check.Live().empty());
}

TEST(TqsList, DeleteFindItemMovesCursorOffTheRemovedNode) {
    TqsList *list = ListOf({0, 1, 2});
    void *item = nullptr;
    tqsListSetCurNodeFirst(list);
    tqsListGetItemNext(list, &item);  // cursor now on 1
    EXPECT_EQ(tqsListDeleteNodeFindItem(list, Item(1), TQS_LIST_KEEP_ITEMS), TQS_OK);
    EXPECT_EQ(tqsListGetItemNext(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(2));
    EXPECT_EQ(Walk(list), (std::vector<void *>{Item(0), Item(2)}));
    EXPECT_EQ(tqsListGetCount(list), 2u);
    EXPECT_EQ(tqsListDeleteNodeFirst(list, TQS_LIST_KEEP_ITEMS), TQS_OK);
    EXPECT_EQ(tqsListDeleteNodeFirst(list, TQS_LIST_KEEP_ITEMS), TQS_OK);
    EXPECT_EQ(tqsListDeleteNodeFirst(list, TQS_LIST_KEEP_ITEMS), TQS_OK);  // empty: nothing done
    EXPECT_EQ(tqsListGetCount(list), 0u);
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
}

TEST(TqsList, DeleteFirstUnderTheCursorDoesNotLeaveItOnFreedMemory) {
    // A cursor on the freed head would be read after free (ASan): it moves on.
    TqsList *list = ListOf({0, 1});
    tqsListSetCurNodeFirst(list);
    EXPECT_EQ(tqsListDeleteNodeFirst(list, TQS_LIST_KEEP_ITEMS), TQS_OK);
    void *item = nullptr;
    EXPECT_EQ(tqsListGetItemNext(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(1));
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
}

TEST(TqsList, TakeOperations) {
    TqsList *list = ListOf({0, 1, 2, 3});
    void *item = nullptr;
    tqsListSetCurNodeFirst(list);
    EXPECT_EQ(tqsListGetItemFirstAndDeleteNode(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(0));
    EXPECT_EQ(list->ptCur, list->ptHead);  // cursor followed the head
    tqsListGetItemNext(list, &item);       // cursor now on 2
    EXPECT_EQ(tqsListGetItemNextAndDeleteNode(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(2));
    EXPECT_EQ(tqsListGetItemNext(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(3));
    EXPECT_EQ(tqsListGetItemNextAndDeleteNode(list, &item), TQS_OK);  // cursor at the end
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(Walk(list), (std::vector<void *>{Item(1), Item(3)}));
    tqsListSetCurNodeFirst(list);
    EXPECT_EQ(tqsListGetItemNextAndDeleteNode(list, &item), TQS_OK);  // cursor on the head
    EXPECT_EQ(item, Item(1));
    EXPECT_EQ(tqsListGetCount(list), 1u);
    EXPECT_EQ(tqsListGetItemFirstAndDeleteNode(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(3));
    EXPECT_EQ(tqsListGetItemFirstAndDeleteNode(list, &item), TQS_OK);  // empty
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(list->ptHead, nullptr);
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
}

TEST(TqsList, IndexAndDeleteNodeDropsTheNodesBeforeTheIndex) {
    MemCheck check;
    TqsList *list = ListOf({0, 1, 2, 3});
    TqsListNode *first = list->ptHead;
    TqsListNode *second = first->ptNext;
    void *item = nullptr;
    tqsListSetCurNodeFirst(list);  // on a node that is about to be dropped
    EXPECT_EQ(tqsListGetItemIndexAndDeleteNode(list, &item, 2), TQS_OK);
    EXPECT_EQ(item, Item(2));
    EXPECT_EQ(tqsListGetCount(list), 3u);
    ASSERT_NE(list->ptHead, nullptr);
    EXPECT_EQ(list->ptHead->pItem, Item(3));
    EXPECT_EQ(list->ptHead->ptNext, nullptr);
    // The cursor walks the dropped nodes, then skips the freed one.
    std::vector<void *> seen;
    while (tqsListGetItemNext(list, &item) == TQS_OK && item != nullptr) seen.push_back(item);
    EXPECT_EQ(seen, (std::vector<void *>{Item(0), Item(1), Item(3)}));
    // The chain is shorter than the count now: index walks stop instead of
    // following the null link.
    EXPECT_EQ(tqsListGetItemIndex(list, &item, 2), TQS_ERROR_NOT_FOUND);
    EXPECT_EQ(item, nullptr);
    EXPECT_EQ(tqsListGetItemIndexAndDeleteNode(list, &item, 1), TQS_ERROR_NOT_FOUND);
    EXPECT_EQ(tqsListGetItemIndexAndDeleteNode(list, &item, 0), TQS_OK);  // index 0: ordinary head removal
    EXPECT_EQ(item, Item(3));
    EXPECT_EQ(tqsListGetCount(list), 2u);
    EXPECT_EQ(list->ptHead, nullptr);
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
    // The two dropped nodes were never freed.
    EXPECT_EQ(check.Live().size(), 2u);
    tqsMemFree_debug(first);
    tqsMemFree_debug(second);
}

TEST(TqsList, TakingFromACursorOnADroppedNodeLeavesTheChainAlone) {
    MemCheck check;
    TqsList *list = ListOf({0, 1, 2, 3});
    TqsListNode *second = list->ptHead->ptNext;
    tqsListSetCurNodeFirst(list);
    void *item = nullptr;
    ASSERT_EQ(tqsListGetItemIndexAndDeleteNode(list, &item, 2), TQS_OK);
    // The cursor's node is no longer in the chain: it is taken and freed, the head stays.
    EXPECT_EQ(tqsListGetItemNextAndDeleteNode(list, &item), TQS_OK);
    EXPECT_EQ(item, Item(0));
    EXPECT_EQ(list->ptHead->pItem, Item(3));
    EXPECT_EQ(list->ptHead->ptNext, nullptr);
    EXPECT_EQ(tqsListGetCount(list), 2u);
    EXPECT_EQ(list->ptCur, second);
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
    EXPECT_EQ(check.Live().size(), 1u);  // the other dropped node
    tqsMemFree_debug(second);
}

// Appending after each kind of removal: the new node lands behind the last
// node of the chain as it stands, wherever the removal left it.
TEST(TqsList, AppendAfterRemovalsLandsAtTheEndOfTheChain) {
    struct Case {
        const char *name;
        void (*remove)(TqsList *list, std::vector<TqsListNode *> *dropped);
        std::vector<int> expected;  // items after appending 7
    };
    const Case cases[] = {
        {"find the tail",
         [](TqsList *l, std::vector<TqsListNode *> *) {
             tqsListDeleteNodeFindItem(l, Item(3), TQS_LIST_KEEP_ITEMS);
         },
         {0, 1, 2, 7}},
        {"find the head",
         [](TqsList *l, std::vector<TqsListNode *> *) {
             tqsListDeleteNodeFindItem(l, Item(0), TQS_LIST_KEEP_ITEMS);
         },
         {1, 2, 3, 7}},
        {"first until empty",
         [](TqsList *l, std::vector<TqsListNode *> *) {
             for (int i = 0; i < 4; ++i) tqsListDeleteNodeFirst(l, TQS_LIST_KEEP_ITEMS);
         },
         {7}},
        {"all",
         [](TqsList *l, std::vector<TqsListNode *> *) { tqsListDeleteNodeAll(l, TQS_LIST_KEEP_ITEMS); },
         {7}},
        {"take the first",
         [](TqsList *l, std::vector<TqsListNode *> *) {
             void *item;
             tqsListGetItemFirstAndDeleteNode(l, &item);
         },
         {1, 2, 3, 7}},
        {"take the cursor on the tail",
         [](TqsList *l, std::vector<TqsListNode *> *) {
             void *item;
             tqsListSetCurNodeFirst(l);
             for (int i = 0; i < 3; ++i) tqsListGetItemNext(l, &item);
             tqsListGetItemNextAndDeleteNode(l, &item);
         },
         {0, 1, 2, 7}},
        {"take the tail by index (the head jumps to null)",
         [](TqsList *l, std::vector<TqsListNode *> *dropped) {
             void *item;
             for (TqsListNode *n = l->ptHead; n->ptNext != nullptr; n = n->ptNext) dropped->push_back(n);
             tqsListGetItemIndexAndDeleteNode(l, &item, 3);
         },
         {7}},
        {"take an inner node by index",
         [](TqsList *l, std::vector<TqsListNode *> *dropped) {
             void *item;
             dropped->push_back(l->ptHead);
             tqsListGetItemIndexAndDeleteNode(l, &item, 1);
         },
         {2, 3, 7}},
        {"take the cursor on a dropped node",
         [](TqsList *l, std::vector<TqsListNode *> *dropped) {
             void *item;
             dropped->push_back(l->ptHead->ptNext);
             tqsListSetCurNodeFirst(l);
             tqsListGetItemIndexAndDeleteNode(l, &item, 2);
             tqsListGetItemNextAndDeleteNode(l, &item);
         },
         {3, 7}},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        MemCheck check;
        TqsList *list = ListOf({0, 1, 2, 3});
        std::vector<TqsListNode *> dropped;
        c.remove(list, &dropped);
        ASSERT_EQ(tqsListAddNodeLast(list, Item(7)), TQS_OK);
        std::vector<void *> expected;
        for (int i : c.expected) expected.push_back(Item(i));
        EXPECT_EQ(Walk(list), expected);
        ASSERT_EQ(tqsListAddNodeLast(list, Item(6)), TQS_OK);  // and again behind it
        expected.push_back(Item(6));
        EXPECT_EQ(Walk(list), expected);
        tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
        for (TqsListNode *n : dropped) tqsMemFree_debug(n);
        EXPECT_TRUE(check.Live().empty());
    }
    // An empty list filled from the front, then from the back.
    TqsList *list = nullptr;
    ASSERT_EQ(tqsListCreate(&list, nullptr), TQS_OK);
    EXPECT_EQ(tqsListGetCount(list), 0u);
    ASSERT_EQ(tqsListAddNodeFirst(list, Item(5)), TQS_OK);
    ASSERT_EQ(tqsListAddNodeLast(list, Item(7)), TQS_OK);
    EXPECT_EQ(Walk(list), (std::vector<void *>{Item(5), Item(7)}));
    EXPECT_EQ(tqsListGetCount(list), 2u);
    tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS);
}

TEST(TqsList, LongChainsNeedNoRecursion) {
    TqsList *list = nullptr;
    ASSERT_EQ(tqsListCreate(&list, nullptr), TQS_OK);
    const uint32_t n = 200000;
    for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(tqsListAddNodeFirst(list, Item(i % 8)), TQS_OK);
    EXPECT_EQ(tqsListGetCount(list), n);
    void *item = nullptr;
    EXPECT_EQ(tqsListGetItemIndex(list, &item, n - 1), TQS_OK);
    EXPECT_EQ(tqsListDeleteNodeAllAndList(list, TQS_LIST_KEEP_ITEMS), TQS_OK);
}

}  // namespace
