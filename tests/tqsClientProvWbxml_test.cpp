// Decoder record creation/deletion and release of the document tree.
#include "tqsClientProvWbxml.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "mem_check.h"
#include "smlbuffer.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "trace_capture.h"

namespace {

const char kTestFile[] = "tests/tqsClientProvWbxml_test";

TEST(WbxmlDecoderRecord, InitCopiesTheBodyWithZerosBehindIt) {
    MemCheck mem;
    const unsigned char body[] = {0x03, 0x0B, 0x6A, 0x00, 0xFF};
    tqsWbxmlDecoder *ptDecoder = nullptr;
    {
        TraceCapture trace;
        ASSERT_EQ(tqsClientProvWbxmlInitDecoder(&ptDecoder, body, sizeof body), 0u);
        EXPECT_EQ(trace.lines(), std::vector<std::string>{"tqsClientProvWbxmlInitDecoder\n"});
    }
    ASSERT_NE(ptDecoder, nullptr);
    SmlBuffer *ptBuf = ptDecoder->ptBuffer;
    ASSERT_NE(ptBuf, nullptr);
    EXPECT_EQ(ptBuf->nDataSize, sizeof body);
    EXPECT_EQ(ptBuf->pHead, ptBuf->pBase);
    EXPECT_EQ(std::memcmp(ptBuf->pHead, body, sizeof body), 0);
    EXPECT_NE(ptBuf->pHead, body);
    // The storage runs past the body and is zero there, up to and including pEnd.
    ASSERT_GT(ptBuf->pEnd, ptBuf->pHead + sizeof body);
    for (unsigned char *p = ptBuf->pHead + sizeof body; p <= ptBuf->pEnd; ++p)
        ASSERT_EQ(*p, 0) << p - ptBuf->pHead;
    // Sized for the body at once: the append did not grow the storage.
    EXPECT_EQ(ptBuf->nBufSize, sizeof body + 1);
    EXPECT_EQ(ptDecoder->nCodePage, 0);
    EXPECT_EQ(ptDecoder->pStringTable, nullptr);

    EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(ptDecoder), 0u);
    EXPECT_TRUE(mem.Live().empty());
}

TEST(WbxmlDecoderRecord, NullBodyIsRefused) {
    TraceCapture trace;
    tqsWbxmlDecoder *ptDecoder = reinterpret_cast<tqsWbxmlDecoder *>(&trace);
    EXPECT_EQ(tqsClientProvWbxmlInitDecoder(&ptDecoder, nullptr, 4), 2u);
    EXPECT_EQ(ptDecoder, nullptr);
    EXPECT_EQ(trace.lines(),
              (std::vector<std::string>{"tqsClientProvWbxmlInitDecoder\n",
                                        "[Error] [tqsClientProvWbxmlInitDecoder] ptTmp NULL\n"}));
}

TEST(WbxmlDecoderRecord, ZeroLengthBodyAndDeletion) {
    MemCheck mem;
    const unsigned char body[] = {0};
    tqsWbxmlDecoder *ptDecoder = nullptr;
    ASSERT_EQ(tqsClientProvWbxmlInitDecoder(&ptDecoder, body, 0), 0u);
    EXPECT_EQ(ptDecoder->ptBuffer->nDataSize, 0u);
    ptDecoder->pStringTable = static_cast<unsigned char *>(tqsMemAllocSetZero_debug(4, kTestFile, __LINE__));
    EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(ptDecoder), 0u);
    EXPECT_TRUE(mem.Live().empty());
    EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(nullptr), 2u);
}

// ---- Release -----------------------------------------------------------------
//
// Each record is filled completely (every string field, every list field with
// two items, every characteristic list with one nested characteristic), then
// released; what stays allocated must be exactly the fields kept on purpose.

enum FieldKind { kStr, kStrList, kCharList };

struct RecordShape {
    const char *name;
    std::vector<FieldKind> fields;
    std::set<size_t> kept;  // field indexes the release leaves allocated
};

std::vector<FieldKind> Strings(size_t n) {
    return std::vector<FieldKind>(n, kStr);
}

std::vector<FieldKind> Concat(std::initializer_list<std::vector<FieldKind>> parts) {
    std::vector<FieldKind> all;
    for (const auto &p : parts) all.insert(all.end(), p.begin(), p.end());
    return all;
}

