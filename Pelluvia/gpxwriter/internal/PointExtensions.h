// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpxwriter/internal/TextCursor.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstddef>

namespace pelluvia {

/// The most bytes that `appendPointExtensions` writes.
inline constexpr std::size_t largestPointExtensions = 1024;

/// What `GPXMakePointExtensions` returns, appended; nothing for a null dictionary.
void appendPointExtensions(TextCursor &text, const Dictionary *extras, bool usePrefix) noexcept;

} // namespace pelluvia
