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

// The name of a characteristic type or parm name token on attribute page
// `page` (0 or 1) alone; null where that page does not define the code.
const char *TypeOnPage(unsigned char code, unsigned char page);
const char *ParmOnPage(unsigned char code, unsigned char page);

// A characteristic type token as the decoder reads it: the name on `page`,
// else the other page's (the decoder maps page-0 types on page 1 too); null
// for codes outside 0x51..0x5B.
const char *TypeName(unsigned char code, unsigned char page);

// A parm name token. The decoder dispatches parms per characteristic, not by
// page: `page1_first` names the byte by page 1 before page 0, as the
// application characteristics read it. Null when neither page has it.
const char *ParmName(unsigned char code, bool page1_first);

// "application/vnd.wap.connectivity-wbxml" and friends; null for other codes.
const char *ContentTypeName(std::uint64_t code);

}  // namespace cpdump

#endif  // CPDUMP_TOKENS_H
