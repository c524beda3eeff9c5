// Names of the codes a push carries.
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

}  // namespace cpdump

#endif  // CPDUMP_TOKENS_H
