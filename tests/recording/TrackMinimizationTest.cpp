// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <tests/recording/Spies.h>

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pelluvia {
namespace {

using testing::keys;
using testing::pointAt;
using testing::records;
using testing::telemetry;
using Positions = std::vector<std::pair<double, double>>;

constexpr float infinity = std::numeric_limits<float>::infinity();

class TrackMinimization : public ::testing::Test {
  protected:
    TrackMinimization() {
        recorder->setMinimizeTracks(true);
        recorder->newTrack(nullptr);
    }

    void add(const Positions &positions) {
        for (const auto &[latitude, longitude] : positions) {
            recorder->trackPoint(pointAt(latitude, longitude), nullptr);
        }
    }
    [[nodiscard]] Positions kept() const {
        Positions found;
        for (const GPSPoint &point : records(recorder->currentTrack())) {
            found.emplace_back(point.latitude, point.longitude);
        }
        return found;
    }
    [[nodiscard]] std::int64_t positionTests() const {
        return telemetry(*recorder, "pointEqualTossedPoints");
    }
    [[nodiscard]] std::int64_t directionTests() const {
        return telemetry(*recorder, "slopeEqualTossedPoints");
    }

    std::shared_ptr<RecordingGPSOutput> recorder = RecordingGPSOutput::recorder();
};

TEST_F(TrackMinimization, IsOffUnlessAskedFor) {
    recorder->setMinimizeTracks(false);
    const Positions all = {{1, 1}, {1, 1}, {1, 1}, {2, 2}, {3, 3}, {3, 4}, {3, 5}};
    add(all);
    EXPECT_EQ(kept(), all);
    EXPECT_EQ(positionTests(), 0);
    EXPECT_EQ(directionTests(), 0);
}

TEST_F(TrackMinimization, TheFirstTwoPointsAreAlwaysKept) {
    add({{1, 1}, {1, 1}});
    EXPECT_EQ(kept().size(), 2U);
    recorder->newTrack(nullptr);
    add({{1, 1}, {1, 1}});
    EXPECT_EQ(kept().size(), 2U);
    EXPECT_EQ(positionTests(), 0);
    EXPECT_EQ(directionTests(), 0);
}

TEST_F(TrackMinimization, TheMiddleOfAStraightLineGoes) {
    add({{1, 1}, {2, 3}, {3, 5}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {3, 5}}));
    EXPECT_EQ(directionTests(), 1);
    EXPECT_EQ(positionTests(), 0);
}

TEST_F(TrackMinimization, ATurnStays) {
    const Positions turn = {{1, 1}, {2, 3}, {3, 4}, {2, 2}};
    add(turn);
    EXPECT_EQ(kept(), turn);
    EXPECT_EQ(directionTests(), 0);
}

TEST_F(TrackMinimization, OfTwoNearPointsTheNewerSurvives) {
    add({{1, 1}, {2, 3}, {1.99995, 3.00005}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {1.99995, 3.00005}}));
    EXPECT_EQ(positionTests(), 1);
    EXPECT_EQ(directionTests(), 0);
}

TEST_F(TrackMinimization, NearInOneCoordinateIsNotNear) {
    const Positions apart = {{1, 1}, {2, 3}, {1.99995, 2}, {3, 1.99995}};
    add(apart);
    EXPECT_EQ(kept(), apart);
}

TEST_F(TrackMinimization, ToAndFroAlongAMeridianLosesTheTurningPoint) {
    add({{1, 5}, {3, 5}, {2, 5}});
    EXPECT_EQ(kept(), (Positions{{1, 5}, {2, 5}}));
    EXPECT_EQ(directionTests(), 1);
}

TEST_F(TrackMinimization, StraightAlongAMeridianFiresOneTest) {
    add({{1, 5}, {2, 5}, {3, 5}}); // two infinite slopes have no difference
    EXPECT_EQ(kept(), (Positions{{1, 5}, {3, 5}}));
    EXPECT_EQ(directionTests(), 1);
}

TEST_F(TrackMinimization, ToAndFroAlongAParallelLosesTheTurningPoint) {
    add({{5, 1}, {5, 3}, {5, 2}});
    EXPECT_EQ(kept(), (Positions{{5, 1}, {5, 2}}));
    EXPECT_EQ(directionTests(), 1) << "the direction test sees the change of sign";
}

TEST_F(TrackMinimization, StraightAlongAParallelFiresTwoTests) {
    add({{5, 1}, {5, 2}, {5, 3}});
    EXPECT_EQ(kept(), (Positions{{5, 1}, {5, 3}}));
    EXPECT_EQ(directionTests(), 2);
}

