#include "tqspushhandler.h"

#include "tqsmemory.h"
#include "tqsstring.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqspushhandler";

// Allocation lines that the leak report shows.
static const uint32_t kLineRecord = 51;
static const uint32_t kLineBody = 167;

static const unsigned char kPduTypePush = 0x06;
static const unsigned char kLengthQuote = 0x1F;
static const unsigned char kSecToken = 0x91;
static const unsigned char kMacToken = 0x92;
static const uint32_t kContentTypeTextSize = 64;

static_assert(sizeof(SmlPushHeader) == 5 * 8 + SML_PUSH_MAC_SIZE + sizeof(void *), "SmlPushHeader: 7 fields");

namespace {

struct MediaType {
    const char *text;
    uint64_t code;
};

const MediaType kMediaTypes[] = {
    {"application/vnd.wap.connectivity-wbxml", SML_PUSH_CT_CONNECTIVITY_WBXML},
    {"application/vnd.wap.connectivity-xml", SML_PUSH_CT_CONNECTIVITY_XML},
    {"application/vnd.syncml.notification", SML_PUSH_CT_SYNCML_NOTIFICATION},
    {"application/vnd.syncml.ds.notification", SML_PUSH_CT_SYNCML_DS_NOTIFICATION},
    {"application/vnd.syncml.dm+wbxml", SML_PUSH_CT_SYNCML_DM_WBXML},
};

// Bounded view of the PDU: nothing at or beyond `size` is ever read.
struct Pdu {
    const unsigned char *bytes;
    uint64_t size;

    bool Has(uint64_t index) const { return index < size; }
    // Byte at index, or -1 beyond the PDU.
    int At(uint64_t index) const { return Has(index) ? bytes[index] : -1; }
    // Three bytes at index equal `name` ignoring case.
    bool Keyword(uint64_t index, const char *name) const {
        return index + 3 <= size && tqsStrnicmp(reinterpret_cast<const char *>(bytes + index), name, 3) == 0;
    }
    // Length of the zero-terminated text at index, at most `limit`; a text
    // without a zero inside the PDU ends at the PDU's end. `terminated` tells which.
    uint64_t TextLength(uint64_t index, uint64_t limit, bool *terminated) const {
        uint64_t n = 0;
        while (Has(index + n) && bytes[index + n] != 0 && n < limit) ++n;
        *terminated = Has(index + n) && bytes[index + n] == 0;
        return n;
    }
};

// Content type code of the text form, 0 when unknown.
uint64_t ContentTypeByText(const char *text) {
    for (const MediaType &type : kMediaTypes) {
        if (tqsStrcmp(text, type.text) == 0) return type.code;
    }
    return 0;
}

// Content type code of the token form (high bit ignored), 0 when unknown.
uint64_t ContentTypeByToken(int token) {
    uint64_t value = static_cast<uint64_t>(token & 0x7F);
    for (const MediaType &type : kMediaTypes) {
        if (type.code == value) return value;
    }
    return 0;
}

// Reads the content type at *index and advances past it; 0 when unknown (the
// record is then deliberately left allocated by the caller).
uint64_t ReadContentType(const Pdu &pdu, uint64_t *index) {
    int b = pdu.At(*index);
    if (b > 0x1F && b < 0x80) {
        char text[kContentTypeTextSize] = {};
        bool terminated = false;
        // Unterminated or longer than 63 characters: an unknown text.
        uint64_t length = pdu.TextLength(*index, kContentTypeTextSize, &terminated);
        if (!terminated || length >= kContentTypeTextSize) return 0;
        tqsMemCpy(text, pdu.bytes + *index, static_cast<uint32_t>(length));
        *index += length + 1;
        return ContentTypeByText(text);
    }
    // A content-type byte beyond the PDU is an unknown token.
    if (b < 0) return 0;
    *index += 1;
    return ContentTypeByToken(b);
}

// A parameter written as its token byte, or as its three-letter name (any
// case) and a zero: the position after the marker, or 0 when there is none.
uint64_t Parameter(const Pdu &pdu, uint64_t index, unsigned char token, const char *name) {
    if (pdu.At(index) == token) return index + 1;
    if (pdu.Keyword(index, name)) return index + 3 + 1;
    return 0;
}

// SEC, then the value byte; absent when the value byte lies beyond the PDU.
void ReadSec(const Pdu &pdu, uint64_t *index, SmlPushHeader *header) {
    uint64_t value = Parameter(pdu, *index, kSecToken, "SEC");
    if (value == 0 || !pdu.Has(value)) return;
    header->nSEC = pdu.bytes[value];
    *index = value + 1;
}

// MAC, then a zero-terminated text; cut to 47 characters, ended by the PDU's
// end when it has no zero.
void ReadMac(const Pdu &pdu, uint64_t *index, SmlPushHeader *header) {
    uint64_t text = Parameter(pdu, *index, kMacToken, "MAC");
    if (text == 0) return;
    bool terminated = false;
    uint64_t length = pdu.TextLength(text, SML_PUSH_MAC_SIZE - 1, &terminated);
    header->nMACLen = length;
    tqsMemCpy(header->szMAC, pdu.bytes + text, static_cast<uint32_t>(length));
    header->szMAC[length] = '\0';
    *index = text + length + 1 + 1;
}

}  // namespace

extern "C" {

SmlPushHeader *smlpushHdlrParsingWSPHeaderIn(const unsigned char *pdu, uint64_t total_len,
                                             uint64_t readable) {
    if (pdu == nullptr) return nullptr;
    // The type and header length bytes lie beyond the bytes there are.
    if (readable < 3) return nullptr;
    if (pdu[1] != kPduTypePush) return nullptr;

    auto *header = static_cast<SmlPushHeader *>(
        tqsMemAllocSetZero_debug(sizeof(SmlPushHeader) + 1, kUnitPath, kLineRecord));
    if (header == nullptr) return nullptr;
    header->nHeaderLen = pdu[2];

    const Pdu bounded{pdu, readable};
    uint64_t index = 3;
    if (bounded.At(index) == kLengthQuote) index += 2;  // the quote and a length byte, whatever it says

    header->nContentType = ReadContentType(bounded, &index);
    if (header->nContentType == 0) return nullptr;  // the record is deliberately not freed
    ReadSec(bounded, &index, header);
    ReadMac(bounded, &index, header);

    // Unsigned arithmetic on the caller's length, underflow included.
    header->nBodyLen = total_len - 2 - header->nHeaderLen - 1;
    // The body always starts right after the announced header block.
    index = header->nHeaderLen + 3;
    uint32_t bodyLen = static_cast<uint32_t>(header->nBodyLen);
    // bodyLen + 1 in 32 bits would wrap to a zero-byte block, and a copy past
    // the bytes there are reads what is not the PDU's: refuse the PDU.
    if (bodyLen == UINT32_MAX || (bodyLen != 0 && index + bodyLen > readable)) {
        tqsMemFree_debug(header);
        return nullptr;
    }
    header->pBody = static_cast<unsigned char *>(tqsMemAllocSetZero_debug(bodyLen + 1, kUnitPath, kLineBody));
    // Nothing to copy into when the body allocation failed.
    if (header->pBody != nullptr && bodyLen != 0) tqsMemCpy(header->pBody, pdu + index, bodyLen);
    return header;
}

SmlPushHeader *smlpushHdlrParsingWSPHeader(const unsigned char *pdu, uint64_t total_len) {
    return smlpushHdlrParsingWSPHeaderIn(pdu, total_len, total_len);
}

}  // extern "C"
