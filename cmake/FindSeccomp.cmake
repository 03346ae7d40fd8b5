# libseccomp as the target Seccomp::seccomp: its archive where there is one, so that the worker stays
# self-contained.
find_path(Seccomp_INCLUDE_DIR seccomp.h)
find_library(Seccomp_LIBRARY
    NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}seccomp${CMAKE_STATIC_LIBRARY_SUFFIX} seccomp)
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
