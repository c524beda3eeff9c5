// The WBXML provisioning decoder: byte and token readers, header and string
// table, value tokens, characteristics, parm handlers, and the corpus.
#include "tqsClientProvWbxmlDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "corpus.h"
#include "mem_check.h"
#include "smlbuffer.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "trace_capture.h"
#include "wap_tree.h"
#include "wbxml_builder.h"

namespace {

namespace prov = wbxml::prov;
using Bytes = std::vector<uint8_t>;

const char kDecoderUnit[] = "jni/src/ClientProv/tqsClientProvWbxmlDecoder";

// Blocks the release leaves on purpose, found in a tree.
void KeptBlocks(const TqsList *list, std::set<void *> *kept) {
    for (TqsListNode *n = list != nullptr ? list->ptHead : nullptr; n != nullptr; n = n->ptNext) {
        auto *ch = static_cast<tqsWapCharacter *>(n->pItem);
        if (ch == nullptr) continue;
        if (ch->ptRoaming != nullptr)
            kept->insert({ch->ptRoaming, ch->ptRoaming->pszSyncAllowed, ch->ptRoaming->pszSyncDefault});
        if (ch->ptApplication != nullptr) {
            tqsWapApplication *a = ch->ptApplication;
            kept->insert({a->pszFrom, a->pszXcapAuidDcs, a->pszXcapAuidPms, a->pszXcapAuidCdms,
                          a->pszXcapImeiHeader, a->pszXcapTidHeader});
            KeptBlocks(a->ptCharacterList, kept);
        }
        if (ch->ptVendorConfig != nullptr)
            kept->insert({ch->ptVendorConfig->pszParmName, ch->ptVendorConfig->pszParmValue});
        if (ch->ptPxLogical != nullptr) KeptBlocks(ch->ptPxLogical->ptCharacterList, kept);
        if (ch->ptPxPhysical != nullptr) KeptBlocks(ch->ptPxPhysical->ptCharacterList, kept);
        if (ch->ptNapDef != nullptr) KeptBlocks(ch->ptNapDef->ptCharacterList, kept);
        if (ch->ptAppAddr != nullptr) KeptBlocks(ch->ptAppAddr->ptCharacterList, kept);
    }
    kept->erase(nullptr);
}

// Every test tracks the library's blocks; what a failing decode leaves behind
// by design is freed at the end so the sanitizer's leak check stays quiet.
class Decoder : public ::testing::Test {
   protected:
    ~Decoder() override {
        for (tqsWapDoc *doc : docs_) tqsClientProvWbxmlDeleteWapDoc(doc);
        if (dec_ != nullptr) tqsClientProvWbxmlDeleteDecoder(dec_);
        mem_.FreeAll();
    }

    // A decoder over raw bytes (no WBXML header is read).
    tqsWbxmlDecoder *Open(const Bytes &bytes) {
        static const unsigned char kEmpty[1] = {0};
        if (dec_ != nullptr) tqsClientProvWbxmlDeleteDecoder(dec_);
        dec_ = nullptr;
        EXPECT_EQ(tqsClientProvWbxmlInitDecoder(&dec_, bytes.empty() ? kEmpty : bytes.data(),
                                                static_cast<uint32_t>(bytes.size())),
                  0u);
        return dec_;
    }

    // The whole decode of a body (header included).
    TqsResult Decode(const Bytes &body, tqsWapDoc **doc) {
        Open(body);
        *doc = nullptr;
        TqsResult ret = tqsClientProvWbxmlDecoder(dec_, doc);
        if (*doc != nullptr) docs_.push_back(*doc);
        return ret;
    }

    // Decodes a built document and returns its tree as rendered text; the tree
    // and the decoder are then released. After a successful decode what stays
    // allocated must be the kept fields plus `leftovers` blocks that the
    // decoding drops on purpose; a failing decode leaves its unlinked records.
    std::string Tree(const wbxml::Builder &b, TqsResult expect = 0, size_t leftovers = 0) {
        tqsWapDoc *doc = nullptr;
        EXPECT_EQ(Decode(b.Build(), &doc), expect);
        std::string text = waptree::Render(waptree::FromTree(doc));
        std::set<void *> kept;
        if (doc != nullptr) KeptBlocks(doc->ptCharacterList, &kept);
        docs_.erase(std::remove(docs_.begin(), docs_.end(), doc), docs_.end());
        tqsClientProvWbxmlDeleteWapDoc(doc);
        tqsClientProvWbxmlDeleteDecoder(dec_);
        dec_ = nullptr;
        if (expect == 0) {
            size_t left = 0;
            for (const LiveBlock &block : mem_.Live()) left += kept.count(block.address) == 0 ? 1 : 0;
            EXPECT_EQ(left, leftovers) << text;
        }
        mem_.FreeAll();
        return text;
    }

    uint32_t Consumed() const { return tqsClientProvWbxmlDecoderDecodingSize(dec_); }

    MemCheck mem_;
    tqsWbxmlDecoder *dec_ = nullptr;
    std::vector<tqsWapDoc *> docs_;
};

std::string Text(const char *p) {
    return p != nullptr ? std::string(p) : std::string("(null)");
}

// ---- Byte level ------------------------------------------------------------

TEST_F(Decoder, MultiByteIntegers) {
    const struct {
        Bytes bytes;
        int ok;
        uint32_t value;
        uint32_t consumed;
    } cases[] = {
        {{0x00}, 1, 0, 1},
        {{0x81, 0x00, 0x7F}, 1, 0x80, 2},
        {{0x8F, 0xFF, 0xFF, 0xFF, 0x7F}, 1, 0xFFFFFFFF, 5},
        {{0x9F, 0xFF, 0xFF, 0xFF, 0x7F}, 1, 0xFFFFFFFF, 5},    // bits above 32 are lost
        {{0x81, 0x80, 0x80, 0x80, 0x80, 0x00}, 0, 0x1234, 5},  // five continuation bytes
        {{0x81}, 0, 0x1234, 1},                                // cut off
        {{}, 0, 0x1234, 0},
    };
    for (const auto &c : cases) {
        Open(c.bytes);
        uint32_t value = 0x1234;
        EXPECT_EQ(tqsClientProvWbxmlDecoderBufferReadUint32(dec_, &value), c.ok);
        EXPECT_EQ(value, c.value);
        EXPECT_EQ(Consumed(), c.consumed);
    }
    // The byte reader stops at the end of the body and leaves its output alone.
    Open({0xAB});
    unsigned char b = 0;
    EXPECT_EQ(tqsClientProvWbxmlDecoderBufferReadByte(dec_, &b), 1);
    EXPECT_EQ(tqsClientProvWbxmlDecoderBufferReadByte(dec_, &b), 0);
    EXPECT_EQ(b, 0xAB);
}

// ---- Header, public identifier, string table ------------------------------

TEST_F(Decoder, PublicIdentifierCheck) {
    Bytes literalAtOffset = wbxml::Builder().PublicId(0).Build();
    const struct {
        const char *name;
        Bytes body;
        TqsResult status;
    } cases[] = {
        {"empty body", {}, 0x100B},
        {"version only", {0x03}, 0x100B},
        {"public id 0x0B", {0x03, 0x0B, 0x6A, 0x00, 0x45, 0x01}, 0},
        {"public id 1", {0x03, 0x01, 0x6A, 0x00, 0x45, 0x01}, 0x100B},
        {"public id 0, empty table", {0x03, 0x00, 0x00, 0x6A, 0x00, 0x45, 0x01}, 0x100B},
        {"literal id first in the table", wbxml::Builder().LiteralPublicId().Doc().End().Build(), 0},
        {"literal id at offset 2",
         [] {
             wbxml::Builder b;
             b.TableString("x");
             return b.LiteralPublicId().Doc().End().Build();
         }(),
         0x100B},
        {"literal id, header cut in the table", {0x03, 0x00, 0x00, 0x6A, 0x20, '-', '/', '/'}, 0x100B},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        tqsWapDoc *doc = nullptr;
        EXPECT_EQ(Decode(c.body, &doc), c.status);
    }
    // Cut inside the table: the length is recorded as the failure value and the part read is kept.
    EXPECT_EQ(dec_->nStrSize, 0xFFFFFFFFu);
    ASSERT_NE(dec_->pStringTable, nullptr);
    EXPECT_STREQ(reinterpret_cast<char *>(dec_->pStringTable), "-//");
}

TEST_F(Decoder, HeaderTraceAndMismatchLines) {
    TraceCapture trace;
    tqsWapDoc *doc = nullptr;
    EXPECT_EQ(Decode({0x02, 0x01, 0x04, 0x00}, &doc), 0x100Bu);
    EXPECT_EQ(doc, nullptr);
    EXPECT_EQ(trace.lines(), (std::vector<std::string>{
                                 "tqsClientProvWbxmlInitDecoder\n",
                                 "tqsClientProvWbxmlDecoder\n",
                                 "tqsClientProvWbxmlDecoderWbxmlHeader\n",
                                 "[tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion [0x2]\n",
                                 "[tqsClientProvWbxmlDecoderWbxmlHeader] pnPublicid [0x1]\n",
                                 "[tqsClientProvWbxmlDecoderWbxmlHeader] pnCharset [0x4]\n",
                                 "[tqsClientProvWbxmlDecoderWbxmlHeader] ptWbxmlDecoder->nStrSize [0x0]\n",
                                 "nPublicid[1], Avaliable Id:11\n\n",
                                 "ERROR : tqsClientProvWbxmlDecoder Difference Ver!!\n\n",
                                 "[Syncml] ERROR : DM = fffff00b\n",
                             }));
    trace.Clear();
    EXPECT_EQ(Decode({}, &doc), 0x100Bu);
    EXPECT_EQ(trace.lines(), (std::vector<std::string>{
                                 "tqsClientProvWbxmlInitDecoder\n",
                                 "tqsClientProvWbxmlDecoder\n",
                                 "tqsClientProvWbxmlDecoderWbxmlHeader\n",
                                 "[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion\n",
                                 "ERROR : tqsClientProvWbxmlDecoder Difference Ver!!\n\n",
                                 "[Syncml] ERROR : DM = fffff00b\n",
                             }));
    trace.Clear();
    wbxml::Builder b;
    b.TableString("abc");
    EXPECT_EQ(Decode(b.PublicId(0).Build(), &doc), 0x100Bu);
    EXPECT_TRUE(trace.Contains("ptWbxmlDecoder->pStringTable[abc]\n\n")) << trace.Joined();
}

TEST_F(Decoder, NoDecoderOrNoBuffer) {
    tqsWapDoc *doc = reinterpret_cast<tqsWapDoc *>(this);
    EXPECT_EQ(tqsClientProvWbxmlDecoder(nullptr, &doc), 2u);
    EXPECT_EQ(doc, nullptr);
    tqsWbxmlDecoder bare{};
    EXPECT_EQ(tqsClientProvWbxmlDecoder(&bare, &doc), 2u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderWbxmlBody(&bare, &doc), 0x100Au);
}

TEST_F(Decoder, StringTableReferences) {
    // Table "ab\0cd\0": index 3 is "cd"; index 5 (the last zero) is empty;
    // 6 is beyond the bound nStrSize - 1.
    Open({0x06, 'a', 'b', 0, 'c', 'd', 0, 0x03, 0x05, 0x06});
    ASSERT_EQ(tqsClientProvWbxmlDecoderMakeStrTable(dec_, &dec_->pStringTable), 6u);
    dec_->nStrSize = 6;
    char *text = nullptr;
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrTable(dec_, &text), 1);
    EXPECT_EQ(Text(text), "cd");
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrTable(dec_, &text), 1);
    EXPECT_EQ(Text(text), "cd");
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrTable(dec_, &text), 0);
    EXPECT_EQ(Text(text), "cd");
    tqsMemFree_debug(text);
}

