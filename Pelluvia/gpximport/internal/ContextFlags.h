// SPDX-License-Identifier: MIT

#pragma once

namespace pelluvia {

/// Where the importer is: each is true between the start and the end of the elements that it names.
/// Consulted are only inRoute, inRoutePoint, inWaypoint, inTrkSeg, inTrkPt, inLink, inGeocacheLogs
/// and inGeocacheTravelbugs; the others are kept for symmetry.
struct ContextFlags {
    bool inRoute = false;
    bool inRoutePoint = false;
    bool inWaypoint = false;
    bool inTrack = false;
    bool inName = false;
    bool inTrkSeg = false;
    bool inTrkPt = false;
    bool inElevation = false;
    bool inTime = false;
    bool inLink = false;
    bool inText = false;
    bool inURL = false;
    bool inURLName = false;
    bool inCache = false;
    bool inGeocacheTerrain = false;
    bool inGeocacheDifficulty = false;
    bool inGeocacheName = false;
    bool inGeocacheType = false;
    bool inGeocacheOwner = false;
    bool inGeocacheHint = false;
    bool inGeocacheLogs = false;
    bool inGeocacheTravelbugs = false;
    bool inSym = false;
    bool inCadence = false;
    bool inTemp = false;
    bool inDistance = false;
    bool inSensor = false;
    bool inHR = false;
    bool inNumber = false;
    bool inProximity = false;
    bool inCourse = false;
    bool inIndex = false;
};

} // namespace pelluvia
