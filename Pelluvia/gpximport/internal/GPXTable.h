// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/CollectedValues.h>
#include <Pelluvia/gpximport/internal/ContextFlags.h>
#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <variant>

/// \file
/// What the importer knows of GPX: which elements mean something, what becomes of their texts, and
/// where that goes. What is done at tags, what the parser is asked for, what is sent with a point
/// and what is forgotten behind it all follow from here. GPXTableChecks.h holds that nothing is
/// left out.

namespace pelluvia::gpxTable {

using gpxVocabulary::Name;
using gpxVocabulary::Namespace;

using C = CollectedValues;
using F = ContextFlags;

// Where the text of an element goes, and so what it becomes.

struct Nowhere {
    friend bool operator==(Nowhere, Nowhere) = default;
};
using Text = CollectedText C::*;
using Integer = CollectedNumber<std::int32_t> C::*;
using Fraction = CollectedNumber<float> C::*;
/// Of the current point.
struct Altitude {
    friend bool operator==(Altitude, Altitude) = default;
};
struct Time {
    friend bool operator==(Time, Time) = default;
};
using Field = std::variant<Nowhere, Text, Integer, Fraction, Altitude, Time>;

// Values

/// Who carries a value to the receiver; one bit each.
using Carriers = unsigned;
/// What a track or a route is announced with.
inline constexpr Carriers headings = 1;
/// The points of a kind (see TransferKind.h).
[[nodiscard]] constexpr Carriers pointsOf(int kind) noexcept {
    return 1U << static_cast<unsigned>(kind);
}
inline constexpr Carriers trackPoints = pointsOf(transferKind::tracks);
inline constexpr Carriers routePoints = pointsOf(transferKind::routes);
inline constexpr Carriers waypoints = pointsOf(transferKind::waypoints);

/// What becomes of a value when the next point begins.
enum class Behind {
    forgotten,
    kept ///< until another one replaces it, or a rule of its own clears it
};

struct CollectedValue {
    Field field;
    const Key *key;
    Carriers carriers;
    Behind behind = Behind::forgotten;
};

/// Every collected value, in the order in which points carry them. Of two neighbours with the same
/// key the second is sent only where there is no first.
inline constexpr std::array values = {
    CollectedValue{&C::comment, &extras::comment, routePoints | waypoints},
    CollectedValue{&C::geocacheName, &extras::comment, waypoints},
    CollectedValue{&C::description, &extras::description, headings | routePoints | waypoints},
    CollectedValue{&C::name, &extras::name, headings | routePoints | waypoints},
    CollectedValue{&C::symbol, &extras::symbol, routePoints | waypoints},
    CollectedValue{&C::url, &extras::url, routePoints | waypoints},
    CollectedValue{&C::urlName, &extras::urlName, routePoints | waypoints},
    CollectedValue{&C::geocacheTerrain, &extras::terrain, waypoints},
    CollectedValue{&C::geocacheDifficulty, &extras::difficulty, waypoints},
    CollectedValue{&C::geocacheType, &extras::geocacheType, waypoints},
    CollectedValue{&C::geocacheOwner, &extras::geocacheOwner, waypoints, Behind::kept},
    CollectedValue{&C::geocacheHint, &extras::geocacheHint, waypoints},
    CollectedValue{&C::proximity, &extras::proximity, waypoints},
    CollectedValue{&C::hr, &extras::hr, trackPoints},
    CollectedValue{&C::cadence, &extras::cadence, trackPoints},
    CollectedValue{&C::distance, &extras::distance, trackPoints},
    CollectedValue{&C::sensor, &extras::sensor, trackPoints},
    CollectedValue{&C::temp, &extras::temp, trackPoints},
    CollectedValue{&C::number, &extras::index, headings},
    CollectedValue{&C::courseIndex, &extras::courseIndex, headings, Behind::kept},
};

// Elements

/// Whose element it is.
enum class Dialect : std::uint8_t { GPX, GarminExtensions, GarminTrackPoint, Geocache, GPXData };

/// The context flag of an element: set at its start, cleared at its end.
struct Flag {
    constexpr Flag() = default;
    // A member's name is the flag.
    constexpr Flag(bool F::*flag) : atStart(flag), atEnd(flag) {} // NOLINT(*-explicit-*)
    constexpr Flag(bool F::*flagAtStart, bool F::*flagAtEnd)
        : atStart(flagAtStart), atEnd(flagAtEnd) {}

