// SPDX-License-Identifier: MIT

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

    GPXImportCounter();
    GPXImportCounter(const GPXImportCounter &) = delete;
    GPXImportCounter &operator=(const GPXImportCounter &) = delete;
    ~GPXImportCounter() override;

    /// All counts 0, all flags false.
    void reset() noexcept;

    /// Whether some element `name`, `cmt`, `desc`, `type`, `src` or `link` was seen.
    [[nodiscard]] bool hasName() const noexcept;
    void setHasName(bool hasName) noexcept;
    [[nodiscard]] bool hasComment() const noexcept;
    void setHasComment(bool hasComment) noexcept;
    [[nodiscard]] bool hasDescription() const noexcept;
    void setHasDescription(bool hasDescription) noexcept;
    [[nodiscard]] bool hasType() const noexcept;
    void setHasType(bool hasType) noexcept;
    [[nodiscard]] bool hasSrc() const noexcept;
    void setHasSrc(bool hasSrc) noexcept;
    [[nodiscard]] bool hasLink() const noexcept;
    void setHasLink(bool hasLink) noexcept;

    /// Whether some element `wpt`, `rtept` or `trkpt` was in another namespace than those of GPX,
    /// or in none.
    [[nodiscard]] bool hasForeignPoints() const noexcept;

    /// The number of `wpt` elements.
    [[nodiscard]] std::int32_t waypoints() const noexcept;
    void setWaypoints(std::int32_t waypoints) noexcept;
    /// The number of `trk` elements.
    [[nodiscard]] std::int32_t tracks() const noexcept;
    void setTracks(std::int32_t tracks) noexcept;
    /// The number of `trkseg` elements.
    [[nodiscard]] std::int32_t tracksegments() const noexcept;
    void setTracksegments(std::int32_t tracksegments) noexcept;
    /// The number of `rte` elements.
    [[nodiscard]] std::int32_t routes() const noexcept;
    void setRoutes(std::int32_t routes) noexcept;
    /// The number of `rtept` elements.
    [[nodiscard]] std::int32_t routepoints() const noexcept;
    void setRoutepoints(std::int32_t routepoints) noexcept;

    // The parser's side: nothing but the names that count is asked for. Elements that do not come
    // from a parser need no numbers: names without one are looked up.
    [[nodiscard]] XMLVocabulary vocabulary() const override;
    [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                         std::span<const XMLElement> around) const override;
    [[nodiscard]] bool wantsElementNamesOnly() const override { return true; }
    void didStartElement(XMLParser &parser, const XMLElement &element,
                         const XMLAttributes &attributes) override;

  private:
    struct PELLUVIA_HIDDEN State;

    std::unique_ptr<State> state_;
};

} // namespace pelluvia
