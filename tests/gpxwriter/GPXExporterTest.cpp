// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXExporter.h>

#include <Pelluvia/model/TransferKind.h>
#include <tests/gpxwriter/WriterTest.h>

#include <cerrno>
#include <limits>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

constexpr GPSPoint somewhere{1, 2, 0, 0, 0};
const std::string someTrackPoint = "\t<trkpt lat=\"1\" lon=\"2\"></trkpt>\n";

/// What the header is with a creator.
std::string headerBy(const std::string &creator) {
    std::string header = GPX_Header;
    return header.replace(header.find("%s"), 2, creator);
}

/// An exporter into a temporary folder.
class Exporter : public ::testing::Test {
  protected:
    void SetUp() override {
        exporter = GPXExporter::initWithPath(path);
        ASSERT_NE(exporter, nullptr);
    }
    void TearDown() override { GPXExporter::setCreator("GPXExporter"); }

    /// Finishes the document and returns what stands between the header and the document's end.
    std::string body() {
        exporter->gpsStateChange(gpsState::finished);
        EXPECT_FALSE(exporter->writeFailure());
        const std::string text = testing::readFile(path);
        const std::string header = headerBy("GPXExporter");
        EXPECT_TRUE(text.starts_with(header));
        EXPECT_TRUE(text.ends_with(documentEnd));
        return text.substr(header.size(), text.size() - header.size() - documentEnd.size());
    }

    testing::TemporaryFolder folder;
    std::string path = folder.file("out.gpx");
    std::shared_ptr<GPXExporter> exporter;
};

TEST_F(Exporter, AFlushWritesWhatWasSentSoFar) {
    exporter->startTransfer(nullptr, transferKind::waypoints, nullptr);
    exporter->wayPoint(somewhere, nullptr);
    EXPECT_FALSE(exporter->flush());
    EXPECT_TRUE(testing::readFile(path).ends_with("<wpt lat=\"1\" lon=\"2\"></wpt>\n"))
        << testing::readFile(path);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_FALSE(exporter->flush()) << "nothing is open any more";
}

TEST_F(Exporter, AFlushTellsTheFirstFailure) {
    const auto full = GPXExporter::initWithPath("/dev/full");
    ASSERT_NE(full, nullptr);
    EXPECT_EQ(full->flush(), std::errc::no_space_on_device);
    full->gpsStateChange(gpsState::finished);
    EXPECT_EQ(full->flush(), std::errc::no_space_on_device);
}

TEST_F(Exporter, WritesATrackTransfer) {
    const Dictionary track = dictionaryOf(extras::name, "Ride"sv);
    exporter->startTransfer(nullptr, transferKind::tracks, nullptr);
    exporter->newTrack(&track);
    exporter->newTrackSegment();
    for (int i = 0; i < 3; ++i) {
        exporter->trackPoint(somewhere, nullptr);
    }
    exporter->endTransfer(transferKind::tracks);
    EXPECT_EQ(body(), "<trk>\n<name>Ride</name>\n<trkseg>\n" + someTrackPoint + someTrackPoint +
                          someTrackPoint + "</trkseg>\n</trk>\n");
}

TEST_F(Exporter, TakesTheTracksTextsAndNumbersFromItsDictionary) {
    Dictionary track = dictionaryOf(extras::name, "Z\xC3\xBCrich"sv);
    track.set(extras::description, Value("long"sv));
    track.set(extras::author, Value("Somebody"sv));
    track.set(extras::index, Value(4));
    track.set(extras::points, Value("ignored"sv));
    exporter->newTrack(&track);
    exporter->newTrack(nullptr);
    EXPECT_EQ(body(), "<trk>\n<name>4</name>\n<desc>long</desc>\n<number>4</number>\n</trk>\n"
                      "<trk>\n<name>unnamed</name>\n</trk>\n");
}

TEST_F(Exporter, PassesAllOfATrackPointOn) {
    const Dictionary extras = dictionaryOf(extras::hr, 120);
    exporter->trackPoint({47.1, 8.5, 430, 1591000000, 99}, &extras);
    EXPECT_EQ(body(), "<trk>\n<trkseg>\n\t<trkpt lat=\"47.1\" lon=\"8.5\"><ele>430.000000</ele>"
                      "<time>2020-06-01T08:26:40Z</time><extensions><gpxdata:hr>120</gpxdata:hr>"
                      "</extensions></trkpt>\n</trkseg>\n</trk>\n");
}

