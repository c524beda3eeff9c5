// One description of every record: for each of the 17 characteristic kinds
// (and the context root) one list of its fields, read by everything that
// needs a record's shape: the decoder's parm tables, the release of the tree,
// the conversion to the context and its release, the binding's string arrays,
// cpdump and the test and fuzz walkers. The structs themselves stay written
// out in their headers (their layouts are fixed); every row is pinned to its
// field below, so a row and its field cannot drift apart.
//
// A list has three kinds of rows, each in the record's field order:
//
//   S(fill, field, token, page, name, tree, copy, release)
//       A string, under the same name in the tree record and the context record.
//   L(fill, tree field, context field, token, page, name, list, release)
//       A list of strings: a TqsList in the tree, a tqsCtxStrNode chain in the
//       context, converted and released by the routines of its `list` kind.
//   C(context field, child, order, release)
//       A chain of nested characteristics of kind `child` in the context (the
//       tree keeps them in ptCharacterList). `order`: its place among the
//       kinds the converter tests, in turn, for each nested characteristic.
//
//   fill     how the decoder fills the field (Fill below)
//   token    parm name token, 0 where the parm has a name written inline or
//            none at all; `page` is the attribute page that defines it (the
//            handlers compare the byte alone)
//   name     parm name; for Named rows the inline name the decoder compares
//   tree     release of the tree: Free, or Keep (left allocated on purpose)
//   copy     conversion: Copy, Skip (not copied), Twice (copied twice, the
//            first copy dropped)
//   release  place in the release of the context record, strings first;
//            0 leaves the field allocated on purpose
//
// The fields left allocated and the release orders are the system's own:
// they are kept as they are, so that the leak report lists the same blocks.
#ifndef TQS_CLIENT_PROV_FIELDS_H
#define TQS_CLIENT_PROV_FIELDS_H

#include <stddef.h>
#include <stdint.h>

#include <type_traits>

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"

// clang-format off
#define TQS_FIELDS_PxLogical(S, L, C)                                             \
    S(Parm,     pszProxyId,         0x15, 0, "PROXY-ID",          Free, Copy, 1)  \
    S(Parm,     pszProxyPw,         0x3E, 0, "PROXY-PW",          Free, Copy, 2)  \
    S(Parm,     pszPpgAuthType,     0x3F, 0, "PPGAUTH-TYPE",      Free, Copy, 3)  \
    S(Parm,     pszProxyProviderId, 0x16, 0, "PROXY-PROVIDER-ID", Free, Copy, 4)  \
    S(Parm,     pszName,            0x07, 0, "NAME",              Free, Copy, 5)  \
    S(Parm,     pszTrust,           0x2A, 0, "TRUST",             Free, Copy, 6)  \
    S(Parm,     pszMaster,          0x2B, 0, "MASTER",            Free, Copy, 7)  \
    S(Parm,     pszStartPage,       0x1C, 0, "STARTPAGE",         Free, Copy, 8)  \
    S(Reserved, pszReserved1,       0,    0, "RESERVED-1",        Free, Copy, 9)  \
    S(Reserved, pszReserved2,       0,    0, "RESERVED-2",        Free, Copy, 10) \
    S(Reserved, pszReserved3,       0,    0, "RESERVED-3",        Free, Copy, 11) \
    S(Reserved, pszReserved4,       0,    0, "RESERVED-4",        Free, Skip, 12) \
    S(Reserved, pszReserved5,       0,    0, "RESERVED-5",        Free, Copy, 13) \
    L(List, ptDomainList, ptDomain, 0x17, 0, "DOMAIN", Domain, 14)                \
    C(ptPxAuthInfo, PxAuthInfo, 1, 16)                                            \
    C(ptPort,       Port,       3, 15)                                            \
    C(ptPxPhysical, PxPhysical, 2, 17)

#define TQS_FIELDS_PxAuthInfo(S, L, C)                                 \
    S(Parm, pszPxAuthType, 0x19, 0, "PXAUTH-TYPE", Free, Copy, 1)      \
    S(Parm, pszPxAuthId,   0x1A, 0, "PXAUTH-ID",   Free, Copy, 2)      \
    S(Parm, pszPxAuthPw,   0x1B, 0, "PXAUTH-PW",   Free, Copy, 3)

#define TQS_FIELDS_Port(S, L, C)                                       \
    S(Parm, pszPortNbr, 0x23, 0, "PORTNBR", Free, Copy, 1)             \
    L(List, ptServiceList, ptService, 0x24, 0, "SERVICE", Service, 2)

