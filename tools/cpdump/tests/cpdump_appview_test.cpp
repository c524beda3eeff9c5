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

TEST(AppViewMatchesGetters, PhysicalProxyAddressType) {
    fakejni::FakeJvm jvm;
    for (const char *stored : kStored) {
        tqsCtxPxPhysical phys{};
        phys.pszPxAddrType = S(stored);
        tqsCtxPxLogical px{};
        px.ptPxPhysical = &phys;
        tqsClientProvCtx ctx{};
        ctx.ptPxLogical = &px;
        Published published(&ctx);
        const auto array = jvm.strings(jni_tqomacp_GetPxPhysicalData(jvm.env(), nullptr, 1, 1));
        ASSERT_EQ(array.size(), 8u);
        EXPECT_EQ(array[2], Tool(AppPxAddrType(stored))) << Show(stored);
    }
}

TEST(AppViewMatchesGetters, AccessPointAddressTypeAndTheShift) {
    fakejni::FakeJvm jvm;
    for (const char *stored : kStored) {
        tqsCtxNapDef nap{};
        nap.pszNapAddrType = S(stored);
        nap.pszCallType = S("CALL");
        nap.pszInit = S("empty");
        tqsClientProvCtx ctx{};
        ctx.ptNapDef = &nap;
        Published published(&ctx);
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

TEST(AppViewMatchesGetters, AuthenticationType) {
    fakejni::FakeJvm jvm;
    for (const char *stored : kStored) {
        tqsCtxNapAuthInfo auth{};
        auth.pszAuthType = S(stored);
        tqsCtxNapDef nap{};
        nap.ptNapAuthInfo = &auth;
        tqsClientProvCtx ctx{};
        ctx.ptNapDef = &nap;
        Published published(&ctx);
        const auto array = jvm.strings(jni_tqomacp_GetPxNapAuthInfoData(jvm.env(), nullptr, 1, 1));
        ASSERT_EQ(array.size(), 5u);
        EXPECT_EQ(array[0], Tool(AppAuthType(stored))) << Show(stored);
    }
}

TEST(AppViewMatchesGetters, ApplicationAuthenticationLevel) {
    fakejni::FakeJvm jvm;
    for (const char *stored : kStored) {
        tqsCtxAppAuth auth{};
        auth.pszAAuthLevel = S(stored);
        tqsCtxApplication app{};
        app.ptAppAuth = &auth;
        tqsClientProvCtx ctx{};
        ctx.ptApplication = &app;
        Published published(&ctx);
        const auto array = jvm.strings(jni_tqomacp_GetPxAppAuthData(jvm.env(), nullptr, 1, 1));
        ASSERT_EQ(array.size(), 6u);
        EXPECT_EQ(array[0], Tool(AppAAuthLevel(stored))) << Show(stored);
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
