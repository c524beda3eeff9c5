// The Java binding: the parse session (the PDU in, the header record and the
// context kept in process-wide state), the 85 natives as thin named entry
// points over the query tables below, and their registration when the Java
// VM loads the library. How the tables are walked lives in tqomacp_jni_query,
// the conversion of stored bytes to Java strings in tqomacp_jni_strings, and
// the names and mappings of value tokens, which need no JNI, in
// tqomacp_jni_names.
#include "tqomacp_jni.h"

#include <stddef.h>
#include <stdint.h>

#include "tqomacp_jni_names.h"
#include "tqomacp_jni_query.h"
#include "tqomacp_jni_strings.h"
#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"
#include "tqsstring.h"

tqsClientProvCtx *ptCtx = nullptr;

namespace {

using namespace tqsjni;

// Header record of the last parse; private to the session.
SmlPushHeader *ptPushHeader = nullptr;

// ---------------------------------------------------------------------------
// Query tables: one entry per getter.
// ---------------------------------------------------------------------------

// Paths to the records the int arguments select.
constexpr Path kPxLogical = From(TQ_HOP(tqsClientProvCtx, ptPxLogical));
constexpr Path kPxPort = Extend(kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPort));
constexpr Path kPxPhysical = Extend(kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPxPhysical));
constexpr Path kPxPhysicalPort = Extend(kPxPhysical, TQ_HOP(tqsCtxPxPhysical, ptPort));
constexpr Path kNapDef = From(TQ_HOP(tqsClientProvCtx, ptNapDef));
constexpr Path kNapAuthInfo = Extend(kNapDef, TQ_HOP(tqsCtxNapDef, ptNapAuthInfo));
constexpr Path kBootstrap = From(TQ_HOP(tqsClientProvCtx, ptBootstrap));
constexpr Path kApplication = From(TQ_HOP(tqsClientProvCtx, ptApplication));
constexpr Path kAppAddr = Extend(kApplication, TQ_HOP(tqsCtxApplication, ptAppAddr));
constexpr Path kAppPort = Extend(kAppAddr, TQ_HOP(tqsCtxAppAddr, ptPort));
constexpr Path kAccess = From(TQ_HOP(tqsClientProvCtx, ptAccess));


// Count getters.
constexpr CountQuery kPxLogicalCount{kRoot, TQ_HOP(tqsClientProvCtx, ptPxLogical)};
constexpr CountQuery kPxDomainCount{kPxLogical, TQ_HOP(tqsCtxPxLogical, ptDomain)};
constexpr CountQuery kPxAuthInfoCount{kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPxAuthInfo)};
constexpr CountQuery kPxPortCount{kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPort)};
constexpr CountQuery kPxPortServiceCount{kPxPort, TQ_HOP(tqsCtxPort, ptService)};
constexpr CountQuery kPxPhysicalCount{kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPxPhysical)};
constexpr CountQuery kPxPhysicalDomainCount{kPxPhysical, TQ_HOP(tqsCtxPxPhysical, ptDomain)};
constexpr CountQuery kPxPhysicalNapIdCount{kPxPhysical, TQ_HOP(tqsCtxPxPhysical, ptToNapId)};
constexpr CountQuery kPxPhysicalPortCount{kPxPhysical, TQ_HOP(tqsCtxPxPhysical, ptPort)};
constexpr CountQuery kPxPhysicalPortServiceCount{kPxPhysicalPort, TQ_HOP(tqsCtxPort, ptService)};
constexpr CountQuery kNapDefCount{kRoot, TQ_HOP(tqsClientProvCtx, ptNapDef)};
constexpr CountQuery kDnsAddrCount{kNapDef, TQ_HOP(tqsCtxNapDef, ptDnsAddr)};
constexpr Hop kBearerList = TQ_HOP(tqsCtxNapDef, ptBearer);
constexpr CountQuery kNapAuthInfoCount{kNapDef, TQ_HOP(tqsCtxNapDef, ptNapAuthInfo)};
constexpr CountQuery kNapAuthEntityCount{kNapAuthInfo, TQ_HOP(tqsCtxNapAuthInfo, ptAuthEntity)};
constexpr CountQuery kNapValidityCount{kNapDef, TQ_HOP(tqsCtxNapDef, ptValidity)};
constexpr CountQuery kBootstrapCount{kRoot, TQ_HOP(tqsClientProvCtx, ptBootstrap)};
constexpr CountQuery kProxyIdCount{kBootstrap, TQ_HOP(tqsCtxBootstrap, ptProxyId)};
constexpr CountQuery kNetworkCount{kBootstrap, TQ_HOP(tqsCtxBootstrap, ptNetwork)};
constexpr CountQuery kVenderConfigCount{kRoot, TQ_HOP(tqsClientProvCtx, ptVenderConfig)};
constexpr CountQuery kApplicationCount{kRoot, TQ_HOP(tqsClientProvCtx, ptApplication)};
constexpr CountQuery kToProxyCount{kApplication, TQ_HOP(tqsCtxApplication, ptToProxy)};
constexpr CountQuery kNapIdCount{kApplication, TQ_HOP(tqsCtxApplication, ptToNapId)};
constexpr CountQuery kToAddrCount{kApplication, TQ_HOP(tqsCtxApplication, ptToAddr)};
constexpr CountQuery kAppAddrCount{kApplication, TQ_HOP(tqsCtxApplication, ptAppAddr)};
constexpr CountQuery kAppPortCount{kAppAddr, TQ_HOP(tqsCtxAppAddr, ptPort)};
constexpr CountQuery kServiceCount{kAppPort, TQ_HOP(tqsCtxPort, ptService)};
constexpr CountQuery kAppAuthCount{kApplication, TQ_HOP(tqsCtxApplication, ptAppAuth)};
constexpr CountQuery kResourceCount{kApplication, TQ_HOP(tqsCtxApplication, ptResource)};
constexpr CountQuery kAccessCount{kRoot, TQ_HOP(tqsClientProvCtx, ptAccess)};
constexpr CountQuery kRuleCount{kAccess, TQ_HOP(tqsCtxAccess, ptRule)};
constexpr CountQuery kAppIdCount{kAccess, TQ_HOP(tqsCtxAccess, ptAppId)};
constexpr CountQuery kPortNbrCount{kAccess, TQ_HOP(tqsCtxAccess, ptPortNbr)};
constexpr CountQuery kAccessDomainCount{kAccess, TQ_HOP(tqsCtxAccess, ptDomain)};
constexpr CountQuery kAccessToNapIdCount{kAccess, TQ_HOP(tqsCtxAccess, ptToNapId)};
constexpr CountQuery kAccessToProxyCount{kAccess, TQ_HOP(tqsCtxAccess, ptToProxy)};
constexpr CountQuery kWifiCount{kRoot, TQ_HOP(tqsClientProvCtx, ptWifi)};

