// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

/// \file
/// The values in the fields of sentences. Receivers leave fields empty, lines garble them: each
/// function gives nothing for text that is not exactly what it reads, and for values that cannot
/// be. All are pure.

namespace pelluvia::nmea {

using std::chrono::milliseconds;

inline constexpr milliseconds wholeDay = std::chrono::hours(24);

/// Degrees, north and east positive; on the globe.
struct Position {
    double latitude = 0.0;
    double longitude = 0.0;

    friend bool operator==(const Position &, const Position &) = default;
};

/// A position as ddmm.mmm, "N" or "S", dddmm.mmm, "E" or "W", any number of decimals. Sixty minutes
/// are the next degree: that is how rounding without a carry writes it (see
/// `NMEAUtils::convertDegreesToNMEADegreesMinutes`). More are nothing.
[[nodiscard]] std::optional<Position> readPosition(std::string_view latitude,
                                                   std::string_view northOrSouth,
                                                   std::string_view longitude,
                                                   std::string_view eastOrWest) noexcept;

/// The time since midnight UTC of hhmmss or hhmmss.sss, to the millisecond. Second 60, a leap
/// second, is the first of the next minute.
[[nodiscard]] std::optional<milliseconds> readTimeOfDay(std::string_view field) noexcept;

/// The day, counted from 1970-01-01, of a date as ddmmyy; the years are 1970 to 2069.
[[nodiscard]] std::optional<std::int64_t> readDate(std::string_view field) noexcept;

/// The same of a day, a month, each of one or two digits, and a year of four, 1970 or later.
[[nodiscard]] std::optional<std::int64_t> readDate(std::string_view day, std::string_view month,
                                                   std::string_view year) noexcept;

/// A decimal number: digits, among them a point and before them a sign or not; no exponent.
[[nodiscard]] std::optional<double> readNumber(std::string_view field) noexcept;

/// An integer of decimal digits alone, at most `largest`.
[[nodiscard]] std::optional<int> readCount(std::string_view field, int largest) noexcept;

} // namespace pelluvia::nmea
