#include "tqsstring.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using Wide = std::vector<TqsWChar>;

// Runs before any other tokenising call of this program: no position is saved yet.
TEST(TqsString, StrtokAndStrsplit) {
    EXPECT_EQ(tqsStrtok(nullptr, ","), nullptr);
    char text[] = ",,alpha, beta,,gamma,";
    std::vector<std::string> tokens;
    for (char *t = tqsStrtok(text, ", "); t != nullptr; t = tqsStrtok(nullptr, ", ")) tokens.emplace_back(t);
    EXPECT_EQ(tokens, (std::vector<std::string>{"alpha", "beta", "gamma"}));
    EXPECT_EQ(tqsStrtok(nullptr, ","), nullptr);  // stays at the end

    char only[] = ";;;";
    EXPECT_EQ(tqsStrtok(only, ";"), nullptr);
    char last[] = "a;b";
    EXPECT_STREQ(tqsStrtok(last, ";"), "a");
    EXPECT_STREQ(tqsStrtok(nullptr, "x"), "b");  // the set is rebuilt on every call

    char out[16];
    const char *s = "ab:cd";
    EXPECT_EQ(tqsStrsplit(s, ':', out), s + 3);
    EXPECT_STREQ(out, "ab");
    EXPECT_EQ(tqsStrsplit(s + 3, ':', out), s + 5);  // the zero: non-null, empty
    EXPECT_STREQ(out, "cd");
    EXPECT_EQ(tqsStrsplit(s + 5, ':', out), nullptr);
    EXPECT_EQ(tqsStrsplit(nullptr, ':', out), nullptr);
}

TEST(TqsString, CopyAndConcatenate) {
    char dest[12];
    std::memset(dest, 'x', sizeof(dest));
    EXPECT_EQ(tqsStrncpy(dest, "abc", 8), dest);
    EXPECT_EQ(std::string(dest, 9), std::string("abc\0\0\0\0\0x", 9));  // exactly n bytes written
    tqsStrncpy(dest, "uvwxyz", 2);
    EXPECT_EQ(std::string(dest, 4), std::string("uvc\0", 4));  // no zero added

    Wide wide(10, 0x7777);
    const TqsWChar abc[] = {'a', 'b', 'c', 0};
    EXPECT_EQ(tqsStrncpyW(wide.data(), abc, 8), wide.data());
    EXPECT_EQ(Wide(wide.begin() + 2, wide.begin() + 5), (Wide{'c', 0, 0x7777}));  // no zero fill

    char text[16] = "ab";
    EXPECT_EQ(tqsStrcat(text, "cd"), text);
    EXPECT_STREQ(text, "abcd");
    EXPECT_STREQ(tqsStrcpy(text, "z"), "z");

    TqsWChar w[8] = {'x', 0};
    tqsStrcatW(w, abc);
    EXPECT_EQ(Wide(w, w + 5), (Wide{'x', 'a', 'b', 'c', 0}));
    EXPECT_EQ(tqsStrlenW(w), 4u);
    tqsStrcpyW(w, abc);
    EXPECT_EQ(tqsStrlenUcs(w), 3u);
}

TEST(TqsString, StrncatStopsAfterTheNthCharacterWithoutZero) {
    const std::string zero("aXYZ\0", 5);
    struct Case {
        int32_t n;
        std::string first5;
    } cases[] = {
        {2, "aXYqq"},  // two characters, no zero
        {3, "aXYZq"},  // the n-th is the last: still no zero
        {4, zero},     // the zero comes first
        {0, zero},     // no limit
    };
    for (const Case &c : cases) {
        char d[8] = {'a', '\0', 'q', 'q', 'q', 'q', 'q', 'q'};
        EXPECT_EQ(tqsStrncat(d, "XYZ", c.n), d);
        EXPECT_EQ(std::string(d, 5), c.first5) << "n=" << c.n;
    }
}

