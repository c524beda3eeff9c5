#include "fake_jni.h"

#include <gtest/gtest.h>

namespace {

using fakejni::FakeJvm;

jint JNICALL nativeA(JNIEnv *, jclass) {
    return 1;
}

JNINativeMethod Method(const char *name, const char *signature) {
    return {const_cast<char *>(name), const_cast<char *>(signature), reinterpret_cast<void *>(&nativeA)};
}

TEST(FakeJni, GetEnvFindClassAndRegisterNatives) {
    FakeJvm jvm;
    void *env = reinterpret_cast<void *>(1);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, JNI_VERSION_1_4), JNI_OK);
    EXPECT_EQ(env, jvm.env());
    jvm.setSupportedVersion(JNI_VERSION_1_2);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, JNI_VERSION_1_4), JNI_EVERSION);
    EXPECT_EQ(env, nullptr);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, JNI_VERSION_1_2), JNI_OK);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, 0x10003), JNI_EVERSION);  // not a JNI version at all
    EXPECT_EQ(jvm.calls("GetEnv"), 4u);

    JNIEnv *e = jvm.env();
    jvm.hideClass("com/x/Missing");
    EXPECT_EQ(e->FindClass("com/x/Missing"), nullptr);
    EXPECT_EQ(jvm.pendingException(), "java/lang/NoClassDefFoundError");
    const JNINativeMethod m = Method("a", "()I");
    EXPECT_EQ(e->RegisterNatives(e->FindClass("com/x/A"), &m, 1), JNI_OK);
    EXPECT_EQ(jvm.nativeFor("com/x/A", "a"), reinterpret_cast<void *>(&nativeA));
    EXPECT_EQ(jvm.nativeFor("com/x/A", "b"), nullptr);
    EXPECT_EQ(jvm.nativeFor("com/x/B", "a"), nullptr);
}

TEST(FakeJni, RegisterNativesRefusesUndeclaredOrMalformedEntries) {
    const JNINativeMethod cases[] = {
        Method("a", "()I"),   // declared
        Method("a", "(I)I"),  // declared with another signature
        Method("b", "()I"),   // not declared
        Method("a", "I"),     // not a method signature
    };
    for (const JNINativeMethod &m : cases) {
        const bool ok = &m == &cases[0];
        FakeJvm jvm;
        jvm.declareMethods("com/x/A", {{"a", "()I"}});
        JNIEnv *env = jvm.env();
        EXPECT_EQ(env->RegisterNatives(env->FindClass("com/x/A"), &m, 1), ok ? JNI_OK : JNI_ERR)
            << m.name << m.signature;
        EXPECT_EQ(jvm.registrations().size(), ok ? 1u : 0u);
    }
}

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
    EXPECT_DEATH(env->DeleteLocalRef(arr), "is not implemented");
    jobjectArray strs = env->NewObjectArray(1, env->FindClass("java/lang/String"), nullptr);
    EXPECT_DEATH(env->SetObjectArrayElement(strs, 1, nullptr), "out of range");
    EXPECT_DEATH(env->SetObjectArrayElement(strs, 0, arr), "non-string");
    EXPECT_DEATH(env->GetByteArrayElements(reinterpret_cast<jbyteArray>(strs), nullptr), "wrong kind");
    jvm.reset();
    EXPECT_DEATH(env->GetArrayLength(arr), "stale");
    EXPECT_DEATH(jvm.vm()->DestroyJavaVM(), "JavaVM function table slot 3");
}

}  // namespace
