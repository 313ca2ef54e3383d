// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <tests/recording/Spies.h>

#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

using testing::keys;
using testing::pointAt;
using testing::pointCount;
using testing::records;
using testing::sameBytes;
using testing::telemetry;

/// How many items are filed under a key.
std::size_t filed(const RecordingGPSOutput &recorder, const Key &key) {
    const Dictionary *data = recorder.receivedData();
    const Array *array = data != nullptr ? data->array(key) : nullptr;
    return array != nullptr ? array->size() : 0;
}

TEST(RecordingGPSOutput, HasNothingBeforeTheFirstCall) {
    const auto recorder = RecordingGPSOutput::recorder();
    EXPECT_EQ(recorder->receivedData(), nullptr);
    EXPECT_EQ(recorder->currentTrack(), nullptr);
    EXPECT_EQ(recorder->currentRoute(), nullptr);
    EXPECT_EQ(recorder->lastTrackPoint(), nullptr);
    EXPECT_EQ(recorder->lastRoutePoint(), nullptr);
    EXPECT_EQ(recorder->lastError(), Report());
}

TEST(RecordingGPSOutput, StartsWithoutThinningAndWithTheUsualTolerances) {
    for (const auto &recorder : {RecordingGPSOutput::recorder(), RecordingGPSOutput::init()}) {
        EXPECT_FALSE(recorder->minimizeTracks());
        EXPECT_EQ(recorder->slopeEqualSlop(), 0.01F);
        EXPECT_EQ(recorder->pointEqualSlop(), 0.0001F);
        EXPECT_EQ(telemetry(*recorder, "slopeEqualTossedPoints"), 0);
        EXPECT_EQ(telemetry(*recorder, "pointEqualTossedPoints"), 0);
    }
}

TEST(RecordingGPSOutput, SettingsReadBackAsTheyWereSet) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(true);
    recorder->setSlopeEqualSlop(-1.5F);
    recorder->setPointEqualSlop(std::numeric_limits<float>::infinity());
    EXPECT_TRUE(recorder->minimizeTracks());
    EXPECT_EQ(recorder->slopeEqualSlop(), -1.5F);
    EXPECT_EQ(recorder->pointEqualSlop(), std::numeric_limits<float>::infinity());
}

TEST(RecordingGPSOutput, ATrackWithoutAttributesHasNothingButPoints) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    ASSERT_NE(recorder->currentTrack(), nullptr);
    EXPECT_EQ(keys(recorder->currentTrack()), "points,");
    EXPECT_EQ(pointCount(recorder->currentTrack()), 0U);
    EXPECT_EQ(recorder->lastTrackPoint(), nullptr);
    EXPECT_EQ(recorder->receivedData(), nullptr) << "an open track is not filed";
}

TEST(RecordingGPSOutput, ATrackAndARouteKeepACopyOfAllTheirAttributes) {
    const auto recorder = RecordingGPSOutput::recorder();
    Dictionary attributes;
    attributes.set(extras::name, Value("Morning"));
    attributes.set(Key("a host's own"), Value(7));
    attributes.set(extras::points, Value("soon overwritten"));
    attributes.set(extras::index, Value(3));
    recorder->newTrack(&attributes);
    recorder->newRoute(&attributes);
    attributes.removeAll();
    for (const Dictionary *list : {recorder->currentTrack(), recorder->currentRoute()}) {
        EXPECT_EQ(keys(list), "name,a host's own,points,index,");
        EXPECT_EQ(list->string(extras::name), "Morning");
        EXPECT_EQ(list->number(Key("a host's own"))->intValue(), 7);
        ASSERT_NE(list->array(extras::points), nullptr);
        EXPECT_TRUE(list->array(extras::points)->empty());
    }
    EXPECT_NE(recorder->currentTrack()->array(extras::points),
              recorder->currentRoute()->array(extras::points));
}

