// WSP push header parser: PDU type, header length, content type, SEC, MAC and a
// copy of the body.
#ifndef TQSPUSHHANDLER_H
#define TQSPUSHHANDLER_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define SML_PUSH_MAC_SIZE 48u

typedef struct SmlPushHeader {
    uint64_t nContentType;
    uint64_t nHeaderLen;
    uint64_t nBodyLen;
    uint64_t nMACLen;
    uint64_t nSEC;
    char szMAC[SML_PUSH_MAC_SIZE];
    unsigned char *pBody;  // nBodyLen bytes and one zero byte
} SmlPushHeader;

// Content type codes (WSP well-known values).
#define SML_PUSH_CT_CONNECTIVITY_WBXML 0x36u
#define SML_PUSH_CT_CONNECTIVITY_XML 0x35u
#define SML_PUSH_CT_SYNCML_NOTIFICATION 0x44u
#define SML_PUSH_CT_SYNCML_DS_NOTIFICATION 0x4Eu
#define SML_PUSH_CT_SYNCML_DM_WBXML 0x42u

// A new record owned by the caller (free pBody and the record with
// tqsMemFree_debug), or null when the PDU is refused. total_len bytes at pdu
// must exist.
SmlPushHeader *smlpushHdlrParsingWSPHeader(const unsigned char *pdu, uint64_t total_len);
// The same where only `readable` bytes at pdu exist: total_len still gives the
// body length, but nothing at or beyond readable is read, and a body copy
// that would reach there refuses the PDU.
SmlPushHeader *smlpushHdlrParsingWSPHeaderIn(const unsigned char *pdu, uint64_t total_len, uint64_t readable);

#ifdef __cplusplus
}
#endif

#endif  // TQSPUSHHANDLER_H
