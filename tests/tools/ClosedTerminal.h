// SPDX-License-Identifier: MIT

#pragma once

#include <array>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>
#include <vector>

namespace pelluvia::testing {

/// A terminal with a shell in it that runs a program, until it is closed. Then the program gets
/// SIGHUP twice, as usual: from the shell, and from the system when the shell is gone.
class ClosedTerminal {
  public:
    /// Runs the program, whose standard input comes from `send`.
    explicit ClosedTerminal(std::vector<std::string> words) {
        std::vector<char *> pointers;
        for (std::string &word : words) {
            pointers.push_back(word.data());
        }
        pointers.push_back(nullptr);
        int terminal = -1;
        EXPECT_EQ(::openpty(&master_, &terminal, nullptr, nullptr, nullptr), 0);
        EXPECT_EQ(::fcntl(master_, F_SETFD, FD_CLOEXEC), 0);
        EXPECT_EQ(::pipe2(input_.data(), O_CLOEXEC), 0);
        EXPECT_EQ(::pipe(alive_.data()), 0);
        EXPECT_EQ(::fcntl(alive_[0], F_SETFD, FD_CLOEXEC), 0);
        shell_ = ::fork();
        if (shell_ == 0) {
            ::close(master_);
            ::setsid();
            ::ioctl(terminal, TIOCSCTTY, 0);
            runShell(terminal, pointers.data());
        }
        ::close(terminal);
        ::close(alive_[1]);
    }
    ClosedTerminal(const ClosedTerminal &) = delete;
    ClosedTerminal &operator=(const ClosedTerminal &) = delete;
    /// Waits for the program's end.
    ~ClosedTerminal() {
        close();
        ::waitpid(shell_, nullptr, 0);
        char none = 0;
        EXPECT_EQ(::read(alive_[0], &none, 1), 0);
        ::close(alive_[0]);
        ::close(input_[0]);
        ::close(input_[1]);
    }

    void send(const std::string &text) const {
        ASSERT_EQ(::write(input_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    /// Waits until the terminal shows a text.
    void waitFor(const std::string &text) const {
        std::string shown;
        std::array<char, 1000> buffer{};
        while (shown.find(text) == std::string::npos) {
            const ssize_t got = ::read(master_, buffer.data(), buffer.size());
            ASSERT_GT(got, 0) << shown;
            shown.append(buffer.data(), static_cast<std::size_t>(got));
        }
    }
    void close() {
        if (master_ >= 0) {
            ::close(master_);
            master_ = -1;
        }
    }

  private:
    /// What the signal handler of the shell, a process of its own, passes the signal on to.
    static inline volatile pid_t job = -1;

    static void passOn(int signal) {
        ::kill(job, signal);
        ::_exit(0);
    }

    [[noreturn]] void runShell(int terminal, char *const *words) const {
        // Not before it can be passed on.
        sigset_t hangUp;
        sigset_t before;
        ::sigemptyset(&hangUp);
        ::sigaddset(&hangUp, SIGHUP);
        ::sigprocmask(SIG_BLOCK, &hangUp, &before);
        job = ::fork();
        if (job == 0) {
            ::sigprocmask(SIG_SETMASK, &before, nullptr);
            ::dup2(input_[0], STDIN_FILENO);
            ::dup2(terminal, STDERR_FILENO);
            ::execv(words[0], words);
            ::_exit(127);
        }
        ::close(alive_[1]);
        struct sigaction passing = {};
        passing.sa_handler = passOn;
        ::sigaction(SIGHUP, &passing, nullptr);
        ::sigprocmask(SIG_SETMASK, &before, nullptr);
        for (;;) {
            ::pause();
        }
    }

    int master_ = -1;
    std::array<int, 2> input_{};
    std::array<int, 2> alive_{}; ///< the writing end stays open as long as the program
    pid_t shell_ = -1;
};

} // namespace pelluvia::testing
