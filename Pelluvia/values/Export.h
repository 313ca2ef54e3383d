// SPDX-License-Identifier: MIT

#pragma once

/// \file
/// What the shared library shows. Everything is compiled hidden; a class or function that belongs
/// to the public interface says `PELLUVIA_EXPORT`. Its private members say `PELLUVIA_HIDDEN` unless
/// inline functions of the header need them: what is not shown can change without harm. For C, too.

#if defined(__GNUC__)
#define PELLUVIA_EXPORT __attribute__((visibility("default")))
#define PELLUVIA_HIDDEN __attribute__((visibility("hidden")))
#else
#define PELLUVIA_EXPORT
#define PELLUVIA_HIDDEN
#endif

/// In headers that are C, too: a function whose result must be used.
#if defined(__cplusplus)
#define PELLUVIA_NODISCARD [[nodiscard]]
#elif defined(__GNUC__)
#define PELLUVIA_NODISCARD __attribute__((warn_unused_result))
#else
#define PELLUVIA_NODISCARD
#endif
