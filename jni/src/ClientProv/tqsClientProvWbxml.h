/*
 * Provisioning document tree (tqsWapDoc and the 17 typed characteristic
 * records), the decoder record, and their creation and release.
 *
 * Every tree record is a block of pointer fields allocated zero-filled with
 * one spare byte; a field no parm filled stays null. Strings are owned,
 * zero-terminated blocks; lists are TqsList of owned strings or of
 * tqsWapCharacter records. A few fields are deliberately never released by
 * the delete routines (see tqsClientProvFields.h) and show up in the leak
 * report.
 */
#ifndef TQS_CLIENT_PROV_WBXML_H
#define TQS_CLIENT_PROV_WBXML_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

struct TqsList;
struct SmlBuffer;

/* ---- Document tree ------------------------------------------------------ */

typedef struct tqsWapPxLogical {
    char *pszProxyId;         /* PROXY-ID 0x15 */
    char *pszProxyPw;         /* PROXY-PW 0x3E */
    char *pszPpgAuthType;     /* PPGAUTH-TYPE 0x3F */
    char *pszProxyProviderId; /* PROXY-PROVIDER-ID 0x16 */
    char *pszName;            /* NAME 0x07 */
    char *pszTrust;           /* TRUST 0x2A */
    char *pszMaster;          /* MASTER 0x2B */
    char *pszStartPage;       /* STARTPAGE 0x1C */
    char *pszReserved1;       /* five slots no parm fills */
    char *pszReserved2;
    char *pszReserved3;
    char *pszReserved4;
    char *pszReserved5;
    struct TqsList *ptDomainList;    /* DOMAIN 0x17, strings */
    struct TqsList *ptCharacterList; /* nested tqsWapCharacter */
} tqsWapPxLogical;

typedef struct tqsWapPxAuthInfo {
    char *pszPxAuthType; /* PXAUTH-TYPE 0x19 */
    char *pszPxAuthId;   /* PXAUTH-ID 0x1A */
    char *pszPxAuthPw;   /* PXAUTH-PW 0x1B */
} tqsWapPxAuthInfo;

typedef struct tqsWapPort {
    char *pszPortNbr;              /* PORTNBR 0x23 */
    struct TqsList *ptServiceList; /* SERVICE 0x24, strings */
} tqsWapPort;

typedef struct tqsWapPxPhysical {
    char *pszPhysicalProxyId;        /* PHYSICAL-PROXY-ID 0x2F */
    char *pszPxAddr;                 /* PXADDR 0x20 */
    char *pszPxAddrType;             /* PXADDRTYPE 0x21 */
    char *pszPxAddrFqdn;             /* PXADDR-FQDN 0x3D */
    char *pszWspVersion;             /* WSP-VERSION 0x2E */
    char *pszPushEnabled;            /* PUSHENABLED 0x1F */
    char *pszPullEnabled;            /* PULLENABLED 0x47 */
    struct TqsList *ptToNapIdList;   /* TO-NAPID 0x22, strings */
    struct TqsList *ptDomainList;    /* DOMAIN 0x17, strings */
    struct TqsList *ptCharacterList; /* nested tqsWapCharacter */
} tqsWapPxPhysical;

