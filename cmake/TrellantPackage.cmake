# SPDX-License-Identifier: Apache-2.0
# The packages: `cpack` in the build folder, or the preset `package`. One archive with everything
# (.tar.gz), and Debian packages by component: the command, what hosts are built with, documents, the
# Python package, and the shared libraries where there are some. Programs in them are stripped; their debug symbols make a
# package of their own (.ddeb), found by build-id.
set(TRELLANT_PACKAGE_MAINTAINER "Trellant <maintainers@trellant.invalid>" CACHE STRING
    "Whom packages name as their maintainer, with an address")

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME trellant)
set(CPACK_PACKAGE_VENDOR Trellant)
set(CPACK_PACKAGE_CONTACT "${TRELLANT_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_PACKAGE_FILE_NAME
    "trellant-${PROJECT_VERSION}-${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_STRIP_FILES ON)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_LIST_DIR}/package_kinds.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian_files.cmake
    ${CMAKE_CURRENT_LIST_DIR}/package_folders.cmake)
set(CPACK_THREADS 0)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL command development documentation python)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${TRELLANT_PACKAGE_MAINTAINER}")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# For debian_files.cmake.
set(CPACK_TRELLANT_DEBIAN ${PROJECT_SOURCE_DIR}/packaging/debian)
set(CPACK_TRELLANT_CHANGELOG ${PROJECT_SOURCE_DIR}/CHANGELOG.md)
set(trellant_this_version "(= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME trellant)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SUGGESTS libtrellant-doc)
set(CPACK_COMPONENT_COMMAND_DESCRIPTION "looks into OMF files and writes sessions for today's tools
The command trellant lists what is in OMF 2.x files, takes their audio out,
writes them as AAF, OTIO, REAPER or DAWproject sessions and says what could
not be carried over.
With the worker trellant-omf, which reads a file into an exact timeline, and
trellant-wav, which writes WAVE files.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libtrellant-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "trellant ${trellant_this_version}")
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS libtrellant-doc)
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "libraries that read OMF files, for C++ hosts
Headers and libraries by which a program runs the worker trellant-omf, or
reads OMF 2.x files in its own process, or writes them as sessions of other
tools, and the JSON schemas of the messages between host and worker.
To be found by CMake and pkg-config.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libtrellant-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "documents and examples of Trellant
How a host embeds the reader of OMF files, its messages field by field, how
it is built and what it costs, and three small compositions to try it on.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-trellant)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
# Every machine's worker of this version on serves it, whatever was built anew for that machine.
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
    "python3 (>= 3.9), trellant (>= ${PROJECT_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE})")
set(CPACK_DEBIAN_PYTHON_PACKAGE_SUGGESTS libtrellant-doc)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA
    ${PROJECT_SOURCE_DIR}/packaging/debian/python3-trellant/postinst
    ${PROJECT_SOURCE_DIR}/packaging/debian/python3-trellant/prerm)
set(CPACK_COMPONENT_PYTHON_DESCRIPTION "reads OMF files from Python
The package trellant starts the worker trellant-omf and gives what is in OMF
2.x files as typed dataclasses whose times are exact fractions.
With progress, cancellation, limits and typed errors.")

# All of it was one package before.
foreach(component DEVELOPMENT DOCUMENTATION)
    set(CPACK_DEBIAN_${component}_PACKAGE_BREAKS "trellant (<< 0.2.0)")
    set(CPACK_DEBIAN_${component}_PACKAGE_REPLACES "trellant (<< 0.2.0)")
endforeach()

set(trellant_components_with_programs COMMAND)
if(BUILD_SHARED_LIBS)
    list(APPEND CPACK_COMPONENTS_ALL libraries)
    list(APPEND trellant_components_with_programs LIBRARIES)
    set(trellant_libraries_package libtrellant${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    set(CPACK_DEBIAN_LIBRARIES_PACKAGE_NAME ${trellant_libraries_package})
    set(CPACK_DEBIAN_LIBRARIES_PACKAGE_SECTION libs)
    set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
    # Where what is packed apart is looked up while it is found out what a program needs.
    foreach(library IN LISTS trellant_libraries)
        get_target_property(folder trellant_${library} BINARY_DIR)
        list(APPEND CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${folder})
    endforeach()
    set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "${trellant_libraries_package} ${trellant_this_version}")
    set(CPACK_COMPONENT_LIBRARIES_DESCRIPTION "shared libraries that read OMF files
The libraries behind the command trellant and the worker trellant-omf.")
else()
    # Hosts that link the archives link them too; running the command takes nothing of them.
    string(APPEND CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS ", libutf8proc-dev, nettle-dev")
    # What those link that write sessions.
    set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS "libminizip-dev, libpugixml-dev, libsqlite3-dev, zlib1g-dev")
endif()

find_program(TRELLANT_SHLIBDEPS dpkg-shlibdeps)
# What tells stripped programs from others is not on every machine.
find_program(TRELLANT_FILE file)
mark_as_advanced(TRELLANT_SHLIBDEPS TRELLANT_FILE)
foreach(component IN LISTS trellant_components_with_programs)
    if(BUILD_SHARED_LIBS OR NOT TRELLANT_STATIC_WORKER OR TRELLANT_COMMAND)
        # The libraries of the machine that something is linked with: a self-contained worker has none,
        # the converter of audio files always some.
        if(TRELLANT_SHLIBDEPS AND TRELLANT_FILE)
            set(CPACK_DEBIAN_${component}_PACKAGE_SHLIBDEPS ON)
        else()
            string(APPEND CPACK_DEBIAN_${component}_PACKAGE_DEPENDS " libc6, libstdc++6")
        endif()
    endif()
    if((TRELLANT_DEBUG_SYMBOLS OR CMAKE_BUILD_TYPE MATCHES "Deb") AND TRELLANT_FILE AND CMAKE_OBJCOPY)
        set(CPACK_DEBIAN_${component}_DEBUGINFO_PACKAGE ON)
        set(CPACK_POST_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/mend_symbol_packages.cmake)
    endif()
endforeach()
include(CPack)
