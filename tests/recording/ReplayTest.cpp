// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <tests/recording/Spies.h>
#include <tests/support/ExpectOrdered.h>
#include <tests/support/SpyReceiver.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

using testing::keys;
using testing::pointAt;
using testing::pointCount;
using testing::records;
using testing::sameBytes;
using testing::SpyReceiver;
using Lines = std::vector<std::string>;

const Array *filed(const RecordingGPSOutput &recorder, const Key &key) {
    return recorder.receivedData() != nullptr ? recorder.receivedData()->array(key) : nullptr;
}

/// Two waypoints, a route of one point, tracks of two and of no points; a track and a route open.
std::shared_ptr<RecordingGPSOutput> recording() {
    auto recorder = RecordingGPSOutput::recorder();
    Dictionary extra;
    extra.set(extras::hr, Value(120));
    extra.set(extras::point, Value("in the record's place"));
    extra.set(Key("invented"), Value("kept"));
    recorder->wayPoint(pointAt(1, 1), &extra);
    recorder->wayPoint(pointAt(2, 2), nullptr);
    recorder->newTrack(&extra);
    recorder->newTrackSegment();
    recorder->trackPoint(pointAt(3, 3), &extra);
    recorder->newTrackSegment();
    recorder->trackPoint(pointAt(4, -0.0), nullptr);
    recorder->newTrack(nullptr);
    recorder->endTransfer(transferKind::tracks);
    recorder->newRoute(&extra);
    recorder->routePoint(pointAt(5, 5), &extra);
    recorder->endTransfer(transferKind::routes);
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(6, 6), nullptr);
    recorder->newRoute(nullptr);
    recorder->routePoint(pointAt(7, 7), nullptr);
    return recorder;
}

const Lines recordingCalls = {"startTransfer 3", "wayPoint", "wayPoint",        "endTransfer 3",
                              "startTransfer 2", "newRoute", "routePoint",      "endTransfer 2",
                              "startTransfer 1", "newTrack", "newTrackSegment", "trackPoint",
                              "trackPoint",      "newTrack", "newTrackSegment", "endTransfer 1"};

TEST(Replay, CallsComeInTheirOrder) {
    OrderChecker checker;
    recording()->pushAllDataToOutput(checker);
    checker.gpsStateChange(gpsState::finished);
    testing::expectOrdered(checker);
    EXPECT_EQ(checker.calls(), recordingCalls.size() + 1);
}

TEST(Replay, OfNothingSendsNothing) {
    const auto recorder = RecordingGPSOutput::recorder();
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 1), nullptr); // open, not filed
    recorder->pushAllDataToOutput(spy);
    recorder->appendArrayData(Value(1), recordedData::laps);
    recorder->appendArrayData(Value(1), recordedData::pois);
    recorder->pushAllDataToOutput(spy);
    EXPECT_EQ(spy.names(), Lines{});
}

TEST(Replay, SendsWaypointsThenRoutesThenTracks) {
    SpyReceiver spy;
    recording()->pushAllDataToOutput(spy);
    EXPECT_EQ(spy.names(), recordingCalls);
    EXPECT_EQ(spy.seen[0].address, nullptr) << "no count";
    EXPECT_EQ(spy.seen[4].address, nullptr);
    EXPECT_EQ(spy.seen[8].address, nullptr);
}

TEST(Replay, OfTracksOnlySendsNoOtherTransfer) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->endTransfer(transferKind::tracks);
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    EXPECT_EQ(spy.names(), (Lines{"startTransfer 1", "newTrack", "newTrackSegment", "trackPoint",
                                  "endTransfer 1"}));
}

TEST(Replay, OfEmptyArraysIsAStartAndAnEnd) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->appendArrayData(Value(1), Key("other"));
    for (const Key &key : {recordedData::waypoint, recordedData::track, recordedData::route}) {
        recorder->receivedData()->set(key, Value(Ref<Array>::make()));
    }
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    EXPECT_EQ(spy.names(), (Lines{"startTransfer 3", "endTransfer 3", "startTransfer 2",
                                  "endTransfer 2", "startTransfer 1", "endTransfer 1"}));
}

TEST(Replay, HandsOutTheRecordedDictionariesThemselves) {
    const auto recorder = recording();
    Dictionary *waypoint = filed(*recorder, recordedData::waypoint)->dictionary(0);
    Dictionary *route = filed(*recorder, recordedData::route)->dictionary(0);
    Dictionary *track = filed(*recorder, recordedData::track)->dictionary(0);
    waypoint->set(Key("added by the host"), Value(1));
    track->array(extras::points)->dictionary(1)->set(extras::temp, Value(21.5F));
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);

    EXPECT_EQ(spy.seen[1].address, waypoint);
    EXPECT_EQ(keys(spy.seen[1].address), "hr,point,invented,added by the host,");
    EXPECT_TRUE(sameBytes(spy.seen[1].point, pointAt(1, 1)));
    EXPECT_EQ(spy.seen[5].address, route);
    EXPECT_EQ(keys(spy.seen[5].address), "hr,point,invented,points,");
    EXPECT_EQ(spy.seen[6].address, route->array(extras::points)->dictionary(0));
    EXPECT_TRUE(sameBytes(spy.seen[6].point, pointAt(5, 5)));
    EXPECT_EQ(spy.seen[9].address, track);
    EXPECT_EQ(spy.seen[11].address, track->array(extras::points)->dictionary(0));
    EXPECT_EQ(keys(spy.seen[11].address), "hr,point,invented,");
    EXPECT_EQ(keys(spy.seen[12].address), "point,temp,");
    EXPECT_TRUE(sameBytes(spy.seen[12].point, pointAt(4, -0.0)));
}

