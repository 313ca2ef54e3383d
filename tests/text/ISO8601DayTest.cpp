// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <array>
#include <cstdio>
#include <ctime>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace pelluvia {
namespace {

constexpr std::int64_t secondsPerDay = 86400;
constexpr std::string_view usual = "2020-06-01T08:26:40Z";

struct Result {
    std::optional<std::int64_t> seconds;
    std::size_t location;

    friend bool operator==(const Result &, const Result &) = default;
};

Result inGeneral(std::string_view text) {
    Scanner scanner(text);
    const auto seconds = scanISO8601DateAsSeconds(scanner);
    return {seconds, scanner.scanLocation()};
}

Result withDay(std::string_view text, ISO8601Day &day) {
    Scanner scanner(text);
    const auto seconds = scanISO8601DateAsSeconds(scanner, day);
    return {seconds, scanner.scanLocation()};
}

TEST(ISO8601Day, ReadsEveryDayOfFourCenturiesAsTheCLibraryDoes) {
    ISO8601Day day;
    for (int year = 1800; year <= 2200; ++year) {
        for (int month = 1; month <= 12; ++month) {
            for (int dayOfMonth = 1; dayOfMonth <= 31; ++dayOfMonth) {
                for (const int second : {0, 45'296, 86'399}) {
                    std::tm date{};
                    date.tm_year = year - 1900;
                    date.tm_mon = month - 1;
                    date.tm_mday = dayOfMonth;
                    date.tm_sec = second;
                    const std::time_t expected = timegm(&date);
                    const bool exists = date.tm_mday == dayOfMonth; // or it has moved on
                    std::array<char, 80> text;
                    std::snprintf(text.data(), text.size(), "%04d-%02d-%02dT%02d:%02d:%02dZ", year,
                                  month, dayOfMonth, second / 3600, second / 60 % 60, second % 60);
                    const Result result = withDay(text.data(), day);
                    ASSERT_EQ(result.seconds,
                              exists ? std::optional<std::int64_t>(expected) : std::nullopt)
                        << text.data();
                    ASSERT_EQ(result.location, exists ? usual.size() : 0) << text.data();
                }
            }
        }
    }
}

TEST(ISO8601Day, ReadsEverySecondOfADay) {
    ISO8601Day day;
    for (int second = 0; second < secondsPerDay; ++second) {
        std::array<char, 80> text;
        std::snprintf(text.data(), text.size(), "2020-06-01T%02d:%02d:%02dZ", second / 3600,
                      second / 60 % 60, second % 60);
        ASSERT_EQ(withDay(text.data(), day).seconds, 1590969600 + second) << text.data();
    }
}

TEST(ISO8601Day, ReadsTextsWithOneByteChangedAsInGeneral) {
    ISO8601Day day;
    for (std::size_t place = 0; place < usual.size(); ++place) {
        for (int byte = 0; byte < 256; ++byte) {
            EXPECT_EQ(withDay(usual, day).seconds, 1591000000);
            std::string text(usual);
            text[place] = static_cast<char>(byte);
            EXPECT_EQ(withDay(text, day), inGeneral(text)) << text;
            EXPECT_EQ(withDay(text, day), inGeneral(text)) << text;
        }
    }
}

TEST(ISO8601Day, ReadsTextsOfOtherLengthsAsInGeneral) {
    for (const std::string &text :
         {std::string(), std::string("2020-06-01"), std::string("2020-06-01T08:26Z"),
          std::string("2020-06-01T08:26:40"), std::string("2020-06-01T08:26:40+02:00"),
          " " + std::string(usual), std::string(usual) + " ", std::string(usual) + "1",
          std::string(usual) + ".5", std::string("20200601T082640Z"),
          std::string("2020-06-01T08:26:60Z"), std::string("2020-06-01T24:00:00Z"),
          std::string("2020-06-31T08:26:40Z"), std::string("0000-06-01T08:26:40Z"),
          std::string(20, '\0')}) {
        ISO8601Day day;
        EXPECT_EQ(withDay(text, day), inGeneral(text)) << text;
        EXPECT_EQ(withDay(usual, day).seconds, 1591000000);
        EXPECT_EQ(withDay(text, day), inGeneral(text)) << text;
    }
}

} // namespace
} // namespace pelluvia
