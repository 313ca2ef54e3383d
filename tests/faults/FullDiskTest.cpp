// SPDX-License-Identifier: MIT

#include <tests/faults/FaultyRun.h>

#include <gtest/gtest.h>
#include <string>

/// \file
/// When nothing more can be written, nothing more is read. How much is read shows in whether a late
/// read is made at all; it is let come short, which nobody minds.

namespace pelluvia {
namespace {

using testing::FaultyOutcome;
using testing::TemporaryFolder;

class FullDisk : public testing::FaultTest<::testing::Test> {
  protected:
    /// `lateRead` is the number of a read that is made only for the whole source.
    static void expectEndsEarly(const std::string &source, int lateRead) {
        const auto convert = [&](const char *target) {
            return testing::runWithFault(
                {.arguments = {"convert", "--only", "tracks", "--to", "gpx", source, target}},
                "read:short:" + std::to_string(lateRead));
        };
        const FaultyOutcome whole = convert("/dev/null");
        EXPECT_EQ(whole.status, 0);
        EXPECT_TRUE(whole.wasHit) << "the source is too short to show anything";
        const FaultyOutcome full = convert("/dev/full");
        EXPECT_EQ(full.status, 3);
        EXPECT_EQ(full.errors, "pelluvia: cannot write /dev/full: No space left on device\n");
        EXPECT_FALSE(full.wasHit);
    }

    TemporaryFolder folder;
};

TEST_F(FullDisk, EndsTheImportOfADocument) {
    // It is read twice: counted, then converted.
    std::string text = R"(<gpx xmlns="http://www.topografix.com/GPX/1/1"><trk><trkseg>)";
    for (int i = 0; i < 60000; ++i) {
        text += R"(<trkpt lat="47.1" lon="8.5"><ele>400</ele></trkpt>)";
    }
    expectEndsEarly(folder.write("source.gpx", text + "</trkseg></trk></gpx>"), 47);
}

TEST_F(FullDisk, EndsTheReplayOfALog) {
    std::string text = R"({"call":"startTransfer:kind:extra:","kind":1,"extra":null})"
                       "\n";
    for (int i = 0; i < 20000; ++i) {
        text += R"({"call":"trackPoint:extra:","point":{"latitude":1,"longitude":2,"altitude":3,)"
                R"("time":4,"test":5},"extra":null})"
                "\n";
    }
    expectEndsEarly(folder.write("source.jsonl", text), 30);
}

} // namespace
} // namespace pelluvia
