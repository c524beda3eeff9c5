/*
 * WBXML provisioning decoder: byte and token readers over the decoder's copy
 * of the body, the header and string table, characteristic decoding, parm
 * values and the per-characteristic parm handlers.
 *
 * Statuses are 32-bit: 0 success, 1 allocation/list failure, 2 missing
 * argument or record, 0x1005 unexpected token, 0x1007 end of body, 0x100A no
 * buffer, 0x100B not a provisioning document, 0x100F allocation failure while
 * joining. Routines documented as "truth value" return 1 for success, 0 for
 * failure instead.
 */
#ifndef TQS_CLIENT_PROV_WBXML_DECODER_H
#define TQS_CLIENT_PROV_WBXML_DECODER_H

#include <stdint.h>

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
uint32_t tqsClientProvWbxmlDecoderWbxmlHeader(tqsWbxmlDecoder *ptDecoder, uint8_t *pnVersion,
                                              uint32_t *pnPublicid, uint32_t *pnCharset);
/* Consumes SWITCH_PAGE and its page; sets nCodePage to 0 or 1, else 0x1005. */
uint32_t tqsClientProvWbxmlDecoderCheckCodePage(tqsWbxmlDecoder *ptDecoder);
/* Header, public-identifier check and body; *pptWapDoc may stay null on success. */
uint32_t tqsClientProvWbxmlDecoder(tqsWbxmlDecoder *ptDecoder, tqsWapDoc **pptWapDoc);

/* ---- Token machinery ---------------------------------------------------- */

uint32_t tqsClientProvWbxmlDecoderReadElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId);
uint32_t tqsClientProvWbxmlDecoderCurElement(tqsWbxmlDecoder *ptDecoder, uint8_t *pnId);
uint32_t tqsClientProvWbxmlDecoderCurElementNotAND(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte);
uint32_t tqsClientProvWbxmlDecoderCheckElement(tqsWbxmlDecoder *ptDecoder, uint8_t nId);
uint32_t tqsClientProvWbxmlDecoderSkipElement(tqsWbxmlDecoder *ptDecoder, uint8_t nToken);
uint32_t tqsClientProvWbxmlDecoderElement(tqsWbxmlDecoder *ptDecoder, uint8_t nId, char **ppszText);

uint32_t tqsClientProvWbxmlDecoderReadAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte);
uint32_t tqsClientProvWbxmlDecoderCurAttr(tqsWbxmlDecoder *ptDecoder, uint8_t *pnByte);
uint32_t tqsClientProvWbxmlDecoderCheckAttr(tqsWbxmlDecoder *ptDecoder, uint8_t nAttr);
uint32_t tqsClientProvWbxmlDecoderSkipAttribute(tqsWbxmlDecoder *ptDecoder);

/* Truth values. */
int tqsClientProvWbxmlDecoderGetStr(tqsWbxmlDecoder *ptDecoder, char **ppszText);
int tqsClientProvWbxmlDecoderGetStrExtension(tqsWbxmlDecoder *ptDecoder, uint8_t nToken, char **ppszText,
                                             uint32_t *pnLength);
int tqsClientProvWbxmlDecoderGetString(tqsWbxmlDecoder *ptDecoder, char **ppszText);

uint32_t tqsClientProvWbxmlDecoderContent(tqsWbxmlDecoder *ptDecoder, char **ppszText);
uint32_t tqsCommaAdd(tqsWbxmlDecoder *ptDecoder, char **ppszText);

/* ---- Parm values -------------------------------------------------------- */

/* 0 when nToken is a known value token (its text joined to *ppszValue), else 0x1005. */
uint32_t tqsClientProvWbxmlDecoderGetParamTokenVal(uint8_t nToken, char **ppszValue);
uint32_t tqsClientProvWbxmlDecoderParamValue(tqsWbxmlDecoder *ptDecoder, char **ppszField);
uint32_t tqsClientProvWbxmlDecoderParamString(tqsWbxmlDecoder *ptDecoder, char **ppszField, uint8_t nTag);
uint32_t tqsClientProvWbxmlDecoderParamListString(tqsWbxmlDecoder *ptDecoder, struct TqsList **pptList,
                                                  uint8_t nTag);

/* ---- Characteristics ---------------------------------------------------- */

