// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/Messages.h>

#include <gtest/gtest.h>

namespace pelluvia::host {
namespace {

TEST(Messages, ControlCharactersAreShownEscaped) {
    EXPECT_EQ(harmless("a\x1B[2Jb\r\n\x7F"), R"(a\x1B[2Jb\x0D\x0A\x7F)");
    EXPECT_EQ(harmless("a\xC2\x9B"
                       "b"),
              R"(a\xC2\x9Bb)");
    EXPECT_EQ(harmless(std::string_view("\0", 1)), R"(\x00)");
}

TEST(Messages, BytesThatAreNotUTF8AreShownEscaped) {
    // A terminal that is not set to UTF-8 takes a lone 9B for the beginning of a command.
    EXPECT_EQ(harmless("a\x9B"
                       "2J \xFF \xC3"),
              R"(a\x9B2J \xFF \xC3)");
    EXPECT_EQ(harmless("\xC0\x80 \xED\xA0\x80"), R"(\xC0\x80 \xED\xA0\x80)");
}

// NOLINTBEGIN(misc-misleading-bidirectional)
TEST(Messages, ControlsOfDirectionAreShownEscaped) {
    for (const char *control : {"\xD8\x9C", "\xE2\x80\x8E", "\xE2\x80\x8F", "\xE2\x80\xAA",
                                "\xE2\x80\xAB", "\xE2\x80\xAC", "\xE2\x80\xAD", "\xE2\x80\xAE",
                                "\xE2\x81\xA6", "\xE2\x81\xA7", "\xE2\x81\xA8", "\xE2\x81\xA9"}) {
        const std::string shown = harmless(control);
        EXPECT_TRUE(shown.starts_with("\\x")) << shown;
        EXPECT_EQ(shown.size(), 4 * std::string_view(control).size());
    }
    EXPECT_EQ(harmless("ride\xE2\x80\xAExpg.gpx"), R"(ride\xE2\x80\xAExpg.gpx)");
}
// NOLINTEND(misc-misleading-bidirectional)

TEST(Messages, OtherTextsStayAsTheyAre) {
    // With neighbours of what is escaped, and a backslash.
    for (const char *text : {"Z\xC3\xBCrich \xC2\xA0 \xF0\x9F\x9A\xB2", "\xD8\x9B\xD8\x9D", "~",
                             "\xE2\x80\x8D\xE2\x80\x90\xE2\x80\xA9\xE2\x80\xAF",
                             "\xE2\x81\xA5\xE2\x81\xAA", "a\\x1B"}) {
        EXPECT_EQ(harmless(text), text);
    }
}

TEST(Messages, ADashStandsForAStandardStream) {
    EXPECT_EQ(sourceName("-"), "standard input");
    EXPECT_EQ(targetName("-"), "standard output");
    EXPECT_EQ(sourceName("./-"), "./-");
}

} // namespace
} // namespace pelluvia::host