TEST(Replay, SendsTheRecordThatAHostHasPutInPlace) {
    const auto recorder = recording();
    GPSPoint moved = pointAt(8, 9);
    moved.test = 5;
    filed(*recorder, recordedData::waypoint)
        ->dictionary(0)
        ->set(extras::point, Value::wrapping(moved));
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    EXPECT_TRUE(sameBytes(spy.seen[1].point, moved));
    EXPECT_EQ(keys(spy.seen[1].address), "hr,point,invented,");
}

TEST(Replay, ChangesNothing) {
    const auto recorder = recording();
    const auto progress = std::make_shared<testing::ProgressSpy>();
    recorder->setProgress(progress);
    recorder->setMinimizeTracks(true);
    for (int times = 0; times < 2; ++times) {
        SpyReceiver spy;
        recorder->pushAllDataToOutput(spy);
        EXPECT_EQ(spy.names(), recordingCalls);
    }
    EXPECT_TRUE(progress->lines.empty());
    EXPECT_EQ(pointCount(recorder->currentTrack()), 1U);
    EXPECT_EQ(pointCount(recorder->currentRoute()), 1U);
    EXPECT_EQ(keys(recorder->receivedData()), "waypoint,track,route,");
}

TEST(Replay, LeavesOutWhatHasNoPoint) {
    const auto recorder = RecordingGPSOutput::recorder();
    auto pointless = Ref<Dictionary>::make();
    pointless->set(extras::point, Value("no record"));
    recorder->appendArrayData(Value(pointless), recordedData::waypoint);
    recorder->appendArrayData(Value("no dictionary"), recordedData::waypoint);
    recorder->appendArrayData(Value(), recordedData::waypoint);
    recorder->appendArrayData(Value(Ref<Array>::make()), recordedData::track);
    recorder->appendArrayData(Value(7), recordedData::route);
    recorder->appendArrayData(Value(Ref<Dictionary>::make()), recordedData::route);
    recorder->wayPoint(pointAt(1, 2), nullptr);
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    EXPECT_EQ(spy.names(),
              (Lines{"startTransfer 3", "wayPoint", "endTransfer 3", "startTransfer 2", "newRoute",
                     "endTransfer 2", "startTransfer 1", "endTransfer 1"}));
}

TEST(Replay, OfAnUnnamedTrackHasASegmentWithoutPoints) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->endTransfer(transferKind::tracks);
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    ASSERT_EQ(spy.names(),
              (Lines{"startTransfer 1", "newTrack", "newTrackSegment", "endTransfer 1"}));
    EXPECT_EQ(keys(spy.seen[1].address), "name,");
    EXPECT_EQ(spy.seen[1].address->string(extras::name), "unnamed");
}

TEST(Replay, SendsOnlyWhatThinningHasLeft) {
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->setMinimizeTracks(true);
    recorder->newTrack(nullptr);
    for (int i = 1; i <= 5; ++i) {
        recorder->trackPoint(pointAt(i, i), nullptr);
    }
    recorder->endTransfer(transferKind::tracks);
    SpyReceiver spy;
    recorder->pushAllDataToOutput(spy);
    ASSERT_EQ(spy.calls.size(), 6U);
    EXPECT_EQ(spy.seen[3].point.latitude, 1.0);
    EXPECT_EQ(spy.seen[4].point.latitude, 5.0);
}

/// Compares two lists of dictionaries down to their points, records byte for byte.
void expectSameLists(const Array *expected, const Array *actual) {
    ASSERT_TRUE(expected != nullptr && actual != nullptr);
    ASSERT_EQ(expected->size(), actual->size());
    for (std::size_t i = 0; i < expected->size(); ++i) {
        const Dictionary *a = expected->dictionary(i);
        const Dictionary *b = actual->dictionary(i);
        EXPECT_NE(a, b) << "a copy";
        EXPECT_EQ(keys(a), keys(b));
        const Array *pointsA = a->array(extras::points);
        const Array *pointsB = b->array(extras::points);
        ASSERT_EQ(pointCount(a), pointCount(b));
        for (std::size_t p = 0; p < pointCount(a); ++p) {
            EXPECT_NE(pointsA->dictionary(p), pointsB->dictionary(p));
            EXPECT_EQ(keys(pointsA->dictionary(p)), keys(pointsB->dictionary(p)));
            EXPECT_TRUE(sameBytes(records(a)[p], records(b)[p]));
        }
    }
}

