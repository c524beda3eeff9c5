/*
 * Provisioning context: the typed, self-contained result of one parse.
 *
 * Built from the decoded document tree by tqsClientProvCtxMakeContext, read by
 * the query getters, released by tqsClientProvCtxDelectContext. Every string
 * in it is a private copy; nothing is shared with the document tree.
 *
 * Every record is one zero-filled block of (fields x pointer size) + 1 bytes
 * from the tracking allocator; every field is one pointer, so an absent value
 * reads null. Chains link records of one kind in document order by ptNext.
 */
#ifndef TQS_CLIENT_PROV_CTX_H
#define TQS_CLIENT_PROV_CTX_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Document-tree and list records, defined by the decoder and list units. */
typedef struct TqsList TqsList;
typedef struct tqsWapDoc tqsWapDoc;
typedef struct tqsWapPxLogical tqsWapPxLogical;
typedef struct tqsWapPxAuthInfo tqsWapPxAuthInfo;
typedef struct tqsWapPort tqsWapPort;
typedef struct tqsWapPxPhysical tqsWapPxPhysical;
typedef struct tqsWapNapDef tqsWapNapDef;
typedef struct tqsWapNapAuthInfo tqsWapNapAuthInfo;
typedef struct tqsWapValidity tqsWapValidity;
typedef struct tqsWapBootstrap tqsWapBootstrap;
typedef struct tqsWapClientIdentity tqsWapClientIdentity;
typedef struct tqsWapVendorConfig tqsWapVendorConfig;
typedef struct tqsWapApplication tqsWapApplication;
typedef struct tqsWapAppAddr tqsWapAppAddr;
typedef struct tqsWapAppAuth tqsWapAppAuth;
typedef struct tqsWapResource tqsWapResource;
typedef struct tqsWapRoaming tqsWapRoaming;
typedef struct tqsWapAccess tqsWapAccess;
typedef struct tqsWapWifi tqsWapWifi;

/*
 * One node of a string chain. The thirteen list kinds share this layout; each
 * kind names the string after itself (ptDomain->pDomain, ptAuthEntity->
 * pAuthEntity, ...). pszStr is the kind-neutral name of the same field.
 */
typedef struct tqsCtxStrNode {
    union {
        char *pszStr;
        char *pRule;
        char *pAppId;
        char *pPortNbr;
        char *pDomain;
        char *pToNapId;
        char *pToProxy;
        char *pToAddr;
        char *pService;
        char *pNetwork;
        char *pProxyId;
        char *pDnsAddr;
        char *pBearer;
        char *pAuthEntity;
    };
    struct tqsCtxStrNode *ptNext;
} tqsCtxStrNode;

typedef struct tqsCtxPxAuthInfo {
    char *pszPxAuthType;
    char *pszPxAuthId;
    char *pszPxAuthPw;
    struct tqsCtxPxAuthInfo *ptNext;
} tqsCtxPxAuthInfo;

typedef struct tqsCtxPort {
    char *pszPortNbr;
    tqsCtxStrNode *ptService;
    struct tqsCtxPort *ptNext;
} tqsCtxPort;

typedef struct tqsCtxPxPhysical {
    char *pszPhysicalProxyId;
    char *pszPxAddr;
    char *pszPxAddrType;
    char *pszPxAddrFqdn;
    char *pszWspVersion;
    char *pszPushEnabled;
    char *pszPullEnabled;
    tqsCtxStrNode *ptDomain; /* opposite order to the tree record */
    tqsCtxStrNode *ptToNapId;
    tqsCtxPort *ptPort;
    struct tqsCtxPxPhysical *ptNext;
} tqsCtxPxPhysical;

