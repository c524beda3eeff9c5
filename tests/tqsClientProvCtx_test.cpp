// Provisioning context: construction rules, the converter families, release
// coverage and the decoder main, on hand-made trees, builder documents and
// corpus samples.
#include "tqsClientProvCtx.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstring>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "corpus.h"
#include "mem_check.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "trace_capture.h"
#include "wbxml_builder.h"

namespace {

using wbxml::Builder;
namespace prov = wbxml::prov;
using Texts = std::vector<std::string>;
using C = tqsWapCharacter;

constexpr char kCtxUnit[] = "jni/src/ClientProv/tqsClientProvCtx";
constexpr char kTestUnit[] = "tests/tqsClientProvCtx_test";

// Every test runs with the tracker on. At the end whatever is still tracked
// (the blocks the library keeps on purpose, hand-made trees) is freed, so the
// sanitizer's leak check sees only real leaks of untracked blocks.
class CtxTest : public testing::Test {
   protected:
    ~CtxTest() override { check.FreeAll(); }

    MemCheck check;
};

char *Str(const char *text) {
    return tqsStrdup_debug(text, kTestUnit, __LINE__);
}

template <class T>
T *New() {
    return static_cast<T *>(tqsMemAllocSetZero_debug(sizeof(T) + 1, kTestUnit, __LINE__));
}

// A tree record with one string field set.
template <class T>
T *With(char *T::*field, const char *text) {
    T *rec = New<T>();
    rec->*field = Str(text);
    return rec;
}

TqsList *ListOf(std::initializer_list<void *> items) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, nullptr), 0u);
    for (void *item : items) EXPECT_EQ(tqsListAddNodeLast(list, item), 0u);
    return list;
}

TqsList *StrList(std::initializer_list<const char *> items) {
    TqsList *list = ListOf({});
    for (const char *t : items) EXPECT_EQ(tqsListAddNodeLast(list, Str(t)), 0u);
    return list;
}

template <class T>
C *Char(T *C::*slot, T *rec) {
    auto *c = New<C>();
    c->*slot = rec;
    return c;
}

C *Port(const char *nbr, std::initializer_list<const char *> services = {}) {
    auto *p = With(&tqsWapPort::pszPortNbr, nbr);
    if (services.size() != 0) p->ptServiceList = StrList(services);
    return Char(&C::ptPort, p);
}

// One string field of every record of a chain.
template <class T>
Texts Names(const T *rec, char *T::*field) {
    Texts out;
    for (; rec != nullptr; rec = rec->ptNext) out.push_back(rec->*field != nullptr ? rec->*field : "(null)");
    return out;
}

Texts Strings(const tqsCtxStrNode *node) {
    return Names(node, &tqsCtxStrNode::pszStr);
}

tqsClientProvCtx *Decode(const std::vector<uint8_t> &body) {
    return tqsClinetProvWbxmlDecoderMain(body.data(), static_cast<uint32_t>(body.size()));
}

// Null inputs are refused with error 2; an empty document gives a root with eight null heads.
TEST_F(CtxTest, NullInputsAreRefusedAndAnEmptyDocumentGivesAnEmptyRoot) {
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvCtxMakeContext(nullptr), nullptr);
    EXPECT_EQ(trace.Count("[Syncml] ERROR : 2\n"), 1u) << trace.Joined();
    tqsClientProvCtx sentinel{};
    tqsClientProvCtx *ctx = &sentinel;  // must be cleared
    EXPECT_EQ(tqsClientProvCtxVerifyContext(nullptr, &ctx), 2u);
    EXPECT_EQ(ctx, nullptr);
    // Without a place for the result nothing is built.
    EXPECT_EQ(tqsClientProvCtxVerifyContext(ListOf({Char(&C::ptNapDef, New<tqsWapNapDef>())}), nullptr), 2u);
    for (const LiveBlock &b : check.Live()) EXPECT_NE(b.file, kCtxUnit);
    trace.Clear();
    tqsClientProvCtxDelectContext(nullptr);
    EXPECT_EQ(trace.lines(), (Texts{"[Syncml] tqsClientProvCtxDelectContext()\n", "[Syncml] ERROR : 2\n"}));

    tqsWapDoc empty{ListOf({})};
    ctx = tqsClientProvCtxMakeContext(&empty);
    ASSERT_NE(ctx, nullptr);
    const tqsClientProvCtx none{};
    EXPECT_EQ(std::memcmp(ctx, &none, sizeof none), 0);
    tqsClientProvCtxDelectContext(ctx);
}

