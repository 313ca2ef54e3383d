// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/xml/internal/sax2/Sax2Engine.h>
#include <Pelluvia/xml/internal/scan/ScanEngine.h>

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/XMLSources.h>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// Both XML engines on the same document: the scanner must report what the library reports, to
/// delegates that want all, some elements, or names only; and the same again when it knows that the
/// document is well-formed.
class XMLEngineComparison {
  public:
    explicit XMLEngineComparison(std::string document,
                                 std::size_t windowSize = ScanEngine::usualWindowSize)
        : document_(std::move(document)), windowSize_(windowSize) {
        for (const Wanted wanted : {Wanted::all, Wanted::some, Wanted::names}) {
            if (difference_.empty()) {
                compare(wanted);
            }
        }
    }

    /// The scanner has read the whole document.
    [[nodiscard]] bool isScanned() const noexcept { return isScanned_; }
    /// The library has.
    [[nodiscard]] bool isWellFormed() const noexcept { return isWellFormed_; }
    /// What is not as it must be; empty when all is.
    [[nodiscard]] const std::string &difference() const noexcept { return difference_; }

    /// Markup so often that tags which follow one another become phrases, and these longer ones.
    [[nodiscard]] static std::string repeated(std::string_view markup) {
        constexpr int times = 16;
        std::string document = "<r>";
        for (int i = 0; i < times; ++i) {
            document.append(markup);
        }
        return document.append("</r>");
    }

  private:
    using ScanEngine = xml::scan::ScanEngine;
    enum class Wanted { all, some, names };

    static constexpr std::array<std::string_view, 6> names = {"gpx", "trk", "lat", "lon", "a", "b"};
    static constexpr std::array<std::string_view, 2> namespaces = {
        "http://www.topografix.com/GPX/1/1", "u"};

    /// Something of each, by names and places.
    static XMLInterest someInterest(const XMLElement &element, std::span<const XMLElement> around) {
        constexpr std::array interests = {XMLInterest::tags, XMLInterest::nothing, XMLInterest::all,
                                          XMLInterest::nothing};
        std::size_t sum = element.namespaceURI.size();
        for (const char c : element.localName) {
            sum += static_cast<unsigned char>(c);
        }
        for (const XMLElement &each : around) {
            sum = 3 * sum + each.localName.size() + each.namespaceURI.size();
        }
        return interests[sum % interests.size()];
    }

    /// The events, each with its place but for texts, which come in other pieces.
    struct Report {
        RecordingXMLDelegate delegate;
        std::vector<std::string> places;
        xml::Engine *engine = nullptr;
        bool isWhole = false; ///< the engine has read the whole document
        std::string end;

        explicit Report(Wanted wanted) {
            delegate.names = {.names = names, .namespaces = namespaces};
            delegate.namesOnly = wanted == Wanted::names;
            if (wanted == Wanted::some) {
                delegate.interest = someInterest;
            }
            delegate.onEvent = [this](XMLParser &, const std::string &event) {
                places.resize(delegate.events.size());
                places.back() = event.starts_with("text") ? std::string() : place();
            };
        }
        [[nodiscard]] std::string place() const {
            const xml::Position position = engine->position();
            return std::to_string(position.line) + ":" + std::to_string(position.column);
        }
        [[nodiscard]] std::string event(std::size_t i) const {
            return i < places.size() ? places[i] + " " + delegate.events[i]
                                     : std::string("nothing");
        }
    };

    void scan(Report &report, ScanEngine::Document known) const {
        TextSource source(document_);
        XMLParser parser(source.again());
        ScanEngine engine(parser, source, &report.delegate, known, windowSize_);
        report.engine = &engine;
        report.isWhole = engine.run() == ScanEngine::Outcome::wellFormed;
        report.end = report.place();
    }
    void readWithLibrary(Report &report) const {
        TextSource source(document_);
        XMLParser parser(source.again());
        xml::Sax2Engine engine(parser, source, &report.delegate, false);
        report.engine = &engine;
        report.isWhole = engine.run() == nullptr;
        report.end = report.place();
    }

    static constexpr const char *nameOf(Wanted wanted) {
        return wanted == Wanted::all    ? "all"
               : wanted == Wanted::some ? "some elements"
                                        : "names only";
    }

    void compare(Wanted wanted) {
        wanted_ = wanted;
        Report scanned(wanted);
        scan(scanned, ScanEngine::Document::unknown);
        Report read(wanted);
        readWithLibrary(read);
        if (wanted == Wanted::all) {
            isScanned_ = scanned.isWhole;
            isWellFormed_ = read.isWhole;
        }
        compare(scanned, read);
        if (scanned.isWhole && difference_.empty()) {
            Report again(wanted);
            scan(again, ScanEngine::Document::wellFormed);
            if (!again.isWhole) {
                return differ("an error in what is known", "success");
            }
            compare(again, read);
        }
    }

    void compare(const Report &scanned, const Report &read) {
        const std::size_t count = scanned.places.size();
        // What was reported before a refusal comes first in what the library reports, too; but the
        // last text may reach further.
        const bool endsWithText = count != 0 && scanned.places.back().empty();
        const std::size_t compared = count - (!scanned.isWhole && endsWithText ? 1 : 0);
        for (std::size_t i = 0; i < compared; ++i) {
            if (scanned.event(i) != read.event(i)) {
                return differ(scanned.event(i), read.event(i));
            }
        }
        if (!scanned.isWhole) {
            return;
        }
        if (!read.isWhole) {
            differ("success", "an error");
        } else if (read.places.size() != count) {
            differ(scanned.event(count), read.event(count));
        } else if (scanned.end != read.end) {
            differ("the end at " + scanned.end, "the end at " + read.end);
        }
    }
    void differ(const std::string &scanned, const std::string &read) {
        difference_.append(nameOf(wanted_)).append(": the scanner has ").append(scanned);
        difference_.append(", the library ").append(read);
    }

    const std::string document_;
    const std::size_t windowSize_;
    Wanted wanted_ = Wanted::all; ///< what is compared
    bool isScanned_ = false;
    bool isWellFormed_ = false;
    std::string difference_;
};

} // namespace pelluvia::testing
