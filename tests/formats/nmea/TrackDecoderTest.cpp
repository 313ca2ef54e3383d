// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/TrackDecoder.h>

#include <tests/formats/nmea/Logs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::decode;
using pelluvia::testing::Decoded;
using pelluvia::testing::logOf;
using pelluvia::testing::sentence;
using ::testing::ElementsAre;

constexpr std::int64_t march23 = 764'380'800; // 1994-03-23 00:00:00 UTC

std::vector<std::int64_t> timesOf(const Decoded &decoded) {
    std::vector<std::int64_t> times;
    for (const auto &seen : decoded.list.trackPoints) {
        times.push_back(seen.point.time);
    }
    return times;
}

/// The minutes of latitude, which the logs below count up.
std::vector<double> minutesOf(const Decoded &decoded) {
    std::vector<double> minutes;
    for (const auto &seen : decoded.list.trackPoints) {
        minutes.push_back(std::round((seen.point.latitude - 48.0) * 60'000.0) / 1000.0);
    }
    return minutes;
}

std::string rmc(const std::string &time, const std::string &minutes,
                const std::string &date = "230394") {
    return "GPRMC," + time + ",A,48" + minutes + ",N,01131.000,E,010.0,084.4," + date + ",,,A";
}
std::string gga(const std::string &time, const std::string &minutes,
                const std::string &altitude = "545.4") {
    return "GPGGA," + time + ",48" + minutes + ",N,01131.000,E,1,08,0.9," + altitude +
           ",M,46.9,M,,";
}
std::string gll(const std::string &time, const std::string &minutes) {
    return "GPGLL,48" + minutes + ",N,01131.000,E," + time + ",A,A";
}

TEST(TrackDecoder, SentencesOfOneEpochMakeOnePoint) {
    const auto decoded = decode(
        logOf({rmc("123519", "07.038"), gga("123519.00", "07.038"), gll("123519.0", "07.038"),
               "GPVTG,084.4,T,,M,010.0,N,18.5,K,A", "GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1"}));
    ASSERT_EQ(decoded.list.trackPoints.size(), 1U);
    const auto &[point, speed, name] = decoded.list.trackPoints[0];
    EXPECT_DOUBLE_EQ(point.latitude, 48.1173);
    EXPECT_DOUBLE_EQ(point.longitude, 11.0 + 31.0 / 60.0);
    EXPECT_EQ(point.altitude, 545.4);
    EXPECT_EQ(point.time, 764'426'119);
    EXPECT_EQ(point.test, 0);
    ASSERT_TRUE(speed);
    EXPECT_FLOAT_EQ(*speed, 5.1444445F);
    EXPECT_EQ(decoded.tally.used, 5);
}

TEST(TrackDecoder, TheTransferRunsInTheProtocolsOrder) {
    const auto decoded = decode(logOf({rmc("120000", "01.000"), rmc("120001", "02.000")}));
    EXPECT_THAT(decoded.list.calls,
                ElementsAre("start 1", "track", "segment", "point", "point", "end 1"));
}

TEST(TrackDecoder, ALogWithoutAPointSendsNothing) {
    EXPECT_THAT(decode("").list.calls, ElementsAre());
    EXPECT_THAT(decode(logOf({"GPRMC,120000,V,,,,,,,,,,N"})).list.calls, ElementsAre());
}

TEST(TrackDecoder, APointHasAnAltitudeOnlyFromItsOwnGGA) {
    const auto decoded =
        decode(logOf({rmc("120000", "01.000"), gga("120000", "01.000"), rmc("120001", "02.000"),
                      gga("120002", "03.000", ""), gga("120003", "04.000", "nan")}));
    ASSERT_EQ(decoded.list.trackPoints.size(), 4U);
    EXPECT_EQ(decoded.list.trackPoints[0].point.altitude, 545.4);
    EXPECT_EQ(decoded.list.trackPoints[1].point.altitude, 0.0);
    EXPECT_EQ(decoded.list.trackPoints[2].point.altitude, 0.0);
    EXPECT_EQ(decoded.list.trackPoints[3].point.altitude, 0.0);
}

TEST(TrackDecoder, ASpeedComesFromVTGWhereNoRMCTellsIt) {
    const auto decoded =
        decode(logOf({gga("120000", "01.000"), "GPVTG,,T,,M,,N,36.0,K,A", gga("120001", "02.000"),
                      rmc("120002", "03.000"), "GPVTG,,T,,M,,N,36.0,K,A"}));
    ASSERT_EQ(decoded.list.trackPoints.size(), 3U);
    EXPECT_EQ(decoded.list.trackPoints[0].speed, 10.0F);
    EXPECT_EQ(decoded.list.trackPoints[1].speed, std::nullopt);
    EXPECT_FLOAT_EQ(*decoded.list.trackPoints[2].speed, 5.1444445F);
}

TEST(TrackDecoder, EpochsWithinASecondAreTheirOwnPoints) {
    const auto decoded = decode(logOf({rmc("120000.00", "01.000"), gga("120000.00", "01.000"),
                                       rmc("120000.50", "02.000"), gga("120000.50", "02.000")}));
    EXPECT_THAT(minutesOf(decoded), ElementsAre(1.0, 2.0));
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 43'200, march23 + 43'200));
}

