# SPDX-License-Identifier: Apache-2.0
# One way to make a target: the same warnings, hardening, sanitizers and tidy for all.
include(${CMAKE_CURRENT_LIST_DIR}/TrellantSupply.cmake)

set(TRELLANT_WARNINGS
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-align
    -Wcast-qual -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference -Wdouble-promotion
    -Wformat=2 -Wimplicit-fallthrough -Wmissing-declarations -Wextra-semi -Wundef -Wswitch-enum)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND TRELLANT_WARNINGS -Wduplicated-cond -Wduplicated-branches -Wlogical-op)
    if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # At -O3 it takes its own library's insertions into strings for copies of overlapping ranges
        # (GCC bug 105651, mended in 13).
        list(APPEND TRELLANT_WARNINGS $<$<CONFIG:Release>:-Wno-restrict>)
    endif()
endif()

# Installed files find one another from where they lie, so that a prefix can be moved.
set(TRELLANT_ORIGIN "$ORIGIN")
if(APPLE)
    set(TRELLANT_ORIGIN "@loader_path")
endif()
file(RELATIVE_PATH TRELLANT_LIBRARIES_FROM_WORKER ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})

function(trellant_target_settings target)
    target_compile_options(${target} PRIVATE ${TRELLANT_WARNINGS})
    if(TRELLANT_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    # A shared library shows what its public headers declare, nothing else.
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON
        CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
    target_compile_options(${target} PRIVATE ${TRELLANT_RELEASE_COMPILE})
    target_link_options(${target} PRIVATE ${TRELLANT_RELEASE_LINK})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        target_link_options(${target} PRIVATE ${TRELLANT_RELEASE_PROGRAM})
    endif()
    if(TRELLANT_SANITIZE)
        # Not the check of dynamic types: it makes a pipe to look at memory, and where a test has taken
        # all descriptors away it accuses objects that are in order.
        target_compile_options(${target} PRIVATE -fsanitize=${TRELLANT_SANITIZE}
            -fno-sanitize=vptr -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${TRELLANT_SANITIZE})
    endif()
    if(TRELLANT_TIDY)
        set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY "clang-tidy;--warnings-as-errors=*")
    endif()
endfunction()

# trellant_library(NAME HEADERS ... SOURCES ... [DEPENDS ...] [PRIVATE_DEPENDS ...])
# The library trellant_NAME of this folder, trellant::NAME to others; static or shared as
# BUILD_SHARED_LIBS says. HEADERS are public, below include/, and each must compile alone; private
# headers stand beside the sources. The global property TRELLANT_LIBRARIES lists them all, lower ones
# first: they are what is installed and what the pages of the headers show.
function(trellant_library name)
    cmake_parse_arguments(ARG "" "" "HEADERS;SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
    set(target trellant_${name})
    add_library(${target} ${ARG_SOURCES})
    add_library(trellant::${name} ALIAS ${target})
    list(TRANSFORM ARG_HEADERS PREPEND include/trellant/${name}/)
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${ARG_HEADERS})
    set_target_properties(${target} PROPERTIES EXPORT_NAME ${name} VERIFY_INTERFACE_HEADER_SETS ON
        VERSION ${trellant_VERSION} SOVERSION ${trellant_VERSION_MAJOR}.${trellant_VERSION_MINOR})
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_link_libraries(${target} PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE_DEPENDS})
    trellant_target_settings(${target})
    set_property(GLOBAL APPEND PROPERTY TRELLANT_LIBRARIES ${name})
    if(BUILD_SHARED_LIBS)
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "${TRELLANT_ORIGIN}")
        if(NOT APPLE AND NOT TRELLANT_SANITIZE)
            target_link_options(${target} PRIVATE -Wl,--no-undefined)
        endif()
    elseif(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_INTERPROCEDURAL_OPTIMIZATION)
        # An installed archive must also serve hosts that another compiler builds.
        target_compile_options(${target} PRIVATE -ffat-lto-objects)
    endif()
endfunction()
