// SPDX-License-Identifier: MIT

#include <Pelluvia/model/TeeReceiver.h>

#include <utility>

namespace pelluvia {

TeeReceiver::TeeReceiver(std::vector<std::shared_ptr<GPSOutputReceiver>> receivers)
    : receivers_(std::move(receivers)) {
    std::erase(receivers_, nullptr);
}

TeeReceiver::~TeeReceiver() = default;

void TeeReceiver::newTrackSegment() {
    for (const auto &each : receivers_) {
        each->newTrackSegment();
    }
}

void TeeReceiver::newTrack(const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->newTrack(extra);
    }
}

void TeeReceiver::newRoute(const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->newRoute(extra);
    }
}

void TeeReceiver::trackPoint(GPSPoint point, const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->trackPoint(point, extra);
    }
}

void TeeReceiver::wayPoint(GPSPoint point, const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->wayPoint(point, extra);
    }
}

void TeeReceiver::routePoint(GPSPoint point, const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->routePoint(point, extra);
    }
}

void TeeReceiver::poiPoint(GPSPoint point, const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->poiPoint(point, extra);
    }
}

void TeeReceiver::lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) {
    for (const auto &each : receivers_) {
        each->lapInfoStart(start, end, extras);
    }
}

void TeeReceiver::startTransfer(const void *sender, int kind, const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->startTransfer(sender, kind, extra);
    }
}

void TeeReceiver::endTransfer(int kind) {
    for (const auto &each : receivers_) {
        each->endTransfer(kind);
    }
}

void TeeReceiver::currentPosition(GPSPoint point, int accuracy) {
    for (const auto &each : receivers_) {
        each->currentPosition(point, accuracy);
    }
}

void TeeReceiver::warning(const Report &object) {
    for (const auto &each : receivers_) {
        each->warning(object);
    }
}

void TeeReceiver::error(const Report &error) {
    for (const auto &each : receivers_) {
        each->error(error);
    }
}

void TeeReceiver::gpsStateChange(int state) {
    for (const auto &each : receivers_) {
        each->gpsStateChange(state);
    }
}

void TeeReceiver::startSending(const void *sender, int kind, const Dictionary *extra) {
    for (const auto &each : receivers_) {
        each->startSending(sender, kind, extra);
    }
}

void TeeReceiver::sendProgress(int count) {
    for (const auto &each : receivers_) {
        each->sendProgress(count);
    }
}

void TeeReceiver::endSending(int kind) {
    for (const auto &each : receivers_) {
        each->endSending(kind);
    }
}

} // namespace pelluvia
