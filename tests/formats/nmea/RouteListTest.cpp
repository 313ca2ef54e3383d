// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/RouteList.h>

#include <tests/formats/nmea/Logs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <initializer_list>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::decode;
using pelluvia::testing::Decoded;
using pelluvia::testing::logOf;
using ::testing::ElementsAre;

const std::string places =
    logOf({"GPWPL,4801.000,N,01131.000,E,A", "GPWPL,4802.000,N,01131.000,E,B",
           "GPWPL,4803.000,N,01131.000,E,C"});

/// The calls for routes alone.
std::vector<std::string> routesOf(const Decoded &decoded) {
    std::vector<std::string> calls;
    bool isRoute = false;
    for (const std::string &call : decoded.list.calls) {
        isRoute = isRoute || call.starts_with("start 2");
        if (isRoute) {
            calls.push_back(call);
        }
    }
    return calls;
}

TEST(RouteList, JoinsTheSentencesOfARoute) {
    const auto decoded =
        decode(places + logOf({"GPRTE,3,1,c,HARBOUR,A", "GPGSV,1,1,00", "GPRTE,3,2,c,HARBOUR,B,C",
                               "GPRTE,3,3,c,HARBOUR,A"}));
    EXPECT_THAT(routesOf(decoded),
                ElementsAre("start 2 count=4", "route name=HARBOUR index=1 routeNumber=1",
                            "waypoint name=A", "waypoint name=B", "waypoint name=C",
                            "waypoint name=A", "end 2"));
    EXPECT_EQ(decoded.tally.routes, 1);
    EXPECT_EQ(decoded.tally.used, 6);
    EXPECT_DOUBLE_EQ(decoded.list.wayPoints[4].point.latitude, 48.0 + 2.0 / 60.0);
}

TEST(RouteList, FindsWaypointsThatComeLater) {
    const auto decoded = decode(logOf({"GPRTE,1,1,c,1,A,B"}) + places);
    EXPECT_THAT(routesOf(decoded),
                ElementsAre("start 2 count=2", "route name=1 index=1 routeNumber=1",
                            "waypoint name=A", "waypoint name=B", "end 2"));
}

TEST(RouteList, NumbersARouteByItsIdentifierOrItsPlace) {
    const auto decoded =
        decode(places + logOf({"GPRTE,1,1,c,12,A", "GPRTE,1,1,c,LAKE,B", "GPRTE,1,1,c,,C"}));
    EXPECT_THAT(routesOf(decoded),
                ElementsAre("start 2 count=3", "route name=12 index=12 routeNumber=12",
                            "waypoint name=A", "route name=LAKE index=2 routeNumber=2",
                            "waypoint name=B", "route index=3 routeNumber=3", "waypoint name=C",
                            "end 2"));
}

TEST(RouteList, TakesTheWorkingListForTheRestOfTheRoute) {
    const auto decoded =
        decode(places + logOf({"GPRTE,1,1,w,1,A,B,C", "GPRTE,1,1,w,1,B,C", "GPRTE,1,1,w,1,C"}));
    EXPECT_THAT(routesOf(decoded),
                ElementsAre("start 2 count=3", "route name=1 index=1 routeNumber=1",
                            "waypoint name=A", "waypoint name=B", "waypoint name=C", "end 2"));
}

TEST(RouteList, KnowsARouteThatIsSentAgain) {
    const auto decoded =
        decode(places + logOf({"GPRTE,2,1,c,1,A", "GPRTE,2,2,c,1,B", "GPRTE,2,1,c,1,A",
                               "GPRTE,2,2,c,1,B", "GPRTE,1,1,c,2,A,B", "GPRTE,1,1,c,1,B,A"}));
    EXPECT_EQ(decoded.tally.routes, 3) << "another identifier and another order are other routes";
}

TEST(RouteList, AnEmptyRouteIsNone) {
    const auto decoded = decode(places + logOf({"GPRTE,1,1,c,0", "GPRTE,1,1,c,0,,,"}));
    EXPECT_THAT(routesOf(decoded), ElementsAre());
    EXPECT_EQ(decoded.tally.used, 5);
    EXPECT_EQ(decoded.tally.incompleteRoutes, 0);
}