TEST(TqsString, Search) {
    const char *abca = "abca";
    EXPECT_EQ(tqsStrrchr(abca, 'a'), abca + 3);
    EXPECT_EQ(tqsStrrchr("abc", 'a'), nullptr);  // position 0 never examined
    EXPECT_EQ(tqsStrrchr(nullptr, 'a'), nullptr);
    EXPECT_EQ(tqsStrrchr(abca, 0), abca + 4);
    EXPECT_EQ(tqsStrchr(abca, 'c'), abca + 2);
    EXPECT_EQ(tqsStrchr(abca, 0), abca + 4);
    EXPECT_EQ(tqsStrchr(abca, 'z'), nullptr);
    const char high[] = "a\xE9z";
    EXPECT_EQ(tqsStrchr(high, 0xE9), high + 1);  // int and char spellings agree
    EXPECT_EQ(tqsStrchr(high, '\xE9'), high + 1);
    const TqsWChar w[] = {'a', 0x4E2D, 0};
    EXPECT_EQ(tqsStrchrW(w, 0x4E2D), w + 1);
    EXPECT_EQ(tqsStrchrW(w, 'q'), nullptr);

    const char *s = "xxABcd";
    EXPECT_EQ(tqsStrstr(s, ""), nullptr);
    EXPECT_EQ(tqsStrstr(nullptr, "a"), nullptr);
    EXPECT_EQ(tqsStrstr(s, "ABc"), s + 2);
    EXPECT_EQ(tqsStrstr(s, "abc"), nullptr);
    EXPECT_EQ(tqsStrstr(s, "cde"), nullptr);
    EXPECT_EQ(tqsStristr(s, ""), s);
    EXPECT_EQ(tqsStristr(s, "abC"), s + 2);
    EXPECT_EQ(tqsStristr(s, "q"), nullptr);
    EXPECT_EQ(tqsStristr(nullptr, "q"), nullptr);
    EXPECT_EQ(tqsStrlenW(nullptr), 0u);
}

TEST(TqsString, Compare) {
    EXPECT_EQ(tqsStrcmp("abc", "abd"), -1);
    EXPECT_EQ(tqsStrcmp("ab", "abc"), -1);
    EXPECT_EQ(tqsStrcmp("same", "same"), 0);
    EXPECT_EQ(tqsStrcmp("\x80", "\x7F"), 1);  // unsigned bytes
    EXPECT_EQ(tqsStricmp("c", "A"), 2);
    EXPECT_EQ(tqsStricmp("HeLLo", "hello"), 0);
    EXPECT_EQ(tqsStricmp("[", "a"), '[' - 'a');  // only A-Z fold
    EXPECT_EQ(tqsStrncmp("abc", "xyz", 0), 0);
    EXPECT_EQ(tqsStrncmp("abcd", "abce", 3), 0);
    EXPECT_EQ(tqsStrncmp("abcd", "abce", 4), 'd' - 'e');
    EXPECT_EQ(tqsStrncmp("ab", "abc", 5), -'c');
    EXPECT_EQ(tqsStrnicmp("SEC", "sec", 3), 0);
    EXPECT_EQ(tqsStrnicmp("SEx", "sec", 3), 'x' - 'c');
    const TqsWChar a[] = {1, 0}, b[] = {0x8002, 0}, c[] = {1, 0};
    EXPECT_EQ(tqsStrcmpW(a, b), 1);  // 1 - 0x8002 taken as signed 16 bits is positive
    EXPECT_EQ(tqsStrcmpW(b, a), -1);
    EXPECT_EQ(tqsStrcmpW(a, c), 0);
}

