# The installed headers need no header that is not installed, and can stand in one source together.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(GLOB_RECURSE headers RELATIVE ${INCLUDEDIR} ${INCLUDEDIR}/Pelluvia/*.h)
list(LENGTH headers count)
if(count LESS 30)
    message(FATAL_ERROR "only ${count} headers are installed")
endif()
list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
file(MAKE_DIRECTORY ${WORK})
string(JOIN "" source ${headers})
file(WRITE ${WORK}/all.cpp "${source}")
run(${COMPILER} -std=c++20 -fsyntax-only -Wall -Wextra -Wpedantic -Werror -I${INCLUDEDIR}
    ${WORK}/all.cpp)
