// SPDX-License-Identifier: MIT

// The C library's printf, in the "C" locale that every process starts with, is the measure.

#include <Pelluvia/text/NumberText.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

// The sanitizers slow both sides down; the release build tries more.
#if defined(__SANITIZE_ADDRESS__) || !defined(NDEBUG)
constexpr int share = 20;
#else
constexpr int share = 1;
#endif

/// What a function writes, checked for staying within `Room` bytes.
template <std::size_t Room, class Number>
std::string written(char *(*write)(char *, Number), Number value) {
    constexpr char guard = '\x7E';
    std::array<char, Room + 8> buffer;
    buffer.fill(guard);
    const char *end = write(buffer.data(), value);
    const auto length = static_cast<std::size_t>(end - buffer.data());
    EXPECT_LE(length, Room);
    for (std::size_t i = Room; i < buffer.size(); ++i) {
        EXPECT_EQ(buffer[i], guard) << "wrote behind its room";
    }
    return {buffer.data(), length};
}

std::string general(double value) {
    return written<maxGeneralText>(
        +[](char *out, double v) { return writeGeneral(out, v); }, value);
}
std::string fixed(double value) {
    return written<maxFixedText>(
        +[](char *out, double v) { return writeFixed(out, v); }, value);
}

template <class... Arguments>
std::string printed(const char *format, Arguments... arguments) {
    std::array<char, 400> buffer;
    const int length = std::snprintf(buffer.data(), buffer.size(), format, arguments...); // NOLINT
    return {buffer.data(), static_cast<std::size_t>(length)};
}

/// One comparison of both formats, cheap enough for millions.
void compare(double value) {
    std::array<char, maxFixedText> ours;
    std::array<char, 400> theirs;
    const auto length = [](int count) { return static_cast<std::size_t>(count); };
    const std::string_view ourGeneral(
        ours.data(), static_cast<std::size_t>(writeGeneral(ours.data(), value) - ours.data()));
    const std::string_view theirGeneral(
        theirs.data(), length(std::snprintf(theirs.data(), theirs.size(), "%1.10g", value)));
    ASSERT_EQ(ourGeneral, theirGeneral) << std::bit_cast<std::uint64_t>(value);
    const std::string_view ourFixed(
        ours.data(), static_cast<std::size_t>(writeFixed(ours.data(), value) - ours.data()));
    const std::string_view theirFixed(
        theirs.data(), length(std::snprintf(theirs.data(), theirs.size(), "%f", value)));
    ASSERT_EQ(ourFixed, theirFixed) << std::bit_cast<std::uint64_t>(value);
}

/// Compares `count` values that `make` draws.
template <class Make>
void compareMany(int count, Make make) {
    testing::Chance random(20200601);
    for (int i = 0; i < count / share; ++i) {
        ASSERT_NO_FATAL_FAILURE(compare(make(random)));
    }
}

TEST(NumberText, WritesRandomBitPatternsAsPrintfDoes) {
    compareMany(500'000, [](auto &random) { return std::bit_cast<double>(random()); });
}

TEST(NumberText, WritesDenormalsAsPrintfDoes) {
    compareMany(100'000, [](auto &random) {
        return std::bit_cast<double>(random() & 0x800F'FFFF'FFFF'FFFF);
    });
}

TEST(NumberText, WritesCoordinatesAsPrintfDoes) {
    compareMany(800'000, [](auto &random) {
        return std::uniform_real_distribution<double>(-180.0, 180.0)(random);
    });
}

TEST(NumberText, WritesShortDecimalsAsPrintfDoes) {
    compareMany(800'000, [](auto &random) {
        static constexpr std::array<double, 9> scales = {1,   1e1, 1e2, 1e3, 1e5,
                                                         1e6, 1e7, 1e9, 1e12};
        const auto digits =
            std::uniform_int_distribution<std::int64_t>(-18'000'000'000, 18'000'000'000)(random);
        return static_cast<double>(digits) / scales[random() % scales.size()];
    });
}

TEST(NumberText, WritesElevationsAsPrintfDoes) {
    compareMany(400'000, [](auto &random) {
        const auto centimetres = std::uniform_int_distribution<int>(-50'000, 900'000)(random);
        const double metres = centimetres / 100.0;
        return random() % 2 == 0 ? metres : static_cast<double>(static_cast<float>(metres));
    });
}

