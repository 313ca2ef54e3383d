// SPDX-License-Identifier: MIT

#include <Pelluvia/recording/RecordingGPSOutput.h>

#include <Pelluvia/recording/internal/RecorderState.h>
#include <Pelluvia/values/Number.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <utility>

namespace pelluvia {

// The tests below decide in single precision. A machine that keeps more than that in between, or a
// compiler that fuses a multiplication with a sum (see -ffp-contract in the build) or takes
// liberties with infinities and NaN, would decide otherwise at the edges.
#if defined(__FAST_MATH__) || (defined(__FINITE_MATH_ONLY__) && __FINITE_MATH_ONLY__ != 0)
#error "build without -ffast-math and -ffinite-math-only"
#endif
static_assert(FLT_EVAL_METHOD == 0, "build for a floating-point unit without excess precision");

namespace {

/// How far one point lies from another, each coordinate rounded once to single precision.
struct Step {
    float latitude;
    float longitude;

    Step(const GPSPoint &from, const GPSPoint &to) noexcept
        : latitude(roundedFloat(to.latitude - from.latitude)),
          longitude(roundedFloat(to.longitude - from.longitude)) {}

    /// Latitude over longitude; along a meridian, positive infinity in both directions.
    [[nodiscard]] float slope() const noexcept {
        return longitude == 0.0F ? std::numeric_limits<float>::infinity() : latitude / longitude;
    }
};

bool sameSigns(const Step &a, const Step &b) noexcept {
    return std::signbit(a.longitude) == std::signbit(b.longitude) &&
           std::signbit(a.latitude) == std::signbit(b.latitude);
}

} // namespace

bool RecorderState::tossesLastPoint(const GPSPoint &newPoint) {
    if (!minimizeTracks || prevPoint.latitude == 0.0) {
        return false;
    }
    const Step before(prevPoint, lastPoint);
    const Step after(lastPoint, newPoint);
    // Every test runs and counts, also when an earlier one has fired.
    bool toss = false;
    if (std::fabs(after.latitude) < pointEqualSlop && std::fabs(after.longitude) < pointEqualSlop) {
        ++pointEqualTossedPoints;
        toss = true;
    }
    if (before.longitude == 0.0F && after.longitude == 0.0F) { // along a meridian, also to and fro
        ++slopeEqualTossedPoints;
        toss = true;
    }
    if (before.latitude == 0.0F && after.latitude == 0.0F) { // along a parallel, likewise
        ++slopeEqualTossedPoints;
        toss = true;
    }
    // Not a number, as of two infinite slopes, is less than nothing.
    if (sameSigns(before, after) && std::fabs(after.slope() - before.slope()) < slopeEqualSlop) {
        ++slopeEqualTossedPoints;
        toss = true;
    }
    return toss;
}

void RecordingGPSOutput::trackPoint(GPSPoint point, const Dictionary *extra) {
    RecorderState &state = *state_;
    if (!state.trackData) {
        // Nobody announced a track. This one has no list of points, so they are counted and lost.
        state.trackData = Ref<Dictionary>::make();
        state.trackData->set(extras::name, Value(recordedData::unnamedTrack));
    }
    // Made first: the extras may be those of the point that is tossed, and where memory runs out
    // nothing has changed yet.
    auto dictionary = Dictionary::wrapping(point, extra);
    const bool toss = state.tossesLastPoint(point);
    if (!toss) {
        state.prevPoint = state.lastPoint;
    }
    state.lastPoint = point;

    if (Array *points = state.trackData->array(extras::points)) {
        if (toss && !points->empty()) {
            points->removeLast();
        }
        points->append(std::move(dictionary));
    }
    state.observers.countItem();
}

} // namespace pelluvia
