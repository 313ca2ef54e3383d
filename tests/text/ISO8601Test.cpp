// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <cstdint>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

struct Accepted {
    std::string_view text;
    std::int64_t seconds;
    std::string_view unread = {};
};

struct Rejected {
    std::string_view text;
    std::string_view why;
};

/// `timegm` is the independent witness: it belongs to the C library.
std::int64_t witness(int year, int month, int day, int hour, int minute, int second) {
    std::tm broken{};
    broken.tm_year = year - 1900;
    broken.tm_mon = month - 1;
    broken.tm_mday = day;
    broken.tm_hour = hour;
    broken.tm_min = minute;
    broken.tm_sec = second;
    return timegm(&broken);
}

TEST(ScanISO8601DateAsSeconds, ReadsEveryAcceptedForm) {
    constexpr Accepted table[] = {
        // The form of GPX files.
        {"2020-06-01T08:26:40Z", 1591000000},
        {"1970-01-01T00:00:00Z", 0},
        {"2038-01-19T03:14:08Z", 2147483648},
        // The basic form, and the two without seconds.
        {"20200601T082640Z", 1591000000},
        {"20200601T0826Z", 1590999960},
        {"2020-06-01T08:26Z", 1590999960},
        {"2020-06-01T08:26", 1590999960},
        {"2020-06-01T10:26+02:00", 1590999960},
        // A date alone.
        {"2020-06-01", 1590969600},
        {"20200601", 1590969600},
        {"2020-06-01 or so", 1590969600, " or so"},
        {"2020-06-01Z", 1590969600, "Z"},
        // Small letters, a blank in the place of T.
        {"2020-06-01t08:26:40z", 1591000000},
        {"2020-06-01 08:26:40", 1591000000},
        {"20200601 082640", 1591000000},
        // Fractions are dropped towards the earlier second.
        {"2020-06-01T08:26:40.0Z", 1591000000},
        {"2020-06-01T08:26:40.999999999999999999999Z", 1591000000},
        {"2020-06-01T08:26:40,5Z", 1591000000},
        {"20200601T082640.25+0200", 1590992800},
        {"1969-12-31T23:59:59.5Z", -1},
        {"1969-12-31T23:59:59.999", -1},
        // Zones.
        {"2020-06-01T10:26:40+02:00", 1591000000},
        {"2020-06-01T10:26:40+0200", 1591000000},
        {"2020-06-01T10:26:40+02", 1591000000},
        {"20200601T102640+02:00", 1591000000},
        {"2020-06-01T02:56:40-05:30", 1591000000},
        {"2020-06-01T08:26:40+00:00", 1591000000},
        {"2020-06-01T08:26:40-00:00", 1591000000},
        {"2020-06-01T08:26:40", 1591000000},
        {"2020-06-02T08:25:40+23:59", 1591000000},
        {"2020-05-31T08:27:40-23:59", 1591000000},
        {"2020-06-01T10:26:40.123+02:00", 1591000000},
        // Leap seconds and the end of the day.
        {"2016-12-31T23:59:60Z", 1483228800},
        {"2016-12-31T23:59:60.75Z", 1483228800},
        {"2017-01-01T05:29:60+05:30", 1483228800},
        {"2020-05-31T24:00:00Z", 1590969600},
        {"2020-05-31T24:00", 1590969600},
        {"2020-05-31T24:00:00.000Z", 1590969600},
        {"20201231T240000Z", 1609459200},
        // Leap years.
        {"2000-02-29T00:00:00Z", 951782400},
        {"2024-02-29T00:00:00Z", 1709164800},
        // Long ago and far ahead.
        {"1969-12-31T23:59:59Z", -1},
        {"1899-12-31T23:59:59Z", -2208988801},
        {"1858-11-17T00:00:00Z", -3506716800},
        {"0001-01-01T00:00:00Z", -62135596800},
        {"0001-01-01T00:00:00+23:59", -62135683140},
        {"9999-12-31T23:59:59Z", 253402300799},
        {"9999-12-31T23:59:60-23:59", 253402387140},
        // White space before; whatever follows stays.
        {" \t\r\n2020-06-01T08:26:40Z", 1591000000},
        {"\xC2\xA0"
         "2020-06-01T08:26:40Z",
         1591000000},
        {"2020-06-01T08:26:40Z \n", 1591000000, " \n"},
        {"2020-06-01T08:26:40Z/2020-06-02", 1591000000, "/2020-06-02"},
        {"2020-06-01T08:26:40.", 1591000000, "."},
        {"2020-06-01T08:26:40 +02:00", 1591000000, " +02:00"},
        {"2020-06-01T08:26:40 UTC", 1591000000, " UTC"},
    };
    for (const Accepted &each : table) {
        Scanner scanner(each.text);
        EXPECT_EQ(scanISO8601DateAsSeconds(scanner), each.seconds) << each.text;
        EXPECT_EQ(scanner.remaining(), each.unread) << each.text;
    }
}

