// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/UTCClock.h>

#include <gtest/gtest.h>

namespace pelluvia::nmea {
namespace {

using std::chrono::hours;
using std::chrono::seconds;

constexpr std::int64_t day = 19'000;

TEST(UTCClock, MovesToTheNextDayWhenTheTimeFallsBackByMoreThanTwelveHours) {
    UTCClock clock(day);
    EXPECT_EQ(clock.instantOf(hours(23)), day * wholeDay + hours(23));
    EXPECT_EQ(clock.instantOf(hours(1)), (day + 1) * wholeDay + hours(1));
    EXPECT_EQ(clock.instantOf(hours(2)), (day + 1) * wholeDay + hours(2));
}

TEST(UTCClock, StaysOnItsDayWhenTheTimeFallsBackByLess) {
    UTCClock clock(day);
    EXPECT_EQ(clock.instantOf(hours(14)), day * wholeDay + hours(14));
    EXPECT_EQ(clock.instantOf(hours(2)), day * wholeDay + hours(2));
    EXPECT_EQ(clock.instantOf(hours(23)), day * wholeDay + hours(23));
}

TEST(UTCClock, CountsDaysFromZeroUntilADateIsKnown) {
    UTCClock clock(std::nullopt);
    EXPECT_FALSE(clock.isDated());
    EXPECT_EQ(clock.instantOf(hours(23)), hours(23));
    EXPECT_EQ(clock.instantOf(hours(1)), wholeDay + hours(1));
    EXPECT_EQ(clock.setDate(day, hours(1)), (day - 1) * wholeDay);
    EXPECT_TRUE(clock.isDated());
    EXPECT_EQ(clock.instantOf(hours(2)), day * wholeDay + hours(2));
}

TEST(UTCClock, TellsWhatInstantsLackedWithTheFirstDateOnly) {
    UTCClock clock(std::nullopt);
    EXPECT_EQ(clock.instantOf(hours(5)), hours(5));
    EXPECT_EQ(clock.setDate(day, hours(6)), day * wholeDay);
    EXPECT_EQ(clock.setDate(day + 7, hours(7)), milliseconds(0));
    EXPECT_EQ(clock.instantOf(hours(8)), (day + 7) * wholeDay + hours(8));
}

TEST(UTCClock, ADayThatIsGivenGivesWayToTheFirstDate) {
    UTCClock clock(day);
    EXPECT_FALSE(clock.isDated());
    EXPECT_EQ(clock.instantOf(hours(5)), day * wholeDay + hours(5));
    EXPECT_EQ(clock.setDate(day - 7, hours(6)), -7 * wholeDay);
    EXPECT_EQ(clock.instantOf(hours(7)), (day - 7) * wholeDay + hours(7));
}

TEST(UTCClock, FollowsADateOverMidnightOnlyOnce) {
    UTCClock clock(day);
    EXPECT_EQ(clock.instantOf(hours(23)), day * wholeDay + hours(23));
    EXPECT_EQ(clock.setDate(day + 1, seconds(1)), milliseconds(0));
    EXPECT_EQ(clock.instantOf(seconds(1)), (day + 1) * wholeDay + seconds(1));
}

} // namespace
} // namespace pelluvia::nmea
