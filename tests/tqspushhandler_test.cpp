#include "tqspushhandler.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "corpus.h"
#include "mem_check.h"
#include "tqsmemory.h"

namespace {

const char kUnit[] = "jni/src/ClientProv/tqspushhandler";
const char kWbxmlType[] = "application/vnd.wap.connectivity-wbxml";

using Bytes = std::vector<unsigned char>;
using Strings = std::vector<std::string>;

Bytes Cat(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes &p : parts) all.insert(all.end(), p.begin(), p.end());
    return all;
}

// Text with its zero.
Bytes Text(const std::string &s) {
    Bytes b(s.begin(), s.end());
    b.push_back(0);
    return b;
}

// A push PDU whose header length byte covers `header` exactly.
Bytes Push(const Bytes &header, const Bytes &body) {
    return Cat({{0x01, 0x06, static_cast<unsigned char>(header.size())}, header, body});
}

// The PDU copied into a block of exactly its size, so that ASan sees any read past it.
struct Exact {
    explicit Exact(const Bytes &pdu)
        : bytes(new unsigned char[pdu.empty() ? 1 : pdu.size()]), size(pdu.size()) {
        std::copy(pdu.begin(), pdu.end(), bytes.get());
    }
    std::unique_ptr<unsigned char[]> bytes;
    size_t size;
};

struct Parsed {
    SmlPushHeader *header = nullptr;
    Strings live;  // blocks of the unit right after the call, as "line:size"
};

// Parses under the leak tracker; frees whatever the call left behind.
Parsed Parse(const Bytes &pdu) {
    Exact exact(pdu);
    MemCheck check;
    Parsed result;
    result.header = smlpushHdlrParsingWSPHeader(exact.bytes.get(), exact.size);
    for (const LiveBlock &block : check.Live()) {
        EXPECT_EQ(block.file, kUnit);
        result.live.push_back(std::to_string(block.line) + ":" + std::to_string(block.size));
    }
    if (result.header == nullptr) check.FreeAll();  // a refused PDU may leave its record behind
    return result;
}

void Free(SmlPushHeader *header) {
    if (header == nullptr) return;
    tqsMemFree_debug(header->pBody);
    tqsMemFree_debug(header);
}

Bytes Body(const SmlPushHeader *h) {
    return Bytes(h->pBody, h->pBody + h->nBodyLen);
}

const std::string kRecordBlock = "51:" + std::to_string(sizeof(SmlPushHeader) + 1);

TEST(PushHeader, MinimalPdu) {
    const Bytes body = {0x03, 0x0B, 0x6A, 0x00, 0xC5};
    Parsed p = Parse(Push({0xB6, 0x91, 0x80}, body));
    ASSERT_NE(p.header, nullptr);
    EXPECT_EQ(p.header->nContentType, 0x36u);
    EXPECT_EQ(p.header->nHeaderLen, 3u);
    EXPECT_EQ(p.header->nSEC, 0x80u);
    EXPECT_EQ(p.header->nMACLen, 0u);
    EXPECT_STREQ(p.header->szMAC, "");
    EXPECT_EQ(Body(p.header), body);
    EXPECT_EQ(p.header->pBody[body.size()], 0);  // one zero byte behind the copy
    EXPECT_EQ(p.live, (Strings{kRecordBlock, "167:6"}));
    Free(p.header);
}

