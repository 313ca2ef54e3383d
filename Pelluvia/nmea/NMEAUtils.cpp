// SPDX-License-Identifier: MIT

#include <Pelluvia/nmea/NMEAUtils.h>

#include <Pelluvia/system/Log.h>
#include <Pelluvia/text/Calendar.h>
#include <Pelluvia/text/NumberText.h>
#include <Pelluvia/text/Scanner.h>
#include <Pelluvia/text/Text.h>
#include <Pelluvia/text/UTF16.h>

#include <array>
#include <cmath>
#include <limits>

namespace pelluvia {

namespace {

/// The XOR of all bytes, or nothing when one of them is not ASCII. Without a branch inside the
/// loop, so that it runs over many bytes at once.
std::optional<std::uint32_t> checksumOfASCII(std::string_view text) noexcept {
    unsigned char checksum = 0;
    unsigned char seen = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        checksum ^= byte;
        seen |= byte;
    }
    if (seen >= 0x80) {
        return std::nullopt;
    }
    return checksum;
}

std::string_view trimmed(std::string_view text) noexcept {
    text.remove_prefix(leadingWhiteSpace(text));
    text.remove_suffix(trailingWhiteSpace(text));
    return text;
}

void warnIfTooLong(std::string_view sentence) {
    // A character has at least one byte: most sentences need no counting.
    if (sentence.size() > NMEAUtils::longestSentence &&
        utf16Length(sentence) > NMEAUtils::longestSentence) {
        // The message ends in the sentence, as it was received, and a line end. Line ends at the
        // end of a message are the end of the log's line; passed on, they would be blanks there.
        std::string message("NMEA Sentence exceeds 82 chars: ");
        message.append(sentence.substr(0, sentence.find_last_not_of("\r\n") + 1));
        logLine(message);
    }
}

/// The integer in `length` characters of a field, 0 where there is none.
std::int32_t integerIn(std::string_view field, std::size_t from, std::size_t length) noexcept {
    return intValue(utf16Substring(field, from, length));
}

/// The seconds from midnight to a time of day as hhmmss. Two characters each, so between -9 and 99
/// of each unit.
std::int64_t secondOfDay(std::optional<std::string_view> time) noexcept {
    const std::string_view field = time.value_or("");
    const std::int64_t hour = integerIn(field, 0, 2);
    const std::int64_t minute = integerIn(field, 2, 2);
    const std::int64_t second = integerIn(field, 4, 2);
    return hour * 3600 + minute * 60 + second;
}

/// A date as its field has it: any day, and any month, counted from 0.
struct DateFields {
    std::int64_t yearsSince1900 = 0;
    int month = 0;
    int day = 0;
};

DateFields readDate(std::string_view date) noexcept {
    std::int64_t year = intValue(utf16Substring(date, 4));
    if (utf16Length(date) == 6 && year < 70) {
        year += 100;
    }
    return {
        .yearsSince1900 = year, .month = integerIn(date, 2, 2) - 1, .day = integerIn(date, 0, 2)};
}

std::int64_t daysFromFields(const DateFields &fields) noexcept {
    const int monthOfYear = (fields.month % 12 + 12) % 12;
    const std::int64_t yearsInMonths = (fields.month - monthOfYear) / 12;
    return daysFromCivil({.year = 1900 + fields.yearsSince1900 + yearsInMonths,
                          .month = monthOfYear + 1,
                          .day = fields.day});
}

std::int64_t saturatedSum(std::int64_t first, std::int64_t second) noexcept {
    using Limits = std::numeric_limits<std::int64_t>;
    if (second > 0 && first > Limits::max() - second) {
        return Limits::max();
    }
    if (second < 0 && first < Limits::min() - second) {
        return Limits::min();
    }
    return first + second;
}

std::string paddedFixed(double value, int decimals, std::size_t width) {
    std::array<char, maxFixedText> text; // NOLINT(*-member-init): written before it is read
    return {text.data(), writePaddedFixed(text.data(), value, decimals, width)};
}

std::string paddedInteger(std::int64_t value, std::size_t width) {
    std::array<char, maxIntegerText> text; // NOLINT(*-member-init): written before it is read
    return {text.data(), writePaddedInteger(text.data(), value, width)};
}

} // namespace

