#pragma once

#include <Pelluvia/gpximport/CollectedNumber.h>
#include <Pelluvia/gpximport/CollectedPoint.h>
#include <Pelluvia/gpximport/CollectedText.h>
#include <Pelluvia/gpximport/GPXImportCounter.h>
#include <Pelluvia/model/GPSOutputReceiver.h>
#include <Pelluvia/values/Dictionary.h>
#include <Pelluvia/values/Error.h>
#include <Pelluvia/values/Export.h>
#include <Pelluvia/values/URL.h>
#include <Pelluvia/xml/XMLParser.h>
#include <Pelluvia/xml/XMLParserDelegate.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <tuple>

namespace pelluvia {

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
/// parser's error. An exception that the receiver throws passes through to the caller. After either
/// take a new importer for the next file: this one remembers the elements it was in, and may
/// stumble over them.
///
/// Threads: none of its own; everything happens inside `processFile` or `processURL`, one import at
/// a time. Only `fileURL` may be read and set from any thread.
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

    /// The file that every parse reads. Threads: any.
    [[nodiscard]] std::optional<URL> fileURL() const;
    void setFileURL(std::optional<URL> newURL);

    /// Sets `fileURL` to the file at the path (UTF-8) and imports it. Null when all went well.
    [[nodiscard]] ErrorPtr processFile(std::string_view filePath);

    /// Imports the file at `fileURL`. The argument is not used: set `fileURL` first, as
    /// `processFile` does. Null when all went well, and when `fileURL` is nil: the transfers are
    /// then announced and empty. Without a receiver the error has the domain
    /// `gpsPluginErrorDomain`, the code `gpsPluginFailure` and no user information.
    [[nodiscard]] ErrorPtr processURL(const std::optional<URL> &url);

    /// One pass for a transfer kind (see TransferKind.h), with the counts of the last import.
    /// Returns the parser's error, or null. Called by `processURL`.
    [[nodiscard]] ErrorPtr runParser(std::int32_t kind);

    /// The translation of an English error text, or the text itself.
    [[nodiscard]] std::string getLocalErrorFromString(std::string_view string) const;

    /// Stops the parse because of the file's structure; `message` is the English description. The
    /// error that is made for it reaches the receiver when the parser reports the abort.
    void abortParser(XMLParser &parser, std::string_view message);

    // The parser's side.
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

    /// The parse before the passes; a file that cannot be counted may still be read.
    void countElements();
    /// The passes.
    [[nodiscard]] ErrorPtr runParsers();
    [[nodiscard]] ErrorPtr runPass(std::int32_t kind);
    [[nodiscard]] bool isLastPass(std::int32_t kind) const noexcept;

    /// The flags that the handlers look at.
    using Nesting = std::tuple<bool, bool, bool, bool, bool, bool, bool, bool>;
    [[nodiscard]] std::tuple<bool &, bool &, bool &, bool &, bool &, bool &, bool &, bool &>
    nesting() noexcept;
    void collectLeftOut();

    [[nodiscard]] std::unique_ptr<XMLParser> parserOfFile();
    /// Whether the points and headings of this kind are to be sent in this pass.
    [[nodiscard]] bool sends(std::int32_t kind) const noexcept;

    // Starts of elements, one step for each dialect, and for each GPX element that needs more than
    // a flag.
    void startGarminExtension(const XMLElement &element) noexcept;
    void startGarminTrackPoint(const XMLElement &element) noexcept;
    void startGeocache(const XMLElement &element) noexcept;
    void startGPXData(const XMLElement &element, const XMLAttributes &attributes);
    void startGPX(XMLParser &parser, const XMLElement &element, const XMLAttributes &attributes);
    void startRtept(XMLParser &parser, const XMLAttributes &attributes);
    void startTrkseg(XMLParser &parser);
    void startTrkpt(XMLParser &parser, const XMLAttributes &attributes);
    void startEle(XMLParser &parser);
    void startLink(const XMLAttributes &attributes);
    void readPosition(const XMLAttributes &attributes, std::int32_t kind) noexcept;

    // Ends of elements. The first two tell whether the name belongs to the dialect.
    bool endGarminExtension(const XMLElement &element) noexcept;
    bool endGarminTrackPoint(const XMLElement &element) noexcept;
    void endGeocache(const XMLElement &element);
    void endGPXData(const XMLElement &element) noexcept;
    void endGPX(const XMLElement &element);
    // The values of the collected text; all but `takeText` empty it.
    void takeText(CollectedText &field);
    template <class Number>
    void takeNumber(CollectedNumber<Number> &field) noexcept;
    void takeAltitude() noexcept;
    void takeTime() noexcept;

