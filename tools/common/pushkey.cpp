#include "pushkey.h"

#include <openssl/crypto.h>
#include <openssl/evp.h>
#include <openssl/hmac.h>
#include <strings.h>

namespace cpcommon {
namespace {

constexpr struct {
    std::uint8_t code;
    const char *name;
} kSecNames[] = {
    {kSecNetwPin, "NETWPIN"},
    {kSecUserPin, "USERPIN"},
    {kSecUserNetwPin, "USERNETWPIN"},
    {kSecUserPinMac, "USERPINMAC"},
};

char Upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

}  // namespace

const char *SecName(std::uint64_t sec) {
    for (const auto &entry : kSecNames) {
        if (entry.code == sec) return entry.name;
    }
    return nullptr;
}

bool SecFromName(std::string_view name, std::uint8_t *sec) {
    for (const auto &entry : kSecNames) {
        if (name.size() == std::char_traits<char>::length(entry.name) &&
            strncasecmp(name.data(), entry.name, name.size()) == 0) {
            *sec = entry.code;
            return true;
        }
    }
    return false;
}

bool ValidImsi(std::string_view imsi) {
    if (imsi.empty() || imsi.size() > 15) return false;
    for (char c : imsi) {
        if (c < '0' || c > '9') return false;
    }
    return true;
}

Bytes ImsiKey(std::string_view imsi) {
    // Nibbles in reading order, parity first, filler last; each byte then
    // carries its first nibble low.
    std::vector<unsigned char> nibbles;
    nibbles.push_back(imsi.size() % 2 == 1 ? 0x9 : 0x1);
    for (char c : imsi) nibbles.push_back(static_cast<unsigned char>(c - '0'));
    if (nibbles.size() % 2 == 1) nibbles.push_back(0xF);
    Bytes key;
    for (std::size_t i = 0; i < nibbles.size(); i += 2)
        key.push_back(static_cast<unsigned char>(nibbles[i + 1] << 4 | nibbles[i]));
    return key;
}

KeyStatus MacKey(std::uint64_t sec, const Credentials &c, Bytes *key) {
    const bool wants_imsi = sec == kSecNetwPin || sec == kSecUserNetwPin;
    const bool wants_pin = sec == kSecUserPin || sec == kSecUserNetwPin;
    if (!wants_imsi && !wants_pin) return KeyStatus::kUnsupported;
    if ((wants_imsi && !c.imsi) || (wants_pin && !c.pin)) return KeyStatus::kCredentialMissing;
    key->clear();
    if (wants_imsi) *key = ImsiKey(*c.imsi);
    if (wants_pin) key->insert(key->end(), c.pin->begin(), c.pin->end());
    return KeyStatus::kOk;
}

std::string MacText(const Bytes &key, const unsigned char *data, std::size_t size) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int length = 0;
    // OpenSSL wants a non-null key pointer even for an empty key.
    static const unsigned char kEmpty = 0;
    HMAC(EVP_sha1(), key.empty() ? &kEmpty : key.data(), static_cast<int>(key.size()),
         size == 0 ? &kEmpty : data, size, digest, &length);
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text;
    for (unsigned int i = 0; i < length; ++i) {
        text += kDigits[digest[i] >> 4];
        text += kDigits[digest[i] & 0x0F];
    }
    return text;
}

const char *AuthenticationText(Authentication result) {
    switch (result) {
        case Authentication::kNotChecked:
            return "not checked";
        case Authentication::kAuthentic:
            return "authentic";
        case Authentication::kNotAuthentic:
            return "not authentic";
        case Authentication::kNotSigned:
            return "not signed";
        case Authentication::kCredentialMissing:
            return "credential missing";
        case Authentication::kUnsupported:
            return "unsupported";
    }
    return "unsupported";
}

Authentication Authenticate(std::uint64_t sec, std::string_view mac, const unsigned char *body,
                            std::size_t size, const Credentials &credentials) {
    if (!credentials.pin && !credentials.imsi) return Authentication::kNotChecked;
    if (sec == 0 || mac.empty()) return Authentication::kNotSigned;
    Bytes key;
    switch (MacKey(sec, credentials, &key)) {
        case KeyStatus::kUnsupported:
            return Authentication::kUnsupported;
        case KeyStatus::kCredentialMissing:
            return Authentication::kCredentialMissing;
        case KeyStatus::kOk:
            break;
    }
    const std::string expected = MacText(key, body, size);
    if (mac.size() != expected.size()) return Authentication::kNotAuthentic;
    std::string given(mac);
    for (char &ch : given) ch = Upper(ch);
    return CRYPTO_memcmp(given.data(), expected.data(), expected.size()) == 0 ? Authentication::kAuthentic
                                                                              : Authentication::kNotAuthentic;
}

}  // namespace cpcommon