std::uint32_t NMEAUtils::checksumFromSentence(std::optional<std::string_view> sentence) noexcept {
    return checksumOfASCII(sentence.value_or("")).value_or(0);
}

std::optional<std::string>
NMEAUtils::addChecksumToNMEASentence(std::optional<std::string_view> sentence) {
    const auto checksum = sentence ? checksumOfASCII(*sentence) : std::nullopt;
    if (!checksum) {
        return std::nullopt;
    }
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string framed;
    framed.reserve(sentence->size() + 4);
    framed.append("$").append(*sentence).append("*");
    framed.push_back(digits[*checksum / 16]);
    framed.push_back(digits[*checksum % 16]);
    return framed;
}

std::optional<std::string>
NMEAUtils::checkAndTrimNMEASentence(std::optional<std::string_view> sentence) {
    const std::string_view received = sentence.value_or("");
    warnIfTooLong(received);

    std::string_view rest = trimmed(received);
    if (!rest.starts_with('$')) {
        return std::nullopt;
    }
    rest.remove_prefix(1);
    const std::size_t star = utf16PositionFromEnd(rest, 3);
    if (star == std::string_view::npos) {
        return std::nullopt;
    }
    if (rest[star] != '*') {
        return std::string(rest);
    }
    const std::string_view body = rest.substr(0, star);
    const auto expected = Scanner(rest.substr(star + 1)).scanHexInt();
    if (!expected || checksumOfASCII(body) != expected) {
        return std::nullopt;
    }
    return std::string(body);
}

double NMEAUtils::convertNMEADegreesMinutes(std::optional<std::string_view> value,
                                            std::optional<std::string_view> direction) noexcept {
    double whole = 0.0;
    const double fraction = std::modf(doubleValue(value.value_or("")) / 100.0, &whole);
    // The fraction is hundredths of minutes; sixty minutes are a degree.
    const double degrees = fraction / 0.6 + whole;
    return direction == "S" || direction == "W" ? -degrees : degrees;
}

std::string NMEAUtils::convertDegreesToNMEADegreesMinutes(double degrees, bool asLatitude,
                                                          char *direction) {
    if (asLatitude) {
        *direction = degrees >= 0 ? 'N' : 'S';
    } else {
        *direction = degrees >= 0 ? 'E' : 'W';
    }
    const double magnitude = std::abs(degrees);
    const double whole = std::trunc(magnitude);
    const double minutes = (magnitude - whole) * 60.0;
    // Never negative, but the sign of a NaN, which is printed, differs between processors.
    const double value = std::abs(whole * 100.0 + minutes);
    return paddedFixed(value, 3, asLatitude ? 8 : 9);
}

std::int64_t NMEAUtils::convertNMEADate(std::optional<std::string_view> date,
                                        std::optional<std::string_view> time) noexcept {
    const DateFields fields = date ? readDate(*date) : DateFields{};
    return daysFromFields(fields) * secondsPerDay + secondOfDay(time);
}

std::string NMEAUtils::makeNMEADateFrom(std::int64_t seconds, std::string *time) {
    const auto [date, hour, minute, second] = civilFromSeconds(seconds);
    if (time != nullptr) {
        *time = paddedFixed(hour * 10000 + minute * 100 + second, 2, 9);
    }
    return paddedInteger(date.day * 10000 + date.month * 100 + (date.year - 1900) % 100, 6);
}

std::int64_t NMEAUtils::updateNMEADate(std::int64_t seconds,
                                       std::optional<std::string_view> time) noexcept {
    const auto [date, hour, minute, second] = civilFromSeconds(seconds);
    // As a difference, since the start of the first representable day is not representable.
    return saturatedSum(seconds, secondOfDay(time) - (hour * 3600 + minute * 60 + second));
}

} // namespace pelluvia
