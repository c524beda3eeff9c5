// Diagnostic trace. Every formatter builds one finished line and hands it to
// tqcTraceWrite, which drops it; a host may install a sink that receives each
// line. Without a sink the formatters return at once: no formatting, no
// allocation. Two exceptions: tqcTraceDump22 always fills _szBuffer, and while
// leak tracking is on the formatters that allocate their line still do.
#ifndef TQSTRACE_H
#define TQSTRACE_H

#include "tqstypes.h"

#ifdef __cplusplus
extern "C" {
#endif

#define TQC_TRACE_BUFFER_SIZE 20480u
#define TQC_DUMP_BUFFER_SIZE 32000u

// Target of tqcTraceDump22's hex dump.
TQS_EXPORT extern char _szBuffer[TQC_DUMP_BUFFER_SIZE];

typedef void (*TqcTraceSink)(const char *line);

// Installs the receiver of every finished line; null uninstalls it.
TQS_EXPORT void tqcTraceSetSink(TqcTraceSink sink);

// The installed sink, null when none; read by the tqcTrace macro below.
extern TqcTraceSink ptTqcTraceSink;

void tqcTrace(const char *format, ...) __attribute__((format(printf, 1, 2)));
void tqcTraceError(int64_t code);
void tqcTraceFunction(const char *name);
void tqcTraceString(const char *format, const char *text);
void tqcTraceExcption(const char *message, const char *path, uint32_t line);
void tqcTraceDump(const char *title, const unsigned char *data, uint32_t length);
void tqcTraceDump22(const unsigned char *data, uint32_t length);
void tqcTraceWrite(const char *line);

#ifdef __cplusplus
}
#endif

// A variadic call fills its register save area before it can return, and the
// decoder traces about twice per body byte: with no sink the call is skipped at
// the call site, arguments included (no trace argument has side effects).
// (tqcTrace)(...) calls the function itself.
#define tqcTrace(...) (__builtin_expect(ptTqcTraceSink != 0, 0) ? tqcTrace(__VA_ARGS__) : (void)0)

#endif  // TQSTRACE_H
