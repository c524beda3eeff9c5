// Private to the decoder: its working state beside the record, and the one
// cursor through which every reader takes the body's bytes.
#ifndef TQS_CLIENT_PROV_WBXML_DECODER_STATE_H
#define TQS_CLIENT_PROV_WBXML_DECODER_STATE_H

#include <stddef.h>
#include <stdint.h>
#include <string.h>

#include "smlbuffer.h"
#include "tqsClientProvWbxml.h"

namespace tqs::wbxml {

// What the joins of one decode keep (see JoinText in the decoder).
struct JoinState {
    // A text a list parm has already placed in its list while it reads
    // another value into the same text: a join must not free it.
    const char *pszListedText;
    // Bytes the joins of this decode have copied; bounded by a budget.
    uint64_t nBytes;
};

// What tqsClientProvWbxmlInitDecoder allocates. The decoder record's fields
// and their order are fixed by its contract (pinned in tqsClientProvWbxml.h),
// so the state only the decoder unit needs is held beside the record, not in
// it: the record comes first, and the tqsWbxmlDecoder * that
// tqsClientProvWbxmlInitDecoder hands out points at this wrapper as well. A
// record made anywhere else never reaches the join state, which only a read
// of the body leads to, and a record without a buffer cannot read.
struct DecoderState {
    tqsWbxmlDecoder tRecord;
    JoinState tJoin;
};
static_assert(offsetof(DecoderState, tRecord) == 0, "the record opens the state");
// The record's fields in the order its contract fixes; the two private tail
// fields that tests and tools read stay after them.
static_assert(offsetof(tqsWbxmlDecoder, bHasContent) == 0 &&
                  offsetof(tqsWbxmlDecoder, bHasAttribute) > offsetof(tqsWbxmlDecoder, bHasContent) &&
                  offsetof(tqsWbxmlDecoder, nStrSize) > offsetof(tqsWbxmlDecoder, bHasAttribute) &&
                  offsetof(tqsWbxmlDecoder, nCodePage) > offsetof(tqsWbxmlDecoder, nStrSize) &&
                  offsetof(tqsWbxmlDecoder, pStringTable) > offsetof(tqsWbxmlDecoder, nCodePage) &&
                  offsetof(tqsWbxmlDecoder, ptBuffer) > offsetof(tqsWbxmlDecoder, pStringTable) &&
                  offsetof(tqsWbxmlDecoder, nStrTableBytes) > offsetof(tqsWbxmlDecoder, ptBuffer),
              "decoder record fields in their fixed order");

inline JoinState *JoinOf(tqsWbxmlDecoder *ptDecoder) {
    return &reinterpret_cast<DecoderState *>(ptDecoder)->tJoin;
}

// The cursor over the decoder's copy of the body. The position is the
// buffer's read pointer (the bytes consumed are what
// tqsClientProvWbxmlDecoderDecodingSize answers). There are two ends: the data
// end, after the body's last byte, where every byte read stops; and the
// padding limit, the zero the storage ends with, up to which the zero padding
// behind the body may be scanned by the string readers. The position never
// goes below the base nor past the padding limit + 1.
struct Cursor {
    unsigned char **ppPos;
    const unsigned char *pBase;
    const unsigned char *pData;   // data end
    const unsigned char *pLimit;  // padding limit: the storage's last byte, a zero
};

inline Cursor CursorOf(tqsWbxmlDecoder *ptDecoder) {
    SmlBuffer *ptBuf = ptDecoder->ptBuffer;
    return Cursor{&ptBuf->pHead, ptBuf->pBase, ptBuf->pBase + ptBuf->nDataSize, ptBuf->pEnd};
}

inline uint32_t Consumed(const Cursor &c) {
    return static_cast<uint32_t>(*c.ppPos - c.pBase);
}

// Body bytes not yet consumed; 0 once the position is in the padding.
inline uint32_t Left(const Cursor &c) {
    return *c.ppPos < c.pData ? static_cast<uint32_t>(c.pData - *c.ppPos) : 0;
}

inline bool Peek(const Cursor &c, uint8_t *pnByte) {
    if (*c.ppPos >= c.pData) return false;
    *pnByte = **c.ppPos;
    return true;
}

inline bool Take(const Cursor &c, uint8_t *pnByte) {
    if (!Peek(c, pnByte)) return false;
    ++*c.ppPos;
    return true;
}

// Steps back one byte (a token read again), never before the base.
inline void Back(const Cursor &c) {
    if (*c.ppPos > c.pBase) --*c.ppPos;
}

// The byte n positions before the position; 0 where that is before the base.
inline uint8_t Behind(const Cursor &c, uint32_t n) {
    return Consumed(c) >= n ? (*c.ppPos)[-static_cast<ptrdiff_t>(n)] : 0;
}

// Takes up to n body bytes: where they start; *pnTaken says how many (fewer
// where the data end comes first).
inline const unsigned char *TakeUpTo(const Cursor &c, uint32_t n, uint32_t *pnTaken) {
    const unsigned char *pStart = *c.ppPos;
    const uint32_t nLeft = Left(c);
    *pnTaken = n < nLeft ? n : nLeft;
    *c.ppPos += *pnTaken;
    return pStart;
}

// Room from the position up to and including the padding limit.
inline uint32_t Room(const Cursor &c) {
    return *c.ppPos <= c.pLimit ? static_cast<uint32_t>(c.pLimit - *c.ppPos) + 1 : 0;
}

// The text from the position to the next zero, padding included, and its
// length (0 when the position is past the padding limit). The position stays:
// Skip past the text once it is used.
inline const char *ScanToZero(const Cursor &c, uint32_t *pnLength) {
    const char *pszStart = reinterpret_cast<const char *>(*c.ppPos);
    const uint32_t nRoom = Room(c);
    const void *pZero = nRoom != 0 ? memchr(pszStart, 0, nRoom) : nullptr;
    *pnLength = pZero != nullptr ? static_cast<uint32_t>(static_cast<const char *>(pZero) - pszStart) : 0;
    return pszStart;
}

// Moves the position forward by n, never past the padding limit + 1.
inline void Skip(const Cursor &c, uint32_t n) {
    const uint32_t nRoom = Room(c);
    *c.ppPos += n < nRoom ? n : nRoom;
}

// Offset of the end of the zero padding that a buffer created at the body's
// size and filled by one append would have: the append grows it by the size
// + 256 (at least 512), with the zero at its end. The decoder's buffer is
// created one byte larger and never grows; an opaque value that runs into
// this padding is read as zeros.
inline uint64_t PaddedSize(const Cursor &c) {
    const uint64_t nBody = static_cast<uint64_t>(c.pData - c.pBase);
    const uint64_t nGrowth = nBody + 256 < 512 ? 512 : nBody + 256;
    return nBody == 0 ? 1 : nBody + nGrowth + 1;
}

}  // namespace tqs::wbxml

#endif  // TQS_CLIENT_PROV_WBXML_DECODER_STATE_H
