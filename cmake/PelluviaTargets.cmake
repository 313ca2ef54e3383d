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
