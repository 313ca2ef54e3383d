# SPDX-License-Identifier: MIT

# An outside program is built by one compiler call with what pkg-config says.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
run(pkg-config --print-requires --print-requires-private pelluvia)
if(NOT output STREQUAL "")
    message(FATAL_ERROR "pelluvia.pc asks for ${output}")
endif()
run(pkg-config --cflags --libs pelluvia)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${COMPILER} -std=c++20 ${CONSUMER}/main.cpp -o ${WORK}/consumer ${flags})
set(ENV{LD_LIBRARY_PATH} ${LIBDIR})
run_consumer(${WORK}/consumer)
