// SPDX-License-Identifier: MIT

#pragma once

#include <chrono>

namespace pelluvia::host {

/// While it lives, Ctrl-C, SIGTERM, and the end of the terminal (SIGHUP) do not end the program but
/// make a descriptor readable, for good, so that what is under way can be brought to a proper end.
/// (Not the first one only: a terminal that closes sends SIGHUP, and so does the shell in it.)
/// A signal that the program's caller had switched off stays so.
///
/// Once a signal has come, those that follow do nothing any more, also when this object is gone:
/// the program is about to end.
///
/// Threads: one object at a time, on one thread.
class InterruptWatch {
  public:
    InterruptWatch();
    InterruptWatch(const InterruptWatch &) = delete;
    InterruptWatch &operator=(const InterruptWatch &) = delete;
    ~InterruptWatch();

    /// The descriptor; -1 when the system gave none, and signals act as always then.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    /// Whether a signal has come while somebody watched.
    [[nodiscard]] static bool isInterrupted() noexcept;

    /// Whether the signal ends the program after all, when there is no headway for `patience`
    /// behind it: for when it may be waiting for another process that will never do its part. Not
    /// at first. Without effect where nobody watches.
    static void setMayGiveUp(bool mayGiveUp) noexcept;
    /// There is headway: something was read or written. Cheap enough for each point.
    static void noteHeadway() noexcept;

    static constexpr std::chrono::milliseconds patience{600};

  private:
    int descriptor_;
};

} // namespace pelluvia::host
