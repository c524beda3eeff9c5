// Regression tests for what the fuzzers found (fuzz/README.md lists them).
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqslist.h"
#include "tqsmemory.h"

namespace {

using Bytes = std::vector<uint8_t>;

void Append(Bytes &out, const Bytes &more) {
    out.insert(out.end(), more.begin(), more.end());
}

Bytes Text(const std::string &text) {
    Bytes b{0x03};
    b.insert(b.end(), text.begin(), text.end());
    b.push_back(0);
    return b;
}

// WBXML 1.3 provisioning document with `table` as its string table and one
// NAPDEF holding `parms`.
Bytes NapDefDocument(const std::string &table, const Bytes &parms) {
    Bytes doc{0x03, 0x0B, 0x6A};
    uint32_t n = static_cast<uint32_t>(table.size());
    Bytes length;  // mb_u_int32
    do {
        length.insert(length.begin(), static_cast<uint8_t>((n & 0x7F) | (length.empty() ? 0 : 0x80)));
        n >>= 7;
    } while (n != 0);
    Append(doc, length);
    doc.insert(doc.end(), table.begin(), table.end());
    Append(doc, {0xC5, 0x46, 0x01, 0xC6, 0x55, 0x01});
    Append(doc, parms);
    Append(doc, {0x01, 0x01});
    return doc;
}

// NAME parm whose value is `refs` references to string-table entry 0.
Bytes NameFromTable(int refs) {
    Bytes parm{0x87, 0x07, 0x06};
    for (int i = 0; i < refs; ++i) Append(parm, {0x83, 0x00});
    parm.push_back(0x01);
    return parm;
}

struct Decoded {
    TqsResult status = 0;
    tqsWapDoc *doc = nullptr;
    ~Decoded() { tqsClientProvWbxmlDeleteWapDoc(doc); }
    const tqsWapNapDef *NapDef() const {
        if (doc == nullptr || doc->ptCharacterList == nullptr || doc->ptCharacterList->ptHead == nullptr) {
            return nullptr;
        }
        return static_cast<const tqsWapCharacter *>(doc->ptCharacterList->ptHead->pItem)->ptNapDef;
    }
};

void Decode(const Bytes &body, Decoded *out) {
    tqsWbxmlDecoder *decoder = nullptr;
    ASSERT_EQ(tqsClientProvWbxmlInitDecoder(&decoder, body.data(), static_cast<uint32_t>(body.size())), 0u);
    out->status = tqsClientProvWbxmlDecoder(decoder, &out->doc);
    tqsClientProvWbxmlDeleteDecoder(decoder);
}

const std::string kEntry(30000, 'T');  // with its zero: one 30001-byte table

// A failing decode leaves behind what it had not linked into the tree yet (by
// design); the tracker finds those blocks so the test can free them.
class JoinBudget : public ::testing::Test {
   protected:
    static void SetUpTestSuite() {
        if (bMemCheck == 0) tqsMemStartMemCheck();
    }
    void TearDown() override {
        for (MemCheckEntry *e = tqsMemGetIndex(); e != nullptr; e = tqsMemGetIndex()) {
            tqsMemFree_debug(e->pAddress);
        }
    }
};

// Found by the stress seed "long-string-table": a 64 KB body whose NAME value
// is thousands of references to a 30 KB table entry, or whose NAME parm is
// repeated thousands of times, extends one text again and again; every join
// copies the whole text, so the decode took minutes and gigabytes. Past the
// join budget the decode now fails like an allocation failure.
TEST_F(JoinBudget, OneValueExtendedWithoutBoundFailsTheDecode) {
    struct Case {
        const char *what;
        Bytes parms;
    };
    Bytes repeated;
    for (int i = 0; i < 2000; ++i) Append(repeated, NameFromTable(1));
    const Case cases[] = {
        {"one run of references", NameFromTable(10000)},
        {"a repeated parm", repeated},
    };
    for (const Case &c : cases) {
        Decoded d;
        Decode(NapDefDocument(kEntry + '\0', c.parms), &d);
        EXPECT_NE(d.status, 0u) << c.what;
        EXPECT_EQ(d.doc, nullptr) << c.what;
    }
}

TEST_F(JoinBudget, LongValuesOfRealSizeStillDecode) {
    // A 60 KB inline value, and a 300 KB value from ten table references.
    const std::string longText(60000, 'x');
    Bytes inlineParm{0x87, 0x11, 0x06};
    Append(inlineParm, Text(longText));
    inlineParm.push_back(0x01);
    Bytes withRefs = inlineParm;
    Append(withRefs, NameFromTable(10));

    // Several decodes in a row: the budget belongs to one decode.
    for (int round = 0; round < 40; ++round) {
        Decoded d;
        Decode(NapDefDocument(kEntry + '\0', withRefs), &d);
        ASSERT_EQ(d.status, 0u) << "round " << round;
        ASSERT_NE(d.NapDef(), nullptr);
        EXPECT_EQ(std::string(d.NapDef()->pszNapId), longText);
        EXPECT_EQ(std::strlen(d.NapDef()->pszName), 10 * kEntry.size());
    }
}

}  // namespace
