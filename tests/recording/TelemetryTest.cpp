// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <tests/recording/Spies.h>

#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

using testing::keys;
using testing::pointAt;
using Entries = std::vector<std::pair<std::string, std::int64_t>>;

/// The summary, after a check that each entry is a name and an integer and nothing else.
Entries summary(const RecordingGPSOutput &recorder) {
    Entries found;
    const Ref<Array> entries = recorder.processingTelemetry();
    for (std::size_t i = 0; i < entries->size(); ++i) {
        const Dictionary *entry = entries->dictionary(i);
        EXPECT_EQ(keys(entry), "name,value,");
        EXPECT_EQ(entry->find(Key("value")).kind(), Value::Kind::Integer);
        found.emplace_back(*entry->string(Key("name")), entry->number(Key("value"))->int64Value());
    }
    return found;
}

const Entries nothing = {{"slopeEqualTossedPoints", 0},
                         {"pointEqualTossedPoints", 0},
                         {"TrackCount", 0},
                         {"RouteCount", 0},
                         {"WayPointCount", 0},
                         {"POICount", 0},
                         {"LapCount", 0}};

TEST(Telemetry, OfAFreshOrClearedRecorderIsSevenZeros) {
    const auto recorder = RecordingGPSOutput::recorder();
    EXPECT_EQ(summary(*recorder), nothing);
    recorder->setMinimizeTracks(true);
    recorder->newTrack(nullptr);
    for (int i = 0; i < 3; ++i) {
        recorder->trackPoint(pointAt(1, 1), nullptr);
    }
    recorder->wayPoint(pointAt(1, 1), nullptr);
    recorder->endTransfer(transferKind::tracks);
    EXPECT_NE(summary(*recorder), nothing);
    recorder->clear();
    EXPECT_EQ(summary(*recorder), nothing);
}

TEST(Telemetry, CountsEverythingFiledInAFixedOrder) {
    const auto recorder = RecordingGPSOutput::recorder();
    for (int track = 0; track < 2; ++track) {
        recorder->newTrack(nullptr);
        for (int i = 0; i < 5; ++i) {
            recorder->trackPoint(pointAt(i, i * i), nullptr);
        }
    }
    recorder->endTransfer(transferKind::tracks);
    for (int route = 0; route < 3; ++route) {
        recorder->newRoute(nullptr);
        recorder->routePoint(pointAt(1, 1), nullptr);
    }
    recorder->endTransfer(transferKind::routes);
    for (int i = 0; i < 4; ++i) {
        recorder->wayPoint(pointAt(1, 1), nullptr);
        recorder->appendArrayData(Value(i), recordedData::pois);
        recorder->appendArrayData(Value(i), recordedData::laps);
    }
    recorder->appendArrayData(Value(1), recordedData::laps);
    recorder->appendArrayData(Value(1), Key("not counted"));
    EXPECT_EQ(summary(*recorder), (Entries{{"slopeEqualTossedPoints", 0},
                                           {"pointEqualTossedPoints", 0},
                                           {"TrackCount", 2},
                                           {"RouteCount", 3},
                                           {"WayPointCount", 4},
                                           {"POICount", 4},
                                           {"LapCount", 5},
                                           {"trackPointCount", 10},
                                           {"routePointCount", 3}}));
}

TEST(Telemetry, TheEighthEntryIsOfTheOnlyKindThereIs) {
    const auto tracks = RecordingGPSOutput::recorder();
    tracks->newTrack(nullptr);
    tracks->endTransfer(transferKind::tracks);
    ASSERT_EQ(summary(*tracks).size(), 8U);
    EXPECT_EQ(summary(*tracks)[7], (std::pair<std::string, std::int64_t>("trackPointCount", 0)));

    const auto routes = RecordingGPSOutput::recorder();
    routes->newRoute(nullptr);
    routes->routePoint(pointAt(1, 1), nullptr);
    routes->endTransfer(transferKind::routes);
    ASSERT_EQ(summary(*routes).size(), 8U);
    EXPECT_EQ(summary(*routes)[7], (std::pair<std::string, std::int64_t>("routePointCount", 1)));
}

TEST(Telemetry, AnEmptyArrayIsLikeAnAbsentOne) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->appendArrayData(Value(1), Key("other"));
    recorder->receivedData()->set(recordedData::track, Value(Ref<Array>::make()));
    recorder->receivedData()->set(recordedData::route, Value(Ref<Array>::make()));
    EXPECT_EQ(summary(*recorder), nothing);
}

TEST(Telemetry, LeavesOpenTracksAndRoutesOut) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newRoute(nullptr);
    recorder->routePoint(pointAt(1, 1), nullptr);
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 1), nullptr);
    EXPECT_EQ(summary(*recorder), nothing);
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->trackPoint(pointAt(2, 1), nullptr);
    EXPECT_EQ(testing::telemetry(*recorder, "TrackCount"), 1);
    EXPECT_EQ(testing::telemetry(*recorder, "trackPointCount"), 1);
    EXPECT_EQ(testing::telemetry(*recorder, "routePointCount"), -1);
}

TEST(Telemetry, ATrackWithoutPointsAndAStrangerCountAsNoPoints) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->trackPoint(pointAt(1, 1), nullptr); // an unnamed track
    recorder->endTransfer(transferKind::tracks);
    recorder->appendArrayData(Value("no track"), recordedData::track);
    EXPECT_EQ(testing::telemetry(*recorder, "TrackCount"), 2);
    EXPECT_EQ(testing::telemetry(*recorder, "trackPointCount"), 0);
}

TEST(Telemetry, IsACopyThatChangesNothing) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->processingTelemetry()->dictionary(2)->set(Key("value"), Value(7));
    EXPECT_EQ(summary(*recorder), nothing);
    EXPECT_EQ(recorder->receivedData(), nullptr);
}

} // namespace
} // namespace pelluvia
