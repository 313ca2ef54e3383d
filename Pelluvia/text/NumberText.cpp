// SPDX-License-Identifier: MIT

#include <Pelluvia/text/NumberText.h>

#include <Pelluvia/text/internal/DigitPairs.h>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>

namespace pelluvia {

namespace {

/// Fills the number at `out` up to the width: zeros behind its sign, or spaces before it.
char *padded(char *out, char *end, std::size_t width, char filler) noexcept {
    const auto length = static_cast<std::size_t>(end - out);
    if (length >= width) {
        return end;
    }
    char *begin = filler == '0' && *out == '-' ? out + 1 : out;
    std::move_backward(begin, end, out + width);
    std::fill_n(begin, width - length, filler);
    return out + width;
}

// The numbers of GPS data are written in fixed point. A double is an integer below 2^53 divided by
// a power of two, so that with its product by a power of ten, taken in 128 bits, nothing is lost
// yet; the one division that follows is a shift, whose remainder says how to round. That is what
// the C library does with longer integers, and so the digits are the same. What does not fit is
// left to the standard library.

static_assert(std::numeric_limits<double>::is_iec559 && std::numeric_limits<double>::digits == 53);

__extension__ using Wide = unsigned __int128;
constexpr int wideBits = 128;

/// The magnitude of a finite double: `mantissa / 2^shift`, the mantissa below 2^53.
struct Magnitude {
    std::uint64_t mantissa;
    int shift;

    explicit Magnitude(double value) noexcept {
        constexpr int mantissaBits = 52;
        constexpr int bias = 1023;
        const auto bits = std::bit_cast<std::uint64_t>(value);
        const auto exponent = static_cast<int>(bits >> mantissaBits & 0x7FFU);
        // Denormals lack the leading 1 that is not stored, and share the lowest exponent.
        const std::uint64_t leading = exponent != 0 ? std::uint64_t{1} << mantissaBits : 0;
        mantissa = (bits & ((std::uint64_t{1} << mantissaBits) - 1)) | leading;
        shift = mantissaBits + bias - std::max(exponent, 1);
    }

