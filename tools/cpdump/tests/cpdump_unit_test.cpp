// The tool's own pieces: hex input, escaping, token names, the application's
// mapped values in context JSON, odd trees and the header rejection reasons.
// (JSON layout and the built-in sample are pinned whole by the CLI goldens.)
#include <gtest/gtest.h>

#include <span>
#include <string>
#include <utility>

#include "input.h"
#include "records.h"
#include "textout.h"
#include "tqsClientProvFields.h"
#include "tqslist.h"
#include "tokens.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "verdict.h"

namespace cpdump {
namespace {

Bytes B(std::string_view s) {
    return Bytes(s.begin(), s.end());
}

TEST(HexInput, SpellingsBinaryAndBrokenText) {
    Bytes out;
    std::string error;
    for (const char *text : {"010603b69180", "01 06 03 B6 91 80\n", "01:06:03:b6:91:80",
                             "0x01 0x06 0x03 0xB6 0x91 0x80", "0X010603\r\n\tB69180", "0x010603B69180\n"}) {
        ASSERT_EQ(DecodeHexText(B(text), &out, &error), HexVerdict::kHex) << text;
        EXPECT_EQ(out, (Bytes{0x01, 0x06, 0x03, 0xB6, 0x91, 0x80})) << text;
    }
    // A push PDU (the PDU type 0x06 is no hex character); "x" only counts as
    // part of a 0x prefix at the start of a group.
    EXPECT_EQ(DecodeHexText(Bytes{0x01, 0x06, 0x03, 0xB6}, &out, &error), HexVerdict::kNotHex);
    for (const char *text : {"", " \n", "01 06 zz", "010x06"})
        EXPECT_EQ(DecodeHexText(B(text), &out, &error), HexVerdict::kNotHex) << text;
    EXPECT_EQ(DecodeHexText(B("01 06 0"), &out, &error), HexVerdict::kBroken);
    EXPECT_NE(error.find("odd number of hex digits (5)"), std::string::npos) << error;
}

TEST(Escaping, JsonKeepsUtf8AndShowsOtherBytesXmlUsesEntities) {
    struct Case {
        std::string in, out;
    } cases[] = {
        {"a\"b\\c", "a\\\"b\\\\c"},
        {"line\nbreak\ttab\r", "line\\nbreak\\ttab\\r"},
        {std::string("\x01\x1F\x7F", 3), "\\u0001\\u001F\\u007F"},
        {"caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\xB1", "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x93\xB1"},
        {"P\xE1SE1", "P\\\\xE1SE1"},                           // a lone value token inside a text
        {"\xC0\x80", "\\\\xC0\\\\x80"},                        // overlong zero
        {"\xED\xA0\x80", "\\\\xED\\\\xA0\\\\x80"},             // surrogate half
        {"ab\xE2\x82", "ab\\\\xE2\\\\x82"},                    // cut-off sequence at the end
        {"\xF4\x90\x80\x80", "\\\\xF4\\\\x90\\\\x80\\\\x80"},  // beyond U+10FFFF
    };
    for (const Case &c : cases) EXPECT_EQ(EscapeJson(c.in), c.out) << c.in;
    EXPECT_EQ(EscapeXml("a&b<c>\"d\""), "a&amp;b&lt;c&gt;&quot;d&quot;");
    EXPECT_EQ(EscapeXml("x\xABy\x02"), "x\\xABy\\x02");
    EXPECT_EQ(EscapeXml("l1\nl2"), "l1&#10;l2");
}

// Named codes the goldens do not show (the decoder's own texts are checked
// below), codes the library has no name for (0xA1 and 0xBD are just outside
// the bearers) and a value that is not a lone token, shown as stored.
TEST(Tokens, OneByteValuesAreNamed) {
    const std::pair<const char *, const char *> cases[] = {
        {"\x8D", "APPSRV"}, {"\xE1", "0xE1"}, {"\xC5", "0xC5"},   {"\x80", "0x80"},
        {"\xA1", "0xA1"},   {"\xBD", "0xBD"}, {"\x89x", "\x89x"}, {"\xD3", "OTA-HTTP-TLS-PO"}};
    for (auto [stored, shown] : cases) EXPECT_EQ(DisplayValue(stored), shown) << shown;
}

// The tool repeats the decoder's value-token texts: every code the decoder
// turns into text must carry that text as its name.
TEST(Tokens, DecoderValueTokenTexts) {
    int named = 0;
    for (int code = 0x80; code <= 0xFF; ++code) {
        char *text = nullptr;
        if (tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<uint8_t>(code), &text) != 0) continue;
        ASSERT_NE(text, nullptr);
        EXPECT_STREQ(ValueTokenName(static_cast<unsigned char>(code)), text) << code;
        tqsMemFree_debug(text);
        ++named;
    }
    // 8 address types, 7 authentication types, BASIC and DIGEST, and the call
    // types and service that no earlier table shadows (0x90, 0x94, 0x95, 0xCA).
    EXPECT_EQ(named, 21);
}

// The decoder reads page-0 types on page 1 too, and parms by characteristic;
// header codes by the push handler's table. cpmake finds names in the same
// tables, and golden/refused.txt names APPLICATION on page 1.
TEST(Tokens, TypeParmAndContentTypeNames) {
    EXPECT_STREQ(TypeName(0x51, 1), "PXLOGICAL");
    EXPECT_EQ(TypeName(0x50, 0), nullptr);
    // The top of the parm table, a code of each page, and the gaps.
    EXPECT_STREQ(ParmName(0x4F, false), "SPI");
    EXPECT_STREQ(ParmName(0x3B, false), "GUARANTEED-BITRATE-UPLINK");
    EXPECT_STREQ(ParmName(0x3B, true), "RULE");
    EXPECT_STREQ(ParmName(0x47, true), "PULLENABLED");
    EXPECT_EQ(ParmName(0x40, false), nullptr);
    EXPECT_EQ(ParmName(0x50, true), nullptr);
    EXPECT_STREQ(ContentTypeName(0x42), "application/vnd.syncml.dm+wbxml");
    EXPECT_EQ(ContentTypeName(0x37), nullptr);
}

// The records' field lists and the page tables name every parm token alike.
TEST(Tokens, FieldListParmsAreTheTokensOfTheirPage) {
    for (const tqs::detail::RecordInfo &r : tqs::detail::kRecords) {
        for (const tqs::detail::Field &f : std::span(r.fields, r.count)) {
            if (f.token == 0) continue;
            const char *name = ParmOnPage(f.token, f.page);
            EXPECT_STREQ(name != nullptr ? name : "(none)", f.name) << r.type << " " << int(f.token);
        }
    }
}

// Contexts and trees built by hand on the stack: the printers only read them.
char *S(const char *text) {
    return const_cast<char *>(text);
}

// An authentication level the application has no element for reaches it as
// null; the goldens show mapped levels (cpc-omadm) and shifted elements.
TEST(ContextJson, UnknownAuthenticationLevelIsNull) {
    tqsCtxAppAuth auth{};
    auth.pszAAuthLevel = S("USER");
    tqsCtxApplication app{};
    app.ptAppAuth = &auth;
    tqsClientProvCtx ctx{};
    ctx.ptApplication = &app;
    std::string json;
    JsonWriter writer(&json);
    writer.BeginObject();
    WriteContextJson(writer, ctx);
    EXPECT_NE(
        json.find("\"AAUTHLEVEL\": \"USER\",\n            \"app\": {\n              \"AAUTHLEVEL\": null\n"
                  "            }"),
        std::string::npos)
        << json;
}

// The corpus goldens cover the ordinary records; these are the odd ones.
TEST(TreeXml, EmptyDocumentCharacteristicWithoutRecordAndParmWithoutValue) {
    auto tree = [](const tqsWapDoc *doc) {
        std::string xml;
        WriteTreeXml(&xml, doc);
        return xml;
    };
    EXPECT_EQ(tree(nullptr), "<wap-provisioningdoc/>\n");
    TqsList none{};
    tqsWapDoc empty{&none};
    EXPECT_EQ(tree(&empty), "<wap-provisioningdoc/>\n");

    tqsWapVendorConfig vendor{nullptr, S("FLAG"), nullptr};
    tqsWapCharacter vendor_char{};
    vendor_char.ptVendorConfig = &vendor;
    tqsWapCharacter empty_char{};
    TqsListNode second{&vendor_char, nullptr}, first{&empty_char, &second};
    TqsList top{2, &first, nullptr};
    tqsWapDoc doc{&top};
    EXPECT_EQ(tree(&doc),
              "<wap-provisioningdoc>\n"
              "  <characteristic/>\n"
              "  <characteristic type=\"VENDORCONFIG\">\n"
              "    <parm name=\"FLAG\"/>\n"
              "  </characteristic>\n"
              "</wap-provisioningdoc>\n");
}

// A PDU type other than push's and a content type by name: the CLI's refusals
// (the hints, golden/refused.txt).
TEST(HeaderRejection, SaysWhyInWords) {
    struct Case {
        Bytes pdu;
        const char *why;
    } cases[] = {
        {{}, "not a WSP push PDU (too short: 0 bytes)"},
        {{0x01}, "not a WSP push PDU (too short: 1 byte)"},
        {{0x01, 0x06}, "truncated push header (no header length)"},
        {{0x01, 0x06, 0x2F, 0x1F}, "truncated push header (header length 47, but only 1 bytes follow it)"},
        {{0x01, 0x06, 0x03, 0xB7, 0x91, 0x80}, "unknown content type (0xB7)"},
        {{0x01, 0x06, 0x02, 0x1F, 0x05}, "unknown content type (none before the end of the PDU)"},
    };
    for (const Case &c : cases) EXPECT_EQ(ExplainHeaderRejection(c.pdu), c.why);
}

}  // namespace
}  // namespace cpdump
