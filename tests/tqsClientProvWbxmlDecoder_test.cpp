// The WBXML provisioning decoder: byte and token readers, header and string
// table, value tokens, characteristics, parm handlers, and the corpus.
#include "tqsClientProvWbxmlDecoder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <functional>
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

// ... and inside a parm there, after the attribute bytes given.
wbxml::Builder ParmIn(prov::Token type, const Bytes &attributes) {
    return In(type).Tag(prov::kTagParm, false, true).Bytes(attributes);
}

// A whole document of one such parm.
wbxml::Builder OneParm(prov::Token type, const Bytes &attributes) {
    return ParmIn(type, attributes).End().End().End();
}

// A builder inside a characteristic whose attribute bytes are given.
wbxml::Builder Typed(const Bytes &attributes) {
    return NewDoc().Tag(prov::kTagCharacteristic, true, true).Bytes(attributes);
}

// A built document: the tree it decodes to ("" when refused), its status, the
// blocks its decode drops on purpose, and lines it traces once each.
struct Doc {
    wbxml::Builder doc;
    std::string tree;
    TqsResult status;
    size_t leftovers;
    Lines lines;
};

Doc Decoded(const wbxml::Builder &doc, const std::string &tree, size_t leftovers = 0,
            const Lines &lines = {}) {
    return {doc, tree, 0, leftovers, lines};
}

Doc Refused(const wbxml::Builder &doc, const Lines &lines = {}, TqsResult status = 0x1005) {
    return {doc, "", status, 0, lines};
}

// A reader run over raw bytes: its result, and what it read as text.
using Reader = std::function<TqsResult(tqsWbxmlDecoder *, std::string *)>;

struct Read {
    Reader read;
    Bytes bytes;
    TqsResult result;
    std::string out;
    uint32_t consumed;
};

// A reader of one number (0x12 until read); with `flags` both element flags
// are set before the read and what it leaves of them follows the number.
template <typename T, typename ReadFn>
Reader Number(ReadFn read, bool flags = false) {
    return [=](tqsWbxmlDecoder *d, std::string *out) {
        if (flags) d->bHasContent = d->bHasAttribute = 1;
        T value = 0x12;
        auto result = static_cast<TqsResult>(read(d, &value));
        *out = std::to_string(value) + (flags && d->bHasContent ? "C" : "") +
               (flags && d->bHasAttribute ? "A" : "");
        return result;
    };
}

// A text reader on a text that starts as `start` (null: none).
template <typename ReadFn>
Reader Texts(ReadFn read, const char *start = nullptr) {
    return [=](tqsWbxmlDecoder *d, std::string *out) {
        char *text = start != nullptr ? NewText(start) : nullptr;
        auto result = static_cast<TqsResult>(read(d, &text));
        *out = Text(text);
        tqsMemFree_debug(text);
        return result;
    };
}

// A reader of nothing: `read` on the decoder and these arguments.
template <typename ReadFn, typename... Args>
Reader Call(ReadFn read, Args... args) {
    return [=](tqsWbxmlDecoder *d, std::string *) { return read(d, args...); };
}

// `read` after the string table that the bytes open with.
Reader AfterTable(Reader read) {
    return [=](tqsWbxmlDecoder *d, std::string *out) {
        d->nStrSize = tqsClientProvWbxmlDecoderMakeStrTable(d, &d->pStringTable);
        return read(d, out);
    };
}

// Every test tracks the library's blocks; what a failing decode leaves behind
// by design is freed by Reset() so the sanitizer's leak check stays quiet.
class Decoder : public ::testing::Test {
   protected:
    ~Decoder() override { Reset(); }

    // Releases the tree (1 when there is one) and the decoder.
    void Release() {
        EXPECT_EQ(tqsClientProvWbxmlDeleteWapDoc(doc_), doc_ != nullptr ? 1u : 0u);
        EXPECT_EQ(dec_ != nullptr ? tqsClientProvWbxmlDeleteDecoder(dec_) : 0u, 0u);
        doc_ = nullptr;
        dec_ = nullptr;
    }

    void Reset() {
        Release();
        mem_.FreeAll();
    }

    // A decoder over raw bytes (no WBXML header is read).
    void Open(const Bytes &bytes) {
        static const unsigned char kEmpty[1] = {0};
        Release();
        EXPECT_EQ(tqsClientProvWbxmlInitDecoder(&dec_, bytes.empty() ? kEmpty : bytes.data(),
                                                static_cast<uint32_t>(bytes.size())),
                  0u);
    }

