// SPDX-License-Identifier: MIT

#pragma once

#include <tools/pelluvia/commandline/Options.h>

#include <Pelluvia/model/ForwardingReceiver.h>

#include <memory>
#include <optional>
#include <utility>

namespace pelluvia::host {

/// A receiver that passes on what another one should see of the calls of a log.
///
/// Of transfers and of uploads of other kinds than the chosen ones nothing is passed on from their
/// start to their end; warnings, errors, state changes and live positions that come meanwhile are.
/// Calls outside of any transfer are passed on as well.
///
/// Threads: as for any receiver.
class CallFilter : public ForwardingReceiver {
  public:
    /// `holdsFinish`: the state change that ends the exchange is held back, for a receiver that is
    /// to get more from other sources and is told by the host.
    CallFilter(std::shared_ptr<GPSOutputReceiver> next, Selection only, bool holdsFinish)
        : ForwardingReceiver(std::move(next)), only_(only), holdsFinish_(holdsFinish) {}

    /// Ends the transfer that is open, if one is: of a log that broke off, so that what follows
    /// from elsewhere does not become a part of it.
    void endOpenTransfer();

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
    void gpsStateChange(int state) override;
    void startSending(const void *sender, int kind, const Dictionary *extra) override;
    void sendProgress(int count) override;
    void endSending(int kind) override;

  private:
    [[nodiscard]] bool isChosen(int kind) const noexcept;

    Selection only_;
    bool holdsFinish_;
    bool dropsTransfer_ = false;
    std::optional<int> openTransfer_; ///< its kind
    bool dropsSending_ = false;
};

} // namespace pelluvia::host
