// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEATally.h>
#include <Pelluvia/formats/nmea/read/Fields.h>

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace pelluvia::nmea {

/// One point of a track before it is sent.
struct TrackSample {
    GPSPoint point;                      ///< all but its time
    std::optional<float> speed;          ///< metres a second
    std::optional<milliseconds> instant; ///< see `UTCClock`
    bool isFirstOfFix = false;           ///< the fix was lost before it
};

/// Sends the points of a log as one track, each as soon as it comes. The transfer and the track
/// begin with the first point; without a point there is no transfer.
///
/// A new segment begins where the fix was lost, and where more time has passed, or the clock was
/// set back by more, than `longestGap`.
///
/// Points whose date is still to come are held back, up to `mostHeld` of them, and get their time
/// from the first date: receivers tell it every second, but not always first. Beyond that they are
/// sent with the day that is assumed, or else without a time.
///
/// Threads: one at a time.
class TrackSender {
  public:
    /// The receiver and the tally are borrowed. `hasAssumedDay`: instants are good enough without a
    /// date, though a date is better.
    TrackSender(GPSOutputReceiver &receiver, NMEATally &tally, milliseconds longestGap,
                bool hasAssumedDay) noexcept
        : receiver_(receiver),
          tally_(tally),
          longestGap_(longestGap),
          hasAssumedDay_(hasAssumedDay) {}

    void add(const TrackSample &sample);

    /// The receiver did not know where it was: there is no sample.
    void addWithoutFix() noexcept { ++tally_.withoutFix; }

    /// The date has become known: earlier instants lack `shift`.
    void setDated(milliseconds shift);

    /// No point will follow: sends what is held back and ends the transfer.
    void finish();

    static constexpr std::size_t mostHeld = 600;

  private:
    void send(const TrackSample &sample);
    void releaseHeld();
    [[nodiscard]] bool startsSegment(const TrackSample &sample) const noexcept;

    GPSOutputReceiver &receiver_;
    NMEATally &tally_;
    milliseconds longestGap_;
    bool hasAssumedDay_;
    bool isDated_ = false;
    bool isHolding_ = true; ///< while not dated
    bool isTransferring_ = false;
    std::vector<TrackSample> held_;
    std::optional<milliseconds> lastInstant_; ///< of the points sent
    Dictionary extras_;                       ///< reused, so that a point costs no allocation
};

} // namespace pelluvia::nmea
