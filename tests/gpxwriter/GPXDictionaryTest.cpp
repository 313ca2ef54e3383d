// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/GPXDictionary.h>

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/model/ExtrasKeys.h>

#include <cerrno>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>

namespace pelluvia {
namespace {

struct Destroy {
    void operator()(GPXDictionary *dictionary) const { GPXDictionaryDestroy(dictionary); }
    void operator()(GPXKey *key) const { GPXKeyDestroy(key); }
};
using OwnedDictionary = std::unique_ptr<GPXDictionary, Destroy>;
using OwnedKey = std::unique_ptr<GPXKey, Destroy>;

TEST(GPXDictionary, HoldsWhatIsSetWithItsType) {
    const OwnedDictionary made(GPXDictionaryCreate());
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(made->empty());
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(GPXDictionarySetInt(made.get(), "hr", largest), 0);
    EXPECT_EQ(GPXDictionarySetDouble(made.get(), "temp", 21.75), 0);
    EXPECT_EQ(GPXDictionarySetFloat(made.get(), "speed", 4.5F), 0);
    EXPECT_EQ(GPXDictionarySetString(made.get(), "my own key", "text"), 0);
    EXPECT_EQ(made->number(extras::hr)->int64Value(), largest);
    EXPECT_EQ(made->number(extras::hr)->type(), Number::Type::Integer);
    EXPECT_EQ(made->number(extras::temp)->type(), Number::Type::Double);
    EXPECT_EQ(made->number(extras::temp)->doubleValue(), 21.75);
    EXPECT_EQ(made->number(extras::speed)->type(), Number::Type::Float);
    EXPECT_EQ(made->number(extras::speed)->floatValue(), 4.5F);
    EXPECT_EQ(made->string(Key("my own key")), "text");
}

TEST(GPXDictionary, ReplacesAndRemoves) {
    const OwnedDictionary made(GPXDictionaryCreate());
    EXPECT_EQ(GPXDictionarySetInt(made.get(), "hr", 1), 0);
    EXPECT_EQ(GPXDictionarySetInt(made.get(), "hr", 2), 0);
    EXPECT_EQ(made->size(), 1U);
    EXPECT_EQ(made->number(extras::hr)->intValue(), 2);
    EXPECT_EQ(GPXDictionarySetString(made.get(), "hr", nullptr), 0);
    EXPECT_TRUE(made->empty());
    EXPECT_EQ(GPXDictionarySetString(made.get(), "name", ""), 0);
    EXPECT_EQ(made->string(extras::name), "") << "an empty text is one";
    GPXDictionaryRemoveAll(made.get());
    EXPECT_TRUE(made->empty());
}

TEST(GPXDictionary, RefusesNullAndStaysWhole) {
    const OwnedDictionary made(GPXDictionaryCreate());
    EXPECT_EQ(GPXDictionarySetInt(nullptr, "hr", 1), EINVAL);
    EXPECT_EQ(GPXDictionarySetInt(made.get(), nullptr, 1), EINVAL);
    EXPECT_EQ(GPXDictionarySetString(nullptr, "hr", "text"), EINVAL);
    EXPECT_EQ(GPXDictionarySetString(made.get(), nullptr, nullptr), EINVAL);
    EXPECT_TRUE(made->empty());
    GPXDictionaryDestroy(nullptr);
    GPXDictionaryRemoveAll(nullptr);
    GPXKeyDestroy(nullptr);
    EXPECT_EQ(GPXKeyCreate(nullptr), nullptr);
}

TEST(GPXDictionary, TheAccessorsTakeKeysThatWereMade) {
    const OwnedDictionary made(GPXDictionaryCreate());
    const OwnedKey key(GPXKeyCreate("hr"));
    ASSERT_NE(key, nullptr);
    int value = 7;
    EXPECT_EQ(getIntFromDictionaryIfPresent(made.get(), *key, &value), 0);
    EXPECT_EQ(GPXDictionarySetInt(made.get(), "hr", 121), 0);
    EXPECT_EQ(getIntFromDictionaryIfPresent(made.get(), *key, &value), 1);
    EXPECT_EQ(value, 121);
}

} // namespace
} // namespace pelluvia
