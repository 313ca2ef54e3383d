// SPDX-License-Identifier: MIT

#include <tests/tools/LiveReceiver.h>
#include <tests/tools/Pelluvia.h>

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using testing::LiveReceiver;
using ::testing::Not;
using testing::Outcome;
using testing::readFile;
using testing::ride;
using testing::TemporaryFolder;

/// The summary of a recording: the two counters, and what there is of tracks, routes and waypoints.
std::string summary(int slopeTests, int pointTests, const std::string &counts) {
    return "[\n  {\"name\":\"slopeEqualTossedPoints\",\"value\":" + std::to_string(slopeTests) +
           "},\n  {\"name\":\"pointEqualTossedPoints\",\"value\":" + std::to_string(pointTests) +
           "},\n" + counts + "\n]\n";
}

std::string entry(const std::string &name, int value) {
    return "  {\"name\":\"" + name + "\",\"value\":" + std::to_string(value) + "}";
}

std::string countsOf(int tracks, int routes, int waypoints) {
    return entry("TrackCount", tracks) + ",\n" + entry("RouteCount", routes) + ",\n" +
           entry("WayPointCount", waypoints) + ",\n" + entry("POICount", 0) + ",\n" +
           entry("LapCount", 0);
}

std::string trackPointLine(double latitude, double longitude) {
    return "{\"call\":\"trackPoint:extra:\",\"point\":{\"latitude\":" + std::to_string(latitude) +
           ",\"longitude\":" + std::to_string(longitude) +
           ",\"altitude\":0.0,\"time\":0,\"test\":0},\"extra\":null}\n";
}

/// A track that goes straight to a bend, whose points are half a degree apart.
std::string bentTrack() {
    return "{\"call\":\"startTransfer:kind:extra:\",\"kind\":1,\"extra\":null}\n"
           "{\"call\":\"newTrack:\",\"extra\":{\"name\":\"Bend\"}}\n" +
           trackPointLine(10.0, 20.0) + trackPointLine(10.5, 20.5) + trackPointLine(11.0, 21.0) +
           trackPointLine(11.5, 20.5);
}
const std::string endOfTracks = "{\"call\":\"endTransfer:\",\"kind\":1}\n";

int countOf(const std::string &text, const std::string &part) {
    int count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) {
        ++count;
    }
    return count;
}

Outcome convertLog(const std::string &log, std::vector<std::string> options) {
    std::vector<std::string> arguments = {"convert", "--from", "calls", "--to", "calls"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {"-", "-"});
    return testing::pelluvia({.arguments = arguments, .input = log});
}

