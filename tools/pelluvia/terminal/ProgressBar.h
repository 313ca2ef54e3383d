// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/model/ReadingProgress.h>

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace pelluvia::host {

/// Shows the progress of a receiver in one line of a terminal, redrawn a few times a second and
/// gone at the end.
///
/// A bar where the source tells how far it is read, or the number of items is known; a plain number
/// where neither is, or the number turns out wrong: of a file's tracks the number of segments is
/// announced while points are counted.
///
/// Threads: as for any progress object.
class ProgressBar : public GPXExporterProgress {
  public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;
    using Write = std::function<void(std::string_view text)>;

    /// `write` puts text on the terminal.
    ProgressBar(Write write, Clock clock) : write_(std::move(write)), clock_(std::move(clock)) {}

    /// Asked, while a source is read, how far that is; null when no source is, or it cannot tell.
    using Reading = std::function<ReadingProgress()>;
    void setReading(Reading reading) { reading_ = std::move(reading); }

    void gpxStartTransfer(int kind, int count) override;
    void gpxProgress(int kind, int index) override;
    void gpxEndTransfer(int kind) override;

    /// Takes the line away; the next progress brings it back.
    void clear();
    /// Takes the line away and leaves it to something else until told otherwise.
    void setMuted(bool isMuted);

    /// Only every so many items the clock is looked at.
    static constexpr int stride = 256;
    /// The shortest time between two drawings.
    static constexpr std::chrono::milliseconds interval{100};

  private:
    void draw(int kind, int index);
    [[nodiscard]] std::string extent(int kind, int index) const;

    Write write_;
    Clock clock_;
    Reading reading_;
    int count_ = 0;
    bool isShown_ = false;
    bool isMuted_ = false;
    std::chrono::steady_clock::time_point lastDrawn_;
};

} // namespace pelluvia::host
