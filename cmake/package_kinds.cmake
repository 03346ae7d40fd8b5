# SPDX-License-Identifier: Apache-2.0
# Read once for each kind of package that is made. The Debian kind takes the symbols off by itself, into
# a package of their own, and must find them for that. Its packages have summaries of their own, which
# the project's would stand before.
if(CPACK_GENERATOR STREQUAL "DEB")
    set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")
    if(CPACK_DEBIAN_COMMAND_DEBUGINFO_PACKAGE)
        set(CPACK_STRIP_FILES OFF)
    endif()
endif()
