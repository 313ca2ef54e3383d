// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <memory>

namespace pelluvia {

/// A receiver that passes every call on to the next one as it is: the base of filters, which
/// override the few calls that they change, leave out or add to.
///
///     /// Leaves out the track points without a time.
///     class TimedPointsOnly : public ForwardingReceiver {
///       public:
///         using ForwardingReceiver::ForwardingReceiver;
///
///         void trackPoint(GPSPoint point, const Dictionary *extra) override {
///             if (point.time != 0) {
///                 ForwardingReceiver::trackPoint(point, extra);
///             }
///         }
///     };
///
///     const auto filter = std::make_shared<TimedPointsOnly>(exporter);
///     const auto importer = GPXFileImporter::initWithReceiver(filter);
///     const ErrorPtr error = importer->processFile("ride.gpx");
///
/// Dictionaries are passed on as they came, and are those of the producer: a filter that changes
/// one sends a copy.
///
/// Ownership: the next receiver is kept alive. Threads: as for the next receiver.
class PELLUVIA_EXPORT ForwardingReceiver : public GPSOutputReceiver {
  public:
    /// Passes on to `next`; with null, nowhere.
    explicit ForwardingReceiver(std::shared_ptr<GPSOutputReceiver> next);
    ForwardingReceiver(const ForwardingReceiver &) = delete;
    ForwardingReceiver &operator=(const ForwardingReceiver &) = delete;
    ~ForwardingReceiver() override;

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

  protected:
    /// Where calls go, for a filter that sends other calls than those it gets.
    [[nodiscard]] GPSOutputReceiver &next() const noexcept { return *next_; }

  private:
    std::shared_ptr<GPSOutputReceiver> next_; // never null
};

} // namespace pelluvia
