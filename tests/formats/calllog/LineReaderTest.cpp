// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/internal/LineReader.h>

#include <tests/formats/calllog/CallLogs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::OpenText;
using Result = LineReader::Result;

struct Lines {
    std::vector<std::string> lines;
    Result last = Result::Line;
};

Lines linesOf(std::string_view text, std::size_t longestLine) {
    const OpenText file(text);
    const formats::SourceWait wait(-1, {}, {});
    formats::SourceProgress progress(file.descriptor());
    LineReader reader(file.descriptor(), longestLine, wait, progress);
    Lines result;
    std::string_view line;
    while ((result.last = reader.next(line)) == Result::Line) {
        result.lines.emplace_back(line);
    }
    return result;
}

TEST(LineReader, GivesEachLineWithoutItsEnd) {
    const Lines read = linesOf("one\n\ntwo\r\nthree\n", 100);
    EXPECT_THAT(read.lines, ElementsAre("one", "", "two\r", "three"));
    EXPECT_EQ(read.last, Result::End);
}

TEST(LineReader, TheLastLineMayLackItsEnd) {
    EXPECT_THAT(linesOf("one\ntwo", 100).lines, ElementsAre("one", "two"));
}

TEST(LineReader, AnEmptyFileHasNoLines) {
    EXPECT_THAT(linesOf("", 100).lines, IsEmpty());
}

TEST(LineReader, LinesMayStandAcrossAnyNumberOfReads) {
    const std::string longLine(300'000, 'x');
    const std::string longerLine(500'000, 'y');
    const Lines read = linesOf(longLine + "\nshort\n" + longerLine + "\n" + longLine, 1'000'000);
    EXPECT_THAT(read.lines, ElementsAre(longLine, "short", longerLine, longLine));
}

TEST(LineReader, ALineOfTheLimitIsReadAndALongerOneIsNot) {
    const std::string line(100'000, 'x');
    EXPECT_THAT(linesOf(line + "\n", 100'000).lines, ElementsAre(line));
    EXPECT_THAT(linesOf(line, 100'000).lines, ElementsAre(line));

    const Lines read = linesOf("before\n" + line + "x\nbehind\n", 100'000);
    EXPECT_THAT(read.lines, ElementsAre("before"));
    EXPECT_EQ(read.last, Result::TooLong);
    EXPECT_EQ(linesOf(line + "x", 100'000).last, Result::TooLong);
}

TEST(LineReader, AFileThatCannotBeReadIsAFailure) {
    const formats::SourceWait wait(-1, {}, {});
    formats::SourceProgress progress;
    LineReader reader(-1, 100, wait, progress);
    std::string_view line;
    EXPECT_EQ(reader.next(line), Result::Failed);
    EXPECT_EQ(reader.failure(), std::errc::bad_file_descriptor);
}

} // namespace
} // namespace pelluvia
