// The WBXML provisioning decoder: byte and token readers, header and string
// table, value tokens, characteristics, parm handlers, and the corpus.
#include "tqsClientProvWbxmlDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "corpus.h"
#include "mem_check.h"
#include "status.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "trace_capture.h"
#include "wap_tree.h"
#include "wbxml_builder.h"

namespace {

namespace prov = wbxml::prov;
using Bytes = std::vector<uint8_t>;
using Lines = std::vector<std::string>;

std::string Text(const char *p) {
    return p != nullptr ? std::string(p) : std::string("(null)");
}

// A text in a block of the library's allocator.
char *NewText(const char *text) {
    char *p = static_cast<char *>(tqsMemAllocSetZero_debug(static_cast<uint32_t>(strlen(text) + 1), "t", 1));
    return std::strcpy(p, text);
}

// A builder already inside <wap-provisioningdoc>.
wbxml::Builder NewDoc() {
    return wbxml::Builder().Doc();
}

// A builder inside <wap-provisioningdoc><characteristic type=...>.
wbxml::Builder In(prov::Token type) {
    return NewDoc().Characteristic(type);
}

// Every test tracks the library's blocks; what a failing decode leaves behind
// by design is freed by Reset() so the sanitizer's leak check stays quiet.
class Decoder : public ::testing::Test {
   protected:
    ~Decoder() override { Reset(); }

    // Releases the tree (1 when there is one) and the decoder.
    void Release() {
        EXPECT_EQ(tqsClientProvWbxmlDeleteWapDoc(doc_), doc_ != nullptr ? 1u : 0u);
        if (dec_ != nullptr) { EXPECT_EQ(tqsClientProvWbxmlDeleteDecoder(dec_), 0u); }
        doc_ = nullptr;
        dec_ = nullptr;
    }

    void Reset() {
        Release();
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

    // The whole decode of a body (header included) into doc_.
    TqsResult Decode(const Bytes &body) {
        Reset();
        Open(body);
        return tqsClientProvWbxmlDecoder(dec_, &doc_);
    }

    // Decodes a built document and returns its tree as rendered text; the tree
    // and the decoder are then released. After a successful decode what stays
    // allocated must be the kept blocks plus `leftovers` blocks that the
    // decoding drops on purpose; a failing decode leaves its unlinked records.
    std::string Tree(const wbxml::Builder &b, TqsResult expect = 0, size_t leftovers = 0) {
        EXPECT_EQ(Decode(b.Build()), expect);
        std::string text = waptree::Render(waptree::FromTree(doc_));
        std::set<void *> kept = waptree::Kept(doc_);
        Release();
        std::vector<LiveBlock> live = mem_.Live();
        if (expect == 0) {
            EXPECT_EQ(std::count_if(live.begin(), live.end(),
                                    [&](const LiveBlock &l) { return kept.count(l.address) == 0; }),
                      static_cast<long>(leftovers))
                << text;
        }
        mem_.FreeAll();
        return text;
    }

    // A document refused with `status`; each of `lines` must be traced.
    void Refused(const wbxml::Builder &b, TqsResult status, const Lines &lines = {}) {
        TraceCapture trace;
        EXPECT_EQ(Tree(b, status), "");
        for (const std::string &line : lines) EXPECT_TRUE(trace.Contains(line)) << line << trace.Joined();
    }

    uint32_t Consumed() const { return tqsClientProvWbxmlDecoderDecodingSize(dec_); }

    MemCheck mem_;
    tqsWbxmlDecoder *dec_ = nullptr;
    tqsWapDoc *doc_ = nullptr;
};

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
    wbxml::Builder atOffset2;
    atOffset2.TableString("x");
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
        {"literal id at offset 2", atOffset2.LiteralPublicId().Doc().End().Build(), 0x100B},
        {"literal id, header cut in the table", {0x03, 0x00, 0x00, 0x6A, 0x20, '-', '/', '/'}, 0x100B},
    };
    for (const auto &c : cases) EXPECT_STATUS(Decode(c.body), c.status) << c.name;
    // Cut inside the table: the length is recorded as the failure value and the part read is kept.
    EXPECT_EQ(dec_->nStrSize, 0xFFFFFFFFu);
    ASSERT_NE(dec_->pStringTable, nullptr);
    EXPECT_STREQ(reinterpret_cast<char *>(dec_->pStringTable), "-//");
}

