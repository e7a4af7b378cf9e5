# ovmem_limit_exports(<target> <version script>)
#
# Hidden visibility still lets instantiated templates of the standard library
# out; a version script keeps them in.
function(ovmem_limit_exports target script)
  target_link_options(${target} PRIVATE
    "LINKER:--version-script=${script}" LINKER:--no-undefined)
  set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${script}")
endfunction()
