// Private to the binding: stored values as Java strings.
#ifndef TQOMACP_JNI_STRINGS_H
#define TQOMACP_JNI_STRINGS_H

#include <jni.h>

namespace tqsjni {

// A new Java string from a stored value; null for a null value. The context
// holds raw bytes (texts, and token code bytes such as 0x85) while
// NewStringUTF wants modified UTF-8: modified UTF-8 passes unchanged, a 4-byte
// UTF-8 sequence becomes its surrogate pair, any other byte the char of the
// same value.
jstring NewJavaString(JNIEnv *env, const char *value);

}  // namespace tqsjni

#endif  // TQOMACP_JNI_STRINGS_H
