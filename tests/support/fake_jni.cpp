#include "fake_jni.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <type_traits>
#include <unordered_set>
#include <utility>

namespace fakejni {
namespace {

[[noreturn]] void fatal(const char *what, const char *detail = "") {
    std::fprintf(stderr, "fake JNI: %s%s\n", what, detail);
    std::fflush(stderr);
    std::abort();
}

enum class Kind { kClass, kString, kByteArray, kObjectArray };

struct Object {
    Kind kind;
    std::string text;  // class name, or the bytes given to NewStringUTF
    // Byte array storage, exactly `length` bytes so that the sanitizers see
    // any read or write past the end.
    std::unique_ptr<jbyte[]> data;
    jsize length = 0;
    std::vector<Object *> elements;  // object array
    std::string elementClass;        // object array: class name of its elements
};

// Every slot the fake does not implement holds one of these. They are called
// through pointers of other types; keeping UBSan's function-type check out of
// them lets the message below be what the test or fuzzer shows.
#if defined(__clang__)
#define FAKEJNI_ANY_SIGNATURE __attribute__((no_sanitize("function")))
#else
#define FAKEJNI_ANY_SIGNATURE
#endif

template <std::size_t N>
FAKEJNI_ANY_SIGNATURE void unimplementedSlot() {
    std::fprintf(stderr,
                 "fake JNI: JNIEnv function table slot %zu is not implemented "
                 "(count the entries of struct JNINativeInterface_ in jni.h)\n",
                 N);
    std::fflush(stderr);
    std::abort();
}

template <std::size_t N>
FAKEJNI_ANY_SIGNATURE void unimplementedVmSlot() {
    std::fprintf(stderr, "fake JNI: JavaVM function table slot %zu is not implemented\n", N);
    std::fflush(stderr);
    std::abort();
}

template <typename Table, std::size_t... I>
void fillWithStubs(Table *table, bool vm, std::index_sequence<I...>) {
    using Stub = void (*)();
    const Stub stubs[] = {(vm ? &unimplementedVmSlot<I> : &unimplementedSlot<I>)...};
    static_assert(sizeof(Stub) == sizeof(void *));
    for (std::size_t i = 0; i < sizeof...(I); ++i) {
        std::memcpy(reinterpret_cast<char *>(table) + i * sizeof(void *), &stubs[i], sizeof(void *));
    }
}

constexpr std::size_t kEnvSlots = sizeof(JNINativeInterface_) / sizeof(void *);
constexpr std::size_t kVmSlots = sizeof(JNIInvokeInterface_) / sizeof(void *);

// Byte patterns Android's checked JNI accepts in NewStringUTF: sequences of
// one to four bytes, lead byte then continuation bytes; no stray
// continuation byte, no 0xF8..0xFF, nothing cut off by the end.
bool isModifiedUtf8(const char *text) {
    const auto *s = reinterpret_cast<const unsigned char *>(text);
    while (*s != 0) {
        const unsigned char lead = *s++;
        int more;
        if (lead < 0x80) {
            more = 0;
        } else if (lead < 0xC0 || lead >= 0xF8) {
            return false;
        } else if (lead < 0xE0) {
            more = 1;
        } else if (lead < 0xF0) {
            more = 2;
        } else {
            more = 3;
        }
        for (; more > 0; --more, ++s) {
            if ((*s & 0xC0) != 0x80) return false;
        }
    }
    return true;
}

bool isKnownVersion(jint version) {
    static const jint kVersions[] = {0x00010001, 0x00010002, 0x00010004, 0x00010006, 0x00010008,
                                     0x00090000, 0x000a0000, 0x00130000, 0x00140000, 0x00150000};
    for (jint v : kVersions) {
        if (v == version) return true;
    }
    return false;
}

// What the library gets pointers to. Standard layout, so that a callback can
// get from the env or vm pointer back to its owner.
struct Tables {
    JNIEnv env;
    JavaVM vm;
    JNINativeInterface_ envTable;
    JNIInvokeInterface_ vmTable;
    FakeJvm::State *owner;
};
static_assert(std::is_standard_layout_v<Tables>);

}  // namespace

struct FakeJvm::State {
    Tables tables;