#define TQS_FIELDS_PxPhysical(S, L, C)                                            \
    S(Parm, pszPhysicalProxyId, 0x2F, 0, "PHYSICAL-PROXY-ID", Free, Copy, 1)      \
    S(Parm, pszPxAddr,          0x20, 0, "PXADDR",            Free, Copy, 2)      \
    S(Parm, pszPxAddrType,      0x21, 0, "PXADDRTYPE",        Free, Copy, 3)      \
    S(Parm, pszPxAddrFqdn,      0x3D, 0, "PXADDR-FQDN",       Free, Copy, 4)      \
    S(Parm, pszWspVersion,      0x2E, 0, "WSP-VERSION",       Free, Copy, 5)      \
    S(Parm, pszPushEnabled,     0x1F, 0, "PUSHENABLED",       Free, Copy, 6)      \
    S(Parm, pszPullEnabled,     0x47, 0, "PULLENABLED",       Free, Copy, 7)      \
    L(List,        ptToNapIdList, ptToNapId, 0x22, 0, "TO-NAPID", ToNapId, 8)     \
    L(LenientList, ptDomainList,  ptDomain,  0x17, 0, "DOMAIN",   Domain,  9)     \
    C(ptPort, Port, 1, 10)

#define TQS_FIELDS_NapDef(S, L, C)                                                    \
    S(Parm,     pszNapId,             0x11, 0, "NAPID",               Free, Copy, 1)  \
    S(Parm,     pszName,              0x07, 0, "NAME",                Free, Copy, 2)  \
    S(Parm,     pszInternet,          0x14, 0, "INTERNET",            Free, Copy, 3)  \
    S(Parm,     pszNapAddress,        0x08, 0, "NAP-ADDRESS",         Free, Copy, 4)  \
    S(Parm,     pszNapAddrType,       0x09, 0, "NAP-ADDRTYPE",        Free, Copy, 5)  \
    S(Parm,     pszCallType,          0x0A, 0, "CALLTYPE",            Free, Copy, 6)  \
    S(Parm,     pszLocalAddr,         0x27, 0, "LOCAL-ADDR",          Free, Copy, 7)  \
    S(Parm,     pszLocalAddrType,     0x28, 0, "LOCAL-ADDRTYPE",      Free, Copy, 8)  \
    S(Parm,     pszLinkSpeed,         0x25, 0, "LINKSPEED",           Free, Copy, 9)  \
    S(Parm,     pszDnLinkSpeed,       0x26, 0, "DNLINKSPEED",         Free, Copy, 10) \
    S(Parm,     pszLinger,            0x0F, 0, "LINGER",              Free, Copy, 11) \
    S(Parm,     pszDeliveryErrSdu,    0x31, 0, "DELIVERY-ERR-SDU",    Free, Copy, 12) \
    S(Parm,     pszDeliveryOrder,     0x32, 0, "DELIVERY-ORDER",      Free, Copy, 13) \
    S(Parm,     pszTrafficClass,      0x33, 0, "TRAFFIC-CLASS",       Free, Copy, 14) \
    S(Parm,     pszMaxSduSize,        0x34, 0, "MAX-SDU-SIZE",        Free, Copy, 15) \
    S(Parm,     pszMaxBitrateUplink,  0x35, 0, "MAX-BITRATE-UPLINK",  Free, Copy, 16) \
    S(Parm,     pszMaxBitrateDnlink,  0x36, 0, "MAX-BITRATE-DNLINK",  Free, Copy, 17) \
    S(Reserved, pszReserved1,         0,    0, "RESERVED-1",          Free, Copy, 18) \
    S(Reserved, pszReserved2,         0,    0, "RESERVED-2",          Free, Copy, 19) \
    S(Reserved, pszReserved3,         0,    0, "RESERVED-3",          Free, Copy, 20) \
    S(Reserved, pszReserved4,         0,    0, "RESERVED-4",          Free, Copy, 21) \
    S(Reserved, pszReserved5,         0,    0, "RESERVED-5",          Free, Copy, 22) \
    S(Reserved, pszReserved6,         0,    0, "RESERVED-6",          Free, Copy, 23) \
    S(Parm,     pszMaxNumRetry,       0x49, 0, "MAX-NUM-RETRY",       Free, Copy, 24) \
    S(Parm,     pszFirstRetryTimeout, 0x4A, 0, "FIRST-RETRY-TIMEOUT", Free, Copy, 25) \
    S(Parm,     pszReregThreshold,    0x4B, 0, "REREG-THRESHOLD",     Free, Copy, 26) \
    S(Parm,     pszTBit,              0x4C, 0, "T-BIT",               Free, Copy, 27) \
    /* the constant text "empty", never an owned copy in the tree */                  \
    S(Named,    pszInit,              0,    0, "INIT",                Keep, Copy, 0)  \
    L(List, ptDnsAddrList, ptDnsAddr, 0x48, 0, "DNS-ADDR", DnsAddr, 28)               \
    L(List, ptBearerList,  ptBearer,  0x10, 0, "BEARER",   Bearer,  29)               \
    C(ptNapAuthInfo, NapAuthInfo, 1, 30)                                              \
    C(ptValidity,    Validity,    2, 31)

