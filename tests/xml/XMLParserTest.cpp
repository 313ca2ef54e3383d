// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <array>
#include <cerrno>
#include <gtest/gtest.h>
#include <stdexcept>
#include <sys/stat.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/XMLSources.h>
#include <unistd.h>

namespace pelluvia {
namespace {

using testing::eventsOf;
using testing::parserOf;
using testing::RecordingXMLDelegate;
using testing::TemporaryFolder;

TEST(XMLParser, ReportsElementsTextAndAttributesInOrder) {
    EXPECT_EQ(eventsOf("<a x='1' y=\"2\">b<c/>d</a>"), "start a x=\"1\" y=\"2\"\n"
                                                       "text \"b\"\n"
                                                       "start c\n"
                                                       "end c\n"
                                                       "text \"d\"\n"
                                                       "end a\n");
}

TEST(XMLParser, ReadsAFileByItsURL) {
    const TemporaryFolder folder;
    RecordingXMLDelegate delegate;
    const auto parser = XMLParser::initWithContentsOfURL(
        URL::fileURLWithPath(folder.write("a.xml", "<a>\n<b/></a>\n")));
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.text(), "start a\ntext \"\n\"\nstart b\nend b\nend a\n");
    EXPECT_EQ(parser->parserError(), nullptr);
    EXPECT_EQ(parser->lineNumber(), 3);
    EXPECT_EQ(parser->columnNumber(), 1);
}

TEST(XMLParser, NilURLGivesNoParser) {
    EXPECT_EQ(XMLParser::initWithContentsOfURL(std::nullopt), nullptr);
}

TEST(XMLParser, GivesNamespacesAndTheirDeclarations) {
    EXPECT_EQ(eventsOf("<a xmlns='urn:x' xmlns:p='urn:y'><p:b p:c='1' d='2'/><e xmlns=''/></a>"),
              "map  -> urn:x\n"
              "map p -> urn:y\n"
              "start {urn:x}a\n"
              "start {urn:y}p:b p:c=\"1\" d=\"2\"\n"
              "end {urn:y}p:b\n"
              "map  -> \n"
              "start e\n"
              "end e\n"
              "end {urn:x}a\n");
}

TEST(XMLParser, AnUndeclaredPrefixIsNoError) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf("<p:a q:b='1'/>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.text(), "start p:a q:b=\"1\"\nend p:a\n");
}

TEST(XMLParser, DeliversTheNumbersOfTheVocabulary) {
    constexpr std::array<std::string_view, 3> names{"lat", "wpt", "lon"};
    constexpr std::array<std::string_view, 2> spaces{"urn:y", "urn:x"};
    RecordingXMLDelegate delegate;
    delegate.names = {names, spaces};
    const auto parser = parserOf("<gpx xmlns='urn:x'><wpt lat='1' x='2' lon='3'/>"
                                 "<wptx xmlns='urn:x:'/><p:lat xmlns:p='urn:y'/></gpx>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.text(), "map  -> urn:x\n"
                               "start {urn:x}#2gpx\n"
                               "start {urn:x}#2wpt#2 lat#1=\"1\" x=\"2\" lon#3=\"3\"\n"
                               "end {urn:x}#2wpt#2\n"
                               "map  -> urn:x:\n"
                               "start {urn:x:}wptx\n"
                               "end {urn:x:}wptx\n"
                               "map p -> urn:y\n"
                               "start {urn:y}#1p:lat#1\n"
                               "end {urn:y}#1p:lat#1\n"
                               "end {urn:x}#2gpx\n");
}

