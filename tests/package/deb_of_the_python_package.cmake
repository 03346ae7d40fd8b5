# SPDX-License-Identifier: Apache-2.0
# The Debian package of the Python package: its files are those of the sources, and it is compiled when it is installed
# and leaves nothing when it goes. Variables: PACKAGES, FOLDER, SOURCE, VERSION.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER})
file(GLOB package ${PACKAGES}/python3-trellant_*.deb)
run(${DPKG_DEB} -x ${package} ${FOLDER}/unpacked)
run(${DPKG_DEB} -e ${package} ${FOLDER}/control)

file(GLOB expected RELATIVE ${SOURCE}/python ${SOURCE}/python/trellant/*.py ${SOURCE}/python/trellant/py.typed)
list(APPEND expected trellant-${VERSION}.dist-info/METADATA)
list(SORT expected)
set(packages ${FOLDER}/unpacked/usr/lib/python3/dist-packages)
file(GLOB_RECURSE held RELATIVE ${packages} ${packages}/*)
list(SORT held)
expect_equal("files of the Python package" "${held}" "${expected}")
foreach(module IN LISTS expected)
    if(module MATCHES "[.]py$")
        file(READ ${SOURCE}/python/${module} source)
        file(READ ${packages}/${module} packed)
        expect_equal("${module}" "${packed}" "${source}")
    endif()
endforeach()
file(GLOB folders RELATIVE ${FOLDER}/unpacked/usr ${FOLDER}/unpacked/usr/*)
expect_equal("folders of the Python package" "${folders}" "lib;share")

file(GLOB scripts RELATIVE ${FOLDER}/control ${FOLDER}/control/p*)
expect_equal("scripts of the Python package" "${scripts}" "postinst;prerm")
