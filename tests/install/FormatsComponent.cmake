# SPDX-License-Identifier: MIT

# Outside programs use the installed formats component: one finds it with find_package, the other with
# pkg-config.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
# Two seconds of a receiver.
file(WRITE ${WORK}/ride.nmea
    "$GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*6A\r\n"
    "$GPRMC,123520,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W*60\r\n")

# run_formats_consumer(program): it makes a GPX file and a call log of the sentences.
function(run_formats_consumer program)
    file(REMOVE ${WORK}/ride.gpx ${WORK}/ride.jsonl)
    run(${program} ${WORK}/ride.nmea ${WORK}/ride.gpx ${WORK}/ride.jsonl)
    if(NOT output MATCHES "^2 sentences, 2 points;")
        message(FATAL_ERROR "unexpected output: ${output}")
    endif()
    file(READ ${WORK}/ride.gpx gpx)
    if(NOT gpx MATCHES "<trkpt lat=\"48.1173\"")
        message(FATAL_ERROR "there is no point in\n${gpx}")
    endif()
    file(READ ${WORK}/ride.jsonl log)
    if(NOT log MATCHES "\"trackPoint:extra:\",\"point\":{\"latitude\":48.117")
        message(FATAL_ERROR "there is no point in\n${log}")
    endif()
endfunction()

run(${CMAKE_COMMAND} -S ${CONSUMER} -B ${WORK}/cmake -G Ninja -DCMAKE_CXX_COMPILER=${COMPILER}
    -DCMAKE_PREFIX_PATH=${PREFIX})
run(${CMAKE_COMMAND} --build ${WORK}/cmake)
run_formats_consumer(${WORK}/cmake/consumer)

set(ENV{PKG_CONFIG_PATH} ${LIBDIR}/pkgconfig)
run(pkg-config --print-requires-private pelluvia-formats)
if(NOT output STREQUAL "")
    message(FATAL_ERROR "pelluvia-formats.pc asks for ${output}")
endif()
run(pkg-config --cflags --libs pelluvia-formats)
separate_arguments(flags UNIX_COMMAND "${output}")
run(${COMPILER} -std=c++20 ${CONSUMER}/main.cpp -o ${WORK}/consumer ${flags})
set(ENV{LD_LIBRARY_PATH} ${LIBDIR})
run_formats_consumer(${WORK}/consumer)
