// SPDX-License-Identifier: MIT

// The examples of the receivers' descriptions, at work between an importer and an exporter.

#include <Pelluvia/gpximport/GPXFileImporter.h>
#include <Pelluvia/gpxwriter/GPXExporter.h>
#include <Pelluvia/model/ForwardingReceiver.h>
#include <Pelluvia/model/GPXNamespaces.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/model/OrderChecker.h>
#include <Pelluvia/model/TeeReceiver.h>
#include <Pelluvia/recording/RecordingGPSOutput.h>
#include <tests/support/ExpectOrdered.h>
#include <tests/support/TemporaryFolder.h>

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace pelluvia {
namespace {

/// Two waypoints, and a track of one point with and one without a time.
std::string ride() {
    return "<gpx version=\"1.1\" xmlns=\"" PELLUVIA_GPX11_NAMESPACE "\">"
           "<wpt lat=\"1\" lon=\"2\"/><wpt lat=\"3\" lon=\"4\"/><trk><trkseg>"
           "<trkpt lat=\"5\" lon=\"6\"><time>2024-06-10T06:13:20Z</time></trkpt>"
           "<trkpt lat=\"7\" lon=\"8\"/></trkseg></trk></gpx>";
}

/// Imports the ride into a receiver.
void importRide(const std::shared_ptr<GPSOutputReceiver> &receiver) {
    const testing::TemporaryFolder folder;
    const auto importer = GPXFileImporter::initWithReceiver(receiver);
    const ErrorPtr error = importer->processFile(folder.write("ride.gpx", ride()));
    EXPECT_EQ(error, nullptr);
}

/// Counts waypoints.
class WaypointCounter : public NullReceiver {
  public:
    void wayPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override { ++count; }
    int count = 0;
};

TEST(ReceiverExamples, ANullReceiverIsTheBaseOfOneThatWantsWaypoints) {
    const auto counter = std::make_shared<WaypointCounter>();
    importRide(counter);
    EXPECT_EQ(counter->count, 2);
}

/// Leaves out the track points without a time.
class TimedPointsOnly : public ForwardingReceiver {
  public:
    using ForwardingReceiver::ForwardingReceiver;

    void trackPoint(GPSPoint point, const Dictionary *extra) override {
        if (point.time != 0) {
            ForwardingReceiver::trackPoint(point, extra);
        }
    }
};

TEST(ReceiverExamples, AForwardingReceiverIsTheBaseOfAFilter) {
    std::string text;
    const auto exporter = GPXExporter::initInMemory(text);
    const auto filter = std::make_shared<TimedPointsOnly>(exporter);
    importRide(filter);
    exporter->gpsStateChange(gpsState::finished);
    EXPECT_NE(text.find("<trkpt lat=\"5\""), std::string::npos);
    EXPECT_EQ(text.find("<trkpt lat=\"7\""), std::string::npos);
    EXPECT_NE(text.find("<wpt lat=\"3\""), std::string::npos);
}

TEST(ReceiverExamples, ATeeReceiverRecordsAndWrites) {
    std::string text;
    const auto exporter = GPXExporter::initInMemory(text);
    const auto recorder = RecordingGPSOutput::recorder();
    using Receivers = std::vector<std::shared_ptr<GPSOutputReceiver>>;
    const auto both = std::make_shared<TeeReceiver>(Receivers{recorder, exporter});
    importRide(both);
    both->gpsStateChange(gpsState::finished); // the exporter completes its file
    EXPECT_TRUE(text.ends_with("</gpx>\n"));
    EXPECT_EQ(recorder->receivedData()->array(recordedData::waypoint)->size(), 2U);
    EXPECT_EQ(recorder->receivedData()->array(recordedData::track)->size(), 1U);
}

TEST(ReceiverExamples, AnOrderCheckerFindsNoFaultInTheImporter) {
    const auto checker = std::make_shared<OrderChecker>();
    importRide(checker);
    testing::expectOrdered(*checker);
}

} // namespace
} // namespace pelluvia