#define TQS_FIELDS_NapAuthInfo(S, L, C)                                           \
    S(Parm,     pszAuthType,   0x0C, 0, "AUTHTYPE",   Free, Copy, 1)              \
    S(Parm,     pszAuthName,   0x0D, 0, "AUTHNAME",   Free, Copy, 2)              \
    S(Parm,     pszAuthSecret, 0x0E, 0, "AUTHSECRET", Free, Copy, 3)              \
    S(Reserved, pszReserved1,  0,    0, "RESERVED-1", Free, Copy, 4)              \
    L(List, ptAuthEntityList, ptAuthEntity, 0x4E, 0, "AUTH-ENTITY", AuthEntity, 5)

#define TQS_FIELDS_Validity(S, L, C)                                   \
    S(Parm, pszCountry,    0x12, 0, "COUNTRY",    Free, Copy, 1)       \
    S(Parm, pszNetwork,    0x13, 0, "NETWORK",    Free, Copy, 2)       \
    S(Parm, pszSid,        0x2C, 0, "SID",        Free, Copy, 3)       \
    S(Parm, pszSoc,        0x2D, 0, "SOC",        Free, Copy, 4)       \
    S(Parm, pszValidUntil, 0x0B, 0, "VALIDUNTIL", Free, Copy, 5)

#define TQS_FIELDS_AppAddr(S, L, C)                                    \
    S(Parm, pszAddr,     0x34, 1, "ADDR",     Free, Copy, 1)           \
    S(Parm, pszAddrType, 0x35, 1, "ADDRTYPE", Free, Copy, 2)           \
    C(ptPort, Port, 1, 3)

/* The context record releases its strings in the order of their names. */
#define TQS_FIELDS_Resource(S, L, C)                                        \
    S(Parm,      pszUri,         0x3A, 1, "URI",         Free, Copy, 8)     \
    S(Parm,      pszName,        0x07, 1, "NAME",        Free, Copy, 6)     \
    S(Parm,      pszAAccept,     0x2E, 1, "AACCEPT",     Free, Copy, 1)     \
    S(Parm,      pszAAuthType,   0x33, 1, "AAUTHTYPE",   Free, Copy, 5)     \
    S(Parm,      pszAAuthName,   0x31, 1, "AAUTHNAME",   Free, Copy, 3)     \
    S(Parm,      pszAAuthSecret, 0x32, 1, "AAUTHSECRET", Free, Copy, 4)     \
    S(Parm,      pszAAuthData,   0x2F, 1, "AAUTHDATA",   Free, Copy, 2)     \
    S(StartPage, pszStartPage,   0x1C, 1, "STARTPAGE",   Free, Copy, 7)

#define TQS_FIELDS_AppAuth(S, L, C)                                         \
    S(Parm,   pszAAuthLevel,  0x30, 1, "AAUTHLEVEL",  Free, Copy, 2)        \
    S(Joined, pszAAuthType,   0x33, 1, "AAUTHTYPE",   Free, Copy, 5)        \
    S(Parm,   pszAAuthName,   0x31, 1, "AAUTHNAME",   Free, Copy, 3)        \
    S(Parm,   pszAAuthSecret, 0x32, 1, "AAUTHSECRET", Free, Copy, 4)        \
    S(Parm,   pszAAuthData,   0x2F, 1, "AAUTHDATA",   Free, Copy, 1)

