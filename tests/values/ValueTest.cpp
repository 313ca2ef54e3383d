// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Value.h>

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

struct Position {
    double latitude;
    double longitude;
};
/// Encoded as something else, though the bytes are the same.
struct OtherPosition {
    double latitude;
    double longitude;
};

} // namespace

template <>
struct RecordEncoding<Position> {
    static constexpr const char *value = "{?=dd}";
};
template <>
struct RecordEncoding<OtherPosition> {
    static constexpr const char *value = "{?=d2}";
};

namespace {

/// One value of each kind, nil first.
std::vector<Value> oneOfEach() {
    std::vector<Value> values;
    values.emplace_back();
    values.emplace_back(7);
    values.emplace_back(1.5F);
    values.emplace_back(2.5);
    values.emplace_back("text");
    values.push_back(Value::wrapping(Position{47.0, 8.0}));
    values.emplace_back(Ref<Array>::make());
    values.emplace_back(Ref<Dictionary>::make());
    return values;
}

/// Whether both values are of the same kind and share or equal what they hold.
void expectSame(const Value &a, const Value &b) {
    ASSERT_EQ(a.kind(), b.kind());
    EXPECT_EQ(a.number().has_value(), b.number().has_value());
    if (a.number()) {
        EXPECT_EQ(a.number()->doubleValue(), b.number()->doubleValue());
    }
    EXPECT_EQ(a.string(), b.string());
    EXPECT_EQ(a.unwrap<Position>(), b.unwrap<Position>());
    EXPECT_EQ(a.array(), b.array());
    EXPECT_EQ(a.dictionary(), b.dictionary());
}

TEST(Value, AnswersForItsOwnKindOnly) {
    const std::vector<Value> values = oneOfEach();
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Value &value = values[i];
        EXPECT_EQ(static_cast<std::size_t>(value.kind()), i);
        EXPECT_EQ(value.isNil(), i == 0);
        EXPECT_EQ(value.number().has_value(), i >= 1 && i <= 3);
        EXPECT_EQ(value.string().has_value(), i == 4);
        EXPECT_EQ(value.unwrap<Position>() != nullptr, i == 5);
        EXPECT_EQ(value.array() != nullptr, i == 6);
        EXPECT_EQ(value.dictionary() != nullptr, i == 7);
    }
}

TEST(Value, NumbersRememberTheirType) {
    EXPECT_EQ(Value(7).number()->type(), Number::Type::Integer);
    EXPECT_EQ(Value(std::int64_t{7}).number()->type(), Number::Type::Integer);
    EXPECT_EQ(Value(7.0F).number()->type(), Number::Type::Float);
    EXPECT_EQ(Value(7.0).number()->type(), Number::Type::Double);
    constexpr auto large = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(Value(large).number()->int64Value(), large);
}

TEST(Value, StringsAreCopiedAndClosedByANul) {
    std::string text = "Grindelwald";
    const Value value(text);
    text = "changed";
    ASSERT_EQ(value.string(), "Grindelwald");
    EXPECT_EQ(value.string()->data()[value.string()->size()], '\0');
}

TEST(Value, StringsMayBeEmptyLongOrHoldNuls) {
    EXPECT_EQ(Value(std::string_view()).string(), ""); // no bytes at all, not even an address
    EXPECT_EQ(Value("").string(), "");
    EXPECT_EQ(Value("").string()->data()[0], '\0');
    const std::string withNul("a\0b", 3);
    EXPECT_EQ(Value(withNul).string(), withNul);
    const std::string longText(1'000'000, 'x');
    EXPECT_EQ(Value(longText).string(), longText);
}

TEST(Value, RecordsComeBackAsTheTypeThatWasWrappedOnly) {
    const Value value = Value::wrapping(Position{47.5, -8.25});
    ASSERT_NE(value.unwrap<Position>(), nullptr);
    EXPECT_EQ(value.unwrap<Position>()->latitude, 47.5);
    EXPECT_EQ(value.unwrap<Position>()->longitude, -8.25);
    EXPECT_EQ(value.unwrap<OtherPosition>(), nullptr);
    EXPECT_EQ(value.unwrap<double>(), nullptr);
    EXPECT_EQ(Value(1.0).unwrap<double>(), nullptr);
}

TEST(Value, ANullReferenceMakesNil) {
    EXPECT_TRUE(Value(Ref<Array>()).isNil());
    EXPECT_TRUE(Value(Ref<Dictionary>()).isNil());
}

TEST(Value, CopiesReferToTheSameContent) {
    for (const Value &value : oneOfEach()) {
        const Value copy = value;
        expectSame(copy, value);
        Value assigned(3);
        assigned = value;
        expectSame(assigned, value);
    }
}

TEST(Value, MovedFromIsNil) {
    static_assert(std::is_nothrow_move_constructible_v<Value>);
    static_assert(std::is_nothrow_move_assignable_v<Value>);
    for (const Value &value : oneOfEach()) {
        Value source = value;
        Value target(std::move(source));
        expectSame(target, value);
        EXPECT_TRUE(source.isNil()); // NOLINT(bugprone-use-after-move): that is what is documented
        Value assigned("something else");
        assigned = std::move(target);
        expectSame(assigned, value);
        EXPECT_TRUE(target.isNil()); // NOLINT(bugprone-use-after-move)
    }
}

TEST(Value, MovingIntoAValueLetsItsOldContentGoAtOnce) {
    const auto array = Ref<Array>::make();
    Value target(array);
    Value source(1);
    EXPECT_FALSE(array->hasOneOwner());
    target = std::move(source);
    EXPECT_TRUE(array->hasOneOwner());
}

TEST(Value, SurvivesAssignmentOfItself) {
    for (const Value &value : oneOfEach()) {
        Value same = value;
        Value &alias = same;
        same = alias;
        expectSame(same, value);
        same = std::move(alias);
        expectSame(same, value);
    }
}

TEST(Value, CanBeAssignedWhatOnlyItsOwnContentHolds) {
    auto array = Ref<Array>::make();
    array->append(Value("inside"));
    Value value(std::move(array));
    value = value.array()->at(0); // the array goes, and the value on the right with it
    EXPECT_EQ(value.string(), "inside");

    auto dictionary = Ref<Dictionary>::make();
    dictionary->set(Key("hr"), Value("inside"));
    value = Value(std::move(dictionary));
    value = value.dictionary()->find(Key("hr"));
    EXPECT_EQ(value.string(), "inside");
}

TEST(Value, CopiesMayBeReadAndLetGoOnManyThreads) {
    auto array = Ref<Array>::make();
    array->append(Value("shared"));
    const Value value(array);
    array = nullptr;
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([copy = value] {
            for (int i = 0; i < 10'000; ++i) {
                const Value inner = copy.array()->at(0);
                ASSERT_EQ(inner.string(), "shared");
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    threads.clear();
    EXPECT_TRUE(value.array()->hasOneOwner());
}

} // namespace
} // namespace pelluvia
