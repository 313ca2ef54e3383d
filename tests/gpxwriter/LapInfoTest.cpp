// SPDX-License-Identifier: MIT

#include <tests/gpxwriter/WriterTest.h>

#include <cmath>
#include <limits>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

using LapInfo = WriterTest;

constexpr double noPosition = 91.5;
const std::string lapStart = "<gpxdata:lap xmlns=\"" PELLUVIA_GPXDATA_NAMESPACE "\">\n";
const std::string lapEnd = "</gpxdata:lap>\n";
const std::string epoch = "\t<startTime>1970-01-01T00:00:00Z</startTime>\n";

GPSPoint pointAt(double latitude, double longitude, std::int64_t time = 0) {
    return {latitude, longitude, 77.0, time, 5};
}

class LapExtras : public WriterTest {
  protected:
    /// What the extras add to a lap.
    std::string added(const Dictionary &extras) {
        GPXWriteLapInfo(document, pointAt(noPosition, 0), pointAt(noPosition, 0), &extras);
        const std::string text = newlyWritten();
        const std::size_t begin = text.find(epoch) + epoch.size();
        EXPECT_TRUE(text.ends_with(lapEnd));
        return text.substr(begin, text.size() - lapEnd.size() - begin);
    }
};

TEST_F(LapInfo, WithoutExtrasAndPositionsHasItsStartTimeOnly) {
    GPXWriteLapInfo(document, pointAt(noPosition, 0), pointAt(noPosition, 0), nullptr);
    EXPECT_EQ(written(), "<extensions>" + lapStart + epoch + lapEnd);
    EXPECT_TRUE(document->inDocumentExtensions);
}

TEST_F(LapInfo, WritesPositionsAndTheTimeOfTheStart) {
    GPXWriteLapInfo(document, pointAt(47.1, 8.5, 1591000000), pointAt(-47.2, -8.6, 1591000060),
                    nullptr);
    EXPECT_EQ(written(), "<extensions>" + lapStart +
                             "\t<startPoint lat=\"47.1\" lon=\"8.5\"/>\n"
                             "\t<endPoint lat=\"-47.2\" lon=\"-8.6\"/>\n"
                             "\t<startTime>2020-06-01T08:26:40Z</startTime>\n" +
                             lapEnd);
}

TEST_F(LapInfo, APositionIsWrittenOnlyBelow91) {
    GPXWriteLapInfo(document, pointAt(91.0, 1), pointAt(90.5, 1), nullptr);
    EXPECT_EQ(newlyWritten(), "<extensions>" + lapStart + "\t<endPoint lat=\"90.5\" lon=\"1\"/>\n" +
                                  epoch + lapEnd);
    GPXWriteLapInfo(document, pointAt(90.5, 1), pointAt(91.0, 1), nullptr);
    EXPECT_EQ(newlyWritten(),
              lapStart + "\t<startPoint lat=\"90.5\" lon=\"1\"/>\n" + epoch + lapEnd);
    GPXWriteLapInfo(document, pointAt(std::nan(""), 1),
                    pointAt(-std::numeric_limits<double>::infinity(), std::nan("")), nullptr);
    EXPECT_EQ(newlyWritten(),
              lapStart + "\t<endPoint lat=\"-inf\" lon=\"nan\"/>\n" + epoch + lapEnd);
}

TEST_F(LapInfo, AStartTimeThatCannotBeBrokenDownIsWrittenAsTimeZero) {
    for (const std::int64_t time :
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        newlyWritten();
        GPXWriteLapInfo(document, pointAt(noPosition, 0, time), pointAt(noPosition, 0), nullptr);
        EXPECT_TRUE(newlyWritten().ends_with(lapStart + epoch + lapEnd));
    }
}

TEST_F(LapInfo, TwoLapsShareOneExtensionsElement) {
    GPXWriteLapInfo(document, pointAt(noPosition, 0), pointAt(noPosition, 0), nullptr);
    GPXWriteLapInfo(document, pointAt(noPosition, 0), pointAt(noPosition, 0), nullptr);
    EXPECT_EQ(closed(), "<extensions>" + lapStart + epoch + lapEnd + lapStart + epoch + lapEnd +
                            "</extensions></gpx>\n");
}

TEST_F(LapInfo, EndsAnOpenTrack) {
    GPXWriteTrackSegment(document);
    newlyWritten();
    GPXWriteLapInfo(document, pointAt(noPosition, 0), pointAt(noPosition, 0), nullptr);
    EXPECT_TRUE(newlyWritten().starts_with("</trkseg>\n</trk>\n<extensions>" + lapStart));
}

TEST_F(LapInfo, TheIndexComesFirstEvenWhenZero) {
    const Dictionary extras = dictionaryOf(extras::index, 0);
    GPXWriteLapInfo(document, pointAt(1, 2), pointAt(noPosition, 0), &extras);
    EXPECT_EQ(written(), "<extensions>" + lapStart +
                             "\t<index>0</index>\n\t<startPoint lat=\"1\" lon=\"2\"/>\n" + epoch +
                             lapEnd);
}

