// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/LineSplitter.h>

#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>
#include <vector>

namespace pelluvia::nmea {
namespace {

/// The lines of a text that comes in pieces of a size; those that were cut off end in "|".
std::vector<std::string> linesOf(std::string_view text, std::size_t piece, LineSplitter &splitter) {
    std::vector<std::string> lines;
    const auto use = [&](std::string_view line, LineEnd end) {
        lines.push_back(std::string(line) + (end == LineEnd::Missing ? "|" : ""));
    };
    while (!text.empty()) {
        // A copy, so that a line that outlives its bytes is found out.
        const std::string bytes(text.substr(0, piece));
        splitter.feed(bytes, use);
        text.remove_prefix(bytes.size());
    }
    splitter.finish(use);
    return lines;
}

std::vector<std::string> linesOf(std::string_view text, std::size_t piece = 1 << 20) {
    LineSplitter splitter;
    return linesOf(text, piece, splitter);
}

using Lines = std::vector<std::string>;

TEST(LineSplitter, EndsLinesAtCRAndLFInAnyCombination) {
    EXPECT_EQ(linesOf("$A\r\n$B\n$C\r$D\n\r\n\r$E\n"), (Lines{"$A", "$B", "$C", "$D", "$E"}));
}

TEST(LineSplitter, BeginsALineAtEachDollar) {
    EXPECT_EQ(linesOf("noise$A*1E$B\r\n$$C\n"), (Lines{"noise|", "$A*1E|", "$B", "$|", "$C"}));
}

TEST(LineSplitter, TakesALastLineWithoutAnEnd) {
    EXPECT_EQ(linesOf("$A\n$B"), (Lines{"$A", "$B|"}));
    EXPECT_EQ(linesOf("$A\n"), (Lines{"$A"}));
    EXPECT_EQ(linesOf(""), Lines{});
}

TEST(LineSplitter, PassesNulsAndOtherNoiseOn) {
    using namespace std::string_literals;
    EXPECT_EQ(linesOf("\0\xB5$A\0B\n\xFF\n"s), (Lines{"\0\xB5|"s, "$A\0B"s, "\xFF"}));
}

TEST(LineSplitter, DropsAndCountsALineThatIsTooLong) {
    const std::string longest(LineSplitter::longestLine, 'x');
    LineSplitter splitter;
    EXPECT_EQ(linesOf(longest + "\n" + longest + "y\n$A\n", 1 << 20, splitter),
              (Lines{longest, "$A"}));
    EXPECT_EQ(splitter.droppedLines(), 1);
}

TEST(LineSplitter, FindsTheSentenceBehindTenMegabytesWithoutALineEnd) {
    const std::string endless(10'000'000, '\0');
    LineSplitter splitter;
    EXPECT_EQ(linesOf(endless + "$A\n", 4096, splitter), Lines{"$A"});
    EXPECT_EQ(splitter.droppedLines(), 1);
}

TEST(LineSplitter, FindsTheSameLinesHoweverTheBytesCome) {
    testing::Chance random(5);
    constexpr std::string_view alphabet = "$\r\nab*,\0";
    for (int round = 0; round < 300; ++round) {
        std::string text(random() % 60, ' ');
        for (char &c : text) {
            c = alphabet[random() % alphabet.size()];
        }
        if (round % 10 == 0) {
            text.insert(random() % (text.size() + 1), std::string(1000 + random() % 60, 'x'));
        }
        LineSplitter whole;
        const Lines expected = linesOf(text, 1 << 20, whole);
        for (const std::size_t piece : {1U, 2U, 3U, 7U, 100U}) {
            LineSplitter splitter;
            EXPECT_EQ(linesOf(text, piece, splitter), expected) << piece;
            EXPECT_EQ(splitter.droppedLines(), whole.droppedLines());
        }
    }
}

} // namespace
} // namespace pelluvia::nmea
