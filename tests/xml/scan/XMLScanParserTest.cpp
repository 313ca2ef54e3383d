// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <cerrno>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/XMLEngineVariable.h>
#include <tests/support/XMLSources.h>
#include <utility>
#include <vector>

/// \file
/// A parser cannot be seen to have two engines.

namespace pelluvia {
namespace {

using testing::RecordingXMLDelegate;
using testing::TextSource;

/// What a parse has come to.
struct Parsed {
    std::string events;
    std::string error; ///< code, text, line and column
    std::string end;   ///< line and column

    [[nodiscard]] std::string text() const { return events + error + "\n" + end; }
};

std::string placeOf(const XMLParser &parser) {
    return std::to_string(parser.lineNumber()) + ":" + std::to_string(parser.columnNumber());
}

Parsed parsed(XMLParser &parser, RecordingXMLDelegate &delegate) {
    parser.setDelegate(&delegate);
    const bool isGood = parser.parse();
    const ErrorPtr error = parser.parserError();
    EXPECT_EQ(isGood, error == nullptr);
    EXPECT_EQ(delegate.reported, error);
    Parsed result;
    result.events = delegate.text();
    if (error != nullptr) {
        result.error = std::to_string(error->code()) + " " + error->localizedDescription() +
                       " at " + std::to_string(error->integer(NSXMLParserErrorLineNumber)) + ":" +
                       std::to_string(error->integer(NSXMLParserErrorColumn));
    }
    result.end = placeOf(parser);
    return result;
}

Parsed parsedBy(XMLEngine engine, std::unique_ptr<xml::Source> source,
                RecordingXMLDelegate &delegate) {
    const testing::XMLEngineVariable unset;
    XMLParser parser(std::move(source));
    parser.setEngine(engine);
    return parsed(parser, delegate);
}

const std::string usual = "<?xml version='1.0'?>\n<gpx xmlns='u' xmlns:p='v'>\n"
                          "  <trk a='1' p:b=\"2&amp;\">x\n&lt; \xE6\x9D\xB1<![CDATA[y]]></trk>\n"
                          "  <trk a='3' p:b=\"4\"/>\n  <p:c><!-- d --></p:c>\n</gpx>\n";

/// Wrong in all sorts of ways, at the end of many good elements.
std::vector<std::string> malformed() {
    const std::string good = usual.substr(0, usual.rfind("</gpx>"));
    std::vector<std::string> documents;
    for (const char *bad : {"</trk>",
                            "<",
                            "<b",
                            "<b c",
                            "<b c='",
                            "<b c='d' c='e'/>",
                            "<b>",
                            "</gpx",
                            "&no;",
                            "&#0;",
                            "]]>",
                            "\x01",
                            "\xFF",
                            "<!-- --->",
                            "<?xml?>",
                            "<![CDATA[",
                            "<!DOCTYPE a>",
                            "</gpx>text",
                            "</gpx><gpx/>",
                            "</gpx>\n&amp;",
                            "<p:b></b></gpx>",
                            "<b c='<'/>"}) {
        documents.push_back(good + bad);
        documents.push_back(good + bad + "\n<e/>\n</gpx>\n");
    }
    return documents;
}

TEST(XMLScanParser, ReportsWhatTheLibraryReports) {
    for (const bool namesOnly : {false, true}) {
        RecordingXMLDelegate one;
        RecordingXMLDelegate other;
        one.namesOnly = other.namesOnly = namesOnly;
        EXPECT_EQ(parsedBy(XMLEngine::automatic, std::make_unique<TextSource>(usual), one).text(),
                  parsedBy(XMLEngine::libxml2, std::make_unique<TextSource>(usual), other).text());
        EXPECT_EQ(one.reported, nullptr);
    }
}

TEST(XMLScanParser, FailsAsTheLibraryFails) {
    for (const std::string &document : malformed()) {
        for (const bool namesOnly : {false, true}) {
            RecordingXMLDelegate one;
            RecordingXMLDelegate other;
            one.namesOnly = other.namesOnly = namesOnly;
            EXPECT_EQ(
                parsedBy(XMLEngine::automatic, std::make_unique<TextSource>(document), one).text(),
                parsedBy(XMLEngine::libxml2, std::make_unique<TextSource>(document), other).text());
            EXPECT_NE(one.reported, nullptr) << document;
        }
    }
}

TEST(XMLScanParser, FailsAsTheLibraryFailsWithoutADelegate) {
    for (const std::string &document : malformed()) {
        const auto errorBy = [&](XMLEngine engine) {
            XMLParser parser(std::make_unique<TextSource>(document));
            parser.setEngine(engine);
            EXPECT_FALSE(parser.parse());
            return parser.parserError()->localizedDescription() + placeOf(parser);
        };
        EXPECT_EQ(errorBy(XMLEngine::automatic), errorBy(XMLEngine::libxml2));
    }
}

TEST(XMLScanParser, TellsNamesOnceWhereverTheScannerGivesUp) {
    std::string document = "<gpx>";
    std::string expected = "start gpx\n";
    for (int i = 0; i < 50; ++i) {
        document.append("<trk/><trk><b/></trk>");
        expected.append("start trk\nstart trk\nstart b\n");
        RecordingXMLDelegate delegate;
        delegate.namesOnly = true;
        // A name that only the library reads.
        const auto parser = testing::parserOf(document + "<\xC3\xA9/><b/></gpx>");
        parser->setDelegate(&delegate);
        EXPECT_TRUE(parser->parse());
        EXPECT_EQ(delegate.text(), expected + "start \xC3\xA9\nstart b\n");
    }
}

/// Aborts at each event in turn; all but texts, which come in pieces of any size.
TEST(XMLScanParser, AbortsWhereTheLibraryAborts) {
    for (const bool namesOnly : {false, true}) {
        for (std::size_t at = 0; at < 25; ++at) {
            std::string places;
            const auto abortedBy = [&](XMLEngine engine) {
                RecordingXMLDelegate delegate;
                delegate.namesOnly = namesOnly;
                delegate.onEvent = [&](XMLParser &parser, const std::string &event) {
                    if (delegate.events.size() == at + 1 && !event.starts_with("text")) {
                        parser.abortParsing();
                        parser.abortParsing();
                        places += placeOf(parser) + " ";
                    }
                };
                const Parsed result =
                    parsedBy(engine, std::make_unique<TextSource>(usual), delegate);
                return result.text() + " seen " + std::exchange(places, {});
            };
            EXPECT_EQ(abortedBy(XMLEngine::automatic), abortedBy(XMLEngine::libxml2));
        }
    }
}

/// The texts are such that both give them in the same pieces.
TEST(XMLScanParser, AbortsInATextWhereTheLibraryAborts) {
    for (const char *document :
         {"<a>b</a>", "<a>\n\n</a>", "<a> b c </a>", "<a>\nb\n  <c/></a>", "<a>\xC3\xA9</a>",
          "<a>&amp;</a>", "<a>b&amp;</a>", "<a><![CDATA[b\nc]]></a>", "<a>\n  b]c\n </a>"}) {
        const auto abortedBy = [&](XMLEngine engine) {
            RecordingXMLDelegate delegate;
            delegate.onEvent = [&](XMLParser &parser, const std::string &event) {
                if (event.starts_with("text")) {
                    parser.abortParsing();
                }
            };
            return parsedBy(engine, std::make_unique<TextSource>(document), delegate).text();
        };
        EXPECT_EQ(abortedBy(XMLEngine::automatic), abortedBy(XMLEngine::libxml2));
    }
}

TEST(XMLScanParser, KnowsWhereItIsAtAnyEvent) {
    const auto placesBy = [&](XMLEngine engine) {
        std::string places;
        RecordingXMLDelegate delegate;
        delegate.onEvent = [&](XMLParser &parser, const std::string &event) {
            if (!event.starts_with("text")) {
                places += placeOf(parser) + " " + event + "\n";
            }
        };
        places += parsedBy(engine, std::make_unique<TextSource>(usual), delegate).end;
        return places;
    };
    EXPECT_EQ(placesBy(XMLEngine::automatic), placesBy(XMLEngine::libxml2));
}

TEST(XMLScanParser, PassesExceptionsOn) {
    for (const bool namesOnly : {false, true}) {
        for (std::size_t at = 0; at < 6; ++at) {
            RecordingXMLDelegate delegate;
            delegate.namesOnly = namesOnly;
            delegate.onEvent = [&](XMLParser &, const std::string &event) {
                if (delegate.events.size() == at + 1) {
                    throw std::runtime_error(event);
                }
            };
            const auto parser = testing::parserOf("<a><b/><c><d/></c><e/><f/></a>");
            parser->setDelegate(&delegate);
            EXPECT_THROW(parser->parse(), std::runtime_error);
            EXPECT_EQ(delegate.events.size(), at + 1);
            EXPECT_EQ(delegate.reported, nullptr);
            EXPECT_FALSE(parser->parse());
            EXPECT_EQ(parser->lineNumber(), 1);
            parser->abortParsing();
        }
    }
}

TEST(XMLScanParser, ASourceThatFailsIsReportedAsTheLibraryReportsIt) {
    for (const std::size_t size : {0U, 10U, 60U, 100U, 150U}) {
        for (const bool namesOnly : {false, true}) {
            const auto failedBy = [&](XMLEngine engine) {
                RecordingXMLDelegate delegate;
                delegate.namesOnly = namesOnly;
                return parsedBy(engine, std::make_unique<TextSource>(usual.substr(0, size), 7, EIO),
                                delegate)
                    .text();
            };
            EXPECT_EQ(failedBy(XMLEngine::automatic), failedBy(XMLEngine::libxml2));
        }
    }
}

TEST(XMLScanParser, ASourceThatFailsLaterIsReportedAsSuch) {
    const testing::XMLEngineVariable automatic;
    const std::string text = "<a>\n<b/>\n<c/>\n<d/>\n</a>";
    XMLParser first(std::make_unique<TextSource>(text));
    ASSERT_TRUE(first.parse());
    XMLParser second(std::make_unique<TextSource>(text.substr(0, text.size() / 2), 100, EIO));
    second.setKnownFile(first.knownFile());
    RecordingXMLDelegate delegate;
    const Parsed result = parsed(second, delegate);
    EXPECT_EQ(result.events, "start a\ntext \"\n\"\nstart b\nend b\nerror 1549\n");
    EXPECT_EQ(result.error, "1549 The file cannot be read: Input/output error at 3:3");
    EXPECT_EQ(result.end, "3:3");
}

} // namespace
} // namespace pelluvia
