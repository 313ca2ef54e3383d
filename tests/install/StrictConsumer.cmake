# SPDX-License-Identifier: MIT

# Outside programs are built without run-time type information and without exceptions, with all the
# warnings that a careful host turns on as errors, and in C, and run.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

write_all_headers(${WORK}/all.h)
set(flags -I${INCLUDEDIR} -I${WORK} -L${LIBDIR} -lpelluvia -Wl,-rpath,${LIBDIR})
run(${COMPILER} -std=c++20 -fno-rtti -fno-exceptions -Wall -Wextra -Wpedantic -Wconversion
    -Wsign-conversion -Wshadow -Wold-style-cast -Werror
    ${CONSUMER}/main.cpp -o ${WORK}/strict ${flags})
run(${WORK}/strict)
if(NOT output STREQUAL "strict\n")
    message(FATAL_ERROR "unexpected output: ${output}")
endif()
run(${COMPILER} -x c -std=c11 -Wall -Wextra -Wpedantic -Werror ${CONSUMER}/version.c -x none
    -o ${WORK}/version ${flags})
run(${WORK}/version)
