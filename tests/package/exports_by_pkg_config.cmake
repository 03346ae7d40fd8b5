# SPDX-License-Identifier: Apache-2.0
# The programs of docs/exports.md, built without CMake. Variables: PAGE, PREFIX, LIBRARIES, FOLDER,
# PKG_CONFIG.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
set(ENV{PKG_CONFIG_PATH} ${PREFIX}/${LIBRARIES}/pkgconfig)
file(REMOVE_RECURSE ${FOLDER})
file(READ ${PAGE} page)

run(${PKG_CONFIG} --modversion trellant-export)
set(version "${run_output}")
run(${PKG_CONFIG} --modversion trellant)
expect_equal("version of trellant-export" "${version}" "${run_output}")
run(${PKG_CONFIG} --cflags --libs trellant-export)
separate_arguments(flags UNIX_COMMAND "${run_output}")
foreach(program export_session plan_session)
    take_file("${page}" ${program}.cpp ${FOLDER}/${program}.cpp)
    run(${COMPILER} -std=c++20 ${FOLDER}/${program}.cpp -o ${FOLDER}/${program} ${flags}
        -Wl,-rpath,${PREFIX}/${LIBRARIES})
endforeach()
