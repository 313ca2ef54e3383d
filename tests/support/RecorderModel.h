// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/model/TransferKind.h>

#include <tests/support/SpyReceiver.h>
#include <tests/support/ThinningModel.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pelluvia::testing {

/// The text of a dictionary without the key that a recorder sets itself.
[[nodiscard]] inline std::string textWithout(std::string_view key, const Dictionary *dictionary) {
    Dictionary rest;
    if (dictionary != nullptr) {
        rest = *dictionary;
    }
    rest.remove(Key(key));
    return textOf(&rest);
}

/// What a recorder holds, told the simplest way: lists of points and texts. It gets the same calls
/// as a `RecordingGPSOutput`, whose rules it spells out one by one.
class RecorderModel {
  public:
    struct Point {
        GPSPoint record;
        std::string extras; ///< without "point"
    };
    struct List {               ///< a track or a route
        std::string attributes; ///< without "points"
        bool hasPoints = true;
        std::vector<Point> points;
    };

    ThinningModel thinning;
    std::optional<List> openTrack;
    std::optional<List> openRoute;
    std::vector<List> tracks;
    std::vector<List> routes;
    std::vector<Point> waypoints;
    std::vector<std::string> progress; ///< what a progress object is told, a line each
    std::vector<std::string> reports;  ///< what an error object is told
    int completions = 0;
    int laps = 0; ///< that the host added
    std::string lastError = "nil";
    std::int32_t kind = 0;
    std::int32_t items = 0;

    RecorderModel() { thinning.minimize = false; }

    void newTrack(const Dictionary *extra) { beginTrack(textWithout("points", extra)); }
    void newRoute(const Dictionary *extra) { beginRoute(textWithout("points", extra)); }
    void trackPoint(const GPSPoint &record, const Dictionary *extra) {
        addTrackPoint({record, textWithout("point", extra)});
    }
    void routePoint(const GPSPoint &record, const Dictionary *extra) {
        addRoutePoint({record, textWithout("point", extra)});
    }
    void wayPoint(const GPSPoint &record, const Dictionary *extra) {
        addWayPoint({record, textWithout("point", extra)});
    }
    void startTransfer(int newKind, std::int32_t count) {
        progress.push_back(line("start", newKind, count));
        kind = newKind;
    }
    void endTransfer(int endedKind) {
        endSending(endedKind);
        items = 0;
        if (endedKind == transferKind::routes) {
            file(openRoute, routes);
        }
        if (endedKind == transferKind::tracks) {
            file(openTrack, tracks);
        }
    }
    void sendProgress(int index) { progress.push_back(line("progress", kind, index)); }
    void endSending(int endedKind) {
        progress.push_back("end " + std::to_string(endedKind));
        kind = 0;
    }
    void warning(const Report &report) { reports.push_back(textOf(report)); }
    void error(const Report &report) {
        reports.push_back(textOf(report));
        lastError = textOf(report);
    }
    void gpsStateChange(int state) { completions += state == 0 ? 1 : 0; }

    /// What a replay of the recorder into itself does: all that was there at the start is there
    /// twice.
    void replayIntoItself() {
        const bool hasWaypoints = !waypoints.empty();
        const bool hasRoutes = !routes.empty();
        const bool hasTracks = !tracks.empty();
        if (hasWaypoints) {
            startTransfer(transferKind::waypoints, 0);
            for (const Point &point : std::vector<Point>(waypoints)) {
                addWayPoint(point);
            }
            endTransfer(transferKind::waypoints);
        }
        if (hasRoutes) {
            startTransfer(transferKind::routes, 0);
            for (const List &route : std::vector<List>(routes)) {
                beginRoute(route.attributes);
                for (const Point &point : route.points) {
                    addRoutePoint(point);
                }
            }
            endTransfer(transferKind::routes);
        }
        if (hasTracks) {
            startTransfer(transferKind::tracks, 0);
            for (const List &track : std::vector<List>(tracks)) {
                beginTrack(track.attributes);
                for (const Point &point : track.points) {
                    addTrackPoint(point);
                }
            }
            endTransfer(transferKind::tracks);
        }
    }

    void clear() {
        openTrack.reset();
        openRoute.reset();
        tracks.clear();
        routes.clear();
        waypoints.clear();
        lastError = "nil";
        laps = 0;
        thinning.pointTests = 0;
        thinning.slopeTests = 0;
    }

    static std::string line(std::string_view what, int kind, int number) {
        return std::string(what) + " " + std::to_string(kind) + " " + std::to_string(number);
    }

  private:
    void beginTrack(const std::string &attributes) {
        file(openTrack, tracks);
        openTrack = List{attributes, true, {}};
        thinning.newTrack();
    }
    void beginRoute(const std::string &attributes) {
        file(openRoute, routes);
        openRoute = List{attributes, true, {}};
    }
    void addTrackPoint(const Point &point) {
        if (!openTrack) {
            openTrack = List{"{name: \"unnamed\"}", false, {}};
        }
        const bool toss = thinning.trackPoint(point.record);
        if (openTrack->hasPoints) {
            if (toss) {
                openTrack->points.pop_back();
            }
            openTrack->points.push_back(point);
        }
        count();
    }
    void addRoutePoint(const Point &point) {
        if (openRoute) {
            openRoute->points.push_back(point);
        }
        count();
    }
    void addWayPoint(const Point &point) {
        if (openRoute) {
            return addRoutePoint(point);
        }
        waypoints.push_back(point);
        count();
    }
    static void file(std::optional<List> &open, std::vector<List> &filed) {
        if (open) {
            filed.push_back(*open);
            open.reset();
        }
    }
    void count() { sendProgress(++items); }
};

} // namespace pelluvia::testing
