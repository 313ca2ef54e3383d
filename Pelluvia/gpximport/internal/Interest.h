#pragma once

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/model/TransferKind.h>

#include <algorithm>
#include <cstdint>
#include <span>

/// \file
/// Which elements mean something to the importer. What it does at their tags shows here: an element
/// that gets a meaning there needs an interest here.

namespace pelluvia {

/// In the elements of GPX; at their ends, these count in any namespace and in none.
[[nodiscard]] constexpr XMLInterest interestInGPX(gpxVocabulary::Name name) noexcept {
    using gpxVocabulary::Name;
    switch (name) {
    case Name::Name:
    case Name::Number:
    case Name::Sym:
    case Name::Desc:
    case Name::Cmt:
    case Name::Ele:
    case Name::Time:
    case Name::Text:
    case Name::Url:
    case Name::Urlname:
        return XMLInterest::all;
    case Name::Wpt:
    case Name::Rte:
    case Name::Rtept:
    case Name::Trk:
    case Name::Trkseg:
    case Name::Trkpt:
    case Name::Link:
        return XMLInterest::tags;
    default:
        return XMLInterest::nothing;
    }
}

/// All of an element is wanted where its text is looked at; of other elements, the text (most of it
/// white space between tags) need not be collected.
[[nodiscard]] constexpr XMLInterest interestIn(gpxVocabulary::Namespace space,
                                               gpxVocabulary::Name name) noexcept {
    using gpxVocabulary::Name;
    using gpxVocabulary::Namespace;
    switch (space) {
    case Namespace::Geocache:
        switch (name) {
        case Name::Name:
        case Name::Terrain:
        case Name::Difficulty:
        case Name::Type:
        case Name::Owner:
        case Name::EncodedHints:
            return XMLInterest::all;
        case Name::Cache:
        case Name::Logs:
        case Name::Travelbugs:
            return XMLInterest::tags;
        default:
            return XMLInterest::nothing;
        }
    case Namespace::GPXData:
        switch (name) {
        case Name::Cadence:
        case Name::Hr:
        case Name::Proximity:
        case Name::Distance:
        case Name::Temp:
        case Name::Index:
            return XMLInterest::all;
        case Name::Sensor:
        case Name::Course:
            return XMLInterest::tags;
        default:
            return XMLInterest::nothing;
        }
    case Namespace::GarminExtensions:
        return name == Name::Temperature || name == Name::GarminProximity ? XMLInterest::all
                                                                          : interestInGPX(name);
    case Namespace::GarminTrackPoint:
        return name == Name::Atemp || name == Name::Hr || name == Name::Cad ? XMLInterest::all
                                                                            : interestInGPX(name);
    default:
        return interestInGPX(name);
    }
}

/// No kind of transfer.
inline constexpr std::int32_t noPoint = 0;

/// The kind of transfer that the element is a point of, or `noPoint`.
[[nodiscard]] constexpr std::int32_t kindOfPoint(const XMLElement &element) noexcept {
    using gpxVocabulary::Name;
    switch (gpxVocabulary::nameOf(element)) {
    case Name::Rtept:
        return transferKind::routes;
    case Name::Wpt:
        return transferKind::waypoints;
    case Name::Trkpt:
        return transferKind::tracks;
    default:
        return noPoint;
    }
}

/// Whether it stands directly in a point of another kind, which stands in no point.
[[nodiscard]] inline bool isInOtherPoint(std::span<const XMLElement> around,
                                         std::int32_t kind) noexcept {
    const auto isPoint = [](const XMLElement &each) { return kindOfPoint(each) != noPoint; };
    const auto first = std::find_if(around.begin(), around.end(), isPoint);
    return !around.empty() && first == around.end() - 1 && kindOfPoint(*first) != kind;
}

/// Whether the text of an element goes only into points of other kinds than this one (see
/// TransferKind.h), and only into the point that the element stands in. A geocache's owner does
/// not, but into the next waypoint, whatever lies between; nor do name, number and description,
/// which may become those of the next track or route.
[[nodiscard]] inline bool isForOtherPoints(const XMLElement &element,
                                           std::span<const XMLElement> around,
                                           std::int32_t kind) noexcept {
    using gpxVocabulary::Name;
    using gpxVocabulary::Namespace;
    const Namespace space = gpxVocabulary::namespaceOf(element);
    switch (gpxVocabulary::nameOf(element)) {
    case Name::Hr:
        return (space == Namespace::GarminTrackPoint || space == Namespace::GPXData) &&
               kind != transferKind::tracks;
    case Name::Atemp:
    case Name::Cad:
        return space == Namespace::GarminTrackPoint && kind != transferKind::tracks;
    case Name::Cadence:
    case Name::Distance:
    case Name::Temp:
        return space == Namespace::GPXData && kind != transferKind::tracks;
    case Name::Temperature:
        return space == Namespace::GarminExtensions && kind != transferKind::tracks;
    case Name::Proximity:
        return space == Namespace::GPXData && kind != transferKind::waypoints;
    case Name::GarminProximity:
        return space == Namespace::GarminExtensions && kind != transferKind::waypoints;
    case Name::Name:
    case Name::Terrain:
    case Name::Difficulty:
    case Name::Type:
    case Name::EncodedHints:
        return space == Namespace::Geocache && kind != transferKind::waypoints;
    case Name::Ele:
        // In a track point it is no error. In others it may be one, behind a point of their kind.
        return isInOtherPoint(around, kind) && gpxVocabulary::nameOf(around.back()) == Name::Trkpt;
    case Name::Time:
    case Name::Cmt:
    case Name::Sym:
    case Name::Url:
    case Name::Urlname:
        return isInOtherPoint(around, kind);
    default:
        return false;
    }
}

} // namespace pelluvia
