#include "fake_jni.h"

#include <gtest/gtest.h>

namespace {

using fakejni::FakeJvm;

// Registration, class lookup and the call counts are relied on, and so
// checked, by the binding's registration tests (tqomacp_jni_test.cpp); here
// the element copies and the guards that make misuse by the library visible.

TEST(FakeJni, ByteArrayElementsAreCopiesUntilReleased) {
    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    jbyteArray arr = jvm.newByteArray({1, 2});
    jboolean isCopy = JNI_FALSE;
    jbyte *a = env->GetByteArrayElements(arr, &isCopy);
    jbyte *b = env->GetByteArrayElements(arr, nullptr);
    EXPECT_TRUE(isCopy);
    a[0] = 7;
    b[0] = 9;
    EXPECT_EQ(jvm.elementsOutstanding(), 2u);
    env->ReleaseByteArrayElements(arr, a, JNI_COMMIT);  // written back, still held
    env->ReleaseByteArrayElements(arr, b, JNI_ABORT);   // dropped
    EXPECT_EQ(jvm.bytes(arr), (std::vector<uint8_t>{7, 2}));
    a[1] = 5;
    env->ReleaseByteArrayElements(arr, a, 0);
    EXPECT_EQ(jvm.bytes(arr), (std::vector<uint8_t>{7, 5}));
    EXPECT_EQ(jvm.elementsOutstanding(), 0u);
}

TEST(FakeJniDeathTest, MisuseAborts) {
    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    jbyteArray arr = env->NewByteArray(2);
    const jbyte b[3] = {};
    EXPECT_DEATH(env->SetByteArrayRegion(arr, 1, 2, b), "out of range");
    EXPECT_DEATH(env->NewStringUTF(nullptr), "null text");
    EXPECT_DEATH(env->GetArrayLength(nullptr), "null array");
    EXPECT_DEATH(env->ReleaseByteArrayElements(arr, nullptr, 0), "not taken");
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