TEST(ConvertRecording, ReplaysWaypointsRoutesAndTracksWithoutCounts) {
    const Outcome outcome =
        testing::pelluvia({"convert", "--record", "--to", "calls", ride(), "-"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, IsEmpty());
    const auto at = [&](const std::string &text) { return outcome.output.find(text); };
    const std::string start = R"({"call":"startTransfer:kind:extra:","kind":)";
    EXPECT_EQ(at(start + "3,\"extra\":null}"), 0U);
    EXPECT_LT(at("{\"call\":\"wayPoint:"), at(start + "2,\"extra\":null}"));
    EXPECT_LT(at("{\"call\":\"routePoint:"), at(start + "1,\"extra\":null}"));
    EXPECT_EQ(countOf(outcome.output, "{\"call\":\"startTransfer:"), 3);
    EXPECT_EQ(countOf(outcome.output, "{\"call\":\"newTrackSegment\"}"), 1);
    EXPECT_EQ(countOf(outcome.output, "{\"call\":\"trackPoint:"), 3);
    EXPECT_EQ(countOf(outcome.output, "gpsStateChange"), 0);
}

TEST(ConvertRecording, NothingIsThinnedUnlessAskedFor) {
    const Outcome recorded = convertLog(bentTrack() + endOfTracks, {"--record"});
    EXPECT_EQ(recorded.status, 0);
    EXPECT_EQ(countOf(recorded.output, "{\"call\":\"trackPoint:"), 4);
}

TEST(ConvertRecording, TracksAreThinnedWithTheRecordersTolerances) {
    const Outcome thinned = convertLog(bentTrack() + endOfTracks, {"--minimize"});
    EXPECT_EQ(thinned.status, 0);
    EXPECT_EQ(countOf(thinned.output, "{\"call\":\"trackPoint:"), 3);
    EXPECT_THAT(thinned.output, Not(HasSubstr("\"latitude\":10.5,")));
}

TEST(ConvertRecording, AToleranceAsksForThinning) {
    // Every point is the same as the one before when a whole degree makes no difference.
    const Outcome thinned = convertLog(bentTrack() + endOfTracks, {"--point-slop", "1"});
    EXPECT_EQ(thinned.status, 0);
    EXPECT_EQ(countOf(thinned.output, "{\"call\":\"trackPoint:"), 2);

    const Outcome strict = convertLog(bentTrack() + endOfTracks, {"--slope-slop", "0"});
    EXPECT_EQ(countOf(strict.output, "{\"call\":\"trackPoint:"), 4);
}

TEST(ConvertRecording, TheSummaryIsWrittenBesideTheTarget) {
    const TemporaryFolder folder;
    const std::string log = folder.write("log.jsonl", bentTrack() + endOfTracks);
    const std::string telemetry = folder.write("telemetry.json", "old");
    const Outcome outcome = testing::pelluvia({"convert", "--force", "--minimize", "--telemetry",
                                               telemetry, log, folder.file("out.gpx")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, IsEmpty());
    EXPECT_EQ(readFile(telemetry),
              summary(1, 0, countsOf(1, 0, 0) + ",\n" + entry("trackPointCount", 3)));
    EXPECT_EQ(countOf(readFile(folder.file("out.gpx")), "<trkpt "), 3);
}

TEST(ConvertRecording, SeveralSourcesMakeOneRecording) {
    const TemporaryFolder folder;
    const std::string log =
        folder.write("a.nmea", "$GPGGA,120000,4807.038,N,01131.000,E,1,8,0.9,545.4,M,46.9,M,,\r\n");
    const Outcome outcome = testing::pelluvia(
        {"convert", "--telemetry", "-", ride(), log, ride(), folder.file("out.jsonl")});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, summary(0, 0,
                                      countsOf(3, 2, 2) + ",\n" + entry("trackPointCount", 7) +
                                          ",\n" + entry("routePointCount", 4)));
    EXPECT_EQ(countOf(readFile(folder.file("out.jsonl")), "{\"call\":\"startTransfer:"), 3);
}

TEST(ConvertRecording, OnlyTheChosenKindsAreRecorded) {
    const TemporaryFolder folder;
    const Outcome outcome = testing::pelluvia(
        {"convert", "--only", "waypoints", "--telemetry", "-", ride(), folder.file("out.gpx")});
    EXPECT_EQ(outcome.output, summary(0, 0, countsOf(0, 0, 1)));
}

TEST(ConvertRecording, AnEmptyRecordingReplaysNothing) {
    const Outcome outcome = convertLog("", {"--record"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, IsEmpty());
}

TEST(ConvertRecording, RoutesReachALogOfSentencesWithTheirPoints) {
    const Outcome outcome =
        testing::pelluvia({"convert", "--record", "--only", "routes", "--to", "nmea", ride(), "-"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("$GPRTE,"), HasSubstr("$GPWPL,")));
}

TEST(ConvertRecording, WhatCameBeforeAFaultIsReplayedAndKept) {
    const TemporaryFolder folder;
    const std::string log = folder.write("log.jsonl", bentTrack() + "nonsense\n");
    const std::string target = folder.file("out.gpx");
    const std::string telemetry = folder.write("telemetry.json", "old");
    const Outcome outcome = testing::pelluvia(
        {"convert", "--force", "--minimize", "--telemetry", telemetry, log, target});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("log.jsonl:7:"), HasSubstr("out.gpx is partial"),
                                      HasSubstr("telemetry.json.partial is partial"),
                                      HasSubstr("telemetry.json is as it was")));
    EXPECT_EQ(countOf(readFile(target), "<trkpt "), 3);
    EXPECT_EQ(readFile(telemetry), "old");
    EXPECT_THAT(readFile(telemetry + ".partial"), HasSubstr(entry("trackPointCount", 3)));
}

