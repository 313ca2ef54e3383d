// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/GPXTable.h>

#include <Pelluvia/gpximport/internal/GPXTableChecks.h>
#include <Pelluvia/gpximport/internal/Interest.h>

#include <gtest/gtest.h>
#include <vector>

namespace pelluvia {
namespace {

using namespace gpxTable;

TEST(GPXTable, ReadsGPXElementsAtTheirStartInGPXNamespacesOnly) {
    for (const Namespace space : {Namespace::GPX10, Namespace::GPX11}) {
        EXPECT_EQ(startOf(space, Name::Wpt).rule, Rule::waypoint);
    }
    for (const Namespace space :
         {Namespace::Other, Namespace::GarminExtensions, Namespace::GarminTrackPoint,
          Namespace::Geocache, Namespace::GPXData}) {
        EXPECT_EQ(startOf(space, Name::Wpt).rule, Rule::none);
    }
}

TEST(GPXTable, ReadsGPXElementsAtTheirEndWhereverNoOtherDialectForbidsIt) {
    for (const Namespace space : {Namespace::Other, Namespace::GPX10, Namespace::GPX11,
                                  Namespace::GarminExtensions, Namespace::GarminTrackPoint}) {
        EXPECT_EQ(endOf(space, Name::Wpt).rule, Rule::waypoint);
    }
    for (const Namespace space : {Namespace::Geocache, Namespace::GPXData}) {
        EXPECT_EQ(endOf(space, Name::Wpt).rule, Rule::none);
    }
}

TEST(GPXTable, TellsTheSameNameOfSeveralDialectsApart) {
    EXPECT_EQ(endOf(Namespace::GPX11, Name::Name).text, Field(&C::name));
    EXPECT_EQ(endOf(Namespace::Geocache, Name::Name).text, Field(&C::geocacheName));
    EXPECT_EQ(endOf(Namespace::GarminExtensions, Name::Name).text, Field(&C::name));
    EXPECT_EQ(endOf(Namespace::GPXData, Name::Name).text, Field(nowhere));
    EXPECT_EQ(endOf(Namespace::GPXData, Name::Temp).text, Field(&C::temp));
    EXPECT_EQ(endOf(Namespace::GPX11, Name::Temp).text, Field(nowhere));
    EXPECT_EQ(endOf(Namespace::GarminTrackPoint, Name::Hr).text, Field(&C::hr));
    EXPECT_EQ(endOf(Namespace::Geocache, Name::Hr).text, Field(nowhere));
}

TEST(GPXTable, KeepsTheOwnerOfACacheAndTheNumberOfACourseBehindAPoint) {
    std::vector<Field> kept;
    for (const CollectedValue &each : values) {
        if (each.behind == Behind::kept) {
            kept.push_back(each.field);
        }
    }
    EXPECT_EQ(kept, (std::vector<Field>{&C::geocacheOwner, &C::courseIndex}));
}

TEST(GPXTable, AsksForTextsThatBecomeValuesAndForTagsThatMeanSomething) {
    EXPECT_EQ(interestIn(Namespace::GPX11, Name::Cmt), XMLInterest::all);
    EXPECT_EQ(interestIn(Namespace::Other, Name::Ele), XMLInterest::all);
    EXPECT_EQ(interestIn(Namespace::GPXData, Name::Distance), XMLInterest::all);
    EXPECT_EQ(interestIn(Namespace::GPXData, Name::Sensor), XMLInterest::tags);
    EXPECT_EQ(interestIn(Namespace::Geocache, Name::Logs), XMLInterest::tags);
    EXPECT_EQ(interestIn(Namespace::GPX11, Name::Link), XMLInterest::tags);
    EXPECT_EQ(interestIn(Namespace::GPX11, Name::Author), XMLInterest::nothing);
    EXPECT_EQ(interestIn(Namespace::GPX11, Name::Src), XMLInterest::nothing);
    EXPECT_EQ(interestIn(Namespace::GPX11, Name::Other), XMLInterest::nothing);
}

} // namespace
} // namespace pelluvia
