// One application's worth of reading back a parsed context through the Java
// natives (the minimal JNIEnv of minimal_jni.h stands in for the VM).
#ifndef TQOMACP_BENCH_GETTERS_H
#define TQOMACP_BENCH_GETTERS_H

#include <cstddef>

namespace bench {

// Walks every count of the context published in ptCtx and reads every record
// and value it announces, as the Java side does after a parse. Returns the
// number of natives called.
size_t ReadWholeContext();

}  // namespace bench

#endif
