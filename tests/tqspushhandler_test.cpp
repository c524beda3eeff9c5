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
    std::vector<LiveBlock> live;  // tracked blocks right after the call
};

// Parses under the leak tracker; frees whatever the call left behind.
Parsed Parse(const Bytes &pdu) {
    Exact exact(pdu);
    MemCheck check;
    Parsed result;
    result.header = smlpushHdlrParsingWSPHeader(exact.bytes.get(), exact.size);
    result.live = check.Live();
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

TEST(PushHeader, MinimalPdu) {
    const Bytes body = {0x03, 0x0B, 0x6A, 0x00, 0xC5};
    Parsed p = Parse(Cat({{0x01, 0x06, 0x03, 0xB6, 0x91, 0x80}, body}));
    ASSERT_NE(p.header, nullptr);
    EXPECT_EQ(p.header->nContentType, 0x36u);
    EXPECT_EQ(p.header->nHeaderLen, 3u);
    EXPECT_EQ(p.header->nSEC, 0x80u);
    EXPECT_EQ(p.header->nMACLen, 0u);
    EXPECT_STREQ(p.header->szMAC, "");
    EXPECT_EQ(p.header->nBodyLen, body.size());
    EXPECT_EQ(Body(p.header), body);
    EXPECT_EQ(p.header->pBody[body.size()], 0);  // one zero byte behind the copy
    ASSERT_EQ(p.live.size(), 2u);
    EXPECT_EQ(p.live[0].line, 51u);
    EXPECT_EQ(p.live[0].size, sizeof(SmlPushHeader) + 1);
    EXPECT_EQ(p.live[1].line, 167u);
    EXPECT_EQ(p.live[1].size, body.size() + 1);
    EXPECT_EQ(p.live[1].file, kUnit);
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
        {"length quote skipped", Cat({{0x1F, 0x99}, {0xB6}}), 0x36},
        {"length quote then text", Cat({{0x1F, 0x00}, Text(kWbxmlType)}), 0x36},
    };
    for (const Case &c : cases) {
        Bytes head = Cat({{0x01, 0x06}, {static_cast<unsigned char>(c.header.size())}, c.header});
        Parsed p = Parse(Cat({head, {0xAA, 0xBB}}));
        if (c.type == 0) {
            EXPECT_EQ(p.header, nullptr) << c.name;
            // Refused content types leave the record allocated, by design.
            ASSERT_EQ(p.live.size(), 1u) << c.name;
            EXPECT_EQ(p.live[0].line, 51u) << c.name;
        } else {
            ASSERT_NE(p.header, nullptr) << c.name;
            EXPECT_EQ(p.header->nContentType, c.type) << c.name;
            EXPECT_EQ(Body(p.header), (Bytes{0xAA, 0xBB})) << c.name;
        }
        Free(p.header);
    }
}

TEST(PushHeader, SecAndMac) {
    const Bytes mac6 = Text("ABCDEF");
    struct Case {
        const char *name;
        Bytes params;  // after the content type 0xB6
        uint64_t sec;
        std::string mac;
    } cases[] = {
        {"token SEC", {0x91, 0x81}, 0x81, ""},
        {"text SEC any case", Cat({Text("sEc"), {0x80}}), 0x80, ""},
        {"token MAC", Cat({{0x92}, mac6}), 0, "ABCDEF"},
        {"text MAC lower case", Cat({Text("mac"), mac6}), 0, "ABCDEF"},
        {"SEC then MAC", Cat({{0x91, 0x81, 0x92}, mac6}), 0x81, "ABCDEF"},
        {"MAC then SEC: SEC not seen", Cat({{0x92}, mac6, {0x91, 0x81}}), 0, "ABCDEF"},
        {"other header hides both", Cat({{0x81, 0xEA, 0x91, 0x81, 0x92}, mac6}), 0, ""},
        {"empty MAC", {0x92, 0x00}, 0, ""},
    };
    for (const Case &c : cases) {
        Bytes head = Cat({{0xB6}, c.params});
        Bytes pdu = Cat({{0x01, 0x06, static_cast<unsigned char>(head.size())}, head, {0x03, 0x0B}});
        Parsed p = Parse(pdu);
        ASSERT_NE(p.header, nullptr) << c.name;
        EXPECT_EQ(p.header->nSEC, c.sec) << c.name;
        EXPECT_EQ(p.header->nMACLen, c.mac.size()) << c.name;
        EXPECT_EQ(std::string(p.header->szMAC), c.mac) << c.name;
        EXPECT_EQ(Body(p.header), (Bytes{0x03, 0x0B})) << c.name;
        Free(p.header);
    }
}

TEST(PushHeader, BodyFollowsTheHeaderLengthByteAlone) {
    // Header length 5 covers B6 91 80 and two unknown bytes; the body starts after them.
    Parsed p = Parse({0x01, 0x06, 0x05, 0xB6, 0x91, 0x80, 0xEE, 0xEE, 0x03, 0x01});
    ASSERT_NE(p.header, nullptr);
    EXPECT_EQ(p.header->nBodyLen, 2u);
    EXPECT_EQ(Body(p.header), (Bytes{0x03, 0x01}));
    Free(p.header);
    // Header length 1 is shorter than the parameters read: they still count, the body overlaps them.
    p = Parse({0x01, 0x06, 0x01, 0xB6, 0x91, 0x80});
    ASSERT_NE(p.header, nullptr);
    EXPECT_EQ(p.header->nSEC, 0x80u);
    EXPECT_EQ(Body(p.header), (Bytes{0x91, 0x80}));
    Free(p.header);
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
}