// Single-string getters. The unguarded walks of the DOMAIN and APPID data
// getters are guarded like every other walk: out of range gives null.
constexpr DataQuery kPxDomainData = ListItem(kPxLogical, TQ_HOP(tqsCtxPxLogical, ptDomain));
constexpr DataQuery kPxPortData{kPxPort, TQ_FIELD(tqsCtxPort, pszPortNbr)};
constexpr DataQuery kPxPhysicalDomainData = ListItem(kPxPhysical, TQ_HOP(tqsCtxPxPhysical, ptDomain));
constexpr DataQuery kPxPhysicalNapIdData = ListItem(kPxPhysical, TQ_HOP(tqsCtxPxPhysical, ptToNapId));
constexpr DataQuery kPxPhysicalPortData{kPxPhysicalPort, TQ_FIELD(tqsCtxPort, pszPortNbr)};
constexpr DataQuery kDnsAddrData = ListItem(kNapDef, TQ_HOP(tqsCtxNapDef, ptDnsAddr));
constexpr DataQuery kAuthEntityData = ListItem(kNapAuthInfo, TQ_HOP(tqsCtxNapAuthInfo, ptAuthEntity));
constexpr DataQuery kProxyIdData = ListItem(kBootstrap, TQ_HOP(tqsCtxBootstrap, ptProxyId));
constexpr DataQuery kNetworkData = ListItem(kBootstrap, TQ_HOP(tqsCtxBootstrap, ptNetwork));
constexpr DataQuery kToProxyData = ListItem(kApplication, TQ_HOP(tqsCtxApplication, ptToProxy));
constexpr DataQuery kNapIdData = ListItem(kApplication, TQ_HOP(tqsCtxApplication, ptToNapId));
constexpr DataQuery kToAddrData = ListItem(kApplication, TQ_HOP(tqsCtxApplication, ptToAddr));
constexpr DataQuery kAppPortData{kAppPort, TQ_FIELD(tqsCtxPort, pszPortNbr)};
constexpr DataQuery kServiceData = ListItem(kAppPort, TQ_HOP(tqsCtxPort, ptService));
constexpr DataQuery kRuleData = ListItem(kAccess, TQ_HOP(tqsCtxAccess, ptRule));
constexpr DataQuery kAppIdData = ListItem(kAccess, TQ_HOP(tqsCtxAccess, ptAppId));
constexpr DataQuery kPortNbrData = ListItem(kAccess, TQ_HOP(tqsCtxAccess, ptPortNbr));
constexpr DataQuery kAccessDomainData = ListItem(kAccess, TQ_HOP(tqsCtxAccess, ptDomain));
constexpr DataQuery kAccessToNapIdData = ListItem(kAccess, TQ_HOP(tqsCtxAccess, ptToNapId));
constexpr DataQuery kAccessToProxyData = ListItem(kAccess, TQ_HOP(tqsCtxAccess, ptToProxy));

// SERVICE nodes reached by position; the stored value is not read.
constexpr Path kPxPortService = Extend(kPxPort, TQ_HOP(tqsCtxPort, ptService));
constexpr Path kPxPhysicalPortService = Extend(kPxPhysicalPort, TQ_HOP(tqsCtxPort, ptService));
constexpr Path kBearer = Extend(kNapDef, kBearerList);

// Composite getters.
constexpr RecordQuery kProxyData{kPxLogical, TQ_ARRAY_OF(PxLogical), kNoMap};
constexpr RecordQuery kPxAuthInfoData{Extend(kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPxAuthInfo)),
                                      TQ_ARRAY_OF(PxAuthInfo), kNoMap};
constexpr RecordQuery kPxPhysicalData{kPxPhysical,
                                      TQ_ARRAY_OF(PxPhysical),
                                      {TQ_INDEX(tqsCtxPxPhysical, pszPxAddrType), TQS_JNI_MAP_PX_ADDR_TYPE}};
constexpr RecordQuery kNapDefData{
    kNapDef, TQ_ARRAY_OF(NapDef), {TQ_INDEX(tqsCtxNapDef, pszNapAddrType), TQS_JNI_MAP_NAP_ADDR_TYPE}};
