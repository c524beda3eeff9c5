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
    return Bytes(s.c_str(), s.c_str() + s.size() + 1);
}

// A push PDU whose header length byte covers `header` exactly.
Bytes Push(const Bytes &header, const Bytes &body) {
    return Cat({{0x01, 0x06, static_cast<unsigned char>(header.size())}, header, body});
}

// A copy in a block of exactly the PDU's size, so that ASan sees any read past it.
std::unique_ptr<unsigned char[]> Exact(const Bytes &pdu) {
    std::unique_ptr<unsigned char[]> copy(new unsigned char[pdu.size()]);
    std::copy(pdu.begin(), pdu.end(), copy.get());
    return copy;
}

struct FreeHeader {
    void operator()(SmlPushHeader *h) const {
        tqsMemFree_debug(h->pBody);
        tqsMemFree_debug(h);
    }
};

struct Parsed {
    std::unique_ptr<SmlPushHeader, FreeHeader> header;
    Strings live;  // blocks of the unit right after the call, as "line:size"
};

// Parses under the leak tracker; frees whatever the call left behind.
Parsed Parse(const Bytes &pdu) {
    std::unique_ptr<unsigned char[]> exact = Exact(pdu);
    MemCheck check;
    Parsed result;
    result.header.reset(smlpushHdlrParsingWSPHeader(exact.get(), pdu.size()));
    for (const LiveBlock &block : check.Live()) {
        EXPECT_EQ(block.file, kUnit);
        result.live.push_back(std::to_string(block.line) + ":" + std::to_string(block.size));
    }
    if (result.header == nullptr) check.FreeAll();  // a refused PDU may leave its record behind
    return result;
}

Bytes Body(const Parsed &p) {
    return Bytes(p.header->pBody, p.header->pBody + p.header->nBodyLen);
}

const std::string kRecordBlock = "51:" + std::to_string(sizeof(SmlPushHeader) + 1);

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
        {"text cut by the PDU's end", Bytes(kWbxmlType, kWbxmlType + 38), 0},
    };
    for (const Case &c : cases) {
        Parsed p = Parse(Push(c.header, {0xAA, 0xBB}));
        if (c.type == 0) {
            EXPECT_EQ(p.header, nullptr) << c.name;
            EXPECT_EQ(p.live, Strings{kRecordBlock}) << c.name;  // left allocated, by design
        } else {
            ASSERT_NE(p.header, nullptr) << c.name;
            EXPECT_EQ(p.header->nContentType, c.type) << c.name;
            EXPECT_EQ(Body(p), (Bytes{0xAA, 0xBB})) << c.name;
        }
    }
}

TEST(PushHeader, SecMacAndBody) {
    const Bytes mac6 = Text("ABCDEF");
    const std::string mac47 = std::string(46, 'M') + "z";
    struct Case {
        const char *name;
        Bytes header, body;
        uint64_t sec;
        std::string mac;
    } cases[] = {
        {"token SEC", {0xB6, 0x91, 0x81}, {0x03, 0x0B}, 0x81, ""},
        {"text SEC any case", Cat({{0xB6}, Text("sEc"), {0x80}}), {0x03}, 0x80, ""},
        {"token MAC", Cat({{0xB6, 0x92}, mac6}), {0x03}, 0, "ABCDEF"},
        {"text MAC lower case", Cat({{0xB6}, Text("mac"), mac6}), {0x03}, 0, "ABCDEF"},
        {"SEC then MAC", Cat({{0xB6, 0x91, 0x81, 0x92}, mac6}), {0x03}, 0x81, "ABCDEF"},
        {"MAC then SEC: SEC not seen", Cat({{0xB6, 0x92}, mac6, {0x91, 0x81}}), {0x03}, 0, "ABCDEF"},
        {"other header hides both", Cat({{0xB6, 0x81, 0xEA, 0x91, 0x81, 0x92}, mac6}), {0x03}, 0, ""},
        {"empty MAC", {0xB6, 0x92, 0x00}, {0x03}, 0, ""},
        {"MAC cut to 47 characters", Cat({{0xB6, 0x92}, Text(mac47 + "MM")}), {0x03}, 0, mac47},
        // The body starts after the header length byte's block, whatever the parameters read.
        {"unknown bytes in the header", {0xB6, 0x91, 0x80, 0xEE, 0xEE}, {0x03, 0x01}, 0x80, ""},
        {"header length shorter than the parameters", {0xB6}, {0x91, 0x80}, 0x80, ""},
        // Parameters cut by the PDU's end are absent.
        {"SEC value beyond the PDU", {0xB6, 0x91}, {}, 0, ""},
        {"SEC text cut", {0xB6, 'S', 'E', 'C'}, {}, 0, ""},
        {"SEC text with zero, value beyond", Cat({{0xB6}, Text("SEC")}), {}, 0, ""},
        {"MAC token at the end", {0xB6, 0x91, 0x81, 0x92}, {}, 0x81, ""},
        {"MAC unterminated", {0xB6, 0x92, 'A', 'B', 'C'}, {}, 0, "ABC"},
    };
    for (const Case &c : cases) {
        Parsed p = Parse(Push(c.header, c.body));
        ASSERT_NE(p.header, nullptr) << c.name;
        EXPECT_EQ(p.header->nSEC, c.sec) << c.name;
        EXPECT_EQ(std::string(p.header->szMAC), c.mac) << c.name;
        EXPECT_EQ(p.header->nMACLen, c.mac.size()) << c.name;
        EXPECT_EQ(p.header->nHeaderLen, c.header.size()) << c.name;
        EXPECT_EQ(Body(p), c.body) << c.name;
        EXPECT_EQ(p.header->pBody[c.body.size()], 0) << c.name;  // one zero byte behind the copy
        EXPECT_EQ(p.live, (Strings{kRecordBlock, "167:" + std::to_string(c.body.size() + 1)})) << c.name;
    }
}

