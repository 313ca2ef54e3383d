// SPDX-License-Identifier: MIT

// Arrays keep dictionaries, as long as nothing else has come, in half the space; nothing of that
// shows.

#include <Pelluvia/values/Array.h>

#include <Pelluvia/values/Dictionary.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

bool same(const Value &a, const Value &b) {
    return a.kind() == b.kind() && a.string() == b.string() && a.array() == b.array() &&
           a.dictionary() == b.dictionary();
}

void expectSame(const Array &array, const std::vector<Value> &model) {
    ASSERT_EQ(array.size(), model.size());
    ASSERT_EQ(array.empty(), model.empty());
    std::size_t position = 0;
    for (const Value &value : array) {
        ASSERT_TRUE(same(value, model[position]));
        ASSERT_TRUE(same(array.at(position), model[position]));
        ASSERT_EQ(array.dictionary(position), model[position].dictionary());
        ++position;
    }
    ASSERT_EQ(position, model.size());
}

TEST(ArrayLean, AgreesWithAListOfValues) {
    testing::Chance random(3);
    for (int round = 0; round < 300; ++round) {
        Array array;
        std::vector<Value> model;
        // Some rounds have nothing but dictionaries for a long time.
        const std::uint64_t others = round % 3 == 0 ? 0 : random() % 8;
        for (int step = 0; step < 200; ++step) {
            const std::uint64_t choice = random() % 16;
            if (choice < 4 && !model.empty()) {
                array.removeLast();
                model.pop_back();
            } else if (choice < 5) {
                array = Array(array);
            } else if (choice < 5 + others) {
                const Value value = choice % 2 == 0 ? Value("text") : Value(Ref<Array>::make());
                array.append(value);
                model.push_back(value);
            } else if (choice % 2 == 0) {
                const auto dictionary = Ref<Dictionary>::make();
                array.append(dictionary);
                model.emplace_back(dictionary);
            } else {
                const Value value(Ref<Dictionary>::make());
                array.append(value);
                model.push_back(value);
            }
            expectSame(array, model);
            ASSERT_FALSE(::testing::Test::HasFatalFailure()) << "round " << round;
        }
    }
}

TEST(ArrayLean, ANullDictionaryStandsAsNil) {
    Array array;
    array.append(Ref<Dictionary>());
    array.append(Ref<Dictionary>::make());
    EXPECT_TRUE(array.at(0).isNil());
    EXPECT_EQ(array.dictionary(0), nullptr);
    array.append(Value(1)); // moves them all
    array.append(Ref<Dictionary>());
    EXPECT_EQ(array.size(), 4U);
    EXPECT_TRUE(array.at(0).isNil());
    EXPECT_EQ(array.dictionary(0), nullptr);
    EXPECT_NE(array.dictionary(1), nullptr);
    EXPECT_TRUE(array.at(3).isNil());
    const Array copy(array);
    EXPECT_TRUE(copy.at(0).isNil());
}

TEST(ArrayLean, NilIsAValue) {
    Array array;
    array.append(Value());
    EXPECT_EQ(array.size(), 1U);
    EXPECT_TRUE(array.at(0).isNil());
    array.append(Ref<Dictionary>::make());
    EXPECT_NE(array.dictionary(1), nullptr);
    array.removeLast();
    array.removeLast();
    EXPECT_TRUE(array.empty());
    array.append(Ref<Dictionary>::make());
    EXPECT_NE(array.dictionary(0), nullptr);
}

TEST(ArrayLean, ItsOwnValuesMayBeAppended) {
    Array array;
    array.append(Ref<Dictionary>::make());
    for (int i = 0; i < 100; ++i) {
        array.append(array.at(0));
        array.append(Ref<Dictionary>(array.dictionary(0)));
    }
    array.append(Value("text"));
    for (int i = 0; i < 100; ++i) {
        array.append(array.at(array.size() - 1));
    }
    EXPECT_EQ(array.dictionary(200), array.dictionary(0));
    EXPECT_EQ(array.at(301).string(), "text");
}

TEST(ArrayLean, KeepsItselfWhenItIsAssignedToItself) {
    Array array;
    array.append(Value("text"));
    const Array &itself = array;
    array = itself;
    EXPECT_EQ(array.at(0).string(), "text");
}

TEST(ArrayLean, CanBeReplacedByWhatStandsInsideIt) {
    for (const int texts : {1, 3, 100}) {
        Array array;
        auto inner = Ref<Array>::make();
        for (int i = 0; i < texts; ++i) {
            inner->append(Value("text"));
        }
        const Array *borrowed = inner.get();
        array.append(Value(std::move(inner)));
        array.append(Value(1));
        array = *borrowed;
        ASSERT_EQ(array.size(), static_cast<std::size_t>(texts));
        EXPECT_EQ(array.at(array.size() - 1).string(), "text");
    }
}

TEST(ArrayLean, ACopyIsAListOfItsOwn) {
    Array array;
    array.append(Ref<Dictionary>::make());
    Array copy(array);
    copy.dictionary(0)->set(Key("hr"), Value(1)); // shared
    copy.append(Value(2));
    EXPECT_EQ(array.size(), 1U);
    EXPECT_TRUE(array.dictionary(0)->contains(Key("hr")));
    const Array moved(std::move(copy)); // is a copy: no array is ever left undefined
    EXPECT_EQ(moved.size(), 2U);
    EXPECT_EQ(copy.size(), 2U); // NOLINT(bugprone-use-after-move)
}

} // namespace
} // namespace pelluvia
