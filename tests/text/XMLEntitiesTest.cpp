// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Companion.h>

#include <array>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia {
namespace {

/// The result in a buffer of `capacity` bytes; checks that nothing behind them is touched.
std::string escaped(const std::string &source, std::size_t capacity = 4096) {
    constexpr char untouched = '\x7F';
    std::string buffer(capacity + 8, untouched);
    EXPECT_EQ(SkerryCStringByMakingStandardXMLEntities(buffer.data(), source.c_str(), capacity),
              buffer.data());
    EXPECT_EQ(buffer.substr(capacity), std::string(8, untouched));
    return buffer.c_str();
}

TEST(XMLEntities, ReplacesTheFiveReservedCharacters) {
    EXPECT_EQ(escaped("a & b < c > d \" e ' f"), "a &amp; b &lt; c &gt; d &quot; e &apos; f");
    EXPECT_EQ(escaped("&amp;"), "&amp;amp;");
    EXPECT_EQ(escaped("]]>"), "]]&gt;");
}

TEST(XMLEntities, CopiesWhatNeedsNoReplacement) {
    EXPECT_EQ(escaped(""), "");
    EXPECT_EQ(escaped("Morning ride 7 (50%)"), "Morning ride 7 (50%)");
    EXPECT_EQ(escaped("tab\tline\nreturn\r\x7F"), "tab\tline\nreturn\r\x7F");
    EXPECT_EQ(escaped("Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x9A\xB2"),
              "Z\xC3\xBCrich \xE2\x82\xAC \xF0\x9F\x9A\xB2");
}

TEST(XMLEntities, ControlCharactersBecomeQuestionMarks) {
    for (char c = 1; c < ' '; ++c) {
        const bool isAllowed = c == '\t' || c == '\n' || c == '\r';
        EXPECT_EQ(escaped(std::string(1, c)), isAllowed ? std::string(1, c) : "?") << int{c};
    }
}

TEST(XMLEntities, CharactersThatXMLExcludesBecomeOneQuestionMark) {
    EXPECT_EQ(escaped("a\xEF\xBF\xBE!"), "a?!"); // U+FFFE
    EXPECT_EQ(escaped("a\xEF\xBF\xBF!"), "a?!"); // U+FFFF
    EXPECT_EQ(escaped("a\xED\xA0\x80!"), "a?!"); // U+D800
    EXPECT_EQ(escaped("a\xED\xBF\xBF!"), "a?!"); // U+DFFF
}

TEST(XMLEntities, TheirNeighboursAreCopied) {
    for (const char *text : {"\xEF\xBF\xBD", "\xED\x9F\xBF", "\xEE\x80\x80", "\xF4\x8F\xBF\xBF",
                             "\xF0\x9F\xBF\xBE", "\xE0\xA0\x80", "\xC2\x80"}) {
        EXPECT_EQ(escaped(text), text);
    }
}

TEST(XMLEntities, BytesOutsideUTF8AreCopiedOneByOne) {
    for (const char *text : {"caf\xE9", "\x80\xBF", "\xC0\xAF", "\xE2\x82", "\xF0\x80\x80\x80",
                             "\xF4\x90\x80\x80", "\xFF\xFE", "\xE0\x80\x80", "\xED\xA0"}) {
        EXPECT_EQ(escaped(text), text);
    }
    EXPECT_EQ(escaped("\xE9&\xE9"), "\xE9&amp;\xE9");
}

TEST(XMLEntities, ACapacityOfZeroWritesNothing) {
    EXPECT_EQ(SkerryCStringByMakingStandardXMLEntities(nullptr, "text", 0), nullptr);
    char byte = 'x';
    EXPECT_EQ(SkerryCStringByMakingStandardXMLEntities(&byte, "text", 0), &byte);
    EXPECT_EQ(byte, 'x');
}

TEST(XMLEntities, ACapacityOfOneHoldsTheClosingNulOnly) {
    EXPECT_EQ(escaped("text", 1), "");
    EXPECT_EQ(escaped("&", 1), "");
    EXPECT_EQ(escaped("", 1), "");
}

TEST(XMLEntities, NullCountsAsEmpty) {
    std::array<char, 2> buffer = {'x', 'y'};
    SkerryCStringByMakingStandardXMLEntities(buffer.data(), nullptr, buffer.size());
    EXPECT_EQ(buffer[0], '\0');
    EXPECT_EQ(buffer[1], 'y');
}

TEST(XMLEntities, ALongTextIsCutToTheCapacity) {
    EXPECT_EQ(escaped(std::string(600, 'a'), 512), std::string(511, 'a'));
    EXPECT_EQ(escaped(std::string(511, 'a'), 512), std::string(511, 'a'));
}

TEST(XMLEntities, TheCutFallsBeforeAnEntityThatDoesNotFit) {
    EXPECT_EQ(escaped("ab&c", 7), "ab");
    EXPECT_EQ(escaped("ab&c", 8), "ab&amp;");
    EXPECT_EQ(escaped("ab&c", 9), "ab&amp;c");
    // What comes behind it could fit, but a text with a hole would be another text.
    EXPECT_EQ(escaped("a\"b", 4), "a");
}

TEST(XMLEntities, TheCutFallsBeforeACharacterThatDoesNotFit) {
    EXPECT_EQ(escaped("a\xC3\xBC", 3), "a");
    EXPECT_EQ(escaped("a\xC3\xBC", 4), "a\xC3\xBC");
    EXPECT_EQ(escaped("\xE2\x82\xAC", 3), "");
    EXPECT_EQ(escaped("\xF0\x9F\x9A\xB2", 4), "");
    EXPECT_EQ(escaped("\xF0\x9F\x9A\xB2", 5), "\xF0\x9F\x9A\xB2");
}

TEST(XMLEntities, EveryCutOfRandomBytesIsAStartOfTheWholeText) {
    testing::Chance random(5);
    std::uniform_int_distribution<int> bytes(1, 255);
    for (int round = 0; round < 300; ++round) {
        std::string source;
        for (int i = 0; i < 24; ++i) {
            source += static_cast<char>(bytes(random));
        }
        const std::string whole = escaped(source);
        for (std::size_t capacity = 1; capacity <= whole.size() + 1; ++capacity) {
            const std::string cut = escaped(source, capacity);
            ASSERT_LT(cut.size(), capacity);
            ASSERT_TRUE(whole.starts_with(cut));
            // An entity or a character takes at most six bytes, so no more than five stay unused.
            ASSERT_GE(cut.size() + 6, capacity);
        }
        ASSERT_EQ(escaped(source, whole.size() + 1), whole);
    }
}

} // namespace
} // namespace pelluvia
