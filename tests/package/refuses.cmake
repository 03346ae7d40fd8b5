# SPDX-License-Identifier: Apache-2.0
# An outside project that must not configure, and is told why.
# Variables: PREFIX, FOLDER, OPTIONS (parted by blanks), EXPECTED.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(REMOVE_RECURSE ${FOLDER})
separate_arguments(OPTIONS)
execute_process(COMMAND ${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR}/reader -B ${FOLDER}
        -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER} -DCMAKE_PREFIX_PATH=${PREFIX} ${OPTIONS}
    RESULT_VARIABLE status OUTPUT_QUIET ERROR_VARIABLE errors)
if(status EQUAL 0)
    message(FATAL_ERROR "was not refused")
endif()
# CMake breaks long lines as it likes.
string(REGEX REPLACE "[ \n]+" " " errors "${errors}")
string(FIND "${errors}" "${EXPECTED}" place)
if(place EQUAL -1)
    message(FATAL_ERROR "expected:\n${EXPECTED}\nreceived:\n${errors}")
endif()
