# SPDX-License-Identifier: Apache-2.0
# What Debian wants in a package and a plain installation has otherwise: compressed manual pages, and
# for each package its copyright, its changelogs and its exceptions from the checks of lintian.
# Run by CPack when the files of all packages are in place, each component's in a folder of its own.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()
find_program(gzip gzip REQUIRED)
set(for_all OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)

# compress(FILE TO): the same bytes at any time.
function(compress file to)
    execute_process(COMMAND ${gzip} --best --no-name --stdout ${file} OUTPUT_FILE ${to}
        COMMAND_ERROR_IS_FATAL ANY)
    file(CHMOD ${to} PERMISSIONS ${for_all})
endfunction()

function(copy file to)
    configure_file(${file} ${to} COPYONLY FILE_PERMISSIONS ${for_all})
endfunction()

foreach(component IN LISTS CPACK_COMPONENTS_ALL)
    string(TOUPPER ${component} key)
    set(package ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
    set(share ${CPACK_TEMPORARY_DIRECTORY}/${component}${CPACK_PACKAGING_INSTALL_PREFIX}/share)
    set(documents ${share}/doc/${package})
    file(MAKE_DIRECTORY ${documents})

    file(GLOB pages ${share}/man/man[1-9]/*.[1-9])
    foreach(page IN LISTS pages)
        compress(${page} ${page}.gz)
        file(REMOVE ${page})
    endforeach()

    # The copyright says where every Debian system has the licence's text.
    file(REMOVE ${documents}/LICENSE)
    copy(${CPACK_TRELLANT_DEBIAN}/copyright ${documents}/copyright)
    compress(${CPACK_TRELLANT_CHANGELOG} ${documents}/changelog.gz)
    compress(${CPACK_TRELLANT_DEBIAN}/changelog ${documents}/changelog.Debian.gz)

    set(exceptions ${CPACK_TRELLANT_DEBIAN}/${package}.lintian-overrides)
    if(EXISTS ${exceptions})
        copy(${exceptions} ${share}/lintian/overrides/${package})
    endif()
endforeach()
