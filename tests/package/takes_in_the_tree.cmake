# SPDX-License-Identifier: Apache-2.0
# Variables: SOURCE, FOLDER.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
configure(${CMAKE_CURRENT_LIST_DIR}/subproject ${FOLDER} / -DTRELLANT_SOURCE=${SOURCE})
if(EXISTS ${FOLDER}/CPackConfig.cmake)
    message(FATAL_ERROR "our package is made in another project's build")
endif()
run(${CMAKE_COMMAND} --install ${FOLDER} --prefix ${FOLDER}/installed)
if(EXISTS ${FOLDER}/installed)
    message(FATAL_ERROR "our files are installed with another project's")
endif()
