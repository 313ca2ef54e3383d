// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/GPXImportCounter.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace pelluvia::host {

/// Degrees; north and east positive.
struct Bounds {
    double minLatitude;
    double minLongitude;
    double maxLatitude;
    double maxLongitude;
};

/// Seconds since 1970-01-01 00:00:00 UTC.
struct TimeSpan {
    std::int64_t first;
    std::int64_t last;
};

/// What a source holds, of whatever format.
struct Survey {
    std::shared_ptr<GPXImportCounter> counter = GPXImportCounter::init(); ///< never null
    std::int64_t trackPoints = 0;
    std::optional<Bounds> bounds; ///< of all points
    std::optional<TimeSpan> times;

    /// Adds the position of a point; one off the globe, or not a number, does not count.
    void addPosition(double latitude, double longitude);
    /// Adds the time of a point; 0, which stands for none, does not count.
    void addTime(std::int64_t seconds);
};

} // namespace pelluvia::host
