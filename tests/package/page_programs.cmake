# SPDX-License-Identifier: Apache-2.0
# Builds and runs what a page of docs shows, as it stands there: its files, then each console block,
# whose output must be the page's. Variables: PAGE, FILES (parted by blanks), PREFIX, FOLDER, EXAMPLES.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(REMOVE_RECURSE ${FOLDER})
file(READ ${PAGE} page)

separate_arguments(FILES)
foreach(name IN LISTS FILES)
    take_file("${page}" ${name} ${FOLDER}/${name})
endforeach()
build_outside(${FOLDER} ${FOLDER}/build ${PREFIX})
file(COPY ${EXAMPLES}/session.omf DESTINATION ${FOLDER})

set(runs 0)
set(rest "${page}")
string(FIND "${rest}" "```console\n" place)
while(NOT place EQUAL -1)
    take_block("${rest}" "```console\n")
    string(REGEX MATCH "^\\$ ([^\n]+)\n" line "${block}")
    separate_arguments(command UNIX_COMMAND "${CMAKE_MATCH_1}")
    string(LENGTH "${line}" length)
    string(SUBSTRING "${block}" ${length} -1 expected)
    execute_process(COMMAND ${command} WORKING_DIRECTORY ${FOLDER}
        OUTPUT_VARIABLE output ERROR_VARIABLE output)
    expect_equal("${line}" "${output}" "${expected}")
    math(EXPR runs "${runs} + 1")
    string(FIND "${rest}" "```console\n" place)
endwhile()
if(runs EQUAL 0)
    message(FATAL_ERROR "the page runs nothing")
endif()
