// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/Version.h>

#include <iostream>

using namespace pelluvia;

int main(int argc, char *argv[]) {
    const auto exporter = GPXExporter::initWithPath(argc > 1 ? argv[1] : "ride.gpx");
    if (exporter == nullptr) {
        std::cerr << "the file cannot be opened for writing\n";
        return 1;
    }
    Dictionary track;
    track.set(extras::name, "Morning ride");
    Dictionary sample;
    sample.set(extras::hr, Value(121)); // beats a minute

    exporter->startTransfer(nullptr, transferKind::tracks, nullptr);
    exporter->newTrack(&track);
    exporter->newTrackSegment();
    exporter->trackPoint(
        {.latitude = 47.37, .longitude = 8.54, .altitude = 408, .time = 1718000000}, &sample);
    exporter->endTransfer(transferKind::tracks);
    exporter->gpsStateChange(gpsState::finished); // closes the file
    std::cout << "written by Pelluvia " << PelluviaVersionNumber << '\n';
    return exporter->writeFailure() ? 1 : 0;
}
