// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Value.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia {
namespace {

TEST(ValueAssign, MakesAStringOfAValueOfAnyKind) {
    for (const Value &before :
         {Value(), Value(7), Value(1.5), Value("text"), Value(Ref<Array>::make())}) {
        Value value = before;
        value.assign("new");
        EXPECT_EQ(value.string(), "new");
        EXPECT_EQ(value.string()->data()[3], '\0');
    }
}

TEST(ValueAssign, UsesTheMemoryOfAStringThatNobodyShares) {
    Value value("a long text");
    const char *memory = value.string()->data();
    value.assign("short");
    EXPECT_EQ(value.string(), "short");
    EXPECT_EQ(value.string()->data()[5], '\0');
    value.assign("a long one.");
    EXPECT_EQ(value.string(), "a long one.");
    EXPECT_EQ(value.string()->data(), memory);
}

TEST(ValueAssign, LeavesAStringThatIsSharedAsItIs) {
    Value value("first");
    const Value copy = value;
    value.assign("other");
    EXPECT_EQ(copy.string(), "first");
    EXPECT_EQ(value.string(), "other");
}

TEST(ValueAssign, GrowsWithRoomForMore) {
    Value value("ten bytes.");
    value.assign("twenty bytes of text");
    const char *memory = value.string()->data();
    value.assign("thirty bytes of text, no more.");
    EXPECT_EQ(value.string(), "thirty bytes of text, no more.");
    EXPECT_EQ(value.string()->data(), memory);
}

TEST(ValueAssign, TakesAPartOfItself) {
    Value value("0123456789");
    value.assign(value.string()->substr(2, 5));
    EXPECT_EQ(value.string(), "23456");
    value.assign("");
    EXPECT_EQ(value.string(), "");
    const Value shared = value = Value("0123456789");
    value.assign(value.string()->substr(5));
    EXPECT_EQ(value.string(), "56789");
}

TEST(ValueAssign, HoldsNULs) {
    Value value("text");
    value.assign(std::string_view("a\0b", 3));
    EXPECT_EQ(value.string(), std::string_view("a\0b", 3));
}

} // namespace
} // namespace pelluvia
