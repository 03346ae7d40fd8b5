# SPDX-License-Identifier: Apache-2.0
# Debian's cross compiler for s390x and the emulator that runs what it makes. TRELLANT_SYSROOT names a
# folder with the libraries of that architecture; scripts/portability fills one.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR s390x)
set(CMAKE_C_COMPILER s390x-linux-gnu-gcc)
set(CMAKE_CXX_COMPILER s390x-linux-gnu-g++)
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-s390x-static;-L;/usr/s390x-linux-gnu)
set(CMAKE_LIBRARY_ARCHITECTURE s390x-linux-gnu)
set(CMAKE_TRY_COMPILE_PLATFORM_VARIABLES TRELLANT_SYSROOT)
set(CMAKE_FIND_ROOT_PATH ${TRELLANT_SYSROOT} /usr/s390x-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
