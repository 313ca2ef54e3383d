// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpxwriter/GPXDictionary.h>
#include <Pelluvia/model/GPSPoint.h>
#include <Pelluvia/values/Export.h>

#include <stddef.h> // NOLINT(modernize-deprecated-headers): for C, too
#include <stdint.h> // NOLINT(modernize-deprecated-headers)

#ifdef __cplusplus
#include <Pelluvia/system/OutputFile.h>
#include <Pelluvia/text/TimestampText.h>

#include <memory>
#include <string>
#include <system_error>
#endif

/// \file
/// Writes one GPX 1.1 document to a file as a stream, element by element:
///
///     GPXRef document = GPXCreate("ride.gpx");
///     GPXWriteHeader(document, "my program");
///     GPXWriteTrackPoint(document, 1591000000, nullptr, 47.1, 8.5, 430.0);
///     GPXClose(document);
///
/// Tracks, routes, waypoints and laps come in any order; what must be closed before an element can
/// start is closed by the function that starts it, and `GPXClose` closes the rest.
///
/// Texts. Byte strings end with a NUL and may be null, which means that they are not given. They
/// are escaped and cut so that the result takes at most 511 bytes (see
/// `SkerryCStringByMakingStandardXMLEntities`), except where a function says that it writes them
/// raw. The document is declared to be ISO-8859-1; what the functions take from dictionaries is
/// ASCII, a string of a dictionary that is not counts as absent.
///
/// Numbers are written as `printf` writes them in the "C" locale, whatever locale the process has:
/// coordinates with ten significant digits (%1.10g), other decimal numbers with six decimals (%f).
///
/// Times are seconds since 1970-01-01 00:00:00 UTC. One whose year less 1900 is beyond a 32-bit
/// integer cannot be broken down and counts as no time.
///
/// Dictionaries are borrowed for the call and may be null. A value of the wrong type counts as not
/// given.
///
/// Failures. A function that writes reports none. The document's file remembers the first, throws
/// away what follows, and tells it when it is asked: `GPXWriteFailure`, `GPXFlush`, `GPXSync`,
/// `GPXCloseChecked`. Their result is 0 when all went well, and otherwise a number as in `errno`. A
/// null document is a mistake of the caller that is not looked for.
///
/// C. The header is one of C99, too: there the handle of a document and the dictionaries are opaque
/// (see GPXDictionary.h), and the names stand outside of any namespace.
///
/// Threads: a document belongs to one thread at a time; two documents have nothing in common.

