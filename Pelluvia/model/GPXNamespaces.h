// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/model/GPXDataHost.h>

/// \file
/// The URIs of GPX and of the extensions that are read or written. Macros, so that they can be
/// joined with other literals at compile time. Compare them as whole strings.

/// GPX 1.0 and 1.1 (topografix.com).
#define PELLUVIA_GPX10_NAMESPACE "http://www.topografix.com/GPX/1/0"
#define PELLUVIA_GPX11_NAMESPACE "http://www.topografix.com/GPX/1/1"
#define PELLUVIA_GPX11_SCHEMA PELLUVIA_GPX11_NAMESPACE "/gpx.xsd"
/// This framework's own extensions: training data, proximity, courses.
#define PELLUVIA_GPXDATA_NAMESPACE "http://" PELLUVIA_GPXDATA_HOST "/XML/GPXDATA/1/0"
#define PELLUVIA_GPXDATA_SCHEMA "http://" PELLUVIA_GPXDATA_HOST "/Schemas/gpxdata10.xsd"
/// Groundspeak's geocaches, version 1.0.
#define PELLUVIA_GEOCACHE_NAMESPACE "http://www.groundspeak.com/cache/1/0"
/// Garmin's extensions of waypoints and of track points. Version 1 of the latter is read, version 2
/// declared in what is written.
#define PELLUVIA_GPXX_NAMESPACE "http://www.garmin.com/xmlschemas/GpxExtensions/v3"
#define PELLUVIA_GPXTPX1_NAMESPACE "http://www.garmin.com/xmlschemas/TrackPointExtension/v1"
#define PELLUVIA_GPXTPX2_NAMESPACE "http://www.garmin.com/xmlschemas/TrackPointExtension/v2"
/// XML Schema instances (w3.org).
#define PELLUVIA_XSI_NAMESPACE "http://www.w3.org/2001/XMLSchema-instance"
