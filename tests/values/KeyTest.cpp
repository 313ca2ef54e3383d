// SPDX-License-Identifier: MIT

#include <Pelluvia/values/Key.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

// A key is its number. Who is compiled with a newer header has numbers that are not known here.
static_assert(sizeof(Key) == sizeof(std::uint32_t));
std::uint32_t numberOf(const Key &key) {
    std::uint32_t number = 0;
    std::memcpy(&number, &key, sizeof number);
    return number;
}
Key keyOfNumber(std::uint32_t number) {
    Key key("count");
    std::memcpy(static_cast<void *>(&key), &number, sizeof number);
    return key;
}

constexpr Key count = Key::known("count");
constexpr Key heartRate = Key::known("hr");

TEST(Key, OfAKnownNameIsTheSameAtCompileTimeAndAtRunTime) {
    for (const std::string_view name : knownKeyNames) {
        EXPECT_EQ(Key(name).name(), name);
    }
    EXPECT_EQ(Key("hr"), heartRate);
    EXPECT_EQ(Key("count"), count);
    EXPECT_FALSE(heartRate == count);
}

// A number that has moved swaps values between programs and libraries that were not built together.
TEST(Key, KnownNamesKeepTheirNumbers) {
    const std::vector<std::pair<std::uint32_t, std::string_view>> expected = {
        {0, "count"},          {1, "name"},         {2, "description"}, {3, "author"},
        {4, "index"},          {5, "courseIndex"},  {6, "routeNumber"}, {7, "comment"},
        {8, "symbol"},         {9, "type"},         {10, "url"},        {11, "urlName"},
        {12, "geocacheOwner"}, {13, "difficulty"},  {14, "terrain"},    {15, "geocacheType"},
        {16, "geocacheHint"},  {17, "proximity"},   {18, "hr"},         {19, "cadence"},
        {20, "temp"},          {21, "distance"},    {22, "sensor"},     {23, "speed"},
        {24, "calories"},      {25, "trackNumber"}, {26, "trackIndex"}, {27, "trackEnd"},
        {28, "hrMax"},         {29, "hrAvg"},       {30, "cadenceMax"}, {31, "cadenceAvg"},
        {32, "totalTime"},     {33, "speedMax"},    {34, "speedAvg"},   {35, "powerAvg"},
        {36, "powerMax"},      {37, "altMin"},      {38, "altMax"},     {39, "trackName"},
        {40, "trigger"},       {41, "intensity"},   {42, "point"},      {43, "points"},
        {44, "track"},         {45, "route"},       {46, "waypoint"},   {47, "laps"},
        {48, "POIs"},          {49, "value"},
    };
    ASSERT_EQ(knownKeyNames.size(), expected.size());
    for (const auto &[number, name] : expected) {
        EXPECT_EQ(knownKeyNames[number], name);
        EXPECT_EQ(numberOf(Key(name)), number) << name;
    }
}

