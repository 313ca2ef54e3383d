# SPDX-License-Identifier: MIT

# Every header compiles alone, and twice in a row; the public ones also without the folders of any
# library that the framework is built on: the build itself is the test.

file(GLOB_RECURSE headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
    ${PROJECT_SOURCE_DIR}/Pelluvia/*.h ${PROJECT_SOURCE_DIR}/tools/*.h)
list(APPEND headers Pelluvia/model/GPXDataHost.h) # generated
if(NOT TARGET PelluviaStorage)
    list(FILTER headers EXCLUDE REGEX "^Pelluvia/storage/")
endif()
set(inner_headers ${headers})
list(FILTER inner_headers INCLUDE REGEX "/internal/|/formats/nmea/(read|write|live)/|^tools/")
list(REMOVE_ITEM headers ${inner_headers})

# header_test(name header...): the objects of one source for each header.
function(header_test name)
    set(sources)
    foreach(header IN LISTS ARGN)
        string(REGEX REPLACE "\\.h$" ".cpp" source ${CMAKE_CURRENT_BINARY_DIR}/headers/${header})
        file(CONFIGURE OUTPUT ${source} CONTENT "#include <${header}>\n#include <${header}>\n")
        list(APPEND sources ${source})
    endforeach()
    add_library(${name} OBJECT ${sources})
    target_link_libraries(${name} PRIVATE pelluvia_options)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
    # Only the language counts here.
    target_compile_options(${name} PRIVATE -O0)
endfunction()

header_test(pelluvia_header_test ${headers})
header_test(pelluvia_inner_header_test ${inner_headers})
target_link_libraries(pelluvia_inner_header_test PRIVATE LibXml2::LibXml2)
if(TARGET PelluviaStorage)
    target_link_libraries(pelluvia_inner_header_test PRIVATE PkgConfig::GIO)
endif()
target_include_directories(pelluvia_inner_header_test SYSTEM PRIVATE
    $<$<TARGET_EXISTS:nlohmann_json::nlohmann_json>:$<TARGET_PROPERTY:nlohmann_json::nlohmann_json,INTERFACE_INCLUDE_DIRECTORIES>>)