TEST_F(TrackMinimization, ARepeatOnAMeridianFiresThreeTests) {
    add({{1, 5}, {1, 5}, {1, 5}});
    EXPECT_EQ(kept(), (Positions{{1, 5}, {1, 5}}));
    EXPECT_EQ(positionTests(), 1);
    EXPECT_EQ(directionTests(), 2);
    add({{1, 5}});
    EXPECT_EQ(kept().size(), 2U);
    EXPECT_EQ(positionTests(), 2);
    EXPECT_EQ(directionTests(), 4);
}

TEST_F(TrackMinimization, ASmallStepAlongAParallelFiresThreeTests) {
    add({{5, 1}, {5, 2}, {5, 2.00005}});
    EXPECT_EQ(positionTests(), 1);
    EXPECT_EQ(directionTests(), 2);
    EXPECT_EQ(kept(), (Positions{{5, 1}, {5, 2.00005}}));
}

TEST_F(TrackMinimization, ATossedPointLeavesThePointBeforeItForTheNextComparison) {
    // Each step turns less than the tolerance, seen from the point before; seen from the kept one
    // the last has turned too far.
    add({{1, 1}, {2, 2}, {3.009, 3}, {4.025, 4}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {3.009, 3}, {4.025, 4}}));
    EXPECT_EQ(directionTests(), 1);
}

TEST_F(TrackMinimization, AlongTheEquatorNothingIsTossed) {
    const Positions all = {{0.0, 1}, {0.0, 2}, {0.0, 3}, {-0.0, 3}, {0.0, 3}, {0.0, 4}};
    add(all);
    EXPECT_EQ(kept(), all);
    EXPECT_EQ(directionTests(), 0);
    EXPECT_EQ(positionTests(), 0);
}

TEST_F(TrackMinimization, APointKeptOnTheEquatorSparesTheNext) {
    add({{2, 1}, {0, 4}, {-1, 5}, {-2, 6}}); // the last is seen from (0, 4)
    EXPECT_EQ(kept(), (Positions{{2, 1}, {0, 4}, {-1, 5}, {-2, 6}}));
    add({{-3, 7}});
    EXPECT_EQ(kept(), (Positions{{2, 1}, {0, 4}, {-1, 5}, {-3, 7}}));
}

TEST_F(TrackMinimization, ThePositionToleranceIsStrictInSinglePrecision) {
    const float slop = recorder->pointEqualSlop();
    const double below = std::nextafter(slop, 0.0F);
    const double above = std::nextafter(slop, 1.0F);
    const double exact = slop;
    // Halfway between two floats, the double difference is rounded to the one with the even last
    // bit before it is compared.
    const double halfway = (below + exact) / 2;
    const bool slopIsEven = static_cast<float>(halfway) == slop;
    struct Row {
        double difference;
        bool near;
    };
    for (const Row row :
         {Row{below, true}, Row{exact, false}, Row{above, false}, Row{halfway, !slopIsEven},
          Row{std::nextafter(halfway, 0.0), true}, Row{std::nextafter(halfway, 1.0), false}}) {
        SCOPED_TRACE(row.difference);
        // From 0 and from the negative of the difference to 0 the subtraction is exact.
        for (const Positions &track :
             {Positions{{-3, 9}, {7, 0}, {7, row.difference}},
              Positions{{-3, 9}, {7, 0}, {7, -row.difference}},
              Positions{{-3, 9}, {0, 7}, {row.difference, 7}},
              Positions{{-3, 9}, {0, 7}, {-row.difference, 7}},
              Positions{{-3, 9}, {0, 0}, {row.difference, -row.difference}}}) {
            recorder->clear();
            recorder->newTrack(nullptr);
            add(track);
            EXPECT_EQ(positionTests(), row.near ? 1 : 0);
            EXPECT_EQ(directionTests(), 0);
            EXPECT_EQ(kept().size(), row.near ? 2U : 3U);
        }
    }
}

TEST_F(TrackMinimization, TheDirectionToleranceIsStrictInSinglePrecision) {
    const float slop = recorder->slopeEqualSlop();
    struct Row {
        double slope;
        bool same;
    };
    for (const Row row : {Row{std::nextafter(slop, 0.0F), true}, Row{slop, false},
                          Row{std::nextafter(slop, 1.0F), false}}) {
        SCOPED_TRACE(row.slope);
        recorder->clear();
        recorder->newTrack(nullptr);
        // From a slope of 0 to this one, all exact: the numbers have 24 bits.
        add({{1, 1}, {1, 2}, {1 + row.slope, 3}});
        EXPECT_EQ(directionTests(), row.same ? 1 : 0);
        EXPECT_EQ(kept().size(), row.same ? 2U : 3U);
    }
}