TEST(RecordingGPSOutput, ANewTrackFilesTheOneBefore) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    Dictionary *first = recorder->currentTrack();
    recorder->newTrack(nullptr);
    ASSERT_EQ(filed(*recorder, recordedData::track), 1U);
    EXPECT_EQ(recorder->receivedData()->array(recordedData::track)->dictionary(0), first);
    EXPECT_NE(recorder->currentTrack(), first);
    EXPECT_EQ(keys(recorder->receivedData()), "track,");
}

TEST(RecordingGPSOutput, ANewRouteFilesTheOneBefore) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newRoute(nullptr);
    Dictionary *first = recorder->currentRoute();
    recorder->newRoute(nullptr);
    ASSERT_EQ(filed(*recorder, recordedData::route), 1U);
    EXPECT_EQ(recorder->receivedData()->array(recordedData::route)->dictionary(0), first);
    EXPECT_NE(recorder->currentRoute(), first);
    EXPECT_EQ(keys(recorder->receivedData()), "route,");
}

TEST(RecordingGPSOutput, APointDictionaryIsItsExtrasAndTheRecord) {
    const auto recorder = RecordingGPSOutput::recorder();
    GPSPoint point = pointAt(-0.0, std::numeric_limits<double>::quiet_NaN());
    point.test = std::numeric_limits<std::int64_t>::min();
    Dictionary extra;
    extra.set(extras::hr, Value(120));
    extra.set(extras::point, Value("soon overwritten"));
    extra.set(Key("invented"), Value("kept"));

    recorder->newTrack(nullptr);
    recorder->trackPoint(point, &extra);
    recorder->wayPoint(point, &extra);
    recorder->newRoute(nullptr);
    recorder->routePoint(point, &extra);
    extra.removeAll();
    Dictionary *waypoint = recorder->receivedData()->array(recordedData::waypoint)->dictionary(0);
    for (const Dictionary *stored :
         {recorder->lastTrackPoint(), recorder->lastRoutePoint(), waypoint}) {
        EXPECT_EQ(keys(stored), "hr,point,invented,");
        EXPECT_EQ(stored->number(extras::hr)->intValue(), 120);
        EXPECT_EQ(stored->string(Key("invented")), "kept");
        EXPECT_TRUE(sameBytes(*stored->record<GPSPoint>(extras::point), point));
    }
    recorder->trackPoint(point, nullptr);
    EXPECT_EQ(keys(recorder->lastTrackPoint()), "point,");
}

TEST(RecordingGPSOutput, SegmentsAreNotRecorded) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrackSegment(); // without a track, too
    EXPECT_EQ(recorder->currentTrack(), nullptr);
    recorder->newTrack(nullptr);
    recorder->newTrackSegment();
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->newTrackSegment();
    recorder->trackPoint(pointAt(2, 2), nullptr);
    EXPECT_EQ(pointCount(recorder->currentTrack()), 2U);
    EXPECT_EQ(keys(recorder->currentTrack()), "points,");
}

TEST(RecordingGPSOutput, AWaypointWithinARouteIsARoutePoint) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newRoute(nullptr);
    recorder->wayPoint(pointAt(1, 2), nullptr);
    EXPECT_EQ(recorder->receivedData(), nullptr);
    EXPECT_EQ(pointCount(recorder->currentRoute()), 1U);
    recorder->endTransfer(transferKind::routes);
    recorder->wayPoint(pointAt(3, 4), nullptr);
    EXPECT_EQ(filed(*recorder, recordedData::waypoint), 1U);
    EXPECT_EQ(telemetry(*recorder, "routePointCount"), 1);
}

TEST(RecordingGPSOutput, ARoutePointWithoutARouteIsLost) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->routePoint(pointAt(1, 2), nullptr);
    EXPECT_EQ(recorder->receivedData(), nullptr);
    EXPECT_EQ(recorder->currentRoute(), nullptr);
}

