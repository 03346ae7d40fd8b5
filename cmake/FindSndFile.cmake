# SPDX-License-Identifier: Apache-2.0
# libsndfile as the target SndFile::sndfile.
find_path(SndFile_INCLUDE_DIR sndfile.h)
find_library(SndFile_LIBRARY NAMES sndfile)
mark_as_advanced(SndFile_INCLUDE_DIR SndFile_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(SndFile
    REQUIRED_VARS SndFile_LIBRARY SndFile_INCLUDE_DIR
    REASON_FAILURE_MESSAGE "Install the Debian package libsndfile1-dev, or name its place in CMAKE_PREFIX_PATH.")

if(SndFile_FOUND AND NOT TARGET SndFile::sndfile)
    add_library(SndFile::sndfile UNKNOWN IMPORTED)
    set_target_properties(SndFile::sndfile PROPERTIES
        IMPORTED_LOCATION "${SndFile_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${SndFile_INCLUDE_DIR}")
endif()
