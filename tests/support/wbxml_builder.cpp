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

Builder &Builder::Version(uint8_t version) {
    version_ = version;
    return *this;
}

Builder &Builder::PublicId(uint32_t publicId) {
    publicId_ = publicId;
    literalPublicId_ = false;
    return *this;
}

Builder &Builder::LiteralPublicId(std::string_view text) {
    publicId_ = 0;
    literalPublicId_ = true;
    literalIndex_ = TableString(text);
    return *this;
}

Builder &Builder::Charset(uint32_t charset) {
    charset_ = charset;
    return *this;
}

uint32_t Builder::TableString(std::string_view text) {
    // Reuse an identical string already in the table, as encoders do.
    for (size_t start = 0; start < table_.size();) {
        size_t end = start;
        while (end < table_.size() && table_[end] != 0) ++end;
        if (std::string_view(reinterpret_cast<const char *>(table_.data()) + start, end - start) == text &&
            end < table_.size()) {
            return static_cast<uint32_t>(start);
        }
        start = end + 1;
    }
    uint32_t index = static_cast<uint32_t>(table_.size());
    table_.insert(table_.end(), text.begin(), text.end());
    table_.push_back(0);
    return index;
}

Builder &Builder::RawTable(std::vector<uint8_t> bytes) {
    table_ = std::move(bytes);
    return *this;
}

Builder &Builder::UseStringTable(bool on) {
    useTable_ = on;
    return *this;
}

Builder &Builder::Byte(uint8_t b) {
    body_.push_back(b);
    return *this;
}

Builder &Builder::Bytes(const std::vector<uint8_t> &bytes) {
    body_.insert(body_.end(), bytes.begin(), bytes.end());
    return *this;
}

Builder &Builder::MbUint32(uint32_t value) {
    AppendMbUint32(body_, value);
    return *this;
}

Builder &Builder::Tag(uint8_t id, bool content, bool attributes) {
    return Byte(static_cast<uint8_t>(id | (content ? kHasContent : 0) | (attributes ? kHasAttributes : 0)));
}

Builder &Builder::End() {
    return Byte(kEnd);
}

Builder &Builder::StrI(std::string_view text) {
    StrIUnterminated(text);
    return Byte(0);
}

Builder &Builder::StrIUnterminated(std::string_view text) {
    Byte(kStrI);
    body_.insert(body_.end(), text.begin(), text.end());
    return *this;
}

Builder &Builder::StrT(uint32_t index) {
    Byte(kStrT);
    return MbUint32(index);
}

Builder &Builder::StrT(std::string_view text) {
    return StrT(TableString(text));
}

Builder &Builder::Opaque(std::string_view data) {
    return OpaqueDeclared(static_cast<uint32_t>(data.size()), data);
}

Builder &Builder::OpaqueDeclared(uint32_t declaredLength, std::string_view data) {
    Byte(kOpaque);
    MbUint32(declaredLength);
    body_.insert(body_.end(), data.begin(), data.end());
    return *this;
}

Builder &Builder::SwitchPage(uint8_t page) {
    attrPage_ = page;
    return Bytes({kSwitchPage, page});
}

Builder &Builder::Entity(uint32_t code) {
    Byte(kEntity);
    return MbUint32(code);
}

Builder &Builder::Literal(uint32_t index) {
    Byte(kLiteral);
    return MbUint32(index);
}

Builder &Builder::ExtI(uint8_t n, std::string_view text) {
    Byte(static_cast<uint8_t>(kExtI0 + n));
    body_.insert(body_.end(), text.begin(), text.end());
    return Byte(0);
}

Builder &Builder::ExtT(uint8_t n, uint32_t index) {
    Byte(static_cast<uint8_t>(kExtT0 + n));
    return MbUint32(index);
}

Builder &Builder::Ext(uint8_t n) {
    return Byte(static_cast<uint8_t>(kExt0 + n));
}

Builder &Builder::Doc() {
    return Tag(prov::kTagWapProvisioningDoc, true, false);
}

Builder &Builder::DocVersion10() {
    Tag(prov::kTagWapProvisioningDoc, true, true);
    return Bytes({prov::kVersion10, kEnd});
}

Builder &Builder::AttrPage(uint8_t page) {
    if (page != prov::kAnyPage && attrPage_ != page) SwitchPage(page);
    return *this;
}

Builder &Builder::String(std::string_view text) {
    return useTable_ ? StrT(text) : StrI(text);
}

Builder &Builder::Characteristic(prov::Token type) {
    Tag(prov::kTagCharacteristic, true, true);
    AttrPage(type.page);
    return Bytes({type.byte, kEnd});
}

Builder &Builder::Characteristic(std::string_view typeName) {
    Tag(prov::kTagCharacteristic, true, true);
    Byte(prov::kTypeInline);
    String(typeName);
    return End();
}

Builder &Builder::EmptyCharacteristic(prov::Token type) {
    Tag(prov::kTagCharacteristic, false, true);
    AttrPage(type.page);
    return Bytes({type.byte, kEnd});
}

Builder &Builder::Parm(prov::Token name, std::string_view value) {
    Tag(prov::kTagParm, false, true);
    AttrPage(name.page);
    Bytes({name.byte, prov::kValueAttr});
    String(value);
    return End();
}

Builder &Builder::Parm(prov::Token name, uint8_t valueToken) {
    Tag(prov::kTagParm, false, true);
    AttrPage(name.page);
    return Bytes({name.byte, prov::kValueAttr, valueToken, kEnd});
}

Builder &Builder::Parm(prov::Token name) {
    Tag(prov::kTagParm, false, true);
    AttrPage(name.page);
    return Bytes({name.byte, kEnd});
}

Builder &Builder::NamedParm(std::string_view name, std::string_view value) {
    Tag(prov::kTagParm, false, true);
    Byte(prov::kNameAttr);
    String(name);
    Byte(prov::kValueAttr);
    String(value);
    return End();
}

Builder &Builder::NamedParm(std::string_view name) {
    Tag(prov::kTagParm, false, true);
    Byte(prov::kNameAttr);
    String(name);
    return End();
}

std::vector<uint8_t> Builder::Build() const {
    std::vector<uint8_t> out;
    out.reserve(16 + table_.size() + body_.size());
    out.push_back(version_);
    AppendMbUint32(out, publicId_);
    if (publicId_ == 0) AppendMbUint32(out, literalPublicId_ ? literalIndex_ : 0);
    AppendMbUint32(out, charset_);
    AppendMbUint32(out, static_cast<uint32_t>(table_.size()));
    out.insert(out.end(), table_.begin(), table_.end());
    out.insert(out.end(), body_.begin(), body_.end());
    return out;
}

}  // namespace wbxml
