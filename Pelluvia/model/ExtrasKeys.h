// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/values/Key.h>

/// \file
/// The keys of the extras dictionaries: the named values beside points, and at the start of
/// transfers, tracks and routes. A reader ignores keys that it does not know; a missing key means
/// that the value is not given. Numbers are converted to the width that the reader needs; strings
/// that are not ASCII count as absent for the GPX writer.

namespace pelluvia::extras {

// With startTransfer:kind:extra: and startSending:kind:extra:

/// Integer: how many items to expect. The importer gives track *segments* for tracks, route points
/// for routes, waypoints for waypoints.
inline constexpr Key count = Key::known("count");

// With newTrack:, newRoute: and points

/// Text: the name of a track, a route, a waypoint or a route point.
inline constexpr Key name = Key::known("name");
/// Text: a description. The GPX writer writes it for tracks only.
inline constexpr Key description = Key::known("description");
/// Text: the author of a track; fetched and never written.
inline constexpr Key author = Key::known("author");
/// Integer: the number of a track, of a route (as the importer sends it), or of a lap.
inline constexpr Key index = Key::known("index");
/// Integer: the number of the course that a track is for a training device.
inline constexpr Key courseIndex = Key::known("courseIndex");
/// Integer: the number of a route, as the exporter reads it. The importer does not send it.
inline constexpr Key routeNumber = Key::known("routeNumber");
/// Text: the comment of a waypoint or route point; with newRoute: it is written as the description.
inline constexpr Key comment = Key::known("comment");
/// Text: the name of the symbol that stands for a waypoint.
inline constexpr Key symbol = Key::known("symbol");
/// Text: the classification of a waypoint.
inline constexpr Key type = Key::known("type");
/// Text: the address of a page about a waypoint, and the name of that address.
inline constexpr Key url = Key::known("url");
inline constexpr Key urlName = Key::known("urlName");

// With wayPoint:extra:

/// Text: who hid a geocache.
inline constexpr Key geocacheOwner = Key::known("geocacheOwner");
/// Text: how hard a geocache is to find, 1 to 5.
inline constexpr Key difficulty = Key::known("difficulty");
/// Text: how hard the way to a geocache is, 1 to 5.
inline constexpr Key terrain = Key::known("terrain");
/// Text: the kind of a geocache.
inline constexpr Key geocacheType = Key::known("geocacheType");
/// Text: the hint for finding a geocache; never written.
inline constexpr Key geocacheHint = Key::known("geocacheHint");
/// 32-bit float, metres: the radius around a waypoint within which the device gives an alarm.
inline constexpr Key proximity = Key::known("proximity");

// With trackPoint:extra:

/// Integer: heart rate, beats a minute.
inline constexpr Key hr = Key::known("hr");
/// Integer: cadence, turns a minute.
inline constexpr Key cadence = Key::known("cadence");
/// Number: temperature, degrees Celsius. The importer gives a 32-bit float, the GPX writer drops
/// the fraction.
inline constexpr Key temp = Key::known("temp");
/// 32-bit float, metres: the distance covered so far; of a lap, the lap's.
inline constexpr Key distance = Key::known("distance");
/// Text: the kind of the sensor that measured.
inline constexpr Key sensor = Key::known("sensor");
/// 32-bit float, metres a second: the speed at the point.
inline constexpr Key speed = Key::known("speed");

// With lapInfoStart:end:extras:

/// Integer: kilocalories used.
inline constexpr Key calories = Key::known("calories");
/// Text and integer: the name, or without one the number, of the track that the lap belongs to.
inline constexpr Key trackName = Key::known("trackName");
inline constexpr Key trackNumber = Key::known("trackNumber");
/// Integer: the positions of the lap's first and last point within that track.
inline constexpr Key trackIndex = Key::known("trackIndex");
inline constexpr Key trackEnd = Key::known("trackEnd");
/// Integer: highest and mean heart rate, beats a minute.
inline constexpr Key hrMax = Key::known("hrMax");
inline constexpr Key hrAvg = Key::known("hrAvg");
/// Integer: highest and mean cadence, turns a minute.
inline constexpr Key cadenceMax = Key::known("cadenceMax");
inline constexpr Key cadenceAvg = Key::known("cadenceAvg");
/// 32-bit float, seconds: the lap's duration.
inline constexpr Key totalTime = Key::known("totalTime");
/// 32-bit float, metres a second: highest and mean speed.
inline constexpr Key speedMax = Key::known("speedMax");
inline constexpr Key speedAvg = Key::known("speedAvg");
/// 32-bit float, watts: mean and highest power.
inline constexpr Key powerAvg = Key::known("powerAvg");
inline constexpr Key powerMax = Key::known("powerMax");
/// 32-bit float, metres: lowest and highest altitude.
inline constexpr Key altMin = Key::known("altMin");
inline constexpr Key altMax = Key::known("altMax");
/// Text: what ended the lap.
inline constexpr Key trigger = Key::known("trigger");
/// Text: how hard the lap was meant to be.
inline constexpr Key intensity = Key::known("intensity");

// In the dictionaries of a recording, also when they are replayed

/// A wrapped `GPSPoint`: the point that the dictionary stands for.
inline constexpr Key point = Key::known("point");
/// Array of point dictionaries: the points of the track or route that the dictionary stands for.
inline constexpr Key points = Key::known("points");

} // namespace pelluvia::extras
