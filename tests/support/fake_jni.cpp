#include "fake_jni.h"

#include <bit>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
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

template <bool kVm, std::size_t N>
FAKEJNI_ANY_SIGNATURE void unimplementedSlot() {
    std::fprintf(
        stderr,
        "fake JNI: %s function table slot %zu is not implemented (count the entries of %s in jni.h)\n",
        kVm ? "JavaVM" : "JNIEnv", N, kVm ? "JNIInvokeInterface_" : "JNINativeInterface_");
    std::fflush(stderr);
    std::abort();
}

template <bool kVm, typename Table, std::size_t... I>
void fillWithStubs(Table *table, std::index_sequence<I...>) {
    using Stub = void (*)();
    const Stub stubs[] = {&unimplementedSlot<kVm, I>...};
    static_assert(sizeof(Stub) == sizeof(void *));
    std::memcpy(static_cast<void *>(table), stubs, sizeof stubs);
}

constexpr std::size_t kEnvSlots = sizeof(JNINativeInterface_) / sizeof(void *);
constexpr std::size_t kVmSlots = sizeof(JNIInvokeInterface_) / sizeof(void *);

// Byte patterns Android's checked JNI accepts in NewStringUTF: sequences of
// one to four bytes, lead byte then continuation bytes; no stray
// continuation byte, no 0xF8..0xFF, nothing cut off by the end.
bool isModifiedUtf8(const char *text) {
    for (const auto *s = reinterpret_cast<const unsigned char *>(text); *s != 0;) {
        // Leading one bits: 0 for ASCII, 1 for a continuation byte, else the sequence's length.
        const int ones = std::countl_one(*s++);
        if (ones == 1 || ones > 4) return false;
        for (int more = ones - (ones != 0); more > 0; --more, ++s) {
            if ((*s & 0xC0) != 0x80) return false;
        }
    }
    return true;
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
    std::vector<std::unique_ptr<Object>> objects;
    std::unordered_set<const Object *> live;
    // Byte array elements handed out and not yet released: copy -> its array.
    std::map<jbyte *, std::pair<Object *, std::unique_ptr<jbyte[]>>> elements;
    std::vector<Registration> registrations;
    std::string pending;
    std::map<std::string, std::size_t> calls;

    // The state behind `e`, with the call counted.
    static State *enter(JNIEnv *e, const char *fn) {
        State *s = reinterpret_cast<Tables *>(e)->owner;
        ++s->calls[fn];
        return s;
    }

    Object *make(Kind kind, const char *text = "") {
        Object *o = objects.emplace_back(std::make_unique<Object>()).get();
        o->kind = kind;
        o->text = text;
        live.insert(o);
        return o;
    }

    // A reference the library handed back: null stays null, a stale one is fatal.
    Object *find(const void *ref, const char *call) const {
        auto *o = static_cast<Object *>(const_cast<void *>(ref));
        if (o != nullptr && live.count(o) == 0) fatal("stale or foreign reference passed to ", call);
        return o;
    }

    // The same for an object of one kind; null allowed only when `nullable`.
    Object *resolve(const void *ref, Kind kind, const char *call, bool nullable = false) const {
        Object *o = find(ref, call);
        if (o == nullptr && !nullable) fatal("null reference passed to ", call);
        if (o != nullptr && o->kind != kind) fatal("wrong kind of object passed to ", call);
        return o;
    }
};

