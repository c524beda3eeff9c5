// Provisioning context: construction from the document tree, conversion
// rules and release.
//
// Every converter, distributor and release routine of a record kind is one
// generic routine reading that kind's tables, built from its field list
// (tqsClientProvFields.h). The named routines are one-line entry points
// carrying only their own quirks.
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

#include "tqsClientProvFields.h"
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
[[nodiscard]] uint32_t DistributeThunk(TqsList *children, void *parent) {
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
    (void)tqsListSetCurNodeFirst(list);  // a null list fails the first read below
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

// Inline: the five distributors are one-line entry points over it, each with its constant rows.
[[nodiscard]] inline uint32_t Distribute(const char *name, TqsList *children, void *parent,
                                         Rows<ChildSlot> slots) {
    tqcTraceFunction(name);
    if (parent == nullptr) {  // nowhere to append: error 2 instead of writes through null
        tqcTraceError(TQS_ERROR_MISSING);
        return TQS_ERROR_MISSING;
    }
    ChainTail tails[kMaxChildSlots];
    uint32_t result = TQS_OK;
    (void)tqsListSetCurNodeFirst(children);  // a null list fails the first read below
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
// record would. A string chain has a loop of its own: lists are released more
// often than any record.
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
// Strings go first, then lists and chains, each in its row's release place;
// that order and the fields left allocated are the system's own, fixed by its
// contract (the leak report and the traces show them): deliberate, not to be
// "fixed".
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
// Built from the field lists of tqsClientProvFields.h; the named routines of
// each kind and of each string-list kind come from the two tables below.

namespace rec = tqs::detail;

template <void (*Fn)(tqsCtxStrNode *)>
void ReleaseStrThunk(void *node) {
    Fn(static_cast<tqsCtxStrNode *>(node));
}

struct KindRoutines {
    ConvertFn convert;
    ReleaseFn release;        // null for ROAMING, which has no release routine
    DistributeFn distribute;  // null for kinds without children
};

// By rec::Kind.
constexpr KindRoutines kKindRoutines[] = {
    {ConvertThunk<tqsClientProvCtxVerifyContextPxLogical>,
     ReleaseThunk<tqsClientProvCtxDelectContextPxLogical>,
     DistributeThunk<tqsClientProvCtxVerifyCharacterPxLogical>},
    {ConvertThunk<tqsClientProvCtxVerifyContextPxAuthInfo>,
     ReleaseThunk<tqsClientProvCtxDelectContextPxAuthInfo>, nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextPort>, ReleaseThunk<tqsClientProvCtxDelectContextPort>,
     nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextPxPhysical>,
     ReleaseThunk<tqsClientProvCtxDelectContextPxPhysical>,
     DistributeThunk<tqsClientProvCtxVerifyCharacterPxPhysical>},
    {ConvertThunk<tqsClientProvCtxVerifyContextNapdef>, ReleaseThunk<tqsClientProvCtxDelectContextNapDef>,
     DistributeThunk<tqsClientProvCtxVerifyCharacterNapDef>},
    {ConvertThunk<tqsClientProvCtxVerifyContextNapAuthInfo>,
     ReleaseThunk<tqsClientProvCtxDelectContextNapAuthInfo>, nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextValidity>, ReleaseThunk<tqsClientProvCtxDelectContextValidity>,
     nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextAppAddr>, ReleaseThunk<tqsClientProvCtxDelectContextAppAddr>,
     DistributeThunk<tqsClientProvCtxVerifyCharacterAppAddr>},
    {ConvertThunk<tqsClientProvCtxVerifyContextResource>, ReleaseThunk<tqsClientProvCtxDelectContextResource>,
     nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextAppAuth>, ReleaseThunk<tqsClientProvCtxDelectContextAppAuth>,
     nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextApplication>,
     ReleaseThunk<tqsClientProvCtxDelectContextApplication>,
     DistributeThunk<tqsClientProvCtxVerifyCharacterApplication>},
    {ConvertThunk<tqsClientProvCtxVerifyContextBootstrap>,
     ReleaseThunk<tqsClientProvCtxDelectContextBootstrap>, nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextVenderConfig>,
     ReleaseThunk<tqsClientProvCtxDelectContextVenderConfig>, nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextClientIdent>,
     ReleaseThunk<tqsClientProvCtxDelectContextClientIdent>, nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextAccess>, ReleaseThunk<tqsClientProvCtxDelectContextAccess>,
     nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextRoaming>, nullptr, nullptr},
    {ConvertThunk<tqsClientProvCtxVerifyContextWifi>, ReleaseThunk<tqsClientProvCtxDelectContextWifi>,
     nullptr},
};
static_assert(std::size(kKindRoutines) == rec::kSlotCount);

struct ListRoutines {
    tqsCtxStrNode *(*convert)(TqsList *list);
    ReleaseFn release;
};

// By rec::StrList.
constexpr ListRoutines kListRoutines[] = {
    {nullptr, nullptr},
    {tqsClientProvCtxVerifyContextRuleList, ReleaseStrThunk<tqsClientProvCtxDelectContextRuleList>},
    {tqsClientProvCtxVerifyContextAppIdList, ReleaseStrThunk<tqsClientProvCtxDelectContextAppIdList>},
    {tqsClientProvCtxVerifyContextPortNbrList, ReleaseStrThunk<tqsClientProvCtxDelectContextPortNbrList>},
    {tqsClientProvCtxVerifyContextDomainList, ReleaseStrThunk<tqsClientProvCtxDelectContextDomainList>},
    {tqsClientProvCtxVerifyContextToNapIdList, ReleaseStrThunk<tqsClientProvCtxDelectContextToNapIdList>},
    {tqsClientProvCtxVerifyContextToProxyList, ReleaseStrThunk<tqsClientProvCtxDelectContextToProxyList>},
    {tqsClientProvCtxVerifyContextToAddrList, ReleaseStrThunk<tqsClientProvCtxDelectContextToAddrList>},
    {tqsClientProvCtxVerifyContextServiceList, ReleaseStrThunk<tqsClientProvCtxDelectContextServiceList>},
    {tqsClientProvCtxVerifyContextNetworkList, ReleaseStrThunk<tqsClientProvCtxDelectContextNetworkList>},
    {tqsClientProvCtxVerifyContextProxyIdList, ReleaseStrThunk<tqsClientProvCtxDelectContextProxyIdList>},
    {tqsClientProvCtxVerifyContextDnsAddrList, ReleaseStrThunk<tqsClientProvCtxDelectContextDnsAddrList>},
    {tqsClientProvCtxVerifyContextBearerList, ReleaseStrThunk<tqsClientProvCtxDelectContextBearerList>},
    {tqsClientProvCtxVerifyContextAuthEntityList,
     ReleaseStrThunk<tqsClientProvCtxDelectContextAuthEntityList>},
};
static_assert(std::size(kListRoutines) == size_t(rec::StrList::AuthEntity) + 1);

// Rows of a table whose length is known only once it is built.
template <class T, size_t N>
struct Table {
    T row[N > 0 ? N : 1]{};
    uint8_t count = 0;

    constexpr void Add(const T &t) { row[count++] = t; }
    constexpr Rows<T> AsRows() const { return {row, count}; }
};

enum class Part : uint8_t { kCopy, kList, kChild, kFree, kSub };

template <rec::Kind K>
constexpr size_t CountOf(Part part) {
    size_t n = 0;
    for (const rec::Field &f : rec::Record<K>::kFields) {
        const bool str = rec::IsString(f.fill);
        switch (part) {
            case Part::kCopy:
                n += str ? (f.copy == rec::CopyRule::Skip ? 0 : f.copy == rec::CopyRule::Twice ? 2 : 1) : 0;
                break;
            case Part::kList:
                n += rec::IsList(f.fill);
                break;
            case Part::kChild:
                n += f.fill == rec::Fill::Child;
                break;
            case Part::kFree:
                n += str && f.release != 0;
                break;
            case Part::kSub:
                n += !str && f.release != 0;
                break;
        }
    }
    return n;
}

template <rec::Kind K>
struct Tables {
    Table<FieldPair, CountOf<K>(Part::kCopy)> copy;       // strings copied, in field order
    Table<ListRow, CountOf<K>(Part::kList)> lists;        // string lists, in context field order
    Table<ChildSlot, CountOf<K>(Part::kChild)> children;  // accepted children, in test order
    Table<Offset, CountOf<K>(Part::kFree)> free;          // strings released, in release order
    Table<SubRelease, CountOf<K>(Part::kSub)> subs;       // lists and chains released, in release order
};

template <rec::Kind K>
constexpr Tables<K> MakeTables() {
    using R = rec::Record<K>;
    static_assert(K == rec::Kind::Root || CountOf<K>(Part::kChild) <= kMaxChildSlots);
    Tables<K> t{};
    for (const rec::Field &f : R::kFields) {
        if (!rec::IsString(f.fill)) continue;
        if (f.copy != rec::CopyRule::Skip) t.copy.Add({f.tree, f.ctx});
        if (f.copy == rec::CopyRule::Twice) t.copy.Add({f.tree, f.ctx});
    }
    for (Offset off = 0; off < sizeof(typename R::Ctx); off += sizeof(void *)) {
        for (const rec::Field &f : R::kFields) {
            if (rec::IsList(f.fill) && f.ctx == off)
                t.lists.Add({f.tree, f.ctx, kListRoutines[size_t(f.list)].convert});
        }
    }
    for (size_t place = 1; place <= std::size(R::kFields); ++place) {
        for (const rec::Field &f : R::kFields) {
            if (f.fill == rec::Fill::Child && f.order == place) {
                const rec::RecordInfo &child = rec::kRecords[size_t(f.child)];
                t.children.Add({child.slot, f.ctx, child.next, kKindRoutines[size_t(f.child)].convert});
            }
            if (f.release != place) continue;
            if (rec::IsString(f.fill)) {
                t.free.Add(f.ctx);
            } else {
                t.subs.Add({f.ctx, rec::IsList(f.fill) ? kListRoutines[size_t(f.list)].release
                                                       : kKindRoutines[size_t(f.child)].release});
            }
        }
    }
    return t;
}

template <rec::Kind K>
constexpr Tables<K> kTables = MakeTables<K>();

template <rec::Kind K>
constexpr ConvertDesc kConvert{
    sizeof(typename rec::Record<K>::Ctx), kTables<K>.copy.AsRows(), kTables<K>.lists.AsRows(),
    rec::CharacterListOffset<typename rec::Record<K>::Wap>(), kKindRoutines[size_t(K)].distribute};

template <rec::Kind K>
constexpr ReleaseDesc kRelease{kTables<K>.free.AsRows(), kTables<K>.subs.AsRows(),
                               rec::NextOffset<typename rec::Record<K>::Ctx>()};

template <rec::Kind K>
constexpr Rows<ChildSlot> kChildren = kTables<K>.children.AsRows();

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
    (void)tqsListSetCurNodeFirst(ptCharacterList);  // the list is not null here
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
    constexpr Rows<ChildSlot> kSlots = kChildren<rec::Kind::Root>;
    ChainTail tails[kSlots.count];
    for (; item != nullptr; status = tqsListGetItemNext(ptCharacterList, &item)) {
        if (status != TQS_OK) break;
        for (size_t i = 0; i < kSlots.count; ++i) {
            const ChildSlot &s = kSlots.row[i];
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

// The record types come from the kind's description.
#define TQS_DEFINE_CONVERTER(name, kind)                                                               \
    extern "C" rec::Types<rec::Kind::kind>::Ctx *name(const rec::Types<rec::Kind::kind>::Wap *ptWap) { \
        return Convert<rec::Types<rec::Kind::kind>::Ctx>(__func__, ptWap, kConvert<rec::Kind::kind>);  \
    }
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextPxLogical, PxLogical)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextPxAuthInfo, PxAuthInfo)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextPort, Port)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextPxPhysical, PxPhysical)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextNapdef, NapDef)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextValidity, Validity)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextBootstrap, Bootstrap)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextClientIdent, ClientIdentity)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextVenderConfig, VendorConfig)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextApplication, Application)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextAppAddr, AppAddr)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextAppAuth, AppAuth)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextResource, Resource)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextRoaming, Roaming)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextAccess, Access)
TQS_DEFINE_CONVERTER(tqsClientProvCtxVerifyContextWifi, Wifi)
#undef TQS_DEFINE_CONVERTER

