// SPDX-License-Identifier: MIT

#include <Pelluvia/text/Text.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(Text, IsASCIIWhenEveryByteIsBelow128) {
    EXPECT_TRUE(isASCII(""));
    EXPECT_TRUE(isASCII("plain \t\x7F"));
    EXPECT_TRUE(isASCII(std::string_view("\0", 1)));
    EXPECT_FALSE(isASCII("\x80"));
    EXPECT_FALSE(isASCII("Z\xC3\xBCrich"));
    EXPECT_FALSE(isASCII("\xFF"));
}

TEST(Text, LeadingWhiteSpaceCountsItsBytes) {
    const struct {
        std::string_view text;
        std::size_t length;
    } rows[] = {
        {"", 0},
        {"a ", 0},
        {" a", 1},
        {" \t\n\v\f\r", 6},
        {"\xC2\x85|", 2},                               // next line
        {"\xC2\xA0|", 2},                               // no-break space
        {"\xE1\x9A\x80|", 3},                           // ogham space mark
        {"\xE2\x80\x80\xE2\x80\x8A|", 6},               // en quad, hair space
        {"\xE2\x80\xA8\xE2\x80\xA9|", 6},               // line and paragraph separators
        {"\xE2\x80\xAF\xE2\x81\x9F\xE3\x80\x80 |", 10}, // narrow, mathematical, ideographic
        {"\xE2\x80\x8B", 0},                            // zero width space
        {"\xEF\xBB\xBF", 0},                            // byte order mark
        {"\xC3\xA4", 0},
        {"\x08", 0},
        {"\x0E", 0},
        {"\x1F", 0},
        {std::string_view("\0 ", 2), 0},
    };
    for (const auto &row : rows) {
        EXPECT_EQ(leadingWhiteSpace(row.text), row.length) << row.text;
    }
}

TEST(Text, WhatIsNotUTF8IsNotWhiteSpace) {
    for (const std::string_view text :
         {"\xC2",
          "\xC2"
          "5",
          "\xE2", "\xE2\x80",
          "\xE2\x80"
          "5",
          "\xE2\x80 ", "\xE2\x81", "\xE3\x80", "\xE1\x9A", "\x85", "\xA0", "\x80"}) {
        EXPECT_EQ(leadingWhiteSpace(text), 0U) << text;
    }
}

} // namespace
} // namespace pelluvia
