// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/ElementHandler.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <array>
#include <cstddef>
#include <utility>

/// \file
/// The importer at the start of elements: flags, attributes, and the tests of nesting.

namespace pelluvia {

using gpxTable::Rule;
using gpxVocabulary::attribute;
using gpxVocabulary::Name;
using gpxVocabulary::Namespace;

/// What is done at the start of the element in a row of the table.
template <std::size_t position>
void ElementHandler::startAs(ElementHandler &self, XMLParser &parser,
                             const XMLAttributes &attributes) {
    constexpr const gpxTable::Element &meaning = gpxTable::elements[position];
    if constexpr (meaning.dialect == gpxTable::Dialect::Geocache) {
        if (self.isInLogs()) {
            return; // logs and travel bugs have names and types of their own
        }
    }
    if constexpr (meaning.rule != Rule::none) {
        if (!self.obeyAtStart<meaning.rule>(parser, attributes)) {
            return;
        }
    }
    if constexpr (meaning.flag.atStart != nullptr) {
        self.flags.*meaning.flag.atStart = true;
    }
    if constexpr (meaning.attributeText != nullptr) {
        if (const auto value = attribute(attributes, meaning.attribute)) {
            (self.collected.*meaning.attributeText).set(*value);
        }
    }
}

void ElementHandler::startNumbered(XMLParser &parser, const XMLElement &element,
                                   const XMLAttributes &attributes) {
    static constexpr auto functions =
        []<std::size_t... position>(std::index_sequence<position...>) {
        return std::array{&ElementHandler::startAs<position>...};
    }
    (std::make_index_sequence<gpxTable::elements.size()>());
    currentStringValue.clear();
    const auto space = static_cast<Namespace>(element.namespaceNumber);
    if (space >= Namespace::GPX10) {
        gpxVersion = space == Namespace::GPX10 ? 1.0F : 1.1F;
    }
    functions[gpxTable::positionAtStart(space, static_cast<Name>(element.nameNumber))](
        *this, parser, attributes);
}

void ElementHandler::startUnnumbered(XMLParser &parser, const XMLElement &element,
                                     const XMLAttributes &attributes) {
    startNumbered(parser, gpxVocabulary::numbered(element), attributes);
}

template <Rule rule>
bool ElementHandler::obeyAtStart(XMLParser &parser, const XMLAttributes &attributes) {
    switch (rule) {
    case Rule::waypoint:
        startWaypoint(attributes);
        return true;
    case Rule::route:
        routeStarted = false;
        return true;
    case Rule::routePoint:
        return startRtept(parser, attributes);
    case Rule::track:
        startTrk();
        return true;
    case Rule::trackSegment:
        return startTrkseg(parser);
    case Rule::trackPoint:
        return startTrkpt(parser, attributes);
    case Rule::elevation:
        return startEle(parser);
    case Rule::link:
        startLink(attributes);
        return true;
    case Rule::none:
    case Rule::linkText:
    case Rule::cacheName:
        return true;
    }
}

void ElementHandler::startWaypoint(const XMLAttributes &attributes) noexcept {
    clearPoint();
    readPosition(attributes, transferKind::waypoints);
}

bool ElementHandler::startRtept(XMLParser &parser, const XMLAttributes &attributes) {
    // The route is announced here rather than at its own start: by now its name is known.
    if (!routeStarted) {
        startRoute(parser);
    }
    clearPoint();
    if (!flags.inRoute) {
        abort(parser, "rtept outside of route");
        return false;
    }
    readPosition(attributes, transferKind::routes);
    return true;
}

bool ElementHandler::startTrkseg(XMLParser &parser) {
    if (flags.inTrkSeg) {
        abort(parser, "trkseg found while in track segment already");
        return false;
    }
    startTrkSeg(parser);
    return true;
}

bool ElementHandler::startTrkpt(XMLParser &parser, const XMLAttributes &attributes) {
    clearPoint();
    if (!flags.inTrkSeg) {
        abort(parser, "trkpt found while not in track segment");
        return false;
    }
    if (flags.inTrkPt) {
        abort(parser, "trkpt found while in track point already");
        return false;
    }
    readPosition(attributes, transferKind::tracks);
    return true;
}

bool ElementHandler::startEle(XMLParser &parser) {
    if (!flags.inTrkPt && !flags.inWaypoint && !flags.inRoutePoint) {
        abort(parser, "ele received outside of geometry");
        return false;
    }
    return true;
}

void ElementHandler::startLink(const XMLAttributes &attributes) {
    // The text has just been emptied, so the address is never kept and an earlier one is forgotten:
    // a link contributes its text only.
    const auto address = attribute(attributes, Name::Href);
    if (address && !currentStringValue.empty()) {
        collected.url.set(*address);
    } else {
        collected.url.clear();
    }
}

void ElementHandler::readPosition(const XMLAttributes &attributes, std::int32_t kind) noexcept {
    // Of points within points, the outer one may be sent with the place of any inner one.
    leavesOutPlaces = leavesOutPlaces && !flags.inWaypoint && !flags.inRoutePoint && !flags.inTrkPt;
    if (leavesOutPlaces && kind != mode) {
        return;
    }
    const auto latitude = attribute(attributes, Name::Lat);
    const auto longitude = attribute(attributes, Name::Lon);
    if (latitude && longitude) {
        currentPoint.setPosition(*latitude, *longitude);
    }
}

} // namespace pelluvia
