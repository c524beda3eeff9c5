#include "tqstrace.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "mem_check.h"
#include "tqsmemory.h"
#include "trace_capture.h"

namespace {

const char kUnit[] = "jni/src/ClientProv/tqstrace";

using Lines = std::vector<std::string>;

TEST(TqcTrace, FormattedLinesAndDumps) {
    TraceCapture trace;
    tqcTrace("[Syncml] %s=%d", "count", 5);
    tqcTraceFunction("tqsClientProvWbxmlDecoderCharacter");
    tqcTraceString("value <%s>", "abc");
    tqcTraceExcption("[Error] M", "jni/src/ClientProv/x", 905);
    tqcTraceString("%s", "");
    const unsigned char data[] = "a\0\377defghijklmnopq";
    tqcTraceDump("Body", data, 17);
    tqcTraceDump(nullptr, data, 16);  // exactly one line, no title
    tqcTraceDump("T", nullptr, 16);   // nothing
    tqcTraceDump(nullptr, data, 0);   // one empty line
    tqcTraceDump22(data, 17);
    const std::string row = "61 00 FF 64 65 66 67 68 69 6A 6B 6C 6D 6E 6F 70    a..defghijklmnop";
    EXPECT_EQ(trace.lines(),
              (Lines{"[Syncml] count=5\n", "[Syncml] tqsClientProvWbxmlDecoderCharacter()\n",
                     "[Syncml] value <abc>\n", "[Syncml] [Error] M jni/src/ClientProv/x905\n", "[Syncml] \n",
                     "Body length:17\n", row, "71    q", row, "", row + "\r\n71 q"}));
    EXPECT_STREQ(_szBuffer, trace.lines().back().c_str());
}

TEST(TqcTrace, ErrorCodeRanges) {
    struct Case {
        int64_t code;
        Lines lines;
    } cases[] = {
        {0, {}},
        {0xFFF, {"[Syncml] ERROR : fff\n"}},
        {-1, {"[Syncml] ERROR : ffffffff\n"}},
        {0x1000, {"[Syncml] ERROR : DM = fffff000\n"}},  // code - 0x2000 in the 0x1000 range too
        {0x1FFF, {"[Syncml] ERROR : DM = ffffffff\n"}},
        {0x2FFF, {"[Syncml] ERROR : DM = fff\n"}},
        {0x3000, {""}},  // empty line, still handed over
        {INT64_MAX, {""}},
    };
    for (const Case &c : cases) {
        TraceCapture trace;
        tqcTraceError(c.code);
        EXPECT_EQ(trace.lines(), c.lines) << std::hex << c.code;
    }
}

TEST(TqcTrace, OversizedInputsAreBounded) {
    TraceCapture trace;
    std::string huge(30000, 'x');
    tqcTrace("%s", huge.c_str());
    EXPECT_EQ(trace.lines(), Lines{std::string(TQC_TRACE_BUFFER_SIZE - 2, 'x') + "\n"});

    // A format text beyond the 100 spare bytes still yields the whole line.
    trace.Clear();
    std::string format = std::string(300, 'f') + "%s";
    tqcTraceString(format.c_str(), "v");
    EXPECT_EQ(trace.lines(), Lines{"[Syncml] " + std::string(300, 'f') + "v\n"});

    // tqcTraceDump22 dumps every byte whose dump fits _szBuffer (7421 bytes
    // fill it to the last character) and stops there for longer data.
    struct Case {
        uint32_t length;
        size_t lineSize;
    } cases[] = {
        {7410, 4 * 7410 + 5 * 463}, {7421, TQC_DUMP_BUFFER_SIZE - 1}, {7422, TQC_DUMP_BUFFER_SIZE - 1}};
    std::vector<unsigned char> big(7422);
    for (size_t i = 0; i < big.size(); ++i) big[i] = static_cast<unsigned char>('a' + i % 26);
    for (const Case &c : cases) {
        trace.Clear();
        tqcTraceDump22(big.data(), c.length);
        ASSERT_EQ(trace.lines().size(), 1u);
        const std::string &line = trace.lines()[0];
        EXPECT_EQ(line.size(), c.lineSize) << c.length;
        // The last dumped byte ends the column.
        uint32_t last = c.length < 7421 ? c.length - 1 : 7420;
        EXPECT_EQ(line.back(), static_cast<char>(big[last])) << c.length;
    }
}

// Blocks of the trace unit alive while the sink runs, as "line:size".
const MemCheck *g_check;
std::vector<std::string> g_seen;
void InspectingSink(const char *) {
    for (const LiveBlock &b : g_check->Live()) {
        if (b.file == kUnit) g_seen.push_back(std::to_string(b.line) + ":" + std::to_string(b.size));
    }
}

// With leak tracking on, formatters take their line blocks sink or not: a sink
// sees them; without one, a full table prints each allocation and release.
TEST(TqcTrace, LineBlocksTheirSizesAndTakenWithoutSink) {
    MemCheck check;
    g_check = &check;
    g_seen.clear();  // --gtest_repeat runs this again
    tqcTraceSetSink(InspectingSink);
    tqcTraceFunction("abc");           // 3 + 31
    tqcTraceString("%s", "abcd");      // 4 + 101, twice
    tqcTraceExcption("mm", "ppp", 1);  // 2 + 3 + 41
    tqcTraceError(5);                  // local buffer only
    tqcTrace("x");                     // static buffer only
    tqcTraceSetSink(nullptr);
    EXPECT_EQ(g_seen, (std::vector<std::string>{"41:34", "96:105", "97:105", "228:46"}));
    EXPECT_TRUE(check.Live().empty());  // all freed after the write

    std::vector<void *> fill;
    for (uint32_t i = 0; i < TQS_MEMCHECK_ENTRIES; ++i) fill.push_back(tqsMemAlloc_debug(1, "fill", i));
    ASSERT_EQ(check.Live().size(), TQS_MEMCHECK_ENTRIES);
    testing::internal::CaptureStdout();
    tqcTraceFunction("f");
    tqcTraceString("%s", "s");
    tqcTraceExcption("m", "p", 1);
    const std::string taken = "[syncml] MEMCHECK Not Found Empty Index\n";
    const std::string freed = "[syncml] MEMCHECK Not Found Address \n";
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              taken + freed + taken + taken + freed + freed + taken + freed);
    for (void *block : fill) tqsMemFree_debug(block);
}

