// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/write/RouteSentences.h>

#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <Pelluvia/nmea/NMEAUtils.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pelluvia::nmea {
namespace {

using ::testing::ElementsAre;

TEST(RouteSentences, OneHoldsAShortRoute) {
    EXPECT_THAT(routeSentences("1", {"HOME", "LAKE"}), ElementsAre("GPRTE,1,1,c,1,HOME,LAKE"));
}

TEST(RouteSentences, OneSaysThatARouteIsEmpty) {
    EXPECT_THAT(routeSentences("HARBOUR", {}), ElementsAre("GPRTE,1,1,c,HARBOUR"));
}

TEST(RouteSentences, AreAsLongAsTheFormatAllowsAndNoLonger) {
    const std::vector<std::string> names(30, "ABCDEFGH");
    const auto bodies = routeSentences("1", names);
    ASSERT_EQ(bodies.size(), 5U);
    EXPECT_EQ(bodies[0],
              "GPRTE,5,1,c,1,ABCDEFGH,ABCDEFGH,ABCDEFGH,ABCDEFGH,ABCDEFGH,ABCDEFGH,ABCDEFGH");
    EXPECT_EQ(bodies[4], "GPRTE,5,5,c,1,ABCDEFGH,ABCDEFGH");
}

/// Splits routes of many lengths and looks at each sentence.
TEST(RouteSentences, NeverExceedTheLimitAndLoseNothing) {
    for (const std::size_t count : {1U, 9U, 10U, 100U, 997U, 12'345U, 100'000U}) {
        for (const std::size_t length : {std::size_t{1}, std::size_t{7}, longestName}) {
            for (const std::string &identifier : {std::string(), std::string(longestName, 'R')}) {
                std::vector<std::string> names;
                for (std::size_t i = 0; i < count; ++i) {
                    const std::string number = std::to_string(i);
                    names.push_back((number + std::string(longestName, '-')).substr(0, length));
                }
                const auto bodies = routeSentences(identifier, names);
                std::string found;
                for (std::size_t i = 0; i < bodies.size(); ++i) {
                    const std::string header = "GPRTE," + std::to_string(bodies.size()) + "," +
                                               std::to_string(i + 1) + ",c," + identifier + ",";
                    ASSERT_TRUE(bodies[i].starts_with(header)) << bodies[i];
                    found += bodies[i].substr(header.size() - 1);
                    const auto sentence = NMEAUtils::addChecksumToNMEASentence(bodies[i]);
                    ASSERT_LE(sentence->size() + 2, NMEAUtils::longestSentence);
                }
                std::string expected;
                for (const std::string &name : names) {
                    expected += "," + name;
                }
                ASSERT_TRUE(found == expected);
            }
        }
    }
}

} // namespace
} // namespace pelluvia::nmea