TEST(TqsString, NumbersAndHex) {
    const struct {
        const char *text;
        int64_t value;
    } cases[] = {{" -12x", -12}, {"x12", 0}, {"--7", 7}, {"+42", 42}, {"4 2", 4},
                 {"\t\n 9", 9},  {"", 0},    {"-", 0},   {"-+-+5", 5}};
    for (const auto &c : cases) EXPECT_EQ(tqsStrAtol(c.text), c.value) << c.text;
    EXPECT_EQ(tqsStrAtol("123456789012"), 123456789012);
    EXPECT_EQ(tqsStrAtol("9223372036854775808"), INT64_MIN);
    EXPECT_EQ(tqsStrAtoi("4294967297"), 1);  // narrowed to 32 bits

    char buffer[80];
    EXPECT_STREQ(tqsStrLtoa(-255, buffer, 16), "-ff");
    EXPECT_STREQ(tqsStrItoa(0, buffer, 10), "0");
    EXPECT_STREQ(tqsStrItoa(1234567890123, buffer, 10), "1234567890123");
    EXPECT_STREQ(tqsStrLtoa(INT64_MIN, buffer, 10), "-9223372036854775808");
    EXPECT_STREQ(tqsStrLtoa(5, buffer, 2), "101");
    EXPECT_STREQ(tqsStrLtoa(35, buffer, 36), "z");
    // Base 0 and 1 would divide by zero or never end: taken as 10.
    EXPECT_STREQ(tqsStrLtoa(42, buffer, 0), "42");
    EXPECT_STREQ(tqsStrLtoa(42, buffer, 1), "42");
    char digits[8] = "=======";
    char *pos = digits + 1;
    tqsStrDoNtoS(0x1F, &pos, 16);
    EXPECT_EQ(pos, digits + 3);
    EXPECT_STREQ(digits, "=1f====");

    std::string hex;
    for (uint32_t v : {0u, 9u, 10u, 15u, 16u, 255u}) hex += tqsStrToHexChar(v);
    EXPECT_EQ(hex, "09AF??");
    std::vector<uint32_t> values;
    for (char c : std::string("7bFg\xB0")) values.push_back(tqsCharToHex(c));
    EXPECT_EQ(values, (std::vector<uint32_t>{7, 11, 15, 0, 0}));
}

TEST(TqsString, Ucs2Conversion) {
    Wide wide(6, 0x7777);
    EXPECT_EQ(tqsStrAsciiToUcs2(wide.data(), "a\0\xE9", 3), 1u);  // zeros included, no stop
    EXPECT_EQ(wide, (Wide{'a', 0, 0xE9, 0, 0x7777, 0x7777}));     // 0xE9 not sign-extended
    const TqsWChar src[] = {0x4E41, 'b', 0};
    char narrow[4] = "xxx";
    EXPECT_EQ(tqsStrUcsToAscii(narrow, src, 2), 1u);
    EXPECT_EQ(std::string(narrow, 3), std::string("Ab\0", 3));
}

TEST(TqsString, ClassificationAndDump) {
    std::string spaces, ascii, cntrl, printable, control;
    for (int c = 0; c < 256; ++c) {
        if (tqsStrIsSpace(c)) spaces += static_cast<char>(c);
        if (tqsStrIsAscii(c)) ascii += static_cast<char>(c);
        if (tqsStrIsCntrl(c)) cntrl += static_cast<char>(c);
        if (c >= ' ' && c <= '~') printable += static_cast<char>(c);
        if (c < ' ' || c == 0x7F) control += static_cast<char>(c);
    }
    EXPECT_EQ(spaces, std::string("\t\n\v\f\r "));
    EXPECT_EQ(ascii, printable);
    EXPECT_EQ(cntrl, control);
    EXPECT_FALSE(tqsStrIsAscii('\xE9'));  // negative char on x86-64: still not ASCII
    EXPECT_FALSE(tqsStrIsCntrl('\x85'));
    EXPECT_STREQ(tqsStrWhiteSpaceSkip(" \t \nx"), "\nx");

    char dest[256];
    const unsigned char three[] = {0x41, 0x00, 0x7F};
    EXPECT_EQ(tqsStrBinaryDump(dest, three, 3), dest);
    EXPECT_STREQ(dest, "41 00 7F A..");  // longer and empty dumps: tqcTraceDump22's tests
}

}  // namespace
