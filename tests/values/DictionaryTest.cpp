// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Dictionary.h>

#include <Pelluvia/values/Array.h>

#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

std::string keys(const Dictionary &dictionary) {
    std::string text;
    for (const Dictionary::Entry &entry : dictionary) {
        text += std::string(entry.key.name()) + ",";
    }
    return text;
}

std::int32_t number(const Dictionary &dictionary, std::string_view key) {
    const auto number = dictionary.number(Key(key));
    return number ? number->intValue() : -1;
}

TEST(Dictionary, FindsWhatWasSetAndNothingElse) {
    Dictionary dictionary;
    EXPECT_TRUE(dictionary.empty());
    EXPECT_FALSE(dictionary.contains(Key("hr")));
    dictionary.set(Key("hr"), Value(120));
    dictionary.set(Key("of my own"), Value("text"));
    EXPECT_EQ(dictionary.size(), 2U);
    EXPECT_EQ(number(dictionary, "hr"), 120);
    EXPECT_EQ(dictionary.find(Key("of my own")).string(), "text");
    EXPECT_FALSE(dictionary.contains(Key("temp")));
}

TEST(Dictionary, KeepsTheOrderInWhichKeysWereAdded) {
    Dictionary dictionary;
    for (const char *key : {"temp", "own", "hr", "another", "cadence"}) {
        dictionary.set(Key(key), Value(1));
    }
    EXPECT_EQ(keys(dictionary), "temp,own,hr,another,cadence,");
    dictionary.set(Key("hr"), Value(2)); // in its place
    EXPECT_EQ(keys(dictionary), "temp,own,hr,another,cadence,");
    EXPECT_EQ(number(dictionary, "hr"), 2);
    dictionary.remove(Key("own"));
    EXPECT_EQ(keys(dictionary), "temp,hr,another,cadence,");
    dictionary.set(Key("own"), Value(3)); // anew, at the end
    EXPECT_EQ(keys(dictionary), "temp,hr,another,cadence,own,");
}

TEST(Dictionary, NeverHoldsNil) {
    Dictionary dictionary;
    dictionary.set(Key("hr"), Value());
    EXPECT_TRUE(dictionary.empty());
    dictionary.set(Key("hr"), Value(1));
    dictionary.set(Key("hr"), Value());
    EXPECT_TRUE(dictionary.empty());
    EXPECT_FALSE(dictionary.contains(Key("hr")));
}

TEST(Dictionary, RemovingAMissingKeyChangesNothing) {
    Dictionary dictionary;
    dictionary.remove(Key("hr"));
    dictionary.set(Key("temp"), Value(1));
    dictionary.remove(Key("hr"));
    EXPECT_EQ(keys(dictionary), "temp,");
    dictionary.remove((*dictionary.begin()).key); // a key that goes with the entry
    EXPECT_TRUE(dictionary.empty());
}

TEST(Dictionary, RemovingAllLeavesItReadyToBeFilledAgain) {
    Dictionary dictionary;
    for (int round = 0; round < 3; ++round) {
        dictionary.set(Key("a"), Value("one"));
        dictionary.set(Key("b"), Value("two"));
        EXPECT_EQ(keys(dictionary), "a,b,");
        dictionary.removeAll();
        EXPECT_TRUE(dictionary.empty());
    }
}

TEST(Dictionary, CanBeGivenItsOwnValuesAndKeys) {
    Dictionary dictionary;
    dictionary.set(Key("first"), Value("text"));
    for (int i = 0; i < 100; ++i) {
        dictionary.set(Key("copy " + std::to_string(i)), dictionary.find(Key("first")));
    }
    dictionary.set((*dictionary.begin()).key, Value(1));
    EXPECT_EQ(dictionary.find(Key("copy 99")).string(), "text");
    EXPECT_EQ(number(dictionary, "first"), 1);
}

TEST(Dictionary, ACopyIsANewDictionaryWithTheSameValues) {
    const auto inner = Ref<Array>::make();
    Dictionary dictionary;
    dictionary.set(Key("points"), Value(inner));
    Dictionary copy = dictionary;
    copy.set(Key("hr"), Value(1));
    EXPECT_EQ(keys(dictionary), "points,");
    EXPECT_EQ(keys(copy), "points,hr,");
    EXPECT_EQ(copy.find(Key("points")).array(), inner.get());
}

// The key of an entry lies in the padding of its value. Whatever moves entries around must leave
// every key with its value.
TEST(DictionaryEntry, KeepsItsKeyWhenItsValueChanges) {
    Dictionary::Entry entry(Key("kept"), Value(1));
    const std::vector<Value> others = {Value(), Value(2.0), Value(3.0F), Value("text"),
                                       Value(Ref<Array>::make())};
    for (const Value &other : others) {
        entry.value = other;
        EXPECT_EQ(entry.key.name(), "kept");
        entry.value = Value(other);
        EXPECT_EQ(entry.key.name(), "kept");
        Value swapped("swapped");
        std::swap(entry.value, swapped);
        EXPECT_EQ(entry.key.name(), "kept");
        EXPECT_EQ(entry.value.string(), "swapped");
        EXPECT_EQ(swapped.kind(), other.kind());
    }
    entry.key = Key("new");
    EXPECT_EQ(entry.value.string(), "swapped");
}

TEST(DictionaryEntry, StaysWholeWhileEntriesAreSortedErasedAndMoved) {
    std::vector<Dictionary::Entry> entries;
    for (int i = 0; i < 500; ++i) { // grows, and so moves, many times
        const std::string name = "entry " + std::to_string(i);
        entries.emplace_back(Key(name), i % 2 == 0 ? Value(name) : Value(i));
    }
    testing::Chance random(7);
    std::shuffle(entries.begin(), entries.end(), random);
    std::sort(entries.begin(), entries.end(),
              [](const auto &a, const auto &b) { return a.key.name() < b.key.name(); });
    entries.erase(entries.begin() + 100, entries.begin() + 200);
    const std::vector<Dictionary::Entry> copy = entries;
    entries.insert(entries.begin(), copy.begin(), copy.end());
    ASSERT_EQ(entries.size(), 800U);
    for (const Dictionary::Entry &entry : entries) {
        const std::string name(entry.key.name());
        if (entry.value.string()) {
            EXPECT_EQ(entry.value.string(), name);
        } else {
            EXPECT_EQ("entry " + std::to_string(entry.value.number()->intValue()), name);
        }
    }
}

} // namespace
} // namespace pelluvia
