# Every header compiles alone, twice in a row, and without the folders of any library that the
# framework is built on: the build itself is the test.

file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
    ${PROJECT_SOURCE_DIR}/Pelluvia/*/*.h ${PROJECT_SOURCE_DIR}/Pelluvia/*/internal/*.h)
list(APPEND headers Pelluvia/model/GPXDataHost.h) # generated

set(header_test_sources)
foreach(header IN LISTS headers)
    string(REGEX REPLACE "\\.h$" ".cpp" source ${CMAKE_CURRENT_BINARY_DIR}/headers/${header})
    file(CONFIGURE OUTPUT ${source} CONTENT "#include <${header}>\n#include <${header}>\n")
    list(APPEND header_test_sources ${source})
endforeach()

add_library(pelluvia_header_test OBJECT ${header_test_sources})
target_link_libraries(pelluvia_header_test PRIVATE pelluvia_options)
target_include_directories(pelluvia_header_test PRIVATE
    ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR}/generated)