TEST(TrackDecoder, ARepeatedSentenceBeginsAnEpochEvenAtTheSameTime) {
    const auto decoded = decode(logOf({rmc("120000", "01.000"), gga("120000", "01.000"),
                                       rmc("120000", "02.000"), gga("120000", "02.000")}));
    EXPECT_THAT(minutesOf(decoded), ElementsAre(1.0, 2.0));
}

TEST(TrackDecoder, AnotherTalkersSentenceOfTheSameTimeBelongsToTheEpoch) {
    std::string other = gga("120000", "09.000");
    other.replace(0, 2, "IN");
    const auto decoded = decode(logOf({gga("120000", "01.000"), other, gga("120001", "02.000")}));
    EXPECT_THAT(minutesOf(decoded), ElementsAre(1.0, 2.0));
}

TEST(TrackDecoder, EpochsWithoutATimeAreToldApartByRepeatedSentences) {
    const auto decoded = decode(
        logOf({rmc("", "01.000", ""), gga("", "01.000"), rmc("", "02.000", ""), gga("", "02.000"),
               "GPGLL,4803.000,N,01131.000,E", "GPGLL,4804.000,N,01131.000,E"}));
    EXPECT_THAT(minutesOf(decoded), ElementsAre(1.0, 2.0, 4.0));
    EXPECT_THAT(timesOf(decoded), ElementsAre(0, 0, 0));
    EXPECT_EQ(decoded.tally.pointsWithoutDate, 0) << "there is no time of day either";
}

TEST(TrackDecoder, AVoidSentenceTakesItsEpochAway) {
    const std::vector<std::string> voids = {
        "GPRMC,120001,V,4802.000,N,01131.000,E,010.0,,230394,,",
        "GPRMC,120001,A,4802.000,N,01131.000,E,010.0,,230394,,,N",
        "GPGGA,120001,4802.000,N,01131.000,E,0,00,,545.4,M,,M,,",
        "GPGLL,4802.000,N,01131.000,E,120001,V,N",
    };
    for (const std::string &body : voids) {
        EXPECT_THAT(
            minutesOf(decode(logOf({rmc("120000", "01.000"), body, gga("120002", "03.000")}))),
            ElementsAre(1.0, 3.0))
            << body;
    }
    EXPECT_THAT(minutesOf(decode(logOf({gll("120000", "01.000"), voids[0]}))), ElementsAre(1.0));
    EXPECT_THAT(minutesOf(decode(logOf({gll("120001", "01.000"), voids[0]}))), ElementsAre());
}

TEST(TrackDecoder, AnEpochWithoutAFixInAnyGSAHasNoPoint) {
    EXPECT_THAT(minutesOf(decode(logOf({gga("120000", "01.000"), "GPGSA,A,1,,,,,,,,,,,,,,,",
                                        gga("120001", "02.000"), "GPGSA,A,3,01,02,03",
                                        "GLGSA,A,1,,,,,,,,,,,,,,,"}))),
                ElementsAre(2.0));
}

TEST(TrackDecoder, AGSABeforeTheFirstTimeBelongsToTheFirstEpoch) {
    EXPECT_THAT(minutesOf(decode(logOf({"GPGSA,A,1,,,,,,,,,,,,,,,", gga("120000", "01.000"),
                                        gga("120001", "02.000")}))),
                ElementsAre(2.0));
}

TEST(TrackDecoder, ValuesThatCannotBeGiveNoPoint) {
    EXPECT_THAT(minutesOf(decode(logOf({rmc("120000", "01.000"), rmc("120001", "61.000"),
                                        rmc("129902", "02.000"), rmc("120003", "03.000")}))),
                ElementsAre(1.0, 3.0));
    EXPECT_EQ(decode(logOf({rmc("120001", "61.000")})).tally.notUsed, 1);
}

TEST(TrackDecoder, TheDateComesFromZDAToo) {
    const auto decoded =
        decode(logOf({gga("120000", "01.000"), "GPZDA,120000.05,23,03,1994,00,00",
                      gga("120001", "02.000"), "GPZDA,120001.05,23,03,1994,00,00"}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 43'200, march23 + 43'201));
}