TEST(RecordingGPSOutput, PointsOfInterestLapsAndPositionsAreNotRecorded) {
    const auto recorder = RecordingGPSOutput::recorder();
    Dictionary extra;
    recorder->poiPoint(pointAt(1, 1), &extra);
    recorder->lapInfoStart(pointAt(1, 1), pointAt(2, 2), &extra);
    recorder->currentPosition(pointAt(1, 1), 5);
    EXPECT_EQ(recorder->receivedData(), nullptr);
    EXPECT_EQ(recorder->currentTrack(), nullptr);
}

TEST(RecordingGPSOutput, TheEndFilesWhatItsOwnKindNames) {
    struct Row {
        int kind;
        std::size_t tracks, routes;
    };
    for (const Row row : {Row{1, 1, 0}, Row{2, 0, 1}, Row{3, 0, 0}, Row{0, 0, 0}, Row{-9, 0, 0}}) {
        SCOPED_TRACE(row.kind);
        const auto recorder = RecordingGPSOutput::recorder();
        recorder->startTransfer(nullptr, 3 - row.kind, nullptr); // does not decide
        recorder->newTrack(nullptr);
        recorder->newRoute(nullptr);
        recorder->endTransfer(row.kind);
        EXPECT_EQ(filed(*recorder, recordedData::track), row.tracks);
        EXPECT_EQ(filed(*recorder, recordedData::route), row.routes);
        EXPECT_EQ(recorder->currentTrack() == nullptr, row.tracks == 1);
        EXPECT_EQ(recorder->currentRoute() == nullptr, row.routes == 1);
        recorder->endSending(1);
        recorder->endSending(2);
        EXPECT_EQ(filed(*recorder, recordedData::track), row.tracks) << "sending files nothing";
        EXPECT_EQ(filed(*recorder, recordedData::route), row.routes);
    }
}

TEST(RecordingGPSOutput, AnEndWithNothingOpenFilesNothing) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->endTransfer(transferKind::tracks);
    recorder->endTransfer(transferKind::routes);
    EXPECT_EQ(recorder->receivedData(), nullptr);
}

TEST(RecordingGPSOutput, ATrackThatIsStillOpenIsFiledByALaterEnd) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 2), nullptr);
    Dictionary *track = recorder->currentTrack();
    recorder->endTransfer(transferKind::waypoints);
    recorder->startTransfer(nullptr, transferKind::tracks, nullptr);
    EXPECT_EQ(recorder->currentTrack(), track);
    recorder->endTransfer(transferKind::tracks);
    EXPECT_EQ(recorder->receivedData()->array(recordedData::track)->dictionary(0), track);
}

TEST(RecordingGPSOutput, TransfersAccumulate) {
    const auto recorder = RecordingGPSOutput::recorder();
    for (int transfer = 0; transfer < 3; ++transfer) {
        recorder->startTransfer(nullptr, transferKind::tracks, nullptr);
        recorder->newTrack(nullptr);
        recorder->endTransfer(transferKind::tracks);
        recorder->gpsStateChange(gpsState::finished);
    }
    EXPECT_EQ(filed(*recorder, recordedData::track), 3U);
}

TEST(RecordingGPSOutput, TheLastPointIsTheNewestOfTheOpenList) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->newRoute(nullptr);
    for (int i = 1; i <= 3; ++i) {
        recorder->trackPoint(pointAt(i, 0), nullptr);
        recorder->routePoint(pointAt(-i, 0), nullptr);
        EXPECT_EQ(recorder->lastTrackPoint()->record<GPSPoint>(extras::point)->latitude, i);
        EXPECT_EQ(recorder->lastRoutePoint()->record<GPSPoint>(extras::point)->latitude, -i);
    }
    recorder->endTransfer(transferKind::tracks);
    recorder->endTransfer(transferKind::routes);
    EXPECT_EQ(recorder->lastTrackPoint(), nullptr);
    EXPECT_EQ(recorder->lastRoutePoint(), nullptr);
}