// A page that faults on any read: a formatter that looked at its format text
// or data would crash.
const char *Unreadable() {
    static void *page = mmap(nullptr, static_cast<size_t>(sysconf(_SC_PAGESIZE)), PROT_NONE,
                             MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return static_cast<const char *>(page);
}

// `bytes` must hold 64 bytes (or be unreadable).
void TraceEverything(const char *text, const unsigned char *bytes, int rounds) {
    for (int i = 0; i < rounds; ++i) {
        tqcTrace(text, 1);
        tqcTraceError(0x1005);
        tqcTraceFunction(text);
        tqcTraceString(text, text);
        tqcTraceExcption(text, text, 1);
        tqcTraceDump(text, bytes, 64);
        tqcTraceWrite(text);
    }
}

const unsigned char kData[64] = {1, 2, 3};

TEST(TqcTrace, WithoutSinkNothingIsFormattedOrAllocated) {
    ASSERT_NE(Unreadable(), MAP_FAILED);
    tqcTraceSetSink(nullptr);
    testing::internal::CaptureStderr();
    TraceEverything(Unreadable(), reinterpret_cast<const unsigned char *>(Unreadable()),
                    1000);  // reads nothing: no fault
    TraceEverything("abc", kData, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");  // the line is dropped, not printed

    // The hex dump is written for a host to read, sink or not.
    tqcTraceDump22(kData, 3);
    EXPECT_STREQ(_szBuffer, "01 02 03 ...");
    tqcTraceDump22(nullptr, 16);  // nothing to read: nothing dumped
    EXPECT_STREQ(_szBuffer, "");

    // tqcTrace is skipped at the call site while nobody listens.
    int evaluated = 0;
    auto argument = [&evaluated] { return ++evaluated; };
    tqcTrace("%d", argument());
    EXPECT_EQ(evaluated, 0);
    TraceCapture trace;
    tqcTrace("%d", argument());
    (tqcTrace)("direct %d", argument());
    EXPECT_EQ(evaluated, 2);
    EXPECT_EQ(trace.lines(), (Lines{"1\n", "direct 2\n"}));
}

}  // namespace
