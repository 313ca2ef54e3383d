// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/UTCClock.h>

#include <utility>

namespace pelluvia::nmea {

milliseconds UTCClock::instantOf(milliseconds timeOfDay) noexcept {
    if (lastTime_ && timeOfDay < *lastTime_ - wholeDay / 2) {
        ++day_;
    }
    lastTime_ = timeOfDay;
    return day_ * wholeDay + timeOfDay;
}

milliseconds UTCClock::setDate(std::int64_t day, milliseconds timeOfDay) noexcept {
    const milliseconds undated = instantOf(timeOfDay);
    const milliseconds shift = day * wholeDay + timeOfDay - undated;
    day_ = day;
    return std::exchange(isDated_, true) ? milliseconds(0) : shift;
}

} // namespace pelluvia::nmea
