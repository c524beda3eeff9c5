// The one walk of the getters, and what they do at its end.
#include "tqomacp_jni_query.h"

#include "tqomacp_jni.h"
#include "tqomacp_jni_strings.h"

namespace tqsjni {
namespace {

// Record i (1-based) of a chain; null for i below 1 or beyond the end.
const void *SelectNth(const void *head, uint16_t next, jint i) {
    if (i < 1) return nullptr;
    jint n = 1;
    for (const void *record = head; record != nullptr; record = PointerAt(record, next), ++n) {
        if (n == i) return record;
    }
    return nullptr;
}

}  // namespace

const void *SelectAtMost(const void *head, uint16_t next, jint i) {
    const void *record = head;
    for (jint n = 1; record != nullptr && n < i; ++n) record = PointerAt(record, next);
    return record;
}

jint CountChain(const void *head, uint16_t next) {
    jint count = 0;
    for (const void *record = head; record != nullptr; record = PointerAt(record, next)) ++count;
    return count;
}

// The getters are only valid on a published context; with none (ptCtx null)
// nothing is selected instead of reading through null.
const void *Select(const Path &path, const jint *numbers) {
    const void *record = ptCtx;
    for (int i = 0; i < path.depth && record != nullptr; ++i) {
        record = SelectNth(PointerAt(record, path.hops[i].head), path.hops[i].next, numbers[i]);
    }
    return record;
}

jint CountOf(const CountQuery &query, const jint *numbers) {
    const void *record = Select(query.path, numbers);
    return record == nullptr ? 0 : CountChain(PointerAt(record, query.list.head), query.list.next);
}

jstring DataOf(JNIEnv *env, const DataQuery &query, const jint *numbers) {
    const void *record = Select(query.path, numbers);
    return record == nullptr ? nullptr : NewJavaString(env, StringAt(record, query.field));
}

jstring ServiceData(JNIEnv *env, const Path &path, const jint *numbers, jint s) {
    if (Select(path, numbers) == nullptr) return nullptr;
    const char *name = tqsJniServiceName(s);
    return name == nullptr ? nullptr : env->NewStringUTF(name);
}

jobjectArray NewRecordArray(JNIEnv *env, jsize length) {
    jclass stringClass = env->FindClass("java/lang/String");
    if (stringClass == nullptr) return nullptr;
    return env->NewObjectArray(length, stringClass, env->NewStringUTF(""));
}

void FillRecordArray(JNIEnv *env, jobjectArray array, const void *record, const RecordQuery &query) {
    jsize index = 0;
    for (int field = 0; field < query.length - 1; ++field) {
        const char *value = StringAt(record, static_cast<uint16_t>(field * sizeof(char *)));
        if (field != query.mapped.field) {
            env->SetObjectArrayElement(array, index++, NewJavaString(env, value));
            continue;
        }
        const char *element;
        if (!tqsJniMapElement(query.mapped.mapping, value, &element)) continue;
        env->SetObjectArrayElement(array, index++, element == nullptr ? nullptr : env->NewStringUTF(element));
    }
    env->SetObjectArrayElement(array, index, nullptr);
}

jobjectArray RecordOf(JNIEnv *env, const RecordQuery &query, const jint *numbers) {
    const void *record = Select(query.path, numbers);
    if (record == nullptr) return nullptr;
    jobjectArray array = NewRecordArray(env, query.length);
    if (array != nullptr) FillRecordArray(env, array, record, query);
    return array;
}

}  // namespace tqsjni
