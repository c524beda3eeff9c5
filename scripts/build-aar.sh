#!/usr/bin/env bash
# Assembles tqomacp-<version>.aar: tqomacp.jar as classes.jar, its keep rules
# as proguard.txt, and libtqomacp.so for arm64-v8a and x86_64.
#
#   scripts/build-aar.sh [--jar FILE] [--arm64-v8a FILE] [--x86_64 FILE] [--out DIR]
#
# What is not given is built: the jar by a host build (needs a JDK), each
# library by its android-<abi> preset (needs ANDROID_NDK_HOME or
# ANDROID_NDK_ROOT). A library that is not an Android build is refused.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
out=$root/build/aar
jar="" lib_arm64_v8a="" lib_x86_64=""
while [ $# -gt 0 ]; do
  case "$1" in
    --jar) jar=$2 ;;
    --arm64-v8a) lib_arm64_v8a=$2 ;;
    --x86_64) lib_x86_64=$2 ;;
    --out) out=$2 ;;
    *) echo "usage: $0 [--jar FILE] [--arm64-v8a FILE] [--x86_64 FILE] [--out DIR]" >&2; exit 2 ;;
  esac
  shift 2
done
# Paths as given, from here; the AAR is staged elsewhere.
for var in out jar lib_arm64_v8a lib_x86_64; do
  case "${!var}" in "" | /*) ;; *) printf -v "$var" '%s' "$PWD/${!var}" ;; esac
done
die() { echo "build-aar: $*" >&2; exit 1; }

if [ -z "$jar" ]; then
  cmake -S "$root" -B "$root/build/aar-jar" -DTQOMACP_BUILD_JAVA=ON -DTQOMACP_BUILD_TESTS=OFF \
    -DTQOMACP_BUILD_TOOLS=OFF >/dev/null
  cmake --build "$root/build/aar-jar" --target tqomacp_jar
  jar=$root/build/aar-jar/java/tqomacp.jar
fi
for abi in arm64-v8a x86_64; do
  var=lib_${abi//-/_}
  if [ -z "${!var}" ]; then
    (cd "$root" && cmake --preset "android-$abi" >/dev/null && cmake --build --preset "android-$abi" --target tqomacp)
    printf -v "$var" '%s' "$root/build/android-$abi/jni/libtqomacp.so"
  fi
done

# Android's loader cannot load a library linked against glibc, nor one built
# for the other ABI.
check_lib() { # ABI FILE MACHINE
  [ -f "$2" ] || die "$1: no such file: $2"
  readelf -dW "$2" | grep -q 'NEEDED.*\[libc\.so\.6\]' && die "$1: $2 needs libc.so.6: not an Android build"
  readelf -VW "$2" | grep -q 'GLIBC_' && die "$1: $2 has GLIBC symbol versions: not an Android build"
  readelf -hW "$2" | grep -q "Machine: *$3" || die "$1: $2 is not $3 code"
}
check_lib arm64-v8a "$lib_arm64_v8a" AArch64
check_lib x86_64 "$lib_x86_64" 'Advanced Micro Devices X86-64'

min_sdk=$(sed -n 's/^set(TQOMACP_ANDROID_MIN_API \([0-9]*\))$/\1/p' "$root/cmake/android-ndk.cmake")
stage=$(mktemp -d)
trap 'rm -rf "$stage"' EXIT
cd "$stage"
cmake -E tar xf "$jar" META-INF/MANIFEST.MF META-INF/proguard/tqomacp.pro
version=$(sed -n 's/^Implementation-Version: *\([^[:space:]]*\).*/\1/p' META-INF/MANIFEST.MF)
[ -n "$version" ] && [ -n "$min_sdk" ] || die "no version in $jar or no minimum API level"
mv META-INF/proguard/tqomacp.pro proguard.txt
rm -r META-INF
cp "$jar" classes.jar
mkdir -p jni/arm64-v8a jni/x86_64
cp "$lib_arm64_v8a" jni/arm64-v8a/libtqomacp.so
cp "$lib_x86_64" jni/x86_64/libtqomacp.so
: >R.txt
cat >AndroidManifest.xml <<EOF
<?xml version="1.0" encoding="utf-8"?>
<manifest xmlns:android="http://schemas.android.com/apk/res/android"
    package="com.tqomacp.eng.parser">
    <uses-sdk android:minSdkVersion="$min_sdk" />
</manifest>
EOF
mkdir -p "$out"
aar=$out/tqomacp-$version.aar
cmake -E tar cf "$aar" --format=zip AndroidManifest.xml classes.jar proguard.txt R.txt jni
echo "$aar"
