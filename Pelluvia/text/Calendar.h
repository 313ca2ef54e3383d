// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstdint>

/// \file
/// The arithmetic of dates in UTC: the Gregorian calendar, carried on without end in both
/// directions, with a year 0 and negative years before it. Days and seconds are counted from
/// 1970-01-01 00:00:00; there are no leap seconds, as in POSIX times. All functions are pure.

namespace pelluvia {

inline constexpr std::int64_t secondsPerDay = 86400;

/// A date of the Gregorian calendar.
struct CivilDate {
    std::int64_t year = 1970;
    int month = 1; ///< 1 to 12.
    int day = 1;   ///< 1 to 31.

    friend bool operator==(const CivilDate &, const CivilDate &) = default;
};

/// A date and the time of that day.
struct CivilTime {
    CivilDate date;
    int hour = 0;   ///< 0 to 23.
    int minute = 0; ///< 0 to 59.
    int second = 0; ///< 0 to 59.

    friend bool operator==(const CivilTime &, const CivilTime &) = default;
};

/// Years further from the year 0 than this count as this year: the day count still fits 64 bits.
inline constexpr std::int64_t largestCivilYear = 10'000'000'000'000'000;

[[nodiscard]] PELLUVIA_EXPORT bool isLeapYear(std::int64_t year) noexcept;

/// 28 to 31; 0 when the month is not 1 to 12.
[[nodiscard]] PELLUVIA_EXPORT int daysInMonth(std::int64_t year, int month) noexcept;

/// The days from 1970-01-01 to the date, negative before it. The month must be 1 to 12; a day
/// outside its month counts on into the neighbouring ones.
[[nodiscard]] PELLUVIA_EXPORT std::int64_t daysFromCivil(const CivilDate &date) noexcept;

/// The date that lies so many days after (before, when negative) 1970-01-01.
[[nodiscard]] PELLUVIA_EXPORT CivilDate civilFromDays(std::int64_t days) noexcept;

/// The date and the time of day in UTC, so many seconds after (before, when negative)
/// 1970-01-01 00:00:00.
[[nodiscard]] PELLUVIA_EXPORT CivilTime civilFromSeconds(std::int64_t seconds) noexcept;

} // namespace pelluvia
