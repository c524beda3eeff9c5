// Regression tests for what the fuzzers found (fuzz/README.md lists them).
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "mem_check.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqslist.h"
#include "wbxml_builder.h"

namespace {

namespace prov = wbxml::prov;

const std::string kEntry(30000, 'T');  // with its zero: one 30001-byte table

// NAME parm whose value is `refs` references to the table entry.
void NameFromTable(wbxml::Builder &b, int refs) {
    b.Tag(prov::kTagParm, false, true).Bytes({prov::kName.byte, prov::kValueAttr});
    for (int i = 0; i < refs; ++i) b.StrT(0u);
    b.End();
}

struct Decoded {
    TqsResult status;
    bool tree;
    std::string napId;
    size_t nameLength;
};

// Decodes a document with kEntry as its string table and one NAPDEF whose
// parms `parms` writes. What a failing decode had not linked into the tree
// yet stays allocated by design: the tracker frees it.
Decoded DecodeNapDef(const std::function<void(wbxml::Builder &)> &parms) {
    wbxml::Builder b;
    b.TableString(kEntry);
    parms(b.DocVersion10().Characteristic(prov::kNapDef));
    std::vector<uint8_t> body = b.End().End().Build();
    MemCheck mem;
    tqsWbxmlDecoder *decoder = nullptr;
    EXPECT_EQ(tqsClientProvWbxmlInitDecoder(&decoder, body.data(), static_cast<uint32_t>(body.size())), 0u);
    tqsWapDoc *doc = nullptr;
    Decoded out{tqsClientProvWbxmlDecoder(decoder, &doc), doc != nullptr, "", 0};
    tqsClientProvWbxmlDeleteDecoder(decoder);
    if (doc != nullptr && doc->ptCharacterList != nullptr) {
        const tqsWapNapDef *napDef =
            static_cast<tqsWapCharacter *>(doc->ptCharacterList->ptHead->pItem)->ptNapDef;
        out.napId = napDef->pszNapId != nullptr ? napDef->pszNapId : "";
        out.nameLength = napDef->pszName != nullptr ? std::strlen(napDef->pszName) : 0;
    }
    tqsClientProvWbxmlDeleteWapDoc(doc);
    mem.FreeAll();
    return out;
}

// Found by the stress seed "long-string-table": a 64 KB body whose NAME value
// is thousands of references to a 30 KB table entry, or whose NAME parm is
// repeated thousands of times, extends one text again and again; every join
// copies the whole text, so the decode took minutes and gigabytes. Past the
// join budget the decode now fails like an allocation failure.
TEST(JoinBudget, OneValueExtendedWithoutBoundFailsTheDecode) {
    Decoded run = DecodeNapDef([](wbxml::Builder &b) { NameFromTable(b, 10000); });
    EXPECT_NE(run.status, 0u);
    EXPECT_FALSE(run.tree);
    Decoded repeated = DecodeNapDef([](wbxml::Builder &b) {
        for (int i = 0; i < 2000; ++i) NameFromTable(b, 1);
    });
    EXPECT_NE(repeated.status, 0u);
    EXPECT_FALSE(repeated.tree);
}

TEST(JoinBudget, LongValuesOfRealSizeStillDecode) {
    // A 60 KB inline value, and a 300 KB value from ten table references,
    // several decodes in a row: the budget belongs to one decode.
    const std::string longText(60000, 'x');
    for (int round = 0; round < 40; ++round) {
        Decoded d = DecodeNapDef([&](wbxml::Builder &b) {
            b.Parm(prov::kNapId, longText);
            NameFromTable(b, 10);
        });
        ASSERT_EQ(d.status, 0u) << "round " << round;
        EXPECT_EQ(d.napId, longText);
        EXPECT_EQ(d.nameLength, 10 * kEntry.size());
    }
}

}  // namespace
