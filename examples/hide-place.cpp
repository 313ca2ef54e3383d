// SPDX-License-Identifier: MIT

// Writes a GPX file again without the points near a place: a ride that can be shown to others does
// not say where its rider lives.
//
//     hide-place SOURCE.gpx TARGET.gpx LATITUDE LONGITUDE METRES
//
// Shows: a filter, which stands between a producer and a receiver and lets through what it likes.
// Read first: convert.cpp, <Pelluvia/model/ForwardingReceiver.h>.

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/model/ForwardingReceiver.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <numbers>
#include <string>
#include <system_error>
#include <utility>

using namespace pelluvia;

namespace {

/// A circle on the globe.
struct Place {
    double latitude; ///< degrees, as the longitude
    double longitude;
    double radius; ///< metres

    /// Whether the point lies in it. Exact enough for some kilometres, away from the poles.
    [[nodiscard]] bool holds(const GPSPoint &point) const {
        constexpr double metresPerDegree = 111'195.0;
        const double shrinking = std::cos(latitude * std::numbers::pi / 180.0);
        const double north = (point.latitude - latitude) * metresPerDegree;
        const double east = (point.longitude - longitude) * metresPerDegree * shrinking;
        return std::hypot(north, east) <= radius;
    }
};

/// Leaves out all points in a place. Where a track comes out of it a new segment begins, so that
/// nobody draws a line through it.
class PlaceFilter : public ForwardingReceiver {
  public:
    PlaceFilter(std::shared_ptr<GPSOutputReceiver> next, const Place &place)
        : ForwardingReceiver(std::move(next)), place_(place) {}

    void newTrackSegment() override { isSegmentDue_ = true; }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        if (place_.holds(point)) {
            isSegmentDue_ = true;
            return;
        }
        if (std::exchange(isSegmentDue_, false)) {
            ForwardingReceiver::newTrackSegment();
        }
        ForwardingReceiver::trackPoint(point, extra);
    }
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        if (!place_.holds(point)) {
            ForwardingReceiver::wayPoint(point, extra);
        }
    }
    void routePoint(GPSPoint point, const Dictionary *extra) override {
        if (!place_.holds(point)) {
            ForwardingReceiver::routePoint(point, extra);
        }
    }

  private:
    Place place_;
    bool isSegmentDue_ = false; // begins with the next point that is passed on
};

} // namespace

int main(int argc, char **argv) {
    if (argc != 6) {
        std::cerr << "usage: hide-place SOURCE.gpx TARGET.gpx LATITUDE LONGITUDE METRES\n";
        return EXIT_FAILURE;
    }
    const std::string source = argv[1];
    const std::string target = argv[2];
    const Place place{std::atof(argv[3]), std::atof(argv[4]), std::atof(argv[5])};

    const auto exporter = GPXExporter::initWithPath(target);
    if (exporter == nullptr) {
        std::cerr << target << ": " << std::generic_category().message(errno) << '\n';
        return EXIT_FAILURE;
    }
    const auto filter = std::make_shared<PlaceFilter>(exporter, place);
    const ErrorPtr error = GPXFileImporter::initWithReceiver(filter)->processFile(source);
    exporter->gpsStateChange(gpsState::finished);
    if (error != nullptr) {
        std::cerr << source << ": " << error->localizedDescription() << '\n';
    } else if (exporter->writeFailure()) {
        std::cerr << target << ": " << exporter->writeFailure().message() << '\n';
    }
    return error == nullptr && !exporter->writeFailure() ? EXIT_SUCCESS : EXIT_FAILURE;
}