TEST_F(TrackMinimization, SlopesAreDividedInSinglePrecision) {
    // In double precision 1/3 is less than this float, and the point would go.
    const float third = 1.0F / 3.0F;
    recorder->setSlopeEqualSlop(third);
    add({{1, 1}, {1, 2}, {2, 5}});
    ASSERT_LT(1.0 / 3.0, static_cast<double>(third));
    EXPECT_EQ(directionTests(), 0) << "equal, not less";
}

TEST_F(TrackMinimization, AZeroDifferenceGoesWithThePositiveOnes) {
    recorder->setSlopeEqualSlop(10.0F);
    add({{1, 1}, {2, 2}, {2, 3}}); // slopes 1 and 0
    EXPECT_EQ(directionTests(), 1);
    recorder->clear();
    recorder->newTrack(nullptr);
    add({{3, 1}, {2, 2}, {2, 3}}); // slopes -1 and 0
    EXPECT_EQ(directionTests(), 0);
}

TEST_F(TrackMinimization, ADifferenceTooSmallForAFloatKeepsItsSign) {
    add({{1, 5}, {2, 5}, {3, 5 - 1e-15}, {4, 1}});
    EXPECT_EQ(directionTests(), 0) << "1e-15 is a float of its own";
    recorder->clear();
    recorder->newTrack(nullptr);
    recorder->setSlopeEqualSlop(infinity);
    add({{1, 0}, {2, 1e-60}, {4, -1e-60}}); // both differences become zeros, of unlike signs
    EXPECT_EQ(directionTests(), 1) << "the meridian test, which takes zeros as equal";
    EXPECT_EQ(kept().size(), 2U);
}

TEST_F(TrackMinimization, FromAMeridianToASlopeIsATurn) {
    const Positions turn = {{1, 5}, {2, 5}, {3, 6}, {4, 6}};
    add(turn);
    EXPECT_EQ(kept(), turn);
}

TEST_F(TrackMinimization, NaNFiresNothing) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const Positions &track :
         {Positions{{1, 1}, {nan, nan}, {nan, nan}}, Positions{{1, 1}, {2, 2}, {nan, 3}},
          Positions{{nan, 1}, {2, 2}, {3, 3}}, Positions{{1, 1}, {2, nan}, {3, 3}}}) {
        recorder->clear();
        recorder->newTrack(nullptr);
        add(track);
        EXPECT_EQ(kept().size(), 3U);
        EXPECT_EQ(directionTests() + positionTests(), 0);
    }
    recorder->clear();
    recorder->newTrack(nullptr);
    add({{1, 1}, {nan, 1}, {nan, 1}}); // the meridian still counts
    EXPECT_EQ(directionTests(), 1);
}

TEST_F(TrackMinimization, InfiniteAndHugePositionsAreDefined) {
    const double huge = std::numeric_limits<double>::max();
    const double endless = std::numeric_limits<double>::infinity();
    add({{1, 1}, {huge, huge}, {-huge, -huge}, {endless, endless}, {endless, -endless}, {1, 2}});
    EXPECT_EQ(kept().size(), 6U);
    EXPECT_EQ(directionTests() + positionTests(), 0);
    recorder->setPointEqualSlop(infinity);
    recorder->setSlopeEqualSlop(infinity);
    add({{1e30, 2e30}, {2e30, 4e30}});
    EXPECT_EQ(positionTests(), 2) << "finite differences are less than infinity";
}

TEST_F(TrackMinimization, ToleranceOfZeroNegativeOrNaNLeavesTheExactTests) {
    for (const float slop : {0.0F, -0.0F, -1.0F, std::numeric_limits<float>::quiet_NaN()}) {
        recorder->clear();
        recorder->newTrack(nullptr);
        recorder->setPointEqualSlop(slop);
        recorder->setSlopeEqualSlop(slop);
        add({{1, 1}, {2, 2}, {3, 3}, {3, 3}});
        EXPECT_EQ(kept().size(), 4U);
        add({{3, 3}});
        EXPECT_EQ(directionTests(), 2) << "meridian and parallel";
        EXPECT_EQ(positionTests(), 0);
    }
}

TEST_F(TrackMinimization, OnlyThePositionIsCompared) {
    GPSPoint first = pointAt(1, 1);
    GPSPoint second = pointAt(2, 2);
    GPSPoint third = pointAt(3, 3);
    second.altitude = 8000;
    second.time = 1;
    third.altitude = std::numeric_limits<double>::quiet_NaN();
    third.test = 99;
    for (const GPSPoint &point : {first, second, third}) {
        recorder->trackPoint(point, nullptr);
    }
    const std::vector<GPSPoint> stored = records(recorder->currentTrack());
    ASSERT_EQ(stored.size(), 2U);
    EXPECT_TRUE(testing::sameBytes(stored[1], third));
}

