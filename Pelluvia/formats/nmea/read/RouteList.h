// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/formats/nmea/NMEATally.h>
#include <Pelluvia/formats/nmea/read/Sentence.h>
#include <Pelluvia/formats/nmea/read/WaypointList.h>

#include <Pelluvia/model/GPSOutputReceiver.h>

#include <cstddef>
#include <map>
#include <string>
#include <vector>

namespace pelluvia::nmea {

/// The routes (RTE) of a log, in the order of their coming. A route comes as lists of names, spread
/// over sentences that say how many they are and which this one is; where the names are, the
/// waypoints tell, before or after.
///
/// Receivers send the route that they follow over and over, the points that were passed left out in
/// the working list (mode "w"): what an earlier route of the same identifier ends with is no route
/// of its own.
///
/// Threads: one at a time.
class RouteList {
  public:
    /// The tally is borrowed.
    explicit RouteList(NMEATally &tally) noexcept : tally_(tally) {}

    /// Takes a RTE; false when it makes no sense.
    [[nodiscard]] bool add(const Sentence &sentence);

    /// No sentence will follow: a route that is not complete is given up.
    void finish() { giveUp(); }

    /// Sends all as one transfer, each route named by its identifier and numbered by it too where
    /// that is a number, otherwise by its place in the log. Points whose name no waypoint has are
    /// left out and counted, and so is a route without a single point. Nothing when there are none.
    void send(GPSOutputReceiver &receiver, const WaypointList &waypoints);

    /// So many routes are kept, and so many names in all of them; more are counted
    /// (`NMEATally::beyondLimits`) and left out.
    static constexpr std::size_t mostRoutes = 1000;
    static constexpr std::size_t mostNames = 100'000;

  private:
    struct Route {
        std::string identifier; ///< empty: it has none
        std::vector<std::string> names;
    };
    /// What stands before the names in a sentence.
    struct Header {
        int total = 0;
        int number = 0; ///< 1 to `total`
        std::string identifier;
    };
    struct SentRoute;

    [[nodiscard]] static bool readHeader(const Sentence &sentence, Header &header);
    [[nodiscard]] bool isKnown(const Route &route) const;
    [[nodiscard]] std::vector<SentRoute> resolved(const WaypointList &waypoints);
    void findPlace(const Header &header);
    void addNames(const Sentence &sentence);
    void finishOpen();
    void giveUp();
    void sendRoute(GPSOutputReceiver &receiver, const SentRoute &route) const;

    NMEATally &tally_;
    Header openHeader_; ///< of the last sentence of the route that is coming; total 0: none is
    Route open_;
    bool isBroken_ = false; ///< a sentence of that route is missing, and this has been counted
    std::vector<Route> routes_;
    std::multimap<std::string, std::size_t> byIdentifier_; ///< positions in `routes_`
    std::size_t names_ = 0;                                ///< in all routes
};

} // namespace pelluvia::nmea
