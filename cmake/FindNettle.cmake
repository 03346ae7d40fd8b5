# SPDX-License-Identifier: Apache-2.0
# Nettle as the target Nettle::nettle: with Nettle_USE_STATIC_LIBS its archive where there is one, else
# whatever the linker would take.
find_path(Nettle_INCLUDE_DIR nettle/sha2.h)
set(Nettle_NAMES nettle)
if(Nettle_USE_STATIC_LIBS)
    list(PREPEND Nettle_NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}nettle${CMAKE_STATIC_LIBRARY_SUFFIX})
endif()
find_library(Nettle_LIBRARY NAMES ${Nettle_NAMES})
mark_as_advanced(Nettle_INCLUDE_DIR Nettle_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Nettle
    REQUIRED_VARS Nettle_LIBRARY Nettle_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package nettle-dev, or name its place in CMAKE_PREFIX_PATH.")

if(Nettle_FOUND AND NOT TARGET Nettle::nettle)
    add_library(Nettle::nettle UNKNOWN IMPORTED)
    set_target_properties(Nettle::nettle PROPERTIES
        IMPORTED_LOCATION "${Nettle_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Nettle_INCLUDE_DIR}")
endif()
