// Result codes and small shared types of the provisioning library.
#ifndef TQSTYPES_H
#define TQSTYPES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// Marks the few symbols a host reaches in the shared library (the build hides
// everything else).
#define TQS_EXPORT __attribute__((visibility("default")))

// One UCS-2 code unit.
typedef uint16_t TqsWChar;

// Result codes: 32-bit unsigned, 0 for success.
typedef uint32_t TqsResult;

#define TQS_OK 0u
// Allocation or list creation failed; generic refusal.
#define TQS_ERROR_FAILED 1u
// Missing argument, decoder, buffer or target record.
#define TQS_ERROR_MISSING 2u

#define TQS_ERROR_WBXML_UNKNOWN_ELEMENT 0x1005u
#define TQS_ERROR_WBXML_NO_MORE_DATA 0x1007u
#define TQS_ERROR_WBXML_NO_BUFFER 0x100Au
#define TQS_ERROR_WBXML_DIFFERENT_VERSION 0x100Bu
#define TQS_ERROR_INVALID_PARAM 0x100Cu
#define TQS_ERROR_LIST_ALLOC 0x100Du
#define TQS_ERROR_NOT_FOUND 0x100Eu
#define TQS_ERROR_MEMORY 0x100Fu
#define TQS_ERROR_BUFFER_OUTSIDE 0x1010u
#define TQS_ERROR_BUFFER_NULL 0x1011u
#define TQS_ERROR_BUFFER_NO_DATA 0x1012u

#ifdef __cplusplus
}
#endif

#endif  // TQSTYPES_H
