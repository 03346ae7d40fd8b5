# One package, as .deb and as .tar.gz: `cpack` in the build folder, or the preset `package`. Programs in
# it are stripped; their debug symbols make a package of their own (.ddeb), found by build-id.
set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME trellant)
set(CPACK_PACKAGE_VENDOR Trellant)
set(CPACK_PACKAGE_CONTACT Trellant)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGE_DESCRIPTION
    "The command trellant looks into OMF files, takes their audio out and tells what could not be
carried over. With the worker trellant-omf behind it, and the C++ libraries by which a host runs the
worker or reads files itself.")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_PACKAGE_FILE_NAME
    "trellant-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/package_kinds.cmake)
set(CPACK_THREADS 0)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER Trellant)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
find_program(TRELLANT_SHLIBDEPS dpkg-shlibdeps)
mark_as_advanced(TRELLANT_SHLIBDEPS)
if(BUILD_SHARED_LIBS OR NOT TRELLANT_STATIC_WORKER OR TRELLANT_COMMAND)
    # The libraries of the machine that something is linked with: a self-contained worker has none,
    # the converter of audio files always some.
    if(TRELLANT_SHLIBDEPS)
        set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    else()
        set(CPACK_DEBIAN_PACKAGE_DEPENDS "libc6, libstdc++6")
    endif()
endif()
# What tells stripped programs from others is not on every machine.
find_program(TRELLANT_FILE file)
mark_as_advanced(TRELLANT_FILE)
if((TRELLANT_DEBUG_SYMBOLS OR CMAKE_BUILD_TYPE MATCHES "Deb") AND TRELLANT_FILE AND CMAKE_OBJCOPY)
    set(CPACK_DEBIAN_DEBUGINFO_PACKAGE ON)
    set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/mend_symbol_packages.cmake)
endif()
if(BUILD_SHARED_LIBS)
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
else()
    # Hosts that link the archives link it too; running the worker takes nothing.
    set(CPACK_DEBIAN_PACKAGE_RECOMMENDS libutf8proc-dev)
endif()
include(CPack)
