// SPDX-License-Identifier: MIT

#pragma once

#include <Pelluvia/gpximport/GPXImportFault.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/model/ReadingProgress.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

namespace pelluvia {

class ImportState;

/// Reads a GPX file and replays its content into one receiver.
///
///     auto importer = GPXFileImporter::initWithReceiver(receiver);
///     if (ErrorPtr error = importer->processFile("ride.gpx")) {
///         show(error->localizedDescription());
///     }
///     receiver->gpsStateChange(gpsState::finished);
///
/// The file is parsed up to four times and never held: once to count, then once for each enabled
/// kind in the order routes, waypoints, tracks. Each of these passes is one transfer:
///
///     startTransfer(nullptr, transferKind::routes, {"count": route points of the file})
///       newRoute, routePoint ...
///     endTransfer(transferKind::routes)
///     startTransfer(nullptr, transferKind::waypoints, {"count": waypoints of the file})
///       wayPoint ...
///     endTransfer(transferKind::waypoints)
///     startTransfer(nullptr, transferKind::tracks, {"count": track segments of the file})
///       newTrack, newTrackSegment, trackPoint ...
///     endTransfer(transferKind::tracks)
///
/// A transfer is announced even when the file holds nothing of its kind. `gpsStateChange` is never
/// sent; finishing the exchange is left to the caller.
///
/// Reads GPX 1.0 and 1.1 with Garmin's extensions of waypoints (version 3) and of track points
/// (version 1), Groundspeak's caches (1.0) and this framework's own gpxdata extensions. Values that
/// are missing or not numbers become 0 and are never errors; elements of the wrong nesting are, and
/// stop the import:
///
///     rtept outside of rte; trkseg in trkseg; trkpt outside of trkseg or in trkpt; ele outside of
///     wpt, rtept and trkpt
///
/// as does text of more than `xmlLimits::textSize` bytes in one element.
///
/// Errors: the receiver's `error` is told of what stops a pass, the pass is ended, and no other
/// follows; what was sent before stands. A structural error reaches the receiver in the domain
/// `gpsPluginErrorDomain`, code `gpsPluginStructuralError`; what `processFile` returns is the
/// parser's error, and `fault` tells all of it. After such a failure take a new importer for the
/// next file: this one remembers the elements it was in, and may stumble over them.
///
/// An exception that the receiver throws passes through to the caller, without an `endTransfer`.
/// After it, and after a stop, the importer is as good as new.
///
/// Threads: none of its own; everything happens inside the `process` operations, one import at a
/// time. Only `fileURL` may be read and set from any thread.
class PELLUVIA_EXPORT GPXFileImporter : public XMLParserDelegate {
  public:
    /// An importer for the receiver, which it keeps; all three kinds are read. Without a receiver
    /// every import fails.
    [[nodiscard]] static std::shared_ptr<GPXFileImporter>
    initWithReceiver(std::shared_ptr<GPSOutputReceiver> receiver);

    GPXFileImporter(const GPXFileImporter &) = delete;
    GPXFileImporter &operator=(const GPXFileImporter &) = delete;
    ~GPXFileImporter() override;

    /// Whether the passes for tracks, routes and waypoints run.
    void setDoTracks(bool should) noexcept;
    void setDoRoutes(bool should) noexcept;
    void setDoWaypoints(bool should) noexcept;

    /// Who can stop an import; nobody at first. It is asked before each call to the receiver. Once
    /// a stop is requested, no call is made any more but the `endTransfer` of a transfer that is
    /// open, and the import ends with an error of the domain `NSCocoaErrorDomain`, code
    /// `NSUserCancelledError`. Not to be set during an import.
    void setStopToken(std::stop_token token);

    /// The file that every parse reads. Threads: any.
    [[nodiscard]] std::optional<URL> fileURL() const;
    void setFileURL(std::optional<URL> newURL);

    /// Sets `fileURL` to the file at the path (UTF-8) and imports it. Null when all went well. A
    /// path with a zero byte in it names no file: the import fails as for one that is missing.
    [[nodiscard]] ErrorPtr processFile(std::string_view filePath);

    /// Imports the file at `fileURL`. The argument is not used: set `fileURL` first, as
    /// `processFile` does. Null when all went well, and when `fileURL` is nil: the transfers are
    /// then announced and empty. Without a receiver the error has the domain
    /// `gpsPluginErrorDomain`, the code `gpsPluginFailure` and no user information.
    [[nodiscard]] ErrorPtr processURL(const std::optional<URL> &url);

    /// Imports the document that can be read from an open descriptor, from where it stands. It is
    /// borrowed: it stays open, and stands where it stood. It must be that of a regular file, which
    /// can be read several times; for any other the import fails at once, in the domain
    /// `NSCocoaErrorDomain`, code `NSFileReadUnknownError`, and no call is made. `fileURL` is
    /// neither used nor changed. Null when all went well.
    [[nodiscard]] ErrorPtr processDescriptor(int descriptor);

    /// Imports a document in memory, which must stay as it is until the import has ended. `fileURL`
    /// is neither used nor changed. Null when all went well.
    [[nodiscard]] ErrorPtr processData(std::string_view document);

    /// Why the last import has failed and where, in one object; nothing when it went well, or when
    /// none has ended yet.
    [[nodiscard]] std::optional<GPXImportFault> fault() const;

    /// How far the import is: bytes of the file, once for the counting and once for each pass. To
    /// be asked from within the calls to the receiver, or when the import has ended.
    [[nodiscard]] ReadingProgress readingProgress() const;

    /// One pass for a transfer kind (see TransferKind.h), with the counts of the last import.
    /// Returns the parser's error, or null. Called by `processURL`.
    [[nodiscard]] ErrorPtr runParser(std::int32_t kind);

    /// The translation of an English error text, or the text itself.
    [[nodiscard]] std::string getLocalErrorFromString(std::string_view string) const;

    /// Stops the parse because of the file's structure; `message` is the English description. The
    /// error that is made for it reaches the receiver when the parser reports the abort.
    void abortParser(XMLParser &parser, std::string_view message);

    // The parser's side. Elements and attributes that do not come from a parser need no numbers:
    // names without one are looked up. A number must be one of this vocabulary.
    [[nodiscard]] XMLVocabulary vocabulary() const override;
    [[nodiscard]] XMLInterest interestIn(const XMLElement &element,
                                         std::span<const XMLElement> around) const override;
    void didStartElement(XMLParser &parser, const XMLElement &element,
                         const XMLAttributes &attributes) override;
    void didEndElement(XMLParser &parser, const XMLElement &element) override;
    void foundCharacters(XMLParser &parser, std::string_view characters) override;
    void didStartMappingPrefix(XMLParser &parser, std::string_view prefix,
                               std::string_view uri) override;
    void parseErrorOccurred(XMLParser &parser, const ErrorPtr &error) override;

  private:
    explicit GPXFileImporter(std::shared_ptr<GPSOutputReceiver> receiver);

    std::unique_ptr<ImportState> state_;
};

} // namespace pelluvia