TEST_F(Decoder, HeaderTraceAndMismatchLines) {
    TraceCapture trace;
    EXPECT_EQ(Decode({0x02, 0x01, 0x04, 0x00}), 0x100Bu);
    EXPECT_EQ(doc_, nullptr);
    EXPECT_EQ(trace.lines(), (Lines{
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
    EXPECT_EQ(Decode({}), 0x100Bu);
    ASSERT_EQ(trace.lines().size(), 6u) << trace.Joined();  // the lines above, pnVersion failing first
    EXPECT_EQ(trace.lines()[3], "[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion\n");
    trace.Clear();
    wbxml::Builder b;
    b.TableString("abc");
    EXPECT_EQ(Decode(b.PublicId(0).Build()), 0x100Bu);
    EXPECT_TRUE(trace.Contains("ptWbxmlDecoder->pStringTable[abc]\n\n")) << trace.Joined();

    tqsWapDoc *doc = reinterpret_cast<tqsWapDoc *>(this);
    EXPECT_EQ(tqsClientProvWbxmlDecoder(nullptr, &doc), 2u);
    EXPECT_EQ(doc, nullptr);
    tqsWbxmlDecoder bare{};  // no buffer
    EXPECT_EQ(tqsClientProvWbxmlDecoder(&bare, &doc), 2u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderWbxmlBody(&bare, &doc), 0x100Au);
}

TEST_F(Decoder, StringTable) {
    // Table "ab\0cd\0": index 3 is "cd"; index 5 (the last zero) is empty;
    // 6 is beyond the bound nStrSize - 1.
    Open({0x06, 'a', 'b', 0, 'c', 'd', 0, 0x03, 0x05, 0x06});
    ASSERT_EQ(tqsClientProvWbxmlDecoderMakeStrTable(dec_, &dec_->pStringTable), 6u);
    dec_->nStrSize = 6;
    char *text = nullptr;
    for (int ok : {1, 1, 0}) EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrTable(dec_, &text), ok);
    EXPECT_EQ(Text(text), "cd");
    tqsMemFree_debug(text);

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
        dec_->nCodePage = c.page == 0 ? 1 : 7;
        TraceCapture trace;
        EXPECT_STATUS(tqsClientProvWbxmlDecoderCheckCodePage(dec_), c.status);
        EXPECT_EQ(dec_->nCodePage, c.page);
        EXPECT_EQ(trace.lines().front(), "tqsClientProvWbxmlDecoderCheckCodePage\n");
        if (c.line != nullptr) { EXPECT_EQ(trace.lines().back(), c.line); }
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

TEST_F(Decoder, CheckElementAndAttr) {
    const struct {
        Bytes bytes;
        TqsResult status;
        uint32_t consumed;
    } cases[] = {
        {{0x06, 0x01, 0x01}, 0, 2},  // a content-less tag takes the END after it
        {{0x86, 0x41}, 0, 2},        // ... any byte whose low bits are 0x01
        {{0x46, 0x01}, 0, 1},        // with content the END is not taken
        {{0x07, 0x01}, 0x1005, 1},
    };
    for (const auto &c : cases) {
        Open(c.bytes);
        EXPECT_STATUS(tqsClientProvWbxmlDecoderCheckElement(dec_, 0x06), c.status);
        EXPECT_EQ(Consumed(), c.consumed);
    }
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(nullptr, 0x06), 1u);
    EXPECT_EQ(trace.lines(), Lines{"[Error] [tqsClientProvWbxmlDecoderCheckElement] ptWbxmlDecoder NULL\n"});

    Open({0x07});
    trace.Clear();
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckAttr(dec_, 0x06), 0x1005u);
    EXPECT_EQ(Consumed(), 1u);
    EXPECT_EQ(trace.lines(), (Lines{"tqsClientProvWbxmlDecoderCheckAttr\n", "nId:6, nTemp:7\n"}));
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckAttr(dec_, 0x06), 0x1007u);
}

// Content reads a run of string pieces and value tokens up to the END (left
// unread). With a table the body starts with it.
TEST_F(Decoder, Content) {
    Bytes joined = {0x08, 'x', 'y', 'z', 0, 'T', 'a', 'b', 0};
    Bytes pieces = wbxml::Builder().StrI("abc").StrT(4).Byte(0x85).End().Body();
    joined.insert(joined.end(), pieces.begin(), pieces.end());
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
        {"empty table, index at the block's end", true, {0x00, 0x83, 0x02, 0x01}, 0, "", 3},
        {"stops at value=", false, {0x03, 'I', 'N', 'I', 'T', 0, 0x06, 0x03, 'v', 0}, 0, "INIT", 6},
        {"unterminated, no END", false, {0x03, 'a', 'b'}, 0x1007, "ab", kAny},
        {"known token alone", false, {0x85}, 0, "IPV4", kAny},
        {"unknown token: one raw byte", false, {0xE0}, 0, "\xE0", kAny},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Open(c.bytes);
        if (c.table) dec_->nStrSize = tqsClientProvWbxmlDecoderMakeStrTable(dec_, &dec_->pStringTable);
        char *text = nullptr;
        EXPECT_STATUS(tqsClientProvWbxmlDecoderContent(dec_, &text), c.status);
        EXPECT_EQ(Text(text), c.text);
        if (c.consumed != kAny) { EXPECT_EQ(Consumed(), c.consumed); }
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
    // Has 2 bytes at offset 3 of a 5-byte body, whose padding ends at 518
    // (5 + 512 + 1): a length up to 515 gets its whole block, a longer one a
    // block cut to the body; the next read fails either way.
    const struct {
        uint8_t length[2];
        uint32_t block;
    } cases[] = {{{0x81, 0x48}, 202}, {{0x84, 0x03}, 517}, {{0x84, 0x04}, 4}};
    uint8_t id;
    char *text = nullptr;
    for (const auto &c : cases) {
        Open({0xC3, c.length[0], c.length[1], 'h', 'i'});
        EXPECT_EQ(tqsClientProvWbxmlDecoderContent(dec_, &text), 0u);
        EXPECT_EQ(Text(text), "hi");
        std::vector<LiveBlock> live = mem_.Live();
        auto block = std::find_if(live.begin(), live.end(), [&](auto &b) { return b.address == text; });
        ASSERT_NE(block, live.end());
        EXPECT_EQ(block->size, c.block);
        EXPECT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0x1007u);
        tqsMemFree_debug(text);
    }

    Open({0xC3, 0x02, 'a', 0, 0x01});  // embedded zero: the text ends there
    uint32_t length = 0;
    ASSERT_EQ(tqsClientProvWbxmlDecoderReadAttr(dec_, &id), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrExtension(dec_, id, &text, &length), 1);
    EXPECT_EQ(length, 2u);
    EXPECT_EQ(Text(text), "a");
    EXPECT_EQ(Consumed(), 4u);
    tqsMemFree_debug(text);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrExtension(dec_, 0x03, &text, &length),
              1);  // not OPAQUE: nothing
    EXPECT_EQ(Consumed(), 4u);
}

