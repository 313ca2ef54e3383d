// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commandline/CreatorText.h>

#include <gtest/gtest.h>

namespace pelluvia::host {
namespace {

TEST(CreatorText, ReservedCharactersBecomeEntities) {
    EXPECT_EQ(attributeText("a<b> & \"c\" 'd' %s"),
              "a&lt;b&gt; &amp; &quot;c&quot; &apos;d&apos; %s");
    EXPECT_EQ(attributeText(""), "");
}

TEST(CreatorText, CharactersBeyondASCIIBecomeReferences) {
    EXPECT_EQ(attributeText("\xC2\xA0"), "&#160;");
    EXPECT_EQ(attributeText("Z\xC3\xBCrich"), "Z&#252;rich");
    EXPECT_EQ(attributeText("\xE2\x82\xAC"), "&#8364;");
    EXPECT_EQ(attributeText("\xF0\x9F\x9A\xB2"), "&#128690;");
    EXPECT_EQ(attributeText("\xF4\x8F\xBF\xBD"), "&#1114109;");
}

TEST(CreatorText, WhatAnAttributeCannotHoldIsRefused) {
    for (const std::string_view text :
         {std::string_view("\0", 1), std::string_view("a\tb"), std::string_view("\n"),
          std::string_view("\x1F"), std::string_view("\x7F"), std::string_view("\xC2\x85"),
          std::string_view("\xEF\xBF\xBE"), std::string_view("\xEF\xBF\xBF"),
          std::string_view("\xED\xA0\x80"), std::string_view("\xFF")}) {
        EXPECT_EQ(attributeText(text), std::nullopt) << ::testing::PrintToString(text);
    }
}

} // namespace
} // namespace pelluvia::host
