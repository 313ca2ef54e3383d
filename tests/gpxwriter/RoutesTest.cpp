// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <limits>

namespace pelluvia {
namespace {

using Routes = WriterTest;

TEST_F(Routes, StartWithNameDescriptionAndNumber) {
    GPXWriteRouteStart(document, 7, "A & B", "there");
    EXPECT_EQ(written(),
              "<rte>\n<name>A &amp; B</name>\n<desc>there</desc>\n\t<number>7</number>\n");
    EXPECT_TRUE(document->inRoute);
}

TEST_F(Routes, ANumberOfZeroAndMissingTextsAreNotWritten) {
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    EXPECT_EQ(written(), "<rte>\n");
}

TEST_F(Routes, AnEmptyTextIsWritten) {
    GPXWriteRouteStart(document, std::numeric_limits<int>::min(), "", "");
    EXPECT_EQ(written(), "<rte>\n<name></name>\n<desc></desc>\n\t<number>-2147483648</number>\n");
}

TEST_F(Routes, StartEndsAnOpenTrackAndAnOpenRoute) {
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    GPXWriteTrackSegment(document);
    newlyWritten();
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    EXPECT_EQ(newlyWritten(), "</trkseg>\n</trk>\n</rte>\n<rte>\n");
}

TEST_F(Routes, EndedTwiceWritesNothingTheSecondTime) {
    GPXWriteRouteEnd(document);
    EXPECT_EQ(newlyWritten(), "");
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    newlyWritten();
    GPXWriteRouteEnd(document);
    EXPECT_EQ(newlyWritten(), "</rte>\n");
    EXPECT_FALSE(document->inRoute);
    GPXWriteRouteEnd(document);
    EXPECT_EQ(newlyWritten(), "");
}

} // namespace
} // namespace pelluvia
