// SPDX-License-Identifier: MIT

#include <Pelluvia/gpxwriter/internal/PointExtensions.h>
#include <tests/gpxwriter/WriterTest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>

namespace pelluvia {
namespace {

using namespace std::string_view_literals;

/// The function's string, released; nothing for null.
std::optional<std::string> made(const Dictionary *extras, int usePrefix) {
    const std::unique_ptr<char, decltype(&std::free)> text(
        GPXMakePointExtensions(extras, usePrefix), &std::free);
    return text != nullptr ? std::optional<std::string>(text.get()) : std::nullopt;
}

/// All values, set in another order than the one in which they are written.
Dictionary allExtras() {
    Dictionary extras;
    extras.set(extras::speed, Value(3.5F));
    extras.set(extras::sensor, Value("Footpod"sv));
    extras.set(extras::distance, Value(1234.5F));
    extras.set(extras::temp, Value(21.9F));
    extras.set(extras::cadence, Value(80));
    extras.set(extras::hr, Value(120));
    extras.set(Key("unknown to writers"), Value(1));
    return extras;
}

TEST(GPXMakePointExtensions, WritesAllValuesInOrder) {
    const Dictionary extras = allExtras();
    EXPECT_EQ(made(&extras, 0), "<hr>120</hr><cadence>80</cadence><temp>21</temp>"
                                "<distance sensor=\"Footpod\">1234.500000</distance>");
    EXPECT_EQ(made(&extras, 1),
              "<gpxdata:hr>120</gpxdata:hr><gpxdata:cadence>80</gpxdata:cadence>"
              "<gpxdata:temp>21</gpxdata:temp>"
              "<gpxdata:distance sensor=\"Footpod\">1234.500000</gpxdata:distance>");
    EXPECT_EQ(made(&extras, -5), made(&extras, 1));
}

TEST(GPXMakePointExtensions, IsNullWhenThereIsNothingToWrite) {
    EXPECT_EQ(made(nullptr, 1), std::nullopt);
    const Dictionary empty;
    EXPECT_EQ(made(&empty, 0), std::nullopt);
    const Dictionary others = dictionaryOf(extras::speed, 3.5F);
    EXPECT_EQ(made(&others, 1), std::nullopt);
    const Dictionary wrongType = dictionaryOf(extras::hr, "120"sv);
    EXPECT_EQ(made(&wrongType, 1), std::nullopt);
}

TEST(GPXMakePointExtensions, PresentZeroesAreWritten) {
    Dictionary extras = dictionaryOf(extras::hr, 0);
    extras.set(extras::distance, Value(0.0F));
    EXPECT_EQ(made(&extras, 0), "<hr>0</hr><distance>0.000000</distance>");
}

TEST(GPXMakePointExtensions, ATemperatureLosesItsFraction) {
    const Dictionary cold = dictionaryOf(extras::temp, -0.9F);
    EXPECT_EQ(made(&cold, 0), "<temp>0</temp>");
    const Dictionary colder = dictionaryOf(extras::temp, -7.9F);
    EXPECT_EQ(made(&colder, 0), "<temp>-7</temp>");
}

TEST(GPXMakePointExtensions, DistanceAndSensorStandAloneToo) {
    const Dictionary distance = dictionaryOf(extras::distance, 2);
    EXPECT_EQ(made(&distance, 1), "<gpxdata:distance>2.000000</gpxdata:distance>");
    const Dictionary sensor = dictionaryOf(extras::sensor, "Footpod"sv);
    EXPECT_EQ(made(&sensor, 1), "<gpxdata:sensor kind=\"Footpod\"/>");
    EXPECT_EQ(made(&sensor, 0), "<sensor kind=\"Footpod\"/>");
}

TEST(GPXMakePointExtensions, TheSensorIsNotEscaped) {
    const Dictionary sensor = dictionaryOf(extras::sensor, "a<b>&\"%d"sv);
    EXPECT_EQ(made(&sensor, 0), "<sensor kind=\"a<b>&\"%d\"/>");
}

TEST(GPXMakePointExtensions, ASensorThatDoesNotFitItsBufferIsEmpty) {
    const Dictionary longest =
        dictionaryOf(extras::sensor, std::string_view(std::string(254, 's')));
    EXPECT_EQ(made(&longest, 0), "<sensor kind=\"" + std::string(254, 's') + "\"/>");
    Dictionary tooLong = dictionaryOf(extras::sensor, std::string_view(std::string(255, 's')));
    EXPECT_EQ(made(&tooLong, 0), "<sensor kind=\"\"/>");
    tooLong.set(extras::distance, Value(1));
    EXPECT_EQ(made(&tooLong, 0), "<distance sensor=\"\">1.000000</distance>");
    const Dictionary accented = dictionaryOf(extras::sensor, "Z\xC3\xBCrich"sv);
    EXPECT_EQ(made(&accented, 0), "<sensor kind=\"\"/>");
}

TEST(GPXMakePointExtensions, AnEmbeddedNulEndsTheSensor) {
    const Dictionary sensor = dictionaryOf(extras::sensor, "one\0two"sv);
    EXPECT_EQ(made(&sensor, 0), "<sensor kind=\"one\"/>");
}

TEST(GPXMakePointExtensions, NumbersBeyondTheirWidthAreDefined) {
    Dictionary extras = dictionaryOf(extras::hr, -1e308);
    extras.set(extras::cadence, Value(std::nan("")));
    extras.set(extras::temp, Value(std::numeric_limits<std::int64_t>::max()));
    extras.set(extras::distance, Value(1e308));
    EXPECT_EQ(made(&extras, 0), "<hr>-2147483648</hr><cadence>0</cadence><temp>2147483647</temp>"
                                "<distance>inf</distance>");
}

TEST(GPXMakePointExtensions, TheLongestTextFitsTheRoomThatIsPromised) {
    Dictionary extras;
    for (const Key &key : {extras::hr, extras::cadence, extras::temp}) {
        extras.set(key, Value(std::numeric_limits<int>::min()));
    }
    extras.set(extras::distance, Value(-std::numeric_limits<float>::max()));
    extras.set(extras::sensor, Value(std::string_view(std::string(254, 's'))));
    const std::optional<std::string> text = made(&extras, 1);
    ASSERT_TRUE(text);
    EXPECT_LE(text->size(), largestPointExtensions);
    std::array<char, 128> distance;
    std::snprintf(distance.data(), distance.size(), "\">%f</gpxdata:distance>",
                  -static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_TRUE(text->ends_with(distance.data())) << *text;
}

} // namespace
} // namespace pelluvia