// PORT, ROAMING and PXPHYSICAL are ignored at top level. A second
// CLIENTIDENTITY skips the remaining slot tests of its item: its NAPDEF
// (tested before) is converted, its VENDORCONFIG (tested after) is not.
TEST_F(CtxTest, TopLevelCharacteristicsLandInTheirChainsInDocumentOrder) {
    C *second = Char(&C::ptClientIdentity, With(&tqsWapClientIdentity::pszClientId, "second"));
    second->ptVendorConfig = With(&tqsWapVendorConfig::pszName, "skipped");
    second->ptNapDef = With(&tqsWapNapDef::pszNapId, "NAP2");
    auto *acc = New<tqsWapAccess>();
    acc->ptRuleList = StrList({"r"});
    tqsWapDoc doc{ListOf(
        {Char(&C::ptPxLogical, With(&tqsWapPxLogical::pszProxyId, "PX1")), Port("80"),
         Char(&C::ptClientIdentity, With(&tqsWapClientIdentity::pszClientId, "first")),
         Char(&C::ptWifi, With(&tqsWapWifi::pszNetSsid, "ssid")),
         Char(&C::ptNapDef, With(&tqsWapNapDef::pszNapId, "NAP1")), Char(&C::ptRoaming, New<tqsWapRoaming>()),
         Char(&C::ptApplication, With(&tqsWapApplication::pszAppId, "w2")), second,
         Char(&C::ptPxPhysical, New<tqsWapPxPhysical>()),
         Char(&C::ptBootstrap, With(&tqsWapBootstrap::pszName, "BOOT")), Char(&C::ptAccess, acc),
         Char(&C::ptVendorConfig, With(&tqsWapVendorConfig::pszName, "V")),
         Char(&C::ptPxLogical, With(&tqsWapPxLogical::pszProxyId, "PX2"))})};
    TraceCapture trace;
    tqsClientProvCtx *ctx = tqsClientProvCtxMakeContext(&doc);
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(trace.Count("[WARNING] Already Have ClientIdent Context"), 1u);

    EXPECT_EQ(Names(ctx->ptPxLogical, &tqsCtxPxLogical::pszProxyId), (Texts{"PX1", "PX2"}));
    EXPECT_EQ(Names(ctx->ptNapDef, &tqsCtxNapDef::pszNapId), (Texts{"NAP1", "NAP2"}));
    EXPECT_EQ(Names(ctx->ptBootstrap, &tqsCtxBootstrap::pszName), Texts{"BOOT"});
    ASSERT_NE(ctx->ptClientIdent, nullptr);
    EXPECT_STREQ(ctx->ptClientIdent->pszClientId, "first");
    EXPECT_EQ(Names(ctx->ptVenderConfig, &tqsCtxVenderConfig::pszName), Texts{"V"});
    ASSERT_EQ(Names(ctx->ptApplication, &tqsCtxApplication::pszAppId), Texts{"w2"});
    EXPECT_EQ(ctx->ptApplication->ptRoaming, nullptr);
    ASSERT_NE(ctx->ptAccess, nullptr);
    EXPECT_EQ(ctx->ptAccess->ptNext, nullptr);
    EXPECT_EQ(Strings(ctx->ptAccess->ptRule), Texts{"r"});
    EXPECT_EQ(Names(ctx->ptWifi, &tqsCtxWifi::pszNetSsid), Texts{"ssid"});
    tqsClientProvCtxDelectContext(ctx);
}

// Records are rows of pointers; the tests index them as such.
char **Fields(void *rec) {
    return static_cast<char **>(rec);
}

