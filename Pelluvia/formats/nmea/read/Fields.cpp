// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Fields.h>

#include <Pelluvia/nmea/NMEAUtils.h>
#include <Pelluvia/text/Calendar.h>
#include <Pelluvia/text/Scanner.h>

#include <algorithm>

namespace pelluvia::nmea {

namespace {

bool areDigits(std::string_view text) noexcept {
    return !text.empty() &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
}

/// Digits with at most one point among or around them.
bool isUnsignedDecimal(std::string_view text) noexcept {
    const std::size_t point = text.find('.');
    if (point == std::string_view::npos) {
        return areDigits(text);
    }
    const std::string_view whole = text.substr(0, point);
    const std::string_view fraction = text.substr(point + 1);
    return (whole.empty() || areDigits(whole)) && (fraction.empty() || areDigits(fraction)) &&
           !(whole.empty() && fraction.empty());
}

/// An angle of at most `largest` degrees.
std::optional<double> readAngle(std::string_view value, std::string_view direction,
                                double largest) noexcept {
    if (!isUnsignedDecimal(value)) {
        return std::nullopt;
    }
    // The last two digits of the whole part and all decimals are the minutes.
    const std::size_t whole = std::min(value.find('.'), value.size());
    if (doubleValue(value.substr(whole < 2 ? 0 : whole - 2)) > 60.0) {
        return std::nullopt;
    }
    const double degrees = NMEAUtils::convertNMEADegreesMinutes(value, direction);
    return degrees >= -largest && degrees <= largest ? std::optional(degrees) : std::nullopt;
}

int twoDigits(std::string_view text) noexcept {
    return intValue(text.substr(0, 2));
}

/// The milliseconds of what follows the seconds: nothing, or a point and digits.
std::optional<milliseconds> readFraction(std::string_view text) noexcept {
    if (text.empty() || text == ".") {
        return milliseconds(0);
    }
    if (text.front() != '.' || !areDigits(text.substr(1))) {
        return std::nullopt;
    }
    int value = 0;
    for (std::size_t place = 1; place <= 3; ++place) {
        value = value * 10 + (place < text.size() ? text[place] - '0' : 0);
    }
    return milliseconds(value);
}

bool isDay(std::int64_t year, int month, int day) noexcept {
    return day >= 1 && day <= daysInMonth(year, month); // no month has no days
}

} // namespace

std::optional<Position> readPosition(std::string_view latitude, std::string_view northOrSouth,
                                     std::string_view longitude,
                                     std::string_view eastOrWest) noexcept {
    const bool hasDirections =
        (northOrSouth == "N" || northOrSouth == "S") && (eastOrWest == "E" || eastOrWest == "W");
    const auto north = readAngle(latitude, northOrSouth, 90.0);
    const auto east = readAngle(longitude, eastOrWest, 180.0);
    if (!hasDirections || !north || !east) {
        return std::nullopt;
    }
    return Position{.latitude = *north, .longitude = *east};
}

std::optional<milliseconds> readTimeOfDay(std::string_view field) noexcept {
    constexpr std::size_t digits = 6; // hhmmss
    if (field.size() < digits || !areDigits(field.substr(0, digits))) {
        return std::nullopt;
    }
    const auto fraction = readFraction(field.substr(digits));
    if (!fraction || twoDigits(field) > 23 || twoDigits(field.substr(2)) > 59 ||
        twoDigits(field.substr(4)) > 60) {
        return std::nullopt;
    }
    return std::chrono::seconds(NMEAUtils::updateNMEADate(0, field)) + *fraction;
}

std::optional<std::int64_t> readDate(std::string_view field) noexcept {
    constexpr std::size_t digits = 6; // ddmmyy
    if (field.size() != digits || !areDigits(field)) {
        return std::nullopt;
    }
    const std::int64_t day = NMEAUtils::convertNMEADate(field, std::nullopt) / secondsPerDay;
    // A day that its month does not have has been carried into another one.
    const CivilDate date = civilFromDays(day);
    const bool isSame = date.day == twoDigits(field) && date.month == twoDigits(field.substr(2));
    return isSame ? std::optional(day) : std::nullopt;
}

std::optional<std::int64_t> readDate(std::string_view day, std::string_view month,
                                     std::string_view year) noexcept {
    constexpr int firstYear = 1970;
    const auto readDay = readCount(day, 31);
    const auto readMonth = readCount(month, 12);
    const auto readYear = readCount(year, 9999);
    if (!readDay || !readMonth || !readYear || *readYear < firstYear ||
        !isDay(*readYear, *readMonth, *readDay)) {
        return std::nullopt;
    }
    return daysFromCivil({.year = *readYear, .month = *readMonth, .day = *readDay});
}

std::optional<double> readNumber(std::string_view field) noexcept {
    const bool hasSign = !field.empty() && (field.front() == '-' || field.front() == '+');
    return isUnsignedDecimal(field.substr(hasSign ? 1 : 0)) ? std::optional(doubleValue(field))
                                                            : std::nullopt;
}

std::optional<int> readCount(std::string_view field, int largest) noexcept {
    const int value = intValue(field); // saturates
    return areDigits(field) && value <= largest ? std::optional(value) : std::nullopt;
}

} // namespace pelluvia::nmea
