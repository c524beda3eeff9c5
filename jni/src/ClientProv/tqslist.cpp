#include "tqslist.h"

#include "tqsmemory.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqslist";

// Allocation lines that the leak report shows.
static const uint32_t kLineList = 38;
static const uint32_t kLineCreateNode = 47;
static const uint32_t kLineLastNode = 78;
static const uint32_t kLineFirstNode = 120;

static_assert(sizeof(TqsListNode) == 2 * sizeof(void *), "TqsListNode: pItem, ptNext");
static_assert(sizeof(TqsList) == 3 * sizeof(void *), "TqsList: nCount, ptHead, ptCur");

namespace {

// Appending walks the chain to its last node. A decode appends to a few lists
// in turn (the characteristic list of each open level, the value lists of the
// open characteristics), so the last nodes of the lists appended to most
// recently are kept here, most recent first, outside the list records. An
// entry is dropped before its node or its list is freed, so a kept node is
// always alive; it is used only while it still ends the chain.
struct TailEntry {
    const TqsList *list;
    TqsListNode *node;
};
constexpr uint32_t kTailEntries = 8;
TailEntry g_tails[kTailEntries];

// Drops the entries of `list` and of `node` (either may be null).
void Forget(const TqsList *list, const TqsListNode *node) {
    for (TailEntry &e : g_tails) {
        if ((list != nullptr && e.list == list) || (node != nullptr && e.node == node)) e = TailEntry{};
    }
}

// Last node of a non-empty chain.
TqsListNode *LastNode(const TqsList *list) {
    for (const TailEntry &e : g_tails) {
        if (e.list == list && e.node->ptNext == nullptr) return e.node;
    }
    TqsListNode *node = list->ptHead;
    while (node->ptNext != nullptr) node = node->ptNext;
    return node;
}

// Puts `node` first as the last node of `list`, in place of the list's own
// entry or else of the least recently used one.
void Remember(const TqsList *list, TqsListNode *node) {
    uint32_t i = 0;
    while (i + 1 < kTailEntries && g_tails[i].list != list) ++i;
    for (; i > 0; --i) g_tails[i] = g_tails[i - 1];
    g_tails[0] = TailEntry{list, node};
}

TqsListNode *NewNode(void *item, uint32_t line) {
    auto *node =
        static_cast<TqsListNode *>(tqsMemAllocSetZero_debug(sizeof(TqsListNode) + 1, kUnitPath, line));
    if (node != nullptr) node->pItem = item;
    return node;
}

// The item release rule shared by every delete operation.
void ReleaseItem(TqsListNode *node, TqsListReleaseFn release) {
    if (node->pItem == nullptr || release == TQS_LIST_KEEP_ITEMS) return;
    if (release == nullptr) {
        tqsMemFree_debug(node->pItem);
        node->pItem = nullptr;
    } else {
        release(node->pItem);
    }
}

// Releases and frees every node from `node` on, iteratively.
void FreeChain(TqsListNode *node, TqsListReleaseFn release) {
    while (node != nullptr) {
        TqsListNode *next = node->ptNext;
        ReleaseItem(node, release);
        tqsMemFree_debug(node);
        node = next;
    }
}

// Node at a zero-based index. Null when the chain is shorter than nCount
// says, which tqsListGetItemIndexAndDeleteNode leaves behind: the walk stops
// instead of following a null link.
TqsListNode *Walk(const TqsList *list, uint32_t index) {
    TqsListNode *node = list->ptHead;
    for (uint32_t i = 0; i < index && node != nullptr; ++i) node = node->ptNext;
    return node;
}

// The node at index and its item for the index operations; out is null on
// every failure.
[[nodiscard]] TqsResult NodeAt(TqsList *list, void **out, uint32_t index, TqsListNode **node) {
    *out = nullptr;
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    if (index >= list->nCount) return TQS_ERROR_NOT_FOUND;
    *node = Walk(list, index);
    if (*node == nullptr) return TQS_ERROR_NOT_FOUND;
    *out = (*node)->pItem;
    return TQS_OK;
}

// Node before `target` (null when target is the head or not in the list).
TqsListNode *Previous(const TqsList *list, const TqsListNode *target) {
    for (TqsListNode *node = list->ptHead; node != nullptr; node = node->ptNext) {
        if (node->ptNext == target) return node;
    }
    return nullptr;
}

// A cursor on `node` moves to its next node: left on the node once freed, it
// would be read after free.
void MoveCursorOff(TqsList *list, const TqsListNode *node) {
    if (list->ptCur == node) list->ptCur = node->ptNext;
}

// Takes `node` out of the chain; it ends the chain no longer.
void Detach(TqsList *list, TqsListNode *previous, TqsListNode *node) {
    Forget(nullptr, node);
    if (previous != nullptr) {
        previous->ptNext = node->ptNext;
    } else if (list->ptHead == node) {
        list->ptHead = node->ptNext;
    }  // else: a node already dropped from the chain; the chain stays as it is
}

void FreeNode(TqsList *list, TqsListNode *node) {
    tqsMemFree_debug(node);
    list->nCount--;
}

void Unlink(TqsList *list, TqsListNode *previous, TqsListNode *node) {
    MoveCursorOff(list, node);
    Detach(list, previous, node);
    FreeNode(list, node);
}

}  // namespace

