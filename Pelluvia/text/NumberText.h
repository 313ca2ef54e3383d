// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>

/// \file
/// Numbers to text: exactly the bytes that C's `printf` writes in the "C" locale, whatever locale
/// the process has.
///
/// Each function writes at `out`, where its named number of bytes must be free, adds no NUL, and
/// returns the position behind what it wrote.

namespace pelluvia {

/// The most bytes of `%1.10g`: a sign, ten digits, a point and an exponent, or leading zeros.
inline constexpr std::size_t maxGeneralText = 24;
/// The most bytes of `%f`: a sign, the 309 digits of the largest double, a point and six decimals.
inline constexpr std::size_t maxFixedText = 320;
/// The most bytes of `%d` and `%02d` of a 64-bit integer.
inline constexpr std::size_t maxIntegerText = 24;

/// As `%1.10g`: at most ten significant digits, without trailing zeros.
PELLUVIA_EXPORT char *writeGeneral(char *out, double value) noexcept;
/// As `%f`: six decimals.
PELLUVIA_EXPORT char *writeFixed(char *out, double value) noexcept;
/// As `%d`.
PELLUVIA_EXPORT char *writeInteger(char *out, std::int64_t value) noexcept;
/// As `%02d`: at least two characters, a minus sign among them.
PELLUVIA_EXPORT char *writeTwoDigits(char *out, std::int64_t value) noexcept;

/// As `%0<width>.<decimals>f`: zeros between the sign and the digits fill the width, spaces before
/// infinity and NaN. At most 6 decimals and a width of at most `maxFixedText`, which is also the
/// most bytes written.
PELLUVIA_EXPORT char *writePaddedFixed(char *out, double value, int decimals,
                                       std::size_t width) noexcept;
/// As `%0<width>d`. The most bytes written are `maxIntegerText` or the width.
PELLUVIA_EXPORT char *writePaddedInteger(char *out, std::int64_t value, std::size_t width) noexcept;

} // namespace pelluvia