typedef struct tqsWapNapDef {
    char *pszNapId;            /* NAPID 0x11 */
    char *pszName;             /* NAME 0x07 */
    char *pszInternet;         /* INTERNET 0x14 */
    char *pszNapAddress;       /* NAP-ADDRESS 0x08 */
    char *pszNapAddrType;      /* NAP-ADDRTYPE 0x09 */
    char *pszCallType;         /* CALLTYPE 0x0A */
    char *pszLocalAddr;        /* LOCAL-ADDR 0x27 */
    char *pszLocalAddrType;    /* LOCAL-ADDRTYPE 0x28 */
    char *pszLinkSpeed;        /* LINKSPEED 0x25 */
    char *pszDnLinkSpeed;      /* DNLINKSPEED 0x26 */
    char *pszLinger;           /* LINGER 0x0F */
    char *pszDeliveryErrSdu;   /* DELIVERY-ERR-SDU 0x31 */
    char *pszDeliveryOrder;    /* DELIVERY-ORDER 0x32 */
    char *pszTrafficClass;     /* TRAFFIC-CLASS 0x33 */
    char *pszMaxSduSize;       /* MAX-SDU-SIZE 0x34 */
    char *pszMaxBitrateUplink; /* MAX-BITRATE-UPLINK 0x35 */
    char *pszMaxBitrateDnlink; /* MAX-BITRATE-DNLINK 0x36 */
    char *pszReserved1;        /* six slots no parm fills */
    char *pszReserved2;
    char *pszReserved3;
    char *pszReserved4;
    char *pszReserved5;
    char *pszReserved6;
    char *pszMaxNumRetry;            /* MAX-NUM-RETRY 0x49 */
    char *pszFirstRetryTimeout;      /* FIRST-RETRY-TIMEOUT 0x4A */
    char *pszReregThreshold;         /* REREG-THRESHOLD 0x4B */
    char *pszTBit;                   /* T-BIT 0x4C */
    char *pszInit;                   /* inline name "INIT"; constant text, never released */
    struct TqsList *ptDnsAddrList;   /* DNS-ADDR 0x48, strings */
    struct TqsList *ptBearerList;    /* BEARER 0x10, strings */
    struct TqsList *ptCharacterList; /* nested tqsWapCharacter */
} tqsWapNapDef;

typedef struct tqsWapNapAuthInfo {
    char *pszAuthType;                /* AUTHTYPE 0x0C */
    char *pszAuthName;                /* AUTHNAME 0x0D */
    char *pszAuthSecret;              /* AUTHSECRET 0x0E */
    char *pszReserved1;               /* no parm fills it */
    struct TqsList *ptAuthEntityList; /* AUTH-ENTITY 0x4E, strings */
} tqsWapNapAuthInfo;

typedef struct tqsWapValidity {
    char *pszCountry;    /* COUNTRY 0x12 */
    char *pszNetwork;    /* NETWORK 0x13 */
    char *pszSid;        /* SID 0x2C */
    char *pszSoc;        /* SOC 0x2D */
    char *pszValidUntil; /* VALIDUNTIL 0x0B */
} tqsWapValidity;

typedef struct tqsWapAppAddr {
    char *pszAddr;                   /* ADDR 0x34 (page 1) */
    char *pszAddrType;               /* ADDRTYPE 0x35 (page 1) */
    struct TqsList *ptCharacterList; /* nested tqsWapCharacter */
} tqsWapAppAddr;

typedef struct tqsWapResource { /* page 1 tokens */
    char *pszUri;               /* URI 0x3A */
    char *pszName;              /* NAME 0x07 */
    char *pszAAccept;           /* AACCEPT 0x2E */
    char *pszAAuthType;         /* AAUTHTYPE 0x33 */
    char *pszAAuthName;         /* AAUTHNAME 0x31 */
    char *pszAAuthSecret;       /* AAUTHSECRET 0x32 */
    char *pszAAuthData;         /* AAUTHDATA 0x2F */
    char *pszStartPage;         /* STARTPAGE 0x1C */
} tqsWapResource;

typedef struct tqsWapAppAuth { /* page 1 tokens */
    char *pszAAuthLevel;       /* AAUTHLEVEL 0x30 */
    char *pszAAuthType;        /* AAUTHTYPE 0x33, values joined with commas */
    char *pszAAuthName;        /* AAUTHNAME 0x31 */
    char *pszAAuthSecret;      /* AAUTHSECRET 0x32 */
    char *pszAAuthData;        /* AAUTHDATA 0x2F */
} tqsWapAppAuth;

