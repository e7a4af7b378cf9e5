# Finds the closed logging library below ovlogging_ROOT and defines
# OvMem::Logging. Its declarations are OvMemCppBinding/platform/LogCorrelation.h.
find_library(ovlogging_LIBRARY ovlogging)
include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(ovlogging
  REQUIRED_VARS ovlogging_LIBRARY
  REASON_FAILURE_MESSAGE
    "set ovlogging_ROOT to the folder that holds lib/libovlogging.so")
if(ovlogging_FOUND AND NOT TARGET OvMem::Logging)
  add_library(OvMem::Logging SHARED IMPORTED)
  # Linked by name; FindOvMemBinding.cmake says why.
  set_target_properties(OvMem::Logging PROPERTIES
    IMPORTED_LOCATION "${ovlogging_LIBRARY}"
    IMPORTED_NO_SONAME ON)
endif()
mark_as_advanced(ovlogging_LIBRARY)
