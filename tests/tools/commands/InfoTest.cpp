// SPDX-License-Identifier: MIT

#include <tests/tools/Pelluvia.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace pelluvia {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using testing::Outcome;
using testing::readFile;
using testing::ride;
using ::testing::StartsWith;
using testing::TemporaryFolder;

/// What `info` prints of a file with this content, which must be well-formed.
std::string shown(const std::string &content, bool asJSON = true) {
    const TemporaryFolder folder;
    folder.write("a.gpx", content);
    std::vector<std::string> arguments = {"info", "a.gpx"};
    if (asJSON) {
        arguments.emplace_back("--json");
    }
    const Outcome outcome =
        testing::pelluvia({.arguments = arguments, .folder = folder.path().string()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, IsEmpty());
    return outcome.output;
}

TEST(Info, ShowsATableForAReader) {
    EXPECT_EQ(shown(readFile(ride()), false),
              "a.gpx\n"
              "  waypoints   1\n"
              "  routes      1 with 2 points\n"
              "  tracks      1 with 2 segments and 3 points\n"
              "  latitude    47.1 to 47.5\n"
              "  longitude   8.25 to 8.5\n"
              "  time        2020-06-01T07:00:00Z to 2020-06-01T08:26:45Z\n"
              "  has         names, comments\n"
              "\n");
}

TEST(Info, ShowsOneObjectALineForAProgram) {
    EXPECT_EQ(shown(readFile(ride())),
              R"({"file":"a.gpx","hasName":true,"hasComment":true,"hasDescription":false,)"
              R"("hasType":false,"hasSrc":false,"hasLink":false,"waypoints":1,"tracks":1,)"
              R"("tracksegments":2,"routes":1,"routepoints":2,"trackpoints":3,)"
              R"("bounds":{"minlat":47.1,"minlon":8.25,"maxlat":47.5,"maxlon":8.5},)"
              R"("firstTime":"2020-06-01T07:00:00Z","lastTime":"2020-06-01T08:26:45Z",)"
              R"("partial":false})"
              "\n");
}

TEST(Info, AFileOfNothingHasNeitherBoundsNorTimes) {
    EXPECT_THAT(shown("<gpx/>"), HasSubstr(R"("waypoints":0,"tracks":0,"tracksegments":0,)"
                                           R"("routes":0,"routepoints":0,"trackpoints":0,)"
                                           R"("bounds":null,"firstTime":null,"lastTime":null)"));
    EXPECT_THAT(shown("<gpx/>", false), HasSubstr("  has         no texts\n"));
}

TEST(Info, PositionsOffTheGlobeAndNoPositionsDoNotCount) {
    EXPECT_THAT(
        shown(R"(<gpx><wpt lat="1" lon="2"/><wpt lat="90.1" lon="0"/><wpt lat="-91" lon="0"/>)"
              R"(<wpt lat="0" lon="180.5"/><wpt lat="0" lon="-181"/><wpt lat="50"/>)"
              R"(<wpt lon="50"/><wpt lat="" lon=""/><wpt lat="NaN" lon="0"/>)"
              R"(<wpt lat="1e400" lon="0"/><wpt lat="north" lon="0"/></gpx>)"),
        HasSubstr(R"("waypoints":11,)"
                  R"("tracks":0,"tracksegments":0,"routes":0,"routepoints":0,)"
                  R"("trackpoints":0,)"
                  R"("bounds":{"minlat":1.0,"minlon":2.0,"maxlat":1.0,"maxlon":2.0})"));
}

TEST(Info, TheWholeGlobeCounts) {
    EXPECT_THAT(
        shown(R"(<gpx><trk><trkseg><trkpt lat="-90" lon="180"/><trkpt lat="90" lon="-180"/>)"
              "</trkseg></trk></gpx>"),
        HasSubstr(R"({"minlat":-90.0,"minlon":-180.0,"maxlat":90.0,"maxlon":180.0})"));
}

TEST(Info, OnlyTimesOfPointsCount) {
    EXPECT_THAT(
        shown("<gpx><metadata><time>1999-01-01T00:00:00Z</time></metadata>"
              "<wpt><time>2001-02-03T04:05:06Z</time>"
              "<extensions><x><time>1998-01-01T00:00:00Z</time></x></extensions></wpt>"
              "<trk><time>1997-01-01T00:00:00Z</time><trkseg><trkpt>"
              "<time> 2000-12-31T23:59:59<!-- a comment -->.75+01:00 </time></trkpt>"
              "<trkpt><time>yesterday</time></trkpt><trkpt><time/></trkpt>"
              "<trkpt><time>1970-01-01T00:00:00Z</time></trkpt></trkseg></trk></gpx>"),
        HasSubstr(R"("firstTime":"2000-12-31T22:59:59Z","lastTime":"2001-02-03T04:05:06Z")"));
}

TEST(Info, PrefixedElementsCountAsTheirLocalNames) {
    EXPECT_THAT(shown("<g:gpx xmlns:g=\"http://www.topografix.com/GPX/1/1\">"
                      "<g:wpt lat=\"1\" lon=\"2\"><g:name>x</g:name></g:wpt></g:gpx>"),
                HasSubstr(R"("hasName":true)"));
}

TEST(Info, ReadsStandardInput) {
    const Outcome outcome =
        testing::pelluvia({.arguments = {"info", "--json", "-"}, .input = readFile(ride())});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith(R"({"file":"-",)"));
    EXPECT_THAT(outcome.output, HasSubstr(R"("trackpoints":3)"));
}

