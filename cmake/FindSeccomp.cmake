# SPDX-License-Identifier: Apache-2.0
# libseccomp as the target Seccomp::seccomp: with Seccomp_USE_STATIC_LIBS its archive where there is one, else
# whatever the linker would take.
find_path(Seccomp_INCLUDE_DIR seccomp.h)
set(Seccomp_NAMES seccomp)
if(Seccomp_USE_STATIC_LIBS)
    list(PREPEND Seccomp_NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}seccomp${CMAKE_STATIC_LIBRARY_SUFFIX})
endif()
find_library(Seccomp_LIBRARY NAMES ${Seccomp_NAMES})
mark_as_advanced(Seccomp_INCLUDE_DIR Seccomp_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(Seccomp
    REQUIRED_VARS Seccomp_LIBRARY Seccomp_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package libseccomp-dev, or name its place in CMAKE_PREFIX_PATH.")

if(Seccomp_FOUND AND NOT TARGET Seccomp::seccomp)
    # Global: programs in other folders link what is built on it.
    add_library(Seccomp::seccomp UNKNOWN IMPORTED GLOBAL)
    set_target_properties(Seccomp::seccomp PROPERTIES
        IMPORTED_LOCATION "${Seccomp_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${Seccomp_INCLUDE_DIR}")
endif()
