# SPDX-License-Identifier: Apache-2.0
# The distribution's checks of packages, where they are installed. Exceptions stand with their reasons in
# packaging/debian. Variables: PACKAGES, LINTIAN.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
if(NOT LINTIAN)
    message(NOTICE "Skipped: lintian is not installed.")
    return()
endif()
file(GLOB packages ${PACKAGES}/*.deb)
run(${LINTIAN} --allow-root --tag-display-limit 0 --fail-on error,warning ${packages})
expect_equal("findings" "${run_output}" "")
