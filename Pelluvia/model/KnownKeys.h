// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <cstdint>
#include <string_view>

/// \file
/// The names that every process uses as dictionary keys. They are numbered at compile time, so that
/// a dictionary entry needs four bytes for its key and no lookup. What a name means is documented
/// with its constant in `Pelluvia/model/ExtrasKeys.h`; add a name here before you add one there.
///
/// The numbers are compiled into every program that uses the keys. So a name keeps its place for
/// ever: new ones are added behind all others, and none is taken out.

namespace pelluvia {

inline constexpr auto knownKeyNames = std::to_array<std::string_view>({
    "count",        "name",         "description",   "author",     "index",
    "courseIndex",  "routeNumber",  "comment",       "symbol",     "type",
    "url",          "urlName",      "geocacheOwner", "difficulty", "terrain",
    "geocacheType", "geocacheHint", "proximity",     "hr",         "cadence",
    "temp",         "distance",     "sensor",        "speed",      "calories",
    "trackNumber",  "trackIndex",   "trackEnd",      "hrMax",      "hrAvg",
    "cadenceMax",   "cadenceAvg",   "totalTime",     "speedMax",   "speedAvg",
    "powerAvg",     "powerMax",     "altMin",        "altMax",     "trackName",
    "trigger",      "intensity",    "point",         "points",     "track",
    "route",        "waypoint",     "laps",          "POIs",       "value",
});

} // namespace pelluvia
