// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/NMEADriver.h>

#include <tests/formats/nmea/Logs.h>
#include <tests/support/ExpectOrdered.h>
#include <tests/support/TemporaryFolder.h>

#include <Pelluvia/system/Log.h>

#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <string>
#include <tests/support/Chance.h>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::CallList;
using pelluvia::testing::corpusFolder;
using pelluvia::testing::decode;
using pelluvia::testing::readFile;

/// Sentences in these logs are longer than the format allows, which is of no interest here.
class Corpus : public ::testing::Test {
  protected:
    void SetUp() override {
        if (!std::filesystem::is_directory(folder())) {
            GTEST_SKIP() << "no receiver logs here";
        }
        setLogSink([](std::string_view) {});
    }
    void TearDown() override { setLogSink({}); }
    static std::filesystem::path folder() { return corpusFolder() / "nmea"; }
};

struct Expected {
    std::int64_t points;
    std::int64_t waypoints;
    std::int64_t badChecksum;
};

TEST_F(Corpus, HoldsTheSamePointsAsEver) {
    // Counted in the logs with grep: the times at which a receiver says that it has a fix.
    const std::map<std::string, Expected> expected = {
        {"ais-receiver-with-gps.nmea", {16, 0, 0}},
        {"amod-logger-wpl.nmea", {623, 1, 0}},
        {"bad-checksum.nmea", {1, 0, 1}},
        {"bad-checksums-firefly.nmea", {23, 0, 23}},
        {"beidou-bd-talker.nmea", {5, 0, 0}},
        {"compass-only.nmea", {0, 0, 0}},
        {"flarm-south-west.nmea", {28, 0, 0}},
        {"galileo-ga-lc79d.nmea", {29, 0, 0}},
        {"garmin-gps15-proprietary.nmea", {378, 0, 0}},
        {"glonass-gl-gn.nmea", {9, 0, 0}},
        {"gn-long-decimals.nmea", {120, 0, 0}},
        {"magellan-pmgntrk.nmea", {0, 0, 0}},
        {"many-sentence-types.nmea", {1, 1, 0}},
        {"no-checksums-south.nmea", {2, 0, 0}},
        {"ship-ais-heading.nmea", {12, 0, 0}},
        {"south-west-gll-vtg.nmea", {0, 0, 0}},
        {"trimble-r2-gns-gst.nmea", {34, 0, 0}},
    };
    for (const auto &[name, counts] : expected) {
        CallList list;
        NMEADriver driver(list);
        EXPECT_EQ(driver.processFile((folder() / name).string()), nullptr) << name;
        EXPECT_EQ(driver.tally().points, counts.points) << name;
        EXPECT_EQ(driver.tally().waypoints, counts.waypoints) << name;
        EXPECT_EQ(driver.tally().badChecksum, counts.badChecksum) << name;
    }
}

TEST_F(Corpus, CallsComeInTheirOrder) {
    for (const auto &entry : std::filesystem::directory_iterator(folder())) {
        SCOPED_TRACE(entry.path());
        OrderChecker checker;
        NMEADriver driver(checker);
        EXPECT_EQ(driver.processFile(entry.path().string()), nullptr);
        pelluvia::testing::expectOrdered(checker);
    }
}

TEST_F(Corpus, IsReadTheSameWhateverTheSizeOfThePieces) {
    for (const auto &entry : std::filesystem::directory_iterator(folder())) {
        const std::string log = readFile(entry.path());
        const auto whole = decode(log);
        pelluvia::testing::CallList list;
        Decoder decoder(list, {});
        LineSplitter splitter;
        const auto use = [&](std::string_view line, LineEnd end) { decoder.addLine(line, end); };
        for (std::size_t i = 0; i < log.size(); i += 3) {
            splitter.feed(std::string(log, i, 3), use);
        }
        splitter.finish(use);
        decoder.finish();
        EXPECT_EQ(list.calls, whole.list.calls) << entry.path();
    }
}

TEST_F(Corpus, CanBeDamagedAtWill) {
    testing::Chance random(3);
    for (const auto &entry : std::filesystem::directory_iterator(folder())) {
        const std::string log = readFile(entry.path()).substr(0, 20'000);
        for (int round = 0; round < 10; ++round) {
            std::string damaged = log;
            for (int hit = 0; hit < 200; ++hit) {
                damaged[random() % damaged.size()] = static_cast<char>(random() % 256);
            }
            for (const auto &seen : decode(damaged).list.trackPoints) {
                ASSERT_LE(std::abs(seen.point.latitude), 90.0);
                ASSERT_LE(std::abs(seen.point.longitude), 180.0);
            }
        }
    }
}

} // namespace
} // namespace pelluvia::nmea