constexpr RecordQuery kNapAuthInfoData{kNapAuthInfo,
                                       TQ_ARRAY_OF(NapAuthInfo),
                                       {TQ_INDEX(tqsCtxNapAuthInfo, pszAuthType), TQS_JNI_MAP_AUTH_TYPE}};
constexpr RecordQuery kValidityData{Extend(kNapDef, TQ_HOP(tqsCtxNapDef, ptValidity)), TQ_ARRAY_OF(Validity),
                                    kNoMap};
constexpr RecordQuery kBootstrapData{kBootstrap, TQ_ARRAY_OF(Bootstrap), kNoMap};
constexpr RecordQuery kVenderConfigData{From(TQ_HOP(tqsClientProvCtx, ptVenderConfig)),
                                        TQ_ARRAY_OF(VendorConfig), kNoMap};
constexpr RecordQuery kApplicationData{kApplication, TQ_ARRAY_OF(Application), kNoMap};
constexpr RecordQuery kAppAddrData{kAppAddr, TQ_ARRAY_OF(AppAddr), kNoMap};
constexpr RecordQuery kAppAuthData{Extend(kApplication, TQ_HOP(tqsCtxApplication, ptAppAuth)),
                                   TQ_ARRAY_OF(AppAuth),
                                   {TQ_INDEX(tqsCtxAppAuth, pszAAuthLevel), TQS_JNI_MAP_AAUTH_LEVEL}};
constexpr RecordQuery kResourceData{Extend(kApplication, TQ_HOP(tqsCtxApplication, ptResource)),
                                    TQ_ARRAY_OF(Resource), kNoMap};
constexpr RecordQuery kRoamingData{Extend(kApplication, TQ_HOP(tqsCtxApplication, ptRoaming)),
                                   TQ_ARRAY_OF(Roaming), kNoMap};
constexpr RecordQuery kWifiData{From(TQ_HOP(tqsClientProvCtx, ptWifi)), TQ_ARRAY_OF(Wifi), kNoMap};

// The array lengths the application relies on.
static_assert(kProxyData.length == 14 && kPxAuthInfoData.length == 4 && kPxPhysicalData.length == 8 &&
                  kNapDefData.length == 29 && kNapAuthInfoData.length == 5 && kValidityData.length == 6 &&
                  kBootstrapData.length == 5 && kVenderConfigData.length == 4 &&
                  kApplicationData.length == 13 && kAppAddrData.length == 3 && kAppAuthData.length == 6 &&
                  kResourceData.length == 9 && kRoamingData.length == 3 && kWifiData.length == 13,
              "String[] lengths");
static_assert(kPxPhysicalData.mapped.field == 2 && kNapDefData.mapped.field == 4 &&
                  kNapAuthInfoData.mapped.field == 0 && kAppAuthData.mapped.field == 0,
              "mapped elements");

// ---------------------------------------------------------------------------
// Push header queries.
// ---------------------------------------------------------------------------

jint HeaderNumber(uint64_t SmlPushHeader::*field) {
    return ptPushHeader == nullptr ? -1 : static_cast<jint>(static_cast<uint32_t>(ptPushHeader->*field));
}

jbyteArray NewByteArrayFrom(JNIEnv *env, const void *bytes, uint32_t length) {
    if (length > static_cast<uint32_t>(INT32_MAX)) return nullptr;
    jbyteArray array = env->NewByteArray(static_cast<jsize>(length));
    if (array != nullptr && length > 0) {
        env->SetByteArrayRegion(array, 0, static_cast<jsize>(length), static_cast<const jbyte *>(bytes));
    }
    return array;
}

}  // namespace

// ---------------------------------------------------------------------------
// XCPCtxParser
// ---------------------------------------------------------------------------

JNIEXPORT jboolean JNICALL jni_tqomacp_parser(JNIEnv *env, jclass, jbyteArray pdu, jlong len, jint mode) {
    jboolean isCopy = JNI_FALSE;
    // A null array has no bytes; the header parser refuses the null PDU.
    jbyte *bytes = pdu == nullptr ? nullptr : env->GetByteArrayElements(pdu, &isCopy);
    const jsize arrayLength = pdu == nullptr ? 0 : env->GetArrayLength(pdu);
    // len goes to the header parser as given (a negative one as its 64-bit
    // pattern); the array's length bounds what it reads.
    const uint64_t readable = bytes == nullptr || arrayLength < 0 ? 0 : static_cast<uint64_t>(arrayLength);
    ptPushHeader = smlpushHdlrParsingWSPHeaderIn(reinterpret_cast<const unsigned char *>(bytes),
                                                 static_cast<uint64_t>(len), readable);
    // The record holds copies only: the elements go back unchanged, or a VM
    // that copied them would keep each copy for the life of the process.
    if (bytes != nullptr) env->ReleaseByteArrayElements(pdu, bytes, JNI_ABORT);
    if (ptPushHeader == nullptr) return JNI_FALSE;
    if (mode == 1) return JNI_TRUE;

    ptCtx = tqsClinetProvWbxmlDecoderMain(ptPushHeader->pBody, static_cast<uint32_t>(ptPushHeader->nBodyLen));
    if (ptCtx != nullptr) return JNI_TRUE;
    // Body rejected: the record goes (its body copy stays allocated, as on
    // every release) and the global is cleared so that nothing reads or frees
    // it again.
    tqsMemFree_debug(ptPushHeader);
    ptPushHeader = nullptr;
    return JNI_FALSE;
}