namespace {

using State = FakeJvm::State;

jint JNICALL vmGetEnv(JavaVM *vm, void **penv, jint version) {
    State *s = reinterpret_cast<Tables *>(reinterpret_cast<char *>(vm) - offsetof(Tables, vm))->owner;
    ++s->calls["GetEnv"];
    if (penv == nullptr) fatal("GetEnv with a null out pointer");
    if (version > s->supportedVersion) {
        *penv = nullptr;
        return JNI_EVERSION;
    }
    *penv = &s->tables.env;
    return JNI_OK;
}

jclass JNICALL envFindClass(JNIEnv *env, const char *name) {
    State *s = State::enter(env, "FindClass");
    if (name == nullptr) fatal("FindClass with a null name");
    if (s->hidden.count(name) != 0) {
        s->pending = "java/lang/NoClassDefFoundError";
        return nullptr;
    }
    return reinterpret_cast<jclass>(s->make(Kind::kClass, name));
}

jint JNICALL envRegisterNatives(JNIEnv *env, jclass clazz, const JNINativeMethod *methods, jint n) {
    State *s = State::enter(env, "RegisterNatives");
    const Object *cls = s->resolve(clazz, Kind::kClass, "RegisterNatives");
    if (n < 0 || (n > 0 && methods == nullptr)) fatal("RegisterNatives with a bad method table");
    auto refuse = [s] {
        s->pending = "java/lang/NoSuchMethodError";
        return JNI_ERR;
    };
    Registration reg{cls->text, {}};
    for (jint i = 0; i < n; ++i) {
        const JNINativeMethod &m = methods[i];
        // The library pins its signatures at compile time; a real VM matches them (RegistrationTest).
        if (m.name == nullptr || m.signature == nullptr || m.fnPtr == nullptr) return refuse();
        reg.methods.push_back({m.name, m.fnPtr});
    }
    if (s->failing.count(cls->text) != 0) return refuse();
    s->registrations.push_back(std::move(reg));
    return JNI_OK;
}

// The library asks only for the length of the PDU array.
jsize JNICALL envGetArrayLength(JNIEnv *env, jarray array) {
    State *s = State::enter(env, "GetArrayLength");
    return s->resolve(array, Kind::kByteArray, "GetArrayLength")->length;
}

jbyte *JNICALL envGetByteArrayElements(JNIEnv *env, jbyteArray array, jboolean *isCopy) {
    State *s = State::enter(env, "GetByteArrayElements");
    Object *o = s->resolve(array, Kind::kByteArray, "GetByteArrayElements");
    // A copy of exactly the array's length, as HotSpot makes it, kept until
    // released: elements never given back show as outstanding.
    auto copy = std::make_unique<jbyte[]>(static_cast<std::size_t>(o->length));
    if (o->length != 0) std::memcpy(copy.get(), o->data.get(), static_cast<std::size_t>(o->length));
    jbyte *elements = copy.get();
    s->elements[elements] = {o, std::move(copy)};
    if (isCopy != nullptr) *isCopy = JNI_TRUE;
    return elements;
}

void JNICALL envReleaseByteArrayElements(JNIEnv *env, jbyteArray array, jbyte *elems, jint mode) {
    State *s = State::enter(env, "ReleaseByteArrayElements");
    Object *o = s->resolve(array, Kind::kByteArray, "ReleaseByteArrayElements");
    auto taken = s->elements.find(elems);
    if (taken == s->elements.end() || taken->second.first != o) {
        fatal("ReleaseByteArrayElements with elements not taken from this array");
    }
    // The library only reads the PDU: a write-back mode would be a change to notice.
    if (mode != JNI_ABORT) fatal("ReleaseByteArrayElements: only JNI_ABORT is implemented");
    s->elements.erase(taken);
}

jbyteArray JNICALL envNewByteArray(JNIEnv *env, jsize len) {
    State *s = State::enter(env, "NewByteArray");
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
    State *s = State::enter(env, "SetByteArrayRegion");
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
    State *s = State::enter(env, "NewStringUTF");
    // Android's checked JNI aborts on a null text, so the library must test
    // for null itself.
    if (utf == nullptr) fatal("NewStringUTF with a null text");
    if (s->strictUtf8 && !isModifiedUtf8(utf)) fatal("NewStringUTF: text is not modified UTF-8");
    return reinterpret_cast<jstring>(s->make(Kind::kString, utf));
}

jobjectArray JNICALL envNewObjectArray(JNIEnv *env, jsize len, jclass clazz, jobject init) {
    State *s = State::enter(env, "NewObjectArray");
    const Object *cls = s->resolve(clazz, Kind::kClass, "NewObjectArray");
    if (len < 0) fatal("NewObjectArray with a negative length");
    Object *initial = s->find(init, "NewObjectArray");
    Object *o = s->make(Kind::kObjectArray);
    o->elementClass = cls->text;
    o->elements.assign(static_cast<std::size_t>(len), initial);
    return reinterpret_cast<jobjectArray>(o);
}

void JNICALL envSetObjectArrayElement(JNIEnv *env, jobjectArray array, jsize index, jobject val) {
    State *s = State::enter(env, "SetObjectArrayElement");
    Object *o = s->resolve(array, Kind::kObjectArray, "SetObjectArrayElement");
    if (index < 0 || static_cast<std::size_t>(index) >= o->elements.size()) {
        fatal("SetObjectArrayElement index out of range (ArrayIndexOutOfBoundsException)");
    }
    Object *v = s->find(val, "SetObjectArrayElement");
    if (v != nullptr && o->elementClass == "java/lang/String" && v->kind != Kind::kString) {
        fatal("SetObjectArrayElement stores a non-string (ArrayStoreException)");
    }
    o->elements[static_cast<std::size_t>(index)] = v;
}

}  // namespace

FakeJvm::FakeJvm() : state_(std::make_unique<State>()) {
    State &s = *state_;
    Tables &t = s.tables;
    t.owner = &s;
    fillWithStubs<false>(&t.envTable, std::make_index_sequence<kEnvSlots>{});
    fillWithStubs<true>(&t.vmTable, std::make_index_sequence<kVmSlots>{});
    t.envTable.reserved0 = t.envTable.reserved1 = t.envTable.reserved2 = t.envTable.reserved3 = nullptr;
    t.vmTable.reserved0 = t.vmTable.reserved1 = t.vmTable.reserved2 = nullptr;

    t.vmTable.GetEnv = vmGetEnv;
    t.envTable.FindClass = envFindClass;
    t.envTable.RegisterNatives = envRegisterNatives;
    t.envTable.GetArrayLength = envGetArrayLength;
    t.envTable.GetByteArrayElements = envGetByteArrayElements;
    t.envTable.ReleaseByteArrayElements = envReleaseByteArrayElements;
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
void FakeJvm::failRegistration(const std::string &className) {
    state_->failing.insert(className);
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
    return o == nullptr ? std::nullopt : std::optional<std::string>(o->text);
}

std::vector<std::optional<std::string>> FakeJvm::strings(jobjectArray array) const {
    const Object *o = state_->resolve(array, Kind::kObjectArray, "FakeJvm::strings");
    std::vector<std::optional<std::string>> out;
    for (const Object *e : o->elements) {
        if (e != nullptr && e->kind != Kind::kString)
            fatal("FakeJvm::strings on an array holding a non-string");
        out.push_back(e == nullptr ? std::nullopt : std::optional<std::string>(e->text));
    }
    return out;
}

void FakeJvm::reset() {
    state_->elements.clear();
    state_->live.clear();
    state_->objects.clear();
    state_->pending.clear();
}

const std::vector<Registration> &FakeJvm::registrations() const {
    return state_->registrations;
}

const std::string &FakeJvm::pendingException() const {
    return state_->pending;
}

std::size_t FakeJvm::elementsOutstanding() const {
    return state_->elements.size();
}

std::size_t FakeJvm::calls(const std::string &function) const {
    auto it = state_->calls.find(function);
    return it == state_->calls.end() ? 0 : it->second;
}

}  // namespace fakejni
