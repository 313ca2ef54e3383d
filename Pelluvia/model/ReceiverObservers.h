// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/model/Report.h>
#include <Pelluvia/system/MainThread.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/MessageTarget.h>

#include <cstdint>
#include <limits>
#include <memory>
#include <utility>

namespace pelluvia {

/// The observers that a receiver has, and the count of points that it reports to them: a member for
/// receivers of your own.
///
///     class PointCounter : public NullReceiver,
///                          public std::enable_shared_from_this<PointCounter> {
///       public:
///         ReceiverObservers<PointCounter> observers; // the host sets them
///
///         void startTransfer(const void *, int kind, const Dictionary *extra) override {
///             const auto self = weak_from_this().lock(); // see below
///             observers.tellStart(kind, extra);
///         }
///         void trackPoint(GPSPoint, const Dictionary *) override { observers.countItem(); }
///         void endTransfer(int kind) override {
///             const auto self = weak_from_this().lock();
///             observers.tellEnd(kind);
///             observers.resetCount();
///         }
///         void warning(const Report &object) override { observers.report(object); }
///         void error(const Report &error) override { observers.report(error); }
///         void gpsStateChange(int state) override {
///             if (state == gpsState::finished) {
///                 observers.complete(shared_from_this());
///             }
///         }
///     };
///
/// Progress is told at once, on the calling thread; completion and reports are queued to the main
/// thread (see MainThread.h).
///
/// Ownership: observers are kept alive as long as they are set, but for targets that were given
/// weakly (see MessageTarget.h). An observer may set another one, or none, while it is told. It may
/// also let go of the last reference to the receiver: a receiver that does anything after telling
/// (`tellStart` does) keeps hold of itself for the time, as above.
///
/// Threads: as for the receiver, one at a time.
template <class Receiver>
class ReceiverObservers {
  public:
    /// Who is told, with the receiver as argument, that the exchange is over; null: nobody.
    void setCompletionObject(MessageTarget<std::shared_ptr<Receiver>> target) {
        completionObject = std::move(target);
    }
    /// Who is told of warnings and errors; null: nobody.
    void setErrorObject(MessageTarget<Report> target) { errorObject = std::move(target); }
    /// Who is told of progress; null: nobody.
    void setProgress(std::shared_ptr<GPXExporterProgress> observer) {
        progress = std::move(observer);
    }

    /// A transfer or an upload begins: tells its kind and the expected count that stands in `extra`
    /// (0 when it does not), then takes the kind for the progress to come. The count goes on.
    void tellStart(int kind, const Dictionary *extra) {
        if (const auto observer = progress) {
            const auto count = extra != nullptr ? extra->number(extras::count) : std::nullopt;
            observer->gpxStartTransfer(kind, count ? count->intValue() : 0);
        }
        transferKind = kind;
    }
    /// One more point was handled: counts it and tells the count. The count ends at the largest
    /// `int`.
    void countItem() {
        if (itemCount < std::numeric_limits<std::int32_t>::max()) {
            ++itemCount;
        }
        tellProgress(itemCount);
    }
    /// Tells a count of somebody else's.
    void tellProgress(int index) const {
        if (const auto observer = progress) {
            observer->gpxProgress(transferKind, index);
        }
    }
    /// A transfer or an upload ends: tells its kind.
    void tellEnd(int kind) const {
        if (const auto observer = progress) {
            observer->gpxEndTransfer(kind);
        }
    }
    /// The next point is the first again.
    void resetCount() noexcept { itemCount = 0; }
    /// Progress from now on belongs to no transfer: its kind is 0.
    void forgetKind() noexcept { transferKind = 0; }

    /// Queues a warning or an error for the error object; whether there is one.
    bool report(const Report &problem) const {
        const bool isTold = bool(errorObject);
        mainThread::perform(errorObject, problem);
        return isTold;
    }
    /// Queues the message to the completion object.
    void complete(std::shared_ptr<Receiver> receiver) const {
        mainThread::perform(completionObject, std::move(receiver));
    }

  private:
    std::int32_t transferKind = 0;
    MessageTarget<std::shared_ptr<Receiver>> completionObject; // with its selector
    std::shared_ptr<GPXExporterProgress> progress;
    MessageTarget<Report> errorObject; // with its selector
    std::int32_t itemCount = 0;        // points so far in this transfer
};

} // namespace pelluvia