TEST(ScanISO8601DateAsSeconds, RejectsWhatIsNoDateAndStaysWhereItWas) {
    constexpr Rejected table[] = {
        {"", "nothing"},
        {"   ", "white space only"},
        {"abc", "no digits"},
        {"2020", "a year"},
        {"2020-06", "a month"},
        {"202006", "a month in the basic form"},
        {"2020-06-1T08:26:40Z", "one digit"},
        {"2020-6-01T08:26:40Z", "one digit"},
        {"20-06-01T08:26:40Z", "two digits of a year"},
        {"12020-06-01T08:26:40Z", "five digits of a year"},
        {"+2020-06-01T08:26:40Z", "a sign"},
        {"-0001-06-01T08:26:40Z", "a sign"},
        {"+12020-06-01T08:26:40Z", "an expanded year"},
        {"0000-06-01T08:26:40Z", "the year 0"},
        {"2020-00-01T08:26:40Z", "month 0"},
        {"2020-13-01T08:26:40Z", "month 13"},
        {"2020-06-00T08:26:40Z", "day 0"},
        {"2020-06-31T08:26:40Z", "30 days have June"},
        {"2020-01-32T08:26:40Z", "day 32"},
        {"2020-02-30T08:26:40Z", "30 February"},
        {"2019-02-29T08:26:40Z", "no leap year"},
        {"1900-02-29T08:26:40Z", "no leap year"},
        {"2020-06-01T25:00:00Z", "hour 25"},
        {"2020-06-01T24:00:01Z", "behind the end of the day"},
        {"2020-06-01T24:01:00Z", "behind the end of the day"},
        {"2020-06-01T24:00:00.001Z", "behind the end of the day"},
        {"2020-06-01T24:00:60Z", "behind the end of the day"},
        {"2020-06-01T08:60:00Z", "minute 60"},
        {"2020-06-01T08:26:61Z", "second 61"},
        {"2020-06-01T", "T without a time"},
        {"2020-06-01Tnoon", "T without a time"},
        {"2020-06-01T08", "an hour"},
        {"2020-06-01T08Z", "an hour"},
        {"2020-06-01T8:26:40Z", "one digit"},
        {"2020-06-01T08:26:4Z", "one digit"},
        {"2020-06-01T08:26:Z", "no second"},
        {"2020-06-01T-8:26:40Z", "a sign"},
        {"2020-06-01T08:26:400Z", "three digits"},
        {"2020-06-01 1 o'clock", "a blank and a digit, but no time"},
        {"2020-06-01T08:26.5Z", "a fraction of a minute"},
        {"2020-06-01.5", "a fraction of a day"},
        {"20200601T0826400Z", "seven digits of a time"},
        {"202006010826", "no T"},
        {"1591000000", "seconds since 1970"},
        {"2020-06-01T082640Z", "mixed forms"},
        {"20200601T08:26:40Z", "mixed forms"},
        {"2020-0601T08:26:40Z", "mixed forms"},
        {"202006-01T08:26:40Z", "mixed forms"},
        {"2020-W23-1T08:26:40Z", "a date by week"},
        {"2020-153T08:26:40Z", "a day of the year"},
        {"2020153T082640Z", "a day of the year"},
        {"2020-06-01T08:26:40+24:00", "hour 24 of a zone"},
        {"2020-06-01T08:26:40+02:60", "minute 60 of a zone"},
        {"2020-06-01T08:26:40+2", "one digit of a zone"},
        {"2020-06-01T08:26:40+020", "three digits of a zone"},
        {"2020-06-01T08:26:40+02:", "no minutes of a zone"},
        {"2020-06-01T08:26:40+02:3", "one digit of a zone's minutes"},
        {"2020-06-01T08:26:40+02000", "five digits of a zone"},
        {"2020-06-01T08:26:40+", "a sign alone"},
        {"2020-06-01T08:26:40-Z", "a sign alone"},
        {"2020-06-01T08:26:40-+02:00", "two signs"},
        {"2020-06-01T08:26:40Z5", "a digit behind the value"},
        {"2020/06/01 08:26:40", "slashes"},
        {"01.06.2020 08:26", "another order"},
        {"Mon Jun  1 08:26:40 2020", "words"},
    };
    for (const Rejected &each : table) {
        const std::string text = "7 " + std::string(each.text);
        Scanner scanner(text);
        ASSERT_EQ(scanner.scanInt(), 7);
        EXPECT_FALSE(scanISO8601DateAsSeconds(scanner).has_value())
            << each.text << ": " << each.why;
        EXPECT_EQ(scanner.scanLocation(), 1U) << each.text;
    }
}