TEST_F(Decoder, SkippingContentAttributesAndElements) {
    // Content below 0x80 and not a string: warning, then a skip to the END at depth 0.
    Open({0x87, 0x45, 0x11, 0x01, 0x01, 0x01});
    uint8_t id;
    ASSERT_EQ(tqsClientProvWbxmlDecoderReadElement(dec_, &id), 0u);
    char *text = nullptr;
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvWbxmlDecoderContent(dec_, &text), 0u);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(Consumed(), 4u);  // on the second END
    EXPECT_TRUE(trace.Contains("WARNING!!!!!!!! Not Support Type Numberic nTag=[87]\n")) << trace.Joined();
    EXPECT_EQ(trace.lines().back(), "tqsClientProvWbxmlDecoderContent Error:0\n");

    const uint32_t kAny = 0xFFFFFFFF;
    const struct {
        bool element;  // SkipElement, else SkipAttribute
        Bytes bytes;
        TqsResult status;
        uint32_t consumed;
    } skips[] = {
        {false, {0x45, 0x03, '1', 0, 0x01, 0x99}, 0, 5},
        {false, {0x12, 0x80, 0x04}, 0, 2},
        {false, {0x12}, 0x1007, kAny},
        {true, {0x46, 0x03, 'a', 0, 0x01, 0x01}, 0, 4},  // a string inside, stops on the closing END
        {true, {0x46, 0x00, 0x01, 0x47, 0x01, 0x01, 0x01}, 0, 5},  // page switches are stepped over
        {true, {0x01, 0x46, 0x01}, 0x1007, 3},                     // END at depth 0: runs to the end of input
        {true, {0x46, 0x83}, 0x1007, 2},                           // a failing string read
    };
    for (const auto &c : skips) {
        Open(c.bytes);
        trace.Clear();
        EXPECT_STATUS(c.element ? tqsClientProvWbxmlDecoderSkipElement(dec_, 0)
                                : tqsClientProvWbxmlDecoderSkipAttribute(dec_),
                      c.status);
        if (c.consumed != kAny) { EXPECT_EQ(Consumed(), c.consumed); }
        if (c.element) {
            EXPECT_EQ(trace.lines().back(),
                      "tqsClientProvWbxmlDecoderSkipElement Error Code:" + std::to_string(c.status) + "\n");
        }
    }

    const struct {
        Bytes bytes;
        TqsResult status;
        const char *text;
    } elements[] = {
        {{0x47, 0x03, 'v', 0, 0x01}, 0, "v"},
        {{0x47, 0x03, 'v', 0, 0x06}, 0x1005, nullptr},
        {{0x07, 0x99}, 0, "(null)"},
    };
    for (const auto &c : elements) {
        Open(c.bytes);
        text = nullptr;
        EXPECT_STATUS(tqsClientProvWbxmlDecoderElement(dec_, 0x07, &text), c.status);
        if (c.text != nullptr) { EXPECT_EQ(Text(text), c.text); }
        tqsMemFree_debug(text);
    }
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
        char *text = c.start != nullptr ? NewText(c.start) : nullptr;
        EXPECT_STATUS(tqsCommaAdd(dec_, &text), c.status);
        EXPECT_EQ(Text(text), c.result);
        tqsMemFree_debug(text);
    }
}

// ---- Value tokens ------------------------------------------------------------

TEST(ValueTokens, LookupTablesWithTheirScanBoundsAndShadowing) {
    MemCheck mem;
    std::string found;
    for (int token = 0; token < 256; ++token) {
        char *value = nullptr;
        TqsResult ret = tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<uint8_t>(token), &value);
        char hex[8];
        std::snprintf(hex, sizeof hex, "%02X=", token);
        if (ret == 0) found += hex + Text(value) + " ";
        if (ret != 0) { EXPECT_EQ(ret, 0x1005u) << token; }
        if (ret != 0) { EXPECT_EQ(value, nullptr) << token; }
        tqsMemFree_debug(value);
    }
    // 0x91 is "HTTP": table C position 0 wins over table D position 1 and table
    // B position 6; 0x92 is never "V.110", 0x93 never "X.31". 0xCB.., 0x8D,
    // 0x8E and 0x93-in-A lie beyond the scan.
    EXPECT_EQ(found,
              "85=IPV4 86=IPV6 87=E164 88=ALPHA 89=APN 8A=SCODE 8B=TETRA-ITSI 8C=MAN 90=ANALOG-MODEM 91=HTTP "
              "92=BASIC 93=DIGEST 94=BIT-TRANSPARENT 95=DIRECT-ASYNCHRONOUS-DATA-SERVICE 9A=PAP 9B=CHAP "
              "9C=HTTP-BASIC 9D=HTTP-DIGEST 9E=WTLS_SS 9F=MD5 CA=CL-WSP ");
    EXPECT_TRUE(mem.Live().empty());
}

TEST(ValueTokens, JoiningRules) {
    MemCheck mem;
    const struct {
        uint8_t token;
        const char *visible;
        const char *hidden;  // text behind the terminating zero, for call types
    } cases[] = {
        {0x86, "abIPV6", nullptr},
        {0x9B, "ab,CHAP", nullptr},
        {0x92, "ab,BASIC", nullptr},
        {0x94, "ab", "BIT-TRANSPARENT"},
    };
    for (const auto &c : cases) {
        char *value = NewText("ab");
        EXPECT_EQ(tqsClientProvWbxmlDecoderGetParamTokenVal(c.token, &value), 0u);
        EXPECT_EQ(Text(value), c.visible);
        if (c.hidden != nullptr) { EXPECT_STREQ(value + 3, c.hidden); }
        tqsMemFree_debug(value);
    }
    EXPECT_TRUE(mem.Live().empty());
}

// ---- Documents built by hand -------------------------------------------------

TEST_F(Decoder, BodyStartVariants) {
    // First byte END: success without a tree.
    EXPECT_EQ(Decode(wbxml::Builder().End().Build()), 0u);
    EXPECT_EQ(doc_, nullptr);
    // No document element: a top-level run of characteristics.
    wbxml::Builder run;
    run.Characteristic(prov::kBootstrap).Parm(prov::kName, "B").End();
    EXPECT_EQ(Tree(run.Characteristic(prov::kPort).End().End()), "BOOTSTRAP\n  NAME=B\nPORT\n");
    // SWITCH_PAGE or a parm first, or a document element without content: an empty tree.
    for (const Bytes &body :
         {wbxml::Builder().SwitchPage(1).Build(), wbxml::Builder().Parm(prov::kName, "x").Build(),
          wbxml::Builder().Tag(prov::kTagWapProvisioningDoc, false, false).Build()}) {
        EXPECT_EQ(Decode(body), 0u);
        ASSERT_NE(doc_, nullptr);
        EXPECT_EQ(doc_->ptCharacterList, nullptr);
    }
    // Anything else is refused.
    Refused(wbxml::Builder().StrI("x"), 0x1005, {"Unknown Element[3]\n", "WBXML Decode Error[3]\n"});
    // A parm straight inside the document would never be consumed: refused.
    Refused(NewDoc().Parm(prov::kName, "x").End(), 0x1005,
            {"Tag Code [7] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n\n"});
}