TEST(NumberText, RoundsTiesAsPrintfDoes) {
    compareMany(400'000, [](auto &random) {
        const auto numerator = static_cast<double>(random() % 2'000'000'000'000);
        return std::ldexp(numerator, -static_cast<int>(random() % 40));
    });
    for (int halves = -200'001; halves <= 200'001; halves += share) {
        // Ties of the sixth decimal have a 5 in the seventh: odd multiples of 2^-7.
        ASSERT_NO_FATAL_FAILURE(compare(halves / 128.0));
        ASSERT_NO_FATAL_FAILURE(
            compare(halves / 2.0 + 10'000'000'000.0)); // ties of the tenth digit
    }
}

TEST(NumberText, WritesNeighboursOfPowersOfTenAsPrintfDoes) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (int exponent = -320; exponent <= 308; ++exponent) {
        const double power = std::strtod(("1e" + std::to_string(exponent)).c_str(), nullptr);
        double up = power;
        double down = power;
        for (int step = 0; step < 30; ++step) {
            for (const double value : {up, down, -up, -down, up * 9.9999999995, up * 9.9999995}) {
                ASSERT_NO_FATAL_FAILURE(compare(value));
            }
            up = std::nextafter(up, infinity);
            down = std::nextafter(down, 0.0);
        }
    }
}

TEST(NumberText, WritesNeighboursOfPowersOfTwoAsPrintfDoes) {
    // Among them the last numbers that are written in fixed point, and those whose shift is
    // longest.
    for (int exponent = -1074; exponent < 1024; ++exponent) {
        const double power = std::ldexp(1.0, exponent);
        for (const double value : {power, std::nextafter(power, 0.0),
                                   std::nextafter(power, std::numeric_limits<double>::max()),
                                   power * 1.5, power * 1.9999999999}) {
            ASSERT_NO_FATAL_FAILURE(compare(value));
            ASSERT_NO_FATAL_FAILURE(compare(-value));
        }
    }
}

TEST(NumberText, CarriesThroughAllDigitsAsPrintfDoes) {
    for (double nines = 9.9999999995e-6; nines < 1e13; nines *= 10) {
        double value = nines;
        for (int step = 0; step < 2000; ++step) {
            ASSERT_NO_FATAL_FAILURE(compare(value));
            value = std::nextafter(value, step < 1000 ? 0.0 : 1e300);
        }
    }
}

TEST(NumberText, WritesTheEdgesAsPrintfDoes) {
    using Limits = std::numeric_limits<double>;
    for (const double value : {0.0,
                               Limits::min(),
                               Limits::max(),
                               Limits::denorm_min(),
                               Limits::epsilon(),
                               Limits::infinity(),
                               Limits::quiet_NaN(),
                               1e308,
                               0.00001,
                               0.0001,
                               0.00009999999999,
                               0.0000005,
                               0.00000049999,
                               9999999999.0,
                               9999999999.4,
                               9999999999.5,
                               1e10,
                               90.0,
                               180.0,
                               91.0,
                               0.1,
                               1.0 / 3.0,
                               4503599627370495.5,
                               9007199254740993.0}) {
        for (const double each : {value, -value}) {
            EXPECT_EQ(general(each), printed("%1.10g", each));
            EXPECT_EQ(fixed(each), printed("%f", each));
        }
    }
}

TEST(NumberText, WritesWhatReadersKnow) {
    EXPECT_EQ(general(47.123456789012), "47.12345679");
    EXPECT_EQ(general(-0.0), "-0");
    EXPECT_EQ(general(8.0), "8");
    EXPECT_EQ(general(0.00001), "1e-05");
    EXPECT_EQ(general(1e300), "1e+300");
    EXPECT_EQ(fixed(430.0), "430.000000");
    EXPECT_EQ(fixed(-0.0000001), "-0.000000");
    EXPECT_EQ(fixed(-std::numeric_limits<double>::max()).size(), 317U); // what the room is made for
    EXPECT_EQ(general(-1.234567891e-300).size(), 17U);
}

TEST(NumberText, WritesIntegersAsPrintfDoes) {
    using Write = char *(*)(char *, std::int64_t);
    const Write integer = +[](char *out, std::int64_t v) { return writeInteger(out, v); };
    const Write twoDigits = +[](char *out, std::int64_t v) { return writeTwoDigits(out, v); };
    testing::Chance random(5);
    const auto check = [&](std::int64_t value) {
        ASSERT_EQ(written<maxIntegerText>(integer, value),
                  printed("%lld", static_cast<long long>(value)));
        ASSERT_EQ(written<maxIntegerText>(twoDigits, value),
                  printed("%02lld", static_cast<long long>(value)));
    };
    for (std::int64_t value = -2000; value <= 2000; ++value) {
        check(value);
    }
    for (int i = 0; i < 100'000 / share; ++i) {
        check(std::bit_cast<std::int64_t>(random() >> (random() % 64)));
        check(-std::bit_cast<std::int64_t>(random() >> (1 + random() % 63)));
    }
    check(std::numeric_limits<std::int64_t>::min());
    check(std::numeric_limits<std::int64_t>::max());
    check(std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(written<maxIntegerText>(twoDigits, std::int64_t{-5}), "-5");
}

} // namespace
} // namespace pelluvia
