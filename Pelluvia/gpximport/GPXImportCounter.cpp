#include <Pelluvia/gpximport/GPXImportCounter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <limits>

namespace pelluvia {

namespace {

void addOne(std::int32_t &count) noexcept {
    if (count < std::numeric_limits<std::int32_t>::max()) {
        ++count;
    }
}

} // namespace

std::shared_ptr<GPXImportCounter> GPXImportCounter::init() {
    auto counter = std::make_shared<GPXImportCounter>();
    counter->reset();
    return counter;
}

void GPXImportCounter::reset() noexcept {
    _hasName = _hasComment = _hasDescription = _hasType = _hasSrc = _hasLink = _hasForeignPoints =
        false;
    _waypoints = _tracks = _tracksegments = _routes = _routepoints = 0;
}

XMLVocabulary GPXImportCounter::vocabulary() const {
    return gpxVocabulary::vocabulary;
}

XMLInterest GPXImportCounter::interestIn(const XMLElement &element,
                                         std::span<const XMLElement> /*around*/) const {
    using gpxVocabulary::Name;
    switch (gpxVocabulary::nameOf(element)) {
    case Name::Wpt:
    case Name::Rte:
    case Name::Trk:
    case Name::Trkseg:
    case Name::Rtept:
    case Name::Trkpt:
    case Name::Name:
    case Name::Cmt:
    case Name::Desc:
    case Name::Type:
    case Name::Src:
    case Name::Link:
        return XMLInterest::tags;
    default:
        return XMLInterest::nothing;
    }
}

void GPXImportCounter::noteNamespace(const XMLElement &point) noexcept {
    using gpxVocabulary::Namespace;
    const Namespace space = gpxVocabulary::namespaceOf(point);
    _hasForeignPoints =
        _hasForeignPoints || (space != Namespace::GPX10 && space != Namespace::GPX11);
}

void GPXImportCounter::didStartElement(XMLParser & /*parser*/, const XMLElement &element,
                                       const XMLAttributes & /*attributes*/) {
    using gpxVocabulary::Name;
    switch (gpxVocabulary::nameOf(element)) {
    case Name::Wpt:
        noteNamespace(element);
        return addOne(_waypoints);
    case Name::Rte:
        return addOne(_routes);
    case Name::Trk:
        return addOne(_tracks);
    case Name::Trkseg:
        return addOne(_tracksegments);
    case Name::Rtept:
        noteNamespace(element);
        return addOne(_routepoints);
    case Name::Trkpt:
        return noteNamespace(element);
    case Name::Name:
        _hasName = true;
        return;
    case Name::Cmt:
        _hasComment = true;
        return;
    case Name::Desc:
        _hasDescription = true;
        return;
    case Name::Type:
        _hasType = true;
        return;
    case Name::Src:
        _hasSrc = true;
        return;
    case Name::Link:
        _hasLink = true;
        return;
    default:
        return;
    }
}

} // namespace pelluvia