typedef struct tqsWapApplication {
    char *pszAppId;       /* APPID 0x36 (page 1) */
    char *pszProviderId;  /* PROVIDER-ID 0x38 (page 1) */
    char *pszFrom;        /* inline name "FROM"; never released */
    char *pszName;        /* NAME 0x07 */
    char *pszAAccept;     /* AACCEPT 0x2E (page 1) */
    char *pszAProtocol;   /* APROTOCOL 0x37 (page 1) */
    char *pszInternet;    /* INTERNET 0x14 */
    char *pszXcapAuidDcs; /* inline names "XCAP_..."; never released */
    char *pszXcapAuidPms;
    char *pszXcapAuidCdms;
    char *pszXcapImeiHeader;
    char *pszXcapTidHeader;
    struct TqsList *ptToProxyList;   /* TO-PROXY 0x39 (page 1), strings */
    struct TqsList *ptToNapIdList;   /* TO-NAPID 0x22, strings */
    struct TqsList *ptAddrList;      /* ADDR 0x34 (page 1), strings */
    struct TqsList *ptCharacterList; /* nested tqsWapCharacter */
} tqsWapApplication;

typedef struct tqsWapBootstrap {
    char *pszName;                 /* NAME 0x07 */
    char *pszCountry;              /* COUNTRY 0x12 */
    char *pszProvUrl;              /* PROVURL 0x18 */
    char *pszContextAllow;         /* CONTEXT-ALLOW 0x29 */
    struct TqsList *ptProxyIdList; /* PROXY-ID 0x15, strings */
    struct TqsList *ptNetworkList; /* NETWORK 0x13, strings */
} tqsWapBootstrap;

typedef struct tqsWapVendorConfig {
    char *pszName;      /* NAME 0x07 */
    char *pszParmName;  /* inline parm name; never released */
    char *pszParmValue; /* its value; never released */
} tqsWapVendorConfig;

typedef struct tqsWapClientIdentity {
    char *pszClientId; /* CLIENT-ID 0x30 */
} tqsWapClientIdentity;

typedef struct tqsWapAccess {      /* all string lists */
    struct TqsList *ptRuleList;    /* RULE 0x3B (page 1) */
    struct TqsList *ptAppIdList;   /* APPID 0x36 (page 1) */
    struct TqsList *ptPortNbrList; /* PORTNBR 0x23 */
    struct TqsList *ptDomainList;  /* DOMAIN 0x17 */
    struct TqsList *ptToNapIdList; /* TO-NAPID 0x22 */
    struct TqsList *ptToProxyList; /* TO-PROXY 0x39 (page 1) */
} tqsWapAccess;

typedef struct tqsWapRoaming { /* never released, nor its strings */
    char *pszSyncAllowed;      /* "SYNC-ALLOWED" */
    char *pszSyncDefault;      /* "SYNC-DEFAULT" */
} tqsWapRoaming;

typedef struct tqsWapWifi { /* parms with inline names */
    char *pszNetSsid;       /* "NETSSID" */
    char *pszSecMode;       /* "SECMODE" */
    char *pszEapMethod;     /* "EAPMETHOD" */
    char *pszEapType;       /* "EAPTYPE" */
    char *pszUserName;      /* "USERNAME" */
    char *pszAnonUserName;  /* "ANONUSERNAME" */
    char *pszPassword;      /* "PASSWORD" */
    char *pszCaCert;        /* "CACERT" */
    char *pszUserCert;      /* "USERCERT" */
    char *pszPhase1;        /* "PHASE1" */
    char *pszAuthAlgorithm; /* "AUTHALGORITHM" */
    char *pszPriority;      /* "PRIORITY" */
} tqsWapWifi;