TEST_F(Decoder, HugeStringTableLengthIsBoundedByTheBody) {
    // A declared length near 4 GiB would wrap length + 2; the table is sized
    // by what the body has and the read fails as specified.
    Open({0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 'b'});
    unsigned char *table = nullptr;
    EXPECT_EQ(tqsClientProvWbxmlDecoderMakeStrTable(dec_, &table), 0xFFFFFFFFu);
    ASSERT_NE(table, nullptr);
    EXPECT_STREQ(reinterpret_cast<char *>(table), "ab");
    EXPECT_EQ(dec_->nStrTableBytes, 4u);
    dec_->pStringTable = table;
}

TEST_F(Decoder, CodePageSwitch) {
    const struct {
        Bytes bytes;
        TqsResult status;
        uint8_t page;
        const char *line;
    } cases[] = {
        {{0x00, 0x01}, 0, 1, "TQS_WBXML_TAG_SWITCH_PAGE1\n"},
        {{0x00, 0x41}, 0, 1, "TQS_WBXML_TAG_SWITCH_PAGE1\n"},  // the page byte is masked
        {{0x00, 0x00}, 0, 0, "TQS_WBXML_TAG_SWITCH_PAGE0\n"},
        {{0x00, 0x02}, 0x1005, 7, "ERROR::TQS_CODE_PAGE_UNKNOWN\n"},
        {{0x00}, 0x1005, 7, nullptr},
    };
    for (const auto &c : cases) {
        Open(c.bytes);
        dec_->nCodePage = 7;
        if (c.page == 0) dec_->nCodePage = 1;
        TraceCapture trace;
        EXPECT_EQ(tqsClientProvWbxmlDecoderCheckCodePage(dec_), c.status);
        EXPECT_EQ(dec_->nCodePage, c.page);
        EXPECT_EQ(trace.lines().front(), "tqsClientProvWbxmlDecoderCheckCodePage\n");
        if (c.line != nullptr) EXPECT_EQ(trace.lines().back(), c.line);
    }
}

// ---- Token machinery -------------------------------------------------------

TEST_F(Decoder, ElementReadersSplitTheTagByte) {
    Open({0xC6, 0x47});
    uint8_t id = 0;
    EXPECT_EQ(tqsClientProvWbxmlDecoderCurElement(dec_, &id), 0u);
    EXPECT_EQ(id, 0x06);
    EXPECT_EQ(tqsClientProvWbxmlDecoderCurElementNotAND(dec_, &id), 0u);
    EXPECT_EQ(id, 0xC6);
    EXPECT_EQ(Consumed(), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0u);
    EXPECT_EQ(id, 0x06);
    EXPECT_EQ(dec_->bHasContent, 1);
    EXPECT_EQ(dec_->bHasAttribute, 1);
    EXPECT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0u);
    EXPECT_EQ(id, 0x07);
    EXPECT_EQ(dec_->bHasContent, 1);
    EXPECT_EQ(dec_->bHasAttribute, 0);
    EXPECT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0x1007u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderCurElement(dec_, &id), 0x1007u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderCurAttr(dec_, &id), 0x1007u);
}

TEST_F(Decoder, CheckElementTakesTheEndOfAnEmptyTag) {
    Open({0x06, 0x01, 0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(dec_, 0x06), 0u);
    EXPECT_EQ(Consumed(), 2u);
    Open({0x86, 0x41});  // any byte whose low bits are 0x01
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(dec_, 0x06), 0u);
    EXPECT_EQ(Consumed(), 2u);
    Open({0x46, 0x01});  // with content: the END is not taken
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(dec_, 0x06), 0u);
    EXPECT_EQ(Consumed(), 1u);
    Open({0x07, 0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(dec_, 0x06), 0x1005u);
    EXPECT_EQ(Consumed(), 1u);
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(nullptr, 0x06), 1u);
    EXPECT_EQ(trace.lines(), std::vector<std::string>{
                                 "[Error] [tqsClientProvWbxmlDecoderCheckElement] ptWbxmlDecoder NULL\n"});
}

TEST_F(Decoder, CheckAttr) {
    Open({0x07});
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckAttr(dec_, 0x06), 0x1005u);
    EXPECT_EQ(Consumed(), 1u);
    EXPECT_EQ(trace.lines(),
              (std::vector<std::string>{"tqsClientProvWbxmlDecoderCheckAttr\n", "nId:6, nTemp:7\n"}));
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckAttr(dec_, 0x06), 0x1007u);
}