extern "C" {

TqsResult tqsListCreate(TqsList **out, void *item) {
    auto *list = static_cast<TqsList *>(tqsMemAllocSetZero_debug(sizeof(TqsList) + 1, kUnitPath, kLineList));
    if (list == nullptr) {
        *out = nullptr;
        return TQS_ERROR_LIST_ALLOC;
    }
    // A list freed without the list routines may have had this address.
    Forget(list, nullptr);
    if (item != nullptr) {
        TqsListNode *node = NewNode(item, kLineCreateNode);
        if (node == nullptr) {
            *out = nullptr;
            tqsMemFree_debug(list);
            return TQS_ERROR_LIST_ALLOC;
        }
        list->ptHead = node;
        list->nCount = 1;
    }
    *out = list;
    return TQS_OK;
}

TqsResult tqsListAddNodeLast(TqsList *list, void *item) {
    if (list == nullptr || item == nullptr) return TQS_ERROR_INVALID_PARAM;
    TqsListNode *node = NewNode(item, kLineLastNode);
    if (node == nullptr) return TQS_ERROR_LIST_ALLOC;
    if (list->ptHead == nullptr) {
        list->ptHead = node;
        list->nCount = 1;
    } else {
        LastNode(list)->ptNext = node;
        list->nCount++;
    }
    Remember(list, node);
    return TQS_OK;
}

TqsResult tqsListAddNodeFirst(TqsList *list, void *item) {
    if (list == nullptr || item == nullptr) return TQS_ERROR_INVALID_PARAM;
    TqsListNode *node = NewNode(item, kLineFirstNode);
    if (node == nullptr) return TQS_ERROR_LIST_ALLOC;
    node->ptNext = list->ptHead;
    list->nCount = (list->ptHead == nullptr) ? 1 : list->nCount + 1;
    list->ptHead = node;
    return TQS_OK;
}

TqsResult tqsListDeleteNodeFindItem(TqsList *list, void *item, TqsListReleaseFn release) {
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    TqsListNode *previous = nullptr;
    TqsListNode *node = list->ptHead;
    while (node != nullptr && node->pItem != item) {
        previous = node;
        node = node->ptNext;
    }
    if (node == nullptr) return TQS_ERROR_NOT_FOUND;
    MoveCursorOff(list, node);
    Detach(list, previous, node);
    ReleaseItem(node, release);
    FreeNode(list, node);
    return TQS_OK;
}

TqsResult tqsListDeleteNodeFirst(TqsList *list, TqsListReleaseFn release) {
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    TqsListNode *head = list->ptHead;
    if (head == nullptr) return TQS_OK;
    Detach(list, nullptr, head);
    ReleaseItem(head, release);
    MoveCursorOff(list, head);
    FreeNode(list, head);
    return TQS_OK;
}

TqsResult tqsListDeleteNodeAll(TqsList *list, TqsListReleaseFn release) {
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    Forget(list, nullptr);
    FreeChain(list->ptHead, release);
    list->ptHead = nullptr;
    list->ptCur = nullptr;
    list->nCount = 0;
    return TQS_OK;
}

TqsResult tqsListDeleteNodeAllAndList(TqsList *list, TqsListReleaseFn release) {
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    Forget(list, nullptr);
    FreeChain(list->ptHead, release);
    tqsMemFree_debug(list);
    return TQS_OK;
}

TqsResult tqsListSetCurNodeFirst(TqsList *list) {
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    list->ptCur = list->ptHead;
    return TQS_OK;
}

TqsResult tqsListGetItemFirst(TqsList *list, void **out) {
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;  // out deliberately untouched
    *out = (list->ptHead != nullptr) ? list->ptHead->pItem : nullptr;
    return TQS_OK;
}

TqsResult tqsListGetItemNext(TqsList *list, void **out) {
    if (list == nullptr) {
        *out = nullptr;
        return TQS_ERROR_INVALID_PARAM;
    }
    if (list->ptCur == nullptr) {
        *out = nullptr;
        return TQS_OK;
    }
    *out = list->ptCur->pItem;
    list->ptCur = list->ptCur->ptNext;
    return TQS_OK;
}

TqsResult tqsListGetItemFirstAndDeleteNode(TqsList *list, void **out) {
    *out = nullptr;
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    TqsListNode *head = list->ptHead;
    if (head == nullptr) return TQS_OK;
    *out = head->pItem;
    Unlink(list, nullptr, head);
    return TQS_OK;
}

TqsResult tqsListGetItemNextAndDeleteNode(TqsList *list, void **out) {
    *out = nullptr;
    if (list == nullptr) return TQS_ERROR_INVALID_PARAM;
    TqsListNode *node = list->ptCur;
    if (list->ptHead == nullptr || node == nullptr) return TQS_OK;
    // A cursor left on a node that tqsListGetItemIndexAndDeleteNode dropped has
    // no previous node in the chain (the walk would run off its end).
    TqsListNode *previous = (node == list->ptHead) ? nullptr : Previous(list, node);
    *out = node->pItem;
    Unlink(list, previous, node);
    return TQS_OK;
}

TqsResult tqsListGetItemIndex(TqsList *list, void **out, uint32_t index) {
    TqsListNode *node = nullptr;
    return NodeAt(list, out, index, &node);
}

TqsResult tqsListGetItemIndexAndDeleteNode(TqsList *list, void **out, uint32_t index) {
    TqsListNode *node = nullptr;
    TqsResult result = NodeAt(list, out, index, &node);
    if (result != TQS_OK) return result;
    // The previous node is never remembered: the head jumps past the node at
    // index and the nodes before it drop out of the chain (unfreed). The last
    // dropped node is linked past the freed one, so that a cursor still on a
    // dropped node walks on into the list instead of into freed memory.
    if (index > 0) Walk(list, index - 1)->ptNext = node->ptNext;
    list->ptHead = node;  // then unlinked as the head
    Unlink(list, nullptr, node);
    return TQS_OK;
}

uint32_t tqsListGetCount(const TqsList *list) {
    // A null list would be read through null: it counts nothing.
    return list == nullptr ? 0 : list->nCount;
}

}  // extern "C"
