// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <cstddef>
#include <gtest/gtest.h>
#include <set>
#include <string_view>

namespace pelluvia {
namespace {

using namespace gpxVocabulary;

TEST(GPXVocabulary, HoldsEveryNameOnce) {
    EXPECT_EQ(std::set<std::string_view>(names.begin(), names.end()).size(), names.size());
    EXPECT_EQ(std::set<std::string_view>(namespaces.begin(), namespaces.end()).size(),
              namespaces.size());
}

TEST(GPXVocabulary, NumbersNamesByTheirPlace) {
    EXPECT_EQ(names[static_cast<std::size_t>(Name::Wpt) - 1], "wpt");
    EXPECT_EQ(names[static_cast<std::size_t>(Name::GarminProximity) - 1], "Proximity");
    EXPECT_EQ(names[static_cast<std::size_t>(Name::Proximity) - 1], "proximity");
    EXPECT_EQ(names[static_cast<std::size_t>(Name::EncodedHints) - 1], "encoded_hints");
    EXPECT_EQ(names[static_cast<std::size_t>(Name::Kind) - 1], "kind");
}

TEST(GPXVocabulary, HoldsTheNamespacesAsTheirPublishersDeclareThem) {
    EXPECT_EQ(namespaces[static_cast<std::size_t>(Namespace::GPX10) - 1],
              "http://www.topografix.com/GPX/1/0");
    EXPECT_EQ(namespaces[static_cast<std::size_t>(Namespace::GPX11) - 1],
              "http://www.topografix.com/GPX/1/1");
    EXPECT_EQ(namespaces[static_cast<std::size_t>(Namespace::GarminExtensions) - 1],
              "http://www.garmin.com/xmlschemas/GpxExtensions/v3");
    EXPECT_EQ(namespaces[static_cast<std::size_t>(Namespace::GarminTrackPoint) - 1],
              "http://www.garmin.com/xmlschemas/TrackPointExtension/v1");
    EXPECT_EQ(namespaces[static_cast<std::size_t>(Namespace::Geocache) - 1],
              "http://www.groundspeak.com/cache/1/0");
    EXPECT_EQ(namespaces[static_cast<std::size_t>(Namespace::GPXData) - 1],
              "http://" PELLUVIA_GPXDATA_HOST "/XML/GPXDATA/1/0");
}

TEST(GPXVocabulary, ReadsTheParsersNumbers) {
    XMLElement element;
    EXPECT_EQ(nameOf(element), Name::Other);
    EXPECT_EQ(namespaceOf(element), Namespace::Other);
    element.nameNumber = 1;
    element.namespaceNumber = 5;
    EXPECT_EQ(nameOf(element), Name::Wpt);
    EXPECT_EQ(namespaceOf(element), Namespace::GPX10);
}

TEST(GPXVocabulary, FindsEveryNameByItsText) {
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(nameOf(names[i]), static_cast<Name>(i + 1));
    }
    for (std::size_t i = 0; i < namespaces.size(); ++i) {
        EXPECT_EQ(namespaceOf(namespaces[i]), static_cast<Namespace>(i + 1));
    }
    for (const std::string_view other : {"", "WPT", "wp", "wpts", "\xFF"}) {
        EXPECT_EQ(nameOf(other), Name::Other);
        EXPECT_EQ(namespaceOf(other), Namespace::Other);
    }
}

} // namespace
} // namespace pelluvia