// Content reads a run of string pieces and value tokens up to the END (left
// unread). With a table the body starts with it.
TEST_F(Decoder, Content) {
    wbxml::Builder pieces;
    pieces.StrI("abc").StrT(4).Byte(0x85).End();
    Bytes joined = {0x08, 'x', 'y', 'z', 0, 'T', 'a', 'b', 0};
    joined.insert(joined.end(), pieces.Body().begin(), pieces.Body().end());
    const uint32_t kAny = 0xFFFFFFFF;
    const struct {
        const char *name;
        bool table;
        Bytes bytes;
        TqsResult status;
        const char *text;
        uint32_t consumed;
    } cases[] = {
        {"STR_I, STR_T and a token joined", true, joined, 0, "abcTabIPV4", uint32_t(joined.size() - 1)},
        // nStrSize 0: the bound wraps, any index gives an empty text, nothing read outside the table.
        {"empty table, huge index", true, {0x00, 0x83, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0x01}, 0, "", 7},
        {"stops before the value attribute",
         false,
         {0x03, 'I', 'N', 'I', 'T', 0, 0x06, 0x03, 'v', 0},
         0,
         "INIT",
         6},
        {"unterminated, no END", false, {0x03, 'a', 'b'}, 0x1007, "ab", kAny},
        {"known token alone", false, {0x85}, 0, "IPV4", kAny},
        {"unknown token: one raw byte", false, {0xE0}, 0, "\xE0", kAny},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Open(c.bytes);
        if (c.table) dec_->nStrSize = tqsClientProvWbxmlDecoderMakeStrTable(dec_, &dec_->pStringTable);
        char *text = nullptr;
        EXPECT_EQ(tqsClientProvWbxmlDecoderContent(dec_, &text), c.status);
        EXPECT_EQ(Text(text), c.text);
        if (c.consumed != kAny) EXPECT_EQ(Consumed(), c.consumed);
        tqsMemFree_debug(text);
    }
    // The inline string reader alone: an unterminated text ends at the padding.
    Open({0x03, 'a', 'b'});
    uint8_t id;
    char *text = nullptr;
    ASSERT_EQ(tqsClientProvWbxmlDecoderReadAttr(dec_, &id), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStr(dec_, &text), 1);
    EXPECT_EQ(Text(text), "ab");
    EXPECT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0x1007u);
    tqsMemFree_debug(text);
}

TEST_F(Decoder, OpaqueLongerThanTheBody) {
    // Declares 200 bytes, has 2: the two are copied, the block is small, and
    // the next read fails.
    Open({0xC3, 0x81, 0x48, 'h', 'i'});
    char *text = nullptr;
    EXPECT_EQ(tqsClientProvWbxmlDecoderContent(dec_, &text), 0u);
    EXPECT_EQ(Text(text), "hi");
    bool found = false;
    for (const LiveBlock &b : mem_.Live()) {
        if (b.address == text) {
            found = true;
            EXPECT_EQ(b.size, 4u);  // remaining body + 2
        }
    }
    EXPECT_TRUE(found);
    uint8_t id;
    EXPECT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0x1007u);
    tqsMemFree_debug(text);

    Open({0xC3, 0x02, 'a', 0, 0x01});  // embedded zero: the text ends there
    uint32_t length = 0;
    uint8_t token;
    ASSERT_EQ(tqsClientProvWbxmlDecoderReadAttr(dec_, &token), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrExtension(dec_, token, &text, &length), 1);
    EXPECT_EQ(length, 2u);
    EXPECT_EQ(Text(text), "a");
    EXPECT_EQ(Consumed(), 4u);
    tqsMemFree_debug(text);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrExtension(dec_, 0x03, &text, &length),
              1);  // not OPAQUE: nothing
    EXPECT_EQ(Consumed(), 4u);
}

TEST_F(Decoder, ContentOfAnElementIsSkipped) {
    char *text = nullptr;
    // Below 0x80 and not a string: warning, then a skip to the END at depth 0.
    Open({0x87, 0x45, 0x11, 0x01, 0x01, 0x01});
    uint8_t id;
    ASSERT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0u);
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvWbxmlDecoderContent(dec_, &text), 0u);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(Consumed(), 4u);  // on the second END
    EXPECT_TRUE(trace.Contains("WARNING!!!!!!!! Not Support Type Numberic nTag=[87]\n")) << trace.Joined();
    EXPECT_EQ(trace.lines().back(), "tqsClientProvWbxmlDecoderContent Error:0\n");
}

TEST_F(Decoder, SkipElement) {
    const struct {
        Bytes bytes;
        TqsResult status;
        uint32_t consumed;
    } cases[] = {
        {{0x46, 0x03, 'a', 0, 0x01, 0x01}, 0, 4},            // a string inside, stops on the closing END
        {{0x46, 0x00, 0x01, 0x47, 0x01, 0x01, 0x01}, 0, 5},  // page switches are stepped over
        {{0x01, 0x46, 0x01}, 0x1007, 3},                     // END at depth 0: runs to the end of input
        {{0x46, 0x83}, 0x1007, 2},                           // a failing string read
    };
    for (const auto &c : cases) {
        Open(c.bytes);
        TraceCapture trace;
        EXPECT_EQ(tqsClientProvWbxmlDecoderSkipElement(dec_, 0), c.status);
        EXPECT_EQ(Consumed(), c.consumed);
        EXPECT_EQ(trace.lines().back(),
                  "tqsClientProvWbxmlDecoderSkipElement Error Code:" + std::to_string(c.status) + "\n");
    }
}

TEST_F(Decoder, SkipAttributeAndElement) {
    Open({0x45, 0x03, '1', 0, 0x01, 0x99});
    EXPECT_EQ(tqsClientProvWbxmlDecoderSkipAttribute(dec_), 0u);
    EXPECT_EQ(Consumed(), 5u);
    Open({0x12, 0x80, 0x04});
    EXPECT_EQ(tqsClientProvWbxmlDecoderSkipAttribute(dec_), 0u);
    EXPECT_EQ(Consumed(), 2u);
    Open({0x12});
    EXPECT_EQ(tqsClientProvWbxmlDecoderSkipAttribute(dec_), 0x1007u);

    char *text = nullptr;
    Open({0x47, 0x03, 'v', 0, 0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderElement(dec_, 0x07, &text), 0u);
    EXPECT_EQ(Text(text), "v");
    tqsMemFree_debug(text);
    text = nullptr;
    Open({0x47, 0x03, 'v', 0, 0x06});
    EXPECT_EQ(tqsClientProvWbxmlDecoderElement(dec_, 0x07, &text), 0x1005u);
    tqsMemFree_debug(text);
    text = nullptr;
    Open({0x07, 0x99});
    EXPECT_EQ(tqsClientProvWbxmlDecoderElement(dec_, 0x07, &text), 0u);
    EXPECT_EQ(text, nullptr);
}

TEST_F(Decoder, CommaAdd) {
    const struct {
        Bytes bytes;
        const char *start;
        TqsResult status;
        const char *result;
    } cases[] = {
        {{0x90, 0x03, 'B', 0, 0x01}, "A", 0, "A,B"},
        {{0x90, 0x92, 0x01}, "HTTP", 0, "HTTP,BASIC"},               // the token's own rule adds the comma
        {{0x90, 0x85, 0x01}, "A", 0, "AIPV4"},                       // address types join without one
        {{0x90, 0x00, 0x01, 0x93, 0x01}, "HTTP", 0, "HTTP,DIGEST"},  // a page switch first
        {{0x90, 0x77, 0x01}, "A", 0, "A"},                           // unknown byte: unchanged, skipped
        {{0x90, 0x03, 'B', 0, 0x01}, nullptr, 0, ",B"},              // no first value
        {{0x90}, "A", 0x1007, "A"},
    };
    for (const auto &c : cases) {
        Open(c.bytes);
        char *text = nullptr;
        if (c.start != nullptr) {
            text = static_cast<char *>(
                tqsMemAllocSetZero_debug(static_cast<uint32_t>(strlen(c.start) + 1), "t", 1));
            std::strcpy(text, c.start);
        }
        EXPECT_EQ(tqsCommaAdd(dec_, &text), c.status);
        EXPECT_EQ(Text(text), c.result);
        tqsMemFree_debug(text);
    }
}

// ---- Value tokens ------------------------------------------------------------

TEST(ValueTokens, LookupTablesWithTheirScanBoundsAndShadowing) {
    MemCheck mem;
    const std::map<uint8_t, const char *> known = {
        {0x85, "IPV4"},
        {0x86, "IPV6"},
        {0x87, "E164"},
        {0x88, "ALPHA"},
        {0x89, "APN"},
        {0x8A, "SCODE"},
        {0x8B, "TETRA-ITSI"},
        {0x8C, "MAN"},
        {0x9A, "PAP"},
        {0x9B, "CHAP"},
        {0x9C, "HTTP-BASIC"},
        {0x9D, "HTTP-DIGEST"},
        {0x9E, "WTLS_SS"},
        {0x9F, "MD5"},
        {0x91, "HTTP"},    // table C position 0 wins over table D position 1 and table B position 6
        {0x92, "BASIC"},   // never "V.110"
        {0x93, "DIGEST"},  // never "X.31"
        {0x90, "ANALOG-MODEM"},
        {0x94, "BIT-TRANSPARENT"},
        {0x95, "DIRECT-ASYNCHRONOUS-DATA-SERVICE"},
        {0xCA, "CL-WSP"},
    };
    for (int token = 0; token < 256; ++token) {
        char *value = nullptr;
        auto it = known.find(static_cast<uint8_t>(token));
        TqsResult ret = tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<uint8_t>(token), &value);
        if (it == known.end()) {
            EXPECT_EQ(ret, 0x1005u) << token;  // 0xCB.., 0x8D, 0x8E and 0x93-in-A lie beyond the scan
            EXPECT_EQ(value, nullptr) << token;
        } else {
            EXPECT_EQ(ret, 0u) << token;
            EXPECT_EQ(Text(value), it->second) << token;
        }
        tqsMemFree_debug(value);
    }
    EXPECT_TRUE(mem.Live().empty());
}

