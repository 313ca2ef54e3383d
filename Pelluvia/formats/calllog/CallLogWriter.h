#pragma once

#include <Pelluvia/formats/calllog/internal/CallLogText.h>

#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/system/OutputFile.h>

#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace pelluvia {

/// A receiver that writes every call as one line of JSON, in order (see docs/call-log.md). It adds
/// nothing and leaves no call out: `CallLogReader` makes the same calls again from what it wrote,
/// less the values that a log cannot show (see `CallLogText`).
///
/// A state change is a call like any other and does not close the file; `close` does.
///
/// Threads: as for any receiver.
class CallLogWriter : public GPSOutputReceiver {
  public:
    /// A writer to a new file at the path (see `OutputFile::open`); null when it cannot be opened,
    /// `error` then says why.
    [[nodiscard]] static std::shared_ptr<CallLogWriter> initWithPath(const std::string &path,
                                                                     std::error_code &error);
    explicit CallLogWriter(std::unique_ptr<OutputFile> file);

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

    /// Writes what is buffered and closes the file; no call may follow. The first failure of any
    /// write, or none.
    std::error_code close();
    /// The first failure so far.
    [[nodiscard]] std::error_code failure() const noexcept { return file_->failure(); }

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
    // Each writes `beginning`, the line up to an argument, and from that argument to the line's
    // end.
    void writePointCall(std::string_view beginning, const GPSPoint &point, const Dictionary *extra);
    void writeStartCall(std::string_view beginning, int kind, const Dictionary *extra);
    void writeDictionary(std::string_view beginning, const Dictionary *extra);
    void writeInteger(std::string_view beginning, int value);
    void writeReport(std::string_view beginning, const Report &report);
    void countPoint();

    std::unique_ptr<OutputFile> file_;
    CallLogText text_;
    std::shared_ptr<void> errorObject_;
    Selector<Report> errorSelector_;
    std::shared_ptr<GPXExporterProgress> progress_;
    int transferKind_ = 0;
    int itemCount_ = 0;
};

} // namespace pelluvia
