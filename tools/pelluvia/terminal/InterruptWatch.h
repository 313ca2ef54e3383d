#pragma once

#include <array>
#include <csignal>

namespace pelluvia::host {

/// While it lives, Ctrl-C, SIGTERM, and the end of the terminal (SIGHUP) do not end the program but
/// make a descriptor readable, for good, so that what is under way can be brought to a proper end.
/// (Not the first one only: some programs send it to the process and then once more to its group.)
/// A signal that the program's caller had switched off stays so.
///
/// Threads: one object at a time.
class InterruptWatch {
  public:
    InterruptWatch();
    InterruptWatch(const InterruptWatch &) = delete;
    InterruptWatch &operator=(const InterruptWatch &) = delete;
    ~InterruptWatch();

    /// The descriptor; -1 when the system gave none, and signals act as always then.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

  private:
    static constexpr std::array signals = {SIGINT, SIGTERM, SIGHUP};

    int descriptor_;
    std::array<struct sigaction, signals.size()> former_{};
};

} // namespace pelluvia::host
