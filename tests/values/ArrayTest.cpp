// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Array.h>

#include <gtest/gtest.h>
#include <string>
#include <utility>

namespace pelluvia {
namespace {

std::string joined(const Array &array) {
    std::string text;
    for (const Value &value : array) {
        text += std::string(value.string().value_or("?")) + ",";
    }
    return text;
}

TEST(Array, KeepsItsValuesInOrder) {
    Array array;
    EXPECT_TRUE(array.empty());
    for (const char *text : {"a", "b", "c"}) {
        array.append(Value(text));
    }
    EXPECT_EQ(array.size(), 3U);
    EXPECT_EQ(joined(array), "a,b,c,");
    EXPECT_EQ(array.at(1).string(), "b");
    array.removeLast();
    EXPECT_EQ(joined(array), "a,b,");
}

TEST(Array, CanHoldNil) {
    Array array;
    array.append(Value());
    EXPECT_EQ(array.size(), 1U);
    EXPECT_TRUE(array.at(0).isNil());
}

TEST(Array, CanBeGivenItsOwnValues) {
    Array array;
    array.append(Value("first"));
    for (int i = 0; i < 100; ++i) {
        array.append(array.at(0)); // also when the storage moves
    }
    EXPECT_EQ(array.at(100).string(), "first");
}

TEST(Array, ACopyIsANewListOfTheSameValues) {
    const auto inner = Ref<Array>::make();
    Array array;
    array.append(Value(inner));
    Array copy = array;
    copy.append(Value(1));
    EXPECT_EQ(array.size(), 1U);
    EXPECT_EQ(copy.size(), 2U);
    EXPECT_EQ(copy.at(0).array(), inner.get());
}

TEST(Array, IsSharedThroughReferences) {
    const auto array = Ref<Array>::make();
    const Value one(array);
    const Value other = one;
    one.array()->append(Value(1));
    EXPECT_EQ(other.array()->size(), 1U);
}

} // namespace
} // namespace pelluvia