TEST_F(LapExtras, AreWrittenInTheOrderOfTheFormat) {
    Dictionary extras;
    extras.set(extras::intensity, Value("active"sv));
    extras.set(extras::trigger, Value("manual"sv));
    extras.set(extras::altMax, Value(500.5));
    extras.set(extras::altMin, Value(-3));
    extras.set(extras::powerAvg, Value(210.0F));
    extras.set(extras::powerMax, Value(400.0F));
    extras.set(extras::speedMax, Value(12.5F));
    extras.set(extras::speedAvg, Value(7.25F));
    extras.set(extras::cadenceMax, Value(110));
    extras.set(extras::cadenceAvg, Value(85));
    extras.set(extras::hrMax, Value(180));
    extras.set(extras::hrAvg, Value(150));
    extras.set(extras::trackName, Value("A & B"sv));
    extras.set(extras::trackNumber, Value(9));
    extras.set(extras::trackIndex, Value(3));
    extras.set(extras::trackEnd, Value(8));
    extras.set(extras::distance, Value(1000));
    extras.set(extras::calories, Value(55));
    extras.set(extras::totalTime, Value(61.5F));
    EXPECT_EQ(added(extras), "\t<elapsedTime>61.500000</elapsedTime>\n"
                             "\t<calories>55</calories>\n"
                             "\t<distance>1000.000000</distance>\n"
                             "\t<trackReference trackName=\"A &amp; B\">\n"
                             "\t\t<startPoint>3</startPoint>\n"
                             "\t\t<endPoint>8</endPoint>\n"
                             "\t</trackReference>\n"
                             "\t<summary kind=\"avg\" name=\"hr\">150</summary>\n"
                             "\t<summary kind=\"max\" name=\"hr\">180</summary>\n"
                             "\t<summary kind=\"avg\" name=\"cadence\">85</summary>\n"
                             "\t<summary kind=\"max\" name=\"cadence\">110</summary>\n"
                             "\t<summary kind=\"avg\" name=\"speed\">7.250000</summary>\n"
                             "\t<summary kind=\"max\" name=\"speed\">12.500000</summary>\n"
                             "\t<summary kind=\"max\" name=\"power\">400.000000</summary>\n"
                             "\t<summary kind=\"avg\" name=\"power\">210.000000</summary>\n"
                             "\t<summary kind=\"min\" name=\"altitude\">-3.000000</summary>\n"
                             "\t<summary kind=\"max\" name=\"altitude\">500.500000</summary>\n"
                             "\t<trigger kind=\"manual\"/>\n"
                             "\t<intensity>active</intensity>\n");
}

TEST_F(LapExtras, ValuesOfZeroAreLeftOut) {
    Dictionary extras;
    for (const Key &key :
         {extras::totalTime, extras::calories, extras::distance, extras::trackNumber,
          extras::trackIndex, extras::hrAvg, extras::hrMax, extras::cadenceAvg, extras::cadenceMax,
          extras::speedAvg, extras::speedMax, extras::powerMax, extras::powerAvg, extras::altMin,
          extras::altMax}) {
        extras.set(key, Value(-0.0));
    }
    EXPECT_EQ(added(extras), "");
    EXPECT_EQ(added(Dictionary()), "");
}

TEST_F(LapExtras, NumbersThatAreNotFiniteCountAsFloatsOnly) {
    Dictionary extras = dictionaryOf(extras::totalTime, std::nan(""));
    extras.set(extras::calories, Value(std::nan("")));
    extras.set(extras::hrMax, Value(-1e308));
    extras.set(extras::altMax, Value(1e308));
    EXPECT_EQ(added(extras), "\t<elapsedTime>nan</elapsedTime>\n"
                             "\t<summary kind=\"max\" name=\"hr\">-2147483648</summary>\n"
                             "\t<summary kind=\"max\" name=\"altitude\">inf</summary>\n");
}

TEST_F(LapExtras, ATrackIndexAloneMakesAReferenceToTrackZero) {
    EXPECT_EQ(added(dictionaryOf(extras::trackIndex, 3)),
              "\t<trackReference trackNumber=\"0\">\n\t\t<startPoint>3</startPoint>\n"
              "\t</trackReference>\n");
}

TEST_F(LapExtras, ATrackEndAloneMakesNoReference) {
    EXPECT_EQ(added(dictionaryOf(extras::trackEnd, 3)), "");
}

TEST_F(LapExtras, ATrackNumberOrAnEmptyNameMakesAReference) {
    EXPECT_EQ(added(dictionaryOf(extras::trackNumber, -2)),
              "\t<trackReference trackNumber=\"-2\">\n\t</trackReference>\n");
    EXPECT_EQ(added(dictionaryOf(extras::trackName, ""sv)),
              "\t<trackReference trackName=\"\">\n\t</trackReference>\n");
}

TEST_F(LapExtras, ALongTrackNameIsCut) {
    const std::string name = std::string(510, 'a') + "\"b";
    EXPECT_EQ(added(dictionaryOf(extras::trackName, std::string_view(name))),
              "\t<trackReference trackName=\"" + std::string(510, 'a') +
                  "\">\n\t</trackReference>\n");
}

TEST_F(LapExtras, TriggerAndIntensityAreWrittenRawAndWhole) {
    const std::string text = "<&\">" + std::string(300'000, 'x');
    Dictionary extras = dictionaryOf(extras::trigger, std::string_view(text));
    extras.set(extras::intensity, Value(std::string_view(text)));
    EXPECT_TRUE(added(extras) ==
                "\t<trigger kind=\"" + text + "\"/>\n\t<intensity>" + text + "</intensity>\n");
}

TEST_F(LapExtras, TextsThatAreNotASCIIAreAbsent) {
    Dictionary extras = dictionaryOf(extras::trackName, "Z\xC3\xBCrich"sv);
    extras.set(extras::trigger, Value("m\xC3\xBC"sv));
    extras.set(extras::intensity, Value("m\xC3\xBC"sv));
    EXPECT_EQ(added(extras), "");
}

} // namespace
} // namespace pelluvia
