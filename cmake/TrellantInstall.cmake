# SPDX-License-Identifier: Apache-2.0
# What an installation holds: worker, libraries, headers, the files by which CMake and pkg-config
# find them, schemas, catalogues, manual, completions and documents. No file names the prefix that
# it was installed to, so the whole tree may be moved.
#
# Components, each a package (TrellantPackage.cmake): command, libraries (shared ones only),
# development, documentation, python.
include(CMakePackageConfigHelpers)

set(trellant_data_dir ${CMAKE_INSTALL_DATADIR}/trellant)
set(trellant_schema_dir ${trellant_data_dir}/schema)
set(trellant_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/trellant)
set(trellant_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

get_property(trellant_libraries GLOBAL PROPERTY TRELLANT_LIBRARIES)
list(TRANSFORM trellant_libraries PREPEND trellant_ OUTPUT_VARIABLE trellant_library_targets)
install(TARGETS ${trellant_library_targets} trellant_reader trellant-omf
    EXPORT trellantTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT libraries NAMELINK_COMPONENT development
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT BUILD_SHARED_LIBS AND CMAKE_OBJCOPY)
    set(trellant_archives "")
    foreach(target IN LISTS trellant_library_targets)
        list(APPEND trellant_archives
            "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:${target}>")
    endforeach()
    install(CODE "set(OBJCOPY \"${CMAKE_OBJCOPY}\")
        set(ARCHIVES \"${trellant_archives}\")
        include(\"${PROJECT_SOURCE_DIR}/cmake/strip_archives.cmake\")" COMPONENT development)
endif()
install(EXPORT trellantTargets NAMESPACE trellant:: DESTINATION ${trellant_cmake_dir}
    COMPONENT development)

set(TRELLANT_STATIC_LIBRARIES ON)
if(BUILD_SHARED_LIBS)
    set(TRELLANT_STATIC_LIBRARIES OFF)
endif()
configure_package_config_file(cmake/trellantConfig.cmake.in
    ${PROJECT_BINARY_DIR}/package/trellantConfig.cmake
    INSTALL_DESTINATION ${trellant_cmake_dir}
    PATH_VARS CMAKE_INSTALL_BINDIR trellant_schema_dir)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/package/trellantConfigVersion.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES
        ${PROJECT_BINARY_DIR}/package/trellantConfig.cmake
        ${PROJECT_BINARY_DIR}/package/trellantConfigVersion.cmake
    DESTINATION ${trellant_cmake_dir} COMPONENT development)
if(TRELLANT_STATIC_LIBRARIES)
    install(FILES cmake/FindMiniZip.cmake cmake/FindNettle.cmake cmake/FindPugiXml.cmake
        cmake/FindSQLite3Static.cmake cmake/FindUtf8proc.cmake
        DESTINATION ${trellant_cmake_dir} COMPONENT development)
endif()

# Each library before those that it is built on. Static archives pull in what they were built on;
# shared libraries bring it themselves.
list(REVERSE trellant_library_targets)
list(TRANSFORM trellant_library_targets PREPEND " -l")
list(JOIN trellant_library_targets "" trellant_pc_libraries)
set(trellant_pc_requires "")
set(trellant_pc_system_libraries "")
if(TRELLANT_STATIC_LIBRARIES)
    set(trellant_pc_requires "libutf8proc nettle")
    set(trellant_pc_system_libraries "${CMAKE_THREAD_LIBS_INIT}")
    if(NOT Intl_IS_BUILT_IN)
        string(APPEND trellant_pc_system_libraries " -lintl")
    endif()
endif()
file(RELATIVE_PATH trellant_pc_prefix
    ${CMAKE_INSTALL_PREFIX}/${trellant_pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" trellant_pc_prefix "${trellant_pc_prefix}")
configure_file(cmake/trellant.pc.in ${PROJECT_BINARY_DIR}/package/trellant.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/trellant.pc DESTINATION ${trellant_pkgconfig_dir}
    COMPONENT development)
# Hosts that write sessions link more: a file of its own, so that others are not asked for it.
set(trellant_pc_export_requires "trellant = ${PROJECT_VERSION}")
if(TRELLANT_STATIC_LIBRARIES)
    string(APPEND trellant_pc_export_requires ", nettle, minizip, zlib, pugixml")
endif()
configure_file(cmake/trellant-export.pc.in ${PROJECT_BINARY_DIR}/package/trellant-export.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/trellant-export.pc DESTINATION ${trellant_pkgconfig_dir}
    COMPONENT development)

file(GLOB trellant_schemas CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/schema/*.schema.json)
install(FILES ${trellant_schemas} DESTINATION ${trellant_schema_dir} COMPONENT development)
file(GLOB trellant_command_schemas CONFIGURE_DEPENDS
    ${PROJECT_SOURCE_DIR}/schema/command/*.schema.json)
if(TRELLANT_COMMAND)
    install(FILES ${trellant_command_schemas} DESTINATION ${trellant_schema_dir}/command
        COMPONENT development)
endif()
install(FILES man/trellant-omf.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
if(TRELLANT_COMMAND)
    install(FILES man/trellant.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
    install(PROGRAMS share/slurm/submit share/slurm/scan.sbatch share/slurm/merge.sbatch
        DESTINATION ${trellant_data_dir}/slurm COMPONENT command)
    install(PROGRAMS share/parallel/scan DESTINATION ${trellant_data_dir}/parallel COMPONENT command)
    install(FILES completions/trellant.bash RENAME trellant
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT command)
    install(FILES completions/_trellant
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions COMPONENT command)
    install(FILES completions/trellant.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d COMPONENT command)
endif()
install(DIRECTORY ${TRELLANT_CATALOGUES}/ DESTINATION ${CMAKE_INSTALL_LOCALEDIR} COMPONENT command
    FILES_MATCHING PATTERN trellant.mo)
# Where Debian's interpreters look. The package finds its worker from there, so it may be moved with the rest.
set(TRELLANT_PYTHON_DIR lib/python3/dist-packages CACHE STRING
    "Where the Python package is installed, below the prefix")
install(DIRECTORY python/trellant DESTINATION ${TRELLANT_PYTHON_DIR} COMPONENT python
    FILES_MATCHING PATTERN *.py PATTERN py.typed PATTERN __pycache__ EXCLUDE)
set(trellant_python_metadata trellant-${PROJECT_VERSION}.dist-info)
# What pip and importlib.metadata know an installed package by; scripts/wheel makes it from python/pyproject.toml.
file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/package/${trellant_python_metadata}/METADATA
    CONTENT "Metadata-Version: 2.1\nName: trellant\nVersion: @PROJECT_VERSION@\nSummary: @PROJECT_DESCRIPTION@\nLicense: Apache-2.0\nRequires-Python: >=3.9\n"
    @ONLY)
install(DIRECTORY ${PROJECT_BINARY_DIR}/package/${trellant_python_metadata}
    DESTINATION ${TRELLANT_PYTHON_DIR} COMPONENT python)
include(${CMAKE_CURRENT_LIST_DIR}/TrellantSbom.cmake)
# What the programs hold of others asks for notices, wherever they go.
install(FILES LICENSE packaging/debian/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT command)
# Laid out as in the source tree: the documents link to one another.
install(FILES README.md CHANGELOG.md CONTRIBUTING.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT documentation)
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs COMPONENT documentation
    FILES_MATCHING PATTERN *.md PATTERN *.png)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples COMPONENT documentation
    FILES_MATCHING PATTERN *.md PATTERN *.omf PATTERN *.json PATTERN *.wav)
# The pages of the headers, where the target `docs` has made them.
install(DIRECTORY ${PROJECT_BINARY_DIR}/docs/html DESTINATION ${CMAKE_INSTALL_DOCDIR}
    COMPONENT documentation OPTIONAL)
