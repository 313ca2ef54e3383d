# SPDX-License-Identifier: MIT

# Installs the build tree BUILD under PREFIX, which is not the prefix that it was configured for.
cmake_minimum_required(VERSION 3.22)
include(${CMAKE_CURRENT_LIST_DIR}/Support.cmake)

file(REMOVE_RECURSE ${PREFIX})
run(${CMAKE_COMMAND} --install ${BUILD} --prefix ${PREFIX})

file(GLOB_RECURSE headers ${INCLUDEDIR}/*.h)
foreach(each IN LISTS headers)
    if(NOT each MATCHES "^${INCLUDEDIR}/Pelluvia/(formats/)?[a-z]+/[A-Za-z0-9]+\\.h$" OR each MATCHES "Internal\\.h$|/internal/")
        message(FATAL_ERROR "${each} is not a public header")
    endif()
endforeach()
# What is installed must neither lead back to where it was built nor ask for the libraries behind it.
file(GLOB_RECURSE texts ${LIBDIR}/*.cmake ${LIBDIR}/*.pc)
foreach(each IN LISTS texts)
    file(STRINGS ${each} found REGEX "${BUILD}|[Xx][Mm][Ll]2|nlohmann|gio-2|glib-2|PkgConfig")
    if(found)
        message(FATAL_ERROR "${each}: ${found}")
    endif()
endforeach()