TEST(ValueTokens, JoiningRules) {
    MemCheck mem;
    struct Case {
        uint8_t token;
        const char *visible;
        const char *hidden;  // text behind the terminating zero, for call types
    };
    const Case cases[] = {
        {0x86, "abIPV6", nullptr},
        {0x9B, "ab,CHAP", nullptr},
        {0x92, "ab,BASIC", nullptr},
        {0x94, "ab", "BIT-TRANSPARENT"},
    };
    for (const Case &c : cases) {
        char *value = static_cast<char *>(tqsMemAllocSetZero_debug(3, "t", 1));
        std::strcpy(value, "ab");
        EXPECT_EQ(tqsClientProvWbxmlDecoderGetParamTokenVal(c.token, &value), 0u);
        EXPECT_EQ(Text(value), c.visible);
        if (c.hidden != nullptr) EXPECT_STREQ(value + 3, c.hidden);
        tqsMemFree_debug(value);
    }
    EXPECT_TRUE(mem.Live().empty());
}

// ---- Documents built by hand -------------------------------------------------

TEST_F(Decoder, ProxyWithTwoParms) {
    wbxml::Builder b;
    b.Doc()
        .Characteristic(prov::kPxLogical)
        .Parm(prov::kProxyId, "P1")
        .Parm(prov::kName, "Proxy")
        .End()
        .End();
    EXPECT_EQ(Tree(b), "PXLOGICAL\n  NAME=Proxy\n  PROXY-ID=P1\n");
}

TEST_F(Decoder, BodyStartVariants) {
    tqsWapDoc *doc = nullptr;
    // First byte END: success without a tree.
    EXPECT_EQ(Decode(wbxml::Builder().End().Build(), &doc), 0u);
    EXPECT_EQ(doc, nullptr);
    // No document element: a top-level run of characteristics.
    wbxml::Builder run;
    run.Characteristic(prov::kBootstrap).Parm(prov::kName, "B").End().Characteristic(prov::kPort).End().End();
    EXPECT_EQ(Tree(run), "BOOTSTRAP\n  NAME=B\nPORT\n");
    // SWITCH_PAGE or a parm first: an empty tree.
    EXPECT_EQ(Decode(wbxml::Builder().SwitchPage(1).Build(), &doc), 0u);
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->ptCharacterList, nullptr);
    EXPECT_EQ(Decode(wbxml::Builder().Parm(prov::kName, "x").Build(), &doc), 0u);
    ASSERT_NE(doc, nullptr);
    // Anything else is refused.
    TraceCapture trace;
    EXPECT_EQ(Decode(wbxml::Builder().StrI("x").Build(), &doc), 0x1005u);
    EXPECT_EQ(doc, nullptr);
    EXPECT_TRUE(trace.Contains("Unknown Element[3]\n"));
    EXPECT_TRUE(trace.Contains("WBXML Decode Error[3]\n"));
    // Document element without content.
    EXPECT_EQ(Decode(wbxml::Builder().Tag(prov::kTagWapProvisioningDoc, false, false).Build(), &doc), 0u);
    ASSERT_NE(doc, nullptr);
    EXPECT_EQ(doc->ptCharacterList, nullptr);
}

TEST_F(Decoder, DocumentVersionAttribute) {
    wbxml::Builder v10;
    v10.DocVersion10().Characteristic(prov::kPort).End().End();
    EXPECT_EQ(Tree(v10), "PORT\n");
    wbxml::Builder v11;
    v11.Tag(prov::kTagWapProvisioningDoc, true, true).Byte(prov::kVersion).StrI("1.1").End();
    v11.Characteristic(prov::kPort).End().End();
    EXPECT_EQ(Tree(v11), "PORT\n");
    // STR_I, a switch and END between characteristics of the document.
    wbxml::Builder mixed;
    mixed.Doc().StrI("junk").SwitchPage(0).Characteristic(prov::kPort).End().End();
    EXPECT_EQ(Tree(mixed), "PORT\n");

    TraceCapture trace;
    wbxml::Builder bad;
    bad.Tag(prov::kTagWapProvisioningDoc, true, true).Bytes({0x47, 0x01}).End();
    EXPECT_EQ(Tree(bad, 0x1005), "");
    EXPECT_TRUE(trace.Contains("[Error] [tqsClientProvWbxmlDecoderCheckAttrVersion] nId [0x47]\n"))
        << trace.Joined();
    trace.Clear();
    wbxml::Builder badNext;
    badNext.Tag(prov::kTagWapProvisioningDoc, true, true).Bytes({0x46, 0x50, 0x01}).End();
    EXPECT_EQ(Tree(badNext, 0x1005), "");
    EXPECT_TRUE(trace.Contains("tqsClientProvWbxmlDecoderAttributeWapDocVersion[10]\n")) << trace.Joined();
}

TEST_F(Decoder, ParmDirectlyInTheDocumentIsRefused) {
    // The loop that would never consume it ends the decode instead.
    TraceCapture trace;
    wbxml::Builder b;
    b.Doc().Parm(prov::kName, "x").End();
    EXPECT_EQ(Tree(b, 0x1005), "");
    EXPECT_TRUE(trace.Contains("Tag Code [7] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n\n")) << trace.Joined();
}

TEST_F(Decoder, TypeAttributesAndCodePages) {
    wbxml::Builder all;
    all.Doc();
    for (prov::Token t :
         {prov::kPxLogical, prov::kPxPhysical, prov::kPort, prov::kValidity, prov::kNapDef, prov::kBootstrap,
          prov::kVendorConfig, prov::kClientIdentity, prov::kPxAuthInfo, prov::kNapAuthInfo, prov::kAccess,
          prov::kApplication, prov::kAppAddr, prov::kAppAuth, prov::kResource})
        all.Characteristic(t).End();
    EXPECT_EQ(Tree(all.End()),
              "PXLOGICAL\nPXPHYSICAL\nPORT\nVALIDITY\nNAPDEF\nBOOTSTRAP\nVENDORCONFIG\nCLIENTIDENTITY\n"
              "PXAUTHINFO\nNAPAUTHINFO\nACCESS\nAPPLICATION\nAPPADDR\nAPPAUTH\nRESOURCE\n");
    // Page-0 types are taken on page 1 as well.
    wbxml::Builder page1;
    page1.Doc().Characteristic(prov::kApplication).End().Characteristic({0x51, 1}).End();
    page1.Characteristic(prov::kApplication).End().End();  // page 1 is still current
    EXPECT_EQ(Tree(page1), "APPLICATION\nPXLOGICAL\nAPPLICATION\n");
    // A type token repeated: the second record replaces the first.
    TraceCapture trace;
    wbxml::Builder twice;
    twice.Doc().Tag(prov::kTagCharacteristic, true, true).Bytes({0x51, 0x51, 0x01});
    twice.Parm(prov::kName, "n").End().End();
    EXPECT_EQ(Tree(twice, 0, 1), "PXLOGICAL\n  NAME=n\n");  // the first record is lost
    EXPECT_EQ(trace.Count("tqsClientProvWbxmlDecoderCharacterAttribute : ERROR!!!\n"), 1u);
    // Unknown attribute byte.
    trace.Clear();
    wbxml::Builder unknown;
    unknown.Doc().Tag(prov::kTagCharacteristic, true, true).Bytes({0x5C, 0x01}).End().End();
    EXPECT_EQ(Tree(unknown, 0x1005), "");
    EXPECT_TRUE(trace.Contains("tqsClientProvWbxmlDecoderCharacterAttribute[5c]\n"));
}

