# Included into a project through CMAKE_PROJECT_INCLUDE, it makes this CMake look
# like 3.16 to what the project includes from then on: the version that scripts
# ask for, and file sets, which came with 3.23.
set(CMAKE_VERSION 3.16.3)
set(CMAKE_MAJOR_VERSION 3)
set(CMAKE_MINOR_VERSION 16)
set(CMAKE_PATCH_VERSION 3)

function(target_sources)
  if("FILE_SET" IN_LIST ARGV)
    message(FATAL_ERROR "CMake ${CMAKE_VERSION} knows no file sets")
  endif()
  _target_sources(${ARGN})
endfunction()
