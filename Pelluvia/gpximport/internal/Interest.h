// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/GPXTable.h>
#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/model/TransferKind.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>
#include <variant>

/// \file
/// How much of each element the importer wants to be told, as it follows from `gpxTable`.

namespace pelluvia {

/// All of an element is wanted where its text is looked at; of other elements, the text (most of it
/// white space between tags) need not be collected.
[[nodiscard]] constexpr XMLInterest interestIn(gpxVocabulary::Namespace space,
                                               gpxVocabulary::Name name) noexcept {
    const gpxTable::Element &element = gpxTable::endOf(space, name);
    if (!std::holds_alternative<gpxTable::Nowhere>(element.text)) {
        return XMLInterest::all;
    }
    const bool isUsed = element.flag.atEnd != nullptr || element.attributeText != nullptr ||
                        element.rule != gpxTable::Rule::none;
    return isUsed ? XMLInterest::tags : XMLInterest::nothing;
}

/// No kind of transfer.
inline constexpr std::int32_t noPoint = 0;

/// The kind of transfer that the element is a point of, or `noPoint`.
[[nodiscard]] inline std::int32_t kindOfPoint(const XMLElement &element) noexcept {
    using gpxTable::Rule;
    switch (gpxTable::endOf(gpxVocabulary::Namespace::Other, gpxVocabulary::nameOf(element)).rule) {
    case Rule::routePoint:
        return transferKind::routes;
    case Rule::waypoint:
        return transferKind::waypoints;
    case Rule::trackPoint:
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
/// TransferKind.h), and only into the point that the element stands in. What is kept behind a point
/// goes further than that, and so does what tracks and routes are announced with.
[[nodiscard]] inline bool isForOtherPoints(const XMLElement &element,
                                           std::span<const XMLElement> around,
                                           std::int32_t kind) noexcept {
    const std::size_t position = gpxTable::positionAtEnd(gpxVocabulary::namespaceOf(element),
                                                         gpxVocabulary::nameOf(element));
    const gpxTable::Field &text = gpxTable::elements[position].text;
    if (std::holds_alternative<gpxTable::Nowhere>(text)) {
        return false;
    }
    if (std::holds_alternative<gpxTable::Altitude>(text)) {
        // In a track point it is no error. In others it may be one, behind a point of their kind.
        return isInOtherPoint(around, kind) && kindOfPoint(around.back()) == transferKind::tracks;
    }
    const gpxTable::CollectedValue *const value = gpxTable::valuesOfElements[position];
    if (value == nullptr) { // a time
        return isInOtherPoint(around, kind);
    }
    if (value->behind == gpxTable::Behind::kept || (value->carriers & gpxTable::headings) != 0) {
        return false;
    }
    return std::has_single_bit(value->carriers) ? value->carriers != gpxTable::pointsOf(kind)
                                                : isInOtherPoint(around, kind);
}

} // namespace pelluvia
