#include "fake_jni.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using fakejni::FakeJvm;

jint JNICALL nativeA(JNIEnv *, jclass) {
    return 1;
}

TEST(FakeJni, GetEnvHonoursTheSupportedVersion) {
    FakeJvm jvm;
    void *env = reinterpret_cast<void *>(1);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, JNI_VERSION_1_4), JNI_OK);
    EXPECT_EQ(env, jvm.env());

    jvm.setSupportedVersion(JNI_VERSION_1_2);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, JNI_VERSION_1_4), JNI_EVERSION);
    EXPECT_EQ(env, nullptr);
    EXPECT_EQ(jvm.vm()->GetEnv(&env, JNI_VERSION_1_2), JNI_OK);
    // Not a JNI version at all.
    EXPECT_EQ(jvm.vm()->GetEnv(&env, 0x10003), JNI_EVERSION);
    EXPECT_EQ(jvm.calls("GetEnv"), 4u);
}

TEST(FakeJni, FindClassAndRegisterNatives) {
    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    jvm.hideClass("com/x/Missing");
    EXPECT_EQ(env->FindClass("com/x/Missing"), nullptr);
    EXPECT_EQ(jvm.pendingException(), "java/lang/NoClassDefFoundError");

    JNINativeMethod m = {const_cast<char *>("a"), const_cast<char *>("()I"),
                         reinterpret_cast<void *>(&nativeA)};
    EXPECT_EQ(env->RegisterNatives(env->FindClass("com/x/A"), &m, 1), JNI_OK);
    EXPECT_EQ(jvm.nativeFor("com/x/A", "a"), reinterpret_cast<void *>(&nativeA));
    EXPECT_EQ(jvm.nativeFor("com/x/A", "b"), nullptr);
    EXPECT_EQ(jvm.nativeFor("com/x/B", "a"), nullptr);
}

TEST(FakeJni, RegisterNativesRefusesUndeclaredOrMalformedEntries) {
    struct Case {
        const char *name;
        const char *signature;
        bool ok;
    };
    const Case cases[] = {
        {"a", "()I", true},
        {"a", "(I)I", false},  // declared with another signature
        {"b", "()I", false},   // not declared
        {"a", "I", false},     // not a method signature
    };
    for (const Case &c : cases) {
        FakeJvm jvm;
        jvm.declareMethods("com/x/A", {{"a", "()I"}});
        JNIEnv *env = jvm.env();
        JNINativeMethod m = {const_cast<char *>(c.name), const_cast<char *>(c.signature),
                             reinterpret_cast<void *>(&nativeA)};
        EXPECT_EQ(env->RegisterNatives(env->FindClass("com/x/A"), &m, 1), c.ok ? JNI_OK : JNI_ERR)
            << c.name << c.signature;
        EXPECT_EQ(jvm.registrations().size(), c.ok ? 1u : 0u);
    }

    FakeJvm jvm;
    jvm.failRegistration("com/x/A");
    JNINativeMethod m = {const_cast<char *>("a"), const_cast<char *>("()I"),
                         reinterpret_cast<void *>(&nativeA)};
    EXPECT_LT(jvm.env()->RegisterNatives(jvm.env()->FindClass("com/x/A"), &m, 1), 0);
    EXPECT_TRUE(jvm.registrations().empty());
}

using FakeJniDeathTest = ::testing::Test;

TEST(FakeJniDeathTest, MisuseAborts) {
    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    jbyteArray arr = env->NewByteArray(2);
    const jbyte b[3] = {};
    EXPECT_DEATH(env->SetByteArrayRegion(arr, 1, 2, b), "out of range");
    EXPECT_DEATH(env->NewStringUTF(nullptr), "null text");
    EXPECT_DEATH(env->GetArrayLength(nullptr), "null array");
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
