// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/XMLEngineVariable.h>
#include <thread>

/// \file
/// What parses of one file know of one another, and files that change under their hands.

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using testing::RecordingXMLDelegate;
using testing::TemporaryFolder;

constexpr std::string_view usual = "<gpx><trk a='1'>text</trk></gpx>";
constexpr std::string_view changed = "The file has changed since it was first read";

/// Written an hour ago, so that it can be told when it is written anew.
void makeOld(const std::string &path) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

std::unique_ptr<XMLParser> parserOf(const std::string &path) {
    return XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path));
}

/// The message of a parse by the parser; empty when it went well.
std::string outcomeOf(XMLParser &parser, RecordingXMLDelegate &delegate) {
    parser.setDelegate(&delegate);
    return parser.parse() ? std::string() : parser.parserError()->localizedDescription();
}

XMLKnownFile counted(const std::string &path) {
    RecordingXMLDelegate delegate;
    delegate.namesOnly = true;
    const auto parser = parserOf(path);
    EXPECT_EQ(outcomeOf(*parser, delegate), "");
    return parser->knownFile();
}

std::string outcomeOfKnown(const std::string &path, const XMLKnownFile &file) {
    RecordingXMLDelegate delegate;
    const auto parser = parserOf(path);
    parser->setKnownFile(file);
    std::string outcome = outcomeOf(*parser, delegate);
    if (outcome == changed) {
        EXPECT_EQ(parser->parserError()->code(), 1549);
        EXPECT_EQ(parser->parserError()->integer(NSXMLParserErrorLineNumber), 0);
        EXPECT_EQ(parser->lineNumber(), 0);
        EXPECT_EQ(parser->columnNumber(), 0);
        parser->abortParsing();
    }
    return outcome;
}

TEST(XMLScanKnownFile, GoesFromParserToParser) {
    const TemporaryFolder folder;
    for (const std::string_view document :
         {usual, std::string_view("<!DOCTYPE gpx><gpx><trk a='1'>text</trk></gpx>")}) {
        const std::string path = folder.write("a.gpx", document);
        XMLKnownFile file = counted(path);
        for (int i = 0; i < 3; ++i) {
            RecordingXMLDelegate delegate;
            const auto parser = parserOf(path);
            parser->setKnownFile(file);
            EXPECT_EQ(outcomeOf(*parser, delegate), "");
            EXPECT_EQ(delegate.text(),
                      "start gpx\nstart trk a=\"1\"\ntext \"text\"\nend trk\nend gpx\n");
            const XMLKnownFile copy = parser->knownFile();
            file = XMLKnownFile();
            file = copy;
        }
        EXPECT_EQ(outcomeOfKnown(path, XMLKnownFile()), "");
    }
}

TEST(XMLScanKnownFile, MalformedFilesFailEachTimeAlike) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", "<gpx>\n<trk></gpx>");
    RecordingXMLDelegate delegate;
    delegate.namesOnly = true;
    const auto first = parserOf(path);
    const std::string outcome = outcomeOf(*first, delegate);
    EXPECT_EQ(outcome, "Opening and ending tag mismatch: trk line 2 and gpx");
    EXPECT_EQ(outcomeOfKnown(path, first->knownFile()), outcome);
}

TEST(XMLScanKnownFile, AFileThatHasChangedIsNotRead) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a.gpx");
    const std::function<void()> changes[] = {
        [&] { testing::writeFile(path, std::string(usual) + "\n"); },
        [&] { testing::writeFile(path, usual.substr(0, 10)); },
        [&] { testing::writeFile(path, ""); },
        [&] { testing::writeFile(path, "<gpx><trk a='2'>text</trk></gpx>"); },
        [&] { testing::writeFile(path, "<gpx><trk a='1'>texT</trk></gpx>"); },
        [&] { fs::rename(folder.write("b.gpx", "<gpx><trk b='1'>text</trk></gpx>"), path); },
    };
    for (const std::string_view document :
         {usual, std::string_view("<!DOCTYPE gpx><gpx>  </gpx>     ")}) {
        ASSERT_EQ(document.size(), usual.size());
        for (const auto &change : changes) {
            testing::writeFile(path, document);
            makeOld(path);
            const XMLKnownFile file = counted(path);
            EXPECT_EQ(outcomeOfKnown(path, file), "");
            change();
            EXPECT_EQ(outcomeOfKnown(path, file), changed);
        }
    }
}

