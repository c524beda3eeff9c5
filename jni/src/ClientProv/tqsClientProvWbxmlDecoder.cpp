// WBXML provisioning decoder: byte reader, header and string table, token
// machinery, characteristic decoding, parm values and parm handlers.
//
// The body copy always has zero bytes behind it (the buffer grows on the first append), so
// zero-terminated scans stop inside the storage; every other read is bounded by the body's data size.
#include "tqsClientProvWbxmlDecoder.h"

#include <stddef.h>
#include <string.h>

#include "smlbuffer.h"
#include "tqsClientProvFields.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "tqsstring.h"
#include "tqstrace.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqsClientProvWbxmlDecoder";

namespace {

constexpr uint8_t kTokSwitchPage = 0x00;
constexpr uint8_t kTokEnd = 0x01;
constexpr uint8_t kTokStrI = 0x03;
constexpr uint8_t kTokEntity = 0x04;  // stop byte when skipping attributes
constexpr uint8_t kTokValue = 0x06;   // parm value attribute; same byte as a bare characteristic tag
constexpr uint8_t kTokExtI0 = 0x80;   // stop byte when skipping attributes
constexpr uint8_t kTokStrT = 0x83;
constexpr uint8_t kTokOpaque = 0xC3;
constexpr uint8_t kTokNameAttr = 0x05;
constexpr uint8_t kTokComma = 0x90;

constexpr uint8_t kIdMask = 0x3F;
constexpr uint8_t kIdWapDoc = 0x05;
constexpr uint8_t kIdCharacteristic = 0x06;
constexpr uint8_t kIdParm = 0x07;

constexpr uint8_t kAttrVersion = 0x45;
constexpr uint8_t kAttrVersion10 = 0x46;
constexpr uint8_t kAttrTypeInline = 0x50;

constexpr uint32_t kProvPublicId = 0x0B;
constexpr char kProvPublicIdText[] = "-//WAPFORUM//DTD PROV 1.0//EN";

// Real documents nest three levels; deeper input is refused so the stack stays bounded.
constexpr uint32_t kMaxCharacterDepth = 32;

// ---- Position helpers ------------------------------------------------------

inline SmlBuffer *Buf(tqsWbxmlDecoder *ptDecoder) {
    return ptDecoder->ptBuffer;
}

inline uint32_t Consumed(const tqsWbxmlDecoder *ptDecoder) {
    return static_cast<uint32_t>(ptDecoder->ptBuffer->pHead - ptDecoder->ptBuffer->pBase);
}

// Body bytes not yet consumed.
inline uint32_t Remaining(const tqsWbxmlDecoder *ptDecoder) {
    uint32_t nUsed = Consumed(ptDecoder);
    return nUsed < ptDecoder->ptBuffer->nDataSize ? ptDecoder->ptBuffer->nDataSize - nUsed : 0;
}

inline bool PeekByte(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    if (Remaining(ptDecoder) == 0) return false;
    *pnByte = *Buf(ptDecoder)->pHead;
    return true;
}

inline void StepBack(tqsWbxmlDecoder *ptDecoder) {
    if (Buf(ptDecoder)->pHead > Buf(ptDecoder)->pBase) --Buf(ptDecoder)->pHead;
}

// Bytes of the body and its zero padding in a buffer created at the body's
// size and filled by one append, which grows it by the size + 256 (at least
// 512), with the zero at pEnd. The decoder's buffer is created one byte
// larger and never grows, so readers take the padding past it as zeros.
inline uint64_t PaddedSize(const tqsWbxmlDecoder *ptDecoder) {
    uint64_t nBody = ptDecoder->ptBuffer->nDataSize;
    uint64_t nGrowth = nBody + 256 < 512 ? 512 : nBody + 256;
    return nBody == 0 ? 1 : nBody + nGrowth + 1;
}

// Moves the position forward by n, never past the zero that ends the storage.
inline void Advance(tqsWbxmlDecoder *ptDecoder, uint32_t n) {
    SmlBuffer *ptBuf = Buf(ptDecoder);
    uint32_t nRoom = ptBuf->pHead <= ptBuf->pEnd ? static_cast<uint32_t>(ptBuf->pEnd - ptBuf->pHead) + 1 : 0;
    ptBuf->pHead += n < nRoom ? n : nRoom;
}

// ---- Text joining ------------------------------------------------------------

enum class Join : uint8_t { kAppend, kComma, kHidden };

inline uint32_t TextLen(const char *psz) {
    return psz != nullptr ? static_cast<uint32_t>(strlen(psz)) : 0;
}

// *ppszText becomes a new block: old text, separator, nAddLen bytes of pAdd.
// kHidden leaves the separator byte zero, so the addition lies behind the
// terminator. Returns false (text untouched) when the allocation fails.
// A text that a list parm has already placed in its list while it reads
// another value into the same text (see ParamListString): joining must not free it.
const char *g_pszListedText = nullptr;

// Bytes the joins of the current decode have copied so far. Every join
// copies the whole text, so a document that keeps extending one value
// (repeated parms, long runs of string-table references) would cost time and
// memory quadratic in its size: past kJoinBudget a join fails the way a failed
// allocation does. A first copy is no join and is not counted. Real documents
// join a few kilobytes. Reset by each decode.
constexpr uint64_t kJoinBudget = uint64_t{16} << 20;
uint64_t g_nJoinBytes = 0;

bool JoinText(char **ppszText, const char *pAdd, uint32_t nAddLen, Join eJoin) {
    char *pszOld = *ppszText;
    uint32_t nOld = TextLen(pszOld);
    uint32_t nSep = (pszOld != nullptr && eJoin != Join::kAppend) ? 1 : 0;
    const uint64_t nNew = uint64_t{nOld} + nSep + nAddLen + 1;
    if (pszOld != nullptr) {
        if (g_nJoinBytes + nNew > kJoinBudget) return false;
        g_nJoinBytes += nNew;
    }
    char *pszNew = static_cast<char *>(tqsMemAlloc_debug(static_cast<uint32_t>(nNew), kUnitPath, __LINE__));
    if (pszNew == nullptr) return false;
    if (nOld != 0) memcpy(pszNew, pszOld, nOld);
    if (nSep != 0) pszNew[nOld] = eJoin == Join::kComma ? ',' : '\0';
    if (nAddLen != 0) memcpy(pszNew + nOld + nSep, pAdd, nAddLen);
    pszNew[nOld + nSep + nAddLen] = '\0';
    if (pszOld != g_pszListedText) tqsMemFree_debug(pszOld);
    *ppszText = pszNew;
    return true;
}

// ---- Value-token tables ----------------------------------------------------

struct ValueToken {
    uint8_t nToken;
    const char *pszText;
};

// Stored entries; only the first kScan* of each are reached by the lookup.
constexpr ValueToken kAddrTypes[] = {
    {0x85, "IPV4"},  {0x86, "IPV6"},       {0x87, "E164"}, {0x88, "ALPHA"},  {0x89, "APN"},
    {0x8A, "SCODE"}, {0x8B, "TETRA-ITSI"}, {0x8C, "MAN"},  {0x93, "DIGEST"},
};
constexpr ValueToken kAuthTypes[] = {
    {0x9A, "PAP"},     {0x9B, "CHAP"}, {0x9C, "HTTP-BASIC"}, {0x9D, "HTTP-DIGEST"},
    {0x9E, "WTLS_SS"}, {0x9F, "MD5"},  {0x91, "HTTP"},
};
constexpr ValueToken kAppAuthTypes[] = {
    {0x91, "HTTP"}, {0x92, "BASIC"}, {0x93, "DIGEST"}, {0x86, "IPV6"},
    {0x87, "E164"}, {0x88, "ALPHA"}, {0x8D, "APPSRV"}, {0x8E, "OBEX"},
};
constexpr ValueToken kCallTypes[] = {
    {0x90, "ANALOG-MODEM"},    {0x91, "V.120"},
    {0x92, "V.110"},           {0x93, "X.31"},
    {0x94, "BIT-TRANSPARENT"}, {0x95, "DIRECT-ASYNCHRONOUS-DATA-SERVICE"},
    {0xCA, "CL-WSP"},          {0xCB, "CO-WSP"},
    {0xCC, "CL-SEC-WSP"},      {0xCD, "CO-SEC-WSP"},
    {0xCE, "CL-SEC-WTA"},      {0xCF, "CO-SEC-WTA"},
    {0xD0, "OTA-HTTP-TO"},     {0xD1, "OTA-HTTP-TLS-TO"},
    {0xD2, "OTA-HTTP-PO"},     {0xD3, "OTA-HTTP-TLS-PO"},
};

struct ValueTable {
    const ValueToken *ptEntries;
    uint8_t nScan;  // positions the lookup reaches
    Join eJoin;
};

constexpr ValueTable kValueTables[] = {
    {kAddrTypes, 8, Join::kAppend},
    {kAuthTypes, 7, Join::kComma},
    {kAppAuthTypes, 3, Join::kComma},
    {kCallTypes, 7, Join::kHidden},
};
constexpr size_t kValueTableCount = sizeof(kValueTables) / sizeof(kValueTables[0]);

struct ValueHit {
    uint8_t nTable;  // 0: not a known value token; else table index + 1
    uint8_t nEntry;
};

struct ValueIndex {
    ValueHit at[256];
};

// Resolves every byte once, in the lookup's own order: position by position,
// tables A, B, C, D at each position, first match wins (so 0x91 is "HTTP").
constexpr ValueIndex BuildValueIndex() {
    ValueIndex tIndex{};
    for (uint8_t i = 0; i < 8; ++i) {
        for (size_t t = 0; t < kValueTableCount; ++t) {
            if (i >= kValueTables[t].nScan) continue;
            ValueHit &tHit = tIndex.at[kValueTables[t].ptEntries[i].nToken];
            if (tHit.nTable == 0) tHit = ValueHit{static_cast<uint8_t>(t + 1), i};
        }
    }
    return tIndex;
}
constexpr ValueIndex kValueIndex = BuildValueIndex();
static_assert(kValueIndex.at[0x91].nTable == 3, "0x91 reads as HTTP");
static_assert(kValueIndex.at[0xCB].nTable == 0, "CO-WSP lies beyond the scan");

TqsResult SkipTwoBytes(tqsWbxmlDecoder *ptDecoder) {
    uint8_t nId;
    TqsResult nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
    if (nRet == TQS_OK) nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
    return nRet;
}

// Consumes an inline string standing between elements and drops it.
TqsResult DropInlineString(tqsWbxmlDecoder *ptDecoder) {
    uint8_t nId;
    TqsResult nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    char *pszText = nullptr;
    int bOk = tqsClientProvWbxmlDecoderGetStr(ptDecoder, &pszText);
    tqsMemFree_debug(pszText);
    return bOk ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
}

}  // namespace

