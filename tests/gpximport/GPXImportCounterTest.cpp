// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXImportCounter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/xml/XMLParser.h>
#include <tests/gpximport/Importing.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

namespace pelluvia {
namespace {

using testing::gpx;
using testing::TemporaryFolder;

/// Parses a document for the counter.
void count(GPXImportCounter &counter, std::string_view xml) {
    const TemporaryFolder folder;
    const auto parser =
        XMLParser::initWithContentsOfURL(URL::fileURLWithPath(folder.write("document.gpx", xml)));
    parser->setDelegate(&counter);
    EXPECT_TRUE(parser->parse()) << xml;
}

[[nodiscard]] std::string counts(const GPXImportCounter &counter) {
    return "wpt " + std::to_string(counter.waypoints()) + " trk " +
           std::to_string(counter.tracks()) + " trkseg " + std::to_string(counter.tracksegments()) +
           " rte " + std::to_string(counter.routes()) + " rtept " +
           std::to_string(counter.routepoints());
}

[[nodiscard]] std::string flags(const GPXImportCounter &counter) {
    std::string found;
    found += counter.hasName() ? "name " : "";
    found += counter.hasComment() ? "cmt " : "";
    found += counter.hasDescription() ? "desc " : "";
    found += counter.hasType() ? "type " : "";
    found += counter.hasSrc() ? "src " : "";
    found += counter.hasLink() ? "link " : "";
    return found;
}

constexpr std::string_view nothing = "wpt 0 trk 0 trkseg 0 rte 0 rtept 0";

TEST(GPXImportCounter, ReportsNothingAtFirst) {
    const auto counter = GPXImportCounter::init();
    EXPECT_EQ(counts(*counter), nothing);
    EXPECT_EQ(flags(*counter), "");
}

TEST(GPXImportCounter, CountsTracksAndSegmentsButNotTheirPoints) {
    const auto counter = GPXImportCounter::init();
    const std::string segment = "<trkseg><trkpt lat='1' lon='2'/><trkpt lat='1' lon='2'/></trkseg>";
    const std::string track = "<trk>" + segment + segment + segment + "</trk>";
    count(*counter, gpx(track + track));
    EXPECT_EQ(counts(*counter), "wpt 0 trk 2 trkseg 6 rte 0 rtept 0");
    EXPECT_EQ(flags(*counter), "");
}

TEST(GPXImportCounter, CountsEveryKindByItself) {
    const auto counter = GPXImportCounter::init();
    count(*counter, gpx("<wpt/><wpt/><wpt/><rte><rtept/><rtept/></rte><trk><trkseg/></trk>"));
    EXPECT_EQ(counts(*counter), "wpt 3 trk 1 trkseg 1 rte 1 rtept 2");
}

TEST(GPXImportCounter, NotesEachDescriptiveElement) {
    for (const std::string name : {"name", "cmt", "desc", "type", "src", "link"}) {
        const auto counter = GPXImportCounter::init();
        count(*counter, gpx("<wpt><" + name + "/></wpt>"));
        EXPECT_EQ(flags(*counter), name + " ");
        EXPECT_EQ(counts(*counter), "wpt 1 trk 0 trkseg 0 rte 0 rtept 0");
    }
}

TEST(GPXImportCounter, NotesANameThatOnlyTheMetadataHold) {
    const auto counter = GPXImportCounter::init();
    count(*counter, gpx("<metadata><name>Rides</name></metadata>"));
    EXPECT_TRUE(counter->hasName());
    EXPECT_EQ(counts(*counter), nothing);
}

TEST(GPXImportCounter, ComparesNamesWithTheirCase) {
    const auto counter = GPXImportCounter::init();
    count(*counter, gpx("<WPT/><Trk/><NAME/><Link/>"));
    EXPECT_EQ(counts(*counter), nothing);
    EXPECT_EQ(flags(*counter), "");
}

TEST(GPXImportCounter, ComparesWholeNames) {
    const auto counter = GPXImportCounter::init();
    count(*counter, gpx("<wpts/><wp/><trkpt/><names/><rt/>"));
    EXPECT_EQ(counts(*counter), nothing);
    EXPECT_EQ(flags(*counter), "");
}

TEST(GPXImportCounter, CountsPrefixedElements) {
    const auto counter = GPXImportCounter::init();
    count(*counter, "<gpx:gpx xmlns:gpx='" PELLUVIA_GPX11_NAMESPACE
                    "'><gpx:wpt lat='1' lon='2'><gpx:name>A</gpx:name></gpx:wpt></gpx:gpx>");
    EXPECT_EQ(counts(*counter), "wpt 1 trk 0 trkseg 0 rte 0 rtept 0");
    EXPECT_EQ(flags(*counter), "name ");
}

TEST(GPXImportCounter, CountsInWhateverNamespaceAndPlace) {
    const auto counter = GPXImportCounter::init();
    count(*counter, "<root><wpt/><x:wpt xmlns:x='urn:elsewhere'><rtept/></x:wpt>"
                    "<gs:type xmlns:gs='" PELLUVIA_GEOCACHE_NAMESPACE "'/></root>");
    EXPECT_EQ(counts(*counter), "wpt 2 trk 0 trkseg 0 rte 0 rtept 1");
    EXPECT_EQ(flags(*counter), "type ");
}

TEST(GPXImportCounter, SumsUpSeveralDocumentsUntilReset) {
    const auto counter = GPXImportCounter::init();
    count(*counter, gpx("<wpt><cmt/></wpt>"));
    count(*counter, gpx("<wpt/><trk/>"));
    EXPECT_EQ(counts(*counter), "wpt 2 trk 1 trkseg 0 rte 0 rtept 0");
    EXPECT_EQ(flags(*counter), "cmt ");
    counter->reset();
    EXPECT_EQ(counts(*counter), nothing);
    EXPECT_EQ(flags(*counter), "");
}

TEST(GPXImportCounter, LetsItsOwnerSetEveryValue) {
    const auto counter = GPXImportCounter::init();
    counter->setWaypoints(1);
    counter->setTracks(-2);
    counter->setTracksegments(3);
    counter->setRoutes(4);
    counter->setRoutepoints(5);
    EXPECT_EQ(counts(*counter), "wpt 1 trk -2 trkseg 3 rte 4 rtept 5");
    counter->setHasName(true);
    counter->setHasDescription(true);
    counter->setHasSrc(true);
    EXPECT_EQ(flags(*counter), "name desc src ");
    counter->setHasComment(true);
    counter->setHasType(true);
    counter->setHasLink(true);
    counter->setHasName(false);
    EXPECT_EQ(flags(*counter), "cmt desc type src link ");
    counter->reset();
    EXPECT_EQ(counts(*counter), nothing);
    EXPECT_EQ(flags(*counter), "");
}

TEST(GPXImportCounter, StopsAtTheLargestCount) {
    const auto counter = GPXImportCounter::init();
    constexpr auto largest = std::numeric_limits<std::int32_t>::max();
    counter->setWaypoints(largest - 1);
    count(*counter, gpx("<wpt/><wpt/><wpt/>"));
    EXPECT_EQ(counter->waypoints(), largest);
}

TEST(GPXImportCounter, AsksTheParserForNamesOnly) {
    EXPECT_TRUE(GPXImportCounter::init()->wantsElementNamesOnly());
}

} // namespace
} // namespace pelluvia
