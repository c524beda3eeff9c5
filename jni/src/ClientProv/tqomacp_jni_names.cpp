// The binding's vocabulary, apart from JNI so the tools can read it: what the
// getters answer for service positions and bearer codes, and the element a
// composite getter writes for an address type, an authentication type or an
// authentication level.
#include "tqomacp_jni_names.h"

#include <stddef.h>
#include <stdint.h>

#include "tqsstring.h"

// ---------------------------------------------------------------------------
// Service and bearer names. One array: the eleven service entries, then the
// twenty-eight bearer entries, so a service position past 10 names a bearer.
// ---------------------------------------------------------------------------

const tqsJniCodeName tqsJniCodeNames[TQS_JNI_CODE_NAMES] = {
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
    {0, "Unkown Service"},
    // Bearer names.
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
    {0, "Unkown Bearer"},
};

// Positions past both tables give null.
const char *tqsJniServiceName(int s) {
    return s >= 0 && s < TQS_JNI_CODE_NAMES ? tqsJniCodeNames[s].name : nullptr;
}

const char *tqsJniBearerName(unsigned char code) {
    const tqsJniCodeName *bearers = tqsJniCodeNames + TQS_JNI_SERVICE_NAMES;
    for (int i = 0; i < TQS_JNI_BEARER_CODES; ++i) {
        if (bearers[i].code == code) return bearers[i].name;
    }
    return bearers[TQS_JNI_BEARER_CODES].name;
}

// ---------------------------------------------------------------------------
// Element mappings of the composite getters. Rows are tested in order; a row
// matches the exact text (case-insensitively where it says so) or, when it
// has a code, the value's first byte.
// ---------------------------------------------------------------------------

namespace {

struct TokenRow {
    int code;  // -1: no code byte accepted
    const char *text;
    bool anyCase;
    const char *element;
};

enum class Fallback : uint8_t {
    kText,  // write `fallbackText`
    kNull,  // write null
    kSkip,  // write nothing; later elements move up one index
};

struct TokenMap {
    const TokenRow *rows;
    int count;
    Fallback fallback;
    const char *fallbackText;
};

// Address types are reported as IPV4 unless they say IPV6.
constexpr TokenRow kPxAddrTypeRows[] = {
    {0x85, "IPV4", false, "NET_ADDR_IPV4"},
    {0x86, "IPV6", false, "NET_ADDR_IPV6"},
};
// Only a raw code byte names a NAP address type; a text matches nothing.
constexpr TokenRow kNapAddrTypeRows[] = {
    {0x85, nullptr, false, "0x85"}, {0x86, nullptr, false, "0x86"}, {0x87, nullptr, false, "0x87"},
    {0x88, nullptr, false, "0x88"}, {0x89, nullptr, false, "0x89"}, {0x8A, nullptr, false, "0x8a"},
    {0x8B, nullptr, false, "0x8b"}, {0x8C, nullptr, false, "0x8c"},
};
constexpr TokenRow kAuthTypeRows[] = {
    {0x9A, "PAP", false, "PAP"},
    {0x9B, "CHAP", false, "CHAP"},
    {0x9C, "HTTP-BASIC", false, "HTTP-BASIC"},
    {0x9D, "HTTP-DIGEST", false, "HTTP-DIGEST"},
    {0x9E, "WTLS-SS", false, "WTLS-SS"},
    {0x9F, "MD5", false, "MD5"},
};
// APPSRV by code or exact text, CLIENT by text in any case only.
constexpr TokenRow kAAuthLevelRows[] = {
    {0x8D, "APPSRV", false, "APPSRV"},
    {-1, "CLIENT", true, "CLIENT"},
};

template <size_t N>
constexpr TokenMap MapOf(const TokenRow (&rows)[N], Fallback fallback, const char *text = nullptr) {
    return TokenMap{rows, static_cast<int>(N), fallback, text};
}

// Indexed by tqsJniMapping.
constexpr TokenMap kTokenMaps[] = {
    MapOf(kPxAddrTypeRows, Fallback::kText, "NET_ADDR_IPV4"),
    MapOf(kNapAddrTypeRows, Fallback::kSkip),
    MapOf(kAuthTypeRows, Fallback::kText, "NONE"),
    MapOf(kAAuthLevelRows, Fallback::kNull),
};
static_assert(sizeof kTokenMaps / sizeof kTokenMaps[0] == TQS_JNI_MAP_AAUTH_LEVEL + 1, "one map per mapping");

bool RowMatches(const TokenRow &row, const char *value) {
    if (row.code >= 0 && static_cast<unsigned char>(value[0]) == row.code) return true;
    if (row.text == nullptr) return false;
    return (row.anyCase ? tqsStricmp(value, row.text) : tqsStrcmp(value, row.text)) == 0;
}

}  // namespace

int tqsJniMapElement(tqsJniMapping mapping, const char *stored, const char **element) {
    *element = nullptr;
    if (stored == nullptr) return 1;
    const TokenMap &map = kTokenMaps[mapping];
    for (int i = 0; i < map.count; ++i) {
        if (RowMatches(map.rows[i], stored)) {
            *element = map.rows[i].element;
            return 1;
        }
    }
    if (map.fallback == Fallback::kSkip) return 0;
    *element = map.fallbackText;
    return 1;
}
