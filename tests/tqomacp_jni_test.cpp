// The Java binding over the fake JNI environment: registration, the parse
// session's header stage, and every getter family on contexts built by hand,
// so the quirks are pinned down independently of the decoder.
#include "tqomacp_jni.h"

#include "tqomacp_jni_names.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "fake_jni.h"
#include "mem_check.h"
#include "tqsmemory.h"

namespace {

using fakejni::FakeJvm;
using Strings = std::vector<std::optional<std::string>>;

const char *const kClassOrder[] = {
    "com/tqomacp/eng/parser/XCPCtxParser",         "com/tqomacp/eng/parser/XCPCtxPxLogical",
    "com/tqomacp/eng/parser/XCPCtxNapDef",         "com/tqomacp/eng/parser/XCPCtxBootstrap",
    "com/tqomacp/eng/parser/XCPCtxClientIdentity", "com/tqomacp/eng/parser/XCPCtxVendorConfig",
    "com/tqomacp/eng/parser/XCPCtxApplication",    "com/tqomacp/eng/parser/XCPCtxAccess",
    "com/tqomacp/eng/parser/XCPCtxWifi",
};

// Classes register in order and the first one that fails ends the load; a VM
// without JNI 1.4 gets nothing. A whole load and a missing class are watched
// in a real VM (RegistrationTest); the natives' names and addresses are
// checked by the fuzz session's start.
TEST(TqomacpJniRegistration, ClassesRegisterInOrderUntilOneFails) {
    struct Case {
        const char *label;
        void (*breakIt)(FakeJvm &);
        size_t registered, lookups;
        jint result = -1;
    };
    const Case cases[] = {
        {"no JNI 1.4", [](FakeJvm &j) { j.setSupportedVersion(JNI_VERSION_1_2); }, 0, 0},
        {"XCPCtxParser refused", [](FakeJvm &j) { j.failRegistration(kClassOrder[0]); }, 0, 1},
        {"XCPCtxWifi refused", [](FakeJvm &j) { j.failRegistration(kClassOrder[8]); }, 8, 9},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        FakeJvm jvm;
        c.breakIt(jvm);
        EXPECT_EQ(JNI_OnLoad(jvm.vm(), nullptr), c.result);
        ASSERT_EQ(jvm.registrations().size(), c.registered);
        for (size_t i = 0; i < c.registered; ++i) EXPECT_EQ(jvm.registrations()[i].className, kClassOrder[i]);
        EXPECT_EQ(jvm.calls("FindClass"), c.lookups);
        EXPECT_EQ(jvm.pendingException().empty(), c.lookups == 0 || c.result != -1);
    }
}

// The tables and mappings tools share with the getters.
TEST(TqomacpJniNames, ServiceBearerTablesAndElementMappings) {
    // The getters reach the service table from 1 up and run into the bearer table.
    EXPECT_STREQ(tqsJniServiceName(0), "CL-WSP");
    EXPECT_EQ(tqsJniServiceName(-1), nullptr);

    struct Row {
        tqsJniMapping mapping;
        const char *stored;
        int written;
        const char *element;
    };
    constexpr tqsJniMapping kNap = TQS_JNI_MAP_NAP_ADDR_TYPE, kAuth = TQS_JNI_MAP_AUTH_TYPE,
                            kPx = TQS_JNI_MAP_PX_ADDR_TYPE, kLevel = TQS_JNI_MAP_AAUTH_LEVEL;
    // The getter tests map "\x9D", "pap", "\x86", "E164", "cLiEnT" and "appsrv".
    const Row rows[] = {{kNap, "\x85", 1, "0x85"},         {kNap, "\x86", 1, "0x86"},
                        {kNap, "\x87x", 1, "0x87"},        {kNap, "\x88", 1, "0x88"},
                        {kNap, "\x89", 1, "0x89"},         {kNap, "\x8B", 1, "0x8b"},
                        {kNap, "\x8C", 1, "0x8c"},         {kNap, "APN", 0, nullptr},
                        {kNap, nullptr, 1, nullptr},       {kAuth, "PAP", 1, "PAP"},
                        {kAuth, "\x9A", 1, "PAP"},         {kAuth, "CHAP", 1, "CHAP"},
                        {kAuth, "\x9B", 1, "CHAP"},        {kAuth, "HTTP-BASIC", 1, "HTTP-BASIC"},
                        {kAuth, "\x9C", 1, "HTTP-BASIC"},  {kAuth, "WTLS-SS", 1, "WTLS-SS"},
                        {kAuth, "WTLS_SS", 1, "NONE"},     {kAuth, "\x9E", 1, "WTLS-SS"},
                        {kAuth, "MD5", 1, "MD5"},          {kAuth, "\x9F", 1, "MD5"},
                        {kAuth, "PAP,CHAP", 1, "NONE"},    {kAuth, "", 1, "NONE"},
                        {kAuth, "\x91", 1, "NONE"},        {kAuth, "chap", 1, "NONE"},
                        {kPx, "IPV4", 1, "NET_ADDR_IPV4"}, {kPx, "\x85", 1, "NET_ADDR_IPV4"},
                        {kPx, "IPV6", 1, "NET_ADDR_IPV6"}, {kPx, "ipv6", 1, "NET_ADDR_IPV4"},
                        {kPx, "\x88", 1, "NET_ADDR_IPV4"}, {kPx, "ALPHA", 1, "NET_ADDR_IPV4"},
                        {kLevel, "\x8D", 1, "APPSRV"},     {kLevel, "APPSRV", 1, "APPSRV"},
                        {kLevel, "CLIENT", 1, "CLIENT"},   {kLevel, "client", 1, "CLIENT"},
                        {kLevel, "Client", 1, "CLIENT"},   {kLevel, "\x8E", 1, nullptr},
                        {kLevel, "OBEX", 1, nullptr}};
    for (const Row &r : rows) {
        const char *element = "untouched";
        EXPECT_EQ(tqsJniMapElement(r.mapping, r.stored, &element), r.written)
            << r.mapping << (r.stored ? r.stored : "(null)");
        EXPECT_STREQ(element, r.element) << r.mapping;
    }
}

// Owns the records of one context and publishes it in ptCtx.
struct ContextBuilder {
    std::vector<void *> blocks;  // before root: New() fills it
    tqsClientProvCtx *root = New<tqsClientProvCtx>();

