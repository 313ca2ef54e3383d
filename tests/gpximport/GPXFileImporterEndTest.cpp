// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>
#include <tests/gpximport/Importing.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::gpx;
using testing::importGPX;
using testing::Importing;
using testing::onlyRoutes;
using testing::onlyTracks;
using testing::onlyWaypoints;

/// The one call for a waypoint with this content.
std::string waypoint(std::string_view content) {
    const auto data = importGPX("<wpt>" + std::string(content) + "</wpt>", onlyWaypoints).data();
    EXPECT_EQ(data.size(), 1U) << content;
    return data.empty() ? "" : data[0];
}

/// The one call for a track point with this content.
std::string trackpoint(std::string_view content) {
    const auto data =
        importGPX("<trk><trkseg><trkpt>" + std::string(content) + "</trkpt></trkseg></trk>",
                  onlyTracks)
            .data();
    EXPECT_EQ(data.size(), 3U) << content;
    return data.empty() ? "" : data.back();
}

std::string point(std::string_view altitude, std::string_view time, std::string_view extra) {
    return "(0, 0, " + std::string(altitude) + ", " + std::string(time) +
           ", 0) extra: " + std::string(extra);
}

TEST(ElementEnd, TakesTextAsItStands) {
    EXPECT_EQ(waypoint("<name> A &amp; B\n</name>"),
              "wayPoint: " + point("0", "0", "{name: \" A & B\\n\"}"));
}

TEST(ElementEnd, TakesAnEmptyTextAsAbsent) {
    EXPECT_EQ(waypoint("<name>A</name><name></name><desc/>"), "wayPoint: " + point("0", "0", "{}"));
}

TEST(ElementEnd, GathersTextOverPiecesCommentsAndCDATA) {
    EXPECT_EQ(waypoint("<desc>one &#x20AC;<!-- not this --> two<![CDATA[ <b>&amp;]]> three</desc>"),
              "wayPoint: " + point("0", "0", "{description: \"one € two <b>&amp; three\"}"));
}

TEST(ElementEnd, GathersTextFromTheLastStartOn) {
    EXPECT_EQ(waypoint("<desc>no<name>A</name>B</desc>"),
              "wayPoint: " + point("0", "0", "{description: \"AB\", name: \"A\"}"));
}

TEST(ElementEnd, GathersTextOfElementsThatUseNoneInsideOnesThatDo) {
    EXPECT_EQ(waypoint("x<extensions>y<desc>no<x>A<y/>B</x>C</desc>z</extensions>"),
              "wayPoint: " + point("0", "0", "{description: \"BC\"}"));
}

TEST(ElementEnd, EmptiesTheTextBehindNumbers) {
    EXPECT_EQ(waypoint("<desc><ele>5</ele>B</desc><cmt><time>1970-01-01T00:00:01Z</time>C</cmt>"),
              "wayPoint: " + point("5", "1", "{comment: \"C\", description: \"B\"}"));
    EXPECT_EQ(waypoint("<desc><gpxdata:hr>5</gpxdata:hr></desc><cmt><gpxx:Proximity>7"
                       "</gpxx:Proximity></cmt>"),
              "wayPoint: " + point("0", "0", "{proximity: float 7}"));
}

TEST(ElementEnd, ReadsTheElevationAsTheNumberItBeginsWith) {
    struct {
        std::string_view text;
        std::string_view altitude;
    } const table[] = {
        {"123.5", "123.5"}, {" \n 12.5 m", "12.5"}, {"abc", "0"},       {"", "0"},
        {"-0.0", "-0"},     {"1e400", "inf"},       {"-1e400", "-inf"}, {"nan", "0"},
        {"1e-400", "0"},    {".5", "0.5"},          {"5.", "5"},        {"+5", "5"},
        {"0x10", "0"},      {"1,5", "1"},           {"1e", "1"},        {"--5", "0"},
    };
    for (const auto &each : table) {
        EXPECT_EQ(waypoint("<ele>" + std::string(each.text) + "</ele>"),
                  "wayPoint: " + point(each.altitude, "0", "{}"))
            << each.text;
    }
    EXPECT_EQ(waypoint("<ele>5</ele><ele/>"), "wayPoint: " + point("0", "0", "{}"));
}

