#!/usr/bin/env bash
# The library as someone else's subproject, and under the android-* presets:
# only the library is built, nothing needs GoogleTest or a JDK, and warnings
# are not errors unless asked for.
# Usage: subproject.sh SOURCE_DIR WORK_DIR [CMAKE_ARGS...]  (the enclosing
# build's generator, compilers and toolchain)
set -euo pipefail
src=$1 work=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)
rm -rf "$work"
no_deps=(-DCMAKE_DISABLE_FIND_PACKAGE_GTest=ON -DCMAKE_DISABLE_FIND_PACKAGE_Java=ON
         -DCMAKE_DISABLE_FIND_PACKAGE_benchmark=ON --no-warn-unused-cli)
fail() { echo "FAIL: $*" >&2; exit 1; }
options_off() { # BUILD_DIR OPTION...
  local cache=$1; shift
  for option in "$@"; do
    grep -qx "$option:BOOL=OFF" "$cache/CMakeCache.txt" || fail "$option is not OFF in $cache"
  done
}
all_options=(TQOMACP_BUILD_TESTS TQOMACP_BUILD_TOOLS TQOMACP_BUILD_JAVA TQOMACP_BUILD_BENCH TQOMACP_BUILD_FUZZ)

cmake -S "$here/subproject" -B "$work/app" -DTQOMACP_SOURCE_DIR="$src" "${no_deps[@]}" "$@" >/dev/null
options_off "$work/app" "${all_options[@]}" TQOMACP_WERROR
cmake --build "$work/app" --target tqomacp -j2 >/dev/null
[ -f "$work/app/tqomacp/jni/libtqomacp.so" ] || fail "no libtqomacp.so"
tests=$(cd "$work/app" && ctest -N | sed -n 's/^Total Tests: //p')
[ "$tests" = 0 ] || fail "the app's build holds $tests tests"

# A consumer of the core alone needs no jni.h: the binding is off and JNI is
# not even looked for.
cmake -S "$here/subproject" -B "$work/core" -DTQOMACP_SOURCE_DIR="$src" -DTQOMACP_BUILD_BINDING=OFF \
  -DCMAKE_DISABLE_FIND_PACKAGE_JNI=ON "${no_deps[@]}" "$@" >/dev/null
cmake --build "$work/core" --target tqomacp_core tqomacp_names -j2 >/dev/null
[ -f "$work/core/tqomacp/jni/libtqomacp_core.a" ] || fail "no libtqomacp_core.a"
[ ! -e "$work/core/tqomacp/jni/libtqomacp.so" ] || fail "libtqomacp.so built without the binding"

# The presets without an NDK say what to set; with one (a stand-in here) they
# pass the ABI and the minimum platform to its toolchain file.
cd "$src"
out=$(cmake -E env --unset=ANDROID_NDK_HOME --unset=ANDROID_NDK_ROOT \
  cmake --preset android-arm64-v8a -B "$work/no-ndk" 2>&1) && fail "configured without an NDK"
grep -q 'set ANDROID_NDK_HOME (or ANDROID_NDK_ROOT)' <<<"$out" || fail "no word on what to set: $out"
out=$(cmake -E env --unset=ANDROID_NDK_HOME ANDROID_NDK_ROOT="$here/fake-ndk" \
  cmake --preset android-x86_64 -B "$work/ndk" "${no_deps[@]}" 2>&1) || fail "$out"
grep -q 'NDK toolchain: ABI x86_64, platform android-21' <<<"$out" || fail "toolchain not given ABI and platform: $out"
options_off "$work/ndk" "${all_options[@]}"
echo "subproject, core alone and Android presets: library only, no test, no GoogleTest, no JDK"
