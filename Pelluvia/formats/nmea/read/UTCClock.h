// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/read/Fields.h>

#include <cstdint>
#include <optional>

namespace pelluvia::nmea {

/// Tells which day the times of day in a log belong to. Time goes on; when it falls back by more
/// than twelve hours, midnight has passed. (By less, a log has only mixed up its order.)
///
/// Until a date is known the days count from 0, or from a day that is assumed, so that instants can
/// be compared with each other. An instant is counted from 1970-01-01 00:00:00 UTC once it is
/// known.
///
/// Threads: a plain value.
class UTCClock {
  public:
    /// `day`, counted from 1970-01-01, is assumed to be the date of the first time of day.
    explicit UTCClock(std::optional<std::int64_t> day) noexcept : day_(day.value_or(0)) {}

    /// The instant of a time of day, the next in the log.
    [[nodiscard]] milliseconds instantOf(milliseconds timeOfDay) noexcept;

    /// A time of day, the next in the log, with its date. Returns what must be added to earlier
    /// instants: nothing, unless this is the first date.
    milliseconds setDate(std::int64_t day, milliseconds timeOfDay) noexcept;

    /// Whether there was a date.
    [[nodiscard]] bool isDated() const noexcept { return isDated_; }

  private:
    std::int64_t day_;
    bool isDated_ = false;
    std::optional<milliseconds> lastTime_; ///< of the day
};

} // namespace pelluvia::nmea
