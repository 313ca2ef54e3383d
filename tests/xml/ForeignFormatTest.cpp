// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <gtest/gtest.h>
#include <string>
#include <string_view>

/// \file
/// Files that are not XML, though somebody may have named them so.

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

/// The message for a document, the same by both engines, with its code and place.
std::string messageOf(std::string_view document) {
    std::string messages[2];
    for (const XMLEngine engine : {XMLEngine::automatic, XMLEngine::libxml2}) {
        const auto parser = XMLParser::initWithData(document);
        parser->setEngine(engine);
        std::string &message = messages[engine == XMLEngine::automatic ? 0 : 1];
        if (parser->parse()) {
            message = "none";
            continue;
        }
        const ErrorPtr &error = parser->parserError();
        EXPECT_EQ(error->code(), xmlErrors::emptyDocument);
        EXPECT_EQ(parser->lineNumber(), 1);
        EXPECT_EQ(error->integer(NSXMLParserErrorLineNumber), 1);
        EXPECT_EQ(error->integer(NSXMLParserErrorColumn), 1);
        message = error->localizedDescription();
    }
    EXPECT_EQ(messages[0], messages[1]);
    return messages[0];
}

TEST(ForeignFormat, CompressedFilesAreNamedWithWhatDecompressesThem) {
    EXPECT_EQ(messageOf("\x1F\x8B\x08\0\0\0\0\0\0\x03"sv),
              "The file is compressed with gzip; decompress it first (gunzip)");
    EXPECT_EQ(messageOf("\x1F\x8B"sv),
              "The file is compressed with gzip; decompress it first (gunzip)");
    EXPECT_EQ(messageOf("PK\x03\x04\x14\0\0\0"sv),
              "The file is a ZIP archive; extract what is in it first (unzip)");
    EXPECT_EQ(messageOf("BZh91AY&SY"sv),
              "The file is compressed with bzip2; decompress it first (bunzip2)");
    EXPECT_EQ(messageOf("\xFD"
                        "7zXZ\0\0\x04"sv),
              "The file is compressed with xz; decompress it first (unxz)");
    EXPECT_EQ(messageOf("\x28\xB5\x2F\xFD\x04"sv),
              "The file is compressed with zstd; decompress it first (unzstd)");
    EXPECT_EQ(messageOf("7z\xBC\xAF\x27\x1C\0\x04"sv),
              "The file is a 7z archive; extract what is in it first (7z)");
}

TEST(ForeignFormat, OtherBinaryDataIsCalledSo) {
    constexpr std::string_view binary = "The file holds binary data, no text";
    EXPECT_EQ(messageOf("\x0E\x10\xD9\x07\0\0\0\0.FIT"sv), binary);
    EXPECT_EQ(messageOf("\0\0\0\0\0\0\0\0"sv), binary);
    EXPECT_EQ(messageOf("text\x01"sv), binary);
}

TEST(ForeignFormat, TextsAreTheParsersToJudge) {
    EXPECT_EQ(messageOf("$GPGGA,1\r\n"), "Start tag expected, '<' not found");
    EXPECT_EQ(messageOf("PK and others"), "Start tag expected, '<' not found");
    EXPECT_EQ(messageOf("\xE2\x82\xAC"), "Start tag expected, '<' not found");
    EXPECT_EQ(messageOf(""), "Document is empty");
}

TEST(ForeignFormat, EveryEncodingOfXMLIsRead) {
    for (const std::string_view document :
         {"<a/>"sv, " \n<a/>"sv, "\xEF\xBB\xBF<a/>"sv, "\xFE\xFF\0<\0a\0/\0>"sv,
          "\xFF\xFE<\0a\0/\0>\0"sv, "\0\0\xFE\xFF\0\0\0<\0\0\0a\0\0\0/\0\0\0>"sv,
          "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE9</a>"sv}) {
        EXPECT_EQ(messageOf(document), "none");
    }
}

} // namespace
} // namespace pelluvia
