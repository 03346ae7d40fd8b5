# SPDX-License-Identifier: Apache-2.0
# Variables: PREFIX, FOLDER, EXAMPLES.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
set(project ${CMAKE_CURRENT_LIST_DIR}/reader)
build_outside(${project} ${FOLDER} ${PREFIX} -DCOMPONENT=reader)
expect_output(${project}/expected.txt
    ${FOLDER}/read_omf ${EXAMPLES}/archive.omf ${EXAMPLES}/README.md)
