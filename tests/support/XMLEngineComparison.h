#pragma once

#include <Pelluvia/platform/xml/Sax2Engine.h>
#include <Pelluvia/platform/xml/scan/ScanEngine.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/XMLSources.h>
#include <vector>

namespace pelluvia::testing {

/// Both XML engines on the same document: the scanner must report what the library reports.
class XMLEngineComparison {
  public:
    explicit XMLEngineComparison(const std::string &document,
                                 std::size_t windowSize = xml::scan::ScanEngine::usualWindowSize) {
        runScanner(document, windowSize);
        runLibrary(document);
        compare();
    }

    /// The scanner has read the whole document.
    [[nodiscard]] bool isScanned() const noexcept { return isScanned_; }
    /// The library has.
    [[nodiscard]] bool isWellFormed() const noexcept { return isWellFormed_; }
    /// What is not as it must be; empty when all is.
    [[nodiscard]] const std::string &difference() const noexcept { return difference_; }

  private:
    static constexpr std::array<std::string_view, 6> names = {"gpx", "trk", "lat", "lon", "a", "b"};
    static constexpr std::array<std::string_view, 2> namespaces = {
        "http://www.topografix.com/GPX/1/1", "u"};

    /// The events, each with its place but for texts, which come in other pieces.
    struct Report {
        RecordingXMLDelegate delegate;
        std::vector<std::string> places;
        xml::Engine *engine = nullptr;

        Report() {
            delegate.names = {.names = names, .namespaces = namespaces};
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

    void runScanner(const std::string &document, std::size_t windowSize) {
        TextSource source(document);
        XMLParser parser(source.again());
        xml::scan::ScanEngine engine(parser, source, &scanned_.delegate, windowSize);
        scanned_.engine = &engine;
        isScanned_ = engine.run() == xml::scan::ScanEngine::Outcome::wellFormed;
        scannedEnd_ = scanned_.place();
    }
    void runLibrary(const std::string &document) {
        TextSource source(document);
        XMLParser parser(source.again());
        xml::Sax2Engine engine(parser, source, &read_.delegate, false);
        read_.engine = &engine;
        isWellFormed_ = engine.run() == nullptr;
        readEnd_ = read_.place();
    }

    void compare() {
        const std::size_t count = scanned_.places.size();
        // What was reported before a refusal comes first in what the library reports, too; but the
        // last text may reach further.
        const bool endsWithText = count != 0 && scanned_.places.back().empty();
        const std::size_t compared = count - (!isScanned_ && endsWithText ? 1 : 0);
        for (std::size_t i = 0; i < compared; ++i) {
            if (scanned_.event(i) != read_.event(i)) {
                return differ(scanned_.event(i), read_.event(i));
            }
        }
        if (!isScanned_) {
            return;
        }
        if (!isWellFormed_) {
            differ("success", "an error");
        } else if (read_.places.size() != count) {
            differ(scanned_.event(count), read_.event(count));
        } else if (scannedEnd_ != readEnd_) {
            differ("the end at " + scannedEnd_, "the end at " + readEnd_);
        }
    }
    void differ(const std::string &scanned, const std::string &read) {
        difference_.append("the scanner has ").append(scanned);
        difference_.append(", the library ").append(read);
    }

    Report scanned_;
    Report read_;
    bool isScanned_ = false;
    bool isWellFormed_ = false;
    std::string scannedEnd_;
    std::string readEnd_;
    std::string difference_;
};

} // namespace pelluvia::testing
