// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpxwriter/GPXWriter.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/MessageTarget.h>

#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelluvia {

class ExporterState;

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
/// Output is buffered. `flush` makes what was written visible to readers of the file, `sync` safe
/// on the disk; neither happens unless the host asks.
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
    /// written at once. Null when the file cannot be opened; `errno` then says why. A path that
    /// holds a NUL is refused (EINVAL).
    [[nodiscard]] static std::shared_ptr<GPXExporter> initWithPath(const std::string &path);

    /// An exporter that writes to an open descriptor, at its position. The descriptor stays the
    /// host's, which closes it after the exporter has finished. Null when it is not open for
    /// writing; `errno` then says why.
    [[nodiscard]] static std::shared_ptr<GPXExporter> initWithDescriptor(int descriptor);

    /// An exporter that appends to a string, which has to outlive its document. The string is
    /// complete after the finished state.
    [[nodiscard]] static std::shared_ptr<GPXExporter> initInMemory(std::string &text);

    explicit GPXExporter(Factory onlyMadeByFactories);
    GPXExporter(const GPXExporter &) = delete;
    GPXExporter &operator=(const GPXExporter &) = delete;
    /// Completes and closes the document if that has not happened. Sends nothing, and a failure
    /// remains unknown: where it matters, send `gpsStateChange(gpsState::finished)` first.
    ~GPXExporter() override;

    /// Sets who is told on the main thread, with this exporter as argument, each time the finished
    /// state arrives: an object and its method, or a lambda (see MessageTarget.h, also for the ring
    /// that an object makes which keeps the exporter alive). Null: nobody.
    ///
    ///     exporter->setCompletionObject(host, &Host::written);
    void setCompletionObject(MessageTarget<std::shared_ptr<GPXExporter>> target);
    template <class Object, class Method>
    void setCompletionObject(Object object, Method andSelector) {
        setCompletionObject({std::move(object), std::move(andSelector)});
    }

    /// Sets who is told on the main thread of what `warning` and `error` receive; likewise.
    void setErrorObject(MessageTarget<Report> target);
    template <class Object, class Method>
    void setErrorObject(Object object, Method andSelector) {
        setErrorObject({std::move(object), std::move(andSelector)});
    }

    /// Sets who is told about progress; held strongly, may be null.
    void setProgress(std::shared_ptr<GPXExporterProgress> newProgress);

    /// The open document, for elements that no receiver call writes (see GPXWriter.h); null without
    /// one. It stays the exporter's: do not close it.
    [[nodiscard]] GPXRef document() const noexcept;

    /// Writes what is still buffered, and returns `writeFailure()`. Elements that are open stay so;
    /// data-only points wait for the end of their segment.
    std::error_code flush();
    /// Flushes, and waits until the disk has everything, which can take long. Returns
    /// `writeFailure()`.
    std::error_code sync();
    /// The first failure to write or close the document; no error while all went well, or without a
    /// document. Output is buffered: only once the document is closed is the answer final.
    [[nodiscard]] std::error_code writeFailure() const noexcept;

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
    std::unique_ptr<ExporterState> state_;
};

} // namespace pelluvia