    ContextBuilder() { ptCtx = root; }
    ~ContextBuilder() {
        ptCtx = nullptr;
        for (void *block : blocks) free(block);
    }

    template <class T>
    T *New() {
        return static_cast<T *>(blocks.emplace_back(calloc(1, sizeof(T))));
    }
    char *Str(const std::string &text) {
        return static_cast<char *>(blocks.emplace_back(strdup(text.c_str())));
    }

    tqsCtxStrNode *List(std::initializer_list<std::string> items) {
        tqsCtxStrNode *head = nullptr;
        auto item = items.begin();
        for (tqsCtxStrNode *node : Chain(&head, static_cast<int>(items.size()))) node->pszStr = Str(*item++);
        return head;
    }

    // Appends `count` records of type T to the chain at `head` and returns them.
    template <class T>
    std::vector<T *> Chain(T **head, int count) {
        std::vector<T *> records;
        for (int i = 0; i < count; ++i, head = &records.back()->ptNext) records.push_back(*head = New<T>());
        return records;
    }
};

class TqomacpJniGetters : public ::testing::Test {
   protected:
    // Every text must reach the VM as modified UTF-8.
    TqomacpJniGetters() { jvm.setStrictUtf8(true); }

    std::optional<std::string> S(jstring s) const { return jvm.string(s); }
    Strings A(jobjectArray a) const { return jvm.strings(a); }

    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    ContextBuilder ctx;
};

// Services are named by position and run into the bearer table; bearers by
// code, and a text bearer answers with the NAP-ADDRESS, longer than any buffer.
TEST_F(TqomacpJniGetters, ServiceAndBearerNames) {
    auto px = ctx.Chain(&ctx.root->ptPxLogical, 1);
    auto ports = ctx.Chain(&px[0]->ptPort, 1);
    ports[0]->ptService = ctx.List({"\xCA", "ignored"});  // named by position, not by what is stored
    EXPECT_EQ(jni_tqomacp_GetPxPortServiceCount(env, nullptr, 1, 1), 2);
    EXPECT_EQ(S(jni_tqomacp_GetPxPortServiceData(env, nullptr, 1, 1, 2)), "CL-SEC-WSP");

    // A PXPHYSICAL port with 40 services reaches past both tables.
    auto phys = ctx.Chain(&px[0]->ptPxPhysical, 1);
    ctx.Chain(&ctx.Chain(&phys[0]->ptPort, 1)[0]->ptService, 40);
    const std::pair<jint, std::optional<std::string>> rows[] = {
        {1, "CO-WSP"}, {9, "OTA-HTTP-TLS-PO"}, {10, "Unkown Service"}, {11, "GSM-USSD"},
        {37, "WLAN"},  {38, "Unkown Bearer"},  {39, std::nullopt},     {40, std::nullopt}};
    for (const auto &[s, name] : rows)
        EXPECT_EQ(S(jni_tqomacp_GetPxPhysicalPortServiceData(env, nullptr, 1, 1, 1, s)), name) << s;
    EXPECT_EQ(jni_tqomacp_GetPxPhysicalPortServiceCount(env, nullptr, 1, 1, 1), 40);

    auto naps = ctx.Chain(&ctx.root->ptNapDef, 1);
    const std::string longAddress(300, 'a');
    naps[0]->pszNapAddress = ctx.Str(longAddress);
    naps[0]->ptBearer = ctx.List({"\xBC", "\xA1", "\xFF", "", "GSM-UMTS", "\x1F"});
    const std::optional<std::string> expected[] = {"WLAN",          "Unkown Bearer", "Unkown Bearer",
                                                   "Unkown Bearer", longAddress,     "Unkown Bearer"};
    for (jint k = 1; k <= 6; ++k)
        EXPECT_EQ(S(jni_tqomacp_GetPxBearerData(env, nullptr, 1, k)), expected[k - 1]) << k;
}

TEST_F(TqomacpJniGetters, NapDefDataMapsRawAddressTypesAndShiftsOnText) {
    auto naps = ctx.Chain(&ctx.root->ptNapDef, 3);
    Strings fields;  // the 28 leading fields as stored; 17 to 22 are reserved
    for (int i = 0; i < 28; ++i) {
        fields.push_back(i >= 17 && i <= 22 ? std::nullopt : std::optional("f" + std::to_string(i)));
        for (tqsCtxNapDef *nap : naps)
            reinterpret_cast<char **>(nap)[i] = fields[i] ? ctx.Str(*fields[i]) : nullptr;
    }
    naps[0]->pszNapAddrType = ctx.Str("\x8A");
    naps[1]->pszNapAddrType = ctx.Str("APN");
    naps[2]->pszNapAddrType = nullptr;

    Strings raw = fields, text = fields, none = fields;
    raw[4] = "0x8a";  // named by its code
    raw.push_back(std::nullopt);
    text.erase(text.begin() + 4);  // no element: CALLTYPE moves up, the initial empty string stays last
    text.insert(text.end(), {std::nullopt, ""});
    none[4] = std::nullopt;
    none.push_back(std::nullopt);
    EXPECT_EQ(A(jni_tqomacp_GetPxNapDefData(env, nullptr, 1)), raw);
    EXPECT_EQ(A(jni_tqomacp_GetPxNapDefData(env, nullptr, 2)), text);
    EXPECT_EQ(A(jni_tqomacp_GetPxNapDefData(env, nullptr, 3)), none);
}

// The mapped element stays at its index, its neighbour and the end mark too.
TEST_F(TqomacpJniGetters, AuthTypeLevelAndAddressTypeMappings) {
    auto auth = ctx.Chain(&ctx.Chain(&ctx.root->ptNapDef, 1)[0]->ptNapAuthInfo, 1);
    auto phys = ctx.Chain(&ctx.Chain(&ctx.root->ptPxLogical, 1)[0]->ptPxPhysical, 1);
    auto appAuth = ctx.Chain(&ctx.Chain(&ctx.root->ptApplication, 1)[0]->ptAppAuth, 1);
    auth[0]->pszAuthName = phys[0]->pszPxAddrFqdn = appAuth[0]->pszAAuthType = ctx.Str("next");
    const struct {
        char **field;
        jobjectArray (*get)(JNIEnv *, jclass, jint, jint);
        size_t index, length;  // of the mapped element, of the array
        const char *stored, *element;
    } rows[] = {
        {&auth[0]->pszAuthType, jni_tqomacp_GetPxNapAuthInfoData, 0, 5, nullptr, nullptr},
        {&auth[0]->pszAuthType, jni_tqomacp_GetPxNapAuthInfoData, 0, 5, "\x9D", "HTTP-DIGEST"},
        {&auth[0]->pszAuthType, jni_tqomacp_GetPxNapAuthInfoData, 0, 5, "pap", "NONE"},
        {&phys[0]->pszPxAddrType, jni_tqomacp_GetPxPhysicalData, 2, 8, nullptr, nullptr},
        {&phys[0]->pszPxAddrType, jni_tqomacp_GetPxPhysicalData, 2, 8, "\x86", "NET_ADDR_IPV6"},
        {&phys[0]->pszPxAddrType, jni_tqomacp_GetPxPhysicalData, 2, 8, "E164", "NET_ADDR_IPV4"},
        {&appAuth[0]->pszAAuthLevel, jni_tqomacp_GetPxAppAuthData, 0, 6, nullptr, nullptr},
        {&appAuth[0]->pszAAuthLevel, jni_tqomacp_GetPxAppAuthData, 0, 6, "cLiEnT", "CLIENT"},
        {&appAuth[0]->pszAAuthLevel, jni_tqomacp_GetPxAppAuthData, 0, 6, "appsrv", nullptr},
    };
    for (const auto &r : rows) {
        SCOPED_TRACE(r.stored ? r.stored : "(null)");
        *r.field = r.stored ? ctx.Str(r.stored) : nullptr;
        Strings got = A(r.get(env, nullptr, 1, 1));
        ASSERT_EQ(got.size(), r.length);
        EXPECT_EQ(got[r.index], r.element ? std::optional<std::string>(r.element) : std::nullopt);
        EXPECT_EQ(got[r.index + 1], "next");
        EXPECT_EQ(got[r.length - 1], std::nullopt);
    }
}

TEST_F(TqomacpJniGetters, RoamingIsTheFirstOfTheFirstApplicationOnly) {
    auto apps = ctx.Chain(&ctx.root->ptApplication, 2);
    auto later = ctx.Chain(&apps[1]->ptRoaming, 1);
    later[0]->pszSyncAllowed = ctx.Str("second application");
    EXPECT_EQ(jni_tqomacp_GetPxRoamingData(env, nullptr), nullptr);
    auto first = ctx.Chain(&apps[0]->ptRoaming, 2);
    first[0]->pszSyncDefault = ctx.Str("0");
    first[1]->pszSyncAllowed = ctx.Str("second roaming");
    EXPECT_EQ(A(jni_tqomacp_GetPxRoamingData(env, nullptr)), (Strings{std::nullopt, "0", std::nullopt}));
}

TEST_F(TqomacpJniGetters, NoArrayWithoutTheStringClass) {
    auto boot = ctx.Chain(&ctx.root->ptBootstrap, 1);
    boot[0]->pszName = ctx.Str("boot");
    jvm.hideClass("java/lang/String");
    EXPECT_EQ(jni_tqomacp_GetBootstrapData(env, nullptr, 1), nullptr);
    EXPECT_EQ(jni_tqomacp_GetProxyData(env, nullptr, 1), nullptr);
    EXPECT_EQ(jvm.calls("NewObjectArray"), 0u);
}

// Every count and data getter walks the same way: 1-based, nothing for 0,
// negative or past the end (swept over the corpus by the fuzz session, where
// no PXLOGICAL has a DOMAIN; the JVM sweep calls every getter without a context).
TEST_F(TqomacpJniGetters, EveryWalkIsBoundedAndNeedsAContext) {
    auto acc = ctx.Chain(&ctx.root->ptAccess, 1);
    acc[0]->ptAppId = ctx.List({"w2", "w4"});
    auto px = ctx.Chain(&ctx.root->ptPxLogical, 1);
    px[0]->ptDomain = ctx.List({"d1"});
    EXPECT_EQ(S(jni_tqomacp_GetPxAppIdData(env, nullptr, 1, 2)), "w4");
    for (jint n : {0, -1, 2, INT32_MIN, INT32_MAX})
        EXPECT_EQ(jni_tqomacp_GetPxDomainData(env, nullptr, 1, n), nullptr) << n;

    // The NAPDEF cursor moves nothing without a published context.
    ptCtx = nullptr;
    auto naps = ctx.Chain(&ctx.root->ptNapDef, 3);
    jni_tqomacp_SetPxNapDefIndex(env, nullptr, 2);
    EXPECT_EQ(ctx.root->ptNapDef, naps[0]);
    ptCtx = ctx.root;
    jni_tqomacp_SetPxNapDefIndex(env, nullptr, 2);
    EXPECT_EQ(ctx.root->ptNapDef, naps[1]);
}

TEST_F(TqomacpJniGetters, StringsReachJavaAsModifiedUtf8) {
    auto ident = ctx.New<tqsCtxClientIdent>();
    ctx.root->ptClientIdent = ident;
    EXPECT_EQ(jni_tqomacp_GetPxClientIdentityData(env, nullptr), nullptr);  // null field
    struct Row {
        std::string stored;
        std::string sent;  // bytes given to NewStringUTF
    };
    auto times = [](const std::string &s, int n) {
        std::string all;
        while (n-- > 0) all += s;
        return all;
    };
    // Well-formed two-, three- and four-byte UTF-8 reach a real VM in NativesTest.
    const Row rows[] = {
        {"", ""},
        {"\xC0\x80", "\xC0\x80"},                                      // U+0000 as modified UTF-8 passes
        {"\xED\xA0\x80", "\xED\xA0\x80"},                              // a lone surrogate passes
        {"\xED\xA0\xBD\xED\xB8\x80", "\xED\xA0\xBD\xED\xB8\x80"},      // a surrogate pair passes
        {"\x85", "\xC2\x85"},                                          // a token code byte: U+0085
        {"\xFF\x80", "\xC3\xBF\xC2\x80"},                              // stray bytes, one char each
        {"A\xC3(", "A\xC3\x83("},                                      // truncated sequence
        {"\xC0\xAF", "\xC3\x80\xC2\xAF"},                              // overlong form refused
        {"\xE0\x9F\xBF", "\xC3\xA0\xC2\x9F\xC2\xBF"},                  // overlong three-byte form refused
        {"\xF4\x90\x80\x80", "\xC3\xB4\xC2\x90\xC2\x80\xC2\x80"},      // beyond U+10FFFF
        {"x\xE2\x82", "x\xC3\xA2\xC2\x82"},                            // cut at the end
        {"\x85\xC0\x80\xED\xB8\x80", "\xC2\x85\xC0\x80\xED\xB8\x80"},  // kept beside a mapped byte
        {times("\x85", 300), times("\xC2\x85", 300)},                  // longer than the stack buffer
    };
    for (const Row &r : rows) {
        ident->pszClientId = ctx.Str(r.stored);
        EXPECT_EQ(S(jni_tqomacp_GetPxClientIdentityData(env, nullptr)), r.sent) << r.stored;
    }
    // The conversion takes no tracked block: with the tracker's table full,
    // taking or freeing one would print a MEMCHECK line.
    MemCheck check;
    for (unsigned i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) tqsMemAlloc_debug(1, "fill", 1);
    testing::internal::CaptureStdout();
    for (const Row &r : {rows[4], rows[12]}) {
        ident->pszClientId = ctx.Str(r.stored);
        EXPECT_EQ(S(jni_tqomacp_GetPxClientIdentityData(env, nullptr)), r.sent);
    }
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    check.FreeAll();
}

// Runs with leak tracking on, so each test can say which blocks a session
// leaves allocated by design (the body copies, records overwritten without
// release) and then free them. A whole corpus session, its getters and its
// leftovers are the allocation-failure sweep's clean runs.
class TqomacpJniSession : public ::testing::Test {
   protected:
    TqomacpJniSession() { jvm.setStrictUtf8(true); }
    void TearDown() override {
        EXPECT_EQ(jvm.elementsOutstanding(), 0u) << "PDU array elements not released";
        jni_tqomacp_parser_del(env, nullptr);
        EXPECT_EQ(TakeLiveBlocks(), std::vector<std::string>()) << "unexpected blocks left";
    }

