// Allocation failures through a whole parse session. For each push of the
// sample corpus one clean run (parse, every getter, release) is counted; then
// each allocation i of the run fails in turn (about 4,600 runs, seconds under
// ASan). Each run must end the way the library promises for the site of
// allocation i (kRules below), with no crash and no sanitizer report: the
// clean run's result (a dropped trace line), a refusal (false, no header), or
// a partial context whose strings are the clean run's or, after a failed
// join, the start of one. Afterwards only the kept blocks and the failing
// decode's leftovers may stay allocated (fuzz::kSessionKeptSites).
//
//   fuzz_alloc_failure_test CORPUS_DIR
#include <jni.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "fake_jni.h"
#include "kept_blocks.h"
#include "leak_accounting.h"
#include "session.h"
#include "tqomacp_jni.h"

extern "C" void __sanitizer_set_death_callback(void (*)(void)) __attribute__((weak));

namespace {

const char kCtxUnit[] = "jni/src/ClientProv/tqsClientProvCtx";

// What failing an allocation of the parse does: the first rule that matches
// its site.
enum class Outcome { kUnchanged, kRefused, kPartial, kEither };
struct Rule {
    const char *unit;  // empty: any unit
    uint32_t line;     // 0: any line
    Outcome outcome;
};
const Rule kRules[] = {
    // While tracking is on the trace formats its lines; one that cannot be
    // allocated is dropped.
    {"jni/src/ClientProv/tqstrace", 0, Outcome::kUnchanged},
    // The append's result is not looked at: the value or characteristic is dropped.
    {"jni/src/ClientProv/tqslist", 78, Outcome::kPartial},
    // A list that cannot be created fails its parm, except PXPHYSICAL DOMAIN.
    {"jni/src/ClientProv/tqslist", 0, Outcome::kEither},
    // The string readers fail the parm; a token value or raw byte that cannot
    // be stored leaves the value as it was.
    {"jni/src/ClientProv/tqsClientProvWbxmlDecoder", 0, Outcome::kEither},
    // Every record and string but the root: missing from the context.
    {kCtxUnit, 0, Outcome::kPartial},
    // The header record, the body copy, the decoder and its buffer.
    {"", 0, Outcome::kRefused},
};
// Runs per rule: none may stay at 0.
std::size_t g_ruleRuns[std::size(kRules)];

Outcome Expected(const fuzz::Site &site) {
    for (std::size_t i = 0;; ++i) {
        const Rule &r = kRules[i];
        if ((r.unit[0] == '\0' || std::strcmp(site.file, r.unit) == 0) &&
            (r.line == 0 || r.line == site.line)) {
            ++g_ruleRuns[i];
            return r.outcome;
        }
    }
}

fakejni::FakeJvm *g_jvm = nullptr;
char g_running[512] = "setup";

void SayWhatRan() {
    std::fprintf(stderr, "alloc_failure: failed while running %s\n", g_running);
}

struct Run {
    bool ok;
    std::size_t parseAllocations;
    std::vector<std::string> strings;  // of the context, sorted
};

// keepsHeader: the header parser keeps its record when it refuses the content
// type (kSessionKeptSites[0]); after an accepted one a record left is a leak.
Run RunSession(const std::vector<uint8_t> &pdu, long failAt, bool keepsHeader) {
    fuzz::InjectFailure(failAt);
    JNIEnv *env = g_jvm->env();
    Run run{};
    run.ok = jni_tqomacp_parser(env, nullptr, g_jvm->newByteArray(pdu), static_cast<jlong>(pdu.size()), 0);
    run.parseAllocations = fuzz::AllocationLog().size();
    fuzz::CheckHeaderQueries(run.ok);
    if (run.ok != (ptCtx != nullptr)) fuzz::Fail("parser", "result and context disagree", nullptr, 0);
    if (run.ok) {
        fuzz::ContextStrings(ptCtx, &run.strings);
        std::sort(run.strings.begin(), run.strings.end());
        fuzz::SweepGetters();
    }
    jni_tqomacp_parser_del(env, nullptr);
    g_jvm->reset();
    fuzz::CheckAndReleaseKept(fuzz::kSessionKeptSites + !keepsHeader,
                              std::size(fuzz::kSessionKeptSites) - !keepsHeader);
    return run;
}

// Whether the strings of a partial context are the clean run's, or with
// `prefixes` the start of one of them (a failed join leaves the text before it).
bool Within(const std::vector<std::string> &clean, const std::vector<std::string> &run, bool prefixes) {
    if (!prefixes) return std::includes(clean.begin(), clean.end(), run.begin(), run.end());
    return std::all_of(run.begin(), run.end(), [&](const std::string &s) {
        const auto it = std::lower_bound(clean.begin(), clean.end(), s);
        return it != clean.end() && it->compare(0, s.size(), s) == 0;
    });
}

// Fails each allocation of one sample's session in turn; returns the count.
std::size_t Sweep(const std::string &path, const std::vector<uint8_t> &pdu) {
    std::snprintf(g_running, sizeof g_running, "%s without failures", path.c_str());
    const Run clean = RunSession(pdu, -1, true);
    const std::vector<fuzz::Site> sites = fuzz::AllocationLog();
    // The body copy (kSessionKeptSites[1]) follows an accepted content type.
    const fuzz::Site &body = fuzz::kSessionKeptSites[1];
    const bool keepsHeader = std::none_of(sites.begin(), sites.end(), [&](const fuzz::Site &s) {
        return s.line == body.line && std::strcmp(s.file, body.file) == 0;
    });
    const auto isCtx = [](const fuzz::Site &s) { return std::strcmp(s.file, kCtxUnit) == 0; };
    const auto root = std::find_if(sites.begin(), sites.end(), isCtx) - sites.begin();

    for (std::size_t i = 0; i < sites.size(); ++i) {
        const fuzz::Site &site = sites[i];
        std::snprintf(g_running, sizeof g_running, "%s failing allocation %zu of %zu (%s:%u)", path.c_str(),
                      i, sites.size(), site.file, site.line);
        const Run run = RunSession(pdu, static_cast<long>(i), keepsHeader);
        const auto &log = fuzz::AllocationLog();
        if (!fuzz::FailureInjected() || log[i].file != site.file || log[i].line != site.line) {
            fuzz::Fail("session", "allocations differ from the clean run's", nullptr, 0);
        }
        Outcome expect = Expected(site);
        // Past the parse only the trace allocates: the getters take no tracked block.
        if (i >= clean.parseAllocations && expect != Outcome::kUnchanged) {
            fuzz::Fail("getter", "took a tracked block", nullptr, 0);
        }
        if (expect == Outcome::kUnchanged) {
            if (run.ok != clean.ok || run.strings != clean.strings)
                fuzz::Fail("trace", "changed the result", nullptr, 0);
            continue;
        }
        if (!clean.ok || static_cast<long>(i) == root) expect = Outcome::kRefused;
        if (expect != Outcome::kEither && run.ok != (expect == Outcome::kPartial)) {
            fuzz::Fail("parser", run.ok ? "accepted" : "refused", nullptr, 0);
        }
        if (!Within(clean.strings, run.strings, expect == Outcome::kEither)) {
            fuzz::Fail("context", "a string the clean run does not have", nullptr, 0);
        }
    }
    return sites.size();
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s CORPUS_DIR\n", argv[0]);
        return 2;
    }
    for (int sig : {SIGABRT, SIGSEGV, SIGBUS}) {
        std::signal(sig, [](int raised) {
            SayWhatRan();
            std::signal(raised, SIG_DFL);
            std::raise(raised);
        });
    }
    if (__sanitizer_set_death_callback != nullptr) __sanitizer_set_death_callback(SayWhatRan);

