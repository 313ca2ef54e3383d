// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/CallFilter.h>

namespace pelluvia::host {

bool CallFilter::isChosen(int kind) const noexcept {
    switch (kind) {
    case transferKind::tracks:
        return only_.tracks;
    case transferKind::routes:
        return only_.routes;
    case transferKind::waypoints:
        return only_.waypoints;
    default:
        return only_.isEverything();
    }
}

void CallFilter::endOpenTransfer() {
    if (openTransfer_) {
        endTransfer(*openTransfer_);
    }
}

void CallFilter::newTrackSegment() {
    if (!dropsTransfer_) {
        ForwardingReceiver::newTrackSegment();
    }
}

void CallFilter::newTrack(const Dictionary *extra) {
    if (!dropsTransfer_) {
        ForwardingReceiver::newTrack(extra);
    }
}

void CallFilter::newRoute(const Dictionary *extra) {
    if (!dropsTransfer_) {
        ForwardingReceiver::newRoute(extra);
    }
}

void CallFilter::trackPoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        ForwardingReceiver::trackPoint(point, extra);
    }
}

void CallFilter::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        ForwardingReceiver::wayPoint(point, extra);
    }
}

void CallFilter::routePoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        ForwardingReceiver::routePoint(point, extra);
    }
}

void CallFilter::poiPoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        ForwardingReceiver::poiPoint(point, extra);
    }
}

void CallFilter::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    if (!dropsTransfer_) {
        ForwardingReceiver::lapInfoStart(start, end, extras);
    }
}

void CallFilter::startTransfer(const void *sender, int kind, const Dictionary *extra) {
    dropsTransfer_ = !isChosen(kind);
    openTransfer_ = kind;
    if (!dropsTransfer_) {
        ForwardingReceiver::startTransfer(sender, kind, extra);
    }
}

void CallFilter::endTransfer(int kind) {
    if (!dropsTransfer_) {
        ForwardingReceiver::endTransfer(kind);
    }
    dropsTransfer_ = false;
    openTransfer_.reset();
}

void CallFilter::gpsStateChange(int state) {
    if (!holdsFinish_ || state != gpsState::finished) {
        ForwardingReceiver::gpsStateChange(state);
    }
}

void CallFilter::startSending(const void *sender, int kind, const Dictionary *extra) {
    dropsSending_ = !isChosen(kind);
    if (!dropsSending_) {
        ForwardingReceiver::startSending(sender, kind, extra);
    }
}

void CallFilter::sendProgress(int count) {
    if (!dropsSending_) {
        ForwardingReceiver::sendProgress(count);
    }
}

void CallFilter::endSending(int kind) {
    if (!dropsSending_) {
        ForwardingReceiver::endSending(kind);
    }
    dropsSending_ = false;
}

} // namespace pelluvia::host
