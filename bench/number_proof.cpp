// SPDX-License-Identifier: MIT

/// \file
/// Compares the texts of numbers and times with the C library's, for as long as one likes:
///
///     number_proof [MILLIONS]        100 unless told otherwise: about two minutes
///
/// Numbers: `%1.10g` and `%f` against printf, and the first of them read back against strtod.
/// Times: every day of the years 1800 to 2200 at several instants, written and read, against
/// gmtime_r and printf. Prints what was compared; the exit status is 1 when anything differs.

#include <Pelluvia/text/Companion.h>
#include <Pelluvia/text/NumberText.h>
#include <Pelluvia/text/Scanner.h>
#include <Pelluvia/text/TimestampText.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <random>
#include <string_view>

namespace {

using Random = std::mt19937_64;

std::uint64_t differences = 0;

void differ(std::string_view ours, const char *theirs) {
    constexpr std::uint64_t mostShown = 20;
    if (++differences <= mostShown) {
        std::printf("ours %.*s, theirs %s\n", static_cast<int>(ours.size()), ours.data(), theirs);
    }
}

std::string_view textBetween(const char *begin, const char *end) {
    return {begin, static_cast<std::size_t>(end - begin)};
}

void compareNumber(double value) {
    std::array<char, pelluvia::maxFixedText> buffer;
    std::array<char, 400> theirs;
    const auto check = [&](const char *end, int length) {
        const auto ours = textBetween(buffer.data(), end);
        if (ours != std::string_view(theirs.data(), static_cast<std::size_t>(length))) {
            differ(ours, theirs.data());
        }
        return ours;
    };
    check(pelluvia::writeFixed(buffer.data(), value),
          std::snprintf(theirs.data(), theirs.size(), "%f", value));
    const auto text = check(pelluvia::writeGeneral(buffer.data(), value),
                            std::snprintf(theirs.data(), theirs.size(), "%1.10g", value));
    const double read = std::strtod(theirs.data(), nullptr);
    if (std::isfinite(value) && pelluvia::doubleValue(text) != read) {
        differ(text, "(read back)");
    }
}

/// A kind of numbers, and how many of a hundred are of it.
struct Kind {
    const char *name;
    unsigned share;
    double (*draw)(Random &random);
};

double uniform(Random &random, double least, double most) {
    return std::uniform_real_distribution<double>(least, most)(random);
}

double decimal(Random &random) {
    const auto digits =
        std::uniform_int_distribution<std::int64_t>(-180'000'000'000, 180'000'000'000)(random);
    return static_cast<double>(digits) / std::pow(10.0, static_cast<int>(random() % 16));
}

/// k / 2^n: half way between two decimals, or near it.
double tie(Random &random) {
    const auto numerator = static_cast<double>(random() >> (random() % 53 + 11));
    return std::ldexp(numerator, -static_cast<int>(random() % 50));
}

/// Up to a thousand doubles away from a power of ten, or from one less half a unit of a digit.
double nearPowerOfTen(Random &random) {
    const double power = std::pow(10.0, static_cast<int>(random() % 40) - 20);
    const std::array<double, 3> centres = {power, power * 9.9999999995, power * 0.9999995};
    const auto away = static_cast<std::int64_t>(random() % 2001) - 1000;
    const auto bits = std::bit_cast<std::int64_t>(centres[random() % centres.size()]);
    return std::bit_cast<double>(bits + away);
}

constexpr std::array kinds = {
    Kind{"random bit patterns", 25, [](Random &r) { return std::bit_cast<double>(r()); }},
    Kind{"coordinates", 20, [](Random &r) { return uniform(r, -180, 180); }},
    Kind{"elevations", 15,
         [](Random &r) { return double{static_cast<float>(uniform(r, -500, 9000))}; }},
    Kind{"decimals", 20, decimal},
    Kind{"ties", 10, tie},
    Kind{"near powers of ten", 10, nearPowerOfTen},
};

void compareNumbers(std::uint64_t count) {
    Random random(20200601); // NOLINT(cert-msc51-cpp): the same numbers in every run
    for (const Kind &kind : kinds) {
        const std::uint64_t ofThisKind = count / 100 * kind.share;
        for (std::uint64_t i = 0; i < ofThisKind; ++i) {
            const double value = kind.draw(random);
            compareNumber(i % 2 == 0 ? value : -value);
        }
        std::printf("%11llu %s\n", static_cast<unsigned long long>(ofThisKind), kind.name);
    }
}

void compareTimes() {
    constexpr std::int64_t day = 86400;
    constexpr std::int64_t first = -62091 * day; // 1800-01-01
    constexpr std::int64_t last = 84371 * day;   // 2201-01-01
    constexpr std::int64_t step = 9391;          // prime: other instants every day
    pelluvia::TimestampText timestamps;
    pelluvia::ISO8601Day known;
    std::uint64_t count = 0;
    const auto compare = [&](std::int64_t time) {
        const std::time_t seconds = time;
        std::tm broken{};
        gmtime_r(&seconds, &broken);
        std::array<char, 128> theirs;
        const int length = std::snprintf(
            theirs.data(), theirs.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", broken.tm_year + 1900,
            broken.tm_mon + 1, broken.tm_mday, broken.tm_hour, broken.tm_min, broken.tm_sec);
        const std::string_view expected(theirs.data(), static_cast<std::size_t>(length));
        std::array<char, pelluvia::TimestampText::maxSize> buffer;
        const char *end = timestamps.write(buffer.data(), time);
        if (end == nullptr || textBetween(buffer.data(), end) != expected) {
            differ("a time", theirs.data());
        }
        pelluvia::Scanner scanner(expected);
        if (pelluvia::scanISO8601DateAsSeconds(scanner, known) != time || !scanner.isAtEnd()) {
            differ("a time read back", theirs.data());
        }
        ++count;
    };
    for (std::int64_t midnight = first; midnight < last; midnight += day) {
        compare(midnight);
        compare(midnight + day - 1);
    }
    for (std::int64_t time = first; time < last; time += step) {
        compare(time);
    }
    std::printf("%11llu times, both ways\n", static_cast<unsigned long long>(count));
}

} // namespace

int main(int count, char **arguments) {
    constexpr std::uint64_t million = 1'000'000;
    const std::uint64_t millions = count > 1 ? std::strtoull(arguments[1], nullptr, 10) : 100;
    compareNumbers(millions * million);
    compareTimes();
    std::printf("%11llu differences\n", static_cast<unsigned long long>(differences));
    return differences == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
