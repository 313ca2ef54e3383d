# SPDX-License-Identifier: MIT

# Outside programs use the installed storage component: one finds it with find_package, the other with
# pkg-config.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK}/settings ${WORK}/folder)
set(ENV{XDG_CONFIG_HOME} ${WORK}/settings)
file(REAL_PATH ${WORK}/folder folder)
function(run_storage_consumer program)
    run(${program} ${folder})
    if(NOT output STREQUAL "${folder} 1\n")
        message(FATAL_ERROR "unexpected output: ${output}")
    endif()
endfunction()

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK}/cmake -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_PREFIX_PATH=${PREFIX})
run(${CMAKE_COMMAND} --build ${WORK}/cmake)
run_storage_consumer(${WORK}/cmake/consumer)

set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
run(pkg-config --print-requires-private pelluvia-storage)
if(NOT output STREQUAL "")
    message(FATAL_ERROR "pelluvia-storage.pc asks for ${output}")
endif()
run(pkg-config --cflags --libs pelluvia-storage)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${COMPILER} -std=c++20 ${CONSUMER}/main.cpp -o ${WORK}/consumer ${flags})
set(ENV{LD_LIBRARY_PATH} ${LIBDIR})
run_storage_consumer(${WORK}/consumer)
