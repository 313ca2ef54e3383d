// SPDX-License-Identifier: MIT

// Letting go of containers needs no stack, whatever is nested in what, and frees each exactly once.

#include <Pelluvia/values/internal/ContainerRelease.h>

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Chance.h>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

constexpr int deep = 1'000'000;
constexpr Key inner = Key::known("points");

#if defined(__SANITIZE_ADDRESS__)
constexpr int millions = 100'000;
#else
constexpr int millions = 1'000'000;
#endif

Value inArray(Value value) {
    auto array = Ref<Array>::make();
    array->append(std::move(value));
    return Value(std::move(array));
}

Value inDictionary(Value value) {
    auto dictionary = Ref<Dictionary>::make();
    dictionary->set(inner, std::move(value));
    return Value(std::move(dictionary));
}

Value inPoint(Value value) {
    Dictionary extra;
    extra.set(inner, std::move(value));
    return Value(Dictionary::wrapping(GPSPoint(), &extra));
}

/// An array among other things, whose other owner can see whether the rest is gone.
Value amongOthers(Value value) {
    auto array = Ref<Array>::make();
    array->append(Value("before"));
    array->append(Ref<Dictionary>::make());
    array->append(Value(Ref<Array>::make()));
    array->append(std::move(value));
    array->append(Value(3));
    return Value(std::move(array));
}

using Wrap = Value (*)(Value);

/// `innermost` inside `levels` containers, of each kind in turn.
Value nested(const Ref<Array> &innermost, const std::vector<Wrap> &kinds, int levels) {
    Value value(innermost);
    for (int level = 0; level < levels; ++level) {
        value = kinds[static_cast<std::size_t>(level) % kinds.size()](std::move(value));
    }
    return value;
}

const std::vector<std::vector<Wrap>> allKinds = {{inArray},          {inDictionary},
                                                 {inPoint},          {inArray, inDictionary},
                                                 {inArray, inPoint}, {amongOthers, inDictionary}};

TEST(ContainerRelease, OfAMillionLevelsNeedsNoStack) {
    for (const std::vector<Wrap> &kinds : allKinds) {
        const auto watched = Ref<Array>::make();
        Value value = nested(watched, kinds, deep);
        EXPECT_FALSE(watched->hasOneOwner());
        value = Value();
        EXPECT_TRUE(watched->hasOneOwner());
    }
}

TEST(ContainerRelease, ByEveryWayOfLettingGoNeedsNoStack) {
    const auto watched = Ref<Array>::make();
    const auto made = [&watched] { return nested(watched, {inArray, inDictionary}, deep); };
    Dictionary dictionary;
    dictionary.set(Key("removed"), made());
    dictionary.remove(Key("removed"));
    EXPECT_TRUE(watched->hasOneOwner());
    dictionary.set(Key("replaced"), made());
    dictionary.set(Key("replaced"), Value(1));
    EXPECT_TRUE(watched->hasOneOwner());
    dictionary.set(Key("removed"), made());
    dictionary.removeAll();
    EXPECT_TRUE(watched->hasOneOwner());
    dictionary.set(Key("assigned"), made());
    dictionary = Dictionary();
    EXPECT_TRUE(watched->hasOneOwner());

    Array array;
    array.append(made());
    array.removeLast();
    EXPECT_TRUE(watched->hasOneOwner());
    array.append(made());
    array = Array();
    EXPECT_TRUE(watched->hasOneOwner());
    array.append(Ref<Dictionary>(inDictionary(made()).dictionary()));
    array.removeLast();
    EXPECT_TRUE(watched->hasOneOwner());
    {
        Array local;
        local.append(made());
        Dictionary alsoLocal;
        alsoLocal.set(Key("value"), made());
    }
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ContainerRelease, LeavesWhatSomebodyElseOwns) {
    const auto shared = Ref<Array>::make();
    shared->append(inDictionary(Value("kept")));
    Value first = amongOthers(inDictionary(Value(shared)));
    Value second = inArray(Value(shared));
    first = Value();
    EXPECT_FALSE(shared->hasOneOwner());
    second = Value();
    ASSERT_TRUE(shared->hasOneOwner());
    ASSERT_EQ(shared->size(), 1U);
    EXPECT_EQ(shared->dictionary(0)->string(inner), "kept");
}

TEST(ContainerRelease, OfADeepThingWithTwoOwnersNeedsNoStack) {
    for (const std::vector<Wrap> &kinds : allKinds) {
        const auto watched = Ref<Array>::make();
        Value value = nested(watched, kinds, deep);
        auto first = Ref<Array>::make();
        first->append(value);
        first->append(value); // twice in one
        Value second = inDictionary(value);
        value = Value();
        first = nullptr;
        EXPECT_FALSE(watched->hasOneOwner());
        second = Value();
        EXPECT_TRUE(watched->hasOneOwner());
    }
}

TEST(ContainerRelease, OfLevelsThatEachHoldTheNextTwiceTakesNoLongerForIt) {
    const auto watched = Ref<Array>::make();
    Value value(watched);
    for (int level = 0; level < deep / 10; ++level) { // 2 to the 100,000 ways to the innermost
        auto array = Ref<Array>::make();
        array->append(value);
        array->append(inDictionary(value));
        value = Value(std::move(array));
    }
    value = Value();
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ContainerRelease, OfWideAndDeepNeedsNoStack) {
    const auto watched = Ref<Array>::make();
    auto wide = Ref<Array>::make();
    for (int i = 0; i < 1000; ++i) {
        wide->append(nested(watched, {inDictionary, amongOthers}, 1000));
    }
    wide = nullptr;
    EXPECT_TRUE(watched->hasOneOwner());
}

TEST(ContainerRelease, OfRandomSharedGraphsFreesAllOfThem) {
    testing::Chance random(11);
    const auto below = [&random](std::size_t end) {
        return static_cast<std::size_t>(random() % end);
    };
    for (int round = 0; round < 50; ++round) {
        const auto watched = Ref<Array>::make();
        std::vector<Value> nodes{Value(watched)};
        for (int i = 0; i < 500; ++i) {
            auto array = Ref<Array>::make();
            auto dictionary = Ref<Dictionary>::make();
            for (std::size_t child = below(4); child > 0; --child) {
                array->append(nodes[below(nodes.size())]);
                dictionary->set(Key(std::to_string(child)), nodes[below(nodes.size())]);
            }
            nodes.emplace_back(std::move(array));
            nodes.emplace_back(std::move(dictionary));
            nodes.push_back(inPoint(nodes[below(nodes.size())]));
        }
        while (!nodes.empty()) {
            std::swap(nodes[below(nodes.size())], nodes.back());
            nodes.pop_back();
        }
        EXPECT_TRUE(watched->hasOneOwner());
    }
}

TEST(ContainerRelease, OfALongRecordingTakesEveryPointAlong) {
    Dictionary extra;
    const auto watched = Ref<Array>::make();
    extra.set(extras::hr, Value(140));
    extra.set(Key("watched"), Value(watched));
    auto recorder = RecordingGPSOutput::recorder();
    recorder->newTrack(nullptr);
    for (int i = 0; i < millions; ++i) {
        recorder->trackPoint(GPSPoint(), &extra);
    }
    recorder->endTransfer(transferKind::tracks);
    extra.removeAll();
    EXPECT_FALSE(watched->hasOneOwner());
    recorder.reset();
    EXPECT_TRUE(watched->hasOneOwner());
}

} // namespace
} // namespace pelluvia
