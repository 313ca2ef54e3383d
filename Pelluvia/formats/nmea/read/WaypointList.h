// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEATally.h>
#include <Pelluvia/formats/nmea/read/Fields.h>
#include <Pelluvia/formats/nmea/read/Sentence.h>

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <cstddef>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace pelluvia::nmea {

/// The waypoints (WPL) of a log, in the order of their first coming. Receivers send them over and
/// over: the same name at the same place is the same waypoint, at another place it is another one.
///
/// Threads: one at a time.
class WaypointList {
  public:
    /// The tally is borrowed.
    explicit WaypointList(NMEATally &tally) noexcept : tally_(tally) {}

    /// Takes a WPL; false when it makes no sense.
    [[nodiscard]] bool add(const Sentence &sentence);

    /// Where the waypoint of that name is; of several, the one that came last.
    [[nodiscard]] std::optional<Position> find(std::string_view name) const;

    /// Sends all as one transfer; nothing when there are none.
    void send(GPSOutputReceiver &receiver) const;

    /// So many are kept; more are counted (`NMEATally::beyondLimits`) and left out.
    static constexpr std::size_t mostWaypoints = 100'000;

  private:
    struct Waypoint {
        std::string name; ///< empty: it has none
        Position position;
    };

    NMEATally &tally_;
    std::vector<Waypoint> waypoints_;
    std::set<std::tuple<std::string, double, double>> known_;
    std::map<std::string, Position, std::less<>> latest_; ///< by name
};

/// Whether a name can be one: printable ASCII, as the format asks, and no longer than a sentence.
/// The empty name is one.
[[nodiscard]] bool isName(std::string_view text) noexcept;

} // namespace pelluvia::nmea
