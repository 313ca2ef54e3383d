// SPDX-License-Identifier: MIT

// A program that is compiled without run-time type information and without exceptions, with every
// warning as an error, and includes every installed header.

#include "all.h"

#include <cstdio>
#include <memory>

using namespace pelluvia;

namespace {

/// A receiver and an observer of somebody else's.
class Counter : public NullReceiver {
  public:
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        points += point.latitude < dataOnlyLatitude && extra != nullptr ? 1 : 0;
    }
    void told(const Report &) const noexcept {}
    int points = 0;
};

} // namespace

int main() {
    const auto counter = std::make_shared<Counter>();
    const Dictionary extras{{extras::name, "Morning ride"}, {extras::hr, 121U}, {Key("own"), true}};
    const auto recorder = RecordingGPSOutput::recorder();
    recorder->startTransfer(nullptr, transferKind::tracks, nullptr);
    recorder->newTrack(&extras);
    recorder->trackPoint({.latitude = 47.37, .longitude = 8.54}, &extras);
    recorder->endTransfer(transferKind::tracks);
    recorder->pushAllDataToOutput(*counter);

    const Value wrapped = Value::wrapping(GPSPoint{.latitude = 47.37});
    const auto *point = wrapped.unwrap<GPSPoint>();
    const MessageTarget<Report> target(std::weak_ptr<Counter>(counter), &Counter::told);
    mainThread::perform(target, Report());
    if (counter->points != 1 || point == nullptr || mainThread::drain() != 1) {
        return 1;
    }
    std::puts("strict");
    return 0;
}
