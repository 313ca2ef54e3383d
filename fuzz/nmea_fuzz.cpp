// SPDX-License-Identifier: MIT

// Feeds any bytes to the NMEA driver, in pieces of any size, and checks that the calls follow the
// receiver's rules, that no value is impossible, and that the pieces make no difference. See
// fuzz/README.md.

#include "StrictReceiver.h"

#include <Pelluvia/formats/nmea/read/Decoder.h>
#include <Pelluvia/formats/nmea/read/LineSplitter.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/system/Log.h>
#include <tests/support/SpyReceiver.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

using namespace pelluvia;
using fuzz::require;

/// Follows the calls of one log.
class RuleChecker : public fuzz::StrictReceiver {
  public:
    void finish(const NMEATally &tally) const {
        require(openKind_ == 0, "every transfer ends");
        require(tally.points == points_, "every point that is counted is sent");
        require(tally.waypoints == waypoints_, "every waypoint that is counted is sent");
        require(tally.routes == routes_, "every route that is counted is sent");
        require(tally.pointsWithoutDate <= points_, "points without a date are points");
    }

    /// What the receiver was told, a line a call.
    [[nodiscard]] const auto &calls() const noexcept { return spy_.calls; }

    void startTransfer(const void *sender, int kind, const Dictionary *extra) override {
        require(openKind_ == 0, "transfers follow one another");
        require(order(kind) > order(lastKind_), "tracks, waypoints, routes, each once at most");
        openKind_ = lastKind_ = kind;
        spy_.startTransfer(sender, kind, extra);
    }
    void endTransfer(int kind) override {
        require(kind == openKind_, "the open transfer ends");
        openKind_ = 0;
        spy_.endTransfer(kind);
    }
    void newTrack(const Dictionary *extra) override {
        require(openKind_ == transferKind::tracks, "tracks in their transfer");
        spy_.newTrack(extra);
    }
    void newTrackSegment() override {
        require(openKind_ == transferKind::tracks, "segments in their transfer");
        hasSegment_ = true;
        spy_.newTrackSegment();
    }
    void newRoute(const Dictionary *extra) override {
        require(openKind_ == transferKind::routes && extra != nullptr, "routes in their transfer");
        ++routes_;
        spy_.newRoute(extra);
    }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        constexpr std::int64_t endOf9999 = 253'402'300'800;
        require(openKind_ == transferKind::tracks && hasSegment_, "points in a segment");
        require(isOnGlobe(point), "a point on the globe");
        require(std::abs(point.altitude) <= 1e6, "a possible altitude");
        require(point.time >= -86'400 && point.time <= endOf9999, "a possible time");
        require(extra == nullptr || isSpeed(*extra), "nothing but a possible speed beside it");
        ++points_;
        spy_.trackPoint(point, extra);
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        require(openKind_ == transferKind::waypoints || openKind_ == transferKind::routes,
                "waypoints in their transfer");
        require(isOnGlobe(point), "a waypoint on the globe");
        waypoints_ += openKind_ == transferKind::waypoints ? 1 : 0;
        spy_.wayPoint(point, extra);
    }

  private:
    static int order(int kind) {
        constexpr int places[] = {0, 1, 3, 2}; // none, tracks, routes, waypoints
        return places[kind];
    }
    static bool isOnGlobe(const GPSPoint &point) {
        return std::abs(point.latitude) <= 90.0 && std::abs(point.longitude) <= 180.0;
    }
    static bool isSpeed(const Dictionary &extra) {
        const auto speed = extra.number(extras::speed);
        return extra.size() == 1 && speed && speed->floatValue() >= 0.0F &&
               speed->floatValue() <= 12'000.0F;
    }

    testing::SpyReceiver spy_;
    int openKind_ = 0;
    int lastKind_ = 0;
    bool hasSegment_ = false;
    std::int64_t points_ = 0;
    std::int64_t waypoints_ = 0;
    std::int64_t routes_ = 0;
};

/// Decodes the bytes in pieces of the sizes that the seed makes, or, without one, at once.
NMEATally decode(std::string_view bytes, const nmea::DecoderOptions &options,
                 std::optional<std::uint32_t> seed, RuleChecker &receiver) {
    nmea::LineSplitter splitter;
    nmea::Decoder decoder(receiver, options);
    const auto use = [&](std::string_view line, nmea::LineEnd end) {
        require(!line.empty() && line.size() <= nmea::LineSplitter::longestLine,
                "lines of bounded length");
        decoder.addLine(line, end);
    };
    while (!bytes.empty()) {
        std::size_t size = bytes.size();
        if (seed) {
            *seed = *seed * 1664525U + 1013904223U; // meant to wrap
            size = 1 + (*seed >> 24U) % 97U;
        }
        const std::string piece(bytes.substr(0, size)); // so that a look behind it is seen
        splitter.feed(piece, use);
        bytes.remove_prefix(piece.size());
    }
    splitter.finish(use);
    decoder.finish();
    NMEATally tally = decoder.tally();
    tally.tooLong = splitter.droppedLines();
    receiver.finish(tally);
    return tally;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    setLogSink([](std::string_view /*line*/) {}); // of lines that are too long
    nmea::DecoderOptions options;
    std::uint32_t seed = 1;
    if (size > 0) {
        // The last byte, so that a log is a good input as it is.
        const std::uint8_t choice = data[size - 1];
        options.longestGap = choice % 4 == 1 ? 0 : 300;
        options.day = choice % 8 >= 6 ? std::optional<std::int64_t>(19'950) : std::nullopt;
        seed += choice;
    }
    const std::string bytes(data, data + size);
    RuleChecker whole;
    RuleChecker inPieces;
    const NMEATally tally = decode(bytes, options, std::nullopt, whole);
    const NMEATally tallyOfPieces = decode(bytes, options, seed, inPieces);
    require(whole.calls() == inPieces.calls(), "the pieces make no difference to the calls");
    require(tally == tallyOfPieces, "nor to what is counted");
    return 0;
}
