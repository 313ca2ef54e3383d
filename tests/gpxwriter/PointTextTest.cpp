// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/internal/PointText.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
/// The last second that a C `struct tm` holds, and the first.
constexpr std::int64_t lastBrokenDown = 67768036191676799;
constexpr std::int64_t firstBrokenDown = -67768040609740800;

/// What a function appends; checks the room that it was promised.
template <class Append>
std::string appended(std::size_t largest, Append append) {
    std::array<char, 4096> buffer;
    TextCursor text(buffer.data());
    append(text);
    std::string result(buffer.data(), text.position());
    EXPECT_LE(result.size(), largest);
    return result;
}

std::string timeElement(std::int64_t time) {
    static TimestampText timestamps; // one for all tests: what it remembers must not matter
    return appended(largestTime, [time](TextCursor &text) { appendTime(text, timestamps, time); });
}

std::string elevation(double altitude) {
    return appended(largestElevation,
                    [altitude](TextCursor &text) { appendElevation(text, altitude); });
}

std::string position(double latitude, double longitude) {
    return appended(largestPosition, [=](TextCursor &text) {
        appendPosition(text, "\t<startPoint", latitude, longitude);
    });
}

/// What the C library makes of the same time; empty when it cannot break it down.
std::string timeElementOfC(std::int64_t time) {
    const std::time_t seconds = time;
    std::tm broken{};
    if (gmtime_r(&seconds, &broken) == nullptr) {
        return "";
    }
    std::array<char, 128> buffer;
    std::snprintf(buffer.data(), buffer.size(), "<time>%02lld-%02d-%02dT%02d:%02d:%02dZ</time>",
                  broken.tm_year + 1900LL, broken.tm_mon + 1, broken.tm_mday, broken.tm_hour,
                  broken.tm_min, broken.tm_sec);
    return buffer.data();
}

TEST(TimeElement, IsTheUTCDateAndTime) {
    EXPECT_EQ(timeElement(1591000000), "<time>2020-06-01T08:26:40Z</time>");
    EXPECT_EQ(timeElement(1), "<time>1970-01-01T00:00:01Z</time>");
    EXPECT_EQ(timeElement(951782400), "<time>2000-02-29T00:00:00Z</time>");
}

TEST(TimeElement, IsLeftOutForTimeZero) {
    EXPECT_EQ(timeElement(0), "");
}

TEST(TimeElement, HoldsTimesBefore1970) {
    EXPECT_EQ(timeElement(-1), "<time>1969-12-31T23:59:59Z</time>");
    EXPECT_EQ(timeElement(-2208988801), "<time>1899-12-31T23:59:59Z</time>");
}

TEST(TimeElement, YearsHaveAtLeastTwoCharacters) {
    EXPECT_EQ(timeElement(253402300800), "<time>10000-01-01T00:00:00Z</time>");
    EXPECT_EQ(timeElement(-62135596801), "<time>00-12-31T23:59:59Z</time>");
    EXPECT_EQ(timeElement(-62135596800), "<time>01-01-01T00:00:00Z</time>");
    EXPECT_EQ(timeElement(-62167219201), "<time>-1-12-31T23:59:59Z</time>");
    EXPECT_EQ(timeElement(-62483011200), "<time>-11-12-29T00:00:00Z</time>");
}

TEST(TimeElement, IsLeftOutWhenTheYearCannotBeBrokenDown) {
    EXPECT_EQ(timeElement(lastBrokenDown), "<time>2147485547-12-31T23:59:59Z</time>");
    EXPECT_EQ(timeElement(lastBrokenDown + 1), "");
    EXPECT_EQ(timeElement(firstBrokenDown), "<time>-2147481748-01-01T00:00:00Z</time>");
    EXPECT_EQ(timeElement(firstBrokenDown - 1), "");
    EXPECT_EQ(timeElement(highest), "");
    EXPECT_EQ(timeElement(lowest), "");
}

TEST(TimeElement, AgreesWithTheCLibrary) {
    for (const std::int64_t time : {lastBrokenDown, lastBrokenDown + 1, firstBrokenDown,
                                    firstBrokenDown - 1, lowest, highest}) {
        EXPECT_EQ(timeElement(time), timeElementOfC(time)) << time;
    }
    testing::Chance random(7);
    for (int i = 0; i < 50'000; ++i) {
        const std::int64_t time = static_cast<std::int64_t>(random()) >> (i % 60);
        if (time != 0) {
            ASSERT_EQ(timeElement(time), timeElementOfC(time)) << time;
        }
    }
}

TEST(Elevation, HasSixDecimals) {
    EXPECT_EQ(elevation(430), "<ele>430.000000</ele>");
    EXPECT_EQ(elevation(-0.1234567), "<ele>-0.123457</ele>");
    EXPECT_EQ(elevation(1e-9), "<ele>0.000000</ele>");
    EXPECT_EQ(elevation(-1e-300), "<ele>-0.000000</ele>");
}

TEST(Elevation, OfZeroOfEitherSignIsLeftOut) {
    EXPECT_EQ(elevation(0.0), "");
    EXPECT_EQ(elevation(-0.0), "");
}

TEST(Elevation, ThatIsNotFiniteIsAValue) {
    EXPECT_EQ(elevation(std::nan("")), "<ele>nan</ele>");
    EXPECT_EQ(elevation(-std::numeric_limits<double>::infinity()), "<ele>-inf</ele>");
}

TEST(Elevation, OfTheLargestNumbersIsWrittenWhole) {
    std::array<char, 512> expected;
    for (const double altitude : {1e308, -std::numeric_limits<double>::max()}) {
        std::snprintf(expected.data(), expected.size(), "<ele>%f</ele>", altitude);
        EXPECT_EQ(elevation(altitude), expected.data());
    }
}

TEST(Position, HasUpToTenSignificantDigits) {
    EXPECT_EQ(position(47.1, 8.5), "\t<startPoint lat=\"47.1\" lon=\"8.5\"");
    EXPECT_EQ(position(47.123456789012, -122.98765432109),
              "\t<startPoint lat=\"47.12345679\" lon=\"-122.9876543\"");
    EXPECT_EQ(position(-0.0, 1e-10), "\t<startPoint lat=\"-0\" lon=\"1e-10\"");
    EXPECT_EQ(position(90, 180), "\t<startPoint lat=\"90\" lon=\"180\"");
}

TEST(Position, ThatIsNotFiniteOrHugeIsWrittenAsItIs) {
    EXPECT_EQ(position(std::nan(""), -std::numeric_limits<double>::infinity()),
              "\t<startPoint lat=\"nan\" lon=\"-inf\"");
    EXPECT_EQ(position(-std::numeric_limits<double>::max(), -2.2250738585072014e-308),
              "\t<startPoint lat=\"-1.797693135e+308\" lon=\"-2.225073859e-308\"");
}

} // namespace
} // namespace pelluvia
