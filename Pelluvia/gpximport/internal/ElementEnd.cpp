#include <Pelluvia/gpximport/internal/ElementHandler.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <variant>

/// \file
/// The importer between the tags and at the end of elements: texts become values.

namespace pelluvia {

using gpxTable::Rule;

void ElementHandler::characters(XMLParser &parser, std::string_view text) {
    // The parser limits a text between two tags; here several can add up.
    if (text.size() > xmlLimits::textSize - currentStringValue.size()) {
        return abort(parser, "text of an element is too long");
    }
    currentStringValue.append(text);
}

void ElementHandler::end(XMLParser &parser, const XMLElement &element) {
    const gpxTable::Element &meaning =
        gpxTable::endOf(gpxVocabulary::namespaceOf(element), gpxVocabulary::nameOf(element));
    if (meaning.rule == Rule::cacheName && isInLogs()) {
        return;
    }
    if (meaning.rule != Rule::linkText || flags.inLink) {
        take(meaning.text);
    }
    if (meaning.flag.atEnd != nullptr) {
        flags.*meaning.flag.atEnd = false;
    }
    switch (meaning.rule) {
    case Rule::waypoint:
        return addWaypoint(parser);
    case Rule::routePoint:
        return addRoutePoint(parser);
    case Rule::trackPoint:
        return addTrkPt(parser);
    default:
        return;
    }
}

/// A number empties the text that it is made of, a text does not.
void ElementHandler::take(const gpxTable::Field &field) {
    if (const auto *text = std::get_if<gpxTable::Text>(&field)) {
        (collected.**text).setUnlessEmpty(currentStringValue);
        return;
    }
    if (const auto *integer = std::get_if<gpxTable::Integer>(&field)) {
        (collected.**integer).set(currentStringValue);
    } else if (const auto *fraction = std::get_if<gpxTable::Fraction>(&field)) {
        (collected.**fraction).set(currentStringValue);
    } else if (std::holds_alternative<gpxTable::Altitude>(field)) {
        currentPoint.setAltitude(currentStringValue);
    } else if (std::holds_alternative<gpxTable::Time>(field)) {
        currentPoint.setTime(currentStringValue);
    } else {
        return;
    }
    currentStringValue.clear();
}

} // namespace pelluvia
