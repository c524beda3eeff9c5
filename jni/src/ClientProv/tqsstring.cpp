#include "tqsstring.h"
#include <string.h>

namespace {

inline unsigned char Byte(char c) {
    return static_cast<unsigned char>(c);
}
inline unsigned char Byte(int c) {
    return static_cast<unsigned char>(c);
}

// ASCII-only folding: A..Z get 32 added, nothing else changes.
inline unsigned char Fold(unsigned char c) {
    return (c >= 'A' && c <= 'Z') ? c + 32 : c;
}

inline unsigned char Same(unsigned char c) {
    return c;
}

// Compares at most n characters; stops at a zero in a or at a difference and
// returns the difference there.
template <unsigned char (*Map)(unsigned char)>
int32_t CompareN(const char *a, const char *b, uint32_t n) {
    if (n == 0) return 0;
    uint32_t i = 0;
    for (; i + 1 < n; ++i) {
        if (a[i] == '\0' || Map(Byte(a[i])) != Map(Byte(b[i]))) break;
    }
    return int32_t{Map(Byte(a[i]))} - int32_t{Map(Byte(b[i]))};
}

template <int32_t (*Compare)(const char *, const char *, uint32_t)>
char *Search(const char *s, const char *sub) {
    uint32_t length = tqsStrlen(sub);
    for (const char *p = s; *p != '\0'; ++p) {
        if (Compare(p, sub, length) == 0) return const_cast<char *>(p);
    }
    return nullptr;
}

template <typename T>
uint32_t Length(const T *s) {
    uint32_t n = 0;
    while (s[n] != 0) ++n;
    return n;
}

// Texts go through the C library's scan, which reads a word or a vector per step.
template <>
uint32_t Length(const char *s) {
    return static_cast<uint32_t>(strlen(s));
}

template <typename T>
T *Copy(T *dest, const T *src) {
    uint32_t i = 0;
    do {
        dest[i] = src[i];
    } while (src[i++] != 0);
    return dest;
}

// Saved position of tqsStrtok; process-wide by contract.
char *g_tokenPosition = nullptr;

}  // namespace

extern "C" {

char *tqsStrcpy(char *dest, const char *src) {
    return Copy(dest, src);
}

TqsWChar *tqsStrcpyW(TqsWChar *dest, const TqsWChar *src) {
    return Copy(dest, src);
}

char *tqsStrncpy(char *dest, const char *src, uint32_t n) {
    uint32_t i = 0;
    for (; i < n && src[i] != '\0'; ++i) dest[i] = src[i];
    for (; i < n; ++i) dest[i] = '\0';
    return dest;
}

TqsWChar *tqsStrncpyW(TqsWChar *dest, const TqsWChar *src, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) {
        dest[i] = src[i];
        if (src[i] == 0) break;
    }
    return dest;
}

char *tqsStrcat(char *dest, const char *src) {
    Copy(dest + Length(dest), src);
    return dest;
}

TqsWChar *tqsStrcatW(TqsWChar *dest, const TqsWChar *src) {
    Copy(dest + Length(dest), src);
    return dest;
}

char *tqsStrncat(char *dest, const char *src, int32_t n) {
    char *out = dest + Length(dest);
    for (int64_t copied = 0;;) {
        char c = *src++;
        *out++ = c;
        if (c == '\0') break;
        if (++copied == n) break;  // stops after the n-th character, without a zero
    }
    return dest;
}

uint32_t tqsStrlen(const char *s) {
    return s == nullptr ? 0 : Length(s);
}

uint32_t tqsStrlenW(const TqsWChar *s) {
    return s == nullptr ? 0 : Length(s);
}

uint32_t tqsStrlenUcs(const TqsWChar *s) {
    return Length(s);
}

char *tqsStrchr(const char *s, int c) {
    for (;; ++s) {
        if (Byte(*s) == Byte(c)) return const_cast<char *>(s);
        if (*s == '\0') return nullptr;
    }
}

TqsWChar *tqsStrchrW(const TqsWChar *s, TqsWChar c) {
    for (;; ++s) {
        if (*s == c) return const_cast<TqsWChar *>(s);
        if (*s == 0) return nullptr;
    }
}

char *tqsStrrchr(const char *s, int c) {
    if (s == nullptr) return nullptr;
    for (uint32_t i = Length(s); i > 0; --i) {
        if (Byte(s[i]) == Byte(c)) return const_cast<char *>(s + i);
    }
    return nullptr;
}

char *tqsStrstr(const char *s, const char *sub) {
    if (s == nullptr || tqsStrlen(sub) == 0) return nullptr;
    return Search<tqsStrncmp>(s, sub);
}

char *tqsStristr(const char *s, const char *sub) {
    if (tqsStrlen(sub) == 0) return const_cast<char *>(s);
    if (s == nullptr) return nullptr;  // would otherwise read through null
    return Search<tqsStrnicmp>(s, sub);
}

int32_t tqsStrcmp(const char *a, const char *b) {
    int32_t d = CompareN<Same>(a, b, UINT32_MAX);
    return d < 0 ? -1 : (d > 0 ? 1 : 0);
}

int32_t tqsStrcmpW(const TqsWChar *a, const TqsWChar *b) {
    while (*a != 0 && *a == *b) ++a, ++b;
    int16_t d = static_cast<int16_t>(static_cast<uint16_t>(*a - *b));
    return d < 0 ? -1 : (d > 0 ? 1 : 0);
}

int32_t tqsStricmp(const char *a, const char *b) {
    return CompareN<Fold>(a, b, UINT32_MAX);
}

int32_t tqsStrncmp(const char *a, const char *b, uint32_t n) {
    return CompareN<Same>(a, b, n);
}

int32_t tqsStrnicmp(const char *a, const char *b, uint32_t n) {
    return CompareN<Fold>(a, b, n);
}

