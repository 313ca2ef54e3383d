// SPDX-License-Identifier: MIT

#include <Pelluvia/system/MainThread.h>

#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace pelluvia {
namespace {

using mainThread::drain;
using mainThread::Message;
using mainThread::post;

bool isReadable() {
    pollfd descriptor = {mainThread::fileDescriptor(), POLLIN, 0};
    return ::poll(&descriptor, 1, 0) == 1 && (descriptor.revents & POLLIN) != 0;
}

/// Starts and ends with an empty queue and without a scheduler; `say` makes messages that leave a
/// trace.
class MainThreadTest : public ::testing::Test {
  protected:
    void SetUp() override { ASSERT_EQ(drain(), 0U); }
    void TearDown() override {
        mainThread::setScheduler({});
        while (drain() != 0) {
        }
    }

    Message say(std::string word) {
        return [this, word = std::move(word)] { said_ += word + " "; };
    }

    std::string said_;
};

TEST_F(MainThreadTest, RunsMessagesInTheOrderOfPosting) {
    post(say("a"));
    post(say("b"));
    post(say("c"));
    EXPECT_EQ(said_, ""); // nothing runs before the host asks
    EXPECT_EQ(drain(), 3U);
    EXPECT_EQ(said_, "a b c ");
    EXPECT_EQ(drain(), 0U);
    EXPECT_EQ(said_, "a b c ");
}

TEST_F(MainThreadTest, AnEmptyFunctionIsNoMessageAndStopsNoOther) {
    post(say("a"));
    post(Message());
    post(say("b"));
    EXPECT_EQ(drain(), 2U);
    EXPECT_EQ(said_, "a b ");
}

TEST_F(MainThreadTest, LeavesWhatMessagesPostForTheNextTime) {
    post([this] {
        said_ += "a ";
        post(say("later"));
    });
    post(say("b"));
    EXPECT_EQ(drain(), 2U);
    EXPECT_EQ(said_, "a b ");
    EXPECT_TRUE(isReadable());
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(said_, "a b later ");
}

TEST_F(MainThreadTest, AMessageMayDrainTheQueueItself) {
    post([this] {
        post(say("posted"));
        EXPECT_EQ(drain(), 2U);
        post(say("last"));
    });
    post(say("b"));
    EXPECT_EQ(drain(), 1U); // the nested call ran the others; "last" is left for the next time
    EXPECT_EQ(said_, "b posted ");
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(said_, "b posted last ");
}

TEST_F(MainThreadTest, AMessageThatThrowsIsGoneAndTheOthersStay) {
    post(say("a"));
    post([] { throw std::runtime_error("of the host"); });
    post(say("b"));
    EXPECT_THROW(drain(), std::runtime_error);
    EXPECT_EQ(said_, "a ");
    EXPECT_TRUE(isReadable());
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(said_, "a b ");
    EXPECT_FALSE(isReadable());
}

TEST_F(MainThreadTest, TheDescriptorIsReadableExactlyWhileMessagesWait) {
    ASSERT_GE(mainThread::fileDescriptor(), 0);
    EXPECT_FALSE(isReadable());
    post(say("a"));
    EXPECT_TRUE(isReadable());
    post(say("b"));
    EXPECT_TRUE(isReadable());
    drain();
    EXPECT_FALSE(isReadable());
    post(say("c"));
    EXPECT_TRUE(isReadable());
    drain();
    EXPECT_FALSE(isReadable());
}

TEST_F(MainThreadTest, MessagesOfManyThreadsAllRunAndEachThreadsInOrder) {
    constexpr int threadCount = 4;
    constexpr int messageCount = 2000;
    std::vector<std::vector<int>> ran(threadCount);
    std::vector<std::thread> threads;
    for (int number = 0; number < threadCount; ++number) {
        threads.emplace_back([&list = ran[static_cast<std::size_t>(number)]] {
            for (int i = 0; i < messageCount; ++i) {
                post([&list, i] { list.push_back(i); });
            }
        });
    }
    std::size_t total = 0;
    while (total != std::size_t{threadCount} * messageCount) {
        pollfd descriptor = {mainThread::fileDescriptor(), POLLIN, 0};
        ASSERT_EQ(::poll(&descriptor, 1, 60'000), 1);
        total += drain();
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(isReadable());
    std::vector<int> expected(messageCount);
    for (int i = 0; i < messageCount; ++i) {
        expected[static_cast<std::size_t>(i)] = i;
    }
    for (const std::vector<int> &list : ran) {
        EXPECT_EQ(list, expected);
    }
}

TEST_F(MainThreadTest, SeveralThreadsMayDrain) {
    constexpr std::size_t count = 4000;
    std::atomic<std::size_t> ran = 0;
    for (std::size_t i = 0; i < count; ++i) {
        post([&ran] { ++ran; });
    }
    std::vector<std::thread> threads;
    for (int number = 0; number < 3; ++number) {
        threads.emplace_back([] { (void)drain(); });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(ran, count);
}

TEST_F(MainThreadTest, ASchedulerGetsQueuedAndNewMessagesInOrder) {
    std::vector<Message> taken;
    post(say("queued"));
    mainThread::setScheduler([&taken](Message message) { taken.push_back(std::move(message)); });
    EXPECT_FALSE(isReadable());
    post(say("new"));
    post(Message());
    EXPECT_EQ(drain(), 0U);
    EXPECT_EQ(said_, "");
    ASSERT_EQ(taken.size(), 2U);
    for (const Message &message : taken) {
        message();
    }
    EXPECT_EQ(said_, "queued new ");
}

TEST_F(MainThreadTest, WithoutASchedulerTheQueueIsBack) {
    int passed = 0;
    mainThread::setScheduler([&passed](const Message &) { ++passed; });
    post(say("lost on purpose"));
    mainThread::setScheduler({});
    post(say("a"));
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(passed, 1);
    EXPECT_EQ(said_, "a ");
}

TEST_F(MainThreadTest, ASchedulerMayRunMessagesPostAndReplaceItself) {
    const auto token = std::make_shared<std::string>("first ");
    mainThread::setScheduler([this, token](const Message &message) {
        mainThread::setScheduler([](const Message &next) { next(); });
        said_ += *token; // still there, though this scheduler has been replaced
        message();
        post(say("nested"));
    });
    post(say("a"));
    post(say("b"));
    EXPECT_EQ(said_, "first a nested b ");
    EXPECT_EQ(token.use_count(), 1);
}

TEST_F(MainThreadTest, ASchedulerThatThrowsLosesItsMessageOnly) {
    post(say("a"));
    post(say("b"));
    int calls = 0;
    const auto failing = [&calls](const Message &message) {
        if (++calls == 1) {
            throw std::runtime_error("of the scheduler");
        }
        message();
    };
    EXPECT_THROW(mainThread::setScheduler(failing), std::runtime_error);
    mainThread::setScheduler({});
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(said_, "b ");
}

/// A target that notes what it is sent.
struct Target {
    void take(std::string word) { *heard += word; }
    std::shared_ptr<std::string> heard = std::make_shared<std::string>();
};

TEST_F(MainThreadTest, PerformKeepsTargetAndArgumentUntilTheMessageHasRun) {
    auto target = std::make_shared<Target>();
    auto argument = std::make_shared<int>(1);
    const std::weak_ptr<Target> watchedTarget = target;
    const std::weak_ptr<int> watchedArgument = argument;

    struct Receiver {
        void take(const std::shared_ptr<int> &number) { sum += *number; }
        int sum = 0;
    };
    auto receiver = std::make_shared<Receiver>();
    mainThread::perform(receiver, Selector<std::shared_ptr<int>>(&Receiver::take),
                        std::move(argument));
    const auto heard = target->heard;
    mainThread::perform(std::move(target), Selector<std::string>(&Target::take),
                        std::string("word"));
    EXPECT_FALSE(watchedTarget.expired());
    EXPECT_FALSE(watchedArgument.expired());
    EXPECT_EQ(drain(), 2U);
    EXPECT_EQ(receiver->sum, 1);
    EXPECT_EQ(*heard, "word");
    EXPECT_TRUE(watchedTarget.expired());
    EXPECT_TRUE(watchedArgument.expired());
}

TEST_F(MainThreadTest, PerformWithoutATargetMakesNoMessage) {
    mainThread::perform(nullptr, Selector<std::string>(&Target::take), std::string("word"));
    EXPECT_EQ(drain(), 0U);
}

TEST_F(MainThreadTest, PerformLocksAWeaklyHeldTargetUntilTheMessageHasRun) {
    auto target = std::make_shared<Target>();
    const auto heard = target->heard;
    const std::weak_ptr<Target> watched = target;
    const MessageTarget<std::string> weak(watched, &Target::take);
    mainThread::perform(weak, "queued");
    target = nullptr;
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(*heard, "queued");
    EXPECT_TRUE(watched.expired());
    mainThread::perform(weak, "gone");
    EXPECT_EQ(drain(), 0U);
}

TEST_F(MainThreadTest, ATargetMayPostWhenItGoes) {
    struct Farewell {
        ~Farewell() {
            post([] {});
        }
        void take(int) {}
    };
    mainThread::perform(std::make_shared<Farewell>(), Selector<int>(&Farewell::take), 1);
    EXPECT_EQ(drain(), 1U);
    EXPECT_EQ(drain(), 1U);
}

} // namespace
} // namespace pelluvia
