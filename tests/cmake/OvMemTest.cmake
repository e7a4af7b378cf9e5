# How tests become CTest entries.
#
# ovmem_add_test_program(<target> SOURCES ... [LIBS ...] [SCRIPTED])
#
# A program of GoogleTest suites, linked with the objects of the whole library.
# SCRIPTED adds the scripted transport and logging library; without it, LIBS
# says what stands behind the two closed libraries.
#
# ovmem_add_test(NAME <folder>.<Class> PROGRAM <target> [SUITES ...]
#   [LABELS ...])
#
# The CTest entry ovmem.<folder>.<Class>: the named suites of a program, those
# of a parameterised or typed test included. Without SUITES it is the one that
# bears the last part of the name. An entry that selects no test fails.
#
# ovmem_add_test(NAME <folder>.<Class> SOURCES ... [LIBS ...] [SCRIPTED]
#   [LABELS ...])
#
# The same with a program of its own, of which every test is run.

set(OVMEM_TEST_TIMEOUT 120 CACHE STRING "Seconds that one CTest entry may take")

# A program that does nothing but own the precompiled header: a third of the time
# that the tests take to compile goes into GoogleTest. Off where the compiler is
# to notice that a file forgot an include.
option(OVMEM_TEST_PRECOMPILE "Precompile the headers that most tests include" OFF)
if(OVMEM_TEST_PRECOMPILE)
  add_executable(ovmem_test_headers "${CMAKE_CURRENT_LIST_DIR}/headers.cpp")
  target_link_libraries(ovmem_test_headers PRIVATE GTest::gtest)
  target_precompile_headers(ovmem_test_headers PRIVATE
    <algorithm> <chrono> <filesystem> <fstream> <functional> <iostream> <map> <memory>
    <optional> <sstream> <string> <thread> <vector> <gtest/gtest.h>)
endif()

# The rest is mostly the other headers, once for each file: a few files of a program
# become one. Off where every file is to stand on its own. Few enough that a change
# of one test is built in seconds.
option(OVMEM_TEST_UNITY "Compile the files of a test program a few at a time" OFF)
set(CMAKE_UNITY_BUILD ${OVMEM_TEST_UNITY})
set(CMAKE_UNITY_BUILD_BATCH_SIZE 8)
if(OVMEM_TEST_UNITY)
  # Neither makes sense across files: g++ takes a file that is included for a
  # header, and a local name is not to fear the helpers of the other files.
  add_compile_options("$<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>"
    -Wno-shadow "$<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>")
endif()

# ovmem_compile_alone(<source> ...): in every program of this folder. For what takes
# the place of functions of the system, and for what a program must be able to have
# without the rest.
function(ovmem_compile_alone)
  set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# ovmem_precompile_tests(<target>): for a program that ovmem_add_test_program has
# not made.
function(ovmem_precompile_tests target)
  if(OVMEM_TEST_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ovmem_test_headers)
  endif()
endfunction()

function(ovmem_add_test_program target)
  cmake_parse_arguments(PARSE_ARGV 1 arg "SCRIPTED" "" "SOURCES;LIBS")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${target}: unknown ${arg_UNPARSED_ARGUMENTS}")
  endif()
  add_executable(${target} ${arg_SOURCES})
  target_link_libraries(${target} PRIVATE
    OvMemCppBindingObjects ovmem_test_support GTest::gmock_main ${arg_LIBS})
  if(arg_SCRIPTED)
    target_link_libraries(${target} PRIVATE ovmem_scripted_platform)
  endif()
  if(OVMEM_SANITIZE STREQUAL "thread")
    set(clock_lock "${PROJECT_SOURCE_DIR}/tests/support/WatchedClockLock.cpp")
    target_sources(${target} PRIVATE "${clock_lock}")
    ovmem_compile_alone("${clock_lock}")
  endif()
  ovmem_precompile_tests(${target})
endfunction()

function(ovmem_add_test)
  cmake_parse_arguments(PARSE_ARGV 0 arg "SCRIPTED" "NAME;PROGRAM"
    "SOURCES;LIBS;SUITES;LABELS")
  if(arg_UNPARSED_ARGUMENTS)
    message(FATAL_ERROR "${arg_NAME}: unknown ${arg_UNPARSED_ARGUMENTS}")
  endif()
  set(filter "*")
  if(arg_SOURCES)
    string(REPLACE "." "_" arg_PROGRAM "ovmem_test_${arg_NAME}")
    set(scripted)
    if(arg_SCRIPTED)
      set(scripted SCRIPTED)
    endif()
    ovmem_add_test_program(${arg_PROGRAM}
      SOURCES ${arg_SOURCES} LIBS ${arg_LIBS} ${scripted})
  elseif(NOT arg_SUITES)
    string(REGEX REPLACE "^.*\\." "" arg_SUITES "${arg_NAME}")
  endif()
  if(arg_SUITES)
    set(filter)
    foreach(suite IN LISTS arg_SUITES)
      list(APPEND filter "${suite}.*" "*/${suite}.*" "${suite}/*" "*/${suite}/*")
    endforeach()
    list(JOIN filter ":" filter)
  endif()
  add_test(NAME ovmem.${arg_NAME}
    COMMAND ${arg_PROGRAM} "--gtest_filter=${filter}" --gtest_brief=0)
  set_tests_properties(ovmem.${arg_NAME} PROPERTIES
    LABELS "${arg_LABELS}"
    TIMEOUT ${OVMEM_TEST_TIMEOUT}
    FAIL_REGULAR_EXPRESSION "Running 0 tests from 0 test suites")
endfunction()
