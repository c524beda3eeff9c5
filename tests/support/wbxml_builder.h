// Test-side WBXML writer for hand-made provisioning documents (version 1.3,
// public id 0x0B, UTF-8):
//
//   wbxml::Builder b;
//   b.Doc().Characteristic(wbxml::prov::kNapDef).Parm(wbxml::prov::kNapId, "NAP1");
//   b.Parm(wbxml::prov::kNapAddrType, wbxml::prov::kIpv4).End().End();  // a value token
//   std::vector<uint8_t> body = b.Build();
//
// The typed helpers emit SWITCH_PAGE inside an attribute list whenever the
// token they need lives on the other attribute page (as encoders do); the raw
// helpers (Tag, Byte, StrI, StrT, SwitchPage, End, ...) write exactly what
// they are told, for malformed input.
#ifndef TQOMACP_TESTS_WBXML_BUILDER_H
#define TQOMACP_TESTS_WBXML_BUILDER_H

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace wbxml {

// Global tokens (WBXML 1.3).
inline constexpr uint8_t kSwitchPage = 0x00;
inline constexpr uint8_t kEnd = 0x01;
inline constexpr uint8_t kStrI = 0x03;
inline constexpr uint8_t kStrT = 0x83;

// Tag bits.
inline constexpr uint8_t kHasAttributes = 0x80;
inline constexpr uint8_t kHasContent = 0x40;

namespace prov {

// Public identifier of "-//WAPFORUM//DTD PROV 1.0//EN".
inline constexpr uint32_t kPublicId = 0x0B;
inline constexpr char kPublicIdText[] = "-//WAPFORUM//DTD PROV 1.0//EN";

// Tags (same on both pages).
inline constexpr uint8_t kTagWapProvisioningDoc = 0x05;
inline constexpr uint8_t kTagCharacteristic = 0x06;
inline constexpr uint8_t kTagParm = 0x07;

// Attribute tokens of the document element.
inline constexpr uint8_t kVersion10 = 0x46;  // version="1.0"
// Attribute tokens of characteristic and parm.
inline constexpr uint8_t kTypeInline = 0x50;  // type=, name follows as a string
inline constexpr uint8_t kNameAttr = 0x05;    // name=, name follows as a string
inline constexpr uint8_t kValueAttr = 0x06;   // value=, value follows

// An attribute token together with the attribute code page that defines it.
struct Token {
    uint8_t byte;
    uint8_t page;
};
// Page of a token defined identically on both attribute pages.
inline constexpr uint8_t kAnyPage = 0xFF;

// Characteristic types.
inline constexpr Token kPxLogical{0x51, 0};
inline constexpr Token kPxPhysical{0x52, 0};
inline constexpr Token kPort{0x53, kAnyPage};
inline constexpr Token kValidity{0x54, 0};
inline constexpr Token kNapDef{0x55, 0};
inline constexpr Token kBootstrap{0x56, 0};
inline constexpr Token kVendorConfig{0x57, 0};
inline constexpr Token kClientIdentity{0x58, kAnyPage};
inline constexpr Token kPxAuthInfo{0x59, 0};
inline constexpr Token kNapAuthInfo{0x5A, 0};
inline constexpr Token kAccess{0x5B, 0};
inline constexpr Token kApplication{0x55, 1};
inline constexpr Token kAppAddr{0x56, 1};
inline constexpr Token kAppAuth{0x57, 1};
inline constexpr Token kResource{0x59, 1};

// Parm names, page 0.
inline constexpr Token kName{0x07, kAnyPage};  // NAME
inline constexpr Token kCallType{0x0A, 0};
inline constexpr Token kAuthType{0x0C, 0};
inline constexpr Token kAuthName{0x0D, 0};
inline constexpr Token kLinger{0x0F, 0};
inline constexpr Token kBearer{0x10, 0};
inline constexpr Token kNapId{0x11, 0};
inline constexpr Token kCountry{0x12, 0};
inline constexpr Token kNetwork{0x13, 0};
inline constexpr Token kProxyId{0x15, 0};
inline constexpr Token kDomain{0x17, 0};
inline constexpr Token kProvUrl{0x18, 0};
inline constexpr Token kPxAuthType{0x19, 0};
inline constexpr Token kPxAuthId{0x1A, 0};
inline constexpr Token kStartPage{0x1C, kAnyPage};
inline constexpr Token kPxAddr{0x20, 0};
inline constexpr Token kToNapId{0x22, kAnyPage};
inline constexpr Token kPortNbr{0x23, kAnyPage};
inline constexpr Token kService{0x24, kAnyPage};
inline constexpr Token kPhysicalProxyId{0x2F, 0};
inline constexpr Token kClientId{0x30, 0};
inline constexpr Token kDnsAddr{0x48, 0};
inline constexpr Token kAuthEntity{0x4E, 0};
// Parm names, page 1.
inline constexpr Token kAAuthName{0x31, 1};
inline constexpr Token kAddr{0x34, 1};
inline constexpr Token kAppId{0x36, 1};
inline constexpr Token kToProxy{0x39, 1};
inline constexpr Token kUri{0x3A, 1};
inline constexpr Token kRule{0x3B, 1};

// Value tokens (attribute values, same byte on both pages unless noted).
inline constexpr uint8_t kIpv4 = 0x85;
inline constexpr uint8_t kAnalogModem = 0x90;  // page 0; page 1: "," (0x90)
inline constexpr uint8_t kBitTransparent = 0x94;
inline constexpr uint8_t kGsmGprs = 0xAB;
inline constexpr uint8_t kPap = 0x9A;

}  // namespace prov

class Builder {
   public:
    // ---- Header (written by Build(), in front of the body) ----------------
    // Public id 0 followed by this string-table index (the text is added to
    // the table first when given).
    Builder &LiteralPublicId(std::string_view text = prov::kPublicIdText);
    // Appends a string (with its zero) to the string table; returns its index.
    uint32_t TableString(std::string_view text);
    // Typed helpers write strings as STR_T references instead of STR_I.
    Builder &UseStringTable() {
        useTable_ = true;
        return *this;
    }

    // ---- Raw body bytes --------------------------------------------------
    Builder &Byte(uint8_t b) { return Bytes({b}); }
    Builder &Bytes(const std::vector<uint8_t> &bytes);
    Builder &Tag(uint8_t id, bool content, bool attributes);
    Builder &End() { return Byte(kEnd); }
    Builder &StrI(std::string_view text);
    Builder &StrT(std::string_view text);  // adds the text to the table
    Builder &SwitchPage(uint8_t page);     // also updates the tracked attribute page

    // ---- Provisioning helpers --------------------------------------------
    // <wap-provisioningdoc> with content; close with End().
    Builder &Doc() { return Tag(prov::kTagWapProvisioningDoc, true, false); }
    Builder &DocVersion10();  // with version="1.0"
    // <characteristic type=...> with content; close with End().
    Builder &Characteristic(prov::Token type);
    // <characteristic type="name"> (inline type, e.g. "ROAMING", "WI-FI").
    Builder &Characteristic(std::string_view typeName);
    // <parm name=TOKEN value="text"/>, <parm name=TOKEN value=VALUE-TOKEN/>, <parm name=TOKEN/>
    Builder &Parm(prov::Token name, std::string_view value);
    Builder &Parm(prov::Token name, uint8_t valueToken) {
        return ParmName(name).Bytes({prov::kValueAttr, valueToken, kEnd});
    }
    Builder &Parm(prov::Token name) { return ParmName(name).End(); }
    // <parm name="text" value="text"/> and <parm name="text"/>
    Builder &NamedParm(std::string_view name, std::string_view value);
    Builder &NamedParm(std::string_view name) { return NameAttr(name).End(); }

    // Header, string table and body.
    std::vector<uint8_t> Build() const;
    // Only the element stream.
    const std::vector<uint8_t> &Body() const { return body_; }

   private:
    // A string value as the helpers write it (STR_I, or STR_T in table mode).
    Builder &String(std::string_view text) { return useTable_ ? StrT(text) : StrI(text); }
    // Makes sure the tracked attribute page is `page` (emits SWITCH_PAGE).
    Builder &AttrPage(uint8_t page);
    // The start of a parm's attribute list up to its name.
    Builder &ParmName(prov::Token name);
    Builder &NameAttr(std::string_view name);

    uint32_t publicId_ = prov::kPublicId;
    uint32_t literalIndex_ = 0;
    std::vector<uint8_t> table_;
    std::vector<uint8_t> body_;
    bool useTable_ = false;
    uint8_t attrPage_ = 0;
};

// Appends a WBXML mb_u_int32.
void AppendMbUint32(std::vector<uint8_t> &out, uint32_t value);

}  // namespace wbxml

#endif  // TQOMACP_TESTS_WBXML_BUILDER_H
