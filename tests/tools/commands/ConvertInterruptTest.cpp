// SPDX-License-Identifier: MIT

#include <tests/tools/ClosedTerminal.h>
#include <tests/tools/LiveReceiver.h>
#include <tests/tools/Pelluvia.h>

#include <array>
#include <chrono>
#include <csignal>
#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <utility>

/// \file
/// What a live recording becomes when it is ended from outside.

namespace pelluvia {
namespace {

using testing::ClosedTerminal;
using ::testing::HasSubstr;
using testing::LiveReceiver;
using testing::Outcome;
using testing::readFile;
using testing::TemporaryFolder;

const std::string fix = "$GPRMC,120000,A,4807.038,N,01131.000,E,10.0,,150824,,,A\r\n";
const std::string nextFix = "$GPRMC,120001,A,4808.038,N,01131.000,E,10.0,,150824,,,A\r\n";

/// A small pipe.
class Pipe {
  public:
    Pipe() {
        EXPECT_EQ(::pipe2(ends_.data(), O_CLOEXEC), 0);
        EXPECT_GE(::fcntl(ends_[1], F_SETPIPE_SZ, size), 0);
    }
    Pipe(const Pipe &) = delete;
    Pipe &operator=(const Pipe &) = delete;
    ~Pipe() {
        ::close(ends_[0]);
        ::close(ends_[1]);
    }
    [[nodiscard]] int input() const { return ends_[1]; }
    /// Takes all the room that there is.
    void fill() const {
        const std::string bytes(size, '-');
        EXPECT_EQ(::write(ends_[1], bytes.data(), bytes.size()), size);
    }
    /// What is read until it holds a text; a failed expectation when that does not come.
    [[nodiscard]] std::string readUpTo(const std::string &text) const {
        constexpr int tooLong = 20'000; // milliseconds, of which none is needed
        std::string all;
        std::array<char, size> buffer{};
        pollfd readable = {ends_[0], POLLIN, 0};
        while (all.find(text) == std::string::npos) {
            if (::poll(&readable, 1, tooLong) != 1) {
                ADD_FAILURE() << text << " does not come, only\n" << all;
                break;
            }
            const ssize_t got = ::read(ends_[0], buffer.data(), buffer.size());
            all.append(buffer.data(), static_cast<std::size_t>(got));
        }
        return all;
    }

  private:
    static constexpr int size = 4096;
    std::array<int, 2> ends_{};
};

TEST(ConvertInterrupt, ASecondSignalCostsNothing) {
    for (int milliseconds = 0; milliseconds < 20; milliseconds += 2) {
        const TemporaryFolder folder;
        const std::string target = folder.file("out.gpx");
        LiveReceiver receiver({target});
        receiver.sendAndWait(fix);
        receiver.signal(SIGHUP);
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
        receiver.signal(milliseconds % 4 == 0 ? SIGTERM : SIGHUP);
        const Outcome outcome = receiver.outcome();
        EXPECT_EQ(outcome.status, 0) << milliseconds;
        const std::string document = readFile(target);
        EXPECT_THAT(document, HasSubstr("<time>2024-08-15T12:00:00Z</time>"));
        EXPECT_TRUE(document.ends_with("</gpx>\n")) << document;
    }
}

TEST(ConvertInterrupt, ATerminalThatClosesCostsNothing) {
    for (int i = 0; i < 10; ++i) {
        const TemporaryFolder folder;
        const std::string target = folder.file("out.gpx");
        {
            ClosedTerminal terminal(
                {PELLUVIA_PROGRAM, "convert", "--from", "nmea", "--verbose", "-", target});
            // A line that is so long that the program tells of it.
            terminal.send(fix + "$GPTXT," + std::string(90, 'x') + "\r\n");
            terminal.waitFor("exceeds");
            terminal.close();
        }
        const std::string document = readFile(target);
        EXPECT_THAT(document, HasSubstr("<time>2024-08-15T12:00:00Z</time>"));
        EXPECT_TRUE(document.ends_with("</gpx>\n")) << document;
    }
}

TEST(ConvertInterrupt, ASignalEndsAProgramThatWaitsForAReaderOfItsOutput) {
    const Pipe output;
    output.fill();
    LiveReceiver receiver({"-"}, {.output = output.input()});
    receiver.sendAndWait(fix);
    receiver.signal(SIGTERM);
    EXPECT_EQ(receiver.outcome().status, -SIGTERM);
}

TEST(ConvertInterrupt, MessagesThatNobodyReadsDoNotHoldUpTheEnd) {
    const Pipe output;
    const Pipe errors;
    errors.fill();
    LiveReceiver receiver({"--to", "calls", "-"},
                          {.output = output.input(), .errors = errors.input()});
    receiver.send(fix + nextFix);
    (void)output.readUpTo("\"time\":1723723200");
    receiver.signal(SIGTERM);
    EXPECT_EQ(receiver.outcome().status, 0);
    EXPECT_THAT(output.readUpTo("endTransfer:"), HasSubstr("\"time\":1723723201"));
}

TEST(ConvertInterrupt, WhatIsKnownIsWrittenWhenTheSourcePauses) {
    for (const auto &[format, known] :
         {std::pair("calls", "11.51666"), std::pair("gpx", "11.51666"),
          std::pair("nmea", "$GPRMC,120000.00,A")}) {
        const Pipe output;
        LiveReceiver receiver({"--to", format, "-"}, {.output = output.input()});
        // The second line tells that the first point is complete.
        receiver.send(fix + nextFix);
        (void)output.readUpTo(known);
        receiver.signal(SIGINT);
        EXPECT_EQ(receiver.outcome().status, 0);
    }
}

} // namespace
} // namespace pelluvia
