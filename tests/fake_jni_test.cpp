#include "fake_jni.h"

#include <gtest/gtest.h>

namespace {

using fakejni::FakeJvm;

// Registration, class lookup, the call counts and the element bookkeeping
// are relied on, and so checked, by the binding's tests (tqomacp_jni_test.cpp);
// here the guards that make misuse by the library visible.
TEST(FakeJniDeathTest, MisuseAborts) {
    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    jbyteArray arr = env->NewByteArray(2);
    const jbyte b[3] = {};
    EXPECT_DEATH(env->SetByteArrayRegion(arr, 1, 2, b), "out of range");
    EXPECT_DEATH(env->NewStringUTF(nullptr), "null text");
    EXPECT_DEATH(env->GetArrayLength(nullptr), "null reference");
    EXPECT_DEATH(env->ReleaseByteArrayElements(arr, nullptr, 0), "not taken");
    EXPECT_DEATH(env->ReleaseByteArrayElements(arr, env->GetByteArrayElements(arr, nullptr), 0), "JNI_ABORT");
    EXPECT_DEATH(env->GetVersion(), "slot 4 is not implemented");
    jobjectArray strs = env->NewObjectArray(1, env->FindClass("java/lang/String"), nullptr);
    EXPECT_DEATH(env->SetObjectArrayElement(strs, 1, nullptr), "out of range");
    EXPECT_DEATH(env->SetObjectArrayElement(strs, 0, arr), "non-string");
    EXPECT_DEATH(env->GetByteArrayElements(reinterpret_cast<jbyteArray>(strs), nullptr), "wrong kind");
    jvm.reset();
    EXPECT_DEATH(env->GetArrayLength(arr), "stale");
    EXPECT_DEATH(jvm.vm()->DestroyJavaVM(), "JavaVM function table slot 3");
}

}  // namespace
