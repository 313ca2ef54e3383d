// SPDX-License-Identifier: MIT

#pragma once

#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include <pty.h>
#include <sys/eventfd.h>
#include <termios.h>
#include <unistd.h>

namespace pelluvia::testing {

/// A receiver on a serial line, played on a pseudo-terminal. What is sent can be read on the device
/// at `path`.
class PlayedReceiver {
  public:
    PlayedReceiver() {
        // A line that changes nothing, so that what is sent before anybody listens is not changed.
        termios raw{};
        ::cfmakeraw(&raw);
        EXPECT_EQ(::openpty(&master_, &slave_, nullptr, &raw, nullptr), 0);
        path_ = ::ttyname(slave_); // NOLINT(concurrency-mt-unsafe): no other thread yet
    }
    PlayedReceiver(const PlayedReceiver &) = delete;
    PlayedReceiver &operator=(const PlayedReceiver &) = delete;
    ~PlayedReceiver() {
        hangUp();
        ::close(slave_);
    }

    [[nodiscard]] const std::string &path() const noexcept { return path_; }
    /// The device's own end, for a look at its settings.
    [[nodiscard]] int device() const noexcept { return slave_; }

    void send(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = ::write(master_, bytes.data(), bytes.size());
            ASSERT_GT(written, 0);
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
    }
    /// The line is cut; nothing can be sent any more.
    void hangUp() {
        if (master_ >= 0) {
            ::close(master_);
            master_ = -1;
        }
    }

  private:
    int master_ = -1;
    int slave_ = -1;
    std::string path_;
};

/// A descriptor that becomes readable when somebody wants to stop.
class WakeUp {
  public:
    WakeUp() : descriptor_(::eventfd(0, EFD_CLOEXEC)) { EXPECT_GE(descriptor_, 0); }
    WakeUp(const WakeUp &) = delete;
    WakeUp &operator=(const WakeUp &) = delete;
    ~WakeUp() { ::close(descriptor_); }

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    void stop() const { EXPECT_EQ(::eventfd_write(descriptor_, 1), 0); }

  private:
    int descriptor_;
};

} // namespace pelluvia::testing
