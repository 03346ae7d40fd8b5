# SPDX-License-Identifier: Apache-2.0
# Each catalogue has a text for every key that the sources ask for, and for no other.
# Variables: SOURCE.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

function(keys_of pattern result)
    set(found "")
    foreach(file IN LISTS ARGN)
        file(READ ${file} text)
        string(REGEX MATCHALL "${pattern}" matches "${text}")
        list(APPEND found ${matches})
    endforeach()
    list(TRANSFORM found REPLACE "^[^\"]*\"([^\"]*)\".*" "\\1")
    list(REMOVE_DUPLICATES found)
    list(SORT found)
    set(${result} "${found}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE sources ${SOURCE}/src/*.cpp)
keys_of("\"(aaf|page)\\.[a-zA-Z.]+\"" wanted ${sources})
if(NOT wanted)
    message(FATAL_ERROR "the sources ask for no text")
endif()
foreach(language de en)
    keys_of("msgid \"(aaf|page)[^\"]+\"\nmsgstr \"[^\"]+\"" translated ${SOURCE}/po/${language}.po)
    expect_equal("keys of ${language}.po" "${translated}" "${wanted}")
endforeach()