    jint supportedVersion = JNI_VERSION_1_6;
    bool strictUtf8 = false;
    std::set<std::string> hidden;
    std::set<std::string> failing;
    std::map<std::string, std::set<std::pair<std::string, std::string>>> declared;
    std::vector<std::unique_ptr<Object>> objects;
    std::unordered_set<const Object *> live;
    std::vector<Registration> registrations;
    std::string pending;
    std::map<std::string, std::size_t> calls;

    static State *of(JNIEnv *e) { return reinterpret_cast<Tables *>(e)->owner; }
    static State *of(JavaVM *v) {
        return reinterpret_cast<Tables *>(reinterpret_cast<char *>(v) - offsetof(Tables, vm))->owner;
    }

    Object *make(Kind kind) {
        objects.push_back(std::make_unique<Object>());
        Object *o = objects.back().get();
        o->kind = kind;
        live.insert(o);
        return o;
    }

    // Resolves a reference the library handed back; null allowed only when
    // `nullable`.
    Object *resolve(const void *ref, Kind kind, const char *call, bool nullable = false) const {
        if (ref == nullptr) {
            if (nullable) return nullptr;
            fatal("null reference passed to ", call);
        }
        auto *o = static_cast<const Object *>(ref);
        if (live.count(o) == 0) fatal("stale or foreign reference passed to ", call);
        if (o->kind != kind) fatal("wrong kind of object passed to ", call);
        return const_cast<Object *>(o);
    }

