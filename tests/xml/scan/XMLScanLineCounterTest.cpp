// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/internal/scan/LineCounter.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <tests/support/XMLSources.h>

namespace pelluvia::xml::scan {
namespace {

using testing::TextSource;

std::string textOf(Position position) {
    return std::to_string(position.line) + ":" + std::to_string(position.column);
}

/// The places behind 0, 1, 2... bytes of the text.
std::string places(const std::string &text, std::size_t count) {
    LineCounter lines(std::make_unique<TextSource>(text, 3));
    std::string all;
    for (std::size_t i = 0; i <= count; ++i) {
        all.append(i == 0 ? "" : " ").append(textOf(lines.at(i)));
    }
    return all;
}

TEST(ScanLineCounter, CountsLinesAndColumnsFromOne) {
    EXPECT_EQ(places("", 0), "1:1");
    EXPECT_EQ(places("ab\nc\n\nd", 7), "1:1 1:2 1:3 2:1 2:2 3:1 4:1 4:2");
}

TEST(ScanLineCounter, CountsCharactersNotBytes) {
    // A column is entered with the first byte of a character.
    EXPECT_EQ(places("a\xC3\xA9"
                     "b",
                     4),
              "1:1 1:2 1:3 1:3 1:4");
    EXPECT_EQ(places("\xF0\x9F\x98\x80\n\xE6\x9D\xB1", 8), "1:1 1:2 1:2 1:2 1:2 2:1 2:2 2:2 2:2");
}

TEST(ScanLineCounter, CountsEveryKindOfLineEndAsTheOneByteThatItIsInTheText) {
    EXPECT_EQ(places("a\r\nb\rc\n", 6), "1:1 1:2 2:1 2:2 3:1 3:2 4:1");
}

TEST(ScanLineCounter, DoesNotCountTheByteOrderMark) {
    EXPECT_EQ(places("\xEF\xBB\xBF"
                     "ab",
                     2),
              "1:1 1:2 1:3");
}

TEST(ScanLineCounter, CountsTheTextOfOtherEncodings) {
    EXPECT_EQ(places("<?xml version='1.0' encoding='ISO-8859-1'?>\n\xE9\xE9", 48).substr(0, 3),
              "1:1");
    LineCounter lines(
        std::make_unique<TextSource>("<?xml version='1.0' encoding='ISO-8859-1'?>\n\xE9\xE9"));
    EXPECT_EQ(textOf(lines.at(48)), "2:3"); // two bytes each by now
}

TEST(ScanLineCounter, MayBeAskedForTheSamePlaceAgainAndForFarOnes) {
    std::string text;
    while (text.size() < 300'000) {
        text += "some line\n";
    }
    LineCounter lines(std::make_unique<TextSource>(text));
    EXPECT_EQ(textOf(lines.at(5)), "1:6");
    EXPECT_EQ(textOf(lines.at(5)), "1:6");
    EXPECT_EQ(textOf(lines.at(16 * 1024)), "1639:5");
    EXPECT_EQ(textOf(lines.at(299'999)), "30000:10");
    EXPECT_EQ(textOf(lines.at(300'000)), "30001:1");
}

TEST(ScanLineCounter, StaysAtTheEndOfADocumentThatHasBecomeShorter) {
    EXPECT_EQ(places("a\nb", 5), "1:1 1:2 2:1 2:2 2:2 2:2");
    LineCounter lines(std::make_unique<TextSource>("a\nb"));
    EXPECT_EQ(textOf(lines.at(UINT64_MAX)), "2:2");
}

TEST(ScanLineCounter, StaysWhereTheSourceFails) {
    LineCounter failing(std::make_unique<TextSource>("a\nb", 2, EIO));
    EXPECT_EQ(textOf(failing.at(100)), "2:2");
    LineCounter unknown(
        std::make_unique<TextSource>("<?xml version='1.0' encoding='not-known-anywhere'?>"));
    EXPECT_EQ(textOf(unknown.at(10)), "1:11");
}

} // namespace
} // namespace pelluvia::xml::scan