TEST_F(Decoder, DocumentVersionAttribute) {
    EXPECT_EQ(Tree(wbxml::Builder().DocVersion10().Characteristic(prov::kPort).End().End()), "PORT\n");
    wbxml::Builder v11;
    v11.Tag(prov::kTagWapProvisioningDoc, true, true).Byte(prov::kVersion).StrI("1.1").End();
    EXPECT_EQ(Tree(v11.Characteristic(prov::kPort).End().End()), "PORT\n");
    // STR_I, a switch and END between characteristics of the document.
    EXPECT_EQ(Tree(NewDoc().StrI("junk").SwitchPage(0).Characteristic(prov::kPort).End().End()), "PORT\n");

    const struct {
        Bytes attributes;
        const char *line;
    } refusals[] = {
        {{0x47, 0x01}, "[Error] [tqsClientProvWbxmlDecoderCheckAttrVersion] nId [0x47]\n"},
        {{0x46, 0x50, 0x01}, "tqsClientProvWbxmlDecoderAttributeWapDocVersion[10]\n"},
    };
    for (const auto &r : refusals)
        Refused(wbxml::Builder().Tag(prov::kTagWapProvisioningDoc, true, true).Bytes(r.attributes).End(),
                0x1005, {r.line});
}

TEST_F(Decoder, TypeAttributesAndCodePages) {
    wbxml::Builder all = NewDoc();
    for (prov::Token t :
         {prov::kPxLogical, prov::kPxPhysical, prov::kPort, prov::kValidity, prov::kNapDef, prov::kBootstrap,
          prov::kVendorConfig, prov::kClientIdentity, prov::kPxAuthInfo, prov::kNapAuthInfo, prov::kAccess,
          prov::kApplication, prov::kAppAddr, prov::kAppAuth, prov::kResource})
        all.Characteristic(t).End();
    EXPECT_EQ(Tree(all.End()),
              "PXLOGICAL\nPXPHYSICAL\nPORT\nVALIDITY\nNAPDEF\nBOOTSTRAP\nVENDORCONFIG\nCLIENTIDENTITY\n"
              "PXAUTHINFO\nNAPAUTHINFO\nACCESS\nAPPLICATION\nAPPADDR\nAPPAUTH\nRESOURCE\n");
    // Page-0 types are taken on page 1 as well (page 1 stays current).
    wbxml::Builder page1 = In(prov::kApplication);
    page1.End().Characteristic({0x51, 1}).End().Characteristic(prov::kApplication).End();
    EXPECT_EQ(Tree(page1.End()), "APPLICATION\nPXLOGICAL\nAPPLICATION\n");
    // A type token repeated: the second record replaces the first, which is lost.
    TraceCapture trace;
    wbxml::Builder twice = NewDoc();
    twice.Tag(prov::kTagCharacteristic, true, true).Bytes({0x51, 0x51, 0x01});
    EXPECT_EQ(Tree(twice.Parm(prov::kName, "n").End().End(), 0, 1), "PXLOGICAL\n  NAME=n\n");
    EXPECT_EQ(trace.Count("tqsClientProvWbxmlDecoderCharacterAttribute : ERROR!!!\n"), 1u);
    // Unknown attribute byte.
    Refused(NewDoc().Tag(prov::kTagCharacteristic, true, true).Bytes({0x5C, 0x01}).End().End(), 0x1005,
            {"tqsClientProvWbxmlDecoderCharacterAttribute[5c]\n"});
    // Every attribute byte is taken as the type token, SWITCH_PAGE included:
    // the NAPDEF record exists, but its parms find no handler.
    wbxml::Builder switched = NewDoc();
    switched.Tag(prov::kTagCharacteristic, true, true).Bytes({0x55, 0x00, 0x01, 0x01});
    EXPECT_EQ(Decode(switched.Parm(prov::kName, "x").End().End().Build()), 0x1005u);
    EXPECT_EQ(dec_->nCodePage, 1);
}

