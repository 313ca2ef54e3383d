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
        next_->newTrackSegment();
    }
}

void CallFilter::newTrack(const Dictionary *extra) {
    if (!dropsTransfer_) {
        next_->newTrack(extra);
    }
}

void CallFilter::newRoute(const Dictionary *extra) {
    if (!dropsTransfer_) {
        next_->newRoute(extra);
    }
}

void CallFilter::trackPoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        next_->trackPoint(point, extra);
    }
}

void CallFilter::wayPoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        next_->wayPoint(point, extra);
    }
}

void CallFilter::routePoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        next_->routePoint(point, extra);
    }
}

void CallFilter::poiPoint(GPSPoint point, const Dictionary *extra) {
    if (!dropsTransfer_) {
        next_->poiPoint(point, extra);
    }
}

void CallFilter::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    if (!dropsTransfer_) {
        next_->lapInfoStart(start, end, extras);
    }
}

void CallFilter::startTransfer(const void *sender, int kind, const Dictionary *extra) {
    dropsTransfer_ = !isChosen(kind);
    openTransfer_ = kind;
    if (!dropsTransfer_) {
        next_->startTransfer(sender, kind, extra);
    }
}

void CallFilter::endTransfer(int kind) {
    if (!dropsTransfer_) {
        next_->endTransfer(kind);
    }
    dropsTransfer_ = false;
    openTransfer_.reset();
}

void CallFilter::currentPosition(GPSPoint point, int accuracy) {
    next_->currentPosition(point, accuracy);
}

void CallFilter::warning(const Report &object) {
    next_->warning(object);
}

void CallFilter::error(const Report &error) {
    next_->error(error);
}

void CallFilter::gpsStateChange(int state) {
    if (!holdsFinish_ || state != gpsState::finished) {
        next_->gpsStateChange(state);
    }
}

void CallFilter::startSending(const void *sender, int kind, const Dictionary *extra) {
    dropsSending_ = !isChosen(kind);
    if (!dropsSending_) {
        next_->startSending(sender, kind, extra);
    }
}

void CallFilter::sendProgress(int count) {
    if (!dropsSending_) {
        next_->sendProgress(count);
    }
}

void CallFilter::endSending(int kind) {
    if (!dropsSending_) {
        next_->endSending(kind);
    }
    dropsSending_ = false;
}

} // namespace pelluvia::host
