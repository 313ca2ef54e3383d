// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/Fields.h>

#include <gtest/gtest.h>
#include <vector>

namespace pelluvia::nmea {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

TEST(Fields, PositionsAreReadToTheirLastDecimal) {
    const auto position = readPosition("4807.038", "N", "01131.000", "E");
    ASSERT_TRUE(position);
    EXPECT_DOUBLE_EQ(position->latitude, 48.1173);
    EXPECT_DOUBLE_EQ(position->longitude, 11.0 + 31.0 / 60.0);

    const auto precise = readPosition("3403.47162394", "S", "11711.80927093", "W");
    ASSERT_TRUE(precise);
    EXPECT_NEAR(precise->latitude, -(34.0 + 3.47162394 / 60.0), 1e-12);
    EXPECT_NEAR(precise->longitude, -(117.0 + 11.80927093 / 60.0), 1e-12);
}

TEST(Fields, PositionsReachToThePolesAndTheDateLine) {
    EXPECT_EQ(readPosition("9000.000", "S", "18000.000", "W"), (Position{-90.0, -180.0}));
    EXPECT_EQ(readPosition("0000", "N", "00000", "E"), (Position{0.0, 0.0}));
}

TEST(Fields, SixtyMinutesAreTheNextDegree) {
    EXPECT_EQ(readPosition("1260.000", "N", "00000.000", "E"), (Position{13.0, 0.0}));
    const auto end = readPosition("8960.000", "N", "17960.000", "W");
    ASSERT_TRUE(end);
    EXPECT_DOUBLE_EQ(end->latitude, 90.0);
    EXPECT_DOUBLE_EQ(end->longitude, -180.0);
}

struct AngleCase {
    const char *latitude;
    const char *northOrSouth;
    const char *longitude;
    const char *eastOrWest;
};

TEST(Fields, PositionsThatCannotBeAreNothing) {
    const std::vector<AngleCase> cases = {
        {"", "N", "01131.000", "E"},
        {"4807.038", "", "01131.000", "E"},
        {"4807.038", "n", "01131.000", "E"},
        {"4807.038", "E", "01131.000", "E"},
        {"4807.038", "N", "", "E"},
        {"4807.038", "N", "01131.000", ""},
        {"4807.038", "N", "01131.000", "S"},
        {"9000.001", "N", "01131.000", "E"},
        {"9100.000", "N", "01131.000", "E"},
        {"4807.038", "N", "18000.001", "E"},
        {"4860.001", "N", "01131.000", "E"},
        {"4807.038", "N", "01199.000", "E"},
        {"-4807.038", "N", "01131.000", "E"},
        {"-0000.00", "N", "01131.000", "E"},
        {"+4807.038", "N", "01131.000", "E"},
        {"4807.038x", "N", "01131.000", "E"},
        {"48 07.038", "N", "01131.000", "E"},
        {" 4807.038", "N", "01131.000", "E"},
        {"4807.0.38", "N", "01131.000", "E"},
        {"4.8e3", "N", "01131.000", "E"},
        {"nan", "N", "inf", "E"},
        {".", "N", "01131.000", "E"},
        {"99999999999", "N", "01131.000", "E"},
        {"4807,038", "N", "01131.000", "E"},
    };
    for (const AngleCase &each : cases) {
        EXPECT_FALSE(
            readPosition(each.latitude, each.northOrSouth, each.longitude, each.eastOrWest))
            << each.latitude << each.northOrSouth << each.longitude << each.eastOrWest;
    }
}

TEST(Fields, TimesOfDayAreReadToTheMillisecond) {
    EXPECT_EQ(readTimeOfDay("000000"), milliseconds(0));
    EXPECT_EQ(readTimeOfDay("123519"), hours(12) + minutes(35) + seconds(19));
    EXPECT_EQ(readTimeOfDay("123519."), hours(12) + minutes(35) + seconds(19));
    EXPECT_EQ(readTimeOfDay("235959.9"), wholeDay - milliseconds(100));
    EXPECT_EQ(readTimeOfDay("000001.0609"), seconds(1) + milliseconds(60));
    EXPECT_EQ(readTimeOfDay("235960"), wholeDay);
}

TEST(Fields, TimesThatNoClockShowsAreNothing) {
    for (const char *text : {"", "12351", "240000", "126000", "123561", "12351a", "-12351",
                             "123519,5", "123519.x", "123519 ", "1235199", " 123519", "12:35:19"}) {
        EXPECT_FALSE(readTimeOfDay(text)) << text;
    }
}

TEST(Fields, DatesOfTwoDigitYearsAreFrom1970To2069) {
    EXPECT_EQ(readDate("010170"), 0);
    EXPECT_EQ(readDate("230394"), 8847);
    EXPECT_EQ(readDate("010100"), 10957);
    EXPECT_EQ(readDate("290224"), 19782);
    EXPECT_EQ(readDate("311269"), 36524);
}

TEST(Fields, DatesThatNoCalendarHasAreNothing) {
    for (const char *text : {"", "000000", "310299", "290223", "320101", "011301", "010001",
                             "000101", "0101", "01012024", "0101a4", "-10101", " 10101"}) {
        EXPECT_FALSE(readDate(text)) << text;
    }
}

TEST(Fields, DatesOfFourDigitYearsAreTakenAsTheyStand) {
    EXPECT_EQ(readDate("01", "01", "1970"), 0);
    EXPECT_EQ(readDate("23", "03", "1994"), 8847);
    EXPECT_EQ(readDate("6", "3", "2021"), 18692);
    EXPECT_EQ(readDate("29", "02", "2104"), 49001);
}

TEST(Fields, DatesOfFourDigitYearsThatCannotBeAreNothing) {
    EXPECT_FALSE(readDate("29", "02", "2023"));
    EXPECT_FALSE(readDate("31", "12", "1969"));
    EXPECT_FALSE(readDate("01", "13", "2023"));
    EXPECT_FALSE(readDate("00", "01", "2023"));
    EXPECT_FALSE(readDate("01", "00", "2023"));
    EXPECT_FALSE(readDate("", "01", "2023"));
    EXPECT_FALSE(readDate("01", "01", ""));
    EXPECT_FALSE(readDate("01", "01", "99999999999"));
    EXPECT_FALSE(readDate("01", "01", "20x3"));
}

TEST(Fields, NumbersAreDecimalAndNothingElse) {
    EXPECT_EQ(readNumber("000115.4"), 115.4);
    EXPECT_EQ(readNumber("-33.3"), -33.3);
    EXPECT_EQ(readNumber("+.5"), 0.5);
    EXPECT_EQ(readNumber("7."), 7.0);
    for (const char *text :
         {"", "-", ".", "nan", "inf", "1e5", "0x10", "12a", "1 2", "--1", "1,5"}) {
        EXPECT_FALSE(readNumber(text)) << text;
    }
}

TEST(Fields, CountsHaveALimit) {
    EXPECT_EQ(readCount("08", 9), 8);
    EXPECT_EQ(readCount("9", 9), 9);
    for (const char *text : {"", "10", "-1", "+1", " 1", "1 ", "1x", "99999999999999999999"}) {
        EXPECT_FALSE(readCount(text, 9)) << text;
    }
}

} // namespace
} // namespace pelluvia::nmea
