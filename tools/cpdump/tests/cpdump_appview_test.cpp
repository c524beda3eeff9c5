// What cpdump shows under "app" must be what the Java application receives:
// the tool's mappings are checked against the library's own composite getters,
// called through an in-process JNI environment on hand-made contexts.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "fake_jni.h"
#include "tokens.h"
#include "tqomacp_jni.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"

namespace cpdump {
namespace {

using Element = std::optional<std::string>;

char *S(const char *text) {
    return const_cast<char *>(text);
}

// Publishes a context for the getters while it lives.
class Published {
   public:
    explicit Published(tqsClientProvCtx *ctx) { ptCtx = ctx; }
    ~Published() { ptCtx = nullptr; }
};

Element Tool(const char *mapped) {
    return mapped == nullptr ? Element{} : Element{mapped};
}

// Stored values worth trying: texts, codes, near misses, empty, absent.
const std::vector<const char *> kStored = {
    nullptr,      "",       "IPV4",   "IPV6",   "ipv6",    "E164",    "APN",  "\x85", "\x86",
    "\x87",       "\x89",   "\x8A",   "\x8C",   "\x8D",    "\x8E",    "PAP",  "pap",  "\x9A",
    "CHAP",       "\x9B",   "\x9C",   "\x9D",   "WTLS-SS", "WTLS_SS", "\x9E", "MD5",  "\x9F",
    "HTTP-BASIC", "APPSRV", "appsrv", "CLIENT", "client",  "USER",    "\x85x"};

std::string Show(const char *stored) {
    if (stored == nullptr) return "(null)";
    std::string out;
    for (const char *p = stored; *p != '\0'; ++p) {
        const auto c = static_cast<unsigned char>(*p);
        out += c >= 0x80 ? "\\x" + std::to_string(c) : std::string(1, *p);
    }
    return "\"" + out + "\"";
}

// One context holding a record of every kind that has a mapped element, each
// with `stored` as the value that gets mapped.
struct OneOfEach {
    tqsCtxPxPhysical phys{};
    tqsCtxPxLogical px{};
    tqsCtxNapAuthInfo nap_auth{};
    tqsCtxNapDef nap{};
    tqsCtxAppAuth app_auth{};
    tqsCtxApplication app{};
    tqsClientProvCtx ctx{};

    explicit OneOfEach(const char *stored) {
        phys.pszPxAddrType = nap_auth.pszAuthType = nap.pszNapAddrType = app_auth.pszAAuthLevel = S(stored);
        nap.pszCallType = S("CALL");
        nap.pszInit = S("empty");
        px.ptPxPhysical = &phys;
        nap.ptNapAuthInfo = &nap_auth;
        app.ptAppAuth = &app_auth;
        ctx.ptPxLogical = &px;
        ctx.ptNapDef = &nap;
        ctx.ptApplication = &app;
    }
};

TEST(AppViewMatchesGetters, MappedElements) {
    const struct {
        const char *what;
        jobjectArray (*get)(JNIEnv *);
        std::size_t length, index;
        const char *(*tool)(const char *);
    } rows[] = {
        {"PXADDRTYPE", [](JNIEnv *env) { return jni_tqomacp_GetPxPhysicalData(env, nullptr, 1, 1); }, 8, 2,
         AppPxAddrType},
        {"AUTHTYPE", [](JNIEnv *env) { return jni_tqomacp_GetPxNapAuthInfoData(env, nullptr, 1, 1); }, 5, 0,
         AppAuthType},
        {"AAUTHLEVEL", [](JNIEnv *env) { return jni_tqomacp_GetPxAppAuthData(env, nullptr, 1, 1); }, 6, 0,
         AppAAuthLevel},
    };
    fakejni::FakeJvm jvm;
    for (const char *stored : kStored) {
        OneOfEach records(stored);
        Published published(&records.ctx);
        for (const auto &row : rows) {
            const auto array = jvm.strings(row.get(jvm.env()));
            ASSERT_EQ(array.size(), row.length) << row.what;
            EXPECT_EQ(array[row.index], Tool(row.tool(stored))) << row.what << " " << Show(stored);
        }
    }
}

TEST(AppViewMatchesGetters, AccessPointAddressTypeAndTheShift) {
    fakejni::FakeJvm jvm;
    for (const char *stored : kStored) {
        OneOfEach records(stored);
        Published published(&records.ctx);
        const auto array = jvm.strings(jni_tqomacp_GetPxNapDefData(jvm.env(), nullptr, 1));
        ASSERT_EQ(array.size(), 29u);
        bool shifted = false;
        const char *mapped = AppNapAddrType(stored, &shifted);
        SCOPED_TRACE(Show(stored));
        if (shifted) {
            // No element for the address type: CALLTYPE moves into its place.
            EXPECT_EQ(array[4], Element{"CALL"});
            EXPECT_EQ(array[26], Element{"empty"});
            EXPECT_EQ(array[27], Element{});
            EXPECT_EQ(array[28], Element{""});
        } else {
            EXPECT_EQ(array[4], Tool(mapped));
            EXPECT_EQ(array[5], Element{"CALL"});
            EXPECT_EQ(array[27], Element{"empty"});
        }
    }
}

// The names cpdump gives one-byte values are the getters' names where the
// getters name them: bearers and services.
TEST(AppViewMatchesGetters, BearerNames) {
    fakejni::FakeJvm jvm;
    for (int code = 0x80; code <= 0xFF; ++code) {
        const char value[2] = {static_cast<char>(code), 0};
        tqsCtxStrNode bearer{{S(value)}, nullptr};
        tqsCtxNapDef nap{};
        nap.ptBearer = &bearer;
        tqsClientProvCtx ctx{};
        ctx.ptNapDef = &nap;
        Published published(&ctx);
        const Element name = jvm.string(jni_tqomacp_GetPxBearerData(jvm.env(), nullptr, 1, 1));
        if (name == Element{"Unkown Bearer"}) continue;
        const char *tool = ValueTokenName(static_cast<unsigned char>(code));
        ASSERT_NE(tool, nullptr) << code;
        EXPECT_EQ(name, Element{tool}) << code;
    }
}

// Every code the decoder's value tables turn into text has that text as its
// cpdump name too.
TEST(AppViewMatchesGetters, DecoderValueTokenTexts) {
    int named = 0;
    for (int code = 0x80; code <= 0xFF; ++code) {
        char *text = nullptr;
        if (tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<uint8_t>(code), &text) != 0) continue;
        ASSERT_NE(text, nullptr);
        const char *tool = ValueTokenName(static_cast<unsigned char>(code));
        EXPECT_STREQ(tool, text) << code;
        tqsMemFree_debug(text);
        ++named;
    }
    // 8 address types, 7 authentication types, BASIC and DIGEST, and the call
    // types and service that no earlier table shadows (0x90, 0x94, 0x95, 0xCA).
    EXPECT_EQ(named, 21);
}

}  // namespace
}  // namespace cpdump
