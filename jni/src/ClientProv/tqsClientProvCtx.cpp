// Provisioning context: construction from the document tree, conversion
// rules and release.
//
// Every converter, distributor and release routine of a record kind is one
// generic routine reading a constant description of that kind: which string
// fields are copied (or released, in which order), which string lists and
// which child chains, and which child characteristics go to which chain. The
// named routines are one-line entry points carrying only their own quirks.
//
// Chains can be as long as the document repeats a characteristic or parm, so
// appending keeps a tail pointer and release walks a chain in a loop: nothing
// here costs stack or time per record beyond a constant. Nesting of record
// kinds is fixed by the tables (at most PXLOGICAL > PXPHYSICAL > PORT > list),
// so the calls between kinds stay a few levels deep whatever the input.
#include "tqsClientProvCtx.h"

#include <stddef.h>

#include <iterator>
#include <type_traits>

#include "tqsClientProvWbxml.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "tqstrace.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqsClientProvCtx";

namespace {

// ---- field access by byte offset ------------------------------------------
// Every record is a row of pointers; fields are reached through their offset.
// Loads and stores copy the pointer bytes so that one routine serves every
// record type without type-punned lvalues.

using Offset = uint16_t;
constexpr Offset kNone = 0xFFFF;

void *Load(const void *rec, Offset off) {
    void *p;
    __builtin_memcpy(&p, static_cast<const unsigned char *>(rec) + off, sizeof p);
    return p;
}

void Store(void *rec, Offset off, const void *p) {
    __builtin_memcpy(static_cast<unsigned char *>(rec) + off, &p, sizeof p);
}

// Records are one byte larger than their fields, zero-filled: absent reads null.
void *NewRecord(uint32_t size) {
    return tqsMemAllocSetZero_debug(size + 1, kUnitPath, __LINE__);
}

char *Copy(const char *text) {
    return tqsStrdup_debug(text, kUnitPath, __LINE__);
}

// Appends to a chain whose last record is remembered, so that building a chain
// of n records costs n steps instead of walking from the head each time.
struct ChainTail {
    void *last = nullptr;

