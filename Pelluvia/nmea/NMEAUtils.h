// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace pelluvia {

/// What code that talks NMEA 0183 to a receiver needs: the frame of a sentence with its checksum,
/// and the encodings of angles, dates and times of day in its fields.
///
///     if (const auto body = NMEAUtils::checkAndTrimNMEASentence(line)) {
///         // "GPGLL,4916.45,N,12311.12,W,225444,A": split it at its commas, then
///         point.latitude = NMEAUtils::convertNMEADegreesMinutes("4916.45", "N");
///     }
///
/// A sentence is "$", the body, "*" and the checksum, the XOR of the body's bytes, as two
/// hexadecimal digits. Line ends are not part of it.
///
/// Strings are UTF-8 of any content; nil is `std::nullopt`. Lengths and positions are counted in
/// UTF-16 code units (see text/UTF16.h), for the ASCII that sentences are made of the same as
/// bytes. Text that cannot be read, or is too short to hold what is looked for, never fails: each
/// method says what it gives then.
///
/// Threads: no instances and no state; every method may be called from any thread at any time.
class PELLUVIA_EXPORT NMEAUtils {
  public:
    NMEAUtils() = delete;

    /// The checksum of a body, 0 to 255. No character is skipped: the "$" before a body and the
    /// "*" and checksum behind it must not be passed along. 0 for nil and for text that is not
    /// ASCII.
    [[nodiscard]] static std::uint32_t
    checksumFromSentence(std::optional<std::string_view> sentence) noexcept;

    /// A body as a complete sentence, the checksum in upper case. Nothing for nil and for text that
    /// is not ASCII.
    [[nodiscard]] static std::optional<std::string>
    addChecksumToNMEASentence(std::optional<std::string_view> sentence);

    /// The body of a sentence as it was received, with or without white space and line ends around
    /// it. Where the third character from the end is not "*" there is no checksum to check, and all
    /// that follows the "$" is the body, whatever it is.
    ///
    /// Nothing when the checksum is not that of the body or holds no hexadecimal digit, when a body
    /// with a checksum is not ASCII, when the first character is not "$", and when fewer than three
    /// characters follow the "$".
    ///
    /// A sentence of more than `longestSentence` characters is written to the system log and then
    /// treated like any other: receivers exceed that limit, and what they send is right.
    [[nodiscard]] static std::optional<std::string>
    checkAndTrimNMEASentence(std::optional<std::string_view> sentence);

    /// The longest sentence that NMEA 0183 allows, in characters, its line end counted.
    static constexpr std::size_t longestSentence = 82;

    /// Decimal degrees from an angle as ddmm.mmm or dddmm.mmm, any number of decimals. The
    /// directions "S" and "W", exactly so, invert the sign, of a negative angle too; all others and
    /// nil leave it. Text without a number at its start and nil count as 0. The range is not
    /// checked: numbers too large for a double give infinity.
    [[nodiscard]] static double
    convertNMEADegreesMinutes(std::optional<std::string_view> value,
                              std::optional<std::string_view> direction) noexcept;

    /// An angle in decimal degrees as ddmm.mmm (latitude) or dddmm.mmm (longitude), without a sign.
    /// `*direction` becomes 'N' or 'S', 'E' or 'W'; 0.0 and -0.0 are north and east, NaN is south
    /// and west. The pointer must not be null.
    ///
    /// Minutes are rounded to three decimals (half a thousandth is less than a metre on the
    /// ground), and when that makes sixty they are written as 60.000, which reads back right. The
    /// range is not checked: larger angles make longer text; where there is no number for the
    /// minutes, as for infinity, the text is "nan" or "inf" behind spaces.
    [[nodiscard]] static std::string
    convertDegreesToNMEADegreesMinutes(double degrees, bool asLatitude, char *direction);

    /// Seconds since 1970-01-01 00:00:00 UTC from a date as ddmmyy and a time of day as hhmmss,
    /// whose decimals are ignored. The years 70 to 99 are 1970 to 1999, 00 to 69 are 2000 to 2069.
    ///
    /// In a date that is not exactly six characters long, all that follows the fourth is the number
    /// of years since 1900: 2024 in "15082024" is the year 3924. Without a date, the day is
    /// 31 December 1899; a nil time is midnight. Fields without a number, or behind the end of the
    /// text, count as 0; fields beyond their range carry over, so that day 0 is the last of the
    /// month before and second 60 starts the next minute.
    [[nodiscard]] static std::int64_t
    convertNMEADate(std::optional<std::string_view> date,
                    std::optional<std::string_view> time) noexcept;

    /// The date in UTC of `seconds` since 1970-01-01 00:00:00 UTC, as ddmmyy, and in `*time`,
    /// unless the pointer is null, the time of day as hhmmss.00. Two digits of the year do not tell
    /// its century; for a year before 1900 they count back from 1900, as a negative number that is
    /// added to ddmm00: 31 December 1899 is "311199".
    [[nodiscard]] static std::string makeNMEADateFrom(std::int64_t seconds, std::string *time);

    /// The day in UTC of `seconds` since 1970-01-01 00:00:00 UTC, at another time of day, given and
    /// read as in `convertNMEADate`. The day stays also when the result lies before `seconds`: who
    /// passes midnight moves the date on. A result beyond the range of 64 bits becomes its end.
    [[nodiscard]] static std::int64_t updateNMEADate(std::int64_t seconds,
                                                     std::optional<std::string_view> time) noexcept;
};

} // namespace pelluvia
