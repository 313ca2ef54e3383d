// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/xml/XMLParser.h>
#include <tests/gpximport/Importing.h>
#include <tests/support/TemporaryFolder.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::gpx;
using testing::Imported;
using testing::importGPX;
using testing::Importing;
using ::testing::IsEmpty;
using testing::LogCapture;
using ::testing::MatchesRegex;
using testing::Passes;
using testing::SpyReceiver;
using testing::TemporaryFolder;

constexpr Passes noPasses{false, false, false};

TEST(GPXFileImporter, AnnouncesAllThreeTransfersForAFileOfWaypoints) {
    const Imported imported = importGPX("<wpt lat='1' lon='2'/><wpt lat='3' lon='4'/>");
    EXPECT_EQ(imported.result, nullptr);
    EXPECT_THAT(imported.calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 0}", "endTransfer: 2",
                            "startTransfer: nil kind: 3 extra: {count: int 2}",
                            "wayPoint: (1, 2, 0, 0, 0) extra: {}",
                            "wayPoint: (3, 4, 0, 0, 0) extra: {}", "endTransfer: 3",
                            "startTransfer: nil kind: 1 extra: {count: int 0}", "endTransfer: 1"));
    EXPECT_THAT(imported.log, IsEmpty());
}

TEST(GPXFileImporter, ReadsRoutesThenWaypointsThenTracksWhateverTheirOrderInTheFile) {
    const Imported imported =
        importGPX("<trk><trkseg><trkpt lat='1' lon='1'/></trkseg></trk><wpt lat='2' lon='2'/>"
                  "<rte><rtept lat='3' lon='3'/></rte>");
    EXPECT_THAT(imported.calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 1}", "newRoute: nil",
                            "routePoint: (3, 3, 0, 0, 0) extra: {}", "endTransfer: 2",
                            "startTransfer: nil kind: 3 extra: {count: int 1}",
                            "wayPoint: (2, 2, 0, 0, 0) extra: {}", "endTransfer: 3",
                            "startTransfer: nil kind: 1 extra: {count: int 1}", "newTrack: nil",
                            "newTrackSegment", "trackPoint: (1, 1, 0, 0, 0) extra: nil",
                            "endTransfer: 1"));
}

TEST(GPXFileImporter, AnnouncesTracksWithTheirSegmentsNotTheirPoints) {
    std::string track = "<trk>";
    for (int segment = 0; segment < 3; ++segment) {
        track += "<trkseg>";
        for (int point = 0; point < (segment < 2 ? 333 : 334); ++point) {
            track += "<trkpt lat='1' lon='2'/>";
        }
        track += "</trkseg>";
    }
    const Imported imported = importGPX(track + "</trk>", testing::onlyTracks);
    ASSERT_EQ(imported.calls.size(), 1000U + 6U);
    EXPECT_EQ(imported.calls.front(), "startTransfer: nil kind: 1 extra: {count: int 3}");
}

