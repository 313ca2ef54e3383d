# SPDX-License-Identifier: MIT

# Checks that every source under ROOT says which licence it has, in its first line, or in the second
# behind a #! line:
#
#     cmake -DROOT=<the project's folder> -P CheckLicences.cmake
#
# Sources are those with the endings below, and every script that begins with #!. Fixtures are data.

cmake_minimum_required(VERSION 3.22)

set(endings "\\.(h|c|cpp|m|mm|py|cmake|in|map)$|/CMakeLists\\.txt$")
set(data "\\.(md|txt|gpx|nmea|log|jsonl|json|dict|png|xml|po|1)$")
set(mark "SPDX-License-Identifier: MIT")

set(files ${ROOT}/CMakeLists.txt)
foreach(folder IN ITEMS Pelluvia tools tests examples bench fuzz cmake scripts .ci)
    file(GLOB_RECURSE found ${ROOT}/${folder}/*)
    list(APPEND files ${found})
endforeach()
list(FILTER files EXCLUDE REGEX "/tests/fixtures/|/__pycache__/")

set(missing 0)
set(checked 0)
foreach(source IN LISTS files)
    set(is_source FALSE)
    if(source MATCHES "${endings}")
        set(is_source TRUE)
    elseif(source MATCHES "${data}")
        continue()
    endif()
    file(STRINGS "${source}" lines LIMIT_COUNT 2)
    set(first "")
    set(second "")
    if(lines)
        list(GET lines 0 first)
    endif()
    list(LENGTH lines count)
    if(count GREATER 1)
        list(GET lines 1 second)
    endif()
    if(first MATCHES "^#!")
        set(is_source TRUE)
        set(first "${second}")
    endif()
    if(is_source)
        math(EXPR checked "${checked} + 1")
        string(FIND "${first}" "${mark}" at)
        if(at EQUAL -1)
            message("${source}: its first line does not say \"${mark}\"")
            math(EXPR missing "${missing} + 1")
        endif()
    endif()
endforeach()
if(checked LESS 100)
    message(FATAL_ERROR "only ${checked} sources were found under ${ROOT}")
endif()
if(missing GREATER 0)
    message(FATAL_ERROR "sources without a licence: ${missing} of ${checked}")
endif()