// In tqsWapCharacter slot order.
const std::vector<RecordShape> &Shapes() {
    static const std::vector<RecordShape> shapes = {
        {"PXLOGICAL", Concat({Strings(13), {kStrList, kCharList}}), {}},
        {"PXAUTHINFO", Strings(3), {}},
        {"PORT", {kStr, kStrList}, {}},
        {"PXPHYSICAL", Concat({Strings(7), {kStrList, kStrList, kCharList}}), {}},
        {"NAPDEF", Concat({Strings(28), {kStrList, kStrList, kCharList}}), {27}},
        {"NAPAUTHINFO", Concat({Strings(4), {kStrList}}), {}},
        {"VALIDITY", Strings(5), {}},
        {"APPADDR", {kStr, kStr, kCharList}, {}},
        {"RESOURCE", Strings(8), {}},
        {"APPAUTH", Strings(5), {}},
        {"APPLICATION",
         Concat({Strings(12), {kStrList, kStrList, kStrList, kCharList}}),
         {2, 7, 8, 9, 10, 11}},
        {"BOOTSTRAP", Concat({Strings(4), {kStrList, kStrList}}), {}},
        {"VENDORCONFIG", Strings(3), {1, 2}},
        {"CLIENTIDENTITY", Strings(1), {}},
        {"ACCESS", std::vector<FieldKind>(6, kStrList), {}},
        {"ROAMING", Strings(2), {0, 1}},
        {"WI-FI", Strings(12), {}},
    };
    return shapes;
}

constexpr size_t kRoamingSlot = 15;

char *NewText(const char *text) {
    char *p = static_cast<char *>(
        tqsMemAllocSetZero_debug(static_cast<uint32_t>(strlen(text) + 1), kTestFile, __LINE__));
    std::strcpy(p, text);
    return p;
}

// A characteristic holding a PORT record with both fields set; adds its blocks to `all`.
tqsWapCharacter *NewPortCharacter(std::set<void *> *all) {
    auto *ch = static_cast<tqsWapCharacter *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kTestFile, __LINE__));
    auto *port =
        static_cast<tqsWapPort *>(tqsMemAllocSetZero_debug(sizeof(tqsWapPort) + 1, kTestFile, __LINE__));
    port->pszPortNbr = NewText("80");
    EXPECT_EQ(tqsListCreate(&port->ptServiceList, NewText("a")), 0u);
    EXPECT_EQ(tqsListAddNodeLast(port->ptServiceList, NewText("b")), 0u);
    ch->ptPort = port;
    all->insert({ch, port, port->pszPortNbr});
    return ch;
}

// Fills every field of a new record of the given shape. `kept` receives the
// blocks that the release must leave allocated.
void *NewFullRecord(const RecordShape &shape, std::set<void *> *kept, std::set<void *> *all) {
    void **record = static_cast<void **>(tqsMemAllocSetZero_debug(
        static_cast<uint32_t>(shape.fields.size() * sizeof(void *) + 1), kTestFile, __LINE__));
    all->insert(record);
    for (size_t i = 0; i < shape.fields.size(); ++i) {
        TqsList *list = nullptr;
        switch (shape.fields[i]) {
            case kStr:
                record[i] = NewText(shape.name);
                break;
            case kStrList:
                EXPECT_EQ(tqsListCreate(&list, NewText("x")), 0u);
                EXPECT_EQ(tqsListAddNodeLast(list, NewText("y")), 0u);
                record[i] = list;
                break;
            case kCharList:
                EXPECT_EQ(tqsListCreate(&list, NewPortCharacter(all)), 0u);
                record[i] = list;
                break;
        }
        all->insert(record[i]);
        if (shape.kept.count(i) != 0) kept->insert(record[i]);
    }
    return record;
}

std::set<void *> LiveAddresses(const MemCheck &mem) {
    std::set<void *> live;
    for (const LiveBlock &b : mem.Live()) live.insert(b.address);
    return live;
}

TEST(WapTreeRelease, EverySlotReleasesAllButTheKeptFields) {
    for (size_t slot = 0; slot < Shapes().size(); ++slot) {
        SCOPED_TRACE(Shapes()[slot].name);
        MemCheck mem;
        std::set<void *> kept, all;
        auto *ch = static_cast<tqsWapCharacter *>(
            tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kTestFile, __LINE__));
        void *record = NewFullRecord(Shapes()[slot], &kept, &all);
        reinterpret_cast<void **>(ch)[slot] = record;
        if (slot == kRoamingSlot) kept.insert(record);

        EXPECT_EQ(tqsClientProvWbxmlDeleteCharacter(ch), 1u);
        EXPECT_EQ(LiveAddresses(mem), kept);
        mem.FreeAll();
    }
}