TEST(PushHeader, TruncatedParametersAreAbsent) {
    struct Case {
        const char *name;
        Bytes pdu;
        uint64_t sec;
        std::string mac;
    } cases[] = {
        {"header only, no content type", {0x01, 0x06, 0x00}, 0, ""},
        {"SEC value beyond the PDU", {0x01, 0x06, 0x02, 0xB6, 0x91}, 0, ""},
        {"SEC text cut", Cat({{0x01, 0x06, 0x04, 0xB6}, {'S', 'E', 'C'}}), 0, ""},
        {"SEC text with zero, value beyond", Cat({{0x01, 0x06, 0x05, 0xB6}, Text("SEC")}), 0, ""},
        {"MAC token at the end", {0x01, 0x06, 0x04, 0xB6, 0x91, 0x81, 0x92}, 0x81, ""},
        {"MAC unterminated", {0x01, 0x06, 0x05, 0xB6, 0x92, 'A', 'B', 'C'}, 0, "ABC"},
    };
    for (const Case &c : cases) {
        Parsed p = Parse(c.pdu);
        if (c.pdu.size() == 3) {
            // No content type byte at all: the unknown-token path.
            EXPECT_EQ(p.header, nullptr) << c.name;
            continue;
        }
        ASSERT_NE(p.header, nullptr) << c.name;
        EXPECT_EQ(p.header->nSEC, c.sec) << c.name;
        EXPECT_EQ(std::string(p.header->szMAC), c.mac) << c.name;
        EXPECT_EQ(p.header->nMACLen, c.mac.size()) << c.name;
        EXPECT_EQ(p.header->nBodyLen, 0u) << c.name;
        Free(p.header);
    }
}

TEST(PushHeader, OversizedTexts) {
    // A MAC longer than 47 characters is cut to its first 47.
    std::string longMac(60, 'M');
    longMac[46] = 'z';
    Bytes head = Cat({{0xB6, 0x92}, Text(longMac)});
    Parsed p = Parse(Cat({{0x01, 0x06, static_cast<unsigned char>(head.size())}, head, {0x03}}));
    ASSERT_NE(p.header, nullptr);
    EXPECT_EQ(p.header->nMACLen, 47u);
    EXPECT_EQ(std::string(p.header->szMAC), longMac.substr(0, 47));
    EXPECT_EQ(Body(p.header), Bytes{0x03});
    Free(p.header);

    // Content-type texts of 64+ characters, or without a zero in the PDU, are unknown texts.
    for (const Bytes &text : {Text(std::string(200, 'a')), Text(kWbxmlType + std::string(30, 'x')),
                              Bytes(kWbxmlType, kWbxmlType + sizeof(kWbxmlType) - 1)}) {
        Bytes pdu = Cat({{0x01, 0x06, 0x00}, text});
        p = Parse(pdu);
        EXPECT_EQ(p.header, nullptr);
        ASSERT_EQ(p.live.size(), 1u);
        EXPECT_EQ(p.live[0].line, 51u);
    }
    // A 63-character text with its zero is still read (and then unknown).
    p = Parse(Cat({{0x01, 0x06, 0x00}, Text(std::string(63, 'a'))}));
    EXPECT_EQ(p.header, nullptr);
}

TEST(PushHeader, BodyTooLargeForA32BitCopyIsRefused) {
    // total_len claims 2^32 + 2 bytes: nBodyLen + 1 would wrap to 0 in 32 bits.
    // Only the first five bytes are ever read before the refusal.
    Exact pdu({0x01, 0x06, 0x00, 0xB6, 0x00});
    MemCheck check;
    EXPECT_EQ(smlpushHdlrParsingWSPHeader(pdu.bytes.get(), (uint64_t{1} << 32) + 2), nullptr);
    EXPECT_TRUE(check.Live().empty());
}

struct CorpusExpectation {
    const char *pattern;
    uint64_t sec;
    uint64_t macLen;
};

TEST(PushHeader, CorpusPdus) {
    const CorpusExpectation groups[] = {
        {"*.pdu", 0, 40},  // the sources' own headers: SEC 0x80 or 0x81, 40-character MACs
        {"pdus/*[!c].pdu", 0x80, 0},
        {"pdus/*.mac.pdu", 0x81, 40},
        {"pdus/own/*[!c].pdu", 0x80, 0},
        {"pdus/negative/*[!c].pdu", 0x80, 0},
        {"pdus/negative/*.mac.pdu", 0x81, 40},
    };
    size_t total = 0;
    for (const CorpusExpectation &group : groups) {
        for (const std::string &path : corpus::List(group.pattern)) {
            SCOPED_TRACE(path);
            Bytes pdu = corpus::Read(path);
            Parsed p = Parse(pdu);
            ASSERT_NE(p.header, nullptr);
            EXPECT_EQ(p.header->nContentType, 0x36u);
            if (group.sec != 0) {
                EXPECT_EQ(p.header->nSEC, group.sec);
            } else {
                EXPECT_TRUE(p.header->nSEC == 0x80 || p.header->nSEC == 0x81);
            }
            EXPECT_EQ(p.header->nMACLen, group.macLen);
            EXPECT_EQ(p.header->nBodyLen, pdu.size() - 3 - pdu[2]);
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
