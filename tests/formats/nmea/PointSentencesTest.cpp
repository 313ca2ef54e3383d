// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/write/PointSentences.h>

#include <Pelluvia/nmea/NMEAUtils.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace pelluvia::nmea {
namespace {

const GPSPoint known = {
    .latitude = 48.1173, .longitude = -11.5, .altitude = 545.4, .time = 764'426'119};

TEST(PointSentences, ARMCTellsPositionTimeDateAndSpeed) {
    EXPECT_EQ(rmcBody(known, 10.0F), "GPRMC,123519.00,A,4807.038,N,01130.000,W,19.438,,230394,,,A");
}

TEST(PointSentences, AGGATellsPositionTimeAndAltitude) {
    EXPECT_EQ(ggaBody(known), "GPGGA,123519.00,4807.038,N,01130.000,W,1,,,545.400,M,,M,,");
}

TEST(PointSentences, WhatIsNotKnownIsEmpty) {
    const GPSPoint point = {.latitude = -0.5, .longitude = 180.0};
    EXPECT_EQ(rmcBody(point, std::nullopt), "GPRMC,,A,0030.000,S,18000.000,E,,,,,,A");
    EXPECT_EQ(ggaBody(point), "GPGGA,,0030.000,S,18000.000,E,1,,,,M,,M,,");
}

TEST(PointSentences, WhatCannotBeIsLeftOut) {
    constexpr float inf = std::numeric_limits<float>::infinity();
    for (const float speed : {-1.0F, inf, std::nanf(""), 1e30F}) {
        EXPECT_EQ(rmcBody(known, speed), "GPRMC,123519.00,A,4807.038,N,01130.000,W,,,230394,,,A");
    }
    for (const double altitude : {0.0, -0.0, std::nan(""), double{inf}, -double{inf}, 1e300}) {
        GPSPoint point = known;
        point.altitude = altitude;
        EXPECT_EQ(ggaBody(point), "GPGGA,123519.00,4807.038,N,01130.000,W,1,,,,M,,M,,");
    }
}

TEST(PointSentences, TimesAreTellableFrom1970To2069) {
    EXPECT_FALSE(isTellable(0));
    EXPECT_FALSE(isTellable(-1));
    EXPECT_FALSE(isTellable(std::numeric_limits<std::int64_t>::min()));
    EXPECT_TRUE(isTellable(1));
    EXPECT_TRUE(isTellable(3'155'759'999));
    EXPECT_FALSE(isTellable(3'155'760'000));
    EXPECT_FALSE(isTellable(std::numeric_limits<std::int64_t>::max()));
    GPSPoint point = known;
    point.time = 3'155'759'999;
    EXPECT_EQ(rmcBody(point, std::nullopt),
              "GPRMC,235959.00,A,4807.038,N,01130.000,W,,,311269,,,A");
    point.time = 3'155'760'000;
    EXPECT_EQ(rmcBody(point, std::nullopt), "GPRMC,,A,4807.038,N,01130.000,W,,,,,,A");
}

TEST(PointSentences, TheGlobeEndsAtThePolesAndTheDateLine) {
    EXPECT_TRUE(isOnGlobe({.latitude = 90.0, .longitude = -180.0}));
    EXPECT_TRUE(isOnGlobe({.latitude = -90.0, .longitude = 180.0}));
    EXPECT_FALSE(isOnGlobe({.latitude = 90.0000001, .longitude = 0.0}));
    EXPECT_FALSE(isOnGlobe({.latitude = 91.5, .longitude = 0.0}));
    EXPECT_FALSE(isOnGlobe({.latitude = 0.0, .longitude = -180.1}));
    EXPECT_FALSE(isOnGlobe({.latitude = std::nan(""), .longitude = 0.0}));
    EXPECT_FALSE(isOnGlobe({.latitude = 0.0, .longitude = std::nan("")}));
    EXPECT_FALSE(isOnGlobe({.latitude = -INFINITY, .longitude = 0.0}));
}

TEST(PointSentences, TheLongestIsShortEnough) {
    const GPSPoint point = {.latitude = -89.9999999,
                            .longitude = -179.9999999,
                            .altitude = -999'999.9999,
                            .time = 3'155'759'999};
    for (const std::string &body : {rmcBody(point, 100'000.0F), ggaBody(point)}) {
        EXPECT_LE(NMEAUtils::addChecksumToNMEASentence(body)->size() + 2,
                  NMEAUtils::longestSentence);
    }
}

} // namespace
} // namespace pelluvia::nmea
