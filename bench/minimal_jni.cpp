#include "minimal_jni.h"

#include <cstring>

namespace bench {
namespace {

size_t gStringBytes;
size_t gStrings;
char gObject;  // every reference handed out points here

jobject Ref() {
    return reinterpret_cast<jobject>(&gObject);
}

jstring NewStringUTF(JNIEnv *, const char *text) {
    if (!text) return nullptr;
    gStringBytes += strlen(text);
    ++gStrings;
    return static_cast<jstring>(Ref());
}

jclass FindClass(JNIEnv *, const char *) {
    return static_cast<jclass>(Ref());
}

jobjectArray NewObjectArray(JNIEnv *, jsize, jclass, jobject) {
    return static_cast<jobjectArray>(Ref());
}

void SetObjectArrayElement(JNIEnv *, jobjectArray, jsize, jobject) {}

jbyteArray NewByteArray(JNIEnv *, jsize) {
    return static_cast<jbyteArray>(Ref());
}

void SetByteArrayRegion(JNIEnv *, jbyteArray, jsize, jsize, const jbyte *) {}

JNINativeInterface_ MakeTable() {
    JNINativeInterface_ t;
    memset(&t, 0, sizeof t);
    t.NewStringUTF = NewStringUTF;
    t.FindClass = FindClass;
    t.NewObjectArray = NewObjectArray;
    t.SetObjectArrayElement = SetObjectArrayElement;
    t.NewByteArray = NewByteArray;
    t.SetByteArrayRegion = SetByteArrayRegion;
    return t;
}

const JNINativeInterface_ gTable = MakeTable();
JNIEnv gEnv = {&gTable};

}  // namespace

JNIEnv *MinimalEnv() {
    return &gEnv;
}
size_t MinimalEnvStringBytes() {
    return gStringBytes;
}
size_t MinimalEnvStrings() {
    return gStrings;
}

}  // namespace bench
