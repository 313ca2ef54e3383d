// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <Pelluvia/model/TransferKind.h>
#include <tests/gpxwriter/WriterTest.h>

#include <functional>
#include <gmock/gmock.h>
#include <thread>
#include <vector>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr GPSPoint somewhere{1, 2, 0, 0, 0};

/// Keeps what it is told, as text.
class SpyProgress : public GPXExporterProgress {
  public:
    void gpxStartTransfer(int kind, int count) override { add("start", kind, count); }
    void gpxProgress(int kind, int index) override { add("progress", kind, index); }
    void gpxEndTransfer(int kind) override { messages.push_back("end " + std::to_string(kind)); }

    std::vector<std::string> messages;
    std::vector<std::thread::id> threads;

  private:
    void add(const std::string &what, int kind, int number) {
        messages.push_back(what + " " + std::to_string(kind) + " " + std::to_string(number));
        threads.push_back(std::this_thread::get_id());
    }
};

/// Keeps whom it heard from and what about.
class SpyTarget {
  public:
    void completed(std::shared_ptr<GPXExporter> exporter) { completions.push_back(exporter.get()); }
    void failed(Report report) { reports.push_back(std::move(report)); }

    std::vector<const GPXExporter *> completions;
    std::vector<Report> reports;
};

/// An exporter with all its observers.
class ExporterObservers : public ::testing::Test {
  protected:
    void SetUp() override {
        mainThread::drain();
        ASSERT_NE(exporter, nullptr);
        exporter->setProgress(progress);
        exporter->setCompletionObject(target, &SpyTarget::completed);
        exporter->setErrorObject(target, &SpyTarget::failed);
    }
    void TearDown() override { mainThread::drain(); }

    testing::TemporaryFolder folder;
    std::string path = folder.file("out.gpx");
    std::shared_ptr<GPXExporter> exporter = GPXExporter::initWithPath(path);
    std::shared_ptr<SpyProgress> progress = std::make_shared<SpyProgress>();
    std::shared_ptr<SpyTarget> target = std::make_shared<SpyTarget>();
};

TEST_F(ExporterObservers, ATransferOfThreeTrackPointsReportsEach) {
    const Dictionary extra = dictionaryOf(extras::count, 2);
    exporter->startTransfer(nullptr, transferKind::tracks, &extra);
    exporter->newTrack(nullptr);
    exporter->newTrackSegment();
    for (int i = 0; i < 3; ++i) {
        exporter->trackPoint(somewhere, nullptr);
    }
    exporter->endTransfer(transferKind::tracks);
    EXPECT_THAT(progress->messages,
                ElementsAre("start 1 2", "progress 1 1", "progress 1 2", "progress 1 3", "end 1"));
}

TEST_F(ExporterObservers, WithoutACountNoneIsExpected) {
    const Dictionary empty;
    const Dictionary text = dictionaryOf(extras::count, "5"sv);
    exporter->startTransfer(nullptr, 1, nullptr);
    exporter->startTransfer(nullptr, 9, &empty);
    exporter->startTransfer(nullptr, 3, &text);
    EXPECT_THAT(progress->messages, ElementsAre("start 1 0", "start 9 0", "start 3 0"));
}

TEST_F(ExporterObservers, RoutePointsAndWaypointsCountAndOtherPointsDoNot) {
    exporter->startTransfer(nullptr, transferKind::routes, nullptr);
    exporter->routePoint(somewhere, nullptr);
    exporter->wayPoint(somewhere, nullptr);
    exporter->lapInfoStart(somewhere, somewhere, nullptr);
    exporter->poiPoint(somewhere, nullptr);
    exporter->currentPosition(somewhere, 1);
    exporter->newTrackSegment();
    exporter->trackPoint({91.5, 0, 0, 0, 0}, nullptr);
    EXPECT_THAT(progress->messages,
                ElementsAre("start 2 0", "progress 2 1", "progress 2 2", "progress 2 3"));
}

TEST_F(ExporterObservers, OnlyTheEndOfATransferStartsTheCountAnew) {
    exporter->trackPoint(somewhere, nullptr);
    exporter->startTransfer(nullptr, 3, nullptr);
    exporter->wayPoint(somewhere, nullptr);
    exporter->endTransfer(7);
    exporter->wayPoint(somewhere, nullptr);
    EXPECT_THAT(progress->messages,
                ElementsAre("progress 0 1", "start 3 0", "progress 3 2", "end 7", "progress 3 1"));
}

TEST_F(ExporterObservers, TheCountAdvancesWhileNobodyWatches) {
    exporter->setProgress(nullptr);
    exporter->startTransfer(nullptr, 1, nullptr);
    exporter->trackPoint(somewhere, nullptr);
    exporter->setProgress(progress);
    exporter->trackPoint(somewhere, nullptr);
    EXPECT_THAT(progress->messages, ElementsAre("progress 1 2"));
}

TEST_F(ExporterObservers, ProgressRunsOnTheCallersThread) {
    std::thread::id producer;
    std::thread([&] {
        producer = std::this_thread::get_id();
        exporter->startTransfer(nullptr, 1, nullptr);
        exporter->trackPoint(somewhere, nullptr);
    }).join();
    EXPECT_THAT(progress->threads, ElementsAre(producer, producer));
}

TEST_F(ExporterObservers, ProgressGoesOnWithoutADocument) {
    exporter->gpsStateChange(gpsState::finished);
    exporter->startTransfer(nullptr, 1, nullptr);
    exporter->trackPoint(somewhere, nullptr);
    exporter->endTransfer(1);
    EXPECT_THAT(progress->messages, ElementsAre("start 1 0", "progress 1 1", "end 1"));
}

