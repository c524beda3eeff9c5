// Provisioning context: construction rules, the converter families, release
// coverage and the decoder main, on hand-made trees, builder documents and
// corpus samples.
#include "tqsClientProvCtx.h"

#include <gtest/gtest.h>
#include <pthread.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "corpus.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "trace_capture.h"
#include "wbxml_builder.h"

// ---- allocation failures -----------------------------------------------------
// Outside the sanitizer builds (whose runtime owns malloc) the test replaces
// malloc to make chosen allocations fail.
#if defined(__SANITIZE_ADDRESS__)
#define CTX_TEST_FAILING_MALLOC 0
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CTX_TEST_FAILING_MALLOC 0
#endif
#endif
#ifndef CTX_TEST_FAILING_MALLOC
#define CTX_TEST_FAILING_MALLOC 1
#endif

namespace {
long gFailAt = -1;      // number of the allocation to fail, counted from 0 while armed
long gAllocations = 0;  // allocations seen while armed
}  // namespace

#if CTX_TEST_FAILING_MALLOC
extern "C" void *__libc_malloc(size_t size);
extern "C" void *malloc(size_t size) {
    if (gFailAt >= 0 && gAllocations++ == gFailAt) return nullptr;
    return __libc_malloc(size);
}
#endif

namespace {

using wbxml::Builder;
namespace prov = wbxml::prov;

constexpr char kCtxUnit[] = "jni/src/ClientProv/tqsClientProvCtx";
constexpr char kTestUnit[] = "tests/tqsClientProvCtx_test";

// ---- leak tracking ------------------------------------------------------------
// Every test runs with the tracker on. At the end whatever is still tracked
// (the blocks the library keeps on purpose, hand-made trees) is freed here,
// so the sanitizer's leak check sees only real leaks of untracked blocks.

struct Block {
    void *address;
    std::string file;
    uint32_t line;
    uint32_t size;
};

std::vector<Block> LiveBlocks() {
    std::vector<Block> out;
    if (ptMemCheckTable == nullptr) return out;
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) {
        const MemCheckEntry &e = ptMemCheckTable[i];
        if (e.pAddress != nullptr) out.push_back({e.pAddress, e.pszFileName, e.nLine, e.nSize});
    }
    return out;
}

// Ends tracking: returns the tracker's printed report and frees what it listed.
std::string EndTracking() {
    std::vector<Block> live = LiveBlocks();
    testing::internal::CaptureStdout();
    tqsMemEndMemCheck();
    std::string report = testing::internal::GetCapturedStdout();
    for (const Block &b : live) std::free(b.address);
    return report;
}

struct ReportLine {
    std::string file;
    int line;
    int size;
};

std::vector<ReportLine> ParseReport(const std::string &report) {
    std::vector<ReportLine> out;
    size_t pos = 0;
    while ((pos = report.find("[syncml] MEMCHECK Filename:", pos)) != std::string::npos) {
        char file[256] = {};
        int line = 0;
        int size = 0;
        EXPECT_EQ(std::sscanf(report.c_str() + pos, "[syncml] MEMCHECK Filename:%255s Line:%d Size:%d", file,
                              &line, &size),
                  3);
        out.push_back({file, line, size});
        ++pos;
    }
    return out;
}

class CtxTest : public testing::Test {
   protected:
    void SetUp() override { tqsMemStartMemCheck(); }
    void TearDown() override {
        if (bMemCheck) EndTracking();
    }
};

std::vector<Block> ContextBlocks();

// ---- hand-made document trees ---------------------------------------------------

char *Str(const char *text) {
    return tqsStrdup_debug(text, kTestUnit, __LINE__);
}

template <class T>
T *New() {
    return static_cast<T *>(tqsMemAllocSetZero_debug(sizeof(T) + 1, kTestUnit, __LINE__));
}

TqsList *StrList(std::initializer_list<const char *> items) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, nullptr), 0u);
    for (const char *t : items) EXPECT_EQ(tqsListAddNodeLast(list, Str(t)), 0u);
    return list;
}

template <class T>
tqsWapCharacter *Char(T *tqsWapCharacter::*slot, T *rec) {
    auto *c = New<tqsWapCharacter>();
    c->*slot = rec;
    return c;
}

TqsList *CharList(std::initializer_list<tqsWapCharacter *> items) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, nullptr), 0u);
    for (tqsWapCharacter *c : items) EXPECT_EQ(tqsListAddNodeLast(list, c), 0u);
    return list;
}

tqsWapPort *Port(const char *nbr, std::initializer_list<const char *> services = {}) {
    auto *p = New<tqsWapPort>();
    p->pszPortNbr = Str(nbr);
    if (services.size() != 0) p->ptServiceList = StrList(services);
    return p;
}

std::vector<std::string> Strings(const tqsCtxStrNode *node) {
    std::vector<std::string> out;
    for (; node != nullptr; node = node->ptNext) out.push_back(node->pszStr);
    return out;
}

template <class T>
size_t ChainLength(const T *rec) {
    size_t n = 0;
    for (; rec != nullptr; rec = rec->ptNext) ++n;
    return n;
}

// ---- documents through the whole decoder ------------------------------------------

tqsClientProvCtx *Decode(const std::vector<uint8_t> &body) {
    return tqsClinetProvWbxmlDecoderMain(body.data(), static_cast<uint32_t>(body.size()));
}

tqsClientProvCtx *DecodeSample(const std::string &path) {
    std::vector<unsigned char> body = corpus::Read(path);
    return tqsClinetProvWbxmlDecoderMain(body.data(), static_cast<uint32_t>(body.size()));
}

// ==== construction ===================================================================

