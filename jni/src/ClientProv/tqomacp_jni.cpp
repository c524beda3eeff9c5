#include "tqomacp_jni.h"

#include "tqomacp_jni_names.h"

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

#include <type_traits>

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"
#include "tqsstring.h"

tqsClientProvCtx *ptCtx = nullptr;

namespace {

// Header record of the last parse; private to the session.
SmlPushHeader *ptPushHeader = nullptr;

// ---------------------------------------------------------------------------
// Java strings. NewStringUTF wants modified UTF-8 (Android's checked JNI
// aborts on anything else), while the context holds raw bytes: texts, and
// token code bytes such as 0x85. Modified UTF-8 passes unchanged, a 4-byte
// UTF-8 sequence becomes its surrogate pair, and every other byte becomes the
// char of the same value.
// ---------------------------------------------------------------------------

inline bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0u) == 0x80u;
}

// Length (1 to 3) of the modified UTF-8 sequence at s: a byte below 0x80,
// C0 80 (U+0000), or a shortest 2- or 3-byte form, surrogates included; 0
// when none starts there. Never reads past the terminating zero, which is no
// continuation byte.
uint32_t ModifiedUtf8Length(const unsigned char *s) {
    const unsigned char lead = s[0];
    if (lead < 0x80) return 1;
    if (lead == 0xC0) return s[1] == 0x80 ? 2 : 0;
    if (lead >= 0xC2 && lead <= 0xDF) return IsContinuation(s[1]) ? 2 : 0;
    if (lead == 0xE0) return s[1] >= 0xA0 && s[1] <= 0xBF && IsContinuation(s[2]) ? 3 : 0;
    if (lead >= 0xE1 && lead <= 0xEF) return IsContinuation(s[1]) && IsContinuation(s[2]) ? 3 : 0;
    return 0;
}

// Code point of the shortest 4-byte UTF-8 sequence at s (U+10000 to
// U+10FFFF), or 0 when none starts there.
uint32_t SupplementaryCodePoint(const unsigned char *s) {
    if (s[0] < 0xF0 || s[0] > 0xF4) return 0;
    uint32_t value = s[0] & 0x07u;
    for (int i = 1; i < 4; ++i) {
        if (!IsContinuation(s[i])) return 0;
        value = (value << 6) | (s[i] & 0x3Fu);
    }
    return value >= 0x10000 && value <= 0x10FFFF ? value : 0;
}

// Appends one UTF-16 unit of U+0080 or above in modified UTF-8.
unsigned char *PutUnit(unsigned char *out, uint32_t unit) {
    if (unit < 0x800) {
        *out++ = static_cast<unsigned char>(0xC0 | (unit >> 6));
        *out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
    } else {
        *out++ = static_cast<unsigned char>(0xE0 | (unit >> 12));
        *out++ = static_cast<unsigned char>(0x80 | ((unit >> 6) & 0x3F));
        *out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
    }
    return out;
}

// Converts length bytes of text into out (room for 2 * length + 1).
void ToModifiedUtf8(const unsigned char *text, size_t length, unsigned char *out) {
    for (size_t i = 0; i < length;) {
        uint32_t n = ModifiedUtf8Length(text + i);
        if (n != 0) {
            memcpy(out, text + i, n);
            out += n;
            i += n;
        } else if (uint32_t codePoint = SupplementaryCodePoint(text + i); codePoint != 0) {
            codePoint -= 0x10000;
            out = PutUnit(out, 0xD800 + (codePoint >> 10));
            out = PutUnit(out, 0xDC00 + (codePoint & 0x3FF));
            i += 4;
        } else {
            out = PutUnit(out, text[i]);
            i += 1;
        }
    }
    *out = 0;
}

// Room for the converted texts of stored values up to 255 bytes.
constexpr size_t kConversionStack = 512;