JNIEXPORT void JNICALL jni_tqomacp_parser_del(JNIEnv *, jclass) {
    if (ptCtx != nullptr) tqsClientProvCtxDelectContext(ptCtx);
    ptCtx = nullptr;
    // The record only: its body copy is deliberately left allocated.
    if (ptPushHeader != nullptr) tqsMemFree_debug(ptPushHeader);
    ptPushHeader = nullptr;
}

JNIEXPORT jint JNICALL jni_tqomacp_GetParserContentType(JNIEnv *, jclass) {
    return HeaderNumber(&SmlPushHeader::nContentType);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetParserHeaderLen(JNIEnv *, jclass) {
    return HeaderNumber(&SmlPushHeader::nHeaderLen);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetParserBodyLen(JNIEnv *, jclass) {
    return HeaderNumber(&SmlPushHeader::nBodyLen);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetParserMACLen(JNIEnv *, jclass) {
    return HeaderNumber(&SmlPushHeader::nMACLen);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetParserSEC(JNIEnv *, jclass) {
    return HeaderNumber(&SmlPushHeader::nSEC);
}

JNIEXPORT jbyteArray JNICALL jni_tqomacp_GetParserMAC(JNIEnv *env, jclass) {
    if (ptPushHeader == nullptr) return nullptr;
    // Never read past szMAC, whatever length the header claims.
    uint32_t length = static_cast<uint32_t>(ptPushHeader->nMACLen);
    if (length > sizeof ptPushHeader->szMAC) length = sizeof ptPushHeader->szMAC;
    return NewByteArrayFrom(env, ptPushHeader->szMAC, length);
}

JNIEXPORT jbyteArray JNICALL jni_tqomacp_GetParserBody(JNIEnv *env, jclass) {
    // No header (Empty state) or no body copy (its allocation failed): null.
    if (ptPushHeader == nullptr || ptPushHeader->pBody == nullptr) return nullptr;
    return NewByteArrayFrom(env, ptPushHeader->pBody, static_cast<uint32_t>(ptPushHeader->nBodyLen));
}

// ---------------------------------------------------------------------------
// XCPCtxPxLogical
// ---------------------------------------------------------------------------

JNIEXPORT jint JNICALL jni_tqomacp_GetPxLogicalCount(JNIEnv *, jclass) {
    return Count<kPxLogicalCount>();
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxDomainCount(JNIEnv *, jclass, jint p) {
    return Count<kPxDomainCount>(p);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxDomainData(JNIEnv *env, jclass, jint p, jint k) {
    return Data<kPxDomainData>(env, p, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAuthInfoCount(JNIEnv *, jclass, jint p) {
    return Count<kPxAuthInfoCount>(p);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxAuthInfoData(JNIEnv *env, jclass, jint p, jint k) {
    return Record<kPxAuthInfoData>(env, p, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPortCount(JNIEnv *, jclass, jint p) {
    return Count<kPxPortCount>(p);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPortData(JNIEnv *env, jclass, jint p, jint k) {
    return Data<kPxPortData>(env, p, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPortServiceCount(JNIEnv *, jclass, jint p, jint k) {
    return Count<kPxPortServiceCount>(p, k);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPortServiceData(JNIEnv *env, jclass, jint p, jint k, jint s) {
    const jint numbers[] = {p, k, s};
    return ServiceData(env, kPxPortService, numbers, s);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalCount(JNIEnv *, jclass, jint p) {
    return Count<kPxPhysicalCount>(p);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxPhysicalData(JNIEnv *env, jclass, jint p, jint k) {
    return Record<kPxPhysicalData>(env, p, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalDomainCount(JNIEnv *, jclass, jint p, jint k) {
    return Count<kPxPhysicalDomainCount>(p, k);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhsicalDomainData(JNIEnv *env, jclass, jint p, jint k, jint d) {
    return Data<kPxPhysicalDomainData>(env, p, k, d);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhsicalNapIdCount(JNIEnv *, jclass, jint p, jint k) {
    return Count<kPxPhysicalNapIdCount>(p, k);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhysicalNapIdData(JNIEnv *env, jclass, jint p, jint k, jint n) {
    return Data<kPxPhysicalNapIdData>(env, p, k, n);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalPortCount(JNIEnv *, jclass, jint p, jint k) {
    return Count<kPxPhysicalPortCount>(p, k);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhysicalPortData(JNIEnv *env, jclass, jint p, jint k, jint t) {
    return Data<kPxPhysicalPortData>(env, p, k, t);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalPortServiceCount(JNIEnv *, jclass, jint p, jint k, jint t) {
    return Count<kPxPhysicalPortServiceCount>(p, k, t);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhysicalPortServiceData(JNIEnv *env, jclass, jint p, jint k,
                                                                   jint t, jint s) {
    const jint numbers[] = {p, k, t, s};
    return ServiceData(env, kPxPhysicalPortService, numbers, s);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetProxyData(JNIEnv *env, jclass, jint p) {
    // The array exists before the context is looked at: no PXLOGICAL p gives
    // fourteen empty strings, not null.
    jobjectArray array = NewRecordArray(env, kProxyData.length);
    const void *record = Select(kProxyData.path, &p);
    if (array != nullptr && record != nullptr) FillRecordArray(env, array, record, kProxyData);
    return array;
}

// ---------------------------------------------------------------------------
// XCPCtxNapDef
// ---------------------------------------------------------------------------

JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapDefCount(JNIEnv *, jclass) {
    return Count<kNapDefCount>();
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxDnsAddrCount(JNIEnv *, jclass, jint n) {
    return Count<kDnsAddrCount>(n);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxDnsAddrData(JNIEnv *env, jclass, jint n, jint k) {
    return Data<kDnsAddrData>(env, n, k);
}

JNIEXPORT void JNICALL jni_tqomacp_SetPxNapDefIndex(JNIEnv *, jclass, jint n) {
    if (ptCtx == nullptr) return;  // no published context: nothing to move
    // Records before n become unreachable (not freed); 0, negative or past the
    // end empties the list.
    jint count = 1;
    while (ptCtx->ptNapDef != nullptr && count != n) {
        ptCtx->ptNapDef = ptCtx->ptNapDef->ptNext;
        ++count;
    }
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxBearerCount(JNIEnv *, jclass, jint n) {
    if (ptCtx == nullptr) return 0;  // no published context: nothing to count
    const void *napDef = SelectAtMost(ptCtx->ptNapDef, kNapDef.hops[0].next, n);
    return napDef == nullptr ? 0 : CountChain(PointerAt(napDef, kBearerList.head), kBearerList.next);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxBearerData(JNIEnv *env, jclass, jint n, jint k) {
    const jint numbers[] = {n, k};
    const tqsCtxStrNode *bearer = static_cast<const tqsCtxStrNode *>(Select(kBearer, numbers));
    if (bearer == nullptr || bearer->pBearer == nullptr) return nullptr;
    const unsigned char code = static_cast<unsigned char>(bearer->pBearer[0]);
    // A bearer given as text answers with the NAPDEF's NAP-ADDRESS instead,
    // whole: no 128-byte staging copy to overrun with a long address.
    if (tqsStrIsAscii(code)) {
        const tqsCtxNapDef *napDef = static_cast<const tqsCtxNapDef *>(Select(kNapDef, numbers));
        return NewJavaString(env, napDef->pszNapAddress);
    }
    return env->NewStringUTF(tqsJniBearerName(code));
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapAuthInfoCount(JNIEnv *, jclass, jint n) {
    return Count<kNapAuthInfoCount>(n);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxNapAuthInfoData(JNIEnv *env, jclass, jint n, jint k) {
    return Record<kNapAuthInfoData>(env, n, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapAuthEntityCount(JNIEnv *, jclass, jint n, jint k) {
    return Count<kNapAuthEntityCount>(n, k);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAuthInfopAuthEntityData(JNIEnv *env, jclass, jint n, jint k,
                                                                   jint e) {
    return Data<kAuthEntityData>(env, n, k, e);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapValidityCount(JNIEnv *, jclass, jint n) {
    return Count<kNapValidityCount>(n);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxValidityData(JNIEnv *env, jclass, jint n, jint) {
    // n selects the NAPDEF and then its VALIDITY record; k is not used.
    return Record<kValidityData>(env, n, n);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxNapDefData(JNIEnv *env, jclass, jint n) {
    return Record<kNapDefData>(env, n);
}

// ---------------------------------------------------------------------------
// XCPCtxBootstrap
// ---------------------------------------------------------------------------

JNIEXPORT jint JNICALL jni_tqomacp_GetPxBootstrapCount(JNIEnv *, jclass) {
    return Count<kBootstrapCount>();
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxProxyIdCount(JNIEnv *, jclass, jint b) {
    return Count<kProxyIdCount>(b);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxProxyIdData(JNIEnv *env, jclass, jint b, jint k) {
    return Data<kProxyIdData>(env, b, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxNetworkCount(JNIEnv *, jclass, jint b) {
    return Count<kNetworkCount>(b);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxNetworkData(JNIEnv *env, jclass, jint b, jint k) {
    return Data<kNetworkData>(env, b, k);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetBootstrapData(JNIEnv *env, jclass, jint b) {
    return Record<kBootstrapData>(env, b);
}

// ---------------------------------------------------------------------------
// XCPCtxClientIdentity, XCPCtxVendorConfig
// ---------------------------------------------------------------------------

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxClientIdentityData(JNIEnv *env, jclass) {
    // No published context reads like an empty CLIENTIDENTITY slot.
    if (ptCtx == nullptr || ptCtx->ptClientIdent == nullptr) return nullptr;
    return NewJavaString(env, ptCtx->ptClientIdent->pszClientId);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxVenderConfigCount(JNIEnv *, jclass) {
    return Count<kVenderConfigCount>();
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxVenderConfigData(JNIEnv *env, jclass, jint v) {
    return Record<kVenderConfigData>(env, v);
}

// ---------------------------------------------------------------------------
// XCPCtxApplication
// ---------------------------------------------------------------------------

JNIEXPORT jint JNICALL jni_tqomacp_GetPxApplicationCount(JNIEnv *, jclass) {
    return Count<kApplicationCount>();
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxToProxyCount(JNIEnv *, jclass, jint a) {
    return Count<kToProxyCount>(a);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxToProxyData(JNIEnv *env, jclass, jint a, jint k) {
    return Data<kToProxyData>(env, a, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapIdCount(JNIEnv *, jclass, jint a) {
    return Count<kNapIdCount>(a);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxNapIdData(JNIEnv *env, jclass, jint a, jint k) {
    return Data<kNapIdData>(env, a, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxToAddrCount(JNIEnv *, jclass, jint a) {
    return Count<kToAddrCount>(a);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxToAddrData(JNIEnv *env, jclass, jint a, jint k) {
    return Data<kToAddrData>(env, a, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppAddrCount(JNIEnv *, jclass, jint a) {
    return Count<kAppAddrCount>(a);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxAppAddrData(JNIEnv *env, jclass, jint a, jint k) {
    return Record<kAppAddrData>(env, a, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppPortCount(JNIEnv *, jclass, jint a, jint k) {
    return Count<kAppPortCount>(a, k);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAppPortData(JNIEnv *env, jclass, jint a, jint k, jint t) {
    return Data<kAppPortData>(env, a, k, t);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxServiceCount(JNIEnv *, jclass, jint a, jint k, jint t) {
    return Count<kServiceCount>(a, k, t);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxServiceData(JNIEnv *env, jclass, jint a, jint k, jint t, jint s) {
    return Data<kServiceData>(env, a, k, t, s);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppAuthCount(JNIEnv *, jclass, jint a) {
    return Count<kAppAuthCount>(a);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxAppAuthData(JNIEnv *env, jclass, jint a, jint k) {
    return Record<kAppAuthData>(env, a, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxResourceCount(JNIEnv *, jclass, jint a) {
    return Count<kResourceCount>(a);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxResourceData(JNIEnv *env, jclass, jint a, jint k) {
    return Record<kResourceData>(env, a, k);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetApplicationData(JNIEnv *env, jclass, jint a) {
    return Record<kApplicationData>(env, a);
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxRoamingData(JNIEnv *env, jclass) {
    // Only the first ROAMING of the first APPLICATION is ever visible.
    return Record<kRoamingData>(env, 1, 1);
}

// ---------------------------------------------------------------------------
// XCPCtxAccess
// ---------------------------------------------------------------------------

JNIEXPORT jint JNICALL jni_tqomacp_GetPxCtxAccessCount(JNIEnv *, jclass) {
    return Count<kAccessCount>();
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxRuleCount(JNIEnv *, jclass, jint r) {
    return Count<kRuleCount>(r);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxRuleData(JNIEnv *env, jclass, jint r, jint k) {
    return Data<kRuleData>(env, r, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppIdCount(JNIEnv *, jclass, jint r) {
    return Count<kAppIdCount>(r);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAppIdData(JNIEnv *env, jclass, jint r, jint k) {
    return Data<kAppIdData>(env, r, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxPortNbrCount(JNIEnv *, jclass, jint r) {
    return Count<kPortNbrCount>(r);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPortNbrData(JNIEnv *env, jclass, jint r, jint k) {
    return Data<kPortNbrData>(env, r, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAccessDomainCount(JNIEnv *, jclass, jint r) {
    return Count<kAccessDomainCount>(r);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAccessDomainData(JNIEnv *env, jclass, jint r, jint k) {
    return Data<kAccessDomainData>(env, r, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAccessToNapIdCount(JNIEnv *, jclass, jint r) {
    return Count<kAccessToNapIdCount>(r);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAccessToNapIdData(JNIEnv *env, jclass, jint r, jint k) {
    return Data<kAccessToNapIdData>(env, r, k);
}

JNIEXPORT jint JNICALL jni_tqomacp_GetPxAccessToProxyCount(JNIEnv *, jclass, jint r) {
    return Count<kAccessToProxyCount>(r);
}

JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAccessToProxyData(JNIEnv *env, jclass, jint r, jint k) {
    return Data<kAccessToProxyData>(env, r, k);
}

// ---------------------------------------------------------------------------
// XCPCtxWifi
// ---------------------------------------------------------------------------

JNIEXPORT jint JNICALL jni_tqomacp_GetPxWifiCount(JNIEnv *, jclass) {
    return Count<kWifiCount>();
}

JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxWifiData(JNIEnv *env, jclass, jint w) {
    return Record<kWifiData>(env, w);
}

// ---------------------------------------------------------------------------
// Registration
// ---------------------------------------------------------------------------

namespace {

// JNI type descriptors of the C types the natives use.
template <class T>
struct Descriptor;
template <>
struct Descriptor<void> {
    static constexpr const char *text = "V";
};
template <>
struct Descriptor<jboolean> {
    static constexpr const char *text = "Z";
};
template <>
struct Descriptor<jint> {
    static constexpr const char *text = "I";
};
template <>
struct Descriptor<jlong> {
    static constexpr const char *text = "J";
};
template <>
struct Descriptor<jbyteArray> {
    static constexpr const char *text = "[B";
};
template <>
struct Descriptor<jstring> {
    static constexpr const char *text = "Ljava/lang/String;";
};
template <>
struct Descriptor<jobjectArray> {
    static constexpr const char *text = "[Ljava/lang/String;";
};

// Consumes `part` from signature at *at; false on the first difference.
constexpr bool Take(const char *signature, size_t *at, const char *part) {
    for (; *part != '\0'; ++part, ++*at) {
        if (signature[*at] != *part) return false;
    }
    return true;
}

// True when `signature` describes a static native of this C type.
template <class R, class... A>
constexpr bool Describes(R (*)(JNIEnv *, jclass, A...), const char *signature) {
    size_t at = 0;
    return Take(signature, &at, "(") && (Take(signature, &at, Descriptor<A>::text) && ...) &&
           Take(signature, &at, ")") && Take(signature, &at, Descriptor<R>::text) && signature[at] == '\0';
}

// Per class: Java method name (after "tqomacp_") and signature, in
// registration order. The implementation is jni_tqomacp_ + the same name.
#define TQ_PARSER_NATIVES(X)       \
    X(parser, "([BJI)Z")           \
    X(parser_del, "()V")           \
    X(GetParserContentType, "()I") \
    X(GetParserHeaderLen, "()I")   \
    X(GetParserBodyLen, "()I")     \
    X(GetParserMACLen, "()I")      \
    X(GetParserSEC, "()I")         \
    X(GetParserMAC, "()[B")        \
    X(GetParserBody, "()[B")

#define TQ_PX_LOGICAL_NATIVES(X)                                \
    X(GetPxLogicalCount, "()I")                                 \
    X(GetPxDomainCount, "(I)I")                                 \
    X(GetPxDomainData, "(II)Ljava/lang/String;")                \
    X(GetPxAuthInfoCount, "(I)I")                               \
    X(GetPxAuthInfoData, "(II)[Ljava/lang/String;")             \
    X(GetPxPortCount, "(I)I")                                   \
    X(GetPxPortData, "(II)Ljava/lang/String;")                  \
    X(GetPxPortServiceCount, "(II)I")                           \
    X(GetPxPortServiceData, "(III)Ljava/lang/String;")          \
    X(GetPxPhysicalCount, "(I)I")                               \
    X(GetPxPhysicalData, "(II)[Ljava/lang/String;")             \
    X(GetPxPhysicalDomainCount, "(II)I")                        \
    X(GetPxPhsicalDomainData, "(III)Ljava/lang/String;")        \
    X(GetPxPhsicalNapIdCount, "(II)I")                          \
    X(GetPxPhysicalNapIdData, "(III)Ljava/lang/String;")        \
    X(GetPxPhysicalPortCount, "(II)I")                          \
    X(GetPxPhysicalPortData, "(III)Ljava/lang/String;")         \
    X(GetPxPhysicalPortServiceCount, "(III)I")                  \
    X(GetPxPhysicalPortServiceData, "(IIII)Ljava/lang/String;") \
    X(GetProxyData, "(I)[Ljava/lang/String;")

#define TQ_NAP_DEF_NATIVES(X)                                  \
    X(GetPxNapDefCount, "()I")                                 \
    X(GetPxDnsAddrCount, "(I)I")                               \
    X(GetPxDnsAddrData, "(II)Ljava/lang/String;")              \
    X(SetPxNapDefIndex, "(I)V")                                \
    X(GetPxBearerCount, "(I)I")                                \
    X(GetPxBearerData, "(II)Ljava/lang/String;")               \
    X(GetPxNapAuthInfoCount, "(I)I")                           \
    X(GetPxNapAuthInfoData, "(II)[Ljava/lang/String;")         \
    X(GetPxNapAuthEntityCount, "(II)I")                        \
    X(GetPxAuthInfopAuthEntityData, "(III)Ljava/lang/String;") \
    X(GetPxNapValidityCount, "(I)I")                           \
    X(GetPxValidityData, "(II)[Ljava/lang/String;")            \
    X(GetPxNapDefData, "(I)[Ljava/lang/String;")

#define TQ_BOOTSTRAP_NATIVES(X)                   \
    X(GetPxBootstrapCount, "()I")                 \
    X(GetPxProxyIdCount, "(I)I")                  \
    X(GetPxProxyIdData, "(II)Ljava/lang/String;") \
    X(GetPxNetworkCount, "(I)I")                  \
    X(GetPxNetworkData, "(II)Ljava/lang/String;") \
    X(GetBootstrapData, "(I)[Ljava/lang/String;")

#define TQ_CLIENT_IDENTITY_NATIVES(X) X(GetPxClientIdentityData, "()Ljava/lang/String;")

#define TQ_VENDOR_CONFIG_NATIVES(X)  \
    X(GetPxVenderConfigCount, "()I") \
    X(GetPxVenderConfigData, "(I)[Ljava/lang/String;")

#define TQ_APPLICATION_NATIVES(X)                   \
    X(GetPxApplicationCount, "()I")                 \
    X(GetPxToProxyCount, "(I)I")                    \
    X(GetPxToProxyData, "(II)Ljava/lang/String;")   \
    X(GetPxNapIdCount, "(I)I")                      \
    X(GetPxNapIdData, "(II)Ljava/lang/String;")     \
    X(GetPxToAddrCount, "(I)I")                     \
    X(GetPxToAddrData, "(II)Ljava/lang/String;")    \
    X(GetPxAppAddrCount, "(I)I")                    \
    X(GetPxAppAddrData, "(II)[Ljava/lang/String;")  \
    X(GetPxAppPortCount, "(II)I")                   \
    X(GetPxAppPortData, "(III)Ljava/lang/String;")  \
    X(GetPxServiceCount, "(III)I")                  \
    X(GetPxServiceData, "(IIII)Ljava/lang/String;") \
    X(GetPxAppAuthCount, "(I)I")                    \
    X(GetPxAppAuthData, "(II)[Ljava/lang/String;")  \
    X(GetPxResourceCount, "(I)I")                   \
    X(GetPxResourceData, "(II)[Ljava/lang/String;") \
    X(GetApplicationData, "(I)[Ljava/lang/String;") \
    X(GetPxRoamingData, "()[Ljava/lang/String;")

#define TQ_ACCESS_NATIVES(X)                            \
    X(GetPxCtxAccessCount, "()I")                       \
    X(GetPxRuleCount, "(I)I")                           \
    X(GetPxRuleData, "(II)Ljava/lang/String;")          \
    X(GetPxAppIdCount, "(I)I")                          \
    X(GetPxAppIdData, "(II)Ljava/lang/String;")         \
    X(GetPxPortNbrCount, "(I)I")                        \
    X(GetPxPortNbrData, "(II)Ljava/lang/String;")       \
    X(GetPxAccessDomainCount, "(I)I")                   \
    X(GetPxAccessDomainData, "(II)Ljava/lang/String;")  \
    X(GetPxAccessToNapIdCount, "(I)I")                  \
    X(GetPxAccessToNapIdData, "(II)Ljava/lang/String;") \
    X(GetPxAccessToProxyCount, "(I)I")                  \
    X(GetPxAccessToProxyData, "(II)Ljava/lang/String;")

#define TQ_WIFI_NATIVES(X)   \
    X(GetPxWifiCount, "()I") \
    X(GetPxWifiData, "(I)[Ljava/lang/String;")

// The JDK's JNINativeMethod holds non-const char pointers; the VM never
// writes through them.
#define TQ_ENTRY(name, signature)                                         \
    {const_cast<char *>("tqomacp_" #name), const_cast<char *>(signature), \
     reinterpret_cast<void *>(&jni_tqomacp_##name)},
#define TQ_CHECK(name, signature) \
    static_assert(Describes(&jni_tqomacp_##name, signature), "signature of tqomacp_" #name);
#define TQ_COUNT(name, signature) +1

#define TQ_CLASS(list, javaClass, expected)                                              \
    list(TQ_CHECK) static_assert(0 list(TQ_COUNT) == (expected), #javaClass " natives"); \
    const JNINativeMethod k##javaClass##Methods[] = {list(TQ_ENTRY)};

TQ_CLASS(TQ_PARSER_NATIVES, XCPCtxParser, 9)
TQ_CLASS(TQ_PX_LOGICAL_NATIVES, XCPCtxPxLogical, 20)
TQ_CLASS(TQ_NAP_DEF_NATIVES, XCPCtxNapDef, 13)
TQ_CLASS(TQ_BOOTSTRAP_NATIVES, XCPCtxBootstrap, 6)
TQ_CLASS(TQ_CLIENT_IDENTITY_NATIVES, XCPCtxClientIdentity, 1)
TQ_CLASS(TQ_VENDOR_CONFIG_NATIVES, XCPCtxVendorConfig, 2)
TQ_CLASS(TQ_APPLICATION_NATIVES, XCPCtxApplication, 19)
TQ_CLASS(TQ_ACCESS_NATIVES, XCPCtxAccess, 13)
TQ_CLASS(TQ_WIFI_NATIVES, XCPCtxWifi, 2)

struct NativeClass {
    const char *name;
    const JNINativeMethod *methods;
    int count;
};

#define TQ_NATIVE_CLASS(javaClass)                                                   \
    NativeClass {                                                                    \
        "com/tqomacp/eng/parser/" #javaClass, k##javaClass##Methods,                 \
            static_cast<int>(sizeof k##javaClass##Methods / sizeof(JNINativeMethod)) \
    }

// Registration order.
const NativeClass kNativeClasses[] = {
    TQ_NATIVE_CLASS(XCPCtxParser),         TQ_NATIVE_CLASS(XCPCtxPxLogical),
    TQ_NATIVE_CLASS(XCPCtxNapDef),         TQ_NATIVE_CLASS(XCPCtxBootstrap),
    TQ_NATIVE_CLASS(XCPCtxClientIdentity), TQ_NATIVE_CLASS(XCPCtxVendorConfig),
    TQ_NATIVE_CLASS(XCPCtxApplication),    TQ_NATIVE_CLASS(XCPCtxAccess),
    TQ_NATIVE_CLASS(XCPCtxWifi),
};

constexpr int kNativeCount =
    0 TQ_PARSER_NATIVES(TQ_COUNT) TQ_PX_LOGICAL_NATIVES(TQ_COUNT) TQ_NAP_DEF_NATIVES(TQ_COUNT)
        TQ_BOOTSTRAP_NATIVES(TQ_COUNT) TQ_CLIENT_IDENTITY_NATIVES(TQ_COUNT) TQ_VENDOR_CONFIG_NATIVES(TQ_COUNT)
            TQ_APPLICATION_NATIVES(TQ_COUNT) TQ_ACCESS_NATIVES(TQ_COUNT) TQ_WIFI_NATIVES(TQ_COUNT);
static_assert(kNativeCount == 85, "85 natives in all");

}  // namespace

int registerNativeMethods(JNIEnv *env, const char *className, const JNINativeMethod *methods, int count) {
    jclass clazz = env->FindClass(className);
    if (clazz == nullptr) return 0;
    return env->RegisterNatives(clazz, methods, count) < 0 ? 0 : 1;
}

int registerNatives(JNIEnv *env) {
    for (const NativeClass &c : kNativeClasses) {
        if (!registerNativeMethods(env, c.name, c.methods, c.count)) return 0;
    }
    return 1;
}

JNIEXPORT jint JNICALL JNI_OnLoad(JavaVM *vm, void *) {
    jint result = -1;
    JNIEnv *env = nullptr;
    if (vm->GetEnv(reinterpret_cast<void **>(&env), JNI_VERSION_1_4) != JNI_OK) return result;
    if (registerNatives(env)) result = JNI_VERSION_1_4;
    return result;
}
