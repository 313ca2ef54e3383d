// SPDX-License-Identifier: MIT

#include <tools/pelluvia/terminal/InterruptWatch.h>

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

namespace pelluvia::host {
namespace {

using ::testing::ExitedWithCode;
using ::testing::KilledBySignal;

// Signals are sent in processes of their own, which the death tests make.

TEST(InterruptWatchDeathTest, ASignalMakesTheDescriptorReadableForGood) {
    const auto signalled = [] {
        const InterruptWatch watch;
        pollfd asked = {watch.descriptor(), POLLIN, 0};
        const bool isFirst = ::poll(&asked, 1, 0) == 0 && !InterruptWatch::isInterrupted();
        std::raise(SIGTERM);
        const bool isSecond = ::poll(&asked, 1, 0) == 1 && ::poll(&asked, 1, 0) == 1;
        std::exit(isFirst && isSecond && InterruptWatch::isInterrupted() ? 5 : 6);
    };
    EXPECT_EXIT(signalled(), ExitedWithCode(5), "");
}

TEST(InterruptWatchDeathTest, SignalsBehindTheFirstDoNothingAlsoWhenTheWatchIsOver) {
    const auto signalled = [] {
        {
            const InterruptWatch watch;
            std::raise(SIGHUP);
            std::raise(SIGTERM);
        }
        std::raise(SIGHUP);
        std::raise(SIGINT);
        std::exit(5);
    };
    EXPECT_EXIT(signalled(), ExitedWithCode(5), "");
}

TEST(InterruptWatchDeathTest, WithoutASignalAllIsAsItWas) {
    const auto signalled = [] {
        { const InterruptWatch watch; }
        std::raise(SIGTERM);
    };
    EXPECT_EXIT(signalled(), KilledBySignal(SIGTERM), "");
}

TEST(InterruptWatchDeathTest, WhereItMayGiveUpTheSignalEndsTheProgramThatMakesNoHeadway) {
    const auto signalled = [](bool mayGiveUp) {
        const InterruptWatch watch;
        InterruptWatch::setMayGiveUp(mayGiveUp);
        std::raise(SIGTERM);
        constexpr int longer = 2 * static_cast<int>(InterruptWatch::patience.count());
        // Interrupted by each look at how things stand; waits on.
        for (int i = 0; i < longer / 100; ++i) {
            ::poll(nullptr, 0, longer);
        }
        std::exit(5);
    };
    EXPECT_EXIT(signalled(true), KilledBySignal(SIGTERM), "");
    EXPECT_EXIT(signalled(false), ExitedWithCode(5), "");
}

TEST(InterruptWatchDeathTest, HeadwayKeepsItGoing) {
    const auto signalled = [] {
        const InterruptWatch watch;
        InterruptWatch::setMayGiveUp(true);
        std::raise(SIGTERM);
        for (int i = 0; i < 20; ++i) {
            InterruptWatch::noteHeadway();
            ::poll(nullptr, 0, 1000); // until the next look
        }
        std::exit(5);
    };
    EXPECT_EXIT(signalled(), ExitedWithCode(5), "");
}

TEST(InterruptWatchDeathTest, WhatTheCallerSwitchedOffStaysOff) {
    const auto signalled = [] {
        std::signal(SIGHUP, SIG_IGN);
        const InterruptWatch watch;
        std::raise(SIGHUP);
        std::exit(InterruptWatch::isInterrupted() ? 6 : 5);
    };
    EXPECT_EXIT(signalled(), ExitedWithCode(5), "");
}

} // namespace
} // namespace pelluvia::host
