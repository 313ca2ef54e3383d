# Compares what the shared library LIBRARY defines for others with the lists in LISTS:
#   exported-c-names.txt    the symbols with C linkage
#   exported-cpp-names.txt  the classes, whose members may be defined, and the free functions
# A name that is missing on either side fails the test.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

run(${NM} -D --defined-only -C ${LIBRARY})
string(REPLACE "[abi:cxx11]" "" output "${output}")
string(REPLACE "\n" ";" lines "${output}")

set(c_names "")
set(cpp_names "")
file(STRINGS ${LISTS}/exported-cpp-names.txt listed_cpp)
file(STRINGS ${LISTS}/exported-c-names.txt listed_c)
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
    elseif(NOT symbol STREQUAL "")
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

# The library needs the XML library and the C and C++ runtimes, nothing else. Brackets would keep CMake
# from taking the names as a list.
run(${READELF} -d ${LIBRARY})
string(REGEX REPLACE "[][]" "|" output "${output}")
string(REGEX MATCHALL "NEEDED[^\n]*" needed "${output}")
if(NOT needed)
    message(SEND_ERROR "nothing is needed?\n${output}")
endif()
foreach(each IN LISTS needed)
    if(NOT each MATCHES "\\|(libxml2|libstdc\\+\\+|libgcc_s|libm|libc|ld-linux[-a-z0-9_]*)\\.so")
        message(SEND_ERROR "needs more than it should: ${each}")
    endif()
endforeach()
