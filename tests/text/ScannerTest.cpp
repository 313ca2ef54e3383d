// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Scanner.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tests/support/Chance.h>
#include <vector>

namespace pelluvia {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr float infinityFloat = std::numeric_limits<float>::infinity();

/// A text, whether a decimal number begins it, how many bytes are read, and the number.
struct DecimalRow {
    std::string text;
    std::size_t length; // 0: there is no number
    double value;
};

std::vector<DecimalRow> decimalRows() {
    return {
        {"0", 1, 0.0},
        {"47.123456", 9, 47.123456},
        {"-8.5", 4, -8.5},
        {"+8.5", 4, 8.5},
        {"5.", 2, 5.0},
        {"5.x", 2, 5.0},
        {".5", 2, 0.5},
        {"-.5", 3, -0.5},
        {"5..5", 2, 5.0},
        {"1.2.3", 3, 1.2},
        {"007", 3, 7.0},
        {"1e3", 3, 1000.0},
        {"1E+3", 4, 1000.0},
        {"1.e-3", 5, 0.001},
        {".5e1", 4, 5.0},
        {"1e", 1, 1.0},
        {"1e+", 1, 1.0},
        {"1e-", 1, 1.0},
        {"1ex", 1, 1.0},
        {"1e5.5", 3, 1e5},
        {"1,5", 1, 1.0},
        {"1 2", 1, 1.0},
        {"12m", 2, 12.0},
        {"0x10", 1, 0.0},
        {"  \t\n7", 5, 7.0},
        {"\xC2\xA0"
         "7",
         3, 7.0},
        {"1\xC2\xA0", 1, 1.0},
        {std::string("1\0"
                     "2",
                     3),
         1, 1.0},
        {"", 0, 0.0},
        {" ", 0, 0.0},
        {".", 0, 0.0},
        {"-", 0, 0.0},
        {"+", 0, 0.0},
        {"-.", 0, 0.0},
        {"+-1", 0, 0.0},
        {"--1", 0, 0.0},
        {"- 1", 0, 0.0},
        {"e5", 0, 0.0},
        {".e5", 0, 0.0},
        {"inf", 0, 0.0},
        {"-inf", 0, 0.0},
        {"Infinity", 0, 0.0},
        {"nan", 0, 0.0},
        {"NaN(1)", 0, 0.0},
        {"x1", 0, 0.0},
        {"\xEF\xBC\x91", 0, 0.0}, // a full-width digit one
    };
}

TEST(Scanner, ReadsTheLongestDecimalNumber) {
    for (const DecimalRow &row : decimalRows()) {
        Scanner scanner(row.text);
        const auto value = scanner.scanDouble();
        EXPECT_EQ(value.has_value(), row.length != 0) << row.text;
        EXPECT_EQ(value.value_or(0.0), row.value) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.length) << row.text;

        Scanner floats(row.text);
        const auto single = floats.scanFloat();
        EXPECT_EQ(single.has_value(), row.length != 0) << row.text;
        EXPECT_EQ(single.value_or(0.0F), static_cast<float>(row.value)) << row.text;
        EXPECT_EQ(floats.scanLocation(), row.length) << row.text;

        EXPECT_EQ(doubleValue(row.text), row.value) << row.text;
    }
}

TEST(Scanner, KeepsTheSignOfZero) {
    for (const char *text : {"-0", "-0.0", "-0e5", "-.0", "-1e-400", "-0e999999999999"}) {
        EXPECT_EQ(doubleValue(text), 0.0) << text;
        EXPECT_TRUE(std::signbit(doubleValue(text))) << text;
        EXPECT_TRUE(std::signbit(*Scanner(text).scanFloat())) << text;
    }
    EXPECT_FALSE(std::signbit(doubleValue("0")));
    EXPECT_FALSE(std::signbit(doubleValue("-"))); // no number
}

