# SPDX-License-Identifier: Apache-2.0
# The target `docs`: pages of every public header, build/.../docs/html/index.html. A warning fails it.
find_package(Doxygen QUIET)
if(DOXYGEN_FOUND)
    set(trellant_docs_input "")
    get_property(trellant_libraries GLOBAL PROPERTY TRELLANT_LIBRARIES)
    foreach(folder IN LISTS trellant_libraries)
        string(APPEND trellant_docs_input " \"${PROJECT_SOURCE_DIR}/src/${folder}/include\"")
    endforeach()
    string(APPEND trellant_docs_input " \"${PROJECT_BINARY_DIR}/include\"")
    configure_file(docs/Doxyfile.in ${PROJECT_BINARY_DIR}/docs/Doxyfile @ONLY)
    add_custom_target(docs
        COMMAND ${DOXYGEN_EXECUTABLE} ${PROJECT_BINARY_DIR}/docs/Doxyfile
        WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
        COMMENT "Pages of the public headers"
        VERBATIM)
endif()