    // Each reader over its own bytes: its result, what it read, the bytes it took.
    void Reads(const std::vector<Read> &reads) {
        for (const Read &r : reads) {
            SCOPED_TRACE(testing::PrintToString(r.bytes));
            Open(r.bytes);
            std::string out;
            EXPECT_STATUS(r.read(dec_, &out), r.result);
            EXPECT_EQ(out, r.out);
            EXPECT_EQ(Consumed(), r.consumed);
        }
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

    // Each document decoded (see Tree), its lines traced in a row and once each.
    void Docs(const std::vector<Doc> &docs) {
        for (const Doc &d : docs) {
            SCOPED_TRACE(testing::PrintToString(d.doc.Body()));
            TraceCapture trace;
            EXPECT_EQ(Tree(d.doc, d.status, d.leftovers), d.tree);
            const Lines &lines = trace.lines();
            EXPECT_NE(std::search(lines.begin(), lines.end(), d.lines.begin(), d.lines.end()), lines.end())
                << trace.Joined();
            for (const std::string &line : d.lines) EXPECT_EQ(trace.Count(line), 1u) << line;
        }
    }

    uint32_t Consumed() const { return tqsClientProvWbxmlDecoderDecodingSize(dec_); }

    MemCheck mem_;
    tqsWbxmlDecoder *dec_ = nullptr;
    tqsWapDoc *doc_ = nullptr;
};

// ---- Byte and token readers ------------------------------------------------

TEST_F(Decoder, ByteTagAndPageReaders) {
    const Reader uint32 = Number<uint32_t>(tqsClientProvWbxmlDecoderBufferReadUint32);
    const Reader readTag = Number<uint8_t>(tqsClientProvWbxmlDecoderReadElement, true);
    const Reader curTag = Number<uint8_t>(tqsClientProvWbxmlDecoderCurElement, true);
    const Reader checkTag = Call(tqsClientProvWbxmlDecoderCheckElement, uint8_t{0x06});
    const Reader checkAttr = Call(tqsClientProvWbxmlDecoderCheckAttr, uint8_t{0x06});
    Reads({
        {uint32, {0x00}, 1, "0", 1},
        {uint32, {0x81, 0x00, 0x7F}, 1, "128", 2},
        {uint32, {0x8F, 0xFF, 0xFF, 0xFF, 0x7F}, 1, "4294967295", 5},
        {uint32, {0x9F, 0xFF, 0xFF, 0xFF, 0x7F}, 1, "4294967295", 5},  // bits above 32 are lost
        {uint32, {0x81, 0x80, 0x80, 0x80, 0x80, 0x00}, 0, "18", 5},    // five continuation bytes
        {uint32, {0x81}, 0, "18", 1},                                  // cut off
        {uint32, {}, 0, "18", 0},
        {Number<uint8_t>(tqsClientProvWbxmlDecoderBufferReadByte), {0xAB}, 1, "171", 1},
        {Number<uint8_t>(tqsClientProvWbxmlDecoderBufferReadByte), {}, 0, "18", 0},
        // The tag readers split off the content and attribute bits; only a read sets the flags.
        {readTag, {0xC6}, 0, "6CA", 1},
        {readTag, {0x47}, 0, "7C", 1},
        {readTag, {0x87}, 0, "7A", 1},
        {readTag, {}, 0x1007, "18CA", 0},
        {curTag, {0xC6}, 0, "6CA", 0},
        {curTag, {}, 0x1007, "18CA", 0},
        {Number<uint8_t>(tqsClientProvWbxmlDecoderCurElementNotAND), {0xC6}, 0, "198", 0},
        {Number<uint8_t>(tqsClientProvWbxmlDecoderCurAttr), {}, 0x1007, "18", 0},
        {checkTag, {0x06, 0x01, 0x01}, 0, "", 2},  // a content-less tag takes the END after it
        {checkTag, {0x86, 0x41}, 0, "", 2},        // ... any byte whose low bits are 0x01
        {checkTag, {0x46, 0x01}, 0, "", 1},        // with content the END is not taken
        {checkTag, {0x07, 0x01}, 0x1005, "", 1},
        {checkAttr, {0x07}, 0x1005, "", 1},
        {checkAttr, {}, 0x1007, "", 0},
    });
    // From page 1 to 0, from 7 to anything else: the page left and the first and last lines traced.
    auto from = [](uint8_t page) -> Reader {
        return [=](tqsWbxmlDecoder *d, std::string *out) {
            d->nCodePage = page;
            TraceCapture trace;
            TqsResult result = tqsClientProvWbxmlDecoderCheckCodePage(d);
            *out = std::to_string(d->nCodePage) + " " + trace.lines().front() + trace.lines().back();
            return result;
        };
    };
    const std::string kLine = "tqsClientProvWbxmlDecoderCheckCodePage\n";
    Reads({
        {from(7), {0x00, 0x01}, 0, "1 " + kLine + "TQS_WBXML_TAG_SWITCH_PAGE1\n", 2},
        // The page byte is masked.
        {from(7), {0x00, 0x41}, 0, "1 " + kLine + "TQS_WBXML_TAG_SWITCH_PAGE1\n", 2},
        {from(1), {0x00, 0x00}, 0, "0 " + kLine + "TQS_WBXML_TAG_SWITCH_PAGE0\n", 2},
        {from(7), {0x00, 0x02}, 0x1005, "7 " + kLine + "ERROR::TQS_CODE_PAGE_UNKNOWN\n", 2},
        {from(7), {0x00}, 0x1005, "7 " + kLine + "tqsClientProvWbxmlDecoderReadElement\n", 1},
    });
    Open({0x07});
    TraceCapture trace;
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckElement(nullptr, 0x06), 1u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderCheckAttr(dec_, 0x06), 0x1005u);
    EXPECT_EQ(trace.lines(), (Lines{"[Error] [tqsClientProvWbxmlDecoderCheckElement] ptWbxmlDecoder NULL\n",
                                    "tqsClientProvWbxmlDecoderCheckAttr\n", "nId:6, nTemp:7\n"}));
}

