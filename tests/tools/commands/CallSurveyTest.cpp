// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/CallSurvey.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>

#include <gtest/gtest.h>
#include <limits>
#include <string>

namespace pelluvia::host {
namespace {

GPSPoint pointAt(double latitude, double longitude, std::int64_t time = 0) {
    GPSPoint point{};
    point.latitude = latitude;
    point.longitude = longitude;
    point.time = time;
    return point;
}

TEST(CallSurvey, CountsInTheTermsOfAFile) {
    CallSurvey survey;
    survey.newTrack(nullptr);
    survey.newTrackSegment();
    survey.trackPoint(pointAt(1, 2), nullptr);
    survey.newTrackSegment();
    survey.trackPoint(pointAt(1, 2), nullptr);
    survey.wayPoint(pointAt(1, 2), nullptr);
    const GPXImportCounter &counter = *survey.survey().counter;
    EXPECT_EQ(counter.tracks(), 1);
    EXPECT_EQ(counter.tracksegments(), 2);
    EXPECT_EQ(survey.survey().trackPoints, 2);
    EXPECT_EQ(counter.waypoints(), 1);
}

TEST(CallSurvey, WaypointsInARouteAreItsPoints) {
    CallSurvey survey;
    survey.newRoute(nullptr);
    survey.wayPoint(pointAt(1, 2), nullptr);
    survey.routePoint(pointAt(1, 2), nullptr);
    survey.endTransfer(transferKind::routes);
    survey.wayPoint(pointAt(1, 2), nullptr);
    EXPECT_EQ(survey.survey().counter->routes(), 1);
    EXPECT_EQ(survey.survey().counter->routepoints(), 2);
    EXPECT_EQ(survey.survey().counter->waypoints(), 1);
}

TEST(CallSurvey, BoundsAndTimesAreThoseOfPointsThatHaveThem) {
    CallSurvey survey;
    survey.trackPoint(pointAt(95, 2, 0), nullptr);
    survey.trackPoint(pointAt(std::numeric_limits<double>::quiet_NaN(), 2, 0), nullptr);
    EXPECT_FALSE(survey.survey().bounds);
    EXPECT_FALSE(survey.survey().times);
    survey.wayPoint(pointAt(-90, 180, 7), nullptr);
    survey.routePoint(pointAt(5, -180, -7), nullptr);
    ASSERT_TRUE(survey.survey().bounds);
    EXPECT_EQ(survey.survey().bounds->minLatitude, -90);
    EXPECT_EQ(survey.survey().bounds->maxLatitude, 5);
    EXPECT_EQ(survey.survey().bounds->minLongitude, -180);
    EXPECT_EQ(survey.survey().bounds->maxLongitude, 180);
    ASSERT_TRUE(survey.survey().times);
    EXPECT_EQ(survey.survey().times->first, -7);
    EXPECT_EQ(survey.survey().times->last, 7);
}

TEST(CallSurvey, NotesWhichTextsThereAre) {
    CallSurvey survey;
    Dictionary extra;
    extra.set(extras::comment, Value(std::string("far")));
    extra.set(extras::urlName, Value(std::string("a page")));
    survey.wayPoint(pointAt(1, 2), &extra);
    const GPXImportCounter &counter = *survey.survey().counter;
    EXPECT_TRUE(counter.hasComment());
    EXPECT_TRUE(counter.hasLink());
    EXPECT_FALSE(counter.hasName());
    EXPECT_FALSE(counter.hasDescription());
    EXPECT_FALSE(counter.hasType());
}

} // namespace
} // namespace pelluvia::host
