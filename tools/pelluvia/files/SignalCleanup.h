// SPDX-License-Identifier: MIT

#pragma once

#include <csignal>
#include <string>

/// \file
/// What must be tidied up when a signal ends the process. SIGKILL, and signals of a program that
/// has gone wrong, tidy nothing up.

namespace pelluvia::host {

/// Holds the signals back that would end the process, while it lives.
class EndingSignalsBlocked {
  public:
    EndingSignalsBlocked() noexcept;
    EndingSignalsBlocked(const EndingSignalsBlocked &) = delete;
    EndingSignalsBlocked &operator=(const EndingSignalsBlocked &) = delete;
    ~EndingSignalsBlocked();

  private:
    sigset_t before_{};
};

/// A file that is removed when a signal ends the process while this object lives. A signal that is
/// ignored, or handled by somebody else, stays so.
///
/// A process has few at a time, `most`, since a signal handler must find them. Threads: none.
class RemovalOnSignal {
  public:
    static constexpr std::size_t most = 2;

    /// Whether there is room for one more, of a path of this size.
    [[nodiscard]] static bool hasRoomFor(const std::string &path) noexcept;

    /// Only where there is room. Make it while the signals are blocked in which the file is made.
    explicit RemovalOnSignal(const std::string &path) noexcept;
    RemovalOnSignal(const RemovalOnSignal &) = delete;
    RemovalOnSignal &operator=(const RemovalOnSignal &) = delete;
    ~RemovalOnSignal();

  private:
    char *path_; ///< the handler's copy
};

} // namespace pelluvia::host
