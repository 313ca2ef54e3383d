// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPXExporterProgress.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <stop_token>
#include <utility>

namespace pelluvia::host {

/// The progress object of a conversion. It passes on what it is told to a progress bar, if there is
/// one, notes that there is headway, and asks now and then whether the producers are to be stopped,
/// since nobody has use for more.
///
/// Threads: as for any progress object.
class ConversionProgress : public GPXExporterProgress {
  public:
    /// `bar` may be null. `mustStop` is asked until it says yes.
    ConversionProgress(std::shared_ptr<GPXExporterProgress> bar, std::function<bool()> mustStop)
        : bar_(std::move(bar)), mustStop_(std::move(mustStop)) {}

    /// For the producers.
    [[nodiscard]] std::stop_token stopToken() const noexcept { return stop_.get_token(); }

    void gpxStartTransfer(int kind, int count) override;
    void gpxProgress(int kind, int index) override;
    void gpxEndTransfer(int kind) override;

    /// Only every so many items the question is asked.
    static constexpr int stride = 256;

    /// The number of points so far, of all sources.
    [[nodiscard]] std::int64_t points() const noexcept { return points_; }

    /// Asks the question now.
    void stopIfDue();

  private:
    std::shared_ptr<GPXExporterProgress> bar_;
    std::function<bool()> mustStop_;
    std::stop_source stop_;
    std::int64_t points_ = 0;
};

} // namespace pelluvia::host
