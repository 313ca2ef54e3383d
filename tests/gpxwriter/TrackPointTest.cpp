// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <cmath>
#include <cstdio>
#include <limits>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

constexpr std::int64_t someTime = 1591000000;
const std::string someTimeElement = "<time>2020-06-01T08:26:40Z</time>";
const std::string dataPoint = "<gpxdata:dataPt xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">";

class TrackPoint : public WriterTest {
  protected:
    void SetUp() override {
        WriterTest::SetUp();
        GPXWriteTrackStart(document, "n", nullptr, nullptr, nullptr);
        GPXWriteTrackSegment(document);
        newlyWritten();
    }
};

using FirstTrackPoint = WriterTest;
using DataOnlyPoint = TrackPoint;

TEST_F(TrackPoint, IsOneLine) {
    GPXWriteTrackPoint(document, someTime, nullptr, 47.1, 8.5, 430);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"47.1\" lon=\"8.5\"><ele>430.000000</ele>" +
                                  someTimeElement + "</trkpt>\n");
}

TEST_F(TrackPoint, LeavesOutTimeZeroAndAltitudeZero) {
    GPXWriteTrackPoint(document, 0, nullptr, 47.1, 8.5, 0.0);
    GPXWriteTrackPoint(document, 0, nullptr, 47.1, 8.5, -0.0);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"47.1\" lon=\"8.5\"></trkpt>\n"
                              "\t<trkpt lat=\"47.1\" lon=\"8.5\"></trkpt>\n");
}

TEST_F(TrackPoint, ATimeThatCannotBeBrokenDownCountsAsNone) {
    GPXWriteTrackPoint(document, std::numeric_limits<std::int64_t>::min(), nullptr, 1, 2, 0);
    GPXWriteTrackPoint(document, std::numeric_limits<std::int64_t>::max(), nullptr, 1, 2, 0);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"1\" lon=\"2\"></trkpt>\n"
                              "\t<trkpt lat=\"1\" lon=\"2\"></trkpt>\n");
}

TEST_F(TrackPoint, AnEmptyDictionaryMakesAnEmptyExtensionsElement) {
    const Dictionary empty;
    GPXWriteTrackPoint(document, 0, &empty, 47.1, 8.5, 0);
    EXPECT_EQ(newlyWritten(),
              "\t<trkpt lat=\"47.1\" lon=\"8.5\"><extensions></extensions></trkpt>\n");
}

TEST_F(TrackPoint, ExtensionsHoldTrainingValuesAndSpeed) {
    Dictionary extras = dictionaryOf(extras::speed, 3.25F);
    extras.set(extras::hr, Value(120));
    GPXWriteTrackPoint(document, someTime, &extras, 47.1, 8.5, 430);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"47.1\" lon=\"8.5\"><ele>430.000000</ele>" +
                                  someTimeElement +
                                  "<extensions><gpxdata:hr>120</gpxdata:hr>"
                                  "<gpxtpx:TrackPointExtension><speed>3.250000</speed>"
                                  "</gpxtpx:TrackPointExtension></extensions></trkpt>\n");
}

TEST_F(TrackPoint, ASpeedOfZeroIsWrittenAndOneThatIsNoNumberIsNot) {
    const Dictionary zero = dictionaryOf(extras::speed, 0.1);
    GPXWriteTrackPoint(document, 0, &zero, 1, 2, 0);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"1\" lon=\"2\"><extensions>"
                              "<gpxtpx:TrackPointExtension><speed>0.100000</speed>"
                              "</gpxtpx:TrackPointExtension></extensions></trkpt>\n");
    const Dictionary text = dictionaryOf(extras::speed, "fast"sv);
    GPXWriteTrackPoint(document, 0, &text, 1, 2, 0);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"1\" lon=\"2\"><extensions></extensions></trkpt>\n");
}

TEST_F(TrackPoint, ALatitudeOf91IsOrdinary) {
    GPXWriteTrackPoint(document, 0, nullptr, 91.0, 8.5, 0);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"91\" lon=\"8.5\"></trkpt>\n");
}

TEST_F(TrackPoint, PositionsThatAreNotFiniteAreOrdinaryUnlessAbove91) {
    const double infinity = std::numeric_limits<double>::infinity();
    GPXWriteTrackPoint(document, 0, nullptr, std::nan(""), infinity, std::nan(""));
    GPXWriteTrackPoint(document, 0, nullptr, -infinity, -infinity, infinity);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"nan\" lon=\"inf\"><ele>nan</ele></trkpt>\n"
                              "\t<trkpt lat=\"-inf\" lon=\"-inf\"><ele>inf</ele></trkpt>\n");
    GPXWriteTrackPoint(document, 0, nullptr, infinity, 0, 0);
    EXPECT_EQ(newlyWritten(), "");
}

