#include "tokens.h"

#include <cstdio>
#include <cstring>
#include <strings.h>

namespace cpdump {
namespace {

struct Named {
    unsigned char code;
    const char *name;
};

// Every code the library names somewhere: the decoder's four value tables
// (including the entries its scan does not reach), the service and bearer
// tables of the getters. A code that is in two tables has the same meaning in
// the tables the decoder scans first; 0x91 to 0x93 never reach the context as
// raw bytes because the decoder always turns them into text.
constexpr Named kValueTokens[] = {
    {0x85, "IPV4"},
    {0x86, "IPV6"},
    {0x87, "E164"},
    {0x88, "ALPHA"},
    {0x89, "APN"},
    {0x8A, "SCODE"},
    {0x8B, "TETRA-ITSI"},
    {0x8C, "MAN"},
    {0x8D, "APPSRV"},
    {0x8E, "OBEX"},
    {0x90, "ANALOG-MODEM"},
    {0x91, "HTTP"},
    {0x92, "BASIC"},
    {0x93, "DIGEST"},
    {0x94, "BIT-TRANSPARENT"},
    {0x95, "DIRECT-ASYNCHRONOUS-DATA-SERVICE"},
    {0x9A, "PAP"},
    {0x9B, "CHAP"},
    {0x9C, "HTTP-BASIC"},
    {0x9D, "HTTP-DIGEST"},
    {0x9E, "WTLS_SS"},
    {0x9F, "MD5"},
    {0xA2, "GSM-USSD"},
    {0xA3, "GSM-SMS"},
    {0xA4, "ANSI-136-GUTS"},
    {0xA5, "IS-95-CDMA-SMS"},
    {0xA6, "IS-95-CDMA-CSD"},
    {0xA7, "IS-95-CDMA-PACKET"},
    {0xA8, "ANSI-136-CSD"},
    {0xA9, "ANSI-136-GPRS"},
    {0xAA, "GSM-CSD"},
    {0xAB, "GSM-GPRS"},
    {0xAC, "AMPS-CDPD"},
    {0xAD, "PDC-CSD"},
    {0xAE, "PDC-PACKET"},
    {0xAF, "IDEN-SMS"},
    {0xB0, "IDEN-CSD"},
    {0xB1, "IDEN-PACKET"},
    {0xB2, "FLEX/REFLEX"},
    {0xB3, "PHS-SMS"},
    {0xB4, "PHS-CSD"},
    {0xB5, "TETRA-SDS"},
    {0xB6, "TETRA-PACKET"},
    {0xB7, "ANSI-136-GHOST"},
    {0xB8, "MOBITEX-MPAK"},
    {0xB9, "CDMA2000-1X-SIMPLE-IP"},
    {0xBA, "CDMA2000-1X-MOBILE-IP"},
    {0xBB, "3G-GSM"},
    {0xBC, "WLAN"},
    {0xCA, "CL-WSP"},
    {0xCB, "CO-WSP"},
    {0xCC, "CL-SEC-WSP"},
    {0xCD, "CO-SEC-WSP"},
    {0xCE, "CL-SEC-WTA"},
    {0xCF, "CO-SEC-WTA"},
    {0xD0, "OTA-HTTP-TO"},
    {0xD1, "OTA-HTTP-TLS-TO"},
    {0xD2, "OTA-HTTP-PO"},
    {0xD3, "OTA-HTTP-TLS-PO"},
};

struct NamedCode {
    std::uint64_t code;
    const char *name;
};

constexpr NamedCode kContentTypes[] = {
    {0x36, "application/vnd.wap.connectivity-wbxml"}, {0x35, "application/vnd.wap.connectivity-xml"},
    {0x44, "application/vnd.syncml.notification"},    {0x4E, "application/vnd.syncml.ds.notification"},
    {0x42, "application/vnd.syncml.dm+wbxml"},
};

constexpr NamedCode kSecMethods[] = {
    {0x80, "NETWPIN"},
    {0x81, "USERPIN"},
    {0x82, "USERNETWPIN"},
    {0x83, "USERPINMAC"},
};

template <typename Table>
const char *Find(const Table &table, std::uint64_t code) {
    for (const auto &entry : table) {
        if (entry.code == code) return entry.name;
    }
    return nullptr;
}

unsigned char First(const char *s) {
    return static_cast<unsigned char>(s[0]);
}

// A composite-getter test: the exact text, or (when code is not 0) the first byte.
bool Is(const char *stored, const char *text, unsigned char code) {
    return std::strcmp(stored, text) == 0 || (code != 0 && First(stored) == code);
}

}  // namespace

const char *ValueTokenName(unsigned char code) {
    return Find(kValueTokens, code);
}

std::string DisplayValue(const char *stored) {
    const unsigned char first = First(stored);
    if (first < 0x80 || stored[1] != '\0') return stored;
    if (const char *name = ValueTokenName(first)) return name;
    char buf[8];
    std::snprintf(buf, sizeof buf, "0x%02X", first);
    return buf;
}

const char *ContentTypeName(std::uint64_t code) {
    return Find(kContentTypes, code);
}

const char *SecName(std::uint64_t code) {
    return Find(kSecMethods, code);
}

const char *AppPxAddrType(const char *stored) {
    if (stored == nullptr) return nullptr;
    if (Is(stored, "IPV4", 0x85)) return "NET_ADDR_IPV4";
    if (Is(stored, "IPV6", 0x86)) return "NET_ADDR_IPV6";
    return "NET_ADDR_IPV4";
}

const char *AppNapAddrType(const char *stored, bool *shifted) {
    static constexpr const char *kCodes[] = {"0x85", "0x86", "0x87", "0x88", "0x89", "0x8a", "0x8b", "0x8c"};
    *shifted = false;
    if (stored == nullptr) return nullptr;
    const unsigned char first = First(stored);
    if (first >= 0x85 && first <= 0x8C) return kCodes[first - 0x85];
    *shifted = true;
    return nullptr;
}

const char *AppAuthType(const char *stored) {
    static constexpr struct {
        const char *text;
        unsigned char code;
    } kTypes[] = {{"PAP", 0x9A},         {"CHAP", 0x9B},    {"HTTP-BASIC", 0x9C},
                  {"HTTP-DIGEST", 0x9D}, {"WTLS-SS", 0x9E}, {"MD5", 0x9F}};
    if (stored == nullptr) return nullptr;
    for (const auto &t : kTypes) {
        if (Is(stored, t.text, t.code)) return t.text;
    }
    return "NONE";
}

const char *AppAAuthLevel(const char *stored) {
    if (stored == nullptr) return nullptr;
    if (Is(stored, "APPSRV", 0x8D)) return "APPSRV";
    if (strcasecmp(stored, "CLIENT") == 0) return "CLIENT";
    return nullptr;
}

}  // namespace cpdump
