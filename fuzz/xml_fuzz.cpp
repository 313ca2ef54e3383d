// SPDX-License-Identifier: MIT

// Reads any bytes with both XML engines, the scanner and the library, and compares what they
// report; and short ones again as the content of an element that repeats them. The last byte
// chooses how much the scanner has in memory at a time. Then parsers read them from memory: whoever
// reads, and whatever is known before, events and errors must be the same. See fuzz/README.md.

#include <Pelluvia/system/Log.h>
#include <Pelluvia/xml/XMLParser.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/XMLEngineComparison.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using pelluvia::testing::XMLEngineComparison;

/// Documents mostly end with `>` or a line end; these get the usual size.
std::size_t windowSize(std::uint8_t choice) {
    return choice % 4 == 2 ? pelluvia::xml::scan::ScanEngine::usualWindowSize
                           : 17 + 5 * static_cast<std::size_t>(choice);
}

constexpr std::size_t longestRepeated = 500; ///< bytes; more would only be slow

void compare(const std::string &document, std::size_t window) {
    const XMLEngineComparison comparison(document, window);
    if (!comparison.difference().empty()) {
        std::fprintf(stderr, "%s\n", comparison.difference().c_str());
        std::abort();
    }
}

/// The events of a parse, and its error with its place.
std::string outcomeOf(pelluvia::XMLParser &parser) {
    pelluvia::testing::RecordingXMLDelegate delegate;
    parser.setDelegate(&delegate);
    if (parser.parse()) {
        return delegate.text();
    }
    return delegate.text() + parser.parserError()->localizedDescription() + " " +
           std::to_string(parser.lineNumber()) + ":" + std::to_string(parser.columnNumber());
}

void compareParsers(const std::string &document) {
    using pelluvia::XMLParser;
    const auto automatic = XMLParser::initWithData(document);
    const std::string outcome = outcomeOf(*automatic);
    const auto library = XMLParser::initWithData(document);
    library->setEngine(pelluvia::XMLEngine::libxml2);
    const auto again = XMLParser::initWithData(document);
    again->setKnownFile(automatic->knownFile());
    if (outcomeOf(*library) != outcome || outcomeOf(*again) != outcome ||
        automatic->bytesRead() > document.size()) {
        std::fprintf(stderr, "the parsers differ\n");
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const bool isQuiet = (pelluvia::setLogSink([](std::string_view) {}), true);
    static_cast<void>(isQuiet);
    if (size == 0) {
        return 0;
    }
    const std::string document(reinterpret_cast<const char *>(data), size);
    const std::size_t window = windowSize(data[size - 1]);
    compare(document, window);
    compareParsers(document);
    if (size <= longestRepeated) {
        compare(XMLEngineComparison::repeated(document), window);
    }
    return 0;
}
