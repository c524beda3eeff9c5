#include "textout.h"

#include <cstdio>

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

// Walks the bytes, copying valid UTF-8 and handing every other byte to `raw`;
// `ascii` decides about each ASCII character (true: it has been written).
template <typename Ascii>
std::string Escape(std::string_view bytes, const char *raw_prefix, Ascii ascii) {
    std::string out;
    out.reserve(bytes.size() + 8);
    for (std::size_t i = 0; i < bytes.size();) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        const std::size_t n = Utf8Length(bytes, i);
        if (n == 0) {
            AppendHexByte(&out, raw_prefix, c);
            i += 1;
        } else if (n == 1) {
            if (!ascii(&out, c)) out += static_cast<char>(c);
            i += 1;
        } else {
            out.append(bytes.substr(i, n));
            i += n;
        }
    }
    return out;
}

}  // namespace

std::string EscapeJson(std::string_view bytes) {
    return Escape(bytes, "\\\\x", [](std::string *out, unsigned char c) {
        switch (c) {
            case '"':
                *out += "\\\"";
                return true;
            case '\\':
                *out += "\\\\";
                return true;
            case '\n':
                *out += "\\n";
                return true;
            case '\r':
                *out += "\\r";
                return true;
            case '\t':
                *out += "\\t";
                return true;
            default:
                break;
        }
        if (c < 0x20 || c == 0x7F) {
            AppendHexByte(out, "\\u00", c);
            return true;
        }
        return false;
    });
}

std::string EscapeXml(std::string_view bytes) {
    return Escape(bytes, "\\x", [](std::string *out, unsigned char c) {
        switch (c) {
            case '&':
                *out += "&amp;";
                return true;
            case '<':
                *out += "&lt;";
                return true;
            case '>':
                *out += "&gt;";
                return true;
            case '"':
                *out += "&quot;";
                return true;
            case '\n':
                *out += "&#10;";
                return true;
            case '\r':
                *out += "&#13;";
                return true;
            case '\t':
                *out += "&#9;";
                return true;
            default:
                break;
        }
        // XML 1.0 has no way to carry the other control characters.
        if (c < 0x20 || c == 0x7F) {
            AppendHexByte(out, "\\x", c);
            return true;
        }
        return false;
    });
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
