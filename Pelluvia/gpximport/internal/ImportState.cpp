// SPDX-License-Identifier: MIT

#include <Pelluvia/gpximport/internal/ImportState.h>

#include <Pelluvia/model/ErrorDomains.h>
#include <Pelluvia/model/ExtrasKeys.h>
#include <Pelluvia/model/NullReceiver.h>
#include <Pelluvia/model/TransferKind.h>
#include <Pelluvia/system/Localization.h>
#include <Pelluvia/system/Log.h>
#include <Pelluvia/values/CocoaErrors.h>
#include <Pelluvia/values/ErrorText.h>

#include <algorithm>
#include <exception>
#include <utility>

namespace pelluvia {

namespace {

ErrorPtr stopError() {
    return Error::make(
        NSCocoaErrorDomain, NSUserCancelledError,
        {{std::string(NSLocalizedDescriptionKey), localized("The import was stopped")}});
}

ErrorPtr rereadingError() {
    return Error::make(
        NSCocoaErrorDomain, NSFileReadUnknownError,
        {{std::string(NSLocalizedDescriptionKey),
          localized("The descriptor is not that of a file, which could be read several times")}});
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

/// A counter for files that take long to read.
class StoppableCounter final : public GPXImportCounter {
  public:
    explicit StoppableCounter(std::stop_token token) : token_(std::move(token)) {}

    void didStartElement(XMLParser &parser, const XMLElement &element,
                         const XMLAttributes &attributes) override {
        if (token_.stop_requested()) {
            parser.abortParsing();
        }
        GPXImportCounter::didStartElement(parser, element, attributes);
    }

  private:
    std::stop_token token_;
};

} // namespace

std::optional<URL> ImportState::fileURL() const {
    const std::scoped_lock lock(fileURLMutex);
    return _fileURL;
}

void ImportState::setFileURL(std::optional<URL> newURL) {
    const std::scoped_lock lock(fileURLMutex);
    _fileURL.swap(newURL); // the old one is destroyed outside the lock
}

ErrorPtr ImportState::process(Source newSource) {
    fault.reset();
    source = newSource;
    parses = 1U + static_cast<unsigned>(doRoutes) + static_cast<unsigned>(doWaypoints) +
             static_cast<unsigned>(doTracks);
    bytesBefore = 0;
    sourceSize.reset();
    /// What is known is of one import; and one that was cut short leaves no elements behind.
    struct Forgetting {
        explicit Forgetting(ImportState &itsState) : state(itsState) {}
        Forgetting(const Forgetting &) = delete;
        Forgetting &operator=(const Forgetting &) = delete;
        ~Forgetting() {
            state.leavesOut = false;
            state.countedFile = {};
            state.reader = nullptr;
            state.source = {};
            if (std::uncaught_exceptions() > exceptions ||
                state.elements.stopToken.stop_requested()) {
                state.elements.forgetElements();
            }
        }
        ImportState &state;
        int exceptions = std::uncaught_exceptions();
    };
    const Forgetting atTheEnd(*this);
    ErrorPtr error = countAndRunPasses();
    if (error != nullptr) {
        fault = faultOf(*error);
    }
    return error;
}

ErrorPtr ImportState::countAndRunPasses() {
    const auto *const descriptor = std::get_if<int>(&source);
    if (descriptor != nullptr && !XMLParser::initWithDescriptor(*descriptor)->sourceSize()) {
        return rereadingError();
    }
    countElements();
    return runParsers();
}

GPXImportFault ImportState::faultOf(const Error &error) const {
    GPXImportFault found;
    const bool isAbort = error.domain() == NSXMLParserErrorDomain &&
                         error.code() == NSXMLParserDelegateAbortedParseError;
    if (isAbort && elements.lastError != nullptr) {
        found.message = elements.lastError->localizedDescription();
    } else if (elements.output == nullptr) {
        found.message = localized("There is no receiver");
    } else {
        found.message = error.localizedDescription();
    }
    const auto url = fileURL();
    if (std::holds_alternative<std::monostate>(source) && url) {
        found.path = url->path();
    }
    found.line = error.integer(NSXMLParserErrorLineNumber);
    found.column = error.integer(NSXMLParserErrorColumn);
    return found;
}

ErrorPtr ImportState::runParsers() {
    if (elements.output == nullptr) {
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

bool ImportState::isLastPass(std::int32_t kind) const noexcept {
    const bool waypointsFollow = kind == transferKind::routes && doWaypoints;
    return kind == transferKind::tracks || (!waypointsFollow && !doTracks);
}

ErrorPtr ImportState::runPass(std::int32_t kind) {
    // After an import that ended within elements, a pass may go further than the next one.
    leavesOut = !isLastPass(kind) && elements.nesting() == ElementHandler::Nesting();
    ErrorPtr error = runParser(kind);
    const bool wasAborted = elements.lastError != nullptr;
    const bool isWholeAndLast = error == nullptr && isLastPass(kind); // by now
    if (leavesOut && (wasAborted || isWholeAndLast)) {
        collectLeftOut();
    }
    return error;
}

/// What the last pass leaves over, a later import may see: reads the file once more as that pass
/// did, but completely, and for nobody.
void ImportState::collectLeftOut() {
    struct Unheard {
        explicit Unheard(ElementHandler &itsElements)
            : elements(itsElements),
              receiver(std::exchange(elements.output, std::make_shared<NullReceiver>())),
              error(elements.lastError) {}
        Unheard(const Unheard &) = delete;
        Unheard &operator=(const Unheard &) = delete;
        ~Unheard() {
            elements.output = std::move(receiver);
            elements.lastError = std::move(error);
        }
        ElementHandler &elements;
        std::shared_ptr<GPSOutputReceiver> receiver;
        ErrorPtr error;
    };
    const Unheard unheard(elements);
    elements.nesting() = ElementHandler::Nesting(); // as it was before that pass
    leavesOut = false;
    const auto parser = parserForElements();
    [[maybe_unused]] const bool isWhole = parser != nullptr && parser->parse();
}

void ImportState::countElements() {
    counters = std::make_shared<StoppableCounter>(elements.stopToken);
    countedURL = fileURL();
    const auto parser = parserOf(countedURL, *counters);
    const bool isWhole = parser != nullptr && parse(*parser);
    if (!isWhole && !elements.stopToken.stop_requested()) {
        const ErrorPtr error = parser != nullptr ? parser->parserError() : nullptr;
        logLine("parse error, but continuing, since it might be readible (error = " +
                logTextOf(error) + ")");
    }
    countedFile = parser != nullptr ? parser->knownFile() : XMLKnownFile();
}

std::unique_ptr<XMLParser> ImportState::parserOf(const std::optional<URL> &url,
                                                 XMLParserDelegate &delegate) const {
    std::unique_ptr<XMLParser> parser;
    if (const auto *const document = std::get_if<std::string_view>(&source)) {
        parser = XMLParser::initWithData(*document);
    } else if (const auto *const descriptor = std::get_if<int>(&source)) {
        parser = XMLParser::initWithDescriptor(*descriptor);
    } else {
        parser = XMLParser::initWithContentsOfURL(url);
    }
    if (parser != nullptr) {
        parser->setShouldResolveExternalEntities(true);
        parser->setDelegate(&delegate);
    }
    return parser;
}

std::unique_ptr<XMLParser> ImportState::parserForElements() {
    const auto readURL = fileURL();
    auto parser = parserOf(readURL, importer_);
    const bool isCounted = parser != nullptr && readURL == countedURL;
    if (isCounted) {
        parser->setKnownFile(countedFile);
    }
    leavesOut = leavesOut && isCounted && countedFile.isUsual() && !counters->hasForeignPoints();
    elements.leavesOutPlaces = leavesOut;
    return parser;
}

bool ImportState::parse(XMLParser &parser) {
    /// Also when the receiver throws, the parser is gone afterwards.
    struct Reading {
        Reading(ImportState &itsState, const XMLParser &itsParser)
            : state(itsState), parser(itsParser) {
            state.reader = &parser;
        }
        Reading(const Reading &) = delete;
        Reading &operator=(const Reading &) = delete;
        ~Reading() {
            const auto size = parser.sourceSize();
            state.reader = nullptr;
            state.sourceSize = size ? size : state.sourceSize;
            state.bytesBefore += parser.bytesRead();
        }
        ImportState &state;
        const XMLParser &parser;
    };
    const Reading reading(*this, parser);
    return parser.parse();
}

ReadingProgress ImportState::readingProgress() const {
    ReadingProgress progress;
    progress.position = bytesBefore + (reader != nullptr ? reader->bytesRead() : 0);
    auto size = reader != nullptr ? reader->sourceSize() : std::nullopt;
    size = size ? size : sourceSize;
    if (size) {
        progress.size = std::max(*size * parses, progress.position);
    }
    return progress;
}

ErrorPtr ImportState::runSinglePass(std::int32_t kind) {
    parses = 1;
    bytesBefore = 0;
    return runParser(kind);
}

ErrorPtr ImportState::runParser(std::int32_t kind) {
    recno = 0;
    elements.mode = kind;
    elements.lastError = nullptr;
    const std::stop_token &stopToken = elements.stopToken;
    if (stopToken.stop_requested()) {
        return stopError();
    }
    const auto parser = parserForElements();

    if (elements.output != nullptr) {
        Dictionary extra;
        extra.set(extras::count, Value(expectedCount(counters.get(), kind)));
        elements.output->startTransfer(nullptr, kind, &extra);
    }
    const bool failed = parser != nullptr && !stopToken.stop_requested() && !parse(*parser);
    const bool wasStopped = stopToken.stop_requested();
    if (elements.output != nullptr) {
        elements.output->endTransfer(kind);
    }
    if (wasStopped) {
        return stopError();
    }
    return failed ? parser->parserError() : nullptr;
}

void ImportState::parseErrorOccurred(XMLParser &parser, const ErrorPtr &error) {
    if (elements.stopToken.stop_requested()) {
        return;
    }
    const ErrorPtr &told = elements.lastError != nullptr ? elements.lastError : error;
    if (elements.output != nullptr) {
        elements.output->error(told != nullptr ? Report(told) : Report());
    }
    if (elements.lastError == nullptr) {
        const ErrorPtr &current = parser.parserError();
        logLine(
            "Error " + std::to_string(error != nullptr ? error->code() : 0) +
            ", Description: " + (current != nullptr ? current->localizedDescription() : "(null)") +
            ", Line: " + std::to_string(parser.lineNumber()) +
            ", Column: " + std::to_string(parser.columnNumber()));
    }
}

} // namespace pelluvia
