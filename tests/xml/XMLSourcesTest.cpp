// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <sys/socket.h>
#include <tests/support/LogCapture.h>
#include <tests/support/OpenFile.h>
#include <tests/support/RecordingXMLDelegate.h>
#include <tests/support/TemporaryFolder.h>
#include <thread>
#include <unistd.h>
#include <vector>

/// \file
/// Documents in files, behind descriptors, and in memory.

namespace pelluvia {
namespace {

using testing::OpenFile;
using testing::RecordingXMLDelegate;
using testing::TemporaryFolder;

constexpr std::array engines = {XMLEngine::automatic, XMLEngine::libxml2};

/// The events of a parse, with the text and place of the error.
std::string eventsOf(XMLParser &parser, XMLEngine engine) {
    RecordingXMLDelegate delegate;
    parser.setDelegate(&delegate);
    parser.setEngine(engine);
    if (parser.parse()) {
        return delegate.text();
    }
    return delegate.text() + parser.parserError()->localizedDescription() + " " +
           std::to_string(parser.lineNumber()) + ":" + std::to_string(parser.columnNumber());
}

std::string errorOf(XMLParser &parser) {
    EXPECT_FALSE(parser.parse());
    return parser.parserError() == nullptr ? "none" : parser.parserError()->localizedDescription();
}

/// What writes to a pipe while it is read; the pipe is closed when all is written.
class Pipe {
  public:
    explicit Pipe(std::string_view content) {
        EXPECT_EQ(::pipe(ends_.data()), 0);
        writer_ = std::thread([this, content] {
            std::string_view rest = content;
            while (!rest.empty()) {
                const ssize_t count = ::write(ends_[1], rest.data(), rest.size());
                if (count <= 0) {
                    break;
                }
                rest.remove_prefix(static_cast<std::size_t>(count));
            }
            ::close(ends_[1]);
        });
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;
    ~Pipe() {
        writer_.join();
        ::close(ends_[0]);
    }
    [[nodiscard]] int descriptor() const noexcept { return ends_[0]; }

  private:
    std::array<int, 2> ends_{};
    std::thread writer_;
};

/// More than any buffer.
std::string large() {
    std::string text = "<gpx>\n";
    while (text.size() < 330'000) {
        text.append("  <trk a=\"").append(std::to_string(text.size())).append("\">text</trk>\n");
    }
    return text + "</gpx>\n";
}

std::vector<std::string> documents() {
    return {large(),
            "<a b='1'>\xC3\xA9<c/></a>",
            "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>",
            "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>",
            "<a>\n<b></a>",
            "<a/",
            "",
            std::string("<a>\0</a>", 8)};
}

TEST(XMLSources, GiveTheSameEvents) {
    const TemporaryFolder folder;
    for (const std::string &document : documents()) {
        const std::string path = folder.write("a.xml", document);
        for (const XMLEngine engine : engines) {
            const std::string expected =
                eventsOf(*XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path)), engine);
            EXPECT_EQ(eventsOf(*XMLParser::initWithData(document), engine), expected);
            const OpenFile file(path);
            EXPECT_EQ(eventsOf(*XMLParser::initWithDescriptor(file.descriptor()), engine),
                      expected);
            const Pipe pipe(document);
            EXPECT_EQ(eventsOf(*XMLParser::initWithDescriptor(pipe.descriptor()), engine),
                      expected);
        }
    }
}

TEST(XMLSources, ADescriptorIsReadFromWhereItStandsAndStaysThere) {
    const TemporaryFolder folder;
    const OpenFile file(folder.write("a.xml", "not XML <a><b/></a>"));
    ASSERT_EQ(::lseek(file.descriptor(), 8, SEEK_SET), 8);
    XMLKnownFile known;
    for (const XMLEngine engine :
         {XMLEngine::automatic, XMLEngine::libxml2, XMLEngine::automatic}) {
        const auto parser = XMLParser::initWithDescriptor(file.descriptor());
        parser->setKnownFile(known);
        EXPECT_EQ(parser->sourceSize(), 11U);
        EXPECT_EQ(eventsOf(*parser, engine), "start a\nstart b\nend b\nend a\n");
        EXPECT_EQ(parser->lineNumber(), 1);
        EXPECT_EQ(parser->columnNumber(), 12);
        EXPECT_EQ(parser->bytesRead(), 11U);
        EXPECT_EQ(::lseek(file.descriptor(), 0, SEEK_CUR), 8) << "and it is open still";
        known = parser->knownFile();
    }
    EXPECT_TRUE(known.isUsual());
    // From elsewhere it is another document.
    ASSERT_EQ(::lseek(file.descriptor(), 11, SEEK_SET), 11);
    const auto parser = XMLParser::initWithDescriptor(file.descriptor());
    parser->setKnownFile(known);
    EXPECT_EQ(errorOf(*parser), "The file has changed since it was first read");
}

TEST(XMLSources, WhatIsKnownOfBytesInMemoryHoldsForTheseBytesOnly) {
    const std::string document = "<a><b/></a>";
    const auto first = XMLParser::initWithData(document);
    ASSERT_TRUE(first->parse());
    EXPECT_TRUE(first->knownFile().isUsual());
    const auto second = XMLParser::initWithData(document);
    second->setKnownFile(first->knownFile());
    EXPECT_EQ(eventsOf(*second, XMLEngine::automatic), "start a\nstart b\nend b\nend a\n");
    const std::string other = "<a></b></a>";
    const auto third = XMLParser::initWithData(other);
    third->setKnownFile(first->knownFile());
    EXPECT_EQ(errorOf(*third), "The file has changed since it was first read");
}

TEST(XMLSources, ADescriptorThatCannotBeReadIsAnError) {
    const TemporaryFolder folder;
    EXPECT_EQ(errorOf(*XMLParser::initWithDescriptor(-1)),
              "The file cannot be opened: Bad file descriptor");
    const OpenFile directory(folder.path().string());
    EXPECT_EQ(errorOf(*XMLParser::initWithDescriptor(directory.descriptor())),
              "The file cannot be opened: Is a directory");
    std::array<int, 2> ends{};
    ASSERT_EQ(::socketpair(AF_UNIX, SOCK_STREAM, 0, ends.data()), 0);
    ::close(ends[1]);
    EXPECT_EQ(XMLParser::initWithDescriptor(ends[0])->sourceSize(), std::nullopt);
    ::close(ends[0]);
}

TEST(XMLSources, APathWithAZeroByteIsRefused) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.xml", "<a/>");
    const auto parser =
        XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path + std::string("\0.gpx", 5)));
    RecordingXMLDelegate delegate;
    parser->setDelegate(&delegate);
    EXPECT_EQ(errorOf(*parser), "The file cannot be opened: There is a zero byte in its path");
    EXPECT_EQ(parser->parserError()->code(), xmlErrors::unreadable);
    EXPECT_EQ(delegate.text(), "error 1549\n");
    EXPECT_FALSE(parser->parse()) << "once";
}

