// The library's own string routines: zero-terminated 8-bit texts, a few UCS-2
// variants, number conversion, tokenising and a hex dump. Characters are
// compared as unsigned bytes whatever the signedness of char; character
// arguments of type int are taken modulo 256.
#ifndef TQSSTRING_H
#define TQSSTRING_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

char *tqsStrcpy(char *dest, const char *src);
TqsWChar *tqsStrcpyW(TqsWChar *dest, const TqsWChar *src);
// Writes exactly n bytes: the copy, then zeros; no zero when src has n or more characters.
char *tqsStrncpy(char *dest, const char *src, uint32_t n);
// Copies at most n units, stopping after the zero; no zero fill.
TqsWChar *tqsStrncpyW(TqsWChar *dest, const TqsWChar *src, uint32_t n);
char *tqsStrcat(char *dest, const char *src);
TqsWChar *tqsStrcatW(TqsWChar *dest, const TqsWChar *src);
// Stops after the zero or after the n-th character (then without a zero);
// n <= 0 means no limit.
char *tqsStrncat(char *dest, const char *src, int32_t n);

uint32_t tqsStrlen(const char *s);
uint32_t tqsStrlenW(const TqsWChar *s);
uint32_t tqsStrlenUcs(const TqsWChar *s);
char *tqsStrchr(const char *s, int c);
TqsWChar *tqsStrchrW(const TqsWChar *s, TqsWChar c);
// Never examines position 0.
char *tqsStrrchr(const char *s, int c);
char *tqsStrstr(const char *s, const char *sub);
char *tqsStristr(const char *s, const char *sub);

int32_t tqsStrcmp(const char *a, const char *b);
int32_t tqsStrcmpW(const TqsWChar *a, const TqsWChar *b);
int32_t tqsStricmp(const char *a, const char *b);
int32_t tqsStrncmp(const char *a, const char *b, uint32_t n);
int32_t tqsStrnicmp(const char *a, const char *b, uint32_t n);

int64_t tqsStrAtol(const char *s);
int32_t tqsStrAtoi(const char *s);
char *tqsStrLtoa(int64_t value, char *buffer, uint32_t base);
char *tqsStrItoa(int64_t value, char *buffer, uint32_t base);
void tqsStrDoNtoS(uint64_t value, char **position, uint32_t base);
uint32_t tqsStrAsciiToUcs2(TqsWChar *dest, const char *src, uint32_t n);
uint32_t tqsStrUcsToAscii(char *dest, const TqsWChar *src, uint32_t n);
char tqsStrToHexChar(uint32_t value);
uint32_t tqsCharToHex(int c);

char *tqsStrtok(char *s, const char *delimiters);
char *tqsStrsplit(const char *s, int delimiter, char *out);
int tqsStrIsSpace(int c);
char *tqsStrWhiteSpaceSkip(const char *s);
int tqsStrIsAscii(int c);
int tqsStrIsCntrl(int c);
// dest must hold the whole dump (3 bytes per data byte, 1 column byte per data
// byte, 5 per 16-byte line, and the zero).
char *tqsStrBinaryDump(char *dest, const unsigned char *data, uint32_t length);

#ifdef __cplusplus
}
#endif

#endif  // TQSSTRING_H
