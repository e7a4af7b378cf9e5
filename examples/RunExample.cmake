# Runs an example with a store of its own and compares all that it writes to
# standard output with a file: cmake -DPROGRAM=... -DEXPECTED=... -P ...
set(ENV{OVMEM_STORE} "memory:")
set(ENV{LC_ALL} "C.UTF-8")
execute_process(COMMAND "${PROGRAM}"
  RESULT_VARIABLE result
  OUTPUT_VARIABLE output
  ERROR_VARIABLE errors)
if(NOT result STREQUAL "0" OR NOT errors STREQUAL "")
  message(FATAL_ERROR "ended with ${result}\n${output}${errors}")
endif()
file(READ "${EXPECTED}" expected)
if(NOT output STREQUAL expected)
  message(FATAL_ERROR "wrote\n${output}\nin place of\n${expected}")
endif()
