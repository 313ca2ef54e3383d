// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Scanner.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

// Numbers of few digits are read in a faster way, with its own limits: every number around them
// must be what the general way gives. The witness is the C library, in the "C" locale of this
// program.

std::string digits(testing::Chance &random, int count) {
    std::string text;
    for (int each = 0; each < count; ++each) {
        text += static_cast<char>('0' + random() % 10);
    }
    return text;
}

template <class Real>
void expectSameBits(Real read, Real expected, const std::string &text) {
    ASSERT_EQ(std::memcmp(&read, &expected, sizeof read), 0)
        << text << " read as " << read << " instead of " << expected;
}

void expectBothAsTheCLibrary(const std::string &text) {
    expectSameBits(doubleValue(text), std::strtod(text.c_str(), nullptr), text);
    Scanner scanner(text);
    const auto single = scanner.scanFloat();
    ASSERT_TRUE(single.has_value()) << text;
    EXPECT_TRUE(scanner.isAtEnd()) << text;
    expectSameBits(*single, std::strtof(text.c_str(), nullptr), text);
}

TEST(ShortDecimal, AgreesWithTheCLibraryForAllCountsOfDigits) {
    testing::Chance random(7);
    const std::string signs[] = {"", "-", "+"};
    for (int whole = 0; whole <= 40; ++whole) {
        for (int fraction = whole == 0 ? 1 : 0; fraction <= 40; ++fraction) {
            for (int round = 0; round < 20; ++round) {
                const std::string point = fraction > 0 ? "." : "";
                expectBothAsTheCLibrary(signs[round % 3] + digits(random, whole) + point +
                                        digits(random, fraction));
            }
        }
    }
}

TEST(ShortDecimal, TakesNothingButDigitsForDigits) {
    // Eight decimals are looked at together: each other byte at each of their places ends the
    // number.
    for (std::size_t place = 0; place < 8; ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            const char other = static_cast<char>(byte);
            if ((other >= '0' && other <= '9') || other == 'e' || other == 'E') {
                continue;
            }
            std::string text = "7.12345678912";
            text[2 + place] = other;
            Scanner scanner(text);
            expectSameBits(scanner.scanDouble().value_or(-1),
                           std::strtod(text.substr(0, 2 + place).c_str(), nullptr), text);
            EXPECT_EQ(scanner.scanLocation(), 2 + place) << byte;
        }
    }
}

TEST(ShortDecimal, AgreesWithTheCLibraryWithLeadingZeros) {
    testing::Chance random(8);
    for (int zeros = 0; zeros <= 30; ++zeros) {
        for (int round = 0; round < 200; ++round) {
            const std::string some(static_cast<std::size_t>(zeros), '0');
            expectBothAsTheCLibrary("0." + some + digits(random, 1 + round % 17));
            expectBothAsTheCLibrary(some + "1" + digits(random, round % 17));
        }
    }
}

TEST(ShortDecimal, AgreesWithTheCLibraryAtTheLastExactInteger) {
    for (const std::uint64_t limit : {std::uint64_t{1} << 53U, std::uint64_t{1} << 24U}) {
        for (std::uint64_t number = limit - 50; number <= limit + 50; ++number) {
            const std::string text = std::to_string(number);
            expectBothAsTheCLibrary(text);
            for (std::size_t point = 0; point < text.size(); ++point) {
                expectBothAsTheCLibrary(text.substr(0, point) + "." + text.substr(point));
            }
        }
    }
}

TEST(ShortDecimal, StopsWhereTheNumberEnds) {
    struct {
        const char *text;
        double value;
        std::size_t end;
    } const table[] = {
        {"1.5.5", 1.5, 3}, {"1-2", 1.0, 1},    {"12.", 12.0, 3},    {".5x", 0.5, 2},
        {"1e", 1.0, 1},    {"1e2", 100.0, 3},  {"1.5E-1", 0.15, 6}, {"-.5", -0.5, 3},
        {"1e+", 1.0, 1},   {"47.5N", 47.5, 4}, {"  7 8", 7.0, 3},
    };
    for (const auto &each : table) {
        Scanner scanner(each.text);
        EXPECT_EQ(scanner.scanDouble(), each.value) << each.text;
        EXPECT_EQ(scanner.scanLocation(), each.end) << each.text;
    }
    for (const char *text : {"", ".", "-", "+.", "-.e5", "e5", "--5"}) {
        Scanner scanner(text);
        EXPECT_EQ(scanner.scanDouble(), std::nullopt) << text;
        EXPECT_EQ(scanner.scanLocation(), 0U) << text;
    }
}

} // namespace
} // namespace pelluvia
