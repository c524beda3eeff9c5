#include "input.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "sms.h"

namespace cpdump {
namespace {

int HexValue(unsigned char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool IsSeparator(unsigned char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == ':';
}

}  // namespace

HexVerdict DecodeHexText(const Bytes &text, Bytes *out, std::string *error) {
    Bytes bytes;
    bool group_start = true;
    int high = -1;
    std::size_t digits = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const unsigned char c = text[i];
        if (IsSeparator(c)) {
            group_start = true;
            continue;
        }
        if (group_start && c == '0' && i + 1 < text.size() && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
            ++i;
            group_start = false;
            continue;
        }
        const int v = HexValue(c);
        if (v < 0) return HexVerdict::kNotHex;
        group_start = false;
        ++digits;
        if (high < 0) {
            high = v;
        } else {
            bytes.push_back(static_cast<unsigned char>(high << 4 | v));
            high = -1;
        }
    }
    if (digits == 0) return HexVerdict::kNotHex;
    if (high >= 0) {
        *error = "odd number of hex digits (" + std::to_string(digits) + ")";
        return HexVerdict::kBroken;
    }
    *out = std::move(bytes);
    return HexVerdict::kHex;
}

bool ReadAll(const std::string &path, Bytes *out, std::string *error) {
    const bool use_stdin = path == "-";
    FILE *f = use_stdin ? stdin : std::fopen(path.c_str(), "rb");
    if (f == nullptr) {
        *error = "cannot open '" + path + "': " + std::strerror(errno);
        return false;
    }
    Bytes data;
    unsigned char chunk[65536];
    bool ok = true;
    for (;;) {
        const std::size_t n = std::fread(chunk, 1, sizeof chunk, f);
        data.insert(data.end(), chunk, chunk + n);
        if (data.size() > kMaxInputSize) {
            *error = "'" + path + "' is larger than " + std::to_string(kMaxInputSize) + " bytes";
            ok = false;
            break;
        }
        if (n < sizeof chunk) {
            if (std::ferror(f)) {
                *error = "cannot read '" + path + "': " + std::strerror(errno);
                ok = false;
            }
            break;
        }
    }
    if (!use_stdin) std::fclose(f);
    if (ok) *out = std::move(data);
    return ok;
}

bool HexOrBinary(const Bytes &raw, const std::string &path, Bytes *out, std::string *error) {
    Bytes decoded;
    switch (DecodeHexText(raw, &decoded, error)) {
        case HexVerdict::kHex:
            *out = std::move(decoded);
            return true;
        case HexVerdict::kBroken:
            *error = "'" + path + "': " + *error;
            return false;
        case HexVerdict::kNotHex:
            break;
    }
    *out = raw;
    return true;
}

bool ReadTpduLines(const Bytes &text, std::vector<Bytes> *tpdus, std::string *error) {
    tpdus->clear();
    std::size_t number = 0;
    for (std::size_t start = 0; start < text.size();) {
        std::size_t end = start;
        while (end < text.size() && text[end] != '\n') ++end;
        ++number;
        const Bytes line(text.begin() + static_cast<std::ptrdiff_t>(start),
                         text.begin() + static_cast<std::ptrdiff_t>(end));
        start = end + 1;
        std::string_view view(reinterpret_cast<const char *>(line.data()), line.size());
        while (!view.empty() && (view.back() == '\r' || view.back() == ' ' || view.back() == '\t'))
            view.remove_suffix(1);
        if (view.empty() || view[0] == '+' || view == "OK" || view.rfind("AT", 0) == 0) continue;
        Bytes tpdu;
        std::string why;
        if (DecodeHexText(line, &tpdu, &why) != HexVerdict::kHex) {
            *error = "line " + std::to_string(number) + " is no TPDU in hex" +
                     (why.empty() ? "" : " (" + why + ")");
            return false;
        }
        tpdus->push_back(std::move(tpdu));
    }
    if (tpdus->empty()) {
        *error = "no TPDU in the input";
        return false;
    }
    return true;
}

bool PduFromSms(const Bytes &text, bool wap_ports_only, Bytes *pdu, std::string *error) {
    std::vector<Bytes> tpdus;
    if (!ReadTpduLines(text, &tpdus, error)) return false;
    std::vector<cpcommon::SmsSegment> segments(tpdus.size());
    for (std::size_t i = 0; i < tpdus.size(); ++i) {
        std::string why;
        if (!cpcommon::ParseTpdu(tpdus[i], &segments[i], &why)) {
            *error = "SMS " + std::to_string(i + 1) + ": " + why;
            return false;
        }
        if (wap_ports_only && !segments[i].has_ports) {
            *error = "SMS " + std::to_string(i + 1) + " has no WAP push port";
            return false;
        }
    }
    return cpcommon::JoinSegments(segments, pdu, error);
}

}  // namespace cpdump
