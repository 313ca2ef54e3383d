#pragma once

#include <cstdint>
#include <string>

namespace pelluvia::nmea {

/// What was found in a log, and what became of it.
struct Tally {
    std::int64_t used = 0;        ///< sentences that say something that we want to know
    std::int64_t notUsed = 0;     ///< other types, makers' own, AIS, values that make no sense
    std::int64_t badChecksum = 0; ///< sentences damaged on their way
    std::int64_t garbage = 0;     ///< lines that are no sentences
    std::int64_t tooLong = 0;     ///< lines beyond `LineSplitter::longestLine`

    std::int64_t points = 0;
    std::int64_t waypoints = 0;
    std::int64_t routes = 0;

    /// Epochs in which the receiver did not know where it was; they gave no point.
    std::int64_t withoutFix = 0;
    /// Points whose time of day is known and whose date is not: they have no time.
    std::int64_t pointsWithoutDate = 0;
    /// Routes of which a part never came.
    std::int64_t incompleteRoutes = 0;
    /// Points of routes that are left out, since no waypoint has their name.
    std::int64_t unknownRoutePoints = 0;
    /// Waypoints, and names in routes, beyond what is kept (see `WaypointList`, `RouteList`).
    std::int64_t beyondLimits = 0;

    friend bool operator==(const Tally &, const Tally &) = default;
};

/// The tally in one line of English, without a line end.
[[nodiscard]] std::string textOf(const Tally &tally);

} // namespace pelluvia::nmea
