#include <Pelluvia/platform/XMLParser.h>

#include <Pelluvia/platform/xml/Sax2Engine.h>
#include <Pelluvia/platform/xml/scan/ScanEngine.h>

#include <cstdlib>
#include <libxml/xmlerror.h>
#include <string_view>

namespace pelluvia {

using Reader = XMLKnownFile::Reader;
using xml::scan::ScanEngine;
using Scanned = ScanEngine::Outcome;

XMLKnownFile::XMLKnownFile() = default;
XMLKnownFile::~XMLKnownFile() = default;

XMLKnownFile::XMLKnownFile(const XMLKnownFile &other) {
    *this = other;
}

XMLKnownFile &XMLKnownFile::operator=(const XMLKnownFile &other) {
    if (this != &other) {
        reader_ = other.reader_;
        state_ = other.state_ ? std::make_unique<xml::FileState>(*other.state_) : nullptr;
    }
    return *this;
}

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
        file_.state_ = state ? std::make_unique<xml::FileState>(*state) : nullptr;
        return readUnknown();
    }
    return fileHasChanged() ? changeError() : readKnown();
}

/// Finds out who can read the document, and has it read. All that the scanner reports before it
/// gives up is reported by the library too, except that a piece of text may reach further. So where
/// more than names is wanted, the whole document is looked at first. What can be read only once
/// is the library's.
ErrorPtr XMLParser::readUnknown() {
    file_.reader_ = Reader::library;
    auto sourceForMore = mayScan() ? source_->again() : nullptr;
    if (sourceForMore == nullptr) {
        return readWithLibrary(0);
    }
    const bool namesOnly = delegate_ == nullptr || delegate_->wantsElementNamesOnly();
    auto scan = std::make_unique<ScanEngine>(*this, *source_, namesOnly ? delegate_ : nullptr);
    ScanEngine &engine = *scan;
    engine_ = std::move(scan);
    const Scanned outcome = engine.run();
    const std::uint64_t reportedElements = namesOnly ? engine.startedElements() : 0;
    if (outcome == Scanned::wellFormed) {
        file_.reader_ = Reader::scanner;
    }
    if (namesOnly && outcome != Scanned::refused) {
        return outcome == Scanned::aborted ? abortError() : nullptr;
    }
    engine_.reset();
    source_ = std::move(sourceForMore);
    if (reportedElements != 0 && fileHasChanged()) {
        return changeError(); // the library would not go on where the scanner was
    }
    return outcome == Scanned::refused ? readWithLibrary(reportedElements) : readKnown();
}

ErrorPtr XMLParser::readKnown() {
    const bool isScanned = file_.reader_ == Reader::scanner && mayScan();
    ErrorPtr error = isScanned ? readWithScanner() : readWithLibrary(0);
    return fileHasChanged() ? changeError() : error;
}

/// Reads what the scanner was able to read before.
ErrorPtr XMLParser::readWithScanner() {
    auto scan = std::make_unique<ScanEngine>(*this, *source_, delegate_);
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

ErrorPtr XMLParser::readWithLibrary(std::uint64_t reportedElements) {
    auto library = std::make_unique<xml::Sax2Engine>(*this, *source_, delegate_,
                                                     resolvesExternalEntities_, reportedElements);
    xml::Sax2Engine &engine = *library;
    engine_ = std::move(library);
    return engine.run();
}

bool XMLParser::mayScan() const {
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