TEST(PushHeader, ContentTypeForms) {
    struct Case {
        const char *name;
        Bytes header;   // content type and what follows, from index 3
        uint64_t type;  // 0: refused
    } cases[] = {
        {"token wbxml", {0xB6}, 0x36},
        {"token xml", {0xB5}, 0x35},
        {"token notification", {0xC4}, 0x44},
        {"token ds notification", {0xCE}, 0x4E},
        {"token dm", {0xC2}, 0x42},
        {"token without high bit below 0x20", {0x15}, 0},
        {"unknown token", {0xB7}, 0},
        {"0x36 starts a text", {0x36, 0x00}, 0},
        {"text wbxml", Text(kWbxmlType), 0x36},
        {"text xml", Text("application/vnd.wap.connectivity-xml"), 0x35},
        {"text notification", Text("application/vnd.syncml.notification"), 0x44},
        {"text ds notification", Text("application/vnd.syncml.ds.notification"), 0x4E},
        {"text dm", Text("application/vnd.syncml.dm+wbxml"), 0x42},
        {"text is case-sensitive", Text("Application/vnd.wap.connectivity-wbxml"), 0},
        {"unknown text", Text("application/x-wap-prov.browser-settings"), 0},
        {"length quote skipped", {0x1F, 0x99, 0xB6}, 0x36},
        {"length quote then text", Cat({{0x1F, 0x00}, Text(kWbxmlType)}), 0x36},
        // Texts of 64+ characters, or without a zero in the PDU, are unknown texts.
        {"text of 200 characters", Text(std::string(200, 'a')), 0},
        {"known text and more", Text(kWbxmlType + std::string(30, 'x')), 0},
        {"text of 63 characters read", Text(std::string(63, 'a')), 0},
    };
    for (const Case &c : cases) {
        Parsed p = Parse(Push(c.header, {0xAA, 0xBB}));
        if (c.type == 0) {
            EXPECT_EQ(p.header, nullptr) << c.name;
            EXPECT_EQ(p.live, Strings{kRecordBlock}) << c.name;  // left allocated, by design
        } else {
            ASSERT_NE(p.header, nullptr) << c.name;
            EXPECT_EQ(p.header->nContentType, c.type) << c.name;
            EXPECT_EQ(Body(p.header), (Bytes{0xAA, 0xBB})) << c.name;
        }
        Free(p.header);
    }
    // No content type byte at all, and a text that the PDU's end cuts before its zero.
    for (const Bytes &pdu :
         {Bytes{0x01, 0x06, 0x00}, Cat({{0x01, 0x06, 0x00}, Bytes(kWbxmlType, kWbxmlType + 38)})}) {
        Parsed p = Parse(pdu);
        EXPECT_EQ(p.header, nullptr);
        EXPECT_EQ(p.live, Strings{kRecordBlock});
    }
}

TEST(PushHeader, SecMacAndBody) {
    const Bytes mac6 = Text("ABCDEF");
    struct Case {
        const char *name;
        Bytes pdu;
        uint64_t sec;
        std::string mac;
        Bytes body;
    } cases[] = {
        {"token SEC", Push({0xB6, 0x91, 0x81}, {0x03, 0x0B}), 0x81, "", {0x03, 0x0B}},
        {"text SEC any case", Push(Cat({{0xB6}, Text("sEc"), {0x80}}), {0x03}), 0x80, "", {0x03}},
        {"token MAC", Push(Cat({{0xB6, 0x92}, mac6}), {0x03}), 0, "ABCDEF", {0x03}},
        {"text MAC lower case", Push(Cat({{0xB6}, Text("mac"), mac6}), {0x03}), 0, "ABCDEF", {0x03}},
        {"SEC then MAC", Push(Cat({{0xB6, 0x91, 0x81, 0x92}, mac6}), {0x03}), 0x81, "ABCDEF", {0x03}},
        {"MAC then SEC: SEC not seen", Push(Cat({{0xB6, 0x92}, mac6, {0x91, 0x81}}), {}), 0, "ABCDEF", {}},
        {"other header hides both", Push(Cat({{0xB6, 0x81, 0xEA, 0x91, 0x81, 0x92}, mac6}), {}), 0, "", {}},
        {"empty MAC", Push({0xB6, 0x92, 0x00}, {0x03}), 0, "", {0x03}},
        {"MAC cut to 47 characters",
         Push(Cat({{0xB6, 0x92}, Text(std::string(46, 'M') + "z" + std::string(13, 'M'))}), {0x03}),
         0,
         std::string(46, 'M') + "z",
         {0x03}},
        // The body starts after the header length byte's block, whatever the parameters read.
        {"unknown bytes in the header",
         Push({0xB6, 0x91, 0x80, 0xEE, 0xEE}, {0x03, 0x01}),
         0x80,
         "",
         {0x03, 0x01}},
        {"header length shorter than the parameters",
         {0x01, 0x06, 0x01, 0xB6, 0x91, 0x80},
         0x80,
         "",
         {0x91, 0x80}},
        // Parameters cut by the PDU's end are absent.
        {"SEC value beyond the PDU", Push({0xB6, 0x91}, {}), 0, "", {}},
        {"SEC text cut", Push({0xB6, 'S', 'E', 'C'}, {}), 0, "", {}},
        {"SEC text with zero, value beyond", Push(Cat({{0xB6}, Text("SEC")}), {}), 0, "", {}},
        {"MAC token at the end", Push({0xB6, 0x91, 0x81, 0x92}, {}), 0x81, "", {}},
        {"MAC unterminated", Push({0xB6, 0x92, 'A', 'B', 'C'}, {}), 0, "ABC", {}},
    };
    for (const Case &c : cases) {
        Parsed p = Parse(c.pdu);
        ASSERT_NE(p.header, nullptr) << c.name;
        EXPECT_EQ(p.header->nSEC, c.sec) << c.name;
        EXPECT_EQ(std::string(p.header->szMAC), c.mac) << c.name;
        EXPECT_EQ(p.header->nMACLen, c.mac.size()) << c.name;
        EXPECT_EQ(Body(p.header), c.body) << c.name;
        Free(p.header);
    }
}

