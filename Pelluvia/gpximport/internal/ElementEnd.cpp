// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/ElementHandler.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <array>
#include <cstddef>
#include <utility>
#include <variant>

/// \file
/// The importer between the tags and at the end of elements: texts become values.

namespace pelluvia {

using gpxTable::Rule;
using gpxVocabulary::Name;
using gpxVocabulary::Namespace;

void ElementHandler::characters(XMLParser &parser, std::string_view text) {
    // The parser limits a text between two tags; here several can add up.
    if (text.size() > xmlLimits::textSize - currentStringValue.size()) {
        return abort(parser, "text of an element is too long");
    }
    currentStringValue.append(text);
}

/// What is done at the end of the element in a row of the table.
template <std::size_t position>
void ElementHandler::endAs(ElementHandler &self, [[maybe_unused]] XMLParser &parser) {
    constexpr const gpxTable::Element &meaning = gpxTable::elements[position];
    if constexpr (meaning.rule == Rule::cacheName) {
        if (self.isInLogs()) {
            return;
        }
    }
    if (meaning.rule != Rule::linkText || self.flags.inLink) {
        self.take<position>();
    }
    if constexpr (meaning.flag.atEnd != nullptr) {
        self.flags.*meaning.flag.atEnd = false;
    }
    if constexpr (meaning.rule == Rule::waypoint) {
        self.addWaypoint(parser);
    } else if constexpr (meaning.rule == Rule::routePoint) {
        self.addRoutePoint(parser);
    } else if constexpr (meaning.rule == Rule::trackPoint) {
        self.addTrkPt(parser);
    }
}

/// The value of the collected text. A number empties the text that it is made of, a text does not.
template <std::size_t position>
void ElementHandler::take() {
    constexpr const gpxTable::Field &field = gpxTable::elements[position].text;
    if constexpr (std::holds_alternative<gpxTable::Text>(field)) {
        (collected.*std::get<gpxTable::Text>(field)).setUnlessEmpty(currentStringValue);
    } else if constexpr (!std::holds_alternative<gpxTable::Nowhere>(field)) {
        if constexpr (std::holds_alternative<gpxTable::Altitude>(field)) {
            currentPoint.setAltitude(currentStringValue);
        } else if constexpr (std::holds_alternative<gpxTable::Time>(field)) {
            currentPoint.setTime(currentStringValue);
        } else {
            (collected.*std::get<field.index()>(field)).set(currentStringValue);
        }
        currentStringValue.clear();
    }
}

void ElementHandler::endNumbered(XMLParser &parser, const XMLElement &element) {
    static constexpr auto functions =
        []<std::size_t... position>(std::index_sequence<position...>) {
        return std::array{&ElementHandler::endAs<position>...};
    }
    (std::make_index_sequence<gpxTable::elements.size()>());
    functions[gpxTable::positionAtEnd(static_cast<Namespace>(element.namespaceNumber),
                                      static_cast<Name>(element.nameNumber))](*this, parser);
}

void ElementHandler::endUnnumbered(XMLParser &parser, const XMLElement &element) {
    endNumbered(parser, gpxVocabulary::numbered(element));
}

} // namespace pelluvia
