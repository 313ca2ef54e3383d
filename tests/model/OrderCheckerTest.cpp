// SPDX-License-Identifier: MIT

#include <Pelluvia/model/OrderChecker.h>

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

using Call = std::function<void(GPSOutputReceiver &)>;
using Calls = std::vector<Call>;

// The calls, by short names.
const Call segment = [](GPSOutputReceiver &to) { to.newTrackSegment(); };
const Call track = [](GPSOutputReceiver &to) { to.newTrack(nullptr); };
const Call route = [](GPSOutputReceiver &to) { to.newRoute(nullptr); };
const Call trackPoint = [](GPSOutputReceiver &to) { to.trackPoint({}, nullptr); };
const Call wayPoint = [](GPSOutputReceiver &to) { to.wayPoint({}, nullptr); };
const Call routePoint = [](GPSOutputReceiver &to) { to.routePoint({}, nullptr); };
const Call poiPoint = [](GPSOutputReceiver &to) { to.poiPoint({}, nullptr); };
const Call lap = [](GPSOutputReceiver &to) { to.lapInfoStart({}, {}, nullptr); };
const Call position = [](GPSOutputReceiver &to) { to.currentPosition({}, 1); };
const Call warning = [](GPSOutputReceiver &to) { to.warning({}); };
const Call error = [](GPSOutputReceiver &to) { to.error({}); };
const Call progress = [](GPSOutputReceiver &to) { to.sendProgress(1); };
Call start(int kind) {
    return [kind](GPSOutputReceiver &to) { to.startTransfer(nullptr, kind, nullptr); };
}
Call end(int kind) {
    return [kind](GPSOutputReceiver &to) { to.endTransfer(kind); };
}
Call state(int number) {
    return [number](GPSOutputReceiver &to) { to.gpsStateChange(number); };
}
Call startSending(int kind) {
    return [kind](GPSOutputReceiver &to) { to.startSending(nullptr, kind, nullptr); };
}
Call endSending(int kind) {
    return [kind](GPSOutputReceiver &to) { to.endSending(kind); };
}

/// The fault that the calls make; empty when they are in order.
std::string faultOf(const Calls &calls) {
    OrderChecker checker;
    for (const Call &call : calls) {
        call(checker);
    }
    EXPECT_EQ(checker.calls(), calls.size());
    return checker.fault() ? checker.fault()->text : "";
}

TEST(OrderChecker, FindsNoFaultInWhatProducersDo) {
    const Calls rows[] = {
        {},
        {start(1), end(1), start(2), end(2), start(3), end(3), state(0)},
        {start(1), track, segment, trackPoint, trackPoint, segment, segment, trackPoint, track,
         track, segment, trackPoint, end(1)},
        {start(2), route, routePoint, routePoint, route, wayPoint, routePoint, end(2)},
        {start(3), wayPoint, wayPoint, end(3), start(3), wayPoint, end(3)},
        {start(7), wayPoint, trackPoint, routePoint, segment, route, track, end(7)},
        {start(-1), end(-1)},
    };
    for (const Calls &row : rows) {
        EXPECT_EQ(faultOf(row), "");
    }
}

TEST(OrderChecker, LetsAsidesStandAnywhereBeforeTheEnd) {
    const Calls asides = {lap, poiPoint, position, warning, error, state(1)};
    Calls calls;
    for (const Call &step :
         {start(1), track, segment, trackPoint, end(1), startSending(3), progress, endSending(3)}) {
        calls.insert(calls.end(), asides.begin(), asides.end());
        calls.push_back(step);
    }
    calls.push_back(state(0));
    EXPECT_EQ(faultOf(calls), "");
}

TEST(OrderChecker, LetsReportsAndStatesFollowTheEnd) {
    EXPECT_EQ(faultOf({state(0), warning, error, state(0), state(4)}), "");
}

TEST(OrderChecker, TellsTheCallItsRuleAndWhatWasOpen) {
    const struct {
        Calls calls;
        std::string fault;
    } rows[] = {
        {{track}, "call 1, newTrack: no transfer is open; open: nothing"},
        {{wayPoint}, "call 1, wayPoint: no transfer is open; open: nothing"},
        {{start(1), segment},
         "call 2, newTrackSegment: no track is open; open: transfer of tracks"},
        {{start(1), track, trackPoint},
         "call 3, trackPoint: no track segment is open; open: transfer of tracks, track"},
        {{start(1), track, segment, track, trackPoint},
         "call 5, trackPoint: no track segment is open; open: transfer of tracks, track"},
        {{start(1), track, segment, wayPoint},
         "call 4, wayPoint: it belongs to transfers of another kind; open: transfer of tracks, "
         "track, segment"},
        {{start(2), routePoint}, "call 2, routePoint: no route is open; open: transfer of routes"},
        {{start(2), wayPoint}, "call 2, wayPoint: no route is open; open: transfer of routes"},
        {{start(2), track},
         "call 2, newTrack: it belongs to transfers of another kind; open: transfer of routes"},
        {{start(3), routePoint},
         "call 2, routePoint: it belongs to transfers of another kind; open: transfer of "
         "waypoints"},
        {{start(1), end(1), trackPoint}, "call 3, trackPoint: no transfer is open; open: nothing"},
        {{start(2), route, start(1)},
         "call 3, startTransfer: the transfer before has not ended; open: transfer of routes, "
         "route"},
        {{start(8), end(9)},
         "call 2, endTransfer: its kind is another one, kind 9; open: transfer of kind 8"},
        {{end(1)}, "call 1, endTransfer: no transfer is open; open: nothing"},
        {{start(1), track, state(0)},
         "call 3, gpsStateChange: finished in the midst of things; open: transfer of tracks, "
         "track"},
        {{state(0), lap}, "call 2, lapInfoStart: the finished state was the end; open: nothing"},
        {{state(0), start(1)},
         "call 2, startTransfer: the finished state was the end; open: nothing"},
        {{progress}, "call 1, sendProgress: no upload is open; open: nothing"},
        {{endSending(1)}, "call 1, endSending: no upload is open; open: nothing"},
        {{startSending(1), startSending(1)},
         "call 2, startSending: the upload before has not ended; open: upload of tracks"},
        {{start(3), startSending(2), endSending(3)},
         "call 3, endSending: its kind is another one, waypoints; open: transfer of waypoints, "
         "upload of routes"},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(faultOf(row.calls), row.fault);
    }
}

TEST(OrderChecker, KeepsTheFirstFault) {
    OrderChecker checker;
    checker.trackPoint({}, nullptr);
    checker.endTransfer(1);
    ASSERT_TRUE(checker.fault());
    EXPECT_EQ(checker.fault()->call, 1U);
    EXPECT_EQ(checker.calls(), 2U);
}

TEST(OrderChecker, TellsWhatIsLeftOpen) {
    OrderChecker checker;
    EXPECT_FALSE(checker.hasOpen());
    checker.startTransfer(nullptr, transferKind::routes, nullptr);
    checker.newRoute(nullptr);
    EXPECT_TRUE(checker.hasOpen());
    EXPECT_EQ(checker.open(), "transfer of routes, route");
    checker.endTransfer(transferKind::routes);
    EXPECT_FALSE(checker.hasOpen());
    EXPECT_EQ(checker.open(), "nothing");
}

} // namespace
} // namespace pelluvia
