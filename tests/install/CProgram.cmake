# SPDX-License-Identifier: MIT

# An outside program in C is built by one call of the C compiler C_COMPILER with what pkg-config says.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
run(pkg-config --cflags --libs pelluvia)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${C_COMPILER} -std=c99 -Wall -Wextra -Wpedantic -Wstrict-prototypes -Werror
    ${CONSUMER}/main.c -o ${WORK}/consumer ${flags})
set(ENV{LD_LIBRARY_PATH} ${LIBDIR})
run_consumer(${WORK}/consumer)