    void Append(void *parent, Offset head, Offset next, void *rec) {
        if (rec == nullptr) return;  // a record that could not be allocated is missing from its chain
        if (last == nullptr) {
            // Start from whatever the chain already holds.
            for (void *p = Load(parent, head); p != nullptr; p = Load(p, next)) last = p;
        }
        if (last == nullptr) {
            Store(parent, head, rec);
        } else {
            Store(last, next, rec);
        }
        last = rec;
    }
};

// ---- descriptions -----------------------------------------------------------

// A field copied from the tree record (from) to the context record (to).
struct FieldPair {
    Offset from;
    Offset to;
};

using ConvertFn = void *(*)(const void *wap);
using ReleaseFn = void (*)(void *rec);

// A characteristic slot of tqsWapCharacter accepted into a chain of the parent.
struct ChildSlot {
    Offset slot;  // in tqsWapCharacter
    Offset head;  // chain head in the parent context record
    Offset next;  // ptNext of the child context record
    ConvertFn convert;
};

template <class T>
struct Rows {
    const T *row = nullptr;
    uint8_t count = 0;
};

template <class T, size_t N>
constexpr Rows<T> RowsOf(const T (&a)[N]) {
    static_assert(N < 256);
    return {a, uint8_t(N)};
}

// A tree List of strings converted into a context string chain.
struct ListRow {
    Offset from;
    Offset to;
    tqsCtxStrNode *(*convert)(TqsList *list);
};

using DistributeFn = uint32_t (*)(TqsList *children, void *parent);

struct ConvertDesc {
    uint32_t size;            // context record size
    Rows<FieldPair> strings;  // string fields, copied when set
    Rows<ListRow> lists;      // string lists, converted when present
    Offset childList;         // ptCharacterList of the tree record, or kNone
    DistributeFn distribute;  // distributor of the child list
};

// A string list or child chain released with its own routine.
struct SubRelease {
    Offset field;
    ReleaseFn release;
};

struct ReleaseDesc {
    Rows<Offset> strings;   // released and cleared in this order
    Rows<SubRelease> subs;  // released in this order when set
    Offset next;            // ptNext, or kNone for records that are never chained
};

template <class R, class A>
A *ArgOf(R *(*)(const A *));

// Adapts a typed converter entry point to the generic slot table.
template <auto Fn>
void *ConvertThunk(const void *wap) {
    using Wap = std::remove_pointer_t<decltype(ArgOf(Fn))>;
    return Fn(static_cast<const Wap *>(wap));
}

template <class R, class P>
P *ParentOf(R (*)(TqsList *, P *));

template <auto Fn>
uint32_t DistributeThunk(TqsList *children, void *parent) {
    return Fn(children, static_cast<decltype(ParentOf(Fn))>(parent));
}

template <class A>
A *ReleaseArgOf(void (*)(A *));

template <auto Fn>
void ReleaseThunk(void *rec) {
    Fn(static_cast<decltype(ReleaseArgOf(Fn))>(rec));
}

// ---- generic routines -------------------------------------------------------

tqsCtxStrNode *ConvertStrList(const char *name, TqsList *list) {
    tqcTraceFunction(name);
    tqsCtxStrNode *head = nullptr;
    tqsCtxStrNode *tail = nullptr;
    tqsListSetCurNodeFirst(list);
    TqsResult status;
    for (;;) {
        void *item = nullptr;
        status = tqsListGetItemNext(list, &item);
        if (status != TQS_OK || item == nullptr) break;  // a null item drops the rest
        auto *node = static_cast<tqsCtxStrNode *>(NewRecord(sizeof(tqsCtxStrNode)));
        if (node == nullptr) break;  // out of memory: the chain ends here
        if (tail == nullptr) {
            head = node;
        } else {
            tail->ptNext = node;
        }
        tail = node;
        node->pszStr = Copy(static_cast<const char *>(item));
    }
    tqcTraceError(status);
    return head;
}

constexpr uint8_t kMaxChildSlots = 4;

uint32_t Distribute(const char *name, TqsList *children, void *parent, Rows<ChildSlot> slots) {
    tqcTraceFunction(name);
    if (parent == nullptr) {  // nowhere to append: error 2 instead of writes through null
        tqcTraceError(TQS_ERROR_MISSING);
        return TQS_ERROR_MISSING;
    }
    ChainTail tails[kMaxChildSlots];
    uint32_t result = TQS_OK;
    tqsListSetCurNodeFirst(children);
    void *item = nullptr;
    while (tqsListGetItemNext(children, &item) == TQS_OK && item != nullptr) {
        uint8_t i = 0;
        void *wap = nullptr;
        while (i < slots.count && (wap = Load(item, slots.row[i].slot)) == nullptr) ++i;
        if (i == slots.count) {
            // A child the parent cannot hold ends the walk; later siblings are dropped.
            tqcTrace("[WARNING] Not Support Context");
            result = TQS_ERROR_FAILED;
            break;
        }
        const ChildSlot &s = slots.row[i];
        tails[i].Append(parent, s.head, s.next, s.convert(wap));
    }
    tqcTraceError(result);
    return result;
}

void *ConvertRecord(const char *name, const void *wap, const ConvertDesc &d) {
    tqcTraceFunction(name);
    if (wap == nullptr) {
        tqcTraceError(TQS_ERROR_MISSING);
        return nullptr;
    }
    void *rec = NewRecord(d.size);
    if (rec == nullptr) return nullptr;  // out of memory: no record rather than writes through null
    for (uint8_t i = 0; i < d.strings.count; ++i) {
        const FieldPair &f = d.strings.row[i];
        const void *text = Load(wap, f.from);
        if (text != nullptr) Store(rec, f.to, Copy(static_cast<const char *>(text)));
    }
    for (uint8_t i = 0; i < d.lists.count; ++i) {
        const ListRow &l = d.lists.row[i];
        auto *list = static_cast<TqsList *>(Load(wap, l.from));
        if (list != nullptr) Store(rec, l.to, l.convert(list));
    }
    if (d.childList != kNone) {
        auto *children = static_cast<TqsList *>(Load(wap, d.childList));
        if (children != nullptr) tqcTraceError(d.distribute(children, rec));
    }
    return rec;
}

// The release loops trace the routine's name once per record, as a call per
// record would.
void ReleaseStrChain(const char *name, tqsCtxStrNode *node) {
    if (node == nullptr) {
        tqcTraceFunction(name);
        tqcTraceError(TQS_ERROR_MISSING);
        return;
    }
    while (node != nullptr) {
        tqcTraceFunction(name);
        tqsCtxStrNode *next = node->ptNext;
        tqsMemFree_debug(node->pszStr);
        node->pszStr = nullptr;
        tqsMemFree_debug(node);
        node = next;
    }
}

// Releases a record and the rest of its chain, one record per turn of the loop.
void ReleaseChain(const char *name, void *rec, const ReleaseDesc &d) {
    if (rec == nullptr) {
        tqcTraceFunction(name);
        tqcTraceError(TQS_ERROR_MISSING);
        return;
    }
    while (rec != nullptr) {
        tqcTraceFunction(name);
        for (uint8_t i = 0; i < d.strings.count; ++i) {
            const Offset f = d.strings.row[i];
            void *text = Load(rec, f);
            if (text != nullptr) {
                tqsMemFree_debug(text);
                Store(rec, f, nullptr);
            }
        }
        for (uint8_t i = 0; i < d.subs.count; ++i) {
            void *sub = Load(rec, d.subs.row[i].field);
            if (sub != nullptr) d.subs.row[i].release(sub);
        }
        void *next = d.next == kNone ? nullptr : Load(rec, d.next);
        tqsMemFree_debug(rec);
        rec = next;
    }
}

// ---- per-kind descriptions --------------------------------------------------
// In each namespace W is the tree record and C the context record. The field
// lists are X-macros expanded into copy rows (SAME) and release rows (OFF).

// clang-format off
#define SAME(f) FieldPair{offsetof(W, f), offsetof(C, f)}
#define SAME_(f) SAME(f),
#define OFF(f) Offset(offsetof(C, f))
#define OFF_(f) OFF(f),
#define LIST(w, c, Fn) ListRow{offsetof(W, w), offsetof(C, c), Fn}
#define SLOT(f, head, T, Fn) ChildSlot{offsetof(tqsWapCharacter, f), offsetof(C, head), offsetof(T, ptNext), ConvertThunk<Fn>}
#define SUB(f, Fn) SubRelease{offsetof(C, f), ReleaseThunk<Fn>}
#define STR_SUB(f, Fn) SubRelease{offsetof(C, f), ReleaseStrThunk<Fn>}
// clang-format on

template <void (*Fn)(tqsCtxStrNode *)>
void ReleaseStrThunk(void *node) {
    Fn(static_cast<tqsCtxStrNode *>(node));
}

namespace pxauthinfo {
using W = tqsWapPxAuthInfo;
using C = tqsCtxPxAuthInfo;
#define FIELDS(X) X(pszPxAuthType) X(pszPxAuthId) X(pszPxAuthPw)
constexpr FieldPair kCopy[] = {FIELDS(SAME_)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, offsetof(C, ptNext)};
}  // namespace pxauthinfo

namespace port {
using W = tqsWapPort;
using C = tqsCtxPort;
constexpr FieldPair kCopy[] = {SAME(pszPortNbr)};
constexpr ListRow kLists[] = {LIST(ptServiceList, ptService, tqsClientProvCtxVerifyContextServiceList)};
constexpr Offset kFree[] = {OFF(pszPortNbr)};
constexpr SubRelease kSubs[] = {STR_SUB(ptService, tqsClientProvCtxDelectContextServiceList)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace port

namespace pxphysical {
using W = tqsWapPxPhysical;
using C = tqsCtxPxPhysical;
// clang-format off
#define FIELDS(X) X(pszPhysicalProxyId) X(pszPxAddr) X(pszPxAddrType) X(pszPxAddrFqdn) X(pszWspVersion) \
    X(pszPushEnabled) X(pszPullEnabled)
// clang-format on
constexpr FieldPair kCopy[] = {FIELDS(SAME_)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ListRow kLists[] = {LIST(ptDomainList, ptDomain, tqsClientProvCtxVerifyContextDomainList),
                              LIST(ptToNapIdList, ptToNapId, tqsClientProvCtxVerifyContextToNapIdList)};
constexpr ChildSlot kChildren[] = {SLOT(ptPort, ptPort, tqsCtxPort, tqsClientProvCtxVerifyContextPort)};
constexpr SubRelease kSubs[] = {STR_SUB(ptToNapId, tqsClientProvCtxDelectContextToNapIdList),
                                STR_SUB(ptDomain, tqsClientProvCtxDelectContextDomainList),
                                SUB(ptPort, tqsClientProvCtxDelectContextPort)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), offsetof(W, ptCharacterList),
                               DistributeThunk<tqsClientProvCtxVerifyCharacterPxPhysical>};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace pxphysical

namespace pxlogical {
using W = tqsWapPxLogical;
using C = tqsCtxPxLogical;
// clang-format off
#define PARMS(X) X(pszProxyId) X(pszProxyPw) X(pszPpgAuthType) X(pszProxyProviderId) X(pszName) X(pszTrust) \
    X(pszMaster) X(pszStartPage)
// clang-format on
// The fourth reserved field is not copied (it is released all the same).
constexpr FieldPair kCopy[] = {PARMS(SAME_) SAME(pszReserved1), SAME(pszReserved2), SAME(pszReserved3),
                               SAME(pszReserved5)};
constexpr Offset kFree[] = {PARMS(OFF_) OFF(pszReserved1), OFF(pszReserved2), OFF(pszReserved3),
                            OFF(pszReserved4), OFF(pszReserved5)};
#undef PARMS
constexpr ListRow kLists[] = {LIST(ptDomainList, ptDomain, tqsClientProvCtxVerifyContextDomainList)};
constexpr ChildSlot kChildren[] = {
    SLOT(ptPxAuthInfo, ptPxAuthInfo, tqsCtxPxAuthInfo, tqsClientProvCtxVerifyContextPxAuthInfo),
    SLOT(ptPxPhysical, ptPxPhysical, tqsCtxPxPhysical, tqsClientProvCtxVerifyContextPxPhysical),
    SLOT(ptPort, ptPort, tqsCtxPort, tqsClientProvCtxVerifyContextPort)};
constexpr SubRelease kSubs[] = {STR_SUB(ptDomain, tqsClientProvCtxDelectContextDomainList),
                                SUB(ptPort, tqsClientProvCtxDelectContextPort),
                                SUB(ptPxAuthInfo, tqsClientProvCtxDelectContextPxAuthInfo),
                                SUB(ptPxPhysical, tqsClientProvCtxDelectContextPxPhysical)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), offsetof(W, ptCharacterList),
                               DistributeThunk<tqsClientProvCtxVerifyCharacterPxLogical>};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace pxlogical

namespace napauthinfo {
using W = tqsWapNapAuthInfo;
using C = tqsCtxNapAuthInfo;
#define FIELDS(X) X(pszAuthType) X(pszAuthName) X(pszAuthSecret) X(pszReserved1)
constexpr FieldPair kCopy[] = {FIELDS(SAME_)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ListRow kLists[] = {
    LIST(ptAuthEntityList, ptAuthEntity, tqsClientProvCtxVerifyContextAuthEntityList)};
constexpr SubRelease kSubs[] = {STR_SUB(ptAuthEntity, tqsClientProvCtxDelectContextAuthEntityList)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace napauthinfo

namespace validity {
using W = tqsWapValidity;
using C = tqsCtxValidity;
#define FIELDS(X) X(pszCountry) X(pszNetwork) X(pszSid) X(pszSoc) X(pszValidUntil)
constexpr FieldPair kCopy[] = {FIELDS(SAME_)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, offsetof(C, ptNext)};
}  // namespace validity

namespace napdef {
using W = tqsWapNapDef;
using C = tqsCtxNapDef;
// clang-format off
#define FIELDS(X) X(pszNapId) X(pszName) X(pszInternet) X(pszNapAddress) X(pszNapAddrType) X(pszCallType) \
    X(pszLocalAddr) X(pszLocalAddrType) X(pszLinkSpeed) X(pszDnLinkSpeed) X(pszLinger) X(pszDeliveryErrSdu)  \
    X(pszDeliveryOrder) X(pszTrafficClass) X(pszMaxSduSize) X(pszMaxBitrateUplink) X(pszMaxBitrateDnlink)    \
    X(pszReserved1) X(pszReserved2) X(pszReserved3) X(pszReserved4) X(pszReserved5) X(pszReserved6)          \
    X(pszMaxNumRetry) X(pszFirstRetryTimeout) X(pszReregThreshold) X(pszTBit)
// clang-format on
// pszInit is copied but deliberately left allocated on release.
constexpr FieldPair kCopy[] = {FIELDS(SAME_) SAME(pszInit)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ListRow kLists[] = {LIST(ptDnsAddrList, ptDnsAddr, tqsClientProvCtxVerifyContextDnsAddrList),
                              LIST(ptBearerList, ptBearer, tqsClientProvCtxVerifyContextBearerList)};
constexpr ChildSlot kChildren[] = {
    SLOT(ptNapAuthInfo, ptNapAuthInfo, tqsCtxNapAuthInfo, tqsClientProvCtxVerifyContextNapAuthInfo),
    SLOT(ptValidity, ptValidity, tqsCtxValidity, tqsClientProvCtxVerifyContextValidity)};
constexpr SubRelease kSubs[] = {STR_SUB(ptDnsAddr, tqsClientProvCtxDelectContextDnsAddrList),
                                STR_SUB(ptBearer, tqsClientProvCtxDelectContextBearerList),
                                SUB(ptNapAuthInfo, tqsClientProvCtxDelectContextNapAuthInfo),
                                SUB(ptValidity, tqsClientProvCtxDelectContextValidity)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), offsetof(W, ptCharacterList),
                               DistributeThunk<tqsClientProvCtxVerifyCharacterNapDef>};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
static_assert(std::size(kFree) == 27 && std::size(kCopy) == 28);
}  // namespace napdef

namespace bootstrap {
using W = tqsWapBootstrap;
using C = tqsCtxBootstrap;
constexpr FieldPair kCopy[] = {SAME(pszName), SAME(pszCountry), SAME(pszProvUrl), SAME(pszContextAllow)};
constexpr ListRow kLists[] = {LIST(ptProxyIdList, ptProxyId, tqsClientProvCtxVerifyContextProxyIdList),
                              LIST(ptNetworkList, ptNetwork, tqsClientProvCtxVerifyContextNetworkList)};
constexpr Offset kFree[] = {OFF(pszContextAllow), OFF(pszCountry), OFF(pszName), OFF(pszProvUrl)};
constexpr SubRelease kSubs[] = {STR_SUB(ptNetwork, tqsClientProvCtxDelectContextNetworkList),
                                STR_SUB(ptProxyId, tqsClientProvCtxDelectContextProxyIdList)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace bootstrap

namespace clientident {
using W = tqsWapClientIdentity;
using C = tqsCtxClientIdent;
constexpr FieldPair kCopy[] = {SAME(pszClientId)};
constexpr Offset kFree[] = {OFF(pszClientId)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, kNone};  // never a chain
}  // namespace clientident

namespace venderconfig {
using W = tqsWapVendorConfig;
using C = tqsCtxVenderConfig;
#define FIELDS(X) X(pszName) X(pszParmName) X(pszParmValue)
constexpr FieldPair kCopy[] = {FIELDS(SAME_)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, offsetof(C, ptNext)};
}  // namespace venderconfig

namespace appaddr {
using W = tqsWapAppAddr;
using C = tqsCtxAppAddr;
constexpr FieldPair kCopy[] = {SAME(pszAddr), SAME(pszAddrType)};
constexpr Offset kFree[] = {OFF(pszAddr), OFF(pszAddrType)};
constexpr ChildSlot kChildren[] = {SLOT(ptPort, ptPort, tqsCtxPort, tqsClientProvCtxVerifyContextPort)};
constexpr SubRelease kSubs[] = {SUB(ptPort, tqsClientProvCtxDelectContextPort)};
constexpr ConvertDesc kConvert{sizeof(C),
                               RowsOf(kCopy),
                               {},
                               offsetof(W, ptCharacterList),
                               DistributeThunk<tqsClientProvCtxVerifyCharacterAppAddr>};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace appaddr

namespace appauth {
using W = tqsWapAppAuth;
using C = tqsCtxAppAuth;
constexpr FieldPair kCopy[] = {SAME(pszAAuthLevel), SAME(pszAAuthType), SAME(pszAAuthName),
                               SAME(pszAAuthSecret), SAME(pszAAuthData)};
constexpr Offset kFree[] = {OFF(pszAAuthData), OFF(pszAAuthLevel), OFF(pszAAuthName), OFF(pszAAuthSecret),
                            OFF(pszAAuthType)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, offsetof(C, ptNext)};
}  // namespace appauth

namespace resource {
using W = tqsWapResource;
using C = tqsCtxResource;
constexpr FieldPair kCopy[] = {SAME(pszUri),       SAME(pszName),      SAME(pszAAccept),
                               SAME(pszAAuthType), SAME(pszAAuthName), SAME(pszAAuthSecret),
                               SAME(pszAAuthData), SAME(pszStartPage)};
constexpr Offset kFree[] = {OFF(pszAAccept),   OFF(pszAAuthData), OFF(pszAAuthName), OFF(pszAAuthSecret),
                            OFF(pszAAuthType), OFF(pszName),      OFF(pszStartPage), OFF(pszUri)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, offsetof(C, ptNext)};
}  // namespace resource

namespace roaming {
using W = tqsWapRoaming;
using C = tqsCtxRoaming;
constexpr FieldPair kCopy[] = {SAME(pszSyncAllowed), SAME(pszSyncDefault)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
}  // namespace roaming

namespace application {
using W = tqsWapApplication;
using C = tqsCtxApplication;
// clang-format off
constexpr FieldPair kCopy[] = {
    SAME(pszAppId), SAME(pszProviderId),
    SAME(pszFrom), SAME(pszFrom),  // copied twice: the second copy replaces the first, which stays allocated
    SAME(pszName), SAME(pszAAccept), SAME(pszAProtocol), SAME(pszInternet), SAME(pszXcapAuidDcs),
    SAME(pszXcapAuidPms), SAME(pszXcapAuidCdms), SAME(pszXcapImeiHeader), SAME(pszXcapTidHeader)};
// clang-format on
constexpr ListRow kLists[] = {LIST(ptToProxyList, ptToProxy, tqsClientProvCtxVerifyContextToProxyList),
                              LIST(ptToNapIdList, ptToNapId, tqsClientProvCtxVerifyContextToNapIdList),
                              LIST(ptAddrList, ptToAddr, tqsClientProvCtxVerifyContextToAddrList)};
constexpr ChildSlot kChildren[] = {
    SLOT(ptRoaming, ptRoaming, tqsCtxRoaming, tqsClientProvCtxVerifyContextRoaming),
    SLOT(ptAppAddr, ptAppAddr, tqsCtxAppAddr, tqsClientProvCtxVerifyContextAppAddr),
    SLOT(ptAppAuth, ptAppAuth, tqsCtxAppAuth, tqsClientProvCtxVerifyContextAppAuth),
    SLOT(ptResource, ptResource, tqsCtxResource, tqsClientProvCtxVerifyContextResource)};
// The five XCAP strings and the ROAMING chain are deliberately left allocated.
constexpr Offset kFree[] = {OFF(pszAAccept),    OFF(pszAppId), OFF(pszAProtocol), OFF(pszName),
                            OFF(pszProviderId), OFF(pszFrom),  OFF(pszInternet)};
constexpr SubRelease kSubs[] = {STR_SUB(ptToAddr, tqsClientProvCtxDelectContextToAddrList),
                                STR_SUB(ptToNapId, tqsClientProvCtxDelectContextToNapIdList),
                                STR_SUB(ptToProxy, tqsClientProvCtxDelectContextToProxyList),
                                SUB(ptAppAddr, tqsClientProvCtxDelectContextAppAddr),
                                SUB(ptAppAuth, tqsClientProvCtxDelectContextAppAuth),
                                SUB(ptResource, tqsClientProvCtxDelectContextResource)};
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), RowsOf(kLists), offsetof(W, ptCharacterList),
                               DistributeThunk<tqsClientProvCtxVerifyCharacterApplication>};
constexpr ReleaseDesc kRelease{RowsOf(kFree), RowsOf(kSubs), offsetof(C, ptNext)};
static_assert(std::size(kChildren) <= kMaxChildSlots);
}  // namespace application

namespace access {
using W = tqsWapAccess;
using C = tqsCtxAccess;
constexpr ListRow kLists[] = {LIST(ptRuleList, ptRule, tqsClientProvCtxVerifyContextRuleList),
                              LIST(ptAppIdList, ptAppId, tqsClientProvCtxVerifyContextAppIdList),
                              LIST(ptPortNbrList, ptPortNbr, tqsClientProvCtxVerifyContextPortNbrList),
                              LIST(ptDomainList, ptDomain, tqsClientProvCtxVerifyContextDomainList),
                              LIST(ptToNapIdList, ptToNapId, tqsClientProvCtxVerifyContextToNapIdList),
                              LIST(ptToProxyList, ptToProxy, tqsClientProvCtxVerifyContextToProxyList)};
constexpr SubRelease kSubs[] = {STR_SUB(ptAppId, tqsClientProvCtxDelectContextAppIdList),
                                STR_SUB(ptDomain, tqsClientProvCtxDelectContextDomainList),
                                STR_SUB(ptPortNbr, tqsClientProvCtxDelectContextPortNbrList),
                                STR_SUB(ptRule, tqsClientProvCtxDelectContextRuleList),
                                STR_SUB(ptToNapId, tqsClientProvCtxDelectContextToNapIdList),
                                STR_SUB(ptToProxy, tqsClientProvCtxDelectContextToProxyList)};
constexpr ConvertDesc kConvert{sizeof(C), {}, RowsOf(kLists), kNone, nullptr};
constexpr ReleaseDesc kRelease{{}, RowsOf(kSubs), offsetof(C, ptNext)};
}  // namespace access

namespace wifi {
using W = tqsWapWifi;
using C = tqsCtxWifi;
// clang-format off
#define FIELDS(X) X(pszNetSsid) X(pszSecMode) X(pszEapMethod) X(pszEapType) X(pszUserName) X(pszAnonUserName) \
    X(pszPassword) X(pszCaCert) X(pszUserCert) X(pszPhase1) X(pszAuthAlgorithm) X(pszPriority)
// clang-format on
constexpr FieldPair kCopy[] = {FIELDS(SAME_)};
constexpr Offset kFree[] = {FIELDS(OFF_)};
#undef FIELDS
constexpr ConvertDesc kConvert{sizeof(C), RowsOf(kCopy), {}, kNone, nullptr};
constexpr ReleaseDesc kRelease{RowsOf(kFree), {}, offsetof(C, ptNext)};
}  // namespace wifi

namespace root {
using C = tqsClientProvCtx;
// Top-level slots, tested in this order for every characteristic of the document.
constexpr ChildSlot kSlots[] = {
    SLOT(ptPxLogical, ptPxLogical, tqsCtxPxLogical, tqsClientProvCtxVerifyContextPxLogical),
    SLOT(ptNapDef, ptNapDef, tqsCtxNapDef, tqsClientProvCtxVerifyContextNapdef),
    SLOT(ptBootstrap, ptBootstrap, tqsCtxBootstrap, tqsClientProvCtxVerifyContextBootstrap),
    ChildSlot{offsetof(tqsWapCharacter, ptClientIdentity), offsetof(C, ptClientIdent), kNone,
              ConvertThunk<tqsClientProvCtxVerifyContextClientIdent>},  // single record, first wins
    SLOT(ptVendorConfig, ptVenderConfig, tqsCtxVenderConfig, tqsClientProvCtxVerifyContextVenderConfig),
    SLOT(ptWifi, ptWifi, tqsCtxWifi, tqsClientProvCtxVerifyContextWifi),
    SLOT(ptApplication, ptApplication, tqsCtxApplication, tqsClientProvCtxVerifyContextApplication),
    SLOT(ptAccess, ptAccess, tqsCtxAccess, tqsClientProvCtxVerifyContextAccess)};
// The WI-FI chain is deliberately left allocated.
constexpr SubRelease kSubs[] = {SUB(ptAccess, tqsClientProvCtxDelectContextAccess),
                                SUB(ptApplication, tqsClientProvCtxDelectContextApplication),
                                SUB(ptBootstrap, tqsClientProvCtxDelectContextBootstrap),
                                SUB(ptClientIdent, tqsClientProvCtxDelectContextClientIdent),
                                SUB(ptNapDef, tqsClientProvCtxDelectContextNapDef),
                                SUB(ptPxLogical, tqsClientProvCtxDelectContextPxLogical),
                                SUB(ptVenderConfig, tqsClientProvCtxDelectContextVenderConfig)};
constexpr ReleaseDesc kRelease{{}, RowsOf(kSubs), kNone};
}  // namespace root

#undef SAME
#undef OFF
#undef SAME_
#undef OFF_
#undef LIST
#undef SLOT
#undef SUB
#undef STR_SUB

template <class T>
T *Convert(const char *name, const void *wap, const ConvertDesc &d) {
    return static_cast<T *>(ConvertRecord(name, wap, d));
}

}  // namespace

// ---- construction -------------------------------------------------------------

extern "C" tqsClientProvCtx *tqsClientProvCtxMakeContext(tqsWapDoc *ptWapDoc) {
    tqcTraceFunction(__func__);
    if (ptWapDoc == nullptr) {
        tqcTraceError(TQS_ERROR_MISSING);
        return nullptr;
    }
    tqsClientProvCtx *ptCtx = nullptr;
    const TqsResult status = tqsClientProvCtxVerifyContext(ptWapDoc->ptCharacterList, &ptCtx);
    if (status != TQS_OK) {
        tqcTraceError(status);
        return nullptr;
    }
    return ptCtx;
}

extern "C" uint32_t tqsClientProvCtxVerifyContext(TqsList *ptCharacterList, tqsClientProvCtx **pptCtx) {
    tqcTraceFunction(__func__);
    if (pptCtx != nullptr) *pptCtx = nullptr;
    // No place for the result: refused like a missing list, rather than a root built only to leak.
    if (ptCharacterList == nullptr || pptCtx == nullptr) {
        tqcTraceError(TQS_ERROR_MISSING);
        return TQS_ERROR_MISSING;
    }
    tqsListSetCurNodeFirst(ptCharacterList);
    void *item = nullptr;
    TqsResult status = tqsListGetItemNext(ptCharacterList, &item);
    if (status != TQS_OK) {
        tqcTraceError(status);
        return status;
    }

    auto *ptRoot = static_cast<tqsClientProvCtx *>(NewRecord(sizeof(tqsClientProvCtx)));
    if (ptRoot == nullptr) {  // out of memory: no context rather than writes through null
        tqcTraceError(TQS_ERROR_FAILED);
        return TQS_ERROR_FAILED;
    }
    ChainTail tails[std::size(root::kSlots)];
    for (; item != nullptr; status = tqsListGetItemNext(ptCharacterList, &item)) {
        if (status != TQS_OK) break;
        for (size_t i = 0; i < std::size(root::kSlots); ++i) {
            const ChildSlot &s = root::kSlots[i];
            const void *wap = Load(item, s.slot);
            if (wap == nullptr) continue;
            if (s.next == kNone) {
                if (Load(ptRoot, s.head) != nullptr) {
                    // Only the first CLIENTIDENTITY counts; the rest of this item is skipped.
                    tqcTrace("[WARNING] Already Have ClientIdent Context");
                    break;
                }
                Store(ptRoot, s.head, s.convert(wap));
            } else {
                tails[i].Append(ptRoot, s.head, s.next, s.convert(wap));
            }
        }
    }
    *pptCtx = ptRoot;
    tqcTraceError(TQS_OK);
    return TQS_OK;
}

// ---- record converters ----------------------------------------------------------

extern "C" tqsCtxPxLogical *tqsClientProvCtxVerifyContextPxLogical(const tqsWapPxLogical *ptWap) {
    return Convert<tqsCtxPxLogical>(__func__, ptWap, pxlogical::kConvert);
}

extern "C" tqsCtxPxAuthInfo *tqsClientProvCtxVerifyContextPxAuthInfo(const tqsWapPxAuthInfo *ptWap) {
    return Convert<tqsCtxPxAuthInfo>(__func__, ptWap, pxauthinfo::kConvert);
}

extern "C" tqsCtxPort *tqsClientProvCtxVerifyContextPort(const tqsWapPort *ptWap) {
    return Convert<tqsCtxPort>(__func__, ptWap, port::kConvert);
}

extern "C" tqsCtxPxPhysical *tqsClientProvCtxVerifyContextPxPhysical(const tqsWapPxPhysical *ptWap) {
    return Convert<tqsCtxPxPhysical>(__func__, ptWap, pxphysical::kConvert);
}

extern "C" tqsCtxNapDef *tqsClientProvCtxVerifyContextNapdef(const tqsWapNapDef *ptWap) {
    return Convert<tqsCtxNapDef>(__func__, ptWap, napdef::kConvert);
}

extern "C" tqsCtxNapAuthInfo *tqsClientProvCtxVerifyContextNapAuthInfo(const tqsWapNapAuthInfo *ptWap) {
    tqsCtxNapAuthInfo *ptCtx = Convert<tqsCtxNapAuthInfo>(__func__, ptWap, napauthinfo::kConvert);
    if (ptCtx != nullptr) {
        // An AUTH-ENTITY parm without value leaves an empty chain (and a failed copy a null
        // string): trace "(null)".
        const tqsCtxStrNode *ptFirst = ptCtx->ptAuthEntity;
        tqcTrace("NAP:ptCtx->ptAuthEntity->pAuthEntity[%s]",
                 ptFirst != nullptr && ptFirst->pAuthEntity != nullptr ? ptFirst->pAuthEntity : "(null)");
    }
    return ptCtx;
}

extern "C" tqsCtxValidity *tqsClientProvCtxVerifyContextValidity(const tqsWapValidity *ptWap) {
    return Convert<tqsCtxValidity>(__func__, ptWap, validity::kConvert);
}

extern "C" tqsCtxBootstrap *tqsClientProvCtxVerifyContextBootstrap(const tqsWapBootstrap *ptWap) {
    return Convert<tqsCtxBootstrap>(__func__, ptWap, bootstrap::kConvert);
}

extern "C" tqsCtxClientIdent *tqsClientProvCtxVerifyContextClientIdent(const tqsWapClientIdentity *ptWap) {
    return Convert<tqsCtxClientIdent>(__func__, ptWap, clientident::kConvert);
}

extern "C" tqsCtxVenderConfig *tqsClientProvCtxVerifyContextVenderConfig(const tqsWapVendorConfig *ptWap) {
    return Convert<tqsCtxVenderConfig>(__func__, ptWap, venderconfig::kConvert);
}

extern "C" tqsCtxApplication *tqsClientProvCtxVerifyContextApplication(const tqsWapApplication *ptWap) {
    return Convert<tqsCtxApplication>(__func__, ptWap, application::kConvert);
}

extern "C" tqsCtxAppAddr *tqsClientProvCtxVerifyContextAppAddr(const tqsWapAppAddr *ptWap) {
    return Convert<tqsCtxAppAddr>(__func__, ptWap, appaddr::kConvert);
}

extern "C" tqsCtxAppAuth *tqsClientProvCtxVerifyContextAppAuth(const tqsWapAppAuth *ptWap) {
    return Convert<tqsCtxAppAuth>(__func__, ptWap, appauth::kConvert);
}

extern "C" tqsCtxResource *tqsClientProvCtxVerifyContextResource(const tqsWapResource *ptWap) {
    return Convert<tqsCtxResource>(__func__, ptWap, resource::kConvert);
}

extern "C" tqsCtxRoaming *tqsClientProvCtxVerifyContextRoaming(const tqsWapRoaming *ptWap) {
    return Convert<tqsCtxRoaming>(__func__, ptWap, roaming::kConvert);
}

extern "C" tqsCtxAccess *tqsClientProvCtxVerifyContextAccess(const tqsWapAccess *ptWap) {
    return Convert<tqsCtxAccess>(__func__, ptWap, access::kConvert);
}

extern "C" tqsCtxWifi *tqsClientProvCtxVerifyContextWifi(const tqsWapWifi *ptWap) {
    return Convert<tqsCtxWifi>(__func__, ptWap, wifi::kConvert);
}

// ---- string-list converters -------------------------------------------------------

extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextToAddrList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextToProxyList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextPortNbrList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextAppIdList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextRuleList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextNetworkList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextProxyIdList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextAuthEntityList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextBearerList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextDnsAddrList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextToNapIdList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextServiceList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}
extern "C" tqsCtxStrNode *tqsClientProvCtxVerifyContextDomainList(TqsList *ptList) {
    return ConvertStrList(__func__, ptList);
}

// ---- child distributors ------------------------------------------------------------

extern "C" uint32_t tqsClientProvCtxVerifyCharacterPxLogical(TqsList *ptCharacterList,
                                                             tqsCtxPxLogical *ptParent) {
    return Distribute(__func__, ptCharacterList, ptParent, RowsOf(pxlogical::kChildren));
}

extern "C" uint32_t tqsClientProvCtxVerifyCharacterPxPhysical(TqsList *ptCharacterList,
                                                              tqsCtxPxPhysical *ptParent) {
    return Distribute(__func__, ptCharacterList, ptParent, RowsOf(pxphysical::kChildren));
}

extern "C" uint32_t tqsClientProvCtxVerifyCharacterAppAddr(TqsList *ptCharacterList,
                                                           tqsCtxAppAddr *ptParent) {
    return Distribute(__func__, ptCharacterList, ptParent, RowsOf(appaddr::kChildren));
}

extern "C" uint32_t tqsClientProvCtxVerifyCharacterNapDef(TqsList *ptCharacterList, tqsCtxNapDef *ptParent) {
    return Distribute(__func__, ptCharacterList, ptParent, RowsOf(napdef::kChildren));
}

extern "C" uint32_t tqsClientProvCtxVerifyCharacterApplication(TqsList *ptCharacterList,
                                                               tqsCtxApplication *ptParent) {
    return Distribute(__func__, ptCharacterList, ptParent, RowsOf(application::kChildren));
}

// ---- release ---------------------------------------------------------------------------

extern "C" void tqsClientProvCtxDelectContext(tqsClientProvCtx *ptCtx) {
    ReleaseChain(__func__, ptCtx, root::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextPxLogical(tqsCtxPxLogical *ptRec) {
    ReleaseChain(__func__, ptRec, pxlogical::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextPxAuthInfo(tqsCtxPxAuthInfo *ptRec) {
    ReleaseChain(__func__, ptRec, pxauthinfo::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextPort(tqsCtxPort *ptRec) {
    ReleaseChain(__func__, ptRec, port::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextPxPhysical(tqsCtxPxPhysical *ptRec) {
    ReleaseChain(__func__, ptRec, pxphysical::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextNapDef(tqsCtxNapDef *ptRec) {
    ReleaseChain(__func__, ptRec, napdef::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextNapAuthInfo(tqsCtxNapAuthInfo *ptRec) {
    ReleaseChain(__func__, ptRec, napauthinfo::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextValidity(tqsCtxValidity *ptRec) {
    ReleaseChain(__func__, ptRec, validity::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextBootstrap(tqsCtxBootstrap *ptRec) {
    ReleaseChain(__func__, ptRec, bootstrap::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextClientIdent(tqsCtxClientIdent *ptRec) {
    ReleaseChain(__func__, ptRec, clientident::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextVenderConfig(tqsCtxVenderConfig *ptRec) {
    ReleaseChain(__func__, ptRec, venderconfig::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextApplication(tqsCtxApplication *ptRec) {
    ReleaseChain(__func__, ptRec, application::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextAppAddr(tqsCtxAppAddr *ptRec) {
    ReleaseChain(__func__, ptRec, appaddr::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextAppAuth(tqsCtxAppAuth *ptRec) {
    ReleaseChain(__func__, ptRec, appauth::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextResource(tqsCtxResource *ptRec) {
    ReleaseChain(__func__, ptRec, resource::kRelease);
}
extern "C" void tqsClientProvCtxDelectContextAccess(tqsCtxAccess *ptRec) {
    ReleaseChain(__func__, ptRec, access::kRelease);
}
// Nothing calls it: the root release leaves the WI-FI chain allocated.
extern "C" void tqsClientProvCtxDelectContextWifi(tqsCtxWifi *ptRec) {
    ReleaseChain(__func__, ptRec, wifi::kRelease);
}

extern "C" void tqsClientProvCtxDelectContextRuleList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextAppIdList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextPortNbrList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextDomainList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextToNapIdList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextToProxyList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextToAddrList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextServiceList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextNetworkList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextProxyIdList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextDnsAddrList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextBearerList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
extern "C" void tqsClientProvCtxDelectContextAuthEntityList(tqsCtxStrNode *ptNode) {
    ReleaseStrChain(__func__, ptNode);
}
