// SPDX-License-Identifier: MIT

#include <Pelluvia/text/UTF8.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(UTF8, WellFormedCharactersHaveTheirLength) {
    EXPECT_EQ(wellFormedCharacterLength("a"), 1U);
    EXPECT_EQ(wellFormedCharacterLength(std::string_view("\0", 1)), 1U);
    EXPECT_EQ(wellFormedCharacterLength("\xC2\x80"), 2U);
    EXPECT_EQ(wellFormedCharacterLength("\xDF\xBFxyz"), 2U);
    EXPECT_EQ(wellFormedCharacterLength("\xE0\xA0\x80"), 3U);
    EXPECT_EQ(wellFormedCharacterLength("\xED\x9F\xBF"), 3U);
    EXPECT_EQ(wellFormedCharacterLength("\xEF\xBF\xBF"), 3U);
    EXPECT_EQ(wellFormedCharacterLength("\xF0\x90\x80\x80"), 4U);
    EXPECT_EQ(wellFormedCharacterLength("\xF4\x8F\xBF\xBF"), 4U);
}

TEST(UTF8, OtherBytesAreNoCharacter) {
    for (const char *bytes : {
             "\x80",             // a continuation alone
             "\xC0\x80",         // overlong
             "\xC1\xBF",         // overlong
             "\xC2",             // cut off
             "\xC2\x20",         // no continuation
             "\xE0\x9F\xBF",     // overlong
             "\xE1\x80",         // cut off
             "\xE1\x80\xC0",     // no continuation
             "\xED\xA0\x80",     // a surrogate
             "\xF0\x8F\xBF\xBF", // overlong
             "\xF1\x80\x80",     // cut off
             "\xF4\x90\x80\x80", // beyond U+10FFFF
             "\xF5\x80\x80\x80", // never a first byte
             "\xFF",             // never any byte
         }) {
        EXPECT_EQ(wellFormedCharacterLength(bytes), 0U) << ::testing::PrintToString(bytes);
    }
}

} // namespace
} // namespace pelluvia
