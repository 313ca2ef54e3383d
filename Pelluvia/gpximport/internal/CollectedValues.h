// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/CollectedNumber.h>
#include <Pelluvia/gpximport/internal/CollectedText.h>

#include <cstdint>

namespace pelluvia {

/// What is collected for the current waypoint, route point, track point, route or track, beside its
/// place and time. Which elements fill a value, and where it goes, stands in `gpxTable`, which does
/// not compile without a row for each of these.
struct CollectedValues {
    CollectedText number;
    CollectedText comment;
    CollectedText description;
    CollectedText name;
    CollectedText symbol;
    CollectedText url;
    CollectedText urlName;
    CollectedText geocacheTerrain;
    CollectedText geocacheDifficulty;
    CollectedText geocacheType;
    CollectedText geocacheOwner;
    CollectedText geocacheHint;
    CollectedText geocacheName;
    CollectedText sensor; // the only one that can be present and empty
    CollectedNumber<std::int32_t> hr;
    CollectedNumber<std::int32_t> cadence;
    CollectedNumber<std::int32_t> courseIndex;
    CollectedNumber<float> temp;
    CollectedNumber<float> distance;
    CollectedNumber<float> proximity;
};

} // namespace pelluvia
