#include "wbxml_tokens.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>

#include "tokens.h"
#include "tqomacp_jni_names.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"

namespace cpmake {
namespace {

// Names without a token that the handset still reads by their text.
constexpr std::string_view kTypesByName[] = {"ROAMING", "WI-FI"};
constexpr std::string_view kParmsByName[] = {
    "INIT",
    "FROM",
    "XCAP_AUID_DCS",
    "XCAP_AUID_PMS",
    "XCAP_AUID_CDMS",
    "XCAP_IMEI_HEADER",
    "XCAP_TID_HEADER",
    "SYNC-ALLOWED",
    "SYNC-DEFAULT",
    "NETSSID",
    "SECMODE",
    "EAPMETHOD",
    "EAPTYPE",
    "USERNAME",
    "ANONUSERNAME",
    "PASSWORD",
    "CACERT",
    "USERCERT",
    "PHASE1",
    "AUTHALGORITHM",
    "PRIORITY",
};

// The token of `name` in cpdump's tables of both attribute pages, or the
// inline marker for a name the handset reads by text.
template <std::size_t N>
std::optional<Token> Find(const char *(*on_page)(unsigned char, unsigned char),
                          const std::string_view (&by_name)[N], std::string_view name) {
    Token token{0, 0};
    for (unsigned char page = 0; page <= 1; ++page) {
        for (int code = 0; code < 0x80; ++code) {
            const char *known = on_page(static_cast<unsigned char>(code), page);
            if (known != nullptr && known == name) {
                token.code = static_cast<std::uint8_t>(code);
                token.pages |= page == 0 ? kPage0 : kPage1;
            }
        }
    }
    if (token.pages != 0) return token;
    for (std::string_view n : by_name) {
        if (n == name) return Token{0, kBothPages};
    }
    return std::nullopt;
}

// Value codes by the page on which the standard gives them the very text the
// library decodes them to (the texts themselves come from the library). Left
// out: 0x91, HTTP to the library but "HTTP-" on page 1 and V.120 on page 0,
// and 0x9E, the library's WTLS_SS for the standard WTLS-SS.
struct CodeRange {
    std::uint8_t first, last, pages;
};
constexpr CodeRange kValuePages[] = {
    {0x85, 0x85, kPage0}, {0x86, 0x88, kBothPages}, {0x89, 0x8C, kPage0}, {0x90, 0x90, kPage0},
    {0x92, 0x93, kPage1}, {0x94, 0x95, kPage0},     {0x9A, 0x9D, kPage0}, {0x9F, 0x9F, kPage0},
    {0xA2, 0xBC, kPage0}, {0xCA, 0xCA, kPage0},
};

std::uint8_t PagesOf(std::uint8_t code) {
    for (const CodeRange &r : kValuePages) {
        if (code >= r.first && code <= r.last) return r.pages;
    }
    return 0;
}

}  // namespace

std::optional<Token> FindType(std::string_view name) {
    return Find(cpdump::TypeOnPage, kTypesByName, name);
}

std::optional<Token> FindParm(std::string_view name) {
    return Find(cpdump::ParmOnPage, kParmsByName, name);
}

std::vector<std::string> ParmNames() {
    std::vector<std::string> names(std::begin(kParmsByName), std::end(kParmsByName));
    for (unsigned char page = 0; page <= 1; ++page) {
        for (unsigned char code = 0; code < 0x80; ++code) {
            const char *name = cpdump::ParmOnPage(code, page);
            if (name != nullptr && std::find(names.begin(), names.end(), name) == names.end())
                names.emplace_back(name);
        }
    }
    return names;
}

std::string_view DecodedText(std::uint8_t code) {
    static const std::array<std::string, 256> texts = [] {
        std::array<std::string, 256> t;
        for (int c = 0x80; c <= 0xFF; ++c) {
            char *text = nullptr;
            if (tqsClientProvWbxmlDecoderGetParamTokenVal(static_cast<std::uint8_t>(c), &text) == 0 &&
                text != nullptr)
                t[c] = text;
            tqsMemFree_debug(text);
        }
        return t;
    }();
    return texts[code];
}

std::uint8_t ValueToken(std::string_view parm, std::string_view value, std::uint8_t page) {
    const std::uint8_t on_page = page == 0 ? kPage0 : kPage1;
    for (int code = 0x80; code <= 0xFF; ++code) {
        const auto c = static_cast<std::uint8_t>(code);
        if ((PagesOf(c) & on_page) && !value.empty() && DecodedText(c) == value) return c;
    }
    // A bearer stays a raw code in the tree and the handset names it from
    // its own table; given as text it would report the NAP-ADDRESS instead.
    if (parm == "BEARER" && on_page == kPage0) {
        const tqsJniCodeName *bearers = tqsJniCodeNames + TQS_JNI_SERVICE_NAMES;
        for (int i = 0; i < TQS_JNI_BEARER_CODES; ++i) {
            if (value == bearers[i].name) return bearers[i].code;
        }
    }
    return 0;
}

}  // namespace cpmake
