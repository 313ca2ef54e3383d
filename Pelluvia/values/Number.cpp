// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Number.h>

#include <cmath>
#include <limits>

namespace pelluvia {

namespace {

// 2^63 as a double; the largest 64-bit integer itself has none.
constexpr double int64Limit = 9223372036854775808.0;

template <class Integer>
Integer nearestEnd(bool negative) noexcept {
    return negative ? std::numeric_limits<Integer>::min() : std::numeric_limits<Integer>::max();
}

} // namespace

std::int64_t saturatedInt64(double value) noexcept {
    if (std::isnan(value)) {
        return 0;
    }
    if (value >= int64Limit || value < -int64Limit) {
        return nearestEnd<std::int64_t>(value < 0);
    }
    return static_cast<std::int64_t>(value);
}

std::int32_t saturatedInt32(std::int64_t value) noexcept {
    using Limits = std::numeric_limits<std::int32_t>;
    if (value > Limits::max() || value < Limits::min()) {
        return nearestEnd<std::int32_t>(value < 0);
    }
    return static_cast<std::int32_t>(value);
}

std::int32_t saturatedInt32(double value) noexcept {
    return saturatedInt32(saturatedInt64(value));
}

float roundedFloat(double value) noexcept {
    // The language leaves the conversion of doubles beyond the largest float undefined, so those
    // are rounded here: from halfway to the next power of two, nearest is infinity.
    using Limits = std::numeric_limits<float>;
    constexpr double largest = Limits::max();
    constexpr double overflow = 340282356779733661637539395458142568448.0;
    if (value > largest || value < -largest) {
        const float magnitude = std::abs(value) < overflow ? Limits::max() : Limits::infinity();
        return value < 0 ? -magnitude : magnitude;
    }
    return static_cast<float>(value);
}

std::int32_t Number::intValue() const noexcept {
    return type_ == Type::Integer ? saturatedInt32(bits_.integer) : saturatedInt32(doubleValue());
}

std::int64_t Number::int64Value() const noexcept {
    return type_ == Type::Integer ? bits_.integer : saturatedInt64(doubleValue());
}

float Number::floatValue() const noexcept {
    switch (type_) {
    case Type::Integer:
        return static_cast<float>(bits_.integer);
    case Type::Float:
        return bits_.single;
    case Type::Double:
        break;
    }
    return roundedFloat(bits_.real);
}

double Number::doubleValue() const noexcept {
    switch (type_) {
    case Type::Integer:
        return static_cast<double>(bits_.integer);
    case Type::Float:
        return static_cast<double>(bits_.single);
    case Type::Double:
        break;
    }
    return bits_.real;
}

} // namespace pelluvia