TEST_F(Decoder, SwitchPageAfterTheTypeLeavesItUntyped) {
    // Every attribute byte is taken as the type token, SWITCH_PAGE included:
    // the NAPDEF record exists, but its parms find no handler.
    wbxml::Builder b;
    b.Doc().Tag(prov::kTagCharacteristic, true, true).Bytes({0x55, 0x00, 0x01, 0x01});
    b.Parm(prov::kName, "x").End().End();
    tqsWapDoc *doc = nullptr;
    EXPECT_EQ(Decode(b.Build(), &doc), 0x1005u);
    EXPECT_EQ(dec_->nCodePage, 1);
}

TEST_F(Decoder, NestingRules) {
    wbxml::Builder ok;
    ok.Doc().Characteristic(prov::kPxLogical).Parm(prov::kProxyId, "P");
    ok.Characteristic(prov::kPxPhysical).Parm(prov::kPxAddr, "1.2.3.4");
    ok.Characteristic(prov::kPort).Parm(prov::kService, "a").Parm(prov::kService, "b").End();
    ok.End().End().End();
    EXPECT_EQ(Tree(ok),
              "PXLOGICAL\n  PROXY-ID=P\n  PXPHYSICAL\n    PXADDR=1.2.3.4\n    PORT\n      SERVICE=a\n      "
              "SERVICE=b\n");

    struct Refusal {
        prov::Token parent;
        const char *line;
    };
    const Refusal refusals[] = {
        {prov::kPort, "BOOTSTRAP is Not Support Chiled PORT.\n"},
        {prov::kValidity, "BOOTSTRAP is Not Support Chiled PORT.\n"},
        {prov::kNapAuthInfo, "BOOTSTRAP is Not Support Chiled PORT.\n"},
        {prov::kBootstrap, "BOOTSTRAP is Not Support Chiled CHARACTER.\n"},
        {prov::kVendorConfig, "VENDORCONFIG is Not Support Chiled CHARACTER.\n"},
        {prov::kAppAuth, "APPAUTH is Not Support Chiled CHARACTER.\n"},
        {prov::kClientIdentity, "BOOTSTRAP is Not Support Chiled CLIENTIDENTITY.\n"},
        {prov::kPxAuthInfo, "RESOURCE is Not Support Chiled CHARACTER.\n"},
        {prov::kResource, "RESOURCE is Not Support Chiled CHARACTER.\n"},
        {prov::kAccess, "BOOTSTRAP is Not Support Chiled ACCESS.\n"},
    };
    for (const Refusal &r : refusals) {
        TraceCapture trace;
        wbxml::Builder b;
        b.Doc().Characteristic(r.parent).Characteristic(prov::kPort).End().End().End();
        EXPECT_EQ(Tree(b, 0x1005), "");
        EXPECT_TRUE(trace.Contains(r.line)) << r.line;
    }
    // Parms after a nested characteristic are refused.
    wbxml::Builder late;
    late.Doc().Characteristic(prov::kPxLogical).Characteristic(prov::kPxPhysical).End();
    late.Parm(prov::kProxyId, "P").End().End();
    EXPECT_EQ(Tree(late, 0x1005), "");
    // ROAMING and untyped characteristics take no children; an empty one is kept.
    wbxml::Builder roaming;
    roaming.Doc().Characteristic("ROAMING").Characteristic(prov::kPort).End().End().End();
    EXPECT_EQ(Tree(roaming, 0x1005), "");
    wbxml::Builder untyped;
    untyped.Doc().Tag(prov::kTagCharacteristic, true, false).End().Characteristic(prov::kPort).End().End();
    EXPECT_EQ(Tree(untyped), "(untyped)\nPORT\n");
    wbxml::Builder untypedParm;
    untypedParm.Doc().Tag(prov::kTagCharacteristic, true, false).Parm(prov::kName, "x").End().End();
    EXPECT_EQ(Tree(untypedParm, 0x1005), "");
    // A bare characteristic tag (no content) takes the END after it and adds
    // nothing to the (then empty) list.
    wbxml::Builder bare;
    bare.Doc().Characteristic(prov::kNapDef).Byte(prov::kTagCharacteristic).End().End().End();
    EXPECT_EQ(Tree(bare), "NAPDEF\n");
    // With attributes but no content its attributes are never read: refused.
    wbxml::Builder empty;
    empty.Doc().Characteristic(prov::kNapDef).EmptyCharacteristic(prov::kNapAuthInfo).End().End();
    EXPECT_EQ(Tree(empty, 0x1005), "");
}

TEST_F(Decoder, NestingDeeperThan32LevelsIsRefused) {
    auto nested = [](int depth) {
        wbxml::Builder b;
        b.Doc();
        for (int i = 0; i < depth; ++i) b.Characteristic(prov::kPxLogical);
        for (int i = 0; i <= depth; ++i) b.End();
        return b;
    };
    tqsWapDoc *doc = nullptr;
    EXPECT_EQ(Decode(nested(32).Build(), &doc), 0u);
    TraceCapture trace;
    EXPECT_EQ(Decode(nested(33).Build(), &doc), 0x1005u);
    EXPECT_EQ(Decode(nested(100000).Build(), &doc), 0x1005u);
    EXPECT_EQ(dec_->nDepth, 0u);
}

TEST_F(Decoder, InlineTypes) {
    wbxml::Builder b;
    b.Doc().Characteristic("ROAMING").NamedParm("SYNC-ALLOWED", "1").NamedParm("SYNC-DEFAULT", "0").End();
    b.Characteristic("WI-FI").NamedParm("NETSSID", "net").NamedParm("PRIORITY", "2").End().End();
    EXPECT_EQ(Tree(b), "ROAMING\n  SYNC-ALLOWED=1\n  SYNC-DEFAULT=0\nWI-FI\n  NETSSID=net\n  PRIORITY=2\n");

    TraceCapture trace;
    wbxml::Builder other;
    other.Doc().Characteristic("OTHER").NamedParm("X", "1").End().End();
    EXPECT_EQ(Tree(other, 0x1005), "");
    EXPECT_TRUE(trace.Contains("Tag Code = CHARACTER ATTR TYPE HAVE NOT...CP SPEC.....\n"));
    // An unlisted name in WI-FI or ROAMING leaves the value token for the handler, which refuses it.
    for (const char *type : {"WI-FI", "ROAMING"}) {
        trace.Clear();
        wbxml::Builder unlisted;
        unlisted.Doc().Characteristic(type).NamedParm("COLOUR", "red").End().End();
        EXPECT_EQ(Tree(unlisted, 0x1005), "") << type;
        EXPECT_TRUE(trace.Contains("tqsClientProvWbxmlDecoderParamAccess[6]\n")) << type;
    }
}

TEST_F(Decoder, ParmValueForms) {
    wbxml::Builder b;
    b.UseStringTable().Doc().Characteristic(prov::kNapDef);
    b.Parm(prov::kNapId, "N1");               // STR_T
    b.Parm(prov::kNapAddrType, prov::kIpv4);  // value token
    b.Parm(prov::kBearer, prov::kGsmGprs);    // unknown to the tables: raw byte
    b.Parm(prov::kCallType, prov::kAnalogModem);
    b.Parm(prov::kCallType, prov::kBitTransparent);   // joined behind the zero
    b.Parm(prov::kName, "a").Parm(prov::kName, "b");  // a repeated single parm appends
    b.Parm(prov::kLinger, "x").Parm(prov::kLinger);   // ... and a valueless one clears it
    b.Parm(prov::kDnsAddr, "d1").Parm(prov::kDnsAddr, "d2");
    b.Tag(prov::kTagParm, false, true).Bytes({0x0F, 0x06, 0x01});  // value attribute without content
    b.End().End();
    // One block is left: the first LINGER value, dropped by the valueless one.
    EXPECT_EQ(Tree(b, 0, 1),
              "NAPDEF\n  BEARER=<0xAB>\n  CALLTYPE=ANALOG-MODEM\n  DNS-ADDR=d1\n  DNS-ADDR=d2\n  NAME=ab\n"
              "  NAP-ADDRTYPE=IPV4\n  NAPID=N1\n");
}

