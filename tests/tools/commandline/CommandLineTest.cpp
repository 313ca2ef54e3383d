// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/CommandLine.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

namespace pelluvia::host {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

Command parsed(std::vector<const char *> arguments) {
    arguments.insert(arguments.begin(), "pelluvia");
    return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

ConvertOptions convertOf(std::vector<const char *> arguments) {
    const Command command = parsed(std::move(arguments));
    if (const auto *answer = std::get_if<Answer>(&command)) {
        ADD_FAILURE() << answer->complaint << answer->output;
        return {};
    }
    return std::get<ConvertOptions>(command);
}

Answer answerTo(std::vector<const char *> arguments) {
    const Command command = parsed(std::move(arguments));
    if (!std::holds_alternative<Answer>(command)) {
        ADD_FAILURE() << "was accepted";
        return {};
    }
    return std::get<Answer>(command);
}

TEST(CommandLine, TheLastPathIsTheTargetAndTheOthersAreSources) {
    const ConvertOptions options = convertOf({"convert", "a.gpx", "b.jsonl", "c.gpx"});
    ASSERT_EQ(options.sources.size(), 2U);
    EXPECT_EQ(options.sources[0].path, "a.gpx");
    EXPECT_EQ(options.sources[0].format, Format::GPX);
    EXPECT_EQ(options.sources[1].path, "b.jsonl");
    EXPECT_EQ(options.sources[1].format, Format::Calls);
    EXPECT_EQ(options.target, "c.gpx");
    EXPECT_EQ(options.targetFormat, Format::GPX);
    EXPECT_TRUE(options.only.isEverything());
    EXPECT_FALSE(options.quiet);
    EXPECT_FALSE(options.verbose);
    EXPECT_EQ(options.creator, "");
}

TEST(CommandLine, AnEndingTellsTheFormatInAnyCase) {
    const ConvertOptions options = convertOf({"convert", "A.GPX", "B.JsonL"});
    EXPECT_EQ(options.sources[0].format, Format::GPX);
    EXPECT_EQ(options.targetFormat, Format::Calls);
}

TEST(CommandLine, EndingsOfReceiversLogsAreKnown) {
    const ConvertOptions options = convertOf({"convert", "a.nmea", "B.LOG", "c.Nmea"});
    EXPECT_EQ(options.sources[0].format, Format::NMEA);
    EXPECT_EQ(options.sources[1].format, Format::NMEA);
    EXPECT_EQ(options.targetFormat, Format::NMEA);
    EXPECT_EQ(options.nmea.baud, 4800);
    EXPECT_EQ(options.nmea.longestGap, 300);
    EXPECT_EQ(options.nmea.day, std::nullopt);
}

TEST(CommandLine, ReceiversHaveOptions) {
    const ConvertOptions options =
        convertOf({"convert", "--from", "nmea", "--baud", "9600", "--date", "1970-01-02", "--gap",
                   "0", "/dev/ttyUSB0", "--to", "nmea", "-"});
    EXPECT_EQ(options.sources[0].format, Format::NMEA);
    EXPECT_EQ(options.targetFormat, Format::NMEA);
    EXPECT_EQ(options.nmea.baud, 9600);
    EXPECT_EQ(options.nmea.longestGap, 0);
    EXPECT_EQ(options.nmea.day, 1);
}

TEST(CommandLine, OptionsNameTheFormatWhateverTheEnding) {
    const ConvertOptions options =
        convertOf({"convert", "--from", "calls", "--to", "gpx", "a.gpx", "b", "c.jsonl"});
    EXPECT_EQ(options.sources[0].format, Format::Calls);
    EXPECT_EQ(options.sources[1].format, Format::Calls);
    EXPECT_EQ(options.targetFormat, Format::GPX);
}

TEST(CommandLine, StandardInputAndOutputAreGPXUnlessSaidOtherwise) {
    const ConvertOptions plain = convertOf({"convert", "-", "-"});
    EXPECT_EQ(plain.sources[0].format, Format::GPX);
    EXPECT_EQ(plain.targetFormat, Format::GPX);
    const ConvertOptions calls = convertOf({"convert", "--to", "calls", "-", "-"});
    EXPECT_EQ(calls.sources[0].format, Format::GPX);
    EXPECT_EQ(calls.targetFormat, Format::Calls);
}

TEST(CommandLine, OptionsMayFollowThePaths) {
    const ConvertOptions options =
        convertOf({"convert", "a.gpx", "b.gpx", "--only", "tracks,waypoints", "-q", "-v",
                   "--classic", "--creator", "Tom & \xC3\x84nne"});
    EXPECT_EQ(options.sources.size(), 1U);
    EXPECT_TRUE(options.only.tracks);
    EXPECT_FALSE(options.only.routes);
    EXPECT_TRUE(options.only.waypoints);
    EXPECT_TRUE(options.quiet);
    EXPECT_TRUE(options.verbose);
    EXPECT_EQ(options.creator, "Tom &amp; &#196;nne");
}

TEST(CommandLine, WhatFollowsTwoDashesIsAPathWhereverTheyStand) {
    for (const std::vector<const char *> &arguments : std::vector<std::vector<const char *>>{
             {"convert", "--", "a.gpx", "-b.gpx", "--c.gpx"},
             {"convert", "a.gpx", "--", "-b.gpx", "--c.gpx"},
             {"convert", "a.gpx", "-q", "--", "-b.gpx", "--c.gpx"}}) {
        const ConvertOptions options = convertOf(arguments);
        ASSERT_EQ(options.sources.size(), 2U);
        EXPECT_EQ(options.sources[0].path, "a.gpx");
        EXPECT_EQ(options.sources[1].path, "-b.gpx");
        EXPECT_EQ(options.target, "--c.gpx");
    }
}

TEST(CommandLine, NothingIsRecordedUnlessAskedFor) {
    const RecordingOptions options = convertOf({"convert", "a.gpx", "b.gpx"}).recording;
    EXPECT_FALSE(options.isWanted);
    EXPECT_FALSE(options.minimize);
    EXPECT_EQ(options.pointSlop, std::nullopt);
    EXPECT_EQ(options.slopeSlop, std::nullopt);
    EXPECT_EQ(options.telemetry, std::nullopt);
}

TEST(CommandLine, EachOptionOfTheRecorderAsksForIt) {
    struct Asked {
        std::vector<const char *> options;
        bool minimize;
    };
    for (const Asked &asked :
         {Asked{{"--record"}, false}, Asked{{"--minimize"}, true},
          Asked{{"--telemetry", "-"}, false}, Asked{{"--point-slop", "0"}, true},
          Asked{{"--slope-slop", "1e-3"}, true}}) {
        std::vector<const char *> arguments = {"convert", "a.gpx", "b.gpx"};
        arguments.insert(arguments.end(), asked.options.begin(), asked.options.end());
        const RecordingOptions options = convertOf(arguments).recording;
        EXPECT_TRUE(options.isWanted) << asked.options[0];
        EXPECT_EQ(options.minimize, asked.minimize) << asked.options[0];
    }
    const RecordingOptions all = convertOf({"convert", "--point-slop", ".5", "--slope-slop", "1e-3",
                                            "--telemetry", "t", "a.gpx", "b.gpx"})
                                     .recording;
    EXPECT_EQ(all.pointSlop, 0.5F);
    EXPECT_EQ(all.slopeSlop, 1e-3F);
    EXPECT_EQ(all.telemetry, "t");
}

TEST(CommandLine, AnOptionTakesOneArgumentOnly) {
    const ConvertOptions options =
        convertOf({"convert", "--only", "tracks", "--creator", "me", "a.gpx", "b.gpx"});
    EXPECT_EQ(options.sources.size(), 1U);
    EXPECT_EQ(options.target, "b.gpx");
}

TEST(CommandLine, FilesBehindTwoDashesMayLookLikeOptions) {
    const ConvertOptions options = convertOf({"convert", "--", "-1.gpx", "-q.gpx"});
    ASSERT_EQ(options.sources.size(), 1U);
    EXPECT_EQ(options.sources[0].path, "-1.gpx");
    EXPECT_EQ(options.target, "-q.gpx");
}

TEST(CommandLine, FilesBehindTwoDashesMayEndLikeAnOptionWithoutItsValue) {
    EXPECT_EQ(convertOf({"convert", "--creator=a=", "--", "--telemetry=", "b.gpx"}).target,
              "b.gpx");
}

TEST(CommandLine, InfoTakesAnyNumberOfFiles) {
    const Command command = parsed({"info", "--json", "a.gpx", "-", "b"});
    const auto *options = std::get_if<InfoOptions>(&command);
    ASSERT_NE(options, nullptr);
    EXPECT_THAT(options->sources, ::testing::ElementsAre(::testing::Field(&Source::path, "a.gpx"),
                                                         ::testing::Field(&Source::path, "-"),
                                                         ::testing::Field(&Source::path, "b")));
    EXPECT_TRUE(options->json);
}

TEST(CommandLine, InfoTellsFormatsByEndingOrOptionAndElseTakesGPX) {
    const auto formats = [](const std::vector<const char *> &words) {
        const Command command = parsed(words);
        std::vector<Format> result;
        for (const Source &source : std::get<InfoOptions>(command).sources) {
            result.push_back(source.format);
        }
        return result;
    };
    using ::testing::ElementsAre;
    EXPECT_THAT(formats({"info", "a.gpx", "a.LOG", "a.jsonl", "a.txt", "-"}),
                ElementsAre(Format::GPX, Format::NMEA, Format::Calls, Format::GPX, Format::GPX));
    EXPECT_THAT(formats({"info", "--from", "calls", "a.gpx", "-"}),
                ElementsAre(Format::Calls, Format::Calls));
}

TEST(CommandLine, PathsInBracketsAreNoLists) {
    const ConvertOptions options = convertOf(
        {"convert", "--from", "gpx", "--to", "gpx", "[a,b]", "[]", "{}", "[c.gpx,d.gpx]"});
    ASSERT_EQ(options.sources.size(), 3U);
    EXPECT_EQ(options.sources[0].path, "[a,b]");
    EXPECT_EQ(options.sources[1].path, "[]");
    EXPECT_EQ(options.sources[2].path, "{}");
    EXPECT_EQ(options.target, "[c.gpx,d.gpx]");

    const Command info = parsed({"info", "[a,b]", "[c]"});
    ASSERT_TRUE(std::holds_alternative<InfoOptions>(info));
    EXPECT_THAT(std::get<InfoOptions>(info).sources,
                ::testing::ElementsAre(::testing::Field(&Source::path, "[a,b]"),
                                       ::testing::Field(&Source::path, "[c]")));

    const Command authorize = parsed({"authorize", "[a,b]"});
    ASSERT_TRUE(std::holds_alternative<StorageOptions>(authorize));
    EXPECT_EQ(std::get<StorageOptions>(authorize).folder, "[a,b]");
}

TEST(CommandLine, AuthorizeAndAuthorizedTakeAFolderAsItIs) {
    for (const auto &[command, isQuestion] :
         std::vector<std::pair<const char *, bool>>{{"authorize", false}, {"authorized", true}}) {
        const Command parsedCommand = parsed({command, "-v", "~/GPS/"});
        const auto *options = std::get_if<StorageOptions>(&parsedCommand);
        ASSERT_NE(options, nullptr);
        EXPECT_EQ(options->folder, "~/GPS/");
        EXPECT_EQ(options->isQuestion, isQuestion);
        EXPECT_TRUE(options->verbose);
    }
}

struct Wrong {
    std::vector<const char *> arguments;
    const char *reason;
    const char *usage;
};

void PrintTo(const Wrong &wrong, std::ostream *out) {
    *out << "pelluvia";
    for (const char *argument : wrong.arguments) {
        *out << ' ' << ::testing::PrintToString(std::string(argument));
    }
}

class WrongUsage : public ::testing::TestWithParam<Wrong> {};

TEST_P(WrongUsage, IsAnsweredWithTheReasonAndTheUsage) {
    const Answer answer = answerTo(GetParam().arguments);
    EXPECT_EQ(answer.status, 2);
    EXPECT_THAT(answer.output, IsEmpty());
    EXPECT_THAT(answer.complaint, AllOf(StartsWith("pelluvia: "), HasSubstr(GetParam().reason),
                                        HasSubstr(GetParam().usage)));
}

constexpr const char *programUsage = "Usage: pelluvia COMMAND";
constexpr const char *convertUsage = "Usage: pelluvia convert [OPTIONS] SOURCE... TARGET";
constexpr const char *noGap = "--gap: a whole number from 0 to 9223372036854775807 is needed\n";
constexpr const char *noBaud = "--baud: a whole number from 0 to 9223372036854775807 is needed\n";
constexpr const char *noSlop = "-slop: a number from 0 to 3.4e38 is needed\n";
constexpr const char *infoUsage = "Usage: pelluvia info [OPTIONS] FILE...";

INSTANTIATE_TEST_SUITE_P(
    CommandLine, WrongUsage,
    ::testing::Values(
        Wrong{{}, "a command is needed", programUsage},
        Wrong{{"--nonsense"}, "no command or option \"--nonsense\"", programUsage},
        Wrong{{"transmute", "a.gpx"}, "no command or option \"transmute\"", programUsage},
        Wrong{{"convert"}, "a source and a target are needed", convertUsage},
        Wrong{{"convert", "a.gpx"}, "a source and a target are needed", convertUsage},
        Wrong{{"convert", "--nonsense", "a.gpx", "b.gpx"}, "--nonsense", convertUsage},
        Wrong{{"convert", "/dev/null", "b.gpx"}, "/dev/null: the ending is none of", convertUsage},
        Wrong{{"convert", "a.gpx", "b"}, "--to gpx, --to calls or --to nmea", convertUsage},
        Wrong{{"convert", "--from", "kml", "a", "b.gpx"}, "kml", convertUsage},
        Wrong{{"convert", "--to", "kml", "a.gpx", "b"}, "kml", convertUsage},
        Wrong{{"convert", "--only", "laps", "a.gpx", "b.gpx"}, "\"laps\" is not", convertUsage},
        Wrong{{"convert", "--only", "tracks,", "a.gpx", "b.gpx"}, "\"\" is not", convertUsage},
        Wrong{{"convert", "--only", "", "a.gpx", "b.gpx"}, "--only", convertUsage},
        Wrong{{"convert", "--creator", "a\nb", "a.gpx", "b.gpx"}, "--creator", convertUsage},
        Wrong{{"convert", "--creator", "\xFF", "a.gpx", "b.gpx"}, "--creator", convertUsage},
        Wrong{{"convert", "--gap", "-1", "a.nmea", "b.gpx"}, noGap, convertUsage},
        Wrong{{"convert", "--gap", "1.5", "a.nmea", "b.gpx"}, noGap, convertUsage},
        Wrong{{"convert", "--gap", "99999999999999999999", "a.nmea", "b.gpx"}, noGap, convertUsage},
        Wrong{{"convert", "--gap", "", "a.nmea", "b.gpx"}, noGap, convertUsage},
        Wrong{{"convert", "--baud", "fast", "a.nmea", "b.gpx"}, noBaud, convertUsage},
        Wrong{{"convert", "--point-slop", "-1e-60", "a.gpx", "b.gpx"}, noSlop, convertUsage},
        Wrong{{"convert", "--slope-slop", "1e39", "a.gpx", "b.gpx"}, noSlop, convertUsage},
        Wrong{{"convert", "--minimize=-1", "a.gpx", "b.gpx"}, "--minimize: no value", convertUsage},
        Wrong{
            {"convert", "--minimize=far", "a.gpx", "b.gpx"}, "--minimize: no value", convertUsage},
        Wrong{{"convert", "--minimize", "-1", "a.gpx", "b.gpx"}, "no option \"-1\"", convertUsage},
        Wrong{{"convert", "--record=0", "a.gpx", "b.gpx"}, "--record: no value", convertUsage},
        Wrong{{"convert", "--telemetry=", "a.gpx", "b.gpx", "c.gpx"},
              "--telemetry=: nothing stands",
              convertUsage},
        Wrong{{"convert", "a.gpx", "b.gpx", "--only="}, "--only=: nothing", convertUsage},
        Wrong{{"convert", "-", "-", "b.gpx"}, "only once", convertUsage},
        Wrong{{"authorize"}, "a folder is needed", "Usage: pelluvia authorize [-v] FOLDER"},
        Wrong{{"authorized", "a", "b"}, "b", "Usage: pelluvia authorized [-v] FOLDER"},
        Wrong{{"info"}, "a file is needed", infoUsage},
        Wrong{{"info", "-", "-"}, "only once", infoUsage},
        Wrong{{"info", "-ride.gpx"}, "a file of that name is ./-ride.gpx", infoUsage},
        Wrong{{"info", "-5", "a.gpx"}, "no option \"-5\"", infoUsage},
        Wrong{{"info", "--json=0", "a.gpx"}, "--json: no value", infoUsage},
        Wrong{{"info", "--xml", "a.gpx"}, "--xml", infoUsage}));

TEST(CommandLine, AComplaintQuotesArgumentsOnOneLineAndHarmless) {
    EXPECT_THAT(answerTo({"convert", "a.gpx", "b\n\x1B[2Jpelluvia: done"}).complaint,
                StartsWith(R"(pelluvia: b\x0A\x1B[2Jpelluvia: done: the ending is none of)"));
    EXPECT_THAT(answerTo({"trans\nmute"}).complaint,
                StartsWith("pelluvia: there is no command or option \"trans\\x0Amute\"\nUsage: "));
    EXPECT_THAT(answerTo({"convert", "--a\nb", "a.gpx", "b.gpx"}).complaint,
                HasSubstr("--a\\x0Ab\n"));
}

TEST(CommandLine, HelpIsAnsweredForTheProgramAndForEachCommand) {
    for (const auto &[arguments, text] :
         std::vector<std::pair<std::vector<const char *>, const char *>>{
             {{"--help"}, "convert"},
             {{"convert", "--help"}, "Exit status:"},
             {{"info", "-h"}, "Exit status:"},
             {{"authorize", "-h"}, "Exit status:"},
             {{"authorized", "-h"}, "Exit status:"},
             {{"convert", "--help", "--nonsense"}, convertUsage}}) {
        const Answer answer = answerTo(arguments);
        EXPECT_EQ(answer.status, 0);
        EXPECT_THAT(answer.output, AllOf(HasSubstr("Usage: pelluvia"), HasSubstr(text)));
        EXPECT_THAT(answer.complaint, IsEmpty());
    }
}

TEST(CommandLine, HelpFitsATerminalOfEightyColumns) {
    for (const std::vector<const char *> &arguments :
         std::vector<std::vector<const char *>>{{"--help"},
                                                {"convert", "-h"},
                                                {"info", "-h"},
                                                {"authorize", "-h"},
                                                {"authorized", "-h"}}) {
        std::istringstream lines(answerTo(arguments).output);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_LE(line.size(), 80U) << line;
        }
    }
}

TEST(CommandLine, TheVersionIsThatOfTheFramework) {
    EXPECT_EQ(answerTo({"--version"}).output, "pelluvia 1.0\n");
}

} // namespace
} // namespace pelluvia::host
