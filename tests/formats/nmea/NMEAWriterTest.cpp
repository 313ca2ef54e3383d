// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEAWriter.h>

#include <tests/formats/nmea/Logs.h>
#include <tests/formats/nmea/Written.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/system/OutputFile.h>

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::logOf;
using pelluvia::testing::Written;

Dictionary named(std::string_view name) {
    Dictionary extra;
    extra.set(extras::name, Value(name));
    return extra;
}

void wayPoint(NMEAWriter &writer, double latitude, std::string_view name) {
    const Dictionary extra = named(name);
    writer.wayPoint({.latitude = latitude, .longitude = 11.5}, &extra);
}

TEST(NMEAWriter, WritesARMCAndAGGAForATrackPoint) {
    Written written;
    Dictionary extra;
    extra.set(extras::speed, Value(10.0F));
    written.writer->startTransfer(nullptr, transferKind::tracks, nullptr);
    written.writer->newTrack(nullptr);
    written.writer->newTrackSegment();
    written.writer->trackPoint(
        {.latitude = 48.1173, .longitude = -11.5, .altitude = 545.4, .time = 764'426'119}, &extra);
    written.writer->trackPoint({.latitude = -5.5, .longitude = 0.0}, nullptr);
    written.writer->endTransfer(transferKind::tracks);
    EXPECT_EQ(written.log(), "$GPRMC,123519.00,A,4807.038,N,01130.000,W,19.438,,230394,,,A*54\r\n"
                             "$GPGGA,123519.00,4807.038,N,01130.000,W,1,,,545.400,M,,M,,*40\r\n"
                             "$GPRMC,,A,0530.000,S,00000.000,E,,,,,,A*6B\r\n"
                             "$GPGGA,,0530.000,S,00000.000,E,1,,,,M,,M,,*47\r\n");
}

TEST(NMEAWriter, WritesAWPLForAWaypoint) {
    Written written;
    wayPoint(*written.writer, 48.1173, "Home");
    written.writer->wayPoint({.latitude = 48.0, .longitude = 11.5}, nullptr);
    wayPoint(*written.writer, 48.5, "Caf\xC3\xA9*");
    EXPECT_EQ(written.log(),
              logOf({"GPWPL,4807.038,N,01130.000,E,Home", "GPWPL,4800.000,N,01130.000,E,WP1",
                     "GPWPL,4830.000,N,01130.000,E,Caf__"}));
}

TEST(NMEAWriter, GivesAnotherPlaceOfTheSameNameANumber) {
    Written written;
    wayPoint(*written.writer, 48.0, "Home");
    wayPoint(*written.writer, 48.5, "Home");
    wayPoint(*written.writer, 48.0, "Home");
    EXPECT_EQ(written.log(),
              logOf({"GPWPL,4800.000,N,01130.000,E,Home", "GPWPL,4830.000,N,01130.000,E,Home-2",
                     "GPWPL,4800.000,N,01130.000,E,Home"}));
}

TEST(NMEAWriter, WritesTheWaypointsOfARouteAndThenTheRoute) {
    for (const bool areWaypoints : {false, true}) {
        Written written;
        const Dictionary lake = named("Lake");
        const Dictionary route = named("Harbour");
        const GPSPoint point = {.latitude = 48.5, .longitude = 11.5};
        wayPoint(*written.writer, 48.0, "Home");
        written.writer->startTransfer(nullptr, transferKind::routes, nullptr);
        written.writer->newRoute(&route);
        wayPoint(*written.writer, 48.0, "Home");
        if (areWaypoints) {
            written.writer->wayPoint(point, &lake);
            written.writer->wayPoint(point, nullptr);
        } else {
            written.writer->routePoint(point, &lake);
            written.writer->routePoint(point, nullptr);
        }
        written.writer->endTransfer(transferKind::routes);
        wayPoint(*written.writer, 49.0, "After");
        EXPECT_EQ(written.log(),
                  logOf({"GPWPL,4800.000,N,01130.000,E,Home", "GPWPL,4830.000,N,01130.000,E,Lake",
                         "GPWPL,4830.000,N,01130.000,E,WP1", "GPRTE,1,1,c,Harbour,Home,Lake,WP1",
                         "GPWPL,4900.000,N,01130.000,E,After"}));
    }
}

