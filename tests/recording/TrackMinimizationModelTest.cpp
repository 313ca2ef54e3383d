// SPDX-License-Identifier: MIT

// The thinning compared with a model that is written out rule by rule, on random tracks made of the
// numbers where rules begin and end.

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <tests/recording/Spies.h>
#include <tests/support/Sanitized.h>
#include <tests/support/ThinningModel.h>

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <tests/support/Chance.h>
#include <vector>

namespace pelluvia {
namespace {

using testing::records;
using testing::sameBytes;
using testing::telemetry;
using testing::ThinningModel;

#if PELLUVIA_TESTS_SANITIZED
constexpr int scale = 20; // times as slow
#else
constexpr int scale = 1;
#endif

/// A recorder and the model, fed alike.
class Pair {
  public:
    Pair() { recorder->setMinimizeTracks(true); }

    void newTrack() {
        model.newTrack();
        stored.clear();
        recorder->newTrack(nullptr);
    }
    void trackPoint(double latitude, double longitude) {
        GPSPoint point;
        point.latitude = latitude;
        point.longitude = longitude;
        point.altitude = static_cast<double>(++number);
        point.time = number;
        if (model.trackPoint(point)) {
            stored.pop_back();
        }
        stored.push_back(point);
        recorder->trackPoint(point, nullptr);
    }
    void setTolerances(float pointSlop, float slopeSlop) {
        model.pointSlop = pointSlop;
        model.slopeSlop = slopeSlop;
        recorder->setPointEqualSlop(pointSlop);
        recorder->setSlopeEqualSlop(slopeSlop);
    }
    void setMinimize(bool minimize) {
        model.minimize = minimize;
        recorder->setMinimizeTracks(minimize);
    }
    /// Empties the recorder but not the point it compares with.
    void clear() {
        recorder->clear();
        model.pointTests = 0;
        model.slopeTests = 0;
    }
    [[nodiscard]] bool samePoints() const {
        const std::vector<GPSPoint> actual = records(recorder->currentTrack());
        return std::equal(actual.begin(), actual.end(), stored.begin(), stored.end(), sameBytes);
    }
    [[nodiscard]] bool sameCounts() const {
        return telemetry(*recorder, "pointEqualTossedPoints") == model.pointTests &&
               telemetry(*recorder, "slopeEqualTossedPoints") == model.slopeTests;
    }

