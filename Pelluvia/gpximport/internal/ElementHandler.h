// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/internal/CollectedPoint.h>
#include <Pelluvia/gpximport/internal/CollectedValues.h>
#include <Pelluvia/gpximport/internal/ContextFlags.h>
#include <Pelluvia/gpximport/internal/GPXTable.h>
#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/xml/XMLParser.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <tuple>

namespace pelluvia {

/// What the importer does with elements: it collects their values, as `gpxTable` says, and sends
/// the points of the current pass.
///
/// What it knows of the elements that it is in, and what it has collected, outlives passes and
/// imports.
class ElementHandler {
  public:
    explicit ElementHandler(std::shared_ptr<GPSOutputReceiver> receiver);

    // The events. Elements without numbers of the vocabulary are looked up first.
    void start(XMLParser &parser, const XMLElement &element, const XMLAttributes &attributes) {
        if (gpxVocabulary::isNumbered(element)) [[likely]] {
            return startNumbered(parser, element, attributes);
        }
        startUnnumbered(parser, element, attributes);
    }
    void characters(XMLParser &parser, std::string_view text);
    void end(XMLParser &parser, const XMLElement &element) {
        if (gpxVocabulary::isNumbered(element)) [[likely]] {
            return endNumbered(parser, element);
        }
        endUnnumbered(parser, element);
    }

    /// Ends the parse because of the file's structure.
    void abort(XMLParser &parser, std::string_view message);
    /// Whether the host has stopped the import; then the parse ends, too.
    [[nodiscard]] bool isStopped(XMLParser &parser) const {
        const bool isRequested = stopToken.stop_requested();
        if (isRequested) [[unlikely]] {
            parser.abortParsing();
        }
        return isRequested;
    }

    /// The flags that are consulted.
    using Nesting = std::tuple<bool, bool, bool, bool, bool, bool, bool, bool>;
    [[nodiscard]] std::tuple<bool &, bool &, bool &, bool &, bool &, bool &, bool &, bool &>
    nesting() noexcept;
    /// As if no element had been seen.
    void forgetElements() noexcept;

    std::shared_ptr<GPSOutputReceiver> output;
    std::stop_token stopToken;
    std::int32_t mode = transferKind::tracks; ///< the transfer kind of the current pass
    ErrorPtr lastError;                       ///< of the structural abort in the current pass
    /// For structural errors. Nothing sets it, and while it is nil the errors end before it.
    std::optional<std::string> path;
    /// Whether the pass leaves out the places of points of other kinds: until one stands within
    /// another.
    bool leavesOutPlaces = false;

  private:
    /// Whether the points and headings of this kind are to be sent in this pass.
    [[nodiscard]] bool sends(std::int32_t kind) const noexcept {
        return mode == kind && output != nullptr;
    }

    void startNumbered(XMLParser &parser, const XMLElement &element,
                       const XMLAttributes &attributes);
    void endNumbered(XMLParser &parser, const XMLElement &element);
    // Never inlined: the way of almost all elements is short without them.
    [[gnu::noinline]] void startUnnumbered(XMLParser &parser, const XMLElement &element,
                                           const XMLAttributes &attributes);
    [[gnu::noinline]] void endUnnumbered(XMLParser &parser, const XMLElement &element);
    // What is done for each row of the table, as a function of its own.
    template <std::size_t position>
    static void startAs(ElementHandler &self, XMLParser &parser, const XMLAttributes &attributes);
    template <std::size_t position>
    static void endAs(ElementHandler &self, XMLParser &parser);
    template <std::size_t position>
    void take();

    // Starts of the elements with rules of their own. The ones with a result tell whether the
    // element stands where it may.
    template <gpxTable::Rule rule>
    [[nodiscard]] bool obeyAtStart(XMLParser &parser, const XMLAttributes &attributes);
    void startWaypoint(const XMLAttributes &attributes) noexcept;
    [[nodiscard]] bool startRtept(XMLParser &parser, const XMLAttributes &attributes);
    [[nodiscard]] bool startTrkseg(XMLParser &parser);
    [[nodiscard]] bool startTrkpt(XMLParser &parser, const XMLAttributes &attributes);
    [[nodiscard]] bool startEle(XMLParser &parser);
    void startLink(const XMLAttributes &attributes);
    void readPosition(const XMLAttributes &attributes, std::int32_t kind) noexcept;
    [[nodiscard]] bool isInLogs() const noexcept {
        return flags.inGeocacheLogs || flags.inGeocacheTravelbugs;
    }

    /// Forgets the point and what was collected for it, but for what is kept behind it.
    void clearPoint() noexcept;
    void addWaypoint(XMLParser &parser);
    void startRoute(XMLParser &parser);
    void addRoutePoint(XMLParser &parser);
    void startTrk() noexcept;
    void startTrkSeg(XMLParser &parser);
    void addTrkPt(XMLParser &parser);
    // Hooks that nothing calls.
    void endRoute() noexcept {}
    void endTrk() noexcept {}
    void endTrkSeg() noexcept {}

    /// Adds what a point carries to `scratch`.
    template <gpxTable::Carriers points>
    void addExtras();

    ContextFlags flags;
    CollectedValues collected;
    CollectedPoint currentPoint;
    /// Whether the current trk or rte has been announced.
    bool trackStarted = false;
    bool routeStarted = false;
    std::int32_t isCourse = 0; ///< set by no handler: no file makes a track a course
    float gpxVersion = 0;      ///< 1.0 or 1.1 by the namespace; read by nothing
    /// The text since the last start of an element, inside elements that use their text. One
    /// buffer, emptied and never given back.
    std::string currentStringValue;
    /// The extras of the call being made; empty between calls. Used again for every call, so that a
    /// point costs no allocation.
    Dictionary scratch;
};

} // namespace pelluvia
