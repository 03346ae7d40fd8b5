# SPDX-License-Identifier: Apache-2.0
# GoogleTest as the targets GTest::gtest, GTest::gtest_main and GTest::gmock: the installed one, or
# built from TRELLANT_GTEST_SOURCE for a compiler with another standard library or for another
# processor.
set(TRELLANT_GTEST_SOURCE "" CACHE PATH "Folder of GoogleTest's sources; empty: the installed one is used")

if(TRELLANT_GTEST_SOURCE AND NOT TARGET gtest)
    set(INSTALL_GTEST OFF)
    add_subdirectory(${TRELLANT_GTEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
elseif(NOT TRELLANT_GTEST_SOURCE)
    find_package(GTest REQUIRED)
endif()
