# SPDX-License-Identifier: Apache-2.0
# utf8proc as the target Utf8proc::utf8proc. Builds this project, and is installed beside its package
# configuration for whoever links its static libraries. Utf8proc_USE_STATIC_LIBS asks for the
# archive, so that what is linked does not depend on what the machine has; without one the shared
# library is taken.
find_path(Utf8proc_INCLUDE_DIR utf8proc.h)
find_library(Utf8proc_STATIC_LIBRARY
    NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}utf8proc${CMAKE_STATIC_LIBRARY_SUFFIX})
find_library(Utf8proc_SHARED_LIBRARY NAMES utf8proc)
mark_as_advanced(Utf8proc_INCLUDE_DIR Utf8proc_STATIC_LIBRARY Utf8proc_SHARED_LIBRARY)

set(Utf8proc_LIBRARY "${Utf8proc_SHARED_LIBRARY}")
if(Utf8proc_STATIC_LIBRARY AND (Utf8proc_USE_STATIC_LIBS OR NOT Utf8proc_SHARED_LIBRARY))
    set(Utf8proc_LIBRARY "${Utf8proc_STATIC_LIBRARY}")
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Utf8proc
    REQUIRED_VARS Utf8proc_LIBRARY Utf8proc_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package libutf8proc-dev, or name its place in CMAKE_PREFIX_PATH.")

if(Utf8proc_FOUND AND NOT TARGET Utf8proc::utf8proc)
    add_library(Utf8proc::utf8proc UNKNOWN IMPORTED)
    set_target_properties(Utf8proc::utf8proc PROPERTIES
        IMPORTED_LOCATION "${Utf8proc_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Utf8proc_INCLUDE_DIR}")
    if(Utf8proc_LIBRARY STREQUAL Utf8proc_STATIC_LIBRARY)
        set_property(TARGET Utf8proc::utf8proc PROPERTY INTERFACE_COMPILE_DEFINITIONS UTF8PROC_STATIC)
    endif()
endif()
