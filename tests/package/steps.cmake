# SPDX-License-Identifier: Apache-2.0
# What the package tests share. They run in a locale of their own, so that texts are English.
set(ENV{LC_ALL} C)
set(ENV{LANGUAGE} "")

# run(COMMAND...): the command must succeed; its standard output is `run_output` afterwards.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE status OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT status EQUAL 0)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "${command}\nended with ${status}:\n${output}${errors}")
    endif()
    set(run_output "${output}" PARENT_SCOPE)
endfunction()

# Fails unless the two texts are equal; `what` says where they come from.
function(expect_equal what received expected)
    if(NOT received STREQUAL expected)
        message(FATAL_ERROR "${what}\nexpected:\n${expected}\nreceived:\n${received}")
    endif()
endfunction()

# The output of a command must be the file's content, byte for byte.
function(expect_output file)
    run(${ARGN})
    file(READ ${file} expected)
    list(JOIN ARGN " " command)
    expect_equal("${command}" "${run_output}" "${expected}")
endfunction()

# configure(SOURCE FOLDER PREFIX [OPTION...]): an outside project that finds the package at PREFIX.
macro(configure source folder prefix)
    file(REMOVE_RECURSE ${folder})
    run(${CMAKE_COMMAND} -S ${source} -B ${folder} -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
        -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_CXX_FLAGS=-Werror\ -Wall\ -Wextra
        -DCMAKE_PREFIX_PATH=${prefix} ${ARGN})
endmacro()

function(build_outside source folder prefix)
    configure(${source} ${folder} ${prefix} ${ARGN})
    run(${CMAKE_COMMAND} --build ${folder})
endfunction()

# stage(BUILD PREFIX): installs, then moves the whole tree: nothing in it may know where it was.
function(stage build prefix)
    file(REMOVE_RECURSE ${prefix} ${prefix}-before)
    run(${CMAKE_COMMAND} --install ${build} --prefix ${prefix}-before)
    file(RENAME ${prefix}-before ${prefix})
endfunction()

# The fenced block behind `opening`, as `block`; `rest` is the page behind it.
function(take_block text opening)
    string(FIND "${text}" "${opening}" place)
    if(place EQUAL -1)
        message(FATAL_ERROR "the page has no \"${opening}\"")
    endif()
    string(LENGTH "${opening}" length)
    math(EXPR place "${place} + ${length}")
    string(SUBSTRING "${text}" ${place} -1 text)
    string(FIND "${text}" "```" end)
    string(SUBSTRING "${text}" 0 ${end} content)
    math(EXPR end "${end} + 3")
    string(SUBSTRING "${text}" ${end} -1 text)
    set(block "${content}" PARENT_SCOPE)
    set(rest "${text}" PARENT_SCOPE)
endfunction()

# Writes the file that a page of docs shows under this name.
function(take_file page name file)
    string(REGEX MATCH "`${name}`:\n\n```[a-z]+\n" opening "${page}")
    take_block("${page}" "${opening}")
    file(WRITE ${file} "${block}")
endfunction()
