# SPDX-License-Identifier: MIT

# The library LIBRARY is gone when a program that has loaded and used it lets go of it; and it has no
# symbol that is unique in the process, which would keep it.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(MAKE_DIRECTORY ${WORK})
run(${COMPILER} -std=c++20 -Wall -Wextra -Werror ${CONSUMER}/main.cpp -o ${WORK}/unloading -ldl)
run(${WORK}/unloading ${LIBRARY} ${WORK}/written.gpx)
if(NOT output STREQUAL "unloaded\n")
    message(FATAL_ERROR "unexpected output: ${output}")
endif()
run(${NM} -D --defined-only -C ${LIBRARY})
string(REGEX MATCHALL "[^\n]* u [^\n]*" unique "${output}")
if(unique)
    message(SEND_ERROR "unique symbols: ${unique}")
endif()