    // "unit:line" of every tracked block still allocated, in table order; frees them.
    std::vector<std::string> TakeLiveBlocks() {
        std::vector<std::string> live;
        for (const LiveBlock &block : check.Live())
            live.push_back(block.file + ":" + std::to_string(block.line));
        check.FreeAll();
        return live;
    }

    // Content type, header length, body length, MAC length, SEC.
    std::vector<jint> Header() {
        return {jni_tqomacp_GetParserContentType(env, nullptr), jni_tqomacp_GetParserHeaderLen(env, nullptr),
                jni_tqomacp_GetParserBodyLen(env, nullptr), jni_tqomacp_GetParserMACLen(env, nullptr),
                jni_tqomacp_GetParserSEC(env, nullptr)};
    }
    void ExpectEmpty() {
        EXPECT_EQ(Header(), std::vector<jint>(5, -1));
        EXPECT_EQ(jni_tqomacp_GetParserMAC(env, nullptr), nullptr);
        EXPECT_EQ(jni_tqomacp_GetParserBody(env, nullptr), nullptr);
    }

    static constexpr const char *kBody = "jni/src/ClientProv/tqspushhandler:167";
    static constexpr const char *kRecord = "jni/src/ClientProv/tqspushhandler:51";

    FakeJvm jvm;
    JNIEnv *env = jvm.env();
    MemCheck check;
};

// The body and MAC arrays of an accepted push and a release with nothing to
// release are checked on every seed by the fuzz pipeline.
TEST_F(TqomacpJniSession, HeaderOnlyParseAndRelease) {
    const std::vector<uint8_t> pdu = {0x01, 0x06, 0x03, 0xB6, 0x91, 0x80, 0x03, 0x0B, 0x6A, 0x00, 0x45, 0x01};
    jbyteArray array = jvm.newByteArray(pdu);
    EXPECT_EQ(jni_tqomacp_parser(env, nullptr, array, static_cast<jlong>(pdu.size()), 1), JNI_TRUE);
    EXPECT_EQ(ptCtx, nullptr);
    EXPECT_EQ(Header(), (std::vector<jint>{0x36, 3, 6, 0, 0x80}));
    // len is used as given (the fuzz pipeline's seeds also pass one byte
    // less, one more, half and -1): a body length whose low 32 bits fit the
    // array is read.
    EXPECT_EQ(jni_tqomacp_parser(env, nullptr, array, (jlong{1} << 32) + 12, 1), JNI_TRUE);
    EXPECT_EQ(jni_tqomacp_GetParserBodyLen(env, nullptr), 6);
    jni_tqomacp_parser_del(env, nullptr);
    ExpectEmpty();
    // Both parses kept their body copies; the record overwritten without a
    // release stays too; the last record was released.
    EXPECT_EQ(TakeLiveBlocks(), (std::vector<std::string>{kRecord, kBody, kBody}));
}

TEST_F(TqomacpJniSession, RefusedPushesLeaveTheEmptyState) {
    EXPECT_EQ(jni_tqomacp_parser(env, nullptr, nullptr, 10, 0), JNI_FALSE);
    ExpectEmpty();
    EXPECT_EQ(jvm.calls("GetByteArrayElements"), 0u);
    // Elements taken and released though the header is refused (TearDown checks).
    EXPECT_EQ(jni_tqomacp_parser(env, nullptr, jvm.newByteArray({}), 0, 1), JNI_FALSE);
    ExpectEmpty();
    EXPECT_TRUE(TakeLiveBlocks().empty());
    // A push whose body is not a provisioning document (public id 0x01): the
    // header record is released once, its body copy stays.
    const std::vector<uint8_t> pdu = {0x01, 0x06, 0x03, 0xB6, 0x91, 0x80, 0x03, 0x01, 0x6A, 0x00, 0x45, 0x01};
    EXPECT_EQ(jni_tqomacp_parser(env, nullptr, jvm.newByteArray(pdu), static_cast<jlong>(pdu.size()), 0),
              JNI_FALSE);
    EXPECT_EQ(ptCtx, nullptr);
    ExpectEmpty();
    jni_tqomacp_parser_del(env, nullptr);  // nothing left to free twice
    EXPECT_EQ(TakeLiveBlocks(), std::vector<std::string>{kBody});
}

}  // namespace
