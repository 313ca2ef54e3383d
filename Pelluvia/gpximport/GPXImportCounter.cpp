// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/GPXImportCounter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>

#include <array>
#include <cstddef>
#include <limits>

namespace pelluvia {

namespace {

using gpxVocabulary::Name;
using gpxVocabulary::Namespace;

/// What was seen.
struct Seen {
    bool _hasName = false;
    bool _hasComment = false;
    bool _hasDescription = false;
    bool _hasType = false;
    bool _hasSrc = false;
    bool _hasLink = false;
    std::int32_t _waypoints = 0;
    std::int32_t _tracks = 0;
    std::int32_t _tracksegments = 0;
    std::int32_t _routes = 0;
    std::int32_t _routepoints = 0;
    bool _hasForeignPoints = false;
};

/// What becomes of an element. The name comes first, as the table reads from it.
struct Meaning { // NOLINT(clang-analyzer-optin.performance.Padding)
    Name name = Name::Other;
    std::int32_t Seen::*count = nullptr;
    bool Seen::*flag = nullptr;
    bool isPoint = false;
};

constexpr Meaning meanings[] = {
    {Name::Wpt, &Seen::_waypoints, nullptr, true},
    {Name::Rte, &Seen::_routes},
    {Name::Trk, &Seen::_tracks},
    {Name::Trkseg, &Seen::_tracksegments},
    {Name::Rtept, &Seen::_routepoints, nullptr, true},
    {Name::Trkpt, nullptr, nullptr, true},
    {Name::Name, nullptr, &Seen::_hasName},
    {Name::Cmt, nullptr, &Seen::_hasComment},
    {Name::Desc, nullptr, &Seen::_hasDescription},
    {Name::Type, nullptr, &Seen::_hasType},
    {Name::Src, nullptr, &Seen::_hasSrc},
    {Name::Link, nullptr, &Seen::_hasLink},
};

/// The same by the parser's numbers; `Other` where a name means nothing.
constexpr auto meaningsByName = [] {
    std::array<Meaning, gpxVocabulary::names.size() + 1> byName{};
    for (const Meaning &each : meanings) {
        byName[static_cast<std::size_t>(each.name)] = each;
    }
    return byName;
}();

void addOne(std::int32_t &count) noexcept {
    if (count < std::numeric_limits<std::int32_t>::max()) {
        ++count;
    }
}

/// Both numbers must be those of the vocabulary.
void count(Seen &seen, const XMLElement &element) noexcept {
    const Meaning &meaning = meaningsByName[element.nameNumber];
    const auto space = static_cast<Namespace>(element.namespaceNumber);
    if (meaning.isPoint && space != Namespace::GPX10 && space != Namespace::GPX11) {
        seen._hasForeignPoints = true;
    }
    if (meaning.flag != nullptr) {
        seen.*meaning.flag = true;
    }
    if (meaning.count != nullptr) {
        addOne(seen.*meaning.count);
    }
}

/// Never inlined: the way of almost all elements is short without it.
[[gnu::noinline]] void countUnnumbered(Seen &seen, const XMLElement &element) noexcept {
    count(seen, gpxVocabulary::numbered(element));
}

} // namespace

struct GPXImportCounter::State : Seen {};

GPXImportCounter::GPXImportCounter() : state_(std::make_unique<State>()) {}

GPXImportCounter::~GPXImportCounter() = default;

std::shared_ptr<GPXImportCounter> GPXImportCounter::init() {
    auto counter = std::make_shared<GPXImportCounter>();
    counter->reset();
    return counter;
}

void GPXImportCounter::reset() noexcept {
    *state_ = {};
}

bool GPXImportCounter::hasName() const noexcept {
    return state_->_hasName;
}

void GPXImportCounter::setHasName(bool hasName) noexcept {
    state_->_hasName = hasName;
}

bool GPXImportCounter::hasComment() const noexcept {
    return state_->_hasComment;
}

void GPXImportCounter::setHasComment(bool hasComment) noexcept {
    state_->_hasComment = hasComment;
}

bool GPXImportCounter::hasDescription() const noexcept {
    return state_->_hasDescription;
}

void GPXImportCounter::setHasDescription(bool hasDescription) noexcept {
    state_->_hasDescription = hasDescription;
}

bool GPXImportCounter::hasType() const noexcept {
    return state_->_hasType;
}

void GPXImportCounter::setHasType(bool hasType) noexcept {
    state_->_hasType = hasType;
}

bool GPXImportCounter::hasSrc() const noexcept {
    return state_->_hasSrc;
}

void GPXImportCounter::setHasSrc(bool hasSrc) noexcept {
    state_->_hasSrc = hasSrc;
}

bool GPXImportCounter::hasLink() const noexcept {
    return state_->_hasLink;
}

void GPXImportCounter::setHasLink(bool hasLink) noexcept {
    state_->_hasLink = hasLink;
}

bool GPXImportCounter::hasForeignPoints() const noexcept {
    return state_->_hasForeignPoints;
}

std::int32_t GPXImportCounter::waypoints() const noexcept {
    return state_->_waypoints;
}

void GPXImportCounter::setWaypoints(std::int32_t waypoints) noexcept {
    state_->_waypoints = waypoints;
}

std::int32_t GPXImportCounter::tracks() const noexcept {
    return state_->_tracks;
}

void GPXImportCounter::setTracks(std::int32_t tracks) noexcept {
    state_->_tracks = tracks;
}

std::int32_t GPXImportCounter::tracksegments() const noexcept {
    return state_->_tracksegments;
}

void GPXImportCounter::setTracksegments(std::int32_t tracksegments) noexcept {
    state_->_tracksegments = tracksegments;
}

std::int32_t GPXImportCounter::routes() const noexcept {
    return state_->_routes;
}

void GPXImportCounter::setRoutes(std::int32_t routes) noexcept {
    state_->_routes = routes;
}

std::int32_t GPXImportCounter::routepoints() const noexcept {
    return state_->_routepoints;
}

void GPXImportCounter::setRoutepoints(std::int32_t routepoints) noexcept {
    state_->_routepoints = routepoints;
}

XMLVocabulary GPXImportCounter::vocabulary() const {
    return gpxVocabulary::vocabulary;
}

XMLInterest GPXImportCounter::interestIn(const XMLElement &element,
                                         std::span<const XMLElement> /*around*/) const {
    const auto name = static_cast<std::size_t>(gpxVocabulary::nameOf(element));
    return meaningsByName[name].name != Name::Other ? XMLInterest::tags : XMLInterest::nothing;
}

void GPXImportCounter::didStartElement(XMLParser & /*parser*/, const XMLElement &element,
                                       const XMLAttributes & /*attributes*/) {
    if (gpxVocabulary::isNumbered(element)) [[likely]] {
        return count(*state_, element);
    }
    countUnnumbered(*state_, element);
}

} // namespace pelluvia