TEST_F(Decoder, ParmTokensAfterAPageSwitch) {
    // Other handlers peek through the tag reader after a switch: PULLENABLED
    // (0x47) is seen as 0x07 and refused; without the switch it is stored.
    wbxml::Builder plain;
    plain.Doc().Characteristic(prov::kPxPhysical).Parm(prov::kPullEnabled, "1").End().End();
    EXPECT_EQ(Tree(plain), "PXPHYSICAL\n  PULLENABLED=1\n");
    wbxml::Builder switched;
    switched.Doc().Characteristic(prov::kPxPhysical).Tag(prov::kTagParm, false, true).SwitchPage(0);
    switched.Bytes({0x47, 0x06}).StrI("1").End().End().End();
    TraceCapture trace;
    EXPECT_EQ(Tree(switched, 0x1005), "");
    EXPECT_TRUE(trace.Contains("tqsClientProvWbxmlDecoderParamPxPhysical[7]\n")) << trace.Joined();
    // RESOURCE and APPAUTH peek the raw byte again.
    wbxml::Builder resource;
    resource.Doc().Characteristic(prov::kResource).Tag(prov::kTagParm, false, true).SwitchPage(1);
    resource.Bytes({0x3A, 0x06}).StrI("u").End().End().End();
    EXPECT_EQ(Tree(resource), "RESOURCE\n  URI=u\n");
    // A page switch between the name and the value attribute.
    wbxml::Builder between;
    between.Doc().Characteristic(prov::kApplication).Tag(prov::kTagParm, false, true);
    between.Bytes({0x36}).SwitchPage(0).Byte(0x06).StrI("w2").End().End().End();
    EXPECT_EQ(Tree(between), "APPLICATION\n  APPID=w2\n");
}

TEST_F(Decoder, HandlerQuirks) {
    // RESOURCE: STARTPAGE without value marks the start page; PXLOGICAL does not.
    wbxml::Builder start;
    start.Doc().Characteristic(prov::kResource).Parm(prov::kStartPage).End();
    start.Characteristic(prov::kPxLogical).Parm(prov::kStartPage).End().End();
    EXPECT_EQ(Tree(start), "RESOURCE\n  STARTPAGE=startpage\nPXLOGICAL\n");
    // NAPDEF: INIT without value sets the constant; with a value, nothing.
    wbxml::Builder init;
    init.Doc().Characteristic(prov::kNapDef).NamedParm("INIT").End();
    init.Characteristic(prov::kNapDef).NamedParm("INIT", "v").End().End();
    EXPECT_EQ(Tree(init), "NAPDEF\n  INIT=empty\nNAPDEF\n");
    // APPAUTH: AAUTHTYPE values separated by 0x90 become one comma-joined text.
    wbxml::Builder appauth;
    appauth.Doc().Characteristic(prov::kAppAuth).Tag(prov::kTagParm, false, true);
    appauth.Bytes({0x33, 0x06, 0x91, 0x90, 0x92, 0x90}).StrI("X").End().End().End();
    EXPECT_EQ(Tree(appauth), "APPAUTH\n  AAUTHTYPE=HTTP,BASIC,X\n");
    // Only APPAUTH accepts 0x90 there.
    wbxml::Builder resource90;
    resource90.Doc().Characteristic(prov::kResource).Tag(prov::kTagParm, false, true);
    resource90.Bytes({0x33, 0x06, 0x91, 0x90, 0x92, 0x01}).End().End();
    EXPECT_EQ(Tree(resource90, 0x1005), "");
    // APPLICATION: listed inline names are kept, others skipped.
    wbxml::Builder app;
    app.Doc().Characteristic(prov::kApplication).NamedParm("FROM", "me@x").NamedParm("XCAP_AUID_DCS", "d");
    app.NamedParm("OTHER", "o").Parm(prov::kAppId, "w4").End().End();
    // Left behind: a 129-byte scratch block per name-string parm and the OTHER value.
    EXPECT_EQ(Tree(app, 0, 4), "APPLICATION\n  APPID=w4\n  FROM=me@x\n  XCAP_AUID_DCS=d\n");
    // VENDORCONFIG keeps the last name/value pair.
    wbxml::Builder vendor;
    vendor.Doc().Characteristic(prov::kVendorConfig).Parm(prov::kName, "V").NamedParm("A", "1");
    vendor.NamedParm("B", "2").End().End();
    EXPECT_EQ(Tree(vendor, 0, 2), "VENDORCONFIG\n  B=2\n  NAME=V\n");  // the first pair stays allocated
    // A name-string parm whose name is not a string.
    wbxml::Builder noName;
    noName.Doc()
        .Characteristic(prov::kNapDef)
        .Tag(prov::kTagParm, false, true)
        .Bytes({0x05, 0x45, 0x01, 0x01});
    noName.End().End();
    EXPECT_EQ(Tree(noName, 1), "");
}

