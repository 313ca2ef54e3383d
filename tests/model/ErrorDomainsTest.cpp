// SPDX-License-Identifier: MIT

#include <Pelluvia/model/ErrorDomains.h>

#include <gtest/gtest.h>

namespace pelluvia {
namespace {

TEST(ErrorDomains, AndCodesNeverChange) {
    EXPECT_EQ(gpsPluginErrorDomain, "com.Quorvel.GPSPlugin.ErrorDomain");
    EXPECT_EQ(gpsPluginFailure, -1);
    EXPECT_EQ(gpsPluginStructuralError, -3);
    EXPECT_EQ(gpxFileImporterErrorDomain, "com.Quorvel.GPXFileImporter");
    EXPECT_EQ(gpxFileImporterStructuralError, 1);
}

} // namespace
} // namespace pelluvia