TEST_F(CtxTest, NullInputsAreRefusedWithErrorTwo) {
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvCtxMakeContext(nullptr), nullptr);
    EXPECT_EQ(trace.Count("[Syncml] ERROR : 2\n"), 1u) << trace.Joined();
    tqsClientProvCtx sentinel{};
    tqsClientProvCtx *ctx = &sentinel;  // must be cleared
    EXPECT_EQ(tqsClientProvCtxVerifyContext(nullptr, &ctx), 2u);
    EXPECT_EQ(ctx, nullptr);
    tqsWapDoc doc{};  // a document whose characteristic list was never created
    EXPECT_EQ(tqsClientProvCtxMakeContext(&doc), nullptr);
    // Without a place for the result nothing is built.
    EXPECT_EQ(tqsClientProvCtxVerifyContext(CharList({Char(&tqsWapCharacter::ptNapDef, New<tqsWapNapDef>())}),
                                            nullptr),
              2u);
    EXPECT_TRUE(ContextBlocks().empty());
    trace.Clear();
    tqsClientProvCtxDelectContext(nullptr);
    EXPECT_EQ(trace.lines(), (std::vector<std::string>{"[Syncml] tqsClientProvCtxDelectContext()\n",
                                                       "[Syncml] ERROR : 2\n"}));
}

TEST_F(CtxTest, EmptyDocumentGivesRootWithEightNullHeads) {
    tqsWapDoc doc{CharList({})};
    tqsClientProvCtx *ctx = tqsClientProvCtxMakeContext(&doc);
    ASSERT_NE(ctx, nullptr);
    const tqsClientProvCtx empty{};
    EXPECT_EQ(std::memcmp(ctx, &empty, sizeof empty), 0);
    tqsClientProvCtxDelectContext(ctx);
}

TEST_F(CtxTest, TopLevelCharacteristicsLandInTheirChainsInDocumentOrder) {
    auto *px1 = New<tqsWapPxLogical>();
    px1->pszProxyId = Str("PX1");
    auto *px2 = New<tqsWapPxLogical>();
    px2->pszProxyId = Str("PX2");
    auto *nap = New<tqsWapNapDef>();
    nap->pszNapId = Str("NAP1");
    auto *boot = New<tqsWapBootstrap>();
    boot->pszName = Str("BOOT");
    auto *id1 = New<tqsWapClientIdentity>();
    id1->pszClientId = Str("first");
    auto *id2 = New<tqsWapClientIdentity>();
    id2->pszClientId = Str("second");
    auto *vc = New<tqsWapVendorConfig>();
    vc->pszName = Str("V");
    auto *wifi = New<tqsWapWifi>();
    wifi->pszNetSsid = Str("ssid");
    auto *app = New<tqsWapApplication>();
    app->pszAppId = Str("w2");
    auto *acc = New<tqsWapAccess>();
    acc->ptRuleList = StrList({"r"});
    auto *roam = New<tqsWapRoaming>();
    auto *phys = New<tqsWapPxPhysical>();

    tqsWapDoc doc{CharList({
        Char(&tqsWapCharacter::ptPxLogical, px1),
        Char(&tqsWapCharacter::ptPort, Port("80")),  // ignored at top level
        Char(&tqsWapCharacter::ptClientIdentity, id1),
        Char(&tqsWapCharacter::ptWifi, wifi),
        Char(&tqsWapCharacter::ptNapDef, nap),
        Char(&tqsWapCharacter::ptRoaming, roam),  // ignored at top level
        Char(&tqsWapCharacter::ptApplication, app),
        Char(&tqsWapCharacter::ptClientIdentity, id2),
        Char(&tqsWapCharacter::ptPxPhysical, phys),  // ignored at top level
        Char(&tqsWapCharacter::ptBootstrap, boot),
        Char(&tqsWapCharacter::ptAccess, acc),
        Char(&tqsWapCharacter::ptVendorConfig, vc),
        Char(&tqsWapCharacter::ptPxLogical, px2),
    })};
    TraceCapture trace;
    tqsClientProvCtx *ctx = tqsClientProvCtxMakeContext(&doc);
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(trace.Count("[WARNING] Already Have ClientIdent Context"), 1u);

    ASSERT_EQ(ChainLength(ctx->ptPxLogical), 2u);
    EXPECT_STREQ(ctx->ptPxLogical->pszProxyId, "PX1");
    EXPECT_STREQ(ctx->ptPxLogical->ptNext->pszProxyId, "PX2");
    ASSERT_EQ(ChainLength(ctx->ptNapDef), 1u);
    EXPECT_STREQ(ctx->ptNapDef->pszNapId, "NAP1");
    ASSERT_EQ(ChainLength(ctx->ptBootstrap), 1u);
    EXPECT_STREQ(ctx->ptBootstrap->pszName, "BOOT");
    ASSERT_NE(ctx->ptClientIdent, nullptr);
    EXPECT_STREQ(ctx->ptClientIdent->pszClientId, "first");
    ASSERT_EQ(ChainLength(ctx->ptVenderConfig), 1u);
    ASSERT_EQ(ChainLength(ctx->ptApplication), 1u);
    EXPECT_STREQ(ctx->ptApplication->pszAppId, "w2");
    EXPECT_EQ(ctx->ptApplication->ptRoaming, nullptr);
    ASSERT_EQ(ChainLength(ctx->ptAccess), 1u);
    EXPECT_EQ(Strings(ctx->ptAccess->ptRule), std::vector<std::string>{"r"});
    ASSERT_EQ(ChainLength(ctx->ptWifi), 1u);
    EXPECT_STREQ(ctx->ptWifi->pszNetSsid, "ssid");

    // Private copies: nothing points into the tree.
    EXPECT_NE(ctx->ptPxLogical->pszProxyId, px1->pszProxyId);
    EXPECT_NE(ctx->ptClientIdent->pszClientId, id1->pszClientId);
    tqsClientProvCtxDelectContext(ctx);
}

// A second CLIENTIDENTITY skips the remaining slot tests of its item, so a
// VENDORCONFIG set in the same record is not converted.
TEST_F(CtxTest, DuplicateClientIdentitySkipsTheRestOfItsItem) {
    auto *id1 = New<tqsWapClientIdentity>();
    auto *id2 = New<tqsWapClientIdentity>();
    tqsWapCharacter *both = Char(&tqsWapCharacter::ptClientIdentity, id2);
    both->ptVendorConfig = New<tqsWapVendorConfig>();
    both->ptNapDef = New<tqsWapNapDef>();  // tested before CLIENTIDENTITY: still converted
    tqsWapDoc doc{CharList({Char(&tqsWapCharacter::ptClientIdentity, id1), both})};
    tqsClientProvCtx *ctx = tqsClientProvCtxMakeContext(&doc);
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(ChainLength(ctx->ptNapDef), 1u);
    EXPECT_EQ(ctx->ptVenderConfig, nullptr);
    tqsClientProvCtxDelectContext(ctx);
}

