#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/xml/XMLParser.h>

/// \file
/// The importer between the tags and at the end of elements: texts become values.

namespace pelluvia {

using gpxVocabulary::Name;
using gpxVocabulary::nameOf;
using gpxVocabulary::Namespace;

void GPXFileImporter::foundCharacters(XMLParser &parser, std::string_view characters) {
    // The parser limits a text between two tags; here several can add up.
    if (characters.size() > xmlLimits::textSize - currentStringValue.size()) {
        return abortParser(parser, "text of an element is too long");
    }
    currentStringValue.append(characters);
}

void GPXFileImporter::didEndElement(XMLParser & /*parser*/, const XMLElement &element) {
    switch (gpxVocabulary::namespaceOf(element)) {
    case Namespace::GarminExtensions:
        if (endGarminExtension(element)) {
            return;
        }
        break;
    case Namespace::GarminTrackPoint:
        if (endGarminTrackPoint(element)) {
            return;
        }
        break;
    case Namespace::Geocache:
        return endGeocache(element);
    case Namespace::GPXData:
        return endGPXData(element);
    default:
        break;
    }
    // At their end, unlike at their start, GPX elements are accepted in any namespace and in none.
    endGPX(element);
}

template <class Number>
void GPXFileImporter::takeNumber(CollectedNumber<Number> &field) noexcept {
    field.set(currentStringValue);
    currentStringValue.clear();
}

bool GPXFileImporter::endGarminExtension(const XMLElement &element) noexcept {
    switch (nameOf(element)) {
    case Name::Temperature:
        takeNumber(temp);
        inTemp = false;
        return true;
    case Name::GarminProximity:
        takeNumber(proximity);
        inProximity = false;
        return true;
    default:
        return false;
    }
}

bool GPXFileImporter::endGarminTrackPoint(const XMLElement &element) noexcept {
    switch (nameOf(element)) {
    case Name::Atemp:
        takeNumber(temp);
        inTemp = false;
        return true;
    case Name::Hr:
        takeNumber(hr);
        inHR = false;
        return true;
    case Name::Cad:
        takeNumber(cadence);
        inCadence = false;
        return true;
    default:
        return false;
    }
}

void GPXFileImporter::endGeocache(const XMLElement &element) {
    switch (nameOf(element)) {
    case Name::Cache:
        inCache = false;
        return;
    case Name::Name:
        if (!inGeocacheLogs && !inGeocacheTravelbugs) {
            takeText(geocacheName);
            inGeocacheName = false;
        }
        return;
    case Name::Terrain:
        takeText(geocacheTerrain);
        inGeocacheTerrain = false;
        return;
    case Name::Difficulty:
        takeText(geocacheDifficulty);
        inGeocacheDifficulty = false;
        return;
    case Name::Type: // also of a log: the last one wins
        takeText(geocacheType);
        inGeocacheType = false;
        return;
    case Name::Owner:
        takeText(geocacheOwner);
        inGeocacheOwner = false;
        return;
    case Name::EncodedHints:
        takeText(geocacheHint);
        inGeocacheHint = false;
        return;
    case Name::Logs:
        inGeocacheLogs = false;
        return;
    case Name::Travelbugs:
        inGeocacheTravelbugs = false;
        return;
    default:
        return;
    }
}

void GPXFileImporter::endGPXData(const XMLElement &element) noexcept {
    switch (nameOf(element)) {
    case Name::Cadence:
        takeNumber(cadence);
        inCadence = false;
        return;
    case Name::Hr:
        takeNumber(hr);
        inHR = false;
        return;
    case Name::Proximity:
        takeNumber(proximity);
        inProximity = false;
        return;
    case Name::Distance:
        takeNumber(distance);
        inDistance = false;
        return;
    case Name::Sensor: // the value came from an attribute
        inSensor = false;
        return;
    case Name::Temp:
        takeNumber(temp);
        inTemp = false;
        return;
    case Name::Course:
        inCourse = false;
        return;
    case Name::Index:
        takeNumber(courseIndex);
        inIndex = false;
        return;
    default:
        return;
    }
}

void GPXFileImporter::endGPX(const XMLElement &element) {
    switch (nameOf(element)) {
    case Name::Wpt:
        inWaypoint = false;
        return addWaypoint();
    case Name::Rte:
        inRoute = false;
        return;
    case Name::Rtept:
        inRoutePoint = false;
        return addRoutePoint();
    case Name::Trk:
        inTrack = false;
        return;
    case Name::Name:
        takeText(name);
        inName = false;
        return;
    case Name::Number:
        takeText(number);
        inNumber = false;
        return;
    case Name::Sym:
        takeText(symbol);
        inSym = false;
        return;
    case Name::Desc:
        return takeText(description);
    case Name::Cmt:
        return takeText(comment);
    case Name::Trkseg:
        inTrkSeg = false;
        return;
    case Name::Trkpt:
        inTrkPt = false;
        return addTrkPt();
    case Name::Ele:
        takeAltitude();
        inElevation = false;
        return;
    case Name::Time:
        takeTime();
        inTime = false;
        return;
    case Name::Link:
        inLink = false;
        return;
    case Name::Text:
        inText = false;
        if (inLink) {
            takeText(urlName);
        }
        return;
    case Name::Url:
        takeText(url);
        inURL = false;
        return;
    case Name::Urlname:
        takeText(urlName);
        inURLName = false;
        return;
    default: // author and what else means nothing
        return;
    }
}

void GPXFileImporter::takeText(CollectedText &field) {
    field.setUnlessEmpty(currentStringValue);
}

void GPXFileImporter::takeAltitude() noexcept {
    currentPoint.setAltitude(currentStringValue);
    currentStringValue.clear();
}

void GPXFileImporter::takeTime() noexcept {
    currentPoint.setTime(currentStringValue);
    currentStringValue.clear();
}

} // namespace pelluvia
