// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <cmath>
#include <limits>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

using WayPoint = WriterTest;
using RoutePoint = WriterTest;

const std::string proximityStart = "<gpxdata:proximity xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">";
const std::string cacheStart = "<geocache:cache xmlns=\"" PELLUVIA_GEOCACHE_NAMESPACE "\">\n";

/// A waypoint at a fixed place without texts.
void writeAt12(GPXRef document, const Dictionary *extras) {
    GPXWriteWayPoint(document, 0, nullptr, nullptr, nullptr, nullptr, extras, 1, 2, 0);
}

TEST_F(WayPoint, WritesItsElementsInOrder) {
    GPXWriteWayPoint(document, 1591000000, "Hut", "Shelter", "A & B", "Lodge", nullptr,
                     47.123456789, -8.5, 430.5);
    EXPECT_EQ(written(), "<wpt lat=\"47.12345679\" lon=\"-8.5\"><ele>430.500000</ele>"
                         "<time>2020-06-01T08:26:40Z</time><name>Hut</name>\n"
                         "<cmt>A &amp; B</cmt>\n<sym>Lodge</sym>\n<type>Shelter</type>\n</wpt>\n");
}

TEST_F(WayPoint, LeavesOutWhatIsNotGiven) {
    writeAt12(document, nullptr);
    GPXWriteWayPoint(document, 0, nullptr, nullptr, nullptr, "Flag", nullptr, 1, 2, -0.0);
    EXPECT_EQ(written(), "<wpt lat=\"1\" lon=\"2\"></wpt>\n"
                         "<wpt lat=\"1\" lon=\"2\"><sym>Flag</sym>\n</wpt>\n");
}

TEST_F(WayPoint, AnEmptyNameIsAnEmptyElement) {
    GPXWriteWayPoint(document, 0, "", nullptr, nullptr, nullptr, nullptr, 1, 2, 0);
    EXPECT_EQ(written(), "<wpt lat=\"1\" lon=\"2\"><name></name>\n</wpt>\n");
}

TEST_F(WayPoint, HasNoLatitudeThatMarksItAsDataOnly) {
    GPXWriteWayPoint(document, 0, nullptr, nullptr, nullptr, nullptr, nullptr, 91.5, 2, 0);
    GPXWriteWayPoint(document, 0, nullptr, nullptr, nullptr, nullptr, nullptr, std::nan(""),
                     -std::numeric_limits<double>::infinity(), std::nan(""));
    EXPECT_EQ(written(), "<wpt lat=\"91.5\" lon=\"2\"></wpt>\n"
                         "<wpt lat=\"nan\" lon=\"-inf\"><ele>nan</ele></wpt>\n");
}

TEST_F(WayPoint, EndsAnOpenTrack) {
    GPXWriteTrackSegment(document);
    newlyWritten();
    writeAt12(document, nullptr);
    EXPECT_EQ(newlyWritten(), "</trkseg>\n</trk>\n<wpt lat=\"1\" lon=\"2\"></wpt>\n");
}

TEST_F(WayPoint, WithProximityZeroAndNoGeocacheHasNoExtensions) {
    Dictionary extras = dictionaryOf(extras::proximity, -0.0);
    extras.set(extras::geocacheHint, Value("under a stone"sv));
    extras.set(extras::description, Value("never written"sv));
    extras.set(extras::terrain, Value("z\xC3\xA4h"sv));
    writeAt12(document, &extras);
    EXPECT_EQ(written(), "<wpt lat=\"1\" lon=\"2\"></wpt>\n");
}

TEST_F(WayPoint, WithProximityOnlyHasItInTheExtensions) {
    const Dictionary extras = dictionaryOf(extras::proximity, 5);
    writeAt12(document, &extras);
    EXPECT_EQ(written(), "<wpt lat=\"1\" lon=\"2\"><extensions>" + proximityStart +
                             "5.000000</gpxdata:proximity>\n</extensions>\n</wpt>\n");
}

TEST_F(WayPoint, AProximityThatIsNotANumberCounts) {
    const Dictionary nan = dictionaryOf(extras::proximity, std::nan(""));
    writeAt12(document, &nan);
    EXPECT_EQ(newlyWritten(), "<wpt lat=\"1\" lon=\"2\"><extensions>" + proximityStart +
                                  "nan</gpxdata:proximity>\n</extensions>\n</wpt>\n");
    const Dictionary huge = dictionaryOf(extras::proximity, 1e308);
    writeAt12(document, &huge);
    EXPECT_EQ(newlyWritten(), "<wpt lat=\"1\" lon=\"2\"><extensions>" + proximityStart +
                                  "inf</gpxdata:proximity>\n</extensions>\n</wpt>\n");
}

TEST_F(WayPoint, WithGeocacheTextsHasACacheElement) {
    Dictionary extras = dictionaryOf(extras::geocacheType, "Traditional"sv);
    extras.set(extras::terrain, Value("2.5"sv));
    extras.set(extras::difficulty, Value("1 & 1/2"sv));
    extras.set(extras::geocacheOwner, Value("Somebody"sv));
    extras.set(extras::proximity, Value(12.5));
    GPXWriteWayPoint(document, 0, "GC1", nullptr, nullptr, nullptr, &extras, 1, 2, 0);
    EXPECT_EQ(written(), "<wpt lat=\"1\" lon=\"2\"><name>GC1</name>\n<extensions>" +
                             proximityStart + "12.500000</gpxdata:proximity>\n" + cacheStart +
                             "<owner>Somebody</owner>\n<difficulty>1 &amp; 1/2</difficulty>\n"
                             "<terrain>2.5</terrain>\n<type>Traditional</type>\n"
                             "</geocache:cache>\n</extensions>\n</wpt>\n");
}

TEST_F(WayPoint, OneGeocacheTextIsEnoughEvenAnEmptyOne) {
    for (const Key &key :
         {extras::geocacheOwner, extras::difficulty, extras::terrain, extras::geocacheType}) {
        const Dictionary extras = dictionaryOf(key, ""sv);
        const std::string name = key == extras::geocacheOwner  ? "owner"
                                 : key == extras::geocacheType ? "type"
                                                               : std::string(key.name());
        writeAt12(document, &extras);
        EXPECT_EQ(newlyWritten(), "<wpt lat=\"1\" lon=\"2\"><extensions>" + cacheStart + "<" +
                                      name + "></" + name +
                                      ">\n</geocache:cache>\n</extensions>\n</wpt>\n");
    }
}

TEST_F(RoutePoint, IsAWaypointInAnOpenRouteWhichStaysOpen) {
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    GPXWriteWayPoint(document, 0, "A", nullptr, nullptr, nullptr, nullptr, 1, 2, 0);
    const Dictionary extras = dictionaryOf(extras::proximity, 5);
    GPXWriteWayPoint(document, 0, nullptr, nullptr, nullptr, nullptr, &extras, 3, 4, 0);
    EXPECT_TRUE(document->inRoute);
    EXPECT_EQ(written(), "<rte>\n\t<rtept lat=\"1\" lon=\"2\"><name>A</name>\n</rtept>\n"
                         "\t<rtept lat=\"3\" lon=\"4\"><extensions>" +
                             proximityStart +
                             "5.000000</gpxdata:proximity>\n</extensions>\n</rtept>\n");
}

TEST_F(RoutePoint, IsAWaypointAgainAfterTheRoute) {
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    GPXWriteRouteEnd(document);
    writeAt12(document, nullptr);
    EXPECT_EQ(written(), "<rte>\n</rte>\n<wpt lat=\"1\" lon=\"2\"></wpt>\n");
}

} // namespace
} // namespace pelluvia
