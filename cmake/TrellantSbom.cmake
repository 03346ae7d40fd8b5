# SPDX-License-Identifier: Apache-2.0
# The list of everything that the installed programs and libraries hold or load that was not written
# here, as SPDX 2.3: sbom.spdx.json among the documents. Versions are those of the machine that
# builds: its packages where it has dpkg, else what the headers say. A library is added here in the
# same step in which it is linked; a test compares with docs/dependencies.md.
find_program(TRELLANT_DPKG_QUERY dpkg-query)
find_path(TRELLANT_NLOHMANN_JSON_DIR nlohmann/json.hpp)
mark_as_advanced(TRELLANT_DPKG_QUERY TRELLANT_NLOHMANN_JSON_DIR)
cmake_host_system_information(RESULT trellant_distribution QUERY DISTRIB_ID)

set(trellant_sbom_packages "")
set(trellant_sbom_relations "")
set(trellant_self_contained "")
set(trellant_programs trellant-omf)
if(TRELLANT_COMMAND)
    list(APPEND trellant_programs trellant trellant-wav)
endif()
if(TRELLANT_STATIC_WORKER AND NOT BUILD_SHARED_LIBS AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(trellant_self_contained trellant-omf trellant)
endif()

function(trellant_sbom_relation from kind to)
    string(APPEND trellant_sbom_relations "${trellant_sbom_comma}
    {\"spdxElementId\": \"SPDXRef-${from}\", \"relationshipType\": \"${kind}\", \"relatedSpdxElement\": \"SPDXRef-${to}\"}")
    set(trellant_sbom_relations "${trellant_sbom_relations}" PARENT_SCOPE)
    set(trellant_sbom_comma "," PARENT_SCOPE)
endfunction()

function(trellant_sbom_package name version licence more)
    string(APPEND trellant_sbom_packages "${trellant_sbom_package_comma}
    {\"name\": \"${name}\", \"SPDXID\": \"SPDXRef-${name}\", \"versionInfo\": \"${version}\",
     \"downloadLocation\": \"NOASSERTION\", \"filesAnalyzed\": false,
     \"licenseConcluded\": \"${licence}\", \"licenseDeclared\": \"${licence}\",
     \"copyrightText\": \"NOASSERTION\"${more}}")
    set(trellant_sbom_packages "${trellant_sbom_packages}" PARENT_SCOPE)
    set(trellant_sbom_package_comma "," PARENT_SCOPE)
endfunction()

# The version of the distribution's package that brought the file, and its name; the given version
# and nothing where that cannot be told.
function(trellant_packaged file version)
    set(packaged_version "${version}" PARENT_SCOPE)
    set(packaged_reference "" PARENT_SCOPE)
    if(NOT TRELLANT_DPKG_QUERY)
        return()
    endif()
    file(REAL_PATH "${file}" file)
    foreach(place "${file}" "/usr${file}")
        execute_process(COMMAND ${TRELLANT_DPKG_QUERY} --search ${place}
            OUTPUT_VARIABLE owner RESULT_VARIABLE status ERROR_QUIET)
        if(status EQUAL 0)
            string(REGEX REPLACE "[:,].*" "" package "${owner}")
            execute_process(COMMAND ${TRELLANT_DPKG_QUERY} --show "--showformat=\${Version}\n" ${package}
                OUTPUT_VARIABLE found COMMAND_ERROR_IS_FATAL ANY)
            string(REGEX REPLACE "\n.*" "" found "${found}")
            set(packaged_version "${found}" PARENT_SCOPE)
            string(REPLACE "+" "%2B" package "${package}")
            string(REPLACE "+" "%2B" found "${found}")
            set(packaged_reference ",
     \"externalRefs\": [{\"referenceCategory\": \"PACKAGE-MANAGER\", \"referenceType\": \"purl\",
                       \"referenceLocator\": \"pkg:deb/${trellant_distribution}/${package}@${found}\"}]" PARENT_SCOPE)
            return()
        endif()
    endforeach()
endfunction()

# trellant_sbom_library(NAME FILE LICENCE VERSION PROGRAM...): FILE is the header or library that is
# taken; an archive or header becomes part of the programs, anything else is loaded at their start.
# FILE may be a part of the compiler, which is in those programs that are self-contained.
function(trellant_sbom_library name file licence version)
    trellant_packaged("${file}" "${version}")
    trellant_sbom_package(${name} "${packaged_version}" "${licence}" "${packaged_reference}")
    foreach(program IN LISTS ARGN)
        if(NOT program IN_LIST trellant_programs)
            continue()
        endif()
        set(kind DYNAMIC_LINK)
        if(file MATCHES "[.]hpp$" OR (file MATCHES "[.]a$" AND NOT name IN_LIST trellant_runtimes)
                OR program IN_LIST trellant_self_contained)
            set(kind STATIC_LINK)
        endif()
        trellant_sbom_relation(${program} ${kind} ${name})
    endforeach()
    set(trellant_sbom_packages "${trellant_sbom_packages}" PARENT_SCOPE)
    set(trellant_sbom_package_comma "," PARENT_SCOPE)
    set(trellant_sbom_relations "${trellant_sbom_relations}" PARENT_SCOPE)
    set(trellant_sbom_comma "," PARENT_SCOPE)
endfunction()

# Where the compiler has this file of its own or of the C library.
function(trellant_compilers_file name result)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${name}
        OUTPUT_VARIABLE file OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "${file}" PARENT_SCOPE)
endfunction()

set(trellant_runtimes glibc libstdc++ libgcc)
trellant_compilers_file(libc.a trellant_libc)
trellant_compilers_file(libstdc++.a trellant_libstdcxx)
trellant_compilers_file(libgcc.a trellant_libgcc)
set(trellant_own_licence Apache-2.0)
set(trellant_gcc_licence "GPL-3.0-or-later WITH GCC-exception-3.1")

trellant_sbom_package(trellant-software "${PROJECT_VERSION}" "${trellant_own_licence}" "")
trellant_sbom_relation(DOCUMENT DESCRIBES trellant-software)
foreach(program IN LISTS trellant_programs)
    trellant_sbom_package(${program} "${PROJECT_VERSION}" "${trellant_own_licence}" "")
    trellant_sbom_relation(trellant-software CONTAINS ${program})
endforeach()
trellant_sbom_library(nlohmann-json ${TRELLANT_NLOHMANN_JSON_DIR}/nlohmann/json.hpp MIT
    "${nlohmann_json_VERSION}" trellant-omf trellant)
trellant_sbom_library(utf8proc ${Utf8proc_LIBRARY} "MIT AND Unicode-DFS-2015" NOASSERTION
    trellant-omf trellant)
if(Seccomp_LIBRARY)
    trellant_sbom_library(libseccomp ${Seccomp_LIBRARY} LGPL-2.1-only NOASSERTION
        trellant-omf trellant)
endif()
if(TRELLANT_COMMAND)
    find_path(TRELLANT_CLI11_DIR CLI/CLI.hpp)
    mark_as_advanced(TRELLANT_CLI11_DIR)
    trellant_sbom_library(CLI11 ${TRELLANT_CLI11_DIR}/CLI/CLI.hpp BSD-3-Clause NOASSERTION trellant)
    trellant_sbom_library(nettle ${Nettle_LIBRARY} "LGPL-3.0-or-later OR GPL-2.0-or-later" NOASSERTION
        trellant)
    trellant_sbom_library(minizip ${MiniZip_LIBRARY} Zlib NOASSERTION trellant)
    trellant_sbom_library(zlib ${MiniZip_ZLIB_LIBRARY} Zlib NOASSERTION trellant)
    trellant_sbom_library(pugixml ${PugiXml_LIBRARY} MIT NOASSERTION trellant trellant-wav)
    trellant_sbom_library(sqlite3 ${SQLite3_LIBRARY} blessing NOASSERTION trellant)
    trellant_sbom_library(libsndfile ${SndFile_LIBRARY} LGPL-2.1-or-later NOASSERTION trellant-wav)
    trellant_sbom_library(libsoxr ${Soxr_LIBRARY} LGPL-2.1-or-later NOASSERTION trellant-wav)
endif()
if(CMAKE_SYSTEM_NAME STREQUAL "Linux")
    trellant_sbom_library(glibc ${trellant_libc} LGPL-2.1-or-later NOASSERTION ${trellant_programs})
    trellant_sbom_library(libstdc++ ${trellant_libstdcxx} "${trellant_gcc_licence}"
        "${CMAKE_CXX_COMPILER_VERSION}" ${trellant_programs})
    trellant_sbom_library(libgcc ${trellant_libgcc} "${trellant_gcc_licence}"
        "${CMAKE_CXX_COMPILER_VERSION}" ${trellant_programs})
endif()

# SOURCE_DATE_EPOCH gives the time where it is set, so that the same build is the same document.
string(TIMESTAMP trellant_sbom_time "%Y-%m-%dT%H:%M:%SZ" UTC)
string(UUID trellant_sbom_uuid NAMESPACE 6ba7b811-9dad-11d1-80b4-00c04fd430c8 TYPE SHA1
    NAME "${PROJECT_VERSION}${trellant_sbom_packages}${trellant_sbom_relations}")
string(REPLACE "SPDXRef-libstdc++" "SPDXRef-libstdcxx" trellant_sbom_packages "${trellant_sbom_packages}")
string(REPLACE "SPDXRef-libstdc++" "SPDXRef-libstdcxx" trellant_sbom_relations
    "${trellant_sbom_relations}")
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package/sbom.spdx.json @ONLY CONTENT "{
  \"spdxVersion\": \"SPDX-2.3\", \"dataLicense\": \"CC0-1.0\", \"SPDXID\": \"SPDXRef-DOCUMENT\",
  \"name\": \"trellant-@PROJECT_VERSION@\",
  \"documentNamespace\": \"urn:uuid:@trellant_sbom_uuid@\",
  \"creationInfo\": {\"created\": \"@trellant_sbom_time@\", \"creators\": [\"Organization: Trellant\"]},
  \"packages\": [@trellant_sbom_packages@
  ],
  \"relationships\": [@trellant_sbom_relations@
  ]
}
")
install(FILES ${PROJECT_BINARY_DIR}/package/sbom.spdx.json DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT command)
