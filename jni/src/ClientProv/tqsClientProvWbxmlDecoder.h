/*
 * WBXML provisioning decoder: byte and token readers over the decoder's copy
 * of the body, the header and string table, characteristic decoding, parm
 * values and the per-characteristic parm handlers.
 *
 * Statuses are the result codes of tqstypes.h: 0 success, 1 allocation or
 * list failure, 2 missing argument or record, 0x1005 unexpected token, 0x1007
 * end of body, 0x100A no buffer, 0x100B not a provisioning document, 0x100F
 * allocation failure while joining. Routines documented as "truth value"
 * return 1 for success, 0 for failure instead.
 */
#ifndef TQS_CLIENT_PROV_WBXML_DECODER_H
#define TQS_CLIENT_PROV_WBXML_DECODER_H

#include "tqstypes.h"

#include "tqsClientProvWbxml.h"

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Byte level, header, string table, code page ------------------------ */

/* Bytes consumed so far. */
uint32_t tqsClientProvWbxmlDecoderDecodingSize(tqsWbxmlDecoder *ptDecoder);
/* Truth value: 1 and the next byte, or 0 at the end of the body. */
int tqsClientProvWbxmlDecoderBufferReadByte(tqsWbxmlDecoder *ptDecoder, unsigned char *pnByte);
/* Truth value: one mb_u_int32 (at most five bytes; high bits lost). */
int tqsClientProvWbxmlDecoderBufferReadUint32(tqsWbxmlDecoder *ptDecoder, uint32_t *pnValue);
/* Reads the table length and the table into *ppTable; the length, or 0xFFFFFFFF. */
uint32_t tqsClientProvWbxmlDecoderMakeStrTable(tqsWbxmlDecoder *ptDecoder, unsigned char **ppTable);
/* Truth value: reads an index and appends the table string there to *ppszText. */
int tqsClientProvWbxmlDecoderGetStrTable(tqsWbxmlDecoder *ptDecoder, char **ppszText);
TqsResult tqsClientProvWbxmlDecoderWbxmlHeader(tqsWbxmlDecoder *ptDecoder, uint8_t *pnVersion,
                                               uint32_t *pnPublicid, uint32_t *pnCharset);
/* Consumes SWITCH_PAGE and its page; sets nCodePage to 0 or 1, else 0x1005. */
TqsResult tqsClientProvWbxmlDecoderCheckCodePage(tqsWbxmlDecoder *ptDecoder);
/* Header, public-identifier check and body; *pptWapDoc may stay null on success. */
TqsResult tqsClientProvWbxmlDecoder(tqsWbxmlDecoder *ptDecoder, tqsWapDoc **pptWapDoc);

/* ---- Token machinery ---------------------------------------------------- */

TqsResult tqsClientProvWbxmlDecoderReadElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId);
TqsResult tqsClientProvWbxmlDecoderCurElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId);
TqsResult tqsClientProvWbxmlDecoderCurElementNotAND(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte);
TqsResult tqsClientProvWbxmlDecoderCheckElement(tqsWbxmlDecoder *ptDecoder, uint8_t nId);
TqsResult tqsClientProvWbxmlDecoderSkipElement(tqsWbxmlDecoder *ptDecoder, uint8_t nToken);
TqsResult tqsClientProvWbxmlDecoderElement(tqsWbxmlDecoder *ptDecoder, uint8_t nId, char **ppszText);

TqsResult tqsClientProvWbxmlDecoderReadAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte);
TqsResult tqsClientProvWbxmlDecoderCurAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte);
TqsResult tqsClientProvWbxmlDecoderCheckAttr(tqsWbxmlDecoder *ptDecoder, uint8_t nAttr);
TqsResult tqsClientProvWbxmlDecoderSkipAttribute(tqsWbxmlDecoder *ptDecoder);

/* Truth values. */
int tqsClientProvWbxmlDecoderGetStr(tqsWbxmlDecoder *ptDecoder, char **ppszText);
int tqsClientProvWbxmlDecoderGetStrExtension(tqsWbxmlDecoder *ptDecoder, uint8_t nToken, char **ppszText,
                                             uint32_t *pnLength);
int tqsClientProvWbxmlDecoderGetString(tqsWbxmlDecoder *ptDecoder, char **ppszText);

TqsResult tqsClientProvWbxmlDecoderContent(tqsWbxmlDecoder *ptDecoder, char **ppszText);
TqsResult tqsCommaAdd(tqsWbxmlDecoder *ptDecoder, char **ppszText);

/* ---- Parm values -------------------------------------------------------- */

/* 0 when nToken is a known value token (its text joined to *ppszValue), else 0x1005. */
TqsResult tqsClientProvWbxmlDecoderGetParamTokenVal(uint8_t nToken, char **ppszValue);
TqsResult tqsClientProvWbxmlDecoderParamValue(tqsWbxmlDecoder *ptDecoder, char **ppszField);
TqsResult tqsClientProvWbxmlDecoderParamString(tqsWbxmlDecoder *ptDecoder, char **ppszField, uint8_t nTag);
TqsResult tqsClientProvWbxmlDecoderParamListString(tqsWbxmlDecoder *ptDecoder, struct TqsList **pptList,
                                                   uint8_t nTag);