/* One characteristic: exactly one slot is set, chosen by its type attribute. */
typedef struct tqsWapCharacter {
    tqsWapPxLogical *ptPxLogical;           /* 0  PXLOGICAL 0x51 */
    tqsWapPxAuthInfo *ptPxAuthInfo;         /* 1  PXAUTHINFO 0x59, page 0 */
    tqsWapPort *ptPort;                     /* 2  PORT 0x53 */
    tqsWapPxPhysical *ptPxPhysical;         /* 3  PXPHYSICAL 0x52 */
    tqsWapNapDef *ptNapDef;                 /* 4  NAPDEF 0x55, page 0 */
    tqsWapNapAuthInfo *ptNapAuthInfo;       /* 5  NAPAUTHINFO 0x5A */
    tqsWapValidity *ptValidity;             /* 6  VALIDITY 0x54 */
    tqsWapAppAddr *ptAppAddr;               /* 7  APPADDR 0x56, page 1 */
    tqsWapResource *ptResource;             /* 8  RESOURCE 0x59, page 1 */
    tqsWapAppAuth *ptAppAuth;               /* 9  APPAUTH 0x57, page 1 */
    tqsWapApplication *ptApplication;       /* 10 APPLICATION 0x55, page 1 */
    tqsWapBootstrap *ptBootstrap;           /* 11 BOOTSTRAP 0x56, page 0 */
    tqsWapVendorConfig *ptVendorConfig;     /* 12 VENDORCONFIG 0x57, page 0 */
    tqsWapClientIdentity *ptClientIdentity; /* 13 CLIENTIDENTITY 0x58 */
    tqsWapAccess *ptAccess;                 /* 14 ACCESS 0x5B */
    tqsWapRoaming *ptRoaming;               /* 15 0x50 "ROAMING"; never released */
    tqsWapWifi *ptWifi;                     /* 16 0x50 "WI-FI" */
} tqsWapCharacter;

typedef struct tqsWapDoc {
    struct TqsList *ptCharacterList; /* top-level tqsWapCharacter */
} tqsWapDoc;

/* ---- Decoder record ----------------------------------------------------- */

typedef struct tqsWbxmlDecoder {
    intptr_t bHasContent;        /* last tag read had bit 0x40 */
    intptr_t bHasAttribute;      /* last tag read had bit 0x80 */
    uint32_t nStrSize;           /* string-table length (0xFFFFFFFF after a failed read) */
    uint8_t nCodePage;           /* 0 or 1 */
    unsigned char *pStringTable; /* owned, zero-terminated */
    struct SmlBuffer *ptBuffer;  /* owned copy of the body */
    /* Private to the decoder. */
    uint32_t nStrTableBytes; /* size of the pStringTable block */
    uint32_t nDepth;         /* characteristic nesting now being decoded (bounded) */
} tqsWbxmlDecoder;

/* ---- Creation and release ----------------------------------------------- */

/* Copies nLength bytes of pBody into a new decoder. 0, or 2 (null body / no memory). */
TqsResult tqsClientProvWbxmlInitDecoder(tqsWbxmlDecoder **pptDecoder, const unsigned char *pBody,
                                        uint32_t nLength);
/* 2 for null; otherwise frees the string table, the buffer and the record. */
TqsResult tqsClientProvWbxmlDeleteDecoder(tqsWbxmlDecoder *ptDecoder);

