// SPDX-License-Identifier: MIT

#include <tests/formats/nmea/Logs.h>
#include <tests/formats/nmea/Written.h>

#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/nmea/NMEAUtils.h>

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>
#include <sstream>
#include <tests/support/Chance.h>
#include <vector>

namespace pelluvia::nmea {
namespace {

using pelluvia::testing::decode;
using pelluvia::testing::Written;

/// Half a thousandth of a minute, in degrees, and what doubles add.
constexpr double resolution = 0.0005 / 60.0 + 1e-12;

/// Tracks as files have them: mostly a point a second, sometimes several in one, gaps, a point
/// without a time or altitude, positions near the poles, the date line and whole degrees.
class RandomTrack {
  public:
    explicit RandomTrack(unsigned seed) : random_(seed) {
        point_ = {.latitude = real(-90, 90), .longitude = real(-180, 180), .altitude = 100.0};
        point_.time = static_cast<std::int64_t>(real(1, 3'155'000'000));
    }

    GPSPoint next() {
        point_.time = std::min<std::int64_t>(point_.time + step(), 3'155'759'999);
        point_.latitude = std::clamp(point_.latitude + real(-0.01, 0.01), -90.0, 90.0);
        point_.longitude = std::clamp(point_.longitude + real(-0.01, 0.01), -180.0, 180.0);
        point_.altitude = std::round(real(-100, 9000) * 1000.0) / 1000.0;
        GPSPoint result = point_;
        switch (random_() % 20) {
        case 0:
            result.time = 0;
            break;
        case 1:
            result.altitude = 0.0;
            break;
        case 2:
            result.latitude = std::round(result.latitude) - 1e-9; // whose minutes round to sixty
            result.longitude = std::round(result.longitude) + 1e-9;
            result.longitude = std::clamp(result.longitude, -180.0, 180.0);
            result.latitude = std::clamp(result.latitude, -90.0, 90.0);
            break;
        default:
            break;
        }
        return result;
    }

  private:
    double real(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    std::int64_t step() {
        switch (random_() % 10) {
        case 0:
            return 0;
        case 1:
            return static_cast<std::int64_t>(random_() % 100'000);
        default:
            return 1;
        }
    }

    testing::Chance random_;
    GPSPoint point_;
};

TEST(RoundTrip, BringsEveryTrackPointBackInOrder) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        RandomTrack track(seed);
        std::vector<GPSPoint> points(100);
        std::generate(points.begin(), points.end(), [&] { return track.next(); });
        Written written;
        written.writer->newTrack(nullptr);
        for (const GPSPoint &point : points) {
            written.writer->trackPoint(point, nullptr);
        }
        const auto decoded = decode(written.log());
        ASSERT_EQ(decoded.list.trackPoints.size(), points.size()) << seed;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const GPSPoint &back = decoded.list.trackPoints[i].point;
            ASSERT_NEAR(back.latitude, points[i].latitude, resolution) << seed << ' ' << i;
            ASSERT_NEAR(back.longitude, points[i].longitude, resolution) << seed << ' ' << i;
            ASSERT_EQ(back.time, points[i].time) << seed << ' ' << i;
            ASSERT_NEAR(back.altitude, points[i].altitude, 0.0005) << seed << ' ' << i;
        }
        ASSERT_EQ(decoded.tally.badChecksum + decoded.tally.notUsed + decoded.tally.garbage, 0);
    }
}

TEST(RoundTrip, BringsSpeedsBack) {
    Written written;
    Dictionary extra;
    extra.set(extras::speed, Value(12.3456F));
    written.writer->trackPoint({.latitude = 48.0, .time = 1}, &extra);
    written.writer->trackPoint({.latitude = 48.0, .time = 2}, nullptr);
    const auto decoded = decode(written.log());
    ASSERT_EQ(decoded.list.trackPoints.size(), 2U);
    EXPECT_NEAR(*decoded.list.trackPoints[0].speed, 12.3456F, 0.0003);
    EXPECT_FALSE(decoded.list.trackPoints[1].speed);
}

TEST(RoundTrip, BringsEveryWaypointBackInOrder) {
    testing::Chance random(1);
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    Written written;
    std::vector<GPSPoint> points;
    for (int i = 0; i < 1000; ++i) {
        points.push_back({.latitude = 90.0 * real(random), .longitude = 180.0 * real(random)});
        Dictionary extra;
        if (i % 3 != 0) {
            // Names come again and again.
            extra.set(extras::name, Value("Place " + std::to_string(i % 50)));
        }
        written.writer->wayPoint(points.back(), &extra);
    }
    const auto decoded = decode(written.log());
    ASSERT_EQ(decoded.list.wayPoints.size(), points.size());
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_NEAR(decoded.list.wayPoints[i].point.latitude, points[i].latitude, resolution);
        EXPECT_NEAR(decoded.list.wayPoints[i].point.longitude, points[i].longitude, resolution);
    }
    EXPECT_EQ(decoded.list.wayPoints[1].name, "Place 1");
    EXPECT_EQ(decoded.list.wayPoints[52].name, "Place 2-2");
    EXPECT_EQ(decoded.list.wayPoints[101].name, "Place 1-2");
}

TEST(RoundTrip, BringsEveryRouteBack) {
    testing::Chance random(2);
    std::uniform_real_distribution<double> real(-1.0, 1.0);
    Written written;
    std::vector<std::vector<GPSPoint>> routes(20);
    for (auto &points : routes) {
        const Dictionary name;
        written.writer->newRoute(&name);
        for (std::size_t count = 1 + random() % 60; count != 0; --count) {
            points.push_back({.latitude = 90.0 * real(random), .longitude = 180.0 * real(random)});
            Dictionary extra;
            if (random() % 2 == 0) {
                extra.set(extras::name, Value("Point " + std::to_string(random() % 10)));
            }
            written.writer->routePoint(points.back(), &extra);
        }
        points.push_back(points.front()); // and back to the start
        written.writer->routePoint(points.back(), nullptr);
    }
    written.writer->endTransfer(transferKind::routes);
    const auto decoded = decode(written.log());
    EXPECT_EQ(decoded.tally.routes, 20);
    EXPECT_EQ(decoded.tally.incompleteRoutes + decoded.tally.unknownRoutePoints, 0);

    // The waypoints come first, each once; then the routes.
    std::size_t next = static_cast<std::size_t>(decoded.tally.waypoints);
    for (const auto &points : routes) {
        for (const GPSPoint &point : points) {
            ASSERT_LT(next, decoded.list.wayPoints.size());
            EXPECT_NEAR(decoded.list.wayPoints[next].point.latitude, point.latitude, resolution);
            EXPECT_NEAR(decoded.list.wayPoints[next].point.longitude, point.longitude, resolution);
            ++next;
        }
    }
    EXPECT_EQ(next, decoded.list.wayPoints.size());
}

TEST(RoundTrip, WritesOnlySentencesThatTheFormatAllows) {
    Written written;
    RandomTrack track(7);
    const std::string longName(100, 'N');
    Dictionary extra;
    extra.set(extras::name, Value(std::string_view(longName)));
    extra.set(extras::speed, Value(99'999.0F));
    written.writer->newRoute(&extra);
    for (int i = 0; i < 300; ++i) {
        written.writer->routePoint(track.next(), &extra);
    }
    for (int i = 0; i < 300; ++i) {
        written.writer->trackPoint(track.next(), &extra);
    }
    std::istringstream lines(written.log());
    int count = 0;
    for (std::string line; std::getline(lines, line); ++count) {
        ASSERT_TRUE(line.ends_with('\r'));
        ASSERT_LE(line.size() + 1, NMEAUtils::longestSentence) << line;
        ASSERT_EQ(line[line.size() - 4], '*') << line;
        ASSERT_TRUE(NMEAUtils::checkAndTrimNMEASentence(line)) << line;
    }
    EXPECT_GT(count, 900);
}

} // namespace
} // namespace pelluvia::nmea
