// SPDX-License-Identifier: MIT

#include <tools/pelluvia/commands/ConversionProgress.h>

#include <Pelluvia/model/TransferKind.h>

#include <gtest/gtest.h>
#include <memory>
#include <stop_token>

namespace pelluvia::host {
namespace {

/// Keeps what it is told last.
class LastProgress : public GPXExporterProgress {
  public:
    void gpxStartTransfer(int /*kind*/, int count) override { started = count; }
    void gpxProgress(int /*kind*/, int index) override { reached = index; }
    void gpxEndTransfer(int kind) override { ended = kind; }

    int started = 0;
    int reached = 0;
    int ended = 0;
};

TEST(ConversionProgress, TellsTheBar) {
    const auto bar = std::make_shared<LastProgress>();
    ConversionProgress progress(bar, [] { return false; });
    progress.gpxStartTransfer(transferKind::tracks, 7);
    progress.gpxProgress(transferKind::tracks, 3);
    progress.gpxEndTransfer(transferKind::tracks);
    EXPECT_EQ(progress.points(), 1);
    EXPECT_EQ(bar->started, 7);
    EXPECT_EQ(bar->reached, 3);
    EXPECT_EQ(bar->ended, transferKind::tracks);
    EXPECT_FALSE(progress.stopToken().stop_requested());
}

TEST(ConversionProgress, StopsTheProducersWithinAFewItems) {
    bool mustStop = false;
    ConversionProgress progress(nullptr, [&mustStop] { return mustStop; });
    const std::stop_token token = progress.stopToken();
    progress.gpxStartTransfer(transferKind::tracks, 7);
    progress.gpxProgress(transferKind::tracks, ConversionProgress::stride);
    EXPECT_FALSE(token.stop_requested());
    mustStop = true;
    progress.gpxProgress(transferKind::tracks, ConversionProgress::stride + 1);
    EXPECT_FALSE(token.stop_requested());
    progress.gpxProgress(transferKind::tracks, 2 * ConversionProgress::stride);
    EXPECT_TRUE(token.stop_requested());
}

TEST(ConversionProgress, StopsTheProducersAtTheNextTransfer) {
    ConversionProgress progress(nullptr, [] { return true; });
    progress.gpxStartTransfer(transferKind::waypoints, 0);
    EXPECT_TRUE(progress.stopToken().stop_requested());
}

} // namespace
} // namespace pelluvia::host
