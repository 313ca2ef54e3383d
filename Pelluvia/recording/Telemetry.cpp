// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <Pelluvia/recording/internal/RecorderState.h>

#include <algorithm>
#include <limits>

namespace pelluvia {

namespace {

constexpr Key entryName = Key::known("name");
constexpr Key entryValue = Key::known("value");

void appendEntry(Array &telemetry, std::string_view name, std::uint64_t value) {
    using Limits = std::numeric_limits<std::int64_t>;
    const auto largest = static_cast<std::uint64_t>(Limits::max());
    auto entry = Ref<Dictionary>::make();
    entry->set(entryName, Value(name));
    entry->set(entryValue, Value(static_cast<std::int64_t>(std::min(value, largest))));
    telemetry.append(std::move(entry));
}

std::uint64_t sizeOf(const Array *array) noexcept {
    return array != nullptr ? array->size() : 0;
}

/// The number of points in all track or route dictionaries of an array.
std::uint64_t pointsIn(const Array &lists) noexcept {
    std::uint64_t sum = 0;
    for (std::size_t i = 0; i < lists.size(); ++i) {
        if (const Dictionary *list = lists.dictionary(i)) {
            sum += sizeOf(list->array(extras::points));
        }
    }
    return sum;
}

} // namespace

Ref<Array> RecordingGPSOutput::processingTelemetry() const {
    const auto array = [this](const Key &key) {
        return state_->receivedData ? state_->receivedData->array(key) : nullptr;
    };
    const Array *tracks = array(recordedData::track);
    const Array *routes = array(recordedData::route);

    auto telemetry = Ref<Array>::make();
    appendEntry(*telemetry, "slopeEqualTossedPoints", state_->slopeEqualTossedPoints);
    appendEntry(*telemetry, "pointEqualTossedPoints", state_->pointEqualTossedPoints);
    appendEntry(*telemetry, "TrackCount", sizeOf(tracks));
    appendEntry(*telemetry, "RouteCount", sizeOf(routes));
    appendEntry(*telemetry, "WayPointCount", sizeOf(array(recordedData::waypoint)));
    appendEntry(*telemetry, "POICount", sizeOf(array(recordedData::pois)));
    appendEntry(*telemetry, "LapCount", sizeOf(array(recordedData::laps)));
    if (sizeOf(tracks) != 0) {
        appendEntry(*telemetry, "trackPointCount", pointsIn(*tracks));
    }
    if (sizeOf(routes) != 0) {
        appendEntry(*telemetry, "routePointCount", pointsIn(*routes));
    }
    return telemetry;
}

} // namespace pelluvia
