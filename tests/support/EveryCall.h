// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>

namespace pelluvia::testing {

/// Makes each of the calls once, all with arguments that differ; in no order that producers follow.
inline void makeEveryCall(GPSOutputReceiver &to, const Dictionary &extra) {
    const int sender = 0;
    to.newTrackSegment();
    to.newTrack(&extra);
    to.newRoute(&extra);
    to.trackPoint({1, 2, 3, 4, 5}, &extra);
    to.wayPoint({2, 3, 4, 5, 6}, &extra);
    to.routePoint({3, 4, 5, 6, 7}, &extra);
    to.poiPoint({4, 5, 6, 7, 8}, &extra);
    to.lapInfoStart({5, 6, 7, 8, 9}, {6, 7, 8, 9, 10}, &extra);
    to.startTransfer(&sender, 1, &extra);
    to.endTransfer(2);
    to.currentPosition({7, 8, 9, 10, 11}, 3);
    to.warning("a warning");
    to.error(Error::make("domain", 4));
    to.gpsStateChange(5);
    to.startSending(&sender, 6, &extra);
    to.sendProgress(7);
    to.endSending(8);
}

} // namespace pelluvia::testing
