// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/read/Epoch.h>
#include <Pelluvia/formats/nmea/read/FixSentences.h>
#include <Pelluvia/formats/nmea/read/TrackSender.h>
#include <Pelluvia/formats/nmea/read/UTCClock.h>

#include <cstdint>
#include <optional>

namespace pelluvia::nmea {

/// Makes points of sentences: gathers each epoch, dates it, and hands its point on when the next
/// begins or the log ends. An epoch in which the receiver does not know where it is gives none.
///
/// Threads: one at a time.
class TrackDecoder {
  public:
    /// The sender is borrowed. `day`, counted from 1970-01-01, is the date of the first time of day
    /// in a log that tells none.
    TrackDecoder(TrackSender &sender, std::optional<std::int64_t> day) noexcept
        : sender_(sender), clock_(day) {}

    /// The next sentence.
    void add(const FixSentence &sentence);

    /// The log has ended.
    void finish() { close(); }

    /// What is known of the epoch under way.
    [[nodiscard]] const Epoch &current() const noexcept { return epoch_; }

  private:
    void close();
    void setDate(std::int64_t day, milliseconds timeOfDay);

    TrackSender &sender_;
    UTCClock clock_;
    Epoch epoch_;
    bool hasLostFix_ = false; ///< since the last point
};

} // namespace pelluvia::nmea