TEST_F(Decoder, NestingRules) {
    wbxml::Builder ok = In(prov::kPxLogical);
    ok.Parm(prov::kProxyId, "P").Characteristic(prov::kPxPhysical).Parm(prov::kPxAddr, "1.2.3.4");
    ok.Characteristic(prov::kPort).Parm(prov::kService, "a").Parm(prov::kService, "b").End();
    EXPECT_EQ(Tree(ok.End().End().End()),
              "PXLOGICAL\n  PROXY-ID=P\n  PXPHYSICAL\n    PXADDR=1.2.3.4\n    PORT\n      SERVICE=a\n"
              "      SERVICE=b\n");

    const struct {
        prov::Token parent;
        const char *line;
    } refusals[] = {
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
    for (const auto &r : refusals)
        Refused(In(r.parent).Characteristic(prov::kPort).End().End().End(), 0x1005, {r.line});
    // Parms after a nested characteristic are refused.
    Refused(
        In(prov::kPxLogical).Characteristic(prov::kPxPhysical).End().Parm(prov::kProxyId, "P").End().End(),
        0x1005);
    // ROAMING and untyped characteristics take no children; an empty one is kept.
    Refused(NewDoc().Characteristic("ROAMING").Characteristic(prov::kPort).End().End().End(), 0x1005);
    wbxml::Builder untyped = NewDoc();
    untyped.Tag(prov::kTagCharacteristic, true, false);
    EXPECT_EQ(Tree(untyped.End().Characteristic(prov::kPort).End().End()), "(untyped)\nPORT\n");
    Refused(NewDoc().Tag(prov::kTagCharacteristic, true, false).Parm(prov::kName, "x").End().End(), 0x1005);
    // A bare characteristic tag (no content) takes the END after it and adds
    // nothing to the (then empty) list.
    EXPECT_EQ(Tree(In(prov::kNapDef).Byte(prov::kTagCharacteristic).End().End().End()), "NAPDEF\n");
    // With attributes but no content its attributes are never read: refused.
    Refused(In(prov::kNapDef).EmptyCharacteristic(prov::kNapAuthInfo).End().End(), 0x1005);
}

TEST_F(Decoder, NestingDeeperThan32LevelsIsRefused) {
    auto nested = [](int depth) {
        wbxml::Builder b = NewDoc();
        for (int i = 0; i < depth; ++i) b.Characteristic(prov::kPxLogical);
        for (int i = 0; i <= depth; ++i) b.End();
        return b.Build();
    };
    EXPECT_EQ(Decode(nested(32)), 0u);
    TraceCapture trace;
    EXPECT_EQ(Decode(nested(33)), 0x1005u);
    EXPECT_EQ(Decode(nested(100000)), 0x1005u);
    EXPECT_EQ(dec_->nDepth, 0u);
    // Refused for their depth, once each, not for anything met further in.
    EXPECT_EQ(trace.Count("tqsClientProvWbxmlDecoderCharacter : nesting deeper than 32\n"), 2u)
        << trace.Joined();
}

TEST_F(Decoder, InlineTypes) {
    wbxml::Builder b = NewDoc();
    b.Characteristic("ROAMING").NamedParm("SYNC-ALLOWED", "1").NamedParm("SYNC-DEFAULT", "0").End();
    b.Characteristic("WI-FI").NamedParm("NETSSID", "net").NamedParm("PRIORITY", "2").End();
    EXPECT_EQ(Tree(b.End()),
              "ROAMING\n  SYNC-ALLOWED=1\n  SYNC-DEFAULT=0\nWI-FI\n  NETSSID=net\n  PRIORITY=2\n");

    Refused(NewDoc().Characteristic("OTHER").NamedParm("X", "1").End().End(), 0x1005,
            {"Tag Code = CHARACTER ATTR TYPE HAVE NOT...CP SPEC.....\n"});
    // An unlisted name in WI-FI or ROAMING leaves the value token for the handler, which refuses it.
    for (const char *type : {"WI-FI", "ROAMING"})
        Refused(NewDoc().Characteristic(type).NamedParm("COLOUR", "red").End().End(), 0x1005,
                {"tqsClientProvWbxmlDecoderParamAccess[6]\n"});
    // Their handlers take no record check: without one, a listed name is
    // treated like an unlisted one and its value token is refused.
    Open(wbxml::Builder().NamedParm("NETSSID", "x").Body());
    EXPECT_EQ(tqsClientProvWbxmlDecoderParamWifi(dec_, nullptr), 0x1005u);
    Open(wbxml::Builder().NamedParm("SYNC-ALLOWED", "1").Body());
    EXPECT_EQ(tqsClientProvWbxmlDecoderParamRoaming(dec_, nullptr), 0x1005u);
    // The other handlers refuse a missing record.
    Open({0x87, 0x07, 0x01});
    EXPECT_EQ(tqsClientProvWbxmlDecoderParamPort(dec_, nullptr), 2u);
    EXPECT_EQ(Consumed(), 0u);
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
    // One block is left: the first LINGER value, dropped by the valueless one.
    EXPECT_EQ(Tree(b.End().End(), 0, 1),
              "NAPDEF\n  BEARER=<0xAB>\n  CALLTYPE=ANALOG-MODEM\n  DNS-ADDR=d1\n  DNS-ADDR=d2\n  NAME=ab\n"
              "  NAP-ADDRTYPE=IPV4\n  NAPID=N1\n");
}

TEST_F(Decoder, ParmTokensAfterAPageSwitch) {
    // Other handlers peek through the tag reader after a switch: PULLENABLED
    // (0x47) is seen as 0x07 and refused; without the switch it is stored.
    EXPECT_EQ(Tree(In(prov::kPxPhysical).Parm(prov::kPullEnabled, "1").End().End()),
              "PXPHYSICAL\n  PULLENABLED=1\n");
    wbxml::Builder switched = In(prov::kPxPhysical);
    switched.Tag(prov::kTagParm, false, true).SwitchPage(0).Bytes({0x47, 0x06}).StrI("1");
    Refused(switched.End().End().End(), 0x1005, {"tqsClientProvWbxmlDecoderParamPxPhysical[7]\n"});
    // RESOURCE and APPAUTH peek the raw byte again.
    wbxml::Builder resource = In(prov::kResource);
    resource.Tag(prov::kTagParm, false, true).SwitchPage(1).Bytes({0x3A, 0x06}).StrI("u");
    EXPECT_EQ(Tree(resource.End().End().End()), "RESOURCE\n  URI=u\n");
    // A page switch between the name and the value attribute.
    wbxml::Builder between = In(prov::kApplication);
    between.Tag(prov::kTagParm, false, true).Byte(0x36).SwitchPage(0).Byte(0x06).StrI("w2");
    EXPECT_EQ(Tree(between.End().End().End()), "APPLICATION\n  APPID=w2\n");
}

TEST_F(Decoder, HandlerQuirks) {
    // RESOURCE: STARTPAGE without value marks the start page; PXLOGICAL does not.
    wbxml::Builder start = In(prov::kResource);
    start.Parm(prov::kStartPage).End().Characteristic(prov::kPxLogical).Parm(prov::kStartPage).End();
    EXPECT_EQ(Tree(start.End()), "RESOURCE\n  STARTPAGE=startpage\nPXLOGICAL\n");
    // NAPDEF: INIT without value sets the constant; with a value, nothing.
    wbxml::Builder init = In(prov::kNapDef);
    init.NamedParm("INIT").End().Characteristic(prov::kNapDef).NamedParm("INIT", "v").End();
    EXPECT_EQ(Tree(init.End()), "NAPDEF\n  INIT=empty\nNAPDEF\n");
    // APPAUTH: AAUTHTYPE values separated by 0x90 become one comma-joined text.
    wbxml::Builder appauth = In(prov::kAppAuth);
    appauth.Tag(prov::kTagParm, false, true).Bytes({0x33, 0x06, 0x91, 0x90, 0x92, 0x90}).StrI("X");
    EXPECT_EQ(Tree(appauth.End().End().End()), "APPAUTH\n  AAUTHTYPE=HTTP,BASIC,X\n");
    // Only APPAUTH accepts 0x90 there.
    wbxml::Builder resource = In(prov::kResource);
    resource.Tag(prov::kTagParm, false, true).Bytes({0x33, 0x06, 0x91, 0x90, 0x92, 0x01});
    Refused(resource.End().End(), 0x1005);
    // APPLICATION: listed inline names are kept, others skipped. Left behind:
    // a 129-byte scratch block per name-string parm and the OTHER value.
    wbxml::Builder app = In(prov::kApplication);
    app.NamedParm("FROM", "me@x").NamedParm("XCAP_AUID_DCS", "d").NamedParm("OTHER", "o");
    EXPECT_EQ(Tree(app.Parm(prov::kAppId, "w4").End().End(), 0, 4),
              "APPLICATION\n  APPID=w4\n  FROM=me@x\n  XCAP_AUID_DCS=d\n");
    // VENDORCONFIG keeps the last name/value pair; the first stays allocated.
    wbxml::Builder vendor = In(prov::kVendorConfig);
    vendor.Parm(prov::kName, "V").NamedParm("A", "1").NamedParm("B", "2");
    EXPECT_EQ(Tree(vendor.End().End(), 0, 2), "VENDORCONFIG\n  B=2\n  NAME=V\n");
    // A name-string parm whose name is not a string.
    wbxml::Builder noName = In(prov::kNapDef);
    noName.Tag(prov::kTagParm, false, true).Bytes({0x05, 0x45, 0x01, 0x01});
    EXPECT_EQ(Tree(noName.End().End(), 1), "");
}

TEST_F(Decoder, VendorNameStringFailurePaths) {
    // A name read that fails (before and after a piece of the name was read),
    // a cut after the name, a value read that fails. Whatever was read stays
    // with the record; the release of the field's own address is only looked
    // up by the tracker (one "not found" line), never freed.
    const struct {
        Bytes tail;
        bool nameLine;  // the "pszName NULL" line
        int notFound;   // tracker lines
    } cases[] = {
        {{0x05, 0x83}, false, 0},
        {{0x05, 0x03, 'n', 0, 0x83}, true, 1},
        {{0x05, 0x03, 'n', 0}, true, 1},
        {{0x05, 0x85}, false, 1},
        {{0x05, 0x03, 'n', 0, 0x06, 0x83}, false, 1},
    };
    const std::string kNotFound = "[syncml] MEMCHECK Not Found Address \n";
    for (const auto &c : cases) {
        Bytes body = In(prov::kVendorConfig).Tag(prov::kTagParm, false, true).Bytes(c.tail).Build();
        TraceCapture trace;
        testing::internal::CaptureStdout();
        EXPECT_EQ(Decode(body), 0x1007u);
        std::string out = testing::internal::GetCapturedStdout();
        int notFound = 0;
        for (size_t at = out.find(kNotFound); at != std::string::npos; at = out.find(kNotFound, at + 1))
            ++notFound;
        EXPECT_EQ(notFound, c.notFound) << out;
        EXPECT_EQ(trace.Contains("[tqsClientProvWbxmlDecoderParamVendorNameString] pszName NULL\n"),
                  c.nameLine);
    }
}

TEST_F(Decoder, ListParmsAndLenientDomain) {
    wbxml::Builder b = In(prov::kPxLogical);
    b.Parm(prov::kDomain, "a").Parm(prov::kDomain, "b").Parm(prov::kDomain, "c").End();
    b.Characteristic(prov::kAccess)
        .Parm(prov::kRule, "r")
        .Parm(prov::kAppId, "w2")
        .Parm(prov::kPortNbr, "80");
    b.Parm(prov::kDomain, "d").Parm(prov::kToNapId, "n").Parm(prov::kToProxy, "p").End();
    EXPECT_EQ(Tree(b.End()),
              "PXLOGICAL\n  DOMAIN=a\n  DOMAIN=b\n  DOMAIN=c\nACCESS\n  APPID=w2\n  DOMAIN=d\n  PORTNBR=80\n"
              "  RULE=r\n  TO-NAPID=n\n  TO-PROXY=p\n");

    // A DOMAIN list failing inside PXPHYSICAL is only traced; elsewhere it ends the decode.
    auto failingDomain = [](prov::Token type) {
        wbxml::Builder f = In(type);
        return f.Tag(prov::kTagParm, false, true)
            .Bytes({0x17, 0x22})
            .End()
            .Parm(prov::kToNapId, "n")
            .End()
            .End();
    };
    TraceCapture trace;
    EXPECT_EQ(Tree(failingDomain(prov::kPxPhysical)), "PXPHYSICAL\n  TO-NAPID=n\n");
    EXPECT_TRUE(trace.Contains("[ERROR] tqsClientProvWbxmlDecoderParamListString Fail\n"));
    Refused(failingDomain(prov::kPxLogical), 0x1005);
}

TEST_F(Decoder, SecondNameValuePairInOneListParm) {
    // The second pair reads into the text already listed. A replaced text keeps
    // both items; a joined one keeps the listed text and adds the extension
    // (joining would otherwise free a listed item); an unchanged or dropped
    // value adds nothing.
    const struct {
        Bytes second;  // after the first pair SERVICE=CL-WSP
        const char *added;
    } cases[] = {
        {{0x24, 0x06, prov::kIpv4}, "  SERVICE=CL-WSPIPV4\n"},
        {{0x24, 0x06, 0x03, 'x', 0}, "  SERVICE=CL-WSPx\n"},
        {{0x24, 0x06, 0xC3, 0x02, 'o', 'p'}, "  SERVICE=op\n"},
        {{0x24, 0x06, 0xE0}, "  SERVICE=<0xE0>\n"},
        {{0x24, 0x06}, ""},
        {{0x24}, ""},
    };
    for (const auto &c : cases) {
        wbxml::Builder b = In(prov::kPort);
        b.Tag(prov::kTagParm, false, true).Bytes({0x24, 0x06, prov::kClWsp}).Bytes(c.second);
        EXPECT_EQ(Tree(b.End().End().End()), std::string("PORT\n  SERVICE=CL-WSP\n") + c.added);
    }
}

TEST_F(Decoder, UnknownParmTraces) {
    const struct {
        prov::Token type;
        prov::Token parm;
        Lines lines;  // in this order
    } cases[] = {
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
    for (const auto &c : cases) {
        TraceCapture trace;
        EXPECT_EQ(Tree(In(c.type).Parm(c.parm, "x").End().End(), 0x1005), "");
        const Lines &lines = trace.lines();
        EXPECT_NE(std::search(lines.begin(), lines.end(), c.lines.begin(), c.lines.end()), lines.end())
            << trace.Joined();
    }
}

// The labels come from the field lists; here that the two labelling handlers
// trace one per parm, '_' for '-', and another handler none.
TEST_F(Decoder, ApplicationAndResourceParmsTraceTheirLabels) {
    const struct {
        prov::Token type;
        uint8_t parm;
        const char *label;
    } cases[] = {
        {prov::kApplication, 0x39, "_TO_PROXY"},
        {prov::kResource, 0x1C, "_STARTPAGE"},
        {prov::kPxLogical, 0x07, nullptr},
    };
    for (const auto &c : cases) {
        TraceCapture trace;
        wbxml::Builder b = In(c.type);
        b.Tag(prov::kTagParm, false, true).Bytes({c.parm, prov::kValueAttr});
        Tree(b.StrI("v").End().End().End());
        EXPECT_EQ(trace.Count("SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME"), c.label != nullptr ? 1u : 0u);
        if (c.label != nullptr) {
            EXPECT_EQ(trace.Count(std::string("SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME") + c.label + "\n"), 1u);
        }
    }
}

// Seventeen 1 MiB values are no join and decode; one value extended past the
// 16 MiB the joins of a decode may copy fails there as a failed allocation of
// that join does: a token is dropped, an inline string ends the value.
TEST_F(Decoder, JoinBoundCountsOnlyJoinsAndFailsLikeTheirAllocation) {
    wbxml::Builder values = In(prov::kPxLogical);
    for (int i = 0; i < 17; ++i) values.Parm(prov::kDomain, std::string(1 << 20, 'x'));
    EXPECT_EQ(Decode(values.End().End().Build()), 0u);
    const struct {
        Bytes piece;
        TqsResult status;
        const char *line;
        size_t length;  // of the joined value: sixteen joins fit
    } joins[] = {
        {{prov::kIpv4},
         0,
         "[Error] [tqsClientProvWbxmlDecoderGetParamTokenVal] pszData NULL",
         1000000 + 16 * 4},
        {{0x03, 'y', 0}, 0x1007, "[Error] [tqsClientProvWbxmlDecoderGetStr] pszData NULL", 0},
    };
    for (const auto &j : joins) {
        wbxml::Builder b = In(prov::kNapDef);
        b.Tag(prov::kTagParm, false, true).Bytes({0x07, prov::kValueAttr}).StrI(std::string(1000000, 'x'));
        for (int i = 0; i < 17; ++i) b.Bytes(j.piece);
        TraceCapture trace;
        EXPECT_EQ(Decode(b.End().End().End().Build()), j.status);
        EXPECT_EQ(trace.Count(j.line), 1u) << j.line;
        if (j.status != 0) continue;
        auto *character = static_cast<tqsWapCharacter *>(doc_->ptCharacterList->ptHead->pItem);
        EXPECT_EQ(strlen(character->ptNapDef->pszName), j.length);
    }
}

TEST_F(Decoder, TruncatedDocumentsFailWithoutTouchingMemoryOutside) {
    wbxml::Builder b;
    b.UseStringTable().DocVersion10().Characteristic(prov::kNapDef).Parm(prov::kNapId, "N");
    b.NamedParm("INIT").Characteristic(prov::kNapAuthInfo).Parm(prov::kAuthType, prov::kPap).End();
    b.End().Characteristic(prov::kApplication).NamedParm("FROM", "f").Parm(prov::kAppId, "w2").End().End();
    Bytes full = b.Build();
    ASSERT_EQ(Decode(full), 0u);
    for (size_t n = 0; n < full.size(); ++n) {
        EXPECT_NE(Decode(Bytes(full.begin(), full.begin() + static_cast<long>(n))), 0u) << n;
        EXPECT_EQ(doc_, nullptr) << n;
    }
}

// ---- Corpus --------------------------------------------------------------------
//
// Every body of the corpus is decoded. Where the decoder accepts it, its tree
// must be the XML beside the sample read by the decoder's rules (below).

// The body of a push PDU: TID, PDU type, uintvar header length, headers, body.
Bytes PduBody(const Bytes &pdu) {
    size_t pos = 2, headerLen = 0;
    for (uint8_t b = 0x80; (b & 0x80) != 0 && pos < pdu.size();) {
        b = pdu[pos++];
        headerLen = headerLen << 7 | (b & 0x7F);
    }
    return Bytes(pdu.begin() + static_cast<long>(std::min(pos + headerLen, pdu.size())), pdu.end());
}

// Value tokens that wbxml2xml and the XML sources name but the decoder keeps
// as their raw byte (the tables do not reach them).
const std::map<std::string, std::string> kRawTokens = {
    {"GSM-CSD", "<0xAA>"},     {"GSM-GPRS", "<0xAB>"}, {"CO-WSP", "<0xCB>"}, {"CO-SEC-WSP", "<0xCD>"},
    {"OTA-HTTP-PO", "<0xD2>"}, {"APPSRV", "<0x8D>"},   {"HA", "<0xE1>"},
};

// Parm names with an APPLICATION token; the others are written inline.
const std::set<std::string> kAppTokens = {"APPID",    "PROVIDER-ID", "NAME",     "AACCEPT", "APROTOCOL",
                                          "INTERNET", "TO-PROXY",    "TO-NAPID", "ADDR"};

// The XML read by the decoder's rules: a parm without value leaves its field
// empty (so does an empty value where `emptyIsNone`: the sample encodes it as
// a value attribute without content), except STARTPAGE in RESOURCE
// ("startpage") and INIT in NAPDEF ("empty"); values the tables do not name
// stay raw tokens; APPLICATION keeps only FROM and XCAP_* of the names written
// inline. Each inline name costs a scratch block, and a value dropped stays
// allocated: both are counted.
void ApplyDecoderRules(std::vector<waptree::Node> *nodes, bool emptyIsNone, size_t *inlineNames,
                       size_t *dropped) {
    for (waptree::Node &n : *nodes) {
        std::vector<std::string> parms;
        for (const std::string &p : n.parms) {
            size_t eq = p.find('=');
            std::string name = p.substr(0, eq);
            bool inlineName = n.type == "APPLICATION" && kAppTokens.count(name) == 0;
            *inlineNames += inlineName ? 1 : 0;
            if (inlineName && name != "FROM" && name.rfind("XCAP_", 0) != 0) {
                *dropped += eq != std::string::npos ? 1 : 0;
            } else if (eq == std::string::npos || (emptyIsNone && eq + 1 == p.size())) {
                if (n.type == "RESOURCE" && p == "STARTPAGE") parms.push_back("STARTPAGE=startpage");
                if (n.type == "NAPDEF" && p == "INIT") parms.push_back("INIT=empty");
            } else {
                auto raw = kRawTokens.find(p.substr(eq + 1));
                parms.push_back(raw != kRawTokens.end() ? p.substr(0, eq + 1) + raw->second : p);
            }
        }
        n.parms = parms;
        ApplyDecoderRules(&n.children, emptyIsNone, inlineNames, dropped);
    }
}

// Samples the decoder refuses, and where: each was traced byte by byte
// through the decoder's steps, which refuse the bytes exactly where it does.
const std::map<std::string, TqsResult> kRefused = {
    {"apnprov-ref-myapn.wbxml", 0x1005},        // `01 00 00 01` at the end: SWITCH_PAGE read as tag 0
    {"cpc-data-sync.wbxml", 0x1005},            // `87 05 03 "SYNCTYPE"` in RESOURCE: no 0x05 there
    {"moz-provcont-appendix-c.wbxml", 0x1005},  // `87 47` (PULLENABLED) in PXLOGICAL: not in its table
    {"mihini-dm-bootstrap.pdu", 0x1005},        // `87 05 03 "TO-PROXY"` after APPADDR: read as one
    {"vn-viettel-8x85.pdu", 0x1005},            // `87 21 06 85 03 00 01` in PXPHYSICAL: 0x85 alone,
    {"vn-vinaphone-8x85.pdu", 0x1005},          // then the handler meets 03
    {"ws-sync-server.wbxml", 0x1007},           // AACCEPT's string run meets 0x00, no value token
    {"own/wifi-roaming.wbxml", 0x1007},         // `87 05 03 "P" 00 E1`: 0xE1 unknown, the name read fails
    {"negative/gaia-cht-parm-typo.wbxml", 0x1005},          // LITERAL tag for <Parm>
    {"negative/moz-vendorconfig-truncated.wbxml", 0x1007},  // document element not closed
    {"negative/vn-mobifone-nokia-ota.pdu", 0x100B},         // not a provisioning document (public id 1)
};

TEST_F(Decoder, CorpusTreesAgreeWithTheXml) {
    std::vector<std::string> samples;
    for (const char *pattern : {"*.wbxml", "*.pdu", "own/*.wbxml", "negative/*.wbxml", "negative/*.pdu"}) {
        for (const std::string &path : corpus::List(pattern))
            samples.push_back(path.substr(corpus::Dir().size() + 1));
    }
    EXPECT_EQ(samples.size(), 48u);
    for (const auto &r : kRefused)
        EXPECT_EQ(std::count(samples.begin(), samples.end(), r.first), 1) << r.first;

    for (const std::string &sample : samples) {
        SCOPED_TRACE(sample);
        Bytes bytes = corpus::Read(sample);
        ASSERT_FALSE(bytes.empty());
        auto refused = kRefused.find(sample);
        EXPECT_EQ(Decode(sample.ends_with(".pdu") ? PduBody(bytes) : bytes),
                  refused != kRefused.end() ? refused->second : 0u);
        if (refused != kRefused.end()) {
            EXPECT_EQ(doc_, nullptr);
            continue;
        }
        Bytes xml = corpus::Read(sample.substr(0, sample.rfind('.')) + ".xml");
        std::vector<waptree::Node> expected = waptree::FromXml(std::string(xml.begin(), xml.end()));
        size_t inlineNames = 0, dropped = 0;
        ApplyDecoderRules(&expected, sample == "gaia-tef-yahoo-email.wbxml", &inlineNames, &dropped);
        std::string tree = waptree::Render(waptree::FromTree(doc_));
        EXPECT_EQ(tree, waptree::Render(expected));
        EXPECT_EQ(tree.empty(), sample == "moz-empty-doc-netwpin.wbxml");

        // The release leaves the kept blocks, a 129-byte scratch block per
        // inline APPLICATION name and the values of those it drops.
        std::set<void *> kept = waptree::Kept(doc_);
        Release();
        size_t scratch = 0, other = 0;
        for (const LiveBlock &b : mem_.Live()) {
            if (kept.count(b.address) != 0) continue;
            ++(b.file == "jni/src/ClientProv/tqsClientProvWbxmlDecoder" && b.size == 129 ? scratch : other);
        }
        EXPECT_EQ(scratch, inlineNames);
        EXPECT_EQ(other, dropped);
    }
}

}  // namespace
