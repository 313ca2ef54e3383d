# SPDX-License-Identifier: MIT

# The installed headers need no header that is not installed, can stand in one source together, and are
# Objective-C++ as well as C++.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

write_all_headers(${WORK}/all.cpp)
run(${COMPILER} -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I${INCLUDEDIR}
    ${WORK}/all.cpp)

# Words of Objective-C++ are no names here.
file(GLOB_RECURSE headers ${INCLUDEDIR}/Pelluvia/*.h)
foreach(header IN LISTS headers)
    file(READ ${header} text)
    string(REGEX REPLACE "//[^\n]*" "" text "${text}")
    string(REGEX REPLACE "\"[^\"\n]*\"" "" text "${text}")
    if(" ${text} " MATCHES "[^A-Za-z0-9_](id|Nil|nil|YES|NO|SEL|IMP|BOOL)[^A-Za-z0-9_]")
        message(SEND_ERROR "${header} has the name ${CMAKE_MATCH_1}")
    endif()
endforeach()

# One compiler that is here may know the language; there is no word of it in an empty source.
file(WRITE ${WORK}/empty.mm "")
find_program(CLANG clang++)
foreach(compiler IN ITEMS ${COMPILER} ${CLANG})
    set(objective ${compiler} -x objective-c++ -std=c++20 -fsyntax-only)
    execute_process(COMMAND ${objective} ${WORK}/empty.mm RESULT_VARIABLE unknown ERROR_QUIET)
    if(NOT unknown)
        run(${objective} -Wall -Wextra -Werror -I${INCLUDEDIR} ${WORK}/all.cpp)
        return()
    endif()
endforeach()
message(STATUS "no compiler here knows Objective-C++")
