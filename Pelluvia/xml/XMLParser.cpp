// SPDX-License-Identifier: MIT

#include <Pelluvia/xml/XMLParser.h>

#include <Pelluvia/xml/internal/FileSource.h>
#include <Pelluvia/xml/internal/KnownContent.h>
#include <Pelluvia/xml/internal/MemorySource.h>
#include <Pelluvia/xml/internal/sax2/Sax2Engine.h>
#include <Pelluvia/xml/internal/scan/ScanEngine.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <utility>

namespace pelluvia {

using xml::scan::ScanEngine;
using Scanned = ScanEngine::Outcome;

/// One parse: which engine reads, and what becomes of it.
class XMLParser::State {
  public:
    State(XMLParser &parser, std::unique_ptr<xml::Source> source)
        : parser_(parser), source_(std::move(source)) {}

    bool parse();
    [[nodiscard]] xml::Position position() const {
        return engine_ != nullptr ? engine_->position() : xml::Position();
    }
    [[nodiscard]] std::uint64_t bytesRead() const noexcept {
        return std::max(source_->bytesRead(), bytesReadBefore_);
    }
    [[nodiscard]] std::optional<std::uint64_t> sourceSize() const {
        const auto size = source_->size();
        return size ? std::optional(std::max(*size, bytesRead())) : std::nullopt;
    }
    void abort() {
        if (engine_ != nullptr) {
            engine_->abort();
        }
    }

    // What the host sets and asks for.
    XMLParserDelegate *delegate = nullptr;
    XMLEngine wantedEngine = XMLEngine::automatic;
    bool resolvesExternalEntities = false;
    XMLKnownFile known;
    ErrorPtr error;

  private:
    [[nodiscard]] ErrorPtr readDocument();
    [[nodiscard]] ErrorPtr readUnknown();
    [[nodiscard]] ErrorPtr readWithBoth(xml::KnownContent &content);
    [[nodiscard]] ErrorPtr readKnown();
    [[nodiscard]] ErrorPtr readWithScanner();
    [[nodiscard]] ErrorPtr readWithLibrary(xml::Reported reported);
    [[nodiscard]] bool mayScan() const;
    [[nodiscard]] ErrorPtr changeError();
    [[nodiscard]] ErrorPtr abortError() const;

    XMLParser &parser_;
    std::unique_ptr<xml::Source> source_;
    std::uint64_t bytesReadBefore_ = 0;   ///< by the scanner, when the library has started anew
    std::unique_ptr<xml::Engine> engine_; ///< once the parse has begun; reads from `source_`
    bool parsed_ = false;
};

bool XMLParser::State::parse() {
    if (parsed_) {
        return false;
    }
    parsed_ = true;
    XMLParserDelegate *const listener = delegate;
    if (const std::string reason = source_->open(); !reason.empty()) {
        error = xml::makeError({xmlErrors::unreadable, "The file cannot be opened: " + reason}, {});
    } else {
        error = readDocument();
    }
    if (error && listener != nullptr) {
        listener->parseErrorOccurred(parser_, error);
    }
    return !error;
}

ErrorPtr XMLParser::State::readDocument() {
    return known.content() == nullptr ? readUnknown() : readKnown();
}

/// Reads, and remembers what later parses may want to know.
ErrorPtr XMLParser::State::readUnknown() {
    const auto content = std::make_shared<xml::KnownContent>();
    content->state = source_->state();
    known = XMLKnownFile(content);
    ErrorPtr outcome = readWithBoth(*content);
    content->digest = source_->digest();
    return outcome;
}

/// The scanner begins; where it gives up, the library reads the document from the start and reports
/// what the scanner has not. What can be read only once is the library's.
ErrorPtr XMLParser::State::readWithBoth(xml::KnownContent &content) {
    const bool isFile = content.state && source_->descriptor() >= 0;
    if (isFile) {
        source_->keepDigest();
    }
    auto sourceForLibrary = mayScan() ? source_->again() : nullptr;
    if (sourceForLibrary == nullptr) {
        return readWithLibrary({});
    }
    auto scan = std::make_unique<ScanEngine>(parser_, *source_, delegate);
    ScanEngine &engine = *scan;
    engine_ = std::move(scan);
    switch (engine.run()) {
    case Scanned::wellFormed:
        content.isUsual = true;
        return nullptr;
    case Scanned::aborted:
        known = XMLKnownFile();
        return abortError();
    case Scanned::refused:
        break;
    }
    const xml::Reported reported = engine.reported();
    engine_.reset();
    content.digest = source_->digest();
    bytesReadBefore_ = source_->bytesRead();
    source_ = std::move(sourceForLibrary);
    if (!content.isStillIn(*source_)) {
        return changeError(); // the library would not go on where the scanner was
    }
    if (isFile) {
        source_->keepDigest();
    }
    return readWithLibrary(reported);
}

ErrorPtr XMLParser::State::readKnown() {
    xml::KnownContent content = *known.content();
    if (!content.isStillIn(*source_)) {
        return changeError();
    }
    content.state = source_->state();
    ErrorPtr outcome = content.isUsual && mayScan() ? readWithScanner() : readWithLibrary({});
    if (!content.isStillIn(*source_)) {
        return changeError();
    }
    // If it was only touched, later parses need not compare it again.
    if (const auto now = source_->state(); now != known.content()->state) {
        content.state = now;
        known = XMLKnownFile(std::make_shared<xml::KnownContent>(content));
    }
    return outcome;
}

/// Reads what the scanner was able to read before.
ErrorPtr XMLParser::State::readWithScanner() {
    auto scan =
        std::make_unique<ScanEngine>(parser_, *source_, delegate, ScanEngine::Document::wellFormed);
    ScanEngine &engine = *scan;
    engine_ = std::move(scan);
    switch (engine.run()) {
    case Scanned::wellFormed:
        return nullptr;
    case Scanned::aborted:
        return abortError();
    case Scanned::refused:
        break;
    }
    const auto &failure = engine.failure();
    return failure ? xml::makeError(*failure, engine.position()) : changeError();
}

ErrorPtr XMLParser::State::readWithLibrary(xml::Reported reported) {
    auto library = std::make_unique<xml::Sax2Engine>(parser_, *source_, delegate,
                                                     resolvesExternalEntities, reported);
    xml::Sax2Engine &engine = *library;
    engine_ = std::move(library);
    return engine.run();
}

bool XMLParser::State::mayScan() const {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): hosts set it before they start threads
    const char *const wanted = std::getenv("PELLUVIA_XML_ENGINE");
    return wantedEngine == XMLEngine::automatic &&
           (wanted == nullptr || std::string_view(wanted) != "libxml2");
}

