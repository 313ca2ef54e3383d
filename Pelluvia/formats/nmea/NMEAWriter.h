#pragma once

#include <Pelluvia/formats/nmea/write/NameTable.h>

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/system/OutputFile.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace pelluvia::nmea {

/// What `NMEAWriter` left out, since the format cannot hold it.
struct Omissions {
    std::int64_t points = 0; ///< without a position on the globe
    std::int64_t times = 0;  ///< not in the years that a date of two digits tells, 1970 to 2069
    std::int64_t values = 0; ///< altitudes and speeds that cannot be; see `isAltitude`, `isSpeed`
    std::int64_t routePoints = 0; ///< in a route, beyond `mostRouteNames`

    friend bool operator==(const Omissions &, const Omissions &) = default;
};

/// The omissions in one line of English, without a line end; empty when there are none.
[[nodiscard]] std::string textOf(const Omissions &omissions);

/// A receiver that writes NMEA 0183: RMC and GGA for each track point, WPL for each waypoint, and
/// for each route a WPL for each of its points that has none yet and then the RTE. Lines end in CR
/// LF and are no longer than the format allows; the talker is "GP".
///
/// Points of a route may come as route points or, while the route is open, as waypoints. Names are
/// made safe, and where two different places would have the same, the second gets a number.
///
/// Not written, as there is no place for it: where segments and tracks begin, laps, points of
/// interest, all extras but names and speed. Positions are rounded to a thousandth of a minute,
/// altitudes to a millimetre, speeds to a thousandth of a knot. A point without a time has empty
/// fields for it.
///
/// Threads: as for any receiver.
class NMEAWriter : public GPSOutputReceiver {
  public:
    /// A writer to a new file at the path (see `OutputFile::open`); null when it cannot be opened,
    /// `error` then says why.
    [[nodiscard]] static std::shared_ptr<NMEAWriter> initWithPath(const std::string &path,
                                                                  std::error_code &error);
    explicit NMEAWriter(std::unique_ptr<OutputFile> file) : file_(std::move(file)) {}

    /// Who is told, on the main thread, of each `warning` and `error`; held until replaced.
    template <class Target>
    void setErrorObject(std::shared_ptr<Target> object, void (Target::*andSelector)(Report)) {
        errorObject_ = std::move(object);
        errorSelector_ = Selector<Report>(andSelector);
    }
    /// Who is told of the progress of transfers: of track points, waypoints and route points. Null:
    /// nobody.
    void setProgress(std::shared_ptr<GPXExporterProgress> progress) {
        progress_ = std::move(progress);
    }

    /// Writes what is still to be written and closes the file; no call may follow. The first
    /// failure of any write, or none.
    std::error_code close();
    /// The first failure so far.
    [[nodiscard]] std::error_code failure() const noexcept { return file_->failure(); }
    /// What was left out so far.
    [[nodiscard]] const Omissions &omissions() const noexcept { return omissions_; }

    void newTrackSegment() override {}
    void newTrack(const Dictionary *extra) override;
    void newRoute(const Dictionary *extra) override;
    void trackPoint(GPSPoint point, const Dictionary *extra) override;
    void wayPoint(GPSPoint point, const Dictionary *extra) override;
    /// Without an open route the point belongs to nothing and is only counted.
    void routePoint(GPSPoint point, const Dictionary *extra) override;
    void poiPoint(GPSPoint /*point*/, const Dictionary * /*extra*/) override {}
    void lapInfoStart(GPSPoint /*start*/, GPSPoint /*end*/,
                      const Dictionary * /*extras*/) override {}
    void startTransfer(const void *sender, int kind, const Dictionary *extra) override;
    void endTransfer(int kind) override;
    void currentPosition(GPSPoint /*point*/, int /*accuracy*/) override {}
    void warning(const Report &object) override;
    void error(const Report &error) override;
    void gpsStateChange(int state) override;
    void startSending(const void * /*sender*/, int /*kind*/,
                      const Dictionary * /*extra*/) override {}
    void sendProgress(int /*count*/) override {}
    void endSending(int /*kind*/) override {}

  private:
    struct Route {
        std::string identifier;
        std::vector<std::string> names;
    };

    void writeSentence(std::string_view body);
    void writePlace(const GPSPoint &point, const Dictionary *extra, bool isInRoute);
    void endRoute();
    void countPoint();
    [[nodiscard]] bool isWritable(const GPSPoint &point);

    std::unique_ptr<OutputFile> file_;
    std::shared_ptr<void> errorObject_;
    Selector<Report> errorSelector_;
    std::shared_ptr<GPXExporterProgress> progress_;
    int transferKind_ = 0;
    int itemCount_ = 0;
    NameTable waypointNames_{"WP"};
    NameTable routeNames_{"ROUTE"};
    int routes_ = 0;
    std::optional<Route> route_; ///< the open one
    Omissions omissions_;
};

} // namespace pelluvia::nmea