TEST_F(CtxTest, NapAuthInfoTracesFirstAuthEntityOrNullForAnEmptyList) {
    auto *with = New<tqsWapNapAuthInfo>();
    with->ptAuthEntityList = StrList({"HA", "AAA"});
    auto *empty = New<tqsWapNapAuthInfo>();
    empty->ptAuthEntityList = StrList({});  // a value-less AUTH-ENTITY parm
    TraceCapture trace;
    tqsCtxNapAuthInfo *a = tqsClientProvCtxVerifyContextNapAuthInfo(with);
    tqsCtxNapAuthInfo *b = tqsClientProvCtxVerifyContextNapAuthInfo(empty);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(Strings(a->ptAuthEntity), (Texts{"HA", "AAA"}));
    EXPECT_EQ(b->ptAuthEntity, nullptr);
    EXPECT_TRUE(trace.Contains("NAP:ptCtx->ptAuthEntity->pAuthEntity[HA]\n")) << trace.Joined();
    EXPECT_TRUE(trace.Contains("NAP:ptCtx->ptAuthEntity->pAuthEntity[(null)]\n")) << trace.Joined();
    tqsClientProvCtxDelectContextNapAuthInfo(a);
    tqsClientProvCtxDelectContextNapAuthInfo(b);
    // Refused like every converter: before its own line is traced.
    trace.Clear();
    EXPECT_EQ(tqsClientProvCtxVerifyContextNapAuthInfo(nullptr), nullptr);
    EXPECT_EQ(trace.lines(),
              (Texts{"[Syncml] tqsClientProvCtxVerifyContextNapAuthInfo()\n", "[Syncml] ERROR : 2\n"}));
}

// The thirteen string-list kinds are one routine each way under their own names.
TEST_F(CtxTest, StringListsCopyInOrderAndReleaseEverything) {
    TqsList *list = StrList({"one", "two", "three"});
    const size_t before = check.Live().size();
    tqsCtxStrNode *chain = tqsClientProvCtxVerifyContextDomainList(list);
    EXPECT_EQ(Strings(chain), (Texts{"one", "two", "three"}));
    EXPECT_EQ(check.Live().size(), before + 6);
    tqsClientProvCtxDelectContextDomainList(chain);
    EXPECT_EQ(check.Live().size(), before);
    TraceCapture trace;
    tqsClientProvCtxDelectContextDomainList(nullptr);
    EXPECT_EQ(trace.Count("[Syncml] ERROR : 2\n"), 1u) << trace.Joined();
    EXPECT_EQ(tqsClientProvCtxVerifyContextDomainList(StrList({})), nullptr);
    // A null item ends the conversion.
    list->ptHead->ptNext->pItem = nullptr;
    chain = tqsClientProvCtxVerifyContextDomainList(list);
    EXPECT_EQ(Strings(chain), Texts{"one"});
    tqsClientProvCtxDelectContextDomainList(chain);
}

TEST_F(CtxTest, RefusedChildEndsTheSiblingWalkButKeepsEarlierChildren) {
    auto *px = New<tqsWapPxLogical>();
    px->ptCharacterList = ListOf({Port("9203"), Char(&C::ptNapAuthInfo, New<tqsWapNapAuthInfo>()),
                                  Char(&C::ptPxAuthInfo, New<tqsWapPxAuthInfo>())});
    TraceCapture trace;
    tqsCtxPxLogical *ctx = tqsClientProvCtxVerifyContextPxLogical(px);
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(trace.Count("[WARNING] Not Support Context"), 1u);
    EXPECT_EQ(Names(ctx->ptPort, &tqsCtxPort::pszPortNbr), Texts{"9203"});
    EXPECT_EQ(ctx->ptPxAuthInfo, nullptr);
    tqsClientProvCtxDelectContextPxLogical(ctx);
}

