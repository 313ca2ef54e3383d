// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEATally.h>

#include <string_view>

namespace pelluvia {

namespace {

/// A count and its noun, which takes an "s" unless there is one.
std::string counted(std::int64_t count, std::string_view noun) {
    return std::to_string(count).append(" ").append(noun).append(count == 1 ? "" : "s");
}

void addIfAny(std::string &text, std::int64_t count, std::string_view noun, std::string_view rest) {
    if (count != 0) {
        text.append("; ").append(counted(count, noun)).append(" ").append(rest);
    }
}

} // namespace

std::string textOf(const NMEATally &tally) {
    std::string text = counted(tally.used + tally.notUsed + tally.badChecksum, "sentence");
    text.append(", ").append(counted(tally.points, "point"));
    if (tally.waypoints != 0) {
        text.append(", ").append(counted(tally.waypoints, "waypoint"));
    }
    if (tally.routes != 0) {
        text.append(", ").append(counted(tally.routes, "route"));
    }
    text.append("; ").append(std::to_string(tally.badChecksum)).append(" with a bad checksum, ");
    text.append(std::to_string(tally.notUsed)).append(" not used");
    addIfAny(text, tally.withoutFix, "moment", "without a fix");
    addIfAny(text, tally.garbage, "line", "of something else");
    addIfAny(text, tally.tooLong, "line", "too long");
    addIfAny(text, tally.incompleteRoutes, "route", "incomplete and left out");
    addIfAny(text, tally.unknownRoutePoints, "route point", "without a waypoint left out");
    addIfAny(text, tally.beyondLimits, "name", "beyond what is kept left out");
    addIfAny(text, tally.pointsWithoutDate, "point",
             "without a time, as no date was known (--date YYYY-MM-DD gives one)");
    return text;
}

} // namespace pelluvia