    /// The magnitude times a power of ten, rounded to the nearest integer, and of two that are
    /// equally near to the even one. The shift must be positive, the result below 2^64.
    [[nodiscard]] std::uint64_t scaled(std::uint64_t powerOfTen) const noexcept {
        if (shift >= wideBits) {
            return 0; // the product has not nearly as many
        }
        const Wide product = Wide{mantissa} * powerOfTen;
        const auto whole = static_cast<std::uint64_t>(product >> shift);
        const Wide remainder = product - (Wide{whole} << shift);
        const Wide half = Wide{1} << (shift - 1);
        // Up from half, where the integer is odd, else above half; without a branch, since nobody
        // can predict it.
        return whole + static_cast<std::uint64_t>(remainder + whole % 2 > half);
    }
};

constexpr int significantDigits = 10; // of `%1.10g`
constexpr int fixedDecimals = 6;      // of `%f`
constexpr std::uint64_t million = 1'000'000;
/// The least exponent of ten that `%g` writes without an "e", and the first that it does not.
constexpr int leastExponent = -4;
constexpr int endExponent = significantDigits;

/// 1, 10, ... as far as `writeGeneral` scales.
constexpr auto powersOfTen = [] {
    std::array<std::uint64_t, significantDigits - leastExponent> powers{1};
    for (std::size_t each = 1; each < powers.size(); ++each) {
        powers[each] = powers[each - 1] * 10;
    }
    return powers;
}();

/// 1e-4, 1e-3, ... 1e10: where the exponent of ten changes. Those below 1 are not exact; it makes
/// no difference on which side of the true power such a double counts, since ten digits of it are
/// the power's either way.
constexpr std::array thresholds = {1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2, 1e3,
                                   1e4,  1e5,  1e6,  1e7,  1e8, 1e9, 1e10};
static_assert(thresholds.size() == endExponent - leastExponent + 1);

/// The exponent of ten of a number that lies between the first and the last threshold.
int exponentOfTen(double magnitude) noexcept {
    constexpr std::size_t one = -leastExponent; // the position of 1e0: most coordinates are above
    std::size_t above = magnitude >= thresholds[one] ? one + 1 : 1;
    while (magnitude >= thresholds[above]) {
        ++above;
    }
    return static_cast<int>(above) - 1 + leastExponent;
}

/// Writes a number of ten digits as d.ddd, ddd.d or 0.0ddd, as the exponent asks, without zeros at
/// the end of the decimals. Needs room for ten digits behind the point.
char *writeDigits(char *out, std::uint64_t number, int exponent) noexcept {
    // Ten digits are copied each time, from wherever: copies of known size are a move or two.
    std::array<char, 2 * significantDigits> digits{};
    const auto last = static_cast<std::uint32_t>(number % 100'000'000);
    char *end = writePair(digits.data(), static_cast<std::uint32_t>(number / 100'000'000));
    end = writeFour(end, last / 10'000);
    writeFour(end, last % 10'000);
    const auto whole = static_cast<std::size_t>(std::max(exponent + 1, 0));
    std::size_t length = significantDigits;
    while (length > whole && digits[length - 1] == '0') {
        --length;
    }
    if (exponent < 0) {
        std::copy_n("0.000", 1 - exponent, out);
        out += 1 - exponent;
        std::memcpy(out, digits.data(), significantDigits);
        return out + length;
    }
    std::memcpy(out, digits.data(), significantDigits);
    out[whole] = '.';
    std::memcpy(out + whole + 1, digits.data() + whole, significantDigits);
    return out + length + (length > whole ? 1 : 0);
}

} // namespace

char *writeGeneral(char *out, double value) noexcept {
    const double magnitude = std::fabs(value);
    if (magnitude >= thresholds.front() && magnitude < thresholds.back()) {
        int exponent = exponentOfTen(magnitude);
        const int scale = significantDigits - 1 - exponent;
        std::uint64_t digits =
            Magnitude(value).scaled(powersOfTen[static_cast<std::size_t>(scale)]);
        if (digits == powersOfTen[significantDigits]) { // rounded up to the next power
            digits /= 10;
            ++exponent;
        }
        if (exponent < endExponent) {
            if (value < 0) {
                *out++ = '-';
            }
            return writeDigits(out, digits, exponent);
        }
    }
    return std::to_chars(out, out + maxGeneralText, value, std::chars_format::general,
                         significantDigits)
        .ptr;
}

char *writeFixed(char *out, double value) noexcept {
    // From 2^42 on a million times as much does not fit 64 bits; NaN and infinity end here too.
    constexpr double tooLarge = 0x1p42;
    if (!(std::fabs(value) < tooLarge)) {
        return std::to_chars(out, out + maxFixedText, value, std::chars_format::fixed,
                             fixedDecimals)
            .ptr;
    }
    const std::uint64_t millionths = Magnitude(value).scaled(million);
    if (std::signbit(value)) {
        *out++ = '-';
    }
    out = std::to_chars(out, out + maxIntegerText, millionths / million).ptr;
    const auto fraction = static_cast<std::uint32_t>(millionths % million);
    *out++ = '.';
    out = writePair(out, fraction / 10'000);
    out = writePair(out, fraction / 100 % 100);
    return writePair(out, fraction % 100);
}

char *writeInteger(char *out, std::int64_t value) noexcept {
    return std::to_chars(out, out + maxIntegerText, value).ptr;
}

char *writeTwoDigits(char *out, std::int64_t value) noexcept {
    if (value >= 0 && value <= 9) {
        *out++ = '0';
    }
    return writeInteger(out, value);
}

char *writePaddedFixed(char *out, double value, int decimals, std::size_t width) noexcept {
    char *end =
        std::to_chars(out, out + maxFixedText, value, std::chars_format::fixed, decimals).ptr;
    return padded(out, end, width, std::isfinite(value) ? '0' : ' ');
}

char *writePaddedInteger(char *out, std::int64_t value, std::size_t width) noexcept {
    return padded(out, writeInteger(out, value), width, '0');
}

} // namespace pelluvia
