// SPDX-License-Identifier: MIT

#include <Pelluvia/formats/nmea/read/WaypointList.h>

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/nmea/NMEAUtils.h>

#include <algorithm>

namespace pelluvia::nmea {

bool isName(std::string_view text) noexcept {
    return text.size() <= NMEAUtils::longestSentence &&
           std::all_of(text.begin(), text.end(), [](char c) { return c >= ' ' && c <= '~'; });
}

// $--WPL,lat,N/S,lon,E/W,name
bool WaypointList::add(const Sentence &sentence) {
    const auto position =
        readPosition(sentence.field(1), sentence.field(2), sentence.field(3), sentence.field(4));
    const std::string_view name = sentence.field(5);
    if (!position || !isName(name)) {
        return false;
    }
    if (waypoints_.size() == mostWaypoints) {
        ++tally_.beyondLimits;
        return true;
    }
    latest_.insert_or_assign(std::string(name), *position);
    if (known_.emplace(name, position->latitude, position->longitude).second) {
        waypoints_.push_back({std::string(name), *position});
        ++tally_.waypoints;
    }
    return true;
}

std::optional<Position> WaypointList::find(std::string_view name) const {
    const auto found = latest_.find(name);
    return found != latest_.end() ? std::optional(found->second) : std::nullopt;
}

void WaypointList::send(GPSOutputReceiver &receiver) const {
    if (waypoints_.empty()) {
        return;
    }
    Dictionary count;
    count.set(extras::count, Value(static_cast<std::int64_t>(waypoints_.size())));
    receiver.startTransfer(nullptr, transferKind::waypoints, &count);
    for (const auto &[name, position] : waypoints_) {
        Dictionary extra;
        if (!name.empty()) {
            extra.set(extras::name, Value(std::string_view(name)));
        }
        receiver.wayPoint({.latitude = position.latitude, .longitude = position.longitude},
                          extra.empty() ? nullptr : &extra);
    }
    receiver.endTransfer(transferKind::waypoints);
}

} // namespace pelluvia::nmea