TEST_F(TrackMinimization, SettingsTakeEffectWithTheNextPoint) {
    recorder->setMinimizeTracks(false);
    add({{1, 1}, {2, 2}, {3, 3}});
    recorder->setMinimizeTracks(true);
    add({{4, 4}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {2, 2}, {4, 4}}));
    recorder->setSlopeEqualSlop(0.0F);
    add({{5, 5}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {2, 2}, {4, 4}, {5, 5}}));
    recorder->setPointEqualSlop(3.0F);
    add({{6, 6}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {2, 2}, {4, 4}, {6, 6}}));
}

TEST_F(TrackMinimization, OnlyANewTrackStartsTheComparisonAnew) {
    add({{1, 1}, {2, 2}});
    recorder->newTrackSegment();
    recorder->newRoute(nullptr);
    recorder->routePoint(pointAt(50, 50), nullptr);
    recorder->wayPoint(pointAt(50, 50), nullptr);
    recorder->endTransfer(transferKind::routes);
    add({{3, 3}});
    EXPECT_EQ(kept(), (Positions{{1, 1}, {3, 3}}));
}

TEST_F(TrackMinimization, AnUnnamedTrackCountsItsPointsAndKeepsNone) {
    const auto progress = std::make_shared<testing::ProgressSpy>();
    recorder->endTransfer(transferKind::tracks);
    recorder->setProgress(progress);
    add({{1, 1}, {2, 2}, {3, 3}, {4, 4}});
    EXPECT_EQ(keys(recorder->currentTrack()), "name,");
    EXPECT_EQ(recorder->currentTrack()->string(extras::name), "unnamed");
    EXPECT_EQ(recorder->lastTrackPoint(), nullptr);
    EXPECT_EQ(progress->lines.back(), "progress 0 4");
    EXPECT_EQ(directionTests(), 2) << "what is not stored is compared all the same";
    recorder->endTransfer(transferKind::tracks);
    const Array *tracks = recorder->receivedData()->array(recordedData::track);
    EXPECT_EQ(keys(tracks->dictionary(1)), "name,");
}

TEST_F(TrackMinimization, AnUnnamedTrackInheritsTheComparison) {
    add({{1, 1}, {2, 2}});
    recorder->endTransfer(transferKind::tracks);
    add({{3, 3}});
    EXPECT_EQ(directionTests(), 1);
    recorder->clear(); // leaves the positions
    add({{4, 4}});
    EXPECT_EQ(directionTests(), 1);
    EXPECT_EQ(keys(recorder->currentTrack()), "name,");
}

TEST_F(TrackMinimization, TossedPointsAreCountedInTheProgress) {
    const auto progress = std::make_shared<testing::ProgressSpy>();
    recorder->setProgress(progress);
    add({{1, 1}, {2, 2}, {3, 3}});
    EXPECT_EQ(progress->lines.back(), "progress 0 3");
}

TEST_F(TrackMinimization, AListThatAHostHasEmptiedGivesUpNoMore) {
    add({{1, 1}, {2, 2}});
    Array *points = recorder->currentTrack()->array(extras::points);
    points->removeLast();
    points->removeLast();
    add({{3, 3}});
    EXPECT_EQ(kept(), (Positions{{3, 3}}));
}

TEST_F(TrackMinimization, TheTossedPointsDictionaryMayBeTheNewOnesExtras) {
    Dictionary extra;
    extra.set(Key("invented"), Value("kept"));
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->trackPoint(pointAt(2, 2), &extra);
    recorder->trackPoint(pointAt(3, 3), recorder->lastTrackPoint());
    EXPECT_EQ(kept(), (Positions{{1, 1}, {3, 3}}));
    EXPECT_EQ(keys(recorder->lastTrackPoint()), "invented,point,");
    EXPECT_EQ(recorder->lastTrackPoint()->string(Key("invented")), "kept");
}

TEST_F(TrackMinimization, TheExtrasOfATossedPointAreLost) {
    Dictionary extra;
    extra.set(extras::hr, Value(120));
    recorder->trackPoint(pointAt(1, 1), nullptr);
    recorder->trackPoint(pointAt(2, 2), &extra);
    recorder->trackPoint(pointAt(3, 3), nullptr);
    EXPECT_EQ(keys(recorder->lastTrackPoint()), "point,");
}

} // namespace
} // namespace pelluvia