/* Each returns 0 for null and 1 after releasing the record and what it owns. */
uint32_t tqsClientProvWbxmlDeleteWapDoc(tqsWapDoc *ptWapDoc);
uint32_t tqsClientProvWbxmlDeleteCharacter(tqsWapCharacter *ptCharacter);
uint32_t tqsClientProvWbxmlDeletePxlogical(tqsWapPxLogical *ptRecord);
uint32_t tqsClientProvWbxmlDeletePxAuthInfo(tqsWapPxAuthInfo *ptRecord);
uint32_t tqsClientProvWbxmlDeletePort(tqsWapPort *ptRecord);
uint32_t tqsClientProvWbxmlDeletePxphysical(tqsWapPxPhysical *ptRecord);
uint32_t tqsClientProvWbxmlDeleteNapDef(tqsWapNapDef *ptRecord);
uint32_t tqsClientProvWbxmlDeleteNapAuthInfo(tqsWapNapAuthInfo *ptRecord);
uint32_t tqsClientProvWbxmlDeleteValidity(tqsWapValidity *ptRecord);
uint32_t tqsClientProvWbxmlDeleteAppAddr(tqsWapAppAddr *ptRecord);
uint32_t tqsClientProvWbxmlDeleteResource(tqsWapResource *ptRecord);
uint32_t tqsClientProvWbxmlDeleteAppAuth(tqsWapAppAuth *ptRecord);
uint32_t tqsClientProvWbxmlDeleteApplication(tqsWapApplication *ptRecord);
uint32_t tqsClientProvWbxmlDeleteBootstrap(tqsWapBootstrap *ptRecord);
uint32_t tqsClientProvWbxmlDeleteVendorConfig(tqsWapVendorConfig *ptRecord);
uint32_t tqsClientProvWbxmlDeleteClientIdentity(tqsWapClientIdentity *ptRecord);
uint32_t tqsClientProvWbxmlDeleteAccess(tqsWapAccess *ptRecord);
uint32_t tqsClientProvWbxmlDeleteWifi(tqsWapWifi *ptRecord);

#ifdef __cplusplus
}

/* Layout pins: every tree record is N pointer fields and nothing else. */
#define TQS_WAP_RECORD_FIELDS(type, n) \
    static_assert(sizeof(type) == (n) * sizeof(void *), #type " must have " #n " pointer fields")
TQS_WAP_RECORD_FIELDS(tqsWapPxLogical, 15);
TQS_WAP_RECORD_FIELDS(tqsWapPxAuthInfo, 3);
TQS_WAP_RECORD_FIELDS(tqsWapPort, 2);
TQS_WAP_RECORD_FIELDS(tqsWapPxPhysical, 10);
TQS_WAP_RECORD_FIELDS(tqsWapNapDef, 31);
TQS_WAP_RECORD_FIELDS(tqsWapNapAuthInfo, 5);
TQS_WAP_RECORD_FIELDS(tqsWapValidity, 5);
TQS_WAP_RECORD_FIELDS(tqsWapAppAddr, 3);
TQS_WAP_RECORD_FIELDS(tqsWapResource, 8);
TQS_WAP_RECORD_FIELDS(tqsWapAppAuth, 5);
TQS_WAP_RECORD_FIELDS(tqsWapApplication, 16);
TQS_WAP_RECORD_FIELDS(tqsWapBootstrap, 6);
TQS_WAP_RECORD_FIELDS(tqsWapVendorConfig, 3);
TQS_WAP_RECORD_FIELDS(tqsWapClientIdentity, 1);
TQS_WAP_RECORD_FIELDS(tqsWapAccess, 6);
TQS_WAP_RECORD_FIELDS(tqsWapRoaming, 2);
TQS_WAP_RECORD_FIELDS(tqsWapWifi, 12);
TQS_WAP_RECORD_FIELDS(tqsWapCharacter, 17);
TQS_WAP_RECORD_FIELDS(tqsWapDoc, 1);
#undef TQS_WAP_RECORD_FIELDS
static_assert(offsetof(tqsWapCharacter, ptRoaming) == 15 * sizeof(void *), "ROAMING is slot 15");
static_assert(offsetof(tqsWapNapDef, pszInit) == 27 * sizeof(void *), "pszInit is slot 27");
static_assert(offsetof(tqsWapApplication, pszXcapAuidDcs) == 7 * sizeof(void *), "XCAP strings at 7..11");
static_assert(offsetof(tqsWbxmlDecoder, ptBuffer) > offsetof(tqsWbxmlDecoder, pStringTable),
              "decoder fields keep their order");
#endif

#endif /* TQS_CLIENT_PROV_WBXML_H */
