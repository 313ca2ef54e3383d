// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpximport/GPXImportCounter.h>
#include <Pelluvia/model/GPXNamespaces.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/xml/XMLParser.h>
#include <tests/support/SpyReceiver.h>

#include <array>
#include <cstdint>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <string_view>

/// \file
/// Elements that come from somebody else than a parser: they have names, and numbers of no
/// vocabulary.

namespace pelluvia {
namespace {

using ::testing::ElementsAre;
using testing::SpyReceiver;

XMLElement element(std::string_view uri, std::string_view name, std::uint16_t number = 0) {
    return {.localName = name,
            .namespaceURI = uri,
            .prefix = {},
            .nameNumber = number,
            .namespaceNumber = number};
}

/// What a host does that has a reader of its own.
struct Direct {
    std::shared_ptr<SpyReceiver> spy = std::make_shared<SpyReceiver>();
    std::shared_ptr<GPXFileImporter> importer = GPXFileImporter::initWithReceiver(spy);
    std::unique_ptr<XMLParser> parser = XMLParser::initWithData({});
    std::uint16_t number; ///< of every name and namespace

    explicit Direct(std::uint16_t itsNumber) : number(itsNumber) {}

    void start(std::string_view uri, std::string_view name, const XMLAttributes &attributes = {}) {
        importer->didStartElement(*parser, element(uri, name, number), attributes);
    }
    void end(std::string_view uri, std::string_view name) {
        importer->didEndElement(*parser, element(uri, name, number));
    }
    void value(std::string_view uri, std::string_view name, std::string_view text) {
        start(uri, name);
        importer->foundCharacters(*parser, text);
        end(uri, name);
    }
};

/// 0, and one that is beyond every vocabulary.
class UnnumberedElements : public ::testing::TestWithParam<std::uint16_t> {};
INSTANTIATE_TEST_SUITE_P(Numbers, UnnumberedElements, ::testing::Values(0, 60'000));

TEST_P(UnnumberedElements, AreLookedUpByTheImporter) {
    const std::array attributes = {XMLAttribute{.localName = "lat", .prefix = {}, .value = "1.5"},
                                   XMLAttribute{.localName = "lon", .prefix = {}, .value = "2.5"}};
    Direct direct(GetParam());
    constexpr std::string_view gpx11 = PELLUVIA_GPX11_NAMESPACE;
    direct.start(gpx11, "trk");
    direct.start(gpx11, "trkseg");
    direct.start(gpx11, "trkpt", XMLAttributes(attributes));
    direct.value(gpx11, "ele", "3.5");
    direct.value(PELLUVIA_GPXTPX1_NAMESPACE, "hr", "120");
    direct.value("urn:elsewhere", "hr", "99");
    direct.value(gpx11, "unknown", "98");
    direct.end(gpx11, "trkpt");
    EXPECT_THAT(direct.spy->calls,
                ElementsAre("newTrack: nil", "newTrackSegment",
                            "trackPoint: (1.5, 2.5, 3.5, 0, 0) extra: {hr: int 120}"));
}

TEST_P(UnnumberedElements, AreLookedUpWhenTheImporterIsAskedForItsInterest) {
    const Direct direct(GetParam());
    const auto interest = [&](std::string_view uri, std::string_view name) {
        return direct.importer->interestIn(element(uri, name, GetParam()), {});
    };
    EXPECT_EQ(interest(PELLUVIA_GPX10_NAMESPACE, "wpt"), XMLInterest::tags);
    EXPECT_EQ(interest(PELLUVIA_GPX10_NAMESPACE, "name"), XMLInterest::all);
    EXPECT_EQ(interest(PELLUVIA_GPXDATA_NAMESPACE, "name"), XMLInterest::nothing);
    EXPECT_EQ(interest("", "unknown"), XMLInterest::nothing);
}

TEST_P(UnnumberedElements, AreLookedUpByTheCounter) {
    const auto counter = GPXImportCounter::init();
    const auto parser = XMLParser::initWithData({});
    for (const std::string_view name : {"wpt", "wpt", "trkseg", "desc", "unknown", ""}) {
        counter->didStartElement(*parser, element(PELLUVIA_GPX11_NAMESPACE, name, GetParam()), {});
    }
    EXPECT_EQ(counter->waypoints(), 2);
    EXPECT_EQ(counter->tracksegments(), 1);
    EXPECT_TRUE(counter->hasDescription());
    EXPECT_FALSE(counter->hasName());
    EXPECT_FALSE(counter->hasForeignPoints());
    EXPECT_EQ(counter->interestIn(element("", "rte", GetParam()), {}), XMLInterest::tags);
}

} // namespace
} // namespace pelluvia
