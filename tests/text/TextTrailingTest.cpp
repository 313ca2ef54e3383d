// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Text.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(Text, TrailingWhiteSpaceCountsItsBytes) {
    const struct {
        std::string_view text;
        std::size_t length;
    } rows[] = {
        {"", 0},
        {" a", 0},
        {"a ", 1},
        {" ", 1},
        {"a\t\n\v\f\r ", 6},
        {"a\u0085\u00A0", 4},
        {"a\u1680\u2000\u200A\u2028\u2029\u202F\u205F\u3000", 24},
        {"a \u3000\r\n", 6},
        {"\u2003", 3},
        {"a\u200B", 0}, // zero width space
        {"a\uFEFF", 0}, // byte order mark
        {std::string_view(" \0", 2), 0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(trailingWhiteSpace(row.text), row.length) << row.text;
    }
}

TEST(Text, WhatIsNotUTF8IsNoTrailingWhiteSpace) {
    for (const std::string_view text :
         {"a\x85", "a\xA0", "a\x80", "\x80", "\xC2", "\xE2\x80", "\x80\xA8", "\xE2\x80-",
          "a \xE2\x80", "\xE1\x9A", "a\xE3\x80\x81"}) {
        EXPECT_EQ(trailingWhiteSpace(text), 0U) << text;
    }
    EXPECT_EQ(trailingWhiteSpace("\xE2\x80 "), 1U);
    EXPECT_EQ(trailingWhiteSpace("\xE2\xC2\x85"), 2U);
}

TEST(Text, LongWhiteSpaceIsCountedFromBothEnds) {
    std::string text;
    for (int i = 0; i < 100'000; ++i) {
        text += "\u3000\n";
    }
    EXPECT_EQ(leadingWhiteSpace(text), text.size());
    EXPECT_EQ(trailingWhiteSpace(text), text.size());
}

} // namespace
} // namespace pelluvia