typedef struct tqsCtxPxLogical {
    char *pszProxyId;
    char *pszProxyPw;
    char *pszPpgAuthType;
    char *pszProxyProviderId;
    char *pszName;
    char *pszTrust;
    char *pszMaster;
    char *pszStartPage;
    char *pszReserved1; /* reserved: no parm fills them */
    char *pszReserved2;
    char *pszReserved3;
    char *pszReserved4; /* never copied from the tree */
    char *pszReserved5;
    tqsCtxStrNode *ptDomain;
    tqsCtxPxAuthInfo *ptPxAuthInfo;
    tqsCtxPort *ptPort;
    tqsCtxPxPhysical *ptPxPhysical;
    struct tqsCtxPxLogical *ptNext;
} tqsCtxPxLogical;

typedef struct tqsCtxNapAuthInfo {
    char *pszAuthType;
    char *pszAuthName;
    char *pszAuthSecret;
    char *pszReserved1;
    tqsCtxStrNode *ptAuthEntity;
    struct tqsCtxNapAuthInfo *ptNext;
} tqsCtxNapAuthInfo;

typedef struct tqsCtxValidity {
    char *pszCountry;
    char *pszNetwork;
    char *pszSid;
    char *pszSoc;
    char *pszValidUntil;
    struct tqsCtxValidity *ptNext;
} tqsCtxValidity;

typedef struct tqsCtxNapDef {
    char *pszNapId;
    char *pszName;
    char *pszInternet;
    char *pszNapAddress;
    char *pszNapAddrType;
    char *pszCallType;
    char *pszLocalAddr;
    char *pszLocalAddrType;
    char *pszLinkSpeed;
    char *pszDnLinkSpeed;
    char *pszLinger;
    char *pszDeliveryErrSdu;
    char *pszDeliveryOrder;
    char *pszTrafficClass;
    char *pszMaxSduSize;
    char *pszMaxBitrateUplink;
    char *pszMaxBitrateDnlink;
    char *pszReserved1; /* reserved: no parm fills them */
    char *pszReserved2;
    char *pszReserved3;
    char *pszReserved4;
    char *pszReserved5;
    char *pszReserved6;
    char *pszMaxNumRetry;
    char *pszFirstRetryTimeout;
    char *pszReregThreshold;
    char *pszTBit;
    char *pszInit; /* "empty" when a value-less INIT parm was present; kept on release */
    tqsCtxStrNode *ptDnsAddr;
    tqsCtxStrNode *ptBearer;
    tqsCtxNapAuthInfo *ptNapAuthInfo;
    tqsCtxValidity *ptValidity;
    struct tqsCtxNapDef *ptNext;
} tqsCtxNapDef;

typedef struct tqsCtxBootstrap {
    char *pszName;
    char *pszCountry;
    char *pszProvUrl;
    char *pszContextAllow;
    tqsCtxStrNode *ptProxyId;
    tqsCtxStrNode *ptNetwork;
    struct tqsCtxBootstrap *ptNext;
} tqsCtxBootstrap;

/* Never a chain: the first CLIENTIDENTITY of a document wins. */
typedef struct tqsCtxClientIdent {
    char *pszClientId;
} tqsCtxClientIdent;

typedef struct tqsCtxVenderConfig {
    char *pszName;
    char *pszParmName;
    char *pszParmValue;
    struct tqsCtxVenderConfig *ptNext;
} tqsCtxVenderConfig;

typedef struct tqsCtxAppAddr {
    char *pszAddr;
    char *pszAddrType;
    tqsCtxPort *ptPort;
    struct tqsCtxAppAddr *ptNext;
} tqsCtxAppAddr;

typedef struct tqsCtxAppAuth {
    char *pszAAuthLevel;
    char *pszAAuthType; /* comma-joined when the document gave several */
    char *pszAAuthName;
    char *pszAAuthSecret;
    char *pszAAuthData;
    struct tqsCtxAppAuth *ptNext;
} tqsCtxAppAuth;

