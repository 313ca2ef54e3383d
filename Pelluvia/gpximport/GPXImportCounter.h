#pragma once

#include <Pelluvia/values/Export.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstdint>
#include <memory>
#include <span>

namespace pelluvia {

/// Counts what a GPX file holds: the delegate of one quick parse before the data is read.
///
///     auto counter = GPXImportCounter::init();
///     auto parser = XMLParser::initWithContentsOfURL(URL::fileURLWithPath("ride.gpx"));
///     parser->setDelegate(counter.get());
///     parser->parse();
///     show(counter->tracks(), counter->waypoints());
///
/// Only the local names of elements count, in whatever namespace and place they stand: a `name` in
/// the metadata sets `hasName` like that of a track. Track points are not counted. Counts and flags
/// only grow until `reset`, so one counter can sum up several files; a count stops at the largest
/// 32-bit integer.
///
/// Threads: one at a time.
class PELLUVIA_EXPORT GPXImportCounter : public XMLParserDelegate {
  public:
    /// A new counter, reset.
    [[nodiscard]] static std::shared_ptr<GPXImportCounter> init();

    /// All counts 0, all flags false.
    void reset() noexcept;

    /// Whether some element `name`, `cmt`, `desc`, `type`, `src` or `link` was seen.
    [[nodiscard]] bool hasName() const noexcept { return _hasName; }
    void setHasName(bool hasName) noexcept { _hasName = hasName; }
    [[nodiscard]] bool hasComment() const noexcept { return _hasComment; }
    void setHasComment(bool hasComment) noexcept { _hasComment = hasComment; }
    [[nodiscard]] bool hasDescription() const noexcept { return _hasDescription; }
    void setHasDescription(bool hasDescription) noexcept { _hasDescription = hasDescription; }
    [[nodiscard]] bool hasType() const noexcept { return _hasType; }
    void setHasType(bool hasType) noexcept { _hasType = hasType; }
    [[nodiscard]] bool hasSrc() const noexcept { return _hasSrc; }
    void setHasSrc(bool hasSrc) noexcept { _hasSrc = hasSrc; }
    [[nodiscard]] bool hasLink() const noexcept { return _hasLink; }
    void setHasLink(bool hasLink) noexcept { _hasLink = hasLink; }

    /// Whether some element `wpt`, `rtept` or `trkpt` was in another namespace than those of GPX,
    /// or in none.
    [[nodiscard]] bool hasForeignPoints() const noexcept { return _hasForeignPoints; }

    /// The number of `wpt` elements.
    [[nodiscard]] std::int32_t waypoints() const noexcept { return _waypoints; }
    void setWaypoints(std::int32_t waypoints) noexcept { _waypoints = waypoints; }
    /// The number of `trk` elements.
    [[nodiscard]] std::int32_t tracks() const noexcept { return _tracks; }
    void setTracks(std::int32_t tracks) noexcept { _tracks = tracks; }
    /// The number of `trkseg` elements.
    [[nodiscard]] std::int32_t tracksegments() const noexcept { return _tracksegments; }
    void setTracksegments(std::int32_t tracksegments) noexcept { _tracksegments = tracksegments; }
    /// The number of `rte` elements.
    [[nodiscard]] std::int32_t routes() const noexcept { return _routes; }
    void setRoutes(std::int32_t routes) noexcept { _routes = routes; }
    /// The number of `rtept` elements.
    [[nodiscard]] std::int32_t routepoints() const noexcept { return _routepoints; }
    void setRoutepoints(std::int32_t routepoints) noexcept { _routepoints = routepoints; }

    // The parser's side: nothing but the names that count is asked for.
    [[nodiscard]] XMLVocabulary vocabulary() const override;
    [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                         std::span<const XMLElement> around) const override;
    [[nodiscard]] bool wantsElementNamesOnly() const override { return true; }
    void didStartElement(XMLParser &parser, const XMLElement &element,
                         const XMLAttributes &attributes) override;

  private:
    void noteNamespace(const XMLElement &point) noexcept;

    bool _hasName = false;
    bool _hasComment = false;
    bool _hasDescription = false;
    bool _hasType = false;
    bool _hasSrc = false;
    bool _hasLink = false;
    bool _hasForeignPoints = false;
    std::int32_t _waypoints = 0;
    std::int32_t _tracks = 0;
    std::int32_t _tracksegments = 0;
    std::int32_t _routes = 0;
    std::int32_t _routepoints = 0;
};

} // namespace pelluvia