extern "C" tqsCtxNapAuthInfo *tqsClientProvCtxVerifyContextNapAuthInfo(const tqsWapNapAuthInfo *ptWap) {
    tqsCtxNapAuthInfo *ptCtx = Convert<tqsCtxNapAuthInfo>(__func__, ptWap, kConvert<rec::Kind::NapAuthInfo>);
    if (ptCtx != nullptr) {
        // An AUTH-ENTITY parm without value leaves an empty chain (and a failed copy a null
        // string): trace "(null)".
        const tqsCtxStrNode *ptFirst = ptCtx->ptAuthEntity;
        tqcTrace("NAP:ptCtx->ptAuthEntity->pAuthEntity[%s]",
                 ptFirst != nullptr && ptFirst->pAuthEntity != nullptr ? ptFirst->pAuthEntity : "(null)");
    }
    return ptCtx;
}

// ---- string-list converters -------------------------------------------------------

#define TQS_DEFINE_LIST_CONVERTER(name)               \
    extern "C" tqsCtxStrNode *name(TqsList *ptList) { \
        return ConvertStrList(__func__, ptList);      \
    }
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextToAddrList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextToProxyList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextPortNbrList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextAppIdList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextRuleList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextNetworkList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextProxyIdList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextAuthEntityList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextBearerList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextDnsAddrList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextToNapIdList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextServiceList)
TQS_DEFINE_LIST_CONVERTER(tqsClientProvCtxVerifyContextDomainList)
#undef TQS_DEFINE_LIST_CONVERTER

