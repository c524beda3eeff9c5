// Names the Java binding gives to raw value-token codes: the service and
// bearer tables and the element mappings of the composite getters. No JNI
// here: a floor of its own (tqomacp_names) that the binding and the tools
// link alike; nothing of it is exported from the shared library.
#ifndef TQOMACP_JNI_NAMES_H
#define TQOMACP_JNI_NAMES_H

#ifdef __cplusplus
extern "C" {
#endif

typedef struct tqsJniCodeName {
    unsigned char code;
    const char *name;
} tqsJniCodeName;

#define TQS_JNI_SERVICE_NAMES 11 /* entries 0 to 10; the last is "Unkown Service" */
#define TQS_JNI_BEARER_CODES 27  /* bearer entries scanned; the next is "Unkown Bearer" */
#define TQS_JNI_CODE_NAMES (TQS_JNI_SERVICE_NAMES + TQS_JNI_BEARER_CODES + 1)

// The service-name table immediately followed by the bearer-name table.
extern const tqsJniCodeName tqsJniCodeNames[TQS_JNI_CODE_NAMES];

// What the service getters answer for SERVICE position s: entry s of the
// combined table (s = 1 is "CO-WSP", s = 11 "GSM-USSD"); null outside it.
const char *tqsJniServiceName(int s);

// The bearer name of a code byte; "Unkown Bearer" when the table lacks it.
const char *tqsJniBearerName(unsigned char code);

typedef enum tqsJniMapping {
    TQS_JNI_MAP_PX_ADDR_TYPE,   // PXPHYSICAL element 2
    TQS_JNI_MAP_NAP_ADDR_TYPE,  // NAPDEF element 4
    TQS_JNI_MAP_AUTH_TYPE,      // NAPAUTHINFO element 0
    TQS_JNI_MAP_AAUTH_LEVEL,    // APPAUTH element 0
} tqsJniMapping;

// The element a composite getter writes for a stored value. Returns 1 and
// sets *element (null for a null value, or where the mapping answers null);
// returns 0 when no element is written at all (a NAPDEF address type that is
// not a code byte: every later element moves up one index).
int tqsJniMapElement(tqsJniMapping mapping, const char *stored, const char **element);

#ifdef __cplusplus
}
#endif

#endif  // TQOMACP_JNI_NAMES_H