TEST(GPXFileImporter, RunsOnlyThePassesThatAreAskedFor) {
    const std::string content = "<wpt/><rte><rtept/></rte><trk><trkseg><trkpt/></trkseg></trk>";
    EXPECT_THAT(importGPX(content, testing::onlyRoutes).calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 1}", "newRoute: nil",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}", "endTransfer: 2"));
    EXPECT_THAT(importGPX(content, testing::onlyWaypoints).calls,
                ElementsAre("startTransfer: nil kind: 3 extra: {count: int 1}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {}", "endTransfer: 3"));
    EXPECT_THAT(importGPX(content, testing::onlyTracks).calls,
                ElementsAre("startTransfer: nil kind: 1 extra: {count: int 1}", "newTrack: nil",
                            "newTrackSegment", "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                            "endTransfer: 1"));
}

TEST(GPXFileImporter, CallsNobodyWhenAllPassesAreOff) {
    const Imported imported = importGPX("<wpt lat='1' lon='2'/>", noPasses);
    EXPECT_EQ(imported.result, nullptr);
    EXPECT_THAT(imported.calls, IsEmpty());
}

TEST(GPXFileImporter, CountsEvenWhenAllPassesAreOff) {
    Importing importing(noPasses);
    const Imported imported = importing.document("<gpx><wpt>");
    EXPECT_EQ(imported.result, nullptr);
    EXPECT_THAT(imported.log, ElementsAre(MatchesRegex("parse error, but continuing, since it "
                                                       "might be readible .*")));
}

TEST(GPXFileImporter, FailsWithoutAReceiverAfterCounting) {
    const TemporaryFolder folder;
    const LogCapture log;
    const auto importer = GPXFileImporter::initWithReceiver(nullptr);
    const ErrorPtr error = importer->processFile(folder.write("broken.gpx", "<gpx>"));
    ASSERT_NE(error, nullptr);
    EXPECT_EQ(error->domain(), "com.Quorvel.GPSPlugin.ErrorDomain");
    EXPECT_EQ(error->code(), -1);
    EXPECT_THAT(error->userInfo(), IsEmpty());
    EXPECT_EQ(log.lines.size(), 1U) << "the counting parse ran before";
}

TEST(GPXFileImporter, RunsAPassWithoutAReceiverInSilence) {
    const TemporaryFolder folder;
    const auto importer = GPXFileImporter::initWithReceiver(nullptr);
    importer->setFileURL(URL::fileURLWithPath(folder.write(
        "all.gpx", gpx("<wpt/><rte><rtept/></rte><trk><trkseg><trkpt/></trkseg></trk>"))));
    for (const int kind : {transferKind::tracks, transferKind::routes, transferKind::waypoints}) {
        EXPECT_EQ(importer->runParser(kind), nullptr);
    }
    const LogCapture log;
    importer->setFileURL(URL::fileURLWithPath(folder.write("broken.gpx", "<gpx>")));
    EXPECT_NE(importer->runParser(transferKind::tracks), nullptr);
}

TEST(GPXFileImporter, SetsItsFileURLFromThePath) {
    Importing importing;
    EXPECT_EQ(importing.importer->fileURL(), std::nullopt);
    const TemporaryFolder folder;
    const std::string path = folder.write("ride.gpx", gpx(""));
    EXPECT_EQ(importing.importer->processFile(path), nullptr);
    EXPECT_EQ(importing.importer->fileURL(), URL::fileURLWithPath(path));
    importing.importer->setFileURL(std::nullopt);
    EXPECT_EQ(importing.importer->fileURL(), std::nullopt);
}

TEST(GPXFileImporter, ReadsItsFileURLAndNotTheArgument) {
    const TemporaryFolder folder;
    const URL one = URL::fileURLWithPath(folder.write("one.gpx", gpx("<wpt lat='1' lon='1'/>")));
    const URL two = URL::fileURLWithPath(folder.write("two.gpx", gpx("<wpt lat='2' lon='2'/>")));
    Importing importing(testing::onlyWaypoints);
    importing.importer->setFileURL(one);
    EXPECT_EQ(importing.importer->processURL(two), nullptr);
    EXPECT_THAT(importing.spy->callsOf("wayPoint"),
                ElementsAre("wayPoint: (1, 1, 0, 0, 0) extra: {}"));
    EXPECT_EQ(importing.importer->fileURL(), one);
}

TEST(GPXFileImporter, ReportsSuccessWithEmptyTransfersWhenThereIsNoFileURL) {
    const LogCapture log;
    Importing importing;
    EXPECT_EQ(importing.importer->processURL(std::nullopt), nullptr);
    EXPECT_THAT(importing.spy->calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 0}", "endTransfer: 2",
                            "startTransfer: nil kind: 3 extra: {count: int 0}", "endTransfer: 3",
                            "startTransfer: nil kind: 1 extra: {count: int 0}", "endTransfer: 1"));
    EXPECT_THAT(log.lines, ElementsAre("parse error, but continuing, since it might be readible "
                                       "(error = (null))"));
}

TEST(GPXFileImporter, ReportsAFileThatIsNotWellFormedOnceAndStops) {
    Importing importing;
    const Imported imported =
        importing.document(gpx("<rte><rtept lat='1' lon='2'/></rte>") + "<again/>");
    ASSERT_NE(imported.result, nullptr);
    EXPECT_EQ(imported.result->domain(), NSXMLParserErrorDomain);
    EXPECT_THAT(imported.calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 1}", "newRoute: nil",
                            "routePoint: (1, 2, 0, 0, 0) extra: {}",
                            "error: " + testing::textOf(imported.result), "endTransfer: 2"));
    EXPECT_THAT(
        imported.log,
        ElementsAre(MatchesRegex("parse error, but continuing, since it might be readible "
                                 "\\(error = Error Domain=NSXMLParserErrorDomain Code=[0-9]+ "
                                 "\".+\"\\)"),
                    MatchesRegex("Error [0-9]+, Description: .+, Line: 1, Column: [0-9]+")));
}

