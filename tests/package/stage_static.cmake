# SPDX-License-Identifier: Apache-2.0
# Stages what this build tree made. Variables: BUILD, PREFIX.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
stage(${BUILD} ${PREFIX})
