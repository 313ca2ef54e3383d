// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/CollectedText.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(CollectedText, IsAbsentAtFirst) {
    EXPECT_FALSE(CollectedText().isPresent());
}

TEST(CollectedText, CanBePresentAndEmpty) {
    CollectedText text;
    text.set("");
    EXPECT_TRUE(text.isPresent());
    EXPECT_EQ(text.view(), "");
}

TEST(CollectedText, TakesAnEmptyTextFromAnElementAsAbsent) {
    CollectedText text;
    text.setUnlessEmpty("a");
    EXPECT_TRUE(text.isPresent());
    text.setUnlessEmpty("");
    EXPECT_FALSE(text.isPresent());
}

TEST(CollectedText, KeepsItsMemoryWhileItIsAbsent) {
    CollectedText text;
    text.set(std::string(1000, 'x'));
    const char *memory = text.view().data();
    text.clear();
    EXPECT_FALSE(text.isPresent());
    text.set(std::string(900, 'y'));
    EXPECT_EQ(text.view().data(), memory);
}

TEST(CollectedText, GivesTheMemoryOfAnUnusuallyLongTextBack) {
    CollectedText text;
    text.set(std::string(CollectedText::largestKept + 1, 'x'));
    text.clear();
    EXPECT_TRUE(text.value().isNil());
    text.set("short");
    EXPECT_EQ(text.view(), "short");
}

TEST(CollectedText, GivesTheMemoryOfAnUnusuallyLongTextBackWhenAnotherTakesItsPlace) {
    CollectedText text;
    text.set(std::string(CollectedText::largestKept + 1, 'x'));
    const Value before = text.value();
    text.set("short");
    EXPECT_EQ(text.view(), "short");
    EXPECT_EQ(before.string()->size(), CollectedText::largestKept + 1);
}

TEST(CollectedText, LeavesAValueThatAReceiverKeepsAsItIs) {
    CollectedText text;
    text.set("first");
    const Value kept = text.value();
    text.set("second");
    EXPECT_EQ(kept.string(), "first");
    EXPECT_EQ(text.view(), "second");
}

} // namespace
} // namespace pelluvia
