// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <cmath>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

/// The accessor's string, released; nothing for null.
std::optional<std::string> mallocedString(const Dictionary *dictionary, const Key &key) {
    const std::unique_ptr<char, decltype(&std::free)> text(
        getMallocedStringFromDictionary(dictionary, key), &std::free);
    return text != nullptr ? std::optional<std::string>(text.get()) : std::nullopt;
}

TEST(GetFloatFromDictionary, ConvertsWhateverNumberIsStored) {
    EXPECT_EQ(getFloatFromDictionary(nullptr, extras::speed), 0.0F);
    const Dictionary integer = dictionaryOf(extras::speed, 7);
    EXPECT_EQ(getFloatFromDictionary(&integer, extras::speed), 7.0F);
    EXPECT_EQ(getFloatFromDictionary(&integer, extras::distance), 0.0F);
    const Dictionary real = dictionaryOf(extras::speed, 0.1);
    EXPECT_EQ(getFloatFromDictionary(&real, extras::speed), 0.1F);
    const Dictionary huge = dictionaryOf(extras::speed, -1e308);
    EXPECT_EQ(getFloatFromDictionary(&huge, extras::speed),
              -std::numeric_limits<float>::infinity());
    const Dictionary text = dictionaryOf(extras::speed, "7"sv);
    EXPECT_EQ(getFloatFromDictionary(&text, extras::speed), 0.0F);
}

TEST(GetIntFromDictionary, ConvertsWhateverNumberIsStored) {
    EXPECT_EQ(getIntFromDictionary(nullptr, extras::hr), 0);
    const Dictionary integer = dictionaryOf(extras::hr, 120);
    EXPECT_EQ(getIntFromDictionary(&integer, extras::hr), 120);
    EXPECT_EQ(getIntFromDictionary(&integer, extras::cadence), 0);
    const Dictionary single = dictionaryOf(extras::hr, -21.75F);
    EXPECT_EQ(getIntFromDictionary(&single, extras::hr), -21);
    const Dictionary huge = dictionaryOf(extras::hr, 1e308);
    EXPECT_EQ(getIntFromDictionary(&huge, extras::hr), std::numeric_limits<int>::max());
    const Dictionary wide = dictionaryOf(extras::hr, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(getIntFromDictionary(&wide, extras::hr), std::numeric_limits<int>::min());
    const Dictionary nan = dictionaryOf(extras::hr, std::nan(""));
    EXPECT_EQ(getIntFromDictionary(&nan, extras::hr), 0);
    const Dictionary text = dictionaryOf(extras::hr, "7"sv);
    EXPECT_EQ(getIntFromDictionary(&text, extras::hr), 0);
}

TEST(GetIntFromDictionaryIfPresent, StoresThePresentNumber) {
    const Dictionary dictionary = dictionaryOf(extras::hr, 0);
    int value = 99;
    EXPECT_EQ(getIntFromDictionaryIfPresent(&dictionary, extras::hr, &value), 1);
    EXPECT_EQ(value, 0);
}

TEST(GetIntFromDictionaryIfPresent, LeavesTheTargetUnchangedWithoutANumber) {
    const Dictionary dictionary = dictionaryOf(extras::name, "7"sv);
    int value = 99;
    EXPECT_EQ(getIntFromDictionaryIfPresent(nullptr, extras::hr, &value), 0);
    EXPECT_EQ(getIntFromDictionaryIfPresent(&dictionary, extras::hr, &value), 0);
    EXPECT_EQ(getIntFromDictionaryIfPresent(&dictionary, extras::name, &value), 0);
    EXPECT_EQ(value, 99);
}

TEST(GetMallocedStringFromDictionary, CopiesAnASCIIString) {
    const Dictionary dictionary = dictionaryOf(extras::name, "Morning <ride>"sv);
    EXPECT_EQ(mallocedString(&dictionary, extras::name), "Morning <ride>");
    const Dictionary empty = dictionaryOf(extras::name, ""sv);
    EXPECT_EQ(mallocedString(&empty, extras::name), "");
}

TEST(GetMallocedStringFromDictionary, HasRoomForTenMoreBytes) {
    const Dictionary dictionary = dictionaryOf(extras::name, "ride"sv);
    const std::unique_ptr<char, decltype(&std::free)> text(
        getMallocedStringFromDictionary(&dictionary, extras::name), &std::free);
    ASSERT_NE(text, nullptr);
    std::memset(text.get() + 4, 'x', 10); // Seen by the address sanitizer if it were less.
    EXPECT_EQ(std::string(text.get(), 14), "ridexxxxxxxxxx");
}

TEST(GetMallocedStringFromDictionary, IsNullWithoutAnASCIIString) {
    EXPECT_EQ(mallocedString(nullptr, extras::name), std::nullopt);
    const Dictionary accented = dictionaryOf(extras::name, "Z\xC3\xBCrich"sv);
    EXPECT_EQ(mallocedString(&accented, extras::name), std::nullopt);
    EXPECT_EQ(mallocedString(&accented, extras::comment), std::nullopt);
    const Dictionary number = dictionaryOf(extras::name, 7);
    EXPECT_EQ(mallocedString(&number, extras::name), std::nullopt);
    const Dictionary accentedBehindNul = dictionaryOf(extras::name, "Z\0\xC3\xBC"sv);
    EXPECT_EQ(mallocedString(&accentedBehindNul, extras::name), std::nullopt);
}

TEST(GetMallocedStringFromDictionary, AnEmbeddedNulEndsTheByteString) {
    const Dictionary dictionary = dictionaryOf(extras::name, "one\0two"sv);
    EXPECT_EQ(mallocedString(&dictionary, extras::name), "one");
}

} // namespace
} // namespace pelluvia
