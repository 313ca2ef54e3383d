# SPDX-License-Identifier: MIT

# Checks what the sources under ROOT include:
#
#     cmake -DROOT=<folder that holds Pelluvia/ and tools/> -P CheckIncludes.cmake
#
# Dependencies point one way, the subsystems do not know each other, and each outside library has one
# folder that sees it; everything else includes <Pelluvia/...>, <tools/...> and the C++ standard
# library, whose headers have neither a slash nor a dot in their names.

cmake_minimum_required(VERSION 3.22)

# One row for each folder: row(folder [what it may include ...]). Beside itself and the folders below
# it, a folder may include the folders that its row names, the single headers that it names, and the
# outside headers that match an expression behind OUTSIDE. A source belongs to the longest folder that
# has a row.
set(rows "")
macro(row folder)
    cmake_parse_arguments(this "" "" "OUTSIDE" ${ARGN})
    list(APPEND rows ${folder})
    set("${folder} sees" ${this_UNPARSED_ARGUMENTS})
    set("${folder} outside" ${this_OUTSIDE})
endmacro()

set(posix [[^(fcntl|iconv|libintl|poll|syslog|termios|unistd|sys/[a-z_]+)\.h$]])
set(c_types [[^std(def|int)\.h$]])
set(basis Pelluvia/values Pelluvia/text Pelluvia/system)
set(framework ${basis} Pelluvia/xml Pelluvia/model)

# The names of the known keys are the stream's own; their numbers are compiled into Key.
row(Pelluvia/values Pelluvia/model/KnownKeys.h)
row(Pelluvia/system Pelluvia/values OUTSIDE ${posix})
row(Pelluvia/text Pelluvia/values Pelluvia/system)
# The parser knows its engines, never the other way: they see what both tell of (errors, limits, events).
set(parser_terms Pelluvia/xml/XMLErrors.h Pelluvia/xml/XMLLimits.h)
row(Pelluvia/xml Pelluvia/values)
row(Pelluvia/xml/internal Pelluvia/values Pelluvia/system ${parser_terms} OUTSIDE ${posix})
row(Pelluvia/xml/internal/sax2
    Pelluvia/values Pelluvia/xml/internal ${parser_terms} Pelluvia/xml/XMLParserDelegate.h OUTSIDE ^libxml/)
row(Pelluvia/xml/internal/scan
    Pelluvia/values Pelluvia/xml/internal ${parser_terms} Pelluvia/xml/XMLParserDelegate.h
    OUTSIDE ^emmintrin.h$)
row(Pelluvia/model ${basis} OUTSIDE ${c_types}) # for C, too
row(Pelluvia/gpximport ${framework})
row(Pelluvia/gpxwriter ${basis} Pelluvia/model OUTSIDE ${c_types}) # for C, too
row(Pelluvia/nmea ${basis} Pelluvia/model)
row(Pelluvia/recording ${basis} Pelluvia/model)
row(Pelluvia/storage ${basis} Pelluvia/model)
row(Pelluvia/storage/internal ${basis} Pelluvia/model Pelluvia/storage OUTSIDE ${posix} "^(gio|glib)")
row(Pelluvia/formats/internal ${basis} Pelluvia/model OUTSIDE ${posix})
row(Pelluvia/formats/calllog ${basis} Pelluvia/model Pelluvia/formats/internal)
row(Pelluvia/formats/calllog/internal
    ${basis} Pelluvia/model Pelluvia/formats/internal Pelluvia/formats/calllog
    OUTSIDE ^nlohmann/json.hpp$ ${posix})
row(Pelluvia/formats/nmea ${basis} Pelluvia/model Pelluvia/nmea Pelluvia/formats/internal)
row(Pelluvia/formats/nmea/live
    ${basis} Pelluvia/model Pelluvia/formats/internal Pelluvia/formats/nmea OUTSIDE ${posix})
row(tools/pelluvia/terminal ${basis} Pelluvia/model OUTSIDE ${posix})
row(tools/pelluvia/files
    Pelluvia tools/pelluvia/commandline tools/pelluvia/terminal OUTSIDE ${posix} ^CLI/)
row(tools/pelluvia/commandline
    Pelluvia tools/pelluvia/files tools/pelluvia/terminal OUTSIDE ^CLI/)
row(tools/pelluvia/commands
    Pelluvia tools/pelluvia/commandline tools/pelluvia/files tools/pelluvia/terminal
    OUTSIDE ${posix} ^nlohmann/json.hpp$)
row(tools/pelluvia/storage Pelluvia tools/pelluvia OUTSIDE ^glib.h$)
row(tools/pelluvia Pelluvia OUTSIDE ${posix}) # main.cpp

set(violations 0)
function(forbid source reason)
    message("${source}: ${reason}")
    math(EXPR count "${violations} + 1")
    set(violations ${count} PARENT_SCOPE)
endfunction()

# folder_of(path variable): the row that the path belongs to; empty where there is none.
function(folder_of path variable)
    cmake_path(GET path PARENT_PATH folder)
    while(NOT folder STREQUAL "" AND NOT folder IN_LIST rows)
        cmake_path(GET folder PARENT_PATH folder)
    endwhile()
    set(${variable} "${folder}" PARENT_SCOPE)
endfunction()

file(GLOB_RECURSE sources RELATIVE ${ROOT}
    ${ROOT}/Pelluvia/*.h ${ROOT}/Pelluvia/*.h.in ${ROOT}/Pelluvia/*.cpp
    ${ROOT}/tools/*.h ${ROOT}/tools/*.cpp)
if(NOT sources)
    message(FATAL_ERROR "there are no sources under ${ROOT}")
endif()
foreach(source IN LISTS sources)
    folder_of(${source} folder)
    if(folder STREQUAL "")
        forbid(${source} "its folder has no row in CheckIncludes.cmake")
        continue()
    endif()
    file(STRINGS ${ROOT}/${source} includes REGEX "^[ \t]*#[ \t]*include")
    foreach(include IN LISTS includes)
        if(NOT include MATCHES "<([^>]+)>")
            forbid(${source} "not in angle brackets: ${include}")
            continue()
        endif()
        set(header ${CMAKE_MATCH_1})
        set(allowed FALSE)
        if(header MATCHES "^(Pelluvia|tools)/")
            foreach(seen IN LISTS folder "${folder} sees")
                cmake_path(IS_PREFIX seen ${header} prefix)
                if(prefix)
                    set(allowed TRUE)
                endif()
            endforeach()
        elseif(NOT header MATCHES "[/.]")
            set(allowed TRUE)
        else()
            foreach(expression IN LISTS "${folder} outside")
                if(header MATCHES "${expression}")
                    set(allowed TRUE)
                endif()
            endforeach()
        endif()
        if(NOT allowed)
            forbid(${source} "${folder} must not know ${header}")
        endif()
    endforeach()
endforeach()
if(violations GREATER 0)
    message(FATAL_ERROR "forbidden includes: ${violations}")
endif()
