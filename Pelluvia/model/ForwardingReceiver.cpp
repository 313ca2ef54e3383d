// SPDX-License-Identifier: MIT

#include <Pelluvia/model/ForwardingReceiver.h>

#include <Pelluvia/model/NullReceiver.h>

#include <utility>

namespace pelluvia {

ForwardingReceiver::ForwardingReceiver(std::shared_ptr<GPSOutputReceiver> next)
    : next_(next != nullptr ? std::move(next) : std::make_shared<NullReceiver>()) {}

ForwardingReceiver::~ForwardingReceiver() = default;

void ForwardingReceiver::newTrackSegment() {
    next_->newTrackSegment();
}

void ForwardingReceiver::newTrack(const Dictionary *extra) {
    next_->newTrack(extra);
}

void ForwardingReceiver::newRoute(const Dictionary *extra) {
    next_->newRoute(extra);
}

void ForwardingReceiver::trackPoint(GPSPoint point, const Dictionary *extra) {
    next_->trackPoint(point, extra);
}

void ForwardingReceiver::wayPoint(GPSPoint point, const Dictionary *extra) {
    next_->wayPoint(point, extra);
}

void ForwardingReceiver::routePoint(GPSPoint point, const Dictionary *extra) {
    next_->routePoint(point, extra);
}

void ForwardingReceiver::poiPoint(GPSPoint point, const Dictionary *extra) {
    next_->poiPoint(point, extra);
}

void ForwardingReceiver::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    next_->lapInfoStart(start, end, extras);
}

void ForwardingReceiver::startTransfer(const void *sender, int kind, const Dictionary *extra) {
    next_->startTransfer(sender, kind, extra);
}

void ForwardingReceiver::endTransfer(int kind) {
    next_->endTransfer(kind);
}

void ForwardingReceiver::currentPosition(GPSPoint point, int accuracy) {
    next_->currentPosition(point, accuracy);
}

void ForwardingReceiver::warning(const Report &object) {
    next_->warning(object);
}

void ForwardingReceiver::error(const Report &error) {
    next_->error(error);
}

void ForwardingReceiver::gpsStateChange(int state) {
    next_->gpsStateChange(state);
}

void ForwardingReceiver::startSending(const void *sender, int kind, const Dictionary *extra) {
    next_->startSending(sender, kind, extra);
}

void ForwardingReceiver::sendProgress(int count) {
    next_->sendProgress(count);
}

void ForwardingReceiver::endSending(int kind) {
    next_->endSending(kind);
}

} // namespace pelluvia
