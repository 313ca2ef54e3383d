// SPDX-License-Identifier: MIT

#include <tests/gpximport/Importing.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::gpx;
using testing::Imported;
using testing::importGPX;
using testing::Importing;
using ::testing::IsEmpty;
using testing::onlyRoutes;
using testing::onlyTracks;
using testing::onlyWaypoints;
using testing::Passes;

std::string structuralError(std::string_view message) {
    return "error: com.Quorvel.GPSPlugin.ErrorDomain -3 {NSLocalizedDescription: \"" +
           std::string(message) + "\", NSLocalizedRecoverySuggestion: \"Try a different file\"}";
}

TEST(ElementStart, ReadsPositions) {
    const auto calls =
        importGPX("<wpt lat='47.5' lon='-8.25'/><wpt lon=' 2.5e1x' lat='\t-1'/>", onlyWaypoints);
    EXPECT_THAT(calls.data(), ElementsAre("wayPoint: (47.5, -8.25, 0, 0, 0) extra: {}",
                                          "wayPoint: (-1, 25, 0, 0, 0) extra: {}"));
}

TEST(ElementStart, LeavesAPointWithoutBothCoordinatesAtZero) {
    const auto calls =
        importGPX("<trk><trkseg><trkpt lat='47.5' lon='8.5'/><trkpt lat='47.5'/><trkpt lon='8.5'/>"
                  "<trkpt/></trkseg></trk>",
                  onlyTracks);
    EXPECT_THAT(calls.data(), ElementsAre("newTrack: nil", "newTrackSegment",
                                          "trackPoint: (47.5, 8.5, 0, 0, 0) extra: nil",
                                          "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                                          "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                                          "trackPoint: (0, 0, 0, 0, 0) extra: nil"));
}

