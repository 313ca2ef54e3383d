// SPDX-License-Identifier: MIT

#include <tests/tools/Pelluvia.h>

#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <sys/stat.h>
#include <vector>

/// \file
/// What a user sees when something is wrong: the messages, the exit status, and what becomes of the
/// target.

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::ElementsAre;
using testing::fixture;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::MatchesRegex;
using ::testing::Not;
using testing::Outcome;
using testing::readFile;
using testing::ride;
using ::testing::StartsWith;
using testing::TemporaryFolder;

/// A folder with a good target, which every failure must leave alone.
class BadInput : public ::testing::Test {
  protected:
    std::vector<std::string> entries() const {
        std::vector<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder.path())) {
            names.push_back(entry.path().filename().string());
        }
        std::sort(names.begin(), names.end());
        return names;
    }

    Outcome run(std::vector<std::string> arguments) const {
        return testing::pelluvia(
            {.arguments = std::move(arguments), .folder = folder.path().string()});
    }

    void expectGoodTargetUntouched() const { EXPECT_EQ(readFile(folder.file("good.gpx")), "good"); }

    TemporaryFolder folder;
    std::string good = folder.write("good.gpx", "good");
};

TEST_F(BadInput, AMissingSourceMakesNoTarget) {
    for (const char *target : {"new.gpx", "good.gpx", "-"}) {
        const Outcome outcome = run({"convert", "missing.gpx", target});
        EXPECT_EQ(outcome.status, 1);
        EXPECT_EQ(outcome.errors, "pelluvia: missing.gpx: No such file or directory\n");
        EXPECT_THAT(outcome.output, IsEmpty());
        EXPECT_THAT(entries(), ElementsAre("good.gpx"));
    }
    expectGoodTargetUntouched();
}