TEST(RecordingGPSOutput, AHostsOwnItemsGoUnderAnyKey) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->appendArrayData(Value("first"), Key("of a host"));
    recorder->appendArrayData(Value(2), Key("of a host"));
    recorder->appendArrayData(Value(Ref<Dictionary>::make()), recordedData::laps);
    EXPECT_EQ(keys(recorder->receivedData()), "of a host,laps,");
    const Array *array = recorder->receivedData()->array(Key("of a host"));
    ASSERT_EQ(array->size(), 2U);
    EXPECT_EQ(array->at(0).string(), "first");
    EXPECT_EQ(array->at(1).number()->intValue(), 2);
    EXPECT_EQ(filed(*recorder, recordedData::laps), 1U);
}

TEST(RecordingGPSOutput, SomethingElseThanAnArrayUnderAKeyGivesWayToOne) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->appendArrayData(Value(1), recordedData::laps);
    recorder->receivedData()->set(recordedData::waypoint, Value("not an array"));
    recorder->wayPoint(pointAt(1, 1), nullptr);
    EXPECT_EQ(filed(*recorder, recordedData::waypoint), 1U);
}

TEST(RecordingGPSOutput, HandsOutItsOwnObjects) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->currentTrack()->set(extras::name, Value("named later"));
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->lastTrackPoint()->set(extras::hr, Value(99));
    recorder->endTransfer(transferKind::tracks);
    recorder->receivedData()->set(Key("of a host"), Value(5));
    const Dictionary *track = recorder->receivedData()->array(recordedData::track)->dictionary(0);
    EXPECT_EQ(track->string(extras::name), "named later");
    EXPECT_EQ(track->array(extras::points)->dictionary(0)->number(extras::hr)->intValue(), 99);
    EXPECT_EQ(keys(recorder->receivedData()), "track,of a host,");
}

TEST(RecordingGPSOutput, AListWhosePointsAHostTookAwayRecordsNoMore) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->newRoute(nullptr);
    recorder->currentTrack()->remove(extras::points);
    recorder->currentRoute()->set(extras::points, Value("not an array"));
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->routePoint(pointAt(1, 1), nullptr);
    EXPECT_EQ(keys(recorder->currentTrack()), "");
    EXPECT_EQ(recorder->lastTrackPoint(), nullptr);
    EXPECT_EQ(recorder->lastRoutePoint(), nullptr);
}

TEST(RecordingGPSOutput, ItsOwnDictionariesMayComeBackAsExtras) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->newTrack(recorder->currentTrack());
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->lastTrackPoint()->set(extras::hr, Value(99));
    recorder->trackPoint(pointAt(2, 2), recorder->lastTrackPoint());
    EXPECT_EQ(recorder->lastTrackPoint()->number(extras::hr)->intValue(), 99);
    recorder->newRoute(recorder->currentTrack());
    recorder->newRoute(recorder->currentRoute());
    recorder->routePoint(pointAt(1, 1), recorder->receivedData());
    EXPECT_EQ(keys(recorder->lastRoutePoint()), "track,route,point,");
    EXPECT_EQ(pointCount(recorder->currentTrack()), 2U);
}

/// A dictionary that takes no further key of a name of its own. Filled once, since that takes long.
const Dictionary &fullDictionary() {
    static const Dictionary filled = [] {
        Dictionary made;
        for (std::size_t i = 0; i < Dictionary::maxSize; ++i) {
            made.set(Key(std::to_string(i)), Value(1));
        }
        return made;
    }();
    return filled;
}

