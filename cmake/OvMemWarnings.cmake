# The warnings that every file of the project compiles without, and the
# sanitizers of OVMEM_SANITIZE for everything.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)

# When it optimises, g++ 12 takes the assignment of a short text to a
# std::string for an overlapping copy.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  add_compile_options("$<$<CONFIG:Release,RelWithDebInfo>:-Wno-restrict>")
endif()

if(OVMEM_SANITIZE)
  add_compile_options(-fsanitize=${OVMEM_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${OVMEM_SANITIZE})
endif()
