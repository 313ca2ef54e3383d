// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Decoder.h>

#include <tests/formats/nmea/Logs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::decode;
using pelluvia::testing::logOf;
using pelluvia::testing::sentence;
using ::testing::ElementsAre;

const std::string fix = "GPGGA,120000,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";

TEST(Decoder, SendsTracksThenWaypointsThenRoutes) {
    const auto decoded =
        decode(logOf({"GPRTE,1,1,c,7,HOME,LAKE", fix, "GPWPL,4916.45,N,12311.12,W,HOME",
                      "GPWPL,4917.45,S,12312.12,E,LAKE"}));
    EXPECT_THAT(decoded.list.calls,
                ElementsAre("start 1", "track", "segment", "point", "end 1", "start 3 count=2",
                            "waypoint name=HOME", "waypoint name=LAKE", "end 3", "start 2 count=2",
                            "route name=7 index=7 routeNumber=7", "waypoint name=HOME",
                            "waypoint name=LAKE", "end 2"));
}

TEST(Decoder, CountsWhatItDoesNotUse) {
    std::string log = sentence(fix);
    log += "!AIVDM,1,1,,A,13aEOK?P00PD2wVMdLDRhgvL289?,0*26\r\n"; // AIS
    log += sentence("PGRME,15.0,M,45.0,M,25.0,M");                // a maker's own
    log += sentence("GPGSV,1,1,00");                              // another type
    log += sentence("GPGLL,9916.45,N,12311.12,W,225444,A");       // off the globe
    log += "$GPGLL,4916.45,N,12311.12,W,225444,A*00\r\n";         // damaged
    log += "# a comment\n";
    log += std::string("\0\xB5\x62\n", 4);
    log += std::string(5000, 'x') + "\n\n \n";
    const auto decoded = decode(log);
    EXPECT_EQ(decoded.tally, (NMEATally{.used = 1,
                                        .notUsed = 4,
                                        .badChecksum = 1,
                                        .garbage = 2,
                                        .tooLong = 1,
                                        .points = 1,
                                        .pointsWithoutDate = 1}));
}

TEST(Decoder, FindsSentencesBehindGarbageAndWithoutALineEndBetween) {
    const std::string two = "GPGGA,120001,4808.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,";
    std::string first = sentence(fix);
    first.resize(first.size() - 2);
    const auto decoded = decode("\x01\x02garbage" + first + sentence(two));
    EXPECT_EQ(decoded.list.trackPoints.size(), 2U);
    EXPECT_EQ(decoded.tally.used, 2);
    EXPECT_EQ(decoded.tally.garbage, 1);
}

TEST(Decoder, AcceptsSentencesWithoutAChecksum) {
    EXPECT_EQ(decode("$" + fix + "\n").tally.points, 1);
    EXPECT_EQ(decode("$" + fix).tally.points, 1);
    EXPECT_EQ(decode(sentence(fix) + "$GPGLL,4916.45,N,12311.12,W,225444,A\n").tally.points, 2);
}

TEST(Decoder, DoesNotBelieveTheHalfOfASentence) {
    const std::string half = "$GPGLL,4916.45,N,1231.1,W"; // of 12311.12: a place far away
    EXPECT_EQ(decode(sentence(fix) + half).tally.points, 1);
    EXPECT_EQ(decode(sentence(fix) + half).tally.badChecksum, 1);
    EXPECT_EQ(decode(sentence(fix) + half + sentence(fix)).tally.badChecksum, 1);
    EXPECT_EQ(decode(sentence(fix) + half + "\n").tally.used, 2) << "its line has an end";
}

TEST(Decoder, SendsAPointAsSoonAsTheNextEpochBegins) {
    pelluvia::testing::CallList list;
    Decoder decoder(list, {});
    decoder.addLine("$GPRMC,225443,A,4916.45,N,12311.12,W,,,191194,,,A");
    EXPECT_EQ(decoder.tally().points, 0);
    EXPECT_TRUE(decoder.current().position());
    decoder.addLine("$" + fix);
    EXPECT_EQ(decoder.tally().points, 1);
    EXPECT_THAT(list.calls, ElementsAre("start 1", "track", "segment", "point"));
}

} // namespace
} // namespace pelluvia::nmea
