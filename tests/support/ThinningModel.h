// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSPoint.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace pelluvia::testing {

/// What a double becomes as a float: the nearest one, of two the one with the even last bit.
inline float single(double value) {
    const double limit = std::ldexp(1.0, 128) - std::ldexp(1.0, 103); // from here on infinite
    if (std::fabs(value) >= limit) {
        return std::copysign(std::numeric_limits<float>::infinity(), value < 0 ? -1.0F : 1.0F);
    }
    if (std::fabs(value) > std::numeric_limits<float>::max()) {
        return std::copysign(std::numeric_limits<float>::max(), value < 0 ? -1.0F : 1.0F);
    }
    return static_cast<float>(value);
}

/// The thinning of tracks, written out rule by rule: all intermediate results are stored, so that
/// none has more precision than its type.
class ThinningModel {
  public:
    bool minimize = true;
    float pointSlop = 0.0001F;
    float slopeSlop = 0.01F;
    std::int64_t pointTests = 0; ///< that fired
    std::int64_t slopeTests = 0;

    void newTrack() {
        last.latitude = last.longitude = previous.latitude = previous.longitude = 0.0;
    }

    /// Takes a track point; whether the one before it goes.
    bool trackPoint(const GPSPoint &point) {
        const bool toss = minimize && previous.latitude != 0.0 && tests(point) > 0;
        if (!toss) {
            previous = last;
        }
        last = point;
        return toss;
    }

  private:
    int tests(const GPSPoint &point) {
        volatile float dLat1 = single(last.latitude - previous.latitude);
        volatile float dLon1 = single(last.longitude - previous.longitude);
        volatile float dLat2 = single(point.latitude - last.latitude);
        volatile float dLon2 = single(point.longitude - last.longitude);
        int fired = 0;
        if (-pointSlop < dLat2 && dLat2 < pointSlop && -pointSlop < dLon2 && dLon2 < pointSlop) {
            ++pointTests;
            ++fired;
        }
        if (dLon1 == 0 && dLon2 == 0) {
            ++slopeTests;
            ++fired;
        }
        if (dLat1 == 0 && dLat2 == 0) {
            ++slopeTests;
            ++fired;
        }
        if (std::signbit(dLon2) == std::signbit(dLon1) &&
            std::signbit(dLat2) == std::signbit(dLat1)) {
            volatile float slope1 = std::numeric_limits<float>::infinity();
            volatile float slope2 = std::numeric_limits<float>::infinity();
            if (dLon1 != 0) {
                slope1 = dLat1 / dLon1;
            }
            if (dLon2 != 0) {
                slope2 = dLat2 / dLon2;
            }
            volatile float difference = slope2 - slope1;
            if (-slopeSlop < difference && difference < slopeSlop) {
                ++slopeTests;
                ++fired;
            }
        }
        return fired;
    }

    GPSPoint last;
    GPSPoint previous;
};

} // namespace pelluvia::testing