TEST(TrackDecoder, AZDABeforeItsFixDatesIt) {
    const auto decoded = decode(logOf({"GPZDA,235959,23,03,1994,00,00", gga("235959", "01.000"),
                                       "GPZDA,000000,24,03,1994,00,00", gga("000000", "02.000")}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 86'399, march23 + 86'400));
}

TEST(TrackDecoder, AZDAOfAnotherMomentDoesNotChangeThePointBefore) {
    const auto decoded = decode(
        logOf({rmc("235959", "01.000"), "GPZDA,000000,24,03,1994,00,00", gga("000000", "02.000")}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 86'399, march23 + 86'400));
}

TEST(TrackDecoder, MidnightBetweenDatedSentencesMovesToTheNextDay) {
    const auto decoded =
        decode(logOf({rmc("235958", "01.000"), gga("235959", "02.000"), gga("000000", "03.000"),
                      gga("000001", "04.000"), rmc("000002", "05.000", "240394")}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 86'398, march23 + 86'399, march23 + 86'400,
                                              march23 + 86'401, march23 + 86'402));
    EXPECT_THAT(decoded.list.calls, ElementsAre("start 1", "track", "segment", "point", "point",
                                                "point", "point", "point", "end 1"));
}

TEST(TrackDecoder, PointsBeforeTheFirstDateGetItToo) {
    const auto decoded =
        decode(logOf({gga("235958", "01.000"), gga("235959", "02.000"), gga("000000", "03.000"),
                      rmc("000001", "04.000", "240394")}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 86'398, march23 + 86'399, march23 + 86'400,
                                              march23 + 86'401));
    EXPECT_EQ(decoded.tally.pointsWithoutDate, 0);
}

constexpr int moreThanWait = static_cast<int>(TrackSender::mostHeld) + 2;

/// So many points without a date, a second apart from noon on.
std::string manyPoints() {
    std::string log;
    for (int second = 0; second < moreThanWait; ++second) {
        std::string digits = std::to_string(second / 60 * 100 + second % 60);
        digits.insert(0, 4 - digits.size(), '0');
        log += sentence(gga("12" + digits, "01.000"));
    }
    return log;
}

TEST(TrackDecoder, OnlySoManyPointsWaitForADate) {
    const std::string log = manyPoints() + sentence(rmc("130000", "02.000"));
    const auto decoded = decode(log, {.day = std::nullopt, .longestGap = 100'000});
    const auto times = timesOf(decoded);
    ASSERT_EQ(times.size(), static_cast<std::size_t>(moreThanWait) + 1);
    EXPECT_EQ(times[0], 0);
    EXPECT_EQ(times[times.size() - 2], 0);
    EXPECT_EQ(times.back(), march23 + 46'800);
    EXPECT_EQ(decoded.tally.pointsWithoutDate, moreThanWait);
}

TEST(TrackDecoder, ALogWithoutADateHasNoTimesAndSaysSo) {
    const auto decoded = decode(logOf({gga("120000", "01.000"), gga("120001", "02.000")}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(0, 0));
    EXPECT_EQ(decoded.tally.pointsWithoutDate, 2);
}

TEST(TrackDecoder, ALogWithoutADateTakesTheOneThatIsGiven) {
    const auto decoded = decode(logOf({gga("235959", "01.000"), gga("000000", "02.000")}),
                                {.day = march23 / 86'400, .longestGap = 300});
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 86'399, march23 + 86'400));
    EXPECT_EQ(decoded.tally.pointsWithoutDate, 0);
}

TEST(TrackDecoder, ADateInTheLogGoesBeforeTheOneThatIsGiven) {
    const auto decoded =
        decode(logOf({rmc("120000", "01.000")}), {.day = 10'000, .longestGap = 300});
    EXPECT_THAT(timesOf(decoded), ElementsAre(march23 + 43'200));
}

TEST(TrackDecoder, ADateInTheLogCountsForThePointsBeforeItToo) {
    const auto decoded = decode(logOf({gga("235958", "01.000"), gga("000000", "02.000"),
                                       rmc("000001", "03.000", "240394")}),
                                {.day = 10'000, .longestGap = 300});
    EXPECT_THAT(timesOf(decoded),
                ElementsAre(march23 + 86'398, march23 + 86'400, march23 + 86'401));
    EXPECT_THAT(decoded.list.calls,
                ElementsAre("start 1", "track", "segment", "point", "point", "point", "end 1"));
}

TEST(TrackDecoder, ADateThatComesTooLateLeavesTheOneThatIsGiven) {
    const std::string log = manyPoints() + sentence(rmc("130000", "02.000"));
    const auto decoded = decode(log, {.day = march23 / 86'400 - 1, .longestGap = 100'000});
    const auto times = timesOf(decoded);
    ASSERT_EQ(times.size(), static_cast<std::size_t>(moreThanWait) + 1);
    EXPECT_EQ(times[0], march23 - 43'200);
    EXPECT_EQ(times[times.size() - 2], march23 - 43'200 + moreThanWait - 1);
    EXPECT_EQ(times.back(), march23 + 46'800);
    EXPECT_EQ(decoded.tally.pointsWithoutDate, 0);
}

TEST(TrackDecoder, ADateOfAVoidSentenceIsNotBelieved) {
    const auto decoded =
        decode(logOf({"GPRMC,115959,V,,,,,,,161206,,,N", gga("120000", "01.000")}));
    EXPECT_THAT(timesOf(decoded), ElementsAre(0));
}

TEST(TrackDecoder, AGapThatIsTooLongBeginsASegment) {
    const auto decoded =
        decode(logOf({rmc("120000", "01.000"), rmc("120500", "02.000"), rmc("121001", "03.000")}));
    EXPECT_THAT(decoded.list.calls, ElementsAre("start 1", "track", "segment", "point", "point",
                                                "segment", "point", "end 1"));
}

TEST(TrackDecoder, AGapIsFoundWithoutADateToo) {
    const auto decoded =
        decode(logOf({gga("235900", "01.000"), gga("000100", "02.000"), gga("000701", "03.000")}));
    EXPECT_THAT(decoded.list.calls, ElementsAre("start 1", "track", "segment", "point", "point",
                                                "segment", "point", "end 1"));
}

TEST(TrackDecoder, AClockThatIsSetBackByMoreThanTheGapBeginsASegment) {
    const auto decoded =
        decode(logOf({rmc("120000", "01.000"), rmc("115500", "02.000"), rmc("114959", "03.000")}));
    EXPECT_THAT(decoded.list.calls, ElementsAre("start 1", "track", "segment", "point", "point",
                                                "segment", "point", "end 1"));
}

TEST(TrackDecoder, TheGapIsAnOption) {
    const std::string log = logOf({rmc("120000", "01.000"), rmc("120002", "02.000")});
    const std::vector<std::string> one = {"start 1", "track", "segment", "point", "point", "end 1"};
    const std::vector<std::string> two = {"start 1", "track", "segment", "point",
                                          "segment", "point", "end 1"};
    EXPECT_EQ(decode(log, {.day = std::nullopt, .longestGap = 2}).list.calls, one);
    EXPECT_EQ(decode(log, {.day = std::nullopt, .longestGap = 1}).list.calls, two);
    EXPECT_EQ(decode(log, {.day = std::nullopt, .longestGap = 0}).list.calls, two);
    EXPECT_EQ(decode(log, {.day = std::nullopt, .longestGap = INT64_MAX}).list.calls, one);
    EXPECT_EQ(decode(log, {.day = std::nullopt, .longestGap = INT64_MIN}).list.calls, two);
}

TEST(TrackDecoder, ALostFixBeginsASegment) {
    for (const std::string body : {"GPRMC,120001,V,,,,,,,230394,,,N", "GPRMC,,V,,,,,,,,,,N",
                                   "GPGGA,120001,,,,,0,00,,,M,,M,,"}) {
        const auto decoded = decode(logOf({rmc("120000", "01.000"), gga("120000", "01.000"), body,
                                           rmc("120002", "02.000"), gga("120002", "02.000")}));
        EXPECT_THAT(decoded.list.calls, ElementsAre("start 1", "track", "segment", "point",
                                                    "segment", "point", "end 1"))
            << body;
    }
}

TEST(TrackDecoder, AFixThatIsLongInComingBeginsOneSegment) {
    const auto decoded = decode(logOf({"GPRMC,115958,V,,,,,,,,,,N", "GPRMC,115959,V,,,,,,,,,,N",
                                       rmc("120000", "01.000"), rmc("120001", "02.000")}));
    EXPECT_THAT(decoded.list.calls,
                ElementsAre("start 1", "track", "segment", "point", "point", "end 1"));
}

TEST(TrackDecoder, ASecondReceiverThatKnowsNothingDoesNotContradictTheFirst) {
    const std::string nothing = "INGGA,,,,,,0,00,,,M,,M,,";
    EXPECT_THAT(minutesOf(decode(
                    logOf({rmc("120000", "01.000"), nothing, rmc("120001", "02.000"), nothing}))),
                ElementsAre(1.0, 2.0));
}

} // namespace
} // namespace pelluvia::nmea