// ---- child distributors ------------------------------------------------------------

#define TQS_DEFINE_DISTRIBUTOR(name, kind)                                                           \
    extern "C" uint32_t name(TqsList *ptCharacterList, rec::Types<rec::Kind::kind>::Ctx *ptParent) { \
        return Distribute(__func__, ptCharacterList, ptParent, kChildren<rec::Kind::kind>);          \
    }
TQS_DEFINE_DISTRIBUTOR(tqsClientProvCtxVerifyCharacterPxLogical, PxLogical)
TQS_DEFINE_DISTRIBUTOR(tqsClientProvCtxVerifyCharacterPxPhysical, PxPhysical)
TQS_DEFINE_DISTRIBUTOR(tqsClientProvCtxVerifyCharacterAppAddr, AppAddr)
TQS_DEFINE_DISTRIBUTOR(tqsClientProvCtxVerifyCharacterNapDef, NapDef)
TQS_DEFINE_DISTRIBUTOR(tqsClientProvCtxVerifyCharacterApplication, Application)
#undef TQS_DEFINE_DISTRIBUTOR

// ---- release ---------------------------------------------------------------------------

extern "C" void tqsClientProvCtxDelectContext(tqsClientProvCtx *ptCtx) {
    ReleaseChain(__func__, ptCtx, kRelease<rec::Kind::Root>);
}

