// SPDX-License-Identifier: MIT

#include <Pelluvia/model/GPXNamespaces.h>

#include <gtest/gtest.h>

namespace pelluvia {
namespace {

TEST(GPXNamespaces, AreTheOnesInFiles) {
    EXPECT_STREQ(PELLUVIA_GPX10_NAMESPACE, "http://www.topografix.com/GPX/1/0");
    EXPECT_STREQ(PELLUVIA_GPX11_NAMESPACE, "http://www.topografix.com/GPX/1/1");
    EXPECT_STREQ(PELLUVIA_GPX11_SCHEMA, "http://www.topografix.com/GPX/1/1/gpx.xsd");
    EXPECT_STREQ(PELLUVIA_GEOCACHE_NAMESPACE, "http://www.groundspeak.com/cache/1/0");
    EXPECT_STREQ(PELLUVIA_GPXX_NAMESPACE, "http://www.garmin.com/xmlschemas/GpxExtensions/v3");
    EXPECT_STREQ(PELLUVIA_GPXTPX1_NAMESPACE,
                 "http://www.garmin.com/xmlschemas/TrackPointExtension/v1");
    EXPECT_STREQ(PELLUVIA_GPXTPX2_NAMESPACE,
                 "http://www.garmin.com/xmlschemas/TrackPointExtension/v2");
}

// The host of our own extensions is a setting of the build.
TEST(GPXNamespaces, OurOwnLiesUnderTheChosenHost) {
    EXPECT_STREQ(PELLUVIA_GPXDATA_NAMESPACE, "http://" PELLUVIA_GPXDATA_HOST "/XML/GPXDATA/1/0");
    EXPECT_STREQ(PELLUVIA_GPXDATA_SCHEMA, "http://" PELLUVIA_GPXDATA_HOST "/Schemas/gpxdata10.xsd");
}

} // namespace
} // namespace pelluvia
