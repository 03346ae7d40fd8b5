# SPDX-License-Identifier: Apache-2.0
# Variables: BUILD, FOLDER.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(REMOVE_RECURSE ${FOLDER})
run(${CPACK} --config ${BUILD}/CPackConfig.cmake -B ${FOLDER})
