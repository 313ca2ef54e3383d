// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/calllog/CallLogWriter.h>

#include <tests/formats/calllog/CallLogs.h>

#include <Pelluvia/formats/calllog/internal/CallLogLimits.h>

#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/values/Array.h>

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::TemporaryFolder;
using testing::writtenLog;

constexpr GPSPoint somewhere = {47.1, 8.5, 430.0, 1591000000, 0};
#define SOMEWHERE R"({"latitude":47.1,"longitude":8.5,"altitude":430.0,"time":1591000000,"test":0})"

TEST(CallLogWriter, WritesOneLineForEachCall) {
    Dictionary count;
    count.set(extras::count, Value(3));
    Dictionary ride;
    ride.set(extras::name, Value("Morning ride"));
    ride.set(extras::index, Value(7));
    Dictionary sample;
    sample.set(extras::hr, Value(120));
    sample.set(extras::temp, Value(21.5F));

    const std::string log = writtenLog([&](CallLogWriter &writer) {
        writer.startTransfer(&writer, 1, &count);
        writer.newTrack(&ride);
        writer.newTrackSegment();
        writer.trackPoint(somewhere, &sample);
        writer.wayPoint(somewhere, nullptr);
        writer.routePoint(somewhere, nullptr);
        writer.poiPoint(somewhere, nullptr);
        writer.newRoute(nullptr);
        writer.lapInfoStart(somewhere, {.latitude = 91.0}, &count);
        writer.endTransfer(1);
        writer.currentPosition(somewhere, 5);
        writer.warning(Report("text"));
        writer.error(Report());
        writer.gpsStateChange(0);
        writer.startSending(nullptr, 1, &count);
        writer.sendProgress(5);
        writer.endSending(1);
    });
    EXPECT_EQ(log, R"({"call":"startTransfer:kind:extra:","kind":1,"extra":{"count":3}})"
                   "\n"
                   R"({"call":"newTrack:","extra":{"name":"Morning ride","index":7}})"
                   "\n"
                   R"({"call":"newTrackSegment"})"
                   "\n"
                   R"({"call":"trackPoint:extra:","point":)" SOMEWHERE
                   R"(,"extra":{"hr":120,"temp":21.5}})"
                   "\n"
                   R"({"call":"wayPoint:extra:","point":)" SOMEWHERE R"(,"extra":null})"
                   "\n"
                   R"({"call":"routePoint:extra:","point":)" SOMEWHERE R"(,"extra":null})"
                   "\n"
                   R"({"call":"poiPoint:extra:","point":)" SOMEWHERE R"(,"extra":null})"
                   "\n"
                   R"({"call":"newRoute:","extra":null})"
                   "\n"
                   R"({"call":"lapInfoStart:end:extras:","start":)" SOMEWHERE
                   R"(,"end":{"latitude":91.0,"longitude":0.0,"altitude":0.0,"time":0,"test":0},)"
                   R"("extras":{"count":3}})"
                   "\n"
                   R"({"call":"endTransfer:","kind":1})"
                   "\n"
                   R"({"call":"currentPosition:accuracy:","point":)" SOMEWHERE R"(,"accuracy":5})"
                   "\n"
                   R"({"call":"warning:","object":"text"})"
                   "\n"
                   R"({"call":"error:","error":null})"
                   "\n"
                   R"({"call":"gpsStateChange:","state":0})"
                   "\n"
                   R"({"call":"startSending:kind:extra:","kind":1,"extra":{"count":3}})"
                   "\n"
                   R"({"call":"sendProgress:","count":5})"
                   "\n"
                   R"({"call":"endSending:","kind":1})"
                   "\n");
}

TEST(CallLogWriter, PointsCarryEveryValueTheyCanHave) {
    const std::string log = writtenLog([](CallLogWriter &writer) {
        writer.poiPoint({std::nan(""), -INFINITY, -0.0, INT64_MIN, INT64_MAX}, nullptr);
    });
    EXPECT_EQ(log, R"({"call":"poiPoint:extra:","point":{"latitude":{"real":"NaN"},)"
                   R"("longitude":{"real":"-Infinity"},"altitude":-0.0,)"
                   R"("time":-9223372036854775808,"test":9223372036854775807},"extra":null})"
                   "\n");
}