TEST(ElementEnd, ReadsTheTimeOrNone) {
    EXPECT_EQ(waypoint("<time>2020-06-01T08:26:40Z</time>"),
              "wayPoint: " + point("0", "1591000000", "{}"));
    EXPECT_EQ(waypoint("<time>\n 2020-06-01T10:26:40.5+02:00 </time>"),
              "wayPoint: " + point("0", "1591000000", "{}"));
    EXPECT_EQ(waypoint("<time>1969-12-31T23:59:58.5Z</time>"),
              "wayPoint: " + point("0", "-2", "{}"));
    EXPECT_EQ(waypoint("<time>yesterday</time>"), "wayPoint: " + point("0", "0", "{}"));
    EXPECT_EQ(waypoint("<time>2020-06-01T08:26:40Z</time><time>then</time>"),
              "wayPoint: " + point("0", "0", "{}"));
}

TEST(ElementEnd, ReadsIntegersOfBothDialects) {
    EXPECT_EQ(trackpoint("<tpx:hr>120</tpx:hr><tpx:cad>80</tpx:cad>"),
              "trackPoint: " + point("0", "0", "{hr: int 120, cadence: int 80}"));
    EXPECT_EQ(trackpoint("<gpxdata:hr> 120.9</gpxdata:hr><gpxdata:cadence>-3</gpxdata:cadence>"),
              "trackPoint: " + point("0", "0", "{hr: int 120, cadence: int -3}"));
    EXPECT_EQ(trackpoint("<tpx:hr>99999999999</tpx:hr><tpx:cad>-99999999999</tpx:cad>"),
              "trackPoint: " + point("0", "0", "{hr: int 2147483647, cadence: int -2147483648}"));
}

TEST(ElementEnd, MakesANumberThatDoesNotScanZeroRatherThanKeepingTheOld) {
    EXPECT_EQ(trackpoint("<tpx:hr>120</tpx:hr><tpx:hr>?</tpx:hr>"
                         "<gpxdata:temp>20</gpxdata:temp><gpxdata:temp/>"),
              "trackPoint: " + point("0", "0", "nil"));
}

TEST(ElementEnd, ReadsFloatsOfAllDialects) {
    EXPECT_EQ(trackpoint("<tpx:atemp>21.5</tpx:atemp>"),
              "trackPoint: " + point("0", "0", "{temp: float 21.5}"));
    EXPECT_EQ(trackpoint("<gpxx:Temperature>-3.25</gpxx:Temperature>"),
              "trackPoint: " + point("0", "0", "{temp: float -3.25}"));
    EXPECT_EQ(trackpoint("<gpxdata:temp>0.1</gpxdata:temp><gpxdata:distance>16777217"
                         "</gpxdata:distance>"),
              "trackPoint: " + point("0", "0", "{distance: float 16777216, temp: float 0.1}"));
    EXPECT_EQ(trackpoint("<gpxdata:distance>1e60</gpxdata:distance>"),
              "trackPoint: " + point("0", "0", "{distance: float inf}"));
    EXPECT_EQ(waypoint("<gpxdata:proximity>30.5</gpxdata:proximity>"),
              "wayPoint: " + point("0", "0", "{proximity: float 30.5}"));
    EXPECT_EQ(waypoint("<gpxx:Proximity>25</gpxx:Proximity>"),
              "wayPoint: " + point("0", "0", "{proximity: float 25}"));
}