#define TQS_DEFINE_RELEASE(name, kind)                              \
    extern "C" void name(rec::Types<rec::Kind::kind>::Ctx *ptRec) { \
        ReleaseChain(__func__, ptRec, kRelease<rec::Kind::kind>);   \
    }
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextPxLogical, PxLogical)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextPxAuthInfo, PxAuthInfo)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextPort, Port)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextPxPhysical, PxPhysical)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextNapDef, NapDef)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextNapAuthInfo, NapAuthInfo)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextValidity, Validity)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextBootstrap, Bootstrap)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextClientIdent, ClientIdentity)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextVenderConfig, VendorConfig)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextApplication, Application)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextAppAddr, AppAddr)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextAppAuth, AppAuth)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextResource, Resource)
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextAccess, Access)
// Nothing calls it: the root release leaves the WI-FI chain allocated.
TQS_DEFINE_RELEASE(tqsClientProvCtxDelectContextWifi, Wifi)
#undef TQS_DEFINE_RELEASE

#define TQS_DEFINE_LIST_RELEASE(name)             \
    extern "C" void name(tqsCtxStrNode *ptNode) { \
        ReleaseStrChain(__func__, ptNode);        \
    }
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextRuleList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextAppIdList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextPortNbrList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextDomainList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextToNapIdList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextToProxyList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextToAddrList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextServiceList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextNetworkList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextProxyIdList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextDnsAddrList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextBearerList)
TQS_DEFINE_LIST_RELEASE(tqsClientProvCtxDelectContextAuthEntityList)
#undef TQS_DEFINE_LIST_RELEASE
