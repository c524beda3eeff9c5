#!/usr/bin/env bash
# scripts/build-aar.sh with stand-in Android libraries (linked against a stub
# libc.so, as the NDK links): the AAR's layout, manifest, rules and libraries;
# then the libraries it must refuse.
# Usage: aar_test.sh SOURCE_DIR WORK_DIR GLIBC_LIBRARY [JAR]
set -euo pipefail
src=$1 work=$2 glibc_lib=$3 jar=${4:-}
here=$(cd "$(dirname "$0")" && pwd)
fail() { echo "FAIL: $*" >&2; exit 1; }
rm -rf "$work" && mkdir -p "$work" && cd "$work"
version=$(sed -n 's/^project(tqomacp VERSION \([0-9.]*\).*/\1/p' "$src/CMakeLists.txt")

if [ -z "$jar" ]; then  # a build without Java: a jar with what the AAR takes from it
  mkdir -p jar/META-INF/proguard && cp "$src/java/proguard/tqomacp.pro" jar/META-INF/proguard/
  printf 'Manifest-Version: 1.0\nImplementation-Version: %s\n' "$version" >jar/META-INF/MANIFEST.MF
  (cd jar && cmake -E tar cf ../tqomacp.jar --format=zip META-INF)
  jar=$work/tqomacp.jar
fi

# standin ARCH_CC NAME LIBC_SONAME [LIBC_LINK_FLAGS...]: a library that
# imports one function from a stub C library with the given soname.
standin() {
  local cc=$1 name=$2 soname=$3; shift 3
  mkdir -p "$name"
  "$cc" -shared -nostdlib -DSTANDIN_LIBC -Wl,-soname,"$soname" "$@" -o "$name/libc.so" "$here/standin.c"
  "$cc" -shared -nostdlib -Wl,--no-as-needed -o "$name/libtqomacp.so" "$here/standin.c" -L"$name" -lc
}
printf 'GLIBC_2.17 { global: tqomacp_standin_import; local: *; };\n' >glibc.map
standin gcc x86_64 libc.so
standin aarch64-linux-gnu-gcc arm64 libc.so
standin gcc needs-libc6 libc.so.6
standin aarch64-linux-gnu-gcc glibc-versions libc.so -Wl,--version-script=glibc.map

aar=$("$src/scripts/build-aar.sh" --jar "$jar" --arm64-v8a arm64/libtqomacp.so \
  --x86_64 x86_64/libtqomacp.so --out out) || fail "assembly failed"
[ "$aar" = "$work/out/tqomacp-$version.aar" ] || fail "AAR is $aar"
listing=$(cmake -E tar tf "$aar" | grep -v '/$' | sort | tr '\n' ' ')
[ "$listing" = "AndroidManifest.xml R.txt classes.jar jni/arm64-v8a/libtqomacp.so jni/x86_64/libtqomacp.so proguard.txt " ] ||
  fail "AAR holds: $listing"
mkdir unpacked && (cd unpacked && cmake -E tar xf "$aar")
grep -q 'package="com.tqomacp.eng.parser"' unpacked/AndroidManifest.xml &&
  grep -q 'android:minSdkVersion="21"' unpacked/AndroidManifest.xml || fail "manifest: $(cat unpacked/AndroidManifest.xml)"
[ ! -s unpacked/R.txt ] || fail "R.txt is not empty"
cmp unpacked/proguard.txt "$src/java/proguard/tqomacp.pro" && cmp unpacked/classes.jar "$jar" &&
  cmp unpacked/jni/arm64-v8a/libtqomacp.so arm64/libtqomacp.so &&
  cmp unpacked/jni/x86_64/libtqomacp.so x86_64/libtqomacp.so || fail "AAR contents differ from their sources"

# refused ARM64_LIB X86_64_LIB REASON
refused() {
  local out
  out=$("$src/scripts/build-aar.sh" --jar "$jar" --arm64-v8a "$1" --x86_64 "$2" --out refused 2>&1) &&
    fail "accepted $1 and $2"
  grep -q "$3" <<<"$out" || fail "refused $1 and $2 without saying \"$3\": $out"
  [ ! -d refused ] || fail "refusal left $(ls refused)"
}
refused "$glibc_lib" x86_64/libtqomacp.so "not an Android build"
refused needs-libc6/libtqomacp.so x86_64/libtqomacp.so "needs libc.so.6"
refused glibc-versions/libtqomacp.so x86_64/libtqomacp.so "GLIBC symbol versions"
refused x86_64/libtqomacp.so arm64/libtqomacp.so "is not AArch64 code"
refused arm64/libtqomacp.so arm64/libtqomacp.so "is not Advanced Micro Devices X86-64 code"
refused arm64/libtqomacp.so missing.so "no such file"
echo "AAR: layout, manifest, rules and libraries as built; glibc and wrong-ABI libraries refused"
