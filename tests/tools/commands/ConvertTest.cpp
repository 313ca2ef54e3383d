// SPDX-License-Identifier: MIT

#include <tests/tools/Pelluvia.h>

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using testing::fixture;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::Outcome;
using testing::readFile;
using testing::ride;
using testing::TemporaryFolder;

/// Fails unless the command succeeded without a word.
void expectDone(const Outcome &outcome) {
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.errors, IsEmpty());
}

std::string converted(const std::string &source, const std::string &to) {
    const Outcome outcome = testing::pelluvia({"convert", "--to", to, source, "-"});
    expectDone(outcome);
    return outcome.output;
}

TEST(Convert, WritesAGPXFile) {
    const TemporaryFolder folder;
    const Outcome outcome = testing::pelluvia({"convert", ride(), folder.file("out.gpx")});
    expectDone(outcome);
    EXPECT_THAT(outcome.output, IsEmpty());
    const std::string document = readFile(folder.file("out.gpx"));
    EXPECT_THAT(document, HasSubstr("creator=\"GPXExporter\""));
    EXPECT_THAT(document, HasSubstr("<wpt lat=\"47.5\" lon=\"8.25\">"));
    EXPECT_TRUE(document.ends_with("</trkseg>\n</trk>\n</gpx>\n")) << document;
}

TEST(Convert, GPXIsTheSameOverALogOfItsCalls) {
    const TemporaryFolder folder;
    const std::string log = folder.file("log.jsonl");
    expectDone(testing::pelluvia({"convert", ride(), log}));
    EXPECT_EQ(converted(log, "gpx"), converted(ride(), "gpx"));
}

TEST(Convert, ALogBecomesTheSameLog) {
    const std::string calls = converted(ride(), "calls");
    const Outcome again = testing::pelluvia(
        {.arguments = {"convert", "--from", "calls", "--to", "calls", "-", "-"}, .input = calls});
    expectDone(again);
    EXPECT_EQ(again.output, calls);
}

TEST(Convert, ALogHoldsTheErrorsOfTheImport) {
    const Outcome outcome = testing::pelluvia(
        {"convert", "--to", "calls", fixture("gpximport/trkpt-in-trkpt.gpx"), "-"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(
        outcome.output,
        HasSubstr(R"({"call":"error:","error":{"domain":"com.Quorvel.GPSPlugin.ErrorDomain",)"
                  R"("code":-3,"userInfo":{"NSLocalizedDescription":"trkpt found while in )"
                  R"(track point already","NSLocalizedRecoverySuggestion":"Try a )"
                  R"(different file"}}})"));
}

TEST(Convert, ReadsStandardInputAsOftenAsAnImportMust) {
    const Outcome outcome =
        testing::pelluvia({.arguments = {"convert", "-", "-"}, .input = readFile(ride())});
    expectDone(outcome);
    EXPECT_EQ(outcome.output, converted(ride(), "gpx"));
}

TEST(Convert, SourcesFollowOneAnotherIntoOneTarget) {
    const std::string calls = converted(ride(), "calls");
    const TemporaryFolder folder;
    const std::string log = folder.write("log.jsonl", calls);
    const Outcome outcome =
        testing::pelluvia({"convert", "--to", "calls", ride(), log, ride(), "-"});
    expectDone(outcome);
    EXPECT_EQ(outcome.output, calls + calls + calls);
}

TEST(Convert, LogsThatEndTheExchangeMayBeFollowed) {
    const TemporaryFolder folder;
    const std::string finished = folder.write(
        "a.jsonl", converted(ride(), "calls") + "{\"call\":\"gpsStateChange:\",\"state\":0}\n");
    const Outcome outcome = testing::pelluvia({"convert", finished, finished, ride(), "-"});
    expectDone(outcome);
    const Outcome expected = testing::pelluvia({"convert", ride(), ride(), ride(), "-"});
    EXPECT_EQ(outcome.output, expected.output);

    // In a log it is a call like any other.
    EXPECT_EQ(converted(finished, "calls"), readFile(finished));
}

TEST(Convert, ConvertsTheChosenKindsOnly) {
    const std::string all = converted(ride(), "calls");
    const Outcome imported =
        testing::pelluvia({"convert", "--only", "tracks", "--to", "calls", ride(), "-"});
    expectDone(imported);
    EXPECT_EQ(imported.output, all.substr(all.rfind("{\"call\":\"startTransfer:")));

    const Outcome replayed = testing::pelluvia(
        {.arguments = {"convert", "--only", "tracks", "--from", "calls", "--to", "calls", "-", "-"},
         .input = all});
    expectDone(replayed);
    EXPECT_EQ(replayed.output, imported.output);

    const Outcome others =
        testing::pelluvia({"convert", "--only=routes,waypoints", "--to", "calls", ride(), "-"});
    EXPECT_EQ(others.output + imported.output, all);
}

TEST(Convert, ClassicIsAccepted) {
    const Outcome outcome = testing::pelluvia({"convert", "--classic", ride(), "-"});
    expectDone(outcome);
    EXPECT_EQ(outcome.output, converted(ride(), "gpx"));
}

