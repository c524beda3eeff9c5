// WBXML provisioning decoder: byte reader, header and string table, token
// machinery, characteristic decoding, parm values and parm handlers.
//
// Every reader takes the body's bytes through the cursor of
// tqsClientProvWbxmlDecoderState.h: byte reads stop at the body's end, and
// only the zero-terminated scans and opaque values run on into the zero
// padding behind it, never past the storage. The tokens and value tables are
// in tqsClientProvWbxmlTokens.h, what each characteristic and parm handler is
// in tqsClientProvWbxmlHandlers.h.
#include "tqsClientProvWbxmlDecoder.h"

#include <stddef.h>
#include <string.h>

#include "smlbuffer.h"
#include "tqsClientProvWbxmlDecoderState.h"
#include "tqsClientProvWbxmlHandlers.h"
#include "tqsClientProvWbxmlTokens.h"
#include "tqslist.h"
#include "tqsmemory.h"
#include "tqsstring.h"
#include "tqstrace.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqsClientProvWbxmlDecoder";

using namespace tqs::wbxml;

namespace {

// Allocation lines that the leak report and the exception traces show.
constexpr uint32_t kLineJoin = 124;
constexpr uint32_t kLineStrTable = 261;
constexpr uint32_t kLineOpaque = 548;
constexpr uint32_t kLineRawToken = 606;
constexpr uint32_t kLineCommaJoin = 631;
constexpr uint32_t kLineTokenJoin = 653;
constexpr uint32_t kLineSlotRecord = 848;
constexpr uint32_t kLineWapDoc = 906;
constexpr uint32_t kLineCharacter = 1065;
constexpr uint32_t kLineStartPage = 1516;
constexpr uint32_t kLineAppScratch = 1630;

// Real documents nest three levels; deeper input is refused so the stack stays bounded.
constexpr uint32_t kMaxCharacterDepth = 32;

// ---- Text joining ------------------------------------------------------------

inline uint32_t TextLen(const char *psz) {
    return psz != nullptr ? static_cast<uint32_t>(strlen(psz)) : 0;
}

// Every join copies the whole text, so a document that keeps extending one
// value (repeated parms, long runs of string-table references) would cost
// time and memory quadratic in its size: past kJoinBudget bytes copied by the
// joins of one decode a join fails the way a failed allocation does. A first
// copy is no join and is not counted. Real documents join a few kilobytes.
constexpr uint64_t kJoinBudget = uint64_t{16} << 20;

// *ppszText becomes a new block: old text, separator, nAddLen bytes of pAdd;
// the old block is freed unless a list holds it (JoinState). Returns false
// (text untouched) when the allocation fails or the budget is spent. Without
// a join state (a value-token lookup called outside a decode) nothing is
// counted and nothing is listed.
[[nodiscard]] bool JoinText(JoinState *ptJoin, char **ppszText, const char *pAdd, uint32_t nAddLen,
                            Join eJoin) {
    char *pszOld = *ppszText;
    uint32_t nOld = TextLen(pszOld);
    uint32_t nSep = (pszOld != nullptr && eJoin != Join::kAppend) ? 1 : 0;
    const uint64_t nNew = uint64_t{nOld} + nSep + nAddLen + 1;
    if (pszOld != nullptr && ptJoin != nullptr) {
        if (ptJoin->nBytes + nNew > kJoinBudget) return false;
        ptJoin->nBytes += nNew;
    }
    char *pszNew = static_cast<char *>(tqsMemAlloc_debug(static_cast<uint32_t>(nNew), kUnitPath, kLineJoin));
    if (pszNew == nullptr) return false;
    if (nOld != 0) memcpy(pszNew, pszOld, nOld);
    if (nSep != 0) pszNew[nOld] = eJoin == Join::kComma ? ',' : '\0';
    if (nAddLen != 0) memcpy(pszNew + nOld + nSep, pAdd, nAddLen);
    pszNew[nOld + nSep + nAddLen] = '\0';
    if (ptJoin == nullptr || pszOld != ptJoin->pszListedText) tqsMemFree_debug(pszOld);
    *ppszText = pszNew;
    return true;
}

// tqsClientProvWbxmlDecoderGetParamTokenVal with the decode's join state.
[[nodiscard]] TqsResult TokenValue(JoinState *ptJoin, uint8_t nToken, char **ppszValue) {
    tqcTrace("tqsClientProvWbxmlDecoderGetParamTokenVal");
    const ValueHit tHit = kValueIndex.at[nToken];
    if (tHit.nTable == 0) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    const ValueTable &tTable = kValueTables[tHit.nTable - 1];
    const char *pszText = tTable.ptEntries[tHit.nEntry].pszText;
    if (!JoinText(ptJoin, ppszValue, pszText, TextLen(pszText), tTable.eJoin)) {
        // Reported, and still "found": the value stays as it was.
        tqcTraceExcption("[Error] [tqsClientProvWbxmlDecoderGetParamTokenVal] pszData NULL", kUnitPath,
                         kLineTokenJoin);
    }
    return TQS_OK;
}

[[nodiscard]] TqsResult SkipTwoBytes(tqsWbxmlDecoder *ptDecoder) {
    uint8_t nId;
    TqsResult nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
    if (nRet == TQS_OK) nRet = tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);
    return nRet;
}

