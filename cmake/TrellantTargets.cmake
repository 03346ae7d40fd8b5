# One way to make a target: the same warnings, sanitizers and tidy for all.

set(TRELLANT_WARNINGS
    -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast -Wcast-align
    -Wcast-qual -Wnon-virtual-dtor -Woverloaded-virtual -Wnull-dereference -Wdouble-promotion
    -Wformat=2 -Wimplicit-fallthrough -Wmissing-declarations -Wextra-semi -Wundef -Wswitch-enum)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    list(APPEND TRELLANT_WARNINGS -Wduplicated-cond -Wduplicated-branches -Wlogical-op)
endif()

function(trellant_target_settings target)
    target_compile_options(${target} PRIVATE ${TRELLANT_WARNINGS})
    if(TRELLANT_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
    if(TRELLANT_HARDEN)
        # Undefined first: some compilers set a level of their own.
        target_compile_options(${target} PRIVATE -fstack-protector-strong -U_FORTIFY_SOURCE
            -D_FORTIFY_SOURCE=2)
        target_link_options(${target} PRIVATE -Wl,-z,relro,-z,now)
    endif()
    if(TRELLANT_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${TRELLANT_SANITIZE}
            -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${TRELLANT_SANITIZE})
    endif()
    if(TRELLANT_TIDY)
        set_target_properties(${target} PROPERTIES CXX_CLANG_TIDY "clang-tidy;--warnings-as-errors=*")
    endif()
endfunction()

# trellant_library(NAME HEADERS ... SOURCES ... [DEPENDS ...] [PRIVATE_DEPENDS ...])
# The library trellant_NAME of this folder. HEADERS are public, below include/, and each must
# compile alone; private headers stand beside the sources.
function(trellant_library name)
    cmake_parse_arguments(ARG "" "" "HEADERS;SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
    set(target trellant_${name})
    add_library(${target} STATIC ${ARG_SOURCES})
    add_library(trellant::${name} ALIAS ${target})
    list(TRANSFORM ARG_HEADERS PREPEND include/trellant/${name}/)
    target_sources(${target} PUBLIC FILE_SET HEADERS BASE_DIRS include FILES ${ARG_HEADERS})
    set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
    target_link_libraries(${target} PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE_DEPENDS})
    trellant_target_settings(${target})
endfunction()
