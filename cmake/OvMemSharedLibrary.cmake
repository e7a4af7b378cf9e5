# ovmem_limit_exports(<target> <version script>)
#
# Hidden visibility still lets instantiated templates of the standard library
# out; a version script keeps them in. The library must name everything that
# it needs, unless a sanitizer is to be found in the program that loads it.
function(ovmem_limit_exports target script)
  target_link_options(${target} PRIVATE "LINKER:--version-script=${script}")
  if(NOT OVMEM_SANITIZE)
    target_link_options(${target} PRIVATE LINKER:--no-undefined)
  endif()
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()

# The search path inside libraries and programs stands behind LD_LIBRARY_PATH
# (RUNPATH, not RPATH), so that the closed platform libraries can take the
# place of the emulator's.
add_link_options(LINKER:--enable-new-dtags)