TEST(CallLogWriter, DictionariesArraysAndWrappedPointsNest) {
    Dictionary inner;
    inner.set(extras::point, Value::wrapping(somewhere));
    inner.set(Key("none"), Value(Ref<Array>::make()));
    const auto points = Ref<Array>::make();
    points->append(Value(Ref<Dictionary>::make(inner)));
    points->append(Value(0.25));
    points->append(Value(Ref<Dictionary>::make()));
    Dictionary track;
    track.set(extras::points, Value(points));

    EXPECT_EQ(writtenLog([&](CallLogWriter &writer) { writer.newTrack(&track); }),
              R"({"call":"newTrack:","extra":{"points":[{"point":)" SOMEWHERE
              R"(,"none":[]},0.25,{}]}})"
              "\n");
}

TEST(CallLogWriter, WhatALogCannotShowIsLeftOut) {
    const auto values = Ref<Array>::make();
    values->append(Value());
    values->append(Value::wrapping(std::int64_t{1}));
    values->append(Value(2));
    Dictionary extra;
    extra.set(Key("foreign"), Value::wrapping(1.0F));
    extra.set(Key("values"), Value(values));

    EXPECT_EQ(writtenLog([&](CallLogWriter &writer) { writer.newRoute(&extra); }),
              R"({"call":"newRoute:","extra":{"values":[2]}})"
              "\n");
}

TEST(CallLogWriter, AnArrayThatWouldMakeALineTooLongForItsReaderIsLeftOut) {
    Dictionary point;
    point.set(extras::point, Value::wrapping(somewhere));
    const auto points = Ref<Array>::make();
    for (std::size_t i = 0; i < callLogLimits::elements; ++i) {
        points->append(Value(Ref<Dictionary>::make(point)));
    }
    Dictionary track;
    track.set(extras::name, Value("long"));
    track.set(extras::points, Value(points));
    const auto written = [&track] {
        return writtenLog([&track](CallLogWriter &writer) { writer.newTrack(&track); });
    };

    const std::string longest = written();
    EXPECT_THAT(longest, ::testing::HasSubstr(R"({"name":"long","points":[{"point":)"));
    EXPECT_LT(longest.size(), callLogLimits::lineSize / 2) << "room for what comes with points";

    points->append(Value(Ref<Dictionary>::make(point)));
    EXPECT_EQ(written(), R"({"call":"newTrack:","extra":{"name":"long"}})"
                         "\n");
}

TEST(CallLogWriter, ErrorsShowTheirUserInformationAndTheErrorsBelow) {
    const ErrorPtr inner = Error::make(gpxFileImporterErrorDomain, 1);
    const ErrorPtr outer = Error::make(gpsPluginErrorDomain, -3,
                                       {{std::string(NSLocalizedDescriptionKey), "a \"b\""},
                                        {"line", std::int64_t{12}},
                                        {"line", "hidden behind the first"},
                                        {"nothing", ErrorPtr()},
                                        {std::string(NSUnderlyingErrorKey), inner}});
    const std::string object =
        R"({"domain":"com.Quorvel.GPSPlugin.ErrorDomain","code":-3,"userInfo":{)"
        R"("NSLocalizedDescription":"a \"b\"","line":12,"NSUnderlyingError":)"
        R"({"domain":"com.Quorvel.GPXFileImporter","code":1,"userInfo":{}}}})";

    EXPECT_EQ(writtenLog([&](CallLogWriter &writer) {
                  writer.error(Report(outer));
                  writer.warning(Report(outer));
              }),
              R"({"call":"error:","error":)" + object + "}\n" + R"({"call":"warning:","object":)" +
                  object + "}\n");
}

class ErrorTarget {
  public:
    void take(Report report) { reports.push_back(std::move(report)); }
    std::vector<Report> reports;
};

