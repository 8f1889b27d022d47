# Finds the OpenPegasus client libraries in the system paths or below OPENPEGASUS_ROOT (CMake or environment variable).
#
# Defines OpenPegasus::client (headers, libraries pegclient and pegcommon, and the macros that its headers require) and
# OpenPegasus_FOUND.
find_path(OpenPegasus_INCLUDE_DIR Pegasus/Client/CIMClient.h HINTS ${OPENPEGASUS_ROOT} ENV OPENPEGASUS_ROOT
          PATH_SUFFIXES include)
find_library(OpenPegasus_CLIENT_LIBRARY pegclient HINTS ${OPENPEGASUS_ROOT} ENV OPENPEGASUS_ROOT
             PATH_SUFFIXES lib lib64)
find_library(OpenPegasus_COMMON_LIBRARY pegcommon HINTS ${OPENPEGASUS_ROOT} ENV OPENPEGASUS_ROOT
             PATH_SUFFIXES lib lib64)
mark_as_advanced(OpenPegasus_INCLUDE_DIR OpenPegasus_CLIENT_LIBRARY OpenPegasus_COMMON_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(
  OpenPegasus
  REQUIRED_VARS OpenPegasus_CLIENT_LIBRARY OpenPegasus_COMMON_LIBRARY OpenPegasus_INCLUDE_DIR
  REASON_FAILURE_MESSAGE "set OPENPEGASUS_ROOT to the folder that holds include/Pegasus and lib, or use -DORVANE_PEGASUS=bundled")

if(OpenPegasus_FOUND AND NOT TARGET OpenPegasus::client)
  # The headers stop without the name of the platform they were built for.
  string(TOUPPER "${CMAKE_SYSTEM_PROCESSOR}" OpenPegasus_processor)
  add_library(OpenPegasus::client INTERFACE IMPORTED)
  target_include_directories(OpenPegasus::client SYSTEM INTERFACE "${OpenPegasus_INCLUDE_DIR}")
  target_link_libraries(OpenPegasus::client INTERFACE "${OpenPegasus_CLIENT_LIBRARY}" "${OpenPegasus_COMMON_LIBRARY}")
  target_compile_definitions(OpenPegasus::client INTERFACE PEGASUS_PLATFORM_LINUX_${OpenPegasus_processor}_GNU
                                                           PEGASUS_HAS_SSL)
endif()
