// Fuzz target (a): the WSP push header parser alone.
//
// Input: a whole push PDU (transaction id first). Besides the sanitizers, it
// checks what the parser promises about the record it returns, and that
// nothing but the deliberately kept record of a refused content type stays
// allocated.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "leak_accounting.h"
#include "small_stack.h"
#include "tqsmemory.h"
#include "tqspushhandler.h"

namespace {

const char kPushHandler[] = "jni/src/ClientProv/tqspushhandler";
// The record is left allocated when the content type is refused.
const fuzz::Site kKeptSites[] = {{kPushHandler, 51}};

[[noreturn]] void Fail(const char *what) {
    std::fprintf(stderr, "push_header: %s\n", what);
    std::fflush(stderr);
    std::abort();
}

bool KnownContentType(uint64_t code) {
    switch (code) {
        case SML_PUSH_CT_CONNECTIVITY_WBXML:
        case SML_PUSH_CT_CONNECTIVITY_XML:
        case SML_PUSH_CT_SYNCML_NOTIFICATION:
        case SML_PUSH_CT_SYNCML_DS_NOTIFICATION:
        case SML_PUSH_CT_SYNCML_DM_WBXML:
            return true;
        default:
            return false;
    }
}

void Run(const fuzz::Input &in) {
    const uint8_t *pdu = in.data;
    SmlPushHeader *header = smlpushHdlrParsingWSPHeader(pdu, in.size);
    if (header != nullptr) {
        if (in.size < 3 || pdu[1] != 0x06) Fail("accepted a PDU that is not a push");
        if (!KnownContentType(header->nContentType)) Fail("unknown content type accepted");
        if (header->nHeaderLen != pdu[2]) Fail("nHeaderLen is not the header length byte");
        if (header->nBodyLen != in.size - 3 - pdu[2]) Fail("nBodyLen is not total - 3 - headerLen");
        if (header->nMACLen >= SML_PUSH_MAC_SIZE) Fail("MAC longer than its field");
        if (header->szMAC[header->nMACLen] != '\0' || std::strlen(header->szMAC) != header->nMACLen) {
            Fail("szMAC does not hold nMACLen characters");
        }
        if (header->pBody == nullptr) Fail("no body copy");
        if (std::memcmp(header->pBody, pdu + 3 + pdu[2], header->nBodyLen) != 0 ||
            header->pBody[header->nBodyLen] != 0) {
            Fail("body copy differs from the PDU's body");
        }
        tqsMemFree_debug(header->pBody);
        tqsMemFree_debug(header);
    }
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