/// Its times and its identity tell that something may have happened; but nothing has.
TEST(XMLScanKnownFile, AFileThatWasOnlyTouchedIsRead) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a.gpx");
    for (const std::string_view document :
         {usual, std::string_view("<!DOCTYPE gpx><gpx><b/>&amp;</gpx>")}) {
        const std::function<void()> touches[] = {
            [&] { fs::last_write_time(path, fs::file_time_type::clock::now()); },
            [&] { testing::writeFile(path, document); },
            [&] { fs::rename(folder.write("b.gpx", document), path); },
        };
        for (const auto &touch : touches) {
            testing::writeFile(path, document);
            makeOld(path);
            const auto first = parserOf(path);
            ASSERT_TRUE(first->parse());
            touch();
            RecordingXMLDelegate delegate;
            const auto second = parserOf(path);
            second->setKnownFile(first->knownFile());
            EXPECT_EQ(outcomeOf(*second, delegate), "");
            EXPECT_EQ(second->knownFile().isUsual(), first->knownFile().isUsual());
            // And what is known now holds on.
            EXPECT_EQ(outcomeOfKnown(path, second->knownFile()), "");
            makeOld(path);
            EXPECT_EQ(outcomeOfKnown(path, second->knownFile()), "");
            testing::writeFile(path, std::string(document.size(), ' '));
            EXPECT_EQ(outcomeOfKnown(path, second->knownFile()), changed);
        }
    }
}

TEST(XMLScanKnownFile, AMalformedFileThatWasTouchedFailsAsBefore) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", "<gpx>\n<trk></gpx>");
    makeOld(path);
    RecordingXMLDelegate delegate;
    const auto first = parserOf(path);
    const std::string outcome = outcomeOf(*first, delegate);
    fs::last_write_time(path, fs::file_time_type::clock::now());
    EXPECT_EQ(outcomeOfKnown(path, first->knownFile()), outcome);
}

TEST(XMLScanKnownFile, AFileThatIsGoneOrNoFileAnyMore) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", usual);
    const XMLKnownFile file = counted(path);
    fs::remove(path);
    EXPECT_EQ(outcomeOfKnown(path, file), "The file cannot be opened: No such file or directory");
    fs::create_directory(path);
    EXPECT_EQ(outcomeOfKnown(path, file), "The file cannot be opened: Is a directory");
}

/// Much more than is in memory at a time.
std::string large() {
    std::string document = "<gpx>\n";
    while (document.size() < 600'000) {
        document.append("  <trk a='1' b=\"").append(std::to_string(document.size()));
        document.append("\">text</trk>\n");
    }
    return document + "</gpx>\n";
}

TEST(XMLScanKnownFile, AFileThatChangesWhileItIsReadAgainGivesAnError) {
    const testing::XMLEngineVariable automatic;
    const TemporaryFolder folder;
    const std::string path = folder.file("a.gpx");
    const std::string document = large();
    const std::function<void()> changes[] = {
        [&] { fs::resize_file(path, document.size() / 2); },
        [&] { fs::resize_file(path, 0); },
        [&] { fs::resize_file(path, document.size() * 2); },
        [&] { testing::writeFile(path, std::string(document.size(), '<')); },
        [&] { testing::writeFile(path, "<gpx/>"); },
        // What was read is not there any more, what comes is as before.
        [&] { testing::writeFile(path, std::string(document).replace(8, 3, "wpt")); },
    };
    for (const auto &change : changes) {
        testing::writeFile(path, document);
        makeOld(path);
        RecordingXMLDelegate delegate;
        std::size_t count = 0;
        delegate.onEvent = [&](XMLParser &, const std::string &) {
            if (++count == 1000) {
                change();
            }
        };
        const auto parser = parserOf(path);
        parser->setKnownFile(counted(path));
        EXPECT_EQ(outcomeOf(*parser, delegate), changed);
        EXPECT_EQ(parser->lineNumber(), 0);
        EXPECT_EQ(delegate.events.back(), "error 1549");
    }
}

