// SPDX-License-Identifier: MIT

#include <Pelluvia/model/ReceiverObservers.h>

#include <Pelluvia/model/NullReceiver.h>

#include <functional>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

/// The receiver of the class's description.
class PointCounter : public NullReceiver, public std::enable_shared_from_this<PointCounter> {
  public:
    ReceiverObservers<PointCounter> observers; // the host sets them

    void startTransfer(const void * /*sender*/, int kind, const Dictionary *extra) override {
        const auto self = weak_from_this().lock();
        observers.tellStart(kind, extra);
    }
    void trackPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {
        observers.countItem();
    }
    void endTransfer(int kind) override {
        const auto self = weak_from_this().lock();
        observers.tellEnd(kind);
        observers.resetCount();
    }
    void warning(const Report &object) override { observers.report(object); }
    void error(const Report &error) override { observers.report(error); }
    void gpsStateChange(int state) override {
        if (state == gpsState::finished) {
            observers.complete(shared_from_this());
        }
    }
};

/// Keeps what it is told, and does something at each message.
class Watcher : public GPXExporterProgress {
  public:
    void gpxStartTransfer(int kind, int count) override { add("start", kind, count); }
    void gpxProgress(int kind, int index) override { add("progress", kind, index); }
    void gpxEndTransfer(int kind) override { add("end", kind, 0); }

    std::vector<std::string> lines;
    std::function<void()> onMessage = [] {};

  private:
    void add(const std::string &what, int kind, int number) {
        onMessage();
        lines.push_back(what + " " + std::to_string(kind) + " " + std::to_string(number));
    }
};

using Lines = std::vector<std::string>;

void transfer(GPSOutputReceiver &to) {
    Dictionary extra;
    extra.set(extras::count, Value(5));
    to.startTransfer(nullptr, transferKind::tracks, &extra);
    to.trackPoint({}, nullptr);
    to.trackPoint({}, nullptr);
    to.endTransfer(transferKind::tracks);
}

TEST(ReceiverObservers, TellProgressAtOnceAndCountEachTransferAnew) {
    const auto counter = std::make_shared<PointCounter>();
    const auto watcher = std::make_shared<Watcher>();
    transfer(*counter); // nobody watches, and the count is reset all the same
    counter->observers.setProgress(watcher);
    transfer(*counter);
    EXPECT_EQ(watcher->lines, (Lines{"start 1 5", "progress 1 1", "progress 1 2", "end 1 0"}));
}

TEST(ReceiverObservers, QueueReportsAndCompletion) {
    mainThread::drain();
    const auto counter = std::make_shared<PointCounter>();
    Lines told;
    counter->observers.setErrorObject(
        [&](const Report &report) { told.push_back(std::get<std::string>(report)); });
    counter->observers.setCompletionObject([&](const std::shared_ptr<PointCounter> &receiver) {
        told.emplace_back(receiver == counter ? "completed" : "somebody else");
    });
    counter->warning(Report("a text"));
    counter->gpsStateChange(gpsState::finished);
    EXPECT_EQ(told, Lines());
    EXPECT_EQ(mainThread::drain(), 2U);
    EXPECT_EQ(told, (Lines{"a text", "completed"}));
}

TEST(ReceiverObservers, SayWhetherAReportReachesAnybody) {
    ReceiverObservers<PointCounter> observers;
    EXPECT_FALSE(observers.report(Report("lost")));
    observers.setErrorObject([](const Report & /*report*/) {});
    EXPECT_TRUE(observers.report(Report("told")));
    observers.setErrorObject(nullptr);
    EXPECT_FALSE(observers.report(Report("lost")));
    EXPECT_EQ(mainThread::drain(), 1U);
}

TEST(ReceiverObservers, MayTakeThemselvesAwayWhenTheyAreTold) {
    const auto counter = std::make_shared<PointCounter>();
    auto watcher = std::make_shared<Watcher>();
    watcher->onMessage = [&] { counter->observers.setProgress(nullptr); };
    const std::weak_ptr<Watcher> watched = watcher;
    counter->observers.setProgress(std::move(watcher));
    transfer(*counter);
    EXPECT_TRUE(watched.expired());
}

TEST(ReceiverObservers, MayLetGoOfTheReceiverWhenTheyAreTold) {
    const std::function<void(PointCounter &)> calls[] = {
        [](PointCounter &to) { to.startTransfer(nullptr, 1, nullptr); },
        [](PointCounter &to) { to.trackPoint({}, nullptr); },
        [](PointCounter &to) { to.endTransfer(1); },
    };
    for (const auto &call : calls) {
        auto counter = std::make_shared<PointCounter>();
        const std::weak_ptr<PointCounter> receiver = counter;
        auto watcher = std::make_shared<Watcher>();
        watcher->onMessage = [&] { counter.reset(); };
        counter->observers.setProgress(std::move(watcher));
        PointCounter &borrowed = *counter;
        call(borrowed);
        EXPECT_TRUE(receiver.expired());
    }
}

} // namespace
} // namespace pelluvia