TEST(ScanISO8601DateAsSeconds, ReadsOneDateAfterAnother) {
    Scanner scanner("2020-06-01T08:26:40Z 1970-01-02T00:00:00Z");
    EXPECT_EQ(scanISO8601DateAsSeconds(scanner), 1591000000);
    EXPECT_EQ(scanISO8601DateAsSeconds(scanner), 86400);
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanISO8601DateAsSeconds(scanner).has_value());
}

TEST(ScanISO8601DateAsSeconds, AgreesWithTheCLibraryFromYear1To9999) {
    testing::Chance random(20200601);
    std::uniform_int_distribution<std::int64_t> anyTime(witness(1, 1, 1, 0, 0, 0),
                                                        witness(9999, 12, 31, 23, 59, 59));
    std::uniform_int_distribution<int> anyZone(-1439, 1439);
    for (int round = 0; round < 200'000; ++round) {
        const std::time_t local = anyTime(random);
        const int zone = anyZone(random);
        std::tm broken{};
        ASSERT_NE(gmtime_r(&local, &broken), nullptr);
        char text[64];
        const bool isExtended = round % 2 == 0;
        std::snprintf(text, sizeof text,
                      isExtended ? "%04d-%02d-%02dT%02d:%02d:%02d%c%02d:%02d"
                                 : "%04d%02d%02dT%02d%02d%02d%c%02d%02d",
                      broken.tm_year + 1900, broken.tm_mon + 1, broken.tm_mday, broken.tm_hour,
                      broken.tm_min, broken.tm_sec, zone < 0 ? '-' : '+', std::abs(zone) / 60,
                      std::abs(zone) % 60);
        Scanner scanner(text);
        ASSERT_EQ(scanISO8601DateAsSeconds(scanner), local - zone * 60) << text;
        ASSERT_TRUE(scanner.isAtEnd()) << text;
    }
}

TEST(ScanISO8601DateAsSeconds, ReadsEveryDayOfFourHundredYearsAndNoOther) {
    for (int year = 1801; year <= 2200; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int day = 1; day <= 31; ++day) {
                char text[64];
                std::snprintf(text, sizeof text, "%04d-%02d-%02dT12:34:56Z", year, month, day);
                const std::time_t seconds = witness(year, month, day, 12, 34, 56);
                std::tm broken{};
                gmtime_r(&seconds, &broken);
                Scanner scanner(text);
                const auto read = scanISO8601DateAsSeconds(scanner);
                if (broken.tm_mday == day) {
                    ASSERT_EQ(read, seconds) << text;
                } else {
                    ASSERT_FALSE(read.has_value()) << text;
                }
            }
        }
    }
}

TEST(ScanISO8601DateAsSeconds, NeverReadsBehindTheText) {
    const std::string whole = "2020-06-01T08:26:40.5+02:00";
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        // A copy of exactly this size, so that a sanitizer sees every byte too many.
        const std::string part(whole, 0, length);
        Scanner scanner(std::string_view(part.data(), part.size()));
        const auto read = scanISO8601DateAsSeconds(scanner);
        EXPECT_EQ(scanner.scanLocation() > 0, read.has_value()) << part;
        EXPECT_LE(scanner.scanLocation(), length);
    }
}

} // namespace
} // namespace pelluvia
