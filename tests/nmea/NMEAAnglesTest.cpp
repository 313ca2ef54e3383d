// SPDX-License-Identifier: MIT

#include <Pelluvia/nmea/NMEAUtils.h>

#include <tests/support/RandomText.h>

#include <bit>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

/// An angle as its two fields, joined.
std::string angle(double degrees, bool asLatitude) {
    char direction = '?';
    std::string text =
        NMEAUtils::convertDegreesToNMEADegreesMinutes(degrees, asLatitude, &direction);
    return text + "," + direction;
}

TEST(NMEAUtils, ReadsAngles) {
    const struct {
        std::optional<std::string_view> value;
        std::optional<std::string_view> direction;
        double degrees;
    } known[] = {
        {"4807.038", "N", 48.1173},
        {"01131.000", "W", -11.516666666666667},
        {"01131.000", "E", 11.516666666666667},
        {"0530", "S", -5.5},
        {"18000.000", "W", -180.0},
        {"1260.000", "N", 13.0},
        {"0000.000", "N", 0.0},
        {" \t4530.0xyz", "N", 45.5},
        {"+4530", "N", 45.5},
        {"4.53e3", "N", 45.5},
        // A negative value keeps its sign, and loses it to an inverting direction.
        {"-4530", "N", -45.5},
        {"-4530", "S", 45.5},
        {"-4530", "W", 45.5},
        // Only the whole strings "S" and "W" invert.
        {"4530", "s", 45.5},
        {"4530", "w", 45.5},
        {"4530", "South", 45.5},
        {"4530", "S ", 45.5},
        {"4530", " S", 45.5},
        {"4530", "S\0"sv, 45.5},
        {"4530", "S\u0301", 45.5},
        {"4530", "E", 45.5},
        {"4530", "", 45.5},
        {"4530", std::nullopt, 45.5},
        // No number.
        {"", "N", 0.0},
        {"A", "N", 0.0},
        {"nan", "N", 0.0},
        {"inf", "N", 0.0},
        {"0x10", "N", 0.0},
        {std::nullopt, "N", 0.0},
        {std::nullopt, std::nullopt, 0.0},
        // Beyond any angle.
        {"99999999999", "N", 999999999.0 + 0.99 / 0.6},
        {"1e999", "N", infinity},
        {"1e999", "S", -infinity},
        {"-1e999", "N", -infinity},
    };
    for (const auto &each : known) {
        EXPECT_DOUBLE_EQ(NMEAUtils::convertNMEADegreesMinutes(each.value, each.direction),
                         each.degrees)
            << each.value.value_or("nil") << ' ' << each.direction.value_or("nil");
    }
}

TEST(NMEAUtils, InvertsTheSignOfZeroToo) {
    EXPECT_TRUE(std::signbit(NMEAUtils::convertNMEADegreesMinutes("0000.000", "S")));
    EXPECT_FALSE(std::signbit(NMEAUtils::convertNMEADegreesMinutes("0000.000", "N")));
    EXPECT_TRUE(std::signbit(NMEAUtils::convertNMEADegreesMinutes("-0000.00", "N")));
}

TEST(NMEAUtils, WritesLatitudes) {
    const struct {
        double degrees;
        std::string_view fields;
    } known[] = {
        {5.5, "0530.000,N"},         {-5.5, "0530.000,S"},
        {0.0, "0000.000,N"},         {-0.0, "0000.000,N"},
        {48.1173, "4807.038,N"},     {-90.0, "9000.000,S"},
        {12.99999999, "1260.000,N"}, // no carry into the degrees
        {-1e-9, "0000.000,S"},       {std::numeric_limits<double>::denorm_min(), "0000.000,N"},
        {1.0 / 96.0, "0000.625,N"},  {180.5, "18030.000,N"}, // no angle, but the arithmetic holds
        {1e6, "100000000.000,N"},    {notANumber, "     nan,S"},
        {-notANumber, "     nan,S"}, {infinity, "     nan,N"},
        {-infinity, "     nan,S"},   {1e308, "     inf,N"}, // too large to be multiplied
    };
    for (const auto &each : known) {
        EXPECT_EQ(angle(each.degrees, true), each.fields) << each.degrees;
    }
}

