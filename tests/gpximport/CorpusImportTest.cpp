// SPDX-License-Identifier: MIT

#include <tests/gpximport/Importing.h>
#include <tests/support/ExpectOrdered.h>
#include <tests/support/TemporaryFolder.h>

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

namespace fs = std::filesystem;
using testing::Imported;
using testing::Importing;

std::vector<fs::path> corpusFiles() {
    std::vector<fs::path> files;
    const fs::path folder = testing::corpusFolder();
    if (!folder.empty()) {
        for (const auto &entry : fs::directory_iterator(folder / "gpx")) {
            files.push_back(entry.path());
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// The number that a transfer of this kind was announced with.
std::size_t announced(const Imported &imported, int kind) {
    const std::string beginning =
        "startTransfer: nil kind: " + std::to_string(kind) + " extra: {count: int ";
    for (const std::string &each : imported.calls) {
        if (each.starts_with(beginning)) {
            return std::stoul(each.substr(beginning.size()));
        }
    }
    return 0;
}

std::size_t number(const Imported &imported, std::string_view beginning) {
    return static_cast<std::size_t>(std::count_if(
        imported.calls.begin(), imported.calls.end(),
        [beginning](const std::string &each) { return each.starts_with(beginning); }));
}

TEST(Corpus, ImportsTwiceWithTheSameCalls) {
    const auto files = corpusFiles();
    if (files.empty()) {
        GTEST_SKIP() << "the corpus is not here";
    }
    for (const fs::path &each : files) {
        const Imported first = Importing().file(each.string());
        const Imported second = Importing().file(each.string());
        EXPECT_EQ(first.calls, second.calls) << each;
        EXPECT_EQ(testing::textOf(first.result), testing::textOf(second.result)) << each;
        EXPECT_EQ(first.log, second.log) << each;
        EXPECT_FALSE(first.calls.empty()) << each;
    }
}

TEST(Corpus, CallsComeInTheirOrder) {
    const auto files = corpusFiles();
    if (files.empty()) {
        GTEST_SKIP() << "the corpus is not here";
    }
    int ordered = 0;
    for (const fs::path &each : files) {
        SCOPED_TRACE(each);
        const testing::LogCapture log;
        const auto checker = std::make_shared<OrderChecker>();
        (void)GPXFileImporter::initWithReceiver(checker)->processFile(each.string());
        EXPECT_GT(checker->calls(), 0U);
        EXPECT_FALSE(checker->hasOpen()) << checker->open();
        // Elements count in any namespace where they end, and only in that of GPX where they begin:
        // without it points come with neither track nor segment.
        const std::string text = testing::readFile(each.string());
        if (text.find(PELLUVIA_GPX10_NAMESPACE) != std::string::npos ||
            text.find(PELLUVIA_GPX11_NAMESPACE) != std::string::npos) {
            testing::expectOrdered(*checker);
            ++ordered;
        }
    }
    EXPECT_GT(ordered, 0);
}

TEST(Corpus, SendsWhatItAnnounced) {
    const auto files = corpusFiles();
    if (files.empty()) {
        GTEST_SKIP() << "the corpus is not here";
    }
    for (const fs::path &each : files) {
        const Imported imported = Importing().file(each.string());
        if (imported.result != nullptr) {
            continue;
        }
        EXPECT_EQ(number(imported, "routePoint:"), announced(imported, 2)) << each;
        EXPECT_EQ(number(imported, "wayPoint:"), announced(imported, 3)) << each;
        // Segments of files without a namespace are not announced to the receiver.
        const std::size_t segments = number(imported, "newTrackSegment");
        EXPECT_TRUE(segments == announced(imported, 1) || segments == 0) << each;
    }
}

} // namespace
} // namespace pelluvia