    void count(const char *fn) { ++calls[fn]; }
};

namespace {

using State = FakeJvm::State;

jint JNICALL vmGetEnv(JavaVM *vm, void **penv, jint version) {
    State *s = State::of(vm);
    s->count("GetEnv");
    if (penv == nullptr) fatal("GetEnv with a null out pointer");
    if (!isKnownVersion(version) || version > s->supportedVersion) {
        *penv = nullptr;
        return JNI_EVERSION;
    }
    *penv = &s->tables.env;
    return JNI_OK;
}

jclass JNICALL envFindClass(JNIEnv *env, const char *name) {
    State *s = State::of(env);
    s->count("FindClass");
    if (name == nullptr) fatal("FindClass with a null name");
    if (s->hidden.count(name) != 0) {
        s->pending = "java/lang/NoClassDefFoundError";
        return nullptr;
    }
    Object *o = s->make(Kind::kClass);
    o->text = name;
    return reinterpret_cast<jclass>(o);
}

jint JNICALL envRegisterNatives(JNIEnv *env, jclass clazz, const JNINativeMethod *methods, jint n) {
    State *s = State::of(env);
    s->count("RegisterNatives");
    const Object *cls = s->resolve(clazz, Kind::kClass, "RegisterNatives");
    if (n < 0 || (n > 0 && methods == nullptr)) fatal("RegisterNatives with a bad method table");
    Registration reg{cls->text, {}};
    for (jint i = 0; i < n; ++i) {
        const JNINativeMethod &m = methods[i];
        if (m.name == nullptr || m.signature == nullptr || m.fnPtr == nullptr || m.signature[0] != '(' ||
            std::strchr(m.signature, ')') == nullptr) {
            s->pending = "java/lang/NoSuchMethodError";
            return JNI_ERR;
        }
        auto decl = s->declared.find(cls->text);
        if (decl != s->declared.end() && decl->second.count({m.name, m.signature}) == 0) {
            s->pending = "java/lang/NoSuchMethodError";
            return JNI_ERR;
        }
        reg.methods.push_back({m.name, m.signature, m.fnPtr});
    }
    if (s->failing.count(cls->text) != 0) {
        s->pending = "java/lang/NoSuchMethodError";
        return JNI_ERR;
    }
    s->registrations.push_back(std::move(reg));
    return JNI_OK;
}

jsize JNICALL envGetArrayLength(JNIEnv *env, jarray array) {
    State *s = State::of(env);
    s->count("GetArrayLength");
    if (array == nullptr) fatal("GetArrayLength on a null array");
    auto *o = static_cast<const Object *>(static_cast<const void *>(array));
    if (s->live.count(o) == 0) fatal("stale or foreign reference passed to GetArrayLength");
    if (o->kind == Kind::kByteArray) return o->length;
    if (o->kind == Kind::kObjectArray) return static_cast<jsize>(o->elements.size());
    fatal("GetArrayLength on an object that is not an array");
}

jbyte *JNICALL envGetByteArrayElements(JNIEnv *env, jbyteArray array, jboolean *isCopy) {
    State *s = State::of(env);
    s->count("GetByteArrayElements");
    Object *o = s->resolve(array, Kind::kByteArray, "GetByteArrayElements");
    // Pinned, not copied: the library never releases elements, and a pinned
    // array is what makes that harmless.
    if (isCopy != nullptr) *isCopy = JNI_FALSE;
    return o->data.get();
}

jbyteArray JNICALL envNewByteArray(JNIEnv *env, jsize len) {
    State *s = State::of(env);
    s->count("NewByteArray");
    if (len < 0) {
        s->pending = "java/lang/NegativeArraySizeException";
        return nullptr;
    }
    Object *o = s->make(Kind::kByteArray);
    o->data.reset(new jbyte[static_cast<std::size_t>(len)]());
    o->length = len;
    return reinterpret_cast<jbyteArray>(o);
}

void JNICALL envSetByteArrayRegion(JNIEnv *env, jbyteArray array, jsize start, jsize len, const jbyte *buf) {
    State *s = State::of(env);
    s->count("SetByteArrayRegion");
    Object *o = s->resolve(array, Kind::kByteArray, "SetByteArrayRegion");
    if (start < 0 || len < 0 || start > o->length || len > o->length - start) {
        fatal("SetByteArrayRegion out of range (ArrayIndexOutOfBoundsException)");
    }
    if (len > 0) {
        if (buf == nullptr) fatal("SetByteArrayRegion from a null buffer");
        std::memcpy(o->data.get() + start, buf, static_cast<std::size_t>(len));
    }
}

jstring JNICALL envNewStringUTF(JNIEnv *env, const char *utf) {
    State *s = State::of(env);
    s->count("NewStringUTF");
    // Android's checked JNI aborts on a null text, so the library must test
    // for null itself.
    if (utf == nullptr) fatal("NewStringUTF with a null text");
    if (s->strictUtf8 && !isModifiedUtf8(utf)) fatal("NewStringUTF: text is not modified UTF-8");
    Object *o = s->make(Kind::kString);
    o->text = utf;
    return reinterpret_cast<jstring>(o);
}

jobjectArray JNICALL envNewObjectArray(JNIEnv *env, jsize len, jclass clazz, jobject init) {
    State *s = State::of(env);
    s->count("NewObjectArray");
    const Object *cls = s->resolve(clazz, Kind::kClass, "NewObjectArray");
    if (len < 0) {
        s->pending = "java/lang/NegativeArraySizeException";
        return nullptr;
    }
    Object *initial = nullptr;
    if (init != nullptr) {
        auto *io = static_cast<const Object *>(static_cast<const void *>(init));
        if (s->live.count(io) == 0) fatal("stale or foreign initial element for NewObjectArray");
        initial = const_cast<Object *>(io);
    }
    Object *o = s->make(Kind::kObjectArray);
    o->elementClass = cls->text;
    o->elements.assign(static_cast<std::size_t>(len), initial);
    return reinterpret_cast<jobjectArray>(o);
}

void JNICALL envSetObjectArrayElement(JNIEnv *env, jobjectArray array, jsize index, jobject val) {
    State *s = State::of(env);
    s->count("SetObjectArrayElement");
    Object *o = s->resolve(array, Kind::kObjectArray, "SetObjectArrayElement");
    if (index < 0 || static_cast<std::size_t>(index) >= o->elements.size()) {
        fatal("SetObjectArrayElement index out of range (ArrayIndexOutOfBoundsException)");
    }
    Object *v = nullptr;
    if (val != nullptr) {
        v = static_cast<Object *>(static_cast<void *>(val));
        if (s->live.count(v) == 0) fatal("stale or foreign element for SetObjectArrayElement");
        if (o->elementClass == "java/lang/String" && v->kind != Kind::kString) {
            fatal("SetObjectArrayElement stores a non-string (ArrayStoreException)");
        }
    }
    o->elements[static_cast<std::size_t>(index)] = v;
}

}  // namespace

FakeJvm::FakeJvm() : state_(std::make_unique<State>()) {
    State &s = *state_;
    Tables &t = s.tables;
    t.owner = &s;
    fillWithStubs(&t.envTable, false, std::make_index_sequence<kEnvSlots>{});
    fillWithStubs(&t.vmTable, true, std::make_index_sequence<kVmSlots>{});
    t.envTable.reserved0 = t.envTable.reserved1 = t.envTable.reserved2 = t.envTable.reserved3 = nullptr;
    t.vmTable.reserved0 = t.vmTable.reserved1 = t.vmTable.reserved2 = nullptr;

    t.vmTable.GetEnv = vmGetEnv;
    t.envTable.FindClass = envFindClass;
    t.envTable.RegisterNatives = envRegisterNatives;
    t.envTable.GetArrayLength = envGetArrayLength;
    t.envTable.GetByteArrayElements = envGetByteArrayElements;
    t.envTable.NewByteArray = envNewByteArray;
    t.envTable.SetByteArrayRegion = envSetByteArrayRegion;
    t.envTable.NewStringUTF = envNewStringUTF;
    t.envTable.NewObjectArray = envNewObjectArray;
    t.envTable.SetObjectArrayElement = envSetObjectArrayElement;

    t.env.functions = &t.envTable;
    t.vm.functions = &t.vmTable;
    static_assert(offsetof(Tables, env) == 0, "callbacks map the env pointer back to the state");
}

FakeJvm::~FakeJvm() = default;

JavaVM *FakeJvm::vm() {
    return &state_->tables.vm;
}
JNIEnv *FakeJvm::env() {
    return &state_->tables.env;
}

void FakeJvm::setSupportedVersion(jint version) {
    state_->supportedVersion = version;
}
void FakeJvm::setStrictUtf8(bool strict) {
    state_->strictUtf8 = strict;
}
void FakeJvm::hideClass(const std::string &className) {
    state_->hidden.insert(className);
}
void FakeJvm::declareMethods(const std::string &className,
                             const std::vector<std::pair<std::string, std::string>> &methods) {
    auto &set = state_->declared[className];
    set.insert(methods.begin(), methods.end());
}
void FakeJvm::failRegistration(const std::string &className) {
    state_->failing.insert(className);
}

jbyteArray FakeJvm::newByteArray(const std::vector<std::uint8_t> &bytes) {
    return newByteArray(bytes.data(), bytes.size());
}

jbyteArray FakeJvm::newByteArray(const void *data, std::size_t size) {
    Object *o = state_->make(Kind::kByteArray);
    o->data.reset(new jbyte[size]);
    if (size != 0) std::memcpy(o->data.get(), data, size);
    o->length = static_cast<jsize>(size);
    return reinterpret_cast<jbyteArray>(o);
}

std::vector<std::uint8_t> FakeJvm::bytes(jbyteArray array) const {
    const Object *o = state_->resolve(array, Kind::kByteArray, "FakeJvm::bytes");
    const auto *p = reinterpret_cast<const std::uint8_t *>(o->data.get());
    return std::vector<std::uint8_t>(p, p + o->length);
}

std::optional<std::string> FakeJvm::string(jstring s) const {
    const Object *o = state_->resolve(s, Kind::kString, "FakeJvm::string", true);
    if (o == nullptr) return std::nullopt;
    return o->text;
}

std::vector<std::optional<std::string>> FakeJvm::strings(jobjectArray array) const {
    const Object *o = state_->resolve(array, Kind::kObjectArray, "FakeJvm::strings");
    std::vector<std::optional<std::string>> out;
    for (const Object *e : o->elements) {
        if (e == nullptr) {
            out.emplace_back(std::nullopt);
        } else if (e->kind != Kind::kString) {
            fatal("FakeJvm::strings on an array holding a non-string");
        } else {
            out.emplace_back(e->text);
        }
    }
    return out;
}

void FakeJvm::reset() {
    state_->live.clear();
    state_->objects.clear();
    state_->pending.clear();
}

std::size_t FakeJvm::liveObjects() const {
    return state_->objects.size();
}

const std::vector<Registration> &FakeJvm::registrations() const {
    return state_->registrations;
}

void *FakeJvm::nativeFor(const std::string &className, const std::string &methodName) const {
    for (const Registration &r : state_->registrations) {
        if (r.className != className) continue;
        for (const NativeMethod &m : r.methods) {
            if (m.name == methodName) return m.fnPtr;
        }
    }
    return nullptr;
}

const std::string &FakeJvm::pendingException() const {
    return state_->pending;
}

std::size_t FakeJvm::calls(const std::string &function) const {
    auto it = state_->calls.find(function);
    return it == state_->calls.end() ? 0 : it->second;
}

}  // namespace fakejni
