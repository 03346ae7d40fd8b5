# SPDX-License-Identifier: Apache-2.0
# The libraries show what their public headers declare, and no private helper.
# Variables: PREFIX, LIBRARIES (the folder below it), NM.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

file(GLOB_RECURSE headers ${PREFIX}/include/trellant/*.h)
set(declared "")
foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(APPEND declared "${text}")
endforeach()

# check(LIBRARY PUBLIC PRIVATE): PUBLIC is a name that it shows, PRIVATE one that it only has inside.
function(check library public private)
    set(file ${PREFIX}/${LIBRARIES}/libtrellant_${library}.so)
    run(${NM} --defined-only --demangle ${file})
    if(NOT run_output MATCHES " [Tt] trellant::${private}::")
        message(FATAL_ERROR "${library} has no ${private}: there is nothing to hide")
    endif()
    run(${NM} --dynamic --defined-only --demangle ${file})
    if(NOT run_output MATCHES " T trellant::${public}::")
        message(FATAL_ERROR "${library} does not show ${public}")
    endif()
    string(REGEX MATCHALL " [TDB] trellant::[A-Za-z0-9_]+" shown "${run_output}")
    list(REMOVE_DUPLICATES shown)
    foreach(symbol IN LISTS shown)
        string(REGEX REPLACE ".*::" "" name "${symbol}")
        if(NOT declared MATCHES "[^A-Za-z0-9_]${name}[^A-Za-z0-9_]")
            message(FATAL_ERROR "${library} shows ${name}, which no public header declares")
        endif()
    endforeach()
endfunction()

check(io BentoContainer BentoItemIndex)
check(omf OMFDocument "[(]anonymous namespace[)]")
check(mapper Mapper SegmentWalk)
check(client AAFWorkerClient ChildProcess)
check(model AAFRational "[(]anonymous namespace[)]")
