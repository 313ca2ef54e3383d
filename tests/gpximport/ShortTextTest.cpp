// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/ShortText.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(ShortText, IsEmptyAtFirst) {
    EXPECT_EQ(ShortText().text(), "");
}

TEST(ShortText, KeepsACopyOfATextOfAnyLengthUpToItsCapacity) {
    for (std::size_t size = 1; size <= ShortText::capacity; ++size) {
        std::string text(size, ' ');
        for (std::size_t i = 0; i < size; ++i) {
            text[i] = static_cast<char>('0' + i);
        }
        const std::string expected = text;
        ShortText kept;
        EXPECT_TRUE(kept.keep(text));
        text.assign(size, 'x');
        EXPECT_EQ(kept.text(), expected);
    }
}

TEST(ShortText, KeepsNothingOfALongerTextOrAnEmptyOne) {
    ShortText kept;
    EXPECT_TRUE(kept.keep("7.5"));
    EXPECT_FALSE(kept.keep(std::string(ShortText::capacity + 1, '7')));
    EXPECT_EQ(kept.text(), "");
    EXPECT_TRUE(kept.keep("7.5"));
    EXPECT_FALSE(kept.keep(""));
    EXPECT_EQ(kept.text(), "");
}

TEST(ShortText, ForgetsItsTextWhenItIsCleared) {
    ShortText kept;
    EXPECT_TRUE(kept.keep("7.5"));
    kept.clear();
    EXPECT_EQ(kept.text(), "");
}

} // namespace
} // namespace pelluvia
