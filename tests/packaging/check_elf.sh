#!/usr/bin/env bash
# Checks a shared library against what Android and Google Play ask of one,
# and lists every failure: check_elf.sh READELF NM LIBRARY ALLOWED_IMPORTS
set -uo pipefail
readelf=$1 nm=$2 lib=$3 allowed=$4
status=0
fail() { echo "$lib: $*"; status=1; }

segments=$("$readelf" -lW "$lib") && dynamic=$("$readelf" -dW "$lib") &&
  notes=$("$readelf" -nW "$lib") && imports=$("$nm" -D --undefined-only "$lib") || exit 1

while read -r align; do
  (( align >= 16384 )) || fail "LOAD segment aligned to $align, not 16 KB (-z max-page-size=16384)"
done < <(grep -E '^ *LOAD ' <<<"$segments" | awk '{print $NF}')
grep -q GNU_RELRO <<<"$segments" || fail "no RELRO segment (-z relro)"
grep -Eq 'BIND_NOW|FLAGS_1.* NOW' <<<"$dynamic" || fail "lazy binding, RELRO is partial (-z now)"
grep -q TEXTREL <<<"$dynamic" && fail "text relocations"
[ "$(grep -E '^ *GNU_STACK ' <<<"$segments" | awk '{print $(NF-1)}')" = RW ] ||
  fail "stack not marked non-executable (-z noexecstack)"
grep -q NT_GNU_BUILD_ID <<<"$notes" || fail "no build-id (--build-id)"
grep -Eq ' U __stack_chk_fail(@|$)' <<<"$imports" || fail "no stack protector (-fstack-protector-strong)"

# Imports: the allowed C library functions, and the weak symbols of the
# startup files.
while read -r type name; do
  name=${name%%@*}
  case "$type $name" in
    "w __cxa_finalize" | "w __gmon_start__" | "w _ITM_"*) continue ;;
  esac
  grep -qxF "$name" "$allowed" || fail "imports $name, which is not in $(basename "$allowed")"
done <<<"$imports"

[ $status = 0 ] && echo "$lib: 16 KB LOAD alignment, full RELRO, no TEXTREL, non-exec stack, build-id, stack protector, allowed imports"
exit $status