TEST(Convert, TheCreatorIsWhatTheHeaderSays) {
    const TemporaryFolder folder;
    const std::string creator = "Tom & \"Z\xC3\xBCri\" <1%s>";
    const Outcome outcome = testing::pelluvia({"convert", "--creator", creator, ride(), "-"});
    expectDone(outcome);
    EXPECT_THAT(outcome.output,
                HasSubstr("creator=\"Tom &amp; &quot;Z&#252;ri&quot; &lt;1%s&gt;\"\n"));
}

TEST(Convert, ATargetMayBeOneOfItsSources) {
    const TemporaryFolder folder;
    const std::string path = folder.write("ride.gpx", readFile(ride()));
    expectDone(testing::pelluvia({"convert", "--force", path, path}));
    EXPECT_EQ(readFile(path), converted(ride(), "gpx"));
}

TEST(Convert, StandardOutputIsAppendedToWhereTheShellSaysSo) {
    const TemporaryFolder folder;
    const std::string path = folder.write("all", "before\n");
    for (const char *target : {"-", "/dev/stdout"}) {
        expectDone(testing::pelluvia(
            {.arguments = {"convert", "--to", "gpx", ride(), target}, .outputFile = path}));
    }
    const std::string document = converted(ride(), "gpx");
    EXPECT_EQ(readFile(path), "before\n" + document + document);
}

TEST(Convert, WorksInTheWorkingFolder) {
    const TemporaryFolder folder;
    folder.write("a.gpx", readFile(ride()));
    expectDone(
        testing::pelluvia({.arguments = {"convert", "a.gpx", "b.gpx"}, .folder = folder.path()}));
    EXPECT_TRUE(fs::exists(folder.file("b.gpx")));
}

TEST(Convert, SaysThatADocumentHoldsNoPoints) {
    const TemporaryFolder folder;
    folder.write("other.gpx", "<TrainingCenterDatabase><Courses/></TrainingCenterDatabase>");
    const Outcome outcome = testing::pelluvia(
        {.arguments = {"convert", "other.gpx", ride(), "-"}, .folder = folder.path()});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.errors, "other.gpx: no points were found in it\n");
}

TEST(Convert, SaysOfAPackedFileHowToReadIt) {
    const TemporaryFolder folder;
    folder.write("ride.GPX.gz", "\x1F\x8B");
    const Outcome outcome = testing::pelluvia(
        {.arguments = {"convert", "ride.GPX.gz", "out.gpx"}, .folder = folder.path()});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.errors, HasSubstr("ride.GPX.gz: packed files are not read; unpack it on "
                                          "the way: zcat FILE | pelluvia convert "));
}

TEST(Convert, ShowsProgressOnATerminalAndTakesItAway) {
    const TemporaryFolder folder;
    std::string points = "<gpx><trk><trkseg>";
    for (int i = 0; i < 1000; ++i) {
        points += "<trkpt lat=\"47.1\" lon=\"8.5\"/>";
    }
    const std::string path = folder.write("long.gpx", points + "</trkseg></trk></gpx>");
    const Outcome shown =
        testing::pelluvia({.arguments = {"convert", path, "-"}, .hasTerminal = true});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.errors, HasSubstr("tracks    [#"));
    EXPECT_TRUE(shown.errors.ends_with("\r\x1B[K"));

    const Outcome quiet =
        testing::pelluvia({.arguments = {"convert", "-q", path, "-"}, .hasTerminal = true});
    EXPECT_THAT(quiet.errors, IsEmpty());
    expectDone(testing::pelluvia({"convert", path, "-"}));
}

TEST(Convert, ReportsOfALogAreSaidAndConverted) {
    const std::string log = "{\"call\":\"warning:\",\"object\":\"battery\\u001b low\"}\n";
    const Outcome outcome = testing::pelluvia(
        {.arguments = {"convert", "--from", "calls", "--to", "calls", "-", "-"}, .input = log});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, log);
    EXPECT_EQ(outcome.errors, "standard input: reported by the producer: battery\\x1B low\n");
}

TEST(Convert, VerboseShowsTheLogLines) {
    const TemporaryFolder folder;
    const std::string path = folder.write("cut.gpx", "<gpx>");
    EXPECT_THAT(testing::pelluvia({"convert", "--verbose", path, "-"}).errors,
                HasSubstr("log: parse error, but continuing, since it might be readible"));
    EXPECT_THAT(testing::pelluvia({"convert", path, "-"}).errors, Not(HasSubstr("readible")));
}

TEST(Convert, TheResultDoesNotDependOnLocaleOrTimeZone) {
    const std::string expected = converted(ride(), "gpx");
    const Outcome outcome =
        testing::pelluvia({.arguments = {"convert", ride(), "-"},
                           .environment = {{"LC_ALL", "de_DE.UTF-8"}, {"TZ", "Asia/Kolkata"}}});
    EXPECT_EQ(outcome.output, expected);
}

} // namespace
} // namespace pelluvia
