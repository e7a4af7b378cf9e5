# ovmem_precompile(<target>): half the time that a source takes to compile goes into
# the standard library. Off where the compiler is to notice that a file forgot an
# include.
option(OVMEM_PRECOMPILE
  "Precompile the headers of the standard library that most sources include" OFF)

# Owns the headers and nothing else. Without the definitions of any target, which
# would have to be those of every other.
if(OVMEM_PRECOMPILE)
  file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/headers.cpp" CONTENT "")
  add_library(ovmem_headers OBJECT "${PROJECT_BINARY_DIR}/headers.cpp")
  target_precompile_headers(ovmem_headers PRIVATE
    <algorithm> <chrono> <filesystem> <functional> <map> <memory> <optional> <string>
    <vector>)
endif()

function(ovmem_precompile target)
  if(OVMEM_PRECOMPILE)
    target_precompile_headers(${target} REUSE_FROM ovmem_headers)
  endif()
endfunction()
