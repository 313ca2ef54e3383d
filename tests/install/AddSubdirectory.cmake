# An outside project builds the sources SOURCE as a part of itself, for a gpxdata host of its own.
# Its folder is kept, so that only the first run takes long.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK} -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_BUILD_TYPE=Debug -DPELLUVIA_SOURCE=${SOURCE} -DPELLUVIA_GPXDATA_HOST=${HOST})
run(${CMAKE_COMMAND} --build ${WORK})
run_consumer(${WORK}/consumer)

file(GLOB built RELATIVE ${WORK}/pelluvia ${WORK}/pelluvia/*)
foreach(each tools tests examples bench)
    if(each IN_LIST built)
        message(FATAL_ERROR "a project that only uses Pelluvia builds its ${each}")
    endif()
endforeach()
