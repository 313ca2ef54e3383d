// SPDX-License-Identifier: MIT

// The receivers that pass calls on, and the one that does not.

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/ForwardingReceiver.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/model/TeeReceiver.h>
#include <tests/support/EveryCall.h>
#include <tests/support/SpyReceiver.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

using testing::SpyReceiver;
using Lines = std::vector<std::string>;
using Receivers = std::vector<std::shared_ptr<GPSOutputReceiver>>;

Dictionary sample() {
    Dictionary extra;
    extra.set(extras::hr, Value(121));
    return extra;
}

/// The calls themselves.
SpyReceiver everyCall(const Dictionary &extra) {
    SpyReceiver spy;
    testing::makeEveryCall(spy, extra);
    EXPECT_EQ(spy.calls.size(), 17U);
    return spy;
}

/// The addresses of the dictionaries that came.
std::vector<const Dictionary *> dictionaries(const SpyReceiver &spy) {
    std::vector<const Dictionary *> result;
    for (const testing::SeenCall &each : spy.seen) {
        result.push_back(each.address);
    }
    return result;
}

TEST(NullReceiver, TakesEveryCall) {
    NullReceiver receiver;
    testing::makeEveryCall(receiver, sample());
    SUCCEED();
}

TEST(ForwardingReceiver, PassesEveryCallOnAsItIs) {
    const Dictionary extra = sample();
    const auto spy = std::make_shared<SpyReceiver>();
    ForwardingReceiver forwarding(spy);
    testing::makeEveryCall(forwarding, extra);
    EXPECT_EQ(spy->calls, everyCall(extra).calls);
    EXPECT_EQ(dictionaries(*spy), dictionaries(everyCall(extra))) << "no copies";
}

TEST(ForwardingReceiver, KeepsTheNextOneAlive) {
    auto spy = std::make_shared<SpyReceiver>();
    const std::weak_ptr<SpyReceiver> watched = spy;
    {
        const ForwardingReceiver forwarding(std::move(spy));
        EXPECT_FALSE(watched.expired());
    }
    EXPECT_TRUE(watched.expired());
}

TEST(ForwardingReceiver, MayLeadNowhere) {
    ForwardingReceiver forwarding(nullptr);
    testing::makeEveryCall(forwarding, sample());
    SUCCEED();
}

TEST(TeeReceiver, PassesEveryCallOnToAllInTheirOrder) {
    const Dictionary extra = sample();
    const auto first = std::make_shared<SpyReceiver>();
    const auto second = std::make_shared<SpyReceiver>();
    first->onCall = [&](const std::string & /*line*/) {
        EXPECT_EQ(second->calls.size() + 1, first->calls.size()) << "the first comes first";
    };
    TeeReceiver tee(Receivers{first, nullptr, second});
    testing::makeEveryCall(tee, extra);
    EXPECT_EQ(first->calls, everyCall(extra).calls);
    EXPECT_EQ(second->calls, everyCall(extra).calls);
    EXPECT_EQ(dictionaries(*second), dictionaries(everyCall(extra))) << "no copies";
}

TEST(TeeReceiver, MayHaveNobodyToPassTo) {
    TeeReceiver tee(Receivers{});
    testing::makeEveryCall(tee, sample());
    SUCCEED();
}

} // namespace
} // namespace pelluvia
