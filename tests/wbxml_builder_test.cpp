// The test-side WBXML writer: exact bytes for the encodings the decoder tests rely on.
#include "wbxml_builder.h"

#include <gtest/gtest.h>

namespace {

using Bytes = std::vector<uint8_t>;

TEST(WbxmlBuilder, MbUint32Encoding) {
    const struct {
        uint32_t value;
        Bytes bytes;
    } cases[] = {
        {0x80, {0x81, 0x00}},
        {0x3FFF, {0xFF, 0x7F}},
        {0xFFFFFFFF, {0x8F, 0xFF, 0xFF, 0xFF, 0x7F}},
    };
    for (const auto &c : cases) {
        Bytes out;
        wbxml::AppendMbUint32(out, c.value);
        EXPECT_EQ(out, c.bytes) << c.value;
    }
}

TEST(WbxmlBuilder, HeaderAndStringTable) {
    // A literal public id goes first in the table.
    Bytes literal{0x03, 0x00, 0x00, 0x6A, 30};
    for (char c : std::string("-//WAPFORUM//DTD PROV 1.0//EN")) literal.push_back(static_cast<uint8_t>(c));
    literal.insert(literal.end(), {0x00, 0x45, 0x01});
    EXPECT_EQ(wbxml::Builder().LiteralPublicId().Doc().End().Build(), literal);
    // Table mode writes strings as references.
    wbxml::Builder b;
    b.UseStringTable().Parm(wbxml::prov::kNapId, "ab").NamedParm("X", "cd");
    EXPECT_EQ(b.Build(), (Bytes{0x03, 0x0B, 0x6A, 0x08, 'a',  'b',  0,    'X', 0, 'c', 'd', 0,  //
                                0x87, 0x11, 0x06, 0x83, 0x00, 0x01,                             //
                                0x87, 0x05, 0x83, 0x03, 0x06, 0x83, 0x05, 0x01}));
}

TEST(WbxmlBuilder, ParmsSwitchAttributePagesLikeAnEncoder) {
    wbxml::Builder b;
    b.Characteristic(wbxml::prov::kApplication)
        .Parm(wbxml::prov::kAppId, "w2")
        .Parm(wbxml::prov::kName, "n")
        .End()
        .Characteristic(wbxml::prov::kNapDef)
        .End();
    EXPECT_EQ(b.Body(), (Bytes{0xC6, 0x00, 0x01, 0x55, 0x01,                    // APPLICATION on page 1
                               0x87, 0x36, 0x06, 0x03, 'w',  '2',  0x00, 0x01,  // APPID
                               0x87, 0x07, 0x06, 0x03, 'n',  0x00, 0x01,        // NAME: same byte on page 1
                               0x01,                                            //
                               0xC6, 0x00, 0x00, 0x55, 0x01, 0x01}));           // NAPDEF back on page 0
}

}  // namespace
