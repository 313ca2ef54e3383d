# SPDX-License-Identifier: MIT

# An outside project finds the installed package.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(REMOVE_RECURSE ${WORK})
run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK} -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_PREFIX_PATH=${PREFIX})
run(${CMAKE_COMMAND} --build ${WORK})
run_consumer(${WORK}/consumer)
