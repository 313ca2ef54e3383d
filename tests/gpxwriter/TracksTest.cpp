// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <limits>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

using TrackStart = WriterTest;
using TrackSegment = WriterTest;
using TrackEnd = WriterTest;

std::string course(const std::string &index) {
    return "<extensions>\n<gpxdata:course xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">\n"
           "\t<index>" +
           index + "</index>\n</gpxdata:course>\n</extensions>\n";
}

TEST_F(TrackStart, WithoutAnythingIsNamedUnnamed) {
    GPXWriteTrackStart(document, nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(written(), "<trk>\n<name>unnamed</name>\n");
    EXPECT_TRUE(document->inTrack);
    EXPECT_FALSE(document->inTrackSegment);
}

TEST_F(TrackStart, WritesNameAndDescriptionEscapedAndNoAuthor) {
    GPXWriteTrackStart(document, "A & B", "<fast>", "Somebody", nullptr);
    EXPECT_EQ(written(), "<trk>\n<name>A &amp; B</name>\n<desc>&lt;fast&gt;</desc>\n");
}

TEST_F(TrackStart, AnEmptyNameIsAName) {
    const Dictionary extras = dictionaryOf(extras::name, "other"sv);
    GPXWriteTrackStart(document, "", nullptr, nullptr, &extras);
    EXPECT_EQ(written(), "<trk>\n<name></name>\n");
}

TEST_F(TrackStart, WithCourseIndexOnlyIsNamedAfterItAndHasNoNumber) {
    const Dictionary extras = dictionaryOf(extras::courseIndex, 4);
    GPXWriteTrackStart(document, nullptr, nullptr, nullptr, &extras);
    EXPECT_EQ(written(), "<trk>\n<name>4</name>\n" + course("4"));
}

TEST_F(TrackStart, WithIndexAndCourseIndexIsNamedAfterTheIndex) {
    Dictionary extras = dictionaryOf(extras::courseIndex, 4);
    extras.set(extras::index, Value(2));
    GPXWriteTrackStart(document, nullptr, nullptr, nullptr, &extras);
    EXPECT_EQ(written(), "<trk>\n<name>2</name>\n<number>2</number>\n" + course("4"));
}

TEST_F(TrackStart, NumbersAreWrittenBesideANameAndEvenWhenZero) {
    Dictionary extras = dictionaryOf(extras::index, 0);
    extras.set(extras::courseIndex, Value(std::numeric_limits<int>::min()));
    GPXWriteTrackStart(document, "n", "d", nullptr, &extras);
    EXPECT_EQ(written(), "<trk>\n<name>n</name>\n<desc>d</desc>\n<number>0</number>\n" +
                             course("-2147483648"));
}

TEST_F(TrackStart, ClosesAnOpenSegmentAndTrack) {
    GPXWriteTrackSegment(document);
    newlyWritten();
    GPXWriteTrackStart(document, "n", nullptr, nullptr, nullptr);
    EXPECT_EQ(newlyWritten(), "</trkseg>\n</trk>\n<trk>\n<name>n</name>\n");
    EXPECT_FALSE(document->inTrackSegment);
}

TEST_F(TrackStart, LeavesAnOpenRouteOpen) {
    GPXWriteRouteStart(document, 0, nullptr, nullptr);
    GPXWriteTrackStart(document, "n", nullptr, nullptr, nullptr);
    EXPECT_EQ(closed(), "<rte>\n<trk>\n<name>n</name>\n</trk>\n</rte>\n" + documentEnd);
}

TEST_F(TrackStart, WithADictionaryTakesItsTextsAndNumbers) {
    Dictionary dictionary = dictionaryOf(extras::name, "Ride"sv);
    dictionary.set(extras::description, Value("long"sv));
    dictionary.set(extras::author, Value("Somebody"sv));
    dictionary.set(extras::index, Value(3));
    GPXWriteTrackStartWithDictionary(document, &dictionary);
    EXPECT_EQ(written(), "<trk>\n<name>Ride</name>\n<desc>long</desc>\n<number>3</number>\n");
}

TEST_F(TrackStart, WithADictionaryTakesNoTextThatIsNotASCII) {
    Dictionary dictionary = dictionaryOf(extras::name, "Z\xC3\xBCrich"sv);
    dictionary.set(extras::description, Value("sch\xC3\xB6n"sv));
    dictionary.set(extras::index, Value(3));
    GPXWriteTrackStartWithDictionary(document, &dictionary);
    EXPECT_EQ(written(), "<trk>\n<name>3</name>\n<number>3</number>\n");
}

TEST_F(TrackStart, WithANullDictionaryIsNamedUnnamed) {
    GPXWriteTrackStartWithDictionary(document, nullptr);
    EXPECT_EQ(written(), "<trk>\n<name>unnamed</name>\n");
}

TEST_F(TrackSegment, OnAFreshHandleOpensAnUnnamedTrack) {
    GPXWriteTrackSegment(document);
    EXPECT_EQ(written(), "<trk>\n<name>unnamed</name>\n<trkseg>\n");
    EXPECT_TRUE(document->inTrack);
    EXPECT_TRUE(document->inTrackSegment);
}

TEST_F(TrackSegment, EndsAnOpenSegment) {
    GPXWriteTrackStart(document, "n", nullptr, nullptr, nullptr);
    newlyWritten();
    GPXWriteTrackSegment(document);
    GPXWriteTrackSegment(document);
    EXPECT_EQ(newlyWritten(), "<trkseg>\n</trkseg>\n<trkseg>\n");
}

TEST_F(TrackSegment, EndedTwiceWritesNothingTheSecondTime) {
    GPXWriteTrackSegmentEnd(document);
    EXPECT_EQ(newlyWritten(), "");
    GPXWriteTrackSegment(document);
    newlyWritten();
    GPXWriteTrackSegmentEnd(document);
    EXPECT_EQ(newlyWritten(), "</trkseg>\n");
    EXPECT_TRUE(document->inTrack);
    GPXWriteTrackSegmentEnd(document);
    EXPECT_EQ(newlyWritten(), "");
}

TEST_F(TrackSegment, EndsWithTheCollectedExtensionsOnce) {
    GPXWriteTrackSegment(document);
    newlyWritten();
    document->segmentExtensions = "<a>&raw;</a>\n";
    GPXWriteTrackSegment(document);
    EXPECT_EQ(newlyWritten(), "<extensions>\n<a>&raw;</a>\n</extensions>\n</trkseg>\n<trkseg>\n");
    EXPECT_EQ(document->segmentExtensions, "");
    GPXWriteTrackSegmentEnd(document);
    EXPECT_EQ(newlyWritten(), "</trkseg>\n");
}

TEST_F(TrackEnd, EndedTwiceWritesNothingTheSecondTime) {
    GPXWriteTrackEnd(document);
    EXPECT_EQ(newlyWritten(), "");
    GPXWriteTrackSegment(document);
    newlyWritten();
    GPXWriteTrackEnd(document);
    EXPECT_EQ(newlyWritten(), "</trkseg>\n</trk>\n");
    EXPECT_FALSE(document->inTrack);
    EXPECT_FALSE(document->inTrackSegment);
    GPXWriteTrackEnd(document);
    EXPECT_EQ(newlyWritten(), "");
}

TEST_F(TrackEnd, OfATrackWithoutASegmentEndsTheTrackOnly) {
    GPXWriteTrackStart(document, "n", nullptr, nullptr, nullptr);
    newlyWritten();
    GPXWriteTrackEnd(document);
    EXPECT_EQ(newlyWritten(), "</trk>\n");
}

} // namespace
} // namespace pelluvia
