# Checks what the sources under ROOT include:
#
#     cmake -DROOT=<folder that holds Pelluvia/> -P CheckIncludes.cmake
#
# Dependencies point one way, the subsystems do not know each other, and only platform/ sees a
# library or the operating system; everything else includes <Pelluvia/...> and the C++ standard
# library, whose headers have neither a slash nor a dot in their names.

cmake_minimum_required(VERSION 3.22)

# A folder and the folders that it may include beside itself.
set(platform_sees)
set(model_sees platform)
set(companion_sees model platform)
set(gpximport_sees companion model platform)
set(gpxwriter_sees companion model platform)
set(nmea_sees companion model platform)
set(recording_sees companion model platform)
set(storage_sees companion model platform)

set(violations 0)
function(forbid source reason)
    message("${source}: ${reason}")
    math(EXPR count "${violations} + 1")
    set(violations ${count} PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE sources RELATIVE ${ROOT}
    ${ROOT}/Pelluvia/*.h ${ROOT}/Pelluvia/*.h.in ${ROOT}/Pelluvia/*.cpp)
if(NOT sources)
    message(FATAL_ERROR "there are no sources under ${ROOT}/Pelluvia")
endif()
foreach(source IN LISTS sources)
    string(REGEX REPLACE "^Pelluvia/([^/]+)/.*" "\\1" folder ${source})
    if(NOT DEFINED ${folder}_sees AND NOT folder STREQUAL platform)
        forbid(${source} "the folder ${folder} is not named in CheckIncludes.cmake")
        continue()
    endif()
    file(STRINGS ${ROOT}/${source} includes REGEX "^[ \t]*#[ \t]*include")
    foreach(include IN LISTS includes)
        if(NOT include MATCHES "<([^>]+)>")
            forbid(${source} "not in angle brackets: ${include}")
            continue()
        endif()
        set(header ${CMAKE_MATCH_1})
        if(header MATCHES "^Pelluvia/([^/]+)/")
            set(other ${CMAKE_MATCH_1})
            if(NOT other STREQUAL folder AND NOT other IN_LIST ${folder}_sees)
                forbid(${source} "${folder} must not know ${other}: ${header}")
            endif()
        elseif(header MATCHES "[/.]" AND NOT folder STREQUAL platform)
            forbid(${source} "only platform may include ${header}")
        endif()
    endforeach()
endforeach()
if(violations GREATER 0)
    message(FATAL_ERROR "forbidden includes: ${violations}")
endif()
