// Fuzz target (c): the whole pipeline as the Java entry runs it.
//
// Input: a whole push PDU. Through the fake JNI environment it runs
// tqomacp_parser in header-only mode and in full mode, the header queries,
// then every context getter with record numbers around the real counts
// (-1, 0, 1, count, count + 1 at each level, plus the int extremes at the
// innermost one), tqomacp_SetPxNapDefIndex and the NAPDEF getters again, and
// tqomacp_parser_del. The first byte (the transaction id, which the parser
// never reads) picks the NAPDEF index and the len argument (the array's
// length, one less, one more, half of it, or -1: Java passes len apart from
// the array). Results are checked against what the getters promise (see
// harness/session.h), and leak accounting runs after each input.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "session.h"
#include "small_stack.h"
#include "tqomacp_jni.h"

using fuzz::CheckHeaderQueries;
using fuzz::Fail;

namespace {

fakejni::FakeJvm *g_jvm = nullptr;

// The len argument the Java side passes beside the array, picked by bits 4
// to 6 of the transaction id; real pushes (id 0x01 and the like) pass the
// array's length.
jlong PickLen(const fuzz::Input &in) {
    const jlong size = static_cast<jlong>(in.size);
    switch ((in.data[0] >> 4) & 7) {
        case 1:
            return size > 0 ? size - 1 : 0;
        case 2:
            return size + 1;
        case 3:
            return size / 2;
        case 5:
            return -1;
        default:
            return size;
    }
}

void Run(const fuzz::Input &in) {
    JNIEnv *env = g_jvm->env();
    jbyteArray pdu = g_jvm->newByteArray(in.data, in.size);
    const jlong len = PickLen(in);

    // Header only.
    const bool headerOk = jni_tqomacp_parser(env, nullptr, pdu, len, 1) == JNI_TRUE;
    CheckHeaderQueries(headerOk);
    jni_tqomacp_parser_del(env, nullptr);
    CheckHeaderQueries(false);

    // Everything.
    const bool ok = jni_tqomacp_parser(env, nullptr, pdu, len, 0) == JNI_TRUE;
    if (ok && !headerOk) Fail("parser", "full parse accepted a refused header", nullptr, 0);
    CheckHeaderQueries(ok);
    if (ok) {
        const jint macLen = jni_tqomacp_GetParserMACLen(env, nullptr);
        const jint bodyLen = jni_tqomacp_GetParserBodyLen(env, nullptr);
        const jint headerLen = jni_tqomacp_GetParserHeaderLen(env, nullptr);
        const auto mac = g_jvm->bytes(jni_tqomacp_GetParserMAC(env, nullptr));
        const auto body = g_jvm->bytes(jni_tqomacp_GetParserBody(env, nullptr));
        if (static_cast<jint>(mac.size()) != macLen) Fail("GetParserMAC", "wrong length", nullptr, 0);
        if (static_cast<jint>(body.size()) != bodyLen ||
            (bodyLen > 0 && std::memcmp(body.data(), in.data + headerLen + 3, body.size()) != 0)) {
            Fail("GetParserBody", "not the PDU's body", nullptr, 0);
        }
        if (ptCtx == nullptr) Fail("parser", "true without a context", nullptr, 0);
        fuzz::SweepGetters();
        fuzz::MoveNapDefCursor(in.size > 0 ? in.data[0] : 0);
        fuzz::SweepGetters(true);
    }
    jni_tqomacp_parser_del(env, nullptr);
    CheckHeaderQueries(false);
    if (ptCtx != nullptr) Fail("parser_del", "context still published", nullptr, 0);

    g_jvm->reset();
    fuzz::CheckAndReleaseKept(fuzz::kSessionKeptSites);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    g_jvm = new fakejni::FakeJvm();
    // Android's checked JNI refuses texts that are not modified UTF-8.
    g_jvm->setStrictUtf8(true);
    fuzz::StartSession(g_jvm);
    fuzz::StartLeakAccounting();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::RunInput(Run, data, size);
    return 0;
}
