// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/ElementHandler.h>

#include <Pelluvia/gpximport/internal/GPXTableChecks.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/text/Scanner.h>

#include <cstddef>
#include <utility>
#include <variant>

/// \file
/// What the importer sends to its receiver. Extras are filled in a fixed order, which receivers
/// that print or store them keep.

namespace pelluvia {

namespace {

/// Empties the dictionary that was sent at the end of the block, however that comes about: only
/// texts that nobody shares any more give their memory to the next ones.
class Emptied {
  public:
    explicit Emptied(Dictionary &extras) noexcept : extras_(extras) {}
    Emptied(const Emptied &) = delete;
    Emptied &operator=(const Emptied &) = delete;
    ~Emptied() { extras_.removeAll(); }

  private:
    Dictionary &extras_;
};

void add(Dictionary &extras, const Key &key, const CollectedText &text) {
    if (text.isPresent()) {
        extras.set(key, text.value());
    }
}

/// NaN is a value: it differs from 0.
template <class Number>
void add(Dictionary &extras, const Key &key, CollectedNumber<Number> &number) {
    const Number value = number.value();
    if (value != 0) {
        extras.set(key, Value(value));
    }
}

void addIndex(Dictionary &extras, const CollectedText &number) {
    if (number.isPresent()) {
        extras.set(extras::index, Value(intValue(number.view())));
    }
}

/// nil for a dictionary that nothing was added to.
const Dictionary *unlessEmpty(const Dictionary &extras) noexcept {
    return extras.empty() ? nullptr : &extras;
}

/// The member of a row of `gpxTable::values`.
template <std::size_t position>
[[nodiscard]] consteval auto memberOf() {
    return std::get<gpxTable::values[position].field.index()>(gpxTable::values[position].field);
}

/// Calls `visit` with each position in `gpxTable::values`, as a constant.
template <class Visit>
void forEachValue(Visit visit) {
    [&]<std::size_t... position>(std::index_sequence<position...>) {
        (visit.template operator()<position>(), ...);
    }
    (std::make_index_sequence<gpxTable::values.size()>());
}

/// Whether the value is sent only where the one before it in the table is absent.
template <std::size_t position>
[[nodiscard]] consteval bool standsIn() {
    if constexpr (position == 0) {
        return false;
    } else {
        return *gpxTable::values[position - 1].key == *gpxTable::values[position].key;
    }
}

} // namespace

/// Flat: each point begins with it, in every pass.
[[gnu::flatten]] void ElementHandler::clearPoint() noexcept {
    currentPoint.clear();
    forEachValue([this]<std::size_t position>() {
        if constexpr (gpxTable::values[position].behind == gpxTable::Behind::forgotten) {
            (collected.*memberOf<position>()).clear();
        }
    });
}

template <gpxTable::Carriers points>
void ElementHandler::addExtras() {
    forEachValue([this]<std::size_t position>() {
        if constexpr ((gpxTable::values[position].carriers & points) != 0) {
            if constexpr (standsIn<position>()) {
                if ((collected.*memberOf<position - 1>()).isPresent()) {
                    return;
                }
            }
            add(scratch, *gpxTable::values[position].key, collected.*memberOf<position>());
        }
    });
}

void ElementHandler::addWaypoint(XMLParser &parser) {
    if (isStopped(parser) || !sends(transferKind::waypoints)) {
        return;
    }
    const Emptied whenDone(scratch);
    addExtras<gpxTable::waypoints>();
    output->wayPoint(currentPoint.read(), &scratch);
    clearPoint();
}

void ElementHandler::startRoute(XMLParser &parser) {
    if (isStopped(parser) || !sends(transferKind::routes) || routeStarted) {
        return;
    }
    const Emptied whenDone(scratch);
    add(scratch, extras::name, collected.name);
    addIndex(scratch, collected.number);
    output->newRoute(unlessEmpty(scratch));
    routeStarted = true;
}

void ElementHandler::addRoutePoint(XMLParser &parser) {
    if (isStopped(parser) || !sends(transferKind::routes)) {
        return;
    }
    const Emptied whenDone(scratch);
    addExtras<gpxTable::routePoints>();
    output->routePoint(currentPoint.read(), &scratch);
    clearPoint();
}

void ElementHandler::startTrk() noexcept {
    trackStarted = false;
    collected.courseIndex.clear();
    isCourse = 0;
}

void ElementHandler::startTrkSeg(XMLParser &parser) {
    if (isStopped(parser) || !sends(transferKind::tracks)) {
        return;
    }
    if (!trackStarted) {
        const Emptied whenDone(scratch);
        add(scratch, extras::name, collected.name);
        add(scratch, extras::description, collected.description);
        addIndex(scratch, collected.number);
        if (isCourse != 0) {
            scratch.set(extras::courseIndex, Value(collected.courseIndex.value()));
        }
        output->newTrack(unlessEmpty(scratch));
        trackStarted = true;
        if (isStopped(parser)) {
            return;
        }
    }
    output->newTrackSegment();
}

void ElementHandler::addTrkPt(XMLParser &parser) {
    if (isStopped(parser) || !sends(transferKind::tracks)) {
        return;
    }
    const Emptied whenDone(scratch);
    addExtras<gpxTable::trackPoints>();
    // Not cleared: what was collected stays until the next point starts.
    output->trackPoint(currentPoint.read(), unlessEmpty(scratch));
}

} // namespace pelluvia
