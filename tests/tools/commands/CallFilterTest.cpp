// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/CallFilter.h>

#include <tests/formats/calllog/CallLogs.h>
#include <tests/support/SpyReceiver.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace pelluvia::host {
namespace {

using ::testing::ElementsAre;
using testing::SpyReceiver;

constexpr Selection tracksOnly{.tracks = true, .routes = false, .waypoints = false};

/// Every call of a transfer of a kind.
void sendTransfer(GPSOutputReceiver &receiver, int kind) {
    receiver.startTransfer(nullptr, kind, nullptr);
    receiver.newTrack(nullptr);
    receiver.newTrackSegment();
    receiver.trackPoint({}, nullptr);
    receiver.newRoute(nullptr);
    receiver.routePoint({}, nullptr);
    receiver.wayPoint({}, nullptr);
    receiver.poiPoint({}, nullptr);
    receiver.lapInfoStart({}, {}, nullptr);
    receiver.endTransfer(kind);
}

std::vector<std::string> filtered(Selection only, bool holdsFinish,
                                  const std::function<void(GPSOutputReceiver &)> &produce) {
    const auto spy = std::make_shared<SpyReceiver>();
    CallFilter filter(spy, only, holdsFinish);
    produce(filter);
    return spy->names();
}

TEST(CallFilter, PassesTransfersOfTheChosenKindsWhole) {
    EXPECT_THAT(filtered(tracksOnly, false, [](auto &receiver) { sendTransfer(receiver, 1); }),
                ElementsAre("startTransfer 1", "newTrack", "newTrackSegment", "trackPoint",
                            "newRoute", "routePoint", "wayPoint", "poiPoint", "lapInfoStart",
                            "endTransfer 1"));
}

TEST(CallFilter, DropsTransfersOfOtherKindsWhole) {
    EXPECT_THAT(filtered(tracksOnly, false,
                         [](auto &receiver) {
                             sendTransfer(receiver, 2);
                             sendTransfer(receiver, 3);
                             sendTransfer(receiver, 7);
                             receiver.newTrackSegment();
                         }),
                ElementsAre("newTrackSegment"));
}

TEST(CallFilter, ATransferThatFollowsWithoutAnEndDecidesAnew) {
    EXPECT_THAT(filtered(tracksOnly, false,
                         [](auto &receiver) {
                             receiver.startTransfer(nullptr, 2, nullptr);
                             receiver.startTransfer(nullptr, 1, nullptr);
                             receiver.newTrack(nullptr);
                         }),
                ElementsAre("startTransfer 1", "newTrack"));
}

TEST(CallFilter, DropsUploadsOfOtherKinds) {
    EXPECT_THAT(filtered(tracksOnly, false,
                         [](auto &receiver) {
                             for (const int kind : {3, 1}) {
                                 receiver.startSending(nullptr, kind, nullptr);
                                 receiver.sendProgress(kind * 10);
                                 receiver.endSending(kind);
                             }
                         }),
                ElementsAre("startSending 1", "sendProgress 10", "endSending 1"));
}

TEST(CallFilter, ReportsStatesAndPositionsPassAlways) {
    EXPECT_THAT(filtered(tracksOnly, false,
                         [](auto &receiver) {
                             receiver.startTransfer(nullptr, 2, nullptr);
                             receiver.warning(Report("text"));
                             receiver.error(Report());
                             receiver.currentPosition({}, 3);
                             receiver.gpsStateChange(0);
                         }),
                ElementsAre("warning", "error", "currentPosition 3", "gpsStateChange 0"));
}

TEST(CallFilter, UnknownKindsPassWhenEverythingIsChosen) {
    EXPECT_THAT(
        filtered({}, false, [](auto &receiver) { receiver.startTransfer(nullptr, 7, nullptr); }),
        ElementsAre("startTransfer 7"));
}

TEST(CallFilter, HoldsTheFinishBackAndNoOtherState) {
    EXPECT_THAT(filtered({}, true,
                         [](auto &receiver) {
                             receiver.gpsStateChange(0);
                             receiver.gpsStateChange(4);
                         }),
                ElementsAre("gpsStateChange 4"));
}

TEST(CallFilter, ArgumentsPassUnchanged) {
    const std::string log =
        "{\"call\":\"poiPoint:extra:\",\"point\":{\"latitude\":1.5,\"longitude\":2.5,"
        "\"altitude\":3.5,\"time\":4,\"test\":5},\"extra\":{\"name\":\"x\"}}\n"
        "{\"call\":\"warning:\",\"object\":\"text\"}\n"
        "{\"call\":\"startTransfer:kind:extra:\",\"kind\":1,\"extra\":{\"count\":2}}\n";
    const std::string passed = testing::writtenLog([&log](CallLogWriter &writer) {
        const std::shared_ptr<GPSOutputReceiver> borrowed(&writer, [](auto *) {});
        CallFilter filter(borrowed, tracksOnly, false);
        EXPECT_EQ(testing::readLog(log, filter), nullptr);
    });
    EXPECT_EQ(passed, log);
}

} // namespace
} // namespace pelluvia::host
