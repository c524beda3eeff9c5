// Private to the decoder: the WBXML and provisioning tokens it reads, and the
// tables that turn single-byte value tokens into text.
#ifndef TQS_CLIENT_PROV_WBXML_TOKENS_H
#define TQS_CLIENT_PROV_WBXML_TOKENS_H

#include <stddef.h>
#include <stdint.h>

namespace tqs::wbxml {

constexpr uint8_t kTokSwitchPage = 0x00;
constexpr uint8_t kTokEnd = 0x01;
constexpr uint8_t kTokStrI = 0x03;
constexpr uint8_t kTokEntity = 0x04;  // stop byte when skipping attributes
constexpr uint8_t kTokNameAttr = 0x05;
constexpr uint8_t kTokValue = 0x06;  // parm value attribute; same byte as a bare characteristic tag
constexpr uint8_t kTokExtI0 = 0x80;  // stop byte when skipping attributes
constexpr uint8_t kTokStrT = 0x83;
constexpr uint8_t kTokComma = 0x90;
constexpr uint8_t kTokOpaque = 0xC3;

constexpr uint8_t kIdMask = 0x3F;
constexpr uint8_t kIdWapDoc = 0x05;
constexpr uint8_t kIdCharacteristic = 0x06;
constexpr uint8_t kIdParm = 0x07;

constexpr uint8_t kAttrVersion = 0x45;
constexpr uint8_t kAttrVersion10 = 0x46;
constexpr uint8_t kAttrTypeInline = 0x50;

constexpr uint32_t kProvPublicId = 0x0B;
constexpr char kProvPublicIdText[] = "-//WAPFORUM//DTD PROV 1.0//EN";

// How a token's text joins a value already there. kHidden leaves the
// separator byte zero: the value still reads as the old text alone, the
// addition lies behind the terminator. That is what call types have always
// done; it is kept.
enum class Join : uint8_t { kAppend, kComma, kHidden };

struct ValueToken {
    uint8_t nToken;
    const char *pszText;
};

// The entries as stored; the lookup reaches only the first nScan of each
// (ValueTable below), so the rest never become text here.
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

}  // namespace tqs::wbxml

#endif  // TQS_CLIENT_PROV_WBXML_TOKENS_H