// Each distributor accepts exactly its slots and refuses every other one.
TEST_F(CtxTest, DistributorsAcceptOnlyTheirChildSlots) {
    struct Case {
        const char *name;
        uint32_t (*distribute)(TqsList *, void *);
        size_t parentSize;
        // slot in tqsWapCharacter -> chain field index in the parent, field count of the child (ptNext last)
        std::map<size_t, std::pair<size_t, size_t>> accepted;
    };
#define DIST(Kind, Parent)                                                             \
    "tqsClientProvCtxVerifyCharacter" #Kind,                                           \
        [](TqsList *l, void *p) {                                                      \
            return tqsClientProvCtxVerifyCharacter##Kind(l, static_cast<Parent *>(p)); \
        },                                                                             \
        sizeof(Parent)
    const Case cases[] = {
        {DIST(PxLogical, tqsCtxPxLogical), {{1, {14, 4}}, {3, {16, 11}}, {2, {15, 3}}}},
        {DIST(PxPhysical, tqsCtxPxPhysical), {{2, {9, 3}}}},
        {DIST(AppAddr, tqsCtxAppAddr), {{2, {2, 3}}}},
        {DIST(NapDef, tqsCtxNapDef), {{5, {30, 6}}, {6, {31, 6}}}},
        {DIST(Application, tqsCtxApplication), {{15, {18, 3}}, {7, {15, 4}}, {9, {16, 6}}, {8, {17, 9}}}},
    };
#undef DIST
    // Minimal tree records for every slot (zero-filled, big enough for any record).
    auto child = [](size_t slot) {
        auto *c = New<C>();
        Fields(c)[slot] =
            static_cast<char *>(tqsMemAllocSetZero_debug(32 * sizeof(void *), kTestUnit, __LINE__));
        return c;
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        // A null parent: error 2 and nothing converted.
        const size_t live = check.Live().size();
        EXPECT_EQ(c.distribute(ListOf({child(c.accepted.begin()->first)}), nullptr), 2u);
        EXPECT_EQ(check.Live().size(), live + 4);  // just the list, its node, the child and its record
        for (size_t slot = 0; slot < 17; ++slot) {
            SCOPED_TRACE("slot " + std::to_string(slot));
            void *parent = tqsMemAllocSetZero_debug(uint32_t(c.parentSize + 1), kTestUnit, __LINE__);
            const uint32_t result = c.distribute(ListOf({child(slot), child(slot)}), parent);
            std::vector<size_t> filled;
            for (size_t i = 0; i < c.parentSize / sizeof(void *); ++i)
                if (Fields(parent)[i] != nullptr) filled.push_back(i);
            const auto accepted = c.accepted.find(slot);
            if (accepted == c.accepted.end()) {
                EXPECT_EQ(result, 1u);
                EXPECT_EQ(filled, std::vector<size_t>{});
                continue;
            }
            const auto [chain, childFields] = accepted->second;
            EXPECT_EQ(result, 0u);
            ASSERT_EQ(filled, std::vector<size_t>{chain});
            // Two children: the chain head and its successor (ptNext is the record's last field).
            void *second = Fields(Fields(parent)[chain])[childFields - 1];
            ASSERT_NE(second, nullptr);
            EXPECT_EQ(Fields(second)[childFields - 1], nullptr);
        }
    }
}

// Chains keep document order; release traces read as one call per record:
// each record's name, then its lists, then the next record.
TEST_F(CtxTest, ApplicationChildrenKeepDocumentOrderAndReleaseRecordByRecord) {
    auto *addr = With(&tqsWapAppAddr::pszAddr, "host");
    addr->ptCharacterList = ListOf({Port("1", {"a", "b"}), Port("2")});
    auto *app = New<tqsWapApplication>();
    app->ptCharacterList =
        ListOf({Char(&C::ptAppAuth, With(&tqsWapAppAuth::pszAAuthLevel, "APPSRV")), Char(&C::ptAppAddr, addr),
                Char(&C::ptAppAuth, With(&tqsWapAppAuth::pszAAuthLevel, "CLIENT"))});
    tqsCtxApplication *ctx = tqsClientProvCtxVerifyContextApplication(app);
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(Names(ctx->ptAppAuth, &tqsCtxAppAuth::pszAAuthLevel), (Texts{"APPSRV", "CLIENT"}));
    ASSERT_EQ(Names(ctx->ptAppAddr, &tqsCtxAppAddr::pszAddr), Texts{"host"});
    const tqsCtxPort *port = ctx->ptAppAddr->ptPort;
    ASSERT_EQ(Names(port, &tqsCtxPort::pszPortNbr), (Texts{"1", "2"}));
    EXPECT_EQ(Strings(port->ptService), (Texts{"a", "b"}));
    EXPECT_EQ(port->ptNext->ptService, nullptr);

    tqsCtxAppAddr *appAddr = ctx->ptAppAddr;
    ctx->ptAppAddr = nullptr;
    TraceCapture trace;
    tqsClientProvCtxDelectContextAppAddr(appAddr);
    EXPECT_EQ(trace.lines(), (Texts{"[Syncml] tqsClientProvCtxDelectContextAppAddr()\n",
                                    "[Syncml] tqsClientProvCtxDelectContextPort()\n",
                                    "[Syncml] tqsClientProvCtxDelectContextServiceList()\n",
                                    "[Syncml] tqsClientProvCtxDelectContextServiceList()\n",
                                    "[Syncml] tqsClientProvCtxDelectContextPort()\n"}));
    tqsClientProvCtxDelectContextApplication(ctx);
}