ErrorPtr XMLParser::State::changeError() {
    engine_.reset(); // its place in the document means nothing
    return xml::makeError({xmlErrors::unreadable, "The file has changed since it was first read"},
                          {});
}

ErrorPtr XMLParser::State::abortError() const {
    return xml::makeError(xml::abortFailure(), engine_->position());
}

std::unique_ptr<XMLParser> XMLParser::initWithContentsOfURL(const std::optional<URL> &url) {
    if (!url) {
        return nullptr;
    }
    return std::make_unique<XMLParser>(std::make_unique<xml::FileSource>(url->path()));
}

std::unique_ptr<XMLParser> XMLParser::initWithDescriptor(int descriptor) {
    return std::make_unique<XMLParser>(
        std::make_unique<xml::FileSource>(descriptor, xml::Ownership::borrowed));
}

std::unique_ptr<XMLParser> XMLParser::initWithData(std::string_view bytes) {
    return std::make_unique<XMLParser>(std::make_unique<xml::MemorySource>(bytes));
}

XMLParser::XMLParser(std::unique_ptr<xml::Source> source)
    : state_(std::make_unique<State>(*this, std::move(source))) {}

XMLParser::~XMLParser() = default;

void XMLParser::setDelegate(XMLParserDelegate *delegate) noexcept {
    state_->delegate = delegate;
}

void XMLParser::setShouldResolveExternalEntities(bool should) noexcept {
    state_->resolvesExternalEntities = should;
}

void XMLParser::setEngine(XMLEngine engine) noexcept {
    state_->wantedEngine = engine;
}

void XMLParser::setKnownFile(const XMLKnownFile &file) {
    state_->known = file;
}

const XMLKnownFile &XMLParser::knownFile() const noexcept {
    return state_->known;
}

bool XMLParser::parse() {
    return state_->parse();
}

void XMLParser::abortParsing() {
    state_->abort();
}

const ErrorPtr &XMLParser::parserError() const noexcept {
    return state_->error;
}

std::int64_t XMLParser::lineNumber() const noexcept {
    return state_->position().line;
}

std::int64_t XMLParser::columnNumber() const noexcept {
    return state_->position().column;
}

std::uint64_t XMLParser::bytesRead() const noexcept {
    return state_->bytesRead();
}

std::optional<std::uint64_t> XMLParser::sourceSize() const noexcept {
    return state_->sourceSize();
}

} // namespace pelluvia
