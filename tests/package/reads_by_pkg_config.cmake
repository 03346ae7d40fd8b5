# SPDX-License-Identifier: Apache-2.0
# The same program, built without CMake, and one that takes audio out. Variables: KIND, PREFIX, LIBRARIES,
# FOLDER, EXAMPLES, PKG_CONFIG.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
set(project ${CMAKE_CURRENT_LIST_DIR}/reader)
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBRARIES}/pkgconfig)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})

run(${PKG_CONFIG} --modversion trellant)
string(STRIP "${run_output}" version)
run(${PKG_CONFIG} --cflags --libs trellant)
separate_arguments(flags UNIX_COMMAND "${run_output}")
run(${COMPILER} -std=c++20 -DPACKAGE_VERSION="${version}" ${project}/read_omf.cpp
    -o ${FOLDER}/read_omf ${flags} -Wl,-rpath,${PREFIX}/${LIBRARIES})
expect_output(${project}/expected.txt
    ${FOLDER}/read_omf ${EXAMPLES}/archive.omf ${EXAMPLES}/README.md)

run(${PKG_CONFIG} --variable=workerdir trellant)
string(STRIP "${run_output}" workers)
if(NOT EXISTS ${workers}/trellant-omf)
    message(FATAL_ERROR "workerdir is ${workers}, where no worker lies")
endif()

# Its checksums are another library's work, which static linking has to be told of. The shared libraries
# are staged without the command, and so without what takes audio out.
set(project ${CMAKE_CURRENT_LIST_DIR}/extractor)
if(KIND STREQUAL "Static")
    run(${COMPILER} -std=c++20 ${project}/take_out.cpp -o ${FOLDER}/take_out ${flags}
        -Wl,-rpath,${PREFIX}/${LIBRARIES})
    file(MAKE_DIRECTORY ${FOLDER}/audio)
    expect_output(${project}/expected.txt
        ${FOLDER}/take_out ${workers}/trellant-omf ${EXAMPLES}/archive.omf ${FOLDER}/audio)
endif()

run(${PKG_CONFIG} --variable=schemadir trellant)
string(STRIP "${run_output}" folder)
if(NOT EXISTS ${folder}/request.schema.json)
    message(FATAL_ERROR "schemadir is ${folder}, where no schema lies")
endif()