TEST(Replay, IntoASecondRecorderMakesACopy) {
    const auto first = recording();
    const auto second = RecordingGPSOutput::recorder();
    first->pushAllDataToOutput(*second);
    EXPECT_EQ(keys(second->receivedData()), "waypoint,route,track,");
    EXPECT_EQ(second->currentTrack(), nullptr);
    EXPECT_EQ(second->currentRoute(), nullptr);
    for (const Key &key : {recordedData::waypoint, recordedData::route, recordedData::track}) {
        expectSameLists(filed(*first, key), filed(*second, key));
    }
    SpyReceiver spy;
    second->pushAllDataToOutput(spy);
    EXPECT_EQ(spy.names(), recordingCalls);
}

TEST(Replay, ThinsFurtherInARecorderThatThins) {
    const auto first = RecordingGPSOutput::recorder();
    first->newTrack(nullptr);
    for (int i = 1; i <= 100; ++i) {
        first->trackPoint(pointAt(i * 0.5, i), nullptr);
    }
    first->endTransfer(transferKind::tracks);
    const auto second = RecordingGPSOutput::recorder();
    second->setMinimizeTracks(true);
    first->pushAllDataToOutput(*second);
    EXPECT_EQ(testing::telemetry(*first, "trackPointCount"), 100);
    EXPECT_EQ(testing::telemetry(*second, "trackPointCount"), 2);
    EXPECT_EQ(testing::telemetry(*second, "slopeEqualTossedPoints"), 98);
}

TEST(Replay, IntoTheRecorderItselfEnds) {
    for (const bool minimize : {false, true}) {
        const auto recorder = recording();
        recorder->setMinimizeTracks(minimize);
        recorder->pushAllDataToOutput(*recorder);
        // The open route takes the waypoints and is filed first, the open track likewise.
        EXPECT_EQ(filed(*recorder, recordedData::waypoint)->size(), 2U);
        const Array *routes = filed(*recorder, recordedData::route);
        ASSERT_EQ(routes->size(), 3U);
        EXPECT_EQ(pointCount(routes->dictionary(1)), 3U);
        EXPECT_EQ(pointCount(routes->dictionary(2)), 1U);
        const Array *tracks = filed(*recorder, recordedData::track);
        ASSERT_EQ(tracks->size(), 5U);
        EXPECT_EQ(pointCount(tracks->dictionary(3)), 2U);
        EXPECT_EQ(pointCount(tracks->dictionary(4)), 0U);
    }
}

TEST(Replay, OfWaypointsIntoTheRecorderItselfDoublesThem) {
    const auto recorder = RecordingGPSOutput::recorder();
    for (int i = 0; i < 1000; ++i) {
        recorder->wayPoint(pointAt(i, i), nullptr);
    }
    recorder->pushAllDataToOutput(*recorder);
    EXPECT_EQ(filed(*recorder, recordedData::waypoint)->size(), 2000U);
}

/// Takes everything away from the recorder that is sending, and the recorder with it.
class Spoiler : public SpyReceiver {
  public:
    explicit Spoiler(std::shared_ptr<RecordingGPSOutput> victim, std::string when)
        : victim_(std::move(victim)), when_(std::move(when)) {}

    void wayPoint(GPSPoint point, const Dictionary *extra) override {
        SpyReceiver::wayPoint(point, extra);
        spoil("wayPoint", extra);
    }
    void newRoute(const Dictionary *extra) override {
        SpyReceiver::newRoute(extra);
        spoil("newRoute", extra);
    }
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        SpyReceiver::trackPoint(point, extra);
        spoil("trackPoint", extra);
    }
    std::string spoilt;

  private:
    void spoil(std::string_view now, const Dictionary *extra) {
        if (now == when_ && victim_) {
            for (const Key &key :
                 {recordedData::waypoint, recordedData::route, recordedData::track}) {
                const Ref<Array> list(victim_->receivedData()->array(key));
                while (!list->empty()) {
                    list->removeLast();
                }
            }
            victim_->clear();
            victim_.reset();
            spoilt = keys(extra); // still whole
        }
    }
    std::shared_ptr<RecordingGPSOutput> victim_;
    std::string when_;
};

TEST(Replay, SurvivesAReceiverThatDestroysTheRecording) {
    for (const auto &[when, seen] :
         std::vector<std::pair<std::string, std::string>>{{"wayPoint", "hr,point,invented,"},
                                                          {"newRoute", "hr,point,invented,points,"},
                                                          {"trackPoint", "hr,point,invented,"}}) {
        auto recorder = recording();
        RecordingGPSOutput *borrowed = recorder.get();
        Spoiler spoiler(std::move(recorder), when);
        borrowed->pushAllDataToOutput(spoiler);
        EXPECT_EQ(spoiler.spoilt, seen);
        EXPECT_EQ(spoiler.names().back(), "endTransfer 1");
    }
}

} // namespace
} // namespace pelluvia
