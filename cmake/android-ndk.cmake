# Toolchain of the android-* presets: the NDK's own android.toolchain.cmake,
# found through ANDROID_NDK_HOME or ANDROID_NDK_ROOT.
#
# API level 21 is the first with arm64-v8a and x86_64, and nothing the library
# imports needs a later one: the newest of its C library functions
# (tests/packaging/bionic-libc-api21.txt) are the fortified forms the NDK's
# headers may call, such as __vsnprintf_chk and __strlen_chk, in bionic since 17.
set(TQOMACP_ANDROID_MIN_API 21)

foreach(var ANDROID_NDK_HOME ANDROID_NDK_ROOT)
  if(NOT TQOMACP_NDK AND EXISTS "$ENV{${var}}/build/cmake/android.toolchain.cmake")
    set(TQOMACP_NDK "$ENV{${var}}")
  endif()
endforeach()
if(NOT TQOMACP_NDK)
  message(FATAL_ERROR "No Android NDK found: set ANDROID_NDK_HOME (or ANDROID_NDK_ROOT) to the "
    "NDK's folder, the one holding build/cmake/android.toolchain.cmake "
    "(ANDROID_NDK_HOME='$ENV{ANDROID_NDK_HOME}', ANDROID_NDK_ROOT='$ENV{ANDROID_NDK_ROOT}').")
endif()
if(NOT ANDROID_PLATFORM)
  set(ANDROID_PLATFORM android-${TQOMACP_ANDROID_MIN_API})
endif()
include("${TQOMACP_NDK}/build/cmake/android.toolchain.cmake")
