// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/text/Scanner.h>
#include <Pelluvia/values/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

/// \file
/// The three routines that the framework takes from its companion library: XML escaping and string
/// output for the GPX writer, date reading for the importer.
///
/// Threads: the routines keep nothing of their own; call them from any thread.

namespace pelluvia {

class OutputFile;

/// Copies `source` into `destination`, ready to stand in XML text or in a quoted attribute value,
/// and returns `destination`.
///
///  - `&`, `<`, `>`, `"` and `'` become `&amp;`, `&lt;`, `&gt;`, `&quot;` and `&apos;`.
///  - What XML 1.0 cannot hold becomes `?`: the control characters other than tab, line feed and
///    carriage return, and U+FFFE, U+FFFF and the surrogates in their three-byte UTF-8 form.
///  - Everything else is copied. Bytes above 127 are taken as UTF-8; one that is not part of a
///    well-formed sequence is copied as a character by itself, which it is in ISO-8859-1.
///
/// The result takes at most `capacity` bytes with its closing NUL. A longer one is cut before the
/// first character or entity that does not fit whole, so it stays well-formed. With a capacity of 1
/// the result is empty, with 0 nothing is written and `destination` may be null.
///
/// `source` ends with a NUL; null counts as empty. The two must not overlap.
extern "C" PELLUVIA_EXPORT char *SkerryCStringByMakingStandardXMLEntities(char *destination,
                                                                          const char *source,
                                                                          std::size_t capacity);

/// Writes the characters of a string to a stream as they are. A failure is the stream's to remember
/// (see `OutputFile::failure`).
PELLUVIA_EXPORT void SkerryCFStringFWrite(OutputFile &stream, std::string_view string);

/// The scanner operation `scanISO8601DateAsSeconds:`: reads a date with the time of day (ISO 8601,
/// and with it RFC 3339 and XML Schema's `dateTime`) and yields seconds since 1970-01-01 00:00:00
/// UTC, negative before it.
///
/// Like the scanner's own operations it skips white space, reads as much as belongs to the value
/// and moves behind it; what follows is not looked at. When there is no value it returns nothing
/// and the position stays where it was. The result never depends on locale or time zone of the
/// process.
///
///     2020-06-01T08:26:40Z          extended form
///     20200601T082640Z              basic form
///     2020-06-01T08:26Z             seconds may be missing, in both forms
///     2020-06-01                    a date alone is its first second in UTC, in both forms
///     2020-06-01 08:26:40           a blank or a small letter for T, a small letter for Z
///     2020-06-01T08:26:40.999Z      a fraction of a second, with a point or a comma, is dropped:
///                                   towards the earlier second, also before 1970
///     2020-06-01T10:26:40+02:00     zones +hh:mm, +hhmm and +hh with either sign, up to 23:59, in
///                                   both forms; without a zone the time is UTC
///     2016-12-31T23:59:60Z          second 60 of any minute is the first of the next one
///     2020-06-01T24:00:00Z          the end of a day is the start of the next one
///
/// Not read: dates and times that do not exist (30 February, month 13, 24:00:01, minute 60), year
/// 0000, years with a sign or of other than four digits, an hour without minutes, a fraction of
/// anything but a second, forms that mix hyphens or colons with their absence, dates by week or by
/// day of the year, a T without a time, a sign without a zone behind it, a value with a digit
/// directly behind it.
[[nodiscard]] PELLUVIA_EXPORT std::optional<std::int64_t>
scanISO8601DateAsSeconds(Scanner &scanner) noexcept;

/// A date as text with its first second. Made empty and kept between calls by who reads many times
/// of few days.
struct ISO8601Day {
    std::array<char, 10> text{}; ///< 2020-06-01; NULs where no day is known.
    std::int64_t firstSecond = 0;
};

/// Does the same, several times as fast where the day is that of the last call and the whole rest
/// of the text has the form 2020-06-01T08:26:40Z. The day is the caller's, one for each thread.
[[nodiscard]] PELLUVIA_EXPORT std::optional<std::int64_t>
scanISO8601DateAsSeconds(Scanner &scanner, ISO8601Day &day) noexcept;

} // namespace pelluvia