// ---- Byte level --------------------------------------------------------------

extern "C" uint32_t tqsClientProvWbxmlDecoderDecodingSize(tqsWbxmlDecoder *ptDecoder) {
    return Consumed(ptDecoder);
}

extern "C" int tqsClientProvWbxmlDecoderBufferReadByte(tqsWbxmlDecoder *ptDecoder, unsigned char *pnByte) {
    if (Remaining(ptDecoder) == 0) return 0;
    *pnByte = *Buf(ptDecoder)->pHead++;
    return 1;
}

extern "C" int tqsClientProvWbxmlDecoderBufferReadUint32(tqsWbxmlDecoder *ptDecoder, uint32_t *pnValue) {
    uint32_t nValue = 0;
    for (int i = 0; i < 5; ++i) {
        unsigned char nByte;
        if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) return 0;
        nValue = (nValue << 7) | (nByte & 0x7Fu);
        if ((nByte & 0x80) == 0) {
            *pnValue = nValue;
            return 1;
        }
    }
    return 0;
}

extern "C" uint32_t tqsClientProvWbxmlDecoderMakeStrTable(tqsWbxmlDecoder *ptDecoder,
                                                          unsigned char **ppTable) {
    uint32_t nLength;
    if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, &nLength)) return 0xFFFFFFFFu;
    // A table longer than the rest of the body cannot be read whole; sizing the
    // block by what remains keeps length + 2 from wrapping into a short block.
    uint32_t nAvail = Remaining(ptDecoder);
    uint32_t nCopy = nLength < nAvail ? nLength : nAvail;
    unsigned char *pTable =
        static_cast<unsigned char *>(tqsMemAllocSetZero_debug(nCopy + 2, kUnitPath, __LINE__));
    *ppTable = pTable;
    ptDecoder->nStrTableBytes = pTable != nullptr ? nCopy + 2 : 0;
    if (pTable == nullptr) return 0xFFFFFFFFu;
    memcpy(pTable, Buf(ptDecoder)->pHead, nCopy);
    Buf(ptDecoder)->pHead += nCopy;
    return nCopy == nLength ? nLength : 0xFFFFFFFFu;
}

extern "C" int tqsClientProvWbxmlDecoderGetStrTable(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    uint32_t nIndex;
    if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, &nIndex)) return 0;
    if (ptDecoder->nStrSize - 1u < nIndex) return 0;
    // The bound wraps for an empty table; an index beyond the block actually
    // read gives an empty string instead of a read outside it.
    const char *pszEntry = "";
    if (nIndex < ptDecoder->nStrTableBytes)
        pszEntry = reinterpret_cast<const char *>(ptDecoder->pStringTable) + nIndex;
    if (!JoinText(ppszText, pszEntry, TextLen(pszEntry), Join::kAppend)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderGetStr] pszData NULL");
        return 0;
    }
    return 1;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderWbxmlHeader(tqsWbxmlDecoder *ptDecoder, uint8_t *pnVersion,
                                                          uint32_t *pnPublicid, uint32_t *pnCharset) {
    tqcTrace("tqsClientProvWbxmlDecoderWbxmlHeader");
    unsigned char nVersion;
    if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nVersion)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion");
        return TQS_ERROR_WBXML_NO_MORE_DATA;
    }
    *pnVersion = nVersion;
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion [0x%x]", nVersion);
    if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, pnPublicid)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnPublicid");
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] pnPublicid [0x%x]", *pnPublicid);
    if (*pnPublicid == 0) {
        uint32_t nTemp;  // index of the literal public id; the check reads the table start
        if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, &nTemp)) {
            tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] nTemp");
            return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
        }
        tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] nTemp [0x%x]", nTemp);
    }
    if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, pnCharset)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnCharset");
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] pnCharset [0x%x]", *pnCharset);
    ptDecoder->nStrSize = tqsClientProvWbxmlDecoderMakeStrTable(ptDecoder, &ptDecoder->pStringTable);
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] ptWbxmlDecoder->nStrSize [0x%x]", ptDecoder->nStrSize);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCheckCodePage(tqsWbxmlDecoder *ptDecoder) {
    tqcTrace("tqsClientProvWbxmlDecoderCheckCodePage");
    uint8_t nToken, nPage;
    if (tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nToken) != TQS_OK ||
        tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nPage) != TQS_OK) {
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    if (nPage == 0) {
        tqcTrace("TQS_WBXML_TAG_SWITCH_PAGE0");
    } else if (nPage == 1) {
        tqcTrace("TQS_WBXML_TAG_SWITCH_PAGE1");
    } else {
        tqcTrace("ERROR::TQS_CODE_PAGE_UNKNOWN");
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    ptDecoder->nCodePage = nPage;
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoder(tqsWbxmlDecoder *ptDecoder, tqsWapDoc **pptWapDoc) {
    tqcTrace("tqsClientProvWbxmlDecoder");
    uint8_t nVersion = 0;
    uint32_t nPublicid = 0, nCharset = 0;
    TqsResult nRet;
    if (pptWapDoc != nullptr) *pptWapDoc = nullptr;
    if (ptDecoder == nullptr || ptDecoder->ptBuffer == nullptr || ptDecoder->ptBuffer->pHead == nullptr ||
        pptWapDoc == nullptr) {
        nRet = TQS_ERROR_MISSING;
    } else {
        tqsClientProvWbxmlDecoderWbxmlHeader(ptDecoder, &nVersion, &nPublicid, &nCharset);  // status ignored
        bool bMismatch;
        if (nPublicid != 0) {
            tqcTrace("nPublicid[%ld], Avaliable Id:%ld\n", static_cast<long>(nPublicid),
                     static_cast<long>(kProvPublicId));
            bMismatch = nPublicid != kProvPublicId;
        } else if (ptDecoder->pStringTable == nullptr) {
            bMismatch = true;  // no table to hold a literal public id
        } else {
            const char *pszTable = reinterpret_cast<const char *>(ptDecoder->pStringTable);
            bMismatch = tqsStrcmp(pszTable, kProvPublicIdText) != 0;
            if (bMismatch) tqcTrace("ptWbxmlDecoder->pStringTable[%s]\n", pszTable);
        }
        if (bMismatch) {
            tqcTrace("ERROR : tqsClientProvWbxmlDecoder Difference Ver!!\n");
            nRet = TQS_ERROR_WBXML_DIFFERENT_VERSION;
        } else {
            nRet = tqsClientProvWbxmlDecoderWbxmlBody(ptDecoder, pptWapDoc);
        }
    }
    tqcTraceError(nRet);
    return nRet;
}

// ---- Token machinery ---------------------------------------------------------

extern "C" TqsResult tqsClientProvWbxmlDecoderReadElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId) {
    tqcTrace("tqsClientProvWbxmlDecoderReadElement");
    unsigned char nByte;
    if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    ptDecoder->bHasContent = (nByte & 0x40) != 0;
    ptDecoder->bHasAttribute = (nByte & 0x80) != 0;
    *pnId = nByte & kIdMask;
    tqcTrace("tqsClientProvWbxmlDecoderReadElement nId[0x%02x], Read Byte[0x%02x]", *pnId, nByte);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCurElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId) {
    uint8_t nTemp;
    if (!PeekByte(ptDecoder, &nTemp)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    *pnId = nTemp & kIdMask;
    tqcTrace("[CP_DBG]tqsClientProvWbxmlDecoderCurElement: nId:[0x%02x], nTemp:[0x%02x] ", *pnId, nTemp);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCurElementNotAND(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    uint8_t nTemp;
    if (!PeekByte(ptDecoder, &nTemp)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    *pnByte = nTemp;
    tqcTrace("[CP_DBG]tqsClientProvWbxmlDecoderCurElementNotAND: nId:[0x%02x], nTemp:[0x%02x] ", nTemp,
             nTemp);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCheckElement(tqsWbxmlDecoder *ptDecoder, uint8_t nExpected) {
    if (ptDecoder == nullptr) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderCheckElement] ptWbxmlDecoder NULL");
        return TQS_ERROR_FAILED;
    }
    uint8_t nId;
    TqsResult nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    if (nId != nExpected) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    // A content-less tag also takes an END standing right after it, whoever owns it.
    if (!ptDecoder->bHasContent && tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId) == TQS_OK &&
        nId == kTokEnd) {
        unsigned char nByte;
        if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
            tqcTrace("[ERROR] tqsClientProvWbxmlDecoderBufferReadByte Fail");
        }
    }
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderSkipElement(tqsWbxmlDecoder *ptDecoder, uint8_t /*nToken*/) {
    TqsResult nRet = TQS_OK;
    int64_t nDepth = 0;
    unsigned char nByte;
    for (;;) {
        if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
            nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
            break;
        }
        if (nByte == kTokSwitchPage) {
            if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
                nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
                break;
            }
        } else if (nByte == kTokEnd) {
            if (--nDepth == 0) {
                StepBack(ptDecoder);
                // Land on the END left unread (stepping over page switches).
                for (;;) {
                    if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
                        nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
                        break;
                    }
                    if (nByte != kTokSwitchPage) {
                        StepBack(ptDecoder);
                        break;
                    }
                    if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
                        nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
                        break;
                    }
                }
                break;
            }
        } else if (nByte == kTokStrI || nByte == kTokStrT || nByte == kTokOpaque) {
            StepBack(ptDecoder);
            char *pszScratch = nullptr;
            nRet = tqsClientProvWbxmlDecoderContent(ptDecoder, &pszScratch);
            tqsMemFree_debug(pszScratch);
            if (nRet != TQS_OK) break;
        } else {
            ++nDepth;
        }
    }
    tqcTrace("tqsClientProvWbxmlDecoderSkipElement Error Code:%d", static_cast<int>(nRet));
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderElement(tqsWbxmlDecoder *ptDecoder, uint8_t nId,
                                                      char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderElement");
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckElement(ptDecoder, nId);
    if (nRet != TQS_OK) return nRet;
    if (!ptDecoder->bHasContent) return TQS_OK;
    nRet = tqsClientProvWbxmlDecoderContent(ptDecoder, ppszText);
    if (nRet == TQS_OK) {
        unsigned char nByte;
        if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
            nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
        } else if (nByte != kTokEnd) {
            nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
        }
    }
    tqcTrace("tqsClientProvWbxmlDecoderElement Error Code:%d", static_cast<int>(nRet));
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderReadAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    return tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, pnByte) ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCurAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    return PeekByte(ptDecoder, pnByte) ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCheckAttr(tqsWbxmlDecoder *ptDecoder, uint8_t nAttr) {
    tqcTrace("tqsClientProvWbxmlDecoderCheckAttr");
    uint8_t nTemp;
    TqsResult nRet = tqsClientProvWbxmlDecoderReadAttr(ptDecoder, &nTemp);
    if (nRet != TQS_OK) return nRet;
    if (nTemp != nAttr) {
        tqcTrace("nId:%x, nTemp:%x", nAttr, nTemp);
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderSkipAttribute(tqsWbxmlDecoder *ptDecoder) {
    unsigned char nByte;
    do {
        if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    } while (nByte != kTokEntity && nByte != kTokExtI0 && nByte != kTokEnd);
    return TQS_OK;
}

extern "C" int tqsClientProvWbxmlDecoderGetStr(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderGetStr");
    SmlBuffer *ptBuf = Buf(ptDecoder);
    // The scan may run past the body into the zero padding, never past pEnd (a zero).
    uint32_t nRoom = ptBuf->pHead <= ptBuf->pEnd ? static_cast<uint32_t>(ptBuf->pEnd - ptBuf->pHead) + 1 : 0;
    const char *pszStart = reinterpret_cast<const char *>(ptBuf->pHead);
    const void *pZero = nRoom != 0 ? memchr(pszStart, 0, nRoom) : nullptr;
    uint32_t nLen = pZero != nullptr ? static_cast<uint32_t>(static_cast<const char *>(pZero) - pszStart) : 0;
    if (!JoinText(ppszText, pszStart, nLen, Join::kAppend)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderGetStr] pszData NULL");
        return 0;
    }
    Advance(ptDecoder, nLen + 1);
    return 1;
}

extern "C" int tqsClientProvWbxmlDecoderGetStrExtension(tqsWbxmlDecoder *ptDecoder, uint8_t nToken,
                                                        char **ppszText, uint32_t *pnLength) {
    if (nToken != kTokOpaque) return 1;
    uint32_t nLength;
    if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, &nLength)) return 0;
    *pnLength = nLength;
    // A length that runs into the zero padding behind the body gets its whole
    // block, zeros for the padding (the position then stops at the end of the
    // storage, past every read). One that would leave the padding is cut to
    // the body's bytes.
    uint32_t nAvail = Remaining(ptDecoder);
    uint32_t nCopy = nLength < nAvail ? nLength : nAvail;
    bool bPadded =
        nLength <= UINT32_MAX - 2 && uint64_t{Consumed(ptDecoder)} + nLength <= PaddedSize(ptDecoder);
    uint32_t nSize = bPadded ? nLength : nCopy;
    char *pszData = static_cast<char *>(tqsMemAllocSetZero_debug(nSize + 2, kUnitPath, __LINE__));
    if (pszData == nullptr) return 0;
    memcpy(pszData, Buf(ptDecoder)->pHead, nCopy);
    *ppszText = pszData;
    Advance(ptDecoder, nSize);
    return 1;
}

