// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/FixSentences.h>

#include <chrono>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia::nmea {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::seconds;

std::optional<FixSentence> read(const std::string &body) {
    Sentence sentence;
    EXPECT_EQ(sentence.read("$" + body), LineKind::Sentence) << body;
    auto result = readFixSentence(sentence);
    if (result) {
        result->talker = {}; // goes with the sentence
    }
    return result;
}

const milliseconds noonish = hours(12) + minutes(35) + seconds(19);

TEST(RMC, TellsPositionSpeedDateAndTime) {
    const auto rmc = read("GPRMC,123519,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W");
    ASSERT_TRUE(rmc);
    EXPECT_FALSE(rmc->isVoid);
    EXPECT_EQ(rmc->time, noonish);
    EXPECT_EQ(rmc->day, 8847);
    ASSERT_TRUE(rmc->position);
    EXPECT_DOUBLE_EQ(rmc->position->latitude, 48.1173);
    ASSERT_TRUE(rmc->speed);
    EXPECT_FLOAT_EQ(*rmc->speed, 11.523556F);
    EXPECT_FALSE(rmc->altitude);
    EXPECT_FALSE(rmc->fixKind);
}

TEST(RMC, WithoutTimeDateOrSpeedInventsNone) {
    const auto rmc = read("GPRMC,,A,4807.038,N,01131.000,E,,,,,,A");
    ASSERT_TRUE(rmc);
    EXPECT_TRUE(rmc->position);
    EXPECT_FALSE(rmc->time);
    EXPECT_FALSE(rmc->day);
    EXPECT_FALSE(rmc->speed);
}

TEST(RMC, IsVoidByItsStatusOrItsMode) {
    for (const char *body : {"GPRMC,123519,V,4807.038,N,01131.000,E,022.4,,230394,,",
                             "GNRMC,123519,A,4807.038,N,01131.000,E,022.4,,230394,,,N",
                             "GPRMC,123519,V,,,,,,,161206,,,N"}) {
        const auto rmc = read(body);
        ASSERT_TRUE(rmc) << body;
        EXPECT_TRUE(rmc->isVoid) << body;
        EXPECT_FALSE(rmc->position) << body;
        EXPECT_FALSE(rmc->speed) << body;
        EXPECT_FALSE(rmc->day) << "a date from before the fix: " << body;
        EXPECT_EQ(rmc->time, noonish) << body;
    }
    EXPECT_TRUE(read("GPRMC,,V,,,,,,,,,,N")->isVoid);
}

TEST(RMC, OfAnyOtherModeCounts) {
    for (const char *mode : {"A", "D", "E", "F", "M", "P", "R", "S", ""}) {
        const auto rmc =
            read(std::string("GPRMC,123519,A,4807.038,N,01131.000,E,,,230394,,,") + mode);
        ASSERT_TRUE(rmc) << mode;
        EXPECT_FALSE(rmc->isVoid) << mode;
    }
}

TEST(RMC, ThatMakesNoSenseIsNothing) {
    for (const char *body :
         {"GPRMC", "GPRMC,", "GPRMC,123519,,4807.038,N,01131.000,E,,,230394",
          "GPRMC,123519,X,4807.038,N,01131.000,E,,,230394", "GPRMC,123519,A,,,,,,,230394",
          "GPRMC,993519,A,4807.038,N,01131.000,E,,,230394",
          "GPRMC,1235,A,4807.038,N,01131.000,E,,,230394",
          "GPRMC,123519,A,9107.038,N,01131.000,E,,,230394",
          "GPRMC,123519,A,4807.038,N,18131.000,E,,,230394",
          "GPRMC,123519,A,4877.038,N,01131.000,E,,,230394",
          "GPRMC,000344.03,A,4808.9992,N,4,02.3"}) {
        EXPECT_FALSE(read(body)) << body;
    }
}

TEST(RMC, WithADateThatMakesNoSenseHasNone) {
    for (const char *date : {"310299", "000000", "99999999999", "2303", "x"}) {
        const auto rmc = read(std::string("GPRMC,123519,A,4807.038,N,01131.000,E,,,") + date);
        ASSERT_TRUE(rmc) << date;
        EXPECT_FALSE(rmc->day) << date;
    }
}

TEST(RMC, WithASpeedThatMakesNoSenseHasNone) {
    for (const char *speed : {"-1.0", "99999999999", "nan", "fast"}) {
        const auto rmc =
            read(std::string("GPRMC,123519,A,4807.038,N,01131.000,E,") + speed + ",,230394");
        ASSERT_TRUE(rmc) << speed;
        EXPECT_FALSE(rmc->speed) << speed;
    }
}

TEST(GGA, TellsPositionTimeAndAltitude) {
    const auto gga = read("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,");
    ASSERT_TRUE(gga);
    EXPECT_FALSE(gga->isVoid);
    EXPECT_EQ(gga->time, noonish);
    EXPECT_TRUE(gga->position);
    EXPECT_EQ(gga->altitude, 545.4);
    EXPECT_FALSE(gga->day);
    EXPECT_FALSE(gga->speed);
}

TEST(GGA, WithoutAReadableAltitudeInMetresHasNone) {
    for (const char *fields : {",M", "nan,M", "high,M", "99999999999,M", "545.4,F", "1e3,M", ""}) {
        const auto gga =
            read(std::string("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,") + fields);
        ASSERT_TRUE(gga) << fields;
        EXPECT_FALSE(gga->altitude) << fields;
    }
    EXPECT_EQ(read("GPGGA,123519,4807.038,N,01131.000,E,1,,,-3.5,M")->altitude, -3.5);
    EXPECT_EQ(read("GPGGA,123519,4807.038,N,01131.000,E,1,,,12.0,")->altitude, 12.0);
}