uint32_t tqsClientProvWbxmlDecoderWbxmlBody(tqsWbxmlDecoder *ptDecoder, tqsWapDoc **pptWapDoc);
uint32_t tqsClientProvWbxmlDecoderWapDocVersion(tqsWbxmlDecoder *ptDecoder, tqsWapDoc *ptWapDoc);
uint32_t tqsClientProvWbxmlDecoderAttributeWapDocVersion(tqsWbxmlDecoder *ptDecoder);
uint32_t tqsClientProvWbxmlDecoderCheckAttrVersion(tqsWbxmlDecoder *ptDecoder);
uint32_t tqsClientProvWbxmlDecoderCharacterList(tqsWbxmlDecoder *ptDecoder, struct TqsList **pptList);
uint32_t tqsClientProvWbxmlDecoderCharacter(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter **pptCharacter);
/* pnCodePage is read at each type token (normally &ptDecoder->nCodePage). */
uint32_t tqsClientProvWbxmlDecoderCharacterAttribute(tqsWbxmlDecoder *ptDecoder, tqsWapCharacter *ptCharacter,
                                                     uint8_t *pnAttrId, const uint8_t *pnCodePage,
                                                     char **ppszName);

/* ---- Parm handlers: each consumes one parm element ---------------------- */

uint32_t tqsClientProvWbxmlDecoderParamPxlogical(tqsWbxmlDecoder *ptDecoder, tqsWapPxLogical *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamPxAuthInfo(tqsWbxmlDecoder *ptDecoder, tqsWapPxAuthInfo *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamPort(tqsWbxmlDecoder *ptDecoder, tqsWapPort *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamPxPhysical(tqsWbxmlDecoder *ptDecoder, tqsWapPxPhysical *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamNapDef(tqsWbxmlDecoder *ptDecoder, tqsWapNapDef *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamNapAuthInfo(tqsWbxmlDecoder *ptDecoder, tqsWapNapAuthInfo *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamValidity(tqsWbxmlDecoder *ptDecoder, tqsWapValidity *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamApplication(tqsWbxmlDecoder *ptDecoder, tqsWapApplication *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamAppAddr(tqsWbxmlDecoder *ptDecoder, tqsWapAppAddr *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamAppAuth(tqsWbxmlDecoder *ptDecoder, tqsWapAppAuth *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamResource(tqsWbxmlDecoder *ptDecoder, tqsWapResource *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamBootstrap(tqsWbxmlDecoder *ptDecoder, tqsWapBootstrap *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamVendorConfig(tqsWbxmlDecoder *ptDecoder, tqsWapVendorConfig *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamClientIdentity(tqsWbxmlDecoder *ptDecoder,
                                                      tqsWapClientIdentity *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamAccess(tqsWbxmlDecoder *ptDecoder, tqsWapAccess *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamRoaming(tqsWbxmlDecoder *ptDecoder, tqsWapRoaming *ptRecord);
uint32_t tqsClientProvWbxmlDecoderParamWifi(tqsWbxmlDecoder *ptDecoder, tqsWapWifi *ptRecord);

/* Name-string parms (byte 0x05: the name written as a string). */
uint32_t tqsClientProvWbxmlDecoderParamAppNameString(tqsWbxmlDecoder *ptDecoder, tqsWapApplication *ptRecord,
                                                     uint8_t nTagID);
uint32_t tqsClientProvWbxmlDecoderParamNapNameString(tqsWbxmlDecoder *ptDecoder, tqsWapNapDef *ptRecord,
                                                     uint8_t nTagID);
uint32_t tqsClientProvWbxmlDecoderParamRoamingNameString(tqsWbxmlDecoder *ptDecoder, tqsWapRoaming *ptRecord,
                                                         uint8_t nTagID);
uint32_t tqsClientProvWbxmlDecoderParamWifiNameString(tqsWbxmlDecoder *ptDecoder, tqsWapWifi *ptRecord,
                                                      uint8_t nTagID);
uint32_t tqsClientProvWbxmlDecoderParamVendorNameString(tqsWbxmlDecoder *ptDecoder, char **ppszName,
                                                        char **ppszValue, uint8_t nTagID);

#ifdef __cplusplus
}
#endif

#endif /* TQS_CLIENT_PROV_WBXML_DECODER_H */
