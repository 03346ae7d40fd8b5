# SPDX-License-Identifier: Apache-2.0
# SQLite as the target SQLite3::sqlite3: with SQLite3_USE_STATIC_LIBS its archive where there is one, else
# whatever the linker would take.
find_path(SQLite3_INCLUDE_DIR sqlite3.h)
set(SQLite3_NAMES sqlite3)
if(SQLite3_USE_STATIC_LIBS)
    list(PREPEND SQLite3_NAMES ${CMAKE_STATIC_LIBRARY_PREFIX}sqlite3${CMAKE_STATIC_LIBRARY_SUFFIX})
endif()
find_library(SQLite3_LIBRARY NAMES ${SQLite3_NAMES})
mark_as_advanced(SQLite3_INCLUDE_DIR SQLite3_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(SQLite3Static
    REQUIRED_VARS SQLite3_LIBRARY SQLite3_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package libsqlite3-dev, or name its place in CMAKE_PREFIX_PATH.")

if(SQLite3Static_FOUND AND NOT TARGET SQLite3::sqlite3)
    # Global: programs in other folders link what is built on it. The archive computes with the
    # library of mathematics.
    add_library(SQLite3::sqlite3 UNKNOWN IMPORTED GLOBAL)
    set_target_properties(SQLite3::sqlite3 PROPERTIES
        IMPORTED_LOCATION "${SQLite3_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${SQLite3_INCLUDE_DIR}"
        INTERFACE_LINK_LIBRARIES "m;${CMAKE_DL_LIBS}")
endif()
