// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/ConversionProgress.h>

#include <tools/pelluvia/terminal/InterruptWatch.h>

namespace pelluvia::host {

void ConversionProgress::gpxStartTransfer(int kind, int count) {
    stopIfDue();
    if (bar_ != nullptr) {
        bar_->gpxStartTransfer(kind, count);
    }
}

void ConversionProgress::gpxProgress(int kind, int index) {
    InterruptWatch::noteHeadway();
    ++points_;
    if (index % stride == 0) {
        stopIfDue();
    }
    if (bar_ != nullptr) {
        bar_->gpxProgress(kind, index);
    }
}

void ConversionProgress::gpxEndTransfer(int kind) {
    if (bar_ != nullptr) {
        bar_->gpxEndTransfer(kind);
    }
}

void ConversionProgress::stopIfDue() {
    if (!stop_.stop_requested() && mustStop_()) {
        stop_.request_stop();
    }
}

} // namespace pelluvia::host
