// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/recording/RecordingGPSOutput.h>
#include <Pelluvia/values/Array.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

/// \file
/// Who watches a recorder in these tests, and short ways to ask what it recorded.

namespace pelluvia::testing {

/// A point with different values in all fields.
inline GPSPoint pointAt(double latitude, double longitude) {
    GPSPoint point;
    point.latitude = latitude;
    point.longitude = longitude;
    point.altitude = 430.5;
    point.time = 1'591'000'000;
    point.test = -7;
    return point;
}

/// Whether two records are the same bytes, which NaN and -0.0 are to themselves only.
inline bool sameBytes(const GPSPoint &a, const GPSPoint &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}

/// The numbers of a recorder's summary by name; -1 for an entry that is not there.
inline std::int64_t telemetry(const RecordingGPSOutput &recorder, std::string_view name) {
    const Ref<Array> entries = recorder.processingTelemetry();
    for (std::size_t i = 0; i < entries->size(); ++i) {
        const Dictionary &entry = *entries->dictionary(i);
        if (entry.string(Key("name")) == name) {
            return entry.number(Key("value")).value_or(Number(-2)).int64Value();
        }
    }
    return -1;
}

/// The array of points of a track or route dictionary.
inline std::size_t pointCount(const Dictionary *list) {
    const Array *points = list != nullptr ? list->array(extras::points) : nullptr;
    return points != nullptr ? points->size() : 0;
}

/// The records of the points of a track or route dictionary.
inline std::vector<GPSPoint> records(const Dictionary *list) {
    std::vector<GPSPoint> found;
    for (std::size_t i = 0; i < pointCount(list); ++i) {
        const Dictionary *point = list->array(extras::points)->dictionary(i);
        found.push_back(*point->record<GPSPoint>(extras::point));
    }
    return found;
}

/// The keys of a dictionary in order, each with a comma behind it.
inline std::string keys(const Dictionary *dictionary) {
    std::string text;
    for (const Dictionary::Entry &entry : *dictionary) {
        text.append(entry.key.name()).append(",");
    }
    return text;
}

/// Writes down what a progress object is told.
class ProgressSpy : public GPXExporterProgress {
  public:
    void gpxStartTransfer(int kind, int count) override { add("start", kind, count); }
    void gpxProgress(int kind, int index) override { add("progress", kind, index); }
    void gpxEndTransfer(int kind) override { lines.push_back("end " + std::to_string(kind)); }

    std::vector<std::string> lines;

  private:
    void add(const char *what, int kind, int number) {
        lines.push_back(std::string(what) + " " + std::to_string(kind) + " " +
                        std::to_string(number));
    }
};

} // namespace pelluvia::testing