TEST(RecordingGPSOutput, RecordsWhatComesWithAsManyExtrasAsADictionaryTakes) {
    const Dictionary &full = fullDictionary();
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(true);
    recorder->newTrack(nullptr);
    for (const double latitude : {1.0, 2.0}) {
        recorder->trackPoint(pointAt(latitude, latitude), nullptr);
    }
    recorder->trackPoint(pointAt(2, 3), &full); // another direction from the second point
    EXPECT_EQ(records(recorder->currentTrack()).size(), 3U);
    EXPECT_EQ(recorder->lastTrackPoint()->size(), Dictionary::maxSize + 1);
    recorder->wayPoint(pointAt(1, 1), &full);
    recorder->newRoute(&full);
    recorder->routePoint(pointAt(1, 1), &full);
    EXPECT_EQ(records(recorder->currentRoute()).size(), 1U);
    recorder->newTrack(&full);
    recorder->trackPoint(pointAt(1, 1), &full);
    recorder->endTransfer(transferKind::tracks);
    recorder->endTransfer(transferKind::routes);
    EXPECT_EQ(telemetry(*recorder, "TrackCount"), 2);
    EXPECT_EQ(telemetry(*recorder, "trackPointCount"), 4);
    EXPECT_EQ(telemetry(*recorder, "routePointCount"), 1);
    EXPECT_EQ(telemetry(*recorder, "WayPointCount"), 1);
}

TEST(RecordingGPSOutput, SaysWhenTheRecordingHasNoRoomForAnotherArray) {
    const auto recorder = RecordingGPSOutput::recorder();
    EXPECT_TRUE(recorder->appendArrayData(Value(1), Key("first")));
    *recorder->receivedData() = fullDictionary();
    EXPECT_FALSE(recorder->appendArrayData(Value(1), Key("one more")));
    recorder->receivedData()->remove(Key("0"));
    EXPECT_TRUE(recorder->appendArrayData(Value(1), Key("first")));
    EXPECT_TRUE(recorder->appendArrayData(Value(2), Key("first")));
    recorder->wayPoint(pointAt(1, 1), nullptr); // what is received is filed as ever
    EXPECT_EQ(telemetry(*recorder, "WayPointCount"), 1);
    EXPECT_EQ(recorder->receivedData()->array(Key("first"))->size(), 2U);
}

TEST(RecordingGPSOutput, ClearForgetsTheRecordingAndKeepsTheSettings) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(true);
    recorder->setPointEqualSlop(2.0F);
    recorder->newTrack(nullptr);
    for (int i = 0; i < 3; ++i) {
        recorder->trackPoint(pointAt(1, 1), nullptr);
    }
    EXPECT_EQ(telemetry(*recorder, "pointEqualTossedPoints"), 1);
    EXPECT_EQ(telemetry(*recorder, "slopeEqualTossedPoints"), 2);
    recorder->newTrack(nullptr);
    recorder->newRoute(nullptr);
    for (int times = 0; times < 2; ++times) {
        recorder->clear();
        EXPECT_EQ(recorder->receivedData(), nullptr);
        EXPECT_EQ(recorder->currentTrack(), nullptr);
        EXPECT_EQ(recorder->currentRoute(), nullptr);
        EXPECT_EQ(telemetry(*recorder, "pointEqualTossedPoints"), 0);
        EXPECT_EQ(telemetry(*recorder, "slopeEqualTossedPoints"), 0);
        EXPECT_TRUE(recorder->minimizeTracks());
        EXPECT_EQ(recorder->pointEqualSlop(), 2.0F);
    }
    recorder->newTrack(nullptr);
    EXPECT_EQ(recorder->receivedData(), nullptr) << "until something is filed";
    recorder->endTransfer(transferKind::tracks);
    EXPECT_EQ(filed(*recorder, recordedData::track), 1U);
}

TEST(RecordingGPSOutput, WhatAHostKeepsOutlivesClearAndTheRecorder) {
    auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 2), nullptr);
    const Ref<Dictionary> point(recorder->lastTrackPoint());
    const Ref<Dictionary> track(recorder->currentTrack());
    recorder->clear();
    recorder.reset();
    EXPECT_EQ(track->array(extras::points)->dictionary(0), point.get());
    EXPECT_TRUE(sameBytes(*point->record<GPSPoint>(extras::point), pointAt(1, 2)));
}

} // namespace
} // namespace pelluvia
