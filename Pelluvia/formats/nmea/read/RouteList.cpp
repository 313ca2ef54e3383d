// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/RouteList.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>

namespace pelluvia::nmea {

namespace {

constexpr std::size_t firstName = 5; // the field

bool isTailOf(const std::vector<std::string> &tail, const std::vector<std::string> &names) {
    return tail.size() <= names.size() && std::equal(tail.rbegin(), tail.rend(), names.rbegin());
}

Dictionary named(const std::string &name) {
    Dictionary extra;
    if (!name.empty()) {
        extra.set(extras::name, Value(std::string_view(name)));
    }
    return extra;
}

} // namespace

/// A route whose names have become places.
struct RouteList::SentRoute {
    const Route *route;
    std::vector<std::pair<const std::string *, Position>> points;
};

// $--RTE,how many sentences,which of them,c or w,identifier,name,name,...
bool RouteList::readHeader(const Sentence &sentence, Header &header) {
    constexpr int mostSentences = static_cast<int>(mostNames);
    const auto total = readCount(sentence.field(1), mostSentences);
    const auto number = readCount(sentence.field(2), mostSentences);
    const std::string_view mode = sentence.field(3);
    if (!total || !number || *number < 1 || *number > *total || (mode != "c" && mode != "w")) {
        return false;
    }
    for (std::size_t place = firstName - 1; place <= sentence.fieldCount(); ++place) {
        if (!isName(sentence.field(place))) {
            return false;
        }
    }
    header = {*total, *number, std::string(sentence.field(firstName - 1))};
    return true;
}

bool RouteList::add(const Sentence &sentence) {
    Header header;
    if (!readHeader(sentence, header)) {
        return false;
    }
    findPlace(header);
    openHeader_ = std::move(header);
    if (!isBroken_) {
        addNames(sentence);
    }
    if (openHeader_.number == openHeader_.total) {
        finishOpen();
    }
    return true;
}

/// Decides whether a sentence begins a route, goes on with the open one, or shows that one is
/// broken.
void RouteList::findPlace(const Header &header) {
    const bool isSame = header.total == openHeader_.total &&
                        header.identifier == openHeader_.identifier &&
                        header.number > openHeader_.number;
    if (header.number == 1) {
        giveUp();
        open_.identifier = header.identifier;
    } else if (!isSame) {
        giveUp();
        isBroken_ = true;
        ++tally_.incompleteRoutes;
    } else if (!isBroken_ && header.number != openHeader_.number + 1) {
        isBroken_ = true;
        ++tally_.incompleteRoutes;
    }
}

void RouteList::addNames(const Sentence &sentence) {
    for (std::size_t place = firstName; place <= sentence.fieldCount(); ++place) {
        const std::string_view name = sentence.field(place);
        if (name.empty()) {
            continue;
        }
        if (names_ + open_.names.size() < mostNames) {
            open_.names.emplace_back(name);
        } else {
            ++tally_.beyondLimits;
        }
    }
}

bool RouteList::isKnown(const Route &route) const {
    const auto [first, last] = byIdentifier_.equal_range(route.identifier);
    return std::any_of(first, last, [&](const auto &entry) {
        return isTailOf(route.names, routes_[entry.second].names);
    });
}

/// The last sentence of the open route has come.
void RouteList::finishOpen() {
    Route route = std::exchange(open_, {});
    openHeader_ = {};
    // Receivers that follow no route send an empty one.
    if (std::exchange(isBroken_, false) || route.names.empty() || isKnown(route)) {
        return;
    }
    if (routes_.size() == mostRoutes) {
        tally_.beyondLimits += static_cast<std::int64_t>(route.names.size());
        return;
    }
    names_ += route.names.size();
    byIdentifier_.emplace(route.identifier, routes_.size());
    routes_.push_back(std::move(route));
}

void RouteList::giveUp() {
    if (openHeader_.total != 0 && !isBroken_) {
        ++tally_.incompleteRoutes;
    }
    isBroken_ = false;
    openHeader_ = {};
    open_ = {};
}

std::vector<RouteList::SentRoute> RouteList::resolved(const WaypointList &waypoints) {
    std::vector<SentRoute> result;
    for (const Route &route : routes_) {
        SentRoute sent{&route, {}};
        for (const std::string &name : route.names) {
            if (const auto position = waypoints.find(name)) {
                sent.points.emplace_back(&name, *position);
            } else {
                ++tally_.unknownRoutePoints;
            }
        }
        if (!sent.points.empty()) {
            result.push_back(std::move(sent));
        }
    }
    return result;
}

void RouteList::send(GPSOutputReceiver &receiver, const WaypointList &waypoints) {
    const std::vector<SentRoute> sent = resolved(waypoints);
    if (sent.empty()) {
        return;
    }
    std::int64_t points = 0;
    for (const SentRoute &each : sent) {
        points += static_cast<std::int64_t>(each.points.size());
    }
    Dictionary count;
    count.set(extras::count, Value(points));
    receiver.startTransfer(nullptr, transferKind::routes, &count);
    for (const SentRoute &each : sent) {
        sendRoute(receiver, each);
    }
    receiver.endTransfer(transferKind::routes);
    tally_.routes += static_cast<std::int64_t>(sent.size());
}

void RouteList::sendRoute(GPSOutputReceiver &receiver, const SentRoute &route) const {
    const std::string &identifier = route.route->identifier;
    const auto number = readCount(identifier, std::numeric_limits<int>::max());
    const std::int64_t place = route.route - routes_.data() + 1;
    Dictionary extra = named(identifier);
    // One is the key that the protocol has for the number, the other the one that the GPX exporter
    // reads.
    for (const Key &key : {extras::index, extras::routeNumber}) {
        extra.set(key, Value(number > 0 ? std::int64_t{*number} : place));
    }
    receiver.newRoute(&extra);
    for (const auto &[name, position] : route.points) {
        const Dictionary pointExtra = named(*name);
        // A waypoint inside a route is a route point; sent as one, the GPX exporter would count it
        // and not write it.
        receiver.wayPoint({.latitude = position.latitude, .longitude = position.longitude},
                          &pointExtra);
    }
}

} // namespace pelluvia::nmea
