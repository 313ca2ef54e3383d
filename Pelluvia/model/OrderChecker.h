// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace pelluvia {

/// A receiver that tells the first call that breaks the order in which producers make their calls
/// (see GPSOutputReceiver.h): for the tests of who writes a driver.
///
///     OrderChecker checker;
///     driver.download(checker);
///     if (checker.fault()) {
///         std::cerr << checker.fault()->text << '\n';
///     } else if (checker.hasOpen()) {
///         std::cerr << "at the end still open: " << checker.open() << '\n';
///     }
///
/// says for instance "call 3, trackPoint: no track segment is open; open: transfer of tracks,
/// track". To check while another receiver works, give the producer a TeeReceiver with both.
///
/// The rules:
///
///  - Transfers do not stand inside each other, and end with the kind that they started with.
///  - In a transfer of tracks: segments stand in tracks, track points in segments.
///  - In a transfer of routes: points stand in routes, as route points or as waypoints.
///  - In a transfer of waypoints: waypoints.
///  - In a transfer of another kind any of these calls may come; outside of transfers, none.
///  - Laps, points of interest, live positions, warnings and errors may come anywhere.
///  - Uploads do not stand inside each other, end with the kind that they started with, and make
///    progress only while open.
///  - The finished state comes when neither a transfer nor an upload is open. Behind it come
///    warnings, errors and states only.
///
/// Threads: one at a time.
class PELLUVIA_EXPORT OrderChecker final : public GPSOutputReceiver {
  public:
    /// A call that came where it must not.
    struct Fault {
        std::size_t call = 0; ///< its number, 1 for the first call that the checker got
        std::string text;     ///< what is wrong, and what was open, in English
    };

    OrderChecker() = default;
    OrderChecker(const OrderChecker &) = delete;
    OrderChecker &operator=(const OrderChecker &) = delete;
    ~OrderChecker() override;

    /// The first fault; nothing while all calls came in order.
    [[nodiscard]] const std::optional<Fault> &fault() const noexcept { return fault_; }
    /// Whether a transfer or an upload is open: at the end of an exchange none should be.
    [[nodiscard]] bool hasOpen() const noexcept {
        return transfer_.has_value() || upload_.has_value();
    }
    /// What is open, from the outside in, as in "transfer of tracks, track, segment"; "nothing"
    /// when nothing is.
    [[nodiscard]] std::string open() const;
    /// How many calls came.
    [[nodiscard]] std::size_t calls() const noexcept { return calls_; }

    void newTrackSegment() override;
    void newTrack(const Dictionary *extra) override;
    void newRoute(const Dictionary *extra) override;
    void trackPoint(GPSPoint point, const Dictionary *extra) override;
    void wayPoint(GPSPoint point, const Dictionary *extra) override;
    void routePoint(GPSPoint point, const Dictionary *extra) override;
    void poiPoint(GPSPoint point, const Dictionary *extra) override;
    void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) override;
    void startTransfer(const void *sender, int kind, const Dictionary *extra) override;
    void endTransfer(int kind) override;
    void currentPosition(GPSPoint point, int accuracy) override;
    void warning(const Report &object) override;
    void error(const Report &error) override;
    void gpsStateChange(int state) override;
    void startSending(const void *sender, int kind, const Dictionary *extra) override;
    void sendProgress(int count) override;
    void endSending(int kind) override;

  private:
    /// What stands around the next call.
    enum class Inside { Nothing, Track, Segment, Route };

    std::size_t calls_ = 0;
    std::optional<Fault> fault_;
    std::optional<int> transfer_; // the kind of the open one
    std::optional<int> upload_;
    Inside inside_ = Inside::Nothing;
    bool isFinished_ = false;

    friend class OrderRules;
};

} // namespace pelluvia
