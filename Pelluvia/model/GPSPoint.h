// SPDX-License-Identifier: MIT

#pragma once

#ifdef __cplusplus

#include <Pelluvia/values/RecordEncoding.h>

#include <cstddef>
#include <cstdint>

namespace pelluvia {

/// One point of a track, a route or a waypoint list, as it moves from producers to receivers: a
/// plain record of 40 bytes, passed by value.
struct GPSPoint {
    /// Degrees, north positive. A value above `dataOnlyLatitude` marks a sample without a position
    /// (of heart rate and the like).
    double latitude = 0.0;
    /// Degrees, east positive.
    double longitude = 0.0;
    /// Metres. Exactly 0.0 means that there is no altitude; NaN counts as a value.
    double altitude = 0.0;
    /// Seconds since 1970-01-01 00:00:00 UTC. 0 means that there is no time.
    std::int64_t time = 0;
    /// Belongs to the producer; carried unchanged and read by nothing here.
    std::int64_t test = 0;
};

static_assert(sizeof(GPSPoint) == 40);
static_assert(offsetof(GPSPoint, latitude) == 0 && offsetof(GPSPoint, longitude) == 8 &&
              offsetof(GPSPoint, altitude) == 16 && offsetof(GPSPoint, time) == 24 &&
              offsetof(GPSPoint, test) == 32);

/// Three 64-bit floats and two signed 64-bit integers.
template <>
struct RecordEncoding<GPSPoint> {
    static constexpr const char *value = "{?=dddqq}";
};

/// Where real latitudes end, with some room. The comparison is one-sided and strict on both sides
/// of its use: a track point *above* it has no position, a lap's end point is written only *below*
/// it. A latitude of exactly this value is an ordinary track point and never a lap's end point.
inline constexpr double dataOnlyLatitude = 91.0;

} // namespace pelluvia

#else // C

#include <stdint.h>

/// The same record for programs in C, where nobody sets the fields to 0: `GPSPoint point = {0};`.
typedef struct GPSPoint {
    double latitude;
    double longitude;
    double altitude;
    int64_t time;
    int64_t test;
} GPSPoint;

#endif
