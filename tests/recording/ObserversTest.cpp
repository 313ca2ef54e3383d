// SPDX-License-Identifier: MIT

// Whom a recorder tells what: completion, warnings and errors through the main thread's queue,
// progress at once.

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <Pelluvia/system/MainThread.h>
#include <tests/recording/Spies.h>

#include <functional>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

using testing::pointAt;
using testing::ProgressSpy;
using Lines = std::vector<std::string>;

/// A target of both selectors.
struct Host {
    void completed(std::shared_ptr<RecordingGPSOutput> recorder) {
        finished.push_back(std::move(recorder));
    }
    void failed(Report report) { reports.push_back(std::move(report)); }

    std::vector<std::shared_ptr<RecordingGPSOutput>> finished;
    std::vector<Report> reports;
};

class RecordingObservers : public ::testing::Test {
  protected:
    RecordingObservers() { mainThread::drain(); }

    std::shared_ptr<Host> host = std::make_shared<Host>();
    std::shared_ptr<ProgressSpy> progress = std::make_shared<ProgressSpy>();
    std::shared_ptr<RecordingGPSOutput> recorder = RecordingGPSOutput::recorder();
};

TEST_F(RecordingObservers, CompletionIsQueuedWithTheRecorderItself) {
    recorder->setCompletionObject(host, &Host::completed);
    recorder->gpsStateChange(gpsState::finished);
    EXPECT_TRUE(host->finished.empty()) << "queued, not sent";
    EXPECT_EQ(mainThread::drain(), 1U);
    ASSERT_EQ(host->finished.size(), 1U);
    EXPECT_EQ(host->finished[0], recorder);
    host->finished.clear(); // they hold each other
}

TEST_F(RecordingObservers, OnlyStateZeroCompletes) {
    recorder->setCompletionObject(host, &Host::completed);
    for (const int state : {1, -1, 2, std::numeric_limits<int>::max()}) {
        recorder->gpsStateChange(state);
    }
    EXPECT_EQ(mainThread::drain(), 0U);
    recorder->gpsStateChange(0);
    recorder->gpsStateChange(0);
    EXPECT_EQ(mainThread::drain(), 2U) << "each time";
    host->finished.clear();
}

TEST_F(RecordingObservers, ACompletedRecordingStaysReadable) {
    recorder->newTrack(nullptr);
    recorder->endTransfer(transferKind::tracks);
    recorder->newRoute(nullptr);
    recorder->gpsStateChange(gpsState::finished);
    EXPECT_NE(recorder->receivedData(), nullptr);
    EXPECT_NE(recorder->currentRoute(), nullptr);
}

TEST_F(RecordingObservers, RecorderAndTargetLiveUntilTheMessageHasRun) {
    recorder->setCompletionObject(host, &Host::completed);
    recorder->setErrorObject(host, &Host::failed);
    recorder->gpsStateChange(gpsState::finished);
    recorder->warning(Report("lost"));
    recorder->setCompletionObject(std::shared_ptr<Host>(), &Host::completed);
    recorder->setErrorObject(std::shared_ptr<Host>(), &Host::failed);
    const std::weak_ptr<RecordingGPSOutput> watchedRecorder = recorder;
    const std::weak_ptr<Host> watchedHost = host;
    Host *target = host.get();
    recorder.reset();
    host.reset();
    EXPECT_FALSE(watchedRecorder.expired());
    ASSERT_FALSE(watchedHost.expired());
    {
        const std::shared_ptr<Host> during = watchedHost.lock();
        EXPECT_EQ(mainThread::drain(), 2U);
        ASSERT_EQ(target->finished.size(), 1U);
        EXPECT_EQ(target->finished[0], watchedRecorder.lock());
        ASSERT_EQ(target->reports.size(), 1U);
        EXPECT_EQ(std::get<std::string>(target->reports[0]), "lost");
    }
    EXPECT_TRUE(watchedHost.expired());
    EXPECT_TRUE(watchedRecorder.expired());
}

TEST_F(RecordingObservers, TheRecorderKeepsItsObserversAlive) {
    recorder->setCompletionObject(std::make_shared<Host>(), &Host::completed);
    const std::weak_ptr<Host> errorTarget = host;
    recorder->setErrorObject(std::exchange(host, nullptr), &Host::failed);
    const std::weak_ptr<ProgressSpy> watched = progress;
    recorder->setProgress(std::exchange(progress, nullptr));
    recorder->clear(); // leaves the observers alone
    recorder->startTransfer(nullptr, 1, nullptr);
    ASSERT_FALSE(watched.expired());
    EXPECT_EQ(watched.lock()->lines.size(), 1U);
    EXPECT_FALSE(errorTarget.expired());
    recorder.reset();
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(errorTarget.expired());
}

