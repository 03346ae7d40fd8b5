# SPDX-License-Identifier: Apache-2.0
# What a release is compiled and linked with beyond the rest: guards against misuse of its memory,
# symbols for debuggers, and whatever makes two builds of the same sources the same bytes, wherever
# they lie and whenever they are made (SOURCE_DATE_EPOCH gives packages their time).
#
# TRELLANT_RELEASE_COMPILE, TRELLANT_RELEASE_LINK: options for each target, lists.
# TRELLANT_RELEASE_PROGRAM: options for linking an executable, before those of its own.
include(CheckCXXCompilerFlag)

option(TRELLANT_CFI "Check what is called indirectly by its type (clang, across folders)" OFF)
option(TRELLANT_DEBUG_SYMBOLS "Compile with debug symbols; packages carry them apart" ${TRELLANT_HARDEN})

set(TRELLANT_RELEASE_COMPILE "")
set(TRELLANT_RELEASE_LINK "")
set(TRELLANT_RELEASE_PROGRAM "")
if(TRELLANT_HARDEN)
    # The level where lengths that are known only at run time are checked too.
    set(trellant_fortify 2)
    if((CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_GREATER_EQUAL 12)
            OR CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        set(trellant_fortify 3)
    endif()
    # Undefined first: some compilers set a level of their own.
    list(APPEND TRELLANT_RELEASE_COMPILE -fstack-protector-strong -U_FORTIFY_SOURCE
        -D_FORTIFY_SOURCE=${trellant_fortify})
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        check_cxx_compiler_flag(-fstack-clash-protection TRELLANT_GUARDS_AGAINST_STACK_CLASH)
        if(TRELLANT_GUARDS_AGAINST_STACK_CLASH)
            list(APPEND TRELLANT_RELEASE_COMPILE -fstack-clash-protection)
        endif()
        # A processor acts on these only where every library of a program has them, the C library
        # too; the code is ready for it. Not beside clang's check: the tables of calls that clang 14
        # makes for it miss the marks by some bytes.
        if(TRELLANT_CFI)
            list(APPEND TRELLANT_RELEASE_COMPILE -fcf-protection=none)
        elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|i[3-6]86)$")
            list(APPEND TRELLANT_RELEASE_COMPILE -fcf-protection=full)
        elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
            list(APPEND TRELLANT_RELEASE_COMPILE -mbranch-protection=standard)
        endif()
        list(APPEND TRELLANT_RELEASE_LINK -Wl,-z,relro,-z,now,-z,noexecstack)
        list(APPEND TRELLANT_RELEASE_PROGRAM -pie)
    endif()
endif()
if(TRELLANT_CFI)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang" OR NOT CMAKE_INTERPROCEDURAL_OPTIMIZATION)
        message(FATAL_ERROR "TRELLANT_CFI takes clang and CMAKE_INTERPROCEDURAL_OPTIMIZATION")
    endif()
    list(APPEND TRELLANT_RELEASE_COMPILE -fsanitize=cfi -fvisibility=hidden)
    list(APPEND TRELLANT_RELEASE_LINK -fsanitize=cfi -fuse-ld=lld)
endif()
if(TRELLANT_DEBUG_SYMBOLS)
    list(APPEND TRELLANT_RELEASE_COMPILE -g)
    if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
        # By this number a debugger finds the symbols of a stripped program.
        list(APPEND TRELLANT_RELEASE_LINK -Wl,--build-id=sha1)
    endif()
endif()

if(CMAKE_BUILD_TYPE STREQUAL "Release")
    # No name of a folder of this machine; of two that fit, the later counts.
    set(trellant_no_folders -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
        -ffile-prefix-map=${PROJECT_BINARY_DIR}=./build)
    list(APPEND TRELLANT_RELEASE_COMPILE ${trellant_no_folders})
    if(CMAKE_INTERPROCEDURAL_OPTIMIZATION)
        list(APPEND TRELLANT_RELEASE_LINK ${trellant_no_folders})
    endif()
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # Names that must be unique in a program are drawn by chance otherwise.
        string(REPLACE "<FLAGS>" "<FLAGS> -frandom-seed=<OBJECT>" CMAKE_CXX_COMPILE_OBJECT
            "${CMAKE_CXX_COMPILE_OBJECT}")
        list(APPEND TRELLANT_RELEASE_LINK -frandom-seed=trellant)
    endif()
endif()
