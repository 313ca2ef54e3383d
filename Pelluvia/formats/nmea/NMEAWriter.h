// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/system/OutputFile.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/MessageTarget.h>

#include <cstdint>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace pelluvia {

struct NMEAWriterState; // internal

/// What `NMEAWriter` left out or changed, since the format cannot hold it.
struct NMEAOmissions {
    std::int64_t points = 0; ///< left out: without a position on the globe
    std::int64_t times =
        0; ///< left out: not in the years that a date of two digits tells, 1970 to 2069
    std::int64_t values =
        0; ///< left out: altitudes beyond 1000 km, speeds below 0 or beyond 100 km a second
    std::int64_t routePoints = 0; ///< left out: in a route, beyond the first 100,000
    /// Waypoints and routes that were named by a number, since too many others had been named
    /// before to know whether the name was free.
    std::int64_t names = 0;

    friend bool operator==(const NMEAOmissions &, const NMEAOmissions &) = default;
};

/// The omissions in one line of English, without a line end; empty when there are none.
[[nodiscard]] PELLUVIA_EXPORT std::string textOf(const NMEAOmissions &omissions);

/// A receiver that writes NMEA 0183: RMC and GGA for each track point, WPL for each waypoint, and
/// for each route a WPL for each of its points that has none yet and then the RTE. Lines end in CR
/// LF and are no longer than the format allows; the talker is "GP".
///
///     std::error_code error;
///     const auto writer = NMEAWriter::initWithPath("ride.nmea", error);
///     if (writer == nullptr) {
///         return show(error.message());
///     }
///     const auto importer = GPXFileImporter::initWithReceiver(writer);
///     const ErrorPtr readingError = importer->processFile("ride.gpx");
///     if (const std::error_code failure = writer->close()) {
///         show(failure.message()); // the log is not complete
///     }
///     show(textOf(writer->omissions()));
///
/// Points of a route may come as route points or, while the route is open, as waypoints. Names are
/// made safe, and where two different places would have the same, the second gets a number. The
/// names of the first 100,000 places and of as many routes are remembered; each that comes later
/// gets a number whatever its name is, so that memory is bounded (`NMEAOmissions::names`).
///
/// Not written, as there is no place for it: where segments and tracks begin, laps, points of
/// interest, all extras but names and speed. Positions are rounded to a thousandth of a minute,
/// altitudes to a millimetre, speeds to a thousandth of a knot. A point without a time has empty
/// fields for it.
///
/// Threads: as for any receiver.
class PELLUVIA_EXPORT NMEAWriter : public GPSOutputReceiver,
                                   public std::enable_shared_from_this<NMEAWriter> {
  public:
    /// A writer to a new file at the path (see `OutputFile::open`); null when it cannot be opened,
    /// `error` then says why.
    [[nodiscard]] static std::shared_ptr<NMEAWriter> initWithPath(const std::string &path,
                                                                  std::error_code &error);
    /// A writer to a file that is open already, or to memory (see `OutputFile`). Must not be null.
    explicit NMEAWriter(std::unique_ptr<OutputFile> file);
    NMEAWriter(const NMEAWriter &) = delete;
    NMEAWriter &operator=(const NMEAWriter &) = delete;
    /// Closes the file if `close` was not called; a route that is open is lost then, and whether
    /// closing worked is not to be known.
    ~NMEAWriter() override;

    /// Who is told, on the main thread, of each `warning` and `error`: an object and its method, or
    /// a lambda (see MessageTarget.h); null: nobody.
    void setErrorObject(MessageTarget<Report> target);
    template <class Object, class Method>
    void setErrorObject(Object object, Method andSelector) {
        setErrorObject({std::move(object), std::move(andSelector)});
    }
    /// Who is told of the progress of transfers: of track points, waypoints and route points. Held
    /// until replaced; null: nobody.
    void setProgress(std::shared_ptr<GPXExporterProgress> progress);

    /// Writes what is buffered, so that who reads along has all that came, less the route that is
    /// open. The first failure of any write, or none.
    std::error_code flush();
    /// Writes what is still to be written and closes the file; no call may follow. The first
    /// failure of any write, or none.
    std::error_code close();
    /// The first failure so far.
    [[nodiscard]] std::error_code failure() const noexcept;
    /// What was left out so far.
    [[nodiscard]] const NMEAOmissions &omissions() const noexcept;

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
    std::unique_ptr<NMEAWriterState> state_;
};

} // namespace pelluvia
