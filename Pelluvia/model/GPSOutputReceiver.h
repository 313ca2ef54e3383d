// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/model/Report.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Export.h>

namespace pelluvia {

/// What all GPS data moves through: one stream of calls from a producer (the GPX importer, the
/// replay of a recording, a driver of a device) to a receiver (the GPX exporter, the recorder, your
/// own).
///
/// Order. A transfer runs from `startTransfer` to `endTransfer` with the same kind:
///
///     startTransfer(nullptr, transferKind::tracks, &extra)       extra: {"count": 2}
///       newTrack(&attributes)
///         newTrackSegment()
///           trackPoint(point, &extras) ...
///         newTrackSegment() ...
///       newTrack ...
///     endTransfer(transferKind::tracks)
///
/// likewise `newRoute` and its points for routes, and `wayPoint` for waypoints. Transfers follow
/// one another; a receiver lives across any number of them. `gpsStateChange(gpsState::finished)`
/// ends the whole exchange: it is sent by device drivers and by the host itself, never by the
/// importer or a replay. Laps, points of interest, live positions and the sending calls come only
/// from device drivers.
///
/// Dictionaries are borrowed for the call; a receiver that keeps one copies it. Null is nil:
/// nothing is given. Receivers ignore keys that they do not know (see ExtrasKeys.h).
///
/// Threads: one at a time; receivers have no locks. What a receiver tells its completion and error
/// targets crosses to the main thread; progress does not.
class PELLUVIA_EXPORT GPSOutputReceiver {
  public:
    virtual ~GPSOutputReceiver() = default;

    /// A new segment of the current track begins.
    virtual void newTrackSegment() = 0;
    /// A new track begins, with its attributes.
    virtual void newTrack(const Dictionary *extra) = 0;
    /// A new route begins, with its attributes.
    virtual void newRoute(const Dictionary *extra) = 0;
    /// One point of the current track segment.
    virtual void trackPoint(GPSPoint point, const Dictionary *extra) = 0;
    /// One waypoint.
    virtual void wayPoint(GPSPoint point, const Dictionary *extra) = 0;
    /// One point of the current route.
    virtual void routePoint(GPSPoint point, const Dictionary *extra) = 0;
    /// One point of interest.
    virtual void poiPoint(GPSPoint point, const Dictionary *extra) = 0;
    /// One lap of a training record. Of the points only the positions and the start's time count.
    virtual void lapInfoStart(GPSPoint start, GPSPoint end, const Dictionary *extras) = 0;
    /// A transfer of `kind` begins (see TransferKind.h). `sender` is the producer or null; it is
    /// borrowed, of unknown type, and of no use but to be passed on. `extra` may hold the count of
    /// the items to come.
    virtual void startTransfer(const void *sender, int kind, const Dictionary *extra) = 0;
    /// The transfer of `kind` ends.
    virtual void endTransfer(int kind) = 0;
    /// Where the device is now. The meaning of `accuracy` is the producer's.
    virtual void currentPosition(GPSPoint point, int accuracy) = 0;
    /// Something that does not stop the producer went wrong.
    virtual void warning(const Report &object) = 0;
    /// Something that stops the producer went wrong.
    virtual void error(const Report &error) = 0;
    /// The producer's state has changed (see `gpsState`).
    virtual void gpsStateChange(int state) = 0;
    /// An upload towards a device begins; arguments as for `startTransfer`.
    virtual void startSending(const void *sender, int kind, const Dictionary *extra) = 0;
    /// So many items have been uploaded.
    virtual void sendProgress(int count) = 0;
    /// The upload ends.
    virtual void endSending(int kind) = 0;
};

} // namespace pelluvia
