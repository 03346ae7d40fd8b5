# SPDX-License-Identifier: Apache-2.0
# pugixml as the target PugiXml::pugixml: with PugiXml_USE_STATIC_LIBS its archive where there is one, else
# whatever the linker would take.
find_path(PugiXml_INCLUDE_DIR pugixml.hpp)
set(PugiXml_NAMES pugixml)
if(PugiXml_USE_STATIC_LIBS)
    list(PREPEND PugiXml_NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}pugixml${CMAKE_STATIC_LIBRARY_SUFFIX})
endif()
find_library(PugiXml_LIBRARY NAMES ${PugiXml_NAMES})
mark_as_advanced(PugiXml_INCLUDE_DIR PugiXml_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(PugiXml
    REQUIRED_VARS PugiXml_LIBRARY PugiXml_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package libpugixml-dev, or name its place in CMAKE_PREFIX_PATH.")

if(PugiXml_FOUND AND NOT TARGET PugiXml::pugixml)
    # Global: programs in other folders link what is built on it.
    add_library(PugiXml::pugixml UNKNOWN IMPORTED GLOBAL)
    set_target_properties(PugiXml::pugixml PROPERTIES
        IMPORTED_LOCATION "${PugiXml_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${PugiXml_INCLUDE_DIR}")
endif()
