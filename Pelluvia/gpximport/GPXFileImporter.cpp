#include <Pelluvia/gpximport/GPXFileImporter.h>

#include <Pelluvia/gpximport/internal/GPXVocabulary.h>
#include <Pelluvia/gpximport/internal/Interest.h>
#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/system/Localization.h>
#include <Pelluvia/system/Log.h>
#include <Pelluvia/xml/XMLParser.h>

#include <initializer_list>
#include <utility>

namespace pelluvia {

namespace {

/// What most texts of a GPX file need at most.
constexpr std::size_t usualTextSize = 50;

/// An error in one line.
std::string lineOf(const ErrorPtr &error) {
    if (error == nullptr) {
        return "(null)";
    }
    return "Error Domain=" + error->domain() + " Code=" + std::to_string(error->code()) + " \"" +
           error->localizedDescription() + "\"";
}

std::unique_ptr<XMLParser> parserOf(const std::optional<URL> &url, XMLParserDelegate &delegate) {
    auto parser = XMLParser::initWithContentsOfURL(url);
    if (parser != nullptr) {
        parser->setShouldResolveExternalEntities(true);
        parser->setDelegate(&delegate);
    }
    return parser;
}

using InfoPair = std::pair<std::string_view, std::optional<ErrorValue>>;

/// User information of the pairs before the first one that has no value.
ErrorInfo infoUpToFirstAbsent(std::initializer_list<InfoPair> pairs) {
    ErrorInfo info;
    for (const auto &[key, value] : pairs) {
        if (!value.has_value()) {
            break;
        }
        info.emplace_back(key, *value);
    }
    return info;
}

/// The number of items that a transfer of this kind is announced with.
std::int32_t expectedCount(const GPXImportCounter *counters, std::int32_t kind) noexcept {
    if (counters == nullptr) {
        return 0;
    }
    switch (kind) {
    case transferKind::tracks:
        return counters->tracksegments();
    case transferKind::routes:
        return counters->routepoints();
    case transferKind::waypoints:
        return counters->waypoints();
    default:
        return 0;
    }
}

} // namespace

std::shared_ptr<GPXFileImporter>
GPXFileImporter::initWithReceiver(std::shared_ptr<GPSOutputReceiver> receiver) {
    struct Instance : GPXFileImporter {
        explicit Instance(std::shared_ptr<GPSOutputReceiver> itsReceiver)
            : GPXFileImporter(std::move(itsReceiver)) {}
    };
    return std::make_shared<Instance>(std::move(receiver));
}

GPXFileImporter::GPXFileImporter(std::shared_ptr<GPSOutputReceiver> receiver)
    : output(std::move(receiver)),
      doTracks(true),
      doRoutes(true),
      doWaypoints(true),
      mode(transferKind::tracks) {
    currentStringValue.reserve(usualTextSize);
}

GPXFileImporter::~GPXFileImporter() = default;

void GPXFileImporter::setDoTracks(bool should) noexcept {
    doTracks = should;
}

void GPXFileImporter::setDoRoutes(bool should) noexcept {
    doRoutes = should;
}

void GPXFileImporter::setDoWaypoints(bool should) noexcept {
    doWaypoints = should;
}

std::optional<URL> GPXFileImporter::fileURL() const {
    const std::scoped_lock lock(fileURLMutex);
    return _fileURL;
}

void GPXFileImporter::setFileURL(std::optional<URL> newURL) {
    const std::scoped_lock lock(fileURLMutex);
    _fileURL.swap(newURL); // the old one is destroyed outside the lock
}

ErrorPtr GPXFileImporter::processFile(std::string_view filePath) {
    setFileURL(URL::fileURLWithPath(filePath));
    return processURL(fileURL());
}

ErrorPtr GPXFileImporter::processURL(const std::optional<URL> & /*url*/) {
    /// What is known is of one import, even if the receiver throws.
    struct Forgetting {
        GPXFileImporter &importer;
        ~Forgetting() {
            importer.leavesOut = false;
            importer.countedFile = {};
        }
    };
    const Forgetting atTheEnd{*this};
    countElements();
    return runParsers();
}

ErrorPtr GPXFileImporter::runParsers() {
    if (output == nullptr) {
        return Error::make(gpsPluginErrorDomain, gpsPluginFailure);
    }
    if (doRoutes) {
        if (ErrorPtr error = runPass(transferKind::routes)) {
            return error;
        }
    }
    if (doWaypoints) {
        if (ErrorPtr error = runPass(transferKind::waypoints)) {
            return error;
        }
    }
    return doTracks ? runPass(transferKind::tracks) : nullptr;
}

bool GPXFileImporter::isLastPass(std::int32_t kind) const noexcept {
    const bool waypointsFollow = kind == transferKind::routes && doWaypoints;
    return kind == transferKind::tracks || (!waypointsFollow && !doTracks);
}

ErrorPtr GPXFileImporter::runPass(std::int32_t kind) {
    // After an import that ended within elements, a pass may go further than the next one.
    leavesOut = !isLastPass(kind) && nesting() == Nesting();
    ErrorPtr error = runParser(kind);
    const bool wasAborted = lastError != nullptr;
    const bool isWholeAndLast = error == nullptr && isLastPass(kind); // by now
    if (leavesOut && (wasAborted || isWholeAndLast)) {
        collectLeftOut();
    }
    return error;
}

/// What the last pass leaves over, a later import may see: reads the file once more as that pass
/// did, but completely, and for nobody.
void GPXFileImporter::collectLeftOut() {
    struct Unheard {
        explicit Unheard(GPXFileImporter &itsImporter)
            : importer(itsImporter),
              receiver(std::exchange(importer.output, std::make_shared<NullReceiver>())),
              error(importer.lastError) {}
        Unheard(const Unheard &) = delete;
        Unheard &operator=(const Unheard &) = delete;
        ~Unheard() {
            importer.output = std::move(receiver);
            importer.lastError = std::move(error);
        }
        GPXFileImporter &importer;
        std::shared_ptr<GPSOutputReceiver> receiver;
        ErrorPtr error;
    };
    const Unheard unheard(*this);
    nesting() = Nesting(); // as it was before that pass
    leavesOut = false;
    const auto parser = parserOfFile();
    [[maybe_unused]] const bool isWhole = parser != nullptr && parser->parse();
}

std::tuple<bool &, bool &, bool &, bool &, bool &, bool &, bool &, bool &>
GPXFileImporter::nesting() noexcept {
    return {inRoute, inRoutePoint, inWaypoint,     inTrkSeg,
            inTrkPt, inLink,       inGeocacheLogs, inGeocacheTravelbugs};
}

void GPXFileImporter::countElements() {
    counters = GPXImportCounter::init();
    countedURL = fileURL();
    const auto parser = parserOf(countedURL, *counters);
    if (parser == nullptr || !parser->parse()) {
        const ErrorPtr error = parser != nullptr ? parser->parserError() : nullptr;
        logLine("parse error, but continuing, since it might be readible (error = " +
                lineOf(error) + ")");
    }
    countedFile = parser != nullptr ? parser->knownFile() : XMLKnownFile();
}

std::unique_ptr<XMLParser> GPXFileImporter::parserOfFile() {
    const auto readURL = fileURL();
    auto parser = parserOf(readURL, *this);
    const bool isCounted = parser != nullptr && readURL == countedURL;
    if (isCounted) {
        parser->setKnownFile(countedFile);
    }
    leavesOut = leavesOut && isCounted && countedFile.isUsual() && !counters->hasForeignPoints();
    leavesOutPlaces = leavesOut;
    return parser;
}

ErrorPtr GPXFileImporter::runParser(std::int32_t kind) {
    recno = 0;
    mode = kind;
    lastError = nullptr;
    const auto parser = parserOfFile();

    if (output != nullptr) {
        Dictionary extra;
        extra.set(extras::count, Value(expectedCount(counters.get(), kind)));
        output->startTransfer(nullptr, kind, &extra);
    }
    const bool failed = parser != nullptr && !parser->parse();
    if (output != nullptr) {
        output->endTransfer(kind);
    }
    return failed ? parser->parserError() : nullptr;
}

// An operation of the object, though it needs nothing of it.
// NOLINTNEXTLINE(readability-convert-member-functions-to-static)
std::string GPXFileImporter::getLocalErrorFromString(std::string_view string) const {
    return localized(string);
}

void GPXFileImporter::abortParser(XMLParser &parser, std::string_view message) {
    const std::string text = getLocalErrorFromString(message);
    const std::string recovery = getLocalErrorFromString("Try a different file");
    const ErrorPtr inner =
        Error::make(gpxFileImporterErrorDomain, gpxFileImporterStructuralError,
                    infoUpToFirstAbsent({{NSLocalizedDescriptionKey, text},
                                         {NSLocalizedRecoverySuggestionErrorKey, recovery},
                                         {NSFilePathErrorKey, path}}));
    lastError = Error::make(gpsPluginErrorDomain, gpsPluginStructuralError,
                            infoUpToFirstAbsent({{NSLocalizedDescriptionKey, text},
                                                 {NSLocalizedRecoverySuggestionErrorKey, recovery},
                                                 {NSFilePathErrorKey, path},
                                                 {NSUnderlyingErrorKey, inner}}));
    parser.abortParsing();
}

void GPXFileImporter::parseErrorOccurred(XMLParser &parser, const ErrorPtr &error) {
    const ErrorPtr &told = lastError != nullptr ? lastError : error;
    if (output != nullptr) {
        output->error(told != nullptr ? Report(told) : Report());
    }
    if (lastError == nullptr) {
        const ErrorPtr &current = parser.parserError();
        logLine(
            "Error " + std::to_string(error != nullptr ? error->code() : 0) +
            ", Description: " + (current != nullptr ? current->localizedDescription() : "(null)") +
            ", Line: " + std::to_string(parser.lineNumber()) +
            ", Column: " + std::to_string(parser.columnNumber()));
    }
}

void GPXFileImporter::didStartMappingPrefix(XMLParser & /*parser*/, std::string_view /*prefix*/,
                                            std::string_view /*uri*/) {}

XMLVocabulary GPXFileImporter::vocabulary() const {
    return gpxVocabulary::vocabulary;
}

XMLInterest GPXFileImporter::interestIn(const XMLElement &element,
                                        std::span<const XMLElement> around) const {
    if (leavesOut && isForOtherPoints(element, around, mode)) {
        return XMLInterest::nothing;
    }
    return pelluvia::interestIn(gpxVocabulary::namespaceOf(element),
                                gpxVocabulary::nameOf(element));
}

bool GPXFileImporter::sends(std::int32_t kind) const noexcept {
    return mode == kind && output != nullptr;
}

} // namespace pelluvia