TEST(Scanner, WhatIsTooLargeIsInfiniteAndWhatIsTooSmallIsZero) {
    const std::string zeros(100'000, '0');
    const std::string nines(5'000, '9');
    const struct {
        std::string text;
        double value;
    } rows[] = {
        {"1e400", infinity},
        {"-1e400", -infinity},
        {"1.7976931348623157e308", std::numeric_limits<double>::max()},
        {"1.7976931348623158e308", std::numeric_limits<double>::max()},
        {"1.7976931348623159e308", infinity},
        {nines, infinity},
        {"-" + nines, -infinity},
        {"1" + zeros, infinity},
        {"0." + zeros + "1", 0.0},
        {"1" + zeros + "e-100000", 1.0},
        {"0." + zeros + "1e100001", 1.0},
        {"0." + zeros + "e99999999", 0.0},
        {"1e-400", 0.0},
        {"1e-324", 0.0},
        {"2.4703282292062327e-324", 0.0}, // just under half of the smallest
        {"2.4703282292062328e-324", 5e-324},
        {"4.9e-324", 5e-324},
        {"2.2250738585072014e-308", std::numeric_limits<double>::min()},
        {"2.2250738585072011e-308", 2.225073858507201e-308}, // subnormal
        {"1e5000000", infinity},
        {"1e-5000000", 0.0},
        {"0e5000000", 0.0},
        {"0.0000001e5000000", infinity},
        {"1e99999999999999999999999999", infinity},
        {"1e-99999999999999999999999999", 0.0},
        {"0.000e99999999999999999999999999", 0.0},
        {"1e" + zeros + "5", 1e5},
        {"0." + nines + nines, 1.0},
        {nines + "e-5000", 1.0},
    };
    for (const auto &row : rows) {
        const std::string start = row.text.substr(0, 40);
        EXPECT_EQ(doubleValue(row.text), row.value) << start;
        Scanner scanner(row.text);
        EXPECT_TRUE(scanner.scanDouble().has_value()) << start;
        EXPECT_TRUE(scanner.isAtEnd()) << start;
    }
}

TEST(Scanner, FloatsAreRoundedOnceAndLimitedToTheirRange) {
    const struct {
        const char *text;
        float value;
    } rows[] = {
        {"3.4028235e38", std::numeric_limits<float>::max()},
        {"3.4028236e38", infinityFloat},
        {"-3.5e38", -infinityFloat},
        {"1e39", infinityFloat},
        {"1e400", infinityFloat},
        {"1.4e-45", std::numeric_limits<float>::denorm_min()},
        {"1e-40", 1e-40F}, // subnormal
        {"7.1e-46", std::numeric_limits<float>::denorm_min()},
        {"7e-46", 0.0F},
        {"1e-50", 0.0F},
        {"1e-400", 0.0F},
        // Through a double this one would be rounded twice, and end one unit lower.
        {"1.00000017881393432617187500001", 1.0000002F},
        {"16777217", 16777216.0F},
        {"16777217.000000000000000000001", 16777218.0F},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(Scanner(row.text).scanFloat(), row.value) << row.text;
    }
}

/// Random texts of decimal numbers: of all lengths and sizes, and near the limits of both widths.
std::string randomDecimal(testing::Chance &random) {
    std::string text;
    if (random() % 2 == 0) {
        text += '-';
    }
    const auto digits = random() % 30;
    for (std::uint64_t i = 0; i <= digits; ++i) {
        text += static_cast<char>('0' + random() % 10);
        if (i == digits / 3 && random() % 2 == 0) {
            text += '.';
        }
    }
    if (text.find('.') == std::string::npos && random() % 4 == 0) {
        text += '.';
    }
    switch (random() % 4) {
    case 0:
        break;
    case 1:
        text.append("e").append(std::to_string(static_cast<int>(random() % 700) - 350));
        break;
    case 2:
        text.append("E-").append(std::to_string(300 + random() % 50));
        break;
    default:
        text.append("e").append(std::to_string(static_cast<int>(random() % 100) - 55));
    }
    return text;
}

TEST(Scanner, ReadsTheSameAsTheCLibrary) {
    testing::Chance random(4711);
    for (int i = 0; i < 200'000; ++i) {
        const std::string text = randomDecimal(random);
        const double expected = std::strtod(text.c_str(), nullptr);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(doubleValue(text)),
                  std::bit_cast<std::uint64_t>(expected))
            << text;
        const auto single = Scanner(text).scanFloat();
        ASSERT_TRUE(single.has_value()) << text;
        ASSERT_EQ(std::bit_cast<std::uint32_t>(*single),
                  std::bit_cast<std::uint32_t>(std::strtof(text.c_str(), nullptr)))
            << text;
    }
}

TEST(Scanner, ReadsBackEverySubnormalAndNormalNumber) {
    testing::Chance random(99);
    for (int i = 0; i < 200'000; ++i) {
        // Every second number is subnormal: without exponent bits.
        const std::uint64_t mask = i % 2 == 0 ? 0x800F'FFFF'FFFF'FFFF : 0xFFFF'FFFF'FFFF'FFFF;
        const auto value = std::bit_cast<double>(random() & mask);
        if (!std::isfinite(value)) {
            continue;
        }
        char text[32];
        const auto end = std::to_chars(text, text + sizeof text, value).ptr;
        const std::string_view written(text, static_cast<std::size_t>(end - text));
        ASSERT_EQ(std::bit_cast<std::uint64_t>(doubleValue(written)),
                  std::bit_cast<std::uint64_t>(value))
            << written;
    }
}

TEST(Scanner, ReadsSignedIntegers) {
    constexpr auto lowest = std::numeric_limits<std::int32_t>::min();
    constexpr auto highest = std::numeric_limits<std::int32_t>::max();
    const struct {
        std::string text;
        std::size_t length; // 0: there is no number
        std::int32_t value;
    } rows[] = {
        {"0", 1, 0},
        {"120", 3, 120},
        {" \n120", 5, 120},
        {"-3", 2, -3},
        {"+3", 2, 3},
        {"007", 3, 7},
        {"12.9", 2, 12},
        {"12x", 2, 12},
        {"0x10", 1, 0},
        {"1e3", 1, 1},
        {"2147483647", 10, highest},
        {"2147483648", 10, highest},
        {"-2147483648", 11, lowest},
        {"-2147483649", 11, lowest},
        {"9999999999999999999999999", 25, highest},
        {"-9999999999999999999999999", 26, lowest},
        {"4294967296", 10, highest}, // 2^32
        {std::string(5000, '9'), 5000, highest},
        {std::string(5000, '0') + "5", 5001, 5},
        {"", 0, 0},
        {"-", 0, 0},
        {"+", 0, 0},
        {"--1", 0, 0},
        {"- 1", 0, 0},
        {".5", 0, 0},
        {"x", 0, 0},
    };
    for (const auto &row : rows) {
        Scanner scanner(row.text);
        const auto value = scanner.scanInt();
        EXPECT_EQ(value.has_value(), row.length != 0) << row.text;
        EXPECT_EQ(value.value_or(0), row.value) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.length) << row.text;
        EXPECT_EQ(intValue(row.text), row.value) << row.text;
    }
}