// Real messages: nesting lands in the typed child chains.
TEST_F(CtxTest, CorpusSamplesConvertWithTheirNesting) {
    tqsClientProvCtx *ctx = DecodeSample("gaia-tef-movistar.wbxml");
    ASSERT_NE(ctx, nullptr);
    const tqsCtxPxLogical *px = ctx->ptPxLogical;
    ASSERT_EQ(ChainLength(px), 1u);
    EXPECT_STREQ(px->pszProxyId, "10.138.255.133");
    ASSERT_EQ(ChainLength(px->ptPort), 1u);  // PORT directly under PXLOGICAL
    EXPECT_STREQ(px->ptPort->pszPortNbr, "8080");
    ASSERT_EQ(ChainLength(px->ptPxPhysical), 1u);
    EXPECT_EQ(Strings(px->ptPxPhysical->ptToNapId), std::vector<std::string>{"NAP1"});
    ASSERT_EQ(ChainLength(px->ptPxPhysical->ptPort), 1u);
    EXPECT_EQ(ChainLength(px->ptPxPhysical->ptPort->ptService), 1u);
    ASSERT_EQ(ChainLength(ctx->ptNapDef), 1u);
    ASSERT_EQ(ChainLength(ctx->ptNapDef->ptNapAuthInfo), 1u);
    EXPECT_STREQ(ctx->ptNapDef->ptNapAuthInfo->pszAuthName, "telefonica");
    ASSERT_EQ(ChainLength(ctx->ptApplication), 1u);
    EXPECT_EQ(Strings(ctx->ptApplication->ptToProxy), std::vector<std::string>{"10.138.255.133"});
    tqsClientProvCtxDelectContext(ctx);

    ctx = DecodeSample("cpc-email.wbxml");
    ASSERT_NE(ctx, nullptr);
    ASSERT_EQ(ChainLength(ctx->ptApplication), 2u);
    const tqsCtxApplication *smtp = ctx->ptApplication->ptNext;
    EXPECT_STREQ(ctx->ptApplication->pszAppId, "110");
    EXPECT_STREQ(smtp->pszAppId, "25");
    EXPECT_STREQ(smtp->pszFrom, "user@localhost");
    ASSERT_EQ(ChainLength(smtp->ptAppAddr), 1u);
    EXPECT_STREQ(smtp->ptAppAddr->pszAddr, "smtp.localhost");
    ASSERT_EQ(ChainLength(smtp->ptAppAddr->ptPort), 1u);
    EXPECT_STREQ(smtp->ptAppAddr->ptPort->pszPortNbr, "465");
    ASSERT_EQ(ChainLength(smtp->ptAppAuth), 1u);
    EXPECT_STREQ(smtp->ptAppAuth->pszAAuthName, "username");
    tqsClientProvCtxDelectContext(ctx);

    ctx = DecodeSample("cpc-proxytest.wbxml");
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(ChainLength(ctx->ptPxLogical), 3u);
    size_t physical = 0;
    for (const tqsCtxPxLogical *p = ctx->ptPxLogical; p != nullptr; p = p->ptNext)
        physical += ChainLength(p->ptPxPhysical);
    EXPECT_EQ(physical, 4u);
    tqsClientProvCtxDelectContext(ctx);
}

// ==== record converters =================================================================
// Every string field of the tree record gets the text "v<index>"; the context
// record must hold a private copy of each at the index the layout gives it.

struct ConverterCase {
    const char *name;
    void *(*convert)(const void *wap);
    size_t wapSize;
    size_t ctxSize;
    size_t strings;  // leading string fields of the tree record
    int notCopied;   // tree string index that stays null, or -1
};

#define CONVERTER(Fn, Wap, Ctx, n, skip)                                                                \
    ConverterCase {                                                                                     \
#Fn, [](const void *w) -> void * { return Fn(static_cast<const Wap *>(w)); }, sizeof(Wap),      \
                                                                                   sizeof(Ctx), n, skip \
    }

const ConverterCase kConverters[] = {
    CONVERTER(tqsClientProvCtxVerifyContextPxLogical, tqsWapPxLogical, tqsCtxPxLogical, 13, 11),
    CONVERTER(tqsClientProvCtxVerifyContextPxAuthInfo, tqsWapPxAuthInfo, tqsCtxPxAuthInfo, 3, -1),
    CONVERTER(tqsClientProvCtxVerifyContextPort, tqsWapPort, tqsCtxPort, 1, -1),
    CONVERTER(tqsClientProvCtxVerifyContextPxPhysical, tqsWapPxPhysical, tqsCtxPxPhysical, 7, -1),
    CONVERTER(tqsClientProvCtxVerifyContextNapdef, tqsWapNapDef, tqsCtxNapDef, 28, -1),
    CONVERTER(tqsClientProvCtxVerifyContextNapAuthInfo, tqsWapNapAuthInfo, tqsCtxNapAuthInfo, 4, -1),
    CONVERTER(tqsClientProvCtxVerifyContextValidity, tqsWapValidity, tqsCtxValidity, 5, -1),
    CONVERTER(tqsClientProvCtxVerifyContextBootstrap, tqsWapBootstrap, tqsCtxBootstrap, 4, -1),
    CONVERTER(tqsClientProvCtxVerifyContextClientIdent, tqsWapClientIdentity, tqsCtxClientIdent, 1, -1),
    CONVERTER(tqsClientProvCtxVerifyContextVenderConfig, tqsWapVendorConfig, tqsCtxVenderConfig, 3, -1),
    CONVERTER(tqsClientProvCtxVerifyContextApplication, tqsWapApplication, tqsCtxApplication, 12, -1),
    CONVERTER(tqsClientProvCtxVerifyContextAppAddr, tqsWapAppAddr, tqsCtxAppAddr, 2, -1),
    CONVERTER(tqsClientProvCtxVerifyContextAppAuth, tqsWapAppAuth, tqsCtxAppAuth, 5, -1),
    CONVERTER(tqsClientProvCtxVerifyContextResource, tqsWapResource, tqsCtxResource, 8, -1),
    CONVERTER(tqsClientProvCtxVerifyContextRoaming, tqsWapRoaming, tqsCtxRoaming, 2, -1),
    CONVERTER(tqsClientProvCtxVerifyContextAccess, tqsWapAccess, tqsCtxAccess, 0, -1),
    CONVERTER(tqsClientProvCtxVerifyContextWifi, tqsWapWifi, tqsCtxWifi, 12, -1),
};

