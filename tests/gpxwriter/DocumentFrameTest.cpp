// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <cerrno>
#include <type_traits>

namespace pelluvia {
namespace {

using DocumentFrame = WriterTest;

const std::string headerBeforeCreator =
    "<?xml version=\"1.0\" encoding=\"ISO-8859-1\" standalone=\"yes\"?>\n"
    "<gpx\n"
    "  xmlns=\"http://www.topografix.com/GPX/1/1\"\n"
    "  version=\"1.1\" creator=\"";
const std::string headerBehindCreator =
    "\"\n"
    "  xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\"\n"
    "  xmlns:gpxdata=\"http://" PELLUVIA_GPXDATA_HOST "/XML/GPXDATA/1/0\"\n"
    "  xmlns:geocache=\"http://www.groundspeak.com/cache/1/0\"\n"
    "  xmlns:gpxtpx=\"http://www.garmin.com/xmlschemas/TrackPointExtension/v2\"\n"
    "  xsi:schemaLocation=\"http://www.topografix.com/GPX/1/1 "
    "http://www.topografix.com/GPX/1/1/gpx.xsd\n"
    "http://" PELLUVIA_GPXDATA_HOST "/XML/GPXDATA/1/0 "
    "http://" PELLUVIA_GPXDATA_HOST "/Schemas/gpxdata10.xsd\">\n";

TEST_F(DocumentFrame, TheHeaderTemplateHasTheCreatorAsItsOnlyConversion) {
    EXPECT_EQ(GPX_Header, headerBeforeCreator + "%s" + headerBehindCreator);
}

TEST_F(DocumentFrame, TheHeaderHoldsTheCreatorUnescaped) {
    GPXWriteHeader(document, "A & \"B\" %s%d");
    EXPECT_EQ(written(), headerBeforeCreator + "A & \"B\" %s%d" + headerBehindCreator);
}

TEST_F(DocumentFrame, AHeaderWithoutACreatorHasAnEmptyOne) {
    GPXWriteHeader(document, nullptr);
    EXPECT_EQ(written(), headerBeforeCreator + headerBehindCreator);
}

TEST_F(DocumentFrame, AnEmptyDocumentEndsDirectlyAfterTheHeader) {
    GPXWriteHeader(document, "x");
    EXPECT_EQ(closed(), headerBeforeCreator + "x" + headerBehindCreator + "</gpx>\n");
}

TEST_F(DocumentFrame, AFreshDocumentHasNothingOpen) {
    EXPECT_FALSE(document->inTrack);
    EXPECT_FALSE(document->inTrackSegment);
    EXPECT_FALSE(document->inRoute);
    EXPECT_FALSE(document->inDocumentExtensions);
    EXPECT_EQ(document->segmentExtensions, "");
    static_assert(sizeof document->inTrack == 1);
}

TEST_F(DocumentFrame, ClosingEndsAllThatIsOpen) {
    GPXWriteLapInfo(document, {}, {}, nullptr);
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    GPXWriteTrackSegment(document);
    newlyWritten();
    GPXClose(std::exchange(document, nullptr));
    EXPECT_TRUE(
        testing::readFile(path).ends_with("<trkseg>\n"
                                          "</trkseg>\n</trk>\n</rte>\n</extensions></gpx>\n"));
}

TEST_F(DocumentFrame, CreatingTruncatesTheFile) {
    const std::string other = folder.write("other.gpx", "something long that was there before");
    GPXClose(GPXCreate(other.c_str()));
    EXPECT_EQ(testing::readFile(other), "</gpx>\n");
}

TEST(GPXCreate, IsNullForAPathInAMissingFolder) {
    const testing::TemporaryFolder folder;
    errno = 0;
    EXPECT_EQ(GPXCreate(folder.file("missing/out.gpx").c_str()), nullptr);
    EXPECT_EQ(errno, ENOENT);
}

TEST(GPXCreate, IsNullForAFolder) {
    const testing::TemporaryFolder folder;
    EXPECT_EQ(GPXCreate(folder.path().c_str()), nullptr);
    EXPECT_EQ(errno, EISDIR);
}

TEST(GPXCreate, IsNullForANullPath) {
    EXPECT_EQ(GPXCreate(nullptr), nullptr);
    EXPECT_EQ(errno, EINVAL);
}

TEST(CloseDocument, SaysThatAllArrived) {
    const testing::TemporaryFolder folder;
    EXPECT_FALSE(closeDocument(GPXCreate(folder.file("out.gpx").c_str())));
}

TEST(CloseDocument, SaysThatTheDiskIsFull) {
    const GPXRef document = GPXCreate("/dev/full");
    ASSERT_NE(document, nullptr);
    EXPECT_EQ(closeDocument(document), std::errc::no_space_on_device);
}

} // namespace
} // namespace pelluvia
