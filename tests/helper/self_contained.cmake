# SPDX-License-Identifier: Apache-2.0
# Checks the worker executable: nothing to load at its start, and none of the parts of the language's
# library that would cost each start. Variables: WORKER, READELF, NM.
execute_process(COMMAND ${READELF} --program-headers --dynamic ${WORKER}
    OUTPUT_VARIABLE headers COMMAND_ERROR_IS_FATAL ANY)
if(headers MATCHES "INTERP" OR headers MATCHES "NEEDED")
    message(FATAL_ERROR "the worker needs libraries of the machine:\n${headers}")
endif()
execute_process(COMMAND ${NM} --demangle ${WORKER} OUTPUT_VARIABLE symbols COMMAND_ERROR_IS_FATAL ANY)
if(NOT symbols MATCHES "trellant::")
    message(FATAL_ERROR "the worker has no symbols to look at")
endif()
foreach(part "std::locale::" "std::ios_base::Init" "std::basic_regex" "std::basic_ostream")
    if(symbols MATCHES "${part}")
        message(FATAL_ERROR "the worker contains ${part}")
    endif()
endforeach()