    std::vector<std::string> samples;
    for (const auto &e : std::filesystem::recursive_directory_iterator(argv[1])) {
        const std::string p = e.path().string();
        if (e.path().extension() == ".pdu" && p.find(".mac.") == std::string::npos) samples.push_back(p);
    }
    std::sort(samples.begin(), samples.end());
    g_jvm = new fakejni::FakeJvm();
    g_jvm->setStrictUtf8(true);
    fuzz::StartSession(g_jvm);
    fuzz::StartLeakAccounting();

    std::size_t runs = 0;
    for (const std::string &path : samples) {
        std::ifstream in(path, std::ios::binary);
        runs += Sweep(path, {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()});
    }
    // A lost corpus folder or an outcome no run reaches any more would pass unseen.
    const bool unmet = std::count(std::begin(g_ruleRuns), std::end(g_ruleRuns), 0) != 0;
    if (samples.size() < 40 || unmet) {
        std::fprintf(stderr, "alloc_failure: %zu samples; runs per rule:", samples.size());
        for (std::size_t n : g_ruleRuns) std::fprintf(stderr, " %zu", n);
        std::fprintf(stderr, "\n");
        return 1;
    }
    std::printf("%zu samples, %zu runs with a failed allocation\n", samples.size(), runs);
    return 0;
}