TEST_F(ExporterObservers, SendingMakesNoProgress) {
    exporter->startSending(nullptr, 1, nullptr);
    exporter->sendProgress(3);
    exporter->endSending(1);
    EXPECT_THAT(progress->messages, IsEmpty());
}

TEST_F(ExporterObservers, CompletionIsQueuedWithTheExporter) {
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_THAT(target->completions, IsEmpty());
    EXPECT_TRUE(testing::readFile(path).ends_with(documentEnd));
    EXPECT_EQ(mainThread::drain(), 1U);
    EXPECT_THAT(target->completions, ElementsAre(exporter.get()));
}

TEST_F(ExporterObservers, ASecondFinishedStateCompletesAgain) {
    exporter->gpsStateChange(gpsState::finished);
    exporter->gpsStateChange(gpsState::finished);
    mainThread::drain();
    EXPECT_THAT(target->completions, ElementsAre(exporter.get(), exporter.get()));
}

TEST_F(ExporterObservers, OtherStatesDoNotComplete) {
    exporter->gpsStateChange(1);
    exporter->gpsStateChange(-1);
    EXPECT_EQ(mainThread::drain(), 0U);
}

TEST_F(ExporterObservers, DestroyingTheExporterDoesNotComplete) {
    exporter.reset();
    EXPECT_EQ(mainThread::drain(), 0U);
    EXPECT_THAT(target->completions, IsEmpty());
}

TEST_F(ExporterObservers, WarningsAndErrorsAreQueuedInOrder) {
    const ErrorPtr error = Error::make("domain", 7);
    exporter->warning(Report("a text"));
    exporter->error(Report(error));
    exporter->warning(Report());
    EXPECT_THAT(target->reports, IsEmpty());
    EXPECT_EQ(mainThread::drain(), 3U);
    EXPECT_THAT(target->reports, ElementsAre(Report("a text"), Report(error), Report()));
}

TEST_F(ExporterObservers, NoTargetsMakeNoMessages) {
    exporter->setCompletionObject(std::shared_ptr<SpyTarget>(), &SpyTarget::completed);
    exporter->setErrorObject(std::shared_ptr<SpyTarget>(), &SpyTarget::failed);
    exporter->warning(Report("a text"));
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_EQ(mainThread::drain(), 0U);
}

TEST_F(ExporterObservers, TheExporterHoldsItsObservers) {
    const std::weak_ptr<SpyTarget> weakTarget = target;
    const std::weak_ptr<SpyProgress> weakProgress = progress;
    target.reset();
    progress.reset();
    EXPECT_FALSE(weakTarget.expired());
    EXPECT_FALSE(weakProgress.expired());
    exporter.reset();
    EXPECT_TRUE(weakTarget.expired());
    EXPECT_TRUE(weakProgress.expired());
}

TEST_F(ExporterObservers, AQueuedMessageKeepsTargetAndExporterAlive) {
    const std::weak_ptr<SpyTarget> weakTarget = target;
    const std::weak_ptr<GPXExporter> weakExporter = exporter;
    exporter->gpsStateChange(gpsState::finished);
    exporter.reset();
    target.reset();
    ASSERT_FALSE(weakTarget.expired());
    ASSERT_FALSE(weakExporter.expired());
    const std::shared_ptr<SpyTarget> revived = weakTarget.lock();
    mainThread::drain();
    EXPECT_THAT(revived->completions, ::testing::SizeIs(1));
    EXPECT_TRUE(weakExporter.expired());
}

using Calls = std::vector<void (*)(GPXExporter &)>;

/// The calls of a producer of which a progress object is told.
const Calls toldCalls = {
    [](GPXExporter &to) { to.startTransfer(nullptr, 1, nullptr); },
    [](GPXExporter &to) { to.trackPoint(somewhere, nullptr); },
    [](GPXExporter &to) { to.wayPoint(somewhere, nullptr); },
    [](GPXExporter &to) { to.routePoint(somewhere, nullptr); },
    [](GPXExporter &to) { to.endTransfer(1); },
};

/// Does something when it is told, and then still knows what it is.
class Actor : public GPXExporterProgress {
  public:
    explicit Actor(std::function<void()> action) : action_(std::move(action)) {}
    void gpxStartTransfer(int kind, int count) override { act(kind + count); }
    void gpxProgress(int kind, int index) override { act(kind + index); }
    void gpxEndTransfer(int kind) override { act(kind); }

    std::string text;

  private:
    void act(int sum) {
        action_();
        text += "still here with " + std::to_string(sum);
    }
    std::function<void()> action_;
};

TEST_F(ExporterObservers, AProgressObjectMayTakeItselfAwayWhenItIsTold) {
    for (const auto call : toldCalls) {
        std::weak_ptr<Actor> watched;
        auto actor = std::make_shared<Actor>([&] {
            exporter->setProgress(nullptr);
            EXPECT_FALSE(watched.expired()) << "while it is told";
        });
        watched = actor;
        exporter->setProgress(std::move(actor));
        call(*exporter);
        EXPECT_TRUE(watched.expired());
    }
}

// A host may be done with the exporter at the end of a transfer, or give up in the midst of one.
TEST_F(ExporterObservers, AProgressObjectMayDropTheLastReferenceToTheExporter) {
    for (const auto call : toldCalls) {
        exporter = GPXExporter::initWithPath(path);
        exporter->setProgress(std::make_shared<Actor>([&] { exporter.reset(); }));
        GPXExporter &borrowed = *exporter;
        call(borrowed);
        EXPECT_EQ(exporter, nullptr);
        EXPECT_TRUE(testing::readFile(path).ends_with(documentEnd));
    }
}

} // namespace
} // namespace pelluvia
