// The provisioning token tables cpmake writes: characteristic types and parm
// names of attribute code pages 0 and 1, and which value texts go out as
// value tokens.
#ifndef CPMAKE_WBXML_TOKENS_H
#define CPMAKE_WBXML_TOKENS_H

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cpmake {

// Pages on which a token is defined, as a bit mask.
constexpr std::uint8_t kPage0 = 1;
constexpr std::uint8_t kPage1 = 2;
constexpr std::uint8_t kBothPages = kPage0 | kPage1;

struct Token {
    std::uint8_t code;   // 0: no token, the name travels as an inline string
    std::uint8_t pages;  // kPage0, kPage1 or both
};

// A characteristic type (PXLOGICAL ... RESOURCE), by cpdump's token tables.
// Names without a token that the handset's library still reads by their text
// (ROAMING, WI-FI) come back with code 0; nothing for a name nobody knows.
std::optional<Token> FindType(std::string_view name);

// A parm name, likewise (INIT, FROM, NETSSID ... come back with code 0).
std::optional<Token> FindParm(std::string_view name);

// Every known parm name.
std::vector<std::string> ParmNames();

// The text the library's decoder turns value token `code` into; empty where
// it keeps the raw code (bearers, most services).
std::string_view DecodedText(std::uint8_t code);

// The value token to write for `value` of parm `parm` on attribute page
// `page`, or 0 to write the value as a string. A token is chosen only where
// the library decodes it back into exactly this text and the page defines
// the code with that meaning.
std::uint8_t ValueToken(std::string_view parm, std::string_view value, std::uint8_t page);

}  // namespace cpmake

#endif  // CPMAKE_WBXML_TOKENS_H