#define TQS_FIELDS_Application(S, L, C)                                         \
    S(Parm,  pszAppId,          0x36, 1, "APPID",            Free, Copy,  2)    \
    S(Parm,  pszProviderId,     0x38, 1, "PROVIDER-ID",      Free, Copy,  5)    \
    S(Named, pszFrom,           0,    0, "FROM",             Keep, Twice, 6)    \
    S(Parm,  pszName,           0x07, 0, "NAME",             Free, Copy,  4)    \
    S(Parm,  pszAAccept,        0x2E, 1, "AACCEPT",          Free, Copy,  1)    \
    S(Parm,  pszAProtocol,      0x37, 1, "APROTOCOL",        Free, Copy,  3)    \
    S(Parm,  pszInternet,       0x14, 0, "INTERNET",         Free, Copy,  7)    \
    S(Named, pszXcapAuidDcs,    0,    0, "XCAP_AUID_DCS",    Keep, Copy,  0)    \
    S(Named, pszXcapAuidPms,    0,    0, "XCAP_AUID_PMS",    Keep, Copy,  0)    \
    S(Named, pszXcapAuidCdms,   0,    0, "XCAP_AUID_CDMS",   Keep, Copy,  0)    \
    S(Named, pszXcapImeiHeader, 0,    0, "XCAP_IMEI_HEADER", Keep, Copy,  0)    \
    S(Named, pszXcapTidHeader,  0,    0, "XCAP_TID_HEADER",  Keep, Copy,  0)    \
    L(List, ptToProxyList, ptToProxy, 0x39, 1, "TO-PROXY", ToProxy, 10)         \
    L(List, ptToNapIdList, ptToNapId, 0x22, 0, "TO-NAPID", ToNapId, 9)          \
    L(List, ptAddrList,    ptToAddr,  0x34, 1, "ADDR",     ToAddr,  8)          \
    C(ptAppAddr,  AppAddr,  2, 11)                                              \
    C(ptAppAuth,  AppAuth,  3, 12)                                              \
    C(ptResource, Resource, 4, 13)                                              \
    C(ptRoaming,  Roaming,  1, 0)

#define TQS_FIELDS_Bootstrap(S, L, C)                                           \
    S(Parm, pszName,         0x07, 0, "NAME",          Free, Copy, 3)           \
    S(Parm, pszCountry,      0x12, 0, "COUNTRY",       Free, Copy, 2)           \
    S(Parm, pszProvUrl,      0x18, 0, "PROVURL",       Free, Copy, 4)           \
    S(Parm, pszContextAllow, 0x29, 0, "CONTEXT-ALLOW", Free, Copy, 1)           \
    L(List, ptProxyIdList, ptProxyId, 0x15, 0, "PROXY-ID", ProxyId, 6)          \
    L(List, ptNetworkList, ptNetwork, 0x13, 0, "NETWORK",  Network, 5)

/* The name and value of the last parm whose name is written inline. */
#define TQS_FIELDS_VendorConfig(S, L, C)                                        \
    S(Parm,      pszName,      0x07, 0, "NAME",       Free, Copy, 1)            \
    S(PairName,  pszParmName,  0,    0, "PARM-NAME",  Keep, Copy, 2)            \
    S(PairValue, pszParmValue, 0,    0, "PARM-VALUE", Keep, Copy, 3)

#define TQS_FIELDS_ClientIdentity(S, L, C)                                      \
    S(Parm, pszClientId, 0x30, 0, "CLIENT-ID", Free, Copy, 1)

#define TQS_FIELDS_Access(S, L, C)                                              \
    L(List, ptRuleList,    ptRule,    0x3B, 1, "RULE",     Rule,    4)          \
    L(List, ptAppIdList,   ptAppId,   0x36, 1, "APPID",    AppId,   1)          \
    L(List, ptPortNbrList, ptPortNbr, 0x23, 0, "PORTNBR",  PortNbr, 3)          \
    L(List, ptDomainList,  ptDomain,  0x17, 0, "DOMAIN",   Domain,  2)          \
    L(List, ptToNapIdList, ptToNapId, 0x22, 0, "TO-NAPID", ToNapId, 5)          \
    L(List, ptToProxyList, ptToProxy, 0x39, 1, "TO-PROXY", ToProxy, 6)

/* The tree never releases a ROAMING record (see TQS_RECORDS). */
#define TQS_FIELDS_Roaming(S, L, C)                                             \
    S(Named, pszSyncAllowed, 0, 0, "SYNC-ALLOWED", Keep, Copy, 1)               \
    S(Named, pszSyncDefault, 0, 0, "SYNC-DEFAULT", Keep, Copy, 2)