    bool F::*atStart = nullptr;
    bool F::*atEnd = nullptr;
};

/// Elements with rules beyond what the other columns say: `ElementHandler` has a function of its
/// own for each.
enum class Rule : std::uint8_t {
    none,
    waypoint,
    route,
    routePoint,
    track,
    trackSegment,
    trackPoint,
    elevation,
    link,
    linkText,
    cacheName,
};

struct Element {
    Dialect dialect = Dialect::GPX;
    Name name = Name::Other;
    Flag flag{};
    Field text{}; ///< where its text goes
    Rule rule = Rule::none;
    Name attribute = Name::Other; ///< an attribute that is a value, too
    Text attributeText = nullptr; ///< and where it goes
};

inline constexpr Nowhere nowhere;
inline constexpr Flag noFlag;

/// The first one stands for all that mean nothing.
inline constexpr std::array elements = {
    Element{},

    Element{Dialect::GPX, Name::Wpt, &F::inWaypoint, nowhere, Rule::waypoint},
    Element{Dialect::GPX, Name::Rte, &F::inRoute, nowhere, Rule::route},
    Element{Dialect::GPX, Name::Rtept, &F::inRoutePoint, nowhere, Rule::routePoint},
    Element{Dialect::GPX, Name::Trk, &F::inTrack, nowhere, Rule::track},
    Element{Dialect::GPX, Name::Trkseg, &F::inTrkSeg, nowhere, Rule::trackSegment},
    Element{Dialect::GPX, Name::Trkpt, &F::inTrkPt, nowhere, Rule::trackPoint},
    Element{Dialect::GPX, Name::Name, &F::inName, &C::name},
    Element{Dialect::GPX, Name::Number, &F::inNumber, &C::number},
    Element{Dialect::GPX, Name::Sym, &F::inSym, &C::symbol},
    Element{Dialect::GPX, Name::Desc, noFlag, &C::description},
    Element{Dialect::GPX, Name::Cmt, noFlag, &C::comment},
    Element{Dialect::GPX, Name::Author},
    Element{Dialect::GPX, Name::Ele, &F::inElevation, Altitude(), Rule::elevation},
    Element{Dialect::GPX, Name::Time, &F::inTime, Time()},
    Element{Dialect::GPX, Name::Link, &F::inLink, nowhere, Rule::link},
    Element{Dialect::GPX, Name::Text, &F::inText, &C::urlName, Rule::linkText},
    Element{Dialect::GPX, Name::Url, &F::inURL, &C::url},
    Element{Dialect::GPX, Name::Urlname, &F::inURLName, &C::urlName},

    Element{Dialect::GarminExtensions, Name::Temperature, &F::inTemp, &C::temp},
    Element{Dialect::GarminExtensions, Name::GarminProximity, &F::inProximity, &C::proximity},

    Element{Dialect::GarminTrackPoint, Name::Atemp, &F::inTemp, &C::temp},
    Element{Dialect::GarminTrackPoint, Name::Hr, &F::inHR, &C::hr},
    Element{Dialect::GarminTrackPoint, Name::Cad, &F::inCadence, &C::cadence},

    Element{Dialect::Geocache, Name::Cache, &F::inCache},
    Element{Dialect::Geocache, Name::Name, &F::inGeocacheName, &C::geocacheName, Rule::cacheName},
    Element{Dialect::Geocache, Name::Terrain, &F::inGeocacheTerrain, &C::geocacheTerrain},
    // It shares the flag at its start.
    Element{Dialect::Geocache,
            Name::Difficulty,
            {&F::inGeocacheTerrain, &F::inGeocacheDifficulty},
            &C::geocacheDifficulty},
    // Also of a log: the last one wins.
    Element{Dialect::Geocache, Name::Type, &F::inGeocacheType, &C::geocacheType},
    Element{Dialect::Geocache, Name::Owner, &F::inGeocacheOwner, &C::geocacheOwner},
    Element{Dialect::Geocache, Name::EncodedHints, &F::inGeocacheHint, &C::geocacheHint},
    Element{Dialect::Geocache, Name::Logs, &F::inGeocacheLogs},
    Element{Dialect::Geocache, Name::Travelbugs, &F::inGeocacheTravelbugs},

    Element{Dialect::GPXData, Name::Cadence, &F::inCadence, &C::cadence},
    Element{Dialect::GPXData, Name::Hr, &F::inHR, &C::hr},
    Element{Dialect::GPXData, Name::Proximity, &F::inProximity, &C::proximity},
    Element{Dialect::GPXData, Name::Distance, &F::inDistance, &C::distance, Rule::none,
            Name::Sensor, &C::sensor},
    Element{Dialect::GPXData, Name::Sensor, &F::inSensor, nowhere, Rule::none, Name::Kind,
            &C::sensor},
    Element{Dialect::GPXData, Name::Temp, &F::inTemp, &C::temp},
    Element{Dialect::GPXData, Name::Course, &F::inCourse},
    Element{Dialect::GPXData, Name::Index, &F::inIndex, &C::courseIndex},
};

// By the parser's numbers

inline constexpr std::size_t nameCount = gpxVocabulary::names.size() + 1;
inline constexpr std::size_t namespaceCount = gpxVocabulary::namespaces.size() + 1;

/// Positions in `elements` under the numbers of namespace and name.
using Positions = std::array<std::array<std::uint8_t, nameCount>, namespaceCount>;
static_assert(elements.size() <= 256, "positions have eight bits");

/// Writes the elements of a dialect into one namespace.
constexpr void place(Positions &positions, Dialect dialect, Namespace space) {
    for (std::size_t i = 1; i < elements.size(); ++i) {
        if (elements[i].dialect == dialect) {
            positions[static_cast<std::size_t>(space)][static_cast<std::size_t>(elements[i].name)] =
                static_cast<std::uint8_t>(i);
        }
    }
}

[[nodiscard]] consteval Positions positionsAtStart() {
    Positions positions{};
    place(positions, Dialect::GarminExtensions, Namespace::GarminExtensions);
    place(positions, Dialect::GarminTrackPoint, Namespace::GarminTrackPoint);
    place(positions, Dialect::Geocache, Namespace::Geocache);
    place(positions, Dialect::GPXData, Namespace::GPXData);
    place(positions, Dialect::GPX, Namespace::GPX10);
    place(positions, Dialect::GPX, Namespace::GPX11);
    return positions;
}

/// Unlike at their start, GPX elements are accepted in any namespace and in none; but not in those
/// of geocaches and of gpxdata.
[[nodiscard]] consteval Positions positionsAtEnd() {
    Positions positions{};
    for (const Namespace space : {Namespace::Other, Namespace::GPX10, Namespace::GPX11,
                                  Namespace::GarminExtensions, Namespace::GarminTrackPoint}) {
        place(positions, Dialect::GPX, space);
    }
    place(positions, Dialect::GarminExtensions, Namespace::GarminExtensions);
    place(positions, Dialect::GarminTrackPoint, Namespace::GarminTrackPoint);
    place(positions, Dialect::Geocache, Namespace::Geocache);
    place(positions, Dialect::GPXData, Namespace::GPXData);
    return positions;
}

inline constexpr Positions atStart = positionsAtStart();
inline constexpr Positions atEnd = positionsAtEnd();

/// Where in `elements` stands what an element means at its start.
[[nodiscard]] constexpr std::size_t positionAtStart(Namespace space, Name name) noexcept {
    return atStart[static_cast<std::size_t>(space)][static_cast<std::size_t>(name)];
}
/// The same at its end, which includes all that it means.
[[nodiscard]] constexpr std::size_t positionAtEnd(Namespace space, Name name) noexcept {
    return atEnd[static_cast<std::size_t>(space)][static_cast<std::size_t>(name)];
}

[[nodiscard]] constexpr const Element &startOf(Namespace space, Name name) noexcept {
    return elements[positionAtStart(space, name)];
}
[[nodiscard]] constexpr const Element &endOf(Namespace space, Name name) noexcept {
    return elements[positionAtEnd(space, name)];
}

/// The value that the text of each element goes to, in the order of `elements`; null for none, and
/// for altitude and time.
inline constexpr auto valuesOfElements = [] {
    std::array<const CollectedValue *, elements.size()> found{};
    for (std::size_t i = 0; i < elements.size(); ++i) {
        for (const CollectedValue &each : values) {
            if (each.field == elements[i].text) {
                found[i] = &each;
            }
        }
    }
    return found;
}();

} // namespace pelluvia::gpxTable