TEST(GPXFileImporter, HandsTheParsersOwnErrorToTheReceiver) {
    Importing importing(testing::onlyTracks);
    const Imported imported = importing.document("<gpx>");
    ASSERT_EQ(importing.spy->errors.size(), 1U);
    EXPECT_EQ(std::get<ErrorPtr>(importing.spy->errors[0]), imported.result);
}

TEST(GPXFileImporter, LogsThePlaceThatTheParserReports) {
    Importing importing(testing::onlyTracks);
    const Imported imported = importing.document("<gpx>\n <trk>\n  </wrong>\n</gpx>");
    ASSERT_NE(imported.result, nullptr);
    ASSERT_EQ(imported.log.size(), 2U);
    EXPECT_EQ(imported.log[1],
              "Error " + std::to_string(imported.result->code()) +
                  ", Description: " + imported.result->localizedDescription() + ", Line: " +
                  std::to_string(imported.result->integer(NSXMLParserErrorLineNumber)) +
                  ", Column: " + std::to_string(imported.result->integer(NSXMLParserErrorColumn)));
    EXPECT_EQ(imported.result->integer(NSXMLParserErrorLineNumber), 3);
}

TEST(GPXFileImporter, ReportsAFileThatCannotBeOpened) {
    Importing importing;
    const TemporaryFolder folder;
    const Imported imported = importing.file(folder.file("missing.gpx"));
    ASSERT_NE(imported.result, nullptr);
    EXPECT_THAT(imported.calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 0}",
                            "error: " + testing::textOf(imported.result), "endTransfer: 2"));
    EXPECT_EQ(imported.log.size(), 2U);
}

TEST(GPXFileImporter, ReportsAnEmptyFile) {
    Importing importing;
    const Imported imported = importing.document("");
    ASSERT_NE(imported.result, nullptr);
    EXPECT_EQ(imported.result->code(), 4);
    EXPECT_EQ(imported.calls.size(), 3U);
}

TEST(GPXFileImporter, StopsTheImportAtAStructuralErrorAndReturnsTheParsersError) {
    const Imported imported = importGPX("<wpt lat='1' lon='2'/><rtept lat='1' lon='2'/>");
    ASSERT_NE(imported.result, nullptr);
    EXPECT_EQ(imported.result->domain(), NSXMLParserErrorDomain);
    EXPECT_EQ(imported.result->code(), NSXMLParserDelegateAbortedParseError);
    EXPECT_THAT(imported.calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 1}", "newRoute: nil",
                            "error: com.Quorvel.GPSPlugin.ErrorDomain -3 {NSLocalizedDescription: "
                            "\"rtept outside of route\", NSLocalizedRecoverySuggestion: \"Try a "
                            "different file\"}",
                            "endTransfer: 2"));
    EXPECT_THAT(imported.log, IsEmpty());
}

TEST(GPXFileImporter, EndsTheStructuralErrorBeforeTheMissingPath) {
    Importing importing;
    static_cast<void>(importing.document(gpx("<trkpt/>")));
    ASSERT_EQ(importing.spy->errors.size(), 1U);
    const ErrorPtr error = std::get<ErrorPtr>(importing.spy->errors[0]);
    EXPECT_EQ(error->domain(), "com.Quorvel.GPSPlugin.ErrorDomain");
    EXPECT_EQ(error->code(), -3);
    const ErrorInfo expected = {
        {"NSLocalizedDescription", "trkpt found while not in track segment"},
        {"NSLocalizedRecoverySuggestion", "Try a different file"}};
    EXPECT_EQ(error->userInfo(), expected);
    EXPECT_EQ(error->find(NSFilePathErrorKey), nullptr);
    EXPECT_EQ(error->underlyingError(), nullptr);
}

TEST(GPXFileImporter, KeepsWhatWasSentBeforeAStructuralError) {
    const Imported imported = importGPX(
        "<trk><trkseg><trkpt lat='1' lon='2'/><trkpt lat='3' lon='4'/></trkseg><trkpt/></trk>",
        testing::onlyTracks);
    EXPECT_NE(imported.result, nullptr);
    EXPECT_THAT(imported.data(),
                ElementsAre("newTrack: nil", "newTrackSegment",
                            "trackPoint: (1, 2, 0, 0, 0) extra: nil",
                            "trackPoint: (3, 4, 0, 0, 0) extra: nil",
                            ::testing::StartsWith("error: com.Quorvel.GPSPlugin.ErrorDomain -3")));
}

