#!/usr/bin/env bash
# external_test.sh SOURCE: the library built, installed and used with platform
# libraries from elsewhere; and what it says when they are not found.
set -euo pipefail
source "$(dirname "$0")/check.sh"
source=$1

temporary_folder
cmake -G Ninja -S "$here/external" -B "$folder/closed" >/dev/null
cmake --build "$folder/closed" >/dev/null
configure=(cmake -G Ninja -S "$source" -B "$folder/build" -DOVMEM_PLATFORM=external
  -DOVMEM_PRECOMPILE=ON
  -DOVMEM_BUILD_CLI=OFF -DOVMEM_BUILD_TESTS=OFF -DOVMEM_BUILD_EXAMPLES=OFF)

# refused SENTENCE [OPTION ...]
refused() {
  local sentence=$1
  shift
  if "${configure[@]}" "$@" >"$folder/log" 2>&1; then
    fail "the platform libraries are missing, and nobody said so"
  fi
  tr -s ' \n' ' ' <"$folder/log" | grep -F "$sentence" >/dev/null ||
    { cat "$folder/log" && fail "expected the sentence: $sentence"; }
}
refused "set OvMemBinding_ROOT to the folder that holds lib/libOvMemBinding.so"
refused "set ovlogging_ROOT to the folder that holds lib/libovlogging.so" \
  "-DOvMemBinding_ROOT=$folder/closed"
refused "OVMEM_PLATFORM is 'elsewhere'; set it to emulator or external" \
  -DOVMEM_PLATFORM=elsewhere

roots=("-DOvMemBinding_ROOT=$folder/closed" "-Dovlogging_ROOT=$folder/closed")
{
  "${configure[@]}" "${roots[@]}" -DOVMEM_PLATFORM=external &&
    cmake --build "$folder/build" --target OvMemCppBinding &&
    cmake --install "$folder/build" --prefix "$folder/prefix"
} >"$folder/log" 2>&1 || { cat "$folder/log" && fail "the library does not build"; }

if find "$folder/prefix" -name 'libOvMemBinding*' -o -name 'libovlogging*' | grep .; then
  fail "an emulator was installed"
fi
build_consumer "$folder/consumer" "-DCMAKE_PREFIX_PATH=$folder/prefix" "${roots[@]}"
expect_text "external platform" "$(with_external external-logging)" \
  "$("$folder/consumer/consumer")"
