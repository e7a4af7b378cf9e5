#!/usr/bin/env bash
# pkg_config_test.sh PREFIX: an application builds as C++11 with what pkg-config
# says and runs; also after the prefix was moved.
set -euo pipefail
source "$(dirname "$0")/check.sh"

try() {
  local what=$1 prefix=$2 flags
  export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
  expect_text "version" 0.1.0 "$(pkg-config --modversion OvMemCppBinding)"
  flags=$(pkg-config --cflags --libs OvMemCppBinding)
  # shellcheck disable=SC2086 # the flags are words
  g++ -std=c++11 -o "$folder/consumer" "$here/consumer/main.cpp" $flags
  expect_text "$what" "$with_emulator" \
    "$(LD_LIBRARY_PATH=$prefix/lib "$folder/consumer")"
}

temporary_folder
try "pkg-config" "$1"
cp -a "$1" "$folder/first"
mv "$folder/first" "$folder/moved"
try "moved prefix" "$folder/moved"