// Consumes an inline string standing between elements and drops it.
[[nodiscard]] TqsResult DropInlineString(tqsWbxmlDecoder *ptDecoder) {
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
    return Consumed(CursorOf(ptDecoder));
}

extern "C" int tqsClientProvWbxmlDecoderBufferReadByte(tqsWbxmlDecoder *ptDecoder, unsigned char *pnByte) {
    return Take(CursorOf(ptDecoder), pnByte) ? 1 : 0;
}

extern "C" int tqsClientProvWbxmlDecoderBufferReadUint32(tqsWbxmlDecoder *ptDecoder, uint32_t *pnValue) {
    const Cursor c = CursorOf(ptDecoder);
    uint32_t nValue = 0;
    for (int i = 0; i < 5; ++i) {
        uint8_t nByte;
        if (!Take(c, &nByte)) return 0;
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
    const Cursor c = CursorOf(ptDecoder);
    const uint32_t nAvail = Left(c);
    const uint32_t nCopy = nLength < nAvail ? nLength : nAvail;
    unsigned char *pTable =
        static_cast<unsigned char *>(tqsMemAllocSetZero_debug(nCopy + 2, kUnitPath, kLineStrTable));
    *ppTable = pTable;
    ptDecoder->nStrTableBytes = pTable != nullptr ? nCopy + 2 : 0;
    if (pTable == nullptr) return 0xFFFFFFFFu;
    uint32_t nTaken;
    const unsigned char *pBytes = TakeUpTo(c, nCopy, &nTaken);
    memcpy(pTable, pBytes, nTaken);
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
    if (!JoinText(JoinOf(ptDecoder), ppszText, pszEntry, TextLen(pszEntry), Join::kAppend)) {
        // The inline reader's line, shared on purpose: the system traces it so.
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderGetStr] pszData NULL");
        return 0;
    }
    return 1;
}

namespace {

// One mb_u_int32 of the header, traced under its name; false after the error line.
[[nodiscard]] bool HeaderInt(tqsWbxmlDecoder *ptDecoder, const char *pszName, uint32_t *pnValue) {
    if (!tqsClientProvWbxmlDecoderBufferReadUint32(ptDecoder, pnValue)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] %s", pszName);
        return false;
    }
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] %s [0x%x]", pszName, *pnValue);
    return true;
}

}  // namespace

