// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEATally.h>
#include <Pelluvia/formats/nmea/read/Epoch.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>

namespace pelluvia::nmea {

/// Shows a live source on a terminal, in one line that is written again and again: how many points
/// there are, what fix the receiver has, where it is, and at what rate points come.
///
///     1284 points, 3D fix, 48.11730 11.51667, 1.0 points/s
///
/// Threads: one at a time.
class LiveView {
  public:
    using Clock = std::chrono::steady_clock;
    using Write = std::function<void(std::string_view bytes)>;

    /// `write` puts bytes on the terminal; `now` tells the time.
    explicit LiveView(Write write, std::function<Clock::time_point()> now = Clock::now);

    /// Shows how things stand, unless the line was written a moment ago.
    void show(const NMEATally &tally, const Epoch &epoch);

    /// Takes the line away, so that something else can be written there.
    void clear();

    /// So often the line is written at most: faster than this, nobody can read it.
    static constexpr auto shortestInterval = std::chrono::milliseconds(100);
    /// The rate is that of so much time.
    static constexpr auto rateSpan = std::chrono::seconds(5);

  private:
    struct Count {
        Clock::time_point time;
        std::int64_t points;
    };

    [[nodiscard]] double rate(Clock::time_point now, std::int64_t points);

    Write write_;
    std::function<Clock::time_point()> now_;
    std::deque<Count> counts_; ///< the oldest first, one for each time the line was written
    bool isShown_ = false;
};

} // namespace pelluvia::nmea
