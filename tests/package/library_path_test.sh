#!/usr/bin/env bash
# library_path_test.sh PREFIX: one application, built once, talks to whichever
# platform libraries stand first on the library path.
set -euo pipefail
source "$(dirname "$0")/check.sh"
prefix=$1

temporary_folder
cmake -G Ninja -S "$here/external" -B "$folder/external" >/dev/null
cmake --build "$folder/external" >/dev/null
build_consumer "$folder/build" "-DCMAKE_PREFIX_PATH=$prefix"
consumer=$folder/build/consumer

expect_text "the emulator's" "$with_emulator" "$("$consumer")"
expect_text "both replaced" "$(with_external external-logging)" \
  "$(LD_LIBRARY_PATH=$folder/external/lib "$consumer")"

mkdir "$folder/transport"
mv "$folder/external/lib/libOvMemBinding.so" "$folder/transport"
expect_text "the transport replaced" "$(with_external nobody)" \
  "$(LD_LIBRARY_PATH=$folder/transport "$consumer")"