TEST(ConvertRecording, AFaultInADocumentIsSaidAsWithoutARecorder) {
    const std::string bad = testing::fixture("gpximport/trkpt-in-trkpt.gpx");
    const Outcome outcome = testing::pelluvia({"convert", "--record", "--to", "calls", bad, "-"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("trkpt found while in track point already"));
    // The recorder keeps what was transferred; errors go to who watches it.
    EXPECT_THAT(outcome.output, Not(HasSubstr("error:")));
}

TEST(ConvertRecording, ATransferThatIsNotEndedIsReplayedToo) {
    const Outcome outcome = convertLog(bentTrack(), {"--record"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(countOf(outcome.output, "{\"call\":\"trackPoint:"), 4);
    EXPECT_TRUE(outcome.output.ends_with(endOfTracks));

    const Outcome route =
        convertLog("{\"call\":\"newRoute:\",\"extra\":null}\n"
                   "{\"call\":\"wayPoint:extra:\",\"point\":{\"latitude\":1.0,\"longitude\":2.0,"
                   "\"altitude\":0.0,\"time\":0,\"test\":0},\"extra\":null}\n",
                   {"--record"});
    EXPECT_EQ(countOf(route.output, "{\"call\":\"routePoint:"), 1);
}

TEST(ConvertRecording, ASummaryThatCannotBeWrittenLeavesEverythingAsItWas) {
    const TemporaryFolder folder;
    const std::string target = folder.write("out.gpx", "good");
    for (const std::string &telemetry :
         {folder.file("missing/t.json"), folder.path().string(), std::string()}) {
        const Outcome outcome =
            testing::pelluvia({"convert", "--force", "--telemetry", telemetry, ride(), target});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_THAT(outcome.errors, HasSubstr("pelluvia: cannot write " + telemetry));
        EXPECT_EQ(readFile(target), "good");
    }
    const Outcome full =
        testing::pelluvia({"convert", "--force", "--telemetry", "/dev/full", ride(), target});
    EXPECT_EQ(full.status, 3);
    EXPECT_THAT(full.errors, HasSubstr("cannot write /dev/full: "));
    EXPECT_EQ(readFile(target), "good");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(ConvertRecording, ATargetThatCannotBeWrittenLeavesNoSummary) {
    const TemporaryFolder folder;
    const std::string telemetry = folder.write("t.json", "good");
    for (const std::string &target : {folder.file("missing/out.gpx"), std::string("/dev/full")}) {
        const Outcome outcome = testing::pelluvia(
            {"convert", "--force", "--to", "gpx", "--telemetry", telemetry, ride(), target});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(readFile(telemetry), "good");
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(ConvertRecording, WhatMakesNoSenseIsWrongUsage) {
    const TemporaryFolder folder;
    const std::string target = folder.file("out.gpx");
    fs::create_symlink("out.gpx", folder.file("link.json"));
    using Arguments = std::vector<std::string>;
    for (const Arguments &options :
         {Arguments{"--point-slop", "-1"}, Arguments{"--slope-slop", "-0.001", "--minimize"},
          Arguments{"--point-slop", "nan"}, Arguments{"--slope-slop", "NaN"},
          Arguments{"--slope-slop", "inf"}, Arguments{"--point-slop", "1e300"},
          Arguments{"--point-slop", "wide"}, Arguments{"--point-slop", "1,5"},
          Arguments{"--point-slop", "1 "}, Arguments{"--point-slop", ""},
          Arguments{"--slope-slop", "0x1"}, Arguments{"--telemetry"},
          Arguments{"--telemetry", target}, Arguments{"--telemetry", folder.file("./out.gpx")},
          Arguments{"--telemetry", folder.file("link.json")}, Arguments{"--classic", "--record"},
          Arguments{"--classic", "--telemetry", "t.json"}}) {
        Arguments arguments = {"convert", ride(), target};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = testing::pelluvia(arguments);
        EXPECT_EQ(outcome.status, 2) << options[0];
        EXPECT_THAT(outcome.errors, HasSubstr(options[0]));
        EXPECT_FALSE(fs::exists(target));
    }
    for (const char *output : {"-", "/dev/stdout"}) {
        const Outcome outcome =
            testing::pelluvia({"convert", "--to", "gpx", "--telemetry", "-", ride(), output});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.output, IsEmpty());
    }
}

TEST(ConvertRecording, ASummaryNeverReplacesASource) {
    const TemporaryFolder folder;
    const std::string text = readFile(ride());
    const std::string source = folder.write("ride.gpx", text);
    fs::create_symlink("ride.gpx", folder.file("link.gpx"));
    for (const std::string &telemetry :
         {source, folder.file("./ride.gpx"), folder.file("link.gpx")}) {
        const Outcome outcome = testing::pelluvia(
            {"convert", "--telemetry", telemetry, ride(), source, folder.file("out.gpx")});
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.errors, HasSubstr("--telemetry: a source is read there"));
        EXPECT_EQ(readFile(source), text);
        EXPECT_FALSE(fs::exists(folder.file("out.gpx")));
    }
    // What is read from standard input and what is written to standard output are two places.
    const Outcome piped = testing::pelluvia(
        {.arguments = {"convert", "--telemetry", "-", "-", folder.file("out.gpx")}, .input = text});
    EXPECT_EQ(piped.status, 0);
    EXPECT_THAT(piped.output, HasSubstr("TrackCount"));
}

TEST(ConvertRecording, AReplayShowsANumberAsItsShareIsNotKnown) {
    const TemporaryFolder folder;
    std::string points = "<gpx>";
    for (int i = 0; i < 300; ++i) {
        points += "<wpt lat=\"47.1\" lon=\"8.5\"/>";
    }
    const std::string path = folder.write("many.gpx", points + "</gpx>");
    const Outcome shown =
        testing::pelluvia({.arguments = {"convert", "--record", path, "-"}, .hasTerminal = true});
    EXPECT_EQ(shown.status, 0);
    const std::size_t share = shown.errors.find(" %");
    ASSERT_NE(share, std::string::npos); // while it is recorded
    EXPECT_NE(shown.errors.find("waypoints 256 points", share), std::string::npos);
    EXPECT_TRUE(shown.errors.ends_with("\r\x1B[K"));
}

const std::string straight = "$GPRMC,120000,A,4800.000,N,01100.000,E,10.0,,150824,,,A\r\n"
                             "$GPRMC,120001,A,4801.000,N,01101.000,E,10.0,,150824,,,A\r\n"
                             "$GPRMC,120002,A,4802.000,N,01102.000,E,10.0,,150824,,,A\r\n";

TEST(ConvertRecording, AnInterruptEndsTheTransferAndReplaysIt) {
    for (const int number : {SIGINT, SIGTERM}) {
        const TemporaryFolder folder;
        const std::string target = folder.file("out.gpx");
        LiveReceiver receiver({"--minimize", "--telemetry", folder.file("t.json"), target});
        receiver.sendAndWait(straight);
        receiver.signal(number);
        const Outcome outcome = receiver.outcome();
        EXPECT_EQ(outcome.status, 0);
        const std::string document = readFile(target);
        EXPECT_EQ(countOf(document, "<trkpt "), 2);
        EXPECT_THAT(document, HasSubstr("<time>2024-08-15T12:00:02Z</time>"));
        EXPECT_TRUE(document.ends_with("</trkseg>\n</trk>\n</gpx>\n")) << document;
        EXPECT_EQ(readFile(folder.file("t.json")),
                  summary(1, 0, countsOf(1, 0, 0) + ",\n" + entry("trackPointCount", 2)));
    }
}

TEST(ConvertRecording, OfALostReceiverIsReplayedWhatItHadSent) {
    const TemporaryFolder folder;
    const std::string target = folder.file("out.gpx");
    LiveReceiver receiver({"--record", target});
    receiver.sendAndWait(straight);
    receiver.hangUp();
    const Outcome outcome = receiver.outcome();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                AllOf(HasSubstr("the receiver was lost: "), HasSubstr("out.gpx is partial")));
    const std::string document = readFile(target);
    EXPECT_EQ(countOf(document, "<trkpt "), 3);
    EXPECT_TRUE(document.ends_with("</trkseg>\n</trk>\n</gpx>\n")) << document;
}

} // namespace
} // namespace pelluvia
