// SPDX-License-Identifier: MIT

#include <Pelluvia/nmea/NMEAUtils.h>

#include <tests/support/RandomText.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t day = 86400;

/// A date and a time of day as their two fields, joined.
std::string dateAndTime(std::int64_t seconds) {
    std::string time = "before";
    std::string date = NMEAUtils::makeNMEADateFrom(seconds, &time);
    return date + "," + time;
}

/// The C library's opinion; years are counted from 1900, months from 0.
std::int64_t secondsByLibrary(int year, int month, int dayOfMonth, int hour, int minute,
                              int second) {
    std::tm broken{};
    broken.tm_year = year;
    broken.tm_mon = month;
    broken.tm_mday = dayOfMonth;
    broken.tm_hour = hour;
    broken.tm_min = minute;
    broken.tm_sec = second;
    return timegm(&broken);
}

std::string twoDigits(int value) {
    char text[16];
    std::snprintf(text, sizeof text, "%02d", value);
    return text;
}

TEST(NMEAUtils, ReadsDatesAndTimes) {
    const struct {
        std::optional<std::string_view> date;
        std::optional<std::string_view> time;
        std::int64_t seconds;
    } known[] = {
        {"230394", "123519", 764426119},
        {"010170", "000000", 0},
        {"311269", "235959", 3155759999}, // 2069
        {"010170", "000001", 1},
        {"010100", "000000", 946684800}, // 2000
        {"290200", "120000.99", 951825600},
        {"150824", "235950", 1723766390},
        // Without a date, the day before the year 1900.
        {std::nullopt, "123519", -2209029881},
        {std::nullopt, std::nullopt, -2209075200},
        // Fields beyond their range carry over.
        {"010170", "235960", day},
        {"000170", "000000", -day},
        {"011370", "000000", 31536000},
        {"010070", "000000", -31 * day},
        {"310224", "000000", secondsByLibrary(124, 2, 2, 0, 0, 0)},
        {"999970", "999999", secondsByLibrary(70, 98, 99, 99, 99, 99)},
        {"000000", "000000", secondsByLibrary(100, -1, 0, 0, 0, 0)},
        // Signs and blanks are read as they are in any number.
        {"-1-170", "-1-1-1", secondsByLibrary(70, -2, -1, -1, -1, -1)},
        {" 1 170", " 1+2 3", 3723},
        {"0101-9", "000000", secondsByLibrary(91, 0, 1, 0, 0, 0)},
        // A date of another length has no century: years since 1900 as they stand.
        {"15082024", "000000", secondsByLibrary(2024, 7, 15, 0, 0, 0)},
        {"01017", "000000", secondsByLibrary(7, 0, 1, 0, 0, 0)},
        {"0101070", "000000", 0},
        {"010170 ", "000000", 0},
        {"010124 ", "000000", secondsByLibrary(24, 0, 1, 0, 0, 0)},
        {"0101", "000000", secondsByLibrary(0, 0, 1, 0, 0, 0)},
        // What is not there counts as 0.
        {"010", "000000", secondsByLibrary(0, -1, 1, 0, 0, 0)},
        {"01", "000000", secondsByLibrary(0, -1, 1, 0, 0, 0)},
        {"1", "000000", secondsByLibrary(0, -1, 1, 0, 0, 0)},
        {"", "000000", secondsByLibrary(0, -1, 0, 0, 0, 0)},
        {"010170", std::nullopt, 0},
        {"010170", "", 0},
        {"010170", "1", 3600},
        {"010170", "12", 12 * 3600},
        {"010170", "123", 12 * 3600 + 3 * 60},
        {"010170", "12351", 12 * 3600 + 35 * 60 + 1},
        {"010170", "ab3519", 35 * 60 + 19},
        {"010170", "1.2.3.", 3600 + 2 * 60 + 3},
        {"ABCDEF", "GHIJKL", secondsByLibrary(100, -1, 0, 0, 0, 0)},
        // Characters count, not bytes.
        {"\u20AC10170", "000000", secondsByLibrary(70, 0, 0, 0, 0, 0)},
        {"\U0001F6000170", "000000", secondsByLibrary(70, 0, 0, 0, 0, 0)},
        {"0101\u20AC0", "000000", secondsByLibrary(100, 0, 1, 0, 0, 0)},
        {"010170", "\U0001F6000203", 2 * 60 + 3},
        {"\xFF\xFE\x01\x30\x37\x30", "\x80\x80\x80\x80\x80\x31",
         secondsByLibrary(70, -1, 0, 0, 0, 0)},
        {"010170", "0\0001203"sv, 12 * 60 + 3},
        // Any year of an int.
        {"01012147481747", "000000", secondsByLibrary(2147481747, 0, 1, 0, 0, 0)},
        {"010199999999999", "000000", secondsByLibrary(2147483647, 0, 1, 0, 0, 0)},
        {"0101-99999999999", "000000", secondsByLibrary(-2147483647 - 1, 0, 1, 0, 0, 0)},
    };
    for (const auto &each : known) {
        EXPECT_EQ(NMEAUtils::convertNMEADate(each.date, each.time), each.seconds)
            << each.date.value_or("nil") << ' ' << each.time.value_or("nil");
    }
}