TEST(GGA, OfQualityZeroIsVoid) {
    const auto gga = read("GPGGA,123519,4807.038,N,01131.000,E,0,00,,545.4,M,,M,,");
    ASSERT_TRUE(gga);
    EXPECT_TRUE(gga->isVoid);
    EXPECT_FALSE(gga->position);
    EXPECT_FALSE(gga->altitude);
}

TEST(GGA, OfNoQualityOrNonsenseIsNothing) {
    for (const char *quality : {"", "x", "-1", "10", "1.0"}) {
        EXPECT_FALSE(
            read(std::string("GPGGA,123519,4807.038,N,01131.000,E,") + quality + ",08,0.9,545.4,M"))
            << quality;
    }
    EXPECT_FALSE(read("GPGGA,123519,,,,,1,08,0.9,545.4,M"));
    EXPECT_FALSE(read("GPGGA,12:35,4807.038,N,01131.000,E,1,08,0.9,545.4,M"));
}

TEST(GLL, TellsPositionAndTime) {
    for (const char *body :
         {"GPGLL,4916.45,N,12311.12,W,225444,A", "GNGLL,4916.45,N,12311.12,W,225444,A,D"}) {
        const auto gll = read(body);
        ASSERT_TRUE(gll) << body;
        EXPECT_EQ(gll->time, hours(22) + minutes(54) + seconds(44));
        ASSERT_TRUE(gll->position);
        EXPECT_DOUBLE_EQ(gll->position->longitude, -(123.0 + 11.12 / 60.0));
    }
}

TEST(GLL, OfTheOldestReceiversEndsBehindThePosition) {
    const auto gll = read("GPGLL,4916.45,N,12311.12,W");
    ASSERT_TRUE(gll);
    EXPECT_FALSE(gll->isVoid);
    EXPECT_FALSE(gll->time);
    EXPECT_TRUE(gll->position);
}

TEST(GLL, IsVoidByItsStatusOrItsMode) {
    EXPECT_TRUE(read("GPGLL,4916.45,N,12311.12,W,225444,V")->isVoid);
    EXPECT_TRUE(read("GPGLL,4916.45,N,12311.12,W,225444,A,N")->isVoid);
    EXPECT_TRUE(read("GPGLL,,,,,225444,V,N")->isVoid);
    EXPECT_FALSE(read("GPGLL,4916.45,N,12311.12,W,225444,"));
    EXPECT_FALSE(read("GPGLL,4916.45,N"));
}

TEST(VTG, TellsTheSpeedInEitherUnit) {
    EXPECT_FLOAT_EQ(*read("GPVTG,054.7,T,034.4,M,005.5,N,010.2,K")->speed, 2.8333333F);
    EXPECT_FLOAT_EQ(*read("GPVTG,3.0,T,,,0.50,N,,,D")->speed, 0.25722222F);
    EXPECT_FLOAT_EQ(*read("GPVTG,,T,,M,,N,36.0,K,A")->speed, 10.0F);
    EXPECT_FLOAT_EQ(*read("GPVTG,,T,,M,0.00,N,0.0,K,A")->speed, 0.0F);
}

TEST(VTG, WithoutAFixOrAUnitTellsNothing) {
    for (const char *body : {"GPVTG,,T,,M,1.0,N,2.0,K,N", "GPVTG,,T,,M,,N,,K", "GPVTG",
                             "GPVTG,054.7,034.4,005.5,010.2", "GPVTG,,T,,M,-1.0,N,-2.0,K"}) {
        const auto vtg = read(body);
        ASSERT_TRUE(vtg) << body;
        EXPECT_FALSE(vtg->speed) << body;
        EXPECT_FALSE(vtg->isVoid) << body;
    }
}

TEST(GSA, TellsTheKindOfTheFix) {
    EXPECT_EQ(read("GPGSA,A,1,,,,,,,,,,,,,,,")->fixKind, 1);
    EXPECT_EQ(read("GPGSA,M,2,02,,,")->fixKind, 2);
    EXPECT_EQ(read("GNGSA,A,3,04,05,,09,12,,,24,,,,,2.5,1.3,2.1")->fixKind, 3);
    for (const char *body : {"GPGSA,A,0", "GPGSA,A,4", "GPGSA,A,", "GPGSA", "GPGSA,A,x"}) {
        EXPECT_FALSE(read(body)) << body;
    }
}

TEST(ZDA, TellsDateAndTime) {
    const auto zda = read("GPZDA,123519.05,23,03,1994,00,00");
    ASSERT_TRUE(zda);
    EXPECT_EQ(zda->time, noonish + milliseconds(50));
    EXPECT_EQ(zda->day, 8847);
    EXPECT_FALSE(zda->position);
}

TEST(ZDA, OfAReceiverThatKnowsNothingIsUnderstood) {
    const auto zda = read("GPZDA,,,,,,");
    ASSERT_TRUE(zda);
    EXPECT_FALSE(zda->time);
    EXPECT_FALSE(zda->day);
}

TEST(ZDA, WithHalfOfItMissingOrWrongIsNothing) {
    for (const char *body : {"GPZDA,123519,,,", "GPZDA,,23,03,1994", "GPZDA,123519,31,02,1994",
                             "GPZDA,123519,23,03,94", "GPZDA,253519,23,03,1994"}) {
        EXPECT_FALSE(read(body)) << body;
    }
}

TEST(FixSentence, OfAnotherTypeIsNothing) {
    for (const char *body : {"GPWPL,4807.038,N,01131.000,E,A", "GPRTE,1,1,c,0", "GPGSV,1,1,00"}) {
        EXPECT_FALSE(read(body)) << body;
    }
}

} // namespace
} // namespace pelluvia::nmea
