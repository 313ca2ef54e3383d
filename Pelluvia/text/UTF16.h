// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <string_view>

/// \file
/// Positions and lengths of UTF-8 texts counted in UTF-16 code units: a character beyond U+FFFF
/// counts as two, any other as one. A byte that is no part of well-formed UTF-8 counts as one.

namespace pelluvia {

/// The number of units of a text.
[[nodiscard]] PELLUVIA_EXPORT std::size_t utf16Length(std::string_view text) noexcept;

/// What a text holds of the `count` units that start behind its first `from`: less where it ends
/// before, empty where it ends before the first. A character of two units is there as a whole when
/// one of them is.
[[nodiscard]] PELLUVIA_EXPORT std::string_view
utf16Substring(std::string_view text, std::size_t from,
               std::size_t count = std::string_view::npos) noexcept;

/// The position in bytes of the character that holds the unit `units` from the end, 1 for the last
/// unit; `npos` when the text is shorter. Looks at the end of the text only. `units` is at least 1.
[[nodiscard]] PELLUVIA_EXPORT std::size_t utf16PositionFromEnd(std::string_view text,
                                                               std::size_t units) noexcept;

} // namespace pelluvia