TEST_F(Exporter, PassesAllOfAWaypointOn) {
    Dictionary extras = dictionaryOf(extras::name, "Hut"sv);
    extras.set(extras::comment, Value("warm"sv));
    extras.set(extras::symbol, Value("Lodge"sv));
    extras.set(extras::type, Value("Shelter"sv));
    extras.set(extras::description, Value("never written"sv));
    extras.set(extras::url, Value("never written"sv));
    extras.set(extras::proximity, Value(5));
    exporter->wayPoint({47.1, 8.5, 430, 1591000000, 99}, &extras);
    EXPECT_EQ(body(), "<wpt lat=\"47.1\" lon=\"8.5\"><ele>430.000000</ele>"
                      "<time>2020-06-01T08:26:40Z</time><name>Hut</name>\n<cmt>warm</cmt>\n"
                      "<sym>Lodge</sym>\n<type>Shelter</type>\n<extensions>"
                      "<gpxdata:proximity xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE
                      "\">5.000000</gpxdata:proximity>\n</extensions>\n</wpt>\n");
}

TEST_F(Exporter, LeavesOutTextsThatAreNotASCII) {
    Dictionary extras = dictionaryOf(extras::name, "H\xC3\xBCtte"sv);
    extras.set(extras::comment, Value("\xE2\x82\xAC"sv));
    extras.set(extras::symbol, Value("Lodge\xE9"sv));
    extras.set(extras::type, Value("Shelter"sv));
    exporter->wayPoint(somewhere, &extras);
    EXPECT_EQ(body(), "<wpt lat=\"1\" lon=\"2\"><type>Shelter</type>\n</wpt>\n");
}

TEST_F(Exporter, TheCommentOfARouteIsItsDescription) {
    Dictionary route = dictionaryOf(extras::name, "Tour"sv);
    route.set(extras::comment, Value("by bus"sv));
    route.set(extras::description, Value("never written"sv));
    route.set(extras::routeNumber, Value(7));
    exporter->newRoute(&route);
    EXPECT_EQ(body(), "<rte>\n<name>Tour</name>\n<desc>by bus</desc>\n\t<number>7</number>\n"
                      "</rte>\n");
}

TEST_F(Exporter, ARoutesNumberIsNotReadFromItsIndex) {
    const Dictionary route = dictionaryOf(extras::index, 7);
    exporter->newRoute(&route);
    exporter->newRoute(nullptr);
    EXPECT_EQ(body(), "<rte>\n</rte>\n<rte>\n</rte>\n");
}

TEST_F(Exporter, RoutePointsAreNotWritten) {
    const Dictionary route = dictionaryOf(extras::name, "Tour"sv);
    exporter->startTransfer(nullptr, transferKind::routes, nullptr);
    exporter->newRoute(&route);
    exporter->routePoint(somewhere, &route);
    exporter->routePoint(somewhere, nullptr);
    exporter->endTransfer(transferKind::routes);
    EXPECT_EQ(body(), "<rte>\n<name>Tour</name>\n</rte>\n");
}

TEST_F(Exporter, WaypointsInAnOpenRouteAreItsPoints) {
    exporter->newRoute(nullptr);
    exporter->wayPoint(somewhere, nullptr);
    exporter->endTransfer(transferKind::routes);
    exporter->wayPoint(somewhere, nullptr);
    EXPECT_EQ(body(), "<rte>\n\t<rtept lat=\"1\" lon=\"2\"></rtept>\n</rte>\n"
                      "<wpt lat=\"1\" lon=\"2\"></wpt>\n");
}

