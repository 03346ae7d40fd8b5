# What an installation holds: worker, libraries, headers, the files by which CMake and pkg-config
# find them, schemas, catalogues, manual, completions and documents. No file names the prefix that
# it was installed to, so the whole tree may be moved.
include(CMakePackageConfigHelpers)

set(trellant_data_dir ${CMAKE_INSTALL_DATADIR}/trellant)
set(trellant_schema_dir ${trellant_data_dir}/schema)
set(trellant_cmake_dir ${CMAKE_INSTALL_LIBDIR}/cmake/trellant)
set(trellant_pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)

install(TARGETS
        trellant_base trellant_json trellant_model trellant_io trellant_omf trellant_mapper trellant_protocol trellant_client
        trellant_reader trellant-omf
    EXPORT trellantTargets
    RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND NOT BUILD_SHARED_LIBS AND CMAKE_OBJCOPY)
    set(trellant_archives "")
    foreach(library base json model io omf mapper protocol client)
        list(APPEND trellant_archives
            "\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}/$<TARGET_FILE_NAME:trellant_${library}>")
    endforeach()
    install(CODE "set(OBJCOPY \"${CMAKE_OBJCOPY}\")
        set(ARCHIVES \"${trellant_archives}\")
        include(\"${PROJECT_SOURCE_DIR}/cmake/strip_archives.cmake\")")
endif()
install(EXPORT trellantTargets NAMESPACE trellant:: DESTINATION ${trellant_cmake_dir})

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
    DESTINATION ${trellant_cmake_dir})
if(TRELLANT_STATIC_LIBRARIES)
    install(FILES cmake/FindUtf8proc.cmake DESTINATION ${trellant_cmake_dir})
endif()

# Static archives pull in what they were built on; shared libraries bring it themselves.
set(trellant_pc_requires "")
set(trellant_pc_system_libraries "")
if(TRELLANT_STATIC_LIBRARIES)
    set(trellant_pc_requires "libutf8proc")
    set(trellant_pc_system_libraries "${CMAKE_THREAD_LIBS_INIT}")
    if(NOT Intl_IS_BUILT_IN)
        string(APPEND trellant_pc_system_libraries " -lintl")
    endif()
endif()
file(RELATIVE_PATH trellant_pc_prefix
    ${CMAKE_INSTALL_PREFIX}/${trellant_pkgconfig_dir} ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" trellant_pc_prefix "${trellant_pc_prefix}")
configure_file(cmake/trellant.pc.in ${PROJECT_BINARY_DIR}/package/trellant.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package/trellant.pc DESTINATION ${trellant_pkgconfig_dir})

file(GLOB trellant_schemas CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/schema/*.schema.json)
install(FILES ${trellant_schemas} DESTINATION ${trellant_schema_dir})
install(FILES man/trellant-omf.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
if(TRELLANT_COMMAND)
    install(FILES man/trellant.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
    install(FILES completions/trellant.bash RENAME trellant
        DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
    install(FILES completions/_trellant
        DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions)
    install(FILES completions/trellant.fish
        DESTINATION ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d)
endif()
install(DIRECTORY ${TRELLANT_CATALOGUES}/ DESTINATION ${CMAKE_INSTALL_LOCALEDIR}
    FILES_MATCHING PATTERN trellant.mo)
# Laid out as in the source tree: the documents link to one another.
include(${CMAKE_CURRENT_LIST_DIR}/TrellantSbom.cmake)
install(FILES README.md SECURITY.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs FILES_MATCHING PATTERN *.md)
install(DIRECTORY examples/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/examples
    FILES_MATCHING PATTERN *.md PATTERN *.omf PATTERN *.json PATTERN *.wav)
