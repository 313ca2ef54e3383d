// SPDX-License-Identifier: MIT

#include <tests/tools/LiveReceiver.h>
#include <tests/tools/Pelluvia.h>

#include <csignal>
#include <filesystem>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using ::testing::AllOf;
using ::testing::HasSubstr;
using testing::LiveReceiver;
using ::testing::Not;
using testing::Outcome;
using testing::readFile;
using testing::TemporaryFolder;

// Receivers' lines without checksums, which need none.
const std::string first = "$GPRMC,120000,A,4807.038,N,01131.000,E,10.0,,150824,,,A\r\n"
                          "$GPGGA,120000,4807.038,N,01131.000,E,1,8,0.9,545.4,M,46.9,M,,\r\n";
const std::string second = "$GPRMC,120001,A,4808.038,N,01131.000,E,10.0,,150824,,,A\r\n"
                           "$GPGGA,120001,4808.038,N,01131.000,E,1,8,0.9,546.4,M,46.9,M,,\r\n";
const std::string undated = "$GPGGA,120000,4807.038,N,01131.000,E,1,8,0.9,545.4,M,46.9,M,,\r\n"
                            "$GPGGA,120100,4808.038,N,01131.000,E,1,8,0.9,545.4,M,46.9,M,,\r\n";

TEST(ConvertNMEA, WritesALogAsGPXAndSaysWhatWasInIt) {
    const TemporaryFolder folder;
    for (const char *name : {"ride.nmea", "ride.LOG"}) {
        const Outcome outcome = testing::pelluvia({"convert", "--force",
                                                   folder.write(name, first + "noise\r\n" + second),
                                                   folder.file("out.gpx")});
        EXPECT_EQ(outcome.status, 0);
        EXPECT_EQ(outcome.errors, folder.file(name) + ": 4 sentences, 2 points; 0 with a bad "
                                                      "checksum, 0 not used; 1 line of something "
                                                      "else\n");
        EXPECT_THAT(readFile(folder.file("out.gpx")),
                    AllOf(HasSubstr("<trkpt lat=\"48.1173\" lon=\"11.51666667\"><ele>545.400000"
                                    "</ele><time>2024-08-15T12:00:00Z</time>"),
                          HasSubstr("<speed>5.144444</speed>"),
                          HasSubstr("<time>2024-08-15T12:00:01Z</time>")));
    }
}

TEST(ConvertNMEA, ReadsAPipe) {
    const Outcome outcome =
        testing::pelluvia({.arguments = {"convert", "--from", "nmea", "--to", "calls", "-", "-"},
                           .input = first + second});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_THAT(outcome.output, HasSubstr("\"time\":1723723201"));
    EXPECT_TRUE(outcome.output.ends_with("{\"call\":\"endTransfer:\",\"kind\":1}\n"));
}

