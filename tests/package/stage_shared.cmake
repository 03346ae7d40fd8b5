# SPDX-License-Identifier: Apache-2.0
# Builds everything as shared libraries, quickly, and stages it. Variables: SOURCE, FOLDER, PREFIX.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
run(${CMAKE_COMMAND} -S ${SOURCE} -B ${FOLDER} -G ${GENERATOR} -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_CXX_COMPILER_LAUNCHER=${LAUNCHER} -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0
    -DBUILD_SHARED_LIBS=ON -DBUILD_TESTING=OFF -DTRELLANT_COMMAND=OFF)
run(${CMAKE_COMMAND} --build ${FOLDER} --parallel 2)
stage(${FOLDER} ${PREFIX})
