// SPDX-License-Identifier: MIT

#pragma once

#include <tests/support/Process.h>

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <string>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace pelluvia::testing {

/// A receiver on a pseudo-terminal, and the program that reads it into a target.
class LiveReceiver {
  public:
    /// Where the program's output goes; -1 is where that of the tests goes. Borrowed.
    struct Streams {
        int output = -1;
        int errors = -1; ///< instead of to this object, which then cannot wait for what is read
    };

    /// The last of the arguments is the target, others are options.
    explicit LiveReceiver(const std::vector<std::string> &arguments)
        : LiveReceiver(arguments, Streams()) {}
    LiveReceiver(const std::vector<std::string> &arguments, const Streams &streams) {
        termios raw{};
        ::cfmakeraw(&raw);
        std::array<char, 100> name{};
        EXPECT_EQ(::openpty(&master_, &slave_, name.data(), &raw, nullptr), 0);
        std::array<int, 2> errors{};
        EXPECT_EQ(::pipe2(errors.data(), O_CLOEXEC), 0);
        std::vector<std::string> words = {PELLUVIA_PROGRAM, "convert",   "--from",
                                          "nmea",           "--verbose", name.data()};
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<char *> pointers;
        for (std::string &word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        child_ = ::fork();
        if (child_ == 0) {
            ::dup2(streams.errors >= 0 ? streams.errors : errors[1], STDERR_FILENO);
            if (streams.output >= 0) {
                ::dup2(streams.output, STDOUT_FILENO);
            }
            ::close(master_);
            ::close(slave_);
            ::execv(PELLUVIA_PROGRAM, pointers.data());
            ::_exit(127);
        }
        ::close(errors[1]);
        errors_ = errors[0];
    }
    LiveReceiver(const LiveReceiver &) = delete;
    LiveReceiver &operator=(const LiveReceiver &) = delete;
    ~LiveReceiver() {
        hangUp();
        ::close(slave_);
        ::close(errors_);
    }

    /// Sends lines and then one that is so long that the program logs it, and waits until it has.
    void sendAndWait(const std::string &lines) {
        send(lines + "$GPTXT," + std::string(90, 'x') + "\r\n");
        while (text_.find("exceeds") == std::string::npos) {
            ASSERT_TRUE(readErrors());
        }
    }
    /// Sends lines.
    void send(const std::string &lines) const {
        ASSERT_EQ(::write(master_, lines.data(), lines.size()), static_cast<ssize_t>(lines.size()));
    }
    void signal(int number) const { EXPECT_EQ(::kill(child_, number), 0); }
    void hangUp() {
        if (master_ >= 0) {
            ::close(master_);
            ::close(slave_);
            master_ = -1;
            slave_ = -1;
        }
    }
    /// Waits for the end.
    Outcome outcome() {
        while (readErrors()) {
        }
        int status = 0;
        EXPECT_EQ(::waitpid(child_, &status, 0), child_);
        return {.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status),
                .output = {},
                .errors = text_};
    }

  private:
    bool readErrors() {
        std::array<char, 1000> buffer{};
        const ssize_t got = ::read(errors_, buffer.data(), buffer.size());
        if (got > 0) {
            text_.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return got > 0;
    }

    int master_ = -1;
    int slave_ = -1;
    int errors_ = -1;
    pid_t child_ = -1;
    std::string text_;
};

} // namespace pelluvia::testing