// PDUs shorter than their header are the corpus cuts below.
TEST(PushHeader, RefusedLeavingNothingAllocated) {
    Parsed p = Parse({0x01, 0x07, 0x01, 0xB6});  // not a push
    EXPECT_EQ(p.header, nullptr);
    EXPECT_TRUE(p.live.empty());
    EXPECT_EQ(smlpushHdlrParsingWSPHeader(nullptr, 10), nullptr);

    // total_len claims 2^32 + 2 bytes: nBodyLen + 1 would wrap to 0 in 32 bits.
    // Only the first five bytes are ever read before the refusal.
    std::unique_ptr<unsigned char[]> pdu = Exact({0x01, 0x06, 0x00, 0xB6, 0x00});
    MemCheck check;
    EXPECT_EQ(smlpushHdlrParsingWSPHeader(pdu.get(), (uint64_t{1} << 32) + 2), nullptr);
    EXPECT_TRUE(check.Live().empty());
}

// The caller's length drives the arithmetic as given; the bytes that exist
// bound every read, and a body copy that would leave them refuses the PDU.
TEST(PushHeader, LengthUsedAsGivenWhileReadsStayInTheBytes) {
    const Bytes pdu = {0x01, 0x06, 0x01, 0xB6, 0x91, 0x80, 0xAA};  // SEC after the header block
    const struct {
        uint64_t total;
        bool ok;
        uint64_t bodyLen;
    } cases[] = {
        {4, true, 0},  // SEC read past the length, inside the bytes
        {(uint64_t{1} << 32) + 7, true, (uint64_t{1} << 32) + 3},  // copy count: the low 32 bits
        {8, false, 0},                                             // one byte past the array
        {UINT64_MAX, false, 0},                                    // a negative Java long
    };
    std::unique_ptr<unsigned char[]> exact = Exact(pdu);
    for (const auto &c : cases) {
        MemCheck check;
        std::unique_ptr<SmlPushHeader, FreeHeader> h(
            smlpushHdlrParsingWSPHeaderIn(exact.get(), c.total, pdu.size()));
        EXPECT_EQ(h != nullptr, c.ok) << c.total;
        if (h == nullptr) {
            EXPECT_TRUE(check.Live().empty()) << c.total;
            continue;
        }
        EXPECT_EQ(h->nSEC, 0x80u);
        EXPECT_EQ(h->nBodyLen, c.bodyLen);
        EXPECT_EQ(Bytes(h->pBody, h->pBody + static_cast<uint32_t>(c.bodyLen)),
                  Bytes(pdu.begin() + 4, pdu.begin() + 4 + static_cast<uint32_t>(c.bodyLen)));
    }
}

// The sources' own PDUs (either SEC, a MAC) are also cut after every byte:
// shorter than the header they are refused, leaving nothing allocated but the
// record of a cut before the content type (an unknown one).
TEST(PushHeader, CorpusPdus) {
    size_t total = 0;
    for (const std::string dir : {"", "pdus/", "pdus/own/", "pdus/negative/"}) {
        for (const std::string &path : corpus::List(dir + "*.pdu")) {
            SCOPED_TRACE(path);
            const bool sources = dir.empty(), mac = path.ends_with(".mac.pdu");
            const Bytes pdu = corpus::Read(path);
            const size_t headerEnd = 3 + pdu[2];
            Parsed p = Parse(pdu);
            ASSERT_NE(p.header, nullptr);
            EXPECT_EQ(p.header->nContentType, 0x36u);
            if (sources) {
                EXPECT_TRUE(p.header->nSEC == 0x80 || p.header->nSEC == 0x81);
            } else {  // the generated pushes: USERPIN with a MAC, NETWPIN without
                EXPECT_EQ(p.header->nSEC, mac ? 0x81u : 0x80u);
            }
            EXPECT_EQ(p.header->nMACLen, sources || mac ? 40u : 0u);
            EXPECT_EQ(Body(p), Bytes(pdu.begin() + headerEnd, pdu.end()));
            ++total;
            for (size_t n = 0; sources && n < pdu.size(); ++n) {
                p = Parse(Bytes(pdu.begin(), pdu.begin() + static_cast<long>(n)));
                EXPECT_EQ(p.header == nullptr, n < headerEnd) << n;
                const bool noType = n >= 3 && n <= (pdu[3] == 0x1F ? 5u : 3u);
                EXPECT_EQ(p.live.size(), noType ? 1u : n < headerEnd ? 0u : 2u) << n;
                if (p.header == nullptr) continue;
                EXPECT_EQ(p.header->nBodyLen, n - headerEnd) << n;
                EXPECT_EQ(p.header->nMACLen, 40u) << n;
            }
        }
    }
    EXPECT_GE(total, 50u);
}

}  // namespace
