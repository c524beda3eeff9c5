// Capturing trace sink for tests: while a TraceCapture lives, every finished
// trace line of the library is collected in lines(). Captures nest: the inner
// one collects, and the outer one is reinstalled when the inner one ends.
#ifndef TQOMACP_TESTS_SUPPORT_TRACE_CAPTURE_H
#define TQOMACP_TESTS_SUPPORT_TRACE_CAPTURE_H

#include <string>
#include <string_view>
#include <vector>

class TraceCapture {
   public:
    TraceCapture();
    ~TraceCapture();
    TraceCapture(const TraceCapture &) = delete;
    TraceCapture &operator=(const TraceCapture &) = delete;

    const std::vector<std::string> &lines() const { return lines_; }
    void Clear() { lines_.clear(); }
    // Number of lines that contain `text`.
    size_t Count(std::string_view text) const;
    bool Contains(std::string_view text) const { return Count(text) != 0; }
    // All lines joined, for failure messages.
    std::string Joined() const;

   private:
    static void Sink(const char *line);

    std::vector<std::string> lines_;
    TraceCapture *previous_;
};

#endif  // TQOMACP_TESTS_SUPPORT_TRACE_CAPTURE_H
