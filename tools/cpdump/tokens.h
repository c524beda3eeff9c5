// Names of the codes a push carries, and the values the Java application
// receives from the composite getters for address types, AUTHTYPE and
// AAUTHLEVEL.
#ifndef CPDUMP_TOKENS_H
#define CPDUMP_TOKENS_H

#include <cstdint>
#include <string>

namespace cpdump {

// Name of a one-byte value token as the library's tables know it (address
// types, authentication types, call types, services, bearers, APPSRV/OBEX);
// null when none of them knows the code.
const char *ValueTokenName(unsigned char code);

// A stored value for display: a one-byte value of 0x80 or above is a raw
// token and is shown by its name, or as "0xNN" when it has none; anything
// else is returned as stored.
std::string DisplayValue(const char *stored);

// "application/vnd.wap.connectivity-wbxml" and friends; null for other codes.
const char *ContentTypeName(std::uint64_t code);
// NETWPIN, USERPIN, USERNETWPIN, USERPINMAC; null for other codes.
const char *SecName(std::uint64_t code);

// Element 2 of the PXPHYSICAL array: "NET_ADDR_IPV4" / "NET_ADDR_IPV6"; null
// for a null value.
const char *AppPxAddrType(const char *stored);

// Element 4 of the NAPDEF array: the code text "0x85" to "0x8c". A value
// whose first byte is not an address-type code yields null and sets
// *shifted: the application then receives no element for it and every later
// element one index lower.
const char *AppNapAddrType(const char *stored, bool *shifted);

// Element 0 of the NAPAUTHINFO array: "PAP" ... "MD5", or "NONE".
const char *AppAuthType(const char *stored);

// Element 0 of the APPAUTH array: "APPSRV", "CLIENT" or null.
const char *AppAAuthLevel(const char *stored);

}  // namespace cpdump

#endif  // CPDUMP_TOKENS_H
