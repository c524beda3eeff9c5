// Result codes and small shared types of the provisioning library.
#ifndef TQSTYPES_H
#define TQSTYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Marks the leak-report and trace hooks a host reaches in the shared library.
// The natives and ptCtx carry JNIEXPORT instead; the version script
// (jni/tqomacp.map) hides everything else.
#define TQS_EXPORT __attribute__((visibility("default")))

// One UCS-2 code unit.
typedef uint16_t TqsWChar;

// Result codes: 32-bit unsigned, 0 for success. They are only traced, never
// shown to a user; tools and tests print them by name (tqsResultName).
typedef uint32_t TqsResult;

#ifdef __cplusplus
}
#endif

// The one list of the codes: name and value, what each means beside it.
#define TQS_RESULT_CODES(X)                                                                    \
    X(TQS_OK, 0x0000u)                            /* success */                                \
    X(TQS_ERROR_FAILED, 0x0001u)                  /* allocation or list creation failed */     \
    X(TQS_ERROR_MISSING, 0x0002u)                 /* missing argument, decoder or record */    \
    X(TQS_ERROR_WBXML_UNKNOWN_ELEMENT, 0x1005u)   /* unexpected token, header field, page */   \
    X(TQS_ERROR_WBXML_NO_MORE_DATA, 0x1007u)      /* read past the end of the body */          \
    X(TQS_ERROR_WBXML_NO_BUFFER, 0x100Au)         /* the decoder has no buffer */              \
    X(TQS_ERROR_WBXML_DIFFERENT_VERSION, 0x100Bu) /* not a provisioning document */            \
    X(TQS_ERROR_INVALID_PARAM, 0x100Cu)           /* list given a null list or item */         \
    X(TQS_ERROR_LIST_ALLOC, 0x100Du)              /* list node allocation failed */            \
    X(TQS_ERROR_NOT_FOUND, 0x100Eu)               /* no such list item or index */             \
    X(TQS_ERROR_MEMORY, 0x100Fu)                  /* allocation failure: joining, growth */    \
    X(TQS_ERROR_BUFFER_OUTSIDE, 0x1010u)          /* growth of a buffer over caller storage */ \
    X(TQS_ERROR_BUFFER_NULL, 0x1011u)             /* null buffer */                            \
    X(TQS_ERROR_BUFFER_NO_DATA, 0x1012u)          /* no data, or fewer than asked for */

#ifdef __cplusplus
#define TQS_RESULT_CONSTANT(name, value) constexpr TqsResult name = value;
TQS_RESULT_CODES(TQS_RESULT_CONSTANT)
#undef TQS_RESULT_CONSTANT

// "TQS_ERROR_WBXML_UNKNOWN_ELEMENT" for 0x1005; null for a value not in the list.
constexpr const char *tqsResultName(TqsResult nResult) {
    switch (nResult) {
#define TQS_RESULT_CASE(name, value) \
    case value:                      \
        return #name;
        TQS_RESULT_CODES(TQS_RESULT_CASE)
#undef TQS_RESULT_CASE
    }
    return nullptr;
}

static_assert(tqsResultName(0x1005u) != nullptr && tqsResultName(0x1006u) == nullptr, "one name per code");
#endif

#endif  // TQSTYPES_H