TEST_F(Exporter, OnlyTheEndsOfTracksAndRoutesCloseSomething) {
    exporter->newRoute(nullptr);
    exporter->newTrackSegment();
    for (const int kind : {int{transferKind::waypoints}, 0, -1, 4, int{transferKind::tracks}}) {
        exporter->endTransfer(kind);
    }
    exporter->wayPoint(somewhere, nullptr);
    exporter->endTransfer(transferKind::tracks);
    exporter->endTransfer(transferKind::waypoints);
    exporter->wayPoint(somewhere, nullptr);
    EXPECT_EQ(body(), "<rte>\n<trk>\n<name>unnamed</name>\n<trkseg>\n</trkseg>\n</trk>\n"
                      "\t<rtept lat=\"1\" lon=\"2\"></rtept>\n"
                      "\t<rtept lat=\"1\" lon=\"2\"></rtept>\n</rte>\n");
}

TEST_F(Exporter, ATrackStaysOpenAcrossTheEndOfAWaypointTransfer) {
    exporter->newTrackSegment();
    exporter->endTransfer(transferKind::waypoints);
    exporter->trackPoint(somewhere, nullptr);
    EXPECT_EQ(body(),
              "<trk>\n<name>unnamed</name>\n<trkseg>\n" + someTrackPoint + "</trkseg>\n</trk>\n");
}

TEST_F(Exporter, ATrackLeftOpenEndsBeforeWhatCannotStandInIt) {
    const std::string track = "<trk>\n<trkseg>\n" + someTrackPoint + "</trkseg>\n</trk>\n";
    const auto leaveTrackOpen = [this] {
        exporter->trackPoint(somewhere, nullptr);
        exporter->endTransfer(transferKind::waypoints);
    };
    leaveTrackOpen();
    exporter->wayPoint(somewhere, nullptr);
    leaveTrackOpen();
    exporter->newTrack(nullptr);
    exporter->newRoute(nullptr);
    exporter->endTransfer(transferKind::routes);
    leaveTrackOpen();
    exporter->newRoute(nullptr);
    exporter->endTransfer(transferKind::routes);
    leaveTrackOpen();
    exporter->lapInfoStart({91, 0, 0, 0, 0}, {91, 0, 0, 0, 0}, nullptr);
    EXPECT_EQ(body(), track + "<wpt lat=\"1\" lon=\"2\"></wpt>\n" + track +
                          "<trk>\n<name>unnamed</name>\n</trk>\n<rte>\n</rte>\n" + track +
                          "<rte>\n</rte>\n" + track +
                          "<extensions><gpxdata:lap xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">\n"
                          "\t<startTime>1970-01-01T00:00:00Z</startTime>\n"
                          "</gpxdata:lap>\n</extensions>");
}

TEST_F(Exporter, WritesLaps) {
    const Dictionary extras = dictionaryOf(extras::calories, 5);
    exporter->lapInfoStart({1, 2, 0, 0, 0}, {3, 4, 0, 0, 0}, &extras);
    EXPECT_EQ(body(), "<extensions><gpxdata:lap xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">\n"
                      "\t<startPoint lat=\"1\" lon=\"2\"/>\n\t<endPoint lat=\"3\" lon=\"4\"/>\n"
                      "\t<startTime>1970-01-01T00:00:00Z</startTime>\n\t<calories>5</calories>\n"
                      "</gpxdata:lap>\n</extensions>");
}

TEST_F(Exporter, IgnoresWhatAFileDoesNotHold) {
    exporter->poiPoint(somewhere, nullptr);
    exporter->currentPosition(somewhere, 5);
    exporter->startSending(nullptr, transferKind::tracks, nullptr);
    exporter->sendProgress(5);
    exporter->endSending(transferKind::tracks);
    exporter->warning(Report());
    exporter->error(Report());
    EXPECT_EQ(body(), "");
}

TEST_F(Exporter, OtherStatesThanFinishedChangeNothing) {
    for (const int state : {1, -1, std::numeric_limits<int>::min()}) {
        exporter->gpsStateChange(state);
    }
    exporter->newRoute(nullptr);
    EXPECT_EQ(body(), "<rte>\n</rte>\n");
}

TEST_F(Exporter, WritesNothingAfterTheFinishedState) {
    exporter->gpsStateChange(gpsState::finished);
    const std::string complete = testing::readFile(path);
    exporter->newTrack(nullptr);
    exporter->newTrackSegment();
    exporter->trackPoint(somewhere, nullptr);
    exporter->newRoute(nullptr);
    exporter->wayPoint(somewhere, nullptr);
    exporter->lapInfoStart(somewhere, somewhere, nullptr);
    exporter->endTransfer(transferKind::routes);
    exporter->endTransfer(transferKind::tracks);
    exporter->gpsStateChange(gpsState::finished);
    exporter.reset();
    EXPECT_EQ(testing::readFile(path), complete);
}

