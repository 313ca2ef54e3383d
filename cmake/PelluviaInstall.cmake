# What `cmake --install` puts under the prefix: the shared libraries, the public headers, the CMake
# package, pelluvia.pc and pelluvia-storage.pc. The package asks for nothing: the XML library and GIO
# are the shared libraries' own business.

option(PELLUVIA_INSTALL "Install the framework" ${PROJECT_IS_TOP_LEVEL})
if(NOT PELLUVIA_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Pelluvia)

install(TARGETS Pelluvia EXPORT PelluviaTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Public are the headers that lie directly in a folder of the framework. Those further down, and those
# named ...Internal.h, are not installed.
file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/Pelluvia/*/*.h)
list(FILTER headers EXCLUDE REGEX "Internal\\.h$")
if(NOT TARGET PelluviaStorage)
    list(FILTER headers EXCLUDE REGEX "^Pelluvia/storage/")
endif()
foreach(header IN LISTS headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/generated/Pelluvia/model/GPXDataHost.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Pelluvia/model)

install(EXPORT PelluviaTargets NAMESPACE Pelluvia:: DESTINATION ${package_folder})
if(TARGET PelluviaStorage)
    install(TARGETS PelluviaStorage EXPORT PelluviaStorageTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(EXPORT PelluviaStorageTargets NAMESPACE Pelluvia:: DESTINATION ${package_folder})
endif()
configure_package_config_file(
    ${CMAKE_CURRENT_LIST_DIR}/PelluviaConfig.cmake.in ${PROJECT_BINARY_DIR}/PelluviaConfig.cmake
    INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(
    ${PROJECT_BINARY_DIR}/PelluviaConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    ${PROJECT_BINARY_DIR}/PelluviaConfig.cmake ${PROJECT_BINARY_DIR}/PelluviaConfigVersion.cmake
    DESTINATION ${package_folder})

# pkg-config finds the prefix from where the file lies, so an installed tree can be moved.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR IS_ABSOLUTE "${CMAKE_INSTALL_INCLUDEDIR}")
    set(pc_prefix ${CMAKE_INSTALL_PREFIX})
    set(pc_libdir ${CMAKE_INSTALL_FULL_LIBDIR})
    set(pc_includedir ${CMAKE_INSTALL_FULL_INCLUDEDIR})
else()
    file(RELATIVE_PATH up /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
    string(REGEX REPLACE "/$" "" up ${up})
    set(pc_prefix "\${pcfiledir}/${up}")
    set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
    set(pc_includedir "\${prefix}/${CMAKE_INSTALL_INCLUDEDIR}")
endif()
set(pc_files pelluvia)
if(TARGET PelluviaStorage)
    list(APPEND pc_files pelluvia-storage)
endif()
foreach(each IN LISTS pc_files)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${each}.pc.in ${PROJECT_BINARY_DIR}/${each}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${each}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
