// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <optional>
#include <stop_token>
#include <utility>

namespace pelluvia::formats {

/// Stands between a producer and its receiver: passes every call on until a stop is requested, then
/// ends the transfer that is open and passes nothing on any more. So the producer need not ask
/// before each call; it asks `hasStopped` when it is about to read on.
///
/// The receiver is borrowed. Threads: as for the receiver; a stop may be requested on any thread.
class StoppableReceiver final : public GPSOutputReceiver {
  public:
    StoppableReceiver(GPSOutputReceiver &receiver, std::stop_token token) noexcept
        : receiver_(receiver), token_(std::move(token)) {}

    /// Whether a stop has been requested and nothing is passed on any more. Ends the open transfer
    /// when it finds that out.
    [[nodiscard]] bool hasStopped() { return !goesOn(); }
    /// Whether it had found that out before.
    [[nodiscard]] bool wasStopped() const noexcept { return wasStopped_; }

    void newTrackSegment() override {
        if (goesOn()) {
            receiver_.newTrackSegment();
        }
    }
    void newTrack(const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.newTrack(extra);
        }
    }
    void newRoute(const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.newRoute(extra);
        }
    }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.trackPoint(point, extra);
        }
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.wayPoint(point, extra);
        }
    }
    void routePoint(GPSPoint point, const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.routePoint(point, extra);
        }
    }
    void poiPoint(GPSPoint point, const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.poiPoint(point, extra);
        }
    }
    void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) override {
        if (goesOn()) {
            receiver_.lapInfoStart(start, end, extras);
        }
    }
    void startTransfer(const void *sender, int kind, const Dictionary *extra) override {
        if (goesOn()) {
            openKind_ = kind;
            receiver_.startTransfer(sender, kind, extra);
        }
    }
    void endTransfer(int kind) override {
        if (goesOn()) {
            openKind_.reset();
            receiver_.endTransfer(kind);
        }
    }
    void currentPosition(GPSPoint point, int accuracy) override {
        if (goesOn()) {
            receiver_.currentPosition(point, accuracy);
        }
    }
    void warning(const Report &object) override {
        if (goesOn()) {
            receiver_.warning(object);
        }
    }
    void error(const Report &error) override {
        if (goesOn()) {
            receiver_.error(error);
        }
    }
    void gpsStateChange(int state) override {
        if (goesOn()) {
            receiver_.gpsStateChange(state);
        }
    }
    void startSending(const void *sender, int kind, const Dictionary *extra) override {
        if (goesOn()) {
            receiver_.startSending(sender, kind, extra);
        }
    }
    void sendProgress(int count) override {
        if (goesOn()) {
            receiver_.sendProgress(count);
        }
    }
    void endSending(int kind) override {
        if (goesOn()) {
            receiver_.endSending(kind);
        }
    }

  private:
    [[nodiscard]] bool goesOn() {
        if (!wasStopped_ && token_.stop_requested()) {
            wasStopped_ = true;
            if (const auto kind = std::exchange(openKind_, std::nullopt)) {
                receiver_.endTransfer(*kind);
            }
        }
        return !wasStopped_;
    }

    GPSOutputReceiver &receiver_;
    std::stop_token token_;
    bool wasStopped_ = false;
    std::optional<int> openKind_; ///< of the transfer that is open
};

} // namespace pelluvia::formats
