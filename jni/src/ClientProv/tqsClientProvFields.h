// One description of every record: for each of the 17 characteristic kinds
// (and the context root) the list of its fields in tqsClientProvFields.def,
// expanded here into rows (Field) that everything needing a record's shape
// reads: the decoder's parm tables, the release of the tree, the conversion
// to the context and its release, the binding's string arrays, cpdump and the
// test and fuzz walkers. The structs stay written out in their headers (their
// layouts are fixed); every row is pinned to its field below, so a row and its
// field cannot drift apart.
#ifndef TQS_CLIENT_PROV_FIELDS_H
#define TQS_CLIENT_PROV_FIELDS_H

#include <stddef.h>
#include <stdint.h>

#include <type_traits>

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"

#include "tqsClientProvFields.def"

namespace tqs::detail {

enum class Fill : uint8_t {
    Parm,         // the value of its parm
    StartPage,    // as Parm; a STARTPAGE parm without value still marks the record
    Joined,       // as Parm; a value after the separator 0x90 is joined with a comma
    Named,        // the value of the parm whose inline name is `name`
    PairName,     // the inline name of the last parm named inline
    PairValue,    // and its value
    Reserved,     // a string no parm fills
    List,         // one item per parm
    LenientList,  // as List; a failure to read one is only traced
    Child,        // a chain of nested characteristics (context only)
};
enum class TreeRule : uint8_t { Free, Keep };
enum class CopyRule : uint8_t { Copy, Skip, Twice };
enum class Chaining : uint8_t { Chain, Single };
// The kinds of string list, each with its own converter and release routine.
enum class StrList : uint8_t {
    None,
    Rule,
    AppId,
    PortNbr,
    Domain,
    ToNapId,
    ToProxy,
    ToAddr,
    Service,
    Network,
    ProxyId,
    DnsAddr,
    Bearer,
    AuthEntity,
};

#define TQS_KIND_ENUM(kind, ...) kind,
enum class Kind : uint8_t { TQS_RECORDS(TQS_KIND_ENUM) Root, None };
#undef TQS_KIND_ENUM
constexpr size_t kSlotCount = static_cast<size_t>(Kind::Root);

constexpr uint16_t kNoOffset = 0xFFFF;

// The text the APPLICATION and RESOURCE handlers trace before they read a
// parm: "SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME", then "_" and the parm's name
// with '_' for '-' (nothing for the empty name of the inline-name parm).
constexpr char kLabelPrefix[] = "SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME";
template <size_t N>
struct ParmLabel {
    char text[sizeof kLabelPrefix + N] = {};
    constexpr ParmLabel(const char (&name)[N]) {
        size_t n = 0;
        for (; kLabelPrefix[n] != '\0'; ++n) text[n] = kLabelPrefix[n];
        if (N > 1) text[n++] = '_';
        for (size_t i = 0; i + 1 < N; ++i) text[n++] = name[i] == '-' ? '_' : name[i];
    }
};
template <ParmLabel L>
inline constexpr const char *kParmLabel = L.text;

struct Field {
    Fill fill;
    uint8_t token;
    uint8_t page;
    const char *name;
    const char *label;
    uint16_t tree;  // byte offset in the tree record; kNoOffset for a child chain
    uint16_t ctx;   // byte offset in the context record
    TreeRule treeRule;
    CopyRule copy;
    uint8_t release;
    StrList list;
    Kind child;
    uint8_t order;
};

template <Kind K>
struct Types;
#define TQS_TYPES(kind, W, C, ...) \
    template <>                    \
    struct Types<Kind::kind> {     \
        using Wap = W;             \
        using Ctx = C;             \
    };
TQS_RECORDS(TQS_TYPES)
#undef TQS_TYPES
template <>
struct Types<Kind::Root> {
    using Wap = tqsWapDoc;
    using Ctx = tqsClientProvCtx;
};

// Rows. Wap and Ctx are the record types of the scope the list is expanded in.
// clang-format off
#define TQS_ROW_S(fill, f, token, page, name, tree, copy, release)                                      \
    Field{Fill::fill, token, page, name, kParmLabel<name>, offsetof(Wap, f), offsetof(Ctx, f),          \
          TreeRule::tree, CopyRule::copy, release, StrList::None, Kind::None, 0},
#define TQS_ROW_L(fill, tf, cf, token, page, name, list, release)                                       \
    Field{Fill::fill, token, page, name, kParmLabel<name>, offsetof(Wap, tf), offsetof(Ctx, cf),        \
          TreeRule::Free, CopyRule::Copy, release, StrList::list, Kind::None, 0},
#define TQS_ROW_C(f, child, order, release)                                                             \
    Field{Fill::Child, 0, 0, nullptr, nullptr, kNoOffset, offsetof(Ctx, f),                             \
          TreeRule::Free, CopyRule::Copy, release, StrList::None, Kind::child, order},

// Each row's field has the type of its row.
#define TQS_PIN_S(fill, f, ...)                                                                         \
    static_assert(std::is_same_v<decltype(Wap::f), char *> && std::is_same_v<decltype(Ctx::f), char *>, \
                  #f " is a string");
#define TQS_PIN_L(fill, tf, cf, ...)                                                                    \
    static_assert(std::is_same_v<decltype(Wap::tf), TqsList *> &&                                       \
                      std::is_same_v<decltype(Ctx::cf), tqsCtxStrNode *>,                               \
                  #tf " and " #cf " are lists of strings");
#define TQS_PIN_C(f, child, ...)                                                                        \
    static_assert(std::is_same_v<decltype(Ctx::f), Types<Kind::child>::Ctx *>, #f " is a chain of " #child);
// clang-format on

// The tree's ptCharacterList and the context's ptNext, where a record has them.
template <class W>
constexpr uint16_t CharacterListOffset() {
    if constexpr (requires { &W::ptCharacterList; }) return offsetof(W, ptCharacterList);
    return kNoOffset;
}
template <class C>
constexpr uint16_t NextOffset() {
    if constexpr (requires { &C::ptNext; }) return offsetof(C, ptNext);
    return kNoOffset;
}

template <Kind K>
struct Record;

#define TQS_RECORD(kind, W, C, type, tree, chain)                                                \
    template <>                                                                                  \
    struct Record<Kind::kind> : Types<Kind::kind> {                                              \
        static constexpr const char *kType = type;                                               \
        static constexpr uint16_t kSlot = offsetof(tqsWapCharacter, pt##kind);                   \
        static constexpr TreeRule kTreeRule = TreeRule::tree;                                    \
        static constexpr Chaining kChaining = Chaining::chain;                                   \
        static constexpr Field kFields[] = {TQS_FIELDS_##kind(TQS_ROW_S, TQS_ROW_L, TQS_ROW_C)}; \
        TQS_FIELDS_##kind(TQS_PIN_S, TQS_PIN_L, TQS_PIN_C)                                       \
    };
TQS_RECORDS(TQS_RECORD)
#undef TQS_RECORD

template <>
struct Record<Kind::Root> : Types<Kind::Root> {
    static constexpr const char *kType = "";
    static constexpr uint16_t kSlot = kNoOffset;
    static constexpr TreeRule kTreeRule = TreeRule::Free;
    static constexpr Chaining kChaining = Chaining::Single;
    static constexpr Field kFields[] = {TQS_FIELDS_Root(TQS_ROW_S, TQS_ROW_L, TQS_ROW_C)};
    TQS_FIELDS_Root(TQS_PIN_S, TQS_PIN_L, TQS_PIN_C)
};

#undef TQS_ROW_S
#undef TQS_ROW_L
#undef TQS_ROW_C
#undef TQS_PIN_S
#undef TQS_PIN_L
#undef TQS_PIN_C

constexpr bool IsString(Fill f) {
    return f < Fill::List;
}
constexpr bool IsList(Fill f) {
    return f == Fill::List || f == Fill::LenientList;
}

// ---- What every record's description must satisfy ------------------------

template <Kind K>
constexpr bool HasChildren() {
    for (const Field &f : Record<K>::kFields)
        if (f.fill == Fill::Child) return true;
    return false;
}

// Every pointer field of both records is described exactly once (the tree's
// ptCharacterList by the record having children, the context's ptNext by the
// record being a chain); strings lead both records in row order.
template <Kind K>
constexpr bool DescribesEveryField() {
    using R = Record<K>;
    constexpr size_t kTree = sizeof(typename R::Wap) / sizeof(void *);
    constexpr size_t kCtx = sizeof(typename R::Ctx) / sizeof(void *);
    if (HasChildren<K>() != (CharacterListOffset<typename R::Wap>() != kNoOffset)) return false;
    if ((R::kChaining == Chaining::Chain) != (NextOffset<typename R::Ctx>() != kNoOffset)) return false;
    for (size_t i = 0; i < kTree; ++i) {
        size_t n = CharacterListOffset<typename R::Wap>() == i * sizeof(void *);
        for (const Field &f : R::kFields) n += f.tree == i * sizeof(void *);
        if (n != 1) return false;
    }
    for (size_t i = 0; i < kCtx; ++i) {
        size_t n = NextOffset<typename R::Ctx>() == i * sizeof(void *);
        for (const Field &f : R::kFields) n += f.ctx == i * sizeof(void *);
        if (n != 1) return false;
    }
    size_t s = 0;
    for (const Field &f : R::kFields) {
        if (!IsString(f.fill)) continue;
        if (f.tree != s * sizeof(void *) || f.ctx != s * sizeof(void *)) return false;
        ++s;
    }
    return true;
}

// Release places run 1..n over the released fields, strings before lists and
// chains; children's test places run 1..n; parm tokens are parm names, each
// used once.
template <Kind K>
constexpr bool OrdersAreWhole() {
    const auto &rows = Record<K>::kFields;
    size_t released = 0, children = 0;
    uint8_t lastString = 0, firstOther = 0xFF;
    for (const Field &f : rows) {
        if (f.release != 0) ++released;
        if (f.fill == Fill::Child) ++children;
        if (f.release != 0 && IsString(f.fill) && f.release > lastString) lastString = f.release;
        if (f.release != 0 && !IsString(f.fill) && f.release < firstOther) firstOther = f.release;
    }
    if (lastString >= firstOther) return false;
    for (size_t place = 1; place <= released; ++place) {
        size_t n = 0;
        for (const Field &f : rows) n += f.release == place;
        if (n != 1) return false;
    }
    for (size_t place = 1; place <= children; ++place) {
        size_t n = 0;
        for (const Field &f : rows) n += f.fill == Fill::Child && f.order == place;
        if (n != 1) return false;
    }
    for (const Field &a : rows) {
        // 0x00 to 0x06 are structural in a parm element; 0x80 and above are values.
        if (a.token != 0 && (a.token < 0x07 || a.token >= 0x80)) return false;
        for (const Field &b : rows)
            if (&a != &b && a.token != 0 && a.token == b.token) return false;
    }
    return true;
}

#define TQS_CHECK(kind, ...)                                                                      \
    static_assert(Record<Kind::kind>::kSlot == static_cast<size_t>(Kind::kind) * sizeof(void *),  \
                  #kind " is its slot");                                                          \
    static_assert(DescribesEveryField<Kind::kind>(), "every field of " #kind " has its one row"); \
    static_assert(OrdersAreWhole<Kind::kind>(), "release and test orders of " #kind " are whole");
TQS_RECORDS(TQS_CHECK)
#undef TQS_CHECK
static_assert(DescribesEveryField<Kind::Root>() && OrdersAreWhole<Kind::Root>(), "the root has its rows");
static_assert(sizeof(tqsWapCharacter) == kSlotCount * sizeof(void *), "one kind per slot");

// ---- The records at run time (for the walkers of tools and tests) ----------

struct RecordInfo {
    const char *type;
    uint16_t slot;  // offset in tqsWapCharacter; kNoOffset for the root
    const Field *fields;
    uint8_t count;
    uint16_t treeSize;
    uint16_t ctxSize;
    uint16_t characterList;  // offset of the tree's ptCharacterList, or kNoOffset
    uint16_t next;           // offset of the context's ptNext, or kNoOffset
    TreeRule treeRule;
};

template <Kind K>
constexpr RecordInfo InfoOf() {
    using R = Record<K>;
    return {R::kType,
            R::kSlot,
            R::kFields,
            static_cast<uint8_t>(sizeof R::kFields / sizeof R::kFields[0]),
            sizeof(typename R::Wap),
            sizeof(typename R::Ctx),
            CharacterListOffset<typename R::Wap>(),
            NextOffset<typename R::Ctx>(),
            R::kTreeRule};
}

// Indexed by Kind, the root last.
#define TQS_INFO(kind, ...) InfoOf<Kind::kind>(),
inline constexpr RecordInfo kRecords[] = {TQS_RECORDS(TQS_INFO) InfoOf<Kind::Root>()};
#undef TQS_INFO

inline const RecordInfo &Info(Kind k) {
    return kRecords[static_cast<size_t>(k)];
}

// Number of string fields: they lead the record.
template <Kind K>
constexpr size_t StringCount() {
    size_t n = 0;
    for (const Field &f : Record<K>::kFields) n += IsString(f.fill);
    return n;
}

}  // namespace tqs::detail

#endif  // TQS_CLIENT_PROV_FIELDS_H
