// The smallest JNIEnv the getters need, for measuring them: NewStringUTF reads
// the text once (a VM copies it) and hands back a dummy reference; arrays are
// dummies too. Nothing is allocated, so the getters' own cost is what shows.
#ifndef TQOMACP_BENCH_MINIMAL_JNI_H
#define TQOMACP_BENCH_MINIMAL_JNI_H

#include <jni.h>

#include <cstddef>

namespace bench {

JNIEnv *MinimalEnv();

// Bytes NewStringUTF has read so far, and the number of strings made.
size_t MinimalEnvStringBytes();
size_t MinimalEnvStrings();

}  // namespace bench

#endif
