# Stands in for the NDK's toolchain file: says what it was given, builds with
# the host compilers.
set(ANDROID TRUE)
message(STATUS "NDK toolchain: ABI ${ANDROID_ABI}, platform ${ANDROID_PLATFORM}")
