#include "tokens.h"

#include <array>
#include <string>

#include "tqomacp_jni_names.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"

namespace cpmake {
namespace {

struct Named {
    std::string_view name;
    Token token;
};

constexpr Token P0(std::uint8_t code) {
    return {code, kPage0};
}
constexpr Token P1(std::uint8_t code) {
    return {code, kPage1};
}
constexpr Token Both(std::uint8_t code) {
    return {code, kBothPages};
}
constexpr Token kInline{0, kBothPages};

constexpr Named kTypes[] = {
    {"PXLOGICAL", P0(0x51)},
    {"PXPHYSICAL", P0(0x52)},
    {"PORT", Both(0x53)},
    {"VALIDITY", P0(0x54)},
    {"NAPDEF", P0(0x55)},
    {"BOOTSTRAP", P0(0x56)},
    {"VENDORCONFIG", P0(0x57)},
    {"CLIENTIDENTITY", Both(0x58)},
    {"PXAUTHINFO", P0(0x59)},
    {"NAPAUTHINFO", P0(0x5A)},
    {"ACCESS", P0(0x5B)},
    {"APPLICATION", P1(0x55)},
    {"APPADDR", P1(0x56)},
    {"APPAUTH", P1(0x57)},
    {"RESOURCE", P1(0x59)},
    // No token; the handset reads these by their text.
    {"ROAMING", kInline},
    {"WI-FI", kInline},
};

constexpr Named kParms[] = {
    // Page 0.
    {"NAME", Both(0x07)},
    {"NAP-ADDRESS", P0(0x08)},
    {"NAP-ADDRTYPE", P0(0x09)},
    {"CALLTYPE", P0(0x0A)},
    {"VALIDUNTIL", P0(0x0B)},
    {"AUTHTYPE", P0(0x0C)},
    {"AUTHNAME", P0(0x0D)},
    {"AUTHSECRET", P0(0x0E)},
    {"LINGER", P0(0x0F)},
    {"BEARER", P0(0x10)},
    {"NAPID", P0(0x11)},
    {"COUNTRY", P0(0x12)},
    {"NETWORK", P0(0x13)},
    {"INTERNET", Both(0x14)},
    {"PROXY-ID", P0(0x15)},
    {"PROXY-PROVIDER-ID", P0(0x16)},
    {"DOMAIN", P0(0x17)},
    {"PROVURL", P0(0x18)},
    {"PXAUTH-TYPE", P0(0x19)},
    {"PXAUTH-ID", P0(0x1A)},
    {"PXAUTH-PW", P0(0x1B)},
    {"STARTPAGE", Both(0x1C)},
    {"BASAUTH-ID", P0(0x1D)},
    {"BASAUTH-PW", P0(0x1E)},
    {"PUSHENABLED", P0(0x1F)},
    {"PXADDR", P0(0x20)},
    {"PXADDRTYPE", P0(0x21)},
    {"TO-NAPID", Both(0x22)},
    {"PORTNBR", Both(0x23)},
    {"SERVICE", Both(0x24)},
    {"LINKSPEED", P0(0x25)},
    {"DNLINKSPEED", P0(0x26)},
    {"LOCAL-ADDR", P0(0x27)},
    {"LOCAL-ADDRTYPE", P0(0x28)},
    {"CONTEXT-ALLOW", P0(0x29)},
    {"TRUST", P0(0x2A)},
    {"MASTER", P0(0x2B)},
    {"SID", P0(0x2C)},
    {"SOC", P0(0x2D)},
    {"WSP-VERSION", P0(0x2E)},
    {"PHYSICAL-PROXY-ID", P0(0x2F)},
    {"CLIENT-ID", P0(0x30)},
    {"DELIVERY-ERR-SDU", P0(0x31)},
    {"DELIVERY-ORDER", P0(0x32)},
    {"TRAFFIC-CLASS", P0(0x33)},
    {"MAX-SDU-SIZE", P0(0x34)},
    {"MAX-BITRATE-UPLINK", P0(0x35)},
    {"MAX-BITRATE-DNLINK", P0(0x36)},
    {"RESIDUAL-BER", P0(0x37)},
    {"SDU-ERROR-RATIO", P0(0x38)},
    {"TRAFFIC-HANDL-PRIO", P0(0x39)},
    {"TRANSFER-DELAY", P0(0x3A)},
    {"GUARANTEED-BITRATE-UPLINK", P0(0x3B)},
    {"GUARANTEED-BITRATE-DNLINK", P0(0x3C)},
    {"PXADDR-FQDN", P0(0x3D)},
    {"PROXY-PW", P0(0x3E)},
    {"PPGAUTH-TYPE", P0(0x3F)},
    {"PULLENABLED", P0(0x47)},
    {"DNS-ADDR", P0(0x48)},
    {"MAX-NUM-RETRY", P0(0x49)},
    {"FIRST-RETRY-TIMEOUT", P0(0x4A)},
    {"REREG-THRESHOLD", P0(0x4B)},
    {"T-BIT", P0(0x4C)},
    {"AUTH-ENTITY", P0(0x4E)},
    {"SPI", P0(0x4F)},
    // Page 1.
    {"AACCEPT", P1(0x2E)},
    {"AAUTHDATA", P1(0x2F)},
    {"AAUTHLEVEL", P1(0x30)},
    {"AAUTHNAME", P1(0x31)},
    {"AAUTHSECRET", P1(0x32)},
    {"AAUTHTYPE", P1(0x33)},
    {"ADDR", P1(0x34)},
    {"ADDRTYPE", P1(0x35)},
    {"APPID", P1(0x36)},
    {"APROTOCOL", P1(0x37)},
    {"PROVIDER-ID", P1(0x38)},
    {"TO-PROXY", P1(0x39)},
    {"URI", P1(0x3A)},
    {"RULE", P1(0x3B)},
    // No token; the handset reads these by their text.
    {"INIT", kInline},
    {"FROM", kInline},
    {"XCAP_AUID_DCS", kInline},
    {"XCAP_AUID_PMS", kInline},
    {"XCAP_AUID_CDMS", kInline},
    {"XCAP_IMEI_HEADER", kInline},
    {"XCAP_TID_HEADER", kInline},
    {"SYNC-ALLOWED", kInline},
    {"SYNC-DEFAULT", kInline},
    {"NETSSID", kInline},
    {"SECMODE", kInline},
    {"EAPMETHOD", kInline},
    {"EAPTYPE", kInline},
    {"USERNAME", kInline},
    {"ANONUSERNAME", kInline},
    {"PASSWORD", kInline},
    {"CACERT", kInline},
    {"USERCERT", kInline},
    {"PHASE1", kInline},
    {"AUTHALGORITHM", kInline},
    {"PRIORITY", kInline},
};

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

template <std::size_t N>
const Token *Find(const Named (&table)[N], std::string_view name) {
    for (const Named &entry : table) {
        if (entry.name == name) return &entry.token;
    }
    return nullptr;
}

}  // namespace

const Token *FindType(std::string_view name) {
    return Find(kTypes, name);
}
const Token *FindParm(std::string_view name) {
    return Find(kParms, name);
}
std::size_t ParmCount() {
    return std::size(kParms);
}
std::string_view ParmName(std::size_t index) {
    return kParms[index].name;
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