TEST(NMEAWriter, NamesARouteByItsNumberOrByItself) {
    Written written;
    Dictionary imported;
    imported.set(extras::index, Value(7));
    Dictionary numbered = imported;
    numbered.set(extras::routeNumber, Value(12));
    const Dictionary lake = named("Lake");
    written.writer->newRoute(&imported);
    written.writer->newRoute(&numbered);
    written.writer->newRoute(nullptr);
    written.writer->newRoute(&lake);
    written.writer->newRoute(&lake);
    EXPECT_EQ(written.log(), logOf({"GPRTE,1,1,c,7", "GPRTE,1,1,c,12", "GPRTE,1,1,c,ROUTE1",
                                    "GPRTE,1,1,c,Lake", "GPRTE,1,1,c,Lake-2"}));
}

TEST(NMEAWriter, ARouteEndsWithItsTransferTheNextOneATrackOrTheExchange) {
    for (const int how : {0, 1, 2, 3}) {
        Written written;
        const Dictionary route = named("R");
        written.writer->newRoute(&route);
        switch (how) {
        case 0:
            written.writer->endTransfer(transferKind::routes);
            break;
        case 1:
            written.writer->newTrack(nullptr);
            break;
        case 2:
            written.writer->gpsStateChange(gpsState::finished);
            break;
        default:
            written.writer->trackPoint({.latitude = 200.0}, nullptr);
            break;
        }
        wayPoint(*written.writer, 48.0, "After");
        EXPECT_EQ(written.log(), logOf({"GPRTE,1,1,c,R", "GPWPL,4800.000,N,01130.000,E,After"}));
    }
}

TEST(NMEAWriter, AnOpenRouteStaysOpenWhereNothingEndsIt) {
    Written written;
    const Dictionary route = named("R");
    written.writer->newRoute(&route);
    written.writer->endTransfer(transferKind::waypoints);
    written.writer->gpsStateChange(1);
    wayPoint(*written.writer, 48.0, "In");
    EXPECT_EQ(written.log(), logOf({"GPWPL,4800.000,N,01130.000,E,In", "GPRTE,1,1,c,R,In"}));
}

TEST(NMEAWriter, ARoutePointWithoutARouteIsNotWritten) {
    Written written;
    written.writer->routePoint({.latitude = 48.0, .longitude = 11.5}, nullptr);
    EXPECT_EQ(written.log(), "");
}

TEST(NMEAWriter, LeavesOutAndCountsWhatTheFormatCannotHold) {
    Written written;
    const double nan = std::nan("");
    written.writer->trackPoint({.latitude = 91.5}, nullptr); // a sample without a position
    written.writer->trackPoint({.latitude = nan}, nullptr);
    written.writer->trackPoint({.longitude = INFINITY}, nullptr);
    written.writer->wayPoint({.longitude = -180.5}, nullptr);
    written.writer->newRoute(nullptr);
    written.writer->routePoint({.latitude = -90.5}, nullptr);
    written.writer->trackPoint({.latitude = 48.0, .longitude = 11.5, .time = -1}, nullptr);
    EXPECT_EQ(written.writer->omissions(), (NMEAOmissions{.points = 5, .times = 1}));
    EXPECT_EQ(written.log(), logOf({"GPRTE,1,1,c,ROUTE1", "GPRMC,,A,4800.000,N,01130.000,E,,,,,,A",
                                    "GPGGA,,4800.000,N,01130.000,E,1,,,,M,,M,,"}));
}

TEST(NMEAWriter, CountsAltitudesAndSpeedsThatCannotBe) {
    Written written;
    Dictionary backwards;
    backwards.set(extras::speed, Value(-1.0F));
    const GPSPoint point = {.latitude = 48.0, .longitude = 11.5, .altitude = 1e300};
    written.writer->trackPoint(point, &backwards);
    written.writer->trackPoint({.latitude = 48.0, .longitude = 11.5}, nullptr);
    written.writer->wayPoint(point, nullptr); // no waypoint has an altitude
    EXPECT_EQ(written.writer->omissions(), (NMEAOmissions{.values = 2}));
}

TEST(Omissions, AreOneLine) {
    EXPECT_EQ(textOf(NMEAOmissions{}), "");
    EXPECT_EQ(textOf({.points = 1, .times = 1, .values = 1, .routePoints = 1}),
              "left out: 1 point without a position on the globe, 1 time before 1970 or after "
              "2069, 1 altitude or speed that cannot be, 1 point of a route with too many");
    EXPECT_EQ(textOf({.points = 2, .times = 3, .values = 4, .routePoints = 5}),
              "left out: 2 points without a position on the globe, 3 times before 1970 or after "
              "2069, 4 altitudes or speeds that cannot be, 5 points of a route with too many");
}