TEST_F(Decoder, TextReaders) {
    const Reader content = Texts(tqsClientProvWbxmlDecoderContent), tabled = AfterTable(content);
    const Reader strT = AfterTable(Texts(tqsClientProvWbxmlDecoderGetStrTable));
    const Reader element = Texts(
        [](tqsWbxmlDecoder *d, char **text) { return tqsClientProvWbxmlDecoderElement(d, 0x07, text); });
    auto comma = [](const char *start) { return Texts(tqsCommaAdd, start); };
    // OPAQUE content and the size of the block it is in.
    const Reader opaque = [](tqsWbxmlDecoder *d, std::string *out) {
        char *text = nullptr;
        TqsResult result = tqsClientProvWbxmlDecoderContent(d, &text);
        *out = Text(text) + " in " + std::to_string(text != nullptr ? tqsMemFindByAddress(text)->nSize : 0);
        tqsMemFree_debug(text);
        return result;
    };
    const Reader skipAttribute = Call(tqsClientProvWbxmlDecoderSkipAttribute);
    const Reader skipElement = [](tqsWbxmlDecoder *d, std::string *out) {
        TraceCapture trace;
        TqsResult result = tqsClientProvWbxmlDecoderSkipElement(d, 0);
        *out = trace.lines().back();
        return result;
    };
    const std::string kSkipped = "tqsClientProvWbxmlDecoderSkipElement Error Code:";
    Reads({
        // Content: a run of string pieces and value tokens up to the END (left unread).
        {tabled,
         {0x08, 'x', 'y', 'z', 0, 'T', 'a', 'b', 0, 0x03, 'a', 'b', 'c', 0, 0x83, 0x04, 0x85, 0x01},
         0,
         "abcTabIPV4",
         17},
        // nStrSize 0: the bound wraps, any index gives an empty text, nothing read outside the table.
        {tabled, {0x00, 0x83, 0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 0x01}, 0, "", 7},
        {tabled, {0x00, 0x83, 0x02, 0x01}, 0, "", 3},
        {content, {0x03, 'I', 'N', 'I', 'T', 0, 0x06, 0x03, 'v', 0}, 0, "INIT", 6},  // stops at value=
        {content, {0x03, 'a', 'b'}, 0x1007, "ab", 4},  // unterminated: runs into the padding
        {content, {0x85}, 0, "IPV4", 1},
        {content, {0xE0}, 0, "\xE0", 1},  // an unknown token is kept as its byte
        {Texts(tqsClientProvWbxmlDecoderGetStr), {'a', 'b'}, 1, "ab", 3},
        // Table "ab\0cd\0": index 3 is "cd"; index 5 (the last zero) is empty; 6 is beyond nStrSize - 1.
        {strT, {0x06, 'a', 'b', 0, 'c', 'd', 0, 0x03}, 1, "cd", 8},
        {strT, {0x06, 'a', 'b', 0, 'c', 'd', 0, 0x05}, 1, "", 8},
        {strT, {0x06, 'a', 'b', 0, 'c', 'd', 0, 0x06}, 0, "(null)", 8},
        // OPAQUE of 2 bytes at offset 3 of a 5-byte body, whose padding ends at 518 (5 + 512 + 1):
        // a length up to 515 gets its whole block, a longer one a block cut to the body.
        {opaque, {0xC3, 0x81, 0x48, 'h', 'i'}, 0, "hi in 202", 7},
        {opaque, {0xC3, 0x84, 0x03, 'h', 'i'}, 0, "hi in 517", 7},
        {opaque, {0xC3, 0x84, 0x04, 'h', 'i'}, 0, "hi in 4", 5},
        {skipAttribute, {0x45, 0x03, '1', 0, 0x01, 0x99}, 0, "", 5},
        {skipAttribute, {0x12, 0x80, 0x04}, 0, "", 2},
        {skipAttribute, {0x12}, 0x1007, "", 1},
        {skipElement, {0x46, 0x03, 'a', 0, 0x01, 0x01}, 0, kSkipped + "0\n", 4},  // stops on the closing END
        {skipElement, {0x46, 0x00, 0x01, 0x47, 0x01, 0x01, 0x01}, 0, kSkipped + "0\n", 5},  // page switches
        {skipElement, {0x01, 0x46, 0x01}, 0x1007, kSkipped + "4103\n", 3},  // END at depth 0: runs to the end
        {skipElement, {0x46, 0x83}, 0x1007, kSkipped + "4103\n", 2},        // a failing string read
        {element, {0x47, 0x03, 'v', 0, 0x01}, 0, "v", 5},
        {element, {0x47, 0x03, 'v', 0, 0x06}, 0x1005, "v", 5},
        {element, {0x07, 0x99}, 0, "(null)", 1},
        {comma("A"), {0x90, 0x03, 'B', 0, 0x01}, 0, "A,B", 4},
        {comma("HTTP"), {0x90, 0x92, 0x01}, 0, "HTTP,BASIC", 2},  // the token's own rule adds the comma
        {comma("A"), {0x90, 0x85, 0x01}, 0, "AIPV4", 2},          // address types join without one
        {comma("HTTP"), {0x90, 0x00, 0x01, 0x93, 0x01}, 0, "HTTP,DIGEST", 4},  // a page switch first
        {comma("A"), {0x90, 0x77, 0x01}, 0, "A", 2},                           // unknown byte: skipped
        {comma(nullptr), {0x90, 0x03, 'B', 0, 0x01}, 0, ",B", 4},              // no first value
        {comma("A"), {0x90}, 0x1007, "A", 1},
    });

    // Content below 0x80 that is no string: a warning naming the byte before, then a skip to the END.
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

    // OPAQUE with an embedded zero: the text ends there, the length is the declared one.
    Open({0xC3, 0x02, 'a', 0, 0x01});
    uint32_t length = 0;
    ASSERT_EQ(tqsClientProvWbxmlDecoderReadAttr(dec_, &id), 0u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrExtension(dec_, id, &text, &length), 1);
    EXPECT_EQ(length, 2u);
    EXPECT_EQ(Text(text), "a");
    EXPECT_EQ(Consumed(), 4u);
    tqsMemFree_debug(text);
    EXPECT_EQ(tqsClientProvWbxmlDecoderGetStrExtension(dec_, 0x03, &text, &length), 1);  // not OPAQUE
    EXPECT_EQ(Consumed(), 4u);

    // A declared table length near 4 GiB would wrap length + 2; the table is
    // sized by what the body has and the read still fails.
    Open({0x8F, 0xFF, 0xFF, 0xFF, 0x7F, 'a', 'b'});
    EXPECT_EQ(tqsClientProvWbxmlDecoderMakeStrTable(dec_, &dec_->pStringTable), 0xFFFFFFFFu);
    ASSERT_NE(dec_->pStringTable, nullptr);
    EXPECT_STREQ(reinterpret_cast<char *>(dec_->pStringTable), "ab");
    EXPECT_EQ(dec_->nStrTableBytes, 4u);
}