TEST_F(Exporter, DestroyingItCompletesTheDocument) {
    exporter->newTrackSegment();
    exporter.reset();
    EXPECT_EQ(testing::readFile(path), headerBy("GPXExporter") +
                                           "<trk>\n<name>unnamed</name>\n<trkseg>\n</trkseg>\n"
                                           "</trk>\n</gpx>\n");
}

TEST_F(Exporter, TheCreatorIsThatOfTheTimeWhenItWasMade) {
    GPXExporter::setCreator("My \"program\"");
    const std::string second = folder.file("second.gpx");
    GPXExporter::initWithPath(second).reset();
    EXPECT_EQ(testing::readFile(second), headerBy("My \"program\"") + documentEnd);
    exporter.reset();
    EXPECT_EQ(testing::readFile(path), headerBy("GPXExporter") + documentEnd);
}

TEST_F(Exporter, ACreatorThatIsNotASCIIIsReplacedByTheDefault) {
    for (const std::string_view creator : {"Z\xC3\xBCrich"sv, "a\xFF"sv}) {
        GPXExporter::setCreator("other");
        GPXExporter::setCreator(creator);
        const std::string second = folder.file("second.gpx");
        GPXExporter::initWithPath(second).reset();
        EXPECT_EQ(testing::readFile(second), headerBy("GPXExporter") + documentEnd);
    }
}

TEST_F(Exporter, AnEmptyCreatorIsEmpty) {
    GPXExporter::setCreator("");
    const std::string second = folder.file("second.gpx");
    GPXExporter::initWithPath(second).reset();
    EXPECT_EQ(testing::readFile(second), headerBy("") + documentEnd);
}

TEST(GPXExporter, IsNullWhenTheFileCannotBeOpened) {
    const testing::TemporaryFolder folder;
    EXPECT_EQ(GPXExporter::initWithPath(folder.file("missing/out.gpx")), nullptr);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(GPXExporter::initWithPath(folder.path().string()), nullptr);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(GPXExporter::initWithPath(""), nullptr);
}

TEST(GPXExporter, WithoutADocumentIgnoresTheCalls) {
    const std::shared_ptr<GPXExporter> exporter = GPXExporter::init();
    ASSERT_NE(exporter, nullptr);
    exporter->startTransfer(nullptr, transferKind::tracks, nullptr);
    exporter->newTrack(nullptr);
    exporter->newTrackSegment();
    exporter->trackPoint(somewhere, nullptr);
    exporter->newRoute(nullptr);
    exporter->routePoint(somewhere, nullptr);
    exporter->wayPoint(somewhere, nullptr);
    exporter->lapInfoStart(somewhere, somewhere, nullptr);
    exporter->endTransfer(transferKind::tracks);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_FALSE(exporter->writeFailure());
}

TEST(GPXExporter, AFullDiskIsReportedOnceTheDocumentIsClosed) {
    const std::shared_ptr<GPXExporter> exporter = GPXExporter::initWithPath("/dev/full");
    ASSERT_NE(exporter, nullptr);
    exporter->trackPoint(somewhere, nullptr);
    EXPECT_FALSE(exporter->writeFailure());
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_EQ(exporter->writeFailure(), std::errc::no_space_on_device);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_EQ(exporter->writeFailure(), std::errc::no_space_on_device);
}

TEST(GPXExporter, AFullDiskIsReportedWhileWritingOnceTheBufferWasFlushed) {
    const std::shared_ptr<GPXExporter> exporter = GPXExporter::initWithPath("/dev/full");
    ASSERT_NE(exporter, nullptr);
    for (int i = 0; i < 20'000; ++i) {
        exporter->trackPoint(somewhere, nullptr);
    }
    EXPECT_EQ(exporter->writeFailure(), std::errc::no_space_on_device);
}

} // namespace
} // namespace pelluvia
