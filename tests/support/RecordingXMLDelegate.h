// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/XMLParser.h>

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// Notes every event as a line of text, with the pieces of a text joined:
///
///     start {http://www.topografix.com/GPX/1/1}trkpt lat="1" lon="2"
///     text "abc"
///     end {http://www.topografix.com/GPX/1/1}trkpt
///     map gpx -> http://www.topografix.com/GPX/1/1
///     error 76
///
/// An element in no namespace has no braces; a prefix stands before its name.
class RecordingXMLDelegate : public XMLParserDelegate {
  public:
    std::vector<std::string> events;
    ErrorPtr reported;
    /// Called after each event was noted; may abort or throw.
    std::function<void(XMLParser &parser, const std::string &event)> onEvent;
    /// Answers of the delegate.
    XMLVocabulary names;
    bool namesOnly = false;
    std::function<XMLInterest(const XMLElement &element, std::span<const XMLElement> around)>
        interest; ///< none: in all

    /// The events, one a line.
    [[nodiscard]] std::string text() const {
        std::string all;
        for (const std::string &event : events) {
            all += event + "\n";
        }
        return all;
    }
    /// All text of the document.
    [[nodiscard]] const std::string &characters() const noexcept { return allCharacters_; }

    [[nodiscard]] XMLVocabulary vocabulary() const override { return names; }
    [[nodiscard]] bool wantsElementNamesOnly() const override { return namesOnly; }
    [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                         std::span<const XMLElement> around) const override {
        return interest ? interest(element, around) : XMLInterest::all;
    }

    void didStartElement(XMLParser &parser, const XMLElement &element,
                         const XMLAttributes &attributes) override {
        std::string event = "start " + nameOf(element);
        for (const XMLAttribute &each : attributes) {
            event += ' ';
            event.append(each.prefix).append(each.prefix.empty() ? "" : ":");
            event.append(each.localName) += numberOf(each.nameNumber);
            event.append("=\"").append(each.value) += '"';
        }
        note(parser, std::move(event));
    }
    void didEndElement(XMLParser &parser, const XMLElement &element) override {
        note(parser, "end " + nameOf(element));
    }
    void foundCharacters(XMLParser &parser, std::string_view characters) override {
        allCharacters_ += characters;
        if (inText_) {
            events.back().insert(events.back().size() - 1, characters);
        } else {
            std::string event = "text \"";
            event.append(characters) += '"';
            events.push_back(std::move(event));
        }
        inText_ = true;
        if (onEvent) {
            onEvent(parser, events.back());
        }
    }
    void didStartMappingPrefix(XMLParser &parser, std::string_view prefix,
                               std::string_view uri) override {
        note(parser, "map " + std::string(prefix) + " -> " + std::string(uri));
    }
    void parseErrorOccurred(XMLParser &parser, const ErrorPtr &error) override {
        reported = error;
        note(parser, "error " + std::to_string(error->code()));
    }

  private:
    static std::string numberOf(std::uint16_t number) {
        return number != 0 ? std::string("#").append(std::to_string(number)) : std::string();
    }
    static std::string nameOf(const XMLElement &element) {
        std::string name;
        if (!element.namespaceURI.empty()) {
            name.append("{").append(element.namespaceURI) += '}';
        }
        return name + numberOf(element.namespaceNumber) + element.qualifiedName() +
               numberOf(element.nameNumber);
    }
    void note(XMLParser &parser, std::string event) {
        inText_ = false;
        events.push_back(std::move(event));
        if (onEvent) {
            onEvent(parser, events.back());
        }
    }

    bool inText_ = false;
    std::string allCharacters_;
};

} // namespace pelluvia::testing