// ---- Header, public identifier ---------------------------------------------

TEST_F(Decoder, HeaderAndPublicIdentifier) {
    wbxml::Builder atOffset2;
    atOffset2.TableString("x");
    const struct {
        const char *name;
        Bytes body;
        TqsResult status;
    } cases[] = {
        {"version only", {0x03}, 0x100B},
        {"public id 0x0B", {0x03, 0x0B, 0x6A, 0x00, 0x45, 0x01}, 0},
        {"public id 0x0C", {0x03, 0x0C, 0x6A, 0x00, 0x45, 0x01}, 0x100B},
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

    TraceCapture trace;
    EXPECT_EQ(Decode({0x02, 0x01, 0x04, 0x00}), 0x100Bu);
    EXPECT_EQ(doc_, nullptr);
    EXPECT_EQ(trace.lines(), (Lines{"tqsClientProvWbxmlInitDecoder\n", "tqsClientProvWbxmlDecoder\n",
                                    "tqsClientProvWbxmlDecoderWbxmlHeader\n",
                                    "[tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion [0x2]\n",
                                    "[tqsClientProvWbxmlDecoderWbxmlHeader] pnPublicid [0x1]\n",
                                    "[tqsClientProvWbxmlDecoderWbxmlHeader] pnCharset [0x4]\n",
                                    "[tqsClientProvWbxmlDecoderWbxmlHeader] ptWbxmlDecoder->nStrSize [0x0]\n",
                                    "nPublicid[1], Avaliable Id:11\n\n",
                                    "ERROR : tqsClientProvWbxmlDecoder Difference Ver!!\n\n",
                                    "[Syncml] ERROR : DM = fffff00b\n"}));
    trace.Clear();
    EXPECT_EQ(Decode({}), 0x100Bu);
    ASSERT_EQ(trace.lines().size(), 6u) << trace.Joined();  // the lines above, pnVersion failing first
    EXPECT_EQ(trace.lines()[3], "[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion\n");
    EXPECT_EQ(Decode(atOffset2.Build()), 0x100Bu);
    EXPECT_TRUE(trace.Contains("ptWbxmlDecoder->pStringTable[x]\n\n")) << trace.Joined();

    tqsWapDoc *doc = reinterpret_cast<tqsWapDoc *>(this);
    EXPECT_EQ(tqsClientProvWbxmlDecoder(nullptr, &doc), 2u);
    EXPECT_EQ(doc, nullptr);
    tqsWbxmlDecoder bare{};  // no buffer
    EXPECT_EQ(tqsClientProvWbxmlDecoder(&bare, &doc), 2u);
    EXPECT_EQ(tqsClientProvWbxmlDecoderWbxmlBody(&bare, &doc), 0x100Au);
}

// ---- Value tokens ------------------------------------------------------------

// Every byte looked up on the text "ab": what it joins, or that it is unknown
// and leaves the text alone. Call types join behind the zero (shown as "\0").
TEST(ValueTokens, LookupTablesWithTheirScanBoundsShadowingAndJoins) {
    MemCheck mem;
    std::string found;
    int untouched = 0;
    for (int token = 0; token < 256; ++token) {
        char *value = NewText("ab");
        TqsResult ret = tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<uint8_t>(token), &value);
        std::string text = value;
        if (ret == 0 && text == "ab") text += "\\0" + std::string(value + 3);
        char hex[8];
        std::snprintf(hex, sizeof hex, "%02X=", token);
        if (ret == 0) found += hex + text + " ";
        untouched += ret == 0x1005 && text == "ab";
        tqsMemFree_debug(value);
    }
    // 0x91 is "HTTP": table C position 0 wins over table D position 1 and table
    // B position 6; 0x92 is never "V.110", 0x93 never "X.31". 0xCB.., 0x8D,
    // 0x8E and 0x93-in-A lie beyond the scan.
    EXPECT_EQ(found,
              "85=abIPV4 86=abIPV6 87=abE164 88=abALPHA 89=abAPN 8A=abSCODE 8B=abTETRA-ITSI 8C=abMAN "
              "90=ab\\0ANALOG-MODEM 91=ab,HTTP 92=ab,BASIC 93=ab,DIGEST 94=ab\\0BIT-TRANSPARENT "
              "95=ab\\0DIRECT-ASYNCHRONOUS-DATA-SERVICE 9A=ab,PAP 9B=ab,CHAP 9C=ab,HTTP-BASIC "
              "9D=ab,HTTP-DIGEST 9E=ab,WTLS_SS 9F=ab,MD5 CA=ab\\0CL-WSP ");
    EXPECT_EQ(untouched, 256 - 21);
    EXPECT_TRUE(mem.Live().empty());
}

