// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/system/OutputFile.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/MessageTarget.h>

#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelluvia {

struct CallLogWriterState; // internal

/// A receiver that writes every call as one line of JSON, in order (see docs/call-log.md). It adds
/// nothing and leaves no call out: `CallLogReader` makes the same calls again from what it wrote,
/// less the values that a log cannot show: wrapped records of other types than `GPSPoint`, nil in
/// an array, and arrays of more than 20,000 values.
///
///     std::error_code error;
///     const auto writer = CallLogWriter::initWithPath("ride.jsonl", error);
///     if (writer == nullptr) {
///         return show(error.message());
///     }
///     const auto importer = GPXFileImporter::initWithReceiver(writer);
///     const ErrorPtr readingError = importer->processFile("ride.gpx");
///     if (const std::error_code failure = writer->close()) {
///         show(failure.message()); // the log is not complete
///     }
///
/// A state change is a call like any other and does not close the file; `close` does, and so does
/// the end of this object, which does not tell whether that worked.
///
/// Threads: as for any receiver.
class PELLUVIA_EXPORT CallLogWriter : public GPSOutputReceiver,
                                      public std::enable_shared_from_this<CallLogWriter> {
  public:
    /// A writer to a new file at the path (see `OutputFile::open`); null when it cannot be opened,
    /// `error` then says why.
    [[nodiscard]] static std::shared_ptr<CallLogWriter> initWithPath(const std::string &path,
                                                                     std::error_code &error);
    /// A writer to a file that is open already, or to memory (see `OutputFile`). Must not be null.
    explicit CallLogWriter(std::unique_ptr<OutputFile> file);
    CallLogWriter(const CallLogWriter &) = delete;
    CallLogWriter &operator=(const CallLogWriter &) = delete;
    ~CallLogWriter() override;

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

    /// Writes what is buffered, so that who reads along has all that came. The first failure of any
    /// write, or none.
    std::error_code flush();
    /// Writes what is buffered and closes the file; no call may follow. The first failure of any
    /// write, or none.
    std::error_code close();
    /// The first failure so far.
    [[nodiscard]] std::error_code failure() const noexcept;

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
    std::unique_ptr<CallLogWriterState> state_;
};

} // namespace pelluvia
