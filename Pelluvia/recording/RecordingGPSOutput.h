#pragma once

#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/GPXExporterProgress.h>
#include <Pelluvia/values/Array.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/Selector.h>

#include <cstdint>
#include <memory>
#include <string_view>
#include <utility>

namespace pelluvia {

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

    /// Who is told, with the recorder as argument, when the exchange has ended; kept alive by the
    /// recorder. Null: nobody.
    template <class Target>
    void setCompletionObject(std::shared_ptr<Target> object,
                             void (Target::*andSelector)(std::shared_ptr<RecordingGPSOutput>)) {
        completionObject = std::move(object);
        completionSelector = Selector<std::shared_ptr<RecordingGPSOutput>>(andSelector);
    }
    /// Who is told of warnings and errors; kept alive by the recorder. Null: nobody.
    template <class Target>
    void setErrorObject(std::shared_ptr<Target> object, void (Target::*andSelector)(Report)) {
        errorObject = std::move(object);
        errorSelector = Selector<Report>(andSelector);
    }
    /// Who watches the progress; kept alive by the recorder. Null: nobody.
    void setProgress(std::shared_ptr<GPXExporterProgress> newProgress) {
        progress = std::move(newProgress);
    }

    /// The last error that was passed on to an error object; nothing before the first.
    [[nodiscard]] const Report &lastError() const noexcept { return _error; }

    /// Whether tracks are thinned while they are recorded; off at first. Settings take effect with
    /// the next track point.
    [[nodiscard]] bool minimizeTracks() const noexcept { return _minimizeTracks; }
    void setMinimizeTracks(bool minimize) noexcept { _minimizeTracks = minimize; }
    /// How near in latitude and in longitude two points must be to count as one, in degrees; 0.0001
    /// at first.
    [[nodiscard]] float pointEqualSlop() const noexcept { return _pointEqualSlop; }
    void setPointEqualSlop(float slop) noexcept { _pointEqualSlop = slop; }
    /// How near two slopes (latitude over longitude, no unit) must be to count as one direction;
    /// 0.01 at first.
    [[nodiscard]] float slopeEqualSlop() const noexcept { return _slopeEqualSlop; }
    void setSlopeEqualSlop(float slop) noexcept { _slopeEqualSlop = slop; }

    /// Forgets everything recorded, the open track and route, the error and the thinning's
    /// counters. Observers, settings and the transfer under way stay.
    void clear();

    /// The recording: arrays under the keys of `recordedData`, each there from its first item on;
    /// null before the first item. Borrowed.
    [[nodiscard]] Dictionary *receivedData() const noexcept { return _receivedData.get(); }
    /// The open track or route, or null. Borrowed.
    [[nodiscard]] Dictionary *currentTrack() const noexcept { return trackData.get(); }
    [[nodiscard]] Dictionary *currentRoute() const noexcept { return routeData.get(); }
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
    RecordingGPSOutput() = default;

    void fileTrack();
    void fileRoute();
    void countItem();
    /// Whether `newPoint` makes the stored point before it redundant; counts the tests that fired.
    bool tossesLastPoint(const GPSPoint &newPoint);

    Ref<Dictionary> trackData;
    Ref<Dictionary> waypointData; // never filled
    Ref<Dictionary> routeData;
    Ref<Dictionary> lapData; // never filled
    std::int32_t transferKind = 0;
    std::shared_ptr<void> completionObject;
    std::shared_ptr<GPXExporterProgress> progress;
    Selector<std::shared_ptr<RecordingGPSOutput>> completionSelector;
    std::shared_ptr<void> errorObject;
    Selector<Report> errorSelector;
    std::int32_t itemCount = 0;
    Report _error;
    bool _minimizeTracks = false;
    float _slopeEqualSlop = 0.01F;
    float _pointEqualSlop = 0.0001F;
    std::uint64_t slopeEqualTossedPoints = 0;
    std::uint64_t pointEqualTossedPoints = 0;
    GPSPoint lastPoint;    // the newest track point
    GPSPoint prevPoint;    // the kept track point before it; latitude 0.0: there is none yet
    GPSPoint currentPoint; // unused
    Ref<Dictionary> _receivedData;
};

} // namespace pelluvia