TEST(RouteList, LeavesOutAndCountsPointsThatNoWaypointNames) {
    const auto decoded =
        decode(places + logOf({"GPRTE,1,1,c,1,A,NOWHERE,C", "GPRTE,1,1,c,2,NOWHERE"}));
    EXPECT_THAT(routesOf(decoded),
                ElementsAre("start 2 count=2", "route name=1 index=1 routeNumber=1",
                            "waypoint name=A", "waypoint name=C", "end 2"));
    EXPECT_EQ(decoded.tally.unknownRoutePoints, 2);
    EXPECT_EQ(decoded.tally.routes, 1);
}

std::int64_t incomplete(std::initializer_list<std::string_view> bodies) {
    const auto decoded = decode(places + logOf(bodies));
    EXPECT_EQ(decoded.tally.routes, 0);
    return decoded.tally.incompleteRoutes;
}

TEST(RouteList, LeavesOutAndCountsOnceARouteOfWhichAPartIsMissing) {
    EXPECT_EQ(incomplete({"GPRTE,2,1,c,1,A"}), 1);
    EXPECT_EQ(incomplete({"GPRTE,3,2,c,1,B", "GPRTE,3,3,c,1,C"}), 1);
    EXPECT_EQ(incomplete({"GPRTE,4,1,c,1,A", "GPRTE,4,3,c,1,B", "GPRTE,4,4,c,1,C"}), 1);
    EXPECT_EQ(incomplete({"GPRTE,2,1,c,1,A", "GPRTE,2,2,c,2,B"}), 2);
    EXPECT_EQ(incomplete({"GPRTE,2,1,c,1,A", "GPRTE,2,1,c,1,A"}), 2);
    EXPECT_EQ(incomplete({"GPRTE,3,3,c,1,C", "GPRTE,3,1,c,1,A", "GPRTE,3,2,c,1,B"}), 2);
}

TEST(RouteList, GoesOnAfterABrokenRoute) {
    const auto decoded = decode(places + logOf({"GPRTE,3,1,c,1,A", "GPRTE,3,3,c,1,C",
                                                "GPRTE,2,1,c,1,A", "GPRTE,2,2,c,1,B"}));
    EXPECT_EQ(decoded.tally.incompleteRoutes, 1);
    EXPECT_THAT(routesOf(decoded),
                ElementsAre("start 2 count=2", "route name=1 index=1 routeNumber=1",
                            "waypoint name=A", "waypoint name=B", "end 2"));
}

TEST(RouteList, DoesNotTakeWhatMakesNoSense) {
    const auto decoded = decode("$GPRTE\n$GPRTE,1,0,c,1,A\n$GPRTE,1,2,c,1,A\n$GPRTE,0,0,c,1,A\n"
                                "$GPRTE,1,1,x,1,A\n$GPRTE,x,1,c,1,A\n$GPRTE,1,1,c,1,\xFF\n"
                                "$GPRTE,99999999999,1,c,1,A\n");
    EXPECT_EQ(decoded.tally.notUsed, 8);
}

TEST(RouteList, IsBoundedInRoutes) {
    std::string log = places;
    for (std::size_t i = 0; i < RouteList::mostRoutes + 2; ++i) {
        log += "$GPRTE,1,1,c," + std::to_string(i) + ",A,B\n";
    }
    const auto decoded = decode(log);
    EXPECT_EQ(decoded.tally.routes, static_cast<std::int64_t>(RouteList::mostRoutes));
    EXPECT_EQ(decoded.tally.beyondLimits, 4);
}

TEST(RouteList, IsBoundedInNames) {
    std::string log = places;
    constexpr std::size_t sentences = RouteList::mostNames / 100 + 1;
    for (std::size_t i = 1; i <= sentences; ++i) {
        log += "$GPRTE," + std::to_string(sentences) + "," + std::to_string(i) + ",c,1";
        for (int name = 0; name < 100; ++name) {
            log += ",A";
        }
        log += "\n";
    }
    const auto decoded = decode(log);
    EXPECT_EQ(decoded.tally.routes, 1);
    EXPECT_EQ(decoded.tally.beyondLimits, 100);
    EXPECT_EQ(decoded.list.wayPoints.size(), 3 + RouteList::mostNames);
}

} // namespace
} // namespace pelluvia::nmea
