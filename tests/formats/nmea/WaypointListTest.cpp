// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/WaypointList.h>

#include <tests/formats/nmea/Logs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::decode;
using pelluvia::testing::logOf;
using ::testing::ElementsAre;

TEST(WaypointList, SendsEachWaypointWithItsName) {
    const auto decoded =
        decode(logOf({"GPWPL,4916.45,N,12311.12,W,HOME", "IIWPL,0000.000,S,00000.000,E,"}));
    EXPECT_THAT(decoded.list.calls,
                ElementsAre("start 3 count=2", "waypoint name=HOME", "waypoint", "end 3"));
    const GPSPoint &home = decoded.list.wayPoints[0].point;
    EXPECT_DOUBLE_EQ(home.latitude, 49.0 + 16.45 / 60.0);
    EXPECT_DOUBLE_EQ(home.longitude, -(123.0 + 11.12 / 60.0));
    EXPECT_EQ(home.altitude, 0.0);
    EXPECT_EQ(home.time, 0);
    EXPECT_EQ(decoded.tally.waypoints, 2);
}

TEST(WaypointList, KnowsAWaypointThatIsSentAgain) {
    const auto decoded =
        decode(logOf({"GPWPL,4916.45,N,12311.12,W,HOME", "GPWPL,4916.450,N,12311.12,W,HOME",
                      "GPWPL,4917.45,N,12311.12,W,HOME", "GPWPL,4916.45,N,12311.12,W,WORK"}));
    EXPECT_EQ(decoded.tally.waypoints, 3);
    EXPECT_EQ(decoded.tally.used, 4);
}

TEST(WaypointList, DoesNotTakeWhatMakesNoSense) {
    const auto decoded =
        decode("$GPWPL,9116.45,N,12311.12,W,A\n$GPWPL,,,,,B\n$GPWPL\n"
               "$GPWPL,4916.45,N,12311.12,W,\x01\n$GPWPL,4916.45,N,12311.12,W,\xE9\n"
               "$GPWPL,4916.45,N,12311.12,W," +
               std::string(83, 'x') + "\n");
    EXPECT_EQ(decoded.tally.waypoints, 0);
    EXPECT_EQ(decoded.tally.notUsed, 6);
}

TEST(WaypointList, IsBounded) {
    pelluvia::testing::CallList list;
    NMEATally tally;
    WaypointList waypoints(tally);
    Sentence sentence;
    for (std::size_t i = 0; i < WaypointList::mostWaypoints + 3; ++i) {
        ASSERT_EQ(sentence.read("$GPWPL,4916.45,N,12311.12,W," + std::to_string(i)),
                  LineKind::Sentence);
        EXPECT_TRUE(waypoints.add(sentence));
    }
    EXPECT_EQ(tally.waypoints, static_cast<std::int64_t>(WaypointList::mostWaypoints));
    EXPECT_EQ(tally.beyondLimits, 3);
    EXPECT_TRUE(waypoints.find("0"));
    EXPECT_FALSE(waypoints.find(std::to_string(WaypointList::mostWaypoints)));
    waypoints.send(list);
    EXPECT_EQ(list.wayPoints.size(), WaypointList::mostWaypoints);
}

} // namespace
} // namespace pelluvia::nmea
