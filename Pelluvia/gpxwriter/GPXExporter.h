#pragma once

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/values/Export.h>

#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelluvia {

/// A receiver that writes what it is sent to a GPX 1.1 file, call by call:
///
///     std::shared_ptr<GPXExporter> exporter = GPXExporter::initWithPath("ride.gpx");
///     if (exporter == nullptr) { ... }                // the file cannot be opened
///     producer.sendEverythingTo(*exporter);
///     exporter->gpsStateChange(gpsState::finished);   // completes and closes the file
///     if (exporter->writeFailure()) { ... }           // not everything reached the file
///
/// What becomes of the calls:
///
///  - `newTrack`, `newTrackSegment` and `newRoute` start a `trk`, a `trkseg` and an `rte`.
///  - `trackPoint` writes a `trkpt`; a data-only point goes into the extensions of its segment.
///  - `wayPoint` writes a `wpt`, or an `rtept` while a route is open.
///  - `routePoint` writes nothing and is counted: a route's points are sent as waypoints.
///  - `lapInfoStart` writes a `gpxdata:lap`.
///  - `endTransfer` ends the track or the route, as its kind says.
///  - `poiPoint`, `currentPosition`, `startSending`, `sendProgress` and `endSending` do nothing.
///
/// Names, comments and other texts that are not ASCII are left out. A route's number is read from
/// `extras::routeNumber`.
///
/// Without a document (one made by `init`, or after the finished state) the calls write nothing;
/// counting, progress and the other messages go on.
///
/// Threads: one at a time. Progress is reported on the thread of the call; completion, warnings and
/// errors are posted to the main thread (see MainThread.h), so they may arrive after further calls.
class PELLUVIA_EXPORT GPXExporter final : public GPSOutputReceiver,
                                          public std::enable_shared_from_this<GPXExporter> {
    /// Only the factories make exporters, since completion hands out shared ownership.
    struct Factory {
        explicit Factory() = default;
    };

  public:
    /// Sets who is named as the creator in documents made from now on, in every thread; it is
    /// copied. Written without escaping. While it is not ASCII, the initial "GPXExporter" stands in
    /// for it. Threads: any.
    static void setCreator(std::string_view creator);

    /// An exporter without a document.
    [[nodiscard]] static std::shared_ptr<GPXExporter> init();

    /// An exporter into a new file (UTF-8 path; a file that is there is truncated), whose header is
    /// written at once. Null when the file cannot be opened; `errno` then says why.
    [[nodiscard]] static std::shared_ptr<GPXExporter> initWithPath(const std::string &path);

    explicit GPXExporter(Factory /*onlyMadeByFactories*/) {}
    GPXExporter(const GPXExporter &) = delete;
    GPXExporter &operator=(const GPXExporter &) = delete;
    /// Completes and closes the document if that has not happened. Sends nothing, and a failure
    /// remains unknown: where it matters, send `gpsStateChange(gpsState::finished)` first.
    ~GPXExporter() override;

    /// Sets whose method is called on the main thread, with this exporter, each time the finished
    /// state arrives. The object is held strongly; null sends nothing.
    template <class Target>
    void setCompletionObject(std::shared_ptr<Target> object,
                             void (Target::*andSelector)(std::shared_ptr<GPXExporter>)) {
        completionObject = std::move(object);
        completionSelector = Selector<std::shared_ptr<GPXExporter>>(andSelector);
    }

    /// Sets whose method is called on the main thread with what `warning` and `error` receive. The
    /// object is held strongly; null sends nothing.
    template <class Target>
    void setErrorObject(std::shared_ptr<Target> object, void (Target::*andSelector)(Report)) {
        errorObject = std::move(object);
        errorSelector = Selector<Report>(andSelector);
    }

    /// Sets who is told about progress; held strongly, may be null.
    void setProgress(std::shared_ptr<GPXExporterProgress> newProgress);

    /// The first failure to write or close the document; no error while all went well, or without a
    /// document. Output is buffered: only once the document is closed is the answer final.
    [[nodiscard]] std::error_code writeFailure() const noexcept;

    /// Writes what is still buffered, so that who reads the file along has all that was sent. The
    /// document is not complete by that. Returns `writeFailure()`.
    std::error_code flush();

    // GPSOutputReceiver
    void newTrackSegment() override;
    void newTrack(const Dictionary *extra) override;
    void newRoute(const Dictionary *extra) override;
    void trackPoint(GPSPoint point, const Dictionary *extra) override;
    void wayPoint(GPSPoint point, const Dictionary *extra) override;
    void routePoint(GPSPoint point, const Dictionary *extra) override;
    void poiPoint(GPSPoint point, const Dictionary *extra) override;
    void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) override;
    void startTransfer(const void *sender, int kind, const Dictionary *extra) override;
    void endTransfer(int kind) override;
    void currentPosition(GPSPoint point, int accuracy) override;
    void warning(const Report &object) override;
    void error(const Report &error) override;
    void gpsStateChange(int state) override;
    void startSending(const void *sender, int kind, const Dictionary *extra) override;
    void sendProgress(int count) override;
    void endSending(int kind) override;

  private:
    void closeIfOpen();
    void countPoint();
    void reportProblem(const Report &problem);

    std::string outputPath;
    GPXRef gpxRef = nullptr; // Owned; null without a document.
    int transferKind = 0;
    std::shared_ptr<void> completionObject;
    std::shared_ptr<GPXExporterProgress> progress;
    Selector<std::shared_ptr<GPXExporter>> completionSelector;
    std::shared_ptr<void> errorObject;
    Selector<Report> errorSelector;
    int itemCount = 0;
    std::error_code closedFailure_; // What `writeFailure` says once the document is closed.
};

} // namespace pelluvia
