// A plain loop of whole parses for profilers (callgrind counts instructions
// exactly; the benchmark framework would only add noise to its report).
//
// Usage: tqomacp_profile_loop [small|typical|large|typical-xN] [count]
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "fixtures.h"

#include "tqsClientProvCtx.h"
#include "tqsClientProvWbxmlDecoder.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"

int main(int argc, char **argv) {
    const std::string which = argc > 1 ? argv[1] : "typical";
    const long count = argc > 2 ? strtol(argv[2], nullptr, 10) : 1000;
    std::vector<bench::Sample> docs = bench::BenchDocuments();
    for (bench::Sample &s : bench::ScaledDocuments()) docs.push_back(std::move(s));
    for (const bench::Sample &s : docs) {
        if (s.name != which) continue;
        long parsed = 0;
        for (long i = 0; i < count; ++i) {
            SmlPushHeader *header = smlpushHdlrParsingWSPHeader(s.pdu.data(), s.pdu.size());
            if (!header) break;
            tqsClientProvCtx *ctx =
                tqsClinetProvWbxmlDecoderMain(header->pBody, static_cast<uint32_t>(header->nBodyLen));
            if (ctx) {
                ++parsed;
                tqsClientProvCtxDelectContext(ctx);
            }
            tqsMemFree_debug(header->pBody);
            tqsMemFree_debug(header);
        }
        printf("%s: %ld of %ld parses succeeded\n", s.name.c_str(), parsed, count);
        return parsed == count ? 0 : 1;
    }
    fprintf(stderr, "unknown document %s (small, typical, large, typical-x1/2/4/8/16)\n", which.c_str());
    return 2;
}
