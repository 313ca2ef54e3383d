// SPDX-License-Identifier: MIT

// How many NMEA sentences the driver reads in a second of processor time: from a file, through
// everything, to a receiver that does nothing. Exit status 1 when the bar is missed.
//
//     nmea_bench LOG [ROUNDS]

#include <Pelluvia/formats/nmea/NMEADriver.h>
#include <Pelluvia/model/NullReceiver.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <vector>

namespace {

/// Million sentences a second, at least.
constexpr double bar = 1.5;

/// Seconds of processor time of this process so far.
double seconds() {
    timespec now{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) / 1e9;
}

int measure(const char *path, int rounds) {
    std::vector<double> rates;
    pelluvia::NullReceiver receiver;
    pelluvia::NMEADriver driver(receiver);
    for (int round = 0; round < rounds; ++round) {
        const double start = seconds();
        const auto error = driver.processFile(path);
        const double taken = seconds() - start;
        const pelluvia::NMEATally &tally = driver.tally();
        const auto sentences = tally.used + tally.notUsed + tally.badChecksum;
        if (error != nullptr || sentences == 0) {
            std::fprintf(stderr, "nmea_bench: %s cannot be read\n", path);
            return 1;
        }
        rates.push_back(static_cast<double>(sentences) / taken / 1e6);
    }
    const auto middle = rates.begin() + static_cast<std::ptrdiff_t>(rates.size() / 2);
    std::nth_element(rates.begin(), middle, rates.end());
    std::printf("%s\n%.2f million sentences a second (bar %.1f)  %s\n",
                textOf(driver.tally()).c_str(), *middle, bar, *middle >= bar ? "pass" : "FAIL");
    return *middle >= bar ? 0 : 1;
}

} // namespace

int main(int count, char **arguments) {
    int rounds = 7;
    bool understood = count == 2 || count == 3;
    if (count == 3) {
        const char *text = arguments[2];
        const auto result = std::from_chars(text, text + std::strlen(text), rounds);
        understood = result.ec == std::errc() && *result.ptr == '\0' && rounds > 0;
    }
    if (!understood) {
        std::fprintf(stderr, "usage: nmea_bench LOG [ROUNDS]\n");
        return 2;
    }
    return measure(arguments[1], rounds);
}