TEST(Scanner, ReadsHexadecimalIntegers) {
    const struct {
        const char *text;
        std::size_t length; // 0: there is no number
        std::uint32_t value;
    } rows[] = {
        {"7F", 2, 0x7F},
        {"ff", 2, 0xFF},
        {" 0x1a", 5, 0x1A},
        {"0X1A", 4, 0x1A},
        {"0x", 1, 0},
        {"0xg", 1, 0},
        {"0x0x1", 3, 0},
        {"1G", 1, 1},
        {"DEADBEEF", 8, 0xDEADBEEF},
        {"FFFFFFFF", 8, 0xFFFFFFFF},
        {"100000000", 9, 0xFFFFFFFF},
        {"0xFFFFFFFFFFFFFFFFFFFF", 22, 0xFFFFFFFF},
        {"0000000000000000000000001", 25, 1},
        {"", 0, 0},
        {"g", 0, 0},
        {"-1", 0, 0},
        {"+1", 0, 0},
        {"x1", 0, 0},
    };
    for (const auto &row : rows) {
        Scanner scanner(row.text);
        const auto value = scanner.scanHexInt();
        EXPECT_EQ(value.has_value(), row.length != 0) << row.text;
        EXPECT_EQ(value.value_or(0U), row.value) << row.text;
        EXPECT_EQ(scanner.scanLocation(), row.length) << row.text;
    }
}

TEST(Scanner, ReadsOneValueAfterTheOther) {
    Scanner scanner(" 12 -7.5,\t0x1F rest");
    EXPECT_EQ(scanner.scanInt(), 12);
    EXPECT_EQ(scanner.scanDouble(), -7.5);
    EXPECT_FALSE(scanner.scanDouble().has_value());
    EXPECT_EQ(scanner.remaining(), ",\t0x1F rest"); // still where it was, white space included
    scanner.skip(1);
    EXPECT_FALSE(scanner.isAtEnd());
    EXPECT_EQ(scanner.scanHexInt(), 0x1FU);
    EXPECT_EQ(scanner.remaining(), " rest");
    scanner.skip(1000);
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_EQ(scanner.scanLocation(), 19U);
    EXPECT_FALSE(scanner.scanFloat().has_value());
    EXPECT_FALSE(scanner.scanInt().has_value());
    EXPECT_FALSE(scanner.scanHexInt().has_value());
}

TEST(Scanner, TakesATextWithoutAnyBytes) {
    Scanner scanner{std::string_view()};
    EXPECT_TRUE(scanner.isAtEnd());
    EXPECT_FALSE(scanner.scanDouble().has_value());
    EXPECT_FALSE(scanner.scanInt().has_value());
    EXPECT_FALSE(scanner.scanHexInt().has_value());
    EXPECT_EQ(doubleValue({}), 0.0);
    EXPECT_EQ(intValue({}), 0);
}

} // namespace
} // namespace pelluvia