/// There is no folder that they might be in.
TEST(XMLSources, ExternalEntitiesAreReadOfFilesByPathOnly) {
    const TemporaryFolder folder;
    folder.write("e.txt", "secret");
    const std::string document = "<!DOCTYPE a [<!ENTITY e SYSTEM 'e.txt'><!ENTITY f SYSTEM '" +
                                 folder.file("e.txt") + "'>]><a>&e;&f;</a>";
    const std::string path = folder.write("a.xml", document);
    const OpenFile file(path);
    const auto charactersOf = [](XMLParser &parser) {
        RecordingXMLDelegate delegate;
        parser.setDelegate(&delegate);
        parser.setShouldResolveExternalEntities(true);
        EXPECT_TRUE(parser.parse());
        return delegate.characters();
    };
    EXPECT_EQ(charactersOf(*XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path))),
              "secretsecret");
    testing::LogCapture log;
    EXPECT_EQ(charactersOf(*XMLParser::initWithDescriptor(file.descriptor())), "");
    EXPECT_EQ(charactersOf(*XMLParser::initWithData(document)), "");
    ASSERT_EQ(log.lines.size(), 4U);
    EXPECT_EQ(log.lines.front(),
              "External entity \"e.txt\" was not read: the document is in no folder");
}

/// `bytesRead` and `sourceSize` at every event, which must make a bar that never goes back.
void expectProgress(XMLParser &parser, XMLEngine engine, std::optional<std::uint64_t> size,
                    std::uint64_t end) {
    RecordingXMLDelegate delegate;
    std::uint64_t last = 0;
    std::uint64_t first = 0;
    delegate.onEvent = [&](XMLParser &at, const std::string &) {
        EXPECT_GE(at.bytesRead(), last);
        EXPECT_EQ(at.sourceSize(), size);
        last = at.bytesRead();
        first = first == 0 ? last : first;
    };
    parser.setDelegate(&delegate);
    parser.setEngine(engine);
    EXPECT_EQ(parser.bytesRead(), 0U);
    parser.parse();
    EXPECT_LT(first, 200'000U);
    EXPECT_EQ(last, end);
    EXPECT_EQ(parser.bytesRead(), end);
    EXPECT_EQ(parser.sourceSize(), size);
}

TEST(XMLSources, TellHowFarTheyWereRead) {
    const TemporaryFolder folder;
    const std::string usual = large();
    const std::string unusual =
        usual.substr(0, usual.size() / 2) + "<!-- " + std::string(200'000, ' ') + " --></gpx>";
    for (const std::string &document : {usual, unusual}) {
        const std::string path = folder.write("a.xml", document);
        const std::uint64_t size = document.size();
        for (const XMLEngine engine : engines) {
            const auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path));
            EXPECT_EQ(parser->sourceSize(), std::nullopt) << "it is not open yet";
            expectProgress(*parser, engine, size, size);
            expectProgress(*XMLParser::initWithData(document), engine, size, size);
            const OpenFile file(path);
            expectProgress(*XMLParser::initWithDescriptor(file.descriptor()), engine, size, size);
            const Pipe pipe(document);
            expectProgress(*XMLParser::initWithDescriptor(pipe.descriptor()), engine, std::nullopt,
                           size);
        }
    }
}

TEST(XMLSources, ProgressNeverExceedsTheSizeOfAFileThatGrows) {
    const TemporaryFolder folder;
    const std::string document = large();
    const std::string path = folder.write("a.xml", document.substr(0, 300'000));
    const auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath(path));
    RecordingXMLDelegate delegate;
    delegate.onEvent = [&](XMLParser &at, const std::string &) {
        if (delegate.events.size() == 1) {
            testing::writeFile(path, document);
        }
        EXPECT_LE(at.bytesRead(), at.sourceSize().value_or(0));
    };
    parser->setDelegate(&delegate);
    EXPECT_TRUE(parser->parse());
    EXPECT_EQ(parser->bytesRead(), document.size());
}

} // namespace
} // namespace pelluvia
