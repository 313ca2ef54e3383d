// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

namespace pelluvia {

/// A receiver that does nothing with any call: for producers that are run for another reason than
/// their calls, and as a base for receivers that are interested in few of them.
///
///     /// Counts waypoints.
///     class WaypointCounter : public NullReceiver {
///       public:
///         void wayPoint(GPSPoint, const Dictionary *) override { ++count; }
///         int count = 0;
///     };
///
///     const auto counter = std::make_shared<WaypointCounter>();
///     const ErrorPtr error =
///         GPXFileImporter::initWithReceiver(counter)->processFile("ride.gpx");
///
/// Threads: any.
class NullReceiver : public GPSOutputReceiver {
  public:
    void newTrackSegment() override {}
    void newTrack(const Dictionary * /*extra*/) override {}
    void newRoute(const Dictionary * /*extra*/) override {}
    void trackPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {}
    void wayPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {}
    void routePoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {}
    void poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {}
    void lapInfoStart(GPSPoint /*start*/, GPSPoint /*end*/,
                      const Dictionary * /*extras*/) override {}
    void startTransfer(const void * /*sender*/, int /*kind*/,
                       const Dictionary * /*extra*/) override {}
    void endTransfer(int /*kind*/) override {}
    void currentPosition(GPSPoint /*point*/, int /*accuracy*/) override {}
    void warning(const Report & /*object*/) override {}
    void error(const Report & /*error*/) override {}
    void gpsStateChange(int /*state*/) override {}
    void startSending(const void * /*sender*/, int /*kind*/,
                      const Dictionary * /*extra*/) override {}
    void sendProgress(int /*count*/) override {}
    void endSending(int /*kind*/) override {}
};

} // namespace pelluvia
