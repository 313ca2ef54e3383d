// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <concepts>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>

namespace pelluvia {

/// Converts to a 32-bit integer: the fraction is dropped, what lies beyond the range becomes its
/// nearest end, NaN becomes 0.
[[nodiscard]] PELLUVIA_EXPORT std::int32_t saturatedInt32(double value) noexcept;
/// The same for integers: beyond the range, its nearest end.
[[nodiscard]] PELLUVIA_EXPORT std::int32_t saturatedInt32(std::int64_t value) noexcept;
/// The same towards 64-bit integers.
[[nodiscard]] PELLUVIA_EXPORT std::int64_t saturatedInt64(double value) noexcept;
/// Rounds to the nearest 32-bit float; what is too large becomes infinity of its sign.
[[nodiscard]] PELLUVIA_EXPORT float roundedFloat(double value) noexcept;

/// Types whose values are integers: the integer types, `bool` (0 or 1), and enumerations that
/// convert to integers. Characters are text and no integers.
template <class T>
concept IntegerLike = (std::integral<T> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
                       !std::same_as<T, char8_t> && !std::same_as<T, char16_t> &&
                       !std::same_as<T, char32_t>) ||
                      (std::is_enum_v<T> && std::convertible_to<T, std::int64_t>);

/// Any integer as a signed one of 64 bits: what lies beyond the range, as unsigned ones from 2^63
/// on do, becomes the largest.
template <IntegerLike Integer>
[[nodiscard]] constexpr std::int64_t saturatedInt64(Integer value) noexcept {
    if constexpr (std::is_enum_v<Integer>) {
        return saturatedInt64(static_cast<std::underlying_type_t<Integer>>(value));
    } else if constexpr (std::same_as<Integer, bool>) {
        return value ? 1 : 0;
    } else {
        return std::in_range<std::int64_t>(value) ? static_cast<std::int64_t>(value)
                                                  : std::numeric_limits<std::int64_t>::max();
    }
}

/// A number that remembers how it was given: as an integer, a 32-bit float or a 64-bit float.
/// Readers ask for the width they need and get a defined result whatever is stored. A plain value,
/// 16 bytes.
class PELLUVIA_EXPORT Number {
  public:
    enum class Type : std::uint8_t { Integer, Float, Double };

    /// Any integer, as `saturatedInt64` makes it one of 64 bits.
    template <IntegerLike Integer>
    explicit Number(Integer value) noexcept : type_(Type::Integer) {
        bits_.integer = saturatedInt64(value);
    }
    explicit Number(float value) noexcept : type_(Type::Float) { bits_.single = value; }
    explicit Number(double value) noexcept : type_(Type::Double) { bits_.real = value; }

    [[nodiscard]] Type type() const noexcept { return type_; }

    /// As a 32-bit integer; see `saturatedInt32`.
    [[nodiscard]] std::int32_t intValue() const noexcept;
    /// As a 64-bit integer; see `saturatedInt64`.
    [[nodiscard]] std::int64_t int64Value() const noexcept;
    /// As a 32-bit float; see `roundedFloat`.
    [[nodiscard]] float floatValue() const noexcept;
    /// As a 64-bit float; integers beyond 2^53 are rounded to the nearest.
    [[nodiscard]] double doubleValue() const noexcept;

  private:
    union {
        std::int64_t integer;
        float single;
        double real;
    } bits_{};
    Type type_;
};

} // namespace pelluvia