extern "C" int tqsClientProvWbxmlDecoderGetString(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderGetString");
    StepBack(ptDecoder);
    int nRet;
    for (;;) {
        unsigned char nByte;
        if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) {
            nRet = 0;
            break;
        }
        if (nByte == kTokStrI) {
            if (!tqsClientProvWbxmlDecoderGetStr(ptDecoder, ppszText)) {
                nRet = 0;
                break;
            }
        } else if (nByte == kTokStrT) {
            if (!tqsClientProvWbxmlDecoderGetStrTable(ptDecoder, ppszText)) {
                nRet = 0;
                break;
            }
        } else if (nByte == kTokEnd || nByte == kTokValue) {
            StepBack(ptDecoder);
            nRet = 1;
            break;
        } else if (tqsClientProvWbxmlDecoderGetParamTokenVal(nByte, ppszText) != TQS_OK) {
            nRet = 0;
            break;
        }
    }
    tqcTrace("[Error] [tqsClientProvWbxmlDecoderGetString] nRet [%d]", nRet);
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderContent(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderContent");
    unsigned char nByte;
    if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    TqsResult nRet;
    if (nByte == kTokStrI || nByte == kTokStrT) {
        nRet =
            tqsClientProvWbxmlDecoderGetString(ptDecoder, ppszText) ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
    } else if (nByte == kTokOpaque) {
        uint32_t nLength = 0;
        nRet = tqsClientProvWbxmlDecoderGetStrExtension(ptDecoder, nByte, ppszText, &nLength)
                   ? TQS_OK
                   : TQS_ERROR_WBXML_NO_MORE_DATA;
    } else if (tqsClientProvWbxmlDecoderGetParamTokenVal(nByte, ppszText) == TQS_OK) {
        return TQS_OK;
    } else if (nByte >= 0x80) {
        // An unknown value token is kept as its one raw byte.
        char *pszRaw = static_cast<char *>(tqsMemAllocSetZero_debug(2, kUnitPath, __LINE__));
        if (pszRaw != nullptr) pszRaw[0] = static_cast<char>(nByte);
        *ppszText = pszRaw;
        nRet = TQS_OK;
    } else {
        uint32_t nUsed = Consumed(ptDecoder);
        uint8_t nTag = nUsed >= 2 ? Buf(ptDecoder)->pHead[-2] : 0;
        tqcTrace("WARNING!!!!!!!! Not Support Type Numberic nTag=[%x]", nTag);
        StepBack(ptDecoder);
        nRet = tqsClientProvWbxmlDecoderSkipElement(ptDecoder, nByte);
    }
    tqcTrace("tqsClientProvWbxmlDecoderContent Error:%d", static_cast<int>(nRet));
    return nRet;
}

