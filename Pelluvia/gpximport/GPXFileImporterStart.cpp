#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/model/TransferKind.h>

/// \file
/// The importer at the start of elements: flags, attributes, and the tests of nesting.

namespace pelluvia {

using gpxVocabulary::attribute;
using gpxVocabulary::Name;
using gpxVocabulary::nameOf;
using gpxVocabulary::Namespace;

void GPXFileImporter::didStartElement(XMLParser &parser, const XMLElement &element,
                                      const XMLAttributes &attributes) {
    currentStringValue.clear();
    switch (gpxVocabulary::namespaceOf(element)) {
    case Namespace::GarminExtensions:
        return startGarminExtension(element);
    case Namespace::GarminTrackPoint:
        return startGarminTrackPoint(element);
    case Namespace::Geocache:
        return startGeocache(element);
    case Namespace::GPXData:
        return startGPXData(element, attributes);
    case Namespace::GPX10:
        gpxVersion = 1.0F;
        return startGPX(parser, element, attributes);
    case Namespace::GPX11:
        gpxVersion = 1.1F;
        return startGPX(parser, element, attributes);
    case Namespace::Other:
        return;
    }
}

void GPXFileImporter::startGarminExtension(const XMLElement &element) noexcept {
    switch (nameOf(element)) {
    case Name::Temperature:
        inTemp = true;
        return;
    case Name::GarminProximity:
        inProximity = true;
        return;
    default:
        return;
    }
}

void GPXFileImporter::startGarminTrackPoint(const XMLElement &element) noexcept {
    switch (nameOf(element)) {
    case Name::Atemp:
        inTemp = true;
        return;
    case Name::Hr:
        inHR = true;
        return;
    case Name::Cad:
        inCadence = true;
        return;
    default:
        return;
    }
}

void GPXFileImporter::startGeocache(const XMLElement &element) noexcept {
    // Logs and travel bugs have names and types of their own.
    if (inGeocacheLogs || inGeocacheTravelbugs) {
        return;
    }
    switch (nameOf(element)) {
    case Name::Cache:
        inCache = true;
        return;
    case Name::Name:
        inGeocacheName = true;
        return;
    case Name::Difficulty: // shares the flag; the value is told apart at the end
    case Name::Terrain:
        inGeocacheTerrain = true;
        return;
    case Name::Type:
        inGeocacheType = true;
        return;
    case Name::Owner:
        inGeocacheOwner = true;
        return;
    case Name::EncodedHints:
        inGeocacheHint = true;
        return;
    case Name::Logs:
        inGeocacheLogs = true;
        return;
    case Name::Travelbugs:
        inGeocacheTravelbugs = true;
        return;
    default:
        return;
    }
}

void GPXFileImporter::startGPXData(const XMLElement &element, const XMLAttributes &attributes) {
    switch (nameOf(element)) {
    case Name::Cadence:
        inCadence = true;
        return;
    case Name::Hr:
        inHR = true;
        return;
    case Name::Proximity:
        inProximity = true;
        return;
    case Name::Distance:
        inDistance = true;
        if (const auto value = attribute(attributes, Name::Sensor)) {
            sensor.set(*value);
        }
        return;
    case Name::Sensor:
        inSensor = true;
        if (const auto value = attribute(attributes, Name::Kind)) {
            sensor.set(*value);
        }
        return;
    case Name::Temp:
        inTemp = true;
        return;
    case Name::Course:
        inCourse = true;
        return;
    case Name::Index:
        inIndex = true;
        return;
    default:
        return;
    }
}

void GPXFileImporter::startGPX(XMLParser &parser, const XMLElement &element,
                               const XMLAttributes &attributes) {
    switch (nameOf(element)) {
    case Name::Wpt:
        clearPoint();
        readPosition(attributes, transferKind::waypoints);
        inWaypoint = true;
        return;
    case Name::Rte:
        inRoute = true;
        routeStarted = false;
        return;
    case Name::Rtept:
        return startRtept(parser, attributes);
    case Name::Trk:
        inTrack = true;
        return startTrk();
    case Name::Name:
        inName = true;
        return;
    case Name::Number:
        inNumber = true;
        return;
    case Name::Sym:
        inSym = true;
        return;
    case Name::Trkseg:
        return startTrkseg(parser);
    case Name::Trkpt:
        return startTrkpt(parser, attributes);
    case Name::Ele:
        return startEle(parser);
    case Name::Time:
        inTime = true;
        return;
    case Name::Link:
        return startLink(attributes);
    case Name::Text:
        inText = true;
        return;
    case Name::Url:
        inURL = true;
        return;
    case Name::Urlname:
        inURLName = true;
        return;
    default: // author and what else needs nothing
        return;
    }
}

void GPXFileImporter::startRtept(XMLParser &parser, const XMLAttributes &attributes) {
    // The route is announced here rather than at its own start: by now its name is known.
    if (!routeStarted) {
        startRoute();
    }
    clearPoint();
    if (!inRoute) {
        return abortParser(parser, "rtept outside of route");
    }
    readPosition(attributes, transferKind::routes);
    inRoutePoint = true;
}

void GPXFileImporter::startTrkseg(XMLParser &parser) {
    if (inTrkSeg) {
        return abortParser(parser, "trkseg found while in track segment already");
    }
    inTrkSeg = true;
    startTrkSeg();
}

void GPXFileImporter::startTrkpt(XMLParser &parser, const XMLAttributes &attributes) {
    clearPoint();
    if (!inTrkSeg) {
        return abortParser(parser, "trkpt found while not in track segment");
    }
    if (inTrkPt) {
        return abortParser(parser, "trkpt found while in track point already");
    }
    readPosition(attributes, transferKind::tracks);
    inTrkPt = true;
}

void GPXFileImporter::startEle(XMLParser &parser) {
    if (!inTrkPt && !inWaypoint && !inRoutePoint) {
        return abortParser(parser, "ele received outside of geometry");
    }
    inElevation = true;
}

void GPXFileImporter::startLink(const XMLAttributes &attributes) {
    // The text has just been emptied, so the address is never kept and an earlier one is forgotten:
    // a link contributes its text only.
    const auto address = attribute(attributes, Name::Href);
    if (address && !currentStringValue.empty()) {
        url.set(*address);
    } else {
        url.clear();
    }
    inLink = true;
}

void GPXFileImporter::readPosition(const XMLAttributes &attributes, std::int32_t kind) noexcept {
    // Of points within points, the outer one may be sent with the place of any inner one.
    leavesOutPlaces = leavesOutPlaces && !inWaypoint && !inRoutePoint && !inTrkPt;
    if (leavesOutPlaces && kind != mode) {
        return;
    }
    const auto latitude = attribute(attributes, Name::Lat);
    const auto longitude = attribute(attributes, Name::Lon);
    if (latitude && longitude) {
        currentPoint.setPosition(*latitude, *longitude);
    }
}

} // namespace pelluvia
