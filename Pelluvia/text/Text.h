// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <string_view>

namespace pelluvia {

/// Whether every byte is below 128, so that the text reads the same in ASCII.
[[nodiscard]] PELLUVIA_EXPORT bool isASCII(std::string_view text) noexcept;

/// The number of bytes of the white space that `text` begins with: the Unicode space separators,
/// the line and paragraph separators, and the control characters tab to carriage return and U+0085,
/// in UTF-8. The same in every locale.
[[nodiscard]] PELLUVIA_EXPORT std::size_t leadingWhiteSpace(std::string_view text) noexcept;
/// The same of the white space that `text` ends with.
[[nodiscard]] PELLUVIA_EXPORT std::size_t trailingWhiteSpace(std::string_view text) noexcept;

} // namespace pelluvia
