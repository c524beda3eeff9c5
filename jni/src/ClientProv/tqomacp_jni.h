// Java binding: the parse session, the 85 natives of com.tqomacp.eng.parser
// and their registration when the Java VM loads the library. The only public
// header that includes jni.h; the core's headers never do.
//
// Every native is jni_tqomacp_ + the Java method name without its "tqomacp_"
// prefix; it ignores its receiver. Record numbers are 1-based, outermost first.
// Count getters answer 0 and data getters null when there is nothing to read.
// The library is single-threaded: the caller serialises every call.
#ifndef TQOMACP_JNI_H
#define TQOMACP_JNI_H

#include <jni.h>

#include "tqsClientProvCtx.h"

#ifdef __cplusplus
extern "C" {
#endif

// The context of the last successful full parse, null when there is none.
// Owned by the session; released by jni_tqomacp_parser_del.
extern JNIEXPORT tqsClientProvCtx *ptCtx;

// FindClass + RegisterNatives for one class: 1 on success, 0 when the class is
// missing or the VM refuses the table (its pending exception is left alone).
int registerNativeMethods(JNIEnv *env, const char *className, const JNINativeMethod *methods, int count);
// Registers the nine classes in their fixed order, stopping at the first
// failure (earlier classes stay registered): 1 when all nine succeeded.
int registerNatives(JNIEnv *env);

// XCPCtxParser
JNIEXPORT jboolean JNICALL jni_tqomacp_parser(JNIEnv *env, jclass clazz, jbyteArray pdu, jlong len,
                                              jint mode);
JNIEXPORT void JNICALL jni_tqomacp_parser_del(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetParserContentType(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetParserHeaderLen(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetParserBodyLen(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetParserMACLen(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetParserSEC(JNIEnv *env, jclass clazz);
JNIEXPORT jbyteArray JNICALL jni_tqomacp_GetParserMAC(JNIEnv *env, jclass clazz);
JNIEXPORT jbyteArray JNICALL jni_tqomacp_GetParserBody(JNIEnv *env, jclass clazz);

// XCPCtxPxLogical
JNIEXPORT jint JNICALL jni_tqomacp_GetPxLogicalCount(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxDomainCount(JNIEnv *env, jclass clazz, jint p);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxDomainData(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAuthInfoCount(JNIEnv *env, jclass clazz, jint p);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxAuthInfoData(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPortCount(JNIEnv *env, jclass clazz, jint p);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPortData(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPortServiceCount(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPortServiceData(JNIEnv *env, jclass clazz, jint p, jint k, jint s);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalCount(JNIEnv *env, jclass clazz, jint p);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxPhysicalData(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalDomainCount(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhsicalDomainData(JNIEnv *env, jclass clazz, jint p, jint k,
                                                             jint d);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhsicalNapIdCount(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhysicalNapIdData(JNIEnv *env, jclass clazz, jint p, jint k,
                                                             jint n);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalPortCount(JNIEnv *env, jclass clazz, jint p, jint k);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhysicalPortData(JNIEnv *env, jclass clazz, jint p, jint k,
                                                            jint t);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPhysicalPortServiceCount(JNIEnv *env, jclass clazz, jint p, jint k,
                                                                 jint t);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPhysicalPortServiceData(JNIEnv *env, jclass clazz, jint p, jint k,
                                                                   jint t, jint s);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetProxyData(JNIEnv *env, jclass clazz, jint p);

// XCPCtxNapDef
JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapDefCount(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxDnsAddrCount(JNIEnv *env, jclass clazz, jint n);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxDnsAddrData(JNIEnv *env, jclass clazz, jint n, jint k);
JNIEXPORT void JNICALL jni_tqomacp_SetPxNapDefIndex(JNIEnv *env, jclass clazz, jint n);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxBearerCount(JNIEnv *env, jclass clazz, jint n);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxBearerData(JNIEnv *env, jclass clazz, jint n, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapAuthInfoCount(JNIEnv *env, jclass clazz, jint n);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxNapAuthInfoData(JNIEnv *env, jclass clazz, jint n, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapAuthEntityCount(JNIEnv *env, jclass clazz, jint n, jint k);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAuthInfopAuthEntityData(JNIEnv *env, jclass clazz, jint n, jint k,
                                                                   jint e);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapValidityCount(JNIEnv *env, jclass clazz, jint n);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxValidityData(JNIEnv *env, jclass clazz, jint n, jint k);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxNapDefData(JNIEnv *env, jclass clazz, jint n);

// XCPCtxBootstrap
JNIEXPORT jint JNICALL jni_tqomacp_GetPxBootstrapCount(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxProxyIdCount(JNIEnv *env, jclass clazz, jint b);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxProxyIdData(JNIEnv *env, jclass clazz, jint b, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxNetworkCount(JNIEnv *env, jclass clazz, jint b);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxNetworkData(JNIEnv *env, jclass clazz, jint b, jint k);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetBootstrapData(JNIEnv *env, jclass clazz, jint b);

// XCPCtxClientIdentity
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxClientIdentityData(JNIEnv *env, jclass clazz);

// XCPCtxVendorConfig
JNIEXPORT jint JNICALL jni_tqomacp_GetPxVenderConfigCount(JNIEnv *env, jclass clazz);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxVenderConfigData(JNIEnv *env, jclass clazz, jint v);

// XCPCtxApplication
JNIEXPORT jint JNICALL jni_tqomacp_GetPxApplicationCount(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxToProxyCount(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxToProxyData(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxNapIdCount(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxNapIdData(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxToAddrCount(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxToAddrData(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppAddrCount(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxAppAddrData(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppPortCount(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAppPortData(JNIEnv *env, jclass clazz, jint a, jint k, jint t);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxServiceCount(JNIEnv *env, jclass clazz, jint a, jint k, jint t);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxServiceData(JNIEnv *env, jclass clazz, jint a, jint k, jint t,
                                                       jint s);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppAuthCount(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxAppAuthData(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxResourceCount(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxResourceData(JNIEnv *env, jclass clazz, jint a, jint k);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetApplicationData(JNIEnv *env, jclass clazz, jint a);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxRoamingData(JNIEnv *env, jclass clazz);

// XCPCtxAccess
JNIEXPORT jint JNICALL jni_tqomacp_GetPxCtxAccessCount(JNIEnv *env, jclass clazz);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxRuleCount(JNIEnv *env, jclass clazz, jint r);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxRuleData(JNIEnv *env, jclass clazz, jint r, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAppIdCount(JNIEnv *env, jclass clazz, jint r);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAppIdData(JNIEnv *env, jclass clazz, jint r, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxPortNbrCount(JNIEnv *env, jclass clazz, jint r);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxPortNbrData(JNIEnv *env, jclass clazz, jint r, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAccessDomainCount(JNIEnv *env, jclass clazz, jint r);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAccessDomainData(JNIEnv *env, jclass clazz, jint r, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAccessToNapIdCount(JNIEnv *env, jclass clazz, jint r);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAccessToNapIdData(JNIEnv *env, jclass clazz, jint r, jint k);
JNIEXPORT jint JNICALL jni_tqomacp_GetPxAccessToProxyCount(JNIEnv *env, jclass clazz, jint r);
JNIEXPORT jstring JNICALL jni_tqomacp_GetPxAccessToProxyData(JNIEnv *env, jclass clazz, jint r, jint k);

// XCPCtxWifi
JNIEXPORT jint JNICALL jni_tqomacp_GetPxWifiCount(JNIEnv *env, jclass clazz);
JNIEXPORT jobjectArray JNICALL jni_tqomacp_GetPxWifiData(JNIEnv *env, jclass clazz, jint w);

#ifdef __cplusplus
}
#endif

#endif  // TQOMACP_JNI_H
