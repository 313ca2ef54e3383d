// SPDX-License-Identifier: MIT

// Prints the waypoints of a GPX file.
//
//     list-waypoints FILE.gpx
//
// Shows: a receiver of one's own, fed by the importer; extras dictionaries; errors.
// Read first: <Pelluvia/model/GPSOutputReceiver.h>, the calls that a receiver gets, and
// <Pelluvia/model/ExtrasKeys.h>, what comes with a point.

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/NullReceiver.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>

using namespace pelluvia;

namespace {

/// The text under a key, or "" where there is none, or no dictionary at all.
std::string text(const Dictionary *extra, const Key &key) {
    const auto found = extra != nullptr ? extra->string(key) : std::nullopt;
    return std::string(found.value_or(""));
}

/// Prints waypoints as they come. A receiver is sent everything that a producer has; what it does
/// not override it leaves to `NullReceiver`, which does nothing. An error of the file comes to
/// `error`, too, but `processFile` also returns it.
class WaypointPrinter : public NullReceiver {
  public:
    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        std::printf("%-16s %10.5f %10.5f", text(extra, extras::name).c_str(), point.latitude,
                    point.longitude);
        if (point.altitude != 0.0) { // 0 means that it is not given
            std::printf(" %6.0f m", point.altitude);
        }
        if (const std::string comment = text(extra, extras::comment); !comment.empty()) {
            std::printf("  %s", comment.c_str());
        }
        std::printf("\n");
    }
};

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: list-waypoints FILE.gpx\n";
        return EXIT_FAILURE;
    }
    const auto importer = GPXFileImporter::initWithReceiver(std::make_shared<WaypointPrinter>());
    importer->setDoRoutes(false); // each kind that is left out is a pass less over the file
    importer->setDoTracks(false);
    if (const ErrorPtr error = importer->processFile(argv[1])) {
        std::cerr << argv[1] << ": " << error->localizedDescription() << '\n';
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