TEST(NMEAUtils, WritesLongitudes) {
    const struct {
        double degrees;
        std::string_view fields;
    } known[] = {
        {5.5, "00530.000,E"},      {-11.516666666666667, "01131.000,W"},
        {0.0, "00000.000,E"},      {-0.0, "00000.000,E"},
        {-180.0, "18000.000,W"},   {179.99999999, "17960.000,E"},
        {1000.25, "100015.000,E"}, {notANumber, "      nan,W"},
        {infinity, "      nan,E"}, {-1e308, "      inf,W"},
    };
    for (const auto &each : known) {
        EXPECT_EQ(angle(each.degrees, false), each.fields) << each.degrees;
    }
}

TEST(NMEAUtils, WritesTheLargestNumbersInFull) {
    const std::string text = angle(1e306, true);
    EXPECT_EQ(text.size(), 309U + ".000,N"sv.size());
    EXPECT_EQ(std::strtod(text.c_str(), nullptr), 1e306 * 100.0);
}

TEST(NMEAUtils, WritesAnglesAsTheCLibraryDoes) {
    testing::Chance random(52);
    for (int round = 0; round < 100'000; ++round) {
        const bool anyBits = round % 2 == 0;
        double degrees = anyBits ? std::bit_cast<double>(random())
                                 : static_cast<double>(random() % 360'000'000) / 1e6 - 180.0;
        if (!std::isfinite(degrees) || std::abs(degrees) > 1e300) {
            degrees = 0.5;
        }
        const double whole = std::trunc(std::abs(degrees));
        const double value = whole * 100.0 + (std::abs(degrees) - whole) * 60.0;
        char expected[400];
        std::snprintf(expected, sizeof expected, "%08.3f,%c", value, degrees >= 0 ? 'N' : 'S');
        ASSERT_EQ(angle(degrees, true), expected);
        std::snprintf(expected, sizeof expected, "%09.3f,%c", value, degrees >= 0 ? 'E' : 'W');
        ASSERT_EQ(angle(degrees, false), expected);
    }
}

TEST(NMEAUtils, AnglesComeBackToTheResolutionOfTheFormat) {
    testing::Chance random(4807);
    // Half of the last of three decimals of a minute, and the rounding of the way back.
    constexpr double resolution = 0.0005 / 60.0 + 1e-12;
    for (int round = 0; round < 100'000; ++round) {
        const bool asLatitude = round % 2 == 0;
        const double range = asLatitude ? 90.0 : 180.0;
        const double degrees = range * (static_cast<double>(random() >> 11) * 0x1p-52 - 1.0);
        char direction = '?';
        const std::string text =
            NMEAUtils::convertDegreesToNMEADegreesMinutes(degrees, asLatitude, &direction);
        ASSERT_EQ(text.size(), asLatitude ? 8U : 9U) << degrees;
        ASSERT_NEAR(NMEAUtils::convertNMEADegreesMinutes(text, std::string_view(&direction, 1)),
                    degrees, resolution);
    }
}

TEST(NMEAUtils, ReadsANumberFromAnyBytes) {
    testing::Chance random(31);
    for (int round = 0; round < 50'000; ++round) {
        const std::string text = testing::randomText(random);
        const double degrees = NMEAUtils::convertNMEADegreesMinutes(text, text);
        ASSERT_FALSE(std::isnan(degrees)) << ::testing::PrintToString(text);
        ASSERT_EQ(NMEAUtils::convertNMEADegreesMinutes(text, "W"), -degrees);
    }
}

} // namespace
} // namespace pelluvia
