#pragma once

#include <Pelluvia/values/Export.h>

/// \file
/// The version symbols of the framework, with C linkage.

extern "C" {

/// A what-string (`what libpelluvia.so` finds it) that names the framework, its project and
/// build 1.
PELLUVIA_EXPORT extern const char PelluviaVersionString[];

/// The version as a number: 1.0.
PELLUVIA_EXPORT extern const double PelluviaVersionNumber;

} // extern "C"
