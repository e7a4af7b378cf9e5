#!/usr/bin/env bash
# runpath_test.sh PREFIX: every installed library and program finds the others
# from where it stands, and only after LD_LIBRARY_PATH was looked at; and the
# platform libraries are asked for by the names of the closed ones.
set -euo pipefail
source "$(dirname "$0")/check.sh"
prefix=$1

entries() {
  readelf --dynamic --wide "$1" | sed -nE "s/.*\\(($2)\\).*\\[(.*)\\]/\\1 \\3/p"
}

for library in libOvMemCppBinding libOvMemBinding libovlogging; do
  expect_text "search path of $library" 'RUNPATH $ORIGIN' \
    "$(entries "$prefix/lib/$library.so" '(RPATH|RUNPATH)')"
done
for program in "$prefix"/bin/*; do
  expect_text "search path of $program" 'RUNPATH $ORIGIN/../lib' \
    "$(entries "$program" '(RPATH|RUNPATH)')"
done
for library in libOvMemBinding libovlogging; do
  expect_text "soname of $library" "SONAME $library.so" \
    "$(entries "$prefix/lib/$library.so" '(SONAME)')"
done
expect_text "platform libraries of libOvMemCppBinding" \
  'NEEDED libOvMemBinding.so
NEEDED libovlogging.so' \
  "$(entries "$prefix/lib/libOvMemCppBinding.so" '(NEEDED)' |
    grep -E 'OvMem|logging' | sort)"
