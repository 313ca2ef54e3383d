// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/model/ReceiverObservers.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstdint>

namespace pelluvia {

class RecordingGPSOutput;

/// What a recorder holds.
class RecorderState {
  public:
    Ref<Dictionary> trackData;    // the open track, or null
    Ref<Dictionary> waypointData; // never filled
    Ref<Dictionary> routeData;    // the open route, or null
    Ref<Dictionary> lapData;      // never filled
    ReceiverObservers<RecordingGPSOutput> observers;
    Report error;
    bool minimizeTracks = false;
    float slopeEqualSlop = 0.01F;
    float pointEqualSlop = 0.0001F;
    std::uint64_t slopeEqualTossedPoints = 0;
    std::uint64_t pointEqualTossedPoints = 0;
    GPSPoint lastPoint;           // the newest track point
    GPSPoint prevPoint;           // the kept track point before it; latitude 0.0: there is none yet
    GPSPoint currentPoint;        // unused
    Ref<Dictionary> receivedData; // null before the first item

    /// Whether `newPoint` makes the stored point before it redundant; counts the tests that fired.
    bool tossesLastPoint(const GPSPoint &newPoint);
};

} // namespace pelluvia