TEST(Key, PooledNamesAreNumberedBehindAllThatWillEverBeKnown) {
    EXPECT_EQ(Key::firstPooledNumber, 65'536U);
    const Key pooled("of nobody else");
    EXPECT_GE(numberOf(pooled), 65'536U);
    EXPECT_FALSE(pooled.isKnown());
    EXPECT_TRUE(heartRate.isKnown());
}

TEST(Key, OfANewerHeaderHasNoNameHereAndIsDifferentFromAllOthers) {
    std::vector<Key> pooled;
    for (int i = 0; i < 100; ++i) { // where numbers that follow the known ones would collide
        pooled.emplace_back("pooled " + std::to_string(i));
    }
    for (auto number = static_cast<std::uint32_t>(knownKeyNames.size()); number < 65'536;
         number += 13) {
        const Key newer = keyOfNumber(number);
        Key copy = newer;
        EXPECT_EQ(newer.name(), "");
        EXPECT_EQ(copy, newer);
        EXPECT_FALSE(newer == Key(""));
        EXPECT_EQ(std::find(pooled.begin(), pooled.end(), newer), pooled.end());
        copy = Key("something else");
        EXPECT_FALSE(copy == newer);
    }
}

TEST(Key, NamesAreAllDifferent) {
    std::vector<std::string_view> names(knownKeyNames.begin(), knownKeyNames.end());
    std::sort(names.begin(), names.end());
    EXPECT_EQ(std::adjacent_find(names.begin(), names.end()), names.end());
}

TEST(Key, OfAnyOtherNameIsEqualToKeysOfThatNameOnly) {
    const Key one("power");
    const Key same(std::string("pow") + "er");
    EXPECT_EQ(one, same);
    EXPECT_EQ(one.name(), "power");
    EXPECT_FALSE(one == Key("Power"));
    EXPECT_FALSE(one == Key("powe"));
    EXPECT_FALSE(one == heartRate);
}

TEST(Key, TakesEveryTextAsAName) {
    const std::vector<std::string> names = {"",
                                            " hr",
                                            "hr ",
                                            "\xC3\xA4",
                                            std::string("a\0b", 3),
                                            std::string("a\0c", 3),
                                            std::string(100'000, 'x')};
    for (const std::string &name : names) {
        EXPECT_EQ(Key(name).name(), name);
    }
    EXPECT_FALSE(Key(names[4]) == Key(names[5]));
}

TEST(Key, KeepsItsNameWhileACopyLives) {
    auto first = std::make_unique<Key>("sweat");
    const Key copy = *first;
    const std::string_view name = copy.name();
    first.reset();
    const Key other("tears");
    EXPECT_EQ(name, "sweat");
    EXPECT_EQ(copy, Key("sweat"));
    EXPECT_FALSE(copy == other);
}

TEST(Key, MovedFromIsTheKeyCount) {
    Key source("gone");
    const Key target = std::move(source);
    EXPECT_EQ(target.name(), "gone");
    EXPECT_EQ(source, count); // NOLINT(bugprone-use-after-move): that is what is documented
    source = Key("back");
    EXPECT_EQ(source.name(), "back");
}

TEST(Key, SurvivesAssignmentOfItselfAndOfOthers) {
    Key key("one");
    const Key &alias = key;
    key = alias;
    EXPECT_EQ(key.name(), "one");
    key = Key("two");
    EXPECT_EQ(key.name(), "two");
    key = heartRate;
    EXPECT_EQ(key, heartRate);
}

TEST(Key, PlacesOfNamesThatNobodyUsesAreUsedAgain) {
    for (int round = 0; round < 3; ++round) {
        std::vector<Key> keys;
        for (int i = 0; i < 1000; ++i) {
            keys.emplace_back("round " + std::to_string(round) + " key " + std::to_string(i));
        }
        for (std::size_t i = 0; i < keys.size(); i += 2) {
            keys[i] = heartRate;
        }
        keys.emplace_back("late");
        for (std::size_t i = 1; i < 1000; i += 2) {
            EXPECT_EQ(keys[i].name(),
                      "round " + std::to_string(round) + " key " + std::to_string(i));
        }
        EXPECT_EQ(keys.back().name(), "late");
    }
}

TEST(Key, CanBeMadeCopiedAndDestroyedOnManyThreads) {
    const Key shared("shared by all");
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([&shared, number] {
            for (int i = 0; i < 5000; ++i) {
                const Key copy = shared;
                const Key own("thread " + std::to_string(number) + " key " + std::to_string(i % 7));
                const Key again("shared by all");
                ASSERT_EQ(copy, again);
                ASSERT_EQ(own.name(), Key(own).name());
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(shared.name(), "shared by all");
}

/// Any number of names of the same standard hash, as a hostile file could hold: sixteen bytes each,
/// the second half chosen so that it brings the hash of the first to the same state. (The hash is
/// that of the GNU library, whose mixing steps can all be undone.)
std::string nameOfEqualHash(std::uint64_t number) {
    constexpr std::uint64_t factor = 0xC6A4A793'5BD1E995;
    constexpr std::uint64_t inverse = [] {
        std::uint64_t result =
            factor; // Newton's steps, each of which doubles the bits that are right
        for (int step = 0; step < 6; ++step) {
            result *= 2 - factor * result;
        }
        return result;
    }();
    constexpr std::uint64_t start = 0xC70F6907 ^ 16 * factor;
    const auto folded = [](std::uint64_t value) { return value ^ value >> 47; };
    const std::uint64_t state = (start ^ folded(number * factor) * factor) * factor;
    const std::uint64_t second = folded(state * inverse) * inverse; // makes the state 0
    std::string name(16, '\0');
    std::memcpy(name.data(), &number, 8);
    std::memcpy(name.data() + 8, &second, 8);
    return name;
}

// With a table of hashes this would be some 5,000,000,000 comparisons.
TEST(Key, ManyNamesOfTheSameHashAreAsGoodAsOthers) {
    if (std::hash<std::string_view>()(nameOfEqualHash(0)) !=
        std::hash<std::string_view>()(nameOfEqualHash(1))) {
        GTEST_SKIP() << "the hash of another library";
    }
    std::vector<Key> keys;
    for (std::uint64_t number = 0; number < 100'000; ++number) {
        keys.emplace_back(nameOfEqualHash(number));
    }
    EXPECT_EQ(keys[1234], Key(nameOfEqualHash(1234)));
    EXPECT_EQ(keys.back().name(), nameOfEqualHash(99'999));
}

} // namespace
} // namespace pelluvia
