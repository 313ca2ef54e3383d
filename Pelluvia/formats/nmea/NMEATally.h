// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Export.h>

#include <cstdint>
#include <string>

namespace pelluvia {

/// What `NMEADriver` found in a log, and what became of it. Together, `used`, `notUsed` and
/// `badChecksum` are all sentences.
///
///     if (driver.tally().used == 0) {
///         show("There is nothing of a GPS receiver in this file.");
///     }
struct NMEATally {
    std::int64_t used = 0;        ///< sentences that say something that we want to know
    std::int64_t notUsed = 0;     ///< other types, makers' own, AIS, values that make no sense
    std::int64_t badChecksum = 0; ///< sentences damaged on their way
    std::int64_t garbage = 0;     ///< lines that are no sentences
    std::int64_t tooLong = 0;     ///< lines of more than 1024 bytes; they are skipped

    std::int64_t points = 0;    ///< of the track
    std::int64_t waypoints = 0; ///< each counted once, however often it came
    std::int64_t routes = 0;    ///< sent, so none before the log has ended

    /// Epochs in which the receiver did not know where it was; they gave no point.
    std::int64_t withoutFix = 0;
    /// Points whose time of day is known and whose date is not: they have no time.
    std::int64_t pointsWithoutDate = 0;
    /// Routes of which a part never came.
    std::int64_t incompleteRoutes = 0;
    /// Points of routes that are left out, since no waypoint has their name.
    std::int64_t unknownRoutePoints = 0;
    /// Waypoints, and names in routes, beyond what is kept: 100,000 of each, and 1000 routes.
    std::int64_t beyondLimits = 0;

    friend bool operator==(const NMEATally &, const NMEATally &) = default;
};

/// The tally in one line of English, without a line end.
[[nodiscard]] PELLUVIA_EXPORT std::string textOf(const NMEATally &tally);

} // namespace pelluvia
