// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Calendar.h>

#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <ostream>
#include <random>
#include <tests/support/Chance.h>

namespace pelluvia {

void PrintTo(const CivilDate &date, std::ostream *stream) {
    *stream << date.year << '-' << date.month << '-' << date.day;
}

void PrintTo(const CivilTime &time, std::ostream *stream) {
    PrintTo(time.date, stream);
    *stream << ' ' << time.hour << ':' << time.minute << ':' << time.second;
}

namespace {

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();

TEST(Calendar, KnowsDatesAcrossTheYears) {
    const struct {
        CivilDate date;
        std::int64_t days;
    } known[] = {
        {{1970, 1, 1}, 0},       {{1969, 12, 31}, -1},      {{2000, 2, 29}, 11016},
        {{2000, 3, 1}, 11017},   {{1900, 2, 28}, -25509},   {{1900, 3, 1}, -25508},
        {{2038, 1, 19}, 24855},  {{0, 3, 1}, -719468},      {{0, 2, 29}, -719469},
        {{-1, 12, 31}, -719529}, {{9999, 12, 31}, 2932896},
    };
    for (const auto &each : known) {
        EXPECT_EQ(daysFromCivil(each.date), each.days);
        EXPECT_EQ(civilFromDays(each.days), each.date);
    }
}

TEST(Calendar, EachDayOfTwoCyclesFollowsTheDayBefore) {
    CivilDate expected{-1, 1, 1};
    const std::int64_t first = daysFromCivil(expected);
    for (std::int64_t day = first; day < first + 2 * 146097 + 2000; ++day) {
        ASSERT_EQ(civilFromDays(day), expected);
        ASSERT_EQ(daysFromCivil(expected), day);
        if (++expected.day > daysInMonth(expected.year, expected.month)) {
            expected.day = 1;
            if (++expected.month > 12) {
                expected.month = 1;
                ++expected.year;
            }
        }
    }
}

TEST(Calendar, LeapYears) {
    for (const std::int64_t year : {2000, 2024, 1996, 0, -4, -400}) {
        EXPECT_TRUE(isLeapYear(year)) << year;
        EXPECT_EQ(daysInMonth(year, 2), 29) << year;
    }
    for (const std::int64_t year : {1900, 2023, 2100, -1, -100}) {
        EXPECT_FALSE(isLeapYear(year)) << year;
        EXPECT_EQ(daysInMonth(year, 2), 28) << year;
    }
}

TEST(Calendar, AMonthThatIsNoneHasNoDays) {
    EXPECT_EQ(daysInMonth(2020, 0), 0);
    EXPECT_EQ(daysInMonth(2020, 13), 0);
    EXPECT_EQ(daysInMonth(2020, std::numeric_limits<int>::min()), 0);
}

TEST(Calendar, ADayOutsideItsMonthCountsOn) {
    EXPECT_EQ(daysFromCivil({2021, 2, 29}), daysFromCivil({2021, 3, 1}));
    EXPECT_EQ(daysFromCivil({2021, 1, 0}), daysFromCivil({2020, 12, 31}));
}

TEST(Calendar, TimesBefore1970FallIntoTheRightDay) {
    EXPECT_EQ(civilFromSeconds(-1), (CivilTime{{1969, 12, 31}, 23, 59, 59}));
    EXPECT_EQ(civilFromSeconds(-secondsPerDay), (CivilTime{{1969, 12, 31}, 0, 0, 0}));
    EXPECT_EQ(civilFromSeconds(1591000000), (CivilTime{{2020, 6, 1}, 8, 26, 40}));
}

TEST(Calendar, TheEndsOfTheRangesAreDefined) {
    EXPECT_EQ(civilFromSeconds(lowest), (CivilTime{{-292277022657, 1, 27}, 8, 29, 52}));
    EXPECT_EQ(civilFromSeconds(highest), (CivilTime{{292277026596, 12, 4}, 15, 30, 7}));
    EXPECT_LT(civilFromDays(lowest).year, -largestCivilYear);
    EXPECT_GT(civilFromDays(highest).year, largestCivilYear);
    EXPECT_EQ(daysFromCivil({highest, 5, 6}), daysFromCivil({largestCivilYear, 5, 6}));
    EXPECT_EQ(daysFromCivil({lowest, 5, 6}), daysFromCivil({-largestCivilYear, 5, 6}));
}

TEST(Calendar, AgreesWithTheCLibraryOnRandomTimes) {
    testing::Chance random(20200601);
    // Years that a `struct tm` holds.
    std::uniform_int_distribution<std::int64_t> times(-67'000'000'000'000'000,
                                                      67'000'000'000'000'000);
    for (int i = 0; i < 200'000; ++i) {
        const std::int64_t seconds = times(random) >> (i % 40);
        const std::time_t time = seconds;
        std::tm broken{};
        ASSERT_NE(gmtime_r(&time, &broken), nullptr);
        const CivilTime expected{
            {std::int64_t{broken.tm_year} + 1900, broken.tm_mon + 1, broken.tm_mday},
            broken.tm_hour,
            broken.tm_min,
            broken.tm_sec};
        ASSERT_EQ(civilFromSeconds(seconds), expected) << seconds;
    }
}

} // namespace
} // namespace pelluvia
