#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <gtest/gtest.h>

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

TEST(NameTable, IsQuickWithManyThingsOfOneName) {
    NameTable names("WP");
    for (int i = 0; i < 200'000; ++i) {
        (void)names.nameFor("Home", std::to_string(i));
    }
    EXPECT_EQ(names.nameFor("Home", "last").name, "Home-200001");
}

} // namespace
} // namespace pelluvia::nmea