TEST_F(Decoder, NameStringFailurePaths) {
    // VENDORCONFIG: a name read that fails (before and after a piece of the
    // name was read), a cut after the name, a value read that fails. Whatever was read stays
    // with the record; the release of the field's own address is only looked
    // up by the tracker (one "not found" line), never freed.
    const struct {
        Bytes tail;
        bool nameLine;  // the "pszName NULL" line
        int notFound;   // tracker lines
    } vendorCases[] = {
        {{0x05, 0x83}, false, 0},
        {{0x05, 0x03, 'n', 0, 0x83}, true, 1},
        {{0x05, 0x03, 'n', 0}, true, 1},
        {{0x05, 0x85}, false, 1},
        {{0x05, 0x03, 'n', 0, 0x06, 0x83}, false, 1},
    };
    for (const auto &c : vendorCases) {
        wbxml::Builder b;
        b.Doc().Characteristic(prov::kVendorConfig).Tag(prov::kTagParm, false, true).Bytes(c.tail);
        tqsWapDoc *doc = nullptr;
        TraceCapture trace;
        testing::internal::CaptureStdout();
        EXPECT_EQ(Decode(b.Build(), &doc), 0x1007u);
        std::string out = testing::internal::GetCapturedStdout();
        int notFound = 0;
        for (size_t at = out.find("[syncml] MEMCHECK Not Found Address \n"); at != std::string::npos;
             at = out.find("[syncml] MEMCHECK Not Found Address \n", at + 1)) {
            ++notFound;
        }
        EXPECT_EQ(notFound, c.notFound) << out;
        EXPECT_EQ(trace.Contains("[tqsClientProvWbxmlDecoderParamVendorNameString] pszName NULL\n"),
                  c.nameLine);
    }
    // WI-FI and ROAMING handlers take no record check: without one, a listed
    // name is treated like an unlisted one and its value token is refused.
    Open({0x87, 0x05, 0x03, 'N', 'E', 'T', 'S', 'S', 'I', 'D', 0, 0x06, 0x03, 'x', 0, 0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderParamWifi(dec_, nullptr), 0x1005u);
    Open({0x87, 0x05, 0x03, 'S', 'Y', 'N',  'C',  '-', 'A', 'L', 'L',
          'O',  'W',  'E',  'D', 0,   0x06, 0x03, '1', 0,   0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderParamRoaming(dec_, nullptr), 0x1005u);
    // The other handlers refuse a missing record.
    Open({0x87, 0x07, 0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderParamPort(dec_, nullptr), 2u);
    EXPECT_EQ(Consumed(), 0u);
}

TEST_F(Decoder, ListParmsAndLenientDomain) {
    wbxml::Builder b;
    b.Doc().Characteristic(prov::kPxLogical).Parm(prov::kDomain, "a").Parm(prov::kDomain, "b");
    b.Parm(prov::kDomain, "c").End();
    b.Characteristic(prov::kAccess)
        .Parm(prov::kRule, "r")
        .Parm(prov::kAppId, "w2")
        .Parm(prov::kPortNbr, "80");
    b.Parm(prov::kDomain, "d").Parm(prov::kToNapId, "n").Parm(prov::kToProxy, "p").End().End();
    EXPECT_EQ(Tree(b),
              "PXLOGICAL\n  DOMAIN=a\n  DOMAIN=b\n  DOMAIN=c\nACCESS\n  APPID=w2\n  DOMAIN=d\n  PORTNBR=80\n "
              " RULE=r\n"
              "  TO-NAPID=n\n  TO-PROXY=p\n");

    // A DOMAIN list failing inside PXPHYSICAL is only traced; elsewhere it ends the decode.
    auto failingDomain = [](prov::Token type) {
        wbxml::Builder f;
        f.Doc().Characteristic(type).Tag(prov::kTagParm, false, true).Bytes({0x17, 0x22}).End();
        f.Parm(prov::kToNapId, "n").End().End();
        return f;
    };
    TraceCapture trace;
    EXPECT_EQ(Tree(failingDomain(prov::kPxPhysical)), "PXPHYSICAL\n  TO-NAPID=n\n");
    EXPECT_TRUE(trace.Contains("[ERROR] tqsClientProvWbxmlDecoderParamListString Fail\n"));
    EXPECT_EQ(Tree(failingDomain(prov::kPxLogical), 0x1005), "");
}

TEST_F(Decoder, SecondNameValuePairInOneListParm) {
    // The second pair reads into the text already listed. A replaced text keeps
    // both items; a joined one keeps the listed text and adds the extension
    // (joining would otherwise free a listed item); an unchanged or dropped
    // value adds nothing.
    struct Case {
        Bytes second;  // after the first pair SERVICE=CL-WSP
        const char *tree;
    };
    const Case cases[] = {
        {{0x24, 0x06, prov::kIpv4}, "PORT\n  SERVICE=CL-WSP\n  SERVICE=CL-WSPIPV4\n"},
        {{0x24, 0x06, 0x03, 'x', 0}, "PORT\n  SERVICE=CL-WSP\n  SERVICE=CL-WSPx\n"},
        {{0x24, 0x06, 0xC3, 0x02, 'o', 'p'}, "PORT\n  SERVICE=CL-WSP\n  SERVICE=op\n"},
        {{0x24, 0x06, 0xE0}, "PORT\n  SERVICE=CL-WSP\n  SERVICE=<0xE0>\n"},
        {{0x24, 0x06}, "PORT\n  SERVICE=CL-WSP\n"},
        {{0x24}, "PORT\n  SERVICE=CL-WSP\n"},
    };
    for (const Case &c : cases) {
        wbxml::Builder b;
        b.Doc().Characteristic(prov::kPort).Tag(prov::kTagParm, false, true);
        b.Bytes({0x24, 0x06, prov::kClWsp}).Bytes(c.second).End().End().End();
        EXPECT_EQ(Tree(b), c.tree);
    }
}

TEST_F(Decoder, UnknownParmTraces) {
    struct Case {
        prov::Token type;
        prov::Token parm;
        std::vector<std::string> lines;
    };
    const Case cases[] = {
        {prov::kPort,
         prov::kNapId,
         {"Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n", "tqsClientProvWbxmlDecoderParamPort[11]\n"}},
        {prov::kNapDef,
         prov::kProxyId,
         {"tqsClientProvWbxmlDecoderParamNapDef : Tag Code [21] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n\n"}},
        {prov::kPxLogical,
         prov::kNapId,
         {"Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n", "tqsClientProvWbxmlDecoderParamPxlogical[11]\n",
          "tqsClientProvWbxmlDecoderParamPxlogical Error Code:4101\n"}},
        {prov::kPxAuthInfo,
         prov::kNapId,
         {"DecoderParam : nId = [0x11]\n", "Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n",
          "tqsClientProvWbxmlDecoderParamPxAuthInfo[11]\n",
          "DecoderParam : TQS_WBXML_DECODER_ERROR nId = [0x11]\n", "return ErrorCode[4101]\n"}},
    };
    for (const Case &c : cases) {
        wbxml::Builder b;
        b.Doc().Characteristic(c.type).Parm(c.parm, "x").End().End();
        TraceCapture trace;
        EXPECT_EQ(Tree(b, 0x1005), "");
        auto &lines = trace.lines();
        auto it = std::search(lines.begin(), lines.end(), c.lines.begin(), c.lines.end());
        EXPECT_NE(it, lines.end()) << trace.Joined();
    }
}

TEST_F(Decoder, TruncatedDocumentsFailWithoutTouchingMemoryOutside) {
    wbxml::Builder b;
    b.UseStringTable().DocVersion10().Characteristic(prov::kNapDef).Parm(prov::kNapId, "N");
    b.NamedParm("INIT").Characteristic(prov::kNapAuthInfo).Parm(prov::kAuthType, prov::kPap).End();
    b.End().Characteristic(prov::kApplication).NamedParm("FROM", "f").Parm(prov::kAppId, "w2").End().End();
    Bytes full = b.Build();
    tqsWapDoc *doc = nullptr;
    ASSERT_EQ(Decode(full, &doc), 0u);
    for (size_t n = 0; n < full.size(); ++n) {
        Bytes cut(full.begin(), full.begin() + static_cast<long>(n));
        TqsResult ret = Decode(cut, &doc);
        EXPECT_NE(ret, 0u) << n;
        EXPECT_EQ(doc, nullptr) << n;
    }
}

// ---- Corpus --------------------------------------------------------------------
//
// Every body of the corpus is decoded. Where the decoder accepts it, its tree is
// compared with the XML beside the sample; the XML is first read by the
// decoder's own rules (below), and the remaining differences are listed per
// sample with their reason.

// The body of a push PDU: TID, PDU type, uintvar header length, headers, body.
Bytes PduBody(const Bytes &pdu) {
    size_t pos = 2;
    uint32_t headerLen = 0;
    while (pos < pdu.size()) {
        uint8_t b = pdu[pos++];
        headerLen = (headerLen << 7) | (b & 0x7F);
        if ((b & 0x80) == 0) break;
    }
    pos += headerLen;
    return pos <= pdu.size() ? Bytes(pdu.begin() + static_cast<long>(pos), pdu.end()) : Bytes{};
}

// Value tokens that wbxml2xml and the XML sources name but the decoder keeps
// as their raw byte (the tables do not reach them).
const std::map<std::string, std::string> kRawTokens = {
    {"GSM-CSD", "<0xAA>"},     {"GSM-GPRS", "<0xAB>"}, {"CO-WSP", "<0xCB>"}, {"CO-SEC-WSP", "<0xCD>"},
    {"OTA-HTTP-PO", "<0xD2>"}, {"APPSRV", "<0x8D>"},   {"HA", "<0xE1>"},
};

// The XML read by the decoder's rules: a parm without value leaves its field
// empty, except STARTPAGE in RESOURCE ("startpage") and INIT in NAPDEF
// ("empty"); values the tables do not name stay raw tokens.
void ApplyDecoderRules(std::vector<waptree::Node> *nodes) {
    for (waptree::Node &n : *nodes) {
        std::vector<std::string> parms;
        for (const std::string &p : n.parms) {
            size_t eq = p.find('=');
            if (eq == std::string::npos) {
                if (n.type == "RESOURCE" && p == "STARTPAGE") parms.push_back("STARTPAGE=startpage");
                if (n.type == "NAPDEF" && p == "INIT") parms.push_back("INIT=empty");
                continue;
            }
            auto raw = kRawTokens.find(p.substr(eq + 1));
            parms.push_back(raw != kRawTokens.end() ? p.substr(0, eq + 1) + raw->second : p);
        }
        n.parms = parms;
        ApplyDecoderRules(&n.children);
    }
}

// Refused real samples, each traced byte by byte through the decoder's steps;
// in every case the steps refuse the bytes exactly where the decoder does:
//
// | sample                  | status | where the steps stop                                         |
// |-------------------------|--------|--------------------------------------------------------------|
// | apnprov-ref-myapn       | 0x1005 | `01 00 00 01` at the end: after the last characteristic of   |
// |                         |        | the top run the next element must be a characteristic; the   |
// |                         |        | SWITCH_PAGE is read as a tag with id 0                        |
// | cpc-data-sync           | 0x1005 | `87 05 03 "SYNCTYPE"` in RESOURCE: its table has no 0x05      |
// | moz-provcont-appendix-c | 0x1005 | `87 47` (PULLENABLED) in PXLOGICAL: not in its table          |
// | mihini-dm-bootstrap     | 0x1005 | `87 05 03 "TO-PROXY"` after the nested APPADDR closes: the    |
// |                         |        | APPLICATION's run of characteristics reads the parm as one    |
// | vn-viettel-8x85,        | 0x1005 | `87 21 06 85 03 00 01` in PXPHYSICAL: the content reader      |
// | vn-vinaphone-8x85       |        | takes the known token 0x85 alone, the handler then meets 03   |
// | ws-sync-server          | 0x1007 | `06 03 "text/x-vcard" 00 00 01 90 ...` (AACCEPT): the string  |
// |                         |        | run meets 0x00, which is no value token: the run fails        |
// | own/wifi-roaming        | 0x1007 | `87 05 03 "P" 00 E1`: the name run meets 0xE1, unknown to the |
// |                         |        | value tables: the name read fails                             |
struct Sample {
    const char *path;                                        // corpus-relative
    TqsResult status;                                        // of the decode (refusals: see the table above)
    std::vector<std::pair<std::string, std::string>> edits;  // XML render line -> tree line ("" drops it)
};

const std::vector<Sample> &Samples() {
    static const std::vector<Sample> samples = {
        {"apnprov-hiweb.wbxml", 0, {}},
        {"apnprov-ref-myapn.wbxml", 0x1005, {}},
        {"cpc-bookmarks.wbxml", 0, {}},
        {"cpc-data-sync.wbxml", 0x1005, {}},
        {"cpc-email.wbxml", 0, {}},
        {"cpc-internetmms.wbxml", 0, {}},
        {"cpc-omadm.wbxml", 0, {}},
        {"cpc-proxy-nap-group.wbxml", 0, {}},
        {"cpc-proxytest.wbxml", 0, {}},
        {"cpc-simplemms.wbxml", 0, {}},
        {"gaia-cmcc-two-proxies.wbxml", 0, {}},
        {"gaia-dt-tmobile.wbxml", 0, {}},
        {"gaia-operator-portal.wbxml", 0, {}},
        {"gaia-tef-movistar.wbxml", 0, {}},
        // value="" is encoded as a value attribute without content: the field stays empty.
        {"gaia-tef-yahoo-email.wbxml", 0, {{"    AUTHNAME=", ""}, {"    AUTHSECRET=", ""}}},
        {"letai-internet.wbxml", 0, {}},
        {"letai-mms.wbxml", 0, {}},
        {"lg-apn-strtable-auto.wbxml", 0, {}},
        {"lg-apn-strtable-manual.wbxml", 0, {}},
        {"lg-otaf-auto.wbxml", 0, {}},
        {"lg-otaf-manual.wbxml", 0, {}},
        {"moz-cht-emome-codepage1.wbxml", 0, {}},
        {"moz-empty-doc-netwpin.wbxml", 0, {}},
        {"moz-provcont-appendix-c.wbxml", 0x1005, {}},
        {"sfos-beeline-2.wbxml", 0, {}},
        {"sfos-dna-1.wbxml", 0, {}},
        {"sfos-dna-2.wbxml", 0, {}},
        {"sfos-moi-1.wbxml", 0, {}},
        {"sfos-moi-2.wbxml", 0, {}},
        {"sfos-moi-3.wbxml", 0, {}},
        // APPLICATION keeps only FROM and XCAP_* of the names written inline.
        {"sfos-sonera.wbxml",
         0,
         {{"  MAX-BANDWIDTH=", ""}, {"  MIN-UDP-PORT=", ""}, {"  MAX-UDP-PORT=", ""}}},
        {"ws-sync-server.wbxml", 0x1007, {}},
        {"br-claro-portal-charset.pdu", 0, {}},
        {"mihini-dm-bootstrap.pdu", 0x1005, {}},
        {"ph-smart-internet-netwpin.pdu", 0, {}},
        {"ph-smart-mms-netwpin.pdu", 0, {}},
        {"vn-mobifone-vtv.pdu", 0, {}},
        {"vn-viettel-8x85.pdu", 0x1005, {}},
        {"vn-viettel-gprs-wbxml12.pdu", 0, {}},
        {"vn-vinaphone-8x85.pdu", 0x1005, {}},
        {"vn-vinaphone-vtv.pdu", 0, {}},
        {"ws-bank-userpin.pdu", 0, {}},
        {"own/identity-vendor-access.wbxml", 0, {}},
        {"own/literal-pubid-opaque.wbxml", 0, {}},
        {"own/wifi-roaming.wbxml", 0x1007, {}},
        {"negative/gaia-cht-parm-typo.wbxml", 0x1005, {}},          // LITERAL tag for <Parm>
        {"negative/moz-vendorconfig-truncated.wbxml", 0x1007, {}},  // document element not closed
        {"negative/vn-mobifone-nokia-ota.pdu", 0x100B, {}},  // not a provisioning document (public id 1)
    };
    return samples;
}

std::string Edited(const std::string &render, const std::vector<std::pair<std::string, std::string>> &edits) {
    std::string out;
    size_t pos = 0;
    while (pos < render.size()) {
        size_t end = render.find('\n', pos);
        std::string line = render.substr(pos, end - pos);
        pos = end + 1;
        bool dropped = false;
        for (const auto &e : edits) {
            if (line.rfind(e.first, 0) == 0 && e.second.empty()) dropped = true;
        }
        if (!dropped) out += line + "\n";
    }
    return out;
}

TEST(Corpus, EveryBodyIsListed) {
    std::set<std::string> listed;
    for (const Sample &s : Samples()) listed.insert(corpus::Path(s.path));
    for (const char *pattern : {"*.wbxml", "*.pdu", "own/*.wbxml", "negative/*.wbxml", "negative/*.pdu"}) {
        for (const std::string &path : corpus::List(pattern)) EXPECT_EQ(listed.count(path), 1u) << path;
    }
}

TEST(Corpus, TreesAgreeWithTheXml) {
    for (const Sample &s : Samples()) {
        SCOPED_TRACE(s.path);
        std::string path = s.path;
        Bytes bytes = corpus::Read(path);
        ASSERT_FALSE(bytes.empty());
        if (path.size() > 4 && path.compare(path.size() - 4, 4, ".pdu") == 0) bytes = PduBody(bytes);

        MemCheck mem;
        tqsWbxmlDecoder *dec = nullptr;
        ASSERT_EQ(tqsClientProvWbxmlInitDecoder(&dec, bytes.data(), static_cast<uint32_t>(bytes.size())), 0u);
        tqsWapDoc *doc = nullptr;
        TqsResult ret = tqsClientProvWbxmlDecoder(dec, &doc);
        EXPECT_EQ(ret, s.status);
        EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(dec), 0u);
        if (s.status != 0) {
            EXPECT_EQ(doc, nullptr);
            mem.FreeAll();  // a failing decode leaves its unlinked records behind by design
            continue;
        }

        std::string xmlPath = path.substr(0, path.rfind('.')) + ".xml";
        Bytes xmlBytes = corpus::Read(xmlPath);
        std::vector<waptree::Node> expected = waptree::FromXml(std::string(xmlBytes.begin(), xmlBytes.end()));
        ApplyDecoderRules(&expected);
        std::string tree = waptree::Render(waptree::FromTree(doc));
        EXPECT_EQ(tree, Edited(waptree::Render(expected), s.edits));
        if (std::string(s.path) != "moz-empty-doc-netwpin.wbxml") EXPECT_FALSE(tree.empty());

        // The release leaves exactly the kept fields, the scratch block of each
        // APPLICATION name-string parm, and the values of unlisted APPLICATION names.
        std::set<void *> kept;
        if (doc != nullptr) KeptBlocks(doc->ptCharacterList, &kept);
        EXPECT_EQ(tqsClientProvWbxmlDeleteWapDoc(doc), doc != nullptr ? 1u : 0u);
        size_t scratch = 0, other = 0;
        for (const LiveBlock &b : mem.Live()) {
            if (kept.count(b.address) != 0) continue;
            if (b.file == kDecoderUnit && b.size == 129) {
                ++scratch;
            } else {
                ++other;
            }
        }
        EXPECT_EQ(mem.Live().size(), kept.size() + scratch + other);
        // APPLICATION parms written with an inline name: those without a token for APPLICATION.
        static const std::set<std::string> appTokens = {"APPID",    "PROVIDER-ID", "NAME",
                                                        "AACCEPT",  "APROTOCOL",   "INTERNET",
                                                        "TO-PROXY", "TO-NAPID",    "ADDR"};
        size_t inlineNames = 0, dropped = 0;
        std::function<void(const std::vector<waptree::Node> &)> count =
            [&](const std::vector<waptree::Node> &nodes) {
                for (const waptree::Node &n : nodes) {
                    for (const std::string &p : n.parms) {
                        std::string name = p.substr(0, p.find('='));
                        if (n.type != "APPLICATION" || appTokens.count(name) != 0) continue;
                        ++inlineNames;
                        bool kept = name == "FROM" || name.rfind("XCAP_", 0) == 0;
                        if (!kept && p.find('=') != std::string::npos) ++dropped;
                    }
                    count(n.children);
                }
            };
        count(waptree::FromXml(std::string(xmlBytes.begin(), xmlBytes.end())));
        EXPECT_EQ(scratch, inlineNames);
        EXPECT_EQ(other, dropped);
        mem.FreeAll();
    }
}

}  // namespace
