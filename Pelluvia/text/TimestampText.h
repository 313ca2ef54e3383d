// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace pelluvia {

/// Writes times as C's `%02d-%02d-%02dT%02d:%02d:%02dZ` does from year, month, day, hour, minute
/// and second in UTC: 2020-06-01T08:26:40Z.
///
/// The times of a track mostly share their day, whose text is therefore kept for the next one.
///
/// Threads: a plain value; one thread at a time.
class PELLUVIA_EXPORT TimestampText {
  public:
    /// The bytes that must be free where a time is written.
    static constexpr std::size_t maxSize = 40;

    /// Writes the time, in seconds since 1970-01-01 00:00:00 UTC, at `out`, without a NUL, and
    /// returns the position behind it. Null, and nothing is written, when its year less 1900 is
    /// beyond a 32-bit integer: no reader that takes a C `struct tm` could hold it.
    [[nodiscard]] char *write(char *out, std::int64_t time) noexcept;

  private:
    /// Keeps the day's text; false when its year is out of range.
    [[nodiscard]] PELLUVIA_HIDDEN bool keepDay(std::int64_t day) noexcept;

    std::int64_t day_ = 0;        // days since 1970-01-01
    std::size_t dateLength_ = 0;  // 0: no day is kept
    std::array<char, 24> date_{}; // up to the T
};

} // namespace pelluvia