typedef struct tqsCtxResource {
    char *pszUri;
    char *pszName;
    char *pszAAccept;
    char *pszAAuthType;
    char *pszAAuthName;
    char *pszAAuthSecret;
    char *pszAAuthData;
    char *pszStartPage;
    struct tqsCtxResource *ptNext;
} tqsCtxResource;

/* Only ever a child of an APPLICATION; kept on release. */
typedef struct tqsCtxRoaming {
    char *pszSyncAllowed;
    char *pszSyncDefault;
    struct tqsCtxRoaming *ptNext;
} tqsCtxRoaming;

typedef struct tqsCtxApplication {
    char *pszAppId;
    char *pszProviderId;
    char *pszFrom;
    char *pszName;
    char *pszAAccept;
    char *pszAProtocol;
    char *pszInternet;
    char *pszXcapAuidDcs; /* the five XCAP strings are kept on release */
    char *pszXcapAuidPms;
    char *pszXcapAuidCdms;
    char *pszXcapImeiHeader;
    char *pszXcapTidHeader;
    tqsCtxStrNode *ptToProxy;
    tqsCtxStrNode *ptToNapId;
    tqsCtxStrNode *ptToAddr;
    tqsCtxAppAddr *ptAppAddr;
    tqsCtxAppAuth *ptAppAuth;
    tqsCtxResource *ptResource;
    tqsCtxRoaming *ptRoaming;
    struct tqsCtxApplication *ptNext;
} tqsCtxApplication;

typedef struct tqsCtxAccess {
    tqsCtxStrNode *ptRule;
    tqsCtxStrNode *ptAppId;
    tqsCtxStrNode *ptPortNbr;
    tqsCtxStrNode *ptDomain;
    tqsCtxStrNode *ptToNapId;
    tqsCtxStrNode *ptToProxy;
    struct tqsCtxAccess *ptNext;
} tqsCtxAccess;

/* Kept on release: the root release leaves the whole WI-FI chain allocated. */
typedef struct tqsCtxWifi {
    char *pszNetSsid;
    char *pszSecMode;
    char *pszEapMethod;
    char *pszEapType;
    char *pszUserName;
    char *pszAnonUserName;
    char *pszPassword;
    char *pszCaCert;
    char *pszUserCert;
    char *pszPhase1;
    char *pszAuthAlgorithm;
    char *pszPriority;
    struct tqsCtxWifi *ptNext;
} tqsCtxWifi;

/* Root of a context: one chain head per top-level characteristic type. */
typedef struct tqsClientProvCtx {
    tqsCtxPxLogical *ptPxLogical;
    tqsCtxNapDef *ptNapDef;
    tqsCtxBootstrap *ptBootstrap;
    tqsCtxClientIdent *ptClientIdent;
    tqsCtxVenderConfig *ptVenderConfig;
    tqsCtxApplication *ptApplication;
    tqsCtxAccess *ptAccess;
    tqsCtxWifi *ptWifi;
} tqsClientProvCtx;

/* ---- construction ------------------------------------------------------ */

/* Converts a whole document tree; null (error 2 traced) for a null document. */
tqsClientProvCtx *tqsClientProvCtxMakeContext(tqsWapDoc *ptWapDoc);

/*
 * Converts the top-level characteristic list into a new root stored in
 * *pptCtx. Returns 0; 2 for a null list or a null pptCtx; 1 when the root
 * cannot be allocated; or the list's own status. *pptCtx is null on every
 * failure.
 */
uint32_t tqsClientProvCtxVerifyContext(TqsList *ptCharacterList, tqsClientProvCtx **pptCtx);

