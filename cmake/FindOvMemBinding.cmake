# Finds the closed transport library below OvMemBinding_ROOT and defines
# OvMem::Binding. Its declarations are OvMemCppBinding/platform/OvMemBinding.h.
find_library(OvMemBinding_LIBRARY OvMemBinding)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(OvMemBinding
  REQUIRED_VARS OvMemBinding_LIBRARY
  REASON_FAILURE_MESSAGE
    "set OvMemBinding_ROOT to the folder that holds lib/libOvMemBinding.so")
if(OvMemBinding_FOUND AND NOT TARGET OvMem::Binding)
  add_library(OvMem::Binding SHARED IMPORTED)
  # Linked by name: a library without a soname, linked by its path, would be
  # asked for by that path ever after, and LD_LIBRARY_PATH could not replace it.
  set_target_properties(OvMem::Binding PROPERTIES
    IMPORTED_LOCATION "${OvMemBinding_LIBRARY}"
    IMPORTED_NO_SONAME ON)
endif()
mark_as_advanced(OvMemBinding_LIBRARY)