// Every characteristic kind with strings, lists and children, plus the
// content that release keeps (WI-FI, ROAMING, XCAP, FROM, INIT, VENDORCONFIG's
// inline parm).
std::vector<uint8_t> RichDocument() {
    Builder b;
    b.Doc();
    b.Characteristic(prov::kPxLogical).Parm(prov::kProxyId, "PX1").Parm(prov::kName, "Proxy");
    b.Parm(prov::kDomain, "a.invalid").Parm(prov::kDomain, "b.invalid");
    b.Characteristic(prov::kPxAuthInfo).Parm(prov::kPxAuthType, "T").Parm(prov::kPxAuthId, "id").End();
    b.Characteristic(prov::kPxPhysical).Parm(prov::kPhysicalProxyId, "PP").Parm(prov::kPxAddr, "10.0.0.1");
    b.Parm(prov::kToNapId, "NAP1").Parm(prov::kDomain, "c.invalid");
    b.Characteristic(prov::kPort).Parm(prov::kPortNbr, "9201");
    b.Parm(prov::kService, "s1").Parm(prov::kService, "s2").End().End();
    b.Characteristic(prov::kPort).Parm(prov::kPortNbr, "80").End();
    b.End();
    b.Characteristic(prov::kNapDef).Parm(prov::kNapId, "NAP1").Parm(prov::kName, "Nap");
    b.Parm(prov::kBearer, "B").Parm(prov::kDnsAddr, "10.0.0.2").NamedParm("INIT");
    b.Characteristic(prov::kNapAuthInfo).Parm(prov::kAuthName, "u").Parm(prov::kAuthEntity, "e").End();
    b.Characteristic(prov::kValidity).Parm(prov::kCountry, "228").Parm(prov::kNetwork, "01").End();
    b.End();
    b.Characteristic(prov::kBootstrap).Parm(prov::kName, "Boot").Parm(prov::kProvUrl, "http://p.invalid");
    b.Parm(prov::kProxyId, "PX1").Parm(prov::kNetwork, "n1").End();
    b.Characteristic(prov::kClientIdentity).Parm(prov::kClientId, "client").End();
    b.Characteristic(prov::kVendorConfig).Parm(prov::kName, "Vendor").NamedParm("VENDOR-PARAM", "xy").End();
    b.Characteristic(prov::kApplication).Parm(prov::kAppId, "w5").Parm(prov::kName, "App");
    b.Parm(prov::kToProxy, "PX1").Parm(prov::kToNapId, "NAP1").Parm(prov::kAddr, "http://a.invalid");
    b.NamedParm("FROM", "me@x").NamedParm("XCAP_AUID_DCS", "dcs").NamedParm("XCAP_TID_HEADER", "tid");
    b.Characteristic(prov::kAppAddr).Parm(prov::kAddr, "host").Characteristic(prov::kPort);
    b.Parm(prov::kPortNbr, "443").Parm(prov::kService, "s").End().End();
    b.Characteristic(prov::kAppAuth).Parm(prov::kAAuthName, "user").End();
    b.Characteristic(prov::kResource).Parm(prov::kUri, "/r").Parm(prov::kName, "Res").End();
    b.Characteristic("ROAMING").NamedParm("SYNC-ALLOWED", "1").End();
    b.End();
    b.Characteristic(prov::kApplication).Parm(prov::kAppId, "w2");
    b.Characteristic("ROAMING").NamedParm("SYNC-DEFAULT", "0").End();
    b.End();
    b.Characteristic(prov::kAccess).Parm(prov::kRule, "r").Parm(prov::kAppId, "w2").Parm(prov::kDomain, "d");
    b.Parm(prov::kPortNbr, "8080").Parm(prov::kToNapId, "NAP1").Parm(prov::kToProxy, "PX1").End();
    b.Characteristic("WI-FI").NamedParm("NETSSID", "net").NamedParm("PRIORITY", "1").End();
    b.End();
    return b.Build();
}

