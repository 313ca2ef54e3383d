# SPDX-License-Identifier: MIT

# The shared library LIBRARY shows only what an outside program can use: every function and variable
# that it defines for others is declared in an installed header and not private there, unless an inline
# function of a header needs it. Asked of the compiler: a program that names each of them is compiled,
# and its messages are read. Constructors, destructors and operators have no name to ask for.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

write_all_headers(${WORK}/all.h)
set(flags -std=c++20 -I${INCLUDEDIR})
file(WRITE ${WORK}/inline.cpp "#include \"all.h\"
// Templates are inline functions, too.
template pelluvia::Value pelluvia::Value::wrapping(const pelluvia::GPSPoint &);
template const pelluvia::GPSPoint *pelluvia::Value::unwrap() const noexcept;
template pelluvia::Ref<pelluvia::Dictionary>
pelluvia::Dictionary::wrapping(const pelluvia::GPSPoint &, const pelluvia::Dictionary *);
")
run(${COMPILER} ${flags} -I${WORK} -O0 -fkeep-inline-functions -c ${WORK}/inline.cpp
    -o ${WORK}/inline.o)
run(${NM} --undefined-only -p ${WORK}/inline.o)
string(REGEX MATCHALL "_ZN[A-Za-z0-9_]+" needed "${output}")

# Both in the same order.
run(${NM} -D --defined-only -p ${LIBRARY})
string(REGEX REPLACE "@[^\n]*" "" output "${output}")
string(REGEX REPLACE "\n" ";" mangled "${output}")
run(${NM} -D --defined-only -p -C ${LIBRARY})
string(REGEX REPLACE "@[^\n]*" "" output "${output}")
string(REPLACE "[abi:cxx11]" "" output "${output}")
string(REGEX REPLACE "[][;]" "_" output "${output}")
string(REGEX REPLACE "\n" ";" readable "${output}")

set(names "")
foreach(symbol name IN ZIP_LISTS mangled readable)
    string(REGEX REPLACE "^[0-9a-f]* +. " "" symbol "${symbol}")
    string(REGEX REPLACE "^[0-9a-f]* +. " "" name "${name}")
    string(REGEX REPLACE "\\(.*" "" name "${name}")
    if(symbol IN_LIST needed OR NOT name MATCHES "^pelluvia::[A-Za-z0-9_:]+$")
        continue()
    endif()
    string(REGEX REPLACE ".*::" "" member "${name}")
    string(REGEX REPLACE "::[^:]*$" "" scope "${name}")
    string(REGEX REPLACE ".*::" "" class "${scope}")
    if(NOT member STREQUAL class AND NOT member MATCHES "^operator")
        list(APPEND names "${name}")
    endif()
endforeach()
list(REMOVE_DUPLICATES names)
if(NOT names)
    message(FATAL_ERROR "no names were found in ${LIBRARY}")
endif()

set(source "#include \"all.h\"\n")
foreach(name IN LISTS names)
    string(MAKE_C_IDENTIFIER "${name}" variable)
    string(APPEND source "auto at_${variable} = &${name};\n")
endforeach()
file(WRITE ${WORK}/names.cpp "${source}")
execute_process(COMMAND ${CMAKE_COMMAND} -E env LC_ALL=C ${COMPILER} ${flags} -I${WORK} -fsyntax-only
    ${WORK}/names.cpp ERROR_VARIABLE messages)
string(REGEX MATCHALL
    "error: [^\n]*(is private|is protected|private member|protected member|not a member|no member|incomplete|not been declared|undeclared)[^\n]*"
    faults "${messages}")
foreach(fault IN LISTS faults)
    message(SEND_ERROR "shown, and of no use to others:\n  ${fault}")
endforeach()
