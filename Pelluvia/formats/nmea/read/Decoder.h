// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEATally.h>
#include <Pelluvia/formats/nmea/read/LineSplitter.h>
#include <Pelluvia/formats/nmea/read/RouteList.h>
#include <Pelluvia/formats/nmea/read/Sentence.h>
#include <Pelluvia/formats/nmea/read/TrackDecoder.h>
#include <Pelluvia/formats/nmea/read/TrackSender.h>
#include <Pelluvia/formats/nmea/read/WaypointList.h>

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace pelluvia::nmea {

/// How sentences are made into points.
struct DecoderOptions {
    /// The date of the first time of day, counted in days from 1970-01-01. Needed only for logs
    /// without RMC and ZDA; a date in the log goes before it, for the points before that date too.
    std::optional<std::int64_t> day;
    /// Seconds without a point after which a new segment begins.
    std::int64_t longestGap = 300;
};

/// Makes the receiver calls of a log, line by line: the track while the lines come, then the
/// waypoints, then the routes, each a transfer of its own and only if there are any.
///
/// `gpsStateChange` is not sent: it ends the whole exchange, of which a log may be a part, and is
/// the host's to send.
///
/// Memory is bounded whatever the lines are. Threads: one at a time.
class Decoder {
  public:
    /// The receiver is borrowed.
    Decoder(GPSOutputReceiver &receiver, const DecoderOptions &options);
    Decoder(const Decoder &) = delete; // the parts refer to each other
    Decoder &operator=(const Decoder &) = delete;

    /// Takes a line, without its line end. A sentence without a checksum whose line has been cut
    /// off may lack more than its end, and what is left of a number is a number too: once any
    /// sentence of the log has had a checksum, it counts as damaged.
    void addLine(std::string_view line, LineEnd end = LineEnd::There);

    /// No line will follow: what is still under way is completed, sent and ended.
    void finish();

    /// What was found so far.
    [[nodiscard]] const NMEATally &tally() const noexcept { return tally_; }
    /// What the receiver said last about itself.
    [[nodiscard]] const Epoch &current() const noexcept { return track_.current(); }

  private:
    [[nodiscard]] bool isDamaged(LineEnd end) noexcept;
    [[nodiscard]] bool use();

    GPSOutputReceiver &receiver_;
    NMEATally tally_;
    Sentence sentence_;
    bool hasChecksums_ = false; ///< a sentence had one
    TrackSender sender_;
    TrackDecoder track_;
    WaypointList waypoints_;
    RouteList routes_;
};

} // namespace pelluvia::nmea