// A new Java string from a stored value; null for a null value.
jstring NewJavaString(JNIEnv *env, const char *value) {
    if (value == nullptr) return nullptr;
    const unsigned char *text = reinterpret_cast<const unsigned char *>(value);
    bool plain = true;
    size_t length = 0;
    while (text[length] != 0) {
        const uint32_t n = ModifiedUtf8Length(text + length);
        plain = plain && n != 0;
        length += n == 0 ? 1 : n;
    }
    if (plain) return env->NewStringUTF(value);
    // Each input byte yields at most two output bytes (a stray byte: 2; a
    // 4-byte sequence: two 3-byte surrogates). The buffer is scratch of one
    // call, outside the tracker, so that a getter leaves no trace in it.
    // Only a 32-bit size could wrap; such a text gives null, not a short buffer.
    if (length > (SIZE_MAX - 1) / 2) return nullptr;
    const size_t size = 2 * length + 1;
    unsigned char onStack[kConversionStack];
    unsigned char *converted = size <= sizeof onStack ? onStack : static_cast<unsigned char *>(malloc(size));
    if (converted == nullptr) return nullptr;
    ToModifiedUtf8(text, length, converted);
    jstring result = env->NewStringUTF(reinterpret_cast<const char *>(converted));
    if (converted != onStack) free(converted);
    return result;
}

// ---------------------------------------------------------------------------
// Record walks. Every context record is a run of pointer fields; chains link
// through their last field, ptNext. A path says, per int argument, which list
// head to take from the current record and where that list's records keep
// ptNext; one walk serves every getter.
// ---------------------------------------------------------------------------

struct Hop {
    uint16_t head;  // offset of the list head in the current record
    uint16_t next;  // offset of ptNext in the records of that list
};

// The list field `field` of Parent; the child type comes from the field itself.
#define TQ_HOP(Parent, field)                                                                     \
    Hop {                                                                                         \
        offsetof(Parent, field), offsetof(std::remove_pointer_t<decltype(Parent::field)>, ptNext) \
    }
#define TQ_FIELD(Record, field) static_cast<uint16_t>(offsetof(Record, field))

constexpr int kMaxDepth = 4;

// One selection per int argument, starting at the root context.
struct Path {
    int depth;
    Hop hops[kMaxDepth];
};

constexpr Path Extend(Path path, Hop hop) {
    path.hops[path.depth++] = hop;
    return path;
}

constexpr Path From(Hop hop) {
    return Extend(Path{0, {}}, hop);
}

const void *PointerAt(const void *record, uint16_t offset) {
    const void *value;
    memcpy(&value, static_cast<const char *>(record) + offset, sizeof value);
    return value;
}

const char *StringAt(const void *record, uint16_t offset) {
    return static_cast<const char *>(PointerAt(record, offset));
}

// Record i (1-based) of a chain; null for i below 1 or beyond the end.
const void *SelectNth(const void *head, uint16_t next, jint i) {
    if (i < 1) return nullptr;
    jint n = 1;
    for (const void *record = head; record != nullptr; record = PointerAt(record, next), ++n) {
        if (n == i) return record;
    }
    return nullptr;
}

// The BEARER count's own walk: it advances only while the counter is below i,
// so i of 1 or less selects the head.
const void *SelectAtMost(const void *head, uint16_t next, jint i) {
    const void *record = head;
    for (jint n = 1; record != nullptr && n < i; ++n) record = PointerAt(record, next);
    return record;
}

jint CountChain(const void *head, uint16_t next) {
    jint count = 0;
    for (const void *record = head; record != nullptr; record = PointerAt(record, next)) ++count;
    return count;
}

// Follows the path with one record number per step. The getters are only
// valid on a published context; with none (ptCtx null) nothing is selected
// instead of reading through null.
const void *Select(const Path &path, const jint *numbers) {
    const void *record = ptCtx;
    for (int i = 0; i < path.depth && record != nullptr; ++i) {
        record = SelectNth(PointerAt(record, path.hops[i].head), path.hops[i].next, numbers[i]);
    }
    return record;
}

// Count getters: the records selected by the arguments, then the list counted.
struct CountQuery {
    Path path;
    Hop list;
};

