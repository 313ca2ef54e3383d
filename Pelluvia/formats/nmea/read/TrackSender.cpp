// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/TrackSender.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>

#include <chrono>

namespace pelluvia::nmea {

void TrackSender::add(const TrackSample &sample) {
    ++tally_.points;
    // A point without a time of day need not wait, unless others wait before it.
    if (isDated_ || !isHolding_ || (held_.empty() && !sample.instant)) {
        send(sample);
    } else if (held_.size() < mostHeld) {
        held_.push_back(sample);
    } else {
        isHolding_ = false;
        releaseHeld();
        send(sample);
    }
}

void TrackSender::setDated(milliseconds shift) {
    isDated_ = true;
    if (lastInstant_) {
        *lastInstant_ += shift;
    }
    for (TrackSample &sample : held_) {
        if (sample.instant) {
            *sample.instant += shift;
        }
    }
    releaseHeld();
}

void TrackSender::finish() {
    releaseHeld();
    if (isTransferring_) {
        isTransferring_ = false;
        receiver_.endTransfer(transferKind::tracks);
    }
}

void TrackSender::releaseHeld() {
    for (const TrackSample &sample : held_) {
        send(sample);
    }
    held_ = {};
}

bool TrackSender::startsSegment(const TrackSample &sample) const noexcept {
    if (sample.isFirstOfFix) {
        return true;
    }
    return sample.instant && lastInstant_ &&
           std::chrono::abs(*sample.instant - *lastInstant_) > longestGap_;
}

void TrackSender::send(const TrackSample &sample) {
    if (!isTransferring_) {
        isTransferring_ = true;
        receiver_.startTransfer(nullptr, transferKind::tracks, nullptr);
        receiver_.newTrack(nullptr);
        receiver_.newTrackSegment();
    } else if (startsSegment(sample)) {
        receiver_.newTrackSegment();
    }
    GPSPoint point = sample.point;
    if (sample.instant) {
        lastInstant_ = sample.instant;
        if (isDated_ || hasAssumedDay_) {
            point.time = std::chrono::floor<std::chrono::seconds>(*sample.instant).count();
        } else {
            ++tally_.pointsWithoutDate;
        }
    }
    extras_.removeAll();
    if (sample.speed) {
        extras_.set(extras::speed, Value(*sample.speed));
    }
    // Not an empty dictionary: it would show in a GPX file.
    receiver_.trackPoint(point, extras_.empty() ? nullptr : &extras_);
}

} // namespace pelluvia::nmea