// Records are rows of pointers; the tests index them as such.
char **Fields(void *rec) {
    return static_cast<char **>(rec);
}

TEST_F(CtxTest, EveryRecordConverterCopiesEachStringAndRefusesNull) {
    for (const ConverterCase &c : kConverters) {
        SCOPED_TRACE(c.name);
        void *wap = tqsMemAllocSetZero_debug(uint32_t(c.wapSize + 1), kTestUnit, __LINE__);
        for (size_t i = 0; i < c.strings; ++i) Fields(wap)[i] = Str(("v" + std::to_string(i)).c_str());
        void *ctx = c.convert(wap);
        ASSERT_NE(ctx, nullptr);
        for (size_t i = 0; i < c.strings; ++i) {
            if (int(i) == c.notCopied) {
                EXPECT_EQ(Fields(ctx)[i], nullptr) << "field " << i;
                continue;
            }
            ASSERT_NE(Fields(ctx)[i], nullptr) << "field " << i;
            EXPECT_EQ(std::string(Fields(ctx)[i]), "v" + std::to_string(i));
            EXPECT_NE(Fields(ctx)[i], Fields(wap)[i]);
        }
        // No lists or children in the input: everything after the strings stays null.
        for (size_t i = c.strings; i < c.ctxSize / sizeof(void *); ++i)
            EXPECT_EQ(Fields(ctx)[i], nullptr) << i;
        TraceCapture trace;
        EXPECT_EQ(c.convert(nullptr), nullptr);
        EXPECT_EQ(trace.lines(), (std::vector<std::string>{std::string("[Syncml] ") + c.name + "()\n",
                                                           "[Syncml] ERROR : 2\n"}));
    }
}

// Each tree string list (by field index) must end up in the context chain at
// the given index; PXPHYSICAL swaps TO-NAPID and DOMAIN.
TEST_F(CtxTest, RecordConvertersTurnEachListIntoTheMatchingChain) {
    struct ListCase {
        const char *name;
        std::vector<std::pair<size_t, size_t>> lists;  // tree index -> context index
    };
    const std::map<std::string, ListCase> cases = {
        {"tqsClientProvCtxVerifyContextPxLogical", {"", {{13, 13}}}},
        {"tqsClientProvCtxVerifyContextPort", {"", {{1, 1}}}},
        {"tqsClientProvCtxVerifyContextPxPhysical", {"", {{7, 8}, {8, 7}}}},
        {"tqsClientProvCtxVerifyContextNapdef", {"", {{28, 28}, {29, 29}}}},
        {"tqsClientProvCtxVerifyContextNapAuthInfo", {"", {{4, 4}}}},
        {"tqsClientProvCtxVerifyContextBootstrap", {"", {{4, 4}, {5, 5}}}},
        {"tqsClientProvCtxVerifyContextApplication", {"", {{12, 12}, {13, 13}, {14, 14}}}},
        {"tqsClientProvCtxVerifyContextAccess", {"", {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 5}}}},
    };
    size_t checked = 0;
    for (const ConverterCase &c : kConverters) {
        auto it = cases.find(c.name);
        if (it == cases.end()) continue;
        SCOPED_TRACE(c.name);
        void *wap = tqsMemAllocSetZero_debug(uint32_t(c.wapSize + 1), kTestUnit, __LINE__);
        for (auto [from, to] : it->second.lists) {
            const std::string a = "a" + std::to_string(from), b = "b" + std::to_string(from);
            reinterpret_cast<TqsList **>(wap)[from] = StrList({a.c_str(), b.c_str()});
        }
        void *ctx = c.convert(wap);
        ASSERT_NE(ctx, nullptr);
        for (auto [from, to] : it->second.lists) {
            const auto *chain = reinterpret_cast<tqsCtxStrNode **>(ctx)[to];
            EXPECT_EQ(Strings(chain),
                      (std::vector<std::string>{"a" + std::to_string(from), "b" + std::to_string(from)}))
                << from << " -> " << to;
        }
        ++checked;
    }
    EXPECT_EQ(checked, cases.size());
}

TEST_F(CtxTest, ApplicationCopiesFromTwiceAndKeepsTheFirstCopyAllocated) {
    auto *app = New<tqsWapApplication>();
    app->pszFrom = Str("user@example.invalid");
    const size_t before = LiveBlocks().size();
    tqsCtxApplication *ctx = tqsClientProvCtxVerifyContextApplication(app);
    ASSERT_NE(ctx, nullptr);
    EXPECT_STREQ(ctx->pszFrom, "user@example.invalid");
    // The record, and two copies of FROM of which the record points at one.
    EXPECT_EQ(LiveBlocks().size(), before + 3);
    tqsClientProvCtxDelectContextApplication(ctx);
    std::vector<Block> left;
    for (const Block &b : LiveBlocks())
        if (b.file == kCtxUnit) left.push_back(b);
    ASSERT_EQ(left.size(), 1u);
    EXPECT_STREQ(static_cast<const char *>(left[0].address), "user@example.invalid");
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
    EXPECT_EQ(Strings(a->ptAuthEntity), (std::vector<std::string>{"HA", "AAA"}));
    EXPECT_EQ(b->ptAuthEntity, nullptr);
    EXPECT_TRUE(trace.Contains("NAP:ptCtx->ptAuthEntity->pAuthEntity[HA]\n")) << trace.Joined();
    EXPECT_TRUE(trace.Contains("NAP:ptCtx->ptAuthEntity->pAuthEntity[(null)]\n")) << trace.Joined();
    tqsClientProvCtxDelectContextNapAuthInfo(a);
    tqsClientProvCtxDelectContextNapAuthInfo(b);
}

