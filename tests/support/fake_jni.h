// A minimal in-process Java VM for tests, benchmarks and fuzzers: a JavaVM
// and a JNIEnv whose function tables implement only the calls the library
// makes, over plain C++ objects. Byte array elements are copies, as HotSpot
// makes them. Every other slot aborts with its slot number, so a new JNI call
// in the library shows up at once instead of silently doing nothing.
//
// Objects live until reset() (or the FakeJvm's destruction), like local
// references of one long native frame. Misuse that a real VM would punish
// with a crash or a pending exception the library never checks (null array,
// index out of range, wrong object kind) aborts with a message.
#ifndef TQOMACP_TESTS_SUPPORT_FAKE_JNI_H
#define TQOMACP_TESTS_SUPPORT_FAKE_JNI_H

#include <jni.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace fakejni {

// One entry handed to RegisterNatives, copied.
struct NativeMethod {
    std::string name;
    void *fnPtr;
};

// One successful RegisterNatives call.
struct Registration {
    std::string className;
    std::vector<NativeMethod> methods;
};

class FakeJvm {
   public:
    FakeJvm();
    ~FakeJvm();
    FakeJvm(const FakeJvm &) = delete;
    FakeJvm &operator=(const FakeJvm &) = delete;

    JavaVM *vm();
    JNIEnv *env();

    // --- behaviour switches ---------------------------------------------------
    // Highest JNI version GetEnv accepts (default JNI_VERSION_1_6); a request
    // above it gets JNI_EVERSION and a null env.
    void setSupportedVersion(jint version);
    // FindClass returns null (with a pending NoClassDefFoundError) for it.
    void hideClass(const std::string &className);
    // RegisterNatives on this class returns -1.
    void failRegistration(const std::string &className);
    // With strict UTF-8 on, NewStringUTF aborts on bytes that are not modified
    // UTF-8, as Android's checked JNI does (off by default: texts are kept as
    // the bytes given).
    void setStrictUtf8(bool strict);

    // --- objects --------------------------------------------------------------
    jbyteArray newByteArray(const std::vector<std::uint8_t> &bytes) {
        return newByteArray(bytes.data(), bytes.size());
    }
    jbyteArray newByteArray(const void *data, std::size_t size);
    // Contents of a byte array; aborts on null or a non-byte-array.
    std::vector<std::uint8_t> bytes(jbyteArray array) const;
    // Bytes given to NewStringUTF, or nullopt for a null reference.
    std::optional<std::string> string(jstring s) const;
    // Elements of a String[] (nullopt for null elements); aborts on null array.
    std::vector<std::optional<std::string>> strings(jobjectArray array) const;
    // Frees every object made so far; earlier references become invalid.
    void reset();

    // --- what the library did -------------------------------------------------
    const std::vector<Registration> &registrations() const;
    // Name of the last exception a real VM would have left pending (empty when
    // none); cleared by reset().
    const std::string &pendingException() const;
    // Byte array elements taken and not yet released.
    std::size_t elementsOutstanding() const;
    // Calls per implemented JNI function name, e.g. calls("NewStringUTF").
    std::size_t calls(const std::string &function) const;

    struct State;  // implementation detail, public for the C callbacks

   private:
    std::unique_ptr<State> state_;
};

}  // namespace fakejni

#endif  // TQOMACP_TESTS_SUPPORT_FAKE_JNI_H
