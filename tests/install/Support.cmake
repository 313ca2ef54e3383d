# SPDX-License-Identifier: MIT

# What the scripts of this folder share.

# run(command...): runs the command; a failure ends the test with its output. Its standard output is
# left in `output`.
macro(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE errors)
    if(NOT result EQUAL 0)
        string(REPLACE ";" " " command "${ARGV}")
        message(FATAL_ERROR "${command}\n${output}${errors}failed: ${result}")
    endif()
endmacro()

# write_all_headers(file): a header that includes every installed one.
function(write_all_headers file)
    file(GLOB_RECURSE headers RELATIVE ${INCLUDEDIR} ${INCLUDEDIR}/Pelluvia/*.h)
    list(LENGTH headers count)
    if(count LESS 30)
        message(FATAL_ERROR "only ${count} headers are installed")
    endif()
    list(TRANSFORM headers REPLACE "(.+)" "#include <\\1>\n")
    string(JOIN "" source ${headers})
    file(WRITE ${file} "${source}")
endfunction()

# run_consumer(program): the outside program runs and writes a GPX file whose gpxdata namespace has
# the host HOST.
function(run_consumer program)
    set(file ${WORK}/ride.gpx)
    file(REMOVE ${file})
    run(${program} ${file})
    if(NOT output STREQUAL "written by Pelluvia 1\n")
        message(FATAL_ERROR "unexpected output: ${output}")
    endif()
    file(READ ${file} written)
    foreach(expected "xmlns:gpxdata=\"http://${HOST}/XML/GPXDATA/1/0\"" "<name>Morning ride</name>"
                     "<trkpt lat=\"47.37\" lon=\"8.54\">" "<gpxdata:hr>121</gpxdata:hr>" "</gpx>\n")
        string(FIND "${written}" "${expected}" position)
        if(position EQUAL -1)
            message(FATAL_ERROR "${expected} is not in\n${written}")
        endif()
    endforeach()
endfunction()
