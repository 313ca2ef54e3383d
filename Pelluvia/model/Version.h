// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

/// \file
/// The version of the framework: of these headers as macros, of the library as symbols with C
/// linkage. Usable from C and C++.

/// The version of these headers.
#define PELLUVIA_VERSION_MAJOR 1
#define PELLUVIA_VERSION_MINOR 0
#define PELLUVIA_VERSION_PATCH 0

/// Whether these headers are of the given version or a newer one; for `#if`, too. The parts are at
/// most 999.
#define PELLUVIA_VERSION_AT_LEAST(major, minor, patch)                                             \
    (PELLUVIA_VERSION_MAJOR * 1000000 + PELLUVIA_VERSION_MINOR * 1000 + PELLUVIA_VERSION_PATCH >=  \
     (major)*1000000 + (minor)*1000 + (patch))

#ifdef __cplusplus
extern "C" {
#endif

/// A what-string (`what libpelluvia.so` finds it) that names the framework, its project and
/// build 1.
PELLUVIA_EXPORT extern const char PelluviaVersionString[];

/// The version as a number: 1.0.
PELLUVIA_EXPORT extern const double PelluviaVersionNumber;

#ifdef __cplusplus
} // extern "C"
#endif
