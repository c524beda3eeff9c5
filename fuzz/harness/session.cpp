#include "session.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "kept_blocks.h"
#include "leak_accounting.h"
#include "tqomacp_jni.h"

namespace fuzz {

const Site kSessionKeptSites[4] = {{"jni/src/ClientProv/tqspushhandler", 51},
                                   {"jni/src/ClientProv/tqspushhandler", 167},
                                   {"jni/src/ClientProv/tqsClientProvWbxmlDecoder", 0},
                                   {"jni/src/ClientProv/tqslist", 0}};

namespace {

fakejni::FakeJvm *g_jvm = nullptr;

// --- the getters, described as data -----------------------------------------

using AnyFn = void (*)();
enum class Ret { kInt, kString, kArray };

// What a getter promises, beyond not crashing.
enum class Expect {
    kCount,     // >= 0; 0 when a record on the path is out of range
    kStrList,   // a string node's text: non-null exactly when every number is in range
    kField,     // a record field: null when a number is out of range
    kNamed,     // service-name table entry s: in range and s <= 38 gives a name
    kArray,     // string array of `length`: non-null exactly when in range
    kAnything,  // only that it returns (NAPDEF-less bearer count, validity)
};

// Count getters along one path of records, outermost first.
struct Path {
    AnyFn counts[4];
    int depth;
};

struct Getter {
    const char *name;
    AnyFn fn;
    Ret ret;
    int arity;
    const Path *path;
    Expect expect;
    int length;  // arrays
};

template <typename F>
AnyFn Any(F *f) {
    return reinterpret_cast<AnyFn>(f);
}

// Calls a getter through its exact type: R(JNIEnv*, jclass, jint x arity).
template <typename R>
R Call(AnyFn fn, int arity, const int *a) {
    JNIEnv *env = g_jvm->env();
    switch (arity) {
        case 0:
            return reinterpret_cast<R (*)(JNIEnv *, jclass)>(fn)(env, nullptr);
        case 1:
            return reinterpret_cast<R (*)(JNIEnv *, jclass, jint)>(fn)(env, nullptr, a[0]);
        case 2:
            return reinterpret_cast<R (*)(JNIEnv *, jclass, jint, jint)>(fn)(env, nullptr, a[0], a[1]);
        case 3:
            return reinterpret_cast<R (*)(JNIEnv *, jclass, jint, jint, jint)>(fn)(env, nullptr, a[0], a[1],
                                                                                   a[2]);
        default:
            return reinterpret_cast<R (*)(JNIEnv *, jclass, jint, jint, jint, jint)>(fn)(env, nullptr, a[0],
                                                                                         a[1], a[2], a[3]);
    }
}

#define FN(name) Any(&jni_tqomacp_##name)

const Path kNone{{}, 0};
const Path kPx{{FN(GetPxLogicalCount)}, 1};
const Path kPxDomain{{FN(GetPxLogicalCount), FN(GetPxDomainCount)}, 2};
const Path kPxAuth{{FN(GetPxLogicalCount), FN(GetPxAuthInfoCount)}, 2};
const Path kPxPort{{FN(GetPxLogicalCount), FN(GetPxPortCount), FN(GetPxPortServiceCount)}, 3};
const Path kPxPhyDomain{{FN(GetPxLogicalCount), FN(GetPxPhysicalCount), FN(GetPxPhysicalDomainCount)}, 3};
const Path kPxPhyNapId{{FN(GetPxLogicalCount), FN(GetPxPhysicalCount), FN(GetPxPhsicalNapIdCount)}, 3};
const Path kPxPhyPort{{FN(GetPxLogicalCount), FN(GetPxPhysicalCount), FN(GetPxPhysicalPortCount),
                       FN(GetPxPhysicalPortServiceCount)},
                      4};
const Path kNap{{FN(GetPxNapDefCount)}, 1};
const Path kNapDns{{FN(GetPxNapDefCount), FN(GetPxDnsAddrCount)}, 2};
const Path kNapBearer{{FN(GetPxNapDefCount), FN(GetPxBearerCount)}, 2};
const Path kNapAuth{{FN(GetPxNapDefCount), FN(GetPxNapAuthInfoCount), FN(GetPxNapAuthEntityCount)}, 3};
const Path kNapValidity{{FN(GetPxNapDefCount), FN(GetPxNapValidityCount)}, 2};
const Path kBoot{{FN(GetPxBootstrapCount)}, 1};
const Path kBootProxy{{FN(GetPxBootstrapCount), FN(GetPxProxyIdCount)}, 2};
const Path kBootNet{{FN(GetPxBootstrapCount), FN(GetPxNetworkCount)}, 2};
const Path kVendor{{FN(GetPxVenderConfigCount)}, 1};
const Path kApp{{FN(GetPxApplicationCount)}, 1};
const Path kAppToProxy{{FN(GetPxApplicationCount), FN(GetPxToProxyCount)}, 2};
const Path kAppNapId{{FN(GetPxApplicationCount), FN(GetPxNapIdCount)}, 2};
const Path kAppToAddr{{FN(GetPxApplicationCount), FN(GetPxToAddrCount)}, 2};
const Path kAppAddr{
    {FN(GetPxApplicationCount), FN(GetPxAppAddrCount), FN(GetPxAppPortCount), FN(GetPxServiceCount)}, 4};
const Path kAppAuth{{FN(GetPxApplicationCount), FN(GetPxAppAuthCount)}, 2};
const Path kAppRes{{FN(GetPxApplicationCount), FN(GetPxResourceCount)}, 2};
const Path kAcc{{FN(GetPxCtxAccessCount)}, 1};
const Path kAccRule{{FN(GetPxCtxAccessCount), FN(GetPxRuleCount)}, 2};
const Path kAccAppId{{FN(GetPxCtxAccessCount), FN(GetPxAppIdCount)}, 2};
const Path kAccPort{{FN(GetPxCtxAccessCount), FN(GetPxPortNbrCount)}, 2};
const Path kAccDomain{{FN(GetPxCtxAccessCount), FN(GetPxAccessDomainCount)}, 2};
const Path kAccNapId{{FN(GetPxCtxAccessCount), FN(GetPxAccessToNapIdCount)}, 2};
const Path kAccProxy{{FN(GetPxCtxAccessCount), FN(GetPxAccessToProxyCount)}, 2};
const Path kWifi{{FN(GetPxWifiCount)}, 1};

#define COUNT(name, arity, path) \
    { #name, FN(name), Ret::kInt, arity, &path, Expect::kCount, 0 }
#define STR(name, arity, path, expect) \
    { #name, FN(name), Ret::kString, arity, &path, Expect::expect, 0 }
#define ARR(name, arity, path, length) \
    { #name, FN(name), Ret::kArray, arity, &path, Expect::kArray, length }

// NAPDEF getters first: they run again after tqomacp_SetPxNapDefIndex.
const Getter kGetters[] = {
    COUNT(GetPxNapDefCount, 0, kNone),
    COUNT(GetPxDnsAddrCount, 1, kNapDns),
    STR(GetPxDnsAddrData, 2, kNapDns, kStrList),
    // Selects its NAPDEF by a less-than walk: 0 and below mean the first.
    {"GetPxBearerCount", FN(GetPxBearerCount), Ret::kInt, 1, &kNapBearer, Expect::kAnything, 0},
    STR(GetPxBearerData, 2, kNapBearer, kField),
    COUNT(GetPxNapAuthInfoCount, 1, kNapAuth),
    ARR(GetPxNapAuthInfoData, 2, kNapAuth, 5),
    COUNT(GetPxNapAuthEntityCount, 2, kNapAuth),
    STR(GetPxAuthInfopAuthEntityData, 3, kNapAuth, kStrList),
    COUNT(GetPxNapValidityCount, 1, kNapValidity),
    // Selects the VALIDITY by its first number again; the second is unused.
    {"GetPxValidityData", FN(GetPxValidityData), Ret::kArray, 2, &kNapValidity, Expect::kAnything, 6},
    ARR(GetPxNapDefData, 1, kNap, 29),

    COUNT(GetPxLogicalCount, 0, kNone),
    COUNT(GetPxDomainCount, 1, kPxDomain),
    STR(GetPxDomainData, 2, kPxDomain, kStrList),
    COUNT(GetPxAuthInfoCount, 1, kPxAuth),
    ARR(GetPxAuthInfoData, 2, kPxAuth, 4),
    COUNT(GetPxPortCount, 1, kPxPort),
    STR(GetPxPortData, 2, kPxPort, kField),
    COUNT(GetPxPortServiceCount, 2, kPxPort),
    STR(GetPxPortServiceData, 3, kPxPort, kNamed),
    COUNT(GetPxPhysicalCount, 1, kPxPhyDomain),
    ARR(GetPxPhysicalData, 2, kPxPhyDomain, 8),
    COUNT(GetPxPhysicalDomainCount, 2, kPxPhyDomain),
    STR(GetPxPhsicalDomainData, 3, kPxPhyDomain, kStrList),
    COUNT(GetPxPhsicalNapIdCount, 2, kPxPhyNapId),
    STR(GetPxPhysicalNapIdData, 3, kPxPhyNapId, kStrList),
    COUNT(GetPxPhysicalPortCount, 2, kPxPhyPort),
    STR(GetPxPhysicalPortData, 3, kPxPhyPort, kField),
    COUNT(GetPxPhysicalPortServiceCount, 3, kPxPhyPort),
    STR(GetPxPhysicalPortServiceData, 4, kPxPhyPort, kNamed),
    // Always an array of 14: empty strings when p selects nothing.
    {"GetProxyData", FN(GetProxyData), Ret::kArray, 1, &kPx, Expect::kAnything, 14},

    COUNT(GetPxBootstrapCount, 0, kNone),
    COUNT(GetPxProxyIdCount, 1, kBootProxy),
    STR(GetPxProxyIdData, 2, kBootProxy, kStrList),
    COUNT(GetPxNetworkCount, 1, kBootNet),
    STR(GetPxNetworkData, 2, kBootNet, kStrList),
    ARR(GetBootstrapData, 1, kBoot, 5),

    STR(GetPxClientIdentityData, 0, kNone, kField),
    COUNT(GetPxVenderConfigCount, 0, kNone),
    ARR(GetPxVenderConfigData, 1, kVendor, 4),

    COUNT(GetPxApplicationCount, 0, kNone),
    COUNT(GetPxToProxyCount, 1, kAppToProxy),
    STR(GetPxToProxyData, 2, kAppToProxy, kStrList),
    COUNT(GetPxNapIdCount, 1, kAppNapId),
    STR(GetPxNapIdData, 2, kAppNapId, kStrList),
    COUNT(GetPxToAddrCount, 1, kAppToAddr),
    STR(GetPxToAddrData, 2, kAppToAddr, kStrList),
    COUNT(GetPxAppAddrCount, 1, kAppAddr),
    ARR(GetPxAppAddrData, 2, kAppAddr, 3),
    COUNT(GetPxAppPortCount, 2, kAppAddr),
    STR(GetPxAppPortData, 3, kAppAddr, kField),
    COUNT(GetPxServiceCount, 3, kAppAddr),
    STR(GetPxServiceData, 4, kAppAddr, kStrList),
    COUNT(GetPxAppAuthCount, 1, kAppAuth),
    ARR(GetPxAppAuthData, 2, kAppAuth, 6),
    COUNT(GetPxResourceCount, 1, kAppRes),
    ARR(GetPxResourceData, 2, kAppRes, 9),
    ARR(GetApplicationData, 1, kApp, 13),
    // The first APPLICATION's first ROAMING, or null.
    {"GetPxRoamingData", FN(GetPxRoamingData), Ret::kArray, 0, &kNone, Expect::kAnything, 3},

    COUNT(GetPxCtxAccessCount, 0, kNone),
    COUNT(GetPxRuleCount, 1, kAccRule),
    STR(GetPxRuleData, 2, kAccRule, kStrList),
    COUNT(GetPxAppIdCount, 1, kAccAppId),
    STR(GetPxAppIdData, 2, kAccAppId, kStrList),
    COUNT(GetPxPortNbrCount, 1, kAccPort),
    STR(GetPxPortNbrData, 2, kAccPort, kStrList),
    COUNT(GetPxAccessDomainCount, 1, kAccDomain),
    STR(GetPxAccessDomainData, 2, kAccDomain, kStrList),
    COUNT(GetPxAccessToNapIdCount, 1, kAccNapId),
    STR(GetPxAccessToNapIdData, 2, kAccNapId, kStrList),
    COUNT(GetPxAccessToProxyCount, 1, kAccProxy),
    STR(GetPxAccessToProxyData, 2, kAccProxy, kStrList),

    COUNT(GetPxWifiCount, 0, kNone),
    ARR(GetPxWifiData, 1, kWifi, 13),
};
constexpr int kNapDefGetters = 12;  // the first entries above

// Record numbers tried at a level whose list has `count` records.
int Numbers(int count, bool innermost, int *out) {
    const int base[] = {-1, 0, 1, count, count + 1};
    int n = 0;
    for (int v : base) {
        bool seen = false;
        for (int i = 0; i < n; ++i) seen |= out[i] == v;
        if (!seen) out[n++] = v;
    }
    if (innermost) {
        out[n++] = INT_MIN;
        out[n++] = INT_MAX;
    }
    return n;
}

void CheckResult(const Getter &g, const int *args, bool inRange) {
    if (g.ret == Ret::kInt) {
        const jint v = Call<jint>(g.fn, g.arity, args);
        if (v < 0) Fail(g.name, "negative count", args, g.arity);
        if (g.expect == Expect::kCount && !inRange && v != 0) {
            Fail(g.name, "count for a record that does not exist", args, g.arity);
        }
        return;
    }
    if (g.ret == Ret::kString) {
        const jstring result = Call<jstring>(g.fn, g.arity, args);
        const bool isNull = result == nullptr;
        // Reading it back checks that it is a live string object.
        if (!isNull) (void)g_jvm->string(result);
        // A string the library could not copy or convert is null.
        const bool missing = isNull && inRange && !FailureInjected();
        switch (g.expect) {
            case Expect::kStrList:
                if (missing) Fail(g.name, "null in range", args, g.arity);
                if (!isNull && !inRange) Fail(g.name, "value out of range", args, g.arity);
                break;
            case Expect::kField:
                if (!isNull && !inRange) Fail(g.name, "value out of range", args, g.arity);
                break;
            case Expect::kNamed:
                if (!isNull && !inRange) Fail(g.name, "value out of range", args, g.arity);
                if (missing && args[g.arity - 1] <= 38) Fail(g.name, "no service name", args, g.arity);
                break;
            default:
                break;
        }
        return;
    }
    const jobjectArray result = Call<jobjectArray>(g.fn, g.arity, args);
    if (result == nullptr) {
        if (g.expect == Expect::kArray && inRange) Fail(g.name, "null record in range", args, g.arity);
        if (std::strcmp(g.name, "GetProxyData") == 0) Fail(g.name, "null array", args, g.arity);
        return;
    }
    if (g.expect == Expect::kArray && !inRange) Fail(g.name, "record out of range", args, g.arity);
    const auto elements = g_jvm->strings(result);
    if (static_cast<int>(elements.size()) != g.length) Fail(g.name, "wrong array length", args, g.arity);
    if (std::strcmp(g.name, "GetPxNapDefData") == 0) {
        // A textual address type shifts the tail by one: end mark at 27, an
        // empty string at 28.
        const bool shifted = !elements[27].has_value() && elements[28] == std::string();
        if (elements[28].has_value() && !shifted) Fail(g.name, "no end mark", args, g.arity);
    } else if (std::strcmp(g.name, "GetProxyData") != 0 || inRange) {
        if (elements.back().has_value()) Fail(g.name, "no end mark", args, g.arity);
    }
}

void Sweep(const Getter &g, int level, int *args, bool inRange) {
    // No getter takes more than four numbers; gcc at -O3, inlining the
    // recursion, warns of args[4] unless told.
    if (level == g.arity || level == 4) {
        CheckResult(g, args, inRange);
        return;
    }
    int count = 0;
    if (level < g.path->depth) count = Call<jint>(g.path->counts[level], level, args);
    int numbers[8];
    const int n = Numbers(count, level == g.arity - 1, numbers);
    for (int i = 0; i < n; ++i) {
        args[level] = numbers[i];
        Sweep(g, level + 1, args, inRange && numbers[i] >= 1 && numbers[i] <= count);
    }
}

void SweepRange(int first, int last) {
    for (int i = first; i < last; ++i) {
        int args[4] = {};
        Sweep(kGetters[i], 0, args, true);
    }
}

}  // namespace

[[noreturn]] void Fail(const char *what, const char *why, const int *args, int arity) {
    std::fprintf(stderr, "session: %s(", what);
    for (int i = 0; i < arity; ++i) std::fprintf(stderr, "%s%d", i ? ", " : "", args[i]);
    std::fprintf(stderr, "): %s\n", why);
    std::fflush(stderr);
    std::abort();
}

void CheckHeaderQueries(bool expectHeader) {
    JNIEnv *env = g_jvm->env();
    const jint values[] = {jni_tqomacp_GetParserContentType(env, nullptr),
                           jni_tqomacp_GetParserHeaderLen(env, nullptr),
                           jni_tqomacp_GetParserBodyLen(env, nullptr),
                           jni_tqomacp_GetParserMACLen(env, nullptr), jni_tqomacp_GetParserSEC(env, nullptr)};
    if (!expectHeader) {
        for (jint v : values) {
            if (v != -1) Fail("GetParser*", "header query answers without a header", nullptr, 0);
        }
    }
}

// The NAPDEF cursor: moves the head to record n and cuts the records before
// it off the chain (all of them when n selects nothing).
void MoveNapDefCursor(uint8_t choice) {
    JNIEnv *env = g_jvm->env();
    const int count = jni_tqomacp_GetPxNapDefCount(env, nullptr);
    int numbers[8];
    const int n = Numbers(count, false, numbers);
    const int index = numbers[choice % n];
    const bool selects = index >= 1 && index <= count;
    int position = 1;
    for (const tqsCtxNapDef *nap = ptCtx->ptNapDef; nap != nullptr; nap = nap->ptNext, ++position) {
        if (selects && position == index) break;
        fuzz::NoteWholeNapDef(nap);  // no longer reachable, never released
    }
    jni_tqomacp_SetPxNapDefIndex(env, nullptr, index);
    const int expected = selects ? count - index + 1 : 0;
    if (jni_tqomacp_GetPxNapDefCount(env, nullptr) != expected) {
        Fail("SetPxNapDefIndex", "wrong NAPDEF count afterwards", &index, 1);
    }
}

void SweepGetters(bool napDefOnly) {
    SweepRange(0, napDefOnly ? kNapDefGetters : static_cast<int>(sizeof(kGetters) / sizeof(kGetters[0])));
}

void StartSession(fakejni::FakeJvm *jvm) {
    g_jvm = jvm;
    if (JNI_OnLoad(g_jvm->vm(), nullptr) != JNI_VERSION_1_4) {
        std::fprintf(stderr, "session: JNI_OnLoad failed\n");
        std::abort();
    }
    std::size_t methods = 0;
    for (const auto &r : g_jvm->registrations()) methods += r.methods.size();
    if (methods != 85) {
        std::fprintf(stderr, "session: %zu natives registered, not 85\n", methods);
        std::abort();
    }
    for (const Getter &g : kGetters) {
        bool found = false;
        for (const auto &r : g_jvm->registrations()) {
            for (const auto &m : r.methods) {
                found |=
                    m.name == std::string("tqomacp_") + g.name && m.fnPtr == reinterpret_cast<void *>(g.fn);
            }
        }
        if (!found) {
            std::fprintf(stderr, "session: %s is not registered as jni_tqomacp_%s\n", g.name, g.name);
            std::abort();
        }
    }
    g_jvm->reset();
}

}  // namespace fuzz
