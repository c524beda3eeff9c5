// Speed of one parse, side by side with a peer, in one binary and one run.
//
// For every document: our whole pipeline (PDU -> push header -> decoder ->
// document tree -> context -> release), libwbxml's tree decode of the same
// WBXML body, a memcpy of the body and a pass that counts bytes >= 0x80.
// For the three benchmark documents also each stage alone, the pipeline with a
// trace sink installed, and the Java-visible getters over a parsed context.
// Every benchmark reports bytes per second (of WBXML body) and heap blocks per
// operation; a summary with ratios follows the usual table.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "alloc_count.h"
#include "fixtures.h"
#include "getters.h"
#include "minimal_jni.h"
#include "peer.h"

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"
#include "tqomacp_jni.h"
#include "tqstrace.h"

namespace {

using bench::Sample;
using Clock = std::chrono::steady_clock;

// ---- The pipeline, in the pieces the stage benchmarks time alone ----------

// The session leaves the body copy to the application; a benchmark that runs
// millions of parses gives it back so that memory stays flat.
void ReleaseHeader(SmlPushHeader *header) {
    tqsMemFree_debug(header->pBody);
    tqsMemFree_debug(header);
}

bool ParseAndRelease(const Sample &s) {
    SmlPushHeader *header = smlpushHdlrParsingWSPHeader(s.pdu.data(), s.pdu.size());
    if (!header) return false;
    tqsClientProvCtx *ctx =
        tqsClinetProvWbxmlDecoderMain(header->pBody, static_cast<uint32_t>(header->nBodyLen));
    if (ctx) tqsClientProvCtxDelectContext(ctx);
    ReleaseHeader(header);
    return ctx != nullptr;
}

tqsWapDoc *DecodeTree(const Sample &s) {
    tqsWbxmlDecoder *decoder = nullptr;
    tqsWapDoc *doc = nullptr;
    if (tqsClientProvWbxmlInitDecoder(&decoder, s.body.data(), static_cast<uint32_t>(s.body.size())) != 0)
        return nullptr;
    if (tqsClientProvWbxmlDecoder(decoder, &doc) != 0) doc = nullptr;
    tqsClientProvWbxmlDeleteDecoder(decoder);
    return doc;
}

tqsClientProvCtx *BuildContext(const Sample &s) {
    tqsWapDoc *doc = DecodeTree(s);
    tqsClientProvCtx *ctx = doc ? tqsClientProvCtxMakeContext(doc) : nullptr;
    tqsClientProvWbxmlDeleteWapDoc(doc);
    return ctx;
}

// ---- Reporting -------------------------------------------------------------

void Report(benchmark::State &st, const Sample &s, const bench::AllocStats &allocs) {
    const double ops = static_cast<double>(st.iterations());
    st.SetBytesProcessed(static_cast<int64_t>(st.iterations()) * static_cast<int64_t>(s.body.size()));
    st.counters["allocs"] = static_cast<double>(allocs.nAllocs) / ops;
    // Blocks still allocated after the operation: what the data model keeps on purpose.
    st.counters["kept"] = (static_cast<double>(allocs.nAllocs) - static_cast<double>(allocs.nFrees)) / ops;
}

// Runs the loop body, counting the heap blocks it takes.
template <class Body>
void Loop(benchmark::State &st, const Sample &s, Body body) {
    const bench::AllocStats before = bench::AllocSnapshot();
    for (auto _ : st) body();
    Report(st, s, bench::AllocSnapshot() - before);
}

// A stage that needs an input made by the stages before it and leaves an
// output for the stages after it: only `op` is timed (manual time, one clock
// pair per operation; see ref_clock_pair for what the pair itself costs) and
// only its heap blocks are counted.
template <class Setup, class Op, class Cleanup>
void Stage(benchmark::State &st, const Sample &s, Setup setup, Op op, Cleanup cleanup) {
    bench::AllocStats allocs{0, 0, 0};
    for (auto _ : st) {
        auto in = setup();
        const bench::AllocStats a0 = bench::AllocSnapshot();
        const auto t0 = Clock::now();
        auto out = op(in);
        const auto t1 = Clock::now();
        const bench::AllocStats used = bench::AllocSnapshot() - a0;
        allocs = {allocs.nAllocs + used.nAllocs, allocs.nFrees + used.nFrees, allocs.nBytes + used.nBytes};
        cleanup(in, out);
        st.SetIterationTime(std::chrono::duration<double>(t1 - t0).count());
    }
    Report(st, s, allocs);
}

// ---- Benchmarks ------------------------------------------------------------

void BM_EndToEnd(benchmark::State &st, const Sample *s) {
    Loop(st, *s, [&] { benchmark::DoNotOptimize(ParseAndRelease(*s)); });
}

size_t gSinkLines;
size_t gSinkBytes;
void CountingSink(const char *line) {
    ++gSinkLines;
    gSinkBytes += strlen(line);
}

void BM_EndToEndTraced(benchmark::State &st, const Sample *s) {
    tqcTraceSetSink(CountingSink);
    gSinkLines = gSinkBytes = 0;
    Loop(st, *s, [&] { benchmark::DoNotOptimize(ParseAndRelease(*s)); });
    tqcTraceSetSink(nullptr);
    st.counters["trace_lines"] = static_cast<double>(gSinkLines) / static_cast<double>(st.iterations());
    st.counters["trace_bytes"] = static_cast<double>(gSinkBytes) / static_cast<double>(st.iterations());
}

void BM_Peer(benchmark::State &st, const Sample *s) {
    Loop(st, *s, [&] { benchmark::DoNotOptimize(bench::PeerTreeDecode(s->body.data(), s->body.size())); });
}

void BM_Memcpy(benchmark::State &st, const Sample *s) {
    std::vector<unsigned char> dest(s->body.size());
    Loop(st, *s, [&] {
        bench::RefMemcpy(dest.data(), s->body.data(), s->body.size());
        benchmark::ClobberMemory();
    });
}

void BM_Scan(benchmark::State &st, const Sample *s) {
    Loop(st, *s, [&] {
        const unsigned char *p = s->body.data();
        benchmark::DoNotOptimize(p);
        benchmark::DoNotOptimize(bench::RefScan(p, s->body.size()));
    });
}

void BM_ScanScalar(benchmark::State &st, const Sample *s) {
    Loop(st, *s, [&] {
        const unsigned char *p = s->body.data();
        benchmark::DoNotOptimize(p);
        benchmark::DoNotOptimize(bench::RefScanScalar(p, s->body.size()));
    });
}

void BM_ClockPair(benchmark::State &st, const Sample *s) {
    Stage(
        st, *s, [] { return 0; }, [](int) { return 0; }, [](int, int) {});
}

// Push header alone: the record and the body copy, then their release.
void BM_StageHeader(benchmark::State &st, const Sample *s) {
    Loop(st, *s, [&] {
        SmlPushHeader *header = smlpushHdlrParsingWSPHeader(s->pdu.data(), s->pdu.size());
        benchmark::DoNotOptimize(header);
        if (header) ReleaseHeader(header);
    });
}

// WBXML body to document tree: decoder creation (body copy), header, string
// table, characteristics, decoder deletion.
void BM_StageDecode(benchmark::State &st, const Sample *s) {
    Stage(
        st, *s, [] { return 0; }, [&](int) { return DecodeTree(*s); },
        [](int, tqsWapDoc *doc) { tqsClientProvWbxmlDeleteWapDoc(doc); });
}

void BM_StageContext(benchmark::State &st, const Sample *s) {
    Stage(
        st, *s, [&] { return DecodeTree(*s); },
        [](tqsWapDoc *doc) { return tqsClientProvCtxMakeContext(doc); },
        [](tqsWapDoc *doc, tqsClientProvCtx *ctx) {
            tqsClientProvCtxDelectContext(ctx);
            tqsClientProvWbxmlDeleteWapDoc(doc);
        });
}

void BM_StageReleaseTree(benchmark::State &st, const Sample *s) {
    Stage(
        st, *s, [&] { return DecodeTree(*s); },
        [](tqsWapDoc *doc) { return tqsClientProvWbxmlDeleteWapDoc(doc); }, [](tqsWapDoc *, uint32_t) {});
}

void BM_StageReleaseContext(benchmark::State &st, const Sample *s) {
    Stage(
        st, *s, [&] { return BuildContext(*s); },
        [](tqsClientProvCtx *ctx) {
            tqsClientProvCtxDelectContext(ctx);
            return 0;
        },
        [](tqsClientProvCtx *, int) {});
}

// Everything an application reads back after a parse, once.
void BM_Getters(benchmark::State &st, const Sample *s) {
    tqsClientProvCtx *ctx = BuildContext(*s);
    tqsClientProvCtx *saved = ptCtx;
    ptCtx = ctx;
    const size_t strings0 = bench::MinimalEnvStrings();
    Loop(st, *s, [&] { benchmark::DoNotOptimize(bench::ReadWholeContext()); });
    st.counters["strings"] =
        static_cast<double>(bench::MinimalEnvStrings() - strings0) / static_cast<double>(st.iterations());
    ptCtx = saved;
    tqsClientProvCtxDelectContext(ctx);
}

// ---- Summary ---------------------------------------------------------------

struct Result {
    double ns = 0;    // per operation: CPU time, or the hand-timed wall time of a stage
    double wall = 0;  // per operation, wall time
    std::map<std::string, double> counters;
    int64_t repetitions = 1;
    bool median = false;
};

// Forwards to the console and keeps, per benchmark, the median when there are
// repetitions (otherwise the one run) for the summary.
class Collector : public benchmark::ConsoleReporter {
   public:
    std::map<std::string, Result> results;

