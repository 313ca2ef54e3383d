// SPDX-License-Identifier: MIT

#include <Pelluvia/text/UTF16.h>

#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

constexpr std::size_t none = std::string_view::npos;

TEST(UTF16, CountsCharactersBeyondTheBasicPlaneTwice) {
    EXPECT_EQ(utf16Length(""), 0U);
    EXPECT_EQ(utf16Length("abc"), 3U);
    EXPECT_EQ(utf16Length("\u00E9\u20AC\uFFFF"), 3U);
    EXPECT_EQ(utf16Length("\U00010000\U0010FFFF"), 4U);
    EXPECT_EQ(utf16Length(std::string_view("\0a\0", 3)), 3U);
}

TEST(UTF16, CountsEachByteOfIllFormedTextOnce) {
    const struct {
        std::string_view text;
        std::size_t length;
    } texts[] = {
        {"\x80", 1},             // a continuation alone
        {"\xC3", 1},             // cut off
        {"\xE2\x82", 2},         // cut off
        {"\xF0\x9F\x98", 3},     // cut off
        {"\xC0\xAF", 2},         // overlong
        {"\xC1\xBF", 2},         // overlong
        {"\xE0\x9F\xBF", 3},     // overlong
        {"\xF0\x8F\xBF\xBF", 4}, // overlong
        {"\xED\xA0\x80", 3},     // a surrogate
        {"\xF4\x90\x80\x80", 4}, // beyond U+10FFFF
        {"\xF5\x80\x80\x80", 4}, // no lead byte
        {"\xFF\xFE", 2},
        {"\xE2\x41\x82", 3},     // a letter in between
        {"\xC3\xC3\xA9", 2},     // cut off, then a character
        {"\xED\x9F\xBF", 1},     // the last before the surrogates
        {"\xF4\x8F\xBF\xBF", 2}, // the last of all
    };
    for (const auto &each : texts) {
        EXPECT_EQ(utf16Length(each.text), each.length) << ::testing::PrintToString(each.text);
    }
}

TEST(UTF16, ASubstringHoldsWhatIsThere) {
    EXPECT_EQ(utf16Substring("123456", 0, 2), "12");
    EXPECT_EQ(utf16Substring("123456", 4, 2), "56");
    EXPECT_EQ(utf16Substring("123456", 4), "56");
    EXPECT_EQ(utf16Substring("12345", 4, 2), "5");
    EXPECT_EQ(utf16Substring("123", 4, 2), "");
    EXPECT_EQ(utf16Substring("123", 3), "");
    EXPECT_EQ(utf16Substring("", 0, 2), "");
    EXPECT_EQ(utf16Substring("123", none, none), "");
    EXPECT_EQ(utf16Substring("123", 1, none), "23");
    EXPECT_EQ(utf16Substring("123", 1, 0), "");
}

TEST(UTF16, ASubstringCountsUnitsAndCutsNoCharacter) {
    EXPECT_EQ(utf16Substring("\u20AC12", 1, 2), "12");
    EXPECT_EQ(utf16Substring("\U0001F60012", 2, 2), "12");
    EXPECT_EQ(utf16Substring("\U0001F60012", 1, 2), "\U0001F6001");
    EXPECT_EQ(utf16Substring("1\U0001F6002", 0, 2), "1\U0001F600");
    EXPECT_EQ(utf16Substring("1\U0001F6002", 2, 1), "\U0001F600");
    EXPECT_EQ(utf16Substring("1\U0001F6002", 2, 0), "");
}

TEST(UTF16, FindsThePositionFromTheEnd) {
    EXPECT_EQ(utf16PositionFromEnd("a*31", 3), 1U);
    EXPECT_EQ(utf16PositionFromEnd("*31", 3), 0U);
    EXPECT_EQ(utf16PositionFromEnd("31", 3), none);
    EXPECT_EQ(utf16PositionFromEnd("", 1), none);
    EXPECT_EQ(utf16PositionFromEnd("a*\u20AC\u20AC", 3), 1U);
    EXPECT_EQ(utf16PositionFromEnd("a*\U0001F600", 3), 1U);
    EXPECT_EQ(utf16PositionFromEnd("a\U0001F600b", 2), 1U);
    EXPECT_EQ(utf16PositionFromEnd("a\U0001F600b", 3), 1U);
    EXPECT_EQ(utf16PositionFromEnd("a*\xF0\x9F", 3), 1U);
}

TEST(UTF16, BothDirectionsAgreeOnRandomBytes) {
    testing::Chance random(16);
    constexpr std::string_view bytes = "aZ*\x80\x8F\x90\x9F\xA0\xBF\xC0\xC2\xDF\xE0\xE2\xED\xF0\xF4"
                                       "\xF5\xFF";
    for (int round = 0; round < 20'000; ++round) {
        std::string text(random() % 12, ' ');
        for (char &c : text) {
            c = bytes[random() % bytes.size()];
        }
        const std::size_t length = utf16Length(text);
        for (std::size_t unit = 0; unit < length; ++unit) {
            const std::string_view character = utf16Substring(text, unit, 1);
            ASSERT_EQ(utf16PositionFromEnd(text, length - unit),
                      static_cast<std::size_t>(character.data() - text.data()));
        }
        ASSERT_EQ(utf16PositionFromEnd(text, length + 1), none);
    }
}

} // namespace
} // namespace pelluvia
