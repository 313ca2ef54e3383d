#pragma once

#include <Pelluvia/values/Export.h>

#include <cstdint>

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

/// A number that remembers how it was given: as an integer, a 32-bit float or a 64-bit float.
/// Readers ask for the width they need and get a defined result whatever is stored. A plain value,
/// 16 bytes.
class PELLUVIA_EXPORT Number {
  public:
    enum class Type : std::uint8_t { Integer, Float, Double };

    explicit Number(std::int32_t value) noexcept : type_(Type::Integer) { bits_.integer = value; }
    explicit Number(std::int64_t value) noexcept : type_(Type::Integer) { bits_.integer = value; }
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
