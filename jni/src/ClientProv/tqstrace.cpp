#include "tqstrace.h"

#include <stdarg.h>
#include <stdio.h>

#include "tqsmemory.h"
#include "tqsstring.h"

static const char kUnitPath[] = "jni/src/ClientProv/tqstrace";

// Allocation lines that the leak report shows.
static const uint32_t kLineFunction = 41;
static const uint32_t kLineStringFormatted = 96;
static const uint32_t kLineStringLine = 97;
static const uint32_t kLineExcption = 228;

static const char kPrefix[] = "[Syncml] ";
static const uint32_t kPrefixLength = sizeof(kPrefix) - 1;
static const uint32_t kErrorLineSize = 50;
static const uint32_t kDumpBytesPerLine = 16;

char _szBuffer[TQC_DUMP_BUFFER_SIZE];
TqcTraceSink ptTqcTraceSink = nullptr;

namespace {

char g_traceBuffer[TQC_TRACE_BUFFER_SIZE];  // szTraceBuffer

// The one branch every formatter takes first: with no sink nothing is formatted.
inline bool Off() {
    return __builtin_expect(ptTqcTraceSink == nullptr, 1);
}

// Off, and leak tracking off too. While tracking is on, the formatters that
// allocate their line do so, sink or not: the tracker sees those blocks (and
// with a full table reports each one).
inline bool Quiet() {
    return Off() && bMemCheck == 0;
}

// Appends the pieces into `out`; returns the end (a zero is written there).
char *Join(char *out, const char *const *pieces, uint32_t count) {
    for (uint32_t i = 0; i < count; ++i) {
        for (const char *p = pieces[i]; *p != '\0'; ++p) *out++ = *p;
    }
    *out = '\0';
    return out;
}

char *Alloc(uint64_t size, uint32_t line) {
    // A size beyond 32 bits would wrap into a short block: refuse it.
    if (size > UINT32_MAX) return nullptr;
    return static_cast<char *>(tqsMemAllocSetZero_debug(static_cast<uint32_t>(size), kUnitPath, line));
}

// Formats into `out` of `size` bytes; texts that do not fit are cut.
void Format(char *out, uint32_t size, const char *format, ...) __attribute__((format(printf, 3, 4)));
void Format(char *out, uint32_t size, const char *format, ...) {
    va_list args;
    va_start(args, format);
    vsnprintf(out, size, format, args);
    va_end(args);
}

// Characters of tqsStrBinaryDump's text for n bytes, with its zero: three
// hex characters and one column character per byte, five ("   " and CR LF)
// between lines.
constexpr uint64_t BinaryDumpSize(uint64_t n) {
    return n == 0 ? 1 : 4 * n + 5 * ((n - 1) / kDumpBytesPerLine) + 1;
}

// Most bytes whose dump fits _szBuffer; longer data would overflow it and
// are dumped only that far.
constexpr uint32_t MaxDumpBytes(uint32_t size) {
    uint32_t n = 0;
    while (BinaryDumpSize(n + 1) <= size) ++n;
    return n;
}
constexpr uint32_t kMaxDump22Bytes = MaxDumpBytes(TQC_DUMP_BUFFER_SIZE);
static_assert(kMaxDump22Bytes == 7421, "a 32000-byte _szBuffer holds the dump of 7421 bytes");

}  // namespace

