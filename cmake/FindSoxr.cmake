# SPDX-License-Identifier: Apache-2.0
# libsoxr as the target Soxr::soxr.
find_path(Soxr_INCLUDE_DIR soxr.h)
find_library(Soxr_LIBRARY NAMES soxr)
mark_as_advanced(Soxr_INCLUDE_DIR Soxr_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Soxr
    REQUIRED_VARS Soxr_LIBRARY Soxr_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package libsoxr-dev, or name its place in CMAKE_PREFIX_PATH.")

if(Soxr_FOUND AND NOT TARGET Soxr::soxr)
    add_library(Soxr::soxr UNKNOWN IMPORTED)
    set_target_properties(Soxr::soxr PROPERTIES
        IMPORTED_LOCATION "${Soxr_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Soxr_INCLUDE_DIR}")
endif()