TEST(XMLScanKnownFile, AFileThatIsTouchedWhileItIsReadIsReadToItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder.file("a.gpx");
    const std::string usualDocument = large();
    const std::string unusualDocument = usualDocument.substr(0, usualDocument.size() - 8) +
                                        "<!-- " + std::string(200'000, ' ') +
                                        " --><\xC3\xA9/></gpx>\n";
    for (const std::string &document : {usualDocument, unusualDocument}) {
        for (const bool isKnown : {false, true}) {
            testing::writeFile(path, document);
            makeOld(path);
            RecordingXMLDelegate delegate;
            delegate.onEvent = [&](XMLParser &, const std::string &) {
                if (delegate.events.size() == 1000) {
                    fs::last_write_time(path, fs::file_time_type::clock::now());
                }
            };
            const auto parser = parserOf(path);
            if (isKnown) {
                parser->setKnownFile(counted(path));
            }
            EXPECT_EQ(outcomeOf(*parser, delegate), "");
            EXPECT_EQ(delegate.events.back(), "end gpx");
            EXPECT_EQ(outcomeOfKnown(path, parser->knownFile()), "");
        }
    }
}

TEST(XMLScanKnownFile, AFileThatChangesWhileNamesAreReadIsNotReadAgain) {
    const testing::XMLEngineVariable automatic;
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", large());
    makeOld(path);
    RecordingXMLDelegate delegate;
    delegate.namesOnly = true;
    delegate.onEvent = [&](XMLParser &, const std::string &) {
        if (delegate.events.size() == 100) {
            // What was read is not there any more, and the rest is malformed.
            testing::writeFile(path, "<other><other/>");
        }
    };
    const auto parser = parserOf(path);
    EXPECT_EQ(outcomeOf(*parser, delegate), changed);
    EXPECT_EQ(outcomeOfKnown(path, parser->knownFile()), changed);
}

TEST(XMLScanKnownFile, AFileThatIsReplacedWhileItIsReadIsReadToItsEnd) {
    const TemporaryFolder folder;
    const std::string document = large();
    const std::string path = folder.write("a.gpx", document);
    RecordingXMLDelegate delegate;
    delegate.onEvent = [&](XMLParser &, const std::string &) {
        if (delegate.events.size() == 100) {
            fs::rename(folder.write("b.gpx", "<other/>"), path);
        }
    };
    const auto parser = parserOf(path);
    EXPECT_EQ(outcomeOf(*parser, delegate), "");
    EXPECT_EQ(delegate.events.back(), "end gpx");
    EXPECT_EQ(outcomeOfKnown(path, parser->knownFile()), changed);
}

/// Something else under the same name, with the same size and times: nobody can tell, but nothing
/// breaks.
TEST(XMLScanKnownFile, AChangeThatLeavesNoTraceIsRead) {
    const testing::XMLEngineVariable automatic;
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", usual);
    makeOld(path);
    const XMLKnownFile file = counted(path);
    const auto time = fs::last_write_time(path);
    const auto rewrite = [&](std::string_view text) {
        testing::writeFile(path, text);
        fs::last_write_time(path, time);
    };
    rewrite("<gpx><rte b='2'>TEXT</rte></gpx>");
    EXPECT_EQ(outcomeOfKnown(path, file), "");
    rewrite("<gpx><rte b='2'>TEXT</rtf></gpx>");
    EXPECT_EQ(outcomeOfKnown(path, file), changed) << "the scanner has read it before";
}

/// The number of pieces in which a text with one character outside ASCII came: the scanner gives it
/// as one.
std::size_t piecesBy(const std::string &path, const XMLKnownFile &file, XMLEngine engine) {
    RecordingXMLDelegate delegate;
    std::size_t pieces = 0;
    delegate.onEvent = [&](XMLParser &, const std::string &event) {
        pieces += event.starts_with("text") ? 1U : 0U;
    };
    const auto parser = parserOf(path);
    parser->setKnownFile(file);
    parser->setEngine(engine);
    EXPECT_EQ(outcomeOf(*parser, delegate), "");
    return pieces;
}

TEST(XMLScanKnownFile, TheLibraryReadsWhereItIsWanted) {
    testing::XMLEngineVariable variable;
    const TemporaryFolder folder;
    const std::string path = folder.write("a.gpx", "<a>b\xC3\xA9</a>");
    const XMLKnownFile file = counted(path);
    for (const XMLKnownFile &known : {XMLKnownFile(), file}) {
        EXPECT_EQ(piecesBy(path, known, XMLEngine::automatic), 1U);
        EXPECT_EQ(piecesBy(path, known, XMLEngine::libxml2), 2U);
        variable.set("libxml2");
        EXPECT_EQ(piecesBy(path, known, XMLEngine::automatic), 2U);
        variable.set("automatic");
        EXPECT_EQ(piecesBy(path, known, XMLEngine::automatic), 1U);
        EXPECT_EQ(piecesBy(path, known, XMLEngine::libxml2), 2U);
        variable.unset();
    }
}

TEST(XMLScanKnownFile, APipeIsReadByTheLibraryAsOftenAsItIsFilled) {
    const TemporaryFolder folder;
    const std::string path = folder.file("pipe");
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    XMLKnownFile file;
    for (int i = 0; i < 3; ++i) {
        std::thread writer([&] { testing::writeFile(path, "<a>b\xC3\xA9</a>"); });
        EXPECT_EQ(piecesBy(path, file, XMLEngine::automatic), 2U);
        writer.join();
        // What was written to it last is no sign of a change.
        makeOld(path);
        std::thread again([&] { testing::writeFile(path, "<a>b</a>"); });
        RecordingXMLDelegate delegate;
        const auto parser = parserOf(path);
        parser->setKnownFile(file);
        EXPECT_EQ(outcomeOf(*parser, delegate), "");
        again.join();
        file = parser->knownFile();
        makeOld(path);
    }
}

} // namespace
} // namespace pelluvia