TEST(ElementStart, TakesCoordinatesThatAreNoNumbersAsZeroAndHugeOnesAsInfinite) {
    const auto calls = importGPX("<wpt lat='' lon='abc'/><wpt lat='nan' lon='inf'/>"
                                 "<wpt lat='1e400' lon='-1e400'/><wpt lat='1e-400' lon='0x10'/>",
                                 onlyWaypoints);
    EXPECT_THAT(calls.data(), ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {}",
                                          "wayPoint: (0, 0, 0, 0, 0) extra: {}",
                                          "wayPoint: (inf, -inf, 0, 0, 0) extra: {}",
                                          "wayPoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(ElementStart, IgnoresEveryElementOfAFileWithoutNamespace) {
    // The ends are still heard: points come at 0, 0 with what was collected, and nothing is
    // announced.
    Importing importing;
    const auto imported = importing.document(
        "<gpx><rte><name>R</name><rtept lat='1' lon='2'><name>A</name></rtept></rte>"
        "<wpt lat='1' lon='2'><ele>3</ele><time>1970-01-01T00:00:09Z</time><name>B</name></wpt>"
        "<trk><trkseg><trkpt lat='1' lon='2'><ele>4</ele></trkpt></trkseg></trk></gpx>");
    EXPECT_EQ(imported.result, nullptr);
    EXPECT_THAT(imported.calls,
                ElementsAre("startTransfer: nil kind: 2 extra: {count: int 1}",
                            "routePoint: (0, 0, 0, 0, 0) extra: {name: \"A\"}", "endTransfer: 2",
                            "startTransfer: nil kind: 3 extra: {count: int 1}",
                            "wayPoint: (0, 0, 3, 9, 0) extra: {name: \"B\"}", "endTransfer: 3",
                            "startTransfer: nil kind: 1 extra: {count: int 1}",
                            "trackPoint: (0, 0, 4, 9, 0) extra: nil", "endTransfer: 1"));
}

TEST(ElementStart, IgnoresMisplacedElementsOfAFileWithoutNamespace) {
    const auto imported =
        Importing().document("<gpx><ele/><rtept/><trkpt/><trkseg><trkseg/></trkseg></gpx>");
    EXPECT_EQ(imported.result, nullptr);
}

TEST(ElementStart, ReadsGPX10AndGPX11UnderAnyPrefix) {
    for (const std::string uri : {PELLUVIA_GPX10_NAMESPACE, PELLUVIA_GPX11_NAMESPACE}) {
        Importing importing(onlyWaypoints);
        const auto imported =
            importing.document("<q:gpx xmlns:q='" + uri + "'><q:wpt lat='1' lon='2'/></q:gpx>");
        EXPECT_THAT(imported.data(), ElementsAre("wayPoint: (1, 2, 0, 0, 0) extra: {}")) << uri;
    }
}

TEST(ElementStart, ComparesNamespacesAsWholeTextsWithTheirCase) {
    for (const std::string uri :
         {"http://www.topografix.com/GPX/1/2", "http://www.topografix.com/gpx/1/1",
          "https://www.topografix.com/GPX/1/1", "http://www.topografix.com/GPX/1/1/"}) {
        Importing importing(onlyWaypoints);
        const auto imported =
            importing.document("<gpx xmlns='" + uri + "'><wpt lat='1' lon='2'/></gpx>");
        EXPECT_THAT(imported.data(), ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {}")) << uri;
    }
}

TEST(ElementStart, AnnouncesARouteAtItsFirstPoint) {
    const auto imported = importGPX("<rte><name>Home</name><number>3</number><rtept lat='1' "
                                    "lon='2'/><rtept lat='3' lon='4'/></rte><rte/><rte><rtept/>"
                                    "</rte>",
                                    onlyRoutes);
    EXPECT_THAT(imported.data(),
                ElementsAre("newRoute: {name: \"Home\", index: int 3}",
                            "routePoint: (1, 2, 0, 0, 0) extra: {}",
                            "routePoint: (3, 4, 0, 0, 0) extra: {}", "newRoute: nil",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(ElementStart, StopsAtARoutePointOutsideOfARouteAfterAnnouncingIt) {
    const std::string content = "<metadata><name>File</name></metadata><rtept lat='1' lon='2'/>";
    EXPECT_THAT(importGPX(content).data(), ElementsAre("newRoute: {name: \"File\"}",
                                                       structuralError("rtept outside of route")));
}

TEST(ElementStart, StopsAtARoutePointOutsideOfARouteInEveryPass) {
    for (const Passes passes : {onlyWaypoints, onlyTracks}) {
        EXPECT_THAT(importGPX("<rtept lat='1' lon='2'/>", passes).data(),
                    ElementsAre(structuralError("rtept outside of route")));
    }
}

TEST(ElementStart, StopsAtASegmentInASegment) {
    EXPECT_THAT(importGPX("<trk><trkseg><trkseg/></trkseg></trk>", onlyTracks).data(),
                ElementsAre("newTrack: nil", "newTrackSegment",
                            structuralError("trkseg found while in track segment already")));
}

TEST(ElementStart, StopsAtATrackPointOutsideOfASegment) {
    for (const Passes passes : {onlyRoutes, onlyWaypoints, onlyTracks}) {
        EXPECT_THAT(importGPX("<trk><trkpt lat='1' lon='2'/></trk>", passes).data(),
                    ElementsAre(structuralError("trkpt found while not in track segment")));
    }
}

TEST(ElementStart, StopsAtATrackPointInATrackPoint) {
    EXPECT_THAT(importGPX("<trk><trkseg><trkpt><trkpt/></trkpt></trkseg></trk>", onlyTracks).data(),
                ElementsAre("newTrack: nil", "newTrackSegment",
                            structuralError("trkpt found while in track point already")));
}

TEST(ElementStart, StopsAtAnElevationOutsideOfAPoint) {
    EXPECT_THAT(importGPX("<metadata><ele>1</ele></metadata>").data(),
                ElementsAre(structuralError("ele received outside of geometry")));
    EXPECT_EQ(importGPX("<wpt><ele/></wpt><rte><rtept><ele/></rtept></rte>"
                        "<trk><trkseg><trkpt><ele/></trkpt></trkseg></trk>")
                  .result,
              nullptr);
}

TEST(ElementStart, AcceptsAnElevationAnywhereInsideAPoint) {
    EXPECT_THAT(importGPX("<wpt><extensions><ele>7</ele></extensions></wpt>", onlyWaypoints).data(),
                ElementsAre("wayPoint: (0, 0, 7, 0, 0) extra: {}"));
}

TEST(ElementStart, ReadsHeartRateAlikeInBothDialectsAndIgnoresItInOthers) {
    const auto imported = importGPX("<trk><trkseg>"
                                    "<trkpt><tpx:hr>101</tpx:hr></trkpt>"
                                    "<trkpt><gpxdata:hr>102</gpxdata:hr></trkpt>"
                                    "<trkpt><gs:hr>103</gs:hr></trkpt>"
                                    "<trkpt><gpxx:hr>104</gpxx:hr></trkpt>"
                                    "<trkpt><hr>105</hr></trkpt>"
                                    "</trkseg></trk>",
                                    onlyTracks);
    EXPECT_THAT(imported.data(), ElementsAre("newTrack: nil", "newTrackSegment",
                                             "trackPoint: (0, 0, 0, 0, 0) extra: {hr: int 101}",
                                             "trackPoint: (0, 0, 0, 0, 0) extra: {hr: int 102}",
                                             "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                                             "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                                             "trackPoint: (0, 0, 0, 0, 0) extra: nil"));
}

TEST(ElementStart, TakesTheSensorFromEitherAttribute) {
    const auto imported =
        importGPX("<trk><trkseg>"
                  "<trkpt><gpxdata:distance sensor='wheel'>5</gpxdata:distance></trkpt>"
                  "<trkpt><gpxdata:sensor kind='foot'>ignored</gpxdata:sensor></trkpt>"
                  "<trkpt><gpxdata:distance sensor='wheel'>5</gpxdata:distance>"
                  "<gpxdata:sensor kind='foot'/><gpxdata:sensor/></trkpt>"
                  "<trkpt><gpxdata:sensor kind=''/></trkpt>"
                  "<trkpt><gpxdata:sensor sensor='x'/><gpxdata:distance kind='x'/></trkpt>"
                  "</trkseg></trk>",
                  onlyTracks);
    EXPECT_THAT(
        imported.data(),
        ElementsAre("newTrack: nil", "newTrackSegment",
                    "trackPoint: (0, 0, 0, 0, 0) extra: {distance: float 5, sensor: \"wheel\"}",
                    "trackPoint: (0, 0, 0, 0, 0) extra: {sensor: \"foot\"}",
                    "trackPoint: (0, 0, 0, 0, 0) extra: {distance: float 5, sensor: \"foot\"}",
                    "trackPoint: (0, 0, 0, 0, 0) extra: {sensor: \"\"}",
                    "trackPoint: (0, 0, 0, 0, 0) extra: nil"));
}

TEST(ElementStart, NeverKeepsTheAddressOfALinkAndForgetsAnEarlierOne) {
    EXPECT_THAT(importGPX("<wpt><link href='http://a.example'><text>A</text></link></wpt>"
                          "<wpt><url>http://b.example</url>some text<link href='c'/></wpt>"
                          "<wpt><link href='c'/><url>http://d.example</url></wpt>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {urlName: \"A\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {url: \"http://d.example\"}"));
}

TEST(ElementStart, EmptiesTheTextAtEveryStart) {
    EXPECT_THAT(importGPX("<wpt><name>lost<b/>kept</name><desc>lost<x:b xmlns:x='urn:x'/></desc>"
                          "</wpt>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {name: \"kept\"}"));
}

TEST(ElementStart, IgnoresNamesInsideTravelBugsButNotThoseOfGPX) {
    EXPECT_THAT(
        importGPX("<wpt><gs:cache><gs:name>Cache</gs:name><gs:travelbugs><gs:travelbug>"
                  "<gs:name>Bug</gs:name></gs:travelbug></gs:travelbugs></gs:cache></wpt>"
                  "<wpt><gs:cache><gs:name>Cache</gs:name><gs:travelbugs><gs:travelbug>"
                  "<name>Bug</name></gs:travelbug></gs:travelbugs></gs:cache></wpt>",
                  onlyWaypoints)
            .data(),
        ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {comment: \"Cache\"}",
                    "wayPoint: (0, 0, 0, 0, 0) extra: {comment: \"Cache\", name: \"Bug\"}"));
}

TEST(ElementStart, TellsDifficultyFromTerrain) {
    EXPECT_THAT(importGPX("<wpt><gs:difficulty>1.5</gs:difficulty><gs:terrain>4</gs:terrain></wpt>"
                          "<wpt><gs:difficulty>2</gs:difficulty></wpt>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {terrain: \"4\", difficulty: "
                            "\"1.5\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {difficulty: \"2\"}"));
}

TEST(ElementStart, IgnoresUnknownElements) {
    EXPECT_THAT(
        importGPX("<bounds/><metadata/><extensions><x:wpts xmlns:x='urn:x'/></extensions>").data(),
        IsEmpty());
}

} // namespace
} // namespace pelluvia