// ==== string lists ===========================================================================

using ListConverter = tqsCtxStrNode *(*)(TqsList *);
using ListRelease = void (*)(tqsCtxStrNode *);

const std::pair<ListConverter, ListRelease> kListKinds[] = {
    {tqsClientProvCtxVerifyContextToAddrList, tqsClientProvCtxDelectContextToAddrList},
    {tqsClientProvCtxVerifyContextToProxyList, tqsClientProvCtxDelectContextToProxyList},
    {tqsClientProvCtxVerifyContextPortNbrList, tqsClientProvCtxDelectContextPortNbrList},
    {tqsClientProvCtxVerifyContextAppIdList, tqsClientProvCtxDelectContextAppIdList},
    {tqsClientProvCtxVerifyContextRuleList, tqsClientProvCtxDelectContextRuleList},
    {tqsClientProvCtxVerifyContextNetworkList, tqsClientProvCtxDelectContextNetworkList},
    {tqsClientProvCtxVerifyContextProxyIdList, tqsClientProvCtxDelectContextProxyIdList},
    {tqsClientProvCtxVerifyContextAuthEntityList, tqsClientProvCtxDelectContextAuthEntityList},
    {tqsClientProvCtxVerifyContextBearerList, tqsClientProvCtxDelectContextBearerList},
    {tqsClientProvCtxVerifyContextDnsAddrList, tqsClientProvCtxDelectContextDnsAddrList},
    {tqsClientProvCtxVerifyContextToNapIdList, tqsClientProvCtxDelectContextToNapIdList},
    {tqsClientProvCtxVerifyContextServiceList, tqsClientProvCtxDelectContextServiceList},
    {tqsClientProvCtxVerifyContextDomainList, tqsClientProvCtxDelectContextDomainList},
};

TEST_F(CtxTest, EveryListKindCopiesInOrderAndReleasesEverything) {
    TqsList *list = StrList({"one", "two", "three"});
    const size_t before = LiveBlocks().size();
    for (auto [convert, release] : kListKinds) {
        tqsCtxStrNode *chain = convert(list);
        EXPECT_EQ(Strings(chain), (std::vector<std::string>{"one", "two", "three"}));
        EXPECT_NE(chain->pszStr, list->ptHead->pItem);
        EXPECT_EQ(LiveBlocks().size(), before + 6);
        release(chain);
        EXPECT_EQ(LiveBlocks().size(), before);
        TraceCapture trace;
        release(nullptr);
        EXPECT_EQ(trace.Count("[Syncml] ERROR : 2\n"), 1u) << trace.Joined();
    }
    EXPECT_EQ(tqsClientProvCtxVerifyContextDomainList(StrList({})), nullptr);
}

TEST_F(CtxTest, NullListItemEndsTheConversion) {
    TqsList *list = StrList({"first", "second", "third"});
    list->ptHead->ptNext->pItem = nullptr;  // the second item
    tqsCtxStrNode *chain = tqsClientProvCtxVerifyContextDomainList(list);
    EXPECT_EQ(Strings(chain), std::vector<std::string>{"first"});
    tqsClientProvCtxDelectContextDomainList(chain);
}

// ==== child distributors ===========================================================================

TEST_F(CtxTest, RefusedChildEndsTheSiblingWalkButKeepsEarlierChildren) {
    auto *px = New<tqsWapPxLogical>();
    px->ptCharacterList = CharList({
        Char(&tqsWapCharacter::ptPort, Port("9203")),
        Char(&tqsWapCharacter::ptNapAuthInfo, New<tqsWapNapAuthInfo>()),
        Char(&tqsWapCharacter::ptPxAuthInfo, New<tqsWapPxAuthInfo>()),
    });
    TraceCapture trace;
    tqsCtxPxLogical *ctx = tqsClientProvCtxVerifyContextPxLogical(px);
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(trace.Count("[WARNING] Not Support Context"), 1u);
    ASSERT_EQ(ChainLength(ctx->ptPort), 1u);
    EXPECT_STREQ(ctx->ptPort->pszPortNbr, "9203");
    EXPECT_EQ(ctx->ptPxAuthInfo, nullptr);
    tqsClientProvCtxDelectContextPxLogical(ctx);

    // Called directly, the distributor reports the refusal.
    tqsCtxPxLogical parent{};
    EXPECT_EQ(tqsClientProvCtxVerifyCharacterPxLogical(px->ptCharacterList, &parent), 1u);
    EXPECT_EQ(ChainLength(parent.ptPort), 1u);
    tqsClientProvCtxDelectContextPort(parent.ptPort);
}

