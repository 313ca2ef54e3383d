// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Calendar.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace pelluvia {

namespace {

// The calendar repeats every 400 years. Counted from 1 March of a year that 400 divides, every
// year's leap day is its last day, and one formula gives the starts of all twelve months.
constexpr std::int64_t yearsPerCycle = 400;
constexpr std::int64_t daysPerCycle = 146097;
/// From 0000-03-01 to 1970-01-01.
constexpr std::int64_t daysBeforeEpoch = 719468;

struct Division {
    std::int64_t quotient;
    std::int64_t remainder; ///< Never negative.
};

/// Division that rounds down, so that times before 1970 fall into the right day.
constexpr Division floorDivide(std::int64_t dividend, std::int64_t divisor) noexcept {
    const std::int64_t remainder = dividend % divisor;
    return remainder < 0 ? Division{dividend / divisor - 1, remainder + divisor}
                         : Division{dividend / divisor, remainder};
}

/// The days from 1 March to the first of a month; `month` is 0 for March to 11 for February.
constexpr std::int64_t daysBeforeMonth(std::int64_t month) noexcept {
    return (153 * month + 2) / 5;
}

} // namespace

bool isLeapYear(std::int64_t year) noexcept {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysInMonth(std::int64_t year, int month) noexcept {
    constexpr std::array<int, 12> days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    if (month < 1 || month > 12) {
        return 0;
    }
    return month == 2 && isLeapYear(year) ? 29 : days[static_cast<std::size_t>(month - 1)];
}

std::int64_t daysFromCivil(const CivilDate &date) noexcept {
    const std::int64_t year = std::clamp(date.year, -largestCivilYear, largestCivilYear);
    const bool endsYear = date.month <= 2;
    const auto [cycle, yearOfCycle] = floorDivide(endsYear ? year - 1 : year, yearsPerCycle);
    const std::int64_t monthFromMarch = endsYear ? date.month + 9 : date.month - 3;
    const std::int64_t dayOfYear = daysBeforeMonth(monthFromMarch) + date.day - 1;
    const std::int64_t leapDays = yearOfCycle / 4 - yearOfCycle / 100;
    return cycle * daysPerCycle + yearOfCycle * 365 + leapDays + dayOfYear - daysBeforeEpoch;
}

CivilDate civilFromDays(std::int64_t days) noexcept {
    // Divided first and shifted then, so that no day count overflows.
    const auto [cycleOfEpoch, rest] = floorDivide(days, daysPerCycle);
    const std::int64_t cycle = cycleOfEpoch + (rest + daysBeforeEpoch) / daysPerCycle;
    const std::int64_t dayOfCycle = (rest + daysBeforeEpoch) % daysPerCycle;

    // 1460 days are four years without their leap day, 36524 days are a century, and 146096 days a
    // cycle without its very last leap day: taking the leap days out leaves years of 365 days.
    const std::int64_t yearOfCycle =
        (dayOfCycle - dayOfCycle / 1460 + dayOfCycle / 36524 - dayOfCycle / 146096) / 365;
    const std::int64_t dayOfYear =
        dayOfCycle - (365 * yearOfCycle + yearOfCycle / 4 - yearOfCycle / 100);
    const std::int64_t monthFromMarch = (5 * dayOfYear + 2) / 153;
    const bool endsYear = monthFromMarch >= 10;

    return {.year = cycle * yearsPerCycle + yearOfCycle + (endsYear ? 1 : 0),
            .month = static_cast<int>(endsYear ? monthFromMarch - 9 : monthFromMarch + 3),
            .day = static_cast<int>(dayOfYear - daysBeforeMonth(monthFromMarch) + 1)};
}

CivilTime civilFromSeconds(std::int64_t seconds) noexcept {
    const auto [days, secondOfDay] = floorDivide(seconds, secondsPerDay);
    return {.date = civilFromDays(days),
            .hour = static_cast<int>(secondOfDay / 3600),
            .minute = static_cast<int>(secondOfDay / 60 % 60),
            .second = static_cast<int>(secondOfDay % 60)};
}

} // namespace pelluvia
