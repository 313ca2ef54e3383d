// SPDX-License-Identifier: MIT

// Downloads a track from a device, thins it on the way, and writes it as GPX, with a driver for a
// device that is made up. Without thinning and summary, the driver is given the exporter itself.
//
//     device-download TARGET.gpx
//
// Shows: a driver, which makes the calls of a transfer in their order; a recorder that thins; its
// summary; the replay into an exporter; and the main-thread queue, through which receivers say that
// they have finished.
// Read first: convert.cpp, <Pelluvia/recording/RecordingGPSOutput.h>.

#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/recording/RecordingGPSOutput.h>
#include <Pelluvia/system/MainThread.h>

#include <cerrno>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

using namespace pelluvia;

namespace {

/// The driver of a heart-rate watch: sends what the watch has stored, a point a minute on the way
/// east and then north. A real one would get the points from a serial line.
void downloadFromWatch(GPSOutputReceiver &receiver) {
    constexpr int points = 15;
    constexpr int bend = 8;
    Dictionary count;
    count.set(extras::count, Value(points)); // for who shows the progress
    receiver.startTransfer(nullptr, transferKind::tracks, &count);
    Dictionary track;
    track.set(extras::name, "Evening run");
    receiver.newTrack(&track);
    receiver.newTrackSegment();
    for (int i = 0; i < points; ++i) {
        Dictionary sample; // what comes with a point beside the point itself
        sample.set(extras::hr, Value(120 + i));
        receiver.trackPoint({.latitude = 47.25 + (i > bend ? i - bend : 0) * 0.0015,
                             .longitude = 8.5 + (i < bend ? i : bend) * 0.002,
                             .altitude = 408.0,
                             .time = 1'718'000'000 + 60 * i},
                            &sample);
    }
    receiver.warning(std::string("the watch's battery is low"));
    receiver.endTransfer(transferKind::tracks);
    receiver.gpsStateChange(gpsState::finished); // nothing more will come
}

/// The program, as the receivers know it. Its functions run inside `mainThread::drain`.
class Host : public std::enable_shared_from_this<Host> {
  public:
    explicit Host(std::string target) : target_(std::move(target)) {}

    void warned(Report report) { // NOLINT(performance-unnecessary-value-param): see convert.cpp
        const auto *text = std::get_if<std::string>(&report);
        std::cout << "warning: " << (text != nullptr ? *text : "an error") << '\n';
    }
    /// The recorder has everything: shows the summary and writes the file.
    // NOLINTNEXTLINE(performance-unnecessary-value-param)
    void downloaded(std::shared_ptr<RecordingGPSOutput> recorder) {
        const Ref<Array> summary = recorder->processingTelemetry();
        for (std::size_t i = 0; i < summary->size(); ++i) {
            const Dictionary &entry = *summary->dictionary(i);
            std::cout << entry.string(Key("name")).value_or("") << ": "
                      << entry.number(Key("value"))->int64Value() << '\n';
        }
        const auto exporter = GPXExporter::initWithPath(target_);
        if (exporter == nullptr) {
            complain(std::generic_category().message(errno));
            return;
        }
        exporter->setCompletionObject(shared_from_this(), &Host::written);
        recorder->pushAllDataToOutput(*exporter);
        exporter->gpsStateChange(gpsState::finished); // a replay does not say so
    }
    // NOLINTNEXTLINE(performance-unnecessary-value-param)
    void written(std::shared_ptr<GPXExporter> exporter) {
        const std::error_code failure = exporter->writeFailure();
        hasSucceeded_ = !failure;
        if (failure) {
            complain(failure.message());
        }
    }
    [[nodiscard]] bool hasSucceeded() const { return hasSucceeded_; }

  private:
    void complain(const std::string &reason) const {
        std::cerr << target_ << ": " << reason << '\n';
    }

    std::string target_;
    bool hasSucceeded_ = false;
};

} // namespace

int main(int argc, char **argv) {
    if (argc != 2) {
        std::cerr << "usage: device-download TARGET.gpx\n";
        return EXIT_FAILURE;
    }
    const auto host = std::make_shared<Host>(argv[1]);
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(true);
    recorder->setErrorObject(host, &Host::warned);
    recorder->setCompletionObject(host, &Host::downloaded);

    // A device is slow: a program with a window would do this on a thread of its own. What the
    // receivers have to say waits in the queue either way.
    downloadFromWatch(*recorder);
    while (mainThread::drain() != 0) { // what one message brings about may queue the next
    }
    return host->hasSucceeded() ? EXIT_SUCCESS : EXIT_FAILURE;
}
