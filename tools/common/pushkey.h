// The MAC of a provisioning push: the keys the SEC method names, HMAC-SHA1
// over the body, and the verdict. The Java facade computes the same keys.
#ifndef CPCOMMON_PUSHKEY_H
#define CPCOMMON_PUSHKEY_H

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace cpcommon {

using Bytes = std::vector<unsigned char>;

// SEC values of the push header.
enum Sec : std::uint8_t {
    kSecNetwPin = 0x80,
    kSecUserPin = 0x81,
    kSecUserNetwPin = 0x82,
    kSecUserPinMac = 0x83,
};

// "NETWPIN", "USERPIN", "USERNETWPIN", "USERPINMAC"; null for other codes.
const char *SecName(std::uint64_t sec);
// The reverse, ignoring letter case; false for an unknown name.
bool SecFromName(std::string_view name, std::uint8_t *sec);

// What the user or the SIM supplies; either may be absent.
struct Credentials {
    std::optional<std::string> pin;
    std::optional<std::string> imsi;
};

// An IMSI is 1 to 15 decimal digits.
bool ValidImsi(std::string_view imsi);

// The IMSI in semi-octet form: 9 before an odd count of digits, 1 before and
// F after an even count, the two digits of every byte swapped
// (466923103145252 gives 49 66 29 13 30 41 25 25). The IMSI must be valid.
Bytes ImsiKey(std::string_view imsi);

enum class KeyStatus {
    kOk,
    kCredentialMissing,  // the method needs a PIN or IMSI that was not given
    kUnsupported,        // USERPINMAC or an unknown SEC value
};

// The HMAC key for `sec`: USERPIN the PIN's characters, NETWPIN the IMSI key,
// USERNETWPIN the IMSI key followed by the PIN. A given IMSI must be valid.
KeyStatus MacKey(std::uint64_t sec, const Credentials &credentials, Bytes *key);

// HMAC-SHA1 of `data` as 40 upper-case hex digits.
std::string MacText(const Bytes &key, const unsigned char *data, std::size_t size);

enum class Authentication {
    kNotChecked,
    kAuthentic,
    kNotAuthentic,
    kNotSigned,  // no SEC or no MAC in the header
    kCredentialMissing,
    kUnsupported,
};

// "authentic", "not authentic", ... as the tools print them.
const char *AuthenticationText(Authentication result);

// The verdict on a push whose header carries `sec` (0 for none) and `mac`
// (empty for none) over `body`. Without any credential it is kNotChecked.
// Hex digits compare without regard to case, in constant time.
Authentication Authenticate(std::uint64_t sec, std::string_view mac, const unsigned char *body,
                            std::size_t size, const Credentials &credentials);

}  // namespace cpcommon

#endif  // CPCOMMON_PUSHKEY_H
