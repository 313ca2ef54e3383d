// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/OptionValues.h>

#include <CLI/CLI.hpp>
#include <gtest/gtest.h>

namespace pelluvia::host {
namespace {

TEST(OptionValues, AnOptionThatWasNotGivenHasItsStandard) {
    EXPECT_EQ(wholeNumberOf(std::nullopt, "--gap", 300), 300);
    EXPECT_EQ(toleranceOf(std::nullopt, "--point-slop"), std::nullopt);
}

TEST(OptionValues, WholeNumbersAreReadToTheLargest) {
    EXPECT_EQ(wholeNumberOf("0", "--gap", 1), 0);
    EXPECT_EQ(wholeNumberOf("9223372036854775807", "--gap", 1), 9223372036854775807);
    for (const char *text : {"", "-1", "-9223372036854775808", "9223372036854775808", "1.0", "1 ",
                             " 1", "+1", "0x1", "nan"}) {
        EXPECT_THROW((void)wholeNumberOf(text, "--gap", 1), CLI::ValidationError) << text;
    }
}

TEST(OptionValues, TolerancesAreFiniteInSinglePrecisionAndNotNegative) {
    EXPECT_EQ(toleranceOf("0", "--point-slop"), 0.0F);
    EXPECT_EQ(toleranceOf("0.1", "--point-slop"), 0.1F);
    EXPECT_EQ(toleranceOf("1e-60", "--point-slop"), 0.0F);
    EXPECT_EQ(toleranceOf("3.4e38", "--point-slop"), 3.4e38F);
    for (const char *text : {"", "-1", "-1e-60", "1e39", "1e400", "inf", "-inf", "nan", "far", "1 ",
                             " 1", "1,5", "0x1"}) {
        EXPECT_THROW((void)toleranceOf(text, "--point-slop"), CLI::ValidationError) << text;
    }
}

TEST(OptionValues, AListOfKindsChoosesThese) {
    const Selection some = selectionOf("waypoints,tracks,tracks");
    EXPECT_TRUE(some.tracks);
    EXPECT_FALSE(some.routes);
    EXPECT_TRUE(some.waypoints);
    EXPECT_TRUE(selectionOf("tracks,routes,waypoints").isEverything());
    for (const char *text : {"", ",", "tracks,", "Tracks", "tracks, routes", "laps"}) {
        EXPECT_THROW((void)selectionOf(text), CLI::ValidationError) << text;
    }
}

} // namespace
} // namespace pelluvia::host
