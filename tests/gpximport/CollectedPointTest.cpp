// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/CollectedPoint.h>

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace pelluvia {
namespace {

TEST(CollectedPoint, IsZeroAtFirst) {
    CollectedPoint point;
    EXPECT_EQ(point.read().latitude, 0.0);
    EXPECT_EQ(point.read().longitude, 0.0);
    EXPECT_EQ(point.read().altitude, 0.0);
    EXPECT_EQ(point.read().time, 0);
    EXPECT_EQ(point.read().test, 0);
}

TEST(CollectedPoint, ReadsWhatWasSetAndKeepsIt) {
    CollectedPoint point;
    point.setPosition("47.5", "-8.25");
    point.setAltitude("431.25");
    point.setTime("2020-06-01T08:26:40Z");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(point.read().latitude, 47.5);
        EXPECT_EQ(point.read().longitude, -8.25);
        EXPECT_EQ(point.read().altitude, 431.25);
        EXPECT_EQ(point.read().time, 1591000000);
    }
}

TEST(CollectedPoint, OutlivesTheTextsItWasGiven) {
    CollectedPoint point;
    {
        std::string text = "47.5";
        point.setPosition(text, text);
        point.setAltitude(text);
        text.assign(text.size(), '9');
    }
    EXPECT_EQ(point.read().latitude, 47.5);
    EXPECT_EQ(point.read().altitude, 47.5);
}

TEST(CollectedPoint, ForgetsEverythingWhenItIsCleared) {
    CollectedPoint point;
    for (const bool isReadBefore : {false, true}) {
        point.setPosition("47.5", "-8.25");
        point.setAltitude("431.25");
        point.setTime("2020-06-01T08:26:40Z");
        if (isReadBefore) {
            EXPECT_EQ(point.read().latitude, 47.5);
        }
        point.clear();
        EXPECT_EQ(point.read().latitude, 0.0);
        EXPECT_EQ(point.read().longitude, 0.0);
        EXPECT_EQ(point.read().altitude, 0.0);
        EXPECT_EQ(point.read().time, 0);
    }
}

TEST(CollectedPoint, ReadsTheLastTextWhateverTheLengthsOfBoth) {
    const std::string texts[] = {"",
                                 "7.5",
                                 std::string(1000, '0') + "9.5",
                                 "abc",
                                 std::string(38, ' ') + "2",
                                 std::string(39, ' ') + "3"};
    const double values[] = {0.0, 7.5, 9.5, 0.0, 2.0, 3.0};
    for (std::size_t first = 0; first < std::size(texts); ++first) {
        for (std::size_t second = 0; second < std::size(texts); ++second) {
            CollectedPoint point;
            point.setAltitude(texts[first]);
            point.setAltitude(texts[second]);
            point.setPosition(texts[first], texts[second]);
            point.setPosition(texts[second], texts[first]);
            EXPECT_EQ(point.read().altitude, values[second]) << first << " " << second;
            EXPECT_EQ(point.read().latitude, values[second]) << first << " " << second;
            EXPECT_EQ(point.read().longitude, values[first]) << first << " " << second;
        }
    }
}

TEST(CollectedPoint, ReadsTimesOfAnyLength) {
    CollectedPoint point;
    point.setTime("2020-06-01T08:26:40Z");
    point.setTime("2020-06-01T08:26:41." + std::string(1000, '9') + "Z");
    EXPECT_EQ(point.read().time, 1591000001);
    point.setTime("2020-06-01T08:26:42Z");
    EXPECT_EQ(point.read().time, 1591000002);
    point.setTime("then");
    EXPECT_EQ(point.read().time, 0);
    point.setTime("2020-06-01T08:26:42Z");
    point.setTime("");
    EXPECT_EQ(point.read().time, 0);
}

TEST(CollectedPoint, ReadsNumbersBeyondTheirRange) {
    CollectedPoint point;
    point.setPosition("1e400", "-1e400");
    EXPECT_EQ(point.read().latitude, std::numeric_limits<double>::infinity());
    EXPECT_EQ(point.read().longitude, -std::numeric_limits<double>::infinity());
}

} // namespace
} // namespace pelluvia