TEST_F(TrackPoint, TheLongestPointIsWrittenWhole) {
    const double huge = -std::numeric_limits<double>::max();
    Dictionary extras = dictionaryOf(extras::speed, -std::numeric_limits<float>::max());
    for (const Key &key : {extras::hr, extras::cadence, extras::temp}) {
        extras.set(key, Value(std::numeric_limits<int>::min()));
    }
    extras.set(extras::distance, Value(-std::numeric_limits<float>::max()));
    extras.set(extras::sensor, Value(std::string_view(std::string(254, 's'))));
    std::array<char, 2048> expected;
    std::snprintf(expected.data(), expected.size(),
                  "\t<trkpt lat=\"%1.10g\" lon=\"%1.10g\"><ele>%f</ele>"
                  "<time>-2147481748-01-01T00:00:00Z</time><extensions>"
                  "<gpxdata:hr>-2147483648</gpxdata:hr>"
                  "<gpxdata:cadence>-2147483648</gpxdata:cadence>"
                  "<gpxdata:temp>-2147483648</gpxdata:temp>"
                  "<gpxdata:distance sensor=\"%s\">%f</gpxdata:distance>"
                  "<gpxtpx:TrackPointExtension><speed>%f</speed></gpxtpx:TrackPointExtension>"
                  "</extensions></trkpt>\n",
                  huge, huge, huge, std::string(254, 's').c_str(),
                  -static_cast<double>(std::numeric_limits<float>::max()),
                  -static_cast<double>(std::numeric_limits<float>::max()));
    GPXWriteTrackPoint(document, -67768040609740800, &extras, huge, huge, huge);
    EXPECT_EQ(newlyWritten(), expected.data());
}

TEST_F(TrackPoint, ManyPointsPassThroughTheBufferUnchanged) {
    std::string expected;
    for (int i = 0; i < 20'000; ++i) {
        GPXWriteTrackPoint(document, 0, nullptr, 1, i, 0);
        expected += "\t<trkpt lat=\"1\" lon=\"" + std::to_string(i) + "\"></trkpt>\n";
    }
    EXPECT_TRUE(newlyWritten() == expected);
}

TEST_F(FirstTrackPoint, OpensATrackWithoutANameAndASegment) {
    GPXWriteTrackPoint(document, 0, nullptr, 1, 2, 0);
    EXPECT_EQ(written(), "<trk>\n<trkseg>\n\t<trkpt lat=\"1\" lon=\"2\"></trkpt>\n");
    EXPECT_TRUE(document->inTrack);
    EXPECT_TRUE(document->inTrackSegment);
}

TEST_F(FirstTrackPoint, OfAnOpenTrackOpensTheSegmentOnly) {
    GPXWriteTrackStart(document, "n", nullptr, nullptr, nullptr);
    newlyWritten();
    GPXWriteTrackPoint(document, 0, nullptr, 1, 2, 0);
    EXPECT_EQ(newlyWritten(), "<trkseg>\n\t<trkpt lat=\"1\" lon=\"2\"></trkpt>\n");
}

TEST_F(FirstTrackPoint, ThatIsDroppedStillOpensTrackAndSegment) {
    GPXWriteTrackPoint(document, someTime, nullptr, 91.5, 2, 3);
    EXPECT_EQ(written(), "<trk>\n<trkseg>\n");
    EXPECT_EQ(document->segmentExtensions, "");
}

TEST_F(DataOnlyPoint, IsKeptForTheEndOfTheSegmentWithTimeBeforeElevation) {
    Dictionary extras = dictionaryOf(extras::hr, 120);
    extras.set(extras::speed, Value(3.5F));
    GPXWriteTrackPoint(document, someTime, &extras, 91.5, 8.5, 430);
    EXPECT_EQ(newlyWritten(), "");
    GPXWriteTrackPoint(document, 0, &extras, 200, 8.5, 0);
    GPXWriteTrackPoint(document, 0, nullptr, 1, 2, 0);
    GPXWriteTrackSegmentEnd(document);
    EXPECT_EQ(newlyWritten(), "\t<trkpt lat=\"1\" lon=\"2\"></trkpt>\n"
                              "<extensions>\n" +
                                  dataPoint + someTimeElement +
                                  "<ele>430.000000</ele><hr>120</hr></gpxdata:dataPt>\n" +
                                  dataPoint +
                                  "<hr>120</hr></gpxdata:dataPt>\n"
                                  "</extensions>\n</trkseg>\n");
}

TEST_F(DataOnlyPoint, WithoutExtensionValuesIsDropped) {
    const Dictionary empty;
    const Dictionary speedOnly = dictionaryOf(extras::speed, 3.5F);
    GPXWriteTrackPoint(document, someTime, nullptr, 91.5, 8.5, 430);
    GPXWriteTrackPoint(document, someTime, &empty, 91.5, 8.5, 430);
    GPXWriteTrackPoint(document, someTime, &speedOnly, 91.5, 8.5, 430);
    EXPECT_EQ(document->segmentExtensions, "");
    EXPECT_EQ(newlyWritten(), "");
}

TEST_F(DataOnlyPoint, WithHugeValuesIsKeptWhole) {
    const double huge = std::numeric_limits<double>::max();
    Dictionary extras = dictionaryOf(extras::distance, std::numeric_limits<float>::max());
    extras.set(extras::sensor, Value(std::string_view(std::string(254, 's'))));
    GPXWriteTrackPoint(document, -67768040609740800, &extras, huge, huge, huge);
    std::array<char, 2048> expected;
    std::snprintf(expected.data(), expected.size(),
                  "%s<time>-2147481748-01-01T00:00:00Z</time><ele>%f</ele>"
                  "<distance sensor=\"%s\">%f</distance></gpxdata:dataPt>\n",
                  dataPoint.c_str(), huge, std::string(254, 's').c_str(),
                  static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_EQ(document->segmentExtensions, expected.data());
}

} // namespace
} // namespace pelluvia