// ---- Documents built by hand -------------------------------------------------

TEST_F(Decoder, DocumentStructure) {
    // First byte END: success without a tree.
    EXPECT_EQ(Decode(wbxml::Builder().End().Build()), 0u);
    EXPECT_EQ(doc_, nullptr);
    // SWITCH_PAGE or a parm first, or a document element without content: an empty tree.
    for (const Bytes &body :
         {wbxml::Builder().SwitchPage(1).Build(), wbxml::Builder().Parm(prov::kName, "x").Build(),
          wbxml::Builder().Tag(prov::kTagWapProvisioningDoc, false, false).Build()}) {
        EXPECT_EQ(Decode(body), 0u);
        ASSERT_NE(doc_, nullptr);
        EXPECT_EQ(doc_->ptCharacterList, nullptr);
    }
    // Every attribute byte is taken as the type token, SWITCH_PAGE included:
    // the NAPDEF record exists, but its parms find no handler.
    EXPECT_EQ(Decode(Typed({0x55, 0x00, 0x01, 0x01}).Parm(prov::kName, "x").End().End().Build()), 0x1005u);
    EXPECT_EQ(dec_->nCodePage, 1);

    auto versioned = [](const Bytes &attributes) {
        return wbxml::Builder().Tag(prov::kTagWapProvisioningDoc, true, true).Bytes(attributes);
    };
    auto port = [](const wbxml::Builder &parent) {
        return wbxml::Builder(parent).Characteristic(prov::kPort).End().End();
    };
    auto untyped = [] { return NewDoc().Tag(prov::kTagCharacteristic, true, false); };
    wbxml::Builder run;  // no document element: a top-level run of characteristics
    run.Characteristic(prov::kBootstrap).Parm(prov::kName, "B").End().Characteristic(prov::kPort).End();
    wbxml::Builder page1 = In(prov::kApplication);  // page-0 types are taken on page 1 as well
    page1.End().Characteristic({0x51, 1}).End().Characteristic(prov::kApplication).End();
    wbxml::Builder after = In(prov::kPxLogical);
    after.Characteristic(prov::kPxPhysical).End().Parm(prov::kProxyId, "P").End().End();
    Docs({
        Decoded(run.End(), "BOOTSTRAP\n  NAME=B\nPORT\n"),
        Refused(wbxml::Builder().StrI("x"), {"Unknown Element[3]\n", "WBXML Decode Error[3]\n"}),
        // A parm straight inside the document would never be consumed: refused.
        Refused(NewDoc().Parm(prov::kName, "x").End(),
                {"Tag Code [7] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n\n"}),
        Decoded(port(versioned({0x45, 0x03, '1', '.', '1', 0, 0x01})), "PORT\n"),
        Refused(versioned({0x47, 0x01}).End(),
                {"[Error] [tqsClientProvWbxmlDecoderCheckAttrVersion] nId [0x47]\n"}),
        Refused(versioned({0x46, 0x50, 0x01}).End(),
                {"tqsClientProvWbxmlDecoderAttributeWapDocVersion[10]\n"}),
        // STR_I, a switch and END between characteristics of the document.
        Decoded(port(NewDoc().StrI("junk").SwitchPage(0)), "PORT\n"),
        Decoded(page1.End(), "APPLICATION\nPXLOGICAL\nAPPLICATION\n"),
        // A type token repeated: the second record replaces the first, which is lost.
        Decoded(Typed({0x51, 0x51, 0x01}).Parm(prov::kName, "n").End().End(), "PXLOGICAL\n  NAME=n\n", 1,
                {"tqsClientProvWbxmlDecoderCharacterAttribute : ERROR!!!\n"}),
        Refused(Typed({0x5C, 0x01}).End().End(), {"tqsClientProvWbxmlDecoderCharacterAttribute[5c]\n"}),
        Refused(after),  // parms after a nested characteristic
        // Characteristics that take no children name a refusal (not always their own).
        Refused(port(In(prov::kPort)), {"BOOTSTRAP is Not Support Chiled PORT.\n"}),
        Refused(port(In(prov::kValidity)), {"BOOTSTRAP is Not Support Chiled PORT.\n"}),
        Refused(port(In(prov::kNapAuthInfo)), {"BOOTSTRAP is Not Support Chiled PORT.\n"}),
        Refused(port(In(prov::kBootstrap)), {"BOOTSTRAP is Not Support Chiled CHARACTER.\n"}),
        Refused(port(In(prov::kVendorConfig)), {"VENDORCONFIG is Not Support Chiled CHARACTER.\n"}),
        Refused(port(In(prov::kAppAuth)), {"APPAUTH is Not Support Chiled CHARACTER.\n"}),
        Refused(port(In(prov::kClientIdentity)), {"BOOTSTRAP is Not Support Chiled CLIENTIDENTITY.\n"}),
        Refused(port(In(prov::kPxAuthInfo)), {"RESOURCE is Not Support Chiled CHARACTER.\n"}),
        Refused(port(In(prov::kResource)), {"RESOURCE is Not Support Chiled CHARACTER.\n"}),
        Refused(port(In(prov::kAccess)), {"BOOTSTRAP is Not Support Chiled ACCESS.\n"}),
        // ROAMING and untyped characteristics take no children; an empty one is kept.
        Refused(port(NewDoc().Characteristic("ROAMING"))),
        Decoded(port(untyped().End()), "(untyped)\nPORT\n"),
        Refused(untyped().Parm(prov::kName, "x").End().End()),
        // A bare characteristic tag (no content) takes the END after it and adds
        // nothing to the (then empty) list.
        Decoded(In(prov::kNapDef).Byte(prov::kTagCharacteristic).End().End().End(), "NAPDEF\n"),
        // With attributes but no content its attributes are never read: refused.
        Refused(In(prov::kNapDef).Tag(prov::kTagCharacteristic, false, true).Bytes({0x5A, 0x01}).End().End()),
    });

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

TEST_F(Decoder, InlineTypesAndMissingRecords) {
    wbxml::Builder b = NewDoc();
    b.Characteristic("ROAMING").NamedParm("SYNC-ALLOWED", "1").NamedParm("SYNC-DEFAULT", "0").End();
    b.Characteristic("WI-FI").NamedParm("NETSSID", "net").NamedParm("PRIORITY", "2").End();
    auto colour = [](const char *type) {
        return NewDoc().Characteristic(type).NamedParm("COLOUR", "red").End().End();
    };
    Docs({
        Decoded(b.End(), "ROAMING\n  SYNC-ALLOWED=1\n  SYNC-DEFAULT=0\nWI-FI\n  NETSSID=net\n  PRIORITY=2\n"),
        Refused(NewDoc().Characteristic("OTHER").NamedParm("X", "1").End().End(),
                {"Tag Code = CHARACTER ATTR TYPE HAVE NOT...CP SPEC.....\n"}),
        // An unlisted name in WI-FI or ROAMING leaves the value token for the handler, which refuses it.
        Refused(colour("WI-FI"), {"tqsClientProvWbxmlDecoderParamAccess[6]\n"}),
        Refused(colour("ROAMING"), {"tqsClientProvWbxmlDecoderParamAccess[6]\n"}),
    });
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

TEST_F(Decoder, ParmValues) {
    wbxml::Builder forms;
    forms.UseStringTable().Doc().Characteristic(prov::kNapDef);
    forms.Parm(prov::kNapId, "N1");             // STR_T
    forms.Parm(prov::kBearer, prov::kGsmGprs);  // unknown to the tables: raw byte
    forms.Parm(prov::kCallType, prov::kAnalogModem);
    forms.Parm(prov::kCallType, prov::kBitTransparent);                // joined behind the zero
    forms.Parm(prov::kName, "a").Parm(prov::kName, "b");               // a repeated single parm appends
    forms.Parm(prov::kLinger, "x").Parm(prov::kLinger);                // ... and a valueless one clears it
    forms.Tag(prov::kTagParm, false, true).Bytes({0x0F, 0x06, 0x01});  // value attribute without content
    wbxml::Builder app = In(prov::kApplication);
    app.NamedParm("FROM", "me@x").NamedParm("XCAP_AUID_DCS", "d").NamedParm("OTHER", "o");
    wbxml::Builder vendor = In(prov::kVendorConfig);
    vendor.Parm(prov::kName, "V").NamedParm("A", "1").NamedParm("B", "2");
    wbxml::Builder start = In(prov::kResource);
    start.Parm(prov::kStartPage).End().Characteristic(prov::kPxLogical).Parm(prov::kStartPage).End();
    wbxml::Builder init = In(prov::kNapDef);
    init.NamedParm("INIT").End().Characteristic(prov::kNapDef).NamedParm("INIT", "v").NamedParm("X").End();
    init.Characteristic(prov::kApplication).NamedParm("INIT").End();
    auto failingDomain = [](prov::Token type) {
        return ParmIn(type, {0x17, 0x22, 0x01}).Parm(prov::kToNapId, "n").End().End();
    };
    Docs({
        // Left behind: the first LINGER value, dropped by the valueless one.
        Decoded(forms.End().End(),
                "NAPDEF\n  BEARER=<0xAB>\n  CALLTYPE=ANALOG-MODEM\n  NAME=ab\n  NAPID=N1\n", 1),
        // APPLICATION keeps the listed inline names and skips others, leaving a
        // 129-byte scratch block per name-string parm and the OTHER value.
        Decoded(app.Parm(prov::kAppId, "w4").End().End(),
                "APPLICATION\n  APPID=w4\n  FROM=me@x\n  XCAP_AUID_DCS=d\n", 4),
        // VENDORCONFIG keeps the last name/value pair; the first stays allocated.
        Decoded(vendor.End().End(), "VENDORCONFIG\n  B=2\n  NAME=V\n", 2),
        // RESOURCE: STARTPAGE without value marks the start page; PXLOGICAL does not.
        Decoded(start.End(), "RESOURCE\n  STARTPAGE=startpage\nPXLOGICAL\n"),
        // NAPDEF: INIT without value sets the constant; with a value, another name, or in
        // APPLICATION (its scratch block left), nothing.
        Decoded(init.End(), "NAPDEF\n  INIT=empty\nNAPDEF\nAPPLICATION\n", 1),
        // A name-string parm whose name is not a string.
        Refused(OneParm(prov::kNapDef, {0x05, 0x45, 0x01}), {}, 1),
        // APPAUTH: AAUTHTYPE values separated by 0x90 become one comma-joined text; only APPAUTH takes 0x90.
        Decoded(OneParm(prov::kAppAuth, {0x33, 0x06, 0x91, 0x90, 0x92, 0x90, 0x03, 'X', 0}),
                "APPAUTH\n  AAUTHTYPE=HTTP,BASIC,X\n"),
        Refused(OneParm(prov::kResource, {0x33, 0x06, 0x91, 0x90, 0x92})),
        // Handlers peek through the tag reader after a switch: PULLENABLED (0x47)
        // is seen as 0x07 and refused; without the switch it is stored.
        Decoded(OneParm(prov::kPxPhysical, {0x47, 0x06, 0x03, '1', 0}), "PXPHYSICAL\n  PULLENABLED=1\n"),
        Refused(OneParm(prov::kPxPhysical, {0x00, 0x00, 0x47, 0x06, 0x03, '1', 0}),
                {"tqsClientProvWbxmlDecoderParamPxPhysical[7]\n"}),
        // RESOURCE and APPAUTH peek the raw byte again.
        Decoded(OneParm(prov::kResource, {0x00, 0x01, 0x3A, 0x06, 0x03, 'u', 0}), "RESOURCE\n  URI=u\n"),
        // A page switch between the name and the value attribute.
        Decoded(OneParm(prov::kApplication, {0x36, 0x00, 0x00, 0x06, 0x03, 'w', '2', 0}),
                "APPLICATION\n  APPID=w2\n"),
        Decoded(In(prov::kPxLogical).Parm(prov::kDomain, "a").Parm(prov::kDomain, "b").End().End(),
                "PXLOGICAL\n  DOMAIN=a\n  DOMAIN=b\n"),
        // A DOMAIN list failing inside PXPHYSICAL is only traced; elsewhere it ends the decode.
        Decoded(failingDomain(prov::kPxPhysical), "PXPHYSICAL\n  TO-NAPID=n\n", 0,
                {"[ERROR] tqsClientProvWbxmlDecoderParamListString Fail\n"}),
        Refused(failingDomain(prov::kPxLogical)),
        // The second name/value pair of a list parm reads into the text already
        // listed. A replaced text keeps both items; a joined one keeps the listed
        // text and adds the extension (joining would otherwise free a listed
        // item); an unchanged or dropped value adds nothing.
        Decoded(OneParm(prov::kPort, {0x24, 0x06, 0xCA, 0x24, 0x06, 0x85}),
                "PORT\n  SERVICE=CL-WSP\n  SERVICE=CL-WSPIPV4\n"),
        Decoded(OneParm(prov::kPort, {0x24, 0x06, 0xCA, 0x24, 0x06, 0x03, 'x', 0}),
                "PORT\n  SERVICE=CL-WSP\n  SERVICE=CL-WSPx\n"),
        Decoded(OneParm(prov::kPort, {0x24, 0x06, 0xCA, 0x24, 0x06, 0xC3, 0x02, 'o', 'p'}),
                "PORT\n  SERVICE=CL-WSP\n  SERVICE=op\n"),
        Decoded(OneParm(prov::kPort, {0x24, 0x06, 0xCA, 0x24, 0x06, 0xE0}),
                "PORT\n  SERVICE=CL-WSP\n  SERVICE=<0xE0>\n"),
        Decoded(OneParm(prov::kPort, {0x24, 0x06, 0xCA, 0x24, 0x06}), "PORT\n  SERVICE=CL-WSP\n"),
        Decoded(OneParm(prov::kPort, {0x24, 0x06, 0xCA, 0x24}), "PORT\n  SERVICE=CL-WSP\n"),
        // Unknown parms: how each handler traces them, in a row.
        Refused(In(prov::kPort).Parm(prov::kNapId, "x").End().End(),
                {"Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n", "tqsClientProvWbxmlDecoderParamPort[11]\n"}),
        Refused(
            In(prov::kNapDef).Parm(prov::kProxyId, "x").End().End(),
            {"tqsClientProvWbxmlDecoderParamNapDef : Tag Code [21] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n\n"}),
        Refused(
            In(prov::kPxLogical).Parm(prov::kNapId, "x").End().End(),
            {"Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n", "tqsClientProvWbxmlDecoderParamPxlogical[11]\n",
             "tqsClientProvWbxmlDecoderParamPxlogical Error Code:4101\n"}),
        Refused(In(prov::kPxAuthInfo).Parm(prov::kNapId, "x").End().End(),
                {"DecoderParam : nId = [0x11]\n", "Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n",
                 "tqsClientProvWbxmlDecoderParamPxAuthInfo[11]\n",
                 "DecoderParam : TQS_WBXML_DECODER_ERROR nId = [0x11]\n", "return ErrorCode[4101]\n"}),
    });
}

// The labels come from the field lists; here that the two labelling handlers
// trace one per parm, '_' for '-', and another handler none.
TEST_F(Decoder, ApplicationAndResourceParmsTraceTheirLabels) {
    const std::string kLabel = "SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME";
    const struct {
        prov::Token type;
        uint8_t parm;
        std::string label;
    } cases[] = {
        {prov::kApplication, 0x39, "_TO_PROXY\n"},
        {prov::kResource, 0x1C, "_STARTPAGE\n"},
        {prov::kPxLogical, 0x07, ""},
    };
    for (const auto &c : cases) {
        TraceCapture trace;
        Tree(OneParm(c.type, {c.parm, prov::kValueAttr, 0x03, 'v', 0}));
        EXPECT_EQ(trace.Count(kLabel), c.label.empty() ? 0u : 1u);
        EXPECT_EQ(trace.Count(kLabel + c.label), c.label.empty() ? 0u : 1u);
    }
}

TEST_F(Decoder, VendorNameStringFailurePaths) {
    // A name read that fails (before and after a piece of the name was read),
    // a cut after the name, a value read that fails. Whatever was read stays
    // with the record; the release of the field's own address is only looked
    // up by the tracker (one "not found" line), never freed.
    const struct {
        Bytes tail;
        bool nameLine;  // the "pszName NULL" line
        bool notFound;  // the tracker's one line
    } cases[] = {
        {{0x05, 0x83}, false, false},
        {{0x05, 0x03, 'n', 0, 0x83}, true, true},
        {{0x05, 0x03, 'n', 0}, true, true},
        {{0x05, 0x85}, false, true},
        {{0x05, 0x03, 'n', 0, 0x06, 0x83}, false, true},
    };
    for (const auto &c : cases) {
        TraceCapture trace;
        testing::internal::CaptureStdout();
        EXPECT_EQ(Decode(ParmIn(prov::kVendorConfig, c.tail).Build()), 0x1007u);
        std::string out = testing::internal::GetCapturedStdout();
        EXPECT_EQ(out, c.notFound ? "[syncml] MEMCHECK Not Found Address \n" : "");
        EXPECT_EQ(trace.Contains("[tqsClientProvWbxmlDecoderParamVendorNameString] pszName NULL\n"),
                  c.nameLine);
    }
}

// Seventeen 1 MiB values are no join and decode; one value extended past the
// 16 MiB the joins of a decode may copy fails there as a failed allocation of
// that join does: a token is dropped, an inline string ends the value.
TEST_F(Decoder, JoinBoundCountsOnlyJoinsAndFailsLikeTheirAllocation) {
    wbxml::Builder values = In(prov::kPxLogical);
    for (int i = 0; i < 17; ++i) values.Parm(prov::kDomain, std::string(1 << 20, 'x'));
    EXPECT_EQ(Decode(values.End().End().Build()), 0u);
    const std::string kNull = " pszData NULL", kStr = "[Error] [tqsClientProvWbxmlDecoderGetStr]" + kNull;
    const struct {
        Bytes piece;
        TqsResult status;
        std::string line;
        size_t length;  // of the joined value: sixteen joins fit
    } joins[] = {
        {{0x03, 'y', 0}, 0x1007, kStr, 0},
        {{0x83, 0x00}, 0x1007, kStr, 0},  // table entry "y"
        // The bound is the decode's, not the value's: NAME repeated appends to the one text ...
        {{0x01, 0x87, 0x07, 0x06, 0x03, 'y', 0}, 0x1007, kStr, 0},
        // ... and none of it is left for the next decode.
        {{prov::kIpv4}, 0, "[Error] [tqsClientProvWbxmlDecoderGetParamTokenVal]" + kNull, 1000000 + 16 * 4},
    };
    for (const auto &j : joins) {
        wbxml::Builder b = ParmIn(prov::kNapDef, {0x07, prov::kValueAttr});
        b.TableString("y");
        b.StrI(std::string(1000000, 'x'));
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
    {"apnprov-ref-myapn.wbxml", 0x1005},            // `01 00 00 01` at the end: SWITCH_PAGE read as tag 0
    {"cpc-data-sync.wbxml", 0x1005},                // `87 05 03 "SYNCTYPE"` in RESOURCE: no 0x05 there
    {"moz-provcont-appendix-c.wbxml", 0x1005},      // `87 47` (PULLENABLED) in PXLOGICAL: not in its table
    {"mihini-dm-bootstrap.pdu", 0x1005},            // `87 05 03 "TO-PROXY"` after APPADDR: read as one
    {"vn-viettel-8x85.pdu", 0x1005},                // `87 21 06 85 03 00 01` in PXPHYSICAL: 0x85 alone,
    {"vn-vinaphone-8x85.pdu", 0x1005},              // then the handler meets 03
    {"ws-sync-server.wbxml", 0x1007},               // AACCEPT's string run meets 0x00, no value token
    {"own/wifi-roaming.wbxml", 0x1007},             // `87 05 03 "P" 00 E1`: 0xE1 unknown, the name read fails
    {"negative/gaia-cht-parm-typo.wbxml", 0x1005},  // LITERAL tag for <Parm>
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
