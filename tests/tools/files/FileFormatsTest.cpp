// SPDX-License-Identifier: MIT

#include <tools/pelluvia/files/FileFormats.h>

#include <tests/support/TemporaryFolder.h>

#include <CLI/CLI.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace pelluvia::host {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

std::string complaintAboutTarget(const std::string &path) {
    try {
        (void)targetFormat(path, "");
    } catch (const CLI::ValidationError &error) {
        return error.what();
    }
    return "none";
}

TEST(FileFormats, AnEndingNamesAFormatInCapitalsOrNot) {
    EXPECT_EQ(targetFormat("ride.gpx", ""), Format::GPX);
    EXPECT_EQ(targetFormat("RIDE.GPX", ""), Format::GPX);
    EXPECT_EQ(targetFormat("ride.gpx.jsonl", ""), Format::Calls);
    EXPECT_EQ(targetFormat("ride.nmea", ""), Format::NMEA);
    EXPECT_EQ(targetFormat("ride.Log", ""), Format::NMEA);
}

TEST(FileFormats, AnOptionGoesBeforeTheEnding) {
    EXPECT_EQ(targetFormat("ride.gpx", "nmea"), Format::NMEA);
    EXPECT_EQ(sourceFormat("ride.log", "calls"), Format::Calls);
    EXPECT_EQ(sourceFormat("-", "nmea"), Format::NMEA);
}

TEST(FileFormats, ADashIsGPX) {
    EXPECT_EQ(sourceFormat("-", ""), Format::GPX);
    EXPECT_EQ(targetFormat("-", ""), Format::GPX);
}

TEST(FileFormats, AnotherEndingIsRefusedWithTheOptionThatHelps) {
    EXPECT_THAT(complaintAboutTarget("ride.fit"),
                AllOf(HasSubstr("ride.fit"), HasSubstr("--to gpx")));
    EXPECT_EQ(complaintAboutTarget("ride.gpx"), "none");
    EXPECT_THROW((void)targetFormat("ridegpx", ""), CLI::ValidationError);
    EXPECT_THROW((void)targetFormat("", ""), CLI::ValidationError);
    EXPECT_THROW((void)sourceFormat("/dev/null", ""), CLI::ValidationError);
}

TEST(FileFormats, ASourceThatCannotBeReadIsLeftForTheReaderToTell) {
    const testing::TemporaryFolder folder;
    EXPECT_EQ(sourceFormat(folder.file("missing.fit"), ""), Format::GPX);
    EXPECT_EQ(sourceFormat(folder.path().string(), ""), Format::GPX);
}

} // namespace
} // namespace pelluvia::host
