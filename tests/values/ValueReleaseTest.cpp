// SPDX-License-Identifier: MIT

// Letting go of nested arrays and dictionaries.

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Value.h>

#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

constexpr int deep = 1'000'000;
constexpr int deepEnough = 250'000; // destructors that call each other overflow the stack here, too

/// What goes around `inner` in an array, between two other values.
Value inArray(Value inner) {
    auto array = Ref<Array>::make();
    array->append(Value("before"));
    array->append(std::move(inner));
    array->append(Value(3));
    return Value(std::move(array));
}

Value inDictionary(Value inner) {
    auto dictionary = Ref<Dictionary>::make();
    dictionary->set(Key("points"), std::move(inner));
    dictionary->set(Key("invented"), Value("behind"));
    return Value(std::move(dictionary));
}

/// `watched` inside `levels` containers, arrays and dictionaries in turn.
Value nested(const Ref<Array> &watched, int levels) {
    Value value(watched);
    for (int level = 0; level < levels; ++level) {
        value = level % 2 == 0 ? inArray(std::move(value)) : inDictionary(std::move(value));
    }
    return value;
}

TEST(ValueRelease, OfAMillionLevelsNeedsNoStack) {
    const auto watched = Ref<Array>::make();
    Value value = nested(watched, deep);
    EXPECT_FALSE(watched->hasOneOwner());
    value = Value();
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ValueRelease, OfAMillionLevelsInAnObjectOnTheStackNeedsNoStackEither) {
    const auto watched = Ref<Array>::make();
    {
        Array array;
        array.append(nested(watched, deepEnough));
        Dictionary dictionary;
        dictionary.set(Key("count"), nested(watched, deepEnough));
        dictionary.set(Key("removed"), nested(watched, deepEnough));
        dictionary.remove(Key("removed"));
        dictionary.set(Key("count"), Value(1));
        dictionary.set(Key("again"), nested(watched, deepEnough));
        dictionary.removeAll();
    }
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ValueRelease, ThroughAReferenceNeedsNoStack) {
    const auto watched = Ref<Array>::make();
    auto array = Ref<Array>::make();
    array->append(nested(watched, deepEnough));
    array = nullptr;
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ValueRelease, LeavesWhatOthersOwn) {
    const auto watched = Ref<Array>::make();
    Value inner = inDictionary(Value(watched));
    Value outer = inArray(inner);
    outer = Value();
    ASSERT_EQ(inner.dictionary()->size(), 2U);
    EXPECT_EQ(inner.dictionary()->find(Key("points")).array(), watched.get());
    EXPECT_EQ(inner.dictionary()->find(Key("invented")).string(), "behind");
    EXPECT_FALSE(watched->hasOneOwner());
    inner = Value();
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ValueRelease, OfOneContainerInManyPlacesHappensOnce) {
    const auto watched = Ref<Array>::make();
    Value value(watched);
    for (int level = 0; level < 40; ++level) { // 2^40 ways lead to the innermost
        auto array = Ref<Array>::make();
        array->append(value);
        array->append(value);
        value = Value(std::move(array));
    }
    value = Value();
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ValueRelease, ReachesEveryPartOfATreeOfAnyShape) {
    testing::Chance random(20250405);
    for (int round = 0; round < 200; ++round) {
        const auto watched = Ref<Array>::make();
        std::vector<Value> values;
        for (int i = 0; i < 200; ++i) {
            auto array = Ref<Array>::make();
            auto dictionary = Ref<Dictionary>::make();
            for (auto left = random() % 5; left != 0; --left) {
                const bool leaf = values.empty() || random() % 3 == 0;
                const Value child = leaf ? Value(watched) : values[random() % values.size()];
                array->append(child);
                array->append(Value(1.0));
                dictionary->set(Key("key " + std::to_string(left)), child);
            }
            values.push_back(i % 2 == 0 ? Value(std::move(array)) : Value(std::move(dictionary)));
        }
        while (!values.empty()) {
            const auto chosen = static_cast<std::ptrdiff_t>(random() % values.size());
            values.erase(values.begin() + chosen);
        }
        ASSERT_TRUE(watched->hasOneOwner());
    }
}

} // namespace
} // namespace pelluvia
