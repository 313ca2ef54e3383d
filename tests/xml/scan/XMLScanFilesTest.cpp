// SPDX-License-Identifier: MIT

#include <Pelluvia/system/Log.h>

#include <cstddef>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <tests/support/Damage.h>
#include <tests/support/GPXFiles.h>
#include <tests/support/LogCapture.h>
#include <tests/support/TemporaryFolder.h>
#include <tests/support/XMLCase.h>
#include <tests/support/XMLEngineComparison.h>
#include <vector>

namespace pelluvia {
namespace {

using testing::XMLEngineComparison;

TEST(XMLScanFiles, AreReadAlikeByBothEnginesWithAnyWindow) {
    const testing::LogCapture quiet;
    std::size_t scanned = 0;
    std::size_t wellFormed = 0;
    for (const auto &file : testing::gpxFiles()) {
        const std::string text = testing::readFile(file);
        for (const std::size_t windowSize : testing::someWindowSizes) {
            const XMLEngineComparison comparison(text, windowSize);
            EXPECT_EQ(comparison.difference(), "") << file << " window: " << windowSize;
            if (windowSize == xml::scan::ScanEngine::usualWindowSize) {
                scanned += comparison.isScanned() ? 1U : 0U;
                wellFormed += comparison.isWellFormed() ? 1U : 0U;
            }
        }
    }
    // All but those with a document type, of which there are two.
    EXPECT_GE(scanned + 2, wellFormed);
    EXPECT_GT(scanned, 10U);
}

TEST(XMLScanFiles, AreReadAlikeWhenDamaged) {
    const testing::LogCapture quiet;
    std::vector<std::string> texts;
    for (const auto &file : testing::gpxFiles()) {
        texts.push_back(testing::readFile(file));
    }
    testing::Damage damage(1);
    std::size_t scanned = 0;
    for (std::size_t i = 0; i < testing::damagedDocuments; ++i) {
        const std::string text = damage.apply(damage.cut(texts[i % texts.size()], 2000));
        const std::size_t windowSize =
            i % 2 == 0 ? xml::scan::ScanEngine::usualWindowSize : 17 + damage.below(600);
        const XMLEngineComparison comparison(text, windowSize);
        ASSERT_EQ(comparison.difference(), "") << "window: " << windowSize << "\n" << text;
        scanned += comparison.isScanned() ? 1U : 0U;
    }
    EXPECT_GT(scanned, testing::damagedDocuments / 50);
}

} // namespace
} // namespace pelluvia