int64_t tqsStrAtol(const char *s) {
    bool negative = false;
    for (; *s != '\0' && !(*s >= '0' && *s <= '9'); ++s) {
        if (*s == '-') {
            negative = !negative;
        } else if (*s != '+' && Byte(*s) > 32) {
            return 0;
        }
    }
    // Overflow wraps modulo 2^64 (unsigned arithmetic: a signed overflow would be undefined).
    uint64_t value = 0;
    for (; *s >= '0' && *s <= '9'; ++s) value = value * 10 + static_cast<uint64_t>(*s - '0');
    return static_cast<int64_t>(negative ? 0 - value : value);
}

int32_t tqsStrAtoi(const char *s) {
    return static_cast<int32_t>(tqsStrAtol(s));
}

void tqsStrDoNtoS(uint64_t value, char **position, uint32_t base) {
    // Base 0 would divide by zero and base 1 never terminates: take 10 instead.
    if (base < 2) base = 10;
    // Digits most significant first, without recursion: at most 64 of them.
    char digits[64];
    uint32_t count = 0;
    do {
        uint64_t digit = value % base;
        digits[count++] = static_cast<char>(digit <= 9 ? '0' + digit : 'a' + (digit - 10));
        value /= base;
    } while (value != 0);
    while (count > 0) *(*position)++ = digits[--count];
}

char *tqsStrLtoa(int64_t value, char *buffer, uint32_t base) {
    char *position = buffer;
    uint64_t magnitude = static_cast<uint64_t>(value);
    if (value < 0) {
        *position++ = '-';
        magnitude = 0 - magnitude;
    }
    tqsStrDoNtoS(magnitude, &position, base);
    *position = '\0';
    return buffer;
}

char *tqsStrItoa(int64_t value, char *buffer, uint32_t base) {
    return tqsStrLtoa(value, buffer, base);
}

uint32_t tqsStrAsciiToUcs2(TqsWChar *dest, const char *src, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) dest[i] = Byte(src[i]);
    dest[n] = 0;
    return 1;
}

uint32_t tqsStrUcsToAscii(char *dest, const TqsWChar *src, uint32_t n) {
    for (uint32_t i = 0; i < n; ++i) dest[i] = static_cast<char>(src[i] & 0xFF);
    dest[n] = '\0';
    return 1;
}

char tqsStrToHexChar(uint32_t value) {
    if (value <= 9) return static_cast<char>('0' + value);
    if (value <= 15) return static_cast<char>('A' + (value - 10));
    return '?';
}

uint32_t tqsCharToHex(int c) {
    unsigned char b = Byte(c);
    if (b >= '0' && b <= '9') return b - '0';
    if (b >= 'A' && b <= 'F') return b - 'A' + 10;
    if (b >= 'a' && b <= 'f') return b - 'a' + 10;
    return 0;
}

char *tqsStrtok(char *s, const char *delimiters) {
    uint64_t map[4] = {};
    auto mark = [&map](unsigned char c) { map[c >> 6] |= uint64_t{1} << (c & 63); };
    auto inMap = [&map](unsigned char c) { return (map[c >> 6] >> (c & 63)) & 1; };
    const char *d = delimiters;
    do {
        mark(Byte(*d));  // the terminating zero is entered too
    } while (*d++ != '\0');

    char *p = (s != nullptr) ? s : g_tokenPosition;
    if (p == nullptr) return nullptr;  // no saved position yet: nothing to scan
    while (*p != '\0' && inMap(Byte(*p))) ++p;
    char *token = p;
    while (!inMap(Byte(*p))) ++p;  // the zero is in the map: stops at the end
    if (*p == '\0') {
        g_tokenPosition = p;
        return p == token ? nullptr : token;
    }
    *p = '\0';
    g_tokenPosition = p + 1;
    return token;
}

char *tqsStrsplit(const char *s, int delimiter, char *out) {
    if (s == nullptr || *s == '\0') return nullptr;
    uint32_t i = 0;
    for (; s[i] != '\0' && Byte(s[i]) != Byte(delimiter); ++i) out[i] = s[i];
    out[i] = '\0';
    return const_cast<char *>(s[i] == '\0' ? s + i : s + i + 1);
}

int tqsStrIsSpace(int c) {
    unsigned char b = Byte(c);
    return b == ' ' || (b >= 9 && b <= 13);
}

char *tqsStrWhiteSpaceSkip(const char *s) {
    while (*s == ' ' || *s == '\t') ++s;
    return const_cast<char *>(s);
}

int tqsStrIsAscii(int c) {
    return Byte(c) >= 32 && Byte(c) <= 126;
}

int tqsStrIsCntrl(int c) {
    return Byte(c) == 127 || Byte(c) <= 31;
}

char *tqsStrBinaryDump(char *dest, const unsigned char *data, uint32_t length) {
    char *out = dest;
    char column[17];
    uint32_t columnLength = 0;
    for (uint32_t i = 0; i < length; ++i) {
        if (i % 16 == 0 && i != 0) {
            if (columnLength != 0) {
                for (int k = 0; k < 3; ++k) *out++ = ' ';
                for (uint32_t k = 0; k < columnLength; ++k) *out++ = column[k];
            }
            *out++ = '\r';
            *out++ = '\n';
            columnLength = 0;
        }
        *out++ = tqsStrToHexChar(data[i] >> 4);
        *out++ = tqsStrToHexChar(data[i] & 0x0F);
        *out++ = ' ';
        column[columnLength++] = tqsStrIsAscii(data[i]) ? static_cast<char>(data[i]) : '.';
    }
    for (uint32_t k = 0; k < columnLength; ++k) *out++ = column[k];
    *out = '\0';
    return dest;
}

}  // extern "C"