/* ---- Characteristics ---------------------------------------------------- */

TqsResult tqsClientProvWbxmlDecoderWbxmlBody(tqsWbxmlDecoder *ptDecoder, tqsWapDoc **pptWapDoc);
TqsResult tqsClientProvWbxmlDecoderWapDocVersion(tqsWbxmlDecoder *ptDecoder, tqsWapDoc *ptWapDoc);
TqsResult tqsClientProvWbxmlDecoderAttributeWapDocVersion(tqsWbxmlDecoder *ptDecoder);
TqsResult tqsClientProvWbxmlDecoderCheckAttrVersion(tqsWbxmlDecoder *ptDecoder);
TqsResult tqsClientProvWbxmlDecoderCharacterList(tqsWbxmlDecoder *ptDecoder, struct TqsList **pptList);
TqsResult tqsClientProvWbxmlDecoderCharacter(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter **pptCharacter);
/* pnCodePage is read at each type token (normally &ptDecoder->nCodePage). */
TqsResult tqsClientProvWbxmlDecoderCharacterAttribute(tqsWbxmlDecoder *ptDecoder,
                                                      tqsWapCharacter *ptCharacter, uint8_t *pnAttrId,
                                                      const uint8_t *pnCodePage, char **ppszName);

/* ---- Parm handlers: each consumes one parm element ---------------------- */

TqsResult tqsClientProvWbxmlDecoderParamPxlogical(tqsWbxmlDecoder *ptDecoder, tqsWapPxLogical *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamPxAuthInfo(tqsWbxmlDecoder *ptDecoder, tqsWapPxAuthInfo *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamPort(tqsWbxmlDecoder *ptDecoder, tqsWapPort *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamPxPhysical(tqsWbxmlDecoder *ptDecoder, tqsWapPxPhysical *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamNapDef(tqsWbxmlDecoder *ptDecoder, tqsWapNapDef *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamNapAuthInfo(tqsWbxmlDecoder *ptDecoder, tqsWapNapAuthInfo *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamValidity(tqsWbxmlDecoder *ptDecoder, tqsWapValidity *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamApplication(tqsWbxmlDecoder *ptDecoder, tqsWapApplication *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamAppAddr(tqsWbxmlDecoder *ptDecoder, tqsWapAppAddr *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamAppAuth(tqsWbxmlDecoder *ptDecoder, tqsWapAppAuth *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamResource(tqsWbxmlDecoder *ptDecoder, tqsWapResource *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamBootstrap(tqsWbxmlDecoder *ptDecoder, tqsWapBootstrap *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamVendorConfig(tqsWbxmlDecoder *ptDecoder,
                                                     tqsWapVendorConfig *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamClientIdentity(tqsWbxmlDecoder *ptDecoder,
                                                       tqsWapClientIdentity *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamAccess(tqsWbxmlDecoder *ptDecoder, tqsWapAccess *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamRoaming(tqsWbxmlDecoder *ptDecoder, tqsWapRoaming *ptRecord);
TqsResult tqsClientProvWbxmlDecoderParamWifi(tqsWbxmlDecoder *ptDecoder, tqsWapWifi *ptRecord);

/* Name-string parms (byte 0x05: the name written as a string). */
TqsResult tqsClientProvWbxmlDecoderParamAppNameString(tqsWbxmlDecoder *ptDecoder, tqsWapApplication *ptRecord,
                                                      uint8_t nTagID);
TqsResult tqsClientProvWbxmlDecoderParamNapNameString(tqsWbxmlDecoder *ptDecoder, tqsWapNapDef *ptRecord,
                                                      uint8_t nTagID);
TqsResult tqsClientProvWbxmlDecoderParamRoamingNameString(tqsWbxmlDecoder *ptDecoder, tqsWapRoaming *ptRecord,
                                                          uint8_t nTagID);
TqsResult tqsClientProvWbxmlDecoderParamWifiNameString(tqsWbxmlDecoder *ptDecoder, tqsWapWifi *ptRecord,
                                                       uint8_t nTagID);
TqsResult tqsClientProvWbxmlDecoderParamVendorNameString(tqsWbxmlDecoder *ptDecoder, char **ppszName,
                                                         char **ppszValue, uint8_t nTagID);

#ifdef __cplusplus
}
#endif

/* ---- Whole decode ------------------------------------------------------- */

#include "tqsClientProvCtx.h"

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Decodes a provisioning body (nLength bytes) into its document tree, converts
 * the tree into a provisioning context and releases the tree. Returns the
 * context, or null when any step fails (everything of its own is released).
 */
tqsClientProvCtx *tqsClinetProvWbxmlDecoderMain(const unsigned char *pBody, uint32_t nLength);

#ifdef __cplusplus
}
#endif

#endif /* TQS_CLIENT_PROV_WBXML_DECODER_H */