#define TQS_FIELDS_Wifi(S, L, C)                                                \
    S(Named, pszNetSsid,       0, 0, "NETSSID",       Free, Copy, 1)            \
    S(Named, pszSecMode,       0, 0, "SECMODE",       Free, Copy, 2)            \
    S(Named, pszEapMethod,     0, 0, "EAPMETHOD",     Free, Copy, 3)            \
    S(Named, pszEapType,       0, 0, "EAPTYPE",       Free, Copy, 4)            \
    S(Named, pszUserName,      0, 0, "USERNAME",      Free, Copy, 5)            \
    S(Named, pszAnonUserName,  0, 0, "ANONUSERNAME",  Free, Copy, 6)            \
    S(Named, pszPassword,      0, 0, "PASSWORD",      Free, Copy, 7)            \
    S(Named, pszCaCert,        0, 0, "CACERT",        Free, Copy, 8)            \
    S(Named, pszUserCert,      0, 0, "USERCERT",      Free, Copy, 9)            \
    S(Named, pszPhase1,        0, 0, "PHASE1",        Free, Copy, 10)           \
    S(Named, pszAuthAlgorithm, 0, 0, "AUTHALGORITHM", Free, Copy, 11)           \
    S(Named, pszPriority,      0, 0, "PRIORITY",      Free, Copy, 12)

/* The context root; its WI-FI chain is left allocated. */
#define TQS_FIELDS_Root(S, L, C)                                                \
    C(ptPxLogical,    PxLogical,      1, 6)                                     \
    C(ptNapDef,       NapDef,         2, 5)                                     \
    C(ptBootstrap,    Bootstrap,      3, 3)                                     \
    C(ptClientIdent,  ClientIdentity, 4, 4)                                     \
    C(ptVenderConfig, VendorConfig,   5, 7)                                     \
    C(ptApplication,  Application,    7, 2)                                     \
    C(ptAccess,       Access,         8, 1)                                     \
    C(ptWifi,         Wifi,           6, 0)

// The 17 kinds in tqsWapCharacter slot order: the kind (its field list is
// TQS_FIELDS_<kind>, its slot pt<kind>), the tree and context records, the type
// name, whether the tree releases the record (ROAMING is never released) and
// whether context records of the kind form a chain (the one CLIENTIDENTITY does not).
#define TQS_RECORDS(X)                                                                          \
    X(PxLogical,      tqsWapPxLogical,      tqsCtxPxLogical,    "PXLOGICAL",      Free, Chain)  \
    X(PxAuthInfo,     tqsWapPxAuthInfo,     tqsCtxPxAuthInfo,   "PXAUTHINFO",     Free, Chain)  \
    X(Port,           tqsWapPort,           tqsCtxPort,         "PORT",           Free, Chain)  \
    X(PxPhysical,     tqsWapPxPhysical,     tqsCtxPxPhysical,   "PXPHYSICAL",     Free, Chain)  \
    X(NapDef,         tqsWapNapDef,         tqsCtxNapDef,       "NAPDEF",         Free, Chain)  \
    X(NapAuthInfo,    tqsWapNapAuthInfo,    tqsCtxNapAuthInfo,  "NAPAUTHINFO",    Free, Chain)  \
    X(Validity,       tqsWapValidity,       tqsCtxValidity,     "VALIDITY",       Free, Chain)  \
    X(AppAddr,        tqsWapAppAddr,        tqsCtxAppAddr,      "APPADDR",        Free, Chain)  \
    X(Resource,       tqsWapResource,       tqsCtxResource,     "RESOURCE",       Free, Chain)  \
    X(AppAuth,        tqsWapAppAuth,        tqsCtxAppAuth,      "APPAUTH",        Free, Chain)  \
    X(Application,    tqsWapApplication,    tqsCtxApplication,  "APPLICATION",    Free, Chain)  \
    X(Bootstrap,      tqsWapBootstrap,      tqsCtxBootstrap,    "BOOTSTRAP",      Free, Chain)  \
    X(VendorConfig,   tqsWapVendorConfig,   tqsCtxVenderConfig, "VENDORCONFIG",   Free, Chain)  \
    X(ClientIdentity, tqsWapClientIdentity, tqsCtxClientIdent,  "CLIENTIDENTITY", Free, Single) \
    X(Access,         tqsWapAccess,         tqsCtxAccess,       "ACCESS",         Free, Chain)  \
    X(Roaming,        tqsWapRoaming,        tqsCtxRoaming,      "ROAMING",        Keep, Chain)  \
    X(Wifi,           tqsWapWifi,           tqsCtxWifi,         "WI-FI",          Free, Chain)