TEST(Info, ABadFileIsPartialAndTheOthersAreHandled) {
    const TemporaryFolder folder;
    folder.write("bad.gpx", "<gpx>\n<wpt lat=\"1\" lon=\"2\"/>\n</trk>");
    const Outcome outcome =
        testing::pelluvia({.arguments = {"info", "--json", "bad.gpx", "missing.gpx", ".", ride()},
                           .folder = folder.path().string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output,
                MatchesRegex("\\{\"file\":\"bad.gpx\",[^\n]*\"waypoints\":1,[^\n]*\"partial\":true"
                             "\\}\n\\{[^\n]*\"partial\":false\\}\n"));
    EXPECT_THAT(outcome.errors, MatchesRegex("bad.gpx:3:[0-9]+: [^\n]*\n"
                                             "pelluvia: what was counted before that is partial\n"
                                             "pelluvia: missing.gpx: No such file or directory\n"
                                             "pelluvia: .: Is a directory\n"));

    const Outcome table =
        testing::pelluvia({.arguments = {"info", "bad.gpx"}, .folder = folder.path().string()});
    EXPECT_THAT(table.output, StartsWith("bad.gpx (partial)\n"));
}

TEST(Info, ShowsWhatLogsOfReceiversAndOfCallsHold) {
    const TemporaryFolder folder;
    const std::string calls = folder.file("ride.jsonl");
    ASSERT_EQ(testing::pelluvia({"convert", ride(), calls}).status, 0);
    const Outcome log = testing::pelluvia({"info", calls});
    EXPECT_EQ(log.status, 0);
    EXPECT_THAT(log.errors, IsEmpty());
    EXPECT_THAT(log.output, HasSubstr("\n  waypoints   1\n"
                                      "  routes      1 with 2 points\n"
                                      "  tracks      1 with 2 segments and 3 points\n"
                                      "  latitude    47.1 to 47.5\n"
                                      "  longitude   8.25 to 8.5\n"
                                      "  time        2020-06-01T07:00:00Z to 2020-06-01T08:26:45Z\n"
                                      "  has         names, comments\n"));

    const std::string sentences = "$GPRMC,120000,A,4807.038,N,01131.000,E,10.0,,150824,,,A\r\n";
    const std::string nmea = folder.write("ride.nmea", sentences);
    const Outcome receiver = testing::pelluvia({"info", "--json", nmea});
    EXPECT_EQ(receiver.status, 0);
    EXPECT_THAT(receiver.output, HasSubstr(R"("trackpoints":1,"bounds":{"minlat":48.1172)"));
    EXPECT_THAT(receiver.errors, HasSubstr("1 sentence, 1 point;"));
    const Outcome piped =
        testing::pelluvia({.arguments = {"info", "--from", "nmea", "-"}, .input = sentences});
    EXPECT_THAT(piped.output, HasSubstr("1 with 1 segment and 1 point\n"));
}

TEST(Info, AFaultInALogIsToldWithWhatWasCountedBefore) {
    const TemporaryFolder folder;
    folder.write("bad.jsonl", "{\"call\":\"newTrack:\",\"extra\":null}\n{\"call\":\"fly:\"}\n");
    const Outcome outcome =
        testing::pelluvia({.arguments = {"info", "bad.jsonl"}, .folder = folder.path().string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.output, StartsWith("bad.jsonl (partial)\n  waypoints   0\n"));
    EXPECT_THAT(outcome.errors, StartsWith("bad.jsonl:2: unknown call \"fly:\"\n"));
}

TEST(Info, AFileOfAnotherFormatIsNotCalledGPX) {
    const TemporaryFolder folder;
    folder.write("log.txt", "$GPRMC,120000,A,4807.038,N,01131.000,E,10.0,,150824,,,A\r\n");
    folder.write("calls.gpx", "{\"call\":\"newTrackSegment\"}\n");
    for (const auto &[file, message] :
         {std::pair("log.txt", "log.txt: an NMEA log and not GPX; --from nmea reads it\n"),
          std::pair("calls.gpx", "calls.gpx: a call log and not GPX; --from calls reads it\n")}) {
        const Outcome shown =
            testing::pelluvia({.arguments = {"info", file}, .folder = folder.path().string()});
        EXPECT_EQ(shown.status, 1);
        EXPECT_THAT(shown.output, IsEmpty());
        EXPECT_EQ(shown.errors, message);
        const Outcome converted = testing::pelluvia(
            {.arguments = {"convert", "--from", "gpx", file, "-"}, .folder = folder.path()});
        EXPECT_EQ(converted.status, 1);
        EXPECT_THAT(converted.errors, StartsWith(message));
    }
}

TEST(Info, FailingToWriteIsNotPassedOver) {
    const Outcome outcome =
        testing::pelluvia({.arguments = {"info", ride()}, .outputFile = "/dev/full"});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "pelluvia: cannot write standard output: No space left on device\n");
}

TEST(Info, AFilesNameNeedNotBeUTF8) {
    const TemporaryFolder folder;
    folder.write("\xFF.gpx", "<gpx/>");
    const Outcome outcome = testing::pelluvia(
        {.arguments = {"info", "--json", "\xFF.gpx"}, .folder = folder.path().string()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, StartsWith(R"({"file":"\ufffd.gpx")"));
}

TEST(Info, AFilesNameDoesNotActOnTheTerminal) {
    const TemporaryFolder folder;
    // NOLINTNEXTLINE(misc-misleading-bidirectional)
    const std::string name = "a\xE2\x80\xAExpg\x7F.gpx";
    folder.write(name, "<gpx/>");
    const auto shown = [&](std::vector<std::string> arguments) {
        return testing::pelluvia(
                   {.arguments = std::move(arguments), .folder = folder.path().string()})
            .output;
    };
    EXPECT_THAT(shown({"info", name}), StartsWith("a\\xE2\\x80\\xAExpg\\x7F.gpx\n"));
    EXPECT_THAT(shown({"info", "--json", name}), StartsWith(R"({"file":"a\u202expg\u007f.gpx")"));
}

} // namespace
} // namespace pelluvia