/* Record converters: a new context record, or null (error 2) for null input. */
tqsCtxPxLogical *tqsClientProvCtxVerifyContextPxLogical(const tqsWapPxLogical *ptWap);
tqsCtxPxAuthInfo *tqsClientProvCtxVerifyContextPxAuthInfo(const tqsWapPxAuthInfo *ptWap);
tqsCtxPort *tqsClientProvCtxVerifyContextPort(const tqsWapPort *ptWap);
tqsCtxPxPhysical *tqsClientProvCtxVerifyContextPxPhysical(const tqsWapPxPhysical *ptWap);
tqsCtxNapDef *tqsClientProvCtxVerifyContextNapdef(const tqsWapNapDef *ptWap);
tqsCtxNapAuthInfo *tqsClientProvCtxVerifyContextNapAuthInfo(const tqsWapNapAuthInfo *ptWap);
tqsCtxValidity *tqsClientProvCtxVerifyContextValidity(const tqsWapValidity *ptWap);
tqsCtxBootstrap *tqsClientProvCtxVerifyContextBootstrap(const tqsWapBootstrap *ptWap);
tqsCtxClientIdent *tqsClientProvCtxVerifyContextClientIdent(const tqsWapClientIdentity *ptWap);
tqsCtxVenderConfig *tqsClientProvCtxVerifyContextVenderConfig(const tqsWapVendorConfig *ptWap);
tqsCtxApplication *tqsClientProvCtxVerifyContextApplication(const tqsWapApplication *ptWap);
tqsCtxAppAddr *tqsClientProvCtxVerifyContextAppAddr(const tqsWapAppAddr *ptWap);
tqsCtxAppAuth *tqsClientProvCtxVerifyContextAppAuth(const tqsWapAppAuth *ptWap);
tqsCtxResource *tqsClientProvCtxVerifyContextResource(const tqsWapResource *ptWap);
tqsCtxRoaming *tqsClientProvCtxVerifyContextRoaming(const tqsWapRoaming *ptWap);
tqsCtxAccess *tqsClientProvCtxVerifyContextAccess(const tqsWapAccess *ptWap);
tqsCtxWifi *tqsClientProvCtxVerifyContextWifi(const tqsWapWifi *ptWap);

/*
 * String-list converters: a document List of strings in, the head of a new
 * string chain out (null for an empty list). A null item ends the copy.
 */
tqsCtxStrNode *tqsClientProvCtxVerifyContextToAddrList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextToProxyList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextPortNbrList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextAppIdList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextRuleList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextNetworkList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextProxyIdList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextAuthEntityList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextBearerList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextDnsAddrList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextToNapIdList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextServiceList(TqsList *ptList);
tqsCtxStrNode *tqsClientProvCtxVerifyContextDomainList(TqsList *ptList);

/*
 * Child distributors: convert the tqsWapCharacter items of a child list into
 * the parent's typed chains. Return 0, or 1 when a child of a type the parent
 * cannot hold ended the walk ("[WARNING] Not Support Context"); the children
 * appended before it stay. A null parent gets 2 and nothing is converted.
 */
uint32_t tqsClientProvCtxVerifyCharacterPxLogical(TqsList *ptCharacterList, tqsCtxPxLogical *ptParent);
uint32_t tqsClientProvCtxVerifyCharacterPxPhysical(TqsList *ptCharacterList, tqsCtxPxPhysical *ptParent);
uint32_t tqsClientProvCtxVerifyCharacterAppAddr(TqsList *ptCharacterList, tqsCtxAppAddr *ptParent);
uint32_t tqsClientProvCtxVerifyCharacterNapDef(TqsList *ptCharacterList, tqsCtxNapDef *ptParent);
uint32_t tqsClientProvCtxVerifyCharacterApplication(TqsList *ptCharacterList, tqsCtxApplication *ptParent);

/* ---- release -------------------------------------------------------------
 * Each routine releases the given record and the rest of its chain; a null
 * argument only traces error 2. Deliberately left allocated: the WI-FI chain
 * of the root, the ROAMING chain and the XCAP strings of an APPLICATION, and
 * pszInit of a NAPDEF.
 */