// clang-format on

namespace tqs::detail {

enum class Fill : uint8_t {
    Parm,         // the value of its parm
    StartPage,    // as Parm; a STARTPAGE parm without value still marks the record
    Joined,       // as Parm; a value after the separator 0x90 is joined with a comma
    Named,        // the value of the parm whose inline name is `name`
    PairName,     // the inline name of the last parm named inline
    PairValue,    // and its value
    Reserved,     // a string no parm fills
    List,         // one item per parm
    LenientList,  // as List; a failure to read one is only traced
    Child,        // a chain of nested characteristics (context only)
};
enum class TreeRule : uint8_t { Free, Keep };
enum class CopyRule : uint8_t { Copy, Skip, Twice };
enum class Chaining : uint8_t { Chain, Single };
// The kinds of string list, each with its own converter and release routine.
enum class StrList : uint8_t {
    None,
    Rule,
    AppId,
    PortNbr,
    Domain,
    ToNapId,
    ToProxy,
    ToAddr,
    Service,
    Network,
    ProxyId,
    DnsAddr,
    Bearer,
    AuthEntity,
};

#define TQS_KIND_ENUM(kind, ...) kind,
enum class Kind : uint8_t { TQS_RECORDS(TQS_KIND_ENUM) Root, None };
#undef TQS_KIND_ENUM
constexpr size_t kSlotCount = static_cast<size_t>(Kind::Root);

constexpr uint16_t kNoOffset = 0xFFFF;

// The text the APPLICATION and RESOURCE handlers trace before they read a
// parm: "SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME", then "_" and the parm's name
// with '_' for '-' (nothing for the empty name of the inline-name parm).
constexpr char kLabelPrefix[] = "SMLDM_CPPARSER_ATTR_PARM_CODE_1_NAME";
template <size_t N>
struct ParmLabel {
    char text[sizeof kLabelPrefix + N] = {};
    constexpr ParmLabel(const char (&name)[N]) {
        size_t n = 0;
        for (; kLabelPrefix[n] != '\0'; ++n) text[n] = kLabelPrefix[n];
        if (N > 1) text[n++] = '_';
        for (size_t i = 0; i + 1 < N; ++i) text[n++] = name[i] == '-' ? '_' : name[i];
    }
};
template <ParmLabel L>
inline constexpr const char *kParmLabel = L.text;

struct Field {
    Fill fill;
    uint8_t token;
    uint8_t page;
    const char *name;
    const char *label;
    uint16_t tree;  // byte offset in the tree record; kNoOffset for a child chain
    uint16_t ctx;   // byte offset in the context record
    TreeRule treeRule;
    CopyRule copy;
    uint8_t release;
    StrList list;
    Kind child;
    uint8_t order;
};

template <Kind K>
struct Types;
#define TQS_TYPES(kind, W, C, ...) \
    template <>                    \
    struct Types<Kind::kind> {     \
        using Wap = W;             \
        using Ctx = C;             \
    };
TQS_RECORDS(TQS_TYPES)
#undef TQS_TYPES
template <>
struct Types<Kind::Root> {
    using Wap = tqsWapDoc;
    using Ctx = tqsClientProvCtx;
};

// Rows. Wap and Ctx are the record types of the scope the list is expanded in.
// clang-format off
#define TQS_ROW_S(fill, f, token, page, name, tree, copy, release)                                      \
    Field{Fill::fill, token, page, name, kParmLabel<name>, offsetof(Wap, f), offsetof(Ctx, f),          \
          TreeRule::tree, CopyRule::copy, release, StrList::None, Kind::None, 0},
#define TQS_ROW_L(fill, tf, cf, token, page, name, list, release)                                       \
    Field{Fill::fill, token, page, name, kParmLabel<name>, offsetof(Wap, tf), offsetof(Ctx, cf),        \
          TreeRule::Free, CopyRule::Copy, release, StrList::list, Kind::None, 0},
#define TQS_ROW_C(f, child, order, release)                                                             \
    Field{Fill::Child, 0, 0, nullptr, nullptr, kNoOffset, offsetof(Ctx, f),                             \
          TreeRule::Free, CopyRule::Copy, release, StrList::None, Kind::child, order},

// Each row's field has the type of its row.
#define TQS_PIN_S(fill, f, ...)                                                                         \
    static_assert(std::is_same_v<decltype(Wap::f), char *> && std::is_same_v<decltype(Ctx::f), char *>, \
                  #f " is a string");
#define TQS_PIN_L(fill, tf, cf, ...)                                                                    \
    static_assert(std::is_same_v<decltype(Wap::tf), TqsList *> &&                                       \
                      std::is_same_v<decltype(Ctx::cf), tqsCtxStrNode *>,                               \
                  #tf " and " #cf " are lists of strings");
#define TQS_PIN_C(f, child, ...)                                                                        \
    static_assert(std::is_same_v<decltype(Ctx::f), Types<Kind::child>::Ctx *>, #f " is a chain of " #child);
// clang-format on

template <class W>
constexpr uint16_t CharacterListOffset() {
    if constexpr (requires { &W::ptCharacterList; }) {
        return offsetof(W, ptCharacterList);
    } else {
        return kNoOffset;
    }
}

template <class C>
constexpr uint16_t NextOffset() {
    if constexpr (requires { &C::ptNext; }) {
        return offsetof(C, ptNext);
    } else {
        return kNoOffset;
    }
}

template <Kind K>
struct Record;

#define TQS_RECORD(kind, W, C, type, tree, chain)                                                \
    template <>                                                                                  \
    struct Record<Kind::kind> : Types<Kind::kind> {                                              \
        static constexpr const char *kType = type;                                               \
        static constexpr uint16_t kSlot = offsetof(tqsWapCharacter, pt##kind);                   \
        static constexpr TreeRule kTreeRule = TreeRule::tree;                                    \
        static constexpr Chaining kChaining = Chaining::chain;                                   \
        static constexpr Field kFields[] = {TQS_FIELDS_##kind(TQS_ROW_S, TQS_ROW_L, TQS_ROW_C)}; \
        TQS_FIELDS_##kind(TQS_PIN_S, TQS_PIN_L, TQS_PIN_C)                                       \
    };
TQS_RECORDS(TQS_RECORD)
#undef TQS_RECORD

template <>
struct Record<Kind::Root> : Types<Kind::Root> {
    static constexpr const char *kType = "";
    static constexpr uint16_t kSlot = kNoOffset;
    static constexpr TreeRule kTreeRule = TreeRule::Free;
    static constexpr Chaining kChaining = Chaining::Single;
    static constexpr Field kFields[] = {TQS_FIELDS_Root(TQS_ROW_S, TQS_ROW_L, TQS_ROW_C)};
    TQS_FIELDS_Root(TQS_PIN_S, TQS_PIN_L, TQS_PIN_C)
};

#undef TQS_ROW_S
#undef TQS_ROW_L
#undef TQS_ROW_C
#undef TQS_PIN_S
#undef TQS_PIN_L
#undef TQS_PIN_C

constexpr bool IsString(Fill f) {
    return f < Fill::List;
}
constexpr bool IsList(Fill f) {
    return f == Fill::List || f == Fill::LenientList;
}

// ---- What every record's description must satisfy ------------------------

template <Kind K>
constexpr bool HasChildren() {
    for (const Field &f : Record<K>::kFields)
        if (f.fill == Fill::Child) return true;
    return false;
}

// Every pointer field of both records is described exactly once (the tree's
// ptCharacterList by the record having children, the context's ptNext by the
// record being a chain); strings lead both records in row order.
template <Kind K>
constexpr bool DescribesEveryField() {
    using R = Record<K>;
    constexpr size_t kTree = sizeof(typename R::Wap) / sizeof(void *);
    constexpr size_t kCtx = sizeof(typename R::Ctx) / sizeof(void *);
    if (HasChildren<K>() != (CharacterListOffset<typename R::Wap>() != kNoOffset)) return false;
    if ((R::kChaining == Chaining::Chain) != (NextOffset<typename R::Ctx>() != kNoOffset)) return false;
    for (size_t i = 0; i < kTree; ++i) {
        size_t n = CharacterListOffset<typename R::Wap>() == i * sizeof(void *);
        for (const Field &f : R::kFields) n += f.tree == i * sizeof(void *);
        if (n != 1) return false;
    }
    for (size_t i = 0; i < kCtx; ++i) {
        size_t n = NextOffset<typename R::Ctx>() == i * sizeof(void *);
        for (const Field &f : R::kFields) n += f.ctx == i * sizeof(void *);
        if (n != 1) return false;
    }
    size_t s = 0;
    for (const Field &f : R::kFields) {
        if (!IsString(f.fill)) continue;
        if (f.tree != s * sizeof(void *) || f.ctx != s * sizeof(void *)) return false;
        ++s;
    }
    return true;
}

// Release places run 1..n over the released fields, strings before lists and
// chains; children's test places run 1..n; parm tokens are parm names, each
// used once.
template <Kind K>
constexpr bool OrdersAreWhole() {
    const auto &rows = Record<K>::kFields;
    size_t released = 0, children = 0;
    uint8_t lastString = 0, firstOther = 0xFF;
    for (const Field &f : rows) {
        if (f.release != 0) ++released;
        if (f.fill == Fill::Child) ++children;
        if (f.release != 0 && IsString(f.fill) && f.release > lastString) lastString = f.release;
        if (f.release != 0 && !IsString(f.fill) && f.release < firstOther) firstOther = f.release;
    }
    if (lastString >= firstOther) return false;
    for (size_t place = 1; place <= released; ++place) {
        size_t n = 0;
        for (const Field &f : rows) n += f.release == place;
        if (n != 1) return false;
    }
    for (size_t place = 1; place <= children; ++place) {
        size_t n = 0;
        for (const Field &f : rows) n += f.fill == Fill::Child && f.order == place;
        if (n != 1) return false;
    }
    for (const Field &a : rows) {
        // 0x00 to 0x06 are structural in a parm element; 0x80 and above are values.
        if (a.token != 0 && (a.token < 0x07 || a.token >= 0x80)) return false;
        for (const Field &b : rows)
            if (&a != &b && a.token != 0 && a.token == b.token) return false;
    }
    return true;
}

#define TQS_CHECK(kind, ...)                                                                      \
    static_assert(Record<Kind::kind>::kSlot == static_cast<size_t>(Kind::kind) * sizeof(void *),  \
                  #kind " is its slot");                                                          \
    static_assert(DescribesEveryField<Kind::kind>(), "every field of " #kind " has its one row"); \
    static_assert(OrdersAreWhole<Kind::kind>(), "release and test orders of " #kind " are whole");
TQS_RECORDS(TQS_CHECK)
#undef TQS_CHECK
static_assert(DescribesEveryField<Kind::Root>() && OrdersAreWhole<Kind::Root>(), "the root has its rows");
static_assert(sizeof(tqsWapCharacter) == kSlotCount * sizeof(void *), "one kind per slot");

// ---- The records at run time (for the walkers of tools and tests) ----------

struct RecordInfo {
    const char *type;
    uint16_t slot;  // offset in tqsWapCharacter; kNoOffset for the root
    const Field *fields;
    uint8_t count;
    uint16_t treeSize;
    uint16_t ctxSize;
    uint16_t characterList;  // offset of the tree's ptCharacterList, or kNoOffset
    uint16_t next;           // offset of the context's ptNext, or kNoOffset
    TreeRule treeRule;
};

template <Kind K>
constexpr RecordInfo InfoOf() {
    using R = Record<K>;
    return {R::kType,
            R::kSlot,
            R::kFields,
            static_cast<uint8_t>(sizeof R::kFields / sizeof R::kFields[0]),
            sizeof(typename R::Wap),
            sizeof(typename R::Ctx),
            CharacterListOffset<typename R::Wap>(),
            NextOffset<typename R::Ctx>(),
            R::kTreeRule};
}

// Indexed by Kind, the root last.
#define TQS_INFO(kind, ...) InfoOf<Kind::kind>(),
inline constexpr RecordInfo kRecords[] = {TQS_RECORDS(TQS_INFO) InfoOf<Kind::Root>()};
#undef TQS_INFO

inline const RecordInfo &Info(Kind k) {
    return kRecords[static_cast<size_t>(k)];
}

// Number of string fields: they lead the record.
template <Kind K>
constexpr size_t StringCount() {
    size_t n = 0;
    for (const Field &f : Record<K>::kFields) n += IsString(f.fill);
    return n;
}

}  // namespace tqs::detail

#endif  // TQS_CLIENT_PROV_FIELDS_H