TEST_F(RecordingObservers, WarningsAreQueuedAndNotKept) {
    recorder->setErrorObject(host, &Host::failed);
    const ErrorPtr error = Error::make("domain", 5);
    recorder->warning(Report("message"));
    recorder->warning(Report(error));
    recorder->warning(Report());
    EXPECT_TRUE(host->reports.empty());
    EXPECT_EQ(mainThread::drain(), 3U);
    EXPECT_EQ(host->reports, (std::vector<Report>{Report("message"), Report(error), Report()}));
    EXPECT_EQ(recorder->lastError(), Report());
}

TEST_F(RecordingObservers, ErrorsAreQueuedAndTheLastIsKept) {
    recorder->setErrorObject(host, &Host::failed);
    const ErrorPtr first = Error::make("domain", 1);
    const ErrorPtr second = Error::make("domain", 2);
    recorder->error(Report(first));
    EXPECT_EQ(recorder->lastError(), Report(first)) << "before the main thread's turn";
    recorder->error(Report(second));
    EXPECT_TRUE(host->reports.empty());
    mainThread::drain();
    EXPECT_EQ(host->reports, (std::vector<Report>{Report(first), Report(second)}));
    EXPECT_EQ(recorder->lastError(), Report(second));
    recorder->error(recorder->lastError()); // itself
    EXPECT_EQ(recorder->lastError(), Report(second));
    recorder->clear();
    EXPECT_EQ(recorder->lastError(), Report());
    EXPECT_EQ(mainThread::drain(), 1U);
}

TEST_F(RecordingObservers, WithoutAnErrorObjectAnErrorIsNotEvenKept) {
    recorder->error(Report(Error::make("domain", 1)));
    recorder->warning(Report("message"));
    recorder->gpsStateChange(gpsState::finished);
    EXPECT_EQ(mainThread::drain(), 0U);
    EXPECT_EQ(recorder->lastError(), Report());

    recorder->setErrorObject(host, &Host::failed);
    const ErrorPtr kept = Error::make("domain", 2);
    recorder->error(Report(kept));
    recorder->setErrorObject(std::shared_ptr<Host>(), &Host::failed);
    recorder->error(Report(Error::make("domain", 3)));
    EXPECT_EQ(recorder->lastError(), Report(kept)) << "left as it was";
    mainThread::drain();
}

TEST_F(RecordingObservers, TheStartTellsKindAndExpectedCount) {
    recorder->setProgress(progress);
    Dictionary extra;
    recorder->startTransfer(nullptr, 1, nullptr);
    recorder->startTransfer(this, 2, &extra);
    extra.set(extras::count, Value(12));
    recorder->startTransfer(nullptr, 3, &extra);
    extra.set(extras::count, Value(7.9));
    recorder->startSending(this, -4, &extra);
    extra.set(extras::count, Value(std::int64_t{1} << 40U));
    recorder->startTransfer(nullptr, 1, &extra);
    extra.set(extras::count, Value("12"));
    recorder->startTransfer(nullptr, 1, &extra);
    EXPECT_EQ(progress->lines, (Lines{"start 1 0", "start 2 0", "start 3 12", "start -4 7",
                                      "start 1 2147483647", "start 1 0"}));
}

TEST_F(RecordingObservers, EachPointCountsOnceUnderTheKindOfTheStart) {
    recorder->setProgress(progress);
    recorder->startTransfer(nullptr, 7, nullptr);
    recorder->newTrack(nullptr);
    recorder->newTrackSegment();
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->wayPoint(pointAt(1, 1), nullptr);
    recorder->routePoint(pointAt(1, 1), nullptr); // without a route: lost, and counted
    recorder->newRoute(nullptr);
    recorder->wayPoint(pointAt(1, 1), nullptr); // a route point, counted once
    recorder->poiPoint(pointAt(1, 1), nullptr);
    recorder->endTransfer(2);
    EXPECT_EQ(progress->lines, (Lines{"start 7 0", "progress 7 1", "progress 7 2", "progress 7 3",
                                      "progress 7 4", "end 2"}));
}

TEST_F(RecordingObservers, TheEndStartsTheCountAnewAndForgetsTheKind) {
    recorder->setProgress(progress);
    recorder->wayPoint(pointAt(1, 1), nullptr); // between transfers: kind 0
    recorder->startTransfer(nullptr, 3, nullptr);
    recorder->wayPoint(pointAt(1, 1), nullptr); // the start does not reset the count
    recorder->endTransfer(99);
    recorder->wayPoint(pointAt(1, 1), nullptr);
    EXPECT_EQ(progress->lines,
              (Lines{"progress 0 1", "start 3 0", "progress 3 2", "end 99", "progress 0 1"}));
}