#ifdef __cplusplus
namespace pelluvia {

/// An open document. Made by `GPXCreate`, freed by `GPXClose`; the functions below keep its fields,
/// which are here to be read.
struct GPXDocument {
    bool inTrack = false;              ///< A `trk` element is open.
    bool inTrackSegment = false;       ///< A `trkseg` element is open.
    bool inRoute = false;              ///< An `rte` element is open.
    bool inDocumentExtensions = false; ///< The `extensions` element of the laps is open.
    std::unique_ptr<OutputFile> file;  ///< The output; never null.
    /// The data-only points of the open segment, written when the segment ends.
    std::string segmentExtensions;
    TimestampText timestamps; ///< Writes all times of the document; remembers their day.
    std::string memory;       ///< What `GPXCreateInMemory` has the file write to.
};

/// The handle of an open document, owned by who called `GPXCreate`.
using GPXRef = GPXDocument *;

extern "C" {
#else
typedef struct GPXDocument *GPXRef;
#endif

// The frame of the document

/// The document's first lines, as a `printf` format whose only conversion, `%s`, is the creator.
PELLUVIA_EXPORT extern const char GPX_Header[];

/// Opens a file for writing, truncating what is there, and returns a new document on it. `path` is
/// UTF-8. Null when the file cannot be opened; `errno` then says why.
PELLUVIA_NODISCARD PELLUVIA_EXPORT GPXRef GPXCreate(const char *path);

/// Returns a new document on an open descriptor, which is written at its position. It stays the
/// caller's, who closes it after the document. Null when it is not open for writing; `errno` then
/// says why.
PELLUVIA_NODISCARD PELLUVIA_EXPORT GPXRef GPXCreateWithDescriptor(int descriptor);

/// Returns a new document in memory, for `GPXCloseInMemory`. Null without memory.
PELLUVIA_NODISCARD PELLUVIA_EXPORT GPXRef
GPXCreateInMemory(void); // NOLINT(modernize-redundant-void-arg)

/// Writes `GPX_Header` with the creator, which is not escaped, in its place. To be called once,
/// directly after `GPXCreate`.
PELLUVIA_EXPORT void GPXWriteHeader(GPXRef document, const char *creator);

/// Closes all open elements, the document and the file, and frees the handle.
PELLUVIA_EXPORT void GPXClose(GPXRef document);

/// The same; tells the first failure to write or to close the file, 0 when the whole document
/// arrived.
PELLUVIA_NODISCARD PELLUVIA_EXPORT int GPXCloseChecked(GPXRef document);

/// Closes a document that `GPXCreateInMemory` made, and frees the handle. Returns the document's
/// text, NUL-terminated, to be released with `free`, and stores its length without the NUL, unless
/// `length` is null. Null when there was no memory for all of it.
PELLUVIA_NODISCARD PELLUVIA_EXPORT char *GPXCloseInMemory(GPXRef document, size_t *length);

/// Writes what is still buffered, so that readers of the file see it; open elements stay open.
/// Tells the first failure so far.
PELLUVIA_EXPORT int GPXFlush(GPXRef document);

/// Flushes, and waits until the disk has everything, which can take long. Tells the first failure
/// so far.
PELLUVIA_EXPORT int GPXSync(GPXRef document);

/// The first failure so far. Output is buffered: only flushing or closing tells all.
PELLUVIA_NODISCARD PELLUVIA_EXPORT int GPXWriteFailure(GPXRef document);

/// Writes an element on a line of its own; with a null value, an empty one. The name is written
/// raw.
PELLUVIA_EXPORT void GPXWriteElementWithString(GPXRef document, const char *name,
                                               const char *value);

/// The same, but with a null value nothing is written. An empty value is a value: it makes an empty
/// element.
PELLUVIA_EXPORT void GPXWriteElementWithStringIfNotEmpty(GPXRef document, const char *name,
                                                         const char *value);

// Tracks, segments and routes

/// Starts a track, after closing an open one. Its name is `name`, or else the number under `index`,
/// or else the one under `courseIndex`, or else "unnamed"; `index` also becomes its number and
/// `courseIndex` its course extension. `author` is accepted and not written. An open route is not
/// closed: end it first, or the track stands inside it.
PELLUVIA_EXPORT void GPXWriteTrackStart(GPXRef document, const char *name, const char *description,
                                        const char *author, const GPXDictionary *extras);

/// Starts a track with the dictionary's `name` and `description`; the dictionary is also its
/// extras.
PELLUVIA_EXPORT void GPXWriteTrackStartWithDictionary(GPXRef document,
                                                      const GPXDictionary *dictionary);

/// Starts a segment, after ending an open one. Without an open track it starts one, named
/// "unnamed".
PELLUVIA_EXPORT void GPXWriteTrackSegment(GPXRef document);

/// Ends the open segment, if any, with the data-only points collected for it.
PELLUVIA_EXPORT void GPXWriteTrackSegmentEnd(GPXRef document);

/// Ends the open segment and the open track, if any.
PELLUVIA_EXPORT void GPXWriteTrackEnd(GPXRef document);

/// Starts a route, after ending an open track and an open route. A number of 0 is not written.
/// Until `GPXWriteRouteEnd`, waypoints become the route's points.
PELLUVIA_EXPORT void GPXWriteRouteStart(GPXRef document, int number, const char *name,
                                        const char *description);

/// Ends the open route, if any.
PELLUVIA_EXPORT void GPXWriteRouteEnd(GPXRef document);

// Points

/// Writes a waypoint (`wpt`), or a point of the open route (`rtept`), after ending an open track.
/// `extras` may add the alarm radius (`proximity`) and the geocache's owner, difficulty, terrain
/// and type. Latitude and longitude are degrees, the altitude is metres; an altitude of 0.0 and a
/// time of 0 are not written.
PELLUVIA_EXPORT void GPXWriteWayPoint(GPXRef document, int64_t time, const char *name,
                                      const char *type, const char *comment, const char *symbol,
                                      const GPXDictionary *extras, double latitude,
                                      double longitude, double altitude);

/// Writes a track point (`trkpt`) on one line, opening a nameless track and a segment where none is
/// open. `extras` may add what `GPXMakePointExtensions` writes and the `speed`.
///
/// A point with a latitude above `dataOnlyLatitude` has no position: with extension values it is
/// kept in the document's `segmentExtensions`, without any it is dropped.
PELLUVIA_EXPORT void GPXWriteTrackPoint(GPXRef document, int64_t time, const GPXDictionary *extras,
                                        double latitude, double longitude, double altitude);

/// The elements of the training values `hr`, `cadence`, `temp` (its fraction dropped), `distance`
/// and `sensor` that the dictionary holds, in this order; with the prefix "gpxdata:" when
/// `usePrefix` is not 0. The sensor's text is written raw; one that is not ASCII or longer than 254
/// bytes is written as an empty text.
///
/// Returns a new NUL-terminated string, to be released with `free`; null when there is nothing to
/// write or no memory.
PELLUVIA_NODISCARD PELLUVIA_EXPORT char *GPXMakePointExtensions(const GPXDictionary *extras,
                                                                int usePrefix);

// Laps

/// Writes a lap of a training record (`gpxdata:lap`) at document level, after ending an open track.
/// Of the points only the positions and the start's time are used; a position is written when its
/// latitude is below `dataOnlyLatitude`, the time always. Of the extras, values of 0 are not
/// written; `trigger` and `intensity` are written raw.
PELLUVIA_EXPORT void GPXWriteLapInfo(GPXRef document, GPSPoint start, GPSPoint end,
                                     const GPXDictionary *extras);

// Dictionary accessors

/// The number under the key as a 32-bit float; 0.0 when there is none.
PELLUVIA_NODISCARD PELLUVIA_EXPORT float getFloatFromDictionary(const GPXDictionary *dictionary,
                                                                GPXKeyRef key);

/// The number under the key as an `int` (fraction dropped, beyond the range its nearest end); 0
/// when there is none.
PELLUVIA_NODISCARD PELLUVIA_EXPORT int getIntFromDictionary(const GPXDictionary *dictionary,
                                                            GPXKeyRef key);

/// Stores the number under the key, as `getIntFromDictionary` reads it, and returns 1; without one,
/// stores nothing and returns 0.
PELLUVIA_NODISCARD PELLUVIA_EXPORT int
getIntFromDictionaryIfPresent(const GPXDictionary *dictionary, GPXKeyRef key, int *value);

/// A copy of the string under the key, NUL-terminated, to be released with `free`. Null when there
/// is none, when it is not ASCII, or without memory.
PELLUVIA_NODISCARD PELLUVIA_EXPORT char *
getMallocedStringFromDictionary(const GPXDictionary *dictionary, GPXKeyRef key);

#ifdef __cplusplus
} // extern "C"

/// Does what `GPXClose` does and returns the first failure to write or to close the file; no error
/// when the whole document arrived.
[[nodiscard]] PELLUVIA_EXPORT std::error_code closeDocument(GPXRef document);

/// A new document that is written to the file; null with null.
///
///     std::string text;
///     GPXRef document = createDocument(OutputFile::inMemory(text));
[[nodiscard]] PELLUVIA_EXPORT GPXRef createDocument(std::unique_ptr<OutputFile> file);

} // namespace pelluvia
#endif
