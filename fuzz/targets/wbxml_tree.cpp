// Fuzz target (b): the WBXML body decoder into a document tree, and the
// tree's release.
//
// Input: a WBXML body (version byte first). The walker reads every string of
// the tree (the sanitizers check each is a live, terminated block) and notes
// the blocks the release keeps; leak accounting then proves nothing else stays
// allocated.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "kept_blocks.h"
#include "leak_accounting.h"
#include "small_stack.h"
#include "tqsClientProvWbxml.h"
#include "tqsClientProvWbxmlDecoder.h"

namespace {

// The tree's kept fields are noted by address. Beyond them the decoder leaves
// behind, by design, what a failing characteristic had built and values that
// a repeated parm overwrote: any block of the decoder and list units.
const fuzz::Site kKeptSites[] = {{"jni/src/ClientProv/tqsClientProvWbxmlDecoder", 0},
                                 {"jni/src/ClientProv/tqslist", 0}};

[[noreturn]] void Fail(const char *what, unsigned status) {
    std::fprintf(stderr, "wbxml_tree: %s (status 0x%x)\n", what, status);
    std::fflush(stderr);
    std::abort();
}

void Run(const fuzz::Input &in) {
    tqsWbxmlDecoder *decoder = nullptr;
    if (tqsClientProvWbxmlInitDecoder(&decoder, in.data, static_cast<uint32_t>(in.size)) != 0 ||
        decoder == nullptr) {
        Fail("no decoder for a non-null body", 0);
    }
    tqsWapDoc *doc = nullptr;
    const TqsResult status = tqsClientProvWbxmlDecoder(decoder, &doc);
    // (Success without a tree is fine: a body that is just END has none.)
    if (status != 0 && doc != nullptr) Fail("a tree handed out on failure", status);
    if (tqsClientProvWbxmlDeleteDecoder(decoder) != 0) Fail("decoder delete failed", 0);
    // Wrapped: walks the tree (reads every string, notes the kept blocks) first.
    tqsClientProvWbxmlDeleteWapDoc(doc);
    fuzz::CheckAndReleaseKept(kKeptSites);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    fuzz::StartLeakAccounting();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::RunInput(Run, data, size);
    return 0;
}
