// Regression tests for what the fuzzers found (fuzz/README.md lists them).
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>

#include "mem_check.h"
#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxmlDecoder.h"
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
    bool ok;
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
    tqsClientProvCtx *ctx = tqsClinetProvWbxmlDecoderMain(body.data(), static_cast<uint32_t>(body.size()));
    Decoded out{ctx != nullptr, "", 0};
    if (ctx != nullptr) {
        out.napId = ctx->ptNapDef->pszNapId != nullptr ? ctx->ptNapDef->pszNapId : "";
        out.nameLength = ctx->ptNapDef->pszName != nullptr ? std::strlen(ctx->ptNapDef->pszName) : 0;
        tqsClientProvCtxDelectContext(ctx);
    }
    mem.FreeAll();
    return out;
}

// Found by the stress seed "long-string-table": a 64 KB body whose NAME value
// is thousands of references to a 30 KB table entry, or whose NAME parm is
// repeated thousands of times, extends one text again and again; every join
// copies the whole text, so the decode took minutes and gigabytes. Past the
// join budget the decode now fails like an allocation failure.
TEST(JoinBudget, OneValueExtendedWithoutBoundFailsTheDecode) {
    EXPECT_FALSE(DecodeNapDef([](wbxml::Builder &b) { NameFromTable(b, 10000); }).ok);
    EXPECT_FALSE(DecodeNapDef([](wbxml::Builder &b) {
                     for (int i = 0; i < 2000; ++i) NameFromTable(b, 1);
                 }).ok);
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
        ASSERT_TRUE(d.ok) << "round " << round;
        EXPECT_EQ(d.napId, longText);
        EXPECT_EQ(d.nameLength, 10 * kEntry.size());
    }
}

}  // namespace