// Each distributor accepts exactly its slots and refuses every other one.
TEST_F(CtxTest, DistributorsAcceptOnlyTheirChildSlots) {
    using Slot = size_t;  // index in tqsWapCharacter
    struct Case {
        const char *name;
        uint32_t (*distribute)(TqsList *, void *);
        size_t parentSize;
        // slot -> chain field index in the parent, field count of the child record (ptNext last)
        std::vector<std::tuple<Slot, size_t, size_t>> accepted;
    };
#define DIST(Fn, Parent) \
#Fn, [](TqsList * l, void *p) { return Fn(l, static_cast<Parent *>(p)); }, sizeof(Parent)
    const Case cases[] = {
        {DIST(tqsClientProvCtxVerifyCharacterPxLogical, tqsCtxPxLogical),
         {{1, 14, 4}, {3, 16, 11}, {2, 15, 3}}},
        {DIST(tqsClientProvCtxVerifyCharacterPxPhysical, tqsCtxPxPhysical), {{2, 9, 3}}},
        {DIST(tqsClientProvCtxVerifyCharacterAppAddr, tqsCtxAppAddr), {{2, 2, 3}}},
        {DIST(tqsClientProvCtxVerifyCharacterNapDef, tqsCtxNapDef), {{5, 30, 6}, {6, 31, 6}}},
        {DIST(tqsClientProvCtxVerifyCharacterApplication, tqsCtxApplication),
         {{15, 18, 3}, {7, 15, 4}, {9, 16, 6}, {8, 17, 9}}},
    };
#undef DIST
    // Minimal tree records for every slot (zero-filled, big enough for any record).
    auto child = [](Slot slot) {
        auto *c = New<tqsWapCharacter>();
        Fields(c)[slot] =
            static_cast<char *>(tqsMemAllocSetZero_debug(32 * sizeof(void *), kTestUnit, __LINE__));
        return c;
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        // A null parent: error 2 and nothing converted.
        const size_t live = LiveBlocks().size();
        EXPECT_EQ(c.distribute(CharList({child(std::get<0>(c.accepted[0]))}), nullptr), 2u);
        EXPECT_EQ(LiveBlocks().size(), live + 4);  // just the list, its node, the child and its record
        for (Slot slot = 0; slot < 17; ++slot) {
            size_t chain = SIZE_MAX, childFields = 0;
            for (auto [s, field, n] : c.accepted)
                if (s == slot) chain = field, childFields = n;
            void *parent = tqsMemAllocSetZero_debug(uint32_t(c.parentSize + 1), kTestUnit, __LINE__);
            TqsList *children = CharList({child(slot), child(slot)});
            const uint32_t result = c.distribute(children, parent);
            if (chain == SIZE_MAX) {
                EXPECT_EQ(result, 1u) << "slot " << slot;
                for (size_t i = 0; i < c.parentSize / sizeof(void *); ++i)
                    EXPECT_EQ(Fields(parent)[i], nullptr);
                continue;
            }
            EXPECT_EQ(result, 0u) << "slot " << slot;
            // Two children: the chain head and its successor (ptNext is the record's last field).
            void *head = Fields(parent)[chain];
            ASSERT_NE(head, nullptr) << "slot " << slot;
            void *second = Fields(head)[childFields - 1];
            ASSERT_NE(second, nullptr) << "slot " << slot;
            EXPECT_EQ(Fields(second)[childFields - 1], nullptr) << "slot " << slot;
            size_t filled = 0;
            for (size_t i = 0; i < c.parentSize / sizeof(void *); ++i) filled += Fields(parent)[i] != nullptr;
            EXPECT_EQ(filled, 1u) << "slot " << slot;
        }
    }
}

TEST_F(CtxTest, ApplicationChildrenKeepDocumentOrderPerChain) {
    auto auth = [](const char *level) {
        auto *a = New<tqsWapAppAuth>();
        a->pszAAuthLevel = Str(level);
        return Char(&tqsWapCharacter::ptAppAuth, a);
    };
    auto *roam = New<tqsWapRoaming>();
    roam->pszSyncAllowed = Str("1");
    auto *addr = New<tqsWapAppAddr>();
    addr->pszAddr = Str("host");
    addr->ptCharacterList = CharList({Char(&tqsWapCharacter::ptPort, Port("1", {"a", "b"})),
                                      Char(&tqsWapCharacter::ptPort, Port("2", {"c"}))});
    auto *app = New<tqsWapApplication>();
    app->ptCharacterList = CharList({auth("APPSRV"), Char(&tqsWapCharacter::ptRoaming, roam),
                                     Char(&tqsWapCharacter::ptAppAddr, addr), auth("CLIENT")});
    tqsCtxApplication *ctx = tqsClientProvCtxVerifyContextApplication(app);
    ASSERT_NE(ctx, nullptr);
    ASSERT_EQ(ChainLength(ctx->ptAppAuth), 2u);
    EXPECT_STREQ(ctx->ptAppAuth->pszAAuthLevel, "APPSRV");
    EXPECT_STREQ(ctx->ptAppAuth->ptNext->pszAAuthLevel, "CLIENT");
    ASSERT_EQ(ChainLength(ctx->ptRoaming), 1u);
    EXPECT_STREQ(ctx->ptRoaming->pszSyncAllowed, "1");
    ASSERT_EQ(ChainLength(ctx->ptAppAddr), 1u);
    const tqsCtxPort *port = ctx->ptAppAddr->ptPort;
    ASSERT_EQ(ChainLength(port), 2u);
    EXPECT_EQ(Strings(port->ptService), (std::vector<std::string>{"a", "b"}));
    EXPECT_EQ(Strings(port->ptNext->ptService), std::vector<std::string>{"c"});
    tqsClientProvCtxDelectContextApplication(ctx);
}

// ==== release ============================================================================================

// Chains are released in a loop, but the trace reads as one call per record:
// each record's name, then its lists, then the next record.
TEST_F(CtxTest, ReleaseTracesTheRoutineOncePerRecordInChainOrder) {
    auto *wap = New<tqsWapAppAddr>();
    wap->ptCharacterList = CharList(
        {Char(&tqsWapCharacter::ptPort, Port("1", {"a", "b"})), Char(&tqsWapCharacter::ptPort, Port("2"))});
    tqsCtxAppAddr *addr = tqsClientProvCtxVerifyContextAppAddr(wap);
    ASSERT_NE(addr, nullptr);
    TraceCapture trace;
    tqsClientProvCtxDelectContextAppAddr(addr);
    const std::vector<std::string> expected = {
        "[Syncml] tqsClientProvCtxDelectContextAppAddr()\n",
        "[Syncml] tqsClientProvCtxDelectContextPort()\n",
        "[Syncml] tqsClientProvCtxDelectContextServiceList()\n",
        "[Syncml] tqsClientProvCtxDelectContextServiceList()\n",
        "[Syncml] tqsClientProvCtxDelectContextPort()\n",
    };
    EXPECT_EQ(trace.lines(), expected);
}

// Blocks of the context unit still live.
std::vector<Block> ContextBlocks() {
    std::vector<Block> out;
    for (const Block &b : LiveBlocks())
        if (b.file == kCtxUnit) out.push_back(b);
    return out;
}

