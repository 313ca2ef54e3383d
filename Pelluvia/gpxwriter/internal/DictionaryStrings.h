// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Dictionary.h>

#include <string_view>

/// \file
/// The strings of extras dictionaries without a copy, for the writer's own use.

namespace pelluvia {

/// The string under the key as the writer understands it: NUL-terminated ASCII, so an embedded NUL
/// ends it. Null when the dictionary is null or holds no such string. Valid until the dictionary
/// changes.
[[nodiscard]] const char *borrowedStringFromDictionary(const Dictionary *dictionary,
                                                       const Key &key) noexcept;

} // namespace pelluvia