TEST(ElementEnd, KnowsEachDialectsOwnSpellingOnly) {
    EXPECT_EQ(trackpoint("<gpxx:temperature>1</gpxx:temperature><tpx:temp>2</tpx:temp>"
                         "<gpxdata:atemp>3</gpxdata:atemp><gpxdata:cad>4</gpxdata:cad>"
                         "<tpx:cadence>5</tpx:cadence><gpxdata:Temperature>6</gpxdata:Temperature>"
                         "<atemp>7</atemp>"),
              "trackPoint: " + point("0", "0", "nil"));
    EXPECT_EQ(waypoint("<gpxx:proximity>1</gpxx:proximity><gpxdata:Proximity>2</gpxdata:Proximity>"
                       "<Proximity>3</Proximity><tpx:Proximity>4</tpx:Proximity>"),
              "wayPoint: " + point("0", "0", "{}"));
}

TEST(ElementEnd, TakesGPXNamesOfTheGarminAndForeignNamespaces) {
    EXPECT_EQ(waypoint("<gpxx:name>A</gpxx:name><tpx:cmt>B</tpx:cmt>"
                       "<x:desc xmlns:x='urn:x'>C</x:desc><sym xmlns=''>D</sym>"),
              "wayPoint: " + point("0", "0",
                                   "{comment: \"B\", description: \"C\", name: \"A\", "
                                   "symbol: \"D\"}"));
}

TEST(ElementEnd, TakesNoGPXNamesOfTheGeocacheAndGpxdataNamespaces) {
    EXPECT_EQ(waypoint("<gs:cmt>A</gs:cmt><gs:desc>B</gs:desc><gs:sym>C</gs:sym>"
                       "<gpxdata:name>D</gpxdata:name><gpxdata:cmt>E</gpxdata:cmt>"),
              "wayPoint: " + point("0", "0", "{}"));
}

TEST(ElementEnd, TakesAnElementOfAForeignNamespaceAsTheEndOfAPoint) {
    EXPECT_THAT(importGPX("<wpt lat='1' lon='2'><name>A</name><x:wpt xmlns:x='urn:x'/></wpt>",
                          onlyWaypoints)
                    .data(),
                ElementsAre("wayPoint: (1, 2, 0, 0, 0) extra: {name: \"A\"}",
                            "wayPoint: (0, 0, 0, 0, 0) extra: {}"));
}

TEST(ElementEnd, TakesTheCachesTexts) {
    EXPECT_EQ(waypoint("<gs:cache><gs:name>N</gs:name><gs:owner>O</gs:owner><gs:type>T</gs:type>"
                       "<gs:difficulty>1</gs:difficulty><gs:terrain>2</gs:terrain>"
                       "<gs:encoded_hints>H</gs:encoded_hints></gs:cache>"),
              "wayPoint: " + point("0", "0",
                                   "{comment: \"N\", terrain: \"2\", difficulty: \"1\", "
                                   "geocacheType: \"T\", geocacheOwner: \"O\", "
                                   "geocacheHint: \"H\"}"));
}

TEST(ElementEnd, LetsTheTypeOfTheLastLogReplaceTheCachesType) {
    EXPECT_EQ(waypoint("<gs:cache><gs:type>Traditional</gs:type><gs:logs>"
                       "<gs:log><gs:type>Found it</gs:type></gs:log>"
                       "<gs:log><gs:type>Note</gs:type></gs:log></gs:logs></gs:cache>"),
              "wayPoint: " + point("0", "0", "{geocacheType: \"Note\"}"));
}

TEST(ElementEnd, TakesNamesAgainBehindLogsAndTravelBugs) {
    EXPECT_EQ(waypoint("<gs:name>A</gs:name><gs:logs><gs:name>B</gs:name></gs:logs>"
                       "<gs:travelbugs><gs:name>C</gs:name></gs:travelbugs>"),
              "wayPoint: " + point("0", "0", "{comment: \"A\"}"));
    EXPECT_EQ(waypoint("<gs:logs/><gs:travelbugs/><gs:name>A</gs:name>"),
              "wayPoint: " + point("0", "0", "{comment: \"A\"}"));
}