TEST(PushHeader, RefusedBeforeAnythingIsAllocated) {
    struct Case {
        const char *name;
        Bytes pdu;
    } cases[] = {
        {"empty", {}},
        {"two bytes", {0x01, 0x06}},
        {"not a push", {0x01, 0x07, 0x01, 0xB6}},
        {"header length past the end", {0x01, 0x06, 0x02, 0xB6}},
        {"header length 255", {0x01, 0x06, 0xFF, 0xB6, 0x91, 0x80}},
    };
    for (const Case &c : cases) {
        Parsed p = Parse(c.pdu);
        EXPECT_EQ(p.header, nullptr) << c.name;
        EXPECT_TRUE(p.live.empty()) << c.name;
    }
    EXPECT_EQ(smlpushHdlrParsingWSPHeader(nullptr, 10), nullptr);

    // total_len claims 2^32 + 2 bytes: nBodyLen + 1 would wrap to 0 in 32 bits.
    // Only the first five bytes are ever read before the refusal.
    Exact pdu({0x01, 0x06, 0x00, 0xB6, 0x00});
    MemCheck check;
    EXPECT_EQ(smlpushHdlrParsingWSPHeader(pdu.bytes.get(), (uint64_t{1} << 32) + 2), nullptr);
    EXPECT_TRUE(check.Live().empty());
}

TEST(PushHeader, CorpusPdus) {
    const struct {
        const char *pattern;
        uint64_t sec;  // 0: 0x80 or 0x81
        uint64_t macLen;
    } groups[] = {
        {"*.pdu", 0, 40},  // the sources' own headers, with 40-character MACs
        {"pdus/*[!c].pdu", 0x80, 0},
        {"pdus/*.mac.pdu", 0x81, 40},
        {"pdus/own/*[!c].pdu", 0x80, 0},
        {"pdus/negative/*[!c].pdu", 0x80, 0},
        {"pdus/negative/*.mac.pdu", 0x81, 40},
    };
    size_t total = 0;
    for (const auto &group : groups) {
        for (const std::string &path : corpus::List(group.pattern)) {
            SCOPED_TRACE(path);
            Bytes pdu = corpus::Read(path);
            Parsed p = Parse(pdu);
            ASSERT_NE(p.header, nullptr);
            EXPECT_EQ(p.header->nContentType, 0x36u);
            if (group.sec != 0) EXPECT_EQ(p.header->nSEC, group.sec);
            EXPECT_TRUE(p.header->nSEC == 0x80 || p.header->nSEC == 0x81);
            EXPECT_EQ(p.header->nMACLen, group.macLen);
            EXPECT_EQ(Body(p.header), Bytes(pdu.begin() + 3 + pdu[2], pdu.end()));
            // Every body is a WBXML document: version 1.1 to 1.3 first.
            EXPECT_GE(p.header->pBody[0], 0x01);
            EXPECT_LE(p.header->pBody[0], 0x03);
            Free(p.header);
            ++total;
        }
    }
    EXPECT_GE(total, 50u);
    // The pre-OMA sample names its content type as an unknown text.
    EXPECT_EQ(Parse(corpus::Read("negative/vn-mobifone-nokia-ota.pdu")).header, nullptr);
}

TEST(PushHeader, EveryPrefixOfEveryCorpusPduIsSafe) {
    for (const std::string &path : corpus::List("*.pdu")) {
        SCOPED_TRACE(path);
        Bytes pdu = corpus::Read(path);
        const size_t headerEnd = 3 + pdu[2];
        for (size_t n = 0; n <= pdu.size(); ++n) {
            Parsed p = Parse(Bytes(pdu.begin(), pdu.begin() + static_cast<long>(n)));
            if (n < headerEnd) {
                EXPECT_EQ(p.header, nullptr) << n;
                EXPECT_TRUE(p.live.empty()) << n;
            } else {
                ASSERT_NE(p.header, nullptr) << n;
                EXPECT_EQ(p.header->nBodyLen, n - headerEnd);
                EXPECT_EQ(p.header->nMACLen, 40u);
                Free(p.header);
            }
        }
    }
}

}  // namespace
