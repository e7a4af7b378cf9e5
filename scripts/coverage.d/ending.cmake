# Included with project(): a program that ends by _exit or a signal of its own
# writes its counts first.
function(ovmem_count_endings)
  if(TARGET ovmem)
    target_sources(ovmem PRIVATE "${CMAKE_CURRENT_FUNCTION_LIST_DIR}/ending.cpp")
    target_link_options(ovmem PRIVATE LINKER:--wrap=_exit LINKER:--wrap=raise)
  endif()
endfunction()
cmake_language(DEFER CALL ovmem_count_endings)
