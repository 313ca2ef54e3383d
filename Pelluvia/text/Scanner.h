// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// \file
/// Numbers out of text, the same in every locale: the decimal point is always a point.
///
/// A decimal number is an optional sign, digits with at most one point among or around them, and an
/// optional exponent with at least one digit. Hexadecimal floats, "inf" and "nan" are not numbers.
/// The nearest representable value is the result; what is too large becomes infinity, what is too
/// small becomes zero, both with their sign.

namespace pelluvia {

/// The value of the longest decimal number at the start of the text, behind any white space; 0.0
/// when there is none.
[[nodiscard]] PELLUVIA_EXPORT double doubleValue(std::string_view text) noexcept;

/// The value of the longest run of decimal digits, with an optional sign, at the start of the text,
/// behind any white space; 0 when there is none. Beyond the range, its nearest end.
[[nodiscard]] PELLUVIA_EXPORT std::int32_t intValue(std::string_view text) noexcept;

/// Reads a text from front to back. Each operation skips white space, reads one value and moves
/// behind it; when there is none it returns nothing and the position stays where it was.
///
/// Lifetime: the text is borrowed. Threads: a plain value.
class PELLUVIA_EXPORT Scanner {
  public:
    explicit Scanner(std::string_view text) noexcept : text_(text) {}

    /// A decimal number, rounded once to the nearest 32-bit float.
    [[nodiscard]] std::optional<float> scanFloat() noexcept;
    /// A decimal number, rounded to the nearest 64-bit float.
    [[nodiscard]] std::optional<double> scanDouble() noexcept;
    /// A signed decimal integer; beyond the range, its nearest end.
    [[nodiscard]] std::optional<std::int32_t> scanInt() noexcept;
    /// Hexadecimal digits with an optional "0x" before them; beyond the range, 0xFFFFFFFF.
    [[nodiscard]] std::optional<std::uint32_t> scanHexInt() noexcept;

    /// Where the next operation begins, in bytes from the start of the text.
    [[nodiscard]] std::size_t scanLocation() const noexcept { return position_; }
    /// What has not been read yet.
    [[nodiscard]] std::string_view remaining() const noexcept { return text_.substr(position_); }
    [[nodiscard]] bool isAtEnd() const noexcept { return position_ == text_.size(); }
    /// Moves over `length` bytes, at most to the end.
    void skip(std::size_t length) noexcept;

  private:
    std::string_view text_;
    std::size_t position_ = 0;
};

} // namespace pelluvia
