// Stored values to Java strings (modified UTF-8).
#include "tqomacp_jni_strings.h"

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <string.h>

namespace tqsjni {
namespace {

inline bool IsContinuation(unsigned char byte) {
    return (byte & 0xC0u) == 0x80u;
}

// Length (1 to 3) of the modified UTF-8 sequence at s: a byte below 0x80,
// C0 80 (U+0000), or a shortest 2- or 3-byte form, surrogates included; 0
// when none starts there. Never reads past the terminating zero, which is no
// continuation byte.
uint32_t ModifiedUtf8Length(const unsigned char *s) {
    const unsigned char lead = s[0];
    if (lead < 0x80) return 1;
    if (lead == 0xC0) return s[1] == 0x80 ? 2 : 0;
    if (lead >= 0xC2 && lead <= 0xDF) return IsContinuation(s[1]) ? 2 : 0;
    if (lead == 0xE0) return s[1] >= 0xA0 && s[1] <= 0xBF && IsContinuation(s[2]) ? 3 : 0;
    if (lead >= 0xE1 && lead <= 0xEF) return IsContinuation(s[1]) && IsContinuation(s[2]) ? 3 : 0;
    return 0;
}

// Code point of the shortest 4-byte UTF-8 sequence at s (U+10000 to
// U+10FFFF), or 0 when none starts there.
uint32_t SupplementaryCodePoint(const unsigned char *s) {
    if (s[0] < 0xF0 || s[0] > 0xF4) return 0;
    uint32_t value = s[0] & 0x07u;
    for (int i = 1; i < 4; ++i) {
        if (!IsContinuation(s[i])) return 0;
        value = (value << 6) | (s[i] & 0x3Fu);
    }
    return value >= 0x10000 && value <= 0x10FFFF ? value : 0;
}

// Appends one UTF-16 unit of U+0080 or above in modified UTF-8.
unsigned char *PutUnit(unsigned char *out, uint32_t unit) {
    if (unit < 0x800) {
        *out++ = static_cast<unsigned char>(0xC0 | (unit >> 6));
        *out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
    } else {
        *out++ = static_cast<unsigned char>(0xE0 | (unit >> 12));
        *out++ = static_cast<unsigned char>(0x80 | ((unit >> 6) & 0x3F));
        *out++ = static_cast<unsigned char>(0x80 | (unit & 0x3F));
    }
    return out;
}

// Converts length bytes of text into out (room for 2 * length + 1).
void ToModifiedUtf8(const unsigned char *text, size_t length, unsigned char *out) {
    for (size_t i = 0; i < length;) {
        uint32_t n = ModifiedUtf8Length(text + i);
        if (n != 0) {
            memcpy(out, text + i, n);
            out += n;
            i += n;
        } else if (uint32_t codePoint = SupplementaryCodePoint(text + i); codePoint != 0) {
            codePoint -= 0x10000;
            out = PutUnit(out, 0xD800 + (codePoint >> 10));
            out = PutUnit(out, 0xDC00 + (codePoint & 0x3FF));
            i += 4;
        } else {
            out = PutUnit(out, text[i]);
            i += 1;
        }
    }
    *out = 0;
}

// Room for the converted texts of stored values up to 255 bytes.
constexpr size_t kConversionStack = 512;

}  // namespace

jstring NewJavaString(JNIEnv *env, const char *value) {
    if (value == nullptr) return nullptr;
    const unsigned char *text = reinterpret_cast<const unsigned char *>(value);
    bool plain = true;
    size_t length = 0;
    while (text[length] != 0) {
        const uint32_t n = ModifiedUtf8Length(text + length);
        plain = plain && n != 0;
        length += n == 0 ? 1 : n;
    }
    if (plain) return env->NewStringUTF(value);
    // Each input byte yields at most two output bytes (a stray byte: 2; a
    // 4-byte sequence: two 3-byte surrogates). The buffer is scratch of one
    // call, outside the tracker, so that a getter leaves no trace in it.
    // Only a 32-bit size could wrap; such a text gives null, not a short buffer.
    if (length > (SIZE_MAX - 1) / 2) return nullptr;
    const size_t size = 2 * length + 1;
    unsigned char onStack[kConversionStack];
    unsigned char *converted = size <= sizeof onStack ? onStack : static_cast<unsigned char *>(malloc(size));
    if (converted == nullptr) return nullptr;
    ToModifiedUtf8(text, length, converted);
    jstring result = env->NewStringUTF(reinterpret_cast<const char *>(converted));
    if (converted != onStack) free(converted);
    return result;
}

}  // namespace tqsjni
