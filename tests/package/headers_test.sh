#!/usr/bin/env bash
# headers_test.sh INCLUDE COMPILER STANDARD: every installed header compiles on
# its own, without a warning, and needs nothing beyond what is installed and the
# standard library.
set -euo pipefail
source "$(dirname "$0")/check.sh"
include=$1 compiler=$2 standard=$3

temporary_folder
count=0
while read -r header; do
  # Twice, to see that the guard holds.
  printf '#include <%s>\n' "$header" "$header" >"$folder/alone.cpp"
  "$compiler" "-std=$standard" -Wall -Wextra -Wpedantic -Wconversion -Wshadow \
    -Werror -I "$include" -MD -MF "$folder/needs" -fsyntax-only "$folder/alone.cpp" ||
    fail "$header does not compile alone with $compiler -std=$standard"
  if grep -E '/(xercesc|unicode)/' "$folder/needs"; then
    fail "$header includes a header of the XML libraries"
  fi
  count=$((count + 1))
done < <(cd "$include" && find . -name '*.h' -printf '%P\n')
[[ $count -gt 0 ]] || fail "there are no headers in $include"
echo "$count headers"
