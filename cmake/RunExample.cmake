# SPDX-License-Identifier: MIT

# Runs an example in an empty folder and checks what it does:
#
#     cmake -DPROGRAM=... -DWORK=<folder> [-DARGUMENTS=a|b] -DSTATUS=<exit status>
#           [-DOUTPUT=<file>]              standard output is that file's content
#           [-DMESSAGE=<expression>]       standard error matches; without it, it is empty
#           [-DMADE=<name>]                the run leaves this file, and no other; without it, none
#           [-DCONTENT=<file>]             and its content is that file's
#           [-DOLD=<name>]                 a file that is there before, and must be left as it is
#           -P RunExample.cmake

cmake_minimum_required(VERSION 3.22)

file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
if(DEFINED OLD)
    file(WRITE ${WORK}/${OLD} "old content")
endif()
string(REPLACE "|" ";" arguments "${ARGUMENTS}")
execute_process(COMMAND ${PROGRAM} ${arguments} WORKING_DIRECTORY ${WORK}
    RESULT_VARIABLE status OUTPUT_FILE ${WORK}.output ERROR_VARIABLE messages)

if(NOT status STREQUAL STATUS)
    message(FATAL_ERROR "exit status ${status}, not ${STATUS}\n${messages}")
endif()
if(DEFINED MESSAGE AND NOT messages MATCHES "${MESSAGE}")
    message(FATAL_ERROR "this does not match ${MESSAGE}:\n${messages}")
elseif(NOT DEFINED MESSAGE AND NOT messages STREQUAL "" AND STATUS EQUAL 0)
    message(FATAL_ERROR "unexpected messages:\n${messages}")
endif()

function(expect_same file expected)
    execute_process(COMMAND ${CMAKE_COMMAND} -E compare_files ${file} ${expected} RESULT_VARIABLE differs)
    if(differs)
        execute_process(COMMAND diff -u ${expected} ${file})
        message(FATAL_ERROR "${file} is not the same as ${expected}")
    endif()
endfunction()
if(DEFINED OUTPUT)
    expect_same(${WORK}.output ${OUTPUT})
endif()
file(GLOB made RELATIVE ${WORK} ${WORK}/*)
if(NOT made STREQUAL "${MADE}")
    message(FATAL_ERROR "the folder holds '${made}', not '${MADE}'")
endif()
if(DEFINED CONTENT)
    expect_same(${WORK}/${MADE} ${CONTENT})
endif()
if(DEFINED OLD)
    file(READ ${WORK}/${OLD} content)
    if(NOT content STREQUAL "old content")
        message(FATAL_ERROR "${OLD} was changed")
    endif()
endif()