TEST(XMLParser, FindsEveryNameOfALargeVocabulary) {
    std::vector<std::string> texts;
    for (int i = 1; i <= 3000; ++i) {
        texts.push_back(std::string("n").append(std::to_string(i)));
    }
    const std::vector<std::string_view> names(texts.begin(), texts.end());
    std::string document = "<r>";
    std::string expected = "start r\n";
    for (const std::string &text : texts) {
        document.append("<").append(text).append("/>");
        const std::string name = text + "#" + text.substr(1) + "\n";
        expected.append("start ").append(name).append("end ").append(name);
    }
    RecordingXMLDelegate delegate;
    delegate.names.names = names;
    const auto parser = parserOf(document + "</r>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.text(), expected + "end r\n");
}

TEST(XMLParser, ADelegateOfNamesIsSparedTheRest) {
    RecordingXMLDelegate delegate;
    delegate.namesOnly = true;
    const auto parser = parserOf("<a xmlns='urn:x' b='1'>text<c d='2'/><![CDATA[e]]></a>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(delegate.text(), "start {urn:x}a\nstart {urn:x}c\n");
}

TEST(XMLParser, WorksWithoutADelegate) {
    EXPECT_TRUE(parserOf("<a>b<c/></a>")->parse());
    const auto bad = parserOf("<a>");
    EXPECT_FALSE(bad->parse());
    EXPECT_EQ(bad->parserError()->code(), 77);
}

TEST(XMLParser, IgnoresCommentsAndProcessingInstructions) {
    EXPECT_EQ(eventsOf("<?p q?><!-- c --><a>x<!-- - - -->y<?r?>z</a><!-- d --><?s?>"),
              "start a\ntext \"xyz\"\nend a\n");
}

TEST(XMLParser, TheFirstErrorEndsTheParseAndIsReportedOnce) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf("<a>\n  <b></c>\n<d/></a><e>");
    parser->setDelegate(&delegate);
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(delegate.text(), "start a\ntext \"\n  \"\nstart b\nerror 76\n");
    const ErrorPtr error = parser->parserError();
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(delegate.reported, error);
    EXPECT_EQ(error->domain(), NSXMLParserErrorDomain);
    const ErrorInfo expected{{std::string(NSLocalizedDescriptionKey),
                              std::string("Opening and ending tag mismatch: b line 2 and c")},
                             {std::string(NSXMLParserErrorLineNumber), std::int64_t{2}},
                             {std::string(NSXMLParserErrorColumn), std::int64_t{10}}};
    EXPECT_EQ(error->userInfo(), expected);
    EXPECT_EQ(parser->lineNumber(), 2);
    EXPECT_EQ(parser->columnNumber(), 10);
}

TEST(XMLParser, AMessageIsOneLine) {
    const auto parser = parserOf("<a><![CDATA[x\ny\n");
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(parser->parserError()->localizedDescription(), "CData section not finished x");
}

TEST(XMLParser, AnEmptyDocumentIsAnErrorOfItsOwn) {
    const auto parser = parserOf("");
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(parser->parserError()->code(), 4);
    EXPECT_EQ(parser->lineNumber(), 1);
    EXPECT_EQ(parser->columnNumber(), 1);
}

TEST(XMLParser, WarningsAndNamespaceErrorsDoNotEndTheParse) {
    // An unknown version, a relative URI, one that is none, a prefix bound to nothing.
    EXPECT_EQ(eventsOf("<?xml version='1.1'?><a xmlns='rel' xmlns:p='not a uri' xmlns:q=''>"
                       "<q:b xml:lang='!!' xml:space='other'/></a>"),
              "map  -> rel\n"
              "map p -> not a uri\n"
              "start {rel}a\n"
              "start q:b xml:lang=\"!!\" xml:space=\"other\"\n"
              "end q:b\n"
              "end {rel}a\n");
}

TEST(XMLParser, ValidityErrorsDoNotEndTheParse) {
    EXPECT_EQ(eventsOf("<!DOCTYPE x [<!ELEMENT a EMPTY><!ATTLIST a b ID #REQUIRED c (d|d) 'e'>]>"
                       "<a><z/></a>"),
              "start a c=\"e\"\nstart z\nend z\nend a\n");
}

TEST(XMLParser, AFileThatCannotBeOpenedIsReportedWithTheSystemsReason) {
    const TemporaryFolder folder;
    const auto failing = [](const std::string &path) {
        RecordingXMLDelegate delegate;
        const auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path));
        parser->setDelegate(&delegate);
        EXPECT_FALSE(parser->parse());
        EXPECT_EQ(delegate.text(), "error 1549\n");
        EXPECT_EQ(parser->lineNumber(), 0);
        EXPECT_EQ(parser->parserError()->integer(NSXMLParserErrorLineNumber), 0);
        return parser->parserError()->localizedDescription();
    };
    EXPECT_EQ(failing(folder.file("missing")),
              "The file cannot be opened: No such file or directory");
    EXPECT_EQ(failing(folder.path().string()), "The file cannot be opened: Is a directory");
    const std::string secret = folder.write("secret", "<a/>");
    ASSERT_EQ(::chmod(secret.c_str(), 0), 0);
    if (::access(secret.c_str(), R_OK) != 0) { // the superuser reads everything
        EXPECT_EQ(failing(secret), "The file cannot be opened: Permission denied");
    }
}

