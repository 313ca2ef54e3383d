// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEATally.h>

#include <gtest/gtest.h>

namespace pelluvia::nmea {
namespace {

TEST(Tally, IsOneLine) {
    EXPECT_EQ(textOf(NMEATally{}), "0 sentences, 0 points; 0 with a bad checksum, 0 not used");
    EXPECT_EQ(textOf(NMEATally{.used = 10, .notUsed = 3, .badChecksum = 2, .points = 5}),
              "15 sentences, 5 points; 2 with a bad checksum, 3 not used");
    EXPECT_EQ(textOf(NMEATally{.used = 1, .points = 1, .waypoints = 2, .routes = 1}),
              "1 sentence, 1 point, 2 waypoints, 1 route; 0 with a bad checksum, 0 not used");
}

TEST(Tally, SaysWhatElseThereWas) {
    EXPECT_EQ(
        textOf(NMEATally{.garbage = 1,
                         .tooLong = 2,
                         .withoutFix = 6,
                         .pointsWithoutDate = 7,
                         .incompleteRoutes = 3,
                         .unknownRoutePoints = 4,
                         .beyondLimits = 5}),
        "0 sentences, 0 points; 0 with a bad checksum, 0 not used; 6 moments without a "
        "fix; 1 line of something else; "
        "2 lines too long; 3 routes incomplete and left out; 4 route points without a waypoint "
        "left out; 5 names beyond what is kept left out; 7 points without a time, as no date "
        "was known (--date YYYY-MM-DD gives one)");
}

} // namespace
} // namespace pelluvia::nmea
