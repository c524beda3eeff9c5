#include "textout.h"

#include <cstdio>
#include <utility>

namespace cpdump {
namespace {

// Length of the valid UTF-8 sequence at s[i], or 0 when the byte there does not
// start one (overlong forms, surrogates and code points above U+10FFFF count
// as invalid).
std::size_t Utf8Length(std::string_view s, std::size_t i) {
    const auto b = [&](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    const unsigned char c = b(i);
    std::size_t n;
    std::uint32_t cp;
    if (c < 0x80) return 1;
    if (c >= 0xC2 && c <= 0xDF) {
        n = 2, cp = c & 0x1F;
    } else if (c >= 0xE0 && c <= 0xEF) {
        n = 3, cp = c & 0x0F;
    } else if (c >= 0xF0 && c <= 0xF4) {
        n = 4, cp = c & 0x07;
    } else {
        return 0;
    }
    if (s.size() - i < n) return 0;
    for (std::size_t k = 1; k < n; ++k) {
        if ((b(i + k) & 0xC0) != 0x80) return 0;
        cp = cp << 6 | (b(i + k) & 0x3F);
    }
    if ((n == 3 && cp < 0x800) || (n == 4 && cp < 0x10000) || cp > 0x10FFFF) return 0;
    if (cp >= 0xD800 && cp <= 0xDFFF) return 0;
    return n;
}

void AppendHexByte(std::string *out, const char *prefix, unsigned char c) {
    char buf[12];
    std::snprintf(buf, sizeof buf, "%s%02X", prefix, c);
    *out += buf;
}

struct Dialect {
    const char *raw_prefix;      // before the two hex digits of a byte that is not UTF-8
    const char *control_prefix;  // the same for control characters without a named escape
    std::pair<char, const char *> named[7];
};

// XML 1.0 has no way to carry most control characters: they take the raw form.
constexpr Dialect kJson{
    "\\\\x", "\\u00", {{'"', "\\\""}, {'\\', "\\\\"}, {'\n', "\\n"}, {'\r', "\\r"}, {'\t', "\\t"}}};
constexpr Dialect kXml{"\\x",
                       "\\x",
                       {{'&', "&amp;"},
                        {'<', "&lt;"},
                        {'>', "&gt;"},
                        {'"', "&quot;"},
                        {'\n', "&#10;"},
                        {'\r', "&#13;"},
                        {'\t', "&#9;"}}};

// Copies valid UTF-8 and writes every other byte in the dialect's raw form.
std::string Escape(std::string_view bytes, const Dialect &d) {
    std::string out;
    out.reserve(bytes.size() + 8);
    for (std::size_t i = 0; i < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        const std::size_t n = Utf8Length(bytes, i);
        if (n == 0) {
            AppendHexByte(&out, d.raw_prefix, c);
            i += 1;
            continue;
        }
        if (n > 1) {
            out.append(bytes.substr(i, n));
            i += n;
            continue;
        }
        i += 1;
        const char *named = nullptr;
        for (const auto &[ch, text] : d.named) {
            if (text != nullptr && static_cast<unsigned char>(ch) == c) named = text;
        }
        if (named != nullptr) {
            out += named;
        } else if (c < 0x20 || c == 0x7F) {
            AppendHexByte(&out, d.control_prefix, c);
        } else {
            out += static_cast<char>(c);
        }
    }
    return out;
}

}  // namespace

std::string EscapeJson(std::string_view bytes) {
    return Escape(bytes, kJson);
}

std::string EscapeXml(std::string_view bytes) {
    return Escape(bytes, kXml);
}

void JsonWriter::Indent() {
    out_->push_back('\n');
    out_->append(levels_.size() * 2, ' ');
}

void JsonWriter::BeforeValue() {
    if (after_key_) {
        after_key_ = false;
        return;
    }
    if (levels_.empty()) return;
    if (!levels_.back().empty) out_->push_back(',');
    levels_.back().empty = false;
    Indent();
}

void JsonWriter::Key(std::string_view key) {
    BeforeValue();
    *out_ += '"';
    *out_ += EscapeJson(key);
    *out_ += "\": ";
    after_key_ = true;
}

void JsonWriter::Open(char bracket) {
    BeforeValue();
    out_->push_back(bracket);
    levels_.push_back(Level{});
}

void JsonWriter::Close(char bracket) {
    const bool empty = levels_.back().empty;
    levels_.pop_back();
    if (!empty) Indent();
    out_->push_back(bracket);
}

void JsonWriter::String(std::string_view value) {
    BeforeValue();
    *out_ += '"';
    *out_ += EscapeJson(value);
    *out_ += '"';
}

void JsonWriter::Number(std::uint64_t value) {
    BeforeValue();
    *out_ += std::to_string(value);
}

void JsonWriter::Null() {
    BeforeValue();
    *out_ += "null";
}

void JsonWriter::Bool(std::string_view key, bool value) {
    Key(key);
    BeforeValue();
    *out_ += value ? "true" : "false";
}

void JsonWriter::Finish() {
    out_->push_back('\n');
}

}  // namespace cpdump
