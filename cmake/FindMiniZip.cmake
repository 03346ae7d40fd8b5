# SPDX-License-Identifier: Apache-2.0
# minizip (of zlib) as the target MiniZip::minizip: with MiniZip_USE_STATIC_LIBS its archive and that of
# zlib where there are any, else whatever the linker would take.
find_path(MiniZip_INCLUDE_DIR minizip/zip.h)
find_path(MiniZip_ZLIB_INCLUDE_DIR zlib.h)
set(MiniZip_NAMES minizip)
set(MiniZip_ZLIB_NAMES z)
if(MiniZip_USE_STATIC_LIBS)
    list(PREPEND MiniZip_NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}minizip${CMAKE_STATIC_LIBRARY_SUFFIX})
    list(PREPEND MiniZip_ZLIB_NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}z${CMAKE_STATIC_LIBRARY_SUFFIX})
endif()
find_library(MiniZip_LIBRARY NAMES ${MiniZip_NAMES})
find_library(MiniZip_ZLIB_LIBRARY NAMES ${MiniZip_ZLIB_NAMES})
mark_as_advanced(MiniZip_INCLUDE_DIR MiniZip_ZLIB_INCLUDE_DIR MiniZip_LIBRARY MiniZip_ZLIB_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(MiniZip
    REQUIRED_VARS MiniZip_LIBRARY MiniZip_ZLIB_LIBRARY MiniZip_INCLUDE_DIR MiniZip_ZLIB_INCLUDE_DIR
    REASON_FAILURE_MESSAGE
        "Install the Debian packages libminizip-dev and zlib1g-dev, or name their place in CMAKE_PREFIX_PATH.")

if(MiniZip_FOUND AND NOT TARGET MiniZip::minizip)
    # Global: programs in other folders link what is built on it.
    add_library(MiniZip::minizip UNKNOWN IMPORTED GLOBAL)
    set_target_properties(MiniZip::minizip PROPERTIES
        IMPORTED_LOCATION "${MiniZip_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${MiniZip_INCLUDE_DIR};${MiniZip_ZLIB_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "${MiniZip_ZLIB_LIBRARY}")
endif()
