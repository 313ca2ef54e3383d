// SPDX-License-Identifier: MIT

// The C library's gmtime_r and printf are the measure.

#include <Pelluvia/text/TimestampText.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>

namespace pelluvia {
namespace {

constexpr std::int64_t day = 86400;
/// The last second that a C `struct tm` holds.
constexpr std::int64_t lastBrokenDown = 67768036191676799;

/// Empty when the time cannot be broken down.
std::string written(TimestampText &text, std::int64_t time) {
    constexpr char guard = '\x7E';
    std::array<char, TimestampText::maxSize + 8> buffer;
    buffer.fill(guard);
    char *end = text.write(buffer.data(), time);
    for (std::size_t i = TimestampText::maxSize; i < buffer.size(); ++i) {
        EXPECT_EQ(buffer[i], guard) << "wrote behind its room";
    }
    return end != nullptr ? std::string(buffer.data(), end) : std::string();
}

std::string ofTheCLibrary(std::int64_t time) {
    const std::time_t seconds = time;
    std::tm broken{};
    if (gmtime_r(&seconds, &broken) == nullptr) {
        return {};
    }
    std::array<char, 128> buffer;
    const int length = std::snprintf(
        buffer.data(), buffer.size(), "%02lld-%02d-%02dT%02d:%02d:%02dZ", broken.tm_year + 1900LL,
        broken.tm_mon + 1, broken.tm_mday, broken.tm_hour, broken.tm_min, broken.tm_sec);
    return {buffer.data(), static_cast<std::size_t>(length)};
}

TEST(TimestampText, AgreesWithTheCLibraryOnEveryDayOfFourCenturies) {
    TimestampText text;
    constexpr std::int64_t first = -62091 * day; // 1800-01-01
    constexpr std::int64_t last = 84371 * day;   // 2201-01-01
    ASSERT_EQ(ofTheCLibrary(first), "1800-01-01T00:00:00Z");
    ASSERT_EQ(ofTheCLibrary(last), "2201-01-01T00:00:00Z");
    for (std::int64_t midnight = first; midnight < last; midnight += day) {
        for (const std::int64_t second : {std::int64_t{0}, std::int64_t{45'296}, day - 1}) {
            ASSERT_EQ(written(text, midnight + second), ofTheCLibrary(midnight + second));
        }
    }
}

TEST(TimestampText, WritesEverySecondOfADay) {
    TimestampText text;
    for (std::int64_t second = -day; second < day; ++second) {
        ASSERT_EQ(written(text, second), ofTheCLibrary(second));
    }
}

TEST(TimestampText, RemembersNoDayAtFirst) {
    TimestampText text;
    EXPECT_EQ(written(text, 0), "1970-01-01T00:00:00Z");
}

TEST(TimestampText, RemembersTheRightDay) {
    TimestampText text;
    for (const std::int64_t time :
         {std::int64_t{1591000000}, std::int64_t{1591000001}, std::int64_t{1591000000} - day,
          std::int64_t{-62483011200}, std::int64_t{1591000000}, lastBrokenDown, lastBrokenDown + 1,
          lastBrokenDown, std::numeric_limits<std::int64_t>::min(),
          std::numeric_limits<std::int64_t>::max(), std::int64_t{1591000000}}) {
        EXPECT_EQ(written(text, time), ofTheCLibrary(time)) << time;
    }
}

} // namespace
} // namespace pelluvia
