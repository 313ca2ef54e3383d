// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <gtest/gtest.h>
#include <set>
#include <string>

namespace pelluvia::nmea {
namespace {

TEST(SafeName, ReplacesWhatTheFormatKeepsForItself) {
    EXPECT_EQ(safeName("Home-1 (old)"), "Home-1 (old)");
    EXPECT_EQ(safeName("a$b*c,d!e\\f^g~h"), "a_b_c_d_e_f_g_h");
    EXPECT_EQ(safeName(std::string_view("a\0b\r\nc\x7F", 7)), "a_b__c_");
}

TEST(SafeName, ReplacesACharacterThatIsNotASCIIByOne) {
    EXPECT_EQ(safeName("Caf\xC3\xA9 \xF0\x9F\x98\x80!"), "Caf_ __");
    EXPECT_EQ(safeName("\xE2\x82\xAC 5"), "_ 5");
}

TEST(SafeName, IsCutAndFreedOfSpaces) {
    EXPECT_EQ(safeName("  lake  "), "lake");
    EXPECT_EQ(safeName("abcdefghijklmnopqrstuvwxyz"), "abcdefghijklmnopqrstuvwx");
    EXPECT_EQ(safeName("abcdefghijklmnopqrstuvw xyz"), "abcdefghijklmnopqrstuvw");
}

TEST(SafeName, IsEmptyWhenNothingIsLeft) {
    EXPECT_EQ(safeName(""), "");
    EXPECT_EQ(safeName("   "), "");
    EXPECT_EQ(safeName("\xD0\x9E\xD0\xB7\xD0\xB5 \xD1\x80"), "");
}

TEST(NameTable, GivesTheNameThatIsWanted) {
    NameTable names("WP");
    const auto entry = names.nameFor("Home", "here");
    EXPECT_EQ(entry.name, "Home");
    EXPECT_TRUE(entry.isNew);
}

TEST(NameTable, GivesTheSameThingItsNameAgain) {
    NameTable names("WP");
    (void)names.nameFor("Home", "here");
    const auto entry = names.nameFor("Home", "here");
    EXPECT_EQ(entry.name, "Home");
    EXPECT_FALSE(entry.isNew);
}

TEST(NameTable, GivesAnotherThingOfThatNameANumber) {
    NameTable names("WP");
    EXPECT_EQ(names.nameFor("Home", "here").name, "Home");
    EXPECT_EQ(names.nameFor("Home-3", "far").name, "Home-3");
    EXPECT_EQ(names.nameFor("Home", "there").name, "Home-2");
    const auto entry = names.nameFor("Home", "elsewhere");
    EXPECT_EQ(entry.name, "Home-4") << "Home-3 is taken";
    EXPECT_TRUE(entry.isNew);
}

TEST(NameTable, GeneratesNames) {
    NameTable names("WP");
    EXPECT_EQ(names.nameFor("WP2", "a").name, "WP2");
    EXPECT_EQ(names.nameFor("", "b").name, "WP1");
    EXPECT_EQ(names.nameFor("", "b").name, "WP3");
    EXPECT_EQ(names.nameFor("\xD1\x80", "c").name, "WP4");
}

TEST(NameTable, KeepsNumberedNamesShortEnough) {
    NameTable names("WP");
    const std::string longest(longestName, 'x');
    (void)names.nameFor(longest, "0");
    for (int i = 1; i < 1200; ++i) {
        const std::string name = names.nameFor(longest, std::to_string(i)).name;
        EXPECT_EQ(name.size(), longestName);
        EXPECT_TRUE(name.ends_with(std::string("-").append(std::to_string(i + 1))));
    }
}

TEST(NameTable, ManyThingsOfOneNameTakeABoundedNumberOfLookupsEach) {
    NameTable names("WP");
    constexpr int things = 200'000;
    for (int i = 0; i < things; ++i) {
        (void)names.nameFor("Home", std::to_string(i));
    }
    EXPECT_EQ(names.nameFor("Home", "last").name, "Home-200001");
    EXPECT_LE(names.lookups(), std::size_t{3} * things);
}

/// Names that differ only where a number takes their place.
TEST(NameTable, NamesThatAreCutToTheSameTakeABoundedNumberOfLookupsEach) {
    NameTable names("WP");
    constexpr int things = 5'000;
    std::set<std::string> given;
    for (int i = 0; i < things; ++i) {
        const std::string number = std::to_string(i);
        const std::string name =
            std::string(longestName - 5, 'x') + std::string(5 - number.size(), '0') + number;
        given.insert(names.nameFor(name, "here").name);
        given.insert(names.nameFor(name, "there").name);
    }
    EXPECT_EQ(given.size(), std::size_t{2} * things);
    EXPECT_LE(names.lookups(), std::size_t{8} * things);
}

TEST(NameTable, NamesThatHaveNumbersOfTheirOwnTakeABoundedNumberOfLookupsEach) {
    NameTable names("WP");
    constexpr int things = 5'000;
    for (int i = 2; i < things; ++i) {
        (void)names.nameFor("Home-" + std::to_string(i), "here");
        (void)names.nameFor("WP" + std::to_string(i), "here");
    }
    for (int i = 0; i < things; ++i) {
        (void)names.nameFor("Home", std::to_string(i));
        (void)names.nameFor("", std::to_string(i));
    }
    EXPECT_LE(names.lookups(), std::size_t{8} * things);
}

TEST(NameTable, RemembersOnlySoManyNamesAndGivesEachLaterThingANumberOfItsOwn) {
    NameTable names("WP", 3);
    EXPECT_EQ(names.nameFor("Home", "a").name, "Home");
    EXPECT_EQ(names.nameFor("Lake", "b").name, "Lake");
    EXPECT_EQ(names.nameFor("Lake-5", "c").name, "Lake-5");
    const std::size_t size = names.size();

    const auto entry = names.nameFor("Hill", "d");
    EXPECT_EQ(entry.name, "Hill-4");
    EXPECT_TRUE(entry.isNew);
    EXPECT_TRUE(entry.isBeyond);
    EXPECT_EQ(names.nameFor("Lake", "e").name, "Lake-6") << "Lake-5 is taken";
    EXPECT_EQ(names.nameFor("", "f").name, "WP7");
    EXPECT_EQ(names.nameFor("Hill", "d").name, "Hill-8");
    const std::string longest(longestName, 'x');
    EXPECT_EQ(names.nameFor(longest, "g").name, longest.substr(2) + "-9");
    EXPECT_EQ(names.size(), size);

    const auto known = names.nameFor("Lake", "b");
    EXPECT_EQ(known.name, "Lake");
    EXPECT_FALSE(known.isNew);
    EXPECT_FALSE(known.isBeyond);
}

} // namespace
} // namespace pelluvia::nmea