TEST(ConvertNMEA, SourcesOfAllFormatsFollowOneAnother) {
    const TemporaryFolder folder;
    const std::string log = folder.write("a.nmea", first);
    const Outcome outcome =
        testing::pelluvia({"convert", "--to", "calls", log, testing::ride(), log, "-"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_TRUE(outcome.output.starts_with("{\"call\":\"startTransfer:kind:extra:\",\"kind\":1"));
}

TEST(ConvertNMEA, OnlyTheChosenKindsAreConverted) {
    const TemporaryFolder folder;
    const std::string log = folder.write("a.nmea", first + "$GPWPL,4807.038,N,01131.000,E,HOME\n");
    const Outcome outcome =
        testing::pelluvia({"convert", "--only", "waypoints", "--to", "calls", log, "-"});
    EXPECT_THAT(outcome.output, AllOf(HasSubstr("HOME"), Not(HasSubstr("trackPoint"))));
}

TEST(ConvertNMEA, ALogWithoutADateSaysSoOrTakesOne) {
    const TemporaryFolder folder;
    const std::string log = folder.write("a.nmea", undated);
    const Outcome without = testing::pelluvia({"convert", log, "-"});
    EXPECT_EQ(without.status, 0);
    EXPECT_THAT(without.output, Not(HasSubstr("<time>")));
    EXPECT_THAT(without.errors, HasSubstr("2 points without a time"));
    const Outcome with = testing::pelluvia({"convert", "--date", "2024-08-15", log, "-"});
    EXPECT_THAT(with.output, HasSubstr("<time>2024-08-15T12:01:00Z</time>"));
    EXPECT_THAT(with.errors, Not(HasSubstr("without a time")));
}

TEST(ConvertNMEA, TheGapThatBreaksATrackIsAnOption) {
    const TemporaryFolder folder;
    const std::string log = folder.write("a.nmea", undated);
    const auto segments = [&](const char *gap) {
        const Outcome outcome =
            testing::pelluvia({"convert", "--gap", gap, "--to", "calls", log, "-"});
        int count = 0;
        for (std::size_t at = 0;
             (at = outcome.output.find("newTrackSegment", at)) != std::string::npos; ++at) {
            ++count;
        }
        return count;
    };
    EXPECT_EQ(segments("60"), 1);
    EXPECT_EQ(segments("59"), 2);
}

TEST(ConvertNMEA, AnySourceCanBecomeALog) {
    const TemporaryFolder folder;
    const std::string log = folder.file("ride.nmea");
    const Outcome there = testing::pelluvia({"convert", testing::ride(), log});
    EXPECT_EQ(there.status, 0);
    EXPECT_THAT(readFile(log), AllOf(HasSubstr("$GPRMC,"), HasSubstr("$GPWPL,")));
    const Outcome back = testing::pelluvia({"convert", "--to", "calls", log, "-"});
    EXPECT_EQ(back.status, 0);
    EXPECT_THAT(back.errors, HasSubstr("; 0 with a bad checksum, 0 not used\n"));
}

TEST(ConvertNMEA, SaysWhatALogCannotHold) {
    const Outcome outcome = testing::pelluvia(
        {.arguments = {"convert", "--from", "calls", "--to", "nmea", "-", "-"},
         .input = "{\"call\":\"trackPoint:extra:\",\"point\":{\"latitude\":95.0,\"longitude\":0.0,"
                  "\"altitude\":0.0,\"time\":0,\"test\":0},\"extra\":null}\n"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.errors,
              "standard output: left out: 1 point without a position on the globe\n");
}

TEST(ConvertNMEA, WrongOptionsAreWrongUsage) {
    for (const auto &[option, value] :
         {std::pair("--baud", "4801"), std::pair("--baud", "fast"),
          std::pair("--date", "2024-02-30"), std::pair("--date", "yesterday"),
          std::pair("--gap", "-1"), std::pair("--gap", "long")}) {
        const Outcome outcome = testing::pelluvia({"convert", option, value, "a.nmea", "b.gpx"});
        EXPECT_EQ(outcome.status, 2) << option << value;
        EXPECT_THAT(outcome.errors, HasSubstr(option));
    }
}

TEST(ConvertNMEA, AMissingLogIsABadSource) {
    const TemporaryFolder folder;
    const Outcome outcome =
        testing::pelluvia({"convert", folder.file("none.nmea"), folder.file("out.gpx")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_FALSE(fs::exists(folder.file("out.gpx")));
}

TEST(ConvertNMEA, ADeviceThatIsNoSerialLineIsABadSource) {
    const TemporaryFolder folder;
    const Outcome outcome = testing::pelluvia(
        {"convert", "--from", "nmea", "--baud", "9600", "/dev/zero", folder.file("out.gpx")});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors,
                HasSubstr("/dev/zero: cannot be opened: a device, but not a serial line\n"));
}

TEST(ConvertNMEA, ALiveSourceIsShownOnATerminal) {
    const Outcome shown = testing::pelluvia({.arguments = {"convert", "--from", "nmea", "-", "-"},
                                             .input = first + second,
                                             .hasTerminal = true});
    EXPECT_EQ(shown.status, 0);
    EXPECT_THAT(shown.errors, HasSubstr("1 point, fix, 48.13397 11.51667, 0.0 points/s"));
    EXPECT_THAT(shown.errors, HasSubstr("\r\x1B[Kstandard input: 4 sentences, 2 points;"));
    const Outcome quiet =
        testing::pelluvia({.arguments = {"convert", "-q", "--from", "nmea", "-", "-"},
                           .input = first + second,
                           .hasTerminal = true});
    EXPECT_THAT(quiet.errors, Not(HasSubstr("points/s")));
}

/// The texts between two others, one for each time that they stand around one.
std::vector<std::string> textsBetween(const std::string &document, const std::string &before,
                                      const std::string &after) {
    std::vector<std::string> found;
    for (std::size_t at = 0; (at = document.find(before, at)) != std::string::npos;) {
        at += before.size();
        found.push_back(document.substr(at, document.find(after, at) - at));
    }
    return found;
}

TEST(ConvertNMEA, ADocumentComesBackOverALogToTheResolutionOfSentences) {
    constexpr double resolution =
        0.0005 / 60.0 + 1e-8; // of a minute, and of what GPX is written with
    testing::Chance random(20240815);
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    std::string points = "<gpx><trk><trkseg>";
    for (int i = 0; i < 2000; ++i) {
        points += "<trkpt lat=\"" + std::to_string(90.0 * real(random)) + "\" lon=\"" +
                  std::to_string(180.0 * real(random)) + "\"><ele>" +
                  std::to_string(4000.0 * real(random)) + "</ele><time>2024-08-15T" +
                  std::to_string(10 + i / 60 / 60 % 10) + ":" + std::to_string(10 + i / 50 % 50) +
                  ":" + std::to_string(10 + i % 50) + "Z</time></trkpt>";
    }
    const TemporaryFolder folder;
    const std::string source = folder.write("a.gpx", points + "</trkseg></trk></gpx>");
    const std::string log = folder.file("a.nmea");
    EXPECT_EQ(testing::pelluvia({"convert", source, log}).status, 0);
    const std::string direct = testing::pelluvia({"convert", source, "-"}).output;
    const std::string back = testing::pelluvia({"convert", log, "-"}).output;
    for (const auto &[before, tolerance] :
         {std::pair("<trkpt lat=\"", resolution), std::pair("\" lon=\"", resolution),
          std::pair("<ele>", 0.0005 + 1e-6)}) {
        const auto expected = textsBetween(direct, before, "\"<");
        const auto actual = textsBetween(back, before, "\"<");
        ASSERT_EQ(expected.size(), 2000U);
        ASSERT_EQ(actual.size(), 2000U);
        for (std::size_t i = 0; i < actual.size(); ++i) {
            ASSERT_NEAR(std::stod(actual[i]), std::stod(expected[i]), tolerance) << before << i;
        }
    }
    EXPECT_EQ(textsBetween(back, "<time>", "<"), textsBetween(direct, "<time>", "<"));
}

TEST(ConvertNMEA, AnInterruptBringsTheTargetToAProperEnd) {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const TemporaryFolder folder;
        const std::string target = folder.write("out.gpx", "old");
        LiveReceiver receiver({"--force", target});
        receiver.sendAndWait(first + second);
        receiver.signal(number);
        const Outcome outcome = receiver.outcome();
        EXPECT_EQ(outcome.status, 0);
        EXPECT_THAT(outcome.errors,
                    HasSubstr("5 sentences, 2 points; 0 with a bad checksum, 1 not used"));
        const std::string document = readFile(target);
        EXPECT_THAT(document, HasSubstr("<time>2024-08-15T12:00:01Z</time>"));
        EXPECT_TRUE(document.ends_with("</trkseg>\n</trk>\n</gpx>\n")) << document;
    }
}

TEST(ConvertNMEA, AReceiverThatIsLostIsABadSourceWithWhatItSentKept) {
    const TemporaryFolder folder;
    const std::string target = folder.file("out.gpx");
    LiveReceiver receiver({target});
    receiver.sendAndWait(first + second);
    receiver.hangUp();
    const Outcome outcome = receiver.outcome();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_THAT(outcome.errors, AllOf(HasSubstr("the receiver was lost: "), HasSubstr("2 points"),
                                      HasSubstr("out.gpx is partial")));
    const std::string document = readFile(target);
    EXPECT_THAT(document, HasSubstr("<time>2024-08-15T12:00:01Z</time>"));
    EXPECT_TRUE(document.ends_with("</trkseg>\n</trk>\n</gpx>\n")) << document;
}

} // namespace
} // namespace pelluvia
