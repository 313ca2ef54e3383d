// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <Pelluvia/recording/internal/RecorderState.h>

namespace pelluvia {

namespace {

using PointCall = void (GPSOutputReceiver::*)(GPSPoint, const Dictionary *);

std::size_t sizeOf(const Array *array) noexcept {
    return array != nullptr ? array->size() : 0;
}

/// Sends each point dictionary of the array. One without a point, which only a caller can have put
/// there, is left out.
void pushPoints(const Array *points, GPSOutputReceiver &output, PointCall call) {
    // By position and with references of our own: the receiver may change what it is given, and may
    // even be this recorder, which then appends while it is read.
    const std::size_t count = sizeOf(points);
    for (std::size_t i = 0; i < count && i < points->size(); ++i) {
        const Ref<Dictionary> dictionary(points->dictionary(i));
        const auto *point = dictionary ? dictionary->record<GPSPoint>(extras::point) : nullptr;
        if (point != nullptr) {
            (output.*call)(*point, dictionary.get());
        }
    }
}

} // namespace

void RecordingGPSOutput::pushAllDataToOutput(GPSOutputReceiver &output) const {
    const Ref<Dictionary> data = state_->receivedData;
    if (!data) {
        return;
    }
    const Ref<Array> waypoints(data->array(recordedData::waypoint));
    const Ref<Array> tracks(data->array(recordedData::track));
    const Ref<Array> routes(data->array(recordedData::route));

    if (waypoints) {
        output.startTransfer(nullptr, transferKind::waypoints, nullptr);
        pushPoints(waypoints.get(), output, &GPSOutputReceiver::wayPoint);
        output.endTransfer(transferKind::waypoints);
    }
    if (routes) {
        output.startTransfer(nullptr, transferKind::routes, nullptr);
        for (std::size_t i = 0, count = routes->size(); i < count && i < routes->size(); ++i) {
            if (const Ref<Dictionary> route{routes->dictionary(i)}) {
                output.newRoute(route.get());
                const Ref<Array> points(route->array(extras::points));
                pushPoints(points.get(), output, &GPSOutputReceiver::routePoint);
            }
        }
        output.endTransfer(transferKind::routes);
    }
    if (tracks) {
        output.startTransfer(nullptr, transferKind::tracks, nullptr);
        for (std::size_t i = 0, count = tracks->size(); i < count && i < tracks->size(); ++i) {
            if (const Ref<Dictionary> track{tracks->dictionary(i)}) {
                output.newTrack(track.get());
                output.newTrackSegment();
                const Ref<Array> points(track->array(extras::points));
                pushPoints(points.get(), output, &GPSOutputReceiver::trackPoint);
            }
        }
        output.endTransfer(transferKind::tracks);
    }
}

} // namespace pelluvia
