// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/TrackDecoder.h>

#include <chrono>
#include <utility>

namespace pelluvia::nmea {

namespace {

// Receivers send the time of a ZDA as it is when they send it, a little after that of the fix.
constexpr milliseconds sameMoment = std::chrono::seconds(1);

} // namespace

void TrackDecoder::add(const FixSentence &sentence) {
    if (!epoch_.accepts(sentence)) {
        close();
    }
    if (sentence.type != SentenceType::ZDA) {
        epoch_.add(sentence);
    }
    // A receiver that does not know where it is may not know the time either.
    if (!sentence.time || sentence.isVoid) {
        return;
    }
    if (sentence.day) {
        setDate(*sentence.day, *sentence.time);
    } else if (!epoch_.instant && sentence.isPositional()) {
        epoch_.instant = clock_.instantOf(*sentence.time);
    }
}

void TrackDecoder::setDate(std::int64_t day, milliseconds timeOfDay) {
    const bool isFirst = !clock_.isDated();
    const milliseconds shift = clock_.setDate(day, timeOfDay);
    if (isFirst) {
        if (epoch_.instant) {
            *epoch_.instant += shift;
        }
        sender_.setDated(shift);
    }
    if (epoch_.time() && std::chrono::abs(*epoch_.time() - timeOfDay) < sameMoment) {
        epoch_.instant = day * wholeDay + *epoch_.time();
    }
}

void TrackDecoder::close() {
    const Epoch epoch = std::exchange(epoch_, {});
    if (epoch.isVoid()) {
        hasLostFix_ = true;
        sender_.addWithoutFix();
    } else if (const auto &position = epoch.position()) {
        sender_.add({.point = {.latitude = position->latitude,
                               .longitude = position->longitude,
                               // 0.0 says that there is none, so the sea's own level has none
                               .altitude = epoch.altitude().value_or(0.0)},
                     .speed = epoch.speed(),
                     .instant = epoch.instant,
                     .isFirstOfFix = std::exchange(hasLostFix_, false)});
    }
}

} // namespace pelluvia::nmea
