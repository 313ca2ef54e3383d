// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/live/LiveView.h>

#include <gtest/gtest.h>
#include <string>

namespace pelluvia::nmea {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

/// A view whose time stands still until it is told to go on.
struct Shown {
    LiveView::Clock::time_point time;
    std::string text;
    LiveView view{[this](std::string_view bytes) { text = bytes; }, [this] { return time; }};
};

Epoch fixOf(std::optional<int> kind) {
    Epoch epoch;
    epoch.add({.type = SentenceType::GGA, .position = Position{48.1173, -11.5}});
    epoch.add({.type = SentenceType::GSA, .fixKind = kind});
    return epoch;
}

TEST(LiveView, ShowsPointsFixPlaceAndRate) {
    Shown shown;
    shown.view.show({.points = 7}, fixOf(3));
    EXPECT_EQ(shown.text, "\r\x1B[K7 points, 3D fix, 48.11730 -11.50000, 0.0 points/s");
    shown.time += seconds(2);
    shown.view.show({.points = 12}, fixOf(2));
    EXPECT_EQ(shown.text, "\r\x1B[K12 points, 2D fix, 48.11730 -11.50000, 2.5 points/s");
}

TEST(LiveView, ShowsWhatIsKnownOfTheFix) {
    Shown shown;
    shown.view.show({}, Epoch());
    EXPECT_EQ(shown.text, "\r\x1B[K0 points, waiting, 0.0 points/s");
    shown.time += seconds(1);
    shown.view.show({}, fixOf(1));
    EXPECT_EQ(shown.text, "\r\x1B[K0 points, no fix, 0.0 points/s");
    shown.time += seconds(1);
    shown.view.show({.points = 1}, fixOf(std::nullopt));
    EXPECT_EQ(shown.text, "\r\x1B[K1 point, fix, 48.11730 -11.50000, 0.5 points/s");
}

TEST(LiveView, IsNotWrittenMoreOftenThanItCanBeRead) {
    Shown shown;
    shown.view.show({.points = 1}, Epoch());
    shown.text.clear();
    shown.time += milliseconds(99);
    shown.view.show({.points = 2}, Epoch());
    EXPECT_EQ(shown.text, "");
    shown.time += milliseconds(1);
    shown.view.show({.points = 3}, Epoch());
    EXPECT_NE(shown.text, "");
}

TEST(LiveView, ForgetsTheRateOfLongAgo) {
    Shown shown;
    std::int64_t points = 0;
    for (int i = 0; i < 100; ++i, shown.time += seconds(1)) {
        shown.view.show({.points = points += 10}, Epoch());
    }
    for (int i = 0; i < 10; ++i, shown.time += seconds(1)) {
        shown.view.show({.points = points}, Epoch());
    }
    EXPECT_NE(shown.text.find(" 0.0 points/s"), std::string::npos) << shown.text;
}

TEST(LiveView, IsTakenAwayOnce) {
    Shown shown;
    shown.view.clear();
    EXPECT_EQ(shown.text, "");
    shown.view.show({}, Epoch());
    shown.view.clear();
    EXPECT_EQ(shown.text, "\r\x1B[K");
    shown.text.clear();
    shown.view.clear();
    EXPECT_EQ(shown.text, "");
}

} // namespace
} // namespace pelluvia::nmea