TEST(CallLogWriter, TellsTheErrorTargetOnTheMainThread) {
    const auto target = std::make_shared<ErrorTarget>();
    (void)writtenLog([&](CallLogWriter &writer) {
        writer.setErrorObject(target, &ErrorTarget::take);
        writer.warning(Report("first"));
        writer.error(Report());
    });
    EXPECT_TRUE(target->reports.empty()) << "before the main thread's turn";
    EXPECT_EQ(mainThread::drain(), 2U);
    EXPECT_THAT(target->reports, ElementsAre(Report("first"), Report()));
}

class ProgressList : public GPXExporterProgress {
  public:
    void gpxStartTransfer(int kind, int count) override {
        events.push_back("start " + std::to_string(kind) + " " + std::to_string(count));
    }
    void gpxProgress(int kind, int index) override {
        events.push_back(std::to_string(kind) + " " + std::to_string(index));
    }
    void gpxEndTransfer(int kind) override { events.push_back("end " + std::to_string(kind)); }
    std::vector<std::string> events;
};

TEST(CallLogWriter, ReportsTheProgressOfEachTransfer) {
    const auto progress = std::make_shared<ProgressList>();
    (void)writtenLog([&](CallLogWriter &writer) {
        writer.setProgress(progress);
        Dictionary two;
        two.set(extras::count, Value(2));
        writer.startTransfer(nullptr, 3, &two);
        writer.wayPoint(somewhere, nullptr);
        writer.wayPoint(somewhere, nullptr);
        writer.endTransfer(3);
        writer.startTransfer(nullptr, 1, nullptr);
        writer.trackPoint(somewhere, nullptr);
        writer.poiPoint(somewhere, nullptr);
        writer.endTransfer(1);
    });
    EXPECT_THAT(progress->events,
                ElementsAre("start 3 2", "3 1", "3 2", "end 3", "start 1 0", "1 1", "end 1"));
}

TEST(CallLogWriter, APathThatCannotBeOpenedGivesNoWriter) {
    const TemporaryFolder folder;
    std::error_code error;
    EXPECT_EQ(CallLogWriter::initWithPath(folder.file("missing/log.jsonl"), error), nullptr);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

TEST(CallLogWriter, CloseTellsTheFirstFailureToWrite) {
    std::error_code error;
    const auto writer = CallLogWriter::initWithPath("/dev/full", error);
    ASSERT_NE(writer, nullptr) << error.message();
    writer->newTrackSegment();
    EXPECT_EQ(writer->close(), std::errc::no_space_on_device);
    EXPECT_EQ(writer->failure(), std::errc::no_space_on_device);
}

TEST(CallLogWriter, WritesOutWhatItHoldsBackWhenAsked) {
    std::string log;
    CallLogWriter writer(OutputFile::inMemory(log));
    writer.newTrackSegment();
    EXPECT_FALSE(writer.flush());
    EXPECT_EQ(log, "{\"call\":\"newTrackSegment\"}\n");
}

/// Lets go of the writer when it is told of a transfer.
class LettingGo : public GPXExporterProgress {
  public:
    std::shared_ptr<CallLogWriter> writer;
    bool wasAlive = true; ///< while the writer was still at it

    void gpxStartTransfer(int /*kind*/, int /*count*/) override { letGo(); }
    void gpxProgress(int /*kind*/, int /*index*/) override {}
    void gpxEndTransfer(int /*kind*/) override { letGo(); }

  private:
    void letGo() {
        const std::weak_ptr watched = writer;
        writer.reset();
        wasAlive = wasAlive && !watched.expired();
    }
};

TEST(CallLogWriter, AnObserverMayLetGoOfTheLastOwner) {
    for (const bool atStart : {true, false}) {
        std::string log;
        const auto observer = std::make_shared<LettingGo>();
        auto writer = std::make_shared<CallLogWriter>(OutputFile::inMemory(log));
        CallLogWriter &last = *writer;
        writer->setProgress(observer);
        observer->writer = std::move(writer);
        if (atStart) {
            last.startTransfer(nullptr, transferKind::routes, nullptr);
        } else {
            last.endTransfer(transferKind::routes);
        }
        EXPECT_TRUE(observer->wasAlive);
        EXPECT_EQ(observer->writer, nullptr);
    }
}

} // namespace
} // namespace pelluvia