TEST(WapTreeRelease, TypedRoutinesReleaseTheirRecord) {
    using Release = uint32_t (*)(void *);
    // Slot order; ROAMING has no release routine.
    const Release routines[] = {
        [](void *p) { return tqsClientProvWbxmlDeletePxlogical(static_cast<tqsWapPxLogical *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeletePxAuthInfo(static_cast<tqsWapPxAuthInfo *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeletePort(static_cast<tqsWapPort *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeletePxphysical(static_cast<tqsWapPxPhysical *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteNapDef(static_cast<tqsWapNapDef *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteNapAuthInfo(static_cast<tqsWapNapAuthInfo *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteValidity(static_cast<tqsWapValidity *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteAppAddr(static_cast<tqsWapAppAddr *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteResource(static_cast<tqsWapResource *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteAppAuth(static_cast<tqsWapAppAuth *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteApplication(static_cast<tqsWapApplication *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteBootstrap(static_cast<tqsWapBootstrap *>(p)); },
        [](void *p) { return tqsClientProvWbxmlDeleteVendorConfig(static_cast<tqsWapVendorConfig *>(p)); },
        [](void *p) {
            return tqsClientProvWbxmlDeleteClientIdentity(static_cast<tqsWapClientIdentity *>(p));
        },
        [](void *p) { return tqsClientProvWbxmlDeleteAccess(static_cast<tqsWapAccess *>(p)); },
        nullptr,
        [](void *p) { return tqsClientProvWbxmlDeleteWifi(static_cast<tqsWapWifi *>(p)); },
    };
    static_assert(sizeof routines / sizeof routines[0] == 17);
    for (size_t slot = 0; slot < 17; ++slot) {
        if (routines[slot] == nullptr) continue;
        SCOPED_TRACE(Shapes()[slot].name);
        EXPECT_EQ(routines[slot](nullptr), 0u);
        MemCheck mem;
        std::set<void *> kept, all;
        void *record = NewFullRecord(Shapes()[slot], &kept, &all);
        EXPECT_EQ(routines[slot](record), 1u);
        EXPECT_EQ(LiveAddresses(mem), kept);
        mem.FreeAll();
    }
}

TEST(WapTreeRelease, DocumentReleasesNestedCharacteristics) {
    EXPECT_EQ(tqsClientProvWbxmlDeleteWapDoc(nullptr), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDeleteCharacter(nullptr), 0u);

    MemCheck mem;
    std::set<void *> all;
    // PXLOGICAL > PXPHYSICAL > PORT with two SERVICE values, an empty
    // characteristic, and a null item (a content-less characteristic).
    auto *physical = static_cast<tqsWapPxPhysical *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapPxPhysical) + 1, kTestFile, __LINE__));
    ASSERT_EQ(tqsListCreate(&physical->ptCharacterList, NewPortCharacter(&all)), 0u);
    auto *physicalCh = static_cast<tqsWapCharacter *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kTestFile, __LINE__));
    physicalCh->ptPxPhysical = physical;
    auto *logical = static_cast<tqsWapPxLogical *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapPxLogical) + 1, kTestFile, __LINE__));
    logical->pszProxyId = NewText("P1");
    ASSERT_EQ(tqsListCreate(&logical->ptCharacterList, physicalCh), 0u);
    auto *logicalCh = static_cast<tqsWapCharacter *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kTestFile, __LINE__));
    logicalCh->ptPxLogical = logical;
    auto *emptyCh = static_cast<tqsWapCharacter *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kTestFile, __LINE__));
    auto *doc =
        static_cast<tqsWapDoc *>(tqsMemAllocSetZero_debug(sizeof(tqsWapDoc) + 1, kTestFile, __LINE__));
    ASSERT_EQ(tqsListCreate(&doc->ptCharacterList, logicalCh), 0u);
    ASSERT_EQ(tqsListAddNodeLast(doc->ptCharacterList, emptyCh), 0u);
    EXPECT_FALSE(mem.Live().empty());

    EXPECT_EQ(tqsClientProvWbxmlDeleteWapDoc(doc), 1u);
    EXPECT_TRUE(mem.Live().empty());
}

}  // namespace
