# Included with project(): optimises the product only, so that changes which
# mean the same become the same object, and the tests are quick to build.
function(ovmem_optimise_product)
  foreach(target IN ITEMS OvMemCppBindingData OvMemCppBindingClient
      OvMemEmulatorObjects ovlogging ovmemCli ovmem)
    target_compile_options(${target} PRIVATE -O1)
  endforeach()
endfunction()
cmake_language(DEFER CALL ovmem_optimise_product)
