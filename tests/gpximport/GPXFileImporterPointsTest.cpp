// SPDX-License-Identifier: MIT

#include <Pelluvia/model/TransferKind.h>
#include <tests/gpximport/Importing.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <set>
#include <string>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::gpx;
using testing::importGPX;
using testing::Importing;
using testing::onlyRoutes;
using testing::onlyTracks;
using testing::onlyWaypoints;

TEST(Points, CarryTheCachesNameAsCommentWhenThereIsNone) {
    EXPECT_THAT(importGPX("<wpt><gs:name>Cache</gs:name></wpt>"
                          "<wpt><cmt>Own</cmt><gs:name>Cache</gs:name></wpt>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {comment: \"Cache\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {comment: \"Own\"}"));
}

TEST(Points, OfARouteHaveNoOtherComment) {
    EXPECT_THAT(importGPX("<rte><rtept><gs:name>Cache</gs:name></rtept></rte>", onlyRoutes).data(),
                ElementsAre("newRoute: nil", "routePoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(Points, CarryTheirExtrasInAFixedOrder) {
    const std::string texts = "<gs:encoded_hints>l</gs:encoded_hints><gs:owner>k</gs:owner>"
                              "<gs:type>j</gs:type><gs:difficulty>i</gs:difficulty>"
                              "<gs:terrain>h</gs:terrain><urlname>g</urlname><url>f</url>"
                              "<sym>e</sym><name>d</name><desc>c</desc><cmt>b</cmt>"
                              "<gs:name>a</gs:name><gpxdata:proximity>9</gpxdata:proximity>";
    EXPECT_THAT(importGPX("<wpt>" + texts + "</wpt>", onlyWaypoints).data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {comment: \"b\", description: \"c\", "
                            "name: \"d\", symbol: \"e\", url: \"f\", urlName: \"g\", terrain: "
                            "\"h\", difficulty: \"i\", geocacheType: \"j\", geocacheOwner: \"k\", "
                            "geocacheHint: \"l\", proximity: float 9}"));
    EXPECT_THAT(importGPX("<rte><rtept>" + texts + "</rtept></rte>", onlyRoutes).data(),
                ElementsAre("newRoute: nil",
                            "routePoint: (0, 0, 0, 0, 0) extra: {comment: \"b\", description: "
                            "\"c\", name: \"d\", symbol: \"e\", url: \"f\", urlName: \"g\"}"));
    EXPECT_THAT(importGPX("<trk><trkseg><trkpt>" + texts +
                              "<gpxdata:temp>5</gpxdata:temp><gpxdata:sensor kind='s'/>"
                              "<gpxdata:distance>4</gpxdata:distance><gpxdata:cadence>3"
                              "</gpxdata:cadence><gpxdata:hr>2</gpxdata:hr></trkpt></trkseg></trk>",
                          onlyTracks)
                    .data(),
                ElementsAre("newTrack: nil", "newTrackSegment",
                            "trackPoint: (0, 0, 0, 0, 0) extra: {hr: int 2, cadence: int 3, "
                            "distance: float 4, sensor: \"s\", temp: float 5}"));
}

TEST(Points, KeepTheOwnerOfAnEarlierCache) {
    EXPECT_THAT(importGPX("<wpt><gs:owner>Ann</gs:owner></wpt><wpt/>"
                          "<wpt><gs:owner>Bob</gs:owner></wpt><wpt/>"
                          "<wpt><gs:owner/></wpt>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Ann\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Ann\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Bob\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Bob\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(Points, KeepTheOwnerThatAnEarlierPassSawLast) {
    EXPECT_THAT(importGPX("<wpt/><wpt><gs:owner>Ann</gs:owner></wpt>").data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Ann\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Ann\"}"));
    EXPECT_THAT(importGPX("<wpt/><wpt><gs:owner>Ann</gs:owner></wpt>", onlyWaypoints).data(),
                ElementsAre("wayPoint: (0, 0, 0, 0, 0) extra: {}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {geocacheOwner: \"Ann\"}"));
}

TEST(Points, OfATrackWithoutExtrasCarryNil) {
    EXPECT_THAT(
        importGPX("<trk><trkseg><trkpt lat='1' lon='2'/></trkseg></trk>", onlyTracks).data(),
        ElementsAre("newTrack: nil", "newTrackSegment", "trackPoint: (1, 2, 0, 0, 0) extra: nil"));
}

TEST(Points, DoNotCarryNumbersThatAreZero) {
    EXPECT_THAT(importGPX("<trk><trkseg>"
                          "<trkpt><tpx:hr>0</tpx:hr><tpx:cad>0</tpx:cad><tpx:atemp>-0.0</tpx:atemp>"
                          "<gpxdata:distance>0.0</gpxdata:distance></trkpt>"
                          "<trkpt><tpx:atemp>-0.5</tpx:atemp></trkpt>"
                          "<trkpt><tpx:atemp>1e-60</tpx:atemp></trkpt></trkseg></trk>",
                          onlyTracks)
                    .data(),
                ElementsAre("newTrack: nil", "newTrackSegment",
                            "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                            "trackPoint: (0, 0, 0, 0, 0) extra: {temp: float -0.5}",
                            "trackPoint: (0, 0, 0, 0, 0) extra: nil"));
}

TEST(Points, AreForgottenBeforeTheNext) {
    EXPECT_THAT(importGPX("<wpt lat='1' lon='2'><ele>3</ele><time>1970-01-01T00:00:04Z</time>"
                          "<name>A</name><gpxdata:proximity>5</gpxdata:proximity></wpt><wpt/>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (1, 2, 3, 4, 0) extra: {name: \"A\", proximity: float 5}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(Points, AreForgottenWhenTheyAreSentButForTrackPoints) {
    // The inner elements are no points at their start, only at their end.
    const std::string inner = "<x:wpt xmlns:x='urn:x'/><x:rtept xmlns:x='urn:x'/>"
                              "<x:trkpt xmlns:x='urn:x'/>";
    const std::string point = " lat='1' lon='2'><ele>3</ele><name>A</name>" + inner;
    EXPECT_THAT(importGPX("<rte><rtept" + point + "</rtept></rte>", onlyRoutes).data(),
                ElementsAre("newRoute: nil", "routePoint: (1, 2, 3, 0, 0) extra: {name: \"A\"}",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}"));
    EXPECT_THAT(importGPX("<wpt" + point + "</wpt>", onlyWaypoints).data(),
                ElementsAre("wayPoint: (1, 2, 3, 0, 0) extra: {name: \"A\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {}"));
    EXPECT_THAT(
        importGPX("<trk><trkseg><trkpt" + point + "</trkpt></trkseg></trk>", onlyTracks).data(),
        ElementsAre("newTrack: nil", "newTrackSegment", "trackPoint: (1, 2, 3, 0, 0) extra: nil",
                    "trackPoint: (1, 2, 3, 0, 0) extra: nil"));
}

TEST(Points, OfOtherKindsAreDroppedInSilence) {
    EXPECT_THAT(importGPX("<wpt><name>W</name></wpt><trk><name>T</name><trkseg/></trk>"
                          "<rte><name>R</name><rtept/></rte>",
                          onlyTracks)
                    .data(),
                ElementsAre("newTrack: {name: \"T\"}", "newTrackSegment"));
}

TEST(Routes, CarryNameAndNumber) {
    EXPECT_THAT(importGPX("<rte><name>A</name><number> 7</number><rtept/></rte>"
                          "<rte><number>x</number><rtept/></rte>"
                          "<rte><number>99999999999</number><rtept/></rte>"
                          "<rte><desc>D</desc><rtept/></rte>",
                          onlyRoutes)
                    .data(),
                ElementsAre("newRoute: {name: \"A\", index: int 7}",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}", "newRoute: {index: int 0}",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}",
                            "newRoute: {index: int 2147483647}",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}", "newRoute: nil",
                            "routePoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(Routes, WithoutPointsAreNeverAnnounced) {
    EXPECT_THAT(importGPX("<rte><name>A</name></rte>", onlyRoutes).data(), ElementsAre());
}

TEST(Tracks, CarryNameDescriptionAndNumber) {
    EXPECT_THAT(importGPX("<trk><number>12 of 13</number><desc>D</desc><name>A</name><trkseg/>"
                          "<trkseg/></trk><trk><desc>E</desc><trkseg><trkpt/></trkseg></trk>"
                          "<trk><trkseg/></trk>",
                          onlyTracks)
                    .data(),
                ElementsAre("newTrack: {name: \"A\", description: \"D\", index: int 12}",
                            "newTrackSegment", "newTrackSegment",
                            "newTrack: {name: \"A\", description: \"E\", index: int 12}",
                            "newTrackSegment", "trackPoint: (0, 0, 0, 0, 0) extra: nil",
                            "newTrack: nil", "newTrackSegment"));
}

TEST(Tracks, TakeTheLastNameBeforeTheirFirstSegmentWhenNoPointCameBetween) {
    EXPECT_THAT(importGPX("<metadata><name>File</name><author><name>Ann</name></author></metadata>"
                          "<trk><trkseg/></trk>",
                          onlyTracks)
                    .data(),
                ElementsAre("newTrack: {name: \"Ann\"}", "newTrackSegment"));
    EXPECT_THAT(
        importGPX("<metadata><name>File</name></metadata><wpt/><trk><trkseg/></trk>", onlyTracks)
            .data(),
        ElementsAre("newTrack: nil", "newTrackSegment"));
}

TEST(Tracks, WithoutSegmentsAreNeverAnnounced) {
    EXPECT_THAT(importGPX("<trk><name>A</name></trk>", onlyTracks).data(), ElementsAre());
}

TEST(Tracks, AreAnnouncedForASegmentOutsideOfThemOnlyWhenNoneWasBefore) {
    EXPECT_THAT(importGPX("<trkseg/><trkseg/>", onlyTracks).data(),
                ElementsAre("newTrack: nil", "newTrackSegment", "newTrackSegment"));
}

/// Notes where the dictionaries of track points stand.
class DictionaryWatcher : public testing::SpyReceiver {
  public:
    std::set<const Dictionary *> seen;
    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        seen.insert(extra);
        SpyReceiver::trackPoint(point, extra);
    }
};

TEST(Points, OfATrackShareOneDictionary) {
    const auto watcher = std::make_shared<DictionaryWatcher>();
    const auto importer = GPXFileImporter::initWithReceiver(watcher);
    const testing::TemporaryFolder folder;
    std::string points;
    for (int hr = 100; hr < 200; ++hr) {
        points += "<trkpt><tpx:hr>" + std::to_string(hr) + "</tpx:hr></trkpt>";
    }
    EXPECT_EQ(importer->processFile(
                  folder.write("ride.gpx", gpx("<trk><trkseg>" + points + "</trkseg></trk>"))),
              nullptr);
    EXPECT_EQ(watcher->callsOf("trackPoint").size(), 100U);
    EXPECT_EQ(watcher->seen.size(), 1U);
}

} // namespace
} // namespace pelluvia
