// Private to the binding: how a getter finds what it answers in the published
// context. Every context record is a run of pointer fields and every chain
// links through its records' last field, ptNext, so a getter is data: a path
// (per int argument, which list head to take from the current record and
// where that list's records keep ptNext) and what to read at its end. One
// walk serves every getter; the getters themselves stay thin named entry
// points over the tables in tqomacp_jni.cpp.
#ifndef TQOMACP_JNI_QUERY_H
#define TQOMACP_JNI_QUERY_H

#include <jni.h>
#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include <type_traits>

#include "tqomacp_jni_names.h"
#include "tqsClientProvCtx.h"
#include "tqsClientProvFields.h"

namespace tqsjni {

struct Hop {
    uint16_t head;  // offset of the list head in the current record
    uint16_t next;  // offset of ptNext in the records of that list
};

// The list field `field` of Parent; the child type comes from the field itself.
#define TQ_HOP(Parent, field)                                                                     \
    ::tqsjni::Hop {                                                                               \
        offsetof(Parent, field), offsetof(std::remove_pointer_t<decltype(Parent::field)>, ptNext) \
    }
#define TQ_FIELD(Record, field) static_cast<uint16_t>(offsetof(Record, field))

constexpr int kMaxDepth = 4;

// One selection per int argument, starting at the root context.
struct Path {
    int depth;
    Hop hops[kMaxDepth];
};

constexpr Path Extend(Path path, Hop hop) {
    path.hops[path.depth++] = hop;
    return path;
}

constexpr Path From(Hop hop) {
    return Extend(Path{0, {}}, hop);
}

constexpr Path kRoot = Path{0, {}};

inline const void *PointerAt(const void *record, uint16_t offset) {
    const void *value;
    memcpy(&value, static_cast<const char *>(record) + offset, sizeof value);
    return value;
}

inline const char *StringAt(const void *record, uint16_t offset) {
    return static_cast<const char *>(PointerAt(record, offset));
}

// Follows the path with one record number (1-based) per step from ptCtx; null
// when a step selects nothing, or when no context is published.
const void *Select(const Path &path, const jint *numbers);
// The BEARER count's own walk: it advances only while the counter is below i,
// so i of 1 or less selects the head.
const void *SelectAtMost(const void *head, uint16_t next, jint i);
jint CountChain(const void *head, uint16_t next);

// Count getters: the records selected by the arguments, then the list counted.
struct CountQuery {
    Path path;
    Hop list;
};

// Data getters: the records selected by the arguments, then the string read.
struct DataQuery {
    Path path;
    uint16_t field;
};

// String-list data getter: the list is the last step of the path.
constexpr DataQuery ListItem(Path owner, Hop list) {
    return DataQuery{Extend(owner, list), TQ_FIELD(tqsCtxStrNode, pszStr)};
}

// Composite getters: a String[] of a record's leading string fields in record
// order, an explicit null after them, at most one element mapped to a name.
struct RecordQuery {
    Path path;
    jsize length;  // array length: the fields, then the end mark
    struct {
        int field;  // index of the mapped field, -1 for none
        tqsJniMapping mapping;
    } mapped;
};

constexpr decltype(RecordQuery::mapped) kNoMap{-1, TQS_JNI_MAP_PX_ADDR_TYPE};

// A record kind's string fields (they lead the record), plus the end mark.
#define TQ_ARRAY_OF(kind) static_cast<jsize>(tqs::detail::StringCount<tqs::detail::Kind::kind>() + 1)
#define TQ_INDEX(Record, field) static_cast<int>(offsetof(Record, field) / sizeof(char *))

jint CountOf(const CountQuery &query, const jint *numbers);
jstring DataOf(JNIEnv *env, const DataQuery &query, const jint *numbers);
// The record the numbers select as a String[]; null when there is none.
jobjectArray RecordOf(JNIEnv *env, const RecordQuery &query, const jint *numbers);
// A String[] whose elements all start as one shared empty string; null (an
// exception pending) when the VM cannot make it.
jobjectArray NewRecordArray(JNIEnv *env, jsize length);
void FillRecordArray(JNIEnv *env, jobjectArray array, const void *record, const RecordQuery &query);
// The service getters: the name at position s once the path selects a node;
// the stored value is not read.
jstring ServiceData(JNIEnv *env, const Path &path, const jint *numbers, jint s);

template <const CountQuery &Query, class... Numbers>
jint Count(Numbers... numbers) {
    static_assert(sizeof...(Numbers) == Query.path.depth, "one record number per path step");
    const jint list[] = {numbers..., 0};
    return CountOf(Query, list);
}

template <const DataQuery &Query, class... Numbers>
jstring Data(JNIEnv *env, Numbers... numbers) {
    static_assert(sizeof...(Numbers) == Query.path.depth, "one record number per path step");
    const jint list[] = {numbers..., 0};
    return DataOf(env, Query, list);
}

template <const RecordQuery &Query, class... Numbers>
jobjectArray Record(JNIEnv *env, Numbers... numbers) {
    static_assert(sizeof...(Numbers) == Query.path.depth, "one record number per path step");
    const jint list[] = {numbers..., 0};
    return RecordOf(env, Query, list);
}

}  // namespace tqsjni

#endif  // TQOMACP_JNI_QUERY_H
