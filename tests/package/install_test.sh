#!/usr/bin/env bash
# install_test.sh BUILD PREFIX: installs the build and compares the list of what
# arrived. The other tests of this folder use PREFIX.
set -euo pipefail
source "$(dirname "$0")/check.sh"
build=$1 prefix=$2

rm -rf "$prefix"
cmake --install "$build" --prefix "$prefix" >/dev/null

expected=$(sed '/^#/d' "$here/installed_files.txt")
# The file of a build type bears its name.
actual=$(cd "$prefix" && find . ! -type d -printf '%P\n' |
  sed 's/Targets-[a-z]*\.cmake$/Targets-BUILDTYPE.cmake/' | LC_ALL=C sort)
expect_text "installed files" "$expected" "$actual"