TEST(XMLParser, AReadErrorWithinTheDocumentIsReportedWhereItEnds) {
    RecordingXMLDelegate delegate;
    XMLParser parser(std::make_unique<testing::TextSource>("<a>\n<b/>\nxy", 1000, EIO));
    parser.setDelegate(&delegate);
    EXPECT_FALSE(parser.parse());
    EXPECT_EQ(delegate.text(), "start a\ntext \"\n\"\nstart b\nend b\ntext \"\nxy\"\nerror 1549\n");
    EXPECT_EQ(delegate.reported->localizedDescription(),
              "The file cannot be read: Input/output error");
    EXPECT_EQ(parser.lineNumber(), 3);
    EXPECT_EQ(parser.columnNumber(), 3);
}

TEST(XMLParser, AReadErrorBehindTheDocumentIsAnErrorToo) {
    XMLParser parser(std::make_unique<testing::TextSource>("<a/>\n", 1000, EIO));
    EXPECT_FALSE(parser.parse());
    EXPECT_EQ(parser.parserError()->code(), 1549);
}

TEST(XMLParser, AbortingEndsTheEventsAndIsReportedOnce) {
    const std::string document = "<a xmlns='urn:x' xmlns:p='urn:p'>b<c d='1'/><e>&lt;f</e></a>";
    constexpr std::size_t eventCount = 10;
    for (std::size_t at = 0; at < eventCount; ++at) {
        RecordingXMLDelegate delegate;
        delegate.onEvent = [&](XMLParser &parser, const std::string &) {
            if (delegate.events.size() == at + 1) {
                parser.abortParsing();
                parser.abortParsing();
            }
        };
        const auto parser = parserOf(document);
        parser->setDelegate(&delegate);
        EXPECT_FALSE(parser->parse());
        EXPECT_EQ(delegate.events.size(), at + 2) << delegate.text();
        EXPECT_EQ(delegate.events.back(), "error 512");
        EXPECT_EQ(parser->parserError(), delegate.reported);
        EXPECT_EQ(delegate.reported->localizedDescription(), "The parse was aborted.");
    }
}

TEST(XMLParser, AnAbortStandsWhereItWasCalled) {
    RecordingXMLDelegate delegate;
    std::int64_t line = 0;
    std::int64_t column = 0;
    delegate.onEvent = [&](XMLParser &parser, const std::string &event) {
        if (event == "start c") {
            line = parser.lineNumber();
            column = parser.columnNumber();
            parser.abortParsing();
        }
    };
    const auto parser = parserOf("<a>\n<b/>\n  <c></c>\n</a>");
    parser->setDelegate(&delegate);
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(line, 3);
    EXPECT_EQ(column, 5); // behind `<c`
    EXPECT_EQ(parser->lineNumber(), line);
    EXPECT_EQ(parser->columnNumber(), column);
    EXPECT_EQ(parser->parserError()->integer(NSXMLParserErrorLineNumber), line);
    EXPECT_EQ(parser->parserError()->integer(NSXMLParserErrorColumn), column);
}

TEST(XMLParser, AbortingOutsideAParseIsHarmless) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf("<a/>");
    parser->setDelegate(&delegate);
    parser->abortParsing();
    EXPECT_TRUE(parser->parse());
    parser->abortParsing();
    EXPECT_EQ(parser->parserError(), nullptr);

    const auto failing = parserOf("<a>");
    failing->setDelegate(&delegate);
    delegate.onEvent = [](XMLParser &each, const std::string &event) {
        if (event.starts_with("error")) {
            each.abortParsing();
        }
    };
    EXPECT_FALSE(failing->parse());
    EXPECT_EQ(failing->parserError()->code(), 77);
}

TEST(XMLParser, AnExceptionOfTheDelegateReachesTheCaller) {
    const std::string document = "<!DOCTYPE a [<!ENTITY e '<i>x</i>'>]><a>b<c/>&e;</a>";
    for (const char *at : {"start a", "text \"b\"", "end c", "start i", "end a"}) {
        RecordingXMLDelegate delegate;
        delegate.onEvent = [at](XMLParser &, const std::string &event) {
            if (event == at) {
                throw std::runtime_error(event);
            }
        };
        const auto parser = parserOf(document);
        parser->setDelegate(&delegate);
        EXPECT_THROW(parser->parse(), std::runtime_error);
        EXPECT_EQ(delegate.events.back(), at) << "no event follows";
        EXPECT_EQ(delegate.reported, nullptr);
    }
}

TEST(XMLParser, ParsesOnce) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf("<a/>");
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_FALSE(parser->parse());
    EXPECT_EQ(parser->parserError(), nullptr);
    EXPECT_EQ(delegate.text(), "start a\nend a\n");
}

} // namespace
} // namespace pelluvia
