#!/usr/bin/env bash
# find_package_test.sh PREFIX: an application finds the installed package with
# find_package, builds as C++11 and runs; also after the prefix was moved.
set -euo pipefail
source "$(dirname "$0")/check.sh"
prefix=$1

temporary_folder
build_consumer "$folder/build" "-DCMAKE_PREFIX_PATH=$prefix"
expect_text "find_package" "$with_emulator" "$("$folder/build/consumer")"

cp -a "$prefix" "$folder/first"
mv "$folder/first" "$folder/moved"
build_consumer "$folder/build-moved" "-DCMAKE_PREFIX_PATH=$folder/moved"
expect_text "moved prefix" "$with_emulator" "$("$folder/build-moved/consumer")"
expect_text "libraries of the moved prefix" \
  "$(printf "$folder/moved/lib/%s\n" libOvMemBinding.so libOvMemCppBinding.so.0 libovlogging.so)" \
  "$(ldd "$folder/build-moved/consumer" | grep -o "[^ ]*/lib/lib[Oo]v[^ ]*" |
    xargs -n 1 realpath -s | LC_ALL=C sort)"
