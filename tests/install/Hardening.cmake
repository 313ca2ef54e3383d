# SPDX-License-Identifier: MIT

# The library or program FILE is as hard to misuse as the build says: its table of functions is read-only
# before it runs, its stack is guarded and, with CHECKED_CALLS, calls of the C library are checked; with
# RUNPATH_ONLY it is only seen to that it looks for libraries nowhere but beside itself.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

run(${READELF} -d ${FILE})
# Brackets would keep CMake from taking the paths as a list.
string(REGEX REPLACE "[][]" "|" dynamic "${output}")
if(dynamic MATCHES "R(UN)?PATH\\)[^\n|]*\\|([^\n|]*)\\|")
    string(REPLACE ":" ";" places "${CMAKE_MATCH_2}:end") # so that a last, empty entry stays one
    foreach(place IN LISTS places)
        if(NOT place MATCHES "^\\$ORIGIN(/|$)|^end$")
            message(SEND_ERROR "looks for libraries in '${place}'")
        endif()
    endforeach()
endif()
if(RUNPATH_ONLY)
    return()
endif()

if(NOT dynamic MATCHES "FLAGS\\)[^\n]*BIND_NOW|FLAGS_1\\)[^\n]*NOW")
    message(SEND_ERROR "binds late:\n${dynamic}")
endif()
run(${READELF} -lW ${FILE})
if(NOT output MATCHES "GNU_RELRO")
    message(SEND_ERROR "has no read-only relocations:\n${output}")
endif()
run(${NM} -D --undefined-only ${FILE})
set(guards __stack_chk_fail)
if(CHECKED_CALLS)
    list(APPEND guards __[a-z]+_chk)
endif()
foreach(guard IN LISTS guards)
    if(NOT output MATCHES " ${guard}@")
        message(SEND_ERROR "does not use ${guard}:\n${output}")
    endif()
endforeach()
