// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Scanner.h>

#include <Pelluvia/text/Text.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cstring>
#include <limits>
#include <system_error>
#include <type_traits>

namespace pelluvia {

namespace {

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

std::size_t digitRun(std::string_view text) noexcept {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    return static_cast<std::size_t>(end - text.begin());
}

/// The same as `leadingWhiteSpace`. Nearly every text begins with its number.
std::size_t spaceBefore(std::string_view text) noexcept {
    const bool startsVisibly = !text.empty() && text[0] > ' ' && text[0] < '\x7F';
    return startsVisibly ? 0 : leadingWhiteSpace(text);
}

/// A decimal number at the start of a text, taken apart.
struct Decimal {
    std::size_t length = 0; // bytes, sign included; 0: there is no number
    bool negative = false;
    std::string_view magnitude; // without the sign, as std::from_chars reads it
    bool large = false;         // at least one: out of range means infinity, otherwise zero
};

/// The exponent at the start of a text: "e", an optional sign, digits. Its value is capped far
/// beyond what any float can hold but low enough to add digit counts to it.
struct Exponent {
    std::size_t length = 0;
    std::int64_t value = 0;
};

Exponent exponentPrefix(std::string_view text) noexcept {
    if (text.empty() || (text[0] != 'e' && text[0] != 'E')) {
        return {};
    }
    std::size_t position = 1;
    bool negative = false;
    if (position < text.size() && (text[position] == '+' || text[position] == '-')) {
        negative = text[position] == '-';
        ++position;
    }
    const std::size_t digits = digitRun(text.substr(position));
    if (digits == 0) {
        return {};
    }
    constexpr std::int64_t cap = std::int64_t{1} << 56;
    std::int64_t value = 0;
    for (const char c : text.substr(position, digits)) {
        value = std::min(value * 10 + (c - '0'), cap);
    }
    return {position + digits, negative ? -value : value};
}

Decimal decimalPrefix(std::string_view text) noexcept {
    Decimal decimal;
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    decimal.negative = sign == 1 && text[0] == '-';
    const std::string_view number = text.substr(sign);

    const std::size_t whole = digitRun(number);
    std::size_t length = whole;
    std::size_t fraction = 0;
    if (length < number.size() && number[length] == '.') {
        fraction = digitRun(number.substr(length + 1));
        length += 1 + fraction;
    }
    if (whole + fraction == 0) {
        return {};
    }
    const std::string_view digits = number.substr(0, length);
    const Exponent exponent = exponentPrefix(number.substr(length));
    length += exponent.length;

    // Where the first digit that counts stands, as a power of ten above or below the point.
    const std::size_t first = digits.find_first_not_of("0.");
    const auto point = static_cast<std::int64_t>(whole);
    const auto position = static_cast<std::int64_t>(first);
    decimal.large = first != std::string_view::npos && point - position + exponent.value > 0;
    decimal.magnitude = number.substr(0, length);
    decimal.length = sign + length;
    return decimal;
}

template <class Float>
Float valueOf(const Decimal &decimal) noexcept {
    Float value = 0;
    const char *begin = decimal.magnitude.data();
    const auto result = std::from_chars(begin, begin + decimal.magnitude.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        value = decimal.large ? std::numeric_limits<Float>::infinity() : Float{0};
    }
    return decimal.negative ? -value : value;
}

struct Integer {
    std::size_t length = 0; // bytes, sign included; 0: there is no number
    std::int32_t value = 0;
};

Integer integerPrefix(std::string_view text) noexcept {
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const bool negative = sign == 1 && text[0] == '-';
    using Limits = std::numeric_limits<std::int32_t>;
    constexpr std::int64_t cap = std::int64_t{1} << 32;
    std::int64_t magnitude = 0;
    std::size_t end = sign;
    for (; end < text.size() && isDigit(text[end]); ++end) {
        magnitude = std::min(magnitude * 10 + (text[end] - '0'), cap);
    }
    if (end == sign) {
        return {};
    }
    const std::int64_t value =
        std::clamp<std::int64_t>(negative ? -magnitude : magnitude, Limits::min(), Limits::max());
    return {end, static_cast<std::int32_t>(value)};
}

/// The number of eight bytes that are all digits; nothing for others. The bytes are worked on at
/// once in one word: as single digits, then as pairs, then as fours.
std::optional<std::uint64_t> eightDigits(const char *text) noexcept {
    if constexpr (std::endian::native != std::endian::little) {
        return std::nullopt; // the digit that counts most must be the lowest byte
    }
    std::uint64_t word = 0;
    std::memcpy(&word, text, sizeof word);
    // The high half of a digit is 3, and stays it when 6 is added to the low half.
    constexpr std::uint64_t highHalves = 0xF0F0'F0F0'F0F0'F0F0;
    constexpr std::uint64_t threes = 0x3030'3030'3030'3030;
    constexpr std::uint64_t sixes = 0x0606'0606'0606'0606;
    if ((word & highHalves) != threes || ((word + sixes) & highHalves) != threes) {
        return std::nullopt;
    }
    word -= threes;
    word = (word * 10 + (word >> 8)) & 0x00FF'00FF'00FF'00FF;
    word = (word * 100 + (word >> 16)) & 0x0000'FFFF'0000'FFFF;
    return (word * 10'000 + (word >> 32)) & 0xFFFF'FFFF;
}

/// The decimal numbers of GPS data mostly have few digits and no exponent. When their digits and
/// the power of ten below them are both exact as a `Float`, one division rounds as it should,
/// several times as fast as the general way.
template <class Float>
struct ShortDecimal {
    static constexpr std::uint64_t largestDigits = std::uint64_t{1}
                                                   << std::numeric_limits<Float>::digits;
    /// 10^22 and 10^10 are the last powers of ten that are exact.
    static constexpr std::size_t largestFraction = std::is_same_v<Float, double> ? 22 : 10;
    /// So many digits never overflow the sum.
    static constexpr std::size_t mostDigits = 18;

    std::size_t length = 0; // bytes, sign included; 0: take the general way
    Float value = 0;

    explicit ShortDecimal(std::string_view text) noexcept {
        const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
        // Where this overflows there are too many digits, which is looked at below.
        std::uint64_t digits = 0;
        std::size_t position = sign;
        for (; position < text.size() && isDigit(text[position]); ++position) {
            digits = digits * 10 + static_cast<std::uint64_t>(text[position] - '0');
        }
        const std::size_t whole = position - sign;
        std::size_t fraction = 0;
        if (position < text.size() && text[position] == '.') {
            const std::size_t start = ++position;
            while (text.size() - position >= 8) {
                const std::optional<std::uint64_t> eight = eightDigits(text.data() + position);
                if (!eight) {
                    break;
                }
                digits = digits * 100'000'000 + *eight;
                position += 8;
            }
            for (; position < text.size() && isDigit(text[position]); ++position) {
                digits = digits * 10 + static_cast<std::uint64_t>(text[position] - '0');
            }
            fraction = position - start;
        }
        const bool hasExponent =
            position < text.size() && (text[position] == 'e' || text[position] == 'E');
        if (whole + fraction == 0 || whole + fraction > mostDigits || fraction > largestFraction ||
            digits > largestDigits || hasExponent) {
            return;
        }
        value = static_cast<Float>(digits) / powersOfTen[fraction];
        value = sign == 1 && text[0] == '-' ? -value : value;
        length = position;
    }

  private:
    static constexpr auto powersOfTen = [] {
        std::array<Float, largestFraction + 1> powers{1};
        for (std::size_t each = 1; each < powers.size(); ++each) {
            powers[each] = powers[each - 1] * 10;
        }
        return powers;
    }();
    static_assert(FLT_EVAL_METHOD == 0, "a division must round once, to its own type");
};

template <class Float>
std::optional<Float> scanDecimal(std::string_view text, std::size_t &position) noexcept {
    const std::string_view rest = text.substr(position);
    const std::size_t space = spaceBefore(rest);
    if (const ShortDecimal<Float> number(rest.substr(space)); number.length != 0) {
        position += space + number.length;
        return number.value;
    }
    const Decimal decimal = decimalPrefix(rest.substr(space));
    if (decimal.length == 0) {
        return std::nullopt;
    }
    position += space + decimal.length;
    return valueOf<Float>(decimal);
}

} // namespace

double doubleValue(std::string_view text) noexcept {
    return Scanner(text).scanDouble().value_or(0.0);
}

std::int32_t intValue(std::string_view text) noexcept {
    return Scanner(text).scanInt().value_or(0);
}

std::optional<float> Scanner::scanFloat() noexcept {
    return scanDecimal<float>(text_, position_);
}

std::optional<double> Scanner::scanDouble() noexcept {
    return scanDecimal<double>(text_, position_);
}

std::optional<std::int32_t> Scanner::scanInt() noexcept {
    const std::size_t space = spaceBefore(remaining());
    const Integer integer = integerPrefix(remaining().substr(space));
    if (integer.length == 0) {
        return std::nullopt;
    }
    position_ += space + integer.length;
    return integer.value;
}

std::optional<std::uint32_t> Scanner::scanHexInt() noexcept {
    const std::size_t space = spaceBefore(remaining());
    std::string_view digits = remaining().substr(space);
    std::size_t prefix = 0;
    std::uint32_t value = 0;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        prefix = 2;
    }
    const char *begin = digits.data() + prefix;
    const char *end = digits.data() + digits.size();
    auto result = std::from_chars(begin, end, value, 16);
    if (result.ptr == begin && prefix != 0) { // the "0" alone is the number
        prefix = 0;
        begin = digits.data();
        result = std::from_chars(begin, begin + 1, value, 16);
    }
    if (result.ptr == begin) {
        return std::nullopt;
    }
    if (result.ec == std::errc::result_out_of_range) {
        value = std::numeric_limits<std::uint32_t>::max();
    }
    position_ += space + prefix + static_cast<std::size_t>(result.ptr - begin);
    return value;
}

void Scanner::skip(std::size_t length) noexcept {
    position_ += std::min(length, text_.size() - position_);
}

} // namespace pelluvia
