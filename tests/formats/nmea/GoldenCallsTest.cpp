// SPDX-License-Identifier: MIT

#include <tests/support/ExpectOrdered.h>
#include <tests/support/SpyReceiver.h>
#include <tests/support/TemporaryFolder.h>

#include <Pelluvia/formats/nmea/NMEADriver.h>

#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>

/// \file
/// A log with something of everything is read and its calls compared, byte for byte, with the
/// `.calls.txt` beside it. With PELLUVIA_WRITE_GOLDEN=1 in the environment the expected text is
/// written instead; look at every changed line before you commit it.

namespace pelluvia {
namespace {

TEST(GoldenCalls, ComeInTheirOrder) {
    OrderChecker checker;
    NMEADriver driver(checker);
    EXPECT_EQ(driver.processFile(testing::fixture("nmea/all-sentences.nmea")), nullptr);
    testing::expectOrdered(checker);
}

TEST(GoldenCalls, OfALogWithSomethingOfEverythingAreTheExpectedOnes) {
    testing::SpyReceiver spy;
    NMEADriver driver(spy);
    EXPECT_EQ(driver.processFile(testing::fixture("nmea/all-sentences.nmea")), nullptr);
    std::string text;
    for (const std::string &call : spy.calls) {
        text += call + "\n";
    }
    text += textOf(driver.tally()) + "\n";
    const std::string golden = testing::fixture("nmea/all-sentences.calls.txt");
    // Read in a single-threaded test program.
    if (std::getenv("PELLUVIA_WRITE_GOLDEN") != nullptr) { // NOLINT(concurrency-mt-unsafe)
        testing::writeFile(golden, text);
        return;
    }
    EXPECT_EQ(text, testing::readFile(golden));
}

} // namespace
} // namespace pelluvia