// Every characteristic kind with strings, lists and children, plus the
// content that release keeps (WI-FI, ROAMING, XCAP, FROM, INIT).
std::vector<uint8_t> RichDocument() {
    Builder b;
    b.Doc();
    b.Characteristic(prov::kPxLogical).Parm(prov::kProxyId, "PX1").Parm(prov::kName, "Proxy");
    b.Parm(prov::kDomain, "a.invalid").Parm(prov::kDomain, "b.invalid");
    b.Characteristic(prov::kPxAuthInfo).Parm(prov::kPxAuthType, "T").Parm(prov::kPxAuthId, "id").End();
    b.Characteristic(prov::kPxPhysical).Parm(prov::kPhysicalProxyId, "PP").Parm(prov::kPxAddr, "10.0.0.1");
    b.Parm(prov::kToNapId, "NAP1").Parm(prov::kDomain, "c.invalid");
    b.Characteristic(prov::kPort)
        .Parm(prov::kPortNbr, "9201")
        .Parm(prov::kService, "s1")
        .Parm(prov::kService, "s2");
    b.End().End();
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
    b.Characteristic(prov::kVendorConfig).Parm(prov::kName, "Vendor").End();
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
    b.Characteristic(prov::kAccess)
        .Parm(prov::kRule, "r")
        .Parm(prov::kAppId, "w2")
        .Parm(prov::kPortNbr, "8080");
    b.Parm(prov::kDomain, "d").Parm(prov::kToNapId, "NAP1").Parm(prov::kToProxy, "PX1").End();
    b.Characteristic("WI-FI").NamedParm("NETSSID", "net").NamedParm("PRIORITY", "1").End();
    b.End();
    return b.Build();
}

// ==== decoder main =========================================================================================

TEST_F(CtxTest, MainTracesItsStepsAndReturnsTheContext) {
    Builder b;
    b.Doc().Characteristic(prov::kNapDef).Parm(prov::kNapId, "NAP1").End().End();
    TraceCapture trace;
    tqsClientProvCtx *ctx = Decode(b.Build());
    ASSERT_NE(ctx, nullptr);
    EXPECT_EQ(trace.lines().front(), "tqsClinetProvWbxmlDecoderMain\n");
    EXPECT_TRUE(trace.Contains("Success")) << trace.Joined();
    EXPECT_FALSE(trace.Contains("ERROR : tqsClinetProvWbxmlDecoderMain")) << trace.Joined();
    ASSERT_NE(ctx->ptNapDef, nullptr);
    EXPECT_STREQ(ctx->ptNapDef->pszNapId, "NAP1");
    tqsClientProvCtxDelectContext(ctx);
}

TEST_F(CtxTest, MainFailuresReturnNullAndReleaseEverythingOfItsOwn) {
    Builder wrongId;
    wrongId.PublicId(0x01).Doc().Characteristic(prov::kNapDef).Parm(prov::kNapId, "NAP1").End().End();
    Builder literal;  // a string table that the decoder copies and must release
    literal.LiteralPublicId("-//WAPFORUM//DTD PROV 1.1//EN").Doc().End();
    Builder badVersion;  // fails before any characteristic exists
    badVersion.Tag(prov::kTagWapProvisioningDoc, true, true).Byte(0x47).Byte(wbxml::kEnd).End();
    Builder unknown;
    unknown.Tag(0x08, false, false);
    const std::vector<unsigned char> empty = corpus::Read("moz-empty-doc-netwpin.wbxml");
    const uint8_t none = 0;
    struct Case {
        const char *label;
        std::vector<uint8_t> body;
        const char *message;
        const uint8_t *data = nullptr;  // instead of body
        uint32_t size = 0;
    } cases[] = {
        {"wrong public id", wrongId.Build(), "tqsClientProvWbxmlDecoder[0x100b]"},
        {"literal public id mismatch", literal.Build(), "tqsClientProvWbxmlDecoder[0x100b]"},
        {"bad version attribute", badVersion.Build(), "tqsClientProvWbxmlDecoder[0x1005]"},
        {"unknown first element", unknown.Build(), "tqsClientProvWbxmlDecoder[0x1005]"},
        {"zero-length body", {}, "tqsClientProvWbxmlDecoder[0x100b]", &none, 0},
        {"null body", {}, "tqsClientProvWbxmlInitDecoder[0x2]", nullptr, 4},
        // No characteristics: no tree at all, which the context builder refuses.
        {"empty document", {empty.begin(), empty.end()}, "tqsClientProvCtxMakeContext[0x0]"},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        TraceCapture trace;
        EXPECT_EQ(c.body.empty() ? tqsClinetProvWbxmlDecoderMain(c.data, c.size) : Decode(c.body), nullptr);
        EXPECT_TRUE(trace.Contains(std::string("ERROR : tqsClinetProvWbxmlDecoderMain ") + c.message + "\n"))
            << trace.Joined();
        EXPECT_FALSE(trace.Contains("Success"));
        EXPECT_TRUE(LiveBlocks().empty());
    }
}

// ==== leak accounting through the tracker's report
// =========================================================== Decode with the main routine, release with
// tqsClientProvCtxDelectContext, then read the tracker's printed report: only the deliberately kept blocks
// remain, on the tree side and on the context side.

std::vector<ReportLine> DecodeReleaseAndReport(const std::vector<uint8_t> &body) {
    tqsMemStartMemCheck();
    tqsClientProvCtx *ctx = Decode(body);
    EXPECT_NE(ctx, nullptr);
    tqsClientProvCtxDelectContext(ctx);
    return ParseReport(EndTracking());
}

TEST_F(CtxTest, ReportIsEmptyForDocumentsWithoutKeptContent) {
    EndTracking();  // each sample gets its own tracking run
    for (const char *sample : {"cpc-omadm.wbxml", "gaia-tef-movistar.wbxml", "cpc-proxytest.wbxml",
                               "moz-cht-emome-codepage1.wbxml", "sfos-beeline-2.wbxml"}) {
        SCOPED_TRACE(sample);
        std::vector<unsigned char> body = corpus::Read(sample);
        tqsMemStartMemCheck();
        tqsClientProvCtx *ctx = tqsClinetProvWbxmlDecoderMain(body.data(), uint32_t(body.size()));
        ASSERT_NE(ctx, nullptr);
        EXPECT_NE(ctx->ptNapDef != nullptr || ctx->ptApplication != nullptr, false);
        tqsClientProvCtxDelectContext(ctx);
        EXPECT_EQ(EndTracking(), "");
    }
}