TEST_F(BadInput, EverySourceIsLookedAtBeforeTheTargetIsMade) {
    fs::create_directory(folder.file("folder.gpx"));
    const Outcome outcome = run({"convert", ride(), "a.gpx", "folder.gpx", "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "pelluvia: a.gpx: No such file or directory\n"
                              "pelluvia: folder.gpx: Is a directory\n");
    EXPECT_THAT(entries(), ElementsAre("folder.gpx", "good.gpx"));
}

TEST_F(BadInput, AMissingSourceOrAFolderIsToldAlsoWhereItsNameHasNoEnding) {
    fs::create_directory(folder.file("folder"));
    const Outcome outcome = run({"convert", "folder", "missing", "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "pelluvia: folder: Is a directory\n"
                              "pelluvia: missing: No such file or directory\n");
    EXPECT_THAT(entries(), ElementsAre("folder", "good.gpx"));
}

TEST_F(BadInput, AnUnreadableSourceMakesNoTarget) {
    // Who may read everything is not stopped by permissions, but by a loop of links.
    fs::create_symlink("loop.gpx", folder.file("loop.gpx"));
    const Outcome outcome = run({"convert", "loop.gpx", "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "pelluvia: loop.gpx: Too many levels of symbolic links\n");
    EXPECT_THAT(entries(), ElementsAre("good.gpx", "loop.gpx"));
}

TEST_F(BadInput, ClosedStandardInputIsAnUnreadableSource) {
    const Outcome outcome = testing::pelluvia({.arguments = {"convert", "-", "new.gpx"},
                                               .folder = folder.path().string(),
                                               .closed = {0}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "pelluvia: standard input: Bad file descriptor\n");
    EXPECT_THAT(entries(), ElementsAre("good.gpx"));
}

struct BadFile {
    const char *name;
    std::string content;
    const char *place;
};

void PrintTo(const BadFile &file, std::ostream *out) {
    *out << file.name;
}

class BadFiles : public BadInput, public ::testing::WithParamInterface<BadFile> {};

TEST_P(BadFiles, AreNamedWithTheirPlaceAndWhatWasReadIsPartial) {
    folder.write("bad.gpx", GetParam().content);
    const std::string message = "bad.gpx:" + std::string(GetParam().place) + ": .*\n";

    Outcome outcome = run({"convert", "bad.gpx", "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                MatchesRegex(message + "pelluvia: new.gpx is partial: it holds what was read "
                                       "before the fault\n"));
    EXPECT_TRUE(readFile(folder.file("new.gpx")).ends_with("</gpx>\n"));
    EXPECT_THAT(entries(), ElementsAre("bad.gpx", "good.gpx", "new.gpx"));

    outcome = run({"convert", "--force", "bad.gpx", "good.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                MatchesRegex(message + "pelluvia: good.gpx.partial is partial: it holds what was "
                                       "read before the fault\n"
                                       "pelluvia: good.gpx is as it was\n"));
    expectGoodTargetUntouched();
    EXPECT_EQ(readFile(folder.file("good.gpx.partial")), readFile(folder.file("new.gpx")));
    EXPECT_THAT(entries(), ElementsAre("bad.gpx", "good.gpx", "good.gpx.partial", "new.gpx"));

    outcome = run({"convert", "bad.gpx", "-"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                MatchesRegex(message + "pelluvia: standard output is partial: .*\n"));
    EXPECT_EQ(outcome.output, readFile(folder.file("new.gpx")));
}

INSTANTIATE_TEST_SUITE_P(
    BadInput, BadFiles,
    ::testing::Values(
        BadFile{"Empty", "", "1:1"},
        BadFile{"Random", "\x9C\x01\xFE\x88\x13q\xC3\xFF\x7F\x02 zz\xF0", "1:[0-9]+"},
        BadFile{"NotWellFormed", "<gpx>\n <wpt lat=\"1\" lon=\"2\"></wpt>\n</trk>", "3:[0-9]+"},
        BadFile{"Truncated", "<gpx>\n <wpt lat=\"1\" lon=\"2\"><na", "2:[0-9]+"},
        BadFile{"NestedTooDeep",
                [] {
                    std::string text;
                    for (int i = 0; i < 100'000; ++i) {
                        text += "<a>";
                    }
                    return text;
                }(),
                "1:[0-9]+"},
        BadFile{"EntityBomb",
                "<!DOCTYPE gpx [<!ENTITY a \"xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx\">"
                "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\">"
                "<!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
                "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\">"
                "<!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\">"
                "<!ENTITY f \"&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;&e;\">]>"
                "<gpx>&f;</gpx>",
                "[0-9]+:[0-9]+"}),
    [](const auto &each) { return each.param.name; });

TEST_F(BadInput, WhatWasSentBeforeTheFaultIsWritten) {
    folder.write("cut.gpx", "<gpx xmlns=\"http://www.topografix.com/GPX/1/1\"><wpt lat=\"1\" "
                            "lon=\"2\"/><wpt lat=\"3\" lon=\"4\"/><wpt");
    EXPECT_EQ(run({"convert", "--only", "waypoints", "cut.gpx", "new.gpx"}).status, 1);
    EXPECT_THAT(readFile(folder.file("new.gpx")),
                AllOf(HasSubstr("<wpt lat=\"1\" lon=\"2\">"),
                      HasSubstr("<wpt lat=\"3\" lon=\"4\">"), HasSubstr("</gpx>\n")));
}

TEST_F(BadInput, APartialResultReplacesNothing) {
    for (const char *source : {"good.gpx.partial", "good.gpx.partial.2"}) {
        folder.write(source, "<gpx>");
    }
    const Outcome outcome =
        run({"convert", "--force", "--from", "gpx", "good.gpx.partial", "good.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("pelluvia: good.gpx.partial.3 is partial: "));
    expectGoodTargetUntouched();
    EXPECT_EQ(readFile(folder.file("good.gpx.partial")), "<gpx>");
    EXPECT_EQ(readFile(folder.file("good.gpx.partial.2")), "<gpx>");
}

TEST_F(BadInput, AFileThatIsThereIsReplacedOnlyWhenTheUserSaysSo) {
    for (const std::vector<std::string> &options :
         {std::vector<std::string>{}, std::vector<std::string>{"--to", "calls"},
          std::vector<std::string>{"--record"}}) {
        std::vector<std::string> arguments = {"convert", ride(), "good.gpx"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = run(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.errors, "pelluvia: good.gpx is there already; --force replaces it\n");
        EXPECT_THAT(entries(), ElementsAre("good.gpx"));
        expectGoodTargetUntouched();
    }
    // What a shell makes of *.gpx.
    fs::copy(ride(), folder.file("friday.gpx"));
    EXPECT_EQ(run({"convert", "friday.gpx", "good.gpx"}).status, 2);
    expectGoodTargetUntouched();

    EXPECT_EQ(run({"convert", "--force", ride(), "good.gpx"}).status, 0);
    EXPECT_THAT(readFile(folder.file("good.gpx")), StartsWith("<?xml"));
}

TEST_F(BadInput, ASummaryReplacesAFileOnlyWhenTheUserSaysSo) {
    const Outcome outcome = run({"convert", "--telemetry", "good.gpx", ride(), "new.gpx"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors, "pelluvia: good.gpx is there already; --force replaces it\n");
    EXPECT_THAT(entries(), ElementsAre("good.gpx"));
    expectGoodTargetUntouched();
}

TEST_F(BadInput, WhatComesBehindBadSourcesIsReadAndEveryFaultIsNamed) {
    folder.write("bad.gpx", "<gpx>");
    folder.write("bad.jsonl", "{\"call\":\"fly:\"}\n");
    const Outcome outcome = run({"convert", "bad.gpx", ride(), "bad.jsonl", ride(), "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                MatchesRegex("bad.gpx:1:[0-9]+: .*\n"
                             "bad.jsonl:1: unknown call \"fly:\"\n"
                             "pelluvia: new.gpx is partial: of 2 of 4 sources it holds what was "
                             "read before the fault\n"));
    EXPECT_EQ(readFile(folder.file("new.gpx")), run({"convert", ride(), ride(), "-"}).output);
}

TEST_F(BadInput, WhatALogLeavesOpenDoesNotTakeInTheNextSource) {
    const std::string opened = R"({"call":"startTransfer:kind:extra:","kind":2,"extra":null})"
                               "\n"
                               R"({"call":"newRoute:","extra":{"name":"half"}})"
                               "\n";
    folder.write("bad.jsonl", opened + "{\"call\":\n");
    const Outcome outcome =
        run({"convert", "--only", "routes,waypoints", "bad.jsonl", ride(), "-"});
    EXPECT_EQ(outcome.status, 1);
    folder.write("whole.jsonl", opened + "{\"call\":\"endTransfer:\",\"kind\":2}\n");
    EXPECT_EQ(outcome.output,
              run({"convert", "--only", "routes,waypoints", "whole.jsonl", ride(), "-"}).output);
}

TEST_F(BadInput, AStructuralErrorIsTheImportersMessageAtItsPlace) {
    fs::copy(fixture("gpximport/trkpt-in-trkpt.gpx"), folder.file("bad.gpx"));
    const Outcome outcome = run({"convert", "bad.gpx", "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, MatchesRegex("bad.gpx:[0-9]+:[0-9]+: trkpt found while in track "
                                             "point already. Try a different file\n"
                                             "pelluvia: new.gpx is partial: .*\n"));
}

TEST_F(BadInput, StrangeNumbersHaveTheirDefinedValues) {
    folder.write("odd.gpx", "<gpx xmlns=\"http://www.topografix.com/GPX/1/1\"><wpt lat=\"NaN\" "
                            "lon=\"inf\"/><wpt lat=\"1e400\" lon=\"-1e400\"/>"
                            "<wpt lat=\"\" lon=\"\"/><wpt/></gpx>");
    const Outcome outcome =
        run({"convert", "--only", "waypoints", "--to", "calls", "odd.gpx", "-"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output,
                HasSubstr(R"("latitude":{"real":"Infinity"},"longitude":{"real":"-Infinity"})"));
    EXPECT_EQ(run({"convert", "odd.gpx", "new.gpx"}).status, 0);
}

TEST_F(BadInput, ABadLogIsNamedWithItsLineAndColumn) {
    folder.write("bad.jsonl", "{\"call\":\"newTrack:\",\"extra\":null}\n{\"call\":\n");
    Outcome outcome = run({"convert", "bad.jsonl", "new.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("bad.jsonl:2:9: syntax error"));
    EXPECT_THAT(readFile(folder.file("new.gpx")), HasSubstr("</gpx>"));

    folder.write("bad.jsonl", "{\"call\":\"fly:\"}\n");
    outcome = run({"convert", "--force", "bad.jsonl", "good.gpx"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, StartsWith("bad.jsonl:1: unknown call \"fly:\"\n"));
    expectGoodTargetUntouched();
}

TEST_F(BadInput, CallsInAnyOrderDoNotStopTheExporter) {
    folder.write("odd.jsonl", R"({"call":"endTransfer:","kind":2}
{"call":"gpsStateChange:","state":0}
{"call":"gpsStateChange:","state":0}
{"call":"newTrackSegment"}
{"call":"trackPoint:extra:","point":{"latitude":1,"longitude":2,"altitude":3,"time":4,"test":5},"extra":null}
{"call":"newTrackSegment"}
{"call":"endTransfer:","kind":1}
{"call":"endTransfer:","kind":1}
{"call":"trackPoint:extra:","point":{"latitude":1,"longitude":2,"altitude":3,"time":9223372036854775807,"test":5},"extra":null}
{"call":"newRoute:","extra":{"name":1,"comment":[],"routeNumber":"x"}}
{"call":"newRoute:","extra":null}
)");
    const Outcome outcome = run({"convert", "odd.jsonl", "new.gpx"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(readFile(folder.file("new.gpx")).ends_with("</gpx>\n"));
}

struct BadTarget {
    const char *name;
    std::string target;
    const char *reason;
};

void PrintTo(const BadTarget &target, std::ostream *out) {
    *out << target.name;
}

class BadTargets : public BadInput, public ::testing::WithParamInterface<BadTarget> {};

TEST_P(BadTargets, AreNamedAndNothingStays) {
    folder.write("file", "");
    for (const char *format : {"gpx", "calls"}) {
        const Outcome outcome = run({"convert", "--to", format, ride(), GetParam().target});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.errors,
                  "pelluvia: cannot write " + GetParam().target + ": " + GetParam().reason + "\n");
        EXPECT_THAT(entries(), ElementsAre("file", "good.gpx"));
    }
}

INSTANTIATE_TEST_SUITE_P(
    BadInput, BadTargets,
    ::testing::Values(BadTarget{"InAMissingFolder", "missing/out.gpx", "No such file or directory"},
                      BadTarget{"BelowAFile", "file/out.gpx", "Not a directory"},
                      BadTarget{"AFolder", "/tmp", "Is a directory"},
                      BadTarget{"WhereNobodyMayWrite", "/proc/self/out.gpx",
                                "No such file or directory"},
                      BadTarget{"FullDisk", "/dev/full", "No space left on device"}),
    [](const auto &each) { return each.param.name; });

TEST_F(BadInput, AFileThatMayNotBeWrittenIsNotReplaced) {
    // Of all files this one refuses even who may write everything.
    const std::string target = "/proc/version";
    const Outcome outcome = run({"convert", "--force", "--to", "gpx", ride(), target});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, StartsWith("pelluvia: cannot write /proc/version: "));
}

TEST_F(BadInput, AFullDiskLeavesTheTargetAsItWas) {
    for (const char *target : {"good.gpx", "new.gpx"}) {
        for (const char *format : {"gpx", "calls"}) {
            const Outcome outcome = testing::pelluvia(
                {.arguments = {"convert", "--force", "--to", format, ride(), target},
                 .folder = folder.path().string(),
                 .fileSizeLimit = 100});
            EXPECT_EQ(outcome.status, 3);
            EXPECT_EQ(outcome.errors,
                      "pelluvia: cannot write " + std::string(target) + ": File too large\n");
            EXPECT_THAT(entries(), ElementsAre("good.gpx"));
            expectGoodTargetUntouched();
        }
    }
}

TEST_F(BadInput, ABadSourceAndAFullDiskAreBothSaid) {
    folder.write("bad.gpx", "<gpx>");
    const Outcome outcome =
        testing::pelluvia({.arguments = {"convert", "--force", "bad.gpx", "good.gpx"},
                           .folder = folder.path().string(),
                           .fileSizeLimit = 300});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, MatchesRegex("bad.gpx:1:[0-9]+: .*\n"
                                             "pelluvia: cannot write good.gpx: File too large\n"));
    EXPECT_THAT(entries(), ElementsAre("bad.gpx", "good.gpx"));
    expectGoodTargetUntouched();
}

TEST_F(BadInput, ACopyOfStandardInputThatDoesNotFitIsAFailureToWrite) {
    const Outcome outcome = testing::pelluvia({.arguments = {"convert", "--force", "-", "good.gpx"},
                                               .input = readFile(ride()),
                                               .folder = folder.path().string(),
                                               .fileSizeLimit = 300});
    EXPECT_EQ(outcome.status, 3);
    EXPECT_THAT(outcome.errors, MatchesRegex("standard input: cannot be kept in .* \\(see "
                                             "TMPDIR\\): File too large\n.*"));
    expectGoodTargetUntouched();
    EXPECT_THAT(entries(), ElementsAre("good.gpx"));
}

TEST_F(BadInput, AClosedPipeIsAFailureToWrite) {
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"convert", ride(), "-"},
          std::vector<std::string>{"convert", "--to", "calls", ride(), "-"},
          std::vector<std::string>{"info", ride()}, std::vector<std::string>{"--help"}}) {
        const Outcome outcome =
            testing::pelluvia({.arguments = arguments, .hasBrokenOutput = true});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.errors, "pelluvia: cannot write standard output: Broken pipe\n");
    }
}

TEST_F(BadInput, ClosedStandardOutputIsAFailureToWrite) {
    for (const std::vector<std::string> &arguments :
         {std::vector<std::string>{"convert", ride(), "-"},
          std::vector<std::string>{"info", ride()}}) {
        const Outcome outcome = testing::pelluvia({.arguments = arguments, .closed = {1}});
        EXPECT_EQ(outcome.status, 3);
        EXPECT_EQ(outcome.errors, "pelluvia: cannot write standard output: Bad file descriptor\n");
    }
}

TEST_F(BadInput, ClosedStandardErrorDoesNotReachTheTarget) {
    folder.write("bad.gpx", "<gpx>");
    const Outcome outcome = testing::pelluvia({.arguments = {"convert", "-v", "bad.gpx", "new.gpx"},
                                               .folder = folder.path().string(),
                                               .closed = {0, 1, 2}});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(readFile(folder.file("new.gpx")), StartsWith("<?xml"));
}

TEST_F(BadInput, WrongUsageIsAnsweredWithTheUsageOnStandardError) {
    const Outcome outcome = run({"convert", "good.gpx"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.output, IsEmpty());
    EXPECT_EQ(outcome.errors, "pelluvia: a source and a target are needed\n"
                              "Usage: pelluvia convert [OPTIONS] SOURCE... TARGET\n"
                              "Try: pelluvia convert --help\n");
    expectGoodTargetUntouched();
}

} // namespace
} // namespace pelluvia
