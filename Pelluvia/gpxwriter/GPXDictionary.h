// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <stdint.h> // NOLINT(modernize-deprecated-headers): for C, too

#ifdef __cplusplus
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Key.h>
#endif

/// \file
/// Dictionaries for programs in C, to be given to the functions of GPXWriter.h:
///
///     GPXDictionary *extras = GPXDictionaryCreate();
///     GPXDictionarySetInt(extras, "hr", 121);
///     GPXWriteTrackPoint(document, 1591000000, extras, 47.1, 8.5, 430.0);
///     GPXDictionaryDestroy(extras);
///
/// The names of the keys are those of ExtrasKeys.h. In C++ a `GPXDictionary` is a `Dictionary`, and
/// everything that it can do can be done with it.
///
/// Threads: a dictionary belongs to one thread at a time.

#ifdef __cplusplus
namespace pelluvia {

using GPXDictionary = Dictionary;
using GPXKey = Key;
/// How keys are passed to functions.
using GPXKeyRef = const Key &;

extern "C" {
#else
typedef struct GPXDictionary GPXDictionary;
typedef struct GPXKey GPXKey;
/* How keys are passed to functions; never null. */
typedef const GPXKey *GPXKeyRef;
#endif

// NOLINTBEGIN(modernize-redundant-void-arg): C needs it

/// A new, empty dictionary, to be released with `GPXDictionaryDestroy`. Null without memory.
PELLUVIA_NODISCARD PELLUVIA_EXPORT GPXDictionary *GPXDictionaryCreate(void);

/// Releases a dictionary; null is left alone.
PELLUVIA_EXPORT void GPXDictionaryDestroy(GPXDictionary *dictionary);

// NOLINTEND(modernize-redundant-void-arg)

/// Puts a value under the key (UTF-8, copied), in the place of an earlier one. The result is 0, or
/// else a number as in `errno`: EINVAL for a dictionary or key that is null, ENOMEM without memory
/// and for a dictionary that has all the entries it can have. The dictionary is then as it was.
PELLUVIA_EXPORT int GPXDictionarySetInt(GPXDictionary *dictionary, const char *key, int64_t value);
PELLUVIA_EXPORT int GPXDictionarySetDouble(GPXDictionary *dictionary, const char *key,
                                           double value);
PELLUVIA_EXPORT int GPXDictionarySetFloat(GPXDictionary *dictionary, const char *key, float value);
/// The string is copied; null removes the key.
PELLUVIA_EXPORT int GPXDictionarySetString(GPXDictionary *dictionary, const char *key,
                                           const char *value);

/// Removes everything, so that the dictionary can be filled for the next point.
PELLUVIA_EXPORT void GPXDictionaryRemoveAll(GPXDictionary *dictionary);

/// The key of this name, for the accessors at the end of GPXWriter.h; to be released with
/// `GPXKeyDestroy`. Null for a null name and without memory.
PELLUVIA_NODISCARD PELLUVIA_EXPORT GPXKey *GPXKeyCreate(const char *name);
/// Releases a key; null is left alone.
PELLUVIA_EXPORT void GPXKeyDestroy(GPXKey *key);

#ifdef __cplusplus
} // extern "C"

} // namespace pelluvia
#endif