TEST(NMEAWriter, IgnoresWhatTheFormatHasNoPlaceFor) {
    Written written;
    const GPSPoint point = {.latitude = 48.0, .longitude = 11.5};
    written.writer->poiPoint(point, nullptr);
    written.writer->lapInfoStart(point, point, nullptr);
    written.writer->currentPosition(point, 3);
    written.writer->startSending(nullptr, 1, nullptr);
    written.writer->sendProgress(1);
    written.writer->endSending(1);
    written.writer->warning(Report("text"));
    written.writer->error(Report());
    EXPECT_EQ(written.log(), "");
}

TEST(NMEAWriter, TellsOfProgress) {
    class Steps : public GPXExporterProgress {
      public:
        std::vector<std::pair<int, int>> seen;
        void gpxStartTransfer(int kind, int count) override { seen.emplace_back(kind, count); }
        void gpxProgress(int kind, int index) override { seen.emplace_back(kind, index); }
        void gpxEndTransfer(int kind) override { seen.emplace_back(kind, -1); }
    };
    const auto steps = std::make_shared<Steps>();
    Written written;
    written.writer->setProgress(steps);
    Dictionary extra;
    extra.set(extras::count, Value(9));
    written.writer->startTransfer(nullptr, 1, &extra);
    written.writer->trackPoint({}, nullptr);
    written.writer->trackPoint({.latitude = 95.0}, nullptr);
    written.writer->endTransfer(1);
    written.writer->startTransfer(nullptr, 3, nullptr);
    written.writer->wayPoint({}, nullptr);
    EXPECT_EQ(steps->seen,
              (std::vector<std::pair<int, int>>{{1, 9}, {1, 1}, {1, 2}, {1, -1}, {3, 0}, {3, 1}}));
}

TEST(NMEAWriter, PassesReportsToTheErrorTarget) {
    struct Target {
        std::vector<Report> reports;
        void take(Report report) { reports.push_back(std::move(report)); }
    };
    const auto target = std::make_shared<Target>();
    Written written;
    written.writer->setErrorObject(target, &Target::take);
    written.writer->warning(Report("careful"));
    EXPECT_TRUE(target->reports.empty()) << "only on the main thread";
    mainThread::drain();
    EXPECT_EQ(target->reports.size(), 1U);
}

TEST(NMEAWriter, TellsOfNamesThatGotANumberSinceTooManyWereThere) {
    std::string log;
    NMEAWriter writer(OutputFile::inMemory(log));
    Dictionary extra;
    for (int i = 0; i < 100'002; ++i) {
        const std::string name = "Place " + std::to_string(i);
        extra.set(extras::name, Value(std::string_view(name)));
        writer.wayPoint({.latitude = 48.0}, &extra);
    }
    EXPECT_FALSE(writer.close());
    EXPECT_EQ(writer.omissions(), (NMEAOmissions{.names = 2}));
    EXPECT_EQ(textOf(writer.omissions()),
              "2 names behind the first 100000 made unique by a number");
    EXPECT_NE(log.find(",Place 99999*"), std::string::npos);
    EXPECT_NE(log.find(",Place 100001-100002*"), std::string::npos);
}

TEST(NMEAWriter, WritesOutWhatItHoldsBackWhenAsked) {
    std::string log;
    NMEAWriter writer(OutputFile::inMemory(log));
    writer.trackPoint({.latitude = 48.0}, nullptr);
    EXPECT_FALSE(writer.flush());
    EXPECT_THAT(log, ::testing::EndsWith("\r\n"));
}

TEST(NMEAWriter, CannotBeMadeWhereNoFileCanBe) {
    std::error_code error;
    EXPECT_EQ(NMEAWriter::initWithPath("/nowhere/at/all", error), nullptr);
    EXPECT_TRUE(error);
}

TEST(NMEAWriter, RemembersAFailedWrite) {
    std::error_code error;
    const auto writer = NMEAWriter::initWithPath("/dev/full", error);
    ASSERT_NE(writer, nullptr);
    writer->trackPoint({.latitude = 48.0}, nullptr);
    EXPECT_EQ(writer->close(), std::errc::no_space_on_device);
}

/// Lets go of the writer when it is told of a transfer.
class LettingGo : public GPXExporterProgress {
  public:
    std::shared_ptr<NMEAWriter> writer;
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

TEST(NMEAWriter, AnObserverMayLetGoOfTheLastOwner) {
    for (const bool atStart : {true, false}) {
        std::string log;
        const auto observer = std::make_shared<LettingGo>();
        auto writer = std::make_shared<NMEAWriter>(OutputFile::inMemory(log));
        NMEAWriter &last = *writer;
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
} // namespace pelluvia::nmea
