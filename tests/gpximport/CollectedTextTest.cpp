#include <Pelluvia/gpximport/CollectedText.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(CollectedText, IsAbsentAtFirst) {
    EXPECT_FALSE(CollectedText().isPresent);
}

TEST(CollectedText, CanBePresentAndEmpty) {
    CollectedText text;
    text.set("");
    EXPECT_TRUE(text.isPresent);
    EXPECT_EQ(text.text, "");
}

TEST(CollectedText, TakesAnEmptyTextFromAnElementAsAbsent) {
    CollectedText text;
    text.setUnlessEmpty("a");
    EXPECT_TRUE(text.isPresent);
    text.setUnlessEmpty("");
    EXPECT_FALSE(text.isPresent);
}

TEST(CollectedText, KeepsItsMemoryWhileItIsAbsent) {
    CollectedText text;
    text.set(std::string(1000, 'x'));
    const char *memory = text.text.data();
    text.clear();
    EXPECT_FALSE(text.isPresent);
    text.set(std::string(900, 'y'));
    EXPECT_EQ(text.text.data(), memory);
}

TEST(CollectedText, GivesTheMemoryOfAnUnusuallyLongTextBack) {
    CollectedText text;
    text.set(std::string(CollectedText::largestKept + 1, 'x'));
    text.clear();
    EXPECT_LT(text.text.capacity(), 100U);
    text.set("short");
    EXPECT_EQ(text.text, "short");
}

} // namespace
} // namespace pelluvia