void tqsClientProvCtxDelectContext(tqsClientProvCtx *ptCtx);
void tqsClientProvCtxDelectContextPxLogical(tqsCtxPxLogical *ptRec);
void tqsClientProvCtxDelectContextPxAuthInfo(tqsCtxPxAuthInfo *ptRec);
void tqsClientProvCtxDelectContextPort(tqsCtxPort *ptRec);
void tqsClientProvCtxDelectContextPxPhysical(tqsCtxPxPhysical *ptRec);
void tqsClientProvCtxDelectContextNapDef(tqsCtxNapDef *ptRec);
void tqsClientProvCtxDelectContextNapAuthInfo(tqsCtxNapAuthInfo *ptRec);
void tqsClientProvCtxDelectContextValidity(tqsCtxValidity *ptRec);
void tqsClientProvCtxDelectContextBootstrap(tqsCtxBootstrap *ptRec);
void tqsClientProvCtxDelectContextClientIdent(tqsCtxClientIdent *ptRec);
void tqsClientProvCtxDelectContextVenderConfig(tqsCtxVenderConfig *ptRec);
void tqsClientProvCtxDelectContextApplication(tqsCtxApplication *ptRec);
void tqsClientProvCtxDelectContextAppAddr(tqsCtxAppAddr *ptRec);
void tqsClientProvCtxDelectContextAppAuth(tqsCtxAppAuth *ptRec);
void tqsClientProvCtxDelectContextResource(tqsCtxResource *ptRec);
void tqsClientProvCtxDelectContextAccess(tqsCtxAccess *ptRec);
void tqsClientProvCtxDelectContextWifi(tqsCtxWifi *ptRec);

void tqsClientProvCtxDelectContextRuleList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextAppIdList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextPortNbrList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextDomainList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextToNapIdList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextToProxyList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextToAddrList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextServiceList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextNetworkList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextProxyIdList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextDnsAddrList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextBearerList(tqsCtxStrNode *ptNode);
void tqsClientProvCtxDelectContextAuthEntityList(tqsCtxStrNode *ptNode);

#ifdef __cplusplus
}
#endif

/* Record layouts are part of the contract: one pointer per listed field. */
#ifdef __cplusplus
#define TQS_CTX_FIELDS(T, n) static_assert(sizeof(T) == (n) * sizeof(void *), #T " field count")
#else
#define TQS_CTX_FIELDS(T, n) _Static_assert(sizeof(T) == (n) * sizeof(void *), #T " field count")
#endif
TQS_CTX_FIELDS(tqsCtxStrNode, 2);
TQS_CTX_FIELDS(tqsCtxPxAuthInfo, 4);
TQS_CTX_FIELDS(tqsCtxPort, 3);
TQS_CTX_FIELDS(tqsCtxPxPhysical, 11);
TQS_CTX_FIELDS(tqsCtxPxLogical, 18);
TQS_CTX_FIELDS(tqsCtxNapAuthInfo, 6);
TQS_CTX_FIELDS(tqsCtxValidity, 6);
TQS_CTX_FIELDS(tqsCtxNapDef, 33);
TQS_CTX_FIELDS(tqsCtxBootstrap, 7);
TQS_CTX_FIELDS(tqsCtxClientIdent, 1);
TQS_CTX_FIELDS(tqsCtxVenderConfig, 4);
TQS_CTX_FIELDS(tqsCtxAppAddr, 4);
TQS_CTX_FIELDS(tqsCtxAppAuth, 6);
TQS_CTX_FIELDS(tqsCtxResource, 9);
TQS_CTX_FIELDS(tqsCtxRoaming, 3);
TQS_CTX_FIELDS(tqsCtxApplication, 20);
TQS_CTX_FIELDS(tqsCtxAccess, 7);
TQS_CTX_FIELDS(tqsCtxWifi, 13);
TQS_CTX_FIELDS(tqsClientProvCtx, 8);
#undef TQS_CTX_FIELDS

#endif /* TQS_CLIENT_PROV_CTX_H */
