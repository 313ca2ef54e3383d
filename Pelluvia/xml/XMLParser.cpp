#include <Pelluvia/xml/XMLParser.h>

#include <Pelluvia/xml/internal/sax2/Sax2Engine.h>
#include <Pelluvia/xml/internal/scan/ScanEngine.h>

#include <cstdlib>
#include <libxml/xmlerror.h>
#include <string_view>

namespace pelluvia {

using Reader = XMLKnownFile::Reader;
using xml::scan::ScanEngine;
using Scanned = ScanEngine::Outcome;

std::unique_ptr<XMLParser> XMLParser::initWithContentsOfURL(const std::optional<URL> &url) {
    if (!url) {
        return nullptr;
    }
    return std::make_unique<XMLParser>(std::make_unique<xml::FileSource>(url->path()));
}

XMLParser::XMLParser(std::unique_ptr<xml::Source> source) : source_(std::move(source)) {}

XMLParser::~XMLParser() = default;

void XMLParser::setDelegate(XMLParserDelegate *delegate) noexcept {
    delegate_ = delegate;
}

void XMLParser::setShouldResolveExternalEntities(bool should) noexcept {
    resolvesExternalEntities_ = should;
}

void XMLParser::setEngine(XMLEngine engine) noexcept {
    wantedEngine_ = engine;
}

void XMLParser::setKnownFile(const XMLKnownFile &file) {
    file_ = file;
}

const XMLKnownFile &XMLParser::knownFile() const noexcept {
    return file_;
}

bool XMLParser::parse() {
    if (parsed_) {
        return false;
    }
    parsed_ = true;
    XMLParserDelegate *const delegate = delegate_;
    if (const int errorNumber = source_->open(); errorNumber != 0) {
        error_ = xml::makeError(
            {XML_IO_LOAD_ERROR, "The file cannot be opened: " + xml::systemReason(errorNumber)},
            {});
    } else {
        error_ = readDocument();
    }
    if (error_ && delegate != nullptr) {
        delegate->parseErrorOccurred(*this, error_);
    }
    return !error_;
}

ErrorPtr XMLParser::readDocument() {
    if (file_.reader_ == Reader::unknown) {
        const auto state = source_->state();
        file_.state_ = state ? std::make_shared<xml::FileState>(*state) : nullptr;
        return readUnknown();
    }
    return fileHasChanged() ? changeError() : readKnown();
}

/// The scanner begins; where it gives up, the library reads the document from the start and reports
/// what the scanner has not. What can be read only once is the library's.
ErrorPtr XMLParser::readUnknown() {
    file_.reader_ = Reader::library;
    auto sourceForLibrary = mayScan() ? source_->again() : nullptr;
    if (sourceForLibrary == nullptr) {
        return readWithLibrary({});
    }
    auto scan = std::make_unique<ScanEngine>(*this, *source_, delegate_);
    ScanEngine &engine = *scan;
    engine_ = std::move(scan);
    switch (engine.run()) {
    case Scanned::wellFormed:
        file_.reader_ = Reader::scanner;
        return nullptr;
    case Scanned::aborted:
        file_ = {};
        return abortError();
    case Scanned::refused:
        break;
    }
    const xml::Reported reported = engine.reported();
    engine_.reset();
    source_ = std::move(sourceForLibrary);
    if (fileHasChanged()) {
        return changeError(); // the library would not go on where the scanner was
    }
    return readWithLibrary(reported);
}

ErrorPtr XMLParser::readKnown() {
    const bool isScanned = file_.reader_ == Reader::scanner && mayScan();
    ErrorPtr error = isScanned ? readWithScanner() : readWithLibrary({});
    return fileHasChanged() ? changeError() : error;
}

/// Reads what the scanner was able to read before.
ErrorPtr XMLParser::readWithScanner() {
    auto scan =
        std::make_unique<ScanEngine>(*this, *source_, delegate_, ScanEngine::Document::wellFormed);
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

ErrorPtr XMLParser::readWithLibrary(xml::Reported reported) {
    auto library = std::make_unique<xml::Sax2Engine>(*this, *source_, delegate_,
                                                     resolvesExternalEntities_, reported);
    xml::Sax2Engine &engine = *library;
    engine_ = std::move(library);
    return engine.run();
}

bool XMLParser::mayScan() const {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): hosts set it before they start threads
    const char *const wanted = std::getenv("PELLUVIA_XML_ENGINE");
    return wantedEngine_ == XMLEngine::automatic &&
           (wanted == nullptr || std::string_view(wanted) != "libxml2");
}

ErrorPtr XMLParser::abortError() const {
    return xml::makeError(xml::abortFailure(), engine_->position());
}

bool XMLParser::fileHasChanged() const {
    return file_.state_ != nullptr && source_->state() != *file_.state_;
}

ErrorPtr XMLParser::changeError() {
    engine_.reset(); // its place in the file means nothing
    return xml::makeError({XML_IO_LOAD_ERROR, "The file has changed since it was first read"}, {});
}

void XMLParser::abortParsing() {
    if (engine_) {
        engine_->abort();
    }
}

const ErrorPtr &XMLParser::parserError() const noexcept {
    return error_;
}

std::int64_t XMLParser::lineNumber() const noexcept {
    return engine_ ? engine_->position().line : 0;
}

std::int64_t XMLParser::columnNumber() const noexcept {
    return engine_ ? engine_->position().column : 0;
}

} // namespace pelluvia
