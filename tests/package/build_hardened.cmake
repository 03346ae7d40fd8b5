# SPDX-License-Identifier: Apache-2.0
# Builds the worker and the converter as a release has them. Variables: SOURCE, FOLDER.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER} -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_BUILD_TYPE=Release
    -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON -DTRELLANT_HARDEN=ON -DTRELLANT_WERROR=OFF
    -DBUILD_TESTING=OFF)
run(${CMAKE_COMMAND} --build ${FOLDER} --parallel 2 --target trellant-omf trellant-wav)