TEST_F(RecordingObservers, SendingReportsItsOwnNumbersAndKeepsTheCount) {
    recorder->setProgress(progress);
    recorder->startSending(nullptr, 2, nullptr);
    recorder->wayPoint(pointAt(1, 1), nullptr);
    recorder->sendProgress(41);
    recorder->sendProgress(-1);
    recorder->endSending(1);
    recorder->sendProgress(5);
    recorder->wayPoint(pointAt(1, 1), nullptr);
    EXPECT_EQ(progress->lines, (Lines{"start 2 0", "progress 2 1", "progress 2 41", "progress 2 -1",
                                      "end 1", "progress 0 5", "progress 0 2"}));
}

TEST_F(RecordingObservers, ClearLeavesTheTransferAndItsCountAlone) {
    recorder->setProgress(progress);
    recorder->startTransfer(nullptr, 1, nullptr);
    recorder->newTrack(nullptr);
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->clear();
    recorder->trackPoint(pointAt(1, 1), nullptr);
    EXPECT_EQ(progress->lines, (Lines{"start 1 0", "progress 1 1", "progress 1 2"}));
}

TEST_F(RecordingObservers, TheEndIsToldBeforeTheTrackIsFiled) {
    struct Asks : ProgressSpy {
        void gpxEndTransfer(int /*kind*/) override { sawOpenTrack = owner->currentTrack(); }
        RecordingGPSOutput *owner = nullptr;
        const Dictionary *sawOpenTrack = nullptr;
    };
    const auto asks = std::make_shared<Asks>();
    asks->owner = recorder.get();
    recorder->setProgress(asks);
    recorder->newTrack(nullptr);
    const Dictionary *track = recorder->currentTrack();
    recorder->endTransfer(transferKind::tracks);
    EXPECT_EQ(asks->sawOpenTrack, track);
    EXPECT_EQ(recorder->currentTrack(), nullptr);
}

TEST_F(RecordingObservers, WithoutAProgressObjectNothingIsTold) {
    recorder->startTransfer(nullptr, 1, nullptr);
    recorder->startSending(nullptr, 1, nullptr);
    recorder->sendProgress(1);
    recorder->endSending(1);
    recorder->endTransfer(1);
    recorder->setProgress(progress);
    recorder->setProgress(nullptr);
    recorder->wayPoint(pointAt(1, 1), nullptr);
    EXPECT_TRUE(progress->lines.empty());
}

/// The calls of which a progress object is told.
const std::vector<void (*)(RecordingGPSOutput &)> toldCalls = {
    [](RecordingGPSOutput &to) { to.startTransfer(nullptr, 1, nullptr); },
    [](RecordingGPSOutput &to) { to.wayPoint(GPSPoint(), nullptr); },
    [](RecordingGPSOutput &to) { to.trackPoint(GPSPoint(), nullptr); },
    [](RecordingGPSOutput &to) { to.routePoint(GPSPoint(), nullptr); },
    [](RecordingGPSOutput &to) { to.sendProgress(1); },
    [](RecordingGPSOutput &to) { to.startSending(nullptr, 1, nullptr); },
    [](RecordingGPSOutput &to) { to.endSending(1); },
    [](RecordingGPSOutput &to) { to.endTransfer(1); },
};

/// Does something at each message, and must be there still when that is done.
class Actor : public ProgressSpy, public std::enable_shared_from_this<Actor> {
  public:
    explicit Actor(std::function<void()> action) : action_(std::move(action)) {}
    void gpxStartTransfer(int kind, int count) override { act(kind + count); }
    void gpxProgress(int kind, int index) override { act(kind + index); }
    void gpxEndTransfer(int kind) override { act(kind); }

  private:
    void act(int sum) {
        const std::weak_ptr<Actor> self = weak_from_this();
        action_();
        ASSERT_FALSE(self.expired());
        lines.push_back("still here with " + std::to_string(sum));
    }
    std::function<void()> action_;
};

TEST_F(RecordingObservers, AProgressObjectMayTakeItselfAwayWhenItIsTold) {
    for (const auto call : toldCalls) {
        auto actor = std::make_shared<Actor>([&] { recorder->setProgress(nullptr); });
        const std::weak_ptr<Actor> watched = actor;
        recorder->setProgress(std::move(actor));
        call(*recorder);
        EXPECT_TRUE(watched.expired());
    }
}

TEST_F(RecordingObservers, AProgressObjectMayDropTheLastReferenceToTheRecorder) {
    for (const auto call : toldCalls) {
        recorder = RecordingGPSOutput::recorder();
        recorder->newTrack(nullptr); // to be filed at the end of the transfer
        const std::weak_ptr<RecordingGPSOutput> watched = recorder;
        recorder->setProgress(std::make_shared<Actor>([&] { recorder.reset(); }));
        RecordingGPSOutput &borrowed = *recorder;
        call(borrowed);
        EXPECT_TRUE(watched.expired());
    }
}

} // namespace
} // namespace pelluvia
