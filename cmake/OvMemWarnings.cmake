# The warnings that every file of the project compiles without, and the
# sanitizers of OVMEM_SANITIZE for everything.
add_compile_options(-Wall -Wextra -Wpedantic -Wconversion -Wshadow)

if(OVMEM_SANITIZE)
  add_compile_options(-fsanitize=${OVMEM_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  add_link_options(-fsanitize=${OVMEM_SANITIZE})
endif()
