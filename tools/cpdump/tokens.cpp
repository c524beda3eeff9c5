#include "tokens.h"

#include <cstdio>
#include <iterator>

#include "tqomacp_jni_names.h"
#include "tqspushhandler.h"

namespace cpdump {
namespace {

struct Named {
    unsigned char code;
    const char *name;
};

// The decoder's four value tables, every entry including those its scan does
// not reach (they are private to the decoder, so the texts are repeated here;
// a test checks them against the decoder). A code in two tables has the
// meaning of the table the decoder scans first; 0x91 to 0x93 never reach the
// context as raw bytes because the decoder always turns them into text.
// Services and bearers come from the binding's own table below.
constexpr Named kDecoderTokens[] = {
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
};

struct NamedCode {
    std::uint64_t code;
    const char *name;
};

constexpr NamedCode kContentTypes[] = {
    {SML_PUSH_CT_CONNECTIVITY_WBXML, "application/vnd.wap.connectivity-wbxml"},
    {SML_PUSH_CT_CONNECTIVITY_XML, "application/vnd.wap.connectivity-xml"},
    {SML_PUSH_CT_SYNCML_NOTIFICATION, "application/vnd.syncml.notification"},
    {SML_PUSH_CT_SYNCML_DS_NOTIFICATION, "application/vnd.syncml.ds.notification"},
    {SML_PUSH_CT_SYNCML_DM_WBXML, "application/vnd.syncml.dm+wbxml"},
};

// Provisioning tokens of attribute code pages 0 and 1, by code.
constexpr unsigned char kFirstType = 0x51, kFirstParm = 0x07;
constexpr const char *kTypes[2][11] = {
    {"PXLOGICAL", "PXPHYSICAL", "PORT", "VALIDITY", "NAPDEF", "BOOTSTRAP", "VENDORCONFIG", "CLIENTIDENTITY",
     "PXAUTHINFO", "NAPAUTHINFO", "ACCESS"},
    {nullptr, nullptr, "PORT", nullptr, "APPLICATION", "APPADDR", "APPAUTH", "CLIENTIDENTITY", "RESOURCE"},
};
// clang-format off
constexpr const char *kParms[2][0x4F - kFirstParm + 1] = {
    {"NAME", "NAP-ADDRESS", "NAP-ADDRTYPE", "CALLTYPE", "VALIDUNTIL", "AUTHTYPE", "AUTHNAME", "AUTHSECRET",
     "LINGER", "BEARER", "NAPID", "COUNTRY", "NETWORK", "INTERNET", "PROXY-ID", "PROXY-PROVIDER-ID", "DOMAIN",
     "PROVURL", "PXAUTH-TYPE", "PXAUTH-ID", "PXAUTH-PW", "STARTPAGE", "BASAUTH-ID", "BASAUTH-PW", "PUSHENABLED",
     "PXADDR", "PXADDRTYPE", "TO-NAPID", "PORTNBR", "SERVICE", "LINKSPEED", "DNLINKSPEED", "LOCAL-ADDR",
     "LOCAL-ADDRTYPE", "CONTEXT-ALLOW", "TRUST", "MASTER", "SID", "SOC", "WSP-VERSION", "PHYSICAL-PROXY-ID",
     "CLIENT-ID", "DELIVERY-ERR-SDU", "DELIVERY-ORDER", "TRAFFIC-CLASS", "MAX-SDU-SIZE", "MAX-BITRATE-UPLINK",
     "MAX-BITRATE-DNLINK", "RESIDUAL-BER", "SDU-ERROR-RATIO", "TRAFFIC-HANDL-PRIO", "TRANSFER-DELAY",
     "GUARANTEED-BITRATE-UPLINK", "GUARANTEED-BITRATE-DNLINK", "PXADDR-FQDN", "PROXY-PW", "PPGAUTH-TYPE",
     nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, "PULLENABLED", "DNS-ADDR", "MAX-NUM-RETRY",
     "FIRST-RETRY-TIMEOUT", "REREG-THRESHOLD", "T-BIT", nullptr, "AUTH-ENTITY", "SPI"},
    {"NAME", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
     nullptr, "INTERNET", nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, "STARTPAGE", nullptr,
     nullptr, nullptr, nullptr, nullptr, "TO-NAPID", "PORTNBR", "SERVICE", nullptr, nullptr, nullptr, nullptr,
     nullptr, nullptr, nullptr, nullptr, nullptr, "AACCEPT", "AAUTHDATA", "AAUTHLEVEL", "AAUTHNAME",
     "AAUTHSECRET", "AAUTHTYPE", "ADDR", "ADDRTYPE", "APPID", "APROTOCOL", "PROVIDER-ID", "TO-PROXY", "URI",
     "RULE"},
};
// clang-format on

template <typename Table>
const char *Find(const Table &table, std::uint64_t code) {
    for (const auto &entry : table) {
        if (entry.code == code) return entry.name;
    }
    return nullptr;
}

}  // namespace

const char *ValueTokenName(unsigned char code) {
    if (const char *name = Find(kDecoderTokens, code)) return name;
    // Services, then bearers; code 0 marks the two "Unkown" entries.
    if (code != 0) {
        for (const tqsJniCodeName &entry : tqsJniCodeNames) {
            if (entry.code == code) return entry.name;
        }
    }
    return nullptr;
}

std::string DisplayValue(const char *stored) {
    const auto first = static_cast<unsigned char>(stored[0]);
    if (first < 0x80 || stored[1] != '\0') return stored;
    if (const char *name = ValueTokenName(first)) return name;
    char buf[8];
    std::snprintf(buf, sizeof buf, "0x%02X", first);
    return buf;
}

const char *TypeOnPage(unsigned char code, unsigned char page) {
    if (page > 1 || code < kFirstType || code >= kFirstType + std::size(kTypes[0])) return nullptr;
    return kTypes[page][code - kFirstType];
}

const char *ParmOnPage(unsigned char code, unsigned char page) {
    if (page > 1 || code < kFirstParm || code >= kFirstParm + std::size(kParms[0])) return nullptr;
    return kParms[page][code - kFirstParm];
}

const char *TypeName(unsigned char code, unsigned char page) {
    const char *name = TypeOnPage(code, page == 1);
    return name != nullptr ? name : TypeOnPage(code, 0);
}

const char *ParmName(unsigned char code, bool page1_first) {
    const char *name = ParmOnPage(code, page1_first);
    return name != nullptr ? name : ParmOnPage(code, !page1_first);
}

const char *ContentTypeName(std::uint64_t code) {
    return Find(kContentTypes, code);
}

}  // namespace cpdump
