# SPDX-License-Identifier: MIT

# The library or program FILE needs the C and C++ runtimes and the libraries that the expression ALLOWED
# names, nothing else, and none of them in vain: each part of ALLOWED is needed.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

# Brackets would keep CMake from taking the names as a list.
run(${READELF} -d ${FILE})
string(REGEX REPLACE "[][]" "|" output "${output}")
string(REGEX MATCHALL "NEEDED[^\n]*" needed "${output}")
foreach(each IN LISTS needed)
    if(NOT each MATCHES "\\|(${ALLOWED}|libstdc\\+\\+|libgcc_s|libm|libc|ld-linux[-a-z0-9_]*)\\.so")
        message(SEND_ERROR "needs more than it should: ${each}")
    endif()
endforeach()
string(REPLACE "|" ";" names "${ALLOWED}")
foreach(name IN LISTS names)
    if(NOT needed MATCHES "\\|${name}\\.so")
        message(SEND_ERROR "does not need ${name}:\n${needed}")
    endif()
endforeach()
