# SPDX-License-Identifier: MIT

# What all targets of this project share: the language, the warnings, the sanitizers.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
if(PROJECT_IS_TOP_LEVEL)
    set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
    set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
    set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_LIBDIR})
endif()

find_package(LibXml2 REQUIRED)
find_package(Threads REQUIRED)

# The storage component is built where GIO is there.
if(PELLUVIA_BUILD_STORAGE)
    find_package(PkgConfig QUIET)
    if(PkgConfig_FOUND)
        pkg_check_modules(GIO QUIET IMPORTED_TARGET gio-2.0)
    endif()
    if(NOT TARGET PkgConfig::GIO)
        message(STATUS "GIO (libglib2.0-dev and pkg-config) is not there: the storage component is left out")
    endif()
endif()

# Executables are position-independent, not only their code.
include(CheckPIESupported)
check_pie_supported()

# Linked privately by every target of ours and never exported.
add_library(pelluvia_options INTERFACE)
target_compile_options(pelluvia_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wold-style-cast
    -Wnon-virtual-dtor -Woverloaded-virtual
    # Results must not depend on which processor runs them.
    -ffp-contract=off)
if(PELLUVIA_WERROR)
    target_compile_options(pelluvia_options INTERFACE -Werror)
endif()
if(PELLUVIA_SANITIZE)
    target_compile_options(pelluvia_options INTERFACE
        -fsanitize=${PELLUVIA_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer -g)
    target_link_options(pelluvia_options INTERFACE -fsanitize=${PELLUVIA_SANITIZE})
endif()

# What an attacker would make of a fault of ours is made harder. The checks of the C library need an
# optimiser, and the sanitizers bring their own. For what is installed; tests and measuring programs go
# without.
add_library(pelluvia_hardening INTERFACE)
include(CheckCXXCompilerFlag)
set(PELLUVIA_HARDENED OFF)
if(PELLUVIA_HARDENING AND NOT PELLUVIA_SANITIZE AND CMAKE_BUILD_TYPE MATCHES "^Rel|^MinSizeRel$")
    set(PELLUVIA_HARDENED ON)
    target_compile_options(pelluvia_hardening INTERFACE
        -fstack-protector-strong -U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2)
    foreach(flag -fstack-clash-protection -fcf-protection)
        string(MAKE_C_IDENTIFIER "has${flag}" has_flag)
        check_cxx_compiler_flag(${flag} ${has_flag})
        if(${has_flag})
            target_compile_options(pelluvia_hardening INTERFACE ${flag})
        endif()
    endforeach()
    target_link_options(pelluvia_hardening INTERFACE LINKER:-z,relro,-z,now)
endif()

# pelluvia_runpath(target path): where the target's file looks for our libraries, from the folder it
# lies in. The build tree lies as the installed one does, so the same path serves both: CMake would
# make room for a longer one with empty entries, and those mean the working folder.
function(pelluvia_runpath target path)
    set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN${path}")
    if(PROJECT_IS_TOP_LEVEL)
        set_target_properties(${target} PROPERTIES BUILD_WITH_INSTALL_RPATH ON)
    endif()
endfunction()

# pelluvia_library(target name OBJECTS target [USES library ...]): the library of the objects that is
# installed, shared unless BUILD_SHARED_LIBS says otherwise. The libraries that it uses are its own
# affair: a shared one brings them, and only who links a static one has to have them. The exported
# symbols are named in exports.map beside.
function(pelluvia_library target name)
    cmake_parse_arguments(this "" "OBJECTS" "USES" ${ARGN})
    add_library(${target} $<TARGET_OBJECTS:${this_OBJECTS}>)
    set_target_properties(${target} PROPERTIES
        OUTPUT_NAME ${name} VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR})
    if(NOT BUILD_SHARED_LIBS)
        target_link_libraries(${target} PRIVATE ${this_USES})
        return()
    endif()
    list(TRANSFORM this_USES REPLACE "(.+)" "$<BUILD_INTERFACE:\\1>")
    target_link_libraries(${target} PRIVATE
        $<BUILD_INTERFACE:pelluvia_options> $<BUILD_INTERFACE:pelluvia_hardening> ${this_USES})
    # Calls inside the library go straight to their function, not through the loader's table; and of the
    # standard library's templates that we instantiate nothing shows.
    set(exports ${CMAKE_CURRENT_SOURCE_DIR}/exports.map)
    target_link_options(${target} PRIVATE
        LINKER:-Bsymbolic-functions LINKER:--version-script=${exports} LINKER:--as-needed)
    set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS ${exports})
endfunction()
