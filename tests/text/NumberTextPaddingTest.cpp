// SPDX-License-Identifier: MIT

#include <Pelluvia/text/NumberText.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

template <class Write>
std::string written(Write write) {
    constexpr char guard = '\x7E';
    std::array<char, maxFixedText + 8> buffer;
    buffer.fill(guard);
    const char *end = write(buffer.data());
    EXPECT_LE(end - buffer.data(), static_cast<std::ptrdiff_t>(maxFixedText));
    EXPECT_EQ(*end, guard) << "wrote behind its end";
    return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

void compareFixed(double value, int decimals, int width) {
    std::array<char, 400> printed;
    std::snprintf(printed.data(), printed.size(), "%0*.*f", width, decimals, value);
    const std::string ours = written([=](char *out) {
        return writePaddedFixed(out, value, decimals, static_cast<std::size_t>(width));
    });
    ASSERT_EQ(ours, printed.data()) << width << '.' << decimals;
}

void compareInteger(std::int64_t value, int width) {
    std::array<char, 400> printed;
    std::snprintf(printed.data(), printed.size(), "%0*lld", width, static_cast<long long>(value));
    const std::string ours = written(
        [=](char *out) { return writePaddedInteger(out, value, static_cast<std::size_t>(width)); });
    ASSERT_EQ(ours, printed.data()) << width;
}

TEST(NumberText, PadsFixedNumbersAsPrintfDoes) {
    testing::Chance random(8);
    for (int round = 0; round < 50'000; ++round) {
        const int decimals = static_cast<int>(random() % 7);
        const int width = static_cast<int>(random() % 24);
        const double small = static_cast<double>(random() % 36'000'001) / 1000.0 - 18'000.0;
        const double tie = std::ldexp(static_cast<double>(random() % 100'000), -4);
        ASSERT_NO_FATAL_FAILURE(compareFixed(small, decimals, width));
        ASSERT_NO_FATAL_FAILURE(compareFixed(tie, decimals, width));
        ASSERT_NO_FATAL_FAILURE(compareFixed(std::bit_cast<double>(random()), decimals, width));
    }
}

TEST(NumberText, PadsEdgesAsPrintfDoes) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0, 0.0005, 0.0015, 9.9995, 59.9995, 1e22, Limits::max(),
                               Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN()}) {
        for (const double each : {value, -value}) {
            for (const int decimals : {0, 2, 3, 6}) {
                for (const int width : {0, 1, 4, 8, 9, 40, 317, 319, 320}) {
                    ASSERT_NO_FATAL_FAILURE(compareFixed(each, decimals, width));
                }
            }
        }
    }
}

TEST(NumberText, PadsIntegersAsPrintfDoes) {
    using Limits = std::numeric_limits<std::int64_t>;
    for (const std::int64_t value :
         {std::int64_t{0}, std::int64_t{7}, std::int64_t{-7}, std::int64_t{230394},
          std::int64_t{-99999}, std::int64_t{-100000}, std::int64_t{1234567}, Limits::max(),
          Limits::min()}) {
        for (int width = 0; width <= 30; ++width) {
            ASSERT_NO_FATAL_FAILURE(compareInteger(value, width));
        }
    }
}

} // namespace
} // namespace pelluvia
