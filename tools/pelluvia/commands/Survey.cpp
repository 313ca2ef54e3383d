// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/Survey.h>

#include <algorithm>
#include <cmath>

namespace pelluvia::host {

void Survey::addPosition(double latitude, double longitude) {
    const bool isOnGlobe = std::abs(latitude) <= 90.0 && std::abs(longitude) <= 180.0;
    if (!isOnGlobe) { // nor is what is not a number
        return;
    }
    if (!bounds) {
        bounds = Bounds{latitude, longitude, latitude, longitude};
    }
    bounds->minLatitude = std::min(bounds->minLatitude, latitude);
    bounds->minLongitude = std::min(bounds->minLongitude, longitude);
    bounds->maxLatitude = std::max(bounds->maxLatitude, latitude);
    bounds->maxLongitude = std::max(bounds->maxLongitude, longitude);
}

void Survey::addTime(std::int64_t seconds) {
    if (seconds == 0) {
        return;
    }
    if (!times) {
        times = TimeSpan{seconds, seconds};
    }
    times->first = std::min(times->first, seconds);
    times->last = std::max(times->last, seconds);
}

} // namespace pelluvia::host
