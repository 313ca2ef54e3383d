# SPDX-License-Identifier: MIT

# Compares what the shared library LIBRARY defines for others with two lists:
#   C_NAMES    the symbols with C linkage; not given: there are none
#   CPP_NAMES  the classes, whose members may be defined, and the free functions
# With VERSION_NODE, each symbol belongs to that version.
# A name that is missing on either side fails the test.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

if(DEFINED VERSION_NODE)
    run(${NM} -D --defined-only --with-symbol-versions ${LIBRARY})
    string(REGEX MATCHALL "[^\n]+" lines "${output}")
    list(FILTER lines EXCLUDE REGEX "@@${VERSION_NODE}$| A ${VERSION_NODE}$")
    if(lines)
        message(SEND_ERROR "not of the version ${VERSION_NODE}: ${lines}")
    endif()
endif()

run(${NM} -D --defined-only -C ${LIBRARY})
string(REPLACE "[abi:cxx11]" "" output "${output}")
# Behind each name stands the version of the library's interface, which is itself such a name.
string(REGEX REPLACE "@[^\n]*" "" output "${output}")
string(REGEX REPLACE "[^\n]* A PELLUVIA_[^\n]*\n" "" output "${output}")
string(REPLACE "\n" ";" lines "${output}")

set(c_names "")
set(cpp_names "")
file(STRINGS ${CPP_NAMES} listed_cpp)
set(listed_c "")
if(DEFINED C_NAMES)
    file(STRINGS ${C_NAMES} listed_c)
endif()
foreach(line IN LISTS lines)
    string(REGEX REPLACE "^[0-9a-f]* +. " "" symbol "${line}")
    if(symbol MATCHES "::")
        # Of a function the name before its arguments counts; of type information the type.
        string(REGEX REPLACE "^(typeinfo|typeinfo name|vtable|VTT) for |^(non-)?virtual thunk to " ""
               name "${symbol}")
        string(REGEX REPLACE "\\(.*" "" name "${name}")
        string(REGEX REPLACE "::[^:]*$" "" scope "${name}")
        if(name IN_LIST listed_cpp)
            list(APPEND cpp_names "${name}")
        elseif(scope IN_LIST listed_cpp)
            list(APPEND cpp_names "${scope}")
        else()
            message(SEND_ERROR "exported and in no list: ${symbol}")
        endif()
    elseif(NOT symbol STREQUAL "" AND NOT symbol STREQUAL "${VERSION_NODE}")
        list(APPEND c_names "${symbol}")
    endif()
endforeach()

foreach(kind c cpp)
    list(REMOVE_DUPLICATES ${kind}_names)
    foreach(name IN LISTS ${kind}_names)
        if(NOT name IN_LIST listed_${kind})
            message(SEND_ERROR "exported and in no list: ${name}")
        endif()
    endforeach()
    foreach(name IN LISTS listed_${kind})
        if(NOT name IN_LIST ${kind}_names)
            message(SEND_ERROR "listed and not exported: ${name}")
        endif()
    endforeach()
endforeach()
