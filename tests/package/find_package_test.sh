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
for library in libOvMemCppBinding.so.0 libOvMemBinding.so libovlogging.so; do
  ldd "$folder/build-moved/consumer" | grep -qF "$folder/moved/lib/$library" ||
    fail "the application does not use $library of the moved prefix"
done