TEST_F(CtxTest, MainFailuresReturnNullAndReleaseEverythingOfItsOwn) {
    Builder literal;  // a string table that the decoder copies and must release
    literal.LiteralPublicId("-//WAPFORUM//DTD PROV 1.1//EN").Doc().End();
    Builder unknown;
    unknown.Tag(0x08, false, false);
    struct Case {
        const char *label;
        std::vector<uint8_t> body;
        const char *message;
        const uint8_t *data = nullptr;  // instead of body
        uint32_t size = 0;
    } cases[] = {
        {"literal public id mismatch", literal.Build(), "tqsClientProvWbxmlDecoder[0x100b]"},
        {"unknown first element", unknown.Build(), "tqsClientProvWbxmlDecoder[0x1005]"},
        {"null body", {}, "tqsClientProvWbxmlInitDecoder[0x2]", nullptr, 4},
        // No characteristics: no tree at all, which the context builder refuses.
        {"empty document", corpus::Read("moz-empty-doc-netwpin.wbxml"), "tqsClientProvCtxMakeContext[0x0]"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        TraceCapture trace;
        EXPECT_EQ(c.body.empty() ? tqsClinetProvWbxmlDecoderMain(c.data, c.size) : Decode(c.body), nullptr);
        EXPECT_TRUE(trace.Contains(std::string("ERROR : tqsClinetProvWbxmlDecoderMain ") + c.message + "\n"))
            << trace.Joined();
        EXPECT_EQ(trace.lines().front(), "tqsClinetProvWbxmlDecoderMain\n");
        EXPECT_FALSE(trace.Contains("Success"));
        EXPECT_TRUE(check.Live().empty());
    }
}

// Decode with the main routine and release with tqsClientProvCtxDelectContext:
// only the deliberately kept blocks remain, on the tree side and on the
// context side.
TEST_F(CtxTest, ReleaseLeavesOnlyTheKeptBlocks) {
    tqsClientProvCtx *ctx = Decode(RichDocument());
    ASSERT_NE(ctx, nullptr);
    tqsClientProvCtxDelectContext(ctx);
    std::multiset<uint32_t> context, tree;
    for (const LiveBlock &b : check.Live()) {
        if (b.file == kCtxUnit) {
            context.insert(b.size);
        } else {
            EXPECT_EQ(b.file, "jni/src/ClientProv/tqsClientProvWbxmlDecoder");
            tree.insert(b.size);
        }
    }
    // Sizes as the tracker records them: records are fields x pointer + 1;
    // strings their length, tree strings their length + 1.
    constexpr uint32_t kRecord = sizeof(void *);
    EXPECT_EQ(context,
              (std::multiset<uint32_t>{13 * kRecord + 1, 3, 1,  // WI-FI record, NETSSID, PRIORITY
                                       3 * kRecord + 1, 1,      // ROAMING record, SYNC-ALLOWED
                                       3 * kRecord + 1, 1,      // ROAMING record, SYNC-DEFAULT
                                       3, 3, 4,  // XCAP_AUID_DCS, XCAP_TID_HEADER, the first copy of FROM
                                       5}));     // INIT ("empty")
    EXPECT_EQ(tree,
              (std::multiset<uint32_t>{2 * kRecord + 1, 2,  // ROAMING record and SYNC-ALLOWED
                                       2 * kRecord + 1, 2,  // ROAMING record and SYNC-DEFAULT
                                       5, 4, 4,             // FROM, XCAP_AUID_DCS, XCAP_TID_HEADER
                                       13, 3,               // VENDORCONFIG's parm name and value
                                       129, 129, 129}));  // the scratch block of each inline APPLICATION parm
}

TEST(CtxLongChain, TenThousandNapdefsOnA256KStack) {
    constexpr int kCount = 10000;
    Builder b;
    b.Doc();
    for (int i = 0; i < kCount; ++i) {
        b.Characteristic(prov::kNapDef).Parm(prov::kNapId, "N" + std::to_string(i)).End();
    }
    b.End();
    // The body going in, the NAPDEF ids coming out.
    std::pair<std::vector<uint8_t>, Texts> run{b.Build(), {}};
    auto decode = [](void *arg) -> void * {
        auto *r = static_cast<decltype(run) *>(arg);
        tqsClientProvCtx *ctx = Decode(r->first);
        if (ctx != nullptr) r->second = Names(ctx->ptNapDef, &tqsCtxNapDef::pszNapId);
        tqsClientProvCtxDelectContext(ctx);
        return nullptr;
    };
    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 256 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attr, decode, &run), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attr);
    ASSERT_EQ(run.second.size(), size_t(kCount));
    EXPECT_EQ(run.second.front(), "N0");
    EXPECT_EQ(run.second.back(), "N" + std::to_string(kCount - 1));
}

}  // namespace
