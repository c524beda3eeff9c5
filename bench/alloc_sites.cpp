// Where one parse takes its heap blocks. The allocation routines of the
// tracking allocator are wrapped at link time (-Wl,--wrap, see CMakeLists.txt),
// so every block the library asks for is counted by pipeline stage and call
// site (unit path and line, as the library passes them), and every block still
// alive after the release is listed. Not a benchmark: one parse per document.
//
// Usage: tqomacp_alloc_sites [corpus-sample-name ...]   (default: the three documents)
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "fixtures.h"

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"

namespace {

struct Site {
    std::string stage;
    std::string file;
    uint32_t line;
    bool operator<(const Site &o) const {
        return std::tie(stage, file, line) < std::tie(o.stage, o.file, o.line);
    }
};

struct Tally {
    size_t blocks = 0;
    size_t bytes = 0;
};

const char *gStage = "none";
std::map<Site, Tally> gSites;
std::map<void *, Site> gLive;

void Note(void *block, uint32_t size, const char *file, uint32_t line) {
    if (!block) return;
    Site site{gStage, file ? file : "?", line};
    Tally &t = gSites[site];
    ++t.blocks;
    t.bytes += size;
    gLive[block] = site;
}

void Forget(void *block) {
    if (block) gLive.erase(block);
}

}  // namespace

extern "C" {
void *__real_tqsMemAlloc_debug(uint32_t, const char *, uint32_t);
void *__real_tqsMemAllocSetZero_debug(uint32_t, const char *, uint32_t);
TqsWChar *__real_tqsMemAllocW_debug(uint32_t, const char *, uint32_t);
void *__real_tqsMemDup_debug(const void *, uint32_t, const char *, uint32_t);
char *__real_tqsStrdup_debug(const char *, const char *, uint32_t);
void *__real_tqsMemReAlloc_debug(void *, uint32_t, const char *, uint32_t);
void __real_tqsMemFree_debug(void *);

void *__wrap_tqsMemAlloc_debug(uint32_t size, const char *file, uint32_t line) {
    void *p = __real_tqsMemAlloc_debug(size, file, line);
    Note(p, size, file, line);
    return p;
}
void *__wrap_tqsMemAllocSetZero_debug(uint32_t size, const char *file, uint32_t line) {
    void *p = __real_tqsMemAllocSetZero_debug(size, file, line);
    Note(p, size, file, line);
    return p;
}
TqsWChar *__wrap_tqsMemAllocW_debug(uint32_t count, const char *file, uint32_t line) {
    TqsWChar *p = __real_tqsMemAllocW_debug(count, file, line);
    Note(p, count * 2, file, line);
    return p;
}
void *__wrap_tqsMemDup_debug(const void *src, uint32_t size, const char *file, uint32_t line) {
    void *p = __real_tqsMemDup_debug(src, size, file, line);
    Note(p, size, file, line);
    return p;
}
char *__wrap_tqsStrdup_debug(const char *text, const char *file, uint32_t line) {
    char *p = __real_tqsStrdup_debug(text, file, line);
    Note(p, p ? static_cast<uint32_t>(std::char_traits<char>::length(p)) + 1 : 0, file, line);
    return p;
}
void *__wrap_tqsMemReAlloc_debug(void *old, uint32_t size, const char *file, uint32_t line) {
    // The routine frees `old` itself (from inside its own unit, out of the wrapper's reach).
    if (size != 0 && old) Forget(old);
    void *p = __real_tqsMemReAlloc_debug(old, size, file, line);
    Note(p, size, file, line);
    return p;
}
void __wrap_tqsMemFree_debug(void *block) {
    Forget(block);
    __real_tqsMemFree_debug(block);
}
}  // extern "C"

namespace {

void Parse(const bench::Sample &s) {
    gStage = "header";
    SmlPushHeader *header = smlpushHdlrParsingWSPHeader(s.pdu.data(), s.pdu.size());
    if (!header) {
        printf("%s: push header refused\n", s.name.c_str());
        return;
    }
    // The stages of tqsClinetProvWbxmlDecoderMain, called one by one to label them.
    gStage = "decode";
    tqsWbxmlDecoder *decoder = nullptr;
    tqsWapDoc *doc = nullptr;
    tqsClientProvWbxmlInitDecoder(&decoder, header->pBody, static_cast<uint32_t>(header->nBodyLen));
    const TqsResult status = tqsClientProvWbxmlDecoder(decoder, &doc);
    tqsClientProvWbxmlDeleteDecoder(decoder);
    gStage = "context";
    tqsClientProvCtx *ctx = status == 0 && doc ? tqsClientProvCtxMakeContext(doc) : nullptr;
    gStage = "release";
    tqsClientProvWbxmlDeleteWapDoc(doc);
    if (ctx) tqsClientProvCtxDelectContext(ctx);
    tqsMemFree_debug(header->pBody);
    tqsMemFree_debug(header);
    gStage = "none";
    if (status != 0) printf("%s: decoder status 0x%x\n", s.name.c_str(), status);
}

void PrintReport(const bench::Sample &s) {
    std::map<std::string, Tally> byStage;
    Tally total;
    for (const auto &[site, t] : gSites) {
        byStage[site.stage].blocks += t.blocks;
        byStage[site.stage].bytes += t.bytes;
        total.blocks += t.blocks;
        total.bytes += t.bytes;
    }
    printf("\n%s (%zu-byte body): %zu blocks, %zu bytes asked for;", s.name.c_str(), s.body.size(),
           total.blocks, total.bytes);
    for (const char *stage : {"header", "decode", "context", "release"})
        if (byStage.count(stage)) printf(" %s %zu", stage, byStage[stage].blocks);
    printf("; kept after release %zu\n", gLive.size());
    printf("  %-8s %-40s %6s %7s\n", "stage", "site", "blocks", "bytes");
    for (const auto &[site, t] : gSites)
        printf("  %-8s %-40s %6zu %7zu\n", site.stage.c_str(),
               (site.file + ":" + std::to_string(site.line)).c_str(), t.blocks, t.bytes);
    std::map<std::string, size_t> kept;
    for (const auto &[block, site] : gLive) ++kept[site.file + ":" + std::to_string(site.line)];
    for (const auto &[where, n] : kept) printf("  kept: %zu block(s) from %s\n", n, where.c_str());
}

}  // namespace

int main(int argc, char **argv) {
    std::vector<bench::Sample> samples = bench::BenchDocuments();
    if (argc > 1) {
        const char *env = getenv("TQOMACP_CORPUS_DIR");
        std::vector<bench::Sample> corpus =
            bench::CorpusSamples(env && *env ? env : TQOMACP_BENCH_CORPUS_DIR);
        samples.clear();
        for (int i = 1; i < argc; ++i)
            for (const bench::Sample &s : corpus)
                if (s.name == argv[i] || s.name == std::string("corpus/") + argv[i]) samples.push_back(s);
    }
    for (const bench::Sample &s : samples) {
        gSites.clear();
        gLive.clear();
        Parse(s);
        PrintReport(s);
    }
    return 0;
}