    void ReportRuns(const std::vector<Run> &runs) override {
        ConsoleReporter::ReportRuns(runs);
        for (const Run &run : runs) {
            if (run.error_occurred) continue;
            const bool isMedian = run.run_type == Run::RT_Aggregate && run.aggregate_name == "median";
            if (run.run_type == Run::RT_Aggregate && !isMedian) continue;
            Result &r = results[run.run_name.function_name];
            if (r.median && !isMedian) continue;
            // Stages are timed by hand (manual time is reported as real time);
            // everything else by the thread's CPU time, steadier on shared cores.
            const bool manual = run.run_name.time_type.find("manual") != std::string::npos;
            const double t = manual ? run.GetAdjustedRealTime() : run.GetAdjustedCPUTime();
            r.ns = t * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            r.wall = run.GetAdjustedRealTime() * 1e9 / benchmark::GetTimeUnitMultiplier(run.time_unit);
            r.repetitions = run.repetitions;
            r.median = isMedian;
            r.counters.clear();
            for (const auto &[name, counter] : run.counters) r.counters[name] = counter.value;
        }
    }
};

const Result *Find(const Collector &c, const std::string &name) {
    auto it = c.results.find(name);
    return it == c.results.end() ? nullptr : &it->second;
}

double Ns(const Result *r) {
    return r ? r->ns : 0;
}
double Allocs(const Result *r) {
    return r ? r->counters.at("allocs") : 0;
}

// One right-aligned number, or "-" when the benchmark did not run (filtered out, refused).
void Cell(bool present, double value, int width, int decimals = 0, const char *suffix = "") {
    if (present)
        printf(" %*.*f%s", width, decimals, value, suffix);
    else
        printf(" %*s%s", width, "-", *suffix ? " " : "");
}

// Time per byte of the same content repeated 1 to 29 times: flat when no step
// of the parse grows faster than the document.
void PrintScaling(const Collector &c, const std::vector<const Sample *> &scaled) {
    const Result *base = Find(c, "e2e/" + scaled.front()->name);
    printf("\nScaling: typical's content repeated n times, same encoding (large = x29); CPU time\n");
    printf("%-14s %6s %9s %8s %8s | %9s %8s\n", "document", "bytes", "ours ns", "ns/B", "vs x1", "wbxml ns",
           "ns/B");
    for (const Sample *s : scaled) {
        const Result *ours = Find(c, "e2e/" + s->name);
        const Result *peer = Find(c, "peer_libwbxml/" + s->name);
        if (!ours && !peer) continue;
        const double bytes = static_cast<double>(s->body.size());
        printf("%-14s %6zu", s->name.c_str(), s->body.size());
        Cell(ours, Ns(ours), 9);
        Cell(ours, Ns(ours) / bytes, 8, 2);
        Cell(ours && base, Ns(ours) / bytes / (Ns(base) / static_cast<double>(scaled.front()->body.size())),
             8, 2);
        printf(" |");
        Cell(peer, Ns(peer), 9);
        Cell(peer, Ns(peer) / bytes, 8, 2);
        printf("\n");
    }
}

void PrintSummary(const Collector &c, const std::vector<const Sample *> &samples) {
    int64_t reps = 1;
    for (const auto &[name, r] : c.results) reps = std::max(reps, r.repetitions);
    printf("\nSummary: %s; CPU time per parse in ns; speedup = libwbxml / ours; x scan = ours / scan\n",
           reps > 1 ? ("median of " + std::to_string(reps) + " repetitions").c_str() : "single run");
    printf("allocator: %s\n", bench::AllocatorName().c_str());
    printf("%-38s %6s %9s %9s %8s %8s %7s %8s %7s %7s %7s %8s\n", "document", "bytes", "ours ns", "wbxml ns",
           "speedup", "scan ns", "x scan", "scan1 ns", "x scan1", "cpy ns", "allocs", "w.allocs");
    for (const Sample *s : samples) {
        const Result *ours = Find(c, "e2e/" + s->name);
        const Result *peer = Find(c, "peer_libwbxml/" + s->name);
        const Result *scan = Find(c, "ref_scan/" + s->name);
        const Result *scan1 = Find(c, "ref_scan_scalar/" + s->name);
        const Result *copy = Find(c, "ref_memcpy/" + s->name);
        if (!ours && !peer) continue;
        printf("%-38s %6zu", s->name.c_str(), s->body.size());
        Cell(ours, Ns(ours), 9);
        Cell(peer, Ns(peer), 9);
        Cell(ours && peer, Ns(peer) / Ns(ours), 7, 1, "x");
        Cell(scan, Ns(scan), 8);
        Cell(ours && scan, Ns(ours) / Ns(scan), 7);
        Cell(scan1, Ns(scan1), 8);
        Cell(ours && scan1, Ns(ours) / Ns(scan1), 7, 1);
        Cell(copy, Ns(copy), 7);
        Cell(ours, Allocs(ours), 7);
        Cell(peer, Allocs(peer), 8);
        if (!ours) printf("   (refused by ours)");
        printf("\n");
    }

    printf(
        "\nStages, wall time per operation (reading the thread's CPU clock costs a system call here, too "
        "much\n"
        "for hand timing), beside the whole parse in wall and CPU time; then, CPU time, the parse with a\n"
        "trace sink installed and one read-back of the whole context through the getters\n");
    printf("%-10s %8s %8s %8s %8s %8s %8s | %8s %8s | %8s %8s\n", "document", "header", "decode", "context",
           "rel.tree", "rel.ctx", "sum", "e2e wall", "e2e cpu", "traced", "getters");
    for (const char *doc : {"small", "typical", "large"}) {
        const char *stages[] = {"stage_header/", "stage_decode/", "stage_context/", "stage_release_tree/",
                                "stage_release_context/"};
        const Result *e2e = Find(c, "e2e/" + std::string(doc));
        if (!e2e && !Find(c, "stage_decode/" + std::string(doc))) continue;  // filtered out
        printf("%-10s", doc);
        double sum = 0;
        bool all = true;
        for (const char *stage : stages) {
            const Result *r = Find(c, stage + std::string(doc));
            Cell(r, r ? r->wall : 0, 8);
            if (r)
                sum += r->wall;
            else
                all = false;
        }
        Cell(all, sum, 8);
        const Result *traced = Find(c, "e2e_traced/" + std::string(doc));
        const Result *getters = Find(c, "getters/" + std::string(doc));
        printf(" |");
        Cell(e2e, e2e ? e2e->wall : 0, 8);
        Cell(e2e, Ns(e2e), 8);
        printf(" |");
        Cell(traced, Ns(traced), 8);
        Cell(getters, Ns(getters), 8);
        printf("\n%-10s", "  allocs");
        for (const char *stage : stages) {
            const Result *r = Find(c, stage + std::string(doc));
            Cell(r, Allocs(r), 8);
        }
        printf(" %8s |", "");
        Cell(e2e, Allocs(e2e), 8);
        Cell(e2e, Allocs(e2e), 8);
        printf(" |");
        Cell(traced, Allocs(traced), 8);
        Cell(getters, Allocs(getters), 8);
        printf("\n");
    }
    if (const Result *clock = Find(c, "ref_clock_pair/typical"))
        printf("(one hand-timed clock pair costs %.0f ns; it is inside every hand-timed stage)\n", clock->ns);

    printf("\nTargets\n");
    const Result *ours = Find(c, "e2e/typical");
    const Result *peer = Find(c, "peer_libwbxml/typical");
    const Result *scan = Find(c, "ref_scan/typical");
    const Result *scan1 = Find(c, "ref_scan_scalar/typical");
    const Result *large = Find(c, "e2e/large");
    auto verdict = [](bool met) { return met ? "met" : "MISSED"; };
    if (ours && peer)
        printf("  typical, end to end vs libwbxml tree decode: %.1fx faster (target >= 8x): %s\n",
               peer->ns / ours->ns, verdict(peer->ns / ours->ns >= 8));
    if (ours && scan)
        printf("  typical, end to end vs byte scan: %.1fx the scan's time (target <= 20x): %s\n",
               ours->ns / scan->ns, verdict(ours->ns / scan->ns <= 20));
    if (ours && scan1)
        printf("  typical, end to end vs byte-at-a-time scan: %.1fx (target <= 20x): %s\n",
               ours->ns / scan1->ns, verdict(ours->ns / scan1->ns <= 20));
    if (ours && large) {
        const std::vector<Sample> docs = bench::BenchDocuments();
        const double perByteTypical = ours->ns / static_cast<double>(docs[1].body.size());
        const double perByteLarge = large->ns / static_cast<double>(docs[2].body.size());
        const double ratio = perByteLarge / perByteTypical;
        printf("  large vs typical, time per byte: %.2f vs %.2f ns/B, ratio %.2f (target <= 1): %s\n",
               perByteLarge, perByteTypical, ratio,
               ratio <= 1.0 ? "met" : (ratio <= 1.05 ? "met within 5% noise" : "MISSED"));
    }
    // The quadratic-step check on its own: the same encoding from 2 copies up, past the
    // allocator's 1 KiB threshold that both of them cross.
    const Result *twice = Find(c, "e2e/typical-x2");
    if (twice && large) {
        const std::vector<Sample> scaledDocs = bench::ScaledDocuments();
        const double perByteTwice = twice->ns / static_cast<double>(scaledDocs[1].body.size());
        const double perByteLarge = large->ns / static_cast<double>(bench::BenchDocuments()[2].body.size());
        printf("  large (x29) vs typical-x2, time per byte: %.2f vs %.2f ns/B, ratio %.2f (growth with size): %s\n",
               perByteLarge, perByteTwice, perByteLarge / perByteTwice,
               perByteLarge / perByteTwice <= 1.05 ? "none" : "GROWS");
    }
}

std::string CorpusDir() {
    const char *env = getenv("TQOMACP_CORPUS_DIR");
    return env && *env ? env : TQOMACP_BENCH_CORPUS_DIR;
}

template <class Fn>
void Register(const std::string &name, Fn fn, const Sample *s) {
    benchmark::RegisterBenchmark(name.c_str(), fn, s);
}

}  // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    // Blocks come from whichever allocator is first in lookup order (run-allocators.sh
    // runs glibc's and scudo's); the context header and the summary name it.
    benchmark::AddCustomContext("allocator", bench::AllocatorName());

    static const std::vector<Sample> documents = bench::BenchDocuments();
    static const std::vector<Sample> corpus = bench::CorpusSamples(CorpusDir());
    static const std::vector<Sample> scaledDocs = bench::ScaledDocuments();
    std::vector<const Sample *> scaled;
    for (const Sample &s : scaledDocs) scaled.push_back(&s);
    scaled.push_back(&documents[2]);  // large: x29
    std::vector<const Sample *> all;
    for (const Sample &s : documents) all.push_back(&s);
    for (const Sample &s : corpus) all.push_back(&s);

    for (const Sample *s : all) {
        // A sample refused by either side is measured only where it decodes.
        if (ParseAndRelease(*s)) Register("e2e/" + s->name, BM_EndToEnd, s);
        if (bench::PeerTreeDecode(s->body.data(), s->body.size()))
            Register("peer_libwbxml/" + s->name, BM_Peer, s);
        Register("ref_memcpy/" + s->name, BM_Memcpy, s);
        Register("ref_scan/" + s->name, BM_Scan, s);
        Register("ref_scan_scalar/" + s->name, BM_ScanScalar, s);
    }
    for (const Sample &s : scaledDocs) {
        Register("e2e/" + s.name, BM_EndToEnd, &s);
        Register("peer_libwbxml/" + s.name, BM_Peer, &s);
    }
    for (const Sample &s : documents) {
        Register("e2e_traced/" + s.name, BM_EndToEndTraced, &s);
        Register("stage_header/" + s.name, BM_StageHeader, &s);
        benchmark::RegisterBenchmark(("stage_decode/" + s.name).c_str(), BM_StageDecode, &s)->UseManualTime();
        benchmark::RegisterBenchmark(("stage_context/" + s.name).c_str(), BM_StageContext, &s)
            ->UseManualTime();
        benchmark::RegisterBenchmark(("stage_release_tree/" + s.name).c_str(), BM_StageReleaseTree, &s)
            ->UseManualTime();
        benchmark::RegisterBenchmark(("stage_release_context/" + s.name).c_str(), BM_StageReleaseContext, &s)
            ->UseManualTime();
        Register("getters/" + s.name, BM_Getters, &s);
    }
    benchmark::RegisterBenchmark("ref_clock_pair/typical", BM_ClockPair, &documents[1])->UseManualTime();

    Collector collector;
    benchmark::RunSpecifiedBenchmarks(&collector);
    PrintSummary(collector, all);
    PrintScaling(collector, scaled);
    benchmark::Shutdown();
    return 0;
}
