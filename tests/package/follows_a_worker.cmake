# SPDX-License-Identifier: Apache-2.0
# The host is put beside the staged worker, where the client looks by itself.
# Variables: PREFIX, FOLDER, EXAMPLES.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
set(project ${CMAKE_CURRENT_LIST_DIR}/host)
build_outside(${project} ${FOLDER} ${PREFIX})
run(${CMAKE_COMMAND} --install ${FOLDER} --prefix ${PREFIX})
expect_output(${project}/expected.txt
    ${PREFIX}/bin/follow_worker ${EXAMPLES}/session.omf ${FOLDER}/audio)