extern "C" {

void tqcTraceSetSink(TqcTraceSink sink) {
    ptTqcTraceSink = sink;
}

void tqcTraceWrite(const char *line) {
    // The library's own output drops the line; a host sink receives it.
    if (ptTqcTraceSink != nullptr) ptTqcTraceSink(line);
}

void(tqcTrace)(const char *format, ...) {
    if (Off()) return;
    va_list args;
    va_start(args, format);
    // Bounded: one byte stays free for the line feed.
    vsnprintf(g_traceBuffer, sizeof(g_traceBuffer) - 1, format, args);
    va_end(args);
    uint32_t length = tqsStrlen(g_traceBuffer);
    g_traceBuffer[length] = '\n';
    g_traceBuffer[length + 1] = '\0';
    tqcTraceWrite(g_traceBuffer);
}

void tqcTraceError(int64_t code) {
    if (Off() || code == 0) return;
    char line[kErrorLineSize] = {};
    if (code <= 0xFFF) {
        Format(line, sizeof(line), "[Syncml] ERROR : %x\n", static_cast<unsigned>(code));
    } else if (code <= 0x2FFF) {
        // Codes 0x1000-0x1FFF come out as the 32-bit two's complement of code - 0x2000.
        Format(line, sizeof(line), "[Syncml] ERROR : DM = %x\n", static_cast<unsigned>(code - 0x2000));
    }
    tqcTraceWrite(line);
}

void tqcTraceFunction(const char *name) {
    if (Quiet()) return;
    char *line = Alloc(uint64_t{tqsStrlen(name)} + 31, kLineFunction);
    if (line == nullptr) return;
    const char *pieces[] = {kPrefix, name, "()\n"};
    Join(line, pieces, 3);
    tqcTraceWrite(line);
    tqsMemFree_debug(line);
}

void tqcTraceString(const char *format, const char *text) {
    if (Quiet()) return;
    uint64_t size = uint64_t{tqsStrlen(text)} + 101;
    // A format text longer than the 100 spare bytes would overflow the blocks:
    // they are made large enough for the whole line instead.
    int needed = snprintf(nullptr, 0, format, text);
    if (needed < 0) return;
    if (size < uint64_t(needed) + kPrefixLength + 2) size = uint64_t(needed) + kPrefixLength + 2;
    char *formatted = Alloc(size, kLineStringFormatted);
    char *line = Alloc(size, kLineStringLine);
    if (formatted != nullptr && line != nullptr) {
        snprintf(formatted, size, format, text);
        const char *pieces[] = {kPrefix, formatted, "\n"};
        Join(line, pieces, 3);
        tqcTraceWrite(line);
    }
    tqsMemFree_debug(formatted);
    tqsMemFree_debug(line);
}

void tqcTraceExcption(const char *message, const char *path, uint32_t lineNumber) {
    if (Quiet()) return;
    char *line = Alloc(uint64_t{tqsStrlen(message)} + tqsStrlen(path) + 41, kLineExcption);
    if (line == nullptr) return;
    char number[16];
    Format(number, sizeof(number), "%d", static_cast<int>(lineNumber));
    const char *pieces[] = {kPrefix, message, " ", path, number, "\n"};
    Join(line, pieces, 6);
    tqcTraceWrite(line);
    tqsMemFree_debug(line);
}

void tqcTraceDump(const char *title, const unsigned char *data, uint32_t length) {
    if (Off() || data == nullptr) return;
    if (title != nullptr) tqcTrace("%s length:%d", title, static_cast<int>(length));
    // 16 hex triples, three blanks, 16 column characters and the zero.
    char line[kDumpBytesPerLine * 3 + 3 + kDumpBytesPerLine + 1];
    char column[kDumpBytesPerLine + 1];
    uint32_t lineLength = 0;
    uint32_t columnLength = 0;
    auto flush = [&]() {
        if (columnLength != 0) {
            column[columnLength] = '\0';
            const char *pieces[] = {"   ", column};
            lineLength = static_cast<uint32_t>(Join(line + lineLength, pieces, 2) - line);
        }
        line[lineLength] = '\0';
        tqcTraceWrite(line);
        lineLength = columnLength = 0;
    };
    for (uint32_t i = 0; i < length; ++i) {
        if (i % kDumpBytesPerLine == 0 && i != 0) flush();
        line[lineLength++] = tqsStrToHexChar(data[i] >> 4);
        line[lineLength++] = tqsStrToHexChar(data[i] & 0x0F);
        line[lineLength++] = ' ';
        column[columnLength++] = tqsStrIsAscii(data[i]) ? static_cast<char>(data[i]) : '.';
    }
    flush();
}

void tqcTraceDump22(const unsigned char *data, uint32_t length) {
    // Written with or without a sink: a host may read _szBuffer. Null data would
    // be read through null: nothing is dumped.
    if (data == nullptr) length = 0;
    tqsStrBinaryDump(_szBuffer, data, length < kMaxDump22Bytes ? length : kMaxDump22Bytes);
    tqcTraceWrite(_szBuffer);
}

}  // extern "C"
