# SPDX-License-Identifier: MIT

# What `cmake --install` puts under the prefix: the libraries, the public headers, the CMake package,
# pelluvia.pc and one .pc file for each component. The package of shared libraries asks for nothing: the
# XML library, the JSON library and GIO are their own business. Static ones need them from who links.

option(PELLUVIA_INSTALL "Install the framework" ${PROJECT_IS_TOP_LEVEL})
if(NOT PELLUVIA_INSTALL)
    return()
endif()

include(CMakePackageConfigHelpers)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/Pelluvia)

install(TARGETS Pelluvia EXPORT PelluviaTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
# Public are the headers that lie directly in a folder of the framework, or of a format. Those further
# down, and those named ...Internal.h, are not installed.
file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${PROJECT_SOURCE_DIR}
    ${PROJECT_SOURCE_DIR}/Pelluvia/*/*.h ${PROJECT_SOURCE_DIR}/Pelluvia/formats/*/*.h)
list(FILTER headers EXCLUDE REGEX "Internal\\.h$|/internal/")
foreach(component formats storage)
    if(NOT TARGET Pelluvia::${component})
        list(FILTER headers EXCLUDE REGEX "^Pelluvia/${component}/")
    endif()
endforeach()
foreach(header IN LISTS headers)
    cmake_path(GET header PARENT_PATH folder)
    install(FILES ${PROJECT_SOURCE_DIR}/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/${folder})
endforeach()
install(FILES ${PROJECT_BINARY_DIR}/generated/Pelluvia/model/GPXDataHost.h
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/Pelluvia/model)

install(EXPORT PelluviaTargets NAMESPACE Pelluvia:: DESTINATION ${package_folder})
# Each component has an export file of its own, which is loaded when the component is asked for.
set(pc_files pelluvia)
foreach(component formats storage)
    if(TARGET Pelluvia::${component})
        get_target_property(target Pelluvia::${component} ALIASED_TARGET)
        install(TARGETS ${target} EXPORT ${target}Targets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
        install(EXPORT ${target}Targets NAMESPACE Pelluvia:: DESTINATION ${package_folder})
        list(APPEND pc_files pelluvia-${component})
    endif()
endforeach()
# Who links static libraries links what they use, too.
set(package_dependencies "")
if(NOT BUILD_SHARED_LIBS)
    set(package_dependencies [[
include(CMakeFindDependencyMacro)
find_dependency(LibXml2)
find_dependency(Threads)
if("storage" IN_LIST Pelluvia_FIND_COMPONENTS)
    find_dependency(PkgConfig)
    pkg_check_modules(GIO REQUIRED IMPORTED_TARGET gio-2.0)
endif()
]])
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
set(pc_requires "")
set(pc_storage_requires "")
if(NOT BUILD_SHARED_LIBS)
    set(pc_requires "libxml-2.0")
    set(pc_storage_requires ", gio-2.0")
endif()
foreach(each IN LISTS pc_files)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${each}.pc.in ${PROJECT_BINARY_DIR}/${each}.pc @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${each}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
