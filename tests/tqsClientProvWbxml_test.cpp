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
#include "wap_tree.h"

namespace {

const char kTestFile[] = "tests/tqsClientProvWbxml_test";

TEST(WbxmlDecoderRecord, InitCopiesTheBodyAndDeleteFreesEverything) {
    MemCheck mem;
    const unsigned char body[] = {0x03, 0x0B, 0x6A, 0x00, 0xFF};
    tqsWbxmlDecoder *ptDecoder = nullptr;
    ASSERT_EQ(tqsClientProvWbxmlInitDecoder(&ptDecoder, body, sizeof body), 0u);
    const SmlBuffer *ptBuf = ptDecoder->ptBuffer;
    EXPECT_EQ(ptBuf->nDataSize, sizeof body);
    EXPECT_EQ(ptBuf->pHead, ptBuf->pBase);
    // Sized for the body at once (no growth); zero behind the copy up to and including pEnd.
    EXPECT_EQ(ptBuf->nBufSize, sizeof body + 1);
    EXPECT_EQ(std::vector<unsigned char>(ptBuf->pHead, ptBuf->pEnd + 1),
              (std::vector<unsigned char>{0x03, 0x0B, 0x6A, 0x00, 0xFF, 0, 0}));
    EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(ptDecoder), 0u);
    EXPECT_TRUE(mem.Live().empty());
    EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(nullptr), 2u);

    TraceCapture trace;
    ptDecoder = reinterpret_cast<tqsWbxmlDecoder *>(&trace);
    EXPECT_EQ(tqsClientProvWbxmlInitDecoder(&ptDecoder, nullptr, 4), 2u);
    EXPECT_EQ(ptDecoder, nullptr);
    EXPECT_EQ(trace.lines(),
              (std::vector<std::string>{"tqsClientProvWbxmlInitDecoder\n",
                                        "[Error] [tqsClientProvWbxmlInitDecoder] ptTmp NULL\n"}));
}

// ---- Release -----------------------------------------------------------------
//
// Each record is filled completely (every string field, every list field with
// two items, every characteristic list with one nested PORT characteristic),
// then released; what stays allocated must be exactly the blocks kept on purpose.

char *NewText(const char *text) {
    auto size = static_cast<uint32_t>(strlen(text) + 1);
    return std::strcpy(static_cast<char *>(tqsMemAllocSetZero_debug(size, kTestFile, __LINE__)), text);
}

TqsList *NewList(void *first, void *second) {
    TqsList *list = nullptr;
    EXPECT_EQ(tqsListCreate(&list, first), 0u);
    if (second != nullptr) { EXPECT_EQ(tqsListAddNodeLast(list, second), 0u); }
    return list;
}

void *NewZeroed(size_t size) {
    return tqsMemAllocSetZero_debug(static_cast<uint32_t>(size + 1), kTestFile, __LINE__);
}

// A new record of the slot's layout with every field filled; `kept` receives
// the blocks that the release must leave allocated.
void *NewFullRecord(const waptree::Slot &slot, std::set<void *> *kept) {
    void **record = static_cast<void **>(NewZeroed(slot.fields.size() * sizeof(void *)));
    for (size_t i = 0; i < slot.fields.size(); ++i) {
        if (slot.fields[i].kind == waptree::Field::kList) {
            record[i] = NewList(NewText("x"), NewText("y"));
        } else if (slot.fields[i].kind == waptree::Field::kChars) {
            auto *ch = static_cast<tqsWapCharacter *>(NewZeroed(sizeof(tqsWapCharacter)));
            ch->ptPort = static_cast<tqsWapPort *>(NewZeroed(sizeof(tqsWapPort)));
            ch->ptPort->pszPortNbr = NewText("80");
            ch->ptPort->ptServiceList = NewList(NewText("a"), NewText("b"));
            record[i] = NewList(ch, nullptr);
        } else {
            record[i] = NewText(slot.type.c_str());
        }
        if (slot.fields[i].kept) kept->insert(record[i]);
    }
    if (slot.recordKept) kept->insert(record);
    return record;
}

std::set<void *> LiveAddresses(const MemCheck &mem) {
    std::set<void *> live;
    for (const LiveBlock &b : mem.Live()) live.insert(b.address);
    return live;
}

// Through the characteristic, which calls each slot's own routine (ROAMING has none).
TEST(WapTreeRelease, EverySlotReleasesAllButTheKeptBlocks) {
    EXPECT_EQ(tqsClientProvWbxmlDeleteCharacter(nullptr), 0u);
    for (size_t slot = 0; slot < waptree::Slots().size(); ++slot) {
        SCOPED_TRACE(waptree::Slots()[slot].type);
        MemCheck mem;
        std::set<void *> kept;
        auto *ch = static_cast<tqsWapCharacter *>(NewZeroed(sizeof(tqsWapCharacter)));
        reinterpret_cast<void **>(ch)[slot] = NewFullRecord(waptree::Slots()[slot], &kept);
        EXPECT_EQ(tqsClientProvWbxmlDeleteCharacter(ch), 1u);
        EXPECT_EQ(LiveAddresses(mem), kept);
        mem.FreeAll();
    }
    // Called alone, a routine tells whether there was a record (APPADDR's has code of its own).
    EXPECT_EQ(tqsClientProvWbxmlDeleteAppAddr(nullptr), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDeleteWifi(nullptr), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDeleteAppAddr(static_cast<tqsWapAppAddr *>(NewZeroed(sizeof(tqsWapAppAddr)))),
              1u);
    EXPECT_EQ(tqsClientProvWbxmlDeleteWifi(static_cast<tqsWapWifi *>(NewZeroed(sizeof(tqsWapWifi)))), 1u);
}

}  // namespace
