# SPDX-License-Identifier: MIT

# An outside project builds the sources SOURCE as a part of itself, for a gpxdata host of its own, as
# static libraries; and what it installs of them serves other projects.
# Its folder is kept, so that only the first run takes long.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK} -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_BUILD_TYPE=Debug -DPELLUVIA_SOURCE=${SOURCE} -DPELLUVIA_GPXDATA_HOST=${HOST}
    -DBUILD_SHARED_LIBS=OFF -DPELLUVIA_BUILD_FORMATS=ON -DPELLUVIA_INSTALL=ON)
run(${CMAKE_COMMAND} --build ${WORK})
run_consumer(${WORK}/consumer)

file(GLOB built RELATIVE ${WORK}/pelluvia ${WORK}/pelluvia/*)
foreach(each tools tests examples bench)
    if(each IN_LIST built)
        message(FATAL_ERROR "a project that only uses Pelluvia builds its ${each}")
    endif()
endforeach()

set(prefix ${WORK}/prefix)
file(REMOVE_RECURSE ${prefix})
run(${CMAKE_COMMAND} --install ${WORK} --prefix ${prefix})
file(GLOB_RECURSE libraries RELATIVE ${prefix} ${prefix}/*.a ${prefix}/*.so*)
foreach(each libpelluvia.a libpelluvia-formats.a)
    if(NOT libraries MATCHES "/${each}")
        message(FATAL_ERROR "${each} is not among the installed libraries: ${libraries}")
    endif()
endforeach()
if(libraries MATCHES "[.]so")
    message(FATAL_ERROR "shared libraries are installed, too: ${libraries}")
endif()

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK}/found -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_PREFIX_PATH=${prefix} -DPELLUVIA_SOURCE=)
run(${CMAKE_COMMAND} --build ${WORK}/found)
run_consumer(${WORK}/found/consumer)

file(GLOB_RECURSE pc ${prefix}/*/pelluvia.pc)
cmake_path(GET pc PARENT_PATH pc_folder)
set(ENV{PKG_CONFIG_PATH} ${pc_folder})
run(pkg-config --cflags --libs --static pelluvia)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${COMPILER} -std=c++20 ${CONSUMER}/main.cpp -o ${WORK}/by-pkg-config ${flags})
run_consumer(${WORK}/by-pkg-config)