extern "C" TqsResult tqsClientProvWbxmlDecoderWbxmlHeader(tqsWbxmlDecoder *ptDecoder, uint8_t *pnVersion,
                                                          uint32_t *pnPublicid, uint32_t *pnCharset) {
    tqcTrace("tqsClientProvWbxmlDecoderWbxmlHeader");
    if (!Take(CursorOf(ptDecoder), pnVersion)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion");
        return TQS_ERROR_WBXML_NO_MORE_DATA;
    }
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] pnVersion [0x%x]", *pnVersion);
    if (!HeaderInt(ptDecoder, "pnPublicid", pnPublicid)) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    // A literal public id: its index is read and forgotten, the check reads the table's start.
    uint32_t nTemp;
    if (*pnPublicid == 0 && !HeaderInt(ptDecoder, "nTemp", &nTemp)) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    if (!HeaderInt(ptDecoder, "pnCharset", pnCharset)) return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
    ptDecoder->nStrSize = tqsClientProvWbxmlDecoderMakeStrTable(ptDecoder, &ptDecoder->pStringTable);
    tqcTrace("[tqsClientProvWbxmlDecoderWbxmlHeader] ptWbxmlDecoder->nStrSize [0x%x]", ptDecoder->nStrSize);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCheckCodePage(tqsWbxmlDecoder *ptDecoder) {
    tqcTrace("tqsClientProvWbxmlDecoderCheckCodePage");
    uint8_t nToken, nPage;
    // Through the element reader: the page byte is masked and the content and
    // attribute flags are reset from it. A failed read is a bad page (0x1005).
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
        // A header that fails part-way leaves the public id as read (0 if
        // nothing): the check below refuses what matters.
        (void)tqsClientProvWbxmlDecoderWbxmlHeader(ptDecoder, &nVersion, &nPublicid, &nCharset);
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
    uint8_t nByte;
    if (!Take(CursorOf(ptDecoder), &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    ptDecoder->bHasContent = (nByte & 0x40) != 0;
    ptDecoder->bHasAttribute = (nByte & 0x80) != 0;
    *pnId = nByte & kIdMask;
    tqcTrace("tqsClientProvWbxmlDecoderReadElement nId[0x%02x], Read Byte[0x%02x]", *pnId, nByte);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCurElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId) {
    uint8_t nTemp;
    if (!Peek(CursorOf(ptDecoder), &nTemp)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    *pnId = nTemp & kIdMask;
    tqcTrace("[CP_DBG]tqsClientProvWbxmlDecoderCurElement: nId:[0x%02x], nTemp:[0x%02x] ", *pnId, nTemp);
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCurElementNotAND(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    uint8_t nTemp;
    if (!Peek(CursorOf(ptDecoder), &nTemp)) return TQS_ERROR_WBXML_NO_MORE_DATA;
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
        uint8_t nByte;
        if (!Take(CursorOf(ptDecoder), &nByte))
            tqcTrace("[ERROR] tqsClientProvWbxmlDecoderBufferReadByte Fail");
    }
    return TQS_OK;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderSkipElement(tqsWbxmlDecoder *ptDecoder, uint8_t /*nToken*/) {
    const Cursor c = CursorOf(ptDecoder);
    TqsResult nRet = TQS_OK;
    int64_t nDepth = 0;
    uint8_t nByte;
    for (;;) {
        if (!Take(c, &nByte)) {
            nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
            break;
        }
        if (nByte == kTokSwitchPage) {
            if (!Take(c, &nByte)) {
                nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
                break;
            }
        } else if (nByte == kTokEnd) {
            if (--nDepth == 0) {
                Back(c);
                // Land on the END left unread (stepping over page switches).
                for (;;) {
                    if (!Take(c, &nByte)) {
                        nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
                        break;
                    }
                    if (nByte != kTokSwitchPage) {
                        Back(c);
                        break;
                    }
                    if (!Take(c, &nByte)) {
                        nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
                        break;
                    }
                }
                break;
            }
        } else if (nByte == kTokStrI || nByte == kTokStrT || nByte == kTokOpaque) {
            Back(c);
            char *pszScratch = nullptr;
            nRet = tqsClientProvWbxmlDecoderContent(ptDecoder, &pszScratch);
            tqsMemFree_debug(pszScratch);
            if (nRet != TQS_OK) break;
        } else {
            ++nDepth;  // attribute bytes count as levels too: a crude balance, kept
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
        uint8_t nByte;
        if (!Take(CursorOf(ptDecoder), &nByte)) {
            nRet = TQS_ERROR_WBXML_NO_MORE_DATA;
        } else if (nByte != kTokEnd) {
            nRet = TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
        }
    }
    tqcTrace("tqsClientProvWbxmlDecoderElement Error Code:%d", static_cast<int>(nRet));
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderReadAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    return Take(CursorOf(ptDecoder), pnByte) ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderCurAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte) {
    return Peek(CursorOf(ptDecoder), pnByte) ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
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
    const Cursor c = CursorOf(ptDecoder);
    uint8_t nByte;
    do {
        if (!Take(c, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    } while (nByte != kTokEntity && nByte != kTokExtI0 && nByte != kTokEnd);
    return TQS_OK;
}

extern "C" int tqsClientProvWbxmlDecoderGetStr(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderGetStr");
    // The text may run on into the zero padding behind the body; the position
    // may so pass the body's end, and the next read then fails.
    const Cursor c = CursorOf(ptDecoder);
    uint32_t nLen;
    const char *pszText = ScanToZero(c, &nLen);
    if (!JoinText(JoinOf(ptDecoder), ppszText, pszText, nLen, Join::kAppend)) {
        tqcTrace("[Error] [tqsClientProvWbxmlDecoderGetStr] pszData NULL");
        return 0;
    }
    Skip(c, nLen + 1);
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
    const Cursor c = CursorOf(ptDecoder);
    const uint32_t nAvail = Left(c);
    const uint32_t nCopy = nLength < nAvail ? nLength : nAvail;
    const bool bPadded = nLength <= UINT32_MAX - 2 && uint64_t{Consumed(c)} + nLength <= PaddedSize(c);
    const uint32_t nSize = bPadded ? nLength : nCopy;
    char *pszData = static_cast<char *>(tqsMemAllocSetZero_debug(nSize + 2, kUnitPath, kLineOpaque));
    if (pszData == nullptr) return 0;
    uint32_t nTaken;
    const unsigned char *pBytes = TakeUpTo(c, nCopy, &nTaken);
    memcpy(pszData, pBytes, nTaken);
    Skip(c, nSize - nTaken);
    *ppszText = pszData;  // an earlier text is overwritten, neither freed nor joined
    return 1;
}

extern "C" int tqsClientProvWbxmlDecoderGetString(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderGetString");
    const Cursor c = CursorOf(ptDecoder);
    Back(c);  // the token that brought the caller here is read again
    int nRet;
    for (;;) {
        uint8_t nByte;
        if (!Take(c, &nByte)) {
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
            Back(c);
            nRet = 1;
            break;
        } else if (TokenValue(JoinOf(ptDecoder), nByte, ppszText) != TQS_OK) {
            nRet = 0;
            break;
        }
    }
    // "[Error]" on success too: the system's own line.
    tqcTrace("[Error] [tqsClientProvWbxmlDecoderGetString] nRet [%d]", nRet);
    return nRet;
}

extern "C" TqsResult tqsClientProvWbxmlDecoderContent(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    tqcTrace("tqsClientProvWbxmlDecoderContent");
    const Cursor c = CursorOf(ptDecoder);
    uint8_t nByte;
    if (!Take(c, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    TqsResult nRet;
    if (nByte == kTokStrI || nByte == kTokStrT) {
        nRet =
            tqsClientProvWbxmlDecoderGetString(ptDecoder, ppszText) ? TQS_OK : TQS_ERROR_WBXML_NO_MORE_DATA;
    } else if (nByte == kTokOpaque) {
        uint32_t nLength = 0;
        nRet = tqsClientProvWbxmlDecoderGetStrExtension(ptDecoder, nByte, ppszText, &nLength)
                   ? TQS_OK
                   : TQS_ERROR_WBXML_NO_MORE_DATA;
    } else if (TokenValue(JoinOf(ptDecoder), nByte, ppszText) == TQS_OK) {
        return TQS_OK;
    } else if (nByte >= 0x80) {
        // An unknown value token is kept as its one raw byte.
        char *pszRaw = static_cast<char *>(tqsMemAllocSetZero_debug(2, kUnitPath, kLineRawToken));
        if (pszRaw != nullptr) pszRaw[0] = static_cast<char>(nByte);
        *ppszText = pszRaw;
        nRet = TQS_OK;
    } else {
        tqcTrace("WARNING!!!!!!!! Not Support Type Numberic nTag=[%x]", Behind(c, 2));
        Back(c);
        nRet = tqsClientProvWbxmlDecoderSkipElement(ptDecoder, nByte);
    }
    tqcTrace("tqsClientProvWbxmlDecoderContent Error:%d", static_cast<int>(nRet));
    return nRet;
}

extern "C" TqsResult tqsCommaAdd(tqsWbxmlDecoder *ptDecoder, char **ppszText) {
    const Cursor c = CursorOf(ptDecoder);
    uint8_t nByte;
    if (!Take(c, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    if (!Peek(c, &nByte)) return TQS_ERROR_WBXML_NO_MORE_DATA;
    if (nByte == kTokSwitchPage) {
        (void)tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);  // a bad page is not this join's concern
    } else if (nByte == kTokStrI || nByte == kTokStrT) {
        // A missing first value joins as empty text.
        if (!JoinText(JoinOf(ptDecoder), ppszText, ",", 1, Join::kAppend)) {
            tqcTraceExcption("[Error] [tqsClientProvWbxmlDecoderGetParamTokenVal] pszData NULL", kUnitPath,
                             kLineCommaJoin);
            return TQS_ERROR_MEMORY;
        }
        return tqsClientProvWbxmlDecoderContent(ptDecoder, ppszText);
    }
    // The byte at the position is taken even when the body has ended (the zero padding).
    nByte = 0;
    (void)Peek(c, &nByte);
    (void)TokenValue(JoinOf(ptDecoder), nByte, ppszText);  // an unknown byte leaves the text as it is
    Skip(c, 1);
    return TQS_OK;
}

// ---- Parm values -------------------------------------------------------------

extern "C" TqsResult tqsClientProvWbxmlDecoderGetParamTokenVal(uint8_t nToken, char **ppszValue) {
    return TokenValue(nullptr, nToken, ppszValue);
}

extern "C" TqsResult tqsClientProvWbxmlDecoderParamValue(tqsWbxmlDecoder *ptDecoder, char **ppszField) {
    tqcTrace("tqsClientProvWbxmlDecoderParamValue");
    TqsResult nRet = tqsClientProvWbxmlDecoderCheckAttr(ptDecoder, kTokValue);
    if (nRet != TQS_OK) return nRet;
    uint8_t nId;
    nRet = tqsClientProvWbxmlDecoderCurAttr(ptDecoder, &nId);
    if (nRet != TQS_OK) return nRet;
    if (nId == kTokSwitchPage) {
        (void)tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);  // the peek after it tells
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
        (void)tqsClientProvWbxmlDecoderCheckCodePage(ptDecoder);  // the value read after it tells
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
        JoinOf(ptDecoder)->pszListedText = pszListed;
        nRet = tqsClientProvWbxmlDecoderParamString(ptDecoder, &pszValue, nByte);
        JoinOf(ptDecoder)->pszListedText = nullptr;
        if (nRet != TQS_OK) return nRet;
        if (pszListed != nullptr && pszValue == pszListed) continue;
        if (ptList == nullptr) {
            if (tqsListCreate(&ptList, pszValue) != TQS_OK || ptList == nullptr) {
                tqcTrace("[Error] [tqsClientProvWbxmlDecoderParamListString] ptTmpList NULL");
                return TQS_ERROR_FAILED;
            }
        } else {
            (void)tqsListAddNodeLast(ptList, pszValue);  // a null value is refused, and that is all
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

inline void **Slots(tqsWapCharacter *ptCharacter) {
    return reinterpret_cast<void **>(ptCharacter);
}

// Puts a new zero-filled record of the slot's type into the characteristic.
[[nodiscard]] TqsResult CreateSlotRecord(tqsWapCharacter *ptCharacter, int nSlot) {
    void *pRecord =
        tqsMemAllocSetZero_debug(kSlots[nSlot].nFields * sizeof(void *) + 1, kUnitPath, kLineSlotRecord);
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

[[nodiscard]] TqsResult NestedCharacteristics(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter *ptCharacter,
                                              uint8_t nAttrId, uint8_t nPage) {
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

[[nodiscard]] TqsResult CharacteristicParm(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter *ptCharacter,
                                           uint8_t nAttrId, uint8_t nPage, const char *pszName) {
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
    JoinOf(ptDecoder)->nBytes = 0;
    tqsWapDoc *ptWapDoc =
        static_cast<tqsWapDoc *>(tqsMemAllocSetZero_debug(sizeof(tqsWapDoc) + 1, kUnitPath, kLineWapDoc));
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
    // The version's value is not looked at; where its skip ends is the next read's concern.
    (void)tqsClientProvWbxmlDecoderSkipAttribute(ptDecoder);
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
            (void)tqsListCreate(&ptList, ptCharacter);  // the list left null says it all
            if (ptList == nullptr) {
                tqcTrace("[Error] [tqsClientProvWbxmlDecoderCharacterList] ptTmpList NULL");
                return TQS_ERROR_FAILED;
            }
        } else {
            (void)tqsListAddNodeLast(ptList, ptCharacter);  // an empty (null) one is refused, no more
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
        tqsMemAllocSetZero_debug(sizeof(tqsWapCharacter) + 1, kUnitPath, kLineCharacter));
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
            (void)tqsClientProvWbxmlDecoderReadElement(ptDecoder, &nId);  // the 0x50 just peeked
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
// One walker serves all seventeen characteristics: it runs the handler's
// descriptor (tqsClientProvWbxmlHandlers.h) over the parm's attribute bytes.
// The named entry points below carry their own traces and quirks.

namespace {

[[nodiscard]] TqsResult ReadParm(tqsWbxmlDecoder *ptDecoder, void *pRecord, const ParmHandler &tHandler,
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
                *ppszField = static_cast<char *>(tqsMemAllocSetZero_debug(11, kUnitPath, kLineStartPage));
                if (*ppszField != nullptr) memcpy(*ppszField, "startpage", 9);
            }
            return nRet;
    }
    return TQS_ERROR_WBXML_UNKNOWN_ELEMENT;
}

[[nodiscard]] TqsResult RunParmHandler(tqsWbxmlDecoder *ptDecoder, void *pRecord,
                                       const ParmHandler &tHandler) {
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
            // A bad page ends the loop only for the raw peekers; the others
            // peek again at once, and that read decides.
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
            if (tHandler.bNapDefUnknownLine) {
                tqcTrace(
                    "tqsClientProvWbxmlDecoderParamNapDef : Tag Code [%d] = "
                    "TQS_ERROR_WBXML_UNKNOWN_ELEMENT\n",
                    nByte);
            } else {
                tqcTrace("Tag Code = TQS_ERROR_WBXML_UNKNOWN_ELEMENT");
                tqcTrace("%s[%x]",
                         tHandler.pszUnknownOwner != nullptr ? tHandler.pszUnknownOwner : tHandler.pszName,
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

template <size_t N>
char **FindTarget(void *pRecord, const NameTarget (&atTargets)[N], const char *pszName) {
    for (const NameTarget &tTarget : atTargets) {
        if (strcmp(tTarget.pszName, pszName) == 0) {
            return reinterpret_cast<char **>(static_cast<char *>(pRecord) + tTarget.nOffset);
        }
    }
    return nullptr;
}

[[nodiscard]] TqsResult NameStringParm(tqsWbxmlDecoder *ptDecoder, void *pRecord, uint8_t nTagID,
                                       NameVariant eVariant) {
    const char *pszPrefix = eVariant == NameVariant::kRoaming
                                ? "[tqsClientProvWbxmlDecoderParamRoamingNameString]"
                                : "[tqsClientProvWbxmlDecoderParamNameString]";
    if (eVariant == NameVariant::kApp) {
        // A scratch block the routine has always taken and never used or released.
        tqsMemAllocSetZero_debug(129, kUnitPath, kLineAppScratch);
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
    (void)tqsClientProvWbxmlDeleteDecoder(ptDecoder);  // null is allowed here; its 2 says nothing new
    tqsClientProvCtxDelectContext(ptCtx);
    return nullptr;
}