TEST_F(CtxTest, ReportListsOnlyTheKeptBlocks) {
    EndTracking();  // each document gets its own tracking run
    constexpr int kRecord = sizeof(void *);
    const std::string treeUnit = "jni/src/ClientProv/tqsClientProvWbxmlDecoder";
    struct Case {
        const char *label;
        std::vector<uint8_t> body;
        // Sizes as the tracker records them: records are fields x pointer + 1;
        // context strings their length, tree strings their length + 1.
        std::multiset<int> context;
        std::multiset<int> tree;
    };
    const std::vector<unsigned char> identity = corpus::Read("own/identity-vendor-access.wbxml");
    const Case cases[] = {
        {"every kind, with wifi, roaming, xcap, from and init",
         RichDocument(),
         {13 * kRecord + 1, 3, 1,  // WI-FI record, NETSSID, PRIORITY
          3 * kRecord + 1, 1,      // ROAMING record, SYNC-ALLOWED
          3 * kRecord + 1, 1,      // ROAMING record, SYNC-DEFAULT
          3, 3, 4,                 // XCAP_AUID_DCS, XCAP_TID_HEADER, the first copy of FROM
          5},                      // INIT ("empty")
         {2 * kRecord + 1, 2,      // ROAMING record and SYNC-ALLOWED
          2 * kRecord + 1, 2,      // ROAMING record and SYNC-DEFAULT
          5, 4, 4,                 // FROM, XCAP_AUID_DCS, XCAP_TID_HEADER
          129, 129, 129}},         // the scratch block of each inline-named APPLICATION parm
        {"own/identity-vendor-access.wbxml",
         std::vector<uint8_t>(identity.begin(), identity.end()),
         {5},       // INIT ("empty")
         {13, 3}},  // VENDORCONFIG's parm name and value
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.label);
        std::multiset<int> context, tree;
        for (const ReportLine &l : DecodeReleaseAndReport(c.body)) {
            if (l.file == kCtxUnit) {
                context.insert(l.size);
            } else {
                EXPECT_EQ(l.file, treeUnit);
                tree.insert(l.size);
            }
        }
        EXPECT_EQ(context, c.context);
        EXPECT_EQ(tree, c.tree);
    }
}

// Every allocation of a conversion fails in turn: construction and release
// never write through null. The first one is the root: no context, status 1.
TEST_F(CtxTest, EachFailedAllocationLeavesAConsistentContext) {
    if (!CTX_TEST_FAILING_MALLOC) GTEST_SKIP() << "malloc belongs to the sanitizer runtime";
    const std::vector<uint8_t> body = RichDocument();
    tqsWbxmlDecoder *decoder = nullptr;
    ASSERT_EQ(tqsClientProvWbxmlInitDecoder(&decoder, body.data(), uint32_t(body.size())), 0u);
    tqsWapDoc *doc = nullptr;
    ASSERT_EQ(tqsClientProvWbxmlDecoder(decoder, &doc), 0u);
    tqsClientProvWbxmlDeleteDecoder(decoder);
    long failed = 0;
    for (long n = 0;; ++n) {
        gAllocations = 0;
        gFailAt = n;
        tqsClientProvCtx *ctx = nullptr;
        const uint32_t status = tqsClientProvCtxVerifyContext(doc->ptCharacterList, &ctx);
        gFailAt = -1;
        if (n == 0) {
            EXPECT_EQ(status, 1u);
            EXPECT_EQ(ctx, nullptr);
        } else {
            EXPECT_EQ(status, 0u) << n;
            EXPECT_NE(ctx, nullptr) << n;
        }
        tqsClientProvCtxDelectContext(ctx);
        if (gAllocations <= n) break;  // this run met no failure: every allocation has been tried
        ++failed;
    }
    EXPECT_GT(failed, 50);  // the sweep did run through the document
    tqsClientProvWbxmlDeleteWapDoc(doc);
}

// ==== long chains on a small stack
// =============================================================================

struct LongRun {
    std::vector<uint8_t> body;
    size_t napdefs = 0;
    std::string first, last;
};

void *RunLong(void *arg) {
    auto *run = static_cast<LongRun *>(arg);
    tqsClientProvCtx *ctx = Decode(run->body);
    if (ctx == nullptr) return nullptr;
    run->napdefs = ChainLength(ctx->ptNapDef);
    run->first = ctx->ptNapDef->pszNapId;
    for (const tqsCtxNapDef *n = ctx->ptNapDef; n != nullptr; n = n->ptNext) run->last = n->pszNapId;
    tqsClientProvCtxDelectContext(ctx);
    return nullptr;
}

TEST(CtxLongChain, TenThousandNapdefsOnA256KStack) {
    constexpr int kCount = 10000;
    LongRun run;
    Builder b;
    b.Doc();
    for (int i = 0; i < kCount; ++i) {
        b.Characteristic(prov::kNapDef).Parm(prov::kNapId, "N" + std::to_string(i));
        b.Parm(prov::kDnsAddr, "10.0.0.1").Parm(prov::kDnsAddr, "10.0.0.2");
        b.Characteristic(prov::kNapAuthInfo).Parm(prov::kAuthName, "u").End();
        b.End();
    }
    b.End();
    run.body = b.Build();

    pthread_attr_t attr;
    ASSERT_EQ(pthread_attr_init(&attr), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attr, 256 * 1024), 0);
    pthread_t thread;
    ASSERT_EQ(pthread_create(&thread, &attr, RunLong, &run), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    pthread_attr_destroy(&attr);
    EXPECT_EQ(run.napdefs, size_t(kCount));
    EXPECT_EQ(run.first, "N0");
    EXPECT_EQ(run.last, "N" + std::to_string(kCount - 1));
}

}  // namespace
