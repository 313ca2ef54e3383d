// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <memory>
#include <vector>

namespace pelluvia {

/// A receiver that passes every call on to several others, one after the other in their order: a
/// download that is recorded and logged, an import that is written to two files.
///
///     using Receivers = std::vector<std::shared_ptr<GPSOutputReceiver>>;
///     const auto both = std::make_shared<TeeReceiver>(Receivers{recorder, exporter});
///     const auto importer = GPXFileImporter::initWithReceiver(both);
///     const ErrorPtr error = importer->processFile("ride.gpx");
///     both->gpsStateChange(gpsState::finished); // the exporter completes its file
///
/// All get the same dictionaries, which are the producer's. Each has observers of its own: what
/// they are told of errors and of progress they are told by each receiver.
///
/// Ownership: the receivers are kept alive. Threads: as for the strictest among them.
class PELLUVIA_EXPORT TeeReceiver final : public GPSOutputReceiver {
  public:
    /// Passes on to all of these; null ones are left out.
    explicit TeeReceiver(std::vector<std::shared_ptr<GPSOutputReceiver>> receivers);
    TeeReceiver(const TeeReceiver &) = delete;
    TeeReceiver &operator=(const TeeReceiver &) = delete;
    ~TeeReceiver() override;

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
    std::vector<std::shared_ptr<GPSOutputReceiver>> receivers_; // none null
};

} // namespace pelluvia
