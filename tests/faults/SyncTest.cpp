// SPDX-License-Identifier: MIT

#include <tests/faults/FaultyRun.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

/// \file
/// When the command waits for the disk. Whether it does shows where that fails.

namespace pelluvia {
namespace {

using testing::FaultyOutcome;
using ::testing::HasSubstr;
using testing::readFile;
using testing::TemporaryFolder;

class Syncing : public testing::FaultTest<::testing::Test> {
  protected:
    /// Converts a ride with the options to a target in the folder, with a fault.
    [[nodiscard]] FaultyOutcome convert(std::vector<std::string> options, const std::string &target,
                                        const std::string &fault) const {
        options.insert(options.begin(), "convert");
        options.insert(options.end(), {testing::fixture("tools/ride.gpx"), target});
        return testing::runWithFault(
            {.arguments = std::move(options), .folder = folder.path().string()}, fault);
    }

    TemporaryFolder folder;
    std::string old = folder.write("old.gpx", "old");
};

TEST_F(Syncing, AFileIsReplacedOnlyByOneThatTheDiskHas) {
    const FaultyOutcome outcome = convert({"--force"}, "old.gpx", "sync:EIO:1");
    EXPECT_TRUE(outcome.wasHit);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "pelluvia: cannot write old.gpx: Input/output error\n");
    EXPECT_EQ(readFile(old), "old");
}

TEST_F(Syncing, TheFolderOfAReplacedFileIsSyncedAfterwards) {
    const FaultyOutcome outcome = convert({"--force"}, "old.gpx", "sync:EIO:2");
    EXPECT_TRUE(outcome.wasHit);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "pelluvia: cannot write old.gpx: Input/output error\n"
                              "pelluvia: old.gpx is complete\n");
    EXPECT_THAT(readFile(old), HasSubstr("</gpx>"));
}

TEST_F(Syncing, ANewFileIsSyncedOnlyWhenTheUserSaysSo) {
    EXPECT_FALSE(convert({}, "a.gpx", "sync:EIO:1").wasHit);
    EXPECT_FALSE(convert({"--force"}, "b.gpx", "sync:EIO:1").wasHit);
    for (const char *fault : {"sync:EIO:1", "sync:EIO:2"}) { // the file, its folder
        const FaultyOutcome outcome = convert({"--sync"}, "c.gpx", fault);
        EXPECT_TRUE(outcome.wasHit);
        EXPECT_EQ(outcome.status, 3);
    }
}

TEST_F(Syncing, WhatCannotBeSyncedIsNoFailure) {
    EXPECT_EQ(convert({"--sync", "--to", "gpx"}, "/dev/null", "").status, 0);
    EXPECT_EQ(convert({"--sync", "--to", "gpx"}, "-", "").status, 0);
}

TEST_F(Syncing, ASummaryThatCannotBeKeptIsSaidBesideTheTarget) {
    // The third is that of the summary, behind the target's own two.
    folder.write("old.json", "old");
    const FaultyOutcome outcome =
        convert({"--force", "--telemetry", "old.json"}, "old.gpx", "sync:EIO:3");
    EXPECT_TRUE(outcome.wasHit);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.errors, "pelluvia: cannot write old.json: Input/output error\n"
                              "pelluvia: old.gpx is complete\n");
    EXPECT_EQ(readFile(folder.file("old.json")), "old");
}

} // namespace
} // namespace pelluvia