TEST(GPXFileImporter, ForgetsAStructuralErrorBeforeTheNextPass) {
    Importing importing(testing::onlyRoutes);
    EXPECT_NE(importing.document(gpx("<ele/>")).result, nullptr);
    const Imported next = importing.document("<gpx>");
    ASSERT_NE(next.result, nullptr);
    EXPECT_THAT(next.data(), ElementsAre("error: " + testing::textOf(next.result)));
    EXPECT_EQ(next.log.size(), 2U);
}

TEST(GPXFileImporter, ReadsAnyNumberOfFiles) {
    Importing importing(testing::onlyWaypoints);
    for (const std::string name : {"A", "B", "C"}) {
        const Imported imported =
            importing.document(gpx("<wpt lat='1' lon='2'><name>" + name + "</name></wpt>"));
        EXPECT_EQ(imported.result, nullptr);
        EXPECT_THAT(imported.data(),
                    ElementsAre("wayPoint: (1, 2, 0, 0, 0) extra: {name: \"" + name + "\"}"));
    }
}

TEST(GPXFileImporter, CountsEachFileAnew) {
    Importing importing(testing::onlyWaypoints);
    EXPECT_EQ(importing.document(gpx("<wpt/><wpt/>")).calls.front(),
              "startTransfer: nil kind: 3 extra: {count: int 2}");
    EXPECT_EQ(importing.document(gpx("<wpt/>")).calls.front(),
              "startTransfer: nil kind: 3 extra: {count: int 1}");
}

TEST(GPXFileImporter, StumblesOverTheStateThatAFailedImportLeft) {
    Importing importing(testing::onlyTracks);
    EXPECT_NE(importing.document("<gpx xmlns='" PELLUVIA_GPX11_NAMESPACE "'><trk><trkseg>").result,
              nullptr);
    const Imported next = importing.document(gpx("<trk><trkseg/></trk>"));
    EXPECT_THAT(next.data(),
                ElementsAre(::testing::HasSubstr("trkseg found while in track segment already")));
}

TEST(GPXFileImporter, AnnouncesAnyKindThatAPassIsRunFor) {
    const TemporaryFolder folder;
    Importing importing;
    importing.importer->setFileURL(URL::fileURLWithPath(
        folder.write("all.gpx", gpx("<wpt/><rte><rtept/></rte><trk><trkseg/></trk>"))));
    EXPECT_EQ(importing.importer->runParser(7), nullptr);
    EXPECT_THAT(importing.spy->calls,
                ElementsAre("startTransfer: nil kind: 7 extra: {count: int 0}", "endTransfer: 7"));
}

TEST(GPXFileImporter, ExpectsNothingInAPassBeforeAnyCount) {
    const TemporaryFolder folder;
    Importing importing;
    importing.importer->setFileURL(
        URL::fileURLWithPath(folder.write("one.gpx", gpx("<wpt lat='1' lon='2'/>"))));
    EXPECT_EQ(importing.importer->runParser(transferKind::waypoints), nullptr);
    EXPECT_THAT(importing.spy->calls,
                ElementsAre("startTransfer: nil kind: 3 extra: {count: int 0}",
                            "wayPoint: (1, 2, 0, 0, 0) extra: {}", "endTransfer: 3"));
}

TEST(GPXFileImporter, LetsAnExceptionOfTheReceiverThrough) {
    Importing importing;
    importing.spy->onCall = [](const std::string &line) {
        if (line.starts_with("wayPoint")) {
            throw std::runtime_error("enough");
        }
    };
    const TemporaryFolder folder;
    const std::string path = folder.write("one.gpx", gpx("<wpt/>"));
    EXPECT_THROW(static_cast<void>(importing.importer->processFile(path)), std::runtime_error);
}

TEST(GPXFileImporter, FallsBackToTheEnglishText) {
    EXPECT_EQ(Importing().importer->getLocalErrorFromString("Try a different file"),
              "Try a different file");
}

TEST(GPXFileImporter, LetsAnotherThreadReadAndSetTheFileURL) {
    Importing importing;
    std::thread other([&importing] {
        for (int round = 0; round < 1000; ++round) {
            importing.importer->setFileURL(
                URL::fileURLWithPath("/somewhere/else/" + std::string(100, 'x')));
        }
    });
    for (int round = 0; round < 1000; ++round) {
        const auto url = importing.importer->fileURL();
        EXPECT_TRUE(!url || url->path().starts_with("/somewhere/else/"));
    }
    other.join();
}

} // namespace
} // namespace pelluvia
