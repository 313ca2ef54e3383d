// SPDX-License-Identifier: MIT

// What converts to a value, and the lists that are made of such.

#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Value.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/model/TransferKind.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <string_view>
#include <type_traits>

namespace pelluvia {
namespace {

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

template <class Integer>
class ValueOfInteger : public ::testing::Test {};
using Integers = ::testing::Types<signed char, unsigned char, short, unsigned short, int, unsigned,
                                  long, unsigned long, long long, unsigned long long>;
TYPED_TEST_SUITE(ValueOfInteger, Integers, );

TYPED_TEST(ValueOfInteger, KeepsWhatTheTypeHolds) {
    using Limits = std::numeric_limits<TypeParam>;
    const Value low = Limits::min();
    EXPECT_EQ(low.kind(), Value::Kind::Integer);
    EXPECT_EQ(low.number()->int64Value(), static_cast<std::int64_t>(Limits::min()));
    const Value high = Limits::max();
    const bool fits = std::in_range<std::int64_t>(Limits::max());
    EXPECT_EQ(high.number()->int64Value(),
              fits ? static_cast<std::int64_t>(Limits::max()) : largest);
    EXPECT_EQ(Number(Limits::max()).int64Value(), high.number()->int64Value());
}

TEST(ValueConversions, AnUnsignedIntegerBeyondTheSignedOnesBecomesTheLargest) {
    constexpr auto edge = static_cast<std::uint64_t>(largest);
    EXPECT_EQ(Value(edge).number()->int64Value(), largest);
    EXPECT_EQ(Value(edge + 1).number()->int64Value(), largest);
    EXPECT_EQ(Value(std::numeric_limits<std::uint64_t>::max()).number()->int64Value(), largest);
    EXPECT_EQ(Value(smallest).number()->int64Value(), smallest);
    static_assert(saturatedInt64(edge + 1) == largest && saturatedInt64(-1) == -1);
}

TEST(ValueConversions, TruthValuesAndEnumerationsAreIntegers) {
    EXPECT_EQ(Value(true).kind(), Value::Kind::Integer);
    EXPECT_EQ(Value(true).number()->intValue(), 1);
    EXPECT_EQ(Value(false).number()->intValue(), 0);
    EXPECT_EQ(Value(transferKind::waypoints).number()->intValue(), 3);
    enum Large : std::uint64_t { huge = std::numeric_limits<std::uint64_t>::max() };
    EXPECT_EQ(Value(huge).number()->int64Value(), largest);
}

TEST(ValueConversions, FloatsKeepTheirWidth) {
    EXPECT_EQ(Value(0.1F).kind(), Value::Kind::Float);
    EXPECT_EQ(Value(0.1F).number()->floatValue(), 0.1F);
    EXPECT_EQ(Value(0.1).kind(), Value::Kind::Double);
    EXPECT_EQ(Value(0.1).number()->doubleValue(), 0.1);
}

TEST(ValueConversions, TextsOfEveryKindAreStrings) {
    const char *pointer = "pointer";
    char array[] = "array";
    EXPECT_EQ(Value("literal").string(), "literal");
    EXPECT_EQ(Value(pointer).string(), "pointer");
    EXPECT_EQ(Value(array).string(), "array");
    EXPECT_EQ(Value(std::string("a\0b", 3)).string(), std::string_view("a\0b", 3));
    EXPECT_EQ(Value(std::string_view("view")).string(), "view");
    EXPECT_EQ(Value("").string(), "");
}

TEST(ValueConversions, ANullTextIsNotGiven) {
    const char *none = nullptr;
    EXPECT_TRUE(Value(none).isNil());
    EXPECT_TRUE(Value(nullptr).isNil());
    Dictionary dictionary{{extras::name, "Morning ride"}, {extras::comment, none}};
    EXPECT_EQ(dictionary.size(), 1U);
    dictionary.set(extras::name, none);
    EXPECT_TRUE(dictionary.empty());
}

TEST(ValueConversions, NothingElseConverts) {
    static_assert(!std::is_constructible_v<Value, char>);
    static_assert(!std::is_constructible_v<Value, char16_t>);
    static_assert(!std::is_constructible_v<Value, wchar_t>);
    static_assert(!std::is_constructible_v<Value, void *>);
    static_assert(!std::is_constructible_v<Value, const int *>);
    static_assert(!std::is_constructible_v<Value, Dictionary *>);
    static_assert(!std::is_constructible_v<Value, Value::Kind>); // does not convert to an integer
    static_assert(!std::is_constructible_v<Value, GPSPoint>);
    SUCCEED();
}

TEST(ValueConversions, ADictionaryTakesThemAll) {
    Dictionary dictionary;
    EXPECT_TRUE(dictionary.set(extras::hr, 121));
    dictionary.set(extras::count, std::size_t{7});
    dictionary.set(extras::temp, 21.5F);
    dictionary.set(extras::altMax, 408.0);
    dictionary.set(Key("own"), true);
    dictionary.set(extras::name, "Morning ride");
    dictionary.set(extras::comment, std::string("fine"));
    dictionary.set(extras::symbol, std::string_view("Flag"));
    dictionary.set(extras::points, Ref<Array>::make());
    EXPECT_EQ(dictionary.size(), 9U);
    EXPECT_EQ(dictionary.number(extras::count)->intValue(), 7);
    EXPECT_EQ(dictionary.string(extras::symbol), "Flag");
    EXPECT_NE(dictionary.array(extras::points), nullptr);
}

TEST(DictionaryList, HoldsItsEntriesInOrder) {
    const Dictionary one{{extras::name, "Morning ride"}};
    EXPECT_EQ(one.size(), 1U);
    const Dictionary two{{extras::name, "Morning ride"}, {extras::hr, 121}};
    ASSERT_EQ(two.size(), 2U);
    EXPECT_EQ(two.at(0).value.string(), "Morning ride");
    EXPECT_EQ(two.at(1).value.number()->intValue(), 121);
    EXPECT_TRUE(Dictionary{}.empty());
}

TEST(DictionaryList, IsSetInTurn) {
    const Dictionary dictionary{
        {extras::hr, 1}, {extras::temp, 2}, {extras::hr, 3}, {extras::temp, nullptr}};
    ASSERT_EQ(dictionary.size(), 1U);
    EXPECT_EQ(dictionary.number(extras::hr)->intValue(), 3);
}

TEST(DictionaryList, CanStandWhereADictionaryIsMade) {
    const auto shared = Ref<Dictionary>::make(Dictionary{{extras::hr, 121}});
    EXPECT_EQ(shared->number(extras::hr)->intValue(), 121);
    EXPECT_TRUE(shared->hasOneOwner());
}

TEST(ArrayList, HoldsItsValuesInOrder) {
    const auto point = Ref<Dictionary>::make(Dictionary{{extras::hr, 121}});
    const Array mixed{1, 2.5, "three", point, nullptr};
    ASSERT_EQ(mixed.size(), 5U);
    EXPECT_EQ(mixed.at(2).string(), "three");
    EXPECT_EQ(mixed.dictionary(3), point.get());
    EXPECT_TRUE(mixed.at(4).isNil());
    EXPECT_EQ(Array{7}.size(), 1U);
    EXPECT_TRUE(Array{}.empty());
}

TEST(RecordEncoding, IsWhatAValueTellsOfItsRecord) {
    const Value value = Value::wrapping(GPSPoint{.latitude = 47.0});
    EXPECT_STREQ(value.recordEncoding(), "{?=dddqq}");
    EXPECT_EQ(value.unwrap<double>(), nullptr);
    EXPECT_STREQ(Value::wrapping(std::int64_t{7}).recordEncoding(), "q");
    EXPECT_EQ(Value(7).recordEncoding(), nullptr);
    const char copied[] = "{?=dddqq}"; // as another library has it
    EXPECT_TRUE(isSameEncoding(value.recordEncoding(), copied));
    EXPECT_FALSE(isSameEncoding("d", "q"));
}

} // namespace
} // namespace pelluvia