TEST(NMEAUtils, AnEightCharacterDateLandsFarAhead) {
    EXPECT_EQ(dateAndTime(NMEAUtils::convertNMEADate("15082024", "101112")), "150824,101112.00");
    EXPECT_EQ(NMEAUtils::convertNMEADate("15082024", "000000"), 61681824000); // 3924-08-15
}

TEST(NMEAUtils, ReadsDatesAsTheCLibraryNormalisesThem) {
    testing::Chance random(12);
    for (int round = 0; round < 100'000; ++round) {
        const auto field = [&random] { return static_cast<int>(random() % 100); };
        const int date[] = {field(), field(), field()};
        const int time[] = {field(), field(), field()};
        const std::string dateField = twoDigits(date[0]) + twoDigits(date[1]) + twoDigits(date[2]);
        const std::string timeField = twoDigits(time[0]) + twoDigits(time[1]) + twoDigits(time[2]);
        ASSERT_EQ(NMEAUtils::convertNMEADate(dateField, timeField + ".75"),
                  secondsByLibrary(date[2] < 70 ? date[2] + 100 : date[2], date[1] - 1, date[0],
                                   time[0], time[1], time[2]))
            << dateField << ' ' << timeField;
    }
}

TEST(NMEAUtils, WritesDatesAndTimes) {
    const struct {
        std::int64_t seconds;
        std::string_view fields;
    } known[] = {
        {764426119, "230394,123519.00"},
        {0, "010170,000000.00"},
        {-1, "311269,235959.00"},
        {946684800, "010100,000000.00"},
        {1709164799, "280224,235959.00"},
        {3155759999, "311269,235959.00"}, // 2069 reads like 1969
        // Years before 1900 count back from it.
        {-2208988800, "010100,000000.00"},
        {-2208988801, "311199,235959.00"},
        {secondsByLibrary(-99, 5, 15, 1, 2, 3), "150501,010203.00"},
        {secondsByLibrary(-100, 5, 15, 1, 2, 3), "150600,010203.00"},
        {secondsByLibrary(-101, 0, 1, 0, 0, 0), "010099,000000.00"},
        // The ends of the range: the years 292277026596 and -292277022657.
        {highest, "041296,153007.00"},
        {lowest, "270043,082952.00"},
    };
    for (const auto &each : known) {
        EXPECT_EQ(dateAndTime(each.seconds), each.fields) << each.seconds;
    }
}

TEST(NMEAUtils, WritesTheDateAloneWhenNobodyWantsTheTime) {
    EXPECT_EQ(NMEAUtils::makeNMEADateFrom(764426119, nullptr), "230394");
}

