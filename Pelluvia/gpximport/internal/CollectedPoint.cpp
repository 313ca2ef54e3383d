// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/CollectedPoint.h>

namespace pelluvia {

void CollectedPoint::readTime(std::string_view text) noexcept {
    Scanner scanner(text);
    time_ = scanISO8601DateAsSeconds(scanner, day_).value_or(0);
}

GPSPoint CollectedPoint::read() noexcept {
    if (!timeText_.text().empty()) {
        readTime(timeText_.text());
        timeText_.clear();
    }
    GPSPoint point;
    point.latitude = latitude_.value();
    point.longitude = longitude_.value();
    point.altitude = altitude_.value();
    point.time = time_;
    return point;
}

} // namespace pelluvia
