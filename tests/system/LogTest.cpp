// SPDX-License-Identifier: MIT

#include <Pelluvia/system/Log.h>

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace pelluvia {
namespace {

/// Collects the lines that are logged while it lives.
class LogTest : public ::testing::Test {
  protected:
    void SetUp() override {
        setLogSink([this](std::string_view line) {
            const std::scoped_lock lock(mutex_);
            lines_.emplace_back(line);
        });
    }
    void TearDown() override { setLogSink({}); }

    std::mutex mutex_;
    std::vector<std::string> lines_;
};

TEST_F(LogTest, ASinkTakesEachLine) {
    logLine("one");
    logLine("");
    logLine("100 % of {} %s %n");
    EXPECT_EQ(lines_, (std::vector<std::string>{"one", "", "100 % of {} %s %n"}));
}

TEST_F(LogTest, ControlCharactersBecomeSpaces) {
    const struct {
        std::string text;
        std::string line;
    } rows[] = {
        {"a\nb", "a b"},
        {"a\r\nb\n", "a  b "},
        {"\x1B[31mred\x7F", " [31mred "},
        {std::string("nul\0end", 7), "nul end"},
        {"C1: \xC2\x9B"
         "31m \xC2\x85 \xC2\x80|",
         "C1:  31m    |"},
        {"\xC2\xA0 \xC3\xA4 \xE2\x82\xAC", "\xC2\xA0 \xC3\xA4 \xE2\x82\xAC"}, // no controls
        {"cut \xC2", "cut \xC2"},
        {"cut \xC2"
         "5",
         "cut \xC2"
         "5"},
    };
    for (const auto &row : rows) {
        lines_.clear();
        logLine(row.text);
        EXPECT_EQ(lines_, std::vector<std::string>{row.line});
    }
}

TEST_F(LogTest, ALongLineIsGivenWhole) {
    const std::string text(1'000'000, 'x');
    logLine(text);
    EXPECT_EQ(lines_.at(0), text);
}

TEST(Log, ASinkMayLogAndReplaceItself) {
    std::vector<std::string> lines;
    setLogSink([&lines](std::string_view line) {
        lines.emplace_back("first: " + std::string(line));
        setLogSink([&lines](std::string_view next) { lines.emplace_back(next); });
        logLine("from inside");
    });
    logLine("one");
    logLine("two");
    setLogSink({});
    EXPECT_EQ(lines, (std::vector<std::string>{"first: one", "from inside", "two"}));
}

TEST(Log, WhatASinkOwnsMayLogWhenItGoes) {
    std::vector<std::string> lines;
    struct Farewell {
        ~Farewell() { logLine("goodbye"); }
    };
    setLogSink([farewell = std::make_shared<Farewell>()](std::string_view) {});
    setLogSink([&lines](std::string_view line) { lines.emplace_back(line); });
    setLogSink({});
    EXPECT_EQ(lines, std::vector<std::string>{"goodbye"});
}

TEST(Log, LosesTheLineOfASinkThatThrows) {
    setLogSink([](std::string_view) { throw std::runtime_error("full"); });
    logLine("lost");
    setLogSink({});
}

TEST(Log, GoesToTheSystemLogWithoutASink) {
    setLogSink({});
    logLine("A test of Pelluvia's log: %s %n"); // must not be taken for a format
}

TEST_F(LogTest, CanBeUsedFromManyThreads) {
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number) {
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                logLine("line");
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(lines_, std::vector<std::string>(2000, "line"));
}

struct LogsInItsDestructor {
    ~LogsInItsDestructor() { logLine("at the end"); }
};

// The object is made before the log is first used, and so goes after everything of the log that the
// end of the process would destroy.
TEST(LogDeathTest, CanBeUsedWhileTheProcessEnds) {
    EXPECT_EXIT(
        {
            static const LogsInItsDestructor last;
            setLogSink([](std::string_view line) {
                (void)std::fprintf(stderr, "%.*s\n", static_cast<int>(line.size()), line.data());
            });
            std::exit(0); // NOLINT(concurrency-mt-unsafe)
        },
        ::testing::ExitedWithCode(0), "at the end");
}

} // namespace
} // namespace pelluvia
