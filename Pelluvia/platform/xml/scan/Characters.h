#pragma once

#include <cstddef>
#include <string_view>

/// \file
/// Characters that take more than one byte, and the references that stand for characters.

namespace pelluvia::xml::scan {

/// The first byte behind the run of multibyte characters that begins at `at`; where one of them is
/// not well-formed UTF-8, or not allowed in XML, the position of that one.
[[nodiscard]] const char *skipMultibyte(const char *at) noexcept;

/// A character in UTF-8.
struct Character {
    char bytes[4] = {};
    std::size_t size = 0; ///< 0 for none
    [[nodiscard]] std::string_view text() const noexcept { return {bytes, size}; }
};

/// Reads the reference at `at`, where there is an ampersand, and moves behind it: a reference to a
/// character by number, or one of the five that XML declares itself. None, and no move, for
/// anything else.
[[nodiscard]] Character readReference(const char *&at) noexcept;

/// No reference that `readReference` reads is longer.
inline constexpr std::size_t longestReference = 16;

} // namespace pelluvia::xml::scan
