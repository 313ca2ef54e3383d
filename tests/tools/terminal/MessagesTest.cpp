#include <tools/pelluvia/terminal/Messages.h>

#include <gtest/gtest.h>

namespace pelluvia::host {
namespace {

TEST(Messages, TextsThatCouldSteerATerminalAreMadeHarmless) {
    EXPECT_EQ(harmless("a\x1B[2Jb\r\n\x7F"), "a?[2Jb???");
    EXPECT_EQ(harmless("a\xC2\x9B"
                       "b"),
              "a?b");
    EXPECT_EQ(harmless(std::string_view("\0", 1)), "?");
}

TEST(Messages, OtherTextsStayAsTheyAre) {
    EXPECT_EQ(harmless("Z\xC3\xBCrich \xC2\xA0 \xF0\x9F\x9A\xB2 \xFF"),
              "Z\xC3\xBCrich \xC2\xA0 \xF0\x9F\x9A\xB2 \xFF");
}

TEST(Messages, ADashStandsForAStandardStream) {
    EXPECT_EQ(sourceName("-"), "standard input");
    EXPECT_EQ(targetName("-"), "standard output");
    EXPECT_EQ(sourceName("./-"), "./-");
}

} // namespace
} // namespace pelluvia::host