    /// Forgets the point and all that was collected for it, but for the geocache's owner: that one
    /// stays until another owner replaces it.
    void clearPoint() noexcept;
    void addWaypoint();
    void startRoute();
    void addRoutePoint();
    void startTrk() noexcept;
    void startTrkSeg();
    void addTrkPt();
    // Hooks that nothing calls.
    void endRoute() noexcept;
    void endTrk() noexcept;
    void endTrkSeg() noexcept;

    /// For error reports. Nothing sets it, and while it is nil the errors end before it.
    std::optional<std::string> path;
    std::optional<URL> _fileURL;
    std::shared_ptr<GPSOutputReceiver> output;
    /// Reserved: extensions are told by their namespaces, never by their prefixes.
    std::optional<std::string> geocachePrefix;
    std::optional<std::string> gpxDataPrefix;

    // Where the parser is. Consulted are only inRoute, inRoutePoint, inWaypoint, inTrkSeg, inTrkPt,
    // inLink, inGeocacheLogs and inGeocacheTravelbugs; the others are kept for symmetry.
    bool inRoute = false;
    bool inRoutePoint = false;
    bool inWaypoint = false;
    bool inTrack = false;
    bool inName = false;
    bool inTrkSeg = false;
    bool inTrkPt = false;
    bool inElevation = false;
    bool inTime = false;
    bool inLink = false;
    bool inText = false;
    bool inURL = false;
    bool inURLName = false;
    bool inCache = false;
    bool inGeocacheTerrain = false;
    bool inGeocacheDifficulty = false;
    bool inGeocacheName = false;
    bool inGeocacheType = false;
    bool inGeocacheOwner = false;
    bool inGeocacheHint = false;
    bool inGeocacheLogs = false;
    bool inGeocacheTravelbugs = false;
    bool inSym = false;
    bool inCadence = false;
    bool inTemp = false;
    bool inDistance = false;
    bool inSensor = false;
    bool inHR = false;
    bool inNumber = false;
    bool inProximity = false;
    bool inCourse = false;
    bool inIndex = false;

    bool doTracks = false;
    bool doRoutes = false;
    bool doWaypoints = false;
    /// Whether the current trk or rte has been announced.
    bool trackStarted = false;
    bool routeStarted = false;
    /// The text since the last start of an element, inside elements that use their text. One
    /// buffer, emptied and never given back.
    std::string currentStringValue;

    // Collected for the current waypoint, route point, track point, route or track.
    CollectedText number;
    CollectedText comment;
    CollectedText description;
    CollectedText name;
    CollectedText symbol;
    CollectedText url;
    CollectedText urlName;
    CollectedText geocacheTerrain;
    CollectedText geocacheDifficulty;
    CollectedText geocacheType;
    CollectedText geocacheOwner;
    CollectedText geocacheHint;
    CollectedText geocacheName;
    CollectedText sensor; // the only one that can be present and empty
    CollectedNumber<std::int32_t> hr;
    CollectedNumber<std::int32_t> cadence;
    CollectedNumber<std::int32_t> courseIndex;
    std::int32_t isCourse = 0; // set by no handler: no file makes a track a course
    CollectedNumber<float> temp;
    CollectedNumber<float> distance;
    CollectedNumber<float> proximity;

    ErrorPtr lastError;    // of the structural abort in the current pass
    std::int32_t mode = 0; // the transfer kind of the current pass
    std::shared_ptr<GPXImportCounter> counters;
    /// What the counting parse has found out about the file, for the passes; and which file.
    XMLKnownFile countedFile;
    std::optional<URL> countedURL;
    /// Whether the pass need not collect what goes only into points of other kinds: in a file where
    /// each point is cleared at its start (of one in a foreign namespace, only the end is seen),
    /// when a pass follows that collects it, and when the importer is in no element at first.
    bool leavesOut = false;
    /// Whether it leaves out the places of these points, too: until one stands within another.
    bool leavesOutPlaces = false;
    CollectedPoint currentPoint;
    std::int32_t recno = 0;
    float gpxVersion = 0; // 1.0 or 1.1 by the namespace; read by nothing

    /// The extras of the call being made; empty between calls. Used again for every call, so that a
    /// point costs no allocation.
    Dictionary scratch;
    mutable std::mutex fileURLMutex;
};

} // namespace pelluvia
