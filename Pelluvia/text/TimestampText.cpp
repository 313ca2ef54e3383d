// SPDX-License-Identifier: MIT

#include <Pelluvia/text/TimestampText.h>

#include <Pelluvia/text/Calendar.h>
#include <Pelluvia/text/NumberText.h>
#include <Pelluvia/text/internal/DigitPairs.h>

#include <cstring>
#include <limits>
#include <tuple>

namespace pelluvia {

namespace {

/// The longest date, with the T behind it: a sign, ten digits of the year, month and day.
constexpr std::size_t maxDate = 11 + 7;
constexpr std::size_t timeOfDay = 9; // 08:26:40Z
/// `writeTwoDigits` may ask for more room behind the last number than it takes.
constexpr std::size_t dateRoom = maxDate + maxIntegerText;

} // namespace

bool TimestampText::keepDay(std::int64_t day) noexcept {
    using Year = std::numeric_limits<std::int32_t>;
    constexpr std::int64_t firstYear = 1900;
    const CivilDate date = civilFromDays(day);
    if (date.year - firstYear < Year::min() || date.year - firstYear > Year::max()) {
        return false;
    }
    std::array<char, dateRoom> text{};
    char *end = writeTwoDigits(text.data(), date.year);
    *end++ = '-';
    end = writeTwoDigits(end, date.month);
    *end++ = '-';
    end = writeTwoDigits(end, date.day);
    *end++ = 'T';
    static_assert(maxDate <= std::tuple_size_v<decltype(date_)>);
    std::memcpy(date_.data(), text.data(), date_.size());
    dateLength_ = static_cast<std::size_t>(end - text.data());
    day_ = day;
    return true;
}

char *TimestampText::write(char *out, std::int64_t time) noexcept {
    std::int64_t day = time / secondsPerDay;
    std::int64_t secondOfDay = time % secondsPerDay;
    if (secondOfDay < 0) {
        --day;
        secondOfDay += secondsPerDay;
    }
    if ((day != day_ || dateLength_ == 0) && !keepDay(day)) {
        return nullptr;
    }
    // All of it: a copy of known size is a move or two.
    static_assert(std::tuple_size_v<decltype(date_)> + timeOfDay <= maxSize);
    std::memcpy(out, date_.data(), date_.size());
    const auto second = static_cast<std::uint32_t>(secondOfDay);
    out = writePair(out + dateLength_, second / 3600);
    *out++ = ':';
    out = writePair(out, second / 60 % 60);
    *out++ = ':';
    out = writePair(out, second % 60);
    *out++ = 'Z';
    return out;
}

} // namespace pelluvia