// Data getters: the records selected by the arguments, then the string read.
struct DataQuery {
    Path path;
    uint16_t field;
};

jint CountOf(const CountQuery &query, const jint *numbers) {
    const void *record = Select(query.path, numbers);
    return record == nullptr ? 0 : CountChain(PointerAt(record, query.list.head), query.list.next);
}

jstring DataOf(JNIEnv *env, const DataQuery &query, const jint *numbers) {
    const void *record = Select(query.path, numbers);
    return record == nullptr ? nullptr : NewJavaString(env, StringAt(record, query.field));
}

template <const CountQuery &Query, class... Numbers>
jint Count(Numbers... numbers) {
    static_assert(sizeof...(Numbers) == Query.path.depth, "one record number per path step");
    const jint list[] = {numbers..., 0};
    return CountOf(Query, list);
}

template <const DataQuery &Query, class... Numbers>
jstring Data(JNIEnv *env, Numbers... numbers) {
    static_assert(sizeof...(Numbers) == Query.path.depth, "one record number per path step");
    const jint list[] = {numbers..., 0};
    return DataOf(env, Query, list);
}

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
constexpr Path kRoot = Path{0, {}};

// The string of a string-chain node (the same field for all thirteen kinds).
constexpr uint16_t kNodeString = TQ_FIELD(tqsCtxStrNode, pszStr);

// String-list data getter: the list is the last step of the path.
constexpr DataQuery ListItem(Path owner, Hop list) {
    return DataQuery{Extend(owner, list), kNodeString};
}

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

}  // namespace

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

