#include "trace_capture.h"

#include "tqstrace.h"

namespace {
TraceCapture *g_active = nullptr;
}

TraceCapture::TraceCapture() : previous_(g_active) {
    g_active = this;
    tqcTraceSetSink(&TraceCapture::Sink);
}

TraceCapture::~TraceCapture() {
    g_active = previous_;
    tqcTraceSetSink(previous_ != nullptr ? &TraceCapture::Sink : nullptr);
}

void TraceCapture::Sink(const char *line) {
    if (g_active != nullptr) g_active->lines_.emplace_back(line);
}

size_t TraceCapture::Count(std::string_view text) const {
    size_t n = 0;
    for (const std::string &line : lines_) {
        if (line.find(text) != std::string::npos) ++n;
    }
    return n;
}

std::string TraceCapture::Joined() const {
    std::string all;
    for (const std::string &line : lines_) all += line;
    return all;
}