extern "C" TqsResult tqsCommaAdd(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    unsigned char nByte;
    if (!tqsClientProvWbxmlDecoderBufferReadByte(ptDecoder, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    if (!PeekByte(ptDecoder, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    if (nByte == kTokSwitchPage) {
        tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);  // status ignored
    } else if (nByte == kTokStrI || nByte == kTokStrT) {
        // A missing first value joins as empty text.
        if (!JoinText(ppszText, ",", 1, Join::kAppend)) {
            tqcTraceExcption("[Error] [tqsClientProvWbxmlDecoderGetParamTokenVal] pszData NULL", kUnitPath,
                             __LINE__);
            return TQS_ERROR_MEMORY;
        }
        return tqsClientProvWbxmlDecoderContent(ptDecoder, ppszText);
    }
    // The byte at the position is taken even when the body has ended (the zero padding).
    nByte = Remaining(ptDecoder) != 0 ? *Buf(ptDecoder)->pHead : 0;
    tqsClientProvWbxmlDecoderGetParamTokenVal(nByte, ppszText);
    Advance(ptDecoder, 1);
    return TQS_OK;
}

// ---- Parm values -------------------------------------------------------------

extern "C" TqsResult tqsClientProvWbxmlDecoderGetParamTokenVal(uint8_t nToken, char **ppszValue) {
    tqcTrace("tqsClientProvWbxmlDecoderGetParamTokenVal");
    const ValueHit tHit = kValueIndex.at[nToken];
    if (tHit.nTable == 0) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    const ValueTable &tTable = kValueTables[tHit.nTable - 1];
    const char *pszText = tTable.ptEntries[tHit.nEntry].pszText;
    if (!JoinText(ppszValue, pszText, TextLen(pszText), tTable.eJoin)) {
        tqcTraceExcption("[Error] [tqsClientProvWbxmlDecoderGetParamTokenVal] pszData NULL", kUnitPath,
                         __LINE__);
    }
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderParamValue(tqsWbxmlDecoder *ptDecoder, char **ppszField) {
    tqcTrace("tqsClientProvWbxmlDecoderParamValue");
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckAttr(ptDecoder, kTokValue);
    if (nRet != TQS_OK) return nRet;
    uint8_t nId;
    nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    if (nId == kTokSwitchPage) {
        tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);  // status ignored
        nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
        if (nRet != TQS_OK) return nRet;
    }
    tqcTrace("DecoderParam : nId = [0x%02x]", nId);
    if (nId == kTokEnd) return TQS_OK;
    return tqsClientProvWbxmlDecoderContent(ptDecoder, ppszField);
}

extern "C" TqsResult tqsClientProvWbxmlDecoderParamString(tqsWbxmlDecoder *ptDecoder, char **ppszField,
                                                          uint8_t nTag) {
    tqcTrace("tqsClientProvWbxmlDecoderParamString");
    tqcTrace("DecoderParam : nTag = [0x%02x]", nTag);
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckAttr(ptDecoder, nTag);
    if (nRet != TQS_OK) return nRet;
    uint8_t nId;
    nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    tqcTrace("DecoderParam : nId = [0x%02x]", nId);
    if (nId == kTokEnd) {
        tqcTrace("DecoderParam : Value is NULL\n");
        *ppszField = nullptr;  // an earlier value is dropped, not freed
    } else if (nId == kTokValue) {
        nRet = tqsClientProvWbxmlDecoderParamValue(ptDecoder, ppszField);
    } else if (nId == kTokSwitchPage) {
        tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);  // status ignored
        nRet = tqsClientProvWbxmlDecoderParamValue(ptDecoder, ppszField);
    } else {
        tqcTrace("DecoderParam : Tag Code [%d] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n", nId);
        nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    const unsigned char *pValue = reinterpret_cast<const unsigned char *>(*ppszField);
    if (pValue == nullptr) {
        tqcTrace("DecoderParam : String is NULL");
    } else if (pValue[0] <= 0x80) {
        tqcTrace("DecoderParam : String : Value=[%s]\n", *ppszField);
    } else {
        tqcTrace("DecoderParam : **ppValue : Value=[0x%x]\n", pValue[0]);
    }
    tqcTrace("tqsClientProvWbxmlDecoderParamString Error Code:%d", static_cast<int>(nRet));
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderParamListString(tqsWbxmlDecoder *ptDecoder, TqsList **pptList,
                                                              uint8_t nTag) {
    tqcTrace("tqsClientProvWbxmlDecoderParamListString");
    tqcTrace("DecoderParam : nTag = [0x%02x]", nTag);
    TqsList *ptList = *pptList;
    char *pszValue = nullptr;  // not reset between rounds
    for (;;) {
        uint8_t nByte;
        TqsResult nRet = tqsClientProvWbxmlDecoderCurElementNotAND(ptDecoder, &nByte);
        if (nRet != TQS_OK) return nRet;
        if (nByte == kTokEnd) {
            *pptList = ptList;
            return TQS_OK;
        }
        // A second name/value pair in one parm reads into the text the first
        // pair put in the list. Joining to it would leave the list holding a
        // freed text: the listed text stays, the extended one becomes the next
        // item, and a value left unchanged is not listed twice.
        char *pszListed = pszValue;
        g_pszListedText = pszListed;
        nRet = tqsClientProvWbxmlDecoderParamString(ptDecoder, &pszValue, nByte);
        g_pszListedText = nullptr;
        if (nRet != TQS_OK) return nRet;
        if (pszListed != nullptr && pszValue == pszListed) continue;
        if (ptList == nullptr) {
            if (tqsListCreate(&ptList, pszValue) != TQS_OK || ptList == nullptr) {
                tqcTrace("[Error] [tqsClientProvWbxmlDecoderParamListString] ptTmpList NULL");
                return TQS_ERROR_FAILED;
            }
        } else {
            tqsListAddNodeLast(ptList, pszValue);  // a null value is refused
        }
    }
}

// ---- Characteristics ---------------------------------------------------------

namespace {

inline const char *Str(const char *psz) {
    return psz != nullptr ? psz : "(null)";
}

inline bool TextIs(const char *psz, const char *pszWanted) {
    return psz != nullptr && strcmp(psz, pszWanted) == 0;
}

constexpr int kSlotRoaming = 15;
constexpr int kSlotWifi = 16;
constexpr uint16_t kNoNesting = 0xFFFF;

template <typename Record, TqsResult (*Handler)(tqsWbxmlDecoder *, Record *)>
TqsResult CallParm(tqsWbxmlDecoder *ptDecoder, void *pRecord) {
    return Handler(ptDecoder, static_cast<Record *>(pRecord));
}

// What a characteristic of each tqsWapCharacter slot is: its record size, where
// nested characteristics go (or the refusal traced), and its parm handler.
struct SlotInfo {
    uint32_t nFields;
    uint16_t nCharListOffset;
    const char *pszNestRefusal;
    TqsResult (*pfnParm)(tqsWbxmlDecoder *, void *);
};

#define TQS_FIELDS(type) static_cast<uint32_t>(sizeof(type) / sizeof(void *))
#define TQS_NESTS(type) static_cast<uint16_t>(offsetof(type, ptCharacterList)), nullptr
#define TQS_PARM(type, fn) CallParm<type, fn>
constexpr char kRefusePort[] = "BOOTSTRAP is Not Support Chiled PORT.";
constexpr char kRefuseResource[] = "RESOURCE is Not Support Chiled CHARACTER.";
constexpr SlotInfo kSlots[] = {
    {TQS_FIELDS(tqsWapPxLogical), TQS_NESTS(tqsWapPxLogical),
     TQS_PARM(tqsWapPxLogical, tqsClientProvWbxmlDecoderParamPxlogical)},
    {TQS_FIELDS(tqsWapPxAuthInfo), kNoNesting, kRefuseResource,
     TQS_PARM(tqsWapPxAuthInfo, tqsClientProvWbxmlDecoderParamPxAuthInfo)},
    {TQS_FIELDS(tqsWapPort), kNoNesting, kRefusePort,
     TQS_PARM(tqsWapPort, tqsClientProvWbxmlDecoderParamPort)},
    {TQS_FIELDS(tqsWapPxPhysical), TQS_NESTS(tqsWapPxPhysical),
     TQS_PARM(tqsWapPxPhysical, tqsClientProvWbxmlDecoderParamPxPhysical)},
    {TQS_FIELDS(tqsWapNapDef), TQS_NESTS(tqsWapNapDef),
     TQS_PARM(tqsWapNapDef, tqsClientProvWbxmlDecoderParamNapDef)},
    {TQS_FIELDS(tqsWapNapAuthInfo), kNoNesting, kRefusePort,
     TQS_PARM(tqsWapNapAuthInfo, tqsClientProvWbxmlDecoderParamNapAuthInfo)},
    {TQS_FIELDS(tqsWapValidity), kNoNesting, kRefusePort,
     TQS_PARM(tqsWapValidity, tqsClientProvWbxmlDecoderParamValidity)},
    {TQS_FIELDS(tqsWapAppAddr), TQS_NESTS(tqsWapAppAddr),
     TQS_PARM(tqsWapAppAddr, tqsClientProvWbxmlDecoderParamAppAddr)},
    {TQS_FIELDS(tqsWapResource), kNoNesting, kRefuseResource,
     TQS_PARM(tqsWapResource, tqsClientProvWbxmlDecoderParamResource)},
    {TQS_FIELDS(tqsWapAppAuth), kNoNesting, "APPAUTH is Not Support Chiled CHARACTER.",
     TQS_PARM(tqsWapAppAuth, tqsClientProvWbxmlDecoderParamAppAuth)},
    {TQS_FIELDS(tqsWapApplication), TQS_NESTS(tqsWapApplication),
     TQS_PARM(tqsWapApplication, tqsClientProvWbxmlDecoderParamApplication)},
    {TQS_FIELDS(tqsWapBootstrap), kNoNesting, "BOOTSTRAP is Not Support Chiled CHARACTER.",
     TQS_PARM(tqsWapBootstrap, tqsClientProvWbxmlDecoderParamBootstrap)},
    {TQS_FIELDS(tqsWapVendorConfig), kNoNesting, "VENDORCONFIG is Not Support Chiled CHARACTER.",
     TQS_PARM(tqsWapVendorConfig, tqsClientProvWbxmlDecoderParamVendorConfig)},
    {TQS_FIELDS(tqsWapClientIdentity), kNoNesting, "BOOTSTRAP is Not Support Chiled CLIENTIDENTITY.",
     TQS_PARM(tqsWapClientIdentity, tqsClientProvWbxmlDecoderParamClientIdentity)},
    {TQS_FIELDS(tqsWapAccess), kNoNesting, "BOOTSTRAP is Not Support Chiled ACCESS.",
     TQS_PARM(tqsWapAccess, tqsClientProvWbxmlDecoderParamAccess)},
    {TQS_FIELDS(tqsWapRoaming), kNoNesting, nullptr,
     TQS_PARM(tqsWapRoaming, tqsClientProvWbxmlDecoderParamRoaming)},
    {TQS_FIELDS(tqsWapWifi), kNoNesting, nullptr, TQS_PARM(tqsWapWifi, tqsClientProvWbxmlDecoderParamWifi)},
};
#undef TQS_FIELDS
#undef TQS_NESTS
#undef TQS_PARM
static_assert(sizeof(kSlots) / sizeof(kSlots[0]) * sizeof(void *) == sizeof(tqsWapCharacter));

// Slot created by the type tokens 0x51..0x5B on attribute page 0 and page 1.
constexpr uint8_t kFirstTypeToken = 0x51;
constexpr uint8_t kTypeSlots[][2] = {
    {0, 0},    // 0x51 PXLOGICAL
    {3, 3},    // 0x52 PXPHYSICAL
    {2, 2},    // 0x53 PORT
    {6, 6},    // 0x54 VALIDITY
    {4, 10},   // 0x55 NAPDEF / APPLICATION
    {11, 7},   // 0x56 BOOTSTRAP / APPADDR
    {12, 9},   // 0x57 VENDORCONFIG / APPAUTH
    {13, 13},  // 0x58 CLIENTIDENTITY
    {1, 8},    // 0x59 PXAUTHINFO / RESOURCE
    {5, 5},    // 0x5A NAPAUTHINFO
    {14, 14},  // 0x5B ACCESS
};
constexpr uint8_t kLastTypeToken = kFirstTypeToken + sizeof(kTypeSlots) / sizeof(kTypeSlots[0]) - 1;

// Slot of a type token on a page, or -1 (no type, or the inline type 0x50).
inline int TypeSlot(uint8_t nAttrId, uint8_t nPage) {
    if (nAttrId < kFirstTypeToken || nAttrId > kLastTypeToken) return -1;
    return kTypeSlots[nAttrId - kFirstTypeToken][nPage == 1 ? 1 : 0];
}

inline void **Slots(tqsWapCharacter *ptCharacter) {
    return reinterpret_cast<void **>(ptCharacter);
}

// Puts a new zero-filled record of the slot's type into the characteristic.
TqsResult CreateSlotRecord(tqsWapCharacter *ptCharacter, int nSlot) {
    void *pRecord = tqsMemAllocSetZero_debug(kSlots[nSlot].nFields * sizeof(void *) + 1, kUnitPath, __LINE__);
    if (pRecord == nullptr) return TQS_ERROR_FAILED;
    if (Slots(ptCharacter)[nSlot] != nullptr)
        tqcTrace("tqsClientProvWbxmlDecoderCharacterAttribute : ERROR!!!");
    Slots(ptCharacter)[nSlot] = pRecord;  // an earlier record of the same slot is lost
    return TQS_OK;
}

// Keeps the recursion through nested characteristics bounded.
struct DepthGuard {
    tqsWbxmlDecoder *ptDecoder;
    explicit DepthGuard(tqsWbxmlDecoder *ptDec) : ptDecoder(ptDec) { ++ptDecoder->nDepth; }
    ~DepthGuard() { --ptDecoder->nDepth; }
};

TqsResult NestedCharacteristics(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter *ptCharacter, uint8_t nAttrId,
                                uint8_t nPage) {
    int nSlot = TypeSlot(nAttrId, nPage);
    if (nSlot < 0) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    const SlotInfo &tInfo = kSlots[nSlot];
    if (tInfo.nCharListOffset == kNoNesting) {
        tqcTrace("%s", tInfo.pszNestRefusal);
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    char *pRecord = static_cast<char *>(Slots(ptCharacter)[nSlot]);
    if (pRecord == nullptr) return TQS_ERROR_MISSING;
    return tqsClientProvWbxmlDecoderCharacterList(
        ptDecoder, reinterpret_cast<TqsList **>(pRecord + tInfo.nCharListOffset));
}

TqsResult CharacteristicParm(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter *ptCharacter, uint8_t nAttrId,
                             uint8_t nPage, const char *pszName) {
    if (nAttrId == kAttrTypeInline) {
        tqcTrace("................NEW.................");
        if (TextIs(pszName, "ROAMING")) {
            tqcTrace("cName [%s]", pszName);
            return tqsClientProvWbxmlDecoderParamRoaming(ptDecoder, ptCharacter->ptRoaming);
        }
        if (TextIs(pszName, "WI-FI")) {
            tqcTrace("cName [%s]", pszName);
            return tqsClientProvWbxmlDecoderParamWifi(ptDecoder, ptCharacter->ptWifi);
        }
        tqcTrace("Tag Code = CHARACTER ATTR TYPE HAVE NOT...CP SPEC.....");
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    int nSlot = TypeSlot(nAttrId, nPage);
    if (nSlot < 0) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    return kSlots[nSlot].pfnParm(ptDecoder, Slots(ptCharacter)[nSlot]);
}

}  // namespace

extern "C" TqsResult tqsClientProvWbxmlDecoderWbxmlBody(tqsWbxmlDecoder *ptDecoder, tqsWapDoc **pptWapDoc) {
    tqcTrace("tqsClientProvWbxmlDecoderWbxmlBody");
    if (ptDecoder->ptBuffer == nullptr) return TQS_ERROR_WBXML_NO_BUFFER;
    ptDecoder->nDepth = 0;
    g_nJoinBytes = 0;
    tqsWapDoc *ptWapDoc =
        static_cast<tqsWapDoc *>(tqsMemAllocSetZero_debug(sizeof(tqsWapDoc) + 1, kUnitPath, __LINE__));
    if (ptWapDoc == nullptr) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlBody] ptTmpWapDoc NULL");
        return TQS_ERROR_FAILED;
    }
    uint8_t nId;
    TqsResult nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
    if (nRet != TQS_OK) {
        tqsClientProvWbxmlDeleteWapDoc(ptWapDoc);
        return nRet;
    }
    switch (nId) {
        case kTokEnd: {
            uint8_t nEnd;
            nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nEnd);
            tqsClientProvWbxmlDeleteWapDoc(ptWapDoc);
            return nRet;  // a document without a tree
        }
        case kTokSwitchPage:
            nRet = SkipTwoBytes(ptDecoder);
            if (nRet != TQS_OK) {
                tqsClientProvWbxmlDeleteWapDoc(ptWapDoc);
                return nRet;
            }
            break;
        case kIdWapDoc:
            nRet = tqsClientProvWbxmlDecoderWapDocVersion(ptDecoder, ptWapDoc);
            break;
        case kIdCharacteristic:
            nRet = tqsClientProvWbxmlDecoderCharacterList(ptDecoder, &ptWapDoc->ptCharacterList);
            break;
        case kIdParm:
            break;
        default:
            tqcTrace("Unknown Element[%x]", nId);
            nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
            break;
    }
    if (nRet != TQS_OK) {
        tqcTrace("WBXML Decode Error[%x]", nId);
        tqsClientProvWbxmlDeleteWapDoc(ptWapDoc);
        return nRet;
    }
    *pptWapDoc = ptWapDoc;
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderWapDocVersion(tqsWbxmlDecoder *ptDecoder, tqsWapDoc *ptWapDoc) {
    tqcTrace("tqsClientProvWbxmlDecoderWapDocVersion");
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckElement(ptDecoder, kIdWapDoc);
    if (nRet == TQS_OK) {
        if (!ptDecoder->bHasContent) return TQS_OK;
        if (ptWapDoc == nullptr) return TQS_ERROR_MISSING;
        if (ptDecoder->bHasAttribute) {
            nRet = tqsClientProvWbxmlDecoderAttributeWapDocVersion(ptDecoder);
            if (nRet != TQS_OK) return nRet;
        }
        while (nRet == TQS_OK) {
            tqcTrace("WapDoc in while");
            uint8_t nId;
            nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
            if (nRet != TQS_OK) break;
            if (nId == kTokEnd) {
                nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
                break;
            }
            switch (nId) {
                case kTokSwitchPage:
                    nRet = SkipTwoBytes(ptDecoder);
                    break;
                case kTokStrI:
                    nRet = DropInlineString(ptDecoder);
                    break;
                case kIdCharacteristic:
                    nRet = tqsClientProvWbxmlDecoderCharacterList(ptDecoder, &ptWapDoc->ptCharacterList);
                    break;
                default:
                    // A parm straight inside the document would never be consumed
                    // (a loop without end); it is refused like any unknown tag.
                    tqcTrace("Tag Code [%d] = TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n", nId);
                    nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
                    break;
            }
        }
    }
    tqcTrace("WapDoc out of while");
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderAttributeWapDocVersion(tqsWbxmlDecoder *ptDecoder) {
    tqcTrace("tqsClientProvWbxmlDecoderAttributeWapDocVersion");
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckAttrVersion(ptDecoder);
    if (nRet != TQS_OK) return nRet;
    uint8_t nId;
    nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    if (nId != kTokEnd && nId != kTokStrI) {
        tqcTrace("Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT");
        tqcTrace("tqsClientProvWbxmlDecoderAttributeWapDocVersion[%x]", nId);
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    tqsClientProvWbxmlDecoderSkipAttribute(ptDecoder);  // status ignored
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCheckAttrVersion(tqsWbxmlDecoder *ptDecoder) {
    uint8_t nId;
    TqsResult nRet = tqsClientProvWbxmlDecoderReadAttr(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    if (nId != kAttrVersion10 && nId != kAttrVersion) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderCheckAttrVersion] nId [0x%x]", nId);
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCharacterList(tqsWbxmlDecoder *ptDecoder, TqsList **pptList) {
    tqcTrace("tqsClientProvWbxmlDecoderCharacterList");
    TqsList *ptList = *pptList;
    for (;;) {
        tqsWapCharacter *ptCharacter = nullptr;
        TqsResult nRet = tqsClientProvWbxmlDecoderCharacter(ptDecoder, &ptCharacter);
        if (nRet != TQS_OK) return nRet;  // a list this run created is not stored
        if (ptList == nullptr) {
            tqsListCreate(&ptList, ptCharacter);
            if (ptList == nullptr) {
                tqcTrace("[Error] [tqsClientProvWbxmlDecoderCharacterList] ptTmpList NULL");
                return TQS_ERROR_FAILED;
            }
        } else {
            tqsListAddNodeLast(ptList, ptCharacter);  // a null (empty) characteristic is refused
        }
        uint8_t nId;
        nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
        if (nRet != TQS_OK) return nRet;
        if (nId == kTokStrI) {
            nRet = DropInlineString(ptDecoder);
            if (nRet == TQS_OK) nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
            if (nRet != TQS_OK) return nRet;
        }
        if (nId == kTokEnd) {
            *pptList = ptList;  // the END belongs to the enclosing element
            return TQS_OK;
        }
    }
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCharacter(tqsWbxmlDecoder *ptDecoder,
                                                        tqsWapCharacter **pptCharacter) {
    tqcTrace("tqsClientProvWbxmlDecoderCharacter");
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckElement(ptDecoder, kIdCharacteristic);
    if (nRet != TQS_OK) return nRet;
    if (!ptDecoder->bHasContent) return TQS_OK;
    if (ptDecoder->nDepth >= kMaxCharacterDepth) {
        tqcTrace("tqsClientProvWbxmlDecoderCharacter : nesting deeper than %u", kMaxCharacterDepth);
        return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    }
    DepthGuard tDepth(ptDecoder);
    tqsWapCharacter *ptCharacter = static_cast<tqsWapCharacter *>(
        tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kUnitPath, __LINE__));
    if (ptCharacter == nullptr) return TQS_ERROR_FAILED;
    uint8_t nAttrId = 0;
    uint8_t nPage = 0;
    char *pszName = nullptr;
    if (ptDecoder->bHasAttribute) {
        nRet = tqsClientProvWbxmlDecoderCharacterAttribute(ptDecoder, ptCharacter, &nAttrId,
                                                           &ptDecoder->nCodePage, &pszName);
        nPage = ptDecoder->nCodePage;
        if (nRet != TQS_OK) return nRet;  // the record is not released
    }
    uint8_t nId = kIdCharacteristic;
    for (;;) {
        tqcTrace("tqsClientProvWbxmlDecoderCharacter :: nId[0x%02x], nAttrId[0x%02x]", nId, nAttrId);
        nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nId);
        if (nRet != TQS_OK) return nRet;
        switch (nId) {
            case kTokEnd:
                nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
                *pptCharacter = ptCharacter;
                tqcTrace("String::[%s]", Str(pszName));
                tqsMemFree_debug(pszName);
                return nRet;
            case kTokSwitchPage:
                nRet = SkipTwoBytes(ptDecoder);
                break;
            case kTokStrI:
                nRet = DropInlineString(ptDecoder);
                break;
            case kIdCharacteristic:
                nRet = NestedCharacteristics(ptDecoder, ptCharacter, nAttrId, nPage);
                break;
            case kIdParm:
                nRet = CharacteristicParm(ptDecoder, ptCharacter, nAttrId, nPage, pszName);
                break;
            default:
                tqcTrace("Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT");
                tqcTrace("tqsClientProvWbxmlDecoderCharacter[%x]", nId);
                nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
                break;
        }
        if (nRet != TQS_OK) return nRet;  // the record is neither released nor handed out
    }
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCharacterAttribute(tqsWbxmlDecoder *ptDecoder,
                                                                 tqsWapCharacter *ptCharacter,
                                                                 uint8_t *pnAttrId, const uint8_t *pnCodePage,
                                                                 char **ppszName) {
    tqcTrace("tqsClientProvWbxmlDecoderCharacterAttribute");
    TqsResult nRet;
    do {
        uint8_t nByte, nId;
        nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nByte);
        if (nRet != TQS_OK) return nRet;
        if (nByte == kTokEnd) return tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
        *pnAttrId = nByte;
        if (nByte == kTokSwitchPage) {
            nRet = tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);
        } else if (nByte == kAttrTypeInline) {
            tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
            char *pszName = nullptr;
            nRet = tqsClientProvWbxmlDecoderContent(ptDecoder, &pszName);
            tqcTrace("[tqsClientProvWbxmlDecoderParamNameString] pszName [%s]", Str(pszName));
            *ppszName = pszName;
            if (TextIs(pszName, "ROAMING")) {
                if (CreateSlotRecord(ptCharacter, kSlotRoaming) != TQS_OK) return TQS_ERROR_FAILED;
                tqcTrace("------------------NEW-------------------!!");
                tqcTrace("cName [%s]", pszName);
            } else if (TextIs(pszName, "WI-FI")) {
                if (CreateSlotRecord(ptCharacter, kSlotWifi) != TQS_OK) return TQS_ERROR_FAILED;
                tqcTrace("------------WIFI------------------!!");
                tqcTrace("cName [%s]", pszName);
            }
        } else if (nByte >= kFirstTypeToken && nByte <= kLastTypeToken) {
            if (CreateSlotRecord(ptCharacter, TypeSlot(nByte, *pnCodePage)) != TQS_OK)
                return TQS_ERROR_FAILED;
            nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
        } else {
            tqcTrace("Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT");
            tqcTrace("tqsClientProvWbxmlDecoderCharacterAttribute[%x]", nByte);
            nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
        }
    } while (nRet == TQS_OK);
    return nRet;
}

// ---- Parm handlers -----------------------------------------------------------
//
// One walker serves all seventeen characteristics: each has a table of the
// parm name bytes it accepts, the field (offset into its record) and how the
// value is read. The named entry points carry their own traces and quirks.

namespace {

enum class ParmKind : uint8_t {
    kSingle,       // value into a string field
    kList,         // value as one more item of a string list
    kLenientList,  // kList whose failure is only traced
    kName,         // name written as a string: the characteristic's name-string handler
    kComma,        // 0x90 after a value: join the next value with a comma
    kStartPage,    // kSingle; no value marks the record as the start page
};

struct ParmEntry {
    uint8_t nByte;
    ParmKind eKind;
    uint16_t nOffset;
    const char *pszLabel;  // traced before the value is read, or null
};

enum ParmTraces : uint8_t {
    kTraceNone = 0,
    kTraceEndCode = 1,   // "...ParamPxlogical Error Code:%d" at the end
    kTraceIdAround = 2,  // nId before each dispatch and the error summary at the end
    kTraceIdAfter = 4,   // nId after each dispatch
};

// Entry of each parm byte: its position in the table + 1, 0 for an unknown byte.
struct ParmIndex {
    uint8_t nSlot[256];
};

struct ParmHandler {
    const char *pszName;         // traced on entry
    const char *pszUnknownLine;  // second line for an unknown byte; null: the single NAPDEF line
    bool bNeedsRecord;           // 2 for a null record
    bool bRawPeekAfterSwitch;    // after SWITCH_PAGE peek the raw byte again (RESOURCE, APPAUTH)
    uint8_t nTraces;
    const ParmEntry *ptEntries;
    const ParmIndex *ptIndex;
    TqsResult (*pfnName)(tqsWbxmlDecoder *, void *, uint8_t);
};

// ---- Parm tables: each handler's bytes, built from its record's fields ----

namespace rec = tqs::detail;

template <size_t N>
struct ParmTable {
    ParmEntry atEntries[N];
    ParmIndex tIndex;
};

constexpr ParmKind ReaderOf(rec::Fill eFill) {
    switch (eFill) {
        case rec::Fill::StartPage:
            return ParmKind::kStartPage;
        case rec::Fill::List:
            return ParmKind::kList;
        case rec::Fill::LenientList:
            return ParmKind::kLenientList;
        default:
            return ParmKind::kSingle;
    }
}

// A record with a field filled by an inline-named parm takes the name attribute.
constexpr bool ReadsInlineName(rec::Fill eFill) {
    return eFill == rec::Fill::Named || eFill == rec::Fill::PairName;
}

template <rec::Kind K>
constexpr size_t ParmCount() {
    size_t n = 0;
    bool bName = false;
    for (const rec::Field &f : rec::Record<K>::kFields) {
        n += (f.token != 0) + (f.fill == rec::Fill::Joined);
        bName = bName || ReadsInlineName(f.fill);
    }
    return n + bName;
}

// bLabelled: the handler traces each parm's label before it reads the parm.
template <rec::Kind K, bool bLabelled = false>
constexpr ParmTable<ParmCount<K>()> MakeParmTable() {
    ParmTable<ParmCount<K>()> t{};
    size_t n = 0;
    auto add = [&](uint8_t nByte, ParmKind eKind, uint16_t nOffset, const char *pszLabel) {
        t.atEntries[n] = ParmEntry{nByte, eKind, nOffset, bLabelled ? pszLabel : nullptr};
        t.tIndex.nSlot[nByte] = static_cast<uint8_t>(++n);
    };
    bool bName = false;
    for (const rec::Field &f : rec::Record<K>::kFields) {
        if (f.token != 0) add(f.token, ReaderOf(f.fill), f.tree, f.label);
        if (f.fill == rec::Fill::Joined) add(kTokComma, ParmKind::kComma, f.tree, nullptr);
        bName = bName || ReadsInlineName(f.fill);
    }
    if (bName) add(kTokNameAttr, ParmKind::kName, 0, rec::kParmLabel<"">);
    return t;
}

constexpr auto kPxLogicalParms = MakeParmTable<rec::Kind::PxLogical>();
constexpr auto kPxAuthInfoParms = MakeParmTable<rec::Kind::PxAuthInfo>();
constexpr auto kPortParms = MakeParmTable<rec::Kind::Port>();
constexpr auto kPxPhysicalParms = MakeParmTable<rec::Kind::PxPhysical>();
constexpr auto kNapDefParms = MakeParmTable<rec::Kind::NapDef>();
constexpr auto kNapAuthInfoParms = MakeParmTable<rec::Kind::NapAuthInfo>();
constexpr auto kValidityParms = MakeParmTable<rec::Kind::Validity>();
constexpr auto kApplicationParms = MakeParmTable<rec::Kind::Application, true>();
constexpr auto kAppAddrParms = MakeParmTable<rec::Kind::AppAddr>();
constexpr auto kAppAuthParms = MakeParmTable<rec::Kind::AppAuth>();
constexpr auto kResourceParms = MakeParmTable<rec::Kind::Resource, true>();
constexpr auto kBootstrapParms = MakeParmTable<rec::Kind::Bootstrap>();
constexpr auto kVendorConfigParms = MakeParmTable<rec::Kind::VendorConfig>();
constexpr auto kClientIdentityParms = MakeParmTable<rec::Kind::ClientIdentity>();
constexpr auto kAccessParms = MakeParmTable<rec::Kind::Access>();
constexpr auto kRoamingParms = MakeParmTable<rec::Kind::Roaming>();
constexpr auto kWifiParms = MakeParmTable<rec::Kind::Wifi>();
static_assert(kAppAuthParms.tIndex.nSlot[kTokComma] != 0 && kResourceParms.tIndex.nSlot[kTokComma] == 0,
              "0x90 joins in APPAUTH only");
static_assert(kNapDefParms.tIndex.nSlot[kTokNameAttr] != 0 && kPxLogicalParms.tIndex.nSlot[kTokNameAttr] == 0,
              "inline names where a field takes them");

#define TQS_ENTRIES(table) table.atEntries, &table.tIndex
#define TQS_UNKNOWN(name) name "[%x]"

constexpr ParmHandler kPxLogicalHandler = {"tqsClientProvWbxmlDecoderParamPxlogical",
                                           TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamPxlogical"),
                                           true,
                                           false,
                                           kTraceEndCode,
                                           TQS_ENTRIES(kPxLogicalParms),
                                           nullptr};
constexpr ParmHandler kPxAuthInfoHandler = {"tqsClientProvWbxmlDecoderParamPxAuthInfo",
                                            TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamPxAuthInfo"),
                                            true,
                                            false,
                                            kTraceIdAround,
                                            TQS_ENTRIES(kPxAuthInfoParms),
                                            nullptr};
constexpr ParmHandler kPortHandler = {"tqsClientProvWbxmlDecoderParamPort",
                                      TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamPort"),
                                      true,
                                      false,
                                      kTraceNone,
                                      TQS_ENTRIES(kPortParms),
                                      nullptr};
constexpr ParmHandler kPxPhysicalHandler = {"tqsClientProvWbxmlDecoderParamPxPhysical",
                                            TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamPxPhysical"),
                                            true,
                                            false,
                                            kTraceNone,
                                            TQS_ENTRIES(kPxPhysicalParms),
                                            nullptr};
constexpr ParmHandler kNapDefHandler = {"tqsClientProvWbxmlDecoderParamNapDef",
                                        nullptr,
                                        true,
                                        false,
                                        kTraceNone,
                                        TQS_ENTRIES(kNapDefParms),
                                        [](tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
                                            return tqsClientProvWbxmlDecoderParamNapNameString(
                                                ptDecoder, static_cast<tqsWapNapDef *>(pRecord), nTag);
                                        }};
constexpr ParmHandler kNapAuthInfoHandler = {"tqsClientProvWbxmlDecoderParamNapAuthInfo",
                                             TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamNapAuthInfo"),
                                             true,
                                             false,
                                             kTraceNone,
                                             TQS_ENTRIES(kNapAuthInfoParms),
                                             nullptr};
constexpr ParmHandler kValidityHandler = {"tqsClientProvWbxmlDecoderParamValidity",
                                          TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamValidity"),
                                          true,
                                          false,
                                          kTraceNone,
                                          TQS_ENTRIES(kValidityParms),
                                          nullptr};
constexpr ParmHandler kApplicationHandler = {"tqsClientProvWbxmlDecoderParamApplication",
                                             TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamApplication"),
                                             true,
                                             false,
                                             kTraceIdAfter,
                                             TQS_ENTRIES(kApplicationParms),
                                             [](tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
                                                 return tqsClientProvWbxmlDecoderParamAppNameString(
                                                     ptDecoder, static_cast<tqsWapApplication *>(pRecord),
                                                     nTag);
                                             }};
constexpr ParmHandler kAppAddrHandler = {"tqsClientProvWbxmlDecoderParamAppAddr",
                                         TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamAppAddr"),
                                         true,
                                         false,
                                         kTraceNone,
                                         TQS_ENTRIES(kAppAddrParms),
                                         nullptr};
constexpr ParmHandler kAppAuthHandler = {"tqsClientProvWbxmlDecoderParamAppAuth",
                                         TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamAppAuth"),
                                         true,
                                         true,
                                         kTraceNone,
                                         TQS_ENTRIES(kAppAuthParms),
                                         nullptr};
constexpr ParmHandler kResourceHandler = {"tqsClientProvWbxmlDecoderParamResource",
                                          TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamResource"),
                                          true,
                                          true,
                                          kTraceNone,
                                          TQS_ENTRIES(kResourceParms),
                                          nullptr};
constexpr ParmHandler kBootstrapHandler = {"tqsClientProvWbxmlDecoderParamBootstrap",
                                           TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamBootstrap"),
                                           true,
                                           false,
                                           kTraceNone,
                                           TQS_ENTRIES(kBootstrapParms),
                                           nullptr};
constexpr ParmHandler kVendorConfigHandler = {
    "tqsClientProvWbxmlDecoderParamVendorConfig",
    TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamVendorConfig"),
    true,
    false,
    kTraceNone,
    TQS_ENTRIES(kVendorConfigParms),
    [](tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
        tqsWapVendorConfig *ptRecord = static_cast<tqsWapVendorConfig *>(pRecord);
        return tqsClientProvWbxmlDecoderParamVendorNameString(ptDecoder, &ptRecord->pszParmName,
                                                              &ptRecord->pszParmValue, nTag);
    }};
constexpr ParmHandler kClientIdentityHandler = {"tqsClientProvWbxmlDecoderParamClientIdentity",
                                                TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamClientIdentity"),
                                                true,
                                                false,
                                                kTraceNone,
                                                TQS_ENTRIES(kClientIdentityParms),
                                                nullptr};
constexpr ParmHandler kAccessHandler = {"tqsClientProvWbxmlDecoderParamAccess",
                                        TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamAccess"),
                                        true,
                                        false,
                                        kTraceNone,
                                        TQS_ENTRIES(kAccessParms),
                                        nullptr};
constexpr ParmHandler kRoamingHandler = {"tqsClientProvWbxmlDecoderParamRoming",
                                         TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamAccess"),
                                         false,
                                         false,
                                         kTraceNone,
                                         TQS_ENTRIES(kRoamingParms),
                                         [](tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
                                             return tqsClientProvWbxmlDecoderParamRoamingNameString(
                                                 ptDecoder, static_cast<tqsWapRoaming *>(pRecord), nTag);
                                         }};
constexpr ParmHandler kWifiHandler = {"tqsClientProvWbxmlDecoderParamWifi",
                                      TQS_UNKNOWN("tqsClientProvWbxmlDecoderParamAccess"),
                                      false,
                                      false,
                                      kTraceNone,
                                      TQS_ENTRIES(kWifiParms),
                                      [](tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTag) {
                                          return tqsClientProvWbxmlDecoderParamWifiNameString(
                                              ptDecoder, static_cast<tqsWapWifi *>(pRecord), nTag);
                                      }};
#undef TQS_ENTRIES
#undef TQS_UNKNOWN

TqsResult ReadParm(tqsWbxmlDecoder *ptDecoder, void *pRecord, const ParmHandler &tHandler,
                   const ParmEntry &tEntry, uint8_t nByte) {
    char *pField = static_cast<char *>(pRecord) + tEntry.nOffset;
    char **ppszField = reinterpret_cast<char **>(pField);
    TqsList **pptList = reinterpret_cast<TqsList **>(pField);
    TqsResult nRet;
    switch (tEntry.eKind) {
        case ParmKind::kSingle:
            return tqsClientProvWbxmlDecoderParamString(ptDecoder, ppszField, nByte);
        case ParmKind::kList:
            return tqsClientProvWbxmlDecoderParamListString(ptDecoder, pptList, nByte);
        case ParmKind::kLenientList:
            if (tqsClientProvWbxmlDecoderParamListString(ptDecoder, pptList, nByte) != TQS_OK) {
                tqcTrace("[ERROR] tqsClientProvWbxmlDecoderParamListString Fail");
            }
            return TQS_OK;
        case ParmKind::kName:
            return tHandler.pfnName(ptDecoder, pRecord, nByte);
        case ParmKind::kComma:
            nRet = tqsCommaAdd(ptDecoder, ppszField);
            tqcTrace("--------------------------[%s]", Str(*ppszField));
            return nRet;
        case ParmKind::kStartPage:
            nRet = tqsClientProvWbxmlDecoderParamString(ptDecoder, ppszField, nByte);
            if (*ppszField == nullptr) {
                // 1516: the line the leak report has always named for this block.
                *ppszField = static_cast<char *>(tqsMemAllocSetZero_debug(11, kUnitPath, 1516));
                if (*ppszField != nullptr) memcpy(*ppszField, "startpage", 9);
            }
            return nRet;
    }
    return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
}

TqsResult RunParmHandler(tqsWbxmlDecoder *ptDecoder, void *pRecord, const ParmHandler &tHandler) {
    tqcTrace("%s", tHandler.pszName);
    if (tHandler.bNeedsRecord && pRecord == nullptr) return TQS_ERROR_MISSING;
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckElement(ptDecoder, kIdParm);
    if (nRet != TQS_OK) return nRet;
    uint8_t nByte = 0;
    do {
        nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nByte);
        if (nRet != TQS_OK) return nRet;
        if (nByte == kTokEnd) {
            uint8_t nId;
            nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
            break;
        }
        if (nByte == kTokSwitchPage) {
            nRet = tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);
            if (tHandler.bRawPeekAfterSwitch) continue;
            // The others peek through the tag reader: a token of 0x40 or above
            // right after a switch is seen as its low six bits.
            nRet = tqsClientProvWbxmlDecoderCurElement(ptDecoder, &nByte);
            if (nRet != TQS_OK) return nRet;
        }
        if (tHandler.nTraces & kTraceIdAround) tqcTrace("DecoderParam : nId = [0x%02x]", nByte);
        const uint8_t nSlot = tHandler.ptIndex->nSlot[nByte];
        const ParmEntry *ptEntry = nSlot != 0 ? &tHandler.ptEntries[nSlot - 1] : nullptr;
        if (ptEntry == nullptr) {
            if (tHandler.pszUnknownLine != nullptr) {
                tqcTrace("Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT");
                tqcTrace(tHandler.pszUnknownLine, nByte);
            } else {
                tqcTrace(
                    "tqsClientProvWbxmlDecoderParamNapDef : Tag Code [%d] = "
                    "TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n",
                    nByte);
            }
            nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
            break;
        }
        if (ptEntry->pszLabel != nullptr) tqcTrace("%s", ptEntry->pszLabel);
        nRet = ReadParm(ptDecoder, pRecord, tHandler, *ptEntry, nByte);
        if (tHandler.nTraces & kTraceIdAfter) tqcTrace("DecoderParam : nId = [0x%02x]", nByte);
    } while (nRet == TQS_OK);
    if (tHandler.nTraces & kTraceEndCode)
        tqcTrace("tqsClientProvWbxmlDecoderParamPxlogical Error Code:%d", nRet);
    if (tHandler.nTraces & kTraceIdAround) {
        tqcTrace("DecoderParam : TQS_WBXML_DECODER_ERROR nId = [0x%02x]", nByte);
        tqcTrace("return ErrorCode[%d]", nRet);
    }
    return nRet;
}

// ---- Name-string parms ---------------------------------------------------

enum class NameVariant : uint8_t { kApp, kNap, kRoaming, kWifi };

struct NameTarget {
    const char *pszName;
    uint16_t nOffset;
};

template <rec::Kind K>
constexpr size_t NamedCount() {
    size_t n = 0;
    for (const rec::Field &f : rec::Record<K>::kFields) n += f.fill == rec::Fill::Named;
    return n;
}

// The fields an inline-named parm is read into, by name, in field order.
template <rec::Kind K>
struct NameTargets {
    NameTarget at[NamedCount<K>()];
};

template <rec::Kind K>
constexpr NameTargets<K> MakeNameTargets() {
    NameTargets<K> t{};
    size_t n = 0;
    for (const rec::Field &f : rec::Record<K>::kFields)
        if (f.fill == rec::Fill::Named) t.at[n++] = NameTarget{f.name, f.tree};
    return t;
}

constexpr auto kAppTargets = MakeNameTargets<rec::Kind::Application>();
constexpr auto kRoamingTargets = MakeNameTargets<rec::Kind::Roaming>();
constexpr auto kWifiTargets = MakeNameTargets<rec::Kind::Wifi>();

template <size_t N>
char **FindTarget(void *pRecord, const NameTarget (&atTargets)[N], const char *pszName) {
    for (const NameTarget &tTarget : atTargets) {
        if (strcmp(tTarget.pszName, pszName) == 0) {
            return reinterpret_cast<char **>(static_cast<char *>(pRecord) + tTarget.nOffset);
        }
    }
    return nullptr;
}

TqsResult NameStringParm(tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTagID, NameVariant eVariant) {
    const char *pszPrefix = eVariant == NameVariant::kRoaming
                                ? "[tqsClientProvWbxmlDecoderParamRoamingNameString]"
                                : "[tqsClientProvWbxmlDecoderParamNameString]";
    if (eVariant == NameVariant::kApp) {
        // A scratch block the routine has always taken and never used or released.
        tqsMemAllocSetZero_debug(129, kUnitPath, 1630);  // the line the leak report has always named
    }
    tqcTrace("%s nTagID [0x%x]", pszPrefix, nTagID);
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckAttr(ptDecoder, nTagID);
    if (nRet != TQS_OK) return nRet;
    char *pszName = nullptr;
    nRet = tqsClientProvWbxmlDecoderContent(ptDecoder, &pszName);
    if (nRet != TQS_OK) {
        if (pszName != nullptr) {
            tqcTrace("%s pszName NULL", pszPrefix);
            tqsMemFree_debug(pszName);
        }
        return nRet;
    }
    if (pszName == nullptr) {
        tqcTrace("%s pszName NULL", pszPrefix);
        return TQS_ERROR_FAILED;
    }
    tqcTrace("%s pszName [%s]", pszPrefix, pszName);
    uint8_t nId;
    nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nId);
    if (nRet != TQS_OK) {
        tqsMemFree_debug(pszName);
        return nRet;
    }
    tqcTrace("%s nID [0x%x]", pszPrefix, nId);
    if (nId == kTokEnd) {
        tqcTrace("%s nID [0x%x]", pszPrefix, nId);
        if (eVariant == NameVariant::kNap && pRecord != nullptr && strcmp(pszName, "INIT") == 0) {
            static char szEmpty[] = "empty";  // a constant, never released
            static_cast<tqsWapNapDef *>(pRecord)->pszInit = szEmpty;
            tqcTrace("%s INIT Value is NULL!!!!!!!!", pszPrefix);
        }
    } else if (nId == kTokValue) {
        char **ppszField = nullptr;
        // Without a record (its allocation failed) nothing is stored, as for an unlisted name.
        if (pRecord != nullptr) {
            if (eVariant == NameVariant::kApp) ppszField = FindTarget(pRecord, kAppTargets.at, pszName);
            if (eVariant == NameVariant::kRoaming)
                ppszField = FindTarget(pRecord, kRoamingTargets.at, pszName);
            if (eVariant == NameVariant::kWifi) ppszField = FindTarget(pRecord, kWifiTargets.at, pszName);
        }
        if (ppszField != nullptr) {
            nRet = tqsClientProvWbxmlDecoderParamValue(ptDecoder, ppszField);
            if (nRet != TQS_OK) {
                if (eVariant == NameVariant::kWifi) tqsMemFree_debug(pszName);
                return nRet;
            }
            if (eVariant == NameVariant::kRoaming) tqcTrace("%s nID [0x%x]", pszPrefix, nId);
        } else if (eVariant == NameVariant::kApp || eVariant == NameVariant::kNap) {
            char *pszValue = nullptr;
            nRet = tqsClientProvWbxmlDecoderParamValue(ptDecoder, &pszValue);
            if (nRet != TQS_OK) {
                tqsMemFree_debug(pszValue);
                return nRet;
            }
            if (eVariant == NameVariant::kApp) {
                tqcTrace("%s pszValue [%s]", pszPrefix, Str(pszValue));  // dropped, not released
            } else {
                tqsMemFree_debug(pszValue);
            }
        }
        // WI-FI and ROAMING read nothing for an unlisted name: the value token stays.
    } else if (eVariant == NameVariant::kWifi) {
        tqsMemFree_debug(pszName);
        return TQS_OK;
    }
    tqsMemFree_debug(pszName);
    return nRet;
}

}  // namespace

#define TQS_DEFINE_PARM_HANDLER(name, type, handler)                        \
    extern "C" TqsResult name(tqsWbxmlDecoder *ptDecoder, type *ptRecord) { \
        return RunParmHandler(ptDecoder, ptRecord, handler);                \
    }
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamPxlogical, tqsWapPxLogical, kPxLogicalHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamPxAuthInfo, tqsWapPxAuthInfo, kPxAuthInfoHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamPort, tqsWapPort, kPortHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamPxPhysical, tqsWapPxPhysical, kPxPhysicalHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamNapDef, tqsWapNapDef, kNapDefHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamNapAuthInfo, tqsWapNapAuthInfo, kNapAuthInfoHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamValidity, tqsWapValidity, kValidityHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamApplication, tqsWapApplication, kApplicationHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamAppAddr, tqsWapAppAddr, kAppAddrHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamAppAuth, tqsWapAppAuth, kAppAuthHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamResource, tqsWapResource, kResourceHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamBootstrap, tqsWapBootstrap, kBootstrapHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamVendorConfig, tqsWapVendorConfig, kVendorConfigHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamClientIdentity, tqsWapClientIdentity,
                        kClientIdentityHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamAccess, tqsWapAccess, kAccessHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamRoaming, tqsWapRoaming, kRoamingHandler)
TQS_DEFINE_PARM_HANDLER(tqsClientProvWbxmlDecoderParamWifi, tqsWapWifi, kWifiHandler)
#undef TQS_DEFINE_PARM_HANDLER

#define TQS_DEFINE_NAME_HANDLER(name, type, variant)                                        \
    extern "C" TqsResult name(tqsWbxmlDecoder *ptDecoder, type *ptRecord, uint8_t nTagID) { \
        return NameStringParm(ptDecoder, ptRecord, nTagID, NameVariant::variant);           \
    }
TQS_DEFINE_NAME_HANDLER(tqsClientProvWbxmlDecoderParamAppNameString, tqsWapApplication, kApp)
TQS_DEFINE_NAME_HANDLER(tqsClientProvWbxmlDecoderParamNapNameString, tqsWapNapDef, kNap)
TQS_DEFINE_NAME_HANDLER(tqsClientProvWbxmlDecoderParamRoamingNameString, tqsWapRoaming, kRoaming)
TQS_DEFINE_NAME_HANDLER(tqsClientProvWbxmlDecoderParamWifiNameString, tqsWapWifi, kWifi)
#undef TQS_DEFINE_NAME_HANDLER

namespace {

// The vendor parm's failure paths hand a field's own address to the release
// routine. Freeing it would be undefined; the lookup that precedes the free
// (and its "not found" line while tracking is on) is what remains.
void ReleaseFieldAddress(char **ppszField) {
    if (bMemCheck != 0) tqsMemFindByAddress(ppszField);
}

}  // namespace

extern "C" TqsResult tqsClientProvWbxmlDecoderParamVendorNameString(tqsWbxmlDecoder *ptDecoder,
                                                                    char **ppszName, char **ppszValue,
                                                                    uint8_t nTagID) {
    tqcTrace("[tqsClientProvWbxmlDecoderParamVendorNameString] nTagID [0x%x]", nTagID);
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckAttr(ptDecoder, nTagID);
    if (nRet != TQS_OK) return nRet;
    // Only the last name/value pair is kept; earlier ones are dropped, not released.
    *ppszName = nullptr;
    nRet = tqsClientProvWbxmlDecoderContent(ptDecoder, ppszName);
    if (nRet != TQS_OK) {
        if (*ppszName != nullptr) {
            tqcTrace("[tqsClientProvWbxmlDecoderParamVendorNameString] pszName NULL");
            ReleaseFieldAddress(ppszName);  // the text stays with the record
        }
        return nRet;
    }
    if (*ppszName == nullptr) {
        tqcTrace("[tqsClientProvWbxmlDecoderParamVendorNameString] pszName NULL");
        return TQS_ERROR_FAILED;
    }
    tqcTrace("[tqsClientProvWbxmlDecoderParamVendorNameString] pszName [%s]", *ppszName);
    uint8_t nId;
    nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nId);
    if (nRet != TQS_OK) {
        ReleaseFieldAddress(ppszName);
        return nRet;
    }
    tqcTrace("[tqsClientProvWbxmlDecoderParamVendorNameString] nID [0x%x]", nId);
    if (nId == kTokEnd) {
        tqcTrace("[tqsClientProvWbxmlDecoderParamNameString] nID [0x%x]", nId);
    } else if (nId == kTokValue) {
        *ppszValue = nullptr;
        nRet = tqsClientProvWbxmlDecoderParamValue(ptDecoder, ppszValue);
        if (nRet != TQS_OK) {
            ReleaseFieldAddress(ppszValue);
            return nRet;
        }
        tqcTrace("--------------------------[%s]", Str(*ppszValue));
    }
    return nRet;
}

// ---- whole decode -------------------------------------------------------------

extern "C" tqsClientProvCtx *tqsClinetProvWbxmlDecoderMain(const unsigned char *pBody, uint32_t nLength) {
    tqcTrace("tqsClinetProvWbxmlDecoderMain");
    tqsWbxmlDecoder *ptDecoder = nullptr;
    tqsWapDoc *ptWapDoc = nullptr;
    tqsClientProvCtx *ptCtx = nullptr;
    TqsResult nRet = tqsClientProvWbxmlInitDecoder(&ptDecoder, pBody, nLength);
    if (nRet != TQS_OK) {
        tqcTrace("ERROR : tqsClinetProvWbxmlDecoderMain tqsClientProvWbxmlInitDecoder[0x%x]\n", nRet);
    } else if ((nRet = tqsClientProvWbxmlDecoder(ptDecoder, &ptWapDoc)) != TQS_OK) {
        tqcTrace("ERROR : tqsClinetProvWbxmlDecoderMain tqsClientProvWbxmlDecoder[0x%x]\n", nRet);
    } else if ((nRet = tqsClientProvWbxmlDeleteDecoder(ptDecoder)) != TQS_OK) {
        tqcTrace("ERROR : tqsClinetProvWbxmlDecoderMain tqsClientProvWbxmlDeleteDecoder[0x%x]\n", nRet);
    } else {
        ptDecoder = nullptr;
        ptCtx = tqsClientProvCtxMakeContext(ptWapDoc);
        if (ptCtx != nullptr) {
            tqcTrace("Success");
            tqsClientProvWbxmlDeleteWapDoc(ptWapDoc);
            return ptCtx;
        }
        tqcTrace("ERROR : tqsClinetProvWbxmlDecoderMain tqsClientProvCtxMakeContext[0x%x]\n", nRet);
    }
    // Failure: release whatever exists; the context is always null here.
    tqsClientProvWbxmlDeleteWapDoc(ptWapDoc);
    tqsClientProvWbxmlDeleteDecoder(ptDecoder);
    tqsClientProvCtxDelectContext(ptCtx);
    return nullptr;
}
