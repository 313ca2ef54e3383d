// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/MessageTarget.h>

#include <memory>
#include <string_view>
#include <utility>

namespace pelluvia {

class RecorderState;

/// The keys of a recording, and the name of a track that nobody announced.
namespace recordedData {
/// Array of track dictionaries, one for each finished track.
inline constexpr Key track = Key::known("track");
/// Array of route dictionaries, one for each finished route.
inline constexpr Key route = Key::known("route");
/// Array of point dictionaries: the waypoints that came while no route was open.
inline constexpr Key waypoint = Key::known("waypoint");
/// Arrays that only a caller fills, with `appendArrayData`; the summary counts them.
inline constexpr Key laps = Key::known("laps");
inline constexpr Key pois = Key::known("POIs");
/// The `extras::name` of a track that a track point had to open by itself.
inline constexpr std::string_view unnamedTrack = "unnamed";
} // namespace recordedData

/// Keeps transfers in memory: finished tracks, finished routes and waypoints, to be read back,
/// summed up, or replayed into another receiver. On demand it thins tracks while they arrive.
///
///     auto recorder = RecordingGPSOutput::recorder();
///     driver.download(*recorder);                  // any producer
///     recorder->pushAllDataToOutput(*exporter);
///     exporter->gpsStateChange(gpsState::finished);
///
/// What it hands out (`receivedData`, `currentTrack` …) are its own objects: what a caller adds to
/// them is recorded and replayed like the rest.
///
/// A track dictionary is a copy of what came with `newTrack` plus `extras::points`, an array of
/// point dictionaries; a route dictionary likewise. A point dictionary is a copy of the point's
/// extras plus `extras::point`, the wrapped `GPSPoint`. Segments are not recorded. Memory: some 70
/// bytes a point without extras, 16 more for each extra.
///
/// Threads: one at a time, without locks. Completion and errors are delivered on the main thread.
class PELLUVIA_EXPORT RecordingGPSOutput : public GPSOutputReceiver,
                                           public std::enable_shared_from_this<RecordingGPSOutput> {
  public:
    /// A new recorder.
    [[nodiscard]] static std::shared_ptr<RecordingGPSOutput> recorder();
    /// The same.
    [[nodiscard]] static std::shared_ptr<RecordingGPSOutput> init();

    RecordingGPSOutput(const RecordingGPSOutput &) = delete;
    RecordingGPSOutput &operator=(const RecordingGPSOutput &) = delete;
    ~RecordingGPSOutput() override;

    /// Who is told, on the main thread and with the recorder as argument, when the exchange has
    /// ended: an object and its method, or a lambda (see MessageTarget.h, also for the ring that an
    /// object makes which keeps the recorder alive). Null: nobody.
    ///
    ///     recorder->setCompletionObject(host, &Host::downloaded);
    void setCompletionObject(MessageTarget<std::shared_ptr<RecordingGPSOutput>> target);
    template <class Object, class Method>
    void setCompletionObject(Object object, Method andSelector) {
        setCompletionObject({std::move(object), std::move(andSelector)});
    }
    /// Who is told, on the main thread, of warnings and errors; likewise.
    void setErrorObject(MessageTarget<Report> target);
    template <class Object, class Method>
    void setErrorObject(Object object, Method andSelector) {
        setErrorObject({std::move(object), std::move(andSelector)});
    }
    /// Who watches the progress; kept alive by the recorder. Null: nobody.
    void setProgress(std::shared_ptr<GPXExporterProgress> newProgress);

    /// The last error that was passed on to an error object; nothing before the first.
    [[nodiscard]] const Report &lastError() const noexcept;

    /// Whether tracks are thinned while they are recorded; off at first. Settings take effect with
    /// the next track point.
    [[nodiscard]] bool minimizeTracks() const noexcept;
    void setMinimizeTracks(bool minimize) noexcept;
    /// How near in latitude and in longitude two points must be to count as one, in degrees; 0.0001
    /// at first.
    [[nodiscard]] float pointEqualSlop() const noexcept;
    void setPointEqualSlop(float slop) noexcept;
    /// How near two slopes (latitude over longitude, no unit) must be to count as one direction;
    /// 0.01 at first.
    [[nodiscard]] float slopeEqualSlop() const noexcept;
    void setSlopeEqualSlop(float slop) noexcept;

    /// Forgets everything recorded, the open track and route, the error and the thinning's
    /// counters. Observers, settings and the transfer under way stay.
    void clear();

    /// The recording: arrays under the keys of `recordedData`, each there from its first item on;
    /// null before the first item. Borrowed.
    [[nodiscard]] Dictionary *receivedData() const noexcept;
    /// The open track or route, or null. Borrowed.
    [[nodiscard]] Dictionary *currentTrack() const noexcept;
    [[nodiscard]] Dictionary *currentRoute() const noexcept;
    /// The newest point of the open track or route, or null. Borrowed.
    [[nodiscard]] Dictionary *lastTrackPoint() const noexcept;
    [[nodiscard]] Dictionary *lastRoutePoint() const noexcept;
    /// Appends an object to the array under a key of the recording; makes both if need be. False,
    /// and the object is not stored, where the recording has no room for a further key; for the
    /// keys of `recordedData` it always has.
    bool appendArrayData(Value object, const Key &key);

    /// A summary of what is filed, in this order: how often the thinning's direction and position
    /// tests fired, the numbers of tracks, routes, waypoints, points of interest and laps, and,
    /// where there are tracks or routes, the numbers of their points. Each entry is a dictionary of
    /// "name" and "value" (integer).
    [[nodiscard]] Ref<Array> processingTelemetry() const;

    /// Sends everything filed to another receiver, as if a device were transferring it: waypoints,
    /// routes, tracks, each a transfer without a count. The dictionaries are the recorded ones
    /// themselves. Every track comes as one segment. `gpsStateChange` is left to the caller.
    void pushAllDataToOutput(GPSOutputReceiver &output) const;

    void newTrackSegment() override {}
    void newTrack(const Dictionary *extra) override;
    void newRoute(const Dictionary *extra) override;
    void trackPoint(GPSPoint point, const Dictionary *extra) override;
    void wayPoint(GPSPoint point, const Dictionary *extra) override;
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
    void startSending(const void *sender, int kind, const Dictionary *extra) override;
    void sendProgress(int count) override;
    void endSending(int kind) override;

  private:
    RecordingGPSOutput();

    std::unique_ptr<RecorderState> state_;
};

} // namespace pelluvia
