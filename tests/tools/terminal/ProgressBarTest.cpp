// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/ProgressBar.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace pelluvia::host {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;

/// A bar with a clock that the test sets.
class ProgressBarTest : public ::testing::Test {
  protected:
    void progressTo(int kind, int last) {
        for (int index = 1; index <= last; ++index) {
            bar.gpxProgress(kind, index);
        }
    }

    std::chrono::steady_clock::time_point now{std::chrono::hours(1)};
    int clockReadings = 0;
    std::vector<std::string> drawn;
    ProgressBar bar{[this](std::string_view text) { drawn.emplace_back(text); },
                    [this] {
                        ++clockReadings;
                        return now;
                    }};
};

TEST_F(ProgressBarTest, LeavesTheLineToOthersWhileItIsMuted) {
    progressTo(1, 256);
    ASSERT_THAT(drawn, SizeIs(1));
    bar.setMuted(true);
    ASSERT_THAT(drawn, SizeIs(2));
    EXPECT_EQ(drawn.back(), "\r\x1B[K");
    now += std::chrono::hours(1);
    progressTo(1, 1024);
    EXPECT_THAT(drawn, SizeIs(2));
    bar.setMuted(false);
    progressTo(1, 256);
    EXPECT_THAT(drawn, SizeIs(3));
}

TEST_F(ProgressBarTest, ShowsTheShareOfAKnownNumberOfItems) {
    bar.gpxStartTransfer(3, 1024);
    progressTo(3, 512);
    ASSERT_THAT(drawn, SizeIs(1));
    EXPECT_EQ(drawn[0], "\rwaypoints [#######                       ]  25 %\x1B[K");
    now += ProgressBar::interval;
    bar.gpxProgress(3, 1024);
    EXPECT_THAT(drawn.back(), HasSubstr("[##############################] 100 %"));
}

TEST_F(ProgressBarTest, ShowsPlainNumbersWhereTheCountIsUnknownOrPassed) {
    bar.gpxStartTransfer(2, 0);
    bar.gpxProgress(2, 256);
    EXPECT_EQ(drawn.back(), "\rroutes    256 points\x1B[K");
    bar.gpxEndTransfer(2);
    bar.gpxStartTransfer(3, 500);
    bar.gpxProgress(3, 512);
    EXPECT_THAT(drawn.back(), HasSubstr("512 points"));
}

TEST_F(ProgressBarTest, OfTracksItShowsPointsSinceTheCountIsThatOfSegments) {
    bar.gpxStartTransfer(1, 100'000);
    bar.gpxProgress(1, 256);
    EXPECT_THAT(drawn.back(), HasSubstr("256 points"));
}

TEST_F(ProgressBarTest, ShowsTheShareOfTheBytesWhereTheSourceTells) {
    ReadingProgress reading{.position = 250, .size = 1000};
    bar.setReading([&reading] { return reading; });
    bar.gpxStartTransfer(1, 3);
    bar.gpxProgress(1, 256);
    EXPECT_EQ(drawn.back(), "\rtracks    [#######                       ]  25 %\x1B[K");
    reading.size = std::nullopt;
    now += ProgressBar::interval;
    bar.gpxProgress(1, 512);
    EXPECT_THAT(drawn.back(), HasSubstr("512 points")) << "a pipe has no size";
    reading.size = 0;
    now += ProgressBar::interval;
    bar.gpxProgress(1, 768);
    EXPECT_THAT(drawn.back(), HasSubstr("768 points"));
    bar.setReading(nullptr);
    now += ProgressBar::interval;
    bar.gpxProgress(1, 1024);
    EXPECT_THAT(drawn.back(), HasSubstr("1024 points"));
}

TEST_F(ProgressBarTest, DrawsAtMostOnceAnInterval) {
    bar.gpxStartTransfer(1, 1);
    progressTo(1, 100 * ProgressBar::stride);
    EXPECT_THAT(drawn, SizeIs(1));
    now += ProgressBar::interval;
    progressTo(1, 100 * ProgressBar::stride);
    EXPECT_THAT(drawn, SizeIs(2));
}

TEST_F(ProgressBarTest, LooksAtTheClockOnlyEverySoManyItems) {
    bar.gpxStartTransfer(1, 1);
    progressTo(1, 10 * ProgressBar::stride + 1);
    EXPECT_EQ(clockReadings, 10);
}

TEST_F(ProgressBarTest, IsGoneAtTheEnd) {
    bar.gpxStartTransfer(1, 1);
    progressTo(1, ProgressBar::stride);
    bar.gpxEndTransfer(1);
    EXPECT_THAT(drawn, ElementsAre(Not(IsEmpty()), "\r\x1B[K"));
    bar.clear();
    EXPECT_THAT(drawn, SizeIs(2)) << "nothing is there to clear";
}

TEST_F(ProgressBarTest, OfFewItemsNothingIsEverShown) {
    bar.gpxStartTransfer(3, 10);
    progressTo(3, 10);
    bar.gpxEndTransfer(3);
    EXPECT_THAT(drawn, IsEmpty());
}

TEST_F(ProgressBarTest, LargeCountsDoNotOverflow) {
    bar.gpxStartTransfer(3, 2'000'000'000);
    bar.gpxProgress(3, 1'999'999'744);
    EXPECT_THAT(drawn.back(), HasSubstr("99 %"));
}

TEST_F(ProgressBarTest, NegativeCountsAreUnknown) {
    bar.gpxStartTransfer(3, -5);
    bar.gpxProgress(3, 256);
    EXPECT_THAT(drawn.back(), HasSubstr("256 points"));
}

} // namespace
} // namespace pelluvia::host
