#!/usr/bin/env bash
# old_cmake_test.sh PREFIX: an application finds the installed package with a
# CMake that is as old as the documents allow. This machine has a newer one,
# which is made to look old.
set -euo pipefail
source "$(dirname "$0")/check.sh"
prefix=$1

temporary_folder
build_consumer "$folder/build" "-DCMAKE_PREFIX_PATH=$prefix" \
  "-DCMAKE_PROJECT_INCLUDE=$here/old_cmake.cmake"
expect_text "CMake 3.16" "$with_emulator" "$("$folder/build/consumer")"

# The guard does guard: what is new is refused.
mkdir "$folder/new"
cat >"$folder/new/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.16)
project(new LANGUAGES NONE)
add_library(new INTERFACE)
target_sources(new INTERFACE FILE_SET HEADERS)
END
said=$(cmake -S "$folder/new" -B "$folder/new/build" \
  "-DCMAKE_PROJECT_INCLUDE=$here/old_cmake.cmake" 2>&1) && fail "a file set passes"
grep -qF "CMake 3.16.3 knows no file sets" <<<"$said" || fail "another reason: $said"
