// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <tests/support/RecorderModel.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

/// \file
/// What a recorder holds, and what its model holds, as lines that are the same when both are.
/// Points stand byte for byte.

namespace pelluvia::testing {

using Lines = std::vector<std::string>;

[[nodiscard]] inline std::string bytesOf(const GPSPoint &point) {
    constexpr std::string_view hex = "0123456789ABCDEF";
    std::array<unsigned char, sizeof point> bytes{};
    std::memcpy(bytes.data(), &point, sizeof point);
    std::string text;
    for (const unsigned char byte : bytes) {
        (text += hex[byte >> 4U]) += hex[byte & 0xFU];
    }
    return text;
}

[[nodiscard]] inline std::string lineOf(const RecorderModel::Point &point) {
    return "  " + bytesOf(point.record) + " " + point.extras;
}
/// Of a point dictionary; null is "nil".
[[nodiscard]] inline std::string lineOf(const Dictionary *point) {
    const auto *record = point != nullptr ? point->record<GPSPoint>(extras::point) : nullptr;
    return record != nullptr ? lineOf(RecorderModel::Point{*record, textWithout("point", point)})
                             : "nil";
}

inline void append(Lines &lines, const std::string &what, const RecorderModel::List &list) {
    lines.push_back(what + " " + list.attributes + (list.hasPoints ? "" : " without points"));
    for (const RecorderModel::Point &point : list.points) {
        lines.push_back(lineOf(point));
    }
}
inline void append(Lines &lines, const std::string &what, const Dictionary *list) {
    if (list == nullptr) {
        return;
    }
    const Array *points = list->array(extras::points);
    lines.push_back(what + " " + textWithout("points", list) +
                    (points != nullptr ? "" : " without points"));
    for (std::size_t i = 0; points != nullptr && i < points->size(); ++i) {
        lines.push_back(lineOf(points->dictionary(i)));
    }
}

/// What is filed.
[[nodiscard]] inline Lines filed(const RecorderModel &model) {
    Lines lines;
    for (const auto &track : model.tracks) {
        append(lines, "track", track);
    }
    for (const auto &route : model.routes) {
        append(lines, "route", route);
    }
    for (const auto &point : model.waypoints) {
        lines.push_back("waypoint" + lineOf(point));
    }
    return lines;
}
[[nodiscard]] inline Lines filed(const RecordingGPSOutput &recorder) {
    Lines lines;
    const auto each = [&](const Key &key, const auto &use) {
        const Dictionary *data = recorder.receivedData();
        const Array *array = data != nullptr ? data->array(key) : nullptr;
        for (std::size_t i = 0; array != nullptr && i < array->size(); ++i) {
            use(array->dictionary(i));
        }
    };
    each(recordedData::track, [&](const Dictionary *track) { append(lines, "track", track); });
    each(recordedData::route, [&](const Dictionary *route) { append(lines, "route", route); });
    each(recordedData::waypoint,
         [&](const Dictionary *point) { lines.push_back("waypoint" + lineOf(point)); });
    return lines;
}

/// What is open, and the summary.
[[nodiscard]] inline Lines state(const RecorderModel &model) {
    Lines lines;
    const auto last = [](const std::optional<RecorderModel::List> &list) {
        return list && !list->points.empty() ? lineOf(list->points.back()) : "nil";
    };
    const auto sum = [](const std::vector<RecorderModel::List> &lists) {
        std::size_t points = 0;
        for (const auto &list : lists) {
            points += list.points.size();
        }
        return std::to_string(points);
    };
    if (model.openTrack) {
        append(lines, "open track", *model.openTrack);
    }
    if (model.openRoute) {
        append(lines, "open route", *model.openRoute);
    }
    lines.insert(lines.end(),
                 {"last of track " + last(model.openTrack),
                  "last of route " + last(model.openRoute), "last error " + model.lastError,
                  "slopeEqualTossedPoints " + std::to_string(model.thinning.slopeTests),
                  "pointEqualTossedPoints " + std::to_string(model.thinning.pointTests),
                  "TrackCount " + std::to_string(model.tracks.size()),
                  "RouteCount " + std::to_string(model.routes.size()),
                  "WayPointCount " + std::to_string(model.waypoints.size()), "POICount 0",
                  "LapCount " + std::to_string(model.laps)});
    if (!model.tracks.empty()) {
        lines.push_back("trackPointCount " + sum(model.tracks));
    }
    if (!model.routes.empty()) {
        lines.push_back("routePointCount " + sum(model.routes));
    }
    return lines;
}
[[nodiscard]] inline Lines state(const RecordingGPSOutput &recorder) {
    Lines lines;
    append(lines, "open track", recorder.currentTrack());
    append(lines, "open route", recorder.currentRoute());
    lines.insert(lines.end(), {"last of track " + lineOf(recorder.lastTrackPoint()),
                               "last of route " + lineOf(recorder.lastRoutePoint()),
                               "last error " + textOf(recorder.lastError())});
    const Ref<Array> telemetry = recorder.processingTelemetry();
    for (std::size_t i = 0; i < telemetry->size(); ++i) {
        const Dictionary &entry = *telemetry->dictionary(i);
        lines.push_back(
            std::string(entry.string(Key("name")).value_or("no name")) + " " +
            std::to_string(entry.number(Key("value")).value_or(Number(-1)).int64Value()));
    }
    return lines;
}

/// The first line that two lists do not share; empty when they are the same.
[[nodiscard]] inline std::string difference(const Lines &actual, const Lines &expected) {
    const auto [a, e] =
        std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (a == actual.end() && e == expected.end()) {
        return {};
    }
    return (a != actual.end() ? *a : "nothing") + "\n  in place of\n" +
           (e != expected.end() ? *e : "nothing");
}

} // namespace pelluvia::testing
