#pragma once

#include <tools/pelluvia/nmea/Fields.h>

#include <cstdint>
#include <optional>

namespace pelluvia::nmea {

/// Tells which day the times of day in a log belong to. Time goes on; when it falls back by more
/// than twelve hours, midnight has passed. (By less, a log has only mixed up its order.)
///
/// Until a date is known the days count from 0, so that instants can be compared with each other,
/// though with nothing else. An instant is counted from 1970-01-01 00:00:00 UTC once it is known.
///
/// Threads: a plain value.
class UTCClock {
  public:
    /// `day`, counted from 1970-01-01, is the date of the first time of day, if that is known.
    explicit UTCClock(std::optional<std::int64_t> day) noexcept
        : day_(day.value_or(0)), isDated_(day.has_value()) {}

    /// The instant of a time of day, the next in the log.
    [[nodiscard]] milliseconds instantOf(milliseconds timeOfDay) noexcept;

    /// A time of day, the next in the log, with its date. Returns what must be added to earlier
    /// instants: nothing, unless this is the first date.
    milliseconds setDate(std::int64_t day, milliseconds timeOfDay) noexcept;

    [[nodiscard]] bool isDated() const noexcept { return isDated_; }

  private:
    std::int64_t day_;
    bool isDated_;
    std::optional<milliseconds> lastTime_; ///< of the day
};

} // namespace pelluvia::nmea
