// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Number.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace pelluvia {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr auto int32Min = std::numeric_limits<std::int32_t>::min();
constexpr auto int32Max = std::numeric_limits<std::int32_t>::max();
constexpr auto int64Min = std::numeric_limits<std::int64_t>::min();
constexpr auto int64Max = std::numeric_limits<std::int64_t>::max();
constexpr float largestFloat = std::numeric_limits<float>::max();

TEST(Number, ConvertsToInt32WithinItsRange) {
    const struct {
        double value;
        std::int32_t expected;
    } rows[] = {
        {0.0, 0},
        {-0.0, 0},
        {21.9, 21},
        {-21.9, -21},
        {0.999999, 0},
        {2147483647.0, int32Max},
        {2147483647.9, int32Max},
        {2147483648.0, int32Max},
        {-2147483648.0, int32Min},
        {-2147483648.9, int32Min},
        {-2147483649.0, int32Min},
        {1e300, int32Max},
        {-1e300, int32Min},
        {infinity, int32Max},
        {-infinity, int32Min},
        {notANumber, 0},
        {-notANumber, 0},
        {5e-324, 0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(saturatedInt32(row.value), row.expected) << row.value;
        EXPECT_EQ(Number(row.value).intValue(), row.expected) << row.value;
    }
    EXPECT_EQ(saturatedInt32(int64Max), int32Max);
    EXPECT_EQ(saturatedInt32(int64Min), int32Min);
    EXPECT_EQ(saturatedInt32(std::int64_t{2147483648}), int32Max);
    EXPECT_EQ(saturatedInt32(std::int64_t{-2147483649}), int32Min);
    EXPECT_EQ(saturatedInt32(std::int64_t{-7}), -7);
}

TEST(Number, ConvertsToInt64WithinItsRange) {
    const struct {
        double value;
        std::int64_t expected;
    } rows[] = {
        {-1.5, -1},
        {9223372036854774784.0, 9223372036854774784}, // the last double below 2^63
        {9223372036854775808.0, int64Max},
        {-9223372036854775808.0, int64Min},
        {-9223372036854777856.0, int64Min},
        {infinity, int64Max},
        {-infinity, int64Min},
        {notANumber, 0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(saturatedInt64(row.value), row.expected) << row.value;
        EXPECT_EQ(Number(row.value).int64Value(), row.expected) << row.value;
    }
}

TEST(Number, RoundsToTheNearestFloat) {
    const double largest = largestFloat;
    const double halfway = std::ldexp(1.0, 128) - std::ldexp(1.0, 103);
    const struct {
        double value;
        float expected;
    } rows[] = {
        {0.1, 0.1F},
        {16777217.0, 16777216.0F},
        {largest, largestFloat},
        {std::nextafter(largest, infinity), largestFloat},
        {std::nextafter(halfway, 0.0), largestFloat},
        {halfway, std::numeric_limits<float>::infinity()},
        {1e39, std::numeric_limits<float>::infinity()},
        {infinity, std::numeric_limits<float>::infinity()},
        {1e-46, 0.0F},
        {1e-45, 1e-45F}, // the smallest float is 1.4e-45
    };
    for (const auto &row : rows) {
        EXPECT_EQ(roundedFloat(row.value), row.expected) << row.value;
        EXPECT_EQ(roundedFloat(-row.value), -row.expected) << row.value;
        EXPECT_EQ(Number(row.value).floatValue(), row.expected) << row.value;
    }
    EXPECT_TRUE(std::isnan(roundedFloat(notANumber)));
    EXPECT_TRUE(std::signbit(roundedFloat(-0.0)));
    EXPECT_TRUE(std::signbit(roundedFloat(-1e-300)));
}

TEST(Number, ConvertsFromEveryType) {
    EXPECT_EQ(Number(7).intValue(), 7);
    EXPECT_EQ(Number(7).int64Value(), 7);
    EXPECT_EQ(Number(7).floatValue(), 7.0F);
    EXPECT_EQ(Number(7).doubleValue(), 7.0);
    EXPECT_EQ(Number(int64Max).intValue(), int32Max);
    EXPECT_EQ(Number(int64Max).int64Value(), int64Max);
    EXPECT_EQ(Number(int64Max).doubleValue(), 9223372036854775808.0);
    EXPECT_EQ(Number(int64Min).floatValue(), -9223372036854775808.0F);
    EXPECT_EQ(Number(1.75F).intValue(), 1);
    EXPECT_EQ(Number(1.75F).doubleValue(), 1.75);
    EXPECT_EQ(Number(0.1F).doubleValue(), 0.100000001490116119384765625);
    EXPECT_EQ(Number(1e30F).int64Value(), int64Max);
    EXPECT_EQ(Number(-1e30F).intValue(), int32Min);
    EXPECT_EQ(Number(std::numeric_limits<float>::quiet_NaN()).intValue(), 0);
    EXPECT_EQ(Number(0.1).doubleValue(), 0.1);
}

TEST(Number, RoundsToFloatAsTheLanguageDoesWhereItDefinesIt) {
    for (double value = 1e-50; value < 3e38; value *= 1.37) {
        EXPECT_EQ(roundedFloat(value), static_cast<float>(value));
        EXPECT_EQ(roundedFloat(-value), static_cast<float>(-value));
    }
}

} // namespace
} // namespace pelluvia
