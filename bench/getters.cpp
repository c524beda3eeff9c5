#include "getters.h"

#include "minimal_jni.h"
#include "tqomacp_jni.h"

namespace bench {
namespace {

// Calls a native with the environment and a null receiver, counting the call.
#define CALL(name, ...) (++calls, jni_tqomacp_##name(env, nullptr __VA_OPT__(, ) __VA_ARGS__))

// `for (i = 1..count)`, the 1-based record numbers the Java side passes.
#define EACH(i, count) for (jint i = 1, i##_n = (count); i <= i##_n; ++i)

}  // namespace

size_t ReadWholeContext() {
    JNIEnv *env = MinimalEnv();
    size_t calls = 0;

    EACH(p, CALL(GetPxLogicalCount)) {
        CALL(GetProxyData, p);
        EACH(d, CALL(GetPxDomainCount, p)) CALL(GetPxDomainData, p, d);
        EACH(k, CALL(GetPxAuthInfoCount, p)) CALL(GetPxAuthInfoData, p, k);
        EACH(k, CALL(GetPxPortCount, p)) {
            CALL(GetPxPortData, p, k);
            EACH(s, CALL(GetPxPortServiceCount, p, k)) CALL(GetPxPortServiceData, p, k, s);
        }
        EACH(k, CALL(GetPxPhysicalCount, p)) {
            CALL(GetPxPhysicalData, p, k);
            EACH(d, CALL(GetPxPhysicalDomainCount, p, k)) CALL(GetPxPhsicalDomainData, p, k, d);
            EACH(n, CALL(GetPxPhsicalNapIdCount, p, k)) CALL(GetPxPhysicalNapIdData, p, k, n);
            EACH(t, CALL(GetPxPhysicalPortCount, p, k)) {
                CALL(GetPxPhysicalPortData, p, k, t);
                EACH(s, CALL(GetPxPhysicalPortServiceCount, p, k, t))
                CALL(GetPxPhysicalPortServiceData, p, k, t, s);
            }
        }
    }
    EACH(n, CALL(GetPxNapDefCount)) {
        CALL(GetPxNapDefData, n);
        EACH(k, CALL(GetPxDnsAddrCount, n)) CALL(GetPxDnsAddrData, n, k);
        EACH(k, CALL(GetPxBearerCount, n)) CALL(GetPxBearerData, n, k);
        EACH(k, CALL(GetPxNapAuthInfoCount, n)) {
            CALL(GetPxNapAuthInfoData, n, k);
            EACH(e, CALL(GetPxNapAuthEntityCount, n, k)) CALL(GetPxAuthInfopAuthEntityData, n, k, e);
        }
        EACH(k, CALL(GetPxNapValidityCount, n)) CALL(GetPxValidityData, n, k);
    }
    EACH(b, CALL(GetPxBootstrapCount)) {
        CALL(GetBootstrapData, b);
        EACH(k, CALL(GetPxProxyIdCount, b)) CALL(GetPxProxyIdData, b, k);
        EACH(k, CALL(GetPxNetworkCount, b)) CALL(GetPxNetworkData, b, k);
    }
    CALL(GetPxClientIdentityData);
    EACH(v, CALL(GetPxVenderConfigCount)) CALL(GetPxVenderConfigData, v);
    const jint applications = CALL(GetPxApplicationCount);
    EACH(a, applications) {
        CALL(GetApplicationData, a);
        EACH(k, CALL(GetPxToProxyCount, a)) CALL(GetPxToProxyData, a, k);
        EACH(k, CALL(GetPxNapIdCount, a)) CALL(GetPxNapIdData, a, k);
        EACH(k, CALL(GetPxToAddrCount, a)) CALL(GetPxToAddrData, a, k);
        EACH(k, CALL(GetPxAppAddrCount, a)) {
            CALL(GetPxAppAddrData, a, k);
            EACH(t, CALL(GetPxAppPortCount, a, k)) {
                CALL(GetPxAppPortData, a, k, t);
                EACH(s, CALL(GetPxServiceCount, a, k, t)) CALL(GetPxServiceData, a, k, t, s);
            }
        }
        EACH(k, CALL(GetPxAppAuthCount, a)) CALL(GetPxAppAuthData, a, k);
        EACH(k, CALL(GetPxResourceCount, a)) CALL(GetPxResourceData, a, k);
    }
    if (applications > 0) CALL(GetPxRoamingData);
    EACH(r, CALL(GetPxCtxAccessCount)) {
        EACH(k, CALL(GetPxRuleCount, r)) CALL(GetPxRuleData, r, k);
        EACH(k, CALL(GetPxAppIdCount, r)) CALL(GetPxAppIdData, r, k);
        EACH(k, CALL(GetPxPortNbrCount, r)) CALL(GetPxPortNbrData, r, k);
        EACH(k, CALL(GetPxAccessDomainCount, r)) CALL(GetPxAccessDomainData, r, k);
        EACH(k, CALL(GetPxAccessToNapIdCount, r)) CALL(GetPxAccessToNapIdData, r, k);
        EACH(k, CALL(GetPxAccessToProxyCount, r)) CALL(GetPxAccessToProxyData, r, k);
    }
    EACH(w, CALL(GetPxWifiCount)) CALL(GetPxWifiData, w);
    return calls;
}

}  // namespace bench
