// Singly linked list of untyped item pointers with a count and a read cursor.
#ifndef TQSLIST_H
#define TQSLIST_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

typedef struct TqsListNode {
    void *pItem;
    struct TqsListNode *ptNext;
} TqsListNode;

typedef struct TqsList {
    uint32_t nCount;
    TqsListNode *ptHead;
    TqsListNode *ptCur;  // node the next tqsListGetItemNext returns
} TqsList;

// Release routine of the delete operations: null frees each item with
// tqsMemFree_debug, TQS_LIST_KEEP_ITEMS leaves the items alone, anything else
// is called once per non-null item (its result is ignored).
typedef uint32_t (*TqsListReleaseFn)(void *item);

#define TQS_LIST_KEEP_ITEMS_VALUE 0xFFFFFFFFu
#define TQS_LIST_KEEP_ITEMS ((TqsListReleaseFn)(uintptr_t)TQS_LIST_KEEP_ITEMS_VALUE)

TqsResult tqsListCreate(TqsList **out, void *item);
TqsResult tqsListAddNodeLast(TqsList *list, void *item);
TqsResult tqsListAddNodeFirst(TqsList *list, void *item);
TqsResult tqsListDeleteNodeFindItem(TqsList *list, void *item, TqsListReleaseFn release);
// A cursor on the removed head moves to the new head (it is never left on freed memory).
TqsResult tqsListDeleteNodeFirst(TqsList *list, TqsListReleaseFn release);
TqsResult tqsListDeleteNodeAll(TqsList *list, TqsListReleaseFn release);
TqsResult tqsListDeleteNodeAllAndList(TqsList *list, TqsListReleaseFn release);
TqsResult tqsListSetCurNodeFirst(TqsList *list);
TqsResult tqsListGetItemFirst(TqsList *list, void **out);
TqsResult tqsListGetItemNext(TqsList *list, void **out);
TqsResult tqsListGetItemFirstAndDeleteNode(TqsList *list, void **out);
TqsResult tqsListGetItemNextAndDeleteNode(TqsList *list, void **out);
TqsResult tqsListGetItemIndex(TqsList *list, void **out, uint32_t index);
// Takes the item at index; the head becomes the node after it (nodes before it
// drop out of the chain) and the count drops by one.
TqsResult tqsListGetItemIndexAndDeleteNode(TqsList *list, void **out, uint32_t index);
uint32_t tqsListGetCount(const TqsList *list);

#ifdef __cplusplus
}
#endif

#endif  // TQSLIST_H