TEST(ElementEnd, ForgetsLogsThatStandInTravelBugs) {
    // The start of the inner element is ignored, its end is not.
    EXPECT_EQ(waypoint("<gs:logs><gs:travelbugs/><gs:name>A</gs:name></gs:logs>"),
              "wayPoint: " + point("0", "0", "{}"));
    EXPECT_EQ(waypoint("<gs:logs><gs:logs/><gs:name>A</gs:name></gs:logs>"),
              "wayPoint: " + point("0", "0", "{comment: \"A\"}"));
}

TEST(ElementEnd, TakesNamesAgainBehindTheEndOfInnerTravelBugs) {
    // The logs were never entered: their start stood inside travel bugs.
    EXPECT_EQ(waypoint("<gs:travelbugs><gs:logs><gs:travelbugs/><gs:name>A</gs:name></gs:logs>"
                       "</gs:travelbugs>"),
              "wayPoint: " + point("0", "0", "{comment: \"A\"}"));
}

TEST(ElementEnd, TakesAddressAndNameOfGPX10AndTheLinkTextOfGPX11) {
    EXPECT_EQ(waypoint("<url>http://a.example</url><urlname>A</urlname>"),
              "wayPoint: " + point("0", "0", "{url: \"http://a.example\", urlName: \"A\"}"));
    EXPECT_EQ(waypoint("<link href='http://a.example'><text>A</text></link>"),
              "wayPoint: " + point("0", "0", "{urlName: \"A\"}"));
}

TEST(ElementEnd, TakesTextOnlyInsideALink) {
    EXPECT_EQ(waypoint("<text>A</text>"), "wayPoint: " + point("0", "0", "{}"));
    EXPECT_EQ(waypoint("<link><text>A</text></link><text>B</text>"),
              "wayPoint: " + point("0", "0", "{urlName: \"A\"}"));
    EXPECT_EQ(waypoint("<link><text>A</text><text/></link>"), "wayPoint: " + point("0", "0", "{}"));
}

TEST(ElementEnd, IgnoresTheAuthor) {
    EXPECT_EQ(waypoint("<author>A</author>"), "wayPoint: " + point("0", "0", "{}"));
    EXPECT_EQ(waypoint("<author><name>A</name></author>"),
              "wayPoint: " + point("0", "0", "{name: \"A\"}"));
}

TEST(ElementEnd, NeverPassesACourseOn) {
    EXPECT_THAT(importGPX("<trk><name>A</name><extensions><gpxdata:course><gpxdata:index>5"
                          "</gpxdata:index></gpxdata:course></extensions><trkseg/></trk>",
                          onlyTracks)
                    .data(),
                ElementsAre("newTrack: {name: \"A\"}", "newTrackSegment"));
}

TEST(ElementEnd, PassesOverTextThatNothingUses) {
    const std::string half(xmlLimits::textSize / 2 + 1, 'x');
    Importing importing(onlyWaypoints);
    const auto imported = importing.document(
        gpx("<wpt>" + half + "<a><b></b>" + half + "</a>" + half + "<name>n</name></wpt>"));
    EXPECT_EQ(imported.result, nullptr);
    EXPECT_THAT(imported.data(), ElementsAre(::testing::HasSubstr("name")));
}

TEST(ElementEnd, StopsAtTextThatGrowsBeyondTheLimitOverManyEnds) {
    // Each text is within the parser's limit; no start of an element empties them.
    const std::string half(xmlLimits::textSize / 2 + 1, 'x');
    Importing importing(onlyWaypoints);
    const auto imported =
        importing.document(gpx("<wpt><desc><a><b></b>" + half + "</a>" + half + "</desc></wpt>"));
    ASSERT_NE(imported.result, nullptr);
    EXPECT_EQ(imported.result->code(), NSXMLParserDelegateAbortedParseError);
    EXPECT_THAT(imported.data(), ElementsAre(::testing::HasSubstr("text of an element is too "
                                                                  "long")));
}

} // namespace
} // namespace pelluvia
