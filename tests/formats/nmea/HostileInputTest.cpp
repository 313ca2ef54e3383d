// SPDX-License-Identifier: MIT

#include <tests/formats/nmea/Logs.h>

#include <Pelluvia/system/Log.h>

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::decode;
using pelluvia::testing::Decoded;
using pelluvia::testing::logOf;

/// What holds whatever a log is.
void expectSane(const Decoded &decoded) {
    ASSERT_EQ(decoded.tally.points, static_cast<std::int64_t>(decoded.list.trackPoints.size()));
    for (const auto &[point, speed, name] : decoded.list.trackPoints) {
        ASSERT_TRUE(std::abs(point.latitude) <= 90.0 && std::abs(point.longitude) <= 180.0);
        ASSERT_TRUE(std::isfinite(point.altitude));
        ASSERT_GE(point.time, 0);
        ASSERT_TRUE(!speed || (std::isfinite(*speed) && *speed >= 0.0F));
    }
    int open = 0;
    for (const std::string &call : decoded.list.calls) {
        open += call.starts_with("start ") ? 1 : 0;
        open -= call.starts_with("end ") ? 1 : 0;
        ASSERT_TRUE(open == 0 || open == 1);
    }
    ASSERT_EQ(open, 0);
}

std::string sample() {
    return logOf({"GPRTE,2,1,c,7,A,B",
                  "GPRMC,235959.5,A,4807.038,N,01131.000,E,022.4,084.4,230394,003.1,W,A",
                  "GPGGA,235959.5,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,",
                  "GPVTG,084.4,T,,M,022.4,N,41.5,K,A", "GPGSA,A,3,04,05,,,,,,,,,,,2.5,1.3,2.1",
                  "GPGLL,4807.039,S,01131.001,W,000000.5,A,A", "GPZDA,000000.5,24,03,1994,00,00",
                  "GPWPL,4916.45,N,12311.12,W,A", "GPRTE,2,2,c,7,A",
                  "GPWPL,4917.45,N,12311.12,W,B"});
}

class HostileInput : public ::testing::Test {
  protected:
    void SetUp() override {
        setLogSink([](std::string_view) {});
    }
    void TearDown() override { setLogSink({}); }
};

TEST_F(HostileInput, EveryPrefixOfALogCanBeRead) {
    const std::string log = sample();
    for (std::size_t length = 0; length <= log.size(); ++length) {
        expectSane(decode(log.substr(0, length)));
        expectSane(decode(log.substr(length)));
    }
}

TEST_F(HostileInput, RandomBytesGiveNothing) {
    testing::Chance random(1);
    for (int round = 0; round < 200; ++round) {
        std::string bytes(random() % 5000, '\0');
        for (char &c : bytes) {
            c = static_cast<char>(random() % 256);
        }
        expectSane(decode(bytes));
    }
}

/// Sentences without a checksum, their fields drawn from values of every kind.
TEST_F(HostileInput, AnyFieldsInAnySentenceCanBeRead) {
    testing::Chance random(2);
    constexpr std::array types = {"RMC", "GGA", "GLL", "VTG", "GSA", "ZDA", "WPL", "RTE"};
    constexpr std::array values = {
        "",       "A",        "V",        "N",       "S",        "E",           "W",     "M",
        "K",      "c",        "w",        "0",       "1",        "2",           "3",     "-1",
        "nan",    "-0000.00", "4807.03",  "1131.00", "9000.000", "99999999999", "1e300", "000000",
        "235959", "235960",   "120000.5", "310299",  "230394",   "1994",        "2069",  "23",
        "03",     "\x01",     "\xFF",     "inf"};
    for (int round = 0; round < 300; ++round) {
        std::string log;
        for (int line = 0; line < 60; ++line) {
            log += std::string("$GP") + types[random() % types.size()];
            for (std::size_t field = random() % 16; field != 0; --field) {
                log += std::string(",") + values[random() % values.size()];
            }
            log += "\n";
        }
        expectSane(decode(log));
    }
}

TEST_F(HostileInput, TenMegabytesWithoutALineEndAreOneLine) {
    EXPECT_EQ(decode(std::string(10'000'000, 'A')).tally.tooLong, 1);
    EXPECT_EQ(decode("$GPRMC," + std::string(10'000'000, ',')).tally.tooLong, 1);
}

TEST_F(HostileInput, AMillionDollarsAreShortLines) {
    const auto decoded = decode(std::string(1'000'000, '$'));
    EXPECT_EQ(decoded.tally.garbage, 1'000'000);
}

TEST_F(HostileInput, WaypointsOfOneNameTakeNoLongerThanOthers) {
    std::string log;
    for (int i = 0; i < 50'000; ++i) {
        log += "$GPWPL,00" + std::to_string(10 + i % 50) + "." + std::to_string(10'000 + i) +
               ",N,01131.000,E,A\n";
    }
    EXPECT_EQ(decode(log).tally.waypoints, 50'000);
}

} // namespace
} // namespace pelluvia::nmea
