# SPDX-License-Identifier: Apache-2.0
# The package of the command, unpacked alone: it runs, and has nothing that only hosts are built with.
# Variables: PACKAGES, FOLDER, EXAMPLES.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
file(GLOB package ${PACKAGES}/trellant_*.deb)
run(${DPKG_DEB} -x ${package} ${FOLDER}/unpacked)
set(prefix ${FOLDER}/unpacked/usr)

run(${prefix}/bin/trellant info ${EXAMPLES}/archive.omf --json)
string(JSON name GET "${run_output}" composition)
expect_equal("composition that the command shows" "${name}" "Café")
run(${prefix}/bin/trellant extract ${EXAMPLES}/archive.omf --to ${FOLDER}/taken --wav)
if(NOT EXISTS "${FOLDER}/taken/Reel 7 transfer.wav")
    message(FATAL_ERROR "the command wrote no WAVE")
endif()

file(GLOB_RECURSE foreign RELATIVE ${prefix} ${prefix}/*.h ${prefix}/*.a ${prefix}/*.cmake ${prefix}/*.pc
    ${prefix}/*.schema.json ${prefix}/*.md)
expect_equal("files for hosts among those of the command" "${foreign}" "")
file(GLOB folders RELATIVE ${prefix} ${prefix}/*)
expect_equal("folders of the command" "${folders}" "bin;libexec;share")
