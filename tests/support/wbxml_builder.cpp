#include "wbxml_builder.h"

namespace wbxml {

void AppendMbUint32(std::vector<uint8_t> &out, uint32_t value) {
    uint8_t groups[5];
    int n = 0;
    do {
        groups[n++] = static_cast<uint8_t>(value & 0x7F);
        value >>= 7;
    } while (value != 0);
    while (n > 1) out.push_back(static_cast<uint8_t>(groups[--n] | 0x80));
    out.push_back(groups[0]);
}

Builder &Builder::LiteralPublicId(std::string_view text) {
    publicId_ = 0;
    literalIndex_ = TableString(text);
    return *this;
}

uint32_t Builder::TableString(std::string_view text) {
    auto index = static_cast<uint32_t>(table_.size());
    table_.insert(table_.end(), text.begin(), text.end());
    table_.push_back(0);
    return index;
}

Builder &Builder::Bytes(const std::vector<uint8_t> &bytes) {
    body_.insert(body_.end(), bytes.begin(), bytes.end());
    return *this;
}

Builder &Builder::Tag(uint8_t id, bool content, bool attributes) {
    return Byte(static_cast<uint8_t>(id | (content ? kHasContent : 0) | (attributes ? kHasAttributes : 0)));
}

Builder &Builder::StrI(std::string_view text) {
    return Byte(kStrI).Bytes(std::vector<uint8_t>(text.begin(), text.end())).Byte(0);
}

Builder &Builder::StrT(std::string_view text) {
    Byte(kStrT);
    AppendMbUint32(body_, TableString(text));
    return *this;
}

Builder &Builder::SwitchPage(uint8_t page) {
    attrPage_ = page;
    return Bytes({kSwitchPage, page});
}

Builder &Builder::AttrPage(uint8_t page) {
    return page != prov::kAnyPage && attrPage_ != page ? SwitchPage(page) : *this;
}

Builder &Builder::Characteristic(prov::Token type) {
    return Tag(prov::kTagCharacteristic, true, true).AttrPage(type.page).Bytes({type.byte, kEnd});
}

Builder &Builder::Characteristic(std::string_view typeName) {
    return Tag(prov::kTagCharacteristic, true, true).Byte(prov::kTypeInline).String(typeName).End();
}

Builder &Builder::DocVersion10() {
    return Tag(prov::kTagWapProvisioningDoc, true, true).Bytes({prov::kVersion10, kEnd});
}

Builder &Builder::Parm(prov::Token name, std::string_view value) {
    return ParmName(name).Byte(prov::kValueAttr).String(value).End();
}

Builder &Builder::ParmName(prov::Token name) {
    return Tag(prov::kTagParm, false, true).AttrPage(name.page).Byte(name.byte);
}

Builder &Builder::NamedParm(std::string_view name, std::string_view value) {
    return NameAttr(name).Byte(prov::kValueAttr).String(value).End();
}

Builder &Builder::NameAttr(std::string_view name) {
    return Tag(prov::kTagParm, false, true).Byte(prov::kNameAttr).String(name);
}

std::vector<uint8_t> Builder::Build() const {
    std::vector<uint8_t> out = {0x03};  // WBXML 1.3
    AppendMbUint32(out, publicId_);
    if (publicId_ == 0) AppendMbUint32(out, literalIndex_);
    AppendMbUint32(out, 0x6A);  // UTF-8
    AppendMbUint32(out, static_cast<uint32_t>(table_.size()));
    out.insert(out.end(), table_.begin(), table_.end());
    out.insert(out.end(), body_.begin(), body_.end());
    return out;
}

}  // namespace wbxml
