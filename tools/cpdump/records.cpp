#include "records.h"

#include <cstddef>
#include <span>

#include "tokens.h"
#include "tqomacp_jni_names.h"
#include "tqslist.h"

namespace cpdump {
namespace {

enum class Kind {
    kString,      // char *
    kReserved,    // char * that no parm fills; shown only when set
    kStrChain,    // tqsCtxStrNode * chain
    kChildChain,  // chain of context records linked by their ptNext
    kSingle,      // one context record, not a chain (CLIENTIDENTITY)
    kTreeList,    // TqsList * of strings
    kTreeChars,   // TqsList * of tqsWapCharacter
    kNamedParm,   // tree VENDORCONFIG: a parm whose name and value are two strings in a row
};

struct Record;

struct Field {
    const char *name;
    std::size_t offset;
    Kind kind;
    const Record *child = nullptr;
};

// A stored value the application receives mapped, and which mapping.
struct AppElement {
    const char *key;
    std::size_t offset;
    tqsJniMapping mapping;
};

struct Record {
    const char *name;
    std::span<const Field> fields;
    std::size_t next = 0;  // offset of ptNext; 0 for records that are no chain
    const AppElement *app = nullptr;
};

template <typename T = char>
const T *PointerAt(const void *record, std::size_t offset) {
    const T *p;
    __builtin_memcpy(&p, static_cast<const char *>(record) + offset, sizeof p);
    return p;
}

// ---- String fields, shared by the tree record and the context record of a
// type (both name them alike and keep them in the same order).

// clang-format off
#define STR(T, f, n) Field{n, offsetof(T, f), Kind::kString},
#define RSV(T, f, n) Field{n, offsetof(T, f), Kind::kReserved},

#define PXAUTHINFO_STRINGS(T) \
    STR(T, pszPxAuthType, "PXAUTH-TYPE") \
    STR(T, pszPxAuthId, "PXAUTH-ID") \
    STR(T, pszPxAuthPw, "PXAUTH-PW")

#define PORT_STRINGS(T) \
    STR(T, pszPortNbr, "PORTNBR")

#define PXPHYSICAL_STRINGS(T) \
    STR(T, pszPhysicalProxyId, "PHYSICAL-PROXY-ID") \
    STR(T, pszPxAddr, "PXADDR") \
    STR(T, pszPxAddrType, "PXADDRTYPE") \
    STR(T, pszPxAddrFqdn, "PXADDR-FQDN") \
    STR(T, pszWspVersion, "WSP-VERSION") \
    STR(T, pszPushEnabled, "PUSHENABLED") \
    STR(T, pszPullEnabled, "PULLENABLED")

#define PXLOGICAL_STRINGS(T) \
    STR(T, pszProxyId, "PROXY-ID") \
    STR(T, pszProxyPw, "PROXY-PW") \
    STR(T, pszPpgAuthType, "PPGAUTH-TYPE") \
    STR(T, pszProxyProviderId, "PROXY-PROVIDER-ID") \
    STR(T, pszName, "NAME") \
    STR(T, pszTrust, "TRUST") \
    STR(T, pszMaster, "MASTER") \
    STR(T, pszStartPage, "STARTPAGE") \
    RSV(T, pszReserved1, "RESERVED-1") \
    RSV(T, pszReserved2, "RESERVED-2") \
    RSV(T, pszReserved3, "RESERVED-3") \
    RSV(T, pszReserved4, "RESERVED-4") \
    RSV(T, pszReserved5, "RESERVED-5")

#define NAPDEF_STRINGS(T) \
    STR(T, pszNapId, "NAPID") \
    STR(T, pszName, "NAME") \
    STR(T, pszInternet, "INTERNET") \
    STR(T, pszNapAddress, "NAP-ADDRESS") \
    STR(T, pszNapAddrType, "NAP-ADDRTYPE") \
    STR(T, pszCallType, "CALLTYPE") \
    STR(T, pszLocalAddr, "LOCAL-ADDR") \
    STR(T, pszLocalAddrType, "LOCAL-ADDRTYPE") \
    STR(T, pszLinkSpeed, "LINKSPEED") \
    STR(T, pszDnLinkSpeed, "DNLINKSPEED") \
    STR(T, pszLinger, "LINGER") \
    STR(T, pszDeliveryErrSdu, "DELIVERY-ERR-SDU") \
    STR(T, pszDeliveryOrder, "DELIVERY-ORDER") \
    STR(T, pszTrafficClass, "TRAFFIC-CLASS") \
    STR(T, pszMaxSduSize, "MAX-SDU-SIZE") \
    STR(T, pszMaxBitrateUplink, "MAX-BITRATE-UPLINK") \
    STR(T, pszMaxBitrateDnlink, "MAX-BITRATE-DNLINK") \
    RSV(T, pszReserved1, "RESERVED-1") \
    RSV(T, pszReserved2, "RESERVED-2") \
    RSV(T, pszReserved3, "RESERVED-3") \
    RSV(T, pszReserved4, "RESERVED-4") \
    RSV(T, pszReserved5, "RESERVED-5") \
    RSV(T, pszReserved6, "RESERVED-6") \
    STR(T, pszMaxNumRetry, "MAX-NUM-RETRY") \
    STR(T, pszFirstRetryTimeout, "FIRST-RETRY-TIMEOUT") \
    STR(T, pszReregThreshold, "REREG-THRESHOLD") \
    STR(T, pszTBit, "T-BIT") \
    STR(T, pszInit, "INIT")

#define NAPAUTHINFO_STRINGS(T) \
    STR(T, pszAuthType, "AUTHTYPE") \
    STR(T, pszAuthName, "AUTHNAME") \
    STR(T, pszAuthSecret, "AUTHSECRET") \
    RSV(T, pszReserved1, "RESERVED-1")

#define VALIDITY_STRINGS(T) \
    STR(T, pszCountry, "COUNTRY") \
    STR(T, pszNetwork, "NETWORK") \
    STR(T, pszSid, "SID") \
    STR(T, pszSoc, "SOC") \
    STR(T, pszValidUntil, "VALIDUNTIL")

#define BOOTSTRAP_STRINGS(T) \
    STR(T, pszName, "NAME") \
    STR(T, pszCountry, "COUNTRY") \
    STR(T, pszProvUrl, "PROVURL") \
    STR(T, pszContextAllow, "CONTEXT-ALLOW")

#define APPADDR_STRINGS(T) \
    STR(T, pszAddr, "ADDR") \
    STR(T, pszAddrType, "ADDRTYPE")

#define APPAUTH_STRINGS(T) \
    STR(T, pszAAuthLevel, "AAUTHLEVEL") \
    STR(T, pszAAuthType, "AAUTHTYPE") \
    STR(T, pszAAuthName, "AAUTHNAME") \
    STR(T, pszAAuthSecret, "AAUTHSECRET") \
    STR(T, pszAAuthData, "AAUTHDATA")

#define RESOURCE_STRINGS(T) \
    STR(T, pszUri, "URI") \
    STR(T, pszName, "NAME") \
    STR(T, pszAAccept, "AACCEPT") \
    STR(T, pszAAuthType, "AAUTHTYPE") \
    STR(T, pszAAuthName, "AAUTHNAME") \
    STR(T, pszAAuthSecret, "AAUTHSECRET") \
    STR(T, pszAAuthData, "AAUTHDATA") \
    STR(T, pszStartPage, "STARTPAGE")

#define ROAMING_STRINGS(T) \
    STR(T, pszSyncAllowed, "SYNC-ALLOWED") \
    STR(T, pszSyncDefault, "SYNC-DEFAULT")

#define APPLICATION_STRINGS(T) \
    STR(T, pszAppId, "APPID") \
    STR(T, pszProviderId, "PROVIDER-ID") \
    STR(T, pszFrom, "FROM") \
    STR(T, pszName, "NAME") \
    STR(T, pszAAccept, "AACCEPT") \
    STR(T, pszAProtocol, "APROTOCOL") \
    STR(T, pszInternet, "INTERNET") \
    STR(T, pszXcapAuidDcs, "XCAP_AUID_DCS") \
    STR(T, pszXcapAuidPms, "XCAP_AUID_PMS") \
    STR(T, pszXcapAuidCdms, "XCAP_AUID_CDMS") \
    STR(T, pszXcapImeiHeader, "XCAP_IMEI_HEADER") \
    STR(T, pszXcapTidHeader, "XCAP_TID_HEADER")

#define CLIENTIDENTITY_STRINGS(T) \
    STR(T, pszClientId, "CLIENT-ID")

#define WIFI_STRINGS(T) \
    STR(T, pszNetSsid, "NETSSID") \
    STR(T, pszSecMode, "SECMODE") \
    STR(T, pszEapMethod, "EAPMETHOD") \
    STR(T, pszEapType, "EAPTYPE") \
    STR(T, pszUserName, "USERNAME") \
    STR(T, pszAnonUserName, "ANONUSERNAME") \
    STR(T, pszPassword, "PASSWORD") \
    STR(T, pszCaCert, "CACERT") \
    STR(T, pszUserCert, "USERCERT") \
    STR(T, pszPhase1, "PHASE1") \
    STR(T, pszAuthAlgorithm, "AUTHALGORITHM") \
    STR(T, pszPriority, "PRIORITY")
// clang-format on

// ---- Context records.

#define CHAIN(T, f, n) Field{n, offsetof(T, f), Kind::kStrChain},
#define CHILD(T, f, n, rec) Field{n, offsetof(T, f), Kind::kChildChain, &rec},

// The values the composite getters hand the application instead of the stored ones.
constexpr AppElement kAppPxAddrType{"PXADDRTYPE", offsetof(tqsCtxPxPhysical, pszPxAddrType),
                                    TQS_JNI_MAP_PX_ADDR_TYPE};
constexpr AppElement kAppNapAddrType{"NAP-ADDRTYPE", offsetof(tqsCtxNapDef, pszNapAddrType),
                                     TQS_JNI_MAP_NAP_ADDR_TYPE};
constexpr AppElement kAppAuthType{"AUTHTYPE", offsetof(tqsCtxNapAuthInfo, pszAuthType),
                                  TQS_JNI_MAP_AUTH_TYPE};
constexpr AppElement kAppAAuthLevel{"AAUTHLEVEL", offsetof(tqsCtxAppAuth, pszAAuthLevel),
                                    TQS_JNI_MAP_AAUTH_LEVEL};

void WriteApp(JsonWriter &json, const AppElement &app, const void *record) {
    json.BeginObject("app");
    const char *element = nullptr;
    if (const char *stored = PointerAt(record, app.offset)) {
        if (!tqsJniMapElement(app.mapping, stored, &element)) {
            // No element is written for it: CALLTYPE lands in its place and
            // every later element of the array moves one index down.
            json.Null(app.key);
            json.Bool("elementsShifted", true);
        } else if (element != nullptr) {
            json.String(app.key, element);
        } else {
            json.Null(app.key);
        }
    }
    json.EndObject();
}

// clang-format off
constexpr Field kCtxPxAuthInfoFields[] = {PXAUTHINFO_STRINGS(tqsCtxPxAuthInfo)};
constexpr Record kCtxPxAuthInfo{"PXAUTHINFO", kCtxPxAuthInfoFields, offsetof(tqsCtxPxAuthInfo, ptNext)};

constexpr Field kCtxPortFields[] = {
    PORT_STRINGS(tqsCtxPort)
    CHAIN(tqsCtxPort, ptService, "SERVICE")
};
constexpr Record kCtxPort{"PORT", kCtxPortFields, offsetof(tqsCtxPort, ptNext)};

constexpr Field kCtxPxPhysicalFields[] = {
    PXPHYSICAL_STRINGS(tqsCtxPxPhysical)
    CHAIN(tqsCtxPxPhysical, ptDomain, "DOMAIN")
    CHAIN(tqsCtxPxPhysical, ptToNapId, "TO-NAPID")
    CHILD(tqsCtxPxPhysical, ptPort, "PORT", kCtxPort)
};
constexpr Record kCtxPxPhysical{"PXPHYSICAL", kCtxPxPhysicalFields, offsetof(tqsCtxPxPhysical, ptNext),
                                &kAppPxAddrType};

constexpr Field kCtxPxLogicalFields[] = {
    PXLOGICAL_STRINGS(tqsCtxPxLogical)
    CHAIN(tqsCtxPxLogical, ptDomain, "DOMAIN")
    CHILD(tqsCtxPxLogical, ptPxAuthInfo, "PXAUTHINFO", kCtxPxAuthInfo)
    CHILD(tqsCtxPxLogical, ptPort, "PORT", kCtxPort)
    CHILD(tqsCtxPxLogical, ptPxPhysical, "PXPHYSICAL", kCtxPxPhysical)
};
constexpr Record kCtxPxLogical{"PXLOGICAL", kCtxPxLogicalFields, offsetof(tqsCtxPxLogical, ptNext)};

constexpr Field kCtxNapAuthInfoFields[] = {
    NAPAUTHINFO_STRINGS(tqsCtxNapAuthInfo)
    CHAIN(tqsCtxNapAuthInfo, ptAuthEntity, "AUTH-ENTITY")
};
constexpr Record kCtxNapAuthInfo{"NAPAUTHINFO", kCtxNapAuthInfoFields, offsetof(tqsCtxNapAuthInfo, ptNext),
                                 &kAppAuthType};

constexpr Field kCtxValidityFields[] = {VALIDITY_STRINGS(tqsCtxValidity)};
constexpr Record kCtxValidity{"VALIDITY", kCtxValidityFields, offsetof(tqsCtxValidity, ptNext)};

constexpr Field kCtxNapDefFields[] = {
    NAPDEF_STRINGS(tqsCtxNapDef)
    CHAIN(tqsCtxNapDef, ptDnsAddr, "DNS-ADDR")
    CHAIN(tqsCtxNapDef, ptBearer, "BEARER")
    CHILD(tqsCtxNapDef, ptNapAuthInfo, "NAPAUTHINFO", kCtxNapAuthInfo)
    CHILD(tqsCtxNapDef, ptValidity, "VALIDITY", kCtxValidity)
};
constexpr Record kCtxNapDef{"NAPDEF", kCtxNapDefFields, offsetof(tqsCtxNapDef, ptNext), &kAppNapAddrType};

constexpr Field kCtxBootstrapFields[] = {
    BOOTSTRAP_STRINGS(tqsCtxBootstrap)
    CHAIN(tqsCtxBootstrap, ptProxyId, "PROXY-ID")
    CHAIN(tqsCtxBootstrap, ptNetwork, "NETWORK")
};
constexpr Record kCtxBootstrap{"BOOTSTRAP", kCtxBootstrapFields, offsetof(tqsCtxBootstrap, ptNext)};

constexpr Field kCtxClientIdentFields[] = {CLIENTIDENTITY_STRINGS(tqsCtxClientIdent)};
constexpr Record kCtxClientIdent{"CLIENTIDENTITY", kCtxClientIdentFields};

constexpr Field kCtxVenderConfigFields[] = {
    STR(tqsCtxVenderConfig, pszName, "NAME")
    STR(tqsCtxVenderConfig, pszParmName, "PARM-NAME")
    STR(tqsCtxVenderConfig, pszParmValue, "PARM-VALUE")
};
constexpr Record kCtxVenderConfig{"VENDORCONFIG", kCtxVenderConfigFields,
                                  offsetof(tqsCtxVenderConfig, ptNext)};

constexpr Field kCtxAppAddrFields[] = {
    APPADDR_STRINGS(tqsCtxAppAddr)
    CHILD(tqsCtxAppAddr, ptPort, "PORT", kCtxPort)
};
constexpr Record kCtxAppAddr{"APPADDR", kCtxAppAddrFields, offsetof(tqsCtxAppAddr, ptNext)};

constexpr Field kCtxAppAuthFields[] = {APPAUTH_STRINGS(tqsCtxAppAuth)};
constexpr Record kCtxAppAuth{"APPAUTH", kCtxAppAuthFields, offsetof(tqsCtxAppAuth, ptNext), &kAppAAuthLevel};

constexpr Field kCtxResourceFields[] = {RESOURCE_STRINGS(tqsCtxResource)};
constexpr Record kCtxResource{"RESOURCE", kCtxResourceFields, offsetof(tqsCtxResource, ptNext)};

constexpr Field kCtxRoamingFields[] = {ROAMING_STRINGS(tqsCtxRoaming)};
constexpr Record kCtxRoaming{"ROAMING", kCtxRoamingFields, offsetof(tqsCtxRoaming, ptNext)};

constexpr Field kCtxApplicationFields[] = {
    APPLICATION_STRINGS(tqsCtxApplication)
    CHAIN(tqsCtxApplication, ptToProxy, "TO-PROXY")
    CHAIN(tqsCtxApplication, ptToNapId, "TO-NAPID")
    CHAIN(tqsCtxApplication, ptToAddr, "ADDR")
    CHILD(tqsCtxApplication, ptAppAddr, "APPADDR", kCtxAppAddr)
    CHILD(tqsCtxApplication, ptAppAuth, "APPAUTH", kCtxAppAuth)
    CHILD(tqsCtxApplication, ptResource, "RESOURCE", kCtxResource)
    CHILD(tqsCtxApplication, ptRoaming, "ROAMING", kCtxRoaming)
};
constexpr Record kCtxApplication{"APPLICATION", kCtxApplicationFields, offsetof(tqsCtxApplication, ptNext)};

constexpr Field kCtxAccessFields[] = {
    CHAIN(tqsCtxAccess, ptRule, "RULE")
    CHAIN(tqsCtxAccess, ptAppId, "APPID")
    CHAIN(tqsCtxAccess, ptPortNbr, "PORTNBR")
    CHAIN(tqsCtxAccess, ptDomain, "DOMAIN")
    CHAIN(tqsCtxAccess, ptToNapId, "TO-NAPID")
    CHAIN(tqsCtxAccess, ptToProxy, "TO-PROXY")
};
constexpr Record kCtxAccess{"ACCESS", kCtxAccessFields, offsetof(tqsCtxAccess, ptNext)};

constexpr Field kCtxWifiFields[] = {WIFI_STRINGS(tqsCtxWifi)};
constexpr Record kCtxWifi{"WI-FI", kCtxWifiFields, offsetof(tqsCtxWifi, ptNext)};

// clang-format on

constexpr Field kCtxRootFields[] = {
    Field{"PXLOGICAL", offsetof(tqsClientProvCtx, ptPxLogical), Kind::kChildChain, &kCtxPxLogical},
    Field{"NAPDEF", offsetof(tqsClientProvCtx, ptNapDef), Kind::kChildChain, &kCtxNapDef},
    Field{"BOOTSTRAP", offsetof(tqsClientProvCtx, ptBootstrap), Kind::kChildChain, &kCtxBootstrap},
    Field{"CLIENTIDENTITY", offsetof(tqsClientProvCtx, ptClientIdent), Kind::kSingle, &kCtxClientIdent},
    Field{"VENDORCONFIG", offsetof(tqsClientProvCtx, ptVenderConfig), Kind::kChildChain, &kCtxVenderConfig},
    Field{"APPLICATION", offsetof(tqsClientProvCtx, ptApplication), Kind::kChildChain, &kCtxApplication},
    Field{"ACCESS", offsetof(tqsClientProvCtx, ptAccess), Kind::kChildChain, &kCtxAccess},
    Field{"WI-FI", offsetof(tqsClientProvCtx, ptWifi), Kind::kChildChain, &kCtxWifi},
};

// Every field of a context record has its row (ptNext aside).
#define COVERS(fields, T, extra) \
    static_assert(std::size(fields) + (extra) == sizeof(T) / sizeof(void *), #fields " covers " #T)
COVERS(kCtxPxAuthInfoFields, tqsCtxPxAuthInfo, 1);
COVERS(kCtxPortFields, tqsCtxPort, 1);
COVERS(kCtxPxPhysicalFields, tqsCtxPxPhysical, 1);
COVERS(kCtxPxLogicalFields, tqsCtxPxLogical, 1);
COVERS(kCtxNapAuthInfoFields, tqsCtxNapAuthInfo, 1);
COVERS(kCtxValidityFields, tqsCtxValidity, 1);
COVERS(kCtxNapDefFields, tqsCtxNapDef, 1);
COVERS(kCtxBootstrapFields, tqsCtxBootstrap, 1);
COVERS(kCtxClientIdentFields, tqsCtxClientIdent, 0);
COVERS(kCtxVenderConfigFields, tqsCtxVenderConfig, 1);
COVERS(kCtxAppAddrFields, tqsCtxAppAddr, 1);
COVERS(kCtxAppAuthFields, tqsCtxAppAuth, 1);
COVERS(kCtxResourceFields, tqsCtxResource, 1);
COVERS(kCtxRoamingFields, tqsCtxRoaming, 1);
COVERS(kCtxApplicationFields, tqsCtxApplication, 1);
COVERS(kCtxAccessFields, tqsCtxAccess, 1);
COVERS(kCtxWifiFields, tqsCtxWifi, 1);
COVERS(kCtxRootFields, tqsClientProvCtx, 0);
#undef COVERS

void WriteCtxRecord(JsonWriter &json, const Record &desc, const void *record);

void WriteCtxChain(JsonWriter &json, const Record &desc, const void *head) {
    json.BeginArray(desc.name);
    for (const void *r = head; r != nullptr; r = PointerAt<void>(r, desc.next)) WriteCtxRecord(json, desc, r);
    json.EndArray();
}

void WriteCtxRecord(JsonWriter &json, const Record &desc, const void *record) {
    json.BeginObject();
    bool app_written = desc.app == nullptr;
    for (const Field &f : desc.fields) {
        // The application's view sits right after the record's own strings.
        if (!app_written && f.kind != Kind::kString && f.kind != Kind::kReserved) {
            WriteApp(json, *desc.app, record);
            app_written = true;
        }
        const void *p = PointerAt<void>(record, f.offset);
        switch (f.kind) {
            case Kind::kString:
            case Kind::kReserved:
                if (p != nullptr) json.String(f.name, DisplayValue(static_cast<const char *>(p)));
                break;
            case Kind::kStrChain:
                if (p == nullptr) break;
                json.BeginArray(f.name);
                for (auto *n = static_cast<const tqsCtxStrNode *>(p); n != nullptr; n = n->ptNext) {
                    if (n->pszStr != nullptr) {
                        json.String(DisplayValue(n->pszStr));
                    } else {
                        json.Null();
                    }
                }
                json.EndArray();
                break;
            case Kind::kChildChain:
                if (p != nullptr) WriteCtxChain(json, *f.child, p);
                break;
            default:
                break;
        }
    }
    if (!app_written) WriteApp(json, *desc.app, record);
    json.EndObject();
}

// ---- Document tree records.

#define LIST(T, f, n) Field{n, offsetof(T, f), Kind::kTreeList},
#define CHARS(T) Field{"", offsetof(T, ptCharacterList), Kind::kTreeChars},

// clang-format off
constexpr Field kWapPxLogicalFields[] = {
    PXLOGICAL_STRINGS(tqsWapPxLogical)
    LIST(tqsWapPxLogical, ptDomainList, "DOMAIN")
    CHARS(tqsWapPxLogical)
};
constexpr Field kWapPxAuthInfoFields[] = {PXAUTHINFO_STRINGS(tqsWapPxAuthInfo)};
constexpr Field kWapPortFields[] = {
    PORT_STRINGS(tqsWapPort)
    LIST(tqsWapPort, ptServiceList, "SERVICE")
};
constexpr Field kWapPxPhysicalFields[] = {
    PXPHYSICAL_STRINGS(tqsWapPxPhysical)
    LIST(tqsWapPxPhysical, ptToNapIdList, "TO-NAPID")
    LIST(tqsWapPxPhysical, ptDomainList, "DOMAIN")
    CHARS(tqsWapPxPhysical)
};
constexpr Field kWapNapDefFields[] = {
    NAPDEF_STRINGS(tqsWapNapDef)
    LIST(tqsWapNapDef, ptDnsAddrList, "DNS-ADDR")
    LIST(tqsWapNapDef, ptBearerList, "BEARER")
    CHARS(tqsWapNapDef)
};
constexpr Field kWapNapAuthInfoFields[] = {
    NAPAUTHINFO_STRINGS(tqsWapNapAuthInfo)
    LIST(tqsWapNapAuthInfo, ptAuthEntityList, "AUTH-ENTITY")
};
constexpr Field kWapValidityFields[] = {VALIDITY_STRINGS(tqsWapValidity)};
constexpr Field kWapAppAddrFields[] = {
    APPADDR_STRINGS(tqsWapAppAddr)
    CHARS(tqsWapAppAddr)
};
constexpr Field kWapResourceFields[] = {RESOURCE_STRINGS(tqsWapResource)};
constexpr Field kWapAppAuthFields[] = {APPAUTH_STRINGS(tqsWapAppAuth)};
constexpr Field kWapApplicationFields[] = {
    APPLICATION_STRINGS(tqsWapApplication)
    LIST(tqsWapApplication, ptToProxyList, "TO-PROXY")
    LIST(tqsWapApplication, ptToNapIdList, "TO-NAPID")
    LIST(tqsWapApplication, ptAddrList, "ADDR")
    CHARS(tqsWapApplication)
};
constexpr Field kWapBootstrapFields[] = {
    BOOTSTRAP_STRINGS(tqsWapBootstrap)
    LIST(tqsWapBootstrap, ptProxyIdList, "PROXY-ID")
    LIST(tqsWapBootstrap, ptNetworkList, "NETWORK")
};
constexpr Field kWapVendorConfigFields[] = {
    STR(tqsWapVendorConfig, pszName, "NAME")
    Field{"", offsetof(tqsWapVendorConfig, pszParmName), Kind::kNamedParm}
};
constexpr Field kWapClientIdentityFields[] = {CLIENTIDENTITY_STRINGS(tqsWapClientIdentity)};
constexpr Field kWapAccessFields[] = {
    LIST(tqsWapAccess, ptRuleList, "RULE")
    LIST(tqsWapAccess, ptAppIdList, "APPID")
    LIST(tqsWapAccess, ptPortNbrList, "PORTNBR")
    LIST(tqsWapAccess, ptDomainList, "DOMAIN")
    LIST(tqsWapAccess, ptToNapIdList, "TO-NAPID")
    LIST(tqsWapAccess, ptToProxyList, "TO-PROXY")
};
constexpr Field kWapRoamingFields[] = {ROAMING_STRINGS(tqsWapRoaming)};
constexpr Field kWapWifiFields[] = {WIFI_STRINGS(tqsWapWifi)};

// clang-format on

// Every field of a tree record has its row (the vendor parm row reads two fields).
#define COVERS(fields, T, extra) \
    static_assert(std::size(fields) + (extra) == sizeof(T) / sizeof(void *), #fields " covers " #T)
COVERS(kWapPxLogicalFields, tqsWapPxLogical, 0);
COVERS(kWapPxAuthInfoFields, tqsWapPxAuthInfo, 0);
COVERS(kWapPortFields, tqsWapPort, 0);
COVERS(kWapPxPhysicalFields, tqsWapPxPhysical, 0);
COVERS(kWapNapDefFields, tqsWapNapDef, 0);
COVERS(kWapNapAuthInfoFields, tqsWapNapAuthInfo, 0);
COVERS(kWapValidityFields, tqsWapValidity, 0);
COVERS(kWapAppAddrFields, tqsWapAppAddr, 0);
COVERS(kWapResourceFields, tqsWapResource, 0);
COVERS(kWapAppAuthFields, tqsWapAppAuth, 0);
COVERS(kWapApplicationFields, tqsWapApplication, 0);
COVERS(kWapBootstrapFields, tqsWapBootstrap, 0);
COVERS(kWapVendorConfigFields, tqsWapVendorConfig, 1);
COVERS(kWapClientIdentityFields, tqsWapClientIdentity, 0);
COVERS(kWapAccessFields, tqsWapAccess, 0);
COVERS(kWapRoamingFields, tqsWapRoaming, 0);
COVERS(kWapWifiFields, tqsWapWifi, 0);
#undef COVERS

// The 17 slots of a characteristic, in slot order.
constexpr Record kWapSlots[] = {
    {"PXLOGICAL", kWapPxLogicalFields},
    {"PXAUTHINFO", kWapPxAuthInfoFields},
    {"PORT", kWapPortFields},
    {"PXPHYSICAL", kWapPxPhysicalFields},
    {"NAPDEF", kWapNapDefFields},
    {"NAPAUTHINFO", kWapNapAuthInfoFields},
    {"VALIDITY", kWapValidityFields},
    {"APPADDR", kWapAppAddrFields},
    {"RESOURCE", kWapResourceFields},
    {"APPAUTH", kWapAppAuthFields},
    {"APPLICATION", kWapApplicationFields},
    {"BOOTSTRAP", kWapBootstrapFields},
    {"VENDORCONFIG", kWapVendorConfigFields},
    {"CLIENTIDENTITY", kWapClientIdentityFields},
    {"ACCESS", kWapAccessFields},
    {"ROAMING", kWapRoamingFields},
    {"WI-FI", kWapWifiFields},
};
static_assert(std::size(kWapSlots) * sizeof(void *) == sizeof(tqsWapCharacter), "one entry per slot");

#undef STR
#undef RSV
#undef CHAIN
#undef CHILD
#undef LIST
#undef CHARS

void XmlIndent(std::string *out, int depth) {
    out->append(static_cast<std::size_t>(depth) * 2, ' ');
}

void XmlParm(std::string *out, int depth, std::string_view name, const char *value) {
    XmlIndent(out, depth);
    *out += "<parm name=\"" + EscapeXml(name) + "\"";
    if (value != nullptr) *out += " value=\"" + EscapeXml(DisplayValue(value)) + "\"";
    *out += "/>\n";
}

void XmlCharacteristics(std::string *out, int depth, const TqsList *list);

void XmlCharacteristic(std::string *out, int depth, const tqsWapCharacter *ch) {
    const Record *desc = nullptr;
    const void *record = nullptr;
    for (std::size_t slot = 0; slot < std::size(kWapSlots) && record == nullptr; ++slot) {
        record = PointerAt<void>(ch, slot * sizeof(void *));
        desc = &kWapSlots[slot];
    }
    XmlIndent(out, depth);
    if (record == nullptr) {
        *out += "<characteristic/>\n";  // a characteristic that selected no record
        return;
    }
    *out += "<characteristic type=\"" + std::string(desc->name) + "\">\n";
    for (const Field &f : desc->fields) {
        const void *p = PointerAt<void>(record, f.offset);
        if (p == nullptr) continue;
        switch (f.kind) {
            case Kind::kString:
            case Kind::kReserved:
                XmlParm(out, depth + 1, f.name, static_cast<const char *>(p));
                break;
            case Kind::kNamedParm:
                XmlParm(out, depth + 1, static_cast<const char *>(p),
                        PointerAt(record, f.offset + sizeof(void *)));
                break;
            case Kind::kTreeList:
                for (auto *n = static_cast<const TqsList *>(p)->ptHead; n != nullptr; n = n->ptNext) {
                    XmlParm(out, depth + 1, f.name, static_cast<const char *>(n->pItem));
                }
                break;
            case Kind::kTreeChars:
                XmlCharacteristics(out, depth + 1, static_cast<const TqsList *>(p));
                break;
            default:
                break;
        }
    }
    XmlIndent(out, depth);
    *out += "</characteristic>\n";
}

void XmlCharacteristics(std::string *out, int depth, const TqsList *list) {
    if (list == nullptr) return;
    for (const TqsListNode *n = list->ptHead; n != nullptr; n = n->ptNext) {
        if (n->pItem != nullptr)
            XmlCharacteristic(out, depth, static_cast<const tqsWapCharacter *>(n->pItem));
    }
}

}  // namespace

void WriteContextJson(JsonWriter &json, const tqsClientProvCtx &ctx) {
    json.BeginObject("context");
    for (const Field &f : kCtxRootFields) {
        const void *head = PointerAt<void>(&ctx, f.offset);
        if (f.kind == Kind::kSingle) {
            if (head == nullptr) {
                json.Null(f.name);
            } else {
                json.Key(f.name);
                WriteCtxRecord(json, *f.child, head);
            }
        } else {
            WriteCtxChain(json, *f.child, head);
        }
    }
    json.EndObject();
}

void WriteTreeXml(std::string *out, const tqsWapDoc *doc) {
    const TqsList *top = doc != nullptr ? doc->ptCharacterList : nullptr;
    if (top == nullptr || top->ptHead == nullptr) {
        *out += "<wap-provisioningdoc/>\n";
        return;
    }
    *out += "<wap-provisioningdoc>\n";
    XmlCharacteristics(out, 1, top);
    *out += "</wap-provisioningdoc>\n";
}

}  // namespace cpdump
