# SPDX-License-Identifier: Apache-2.0
# The packages of debug symbols come with the packager's own folders in their list of digests: no tool
# can check them so, and no two builds give the same bytes. Their folders follow the packager's mask.
# Run by CPack with the packages made in CPACK_PACKAGE_FILES.
find_program(dpkg_deb dpkg-deb)
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(NOT package MATCHES "[.]ddeb$" OR NOT dpkg_deb)
        continue()
    endif()
    set(folder ${package}-mended)
    file(REMOVE_RECURSE ${folder})
    execute_process(COMMAND ${dpkg_deb} --raw-extract ${package} ${folder} COMMAND_ERROR_IS_FATAL ANY)
    file(READ ${folder}/DEBIAN/md5sums digests)
    string(REGEX REPLACE "  [^\n]*/usr/lib/debug/" "  usr/lib/debug/" digests "${digests}")
    file(WRITE ${folder}/DEBIAN/md5sums "${digests}")
    file(CHMOD_RECURSE ${folder} DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
        GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
    execute_process(
        COMMAND ${dpkg_deb} --root-owner-group -Zgzip --build ${folder} ${package}
        OUTPUT_QUIET COMMAND_ERROR_IS_FATAL ANY)
    file(REMOVE_RECURSE ${folder})
endforeach()