TEST(NMEAUtils, WritesDatesAsTheCLibraryBreaksThemDown) {
    testing::Chance random(1900);
    std::uniform_int_distribution<std::int64_t> times(-60'000'000'000'000, 60'000'000'000'000);
    for (int round = 0; round < 100'000; ++round) {
        const std::int64_t seconds = times(random) >> (round % 24);
        const std::time_t time = seconds;
        std::tm broken{};
        ASSERT_NE(gmtime_r(&time, &broken), nullptr);
        char expected[64];
        std::snprintf(
            expected, sizeof expected, "%06d,%09.2f",
            broken.tm_mday * 10000 + (broken.tm_mon + 1) * 100 + broken.tm_year % 100,
            static_cast<double>(broken.tm_hour * 10000 + broken.tm_min * 100 + broken.tm_sec));
        ASSERT_EQ(dateAndTime(seconds), expected) << seconds;
    }
}

TEST(NMEAUtils, DatesComeBackForAHundredYears) {
    testing::Chance random(69);
    std::uniform_int_distribution<std::int64_t> times(0, 3155759999);
    for (int round = 0; round < 100'000; ++round) {
        const std::int64_t seconds = times(random);
        std::string time;
        const std::string date = NMEAUtils::makeNMEADateFrom(seconds, &time);
        ASSERT_EQ(NMEAUtils::convertNMEADate(date, time), seconds);
        ASSERT_EQ(NMEAUtils::updateNMEADate(seconds, time), seconds);
    }
}

TEST(NMEAUtils, UpdatesTheTimeOfDayWithinTheDay) {
    constexpr std::int64_t evening = 1723766390; // 2024-08-15 23:59:50
    constexpr std::int64_t midnight = 1723680000;
    const struct {
        std::int64_t seconds;
        std::optional<std::string_view> time;
        std::int64_t result;
    } known[] = {
        {evening, "000005", 1723680005}, // the same day, not the next
        {evening, "235951", evening + 1},
        {evening, "123519.99", midnight + 45319},
        {evening, std::nullopt, midnight},
        {evening, "", midnight},
        {evening, "12", midnight + 12 * 3600},
        {evening, "1234", midnight + 12 * 3600 + 34 * 60},
        {evening, "x", midnight},
        {evening, "\xFF\xFF\xFF\xFF\xFF\xFF", midnight},
        {evening, "240000", midnight + day},
        {evening, "999999", midnight + 99 * 3600 + 99 * 60 + 99},
        {evening, "-1-1-1", midnight - 3661},
        {midnight, "000000", midnight},
        {0, "000000", 0},
        {-1, "000000", -day},
        {-1, "000001", -day + 1},
        {-2209029881, "000000", -2209075200},
        // The ends of the range: 08:29:52 of the first day, 15:30:07 of the last.
        {lowest, "082952", lowest},
        {lowest, "082953", lowest + 1},
        {lowest, "000000", lowest},
        {lowest, "-90000", lowest},
        {highest, "153007", highest},
        {highest, "153006", highest - 1},
        {highest, "153008", highest},
        {highest, "999999", highest},
    };
    for (const auto &each : known) {
        EXPECT_EQ(NMEAUtils::updateNMEADate(each.seconds, each.time), each.result)
            << each.seconds << ' ' << each.time.value_or("nil");
    }
}

TEST(NMEAUtils, ReadsADateFromAnyBytes) {
    testing::Chance random(13);
    for (int round = 0; round < 50'000; ++round) {
        const std::string text = testing::randomText(random);
        // Years of an int and two digits of everything else.
        ASSERT_LT(std::abs(NMEAUtils::convertNMEADate(text, text)), 70'000'000'000'000'000);
        const std::int64_t updated = NMEAUtils::updateNMEADate(0, text);
        ASSERT_GE(updated, -9 * 3661);
        ASSERT_LE(updated, 99 * 3661);
    }
}

} // namespace
} // namespace pelluvia