    ThinningModel model;
    std::vector<GPSPoint> stored; ///< in the track, as the model has it
    std::shared_ptr<RecordingGPSOutput> recorder = RecordingGPSOutput::recorder();
    std::int64_t number = 0;
};

using Random = testing::Chance;

std::size_t below(Random &random, std::size_t end) {
    return static_cast<std::size_t>(random() % end);
}

/// A difference near where a tolerance decides, a few steps of its precision away at most, in a
/// precision of 24 or 53 bits; or nothing at all.
double edge(Random &random, float tolerance) {
    double value = 0.0;
    switch (below(random, 4)) {
    case 0:
        break;
    case 1:
        value = std::nextafter(tolerance, below(random, 2) == 0 ? 0.0F : 1.0F);
        break;
    case 2: // halfway between two floats
        value = (static_cast<double>(tolerance) +
                 static_cast<double>(std::nextafter(tolerance, 0.0F))) /
                2;
        break;
    default:
        value = tolerance;
    }
    for (std::size_t steps = below(random, 3); steps > 0 && value != 0.0; --steps) {
        value = std::nextafter(value, below(random, 2) == 0 ? 0.0 : 1.0);
    }
    return below(random, 2) == 0 ? value : -value;
}

TEST(TrackMinimizationModel, AgreesOnTriplesAtTheToleranceEdges) {
    Random random(20240607);
    Pair pair;
    constexpr int triples = 5'000'000 / scale;
    std::int64_t pointTests = 0;
    std::int64_t slopeTests = 0;
    std::size_t tossed = 0;
    for (int triple = 0; triple < triples; ++triple) {
        if (triple % 1000 == 0) {
            ASSERT_TRUE(pair.sameCounts()) << "triple " << triple;
            pointTests += pair.model.pointTests;
            slopeTests += pair.model.slopeTests;
            pair.clear();
        }
        pair.newTrack();
        const float slope = pair.model.slopeSlop;
        // The first step has a simple slope; the second is near the first point, or near the first
        // slope, at the edge of the tolerance.
        const double run1 = std::ldexp(1.0, static_cast<int>(below(random, 6)) - 3);
        const double slope1 = static_cast<double>(below(random, 5)) / 4 - 0.5;
        const double latitude = below(random, 2) == 0 ? slope1 * run1 : 47.25;
        const double longitude = below(random, 2) == 0 ? 0.0 : 8.5;
        pair.trackPoint(latitude - slope1 * run1, longitude - run1);
        pair.trackPoint(latitude, longitude);
        if (below(random, 2) == 0) {
            pair.trackPoint(latitude + edge(random, pair.model.pointSlop),
                            longitude + edge(random, pair.model.pointSlop));
        } else {
            const double run2 = std::ldexp(1.0, static_cast<int>(below(random, 6)) - 3);
            pair.trackPoint(latitude + (slope1 + edge(random, slope)) * run2, longitude + run2);
        }
        ASSERT_TRUE(pair.samePoints()) << "triple " << triple;
        tossed += 3 - pair.stored.size();
    }
    ASSERT_TRUE(pair.sameCounts());
    // The triples lie on both sides.
    EXPECT_GT(tossed, triples / 10U);
    EXPECT_LT(tossed, triples / 10U * 9U);
    EXPECT_GT(pointTests, triples / 20);
    EXPECT_GT(slopeTests, triples / 20);
}

/// Positions where something begins, ends or is not a number.
double position(Random &random, double before) {
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    static constexpr std::array<double, 26> values = {
        0.0,     -0.0,  1.0,    2.0,    3.0,     -1.0,  1.00005,  1.0001,   1.0002,
        0.00005, 1e-60, -1e-60, 1e-45,  47.25,   47.26, 91.0,     91.5,     180.0,
        -180.0,  -90.0, 1e30,   3.5e38, -3.5e38, nan,   infinity, -infinity};
    switch (below(random, 4)) {
    case 0:
        return before; // again, or along a meridian or a parallel
    case 1:
        return before + (below(random, 2) == 0 ? 0.00005 : -1.0);
    case 2:
        return before + 1.0;
    default:
        return values[below(random, values.size())];
    }
}

TEST(TrackMinimizationModel, AgreesOnRandomTracksOfOddPositions) {
    Random random(7);
    for (int round = 0; round < 2000 / scale; ++round) {
        Pair pair;
        pair.newTrack();
        double latitude = 1.0;
        double longitude = 1.0;
        for (int call = 0; call < 200; ++call) {
            switch (below(random, 60)) {
            case 0:
                pair.newTrack();
                break;
            case 1:
                pair.setMinimize(below(random, 4) != 0);
                break;
            case 2:
                pair.setTolerances(static_cast<float>(position(random, 0.0001)),
                                   static_cast<float>(below(random, 3)) * 0.01F);
                break;
            case 3:
                pair.setTolerances(0.0001F, 0.01F);
                break;
            default:
                latitude = position(random, latitude);
                longitude = position(random, longitude);
                pair.trackPoint(latitude, longitude);
            }
            ASSERT_TRUE(pair.samePoints()) << "round " << round << ", call " << call;
            ASSERT_TRUE(pair.sameCounts()) << "round " << round << ", call " << call;
        }
    }
}

TEST(TrackMinimizationModel, AgreesOnALongRide) {
    Random random(99);
    Pair pair;
    pair.newTrack();
    double latitude = 47.0;
    double longitude = 8.0;
    for (int i = 0; i < 1'000'000 / scale; ++i) {
        // Steps on a grid of 1/16384 degree: many repeats, meridians, parallels and straight lines.
        latitude += std::ldexp(static_cast<double>(below(random, 5)) - 2, -14);
        longitude += std::ldexp(static_cast<double>(below(random, 5)) - 2, -14);
        pair.trackPoint(latitude, longitude);
    }
    EXPECT_TRUE(pair.samePoints());
    EXPECT_TRUE(pair.sameCounts());
    EXPECT_GT(pair.model.pointTests, 0);
    EXPECT_LT(pair.stored.size(), static_cast<std::size_t>(pair.number));
}

} // namespace
} // namespace pelluvia
