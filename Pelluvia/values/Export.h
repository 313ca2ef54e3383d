#pragma once

/// \file
/// What the shared library shows. Everything is compiled hidden; a class or function that belongs
/// to the public interface says `PELLUVIA_EXPORT`.

#if defined(__GNUC__)
#define PELLUVIA_EXPORT __attribute__((visibility("default")))
#else
#define PELLUVIA_EXPORT
#endif