namespace {

jstring ServiceData(JNIEnv *env, const Path &path, const jint *numbers, jint s) {
    if (Select(path, numbers) == nullptr) return nullptr;
    const char *name = tqsJniServiceName(s);
    return name == nullptr ? nullptr : env->NewStringUTF(name);
}

// ---------------------------------------------------------------------------
// Composite getters: a String[] of a record's leading string fields in record
// order, an explicit null after them, at most one element mapped to a name.
// ---------------------------------------------------------------------------

struct RecordQuery {
    Path path;
    jsize length;  // array length: the fields, then the end mark
    struct {
        int field;  // index of the mapped field, -1 for none
        tqsJniMapping mapping;
    } mapped;
};

constexpr decltype(RecordQuery::mapped) kNoMap{-1, TQS_JNI_MAP_PX_ADDR_TYPE};

// Number of leading string fields up to and including `last`, plus the end mark.
#define TQ_ARRAY_THROUGH(Record, last) static_cast<jsize>(offsetof(Record, last) / sizeof(char *) + 2)
#define TQ_INDEX(Record, field) static_cast<int>(offsetof(Record, field) / sizeof(char *))

constexpr RecordQuery kProxyData{kPxLogical, TQ_ARRAY_THROUGH(tqsCtxPxLogical, pszReserved5), kNoMap};
constexpr RecordQuery kPxAuthInfoData{Extend(kPxLogical, TQ_HOP(tqsCtxPxLogical, ptPxAuthInfo)),
                                      TQ_ARRAY_THROUGH(tqsCtxPxAuthInfo, pszPxAuthPw), kNoMap};
constexpr RecordQuery kPxPhysicalData{kPxPhysical,
                                      TQ_ARRAY_THROUGH(tqsCtxPxPhysical, pszPullEnabled),
                                      {TQ_INDEX(tqsCtxPxPhysical, pszPxAddrType), TQS_JNI_MAP_PX_ADDR_TYPE}};
constexpr RecordQuery kNapDefData{kNapDef,
                                  TQ_ARRAY_THROUGH(tqsCtxNapDef, pszInit),
                                  {TQ_INDEX(tqsCtxNapDef, pszNapAddrType), TQS_JNI_MAP_NAP_ADDR_TYPE}};
constexpr RecordQuery kNapAuthInfoData{kNapAuthInfo,
                                       TQ_ARRAY_THROUGH(tqsCtxNapAuthInfo, pszReserved1),
                                       {TQ_INDEX(tqsCtxNapAuthInfo, pszAuthType), TQS_JNI_MAP_AUTH_TYPE}};
constexpr RecordQuery kValidityData{Extend(kNapDef, TQ_HOP(tqsCtxNapDef, ptValidity)),
                                    TQ_ARRAY_THROUGH(tqsCtxValidity, pszValidUntil), kNoMap};
constexpr RecordQuery kBootstrapData{kBootstrap, TQ_ARRAY_THROUGH(tqsCtxBootstrap, pszContextAllow), kNoMap};
constexpr RecordQuery kVenderConfigData{From(TQ_HOP(tqsClientProvCtx, ptVenderConfig)),
                                        TQ_ARRAY_THROUGH(tqsCtxVenderConfig, pszParmValue), kNoMap};
constexpr RecordQuery kApplicationData{kApplication, TQ_ARRAY_THROUGH(tqsCtxApplication, pszXcapTidHeader),
                                       kNoMap};
constexpr RecordQuery kAppAddrData{kAppAddr, TQ_ARRAY_THROUGH(tqsCtxAppAddr, pszAddrType), kNoMap};
constexpr RecordQuery kAppAuthData{Extend(kApplication, TQ_HOP(tqsCtxApplication, ptAppAuth)),
                                   TQ_ARRAY_THROUGH(tqsCtxAppAuth, pszAAuthData),
                                   {TQ_INDEX(tqsCtxAppAuth, pszAAuthLevel), TQS_JNI_MAP_AAUTH_LEVEL}};
constexpr RecordQuery kResourceData{Extend(kApplication, TQ_HOP(tqsCtxApplication, ptResource)),
                                    TQ_ARRAY_THROUGH(tqsCtxResource, pszStartPage), kNoMap};
constexpr RecordQuery kRoamingData{Extend(kApplication, TQ_HOP(tqsCtxApplication, ptRoaming)),
                                   TQ_ARRAY_THROUGH(tqsCtxRoaming, pszSyncDefault), kNoMap};
constexpr RecordQuery kWifiData{From(TQ_HOP(tqsClientProvCtx, ptWifi)),
                                TQ_ARRAY_THROUGH(tqsCtxWifi, pszPriority), kNoMap};

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

// A String[] whose elements all start as one shared empty string. A VM that
// cannot make it has an exception pending; the getter then answers null
// instead of writing into a null array.
jobjectArray NewRecordArray(JNIEnv *env, jsize length) {
    jclass stringClass = env->FindClass("java/lang/String");
    if (stringClass == nullptr) return nullptr;
    return env->NewObjectArray(length, stringClass, env->NewStringUTF(""));
}

void FillRecordArray(JNIEnv *env, jobjectArray array, const void *record, const RecordQuery &query) {
    jsize index = 0;
    for (int field = 0; field < query.length - 1; ++field) {
        const char *value = StringAt(record, static_cast<uint16_t>(field * sizeof(char *)));
        if (field != query.mapped.field) {
            env->SetObjectArrayElement(array, index++, NewJavaString(env, value));
            continue;
        }
        const char *element;
        if (!tqsJniMapElement(query.mapped.mapping, value, &element)) continue;
        env->SetObjectArrayElement(array, index++, element == nullptr ? nullptr : env->NewStringUTF(element));
    }
    env->SetObjectArrayElement(array, index, nullptr);
}

// The record the numbers select as a String[]; null when there is none.
jobjectArray RecordOf(JNIEnv *env, const RecordQuery &query, const jint *numbers) {
    const void *record = Select(query.path, numbers);
    if (record == nullptr) return nullptr;
    jobjectArray array = NewRecordArray(env, query.length);
    if (array != nullptr) FillRecordArray(env, array, record, query);
    return array;
}

template <const RecordQuery &Query, class... Numbers>
jobjectArray Record(JNIEnv *env, Numbers... numbers) {
    static_assert(sizeof...(Numbers) == Query.path.depth, "one record number per path step");
    const jint list[] = {numbers..., 0};
    return RecordOf(env, Query, list);
}

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
